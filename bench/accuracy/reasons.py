"""Why an answer of ours is not right, where that is known; of the others the page says "not known yet"."""

_PAGE = (
    "the last page is cut off, yet its header stands in the file and states the position where the page "
    "would have ended; the Ogg reader takes it"
)

REASONS = {
    "truncated/ogg-vorbis.ogg": _PAGE,
    "truncated/opus-music.opus": _PAGE,
    "truncated/wma-v2.wma": "the ASF reader takes the play duration of the header, that of the whole file",
}
