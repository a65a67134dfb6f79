"""Creative Voice and Sound Designer II files, by encoders and by hand.

VOC: "Creative Voice File", 0x1A, u16 header size 26, u16 version, u16 check; blocks of u8 type and u24 size.
Type 1: u8 divisor (rate = 1,000,000 / (256 - divisor)), u8 codec, samples; 2: more samples; 3: silence: u16
samples - 1, u8 divisor; 4: marker; 5: text; 8: u16 divisor, codec, channels - 1 for the type 1 after it; 9:
u32 rate, u8 bits, u8 channels, u16 codec, 4 reserved, samples; 0: end.

SD2: bare big-endian samples; rate, bytes a sample and channels are strings of the resource fork, which
travels as `._name` beside the file, bare or inside an AppleDouble file (RFC 1740: magic 0x00051607, version,
16 filler bytes, u16 entries of u32 id, u32 offset, u32 length; id 2 is the resource fork).
"""

import struct

from . import native
from .shelf import Shelf, built, source
from .tools import encode, pcm_of

_HEAD = b"Creative Voice File\x1A" + struct.pack("<HHH", 26, 0x010A, 0x1129)
_RATE, _DIVISOR = 8000, 256 - 125
_END = b"\0"


def make(shelf: Shelf):
    narrow, stereo = shelf.tone(5.3, 8000, 1), shelf.tone()
    for name, codec, tone, options in (
        ("voc/u8.voc", "pcm_u8", narrow, ""),
        ("voc/s16.voc", "pcm_s16le", stereo, ""),
        ("voc/mulaw.voc", "pcm_mulaw", narrow, ""),
        ("voc/alaw.voc", "pcm_alaw", narrow, ""),
    ):
        encode(tone, shelf.path(name), "-c:a", codec, options)
        shelf.add(name, f"{codec} in VOC", source(5.3))
    native.sndfile_write(narrow, shelf.path("voc/sndfile.voc"), native.VOC | native.U8)
    shelf.add("voc/sndfile.voc", "by libsndfile", source(5.3, "libsndfile"))
    _blocks(shelf)
    _sound_designer(shelf)


def block(kind: int, body: bytes) -> bytes:
    return bytes([kind]) + struct.pack("<I", len(body))[:3] + body


def sound(samples: bytes, codec=0) -> bytes:
    return block(1, bytes([_DIVISOR, codec]) + samples)


def silence(samples: int) -> bytes:
    return block(3, struct.pack("<HB", samples - 1, _DIVISOR))


def _blocks(shelf):
    second = pcm_of(shelf.tone(1, _RATE, 1, 8))
    nine = struct.pack("<IBBH4x", 44100, 16, 2, 4)
    why = "blocks added up"
    rows = (
        (
            "voc/silence.voc",
            "silence blocks between sounds",
            9.0,
            sound(second) + silence(2 * _RATE) + sound(second) + silence(4 * _RATE) + sound(second),
        ),
        ("voc/silence-first.voc", "a silence block first", 5.0, silence(4 * _RATE) + sound(second)),
        ("voc/continued.voc", "continuation blocks", 4.0, sound(second) + block(2, second) * 3),
        (
            "voc/text.voc",
            "text and marker blocks",
            2.0,
            block(5, b"take one\0") + sound(second) + block(4, b"\1\0") + block(2, second),
        ),
        (
            "voc/extended.voc",
            "block 8: stereo",
            2.0,
            block(8, struct.pack("<HBB", 65536 - 256_000_000 // (_RATE * 2), 0, 1)) + sound(second * 4),
        ),
        ("voc/type-nine.voc", "block 9: 16 bit stereo", 2.0, block(9, nine + bytes(4 * 44100 * 2))),
    )
    for name, note, seconds, blocks in rows:
        shelf.put(
            name, note, _HEAD + blocks + _END, built(seconds, why, None if "silence" in name else "ffmpeg")
        )
    shelf.put("voc/no-end.voc", "no terminator", _HEAD + sound(second * 3), built(3.0, why, "ffmpeg"))


def _sound_designer(shelf):
    for name, tone, kind, note in (
        ("sd2/s16.sd2", shelf.tone(), native.S16, "16 bit stereo, bare fork beside it"),
        ("sd2/s24.sd2", shelf.tone(3.7, 48000, 1), native.S24, "24 bit mono, bare fork beside it"),
        ("sd2/s8.sd2", shelf.tone(5.3, 22050, 1), native.S8, "8 bit, bare fork beside it"),
    ):
        path = native.sndfile_write(tone, shelf.path(name), native.SD2 | kind)
        shelf.add(name, note, source(3.7 if "24" in name else 5.3, "libsndfile"))
    fork = path.with_name("._s16.sd2").read_bytes()
    entries = struct.pack(">III", 9, 50, 32) + struct.pack(">III", 2, 82, len(fork))
    double = struct.pack(">II16sH", 0x00051607, 0x00020000, bytes(16), 2) + entries + bytes(32) + fork
    shelf.path("sd2/apple-double.sd2").with_name("._apple-double.sd2").write_bytes(double)
    shelf.put(
        "sd2/apple-double.sd2",
        "16 bit stereo, AppleDouble fork beside it",
        path.with_name("s16.sd2").read_bytes(),
        source(5.3, "libsndfile"),
    )
