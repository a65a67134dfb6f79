"""Core Audio Format, by encoders and by hand.

Layout (Core Audio Format Specification 1.0): "caff", u16 version, u16 flags; chunks of a name and a signed
64-bit size. `desc`: double rate, format, flags, bytes a packet, frames a packet, channels, bits. `data`: u32
edit count, the samples; size -1: to the end of the file. `pakt`: i64 packets, i64 valid frames, i32 priming,
i32 remainder frames, then each packet's size as a number of 7-bit digits.
"""

import struct

from . import native
from .shelf import LYING, Shelf, built, source
from .tools import encode, ffmpeg, pcm_of


def make(shelf: Shelf):
    stereo = shelf.tone()
    for name, codec in (
        ("caf/s16.caf", "pcm_s16be"),
        ("caf/s24le.caf", "pcm_s24le"),
        ("caf/float.caf", "pcm_f32le"),
        ("caf/mulaw.caf", "pcm_mulaw"),
        ("caf/ima4.caf", "adpcm_ima_qt"),
        ("caf/alac.caf", "alac"),
        ("alac/in-caf.alac", "alac"),
        ("caf/flac.caf", "flac"),
    ):
        encode(stereo, shelf.path(name), "-c:a", codec, "-f caf")
        shelf.add(name, f"{codec} in CAF", source(5.3, slack=0.1))
    encode(stereo, shelf.path("caf/mp3.caf"), "-c:a libmp3lame -f caf")
    shelf.add("caf/mp3.caf", "MP3 in CAF with a packet table", source(5.3, slack=0.1))
    encode(shelf.tone(5.3, 48000), shelf.path("caf/opus.caf"), "-c:a libopus -f caf")
    shelf.add("caf/opus.caf", "Opus in CAF with a packet table", source(5.3, slack=0.1))
    native.sndfile_write(stereo, shelf.path("caf/sndfile-alac.caf"), native.CAF | native.ALAC_16)
    shelf.add("caf/sndfile-alac.caf", "ALAC in CAF by libsndfile", source(5.3, "libsndfile"))
    encode(shelf.tone(0.1), shelf.path("caf/tenth.caf"))
    shelf.add("caf/tenth.caf", "0.1 s", source(0.1, slack=0.001))
    _made(shelf)


def caf_chunk(name: bytes, body: bytes, size=None) -> bytes:
    return name + struct.pack(">q", len(body) if size is None else size) + body


def desc(rate, form, flags, octets, frames, channels, bits) -> bytes:
    return caf_chunk(b"desc", struct.pack(">d4sIIIII", rate, form, flags, octets, frames, channels, bits))


def _digits(number: int) -> bytes:
    out = [number & 0x7F]
    while number := number >> 7:
        out.append(number & 0x7F | 0x80)
    return bytes(reversed(out))


def _made(shelf):
    head = b"caff\0\1\0\0"
    pcm = desc(44100.0, b"lpcm", 2, 4, 1, 2, 16)
    samples = pcm_of(shelf.tone())
    data = b"\0\0\0\0" + samples
    shelf.put(
        "caf/unknown.caf",
        "data size -1",
        head + pcm + caf_chunk(b"data", data, -1),
        built(5.3, "bytes after the header", "ffmpeg"),
    )
    shelf.put(
        "caf/free-first.caf",
        "free and info chunks before the data",
        head
        + pcm
        + caf_chunk(b"free", bytes(5000))
        + caf_chunk(b"info", b"\0\0\0\0")
        + caf_chunk(b"data", data),
        built(5.3, "data size", "ffmpeg"),
    )
    shelf.put(
        "caf/chunks-behind.caf",
        "100 KB free chunk after the data",
        head + pcm + caf_chunk(b"data", data) + caf_chunk(b"free", bytes(100_000)),
        built(5.3, "data size", "ffmpeg"),
    )
    shelf.put(
        "caf/table-lies.caf",
        "a packet table of ten hours before 5.3 s",
        head
        + pcm
        + caf_chunk(b"pakt", struct.pack(">qqii", 36000 * 44100, 36000 * 44100, 0, 0))
        + caf_chunk(b"data", data),
        built(5.3, "data size"),
        LYING,
    )
    shelf.hard("caf/table-lies.caf", LYING)
    _aac(shelf, head)


def _aac(shelf, head):
    """AAC packets taken out of an ADTS stream, the packet table telling priming and remainder."""
    stream = ffmpeg("-i", shelf.tone(), "-c:a aac -f adts -")
    packets, at = [], 0
    while at < len(stream):
        length = (stream[at + 3] & 3) << 11 | stream[at + 4] << 3 | stream[at + 5] >> 5
        packets.append(stream[at + 7:at + length])
        at += length
    valid, priming = round(5.3 * 44100), 1024
    remainder = len(packets) * 1024 - priming - valid
    table = struct.pack(">qqii", len(packets), valid, priming, remainder) + b"".join(
        _digits(len(p)) for p in packets
    )
    cookie = bytes.fromhex(
        "0380808022" "000000" "0480808014" "4015" + "00" * 11 + "05808080021210" "068080800102"
    )
    kind = desc(44100.0, b"aac ", 0, 0, 1024, 2, 0) + caf_chunk(b"kuki", cookie)
    data, pakt = b"\0\0\0\0" + b"".join(packets), caf_chunk(b"pakt", table)
    truth = built(5.3, "valid frames in the packet table", "ffmpeg", slack=0.1)
    shelf.put(
        "caf/aac-first.caf",
        "AAC, packet table before the data",
        head + kind + pakt + caf_chunk(b"data", data),
        truth,
    )
    shelf.put(
        "caf/aac-behind.caf",
        "AAC, packet table after the data",
        head + kind + caf_chunk(b"data", data) + pakt,
        truth,
    )
