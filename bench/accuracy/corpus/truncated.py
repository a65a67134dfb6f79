"""Files that end before their header says: an interrupted copy. True is what is really there, as a decoder
finds it.
"""

from .shelf import TRUNCATED, Shelf, built, decoded

_KEPT = 0.6
_ROWS = (
    ("wav/pcm_s16le.wav", "ffmpeg"),
    ("wav/adpcm_ms.wav", "ffmpeg"),
    ("aiff/s24.aiff", "ffmpeg"),
    ("au/s16.au", "ffmpeg"),
    ("caf/s16.caf", "ffmpeg"),
    ("w64/s16.w64", "ffmpeg"),
    ("mp3/cbr-128.mp3", "ffmpeg"),
    ("mp3/vbr-v0.mp3", "ffmpeg"),
    ("mp3/bare-vbr.mp3", "ffmpeg"),
    ("mp2/cbr-192.mp2", "ffmpeg"),
    ("aac/stereo.aac", "ffmpeg"),
    ("amr/nb-7.amr", "sox amr-nb"),
    ("flac/plain.flac", "ffmpeg"),
    ("flac/piped.flac", "ffmpeg"),
    ("ogg/vorbis.ogg", "ffmpeg"),
    ("opus/music.opus", "ffmpeg"),
    ("wv/plain.wv", "ffmpeg"),
    ("mka/flac.mka", "ffmpeg"),
    ("mka/pcm.mka", "ffmpeg"),
    ("m4a/faststart.m4a", "ffmpeg"),
    ("m4a/fragments.m4a", "ffmpeg"),
    ("dsf/stereo.dsf", "ffmpeg"),
    ("dff/stereo.dff", "ffmpeg"),
    ("voc/u8.voc", "ffmpeg"),
    ("wma/v2.wma", "ffmpeg"),
    ("mpc/sv8-32.mpc", "ffmpeg"),
)


def make(shelf: Shelf):
    for origin, decoder in _ROWS:
        content = shelf.path(origin).read_bytes()
        name = origin.replace("/", "-")
        shelf.put(
            name,
            f"{_KEPT:.0%} of {origin}",
            content[: int(len(content) * _KEPT)],
            decoded(decoder),
            TRUNCATED,
        )
    sound = shelf.path("ape/frames.ape").read_bytes()
    # Ten frames of 16 bytes, each 73,728 * 4 samples; descriptor, header and seek table stay whole.
    shelf.put(
        "ape-frames.ape",
        "5 of 10 frames of ape/frames.ape",
        sound[: len(sound) - 5 * 16],
        built(5 * 73728 * 4 / 44100, "whole frames", "ffmpeg"),
        TRUNCATED,
    )
    old = shelf.path("ape/old.ape").read_bytes()
    shelf.put(
        "ape-old.ape",
        "5 of 10 frames of ape/old.ape",
        old[: len(old) - 5 * 16],
        built(5 * 73728 * 4 / 44100, "whole frames", "ffmpeg"),
        TRUNCATED,
    )
    shelf.hard("ape-old.ape", TRUNCATED)
