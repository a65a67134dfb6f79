"""DSF and DSDIFF, by hand: no free encoder writes them. The payload is DSD silence (0x69).

DSF (Sony, DSF File Format 1.01), little-endian: "DSD ", u64 28, u64 file size, u64 metadata offset; "fmt ",
u64 52, u32 version, u32 0, u32 channel type, u32 channels, u32 rate, u32 bits, u64 samples a channel, u32
4096, u32 0; "data", u64 size, blocks of 4,096 bytes a channel, the last ones filled up with zeros.

DSDIFF (Philips, 1.5), big-endian: "FRM8", u64 size, "DSD "; FVER; PROP "SND " of FS, CHNL, CMPR; "DSD " (a
bit a sample, channels byte by byte in turn) or "DST " of FRTE (u32 frames, u16 frames a second) and DSTF
frames.
"""

import struct

from .layout import id3v2, iff64
from .shelf import Shelf, built

_RATE = 2822400
_BLOCK = 4096
_SILENCE = b"\x69"


def make(shelf: Shelf):
    _dsf(shelf)
    _dsdiff(shelf)


def dsf(seconds, rate=_RATE, channels=2, metadata=b"", metadata_at=None, padding=0) -> bytes:
    """`padding` blocks a channel follow those of the samples."""
    samples = round(seconds * rate)
    blocks = -(-samples // (8 * _BLOCK)) + padding
    data = _SILENCE * (blocks * _BLOCK * channels)
    size = 28 + 52 + 12 + len(data) + len(metadata)
    at = (size - len(metadata) if metadata else 0) if metadata_at is None else metadata_at
    fmt = struct.pack("<IIIIIIQII", 1, 0, {1: 1, 2: 2, 6: 7}[channels], channels, rate, 1, samples, _BLOCK, 0)
    return (
        b"DSD "
        + struct.pack("<QQQ", 28, size, at)
        + b"fmt "
        + struct.pack("<Q", 52)
        + fmt
        + b"data"
        + struct.pack("<Q", 12 + len(data))
        + data
        + metadata
    )


def _dsf(shelf):
    for name, seconds, rate, channels, note in (
        ("dsf/stereo.dsf", 3.0, _RATE, 2, "DSD64 stereo"),
        ("dsf/mono.dsf", 5.3, _RATE, 1, "DSD64 mono"),
        ("dsf/dsd128.dsf", 2.1, 2 * _RATE, 2, "DSD128"),
        ("dsf/six.dsf", 1.7, _RATE, 6, "DSD64, 5.1"),
        ("dsf/tenth.dsf", 0.1, _RATE, 2, "0.1 s: the last block mostly padding"),
    ):
        shelf.put(name, note, dsf(seconds, rate, channels), built(seconds, "sample count", "ffmpeg"))
    shelf.put(
        "dsf/tagged.dsf",
        "ID3v2 after the data",
        dsf(3.3, metadata=id3v2(30_000)),
        built(3.3, "sample count", "ffmpeg"),
    )


def dsdiff(payload: bytes, rate=_RATE, channels=2, compression=b"DSD ", before=b"", after=b"") -> bytes:
    names = b"".join((b"SLFT", b"SRGT", b"C   ")[:channels]) if channels > 1 else b"C   "
    kind = {b"DSD ": b"not compressed", b"DST ": b"DST Encoded"}[compression]
    properties = (
        iff64(b"FS  ", struct.pack(">I", rate))
        + iff64(b"CHNL", struct.pack(">H", channels) + names)
        + iff64(b"CMPR", compression + bytes([len(kind)]) + kind)
    )
    body = (
        b"DSD "
        + iff64(b"FVER", b"\1\5\0\0")
        + iff64(b"PROP", b"SND " + properties)
        + before
        + payload
        + after
    )
    return iff64(b"FRM8", body)


def _dsdiff(shelf):
    def silence(seconds, channels=2, rate=_RATE):
        return iff64(b"DSD ", _SILENCE * (round(seconds * rate) // 8 * channels))

    why = "bits a channel / rate"
    shelf.put("dff/stereo.dff", "DSD64 stereo", dsdiff(silence(3)), built(3.0, why, "ffmpeg"))
    shelf.put("dff/mono.dff", "DSD64 mono", dsdiff(silence(5, 1), channels=1), built(5.0, why, "ffmpeg"))
    shelf.put(
        "dff/dsd128.dff", "DSD128", dsdiff(silence(2, rate=2 * _RATE), 2 * _RATE), built(2.0, why, "ffmpeg")
    )
    shelf.put(
        "dff/comment.dff",
        "COMT before and DIIN after the sound",
        dsdiff(silence(3), before=iff64(b"COMT", b"\0\0"), after=iff64(b"DIIN", b"")),
        built(3.0, why, "ffmpeg"),
    )
    shelf.put("dff/tenth.dff", "0.1 s", dsdiff(silence(0.1)), built(0.1, why, "ffmpeg", 0.001))
    _dst(shelf)


def _dst(shelf):
    """DST frames that are not compressed: a 0 bit, 7 reserved bits, then a 75th of a second of DSD."""
    frame = iff64(b"DSTF", b"\0" + _SILENCE * (_RATE // 75 // 8 * 2))
    frames = 225
    payload = iff64(b"DST ", iff64(b"FRTE", struct.pack(">IH", frames, 75)) + frame * frames)
    shelf.put(
        "dff/dst.dff",
        "DST, 225 frames of 1/75 s",
        dsdiff(payload, compression=b"DST "),
        built(3.0, "frames / 75", "ffmpeg"),
    )
