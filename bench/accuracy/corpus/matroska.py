"""Matroska audio by ffmpeg, and the same files with the length taken out.

Layout (RFC 8794, 9559): elements of an id, a size of 1 to 8 bytes, a body. The segment's Info (1549A966)
holds TimestampScale (2AD7B1) and Duration (4489, a float); a size of all ones is unknown: to the end.
"""

from .shelf import LYING, Shelf, built, decoded, source
from .tools import encode, ffmpeg

_DURATION = b"\x44\x89\x88"
_VOID = b"\xEC\x89"  # a filler whose nine bytes are the rest of the element


def make(shelf: Shelf):
    _codecs(shelf)
    _without_length(shelf)
    _cut(shelf)


def _codecs(shelf):
    stereo, fast = shelf.tone(), shelf.tone(5.3, 48000)
    for name, codec, tone in (
        ("aac", "aac", stereo),
        ("mp3", "libmp3lame", stereo),
        ("flac", "flac", stereo),
        ("vorbis", "libvorbis", stereo),
        ("opus", "libopus", fast),
        ("pcm", "pcm_s24le", stereo),
        ("ac3", "ac3", fast),
        ("alac", "alac", stereo),
        ("wavpack", "wavpack", stereo),
        ("tta", "tta", stereo),
    ):
        encode(tone, shelf.path(f"mka/{name}.mka"), "-c:a", codec)
        shelf.add(f"mka/{name}.mka", f"{codec} in Matroska", source(5.3, slack=0.1))
    ffmpeg(
        "-i",
        stereo,
        "-attach",
        shelf.cover(),
        "-metadata:s:t mimetype=image/png -c:a libvorbis",
        shelf.path("mka/attachment.mka"),
    )
    shelf.add("mka/attachment.mka", "Vorbis, a picture attached", source(5.3))
    encode(shelf.tone(0.1, 48000), shelf.path("mka/tenth.mka"), "-c:a pcm_s16le")
    shelf.add("mka/tenth.mka", "PCM, 0.1 s", source(0.1, slack=0.002))
    encode(shelf.tone(3600, 8000, 1, kind="silence"), shelf.path("mka/hour.mka"), "-c:a flac")
    shelf.add("mka/hour.mka", "FLAC, one hour of silence", source(3600.0))
    encode(fast, shelf.path("mka/webm.mka"), "-c:a libopus -f webm")
    shelf.add("mka/webm.mka", "WebM named .mka", source(5.3))


def _without_length(shelf):
    stereo, fast, long = shelf.tone(13.3), shelf.tone(13.3, 48000), shelf.tone(61, 44100, 1, kind="speech")
    for name, codec, tone, options, seconds in (
        ("piped-aac", "aac", stereo, "", 13.3),
        ("piped-opus", "libopus", fast, "", 13.3),
        ("live-mp3", "libmp3lame", stereo, "-live 1", 13.3),
        ("live-flac", "flac", stereo, "-live 1", 13.3),
        ("piped-vorbis", "libvorbis", long, "", 61.0),
        ("piped-pcm", "pcm_s16le", stereo, "", 13.3),
    ):
        shelf.put(
            f"mka/{name}.mka",
            f"{codec}, {name.split('-')[0]}: no length",
            ffmpeg("-i", tone, "-c:a", codec, options, "-f matroska -"),
            source(seconds, slack=0.1),
        )
    whole = shelf.path("mka/opus.mka").read_bytes()
    at = whole.index(_DURATION)
    shelf.put(
        "mka/no-duration.mka",
        "Opus, the duration element voided, index kept",
        whole[:at] + _VOID + whole[at + 2:],
        built(5.3, "source", "ffmpeg", 0.1),
    )
    late = shelf.root / "sources" / "late-mka.srt"
    late.write_text("1\n00:00:01,000 --> 00:00:02,000\none\n\n2\n00:00:58,000 --> 00:01:00,000\nlate\n")
    ffmpeg(
        "-i",
        shelf.tone(),
        "-i",
        late,
        "-map 0:a -map 1:s -c:a flac -c:s srt",
        shelf.path("mka/subtitles.mka"),
    )
    shelf.add("mka/subtitles.mka", "subtitles of a minute, sound of 5.3 s", source(5.3))


def _cut(shelf):
    """Cut without encoding: the clock goes on from the file before, and the length counts from 0."""
    whole = shelf.root / "sources" / "whole.mka"
    encode(shelf.tone(21.3, 48000), whole, "-c:a libopus")
    parts = shelf.root / "sources" / "part-%d.mka"
    ffmpeg("-i", whole, "-c copy -f segment -segment_time 8 -segment_format matroska", parts)
    content = (shelf.root / "sources" / "part-1.mka").read_bytes()
    shelf.put("mka/part-1.mka", "the second 8 seconds of 21, without encoding", content, decoded(), LYING)
    shelf.hard("mka/part-1.mka", LYING, "MediaInfoLib #1491")
