"""MP4 files changed by hand: durations that recorders left open, 64-bit boxes, tracks beside the sound.

Layout (ISO/IEC 14496-12): boxes of u32 size and name (size 1: a u64 follows; 0: to the end). In version 0
`mvhd` and `mdhd` hold u32 times, u32 timescale, u32 duration after 4 bytes of version and flags; `tkhd` u32
times, u32 track, 4 reserved, u32 duration; `elst` u32 entries of u32 duration, i32 media time, u32 rate.
"""

import struct

from .layout import box
from .shelf import LYING, Shelf, built, decoded, source
from .tools import ffmpeg

_DURATION_AT = {b"mvhd": 16, b"mdhd": 16, b"tkhd": 20}
_UNKNOWN = 0xFFFFFFFF


def make(shelf: Shelf):
    _durations(shelf)
    _boxes(shelf)
    _tracks(shelf)
    hard = shelf.for_hard_cases()
    _headed(hard)
    _beyond_end(hard)
    _parts(hard)


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
    shelf.hard("m4a/all-zero.m4a", reports="TagLib #1165")
    shelf.hard("m4a/all-unknown.m4a")
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


def _headed(shelf):
    """Headers and tables that say different things; what iTunes notes of the encoder's samples."""
    plain = (shelf.root / "sources" / "plain-edit.m4a").read_bytes()
    same = shelf.root / "sources" / "same-scale.m4a"
    ffmpeg("-i", shelf.tone(11.3), "-c:a aac -use_editlist 0 -movie_timescale 44100 -f mp4", same)
    unscaled = bytearray(same.read_bytes())
    struct.pack_into(">I", unscaled, unscaled.index(b"mdhd") + 4 + 12, 0)
    for name, note, content in (
        ("mdhd-short", "mdhd of 4 s, samples of 11.3 s", stated(plain, 4 * 44100, b"mdhd")),
        ("mdhd-long", "mdhd of 40 s, samples of 11.3 s", stated(plain, 40 * 44100, b"mdhd")),
        ("no-scale", "time scale 0 in mdhd, that of mvhd is right", bytes(unscaled)),
    ):
        truth = built(11.3, "sample table", None if name == "no-scale" else "ffmpeg", 0.06)
        shelf.put(f"m4a/{name}.m4a", note, content, truth, LYING)
    short = shelf.root / "sources" / "short-edit.m4a"
    ffmpeg("-i", shelf.tone(1.1), "-c:a aac -use_editlist 0 -f mp4", short)
    content = short.read_bytes()
    at = content.index(b"mdhd") + 4 + _DURATION_AT[b"mdhd"]
    priming, sound = 1024, round(1.1 * 44100)
    padding = struct.unpack_from(">I", content, at)[0] - priming - sound
    note = f" 00000000 {priming:08X} {padding:08X} {sound:016X}" + " 00000000" * 8
    shelf.put(
        "m4a/itunes-note.m4a",
        "iTunSMPB instead of an edit list",
        _noted(content, note),
        built(1.1, "source", "ffmpeg", 0.06),
    )


def _noted(content: bytes, note: str) -> bytes:
    """`content`, whose movie box is the last, with iTunes' note of the samples around the sound."""
    item = box(
        b"----",
        box(b"mean", bytes(4), b"com.apple.iTunes"),
        box(b"name", bytes(4), b"iTunSMPB"),
        box(b"data", bytes((0, 0, 0, 1, 0, 0, 0, 0)), note.encode()),
    )
    handler = box(b"hdlr", bytes(8), b"mdirappl", bytes(9))
    data = box(b"udta", box(b"meta", bytes(4), handler, box(b"ilst", item)))
    out = bytearray(content.replace(b"udta", b"free"))
    at = out.index(b"moov") - 4
    assert at + struct.unpack_from(">I", out, at)[0] == len(out), "a movie box at the end expected"
    struct.pack_into(">I", out, at, len(out) - at + len(data))
    return bytes(out) + data


def _beyond_end(shelf):
    """Index first, cut off, and the media box made as small as what is left."""
    chunks = shelf.root / "sources" / "chunks.m4a"
    ffmpeg("-i", shelf.tone(21.3), "-c:a alac -movflags +faststart", chunks)
    for name, note, whole, share in (
        ("end-lost", "two fifths of the sound", chunks, 0.4),
        ("stub", "a 30th of the sound in one chunk", shelf.path("m4a/faststart.m4a"), 1 / 30),
    ):
        content = whole.read_bytes()
        at = content.index(b"mdat") - 4
        kept = int((len(content) - at) * share)
        cut = content[:at] + struct.pack(">I", kept) + content[at + 4:at + kept]
        shelf.put(f"m4a/{name}.m4a", f"{note}, tables of all of it", cut, decoded(), LYING)


def _parts(shelf):
    """What streams are cut into."""
    folder = shelf.root / "sources" / "parts"
    folder.mkdir(exist_ok=True)
    whole = folder / "whole.m4a"
    ffmpeg("-i", shelf.tone(21.3), "-c:a aac", whole)
    ffmpeg("-i", whole, "-c copy -f segment -segment_time 8 -segment_format mp4", folder / "part-%d.m4a")
    shelf.put(
        "m4a/part-1.m4a",
        "the second 8 seconds of 21, without encoding",
        (folder / "part-1.m4a").read_bytes(),
        decoded(),
        LYING,
    )
    ffmpeg(
        "-i",
        whole,
        "-c copy -f hls -hls_time 8 -hls_segment_type fmp4 -hls_playlist_type vod",
        folder / "list.m3u8",
    )
    shelf.put(
        "m4a/hls-part.m4a",
        "HLS: the initialisation and the second part",
        (folder / "init.mp4").read_bytes() + (folder / "list1.m4s").read_bytes(),
        decoded(),
        LYING,
    )
