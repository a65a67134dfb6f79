"""Windows Media files and RealAudio, by ffmpeg; old RealAudio headers by hand.

Old RealAudio (version 3): ".ra\\xfd", u16 3, u16 bytes after this field, 10 bytes, u32 data size, then
title, author, copyright and comment as u8 length and text, u8 0, u8 length and codec name "lpcJ". Frames of
20 bytes, 160 samples, 8,000 Hz.

ASF File Properties object: a 16-byte GUID, u64 size, ..., at 64 u64 play duration, at 72 u64 send duration
(100 ns), at 80 u64 preroll (ms), at 88 u32 flags (1: broadcast).
"""

import struct

from .shelf import Shelf, built, decoded, source
from .tools import encode, ffmpeg

_FILE_PROPERTIES = bytes.fromhex("A1DCAB8C47A9CF118EE400C00C205365")


def make(shelf: Shelf):
    _asf(shelf)
    _real(shelf)


def _asf(shelf):
    stereo = shelf.tone()
    for name, codec, rate, channels, options, note in (
        ("v1", "wmav1", 44100, 2, "", "WMA 1"),
        ("v2", "wmav2", 44100, 2, "", "WMA 2"),
        ("low", "wmav2", 8000, 1, "-b:a 24k", "WMA 2, 8 kHz"),
        ("high", "wmav2", 48000, 2, "-b:a 256k", "WMA 2, 256 kbit/s"),
        ("mid", "wmav2", 22050, 2, "-b:a 32k", "WMA 2, 22,050 Hz"),
        ("pcm", "pcm_s16le", 44100, 2, "", "PCM in ASF"),
    ):
        encode(
            shelf.tone(9.3, rate, channels), shelf.path(f"wma/{name}.wma"), "-c:a", codec, options, "-f asf"
        )
        shelf.add(f"wma/{name}.wma", note, source(9.3, slack=0.3))
    encode(stereo, shelf.path("wma/tagged.wma"), "-c:a wmav2 -metadata", "title=" + "t" * 5000)
    shelf.add("wma/tagged.wma", "WMA 2, long tags", source(5.3, slack=0.1))
    encode(shelf.tone(3600, 8000, 1, kind="silence"), shelf.path("wma/hour.wma"), "-c:a wmav2 -b:a 24k")
    shelf.add("wma/hour.wma", "one hour of silence", source(3600.0, slack=0.3))
    encode(stereo, shelf.path("wma/mp3.wma"), "-c:a libmp3lame -f asf")
    shelf.add("wma/mp3.wma", "MP3 in ASF", decoded())
    live = bytearray(shelf.path("wma/v2.wma").read_bytes())
    at = live.index(_FILE_PROPERTIES)
    live[at + 64:at + 80] = bytes(16)
    live[at + 88] |= 1
    shelf.put("wma/live.wma", "broadcast flag, play duration 0", bytes(live), source(9.3, slack=0.3))
    shelf.put(
        "wma/piped.wma",
        "piped: header never filled in",
        ffmpeg("-i", shelf.tone(13.3), "-c:a wmav2 -f asf -"),
        source(13.3, slack=0.1),
    )


def _real(shelf):
    narrow = shelf.tone(5.3, 8000, 1)
    for name, codec, tone, note in (
        ("lpc", "real_144", narrow, "RealAudio 14.4 in RealMedia"),
        ("ac3", "ac3", shelf.tone(5.3, 44100), "DNET in RealMedia"),
        ("aac", "aac", shelf.tone(5.3, 44100), "AAC in RealMedia"),
    ):
        encode(tone, shelf.path(f"ra/{name}.ra"), "-c:a", codec, "-f rm")
        shelf.add(f"ra/{name}.ra", note, decoded())
    frames = 500
    body = bytes(10) + struct.pack(">I", frames * 20) + b"\4name\2me\0\0" + b"\0" + b"\4lpcJ"
    head = b".ra\xFD" + struct.pack(">HH", 3, len(body)) + body
    payload = ffmpeg("-i", shelf.tone(10, 8000, 1), "-c:a real_144 -f data -map 0:a -")
    shelf.put(
        "ra/version-3.ra",
        "the old header, 14.4",
        head + payload[: frames * 20],
        built(frames * 160 / 8000, "frames of 20 ms", "ffmpeg"),
    )
    encode(shelf.tone(60, 8000, 1), shelf.path("ra/minute.ra"), "-c:a real_144 -f rm")
    shelf.add("ra/minute.ra", "RealAudio 14.4, a minute", decoded())
    shelf.put(
        "ra/piped.ra",
        "AAC in RealMedia, piped",
        ffmpeg("-i", shelf.tone(13.3), "-c:a aac -f rm -"),
        decoded(),
    )
