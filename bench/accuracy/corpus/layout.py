"""Building blocks of the container formats that are written by hand: chunks, boxes, elements, tags."""

import struct


def chunk(name: bytes, body: bytes) -> bytes:
    """A RIFF chunk: name, little-endian size, body, a pad byte after an odd body."""
    return name + struct.pack("<I", len(body)) + body + b"\0" * (len(body) % 2)


def riff(*chunks: bytes, size=None, name=b"RIFF", form=b"WAVE") -> bytes:
    """A RIFF file; `size` replaces the true one in the header."""
    body = form + b"".join(chunks)
    return name + struct.pack("<I", len(body) if size is None else size) + body


def iff(name: bytes, body: bytes) -> bytes:
    """An IFF chunk (AIFF): as in RIFF, the size big-endian."""
    return name + struct.pack(">I", len(body)) + body + b"\0" * (len(body) % 2)


def iff64(name: bytes, body: bytes) -> bytes:
    """A DSDIFF chunk: name, 64-bit big-endian size, body, a pad byte after an odd body."""
    return name + struct.pack(">Q", len(body)) + body + b"\0" * (len(body) % 2)


def box(name: bytes, *bodies: bytes) -> bytes:
    """An ISO base media box with a 32-bit size."""
    body = b"".join(bodies)
    return struct.pack(">I", 8 + len(body)) + name + body


def extended(rate: float) -> bytes:
    """`rate` as the 80-bit extended float of AIFF's COMM chunk."""
    mantissa, exponent = int(rate), 16383 + 63
    while mantissa < 1 << 63:
        mantissa <<= 1
        exponent -= 1
    return struct.pack(">HQ", exponent, mantissa)


def id3v2(body_size: int, version=4, footer=False, body=b"") -> bytes:
    """An ID3v2 tag: "ID3", version, flags, a size of four 7-bit bytes, `body` filled up with zeros to
    `body_size`."""
    size = bytes(body_size >> shift & 0x7F for shift in (21, 14, 7, 0))
    fields = bytes([version, 0, 0x10 if footer else 0]) + size
    return b"ID3" + fields + body.ljust(body_size, b"\0") + (b"3DI" + fields if footer else b"")


def id3v2_picture(picture_size: int) -> bytes:
    """An ID3v2.3 tag with a JPEG cover of about `picture_size` bytes."""
    picture = b"\xFF\xD8\xFF\xE0\0\x10JFIF\0" + bytes(range(1, 250)) * (picture_size // 249) + b"\xFF\xD9"
    frame = b"\0image/jpeg\0\3\0" + picture
    return id3v2(len(frame) + 10, 3, body=b"APIC" + struct.pack(">I", len(frame)) + b"\0\0" + frame)


def id3v1(title=b"title") -> bytes:
    """The 128 bytes at the end of a file: "TAG", title, artist, album, year, comment, genre."""
    return b"TAG" + title.ljust(30, b"\0") + b"\0" * 94 + b"\xFF"


def apev2(items=((b"Title", b"title"),), header=True) -> bytes:
    """An APEv2 tag: header, items (size, flags, key, 0, value), footer; both begin with "APETAGEX"."""
    body = b"".join(struct.pack("<II", len(value), 0) + key + b"\0" + value for key, value in items)

    def end(flags):
        return b"APETAGEX" + struct.pack("<IIII8x", 2000, len(body) + 32, len(items), flags)

    return (end(0xA0000000) if header else b"") + body + end(0x80000000 if header else 0)
