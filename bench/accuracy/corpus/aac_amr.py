"""AAC in ADTS and LOAS streams, and AMR, by encoders and by hand.

ADTS (ISO/IEC 13818-7), 7 bytes: 12 bits sync, version, 2 layer, 1 no checksum, 2 profile, 4 rate index,
private, 3 channels, 4 flags, 13 frame length, 11 fullness, 2 blocks - 1; each block is 1,024 samples. With
checksum, 2 bytes more (and with several blocks 2 bytes of position for each but the first).

AMR (RFC 4867): "#!AMR\\n" or "#!AMR-WB\\n", then frames of 20 ms; bits 3 to 6 of the first byte are the frame
type, which gives the size; type 15 is a frame without data.
"""

import random

from . import native
from .layout import apev2, id3v1, id3v2
from .shelf import Shelf, built, decoded
from .tools import encode, ffmpeg

_RATES = (96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350)
_HEADER = 7


def make(shelf: Shelf):
    _adts(shelf)
    _adts_made(shelf)
    _high_efficiency(shelf)
    _narrow(shelf)
    _wide(shelf)


def raw_blocks(stream: bytes) -> list[bytes]:
    """The AAC blocks of an ADTS stream without checksums."""
    blocks, at = [], 0
    while at < len(stream):
        length = (stream[at + 3] & 3) << 11 | stream[at + 4] << 3 | stream[at + 5] >> 5
        blocks.append(stream[at + _HEADER:at + length])
        at += length
    return blocks


def adts_frame(blocks, rate, channels, checked=False) -> bytes:
    """One ADTS frame of up to four blocks."""
    between = b"\0\0" if checked and len(blocks) > 1 else b""
    body = b"".join(block + between for block in blocks)
    head = 2 * len(blocks) if checked else 0
    length = _HEADER + head + len(body)
    word = (
        0xFFF << 44
        | (0 if checked else 1) << 40
        | 1 << 38
        | _RATES.index(rate) << 34
        | channels << 30
        | length << 13
        | 0x7FF << 2
        | len(blocks) - 1
    )
    return word.to_bytes(_HEADER, "big") + bytes(head) + body


def _adts(shelf):
    for name, rate, channels, bits, note in (
        ("aac/stereo.aac", 44100, 2, "128k", "44.1 kHz"),
        ("adts/stereo.adts", 48000, 2, "96k", "48 kHz"),
        ("aac/mono-8k.aac", 8000, 1, "16k", "8 kHz mono"),
        ("aac/high.aac", 96000, 2, "256k", "96 kHz"),
        ("aac/six.aac", 48000, 6, "384k", "5.1"),
        ("adts/mono-22k.adts", 22050, 1, "32k", "22,050 Hz mono"),
    ):
        encode(shelf.tone(5.3, rate, channels), shelf.path(name), "-c:a aac -b:a", bits, "-f adts")
        shelf.add(name, f"AAC LC, {note}", decoded())
    for name, note, tone, truth in (
        ("aac/speech.aac", "loud and silent parts", shelf.tone(61, 44100, 1, kind="speech"), decoded()),
        ("aac/tenth.aac", "0.1 s", shelf.tone(0.1, 48000), decoded()),
    ):
        encode(tone, shelf.path(name), "-c:a aac -f adts")
        shelf.add(name, note, truth)
    minute = ffmpeg("-i", shelf.tone(60, 8000, 1, kind="silence"), "-c:a aac -f adts -")
    shelf.put("adts/hour.adts", "one hour of silence", minute * 60, decoded())
    quiet = shelf.root / "sources" / "quiet-first.wav"
    ffmpeg(
        "-i",
        shelf.tone(60, 44100, 1, kind="silence"),
        "-i",
        shelf.tone(30, 44100, 1),
        "-filter_complex concat=n=2:v=0:a=1",
        quiet,
    )
    encode(quiet, shelf.path("aac/quiet-first.aac"), "-c:a aac -q:a 2 -f adts")
    shelf.add("aac/quiet-first.aac", "a minute of silence, then noise", decoded())
    shelf.hard("aac/quiet-first.aac", reports="MediaInfo #725")
    encode(shelf.tone(), shelf.path("aac/loas.aac"), "-c:a aac -f latm")
    shelf.add("aac/loas.aac", "LOAS/LATM instead of ADTS", decoded())
    encode(shelf.tone(), shelf.path("adts/id3.adts"), "-c:a aac -f adts -write_id3v2 1 -metadata title=t")
    shelf.add("adts/id3.adts", "ID3v2 by ffmpeg", decoded())


def _adts_made(shelf):
    stream = ffmpeg("-i", shelf.tone(), "-c:a aac -f adts -")
    blocks = raw_blocks(stream)
    count = len(blocks)
    frames = [adts_frame([block], 44100, 2) for block in blocks]
    first, second = b"".join(frames[: count // 2]), b"".join(frames[count // 2:])
    truth = built(count * 1024 / 44100, "blocks of 1024 samples", "ffmpeg", 0.1)
    noise = bytes(byte if byte != 0xFF else 0 for byte in random.Random(2).randbytes(4000))
    for name, note, content in (
        ("aac/id3v2-big.aac", "300 KB ID3v2 before", id3v2(300_000) + stream),
        ("aac/id3v1.aac", "ID3v1 at the end", stream + id3v1()),
        ("aac/apev2.aac", "APEv2 at the end", stream + apev2()),
        (
            "adts/all-tags.adts",
            "ID3v2 twice, APEv2, ID3v1",
            id3v2(300) + id3v2(20) + stream + apev2() + id3v1(),
        ),
        ("aac/junk-before.aac", "4 KB of junk before", noise + stream),
        ("aac/junk-between.aac", "4 KB of junk between frames", first + noise + second),
        ("aac/zeros-behind.aac", "50 KB of zeros at the end", stream + bytes(50_000)),
        ("aac/part-frame.aac", "the last frame cut off", stream + frames[3][:100]),
        (
            "adts/checksum.adts",
            "with (empty) checksums",
            b"".join(adts_frame([block], 44100, 2, checked=True) for block in blocks),
        ),
    ):
        shelf.put(name, note, content, truth)
    shelf.put(
        "adts/joined.adts",
        "two files joined",
        stream + id3v2(60) + stream,
        built(2 * count * 1024 / 44100, "blocks of 1024 samples", "ffmpeg", 0.1),
    )
    for number in (2, 3, 4):
        groups = [blocks[at:at + number] for at in range(0, count, number)]
        shelf.put(
            f"aac/blocks-{number}.aac",
            f"{number} blocks a frame",
            b"".join(adts_frame(group, 44100, 2) for group in groups),
            built(count * 1024 / 44100, "blocks of 1024 samples; ffmpeg decodes one block a frame"),
        )
    shelf.put(
        "adts/blocks-checked.adts",
        "4 blocks a frame, checksums",
        b"".join(adts_frame(blocks[at:at + 4], 44100, 2, checked=True) for at in range(0, count, 4)),
        built(count * 1024 / 44100, "blocks of 1024 samples; ffmpeg decodes one block a frame"),
    )


def he_block() -> bytes:
    """A silent mono block with spectral band replication (ISO/IEC 14496-3): a channel element without bands,
    then a fill element of type 13 with a replication header, one low-resolution envelope and zeros for its
    steps. Nothing in the ADTS header tells of it: the decoder puts out 2,048 samples at twice the rate."""
    header = "1" + "0" + f"{5:04b}{9:04b}{0:03b}" + "00" + "00"
    grid = "0" + "00" + "00" + "0" + "0" + "0"
    channel = "000" + "0000" + f"{100:08b}" + "0" + "00" + "0" + f"{0:06b}" + "0000"
    bits = channel + "110" + f"{14:04b}" + ("1101" + header + grid).ljust(8 * 14, "0") + "111"
    bits = bits.ljust(-(-len(bits) // 8) * 8, "0")
    return int(bits, 2).to_bytes(len(bits) // 8, "big")


def _high_efficiency(shelf):
    for rate, frames in ((22050, 300), (16000, 200)):
        stream = b"".join(adts_frame([he_block()], rate, 1) for _ in range(frames))
        shelf.put(
            f"aac/he-{rate}.aac",
            f"HE-AAC, implicit, {rate} Hz in the header",
            stream,
            built(frames * 1024 / rate, "blocks of 1024 samples", "ffmpeg"),
        )
        encode(shelf.path(f"aac/he-{rate}.aac"), shelf.path(f"m4a/he-{rate}.m4a"), "-c copy")
        shelf.add(
            f"m4a/he-{rate}.m4a",
            f"HE-AAC, implicit, {rate} Hz in the header",
            built(frames * 1024 / rate, "blocks of 1024 samples", "ffmpeg"),
        )


def _narrow(shelf):
    head = b"#!AMR\n"
    tone, speech = shelf.tone(5.3, 8000, 1), shelf.tone(10, 8000, 1, kind="speech")
    for mode, kilobits in enumerate(("4.75", "5.15", "5.9", "6.7", "7.4", "7.95", "10.2", "12.2")):
        if mode in (0, 3, 5, 7):
            frames = native.amr_narrow_frames(tone, mode)
            shelf.put(
                f"amr/nb-{mode}.amr",
                f"AMR-NB, {kilobits} kbit/s",
                head + b"".join(frames),
                built(len(frames) * 0.02, "frames of 20 ms", "sox amr-nb"),
            )
    frames = native.amr_narrow_frames(speech, 7, discontinuous=True)
    shelf.put(
        "amr/nb-dtx.amr",
        "AMR-NB with DTX",
        head + b"".join(frames),
        built(10.0, "frames of 20 ms", "sox amr-nb"),
    )
    mixed = [
        frame
        for pair in zip(native.amr_narrow_frames(tone, 0), native.amr_narrow_frames(tone, 7))
        for frame in pair
    ]
    shelf.put(
        "amr/nb-modes.amr",
        "AMR-NB, the rate changes every frame",
        head + b"".join(mixed),
        built(len(mixed) * 0.02, "frames of 20 ms", "sox amr-nb"),
    )
    shelf.put(
        "amr/nb-no-data.amr",
        "AMR-NB, runs of frames without data",
        head + b"".join(frames[:40]) + b"\x7c" * 400,
        built(440 * 0.02, "frames of 20 ms", "sox amr-nb"),
    )
    minute = native.amr_narrow_frames(shelf.tone(60, 8000, 1, kind="silence"), 0, discontinuous=True)
    shelf.put(
        "amr/hour.amr",
        "AMR-NB, one hour of silence with DTX",
        head + b"".join(minute) * 60,
        built(60 * len(minute) * 0.02, "frames of 20 ms", "sox amr-nb"),
    )
    shelf.put(
        "amr/tenth.amr",
        "AMR-NB, 0.1 s",
        head + b"".join(frames[:5]),
        built(0.1, "frames of 20 ms", "sox amr-nb"),
    )
    shelf.put(
        "amr/nb-part.amr",
        "AMR-NB, the last frame cut off",
        head + b"".join(frames[:200]) + b"\x3c" + bytes(9),
        built(4.0, "frames of 20 ms", "sox amr-nb"),
    )


def _wide(shelf):
    head = b"#!AMR-WB\n"
    tone, speech = shelf.tone(5.3, 16000, 1), shelf.tone(10, 16000, 1, kind="speech")
    for mode, kilobits in ((0, "6.6"), (4, "15.85"), (8, "23.85")):
        frames = native.amr_wide_frames(tone, mode)
        shelf.put(
            f"amr/wb-{mode}.amr",
            f"AMR-WB, {kilobits} kbit/s",
            head + b"".join(frames),
            built(len(frames) * 0.02, "frames of 20 ms", "sox amr-wb"),
        )
    frames = native.amr_wide_frames(speech, 2, discontinuous=True)
    shelf.put(
        "amr/wb-dtx.amr",
        "AMR-WB with DTX",
        head + b"".join(frames),
        built(10.0, "frames of 20 ms", "sox amr-wb"),
    )
