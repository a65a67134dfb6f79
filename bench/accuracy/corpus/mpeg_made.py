"""MPEG audio with everything that stands around the frames: tags, junk, zeros, other length headers, joined
files; and the layers that no encoder writes.

A frame (ISO/IEC 11172-3): 11 bits sync, 2 version, 2 layer, 1 no checksum, 4 bit rate, 2 rate, 1 padding, 1
private, 2 mode, 2 extension, copyright, original, 2 emphasis. Zeros after the header of layers I and II
allocate no bits: silence.

Xing (after the side information): "Xing" or "Info", u32 flags, then frames, bytes, 100 bytes of seek points,
quality as flagged. VBRI (at byte 36): "VBRI", u16 version, u16 delay, u16 quality, u32 bytes, u32 frames, u16
entries, u16 scale, u16 entry bytes, u16 frames an entry.
"""

import random
import struct

from .layout import apev2, id3v1, id3v2, id3v2_picture
from .shelf import Shelf, built, decoded
from .tools import call

_RATES = {3: (44100, 48000, 32000), 2: (22050, 24000, 16000), 0: (11025, 12000, 8000)}
_KILOBITS_ONE = (0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320)
_KILOBITS_TWO = (0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160)
_FRAME = 1152 / 44100


def make(shelf: Shelf):
    stereo = shelf.tone()
    vbr = call("lame", "--quiet -t -V2", stereo, "-")
    cbr = call("lame", "--quiet -t -b 128", stereo, "-")
    tagged = call("lame", "--quiet -V2", stereo, "-")
    _tags(shelf, vbr, tagged)
    _junk(shelf, cbr, vbr)
    _lengths(shelf, vbr)
    _joined(shelf, cbr, vbr, tagged)
    _layers(shelf)


def frames_of(stream: bytes) -> list[bytes]:
    """Splits a bare layer III stream into its frames."""
    frames, at = [], 0
    while at + 4 <= len(stream):
        head = struct.unpack_from(">I", stream, at)[0]
        version = head >> 19 & 3
        kilobits = (_KILOBITS_ONE if version == 3 else _KILOBITS_TWO)[head >> 12 & 15]
        rate = _RATES[version][head >> 10 & 3]
        length = (144000 if version == 3 else 72000) * kilobits // rate + (head >> 9 & 1)
        frames.append(stream[at:at + length])
        at += length
    return frames


def noise(size, seed=1) -> bytes:
    """Random bytes without 0xFF, so that no frame header appears in them by chance."""
    return bytes(byte if byte != 0xFF else 0 for byte in random.Random(seed).randbytes(size))


def _tags(shelf, vbr, tagged):
    count = len(frames_of(vbr))
    bare = built(count * _FRAME, "frames of 1152 samples", "mpg123")
    whole = built(5.3, "source", "ffmpeg")
    for name, note, content, truth in (
        ("id3v2-big", "1.2 MB picture in ID3v2", id3v2_picture(1_200_000) + vbr, bare),
        ("id3v2-big-lame", "1.2 MB picture in ID3v2, LAME tag", id3v2_picture(1_200_000) + tagged, whole),
        ("id3v2-three", "three ID3v2 tags", id3v2(300) + id3v2(70_000, 3) + id3v2(20) + vbr, bare),
        ("id3v2-footer", "ID3v2.4 with a footer", id3v2(900, footer=True) + vbr, bare),
        ("id3v2-empty", "an empty ID3v2 tag", id3v2(0) + vbr, bare),
        ("id3v2-padding", "zeros between ID3v2 and the frames", id3v2(500) + bytes(7000) + vbr, bare),
        ("id3v1", "ID3v1", vbr + id3v1(), bare),
        ("apev2", "APEv2", vbr + apev2(), bare),
        ("ape-id3v1", "APEv2 and ID3v1", vbr + apev2() + id3v1(), bare),
        ("ape-first", "APEv2 before the frames", apev2() + vbr, bare),
        ("ape-big", "300 KB APEv2 at the end", vbr + apev2(((b"Cover Art (Front)", noise(300_000)),)), bare),
        (
            "lyrics",
            "Lyrics3v2 and ID3v1",
            vbr + b"LYRICSBEGIN" + b"IND00003110" + b"000022LYRICS200" + id3v1(),
            bare,
        ),
        ("id3v2-behind", "ID3v2.4 appended", vbr + id3v2(300, footer=True), bare),
        ("all-tags", "ID3v2, APEv2, ID3v1, LAME tag", id3v2(50_000) + tagged + apev2() + id3v1(), whole),
    ):
        shelf.put(f"mp3/{name}.mp3", note, content, truth)


def _junk(shelf, cbr, vbr):
    frames, same = frames_of(vbr), frames_of(cbr)
    bare = built(len(frames) * _FRAME, "frames of 1152 samples", "mpg123")
    half = len(frames) // 2
    first, second = b"".join(frames[:half]), b"".join(frames[half:])
    loose = built(len(frames) * _FRAME, "frames of 1152 samples", "mpg123", 0.1)
    for name, note, content, truth in (
        ("junk-before", "3 KB of junk before", noise(3000) + vbr, bare),
        ("zeros-before", "10 KB of zeros before", bytes(10_000) + vbr, bare),
        (
            "text-before",
            "an HTTP header before",
            b"HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n\r\n" + vbr,
            bare,
        ),
        ("zeros-behind", "200 KB of zeros at the end", vbr + bytes(200_000), bare),
        ("junk-behind", "20 KB of junk at the end", vbr + noise(20_000), bare),
        ("zeros-between", "5 KB of zeros between frames", first + bytes(5000) + second, loose),
        ("junk-between", "5 KB of junk between frames", first + noise(5000) + second, loose),
        ("part-frame", "the last frame cut off", vbr + same[5][:90], bare),
    ):
        shelf.put(f"mp3/{name}.mp3", note, content, truth)
    shelf.put(
        "mp3/starts-inside.mp3",
        "starts in the middle of a frame",
        frames[4][200:] + b"".join(frames[5:]),
        built((len(frames) - 5) * _FRAME, "frames of 1152 samples", "mpg123"),
    )


def length_frame(frame: bytes, name: bytes, fields: bytes) -> bytes:
    """A silent frame, headed as `frame` is, with a length header: Xing and Info after 32 bytes of side
    information."""
    start = 36 if name == b"VBRI" or (frame[3] >> 6) != 3 else 21
    return (frame[:4] + bytes(start - 4) + name + fields).ljust(len(frame), b"\0")


def _lengths(shelf, vbr):
    frames = frames_of(vbr)
    total, size = len(frames), len(vbr)
    host = max(frames, key=len)
    truth = built(total * _FRAME, "frames of 1152 samples", "mpg123")
    vbri = struct.pack(">HHHIIHHHH", 1, 0, 75, size + len(host), total, 0, 1, 2, 1)
    for name, note, kind, fields in (
        ("xing-frames", "Xing with frames only", b"Xing", struct.pack(">II", 1, total)),
        ("xing-both", "Xing with frames and bytes", b"Xing", struct.pack(">III", 3, total, size + len(host))),
        ("xing-bytes", "Xing with bytes only", b"Xing", struct.pack(">II", 2, size + len(host))),
        ("xing-none", "Xing without any field", b"Xing", struct.pack(">I", 0)),
        ("vbri", "VBRI", b"VBRI", vbri),
    ):
        shelf.put(f"mp3/{name}.mp3", note, length_frame(host, kind, fields) + vbr, truth)
    shelf.put(
        "mp3/xing-wrong.mp3",
        "Xing of a file three times as long",
        length_frame(host, b"Xing", struct.pack(">III", 3, total * 3, size * 3)) + vbr,
        built(total * _FRAME, "frames of 1152 samples", "mpg123"),
    )
    shelf.hard("mp3/xing-wrong.mp3")


def _joined(shelf, cbr, vbr, tagged):
    count = len(frames_of(cbr)) + len(frames_of(vbr))
    short = call("lame", "--quiet -b 192", shelf.tone(9.7), "-")
    for name, note, content, truth in (
        (
            "joined-bare",
            "CBR and VBR joined",
            cbr + vbr,
            built(count * _FRAME, "frames of 1152 samples", "mpg123"),
        ),
        (
            "joined-tags",
            "two tagged files joined",
            id3v2(900) + cbr + id3v1() + id3v2(40_000) + vbr + id3v1(),
            built(count * _FRAME, "frames of 1152 samples", "mpg123"),
        ),
        ("joined-lame", "two files with LAME tags joined", tagged + short, decoded("mpg123")),
        (
            "joined-four",
            "four files with ID3v2 and LAME tags joined",
            (id3v2(2000) + tagged) * 4,
            decoded("mpg123"),
        ),
    ):
        shelf.put(f"mp3/{name}.mp3", note, content, truth)


def header(layer, kilobits_index, rate_index, version=3, mono=False, padding=0) -> bytes:
    """A frame header without checksum."""
    word = 0x7FF << 21 | version << 19 | (4 - layer) << 17 | 1 << 16 | kilobits_index << 12 | rate_index << 10
    return struct.pack(">I", word | padding << 9 | (3 if mono else 0) << 6)


def _layers(shelf):
    """Layer I: 384 samples, 12 * bit rate / rate slots of 4 bytes. Bit rate index 0: free format, any
    constant length."""
    one = ("layer I", 1, 384)
    two = ("layer II", 2, 1152)
    for name, (layer, number, samples), index, rate_index, rate, version, length in (
        ("mp2/layer-one.mp2", one, 4, 1, 48000, 3, 12 * 128000 // 48000 * 4),
        ("mp3/layer-one.mp3", one, 14, 2, 32000, 3, 12 * 448000 // 32000 * 4),
        ("mp2/layer-one-low.mp2", one, 6, 1, 24000, 2, 12 * 96000 // 24000 * 4),
        ("mp2/layer-two-free.mp2", two, 0, 1, 48000, 3, 500),
        ("mp3/layer-one-free.mp3", one, 0, 1, 48000, 3, 240),
    ):
        frame = header(number, index, rate_index, version).ljust(length, b"\0")
        free = index == 0
        shelf.put(
            name,
            f"{layer}{', free format' if free else ''}, {rate} Hz",
            frame * 400,
            built(400 * samples / rate, f"400 frames of {samples} samples", "mpg123"),
        )
