"""Audible .aa files, by hand: no encoder writes them and nothing decodes the payload without a key, so it is
noise.

Layout, big-endian: u32 file size, u32 0x57907536, u32 entries, u32; a table of entries u32 index, u32 offset,
u32 size; 24 bytes; u32 pairs of u8, u32 key bytes, u32 value bytes, key, value, among them "codec"; the
blocks. The largest block but the first is the sound: chapters of u32 size, u32 offset, payload. The bit rate
is constant and given by the codec.
"""

import random
import struct

from .shelf import TRUNCATED, Shelf, built

_MAGIC = 0x57907536
_BYTES_A_SECOND = {"mp332": 32000 / 8, "acelp16": 16000 / 8, "acelp85": 8500 / 8}


def make(shelf: Shelf):
    for name, codec, seconds, chapters, note in (
        ("mp332", "mp332", 30.0, 1, "one chapter"),
        ("chapters", "mp332", 61.0, 5, "five chapters"),
        ("acelp16", "acelp16", 44.0, 2, "two chapters"),
        ("acelp85", "acelp85", 72.0, 3, "three chapters"),
        ("long", "acelp16", 3600.0, 12, "an hour"),
    ):
        size = int(seconds * _BYTES_A_SECOND[codec])
        shelf.put(
            f"aa/{name}.aa",
            f"Audible {codec}, {note}",
            audible(codec, size, chapters),
            built(size / _BYTES_A_SECOND[codec], "bytes of sound / bytes a second"),
        )
    size = 47 * 60 * 2000
    whole = audible("acelp16", size, 1)
    head = len(whole) - 4 - size
    shelf.put(
        "aa-book.aa",
        "10 KB of a book of 47 minutes",
        whole[:10_000],
        built((10_000 - head) / 2000, "bytes of sound / bytes a second"),
        TRUNCATED,
    )
    shelf.hard("aa-book.aa", TRUNCATED)


def audible(codec: str, size: int, chapters: int) -> bytes:
    """A file with `size` bytes of sound, shared out among `chapters`."""
    noise = random.Random(size).randbytes(size)
    bounds = [size * index // chapters for index in range(chapters + 1)]
    sound = b"".join(
        struct.pack(">II", end - start, start) + noise[start:end] for start, end in zip(bounds, bounds[1:])
    )
    pairs = [
        ("product_id", "1"),
        ("title", "book"),
        ("codec", codec),
        ("HeaderSeed", "1"),
        ("HeaderKey", "1 2 3 4"),
    ]
    words = struct.pack(">I", len(pairs)) + b"".join(
        b"\0" + struct.pack(">II", len(key), len(value)) + key.encode() + value.encode()
        for key, value in pairs
    )
    entries, first = 3, 16 + 3 * 12 + 24
    where = first + len(words)
    table = b"".join(
        struct.pack(">III", *row) for row in ((0, 0, where), (1, first, len(words)), (2, where, len(sound)))
    )
    body = struct.pack(">III", _MAGIC, entries, 0) + table + bytes(24) + words + sound + bytes(4)
    return struct.pack(">I", 4 + len(body)) + body
