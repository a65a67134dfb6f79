"""AIFF, AIFF-C and Sun audio, by encoders and by hand.

AIFF 1.3: "FORM", u32 size, "AIFF" or "AIFC", chunks; COMM holds i16 channels, u32 sample frames, i16 bits,
80-bit rate (AIFF-C: then a compression type and name), SSND holds u32 offset, u32 block size, the samples.

Sun audio: ".snd", u32 data offset, u32 data size (0xFFFFFFFF: unknown), u32 encoding, u32 rate, u32 channels.
"""

import struct

from . import native
from .layout import extended, iff, id3v2
from .shelf import Shelf, built, source
from .tools import encode, ffmpeg, pcm_of, sox

_UNKNOWN = 0xFFFFFFFF


def make(shelf: Shelf):
    _aiff(shelf)
    _aiff_made(shelf)
    _sun(shelf)
    _sun_made(shelf)


def _aiff(shelf):
    stereo = shelf.tone()
    for name, codec, note in (
        ("aif/s16.aif", "pcm_s16be", "16 bit"),
        ("aiff/s24.aiff", "pcm_s24be", "24 bit"),
        ("aiff/s8.aiff", "pcm_s8", "8 bit"),
        ("aiff/s32.aiff", "pcm_s32be", "32 bit"),
        ("aifc/fl32.aifc", "pcm_f32be", "AIFF-C, float"),
        ("aifc/fl64.aifc", "pcm_f64be", "AIFF-C, double"),
        ("aifc/sowt.aifc", "pcm_s16le", "AIFF-C, little-endian"),
        ("aifc/ulaw.aifc", "pcm_mulaw", "AIFF-C, mu-law"),
        ("aifc/alaw.aifc", "pcm_alaw", "AIFF-C, A-law"),
        ("aifc/ima4.aifc", "adpcm_ima_qt", "AIFF-C, IMA 4:1"),
        ("aif/float.aif", "pcm_f32be", "AIFF-C named .aif"),
    ):
        encode(stereo, shelf.path(name), "-c:a", codec, "-f aiff")
        shelf.add(name, note, source(5.3))
    encode(shelf.tone(0.1), shelf.path("aiff/tenth.aiff"))
    shelf.add("aiff/tenth.aiff", "0.1 s", source(0.1, slack=0.001))
    encode(shelf.tone(3.1, 48000, 6), shelf.path("aif/six.aif"), "-c:a pcm_s24be")
    shelf.add("aif/six.aif", "5.1, 24 bit", source(3.1))
    encode(shelf.tone(3.7, 96000), shelf.path("aiff/tagged.aiff"), "-metadata title=t -write_id3v2 1")
    shelf.add("aiff/tagged.aiff", "96 kHz with an ID3 chunk", source(3.7))
    shelf.put(
        "aiff/piped-ffmpeg.aiff",
        "piped: sizes 0",
        ffmpeg("-i", stereo, "-f aiff -"),
        built(5.3, "bytes after the header"),
    )
    shelf.put("aif/piped-sox.aif", "piped: sizes near 2^31", sox(stereo, "-t aiff -"), source(5.3))
    shelf.put(
        "aifc/piped.aifc",
        "AIFF-C piped, float",
        ffmpeg("-i", stereo, "-c:a pcm_f32be -f aiff -"),
        built(5.3, "bytes after the header"),
    )
    native.sndfile_write(
        shelf.tone(5.3, 44100, 1), shelf.path("aifc/dwvw.aifc"), native.AIFF | native.DWVW_16
    )
    shelf.add("aifc/dwvw.aifc", "AIFF-C, DWVW", source(5.3, "libsndfile"))
    native.sndfile_write(shelf.tone(5.3, 8000, 1), shelf.path("aifc/gsm.aifc"), native.AIFF | native.GSM610)
    shelf.add("aifc/gsm.aifc", "AIFF-C, GSM 6.10", source(5.3, "libsndfile"))


def comm(frames, rate=44100, channels=2, bits=16) -> bytes:
    return iff(b"COMM", struct.pack(">hIh", channels, frames, bits) + extended(rate))


def form(*chunks: bytes) -> bytes:
    return iff(b"FORM", b"AIFF" + b"".join(chunks))


def _aiff_made(shelf):
    samples = bytes(4 * 44100 * 3)
    sound = iff(b"SSND", bytes(8) + samples)
    why = "132,300 sample frames"
    for name, note, content in (
        ("aiff/comm-behind.aiff", "COMM after SSND", form(sound, comm(132300))),
        ("aiff/name-odd.aiff", "NAME of odd size first", form(iff(b"NAME", b"odd"), comm(132300), sound)),
        (
            "aiff/offset.aiff",
            "SSND with an offset of 512",
            form(comm(132300), iff(b"SSND", struct.pack(">II", 512, 0) + bytes(512) + samples)),
        ),
        (
            "aif/big-id3.aif",
            "200 KB ID3 chunk before the sound",
            form(comm(132300), iff(b"ID3 ", id3v2(200_000)), sound),
        ),
    ):
        shelf.put(name, note, content, built(3.0, why, "ffmpeg"))
    frames = 3600 * 8000
    path = shelf.path("aiff/hour.aiff")
    head = form(comm(frames, 8000, 1), b"")
    path.write_bytes(
        b"FORM"
        + struct.pack(">I", len(head) + 8 + 2 * frames)
        + head[8:]
        + b"SSND"
        + struct.pack(">III", 8 + 2 * frames, 0, 0)
    )
    with path.open("r+b") as file:
        file.truncate(path.stat().st_size + 2 * frames)
    shelf.add("aiff/hour.aiff", "one hour of silence", built(3600, "sample frames", "ffmpeg"))


def _sun(shelf):
    stereo, narrow = shelf.tone(), shelf.tone(5.3, 8000, 1)
    for name, codec, tone in (
        ("au/s16.au", "pcm_s16be", stereo),
        ("au/mulaw.au", "pcm_mulaw", narrow),
        ("au/alaw.au", "pcm_alaw", narrow),
        ("au/s24.au", "pcm_s24be", stereo),
        ("au/float.au", "pcm_f32be", stereo),
        ("snd/mulaw.snd", "pcm_mulaw", narrow),
        ("snd/s16.snd", "pcm_s16be", stereo),
        ("snd/double.snd", "pcm_f64be", stereo),
    ):
        encode(tone, shelf.path(name), "-c:a", codec, "-f au")
        shelf.add(name, codec, source(5.3))
    shelf.put("au/piped.au", "piped: size 0xFFFFFFFF", ffmpeg("-i", stereo, "-f au -"), source(5.3))
    shelf.put("snd/piped-sox.snd", "piped by sox", sox(stereo, "-t au -"), source(5.3))
    sox(stereo, "-t au -L", shelf.path("snd/little.snd"))
    shelf.add("snd/little.snd", 'little-endian: "dns."', source(5.3, "sox"))
    for name, codec, note in (
        ("au/g721.au", native.G721_32, "G.721, 32 kbit/s"),
        ("au/g723.au", native.G723_24, "G.723, 24 kbit/s"),
    ):
        native.sndfile_write(narrow, shelf.path(name), native.AU | codec)
        shelf.add(name, note, source(5.3, "libsndfile"))
    encode(shelf.tone(0.1), shelf.path("au/tenth.au"))
    shelf.add("au/tenth.au", "0.1 s", source(0.1, slack=0.001))


def _sun_made(shelf):
    samples = pcm_of(shelf.tone(5.3, 22050, 1))
    for name, size, offset, note in (
        ("au/annotation.au", len(samples), 4096, "4 KB annotation before the samples"),
        ("snd/unknown.snd", _UNKNOWN, 28, "size 0xFFFFFFFF"),
        ("au/size-zero.au", 0, 24, "size 0: never filled in"),
    ):
        header = struct.pack(">4sIIIII", b".snd", offset, size, 3, 22050, 1)
        shelf.put(
            name,
            note,
            header.ljust(offset, b"\0") + samples,
            built(5.3, "bytes after the header", "ffmpeg" if size else None),
        )
