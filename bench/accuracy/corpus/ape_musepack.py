"""Monkey's Audio and Musepack SV7, by hand, as frames of digital silence; Musepack SV8 by its encoder.

Monkey's Audio 3.99, little-endian: descriptor "MAC ", u16 version, u16 0, u32 descriptor bytes 52, u32 header
bytes 24, u32 seek table bytes, u32 WAV header bytes, u32 + u32 frame data bytes, u32 WAV tail bytes, 16 bytes
MD5; header: u16 level, u16 flags, u32 samples a frame, u32 samples in the last frame, u32 frames, u16 bits,
u16 channels, u32 rate; the seek table. Up to 3.97 one header: "MAC ", u16 version, u16 level, u16 flags, u16
channels, u32 rate, u32 WAV header bytes, u32 WAV tail bytes, u32 frames, u32 samples in the last frame. A
frame is a u32 checksum whose top bit announces a u32 of flags (3: all channels silent); files are read in
swapped 32-bit words.

Musepack SV7: "MP+", u8 7, u32 frames, then 32-bit words: level and profile fields, gain and peak, 1 bit
gapless, 11 bits samples in the last frame; frames of 20 bits length and their bits, all stored in swapped
32-bit words.
"""

import struct

from .layout import apev2, id3v2
from .shelf import Shelf, built, source
from .tools import call

_SILENT_FRAME = struct.pack("<II", 0x80000000, 3) + bytes(8)


def make(shelf: Shelf):
    _ape(shelf)
    _musepack_seven(shelf)
    _musepack_eight(shelf)


def ape(samples, rate=44100, channels=2, bits=16, frame=73728 * 4) -> bytes:
    """Version 3.99 with `samples` of silence."""
    frames = -(-samples // frame)
    last = samples - (frames - 1) * frame
    head = 52 + 24 + 4 * frames
    table = struct.pack(f"<{frames}I", *(head + index * len(_SILENT_FRAME) for index in range(frames)))
    data = _SILENT_FRAME * frames
    descriptor = struct.pack("<4sHHIIIIIII16x", b"MAC ", 3990, 0, 52, 24, len(table), 0, len(data), 0, 0)
    return (
        descriptor
        + struct.pack("<HHIIIHHI", 2000, 0x20, frame, last, frames, bits, channels, rate)
        + table
        + data
    )


def ape_old(samples, version=3970, rate=44100, channels=2, frame=73728 * 4) -> bytes:
    """Versions up to 3.97: one header, a WAV header stored in it, then the seek table."""
    frames = -(-samples // frame)
    last = samples - (frames - 1) * frame
    wave = bytes(44)
    head = 32 + 4 + len(wave) + 4 * frames
    table = struct.pack(f"<{frames}I", *(head + index * len(_SILENT_FRAME) for index in range(frames)))
    fields = struct.pack(
        "<4sHHHHIIIII", b"MAC ", version, 2000, 0x10, channels, rate, len(wave), 0, frames, last
    )
    return fields + struct.pack("<I", frames) + wave + table + _SILENT_FRAME * frames


def _ape(shelf):
    five = round(5.3 * 44100)
    for name, note, seconds, content in (
        ("ape/v399.ape", "3.99, one frame", 5.3, ape(five)),
        ("ape/frames.ape", "3.99, many frames", 61.7, ape(round(61.7 * 44100))),
        ("ape/mono.ape", "3.99, mono", 7.1, ape(round(7.1 * 44100), channels=1)),
        ("ape/deep.ape", "3.99, 24 bit, 96 kHz", 4.4, ape(round(4.4 * 96000), 96000, 2, 24)),
        ("ape/tenth.ape", "3.99, 0.1 s", 0.1, ape(4410)),
        ("ape/hour.ape", "3.99, one hour", 3600.0, ape(3600 * 8000, 8000, 1)),
        ("ape/tagged.ape", "3.99, APEv2 at the end", 5.3, ape(five) + apev2()),
        ("ape/id3v2.ape", "3.99, ID3v2 before", 5.3, id3v2(2000) + ape(five)),
        ("ape/old.ape", "3.97, the old header", 61.7, ape_old(round(61.7 * 44100))),
        ("ape/older.ape", "3.95, the old header", 5.3, ape_old(five, 3950)),
    ):
        shelf.put(name, note, content, built(seconds, "samples in the header", "ffmpeg"))


def swapped(bits: str) -> bytes:
    """A string of bits as the 32-bit little-endian words of SV7, filled up with zeros."""
    bits = bits.ljust(-(-len(bits) // 32) * 32, "0")
    return b"".join(struct.pack("<I", int(bits[at:at + 32], 2)) for at in range(0, len(bits), 32))


def musepack_seven(frames, last=1152, gapless=True, rate_index=0) -> bytes:
    """SV7 with `frames` silent frames, the last one of `last` samples."""
    fields = f"{0:01b}{0:01b}{1:06b}{10:04b}{0:02b}{rate_index:02b}{0:016b}" + f"{0:016b}{0:016b}" * 2
    fields += f"{int(gapless):01b}{last:011b}{0:020b}" + f"{115:08b}"
    silent = f"{0:04b}{0:04b}" + "1" + "1"
    body = f"{len(silent):020b}{silent}" * frames + f"{last:011b}"
    return b"MP+\x07" + struct.pack("<I", frames) + swapped(fields + body)


def _musepack_seven(shelf):
    for name, note, frames, last, gapless, rate in (
        ("mpc/sv7.mpc", "SV7, gapless", 200, 500, True, 44100),
        ("mpc/sv7-48.mpc", "SV7, 48 kHz", 250, 600, True, 48000),
        ("mpc/sv7-gaps.mpc", "SV7, no true gapless", 300, 0, False, 44100),
    ):
        index = {44100: 0, 48000: 1}[rate]
        length = (frames * 1152 - (1152 - last if gapless else 576)) / rate
        shelf.put(
            name,
            note,
            musepack_seven(frames, last, gapless, index),
            built(length, "frames of 1152 samples", "mpcdec"),
        )
    tagged = id3v2(1000) + musepack_seven(200, 500) + apev2()
    shelf.put(
        "mpc/sv7-tagged.mpc",
        "SV7, ID3v2 before, APEv2 at the end",
        tagged,
        built((200 * 1152 - 652) / 44100, "frames of 1152 samples"),
    )


def _musepack_eight(shelf):
    for name, tone, options, seconds, note in (
        ("sv8", shelf.tone(), "", 5.3, "SV8"),
        ("sv8-thumb", shelf.tone(), "--thumb", 5.3, "SV8, thumb quality"),
        ("sv8-48", shelf.tone(5.3, 48000), "--insane", 5.3, "SV8, 48 kHz"),
        ("sv8-32", shelf.tone(33.3, 32000), "", 33.3, "SV8, 32 kHz"),
        ("tenth", shelf.tone(0.1), "", 0.1, "SV8, 0.1 s"),
    ):
        call("mpcenc", "--silent --overwrite", options, tone, shelf.path(f"mpc/{name}.mpc"))
        shelf.add(f"mpc/{name}.mpc", note, source(seconds, "mpcdec", 0.002 if seconds < 1 else 0.05))
    call("mpc2sv8", shelf.path("mpc/sv7.mpc"), _fresh(shelf.path("mpc/from-sv7.mpc")))
    shelf.add(
        "mpc/from-sv7.mpc",
        "SV8 made from SV7",
        built((200 * 1152 - 652) / 44100, "as the SV7 file", "mpcdec"),
    )


def _fresh(path):
    path.unlink(missing_ok=True)
    return path
