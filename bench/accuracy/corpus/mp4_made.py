"""MP4 files changed by hand: durations that recorders left open, 64-bit boxes, tracks beside the sound.

Layout (ISO/IEC 14496-12): boxes of u32 size and name (size 1: a u64 follows; 0: to the end). In version 0
`mvhd` and `mdhd` hold u32 times, u32 timescale, u32 duration after 4 bytes of version and flags; `tkhd` u32
times, u32 track, 4 reserved, u32 duration; `elst` u32 entries of u32 duration, i32 media time, u32 rate.
"""

import struct

from .layout import box
from .shelf import Shelf, built, source
from .tools import ffmpeg

_DURATION_AT = {b"mvhd": 16, b"mdhd": 16, b"tkhd": 20}
_UNKNOWN = 0xFFFFFFFF


def make(shelf: Shelf):
    _durations(shelf)
    _boxes(shelf)
    _tracks(shelf)


def stated(content: bytes, duration: int, *names: bytes) -> bytes:
    """`content` with the duration in the boxes `names` replaced."""
    out = bytearray(content)
    for name in names:
        at = out.index(name) + 4
        assert out[at] == 0, "version 0 expected"
        struct.pack_into(">I", out, at + _DURATION_AT[name], duration)
    return bytes(out)


def _durations(shelf):
    plain = shelf.root / "sources" / "plain-edit.m4a"
    ffmpeg("-i", shelf.tone(11.3), "-c:a aac -use_editlist 0 -f mp4", plain)
    content = plain.read_bytes()
    truth = built(11.3, "sample table", "ffmpeg", 0.06)
    for name, note, duration, names in (
        ("mvhd-zero", "mvhd duration 0", 0, (b"mvhd",)),
        ("all-zero", "every duration 0", 0, (b"mvhd", b"tkhd", b"mdhd")),
        ("all-unknown", "every duration 0xFFFFFFFF", _UNKNOWN, (b"mvhd", b"tkhd", b"mdhd")),
        ("mvhd-wrong", "mvhd states 100 times the length", 1130000, (b"mvhd", b"tkhd")),
    ):
        shelf.put(f"m4a/{name}.m4a", note, stated(content, duration, *names), truth)
    at = content.index(b"mdat") - 4
    end = at + struct.unpack_from(">I", content, at)[0]
    moved = _moved(content[:at] + content[end:] + content[at:end], len(content) - end)
    open_end = moved[: moved.index(b"mdat") - 4] + b"\0\0\0\0" + moved[moved.index(b"mdat"):]
    shelf.put("m4a/open-mdat.m4a", "mdat of size 0: to the end", open_end, truth)


def _moved(content: bytes, by: int) -> bytes:
    """`content` with every chunk offset of its one `stco` box raised by `by`."""
    out = bytearray(content)
    at = out.index(b"stco") + 8
    for index in range(struct.unpack_from(">I", out, at)[0]):
        place = at + 4 + 4 * index
        struct.pack_into(">I", out, place, struct.unpack_from(">I", out, place)[0] + by)
    return bytes(out)


def _boxes(shelf):
    plain = (shelf.root / "sources" / "plain-edit.m4a").read_bytes()
    truth = built(11.3, "sample table", "ffmpeg", 0.06)
    at = plain.index(b"mdat") - 4
    size = struct.unpack_from(">I", plain, at)[0]
    wide = plain[:at] + struct.pack(">I4sQ", 1, b"mdat", size + 8) + plain[at + 8:]
    shelf.put("m4a/wide-mdat.m4a", "mdat with a 64-bit size", _moved(wide, 8), truth)
    free = box(b"free", bytes(500_000))
    head = struct.unpack_from(">I", plain, 0)[0]
    shelf.put(
        "m4a/big-free.m4a",
        "500 KB of free before the sound",
        _moved(plain[:head] + free + plain[head:], len(free)),
        truth,
    )
    shelf.put("m4b/junk-behind.m4b", "20 KB of zeros at the end", plain + bytes(20_000), truth)
    shelf.put(
        "m4r/unknown-box.m4r",
        "unknown boxes first",
        _moved(box(b"skip", b"x") + box(b"zzzz", bytes(99)) + plain, 9 + 107),
        truth,
    )


def _tracks(shelf):
    marks = shelf.root / "sources" / "late-chapters.txt"
    marks.write_text(
        ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1\nSTART=0\nEND=4\ntitle=a\n"
        "[CHAPTER]\nTIMEBASE=1/1\nSTART=4\nEND=60\ntitle=b\n"
    )
    ffmpeg(
        "-i",
        shelf.tone(),
        "-i",
        marks,
        "-map 0:a -map_metadata 1 -c:a aac",
        shelf.path("m4b/late-chapters.m4b"),
    )
    shelf.add("m4b/late-chapters.m4b", "chapter track far longer than the sound", source(5.3, slack=0.06))
    subtitles = shelf.root / "sources" / "late.srt"
    subtitles.write_text("1\n00:00:01,000 --> 00:00:02,000\none\n\n2\n00:00:58,000 --> 00:01:00,000\nlate\n")
    ffmpeg(
        "-i",
        shelf.tone(),
        "-i",
        subtitles,
        "-map 0:a -map 1:s -c:a aac -c:s mov_text -f mp4",
        shelf.path("m4a/subtitles.m4a"),
    )
    shelf.add("m4a/subtitles.m4a", "subtitle track of a minute, sound of 5.3 s", source(5.3, slack=0.06))
