"""WAV files put together byte by byte: what recorders, editors and interrupted programs leave over.

Layout (Multimedia Programming Interface 1.0; EBU Tech 3306 for RF64): "RIFF", u32 size, "WAVE", chunks. `fmt
` holds u16 tag, u16 channels, u32 rate, u32 bytes a second, u16 bytes a block, u16 bits. In RF64 `ds64` holds
the 64-bit sizes of file, data and samples, and the 32-bit ones are 0xFFFFFFFF.
"""

import struct

from .layout import chunk, id3v1, id3v2, riff
from .shelf import Shelf, built
from .tools import pcm_of

_UNKNOWN = 0xFFFFFFFF
_RATE, _CHANNELS, _BITS = 44100, 2, 16
_ALIGN = _CHANNELS * _BITS // 8
_BYTES_A_SECOND = _RATE * _ALIGN


def fmt(rate=_RATE, channels=_CHANNELS, bits=_BITS, tag=1, extra=b"") -> bytes:
    align = channels * bits // 8
    return chunk(b"fmt ", struct.pack("<HHIIHH", tag, channels, rate, rate * align, align, bits) + extra)


def data_of(size: int, body: bytes) -> bytes:
    """A data chunk that states `size`, whatever it holds."""
    return b"data" + struct.pack("<I", size) + body


def make(shelf: Shelf):
    samples = pcm_of(shelf.tone())
    _sizes(shelf, samples)
    _chunks(shelf, samples)
    _big(shelf)


def _sizes(shelf, samples):
    why = "bytes after the header / bytes a second"
    for name, note, content in (
        (
            "wav/size-zero.wav",
            "data size 0, RIFF size 0: recorder stopped",
            riff(fmt(), data_of(0, samples), size=0),
        ),
        (
            "wav/size-unknown.wav",
            "data size 0xFFFFFFFF",
            riff(fmt(), data_of(_UNKNOWN, samples), size=_UNKNOWN),
        ),
        (
            "wav/size-sign.wav",
            "data size 0x7FFFFFFF",
            riff(fmt(), data_of(0x7FFFFFFF, samples), size=0x7FFFFFFF),
        ),
        (
            "wav/riff-size-wrong.wav",
            "RIFF size 36, data size right",
            riff(fmt(), chunk(b"data", samples), size=36),
        ),
        (
            "wav/no-riff-size.wav",
            "RIFF size 0, data size right",
            riff(fmt(), chunk(b"data", samples), size=0),
        ),
    ):
        shelf.put(
            name,
            note,
            content,
            built(len(samples) / _BYTES_A_SECOND, why, "ffmpeg" if name != "wav/size-sign.wav" else None),
        )


def _chunks(shelf, samples):
    listing = chunk(b"LIST", b"INFO" + chunk(b"INAM", b"a title of odd size"))
    odd = samples[: 4 * 1001] + b"\x11"
    eight = pcm_of(shelf.tone(3.3, 8000, 1, 8))[: 8000 * 3 + 1]
    good = chunk(b"data", samples)
    for name, note, content in (
        ("wav/list-before.wav", "LIST of odd size before the data", riff(fmt(), listing, good)),
        ("wav/list-after.wav", "LIST after the data", riff(fmt(), good, listing)),
        ("wav/junk-first.wav", "JUNK before fmt", riff(chunk(b"JUNK", b"\0" * 28), fmt(), good)),
        (
            "wav/big-junk.wav",
            "300 KB of PAD before the data",
            riff(fmt(), chunk(b"PAD ", b"\0" * 300_001), good),
        ),
        ("wav/fmt-18.wav", "fmt with cbSize", riff(fmt(extra=b"\0\0"), good)),
        ("wav/id3-chunk.wav", "ID3 tag in a chunk", riff(fmt(), good, chunk(b"id3 ", id3v2(500)))),
        ("wav/id3v1-behind.wav", "ID3v1 after the file", riff(fmt(), good) + id3v1()),
        (
            "wav/cue.wav",
            "cue and adtl chunks",
            riff(fmt(), chunk(b"cue ", struct.pack("<I", 0)), good, listing),
        ),
        (
            "wav/fact-wrong.wav",
            "PCM with a wrong fact count",
            riff(fmt(), chunk(b"fact", struct.pack("<I", 123)), good),
        ),
        ("wav/zeros-behind.wav", "1 MB of zeros after the data", riff(fmt(), good) + bytes(1_000_000)),
    ):
        shelf.put(name, note, content, built(5.3, "one data chunk", "ffmpeg"))
    shelf.put(
        "wav/odd-data.wav",
        "8 bit, odd size, padded, LIST at the end",
        riff(fmt(8000, 1, 8), chunk(b"data", eight), listing),
        built(len(eight) / 8000, "one data chunk", "ffmpeg"),
    )
    shelf.put(
        "wav/part-block.wav",
        "ends in a part of a sample",
        riff(fmt(), chunk(b"data", odd)),
        built(1001 / _RATE, "whole samples", "ffmpeg"),
    )
    valid = struct.pack("<HHI", 22, 20, 3) + b"\1\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71"
    shelf.put(
        "wav/valid-bits.wav",
        "extensible: 20 valid bits of 24",
        riff(fmt(48000, 2, 24, 0xFFFE, valid), chunk(b"data", bytes(6 * 48000 * 2))),
        built(2.0, "96,000 samples", "ffmpeg"),
    )


def _ds64(data_size, riff_size=0):
    return chunk(b"ds64", struct.pack("<QQQI", riff_size, data_size, data_size // _ALIGN, 0))


def _big(shelf):
    samples = pcm_of(shelf.tone())
    for name, note, kind in (
        ("rf64/made.rf64", "RF64, sizes 0xFFFFFFFF", b"RF64"),
        ("wav/bw64.wav", "BW64", b"BW64"),
    ):
        shelf.put(
            name,
            note,
            riff(
                _ds64(len(samples), len(samples) + 80),
                fmt(),
                data_of(_UNKNOWN, samples),
                size=_UNKNOWN,
                name=kind,
            ),
            built(5.3, "data size in ds64", "ffmpeg"),
        )
    shelf.hard("wav/bw64.wav", reports="MediaInfo #822")
    shelf.put(
        "rf64/cut-short.rf64",
        "RF64 whose ds64 was never filled in",
        riff(_ds64(0), fmt(), data_of(_UNKNOWN, samples), size=_UNKNOWN, name=b"RF64"),
        built(5.3, "bytes after the header"),
    )
    hour = 3600 * 8000 * 2
    _sparse(
        shelf,
        "wav/hour.wav",
        "one hour of silence",
        riff(fmt(8000, 1), data_of(hour, b""), size=hour + 36),
        hour,
        built(3600, "data size", "ffmpeg"),
    )
    whole = (1 << 32) + 60 * _BYTES_A_SECOND
    _sparse(
        shelf,
        "wav/wrapped.wav",
        "over 4 GiB: the 32-bit sizes wrapped around",
        riff(fmt(), data_of(whole % (1 << 32), b""), size=(whole + 36) % (1 << 32)),
        whole,
        built(whole / _BYTES_A_SECOND, "bytes after the header"),
    )
    shelf.hard("wav/wrapped.wav")
    _sparse(
        shelf,
        "rf64/five-gigabytes.rf64",
        "over 4 GiB, sizes in ds64",
        riff(_ds64(whole, whole + 80), fmt(), data_of(_UNKNOWN, b""), size=_UNKNOWN, name=b"RF64"),
        whole,
        built(whole / _BYTES_A_SECOND, "data size in ds64"),
    )


def _sparse(shelf, name, note, head, silence, truth):
    """`head` and then `silence` bytes of zeros that take no room on the disk."""
    path = shelf.path(name)
    path.write_bytes(head)
    with path.open("r+b") as file:
        file.truncate(len(head) + silence)
    shelf.add(name, note, truth)
