"""FLAC and WavPack, by their own encoders, with the tags and the unknown totals they meet in the wild, and
cut, joined or headed by what is not true.

FLAC (RFC 9639): "fLaC", metadata blocks of u8 type (0x80: the last), u24 size, content; STREAMINFO holds u16
smallest and largest block, u24 smallest and largest frame, 20 bits rate, 3 channels - 1, 5 bits - 1, 36
samples, 16 bytes MD5.
"""

import struct

from .layout import apev2, id3v1, id3v2, id3v2_picture
from .shelf import LYING, Shelf, built, decoded, source
from .tools import call, encode, ffmpeg, pcm_of, sox


def make(shelf: Shelf):
    _flac(shelf)
    _flac_tagged(shelf)
    _flac_cut(shelf.for_hard_cases())
    _flac_headed(shelf.for_hard_cases())
    _wavpack(shelf)


def _flac(shelf):
    stereo = shelf.tone()
    for name, tone, options, note in (
        ("plain", stereo, "", "16 bit"),
        ("fast", stereo, "-0 --no-padding", "level 0, no padding"),
        ("best", stereo, "-8", "level 8"),
        ("small-blocks", stereo, "-b 192", "blocks of 192 samples"),
        ("high", shelf.tone(3.7, 96000, 2, 24), "", "24 bit, 96 kHz"),
        ("highest", shelf.tone(1.7, 192000, 2, 24), "--lax", "24 bit, 192 kHz"),
        ("eight", shelf.tone(3.3, 8000, 1, 8), "", "8 bit, 8 kHz mono"),
        ("surround", shelf.tone(3.1, 48000, 6), "", "5.1"),
        ("tenth", shelf.tone(0.1), "", "0.1 s"),
        ("hour", shelf.tone(3600, 8000, 1, kind="silence"), "", "one hour of silence"),
    ):
        call("flac", "-s -f", options, "-o", shelf.path(f"flac/{name}.flac"), tone)
        seconds = {
            "high": 3.7,
            "highest": 1.7,
            "eight": 3.3,
            "surround": 3.1,
            "tenth": 0.1,
            "hour": 3600,
        }.get(name, 5.3)
        shelf.add(f"flac/{name}.flac", note, source(seconds, "flac", 0.001))
    raw = "--force-raw-format --endian=little --sign=signed --bps=16"
    for name, tone, rate, channels, seconds in (
        ("piped", stereo, 44100, 2, 5.3),
        ("piped-long", shelf.tone(33.3, 32000, 1), 32000, 1, 33.3),
    ):
        content = call(
            "flac", "-s -c", raw, f"--sample-rate={rate}", f"--channels={channels}", "-", stdin=pcm_of(tone)
        )
        shelf.put(
            f"flac/{name}.flac", f"piped: total samples 0, {seconds} s", content, source(seconds, "flac")
        )
    shelf.put(
        "flac/piped-ffmpeg.flac",
        "piped by ffmpeg: total samples 0",
        ffmpeg("-i", stereo, "-f flac -"),
        source(5.3, "flac"),
    )
    shelf.hard("flac/piped.flac")
    odd = shelf.root / "sources" / "variable.wav"
    sox(stereo, odd, "pad 0 0.7")
    encode(odd, shelf.path("flac/by-ffmpeg.flac"), "-compression_level 12")
    shelf.add("flac/by-ffmpeg.flac", "by ffmpeg, level 12", source(6.0, "flac"))


def _flac_tagged(shelf):
    plain = shelf.path("flac/plain.flac").read_bytes()
    for name, note, content in (
        ("id3v2-first", "ID3v2 with a 400 KB picture before", id3v2_picture(400_000) + plain),
        ("id3v1-behind", "ID3v1 at the end", plain + id3v1()),
        ("id3v2-twice", "two ID3v2 tags before", id3v2(3000) + id3v2(5000) + plain),
        ("zeros-behind", "100 KB of zeros at the end", plain + bytes(100_000)),
    ):
        shelf.put(f"flac/{name}.flac", note, content, built(5.3, "source", "ffmpeg", 0.1))
    call(
        "flac", "-s -f -T TITLE=t --picture", shelf.cover(), "-o", shelf.path("flac/cover.flac"), shelf.tone()
    )
    shelf.add("flac/cover.flac", "a picture of some hundred KB", source(5.3, "flac"))


def _flac_cut(shelf):
    """Cut out of another file without encoding: the frames keep their numbers, the header its total."""
    whole = shelf.root / "sources" / "whole.flac"
    call("flac -s -f -o", whole, shelf.tone(21.3))
    ffmpeg("-ss 8 -i", whole, "-c copy", shelf.path("flac/cut.flac", LYING))
    shelf.add("flac/cut.flac", "from second 8 on, without encoding", decoded(), LYING)
    parts = shelf.root / "sources" / "part-%d.flac"
    ffmpeg("-i", whole, "-c copy -f segment -segment_time 8", parts)
    for number, note in ((0, "the first 8 seconds of 21"), (1, "the next 8 seconds")):
        content = (shelf.root / "sources" / f"part-{number}.flac").read_bytes()
        shelf.put(f"flac/part-{number}.flac", note, content, decoded(), LYING)
    short = call("flac -s -c", shelf.tone())
    other = call("flac -s -c", shelf.tone(5.3, 48000))
    for name, note, content, truth in (
        ("joined", "two files joined", whole.read_bytes() + short, built(26.6, "sources")),
        (
            "rate-changes",
            "frames of 44.1 kHz, then of 48 kHz",
            whole.read_bytes() + flac_frames(other),
            built(26.6, "sources", "ffmpeg"),
        ),
        (
            "bare",
            "frames without a file header",
            flac_frames(whole.read_bytes()),
            built(21.3, "source", "ffmpeg"),
        ),
    ):
        shelf.put(f"flac/{name}.flac", note, content, truth, LYING)
    for name in ("cut", "part-0", "part-1"):
        shelf.hard(f"flac/{name}.flac", LYING, "FFmpeg #10287")


def flac_blocks(content: bytes):
    """The metadata blocks of a FLAC file, as (type, content), and where its frames begin."""
    blocks, at, last = [], 4, False
    while not last:
        last = bool(content[at] & 0x80)
        size = int.from_bytes(content[at + 1:at + 4], "big")
        blocks.append((content[at] & 0x7F, content[at + 4:at + 4 + size]))
        at += 4 + size
    return blocks, at


def flac_frames(content: bytes) -> bytes:
    """All after the metadata blocks of a FLAC file."""
    return content[flac_blocks(content)[1]:]


def flac_file(blocks, frames: bytes) -> bytes:
    """A FLAC file of metadata blocks (type, content) and frames."""
    heads = [kind | (0x80 if index == len(blocks) - 1 else 0) for index, (kind, _) in enumerate(blocks)]
    body = b"".join(
        bytes([head]) + len(content).to_bytes(3, "big") + content for head, (_, content) in zip(heads, blocks)
    )
    return b"fLaC" + body + frames


def stream_info(block, samples, rate=44100, channels=1) -> bytes:
    """STREAMINFO of 16 bits, blocks of one size, frames of unknown sizes."""
    packed = rate << 44 | (channels - 1) << 41 | 15 << 36 | samples
    return struct.pack(">HH6xQ16x", block, block, packed)


def silent_frame(first_sample, samples) -> bytes:
    """A frame of blocks of variable size, mono, 16 bits, all samples 0: header (sync word, codes of a 16-bit
    block size and the stream's rate, number of the first sample as in UTF-8, block size - 1, checksum), one
    constant subframe, checksum."""
    number = bytes(0x80 | first_sample >> shift & 0x3F for shift in (24, 18, 12, 6, 0))
    header = b"\xFF\xF9\x70\x08" + bytes([0xFC | first_sample >> 30]) + number
    header += struct.pack(">H", samples - 1)
    frame = header + _remainder(header, 8, 0x07) + bytes(3)
    return frame + _remainder(frame, 16, 0x8005)


def _remainder(data, bits, polynomial) -> bytes:
    """The checksums of FLAC: what is left of `data` by x^bits + `polynomial`."""
    left = 0
    for byte in data:
        left ^= byte << bits - 8
        for _ in range(8):
            left = (left << 1 ^ (polynomial if left >> bits - 1 else 0)) & (1 << bits) - 1
    return left.to_bytes(bits // 8, "big")


def _flac_headed(shelf):
    """Frames after headers that are not theirs."""
    whole = (shelf.root / "sources" / "whole.flac").read_bytes()
    blocks, at = flac_blocks(whole)
    frames, others = whole[at:], blocks[1:]
    samples = round(21.3 * 44100)
    first, starts = 0, []
    for index in range(200):
        starts.append((first, 1024 if index % 2 else 4096))
        first += starts[-1][1]
    variable = b"".join(silent_frame(*start) for start in starts)
    for name, note, content, truth in (
        (
            "block-size",
            "header of blocks of 1,024 samples, frames of 4,096; total 0",
            flac_file([(0, stream_info(1024, 0, channels=2)), *others], frames),
            built(21.3, "source", "flac"),
        ),
        (
            "variable",
            "header of one block size, frames of two; total 0",
            flac_file([(0, stream_info(4096, 0))], variable),
            built(first / 44100, "samples of the frames", "ffmpeg"),
        ),
        (
            "total-small",
            "total of 5 s",
            flac_file([(0, stream_info(4096, 5 * 44100, channels=2)), *others], frames),
            built(21.3, "source", "ffmpeg"),
        ),
        (
            "total-large",
            "total of an hour",
            flac_file([(0, stream_info(4096, 3600 * 44100, channels=2)), *others], frames),
            built(21.3, "source", "ffmpeg"),
        ),
        (
            "info-late",
            "STREAMINFO after other blocks",
            flac_file([*others, (0, stream_info(4096, samples, channels=2))], frames),
            built(21.3, "source", "flac"),
        ),
    ):
        shelf.put(f"flac/{name}.flac", note, content, truth, LYING)


def _wavpack(shelf):
    stereo = shelf.tone()
    for name, tone, options, note in (
        ("plain", stereo, "", "16 bit"),
        ("hybrid", stereo, "-b256 -c", "hybrid with correction file beside it"),
        ("lossy", stereo, "-b200", "hybrid, lossy"),
        ("high", shelf.tone(3.7, 96000, 2, 24), "-hh", "24 bit, 96 kHz"),
        ("mono", shelf.tone(5.3, 22050, 1), "-x", "mono"),
        ("surround", shelf.tone(3.1, 48000, 6), "", "5.1"),
        ("tenth", shelf.tone(0.1), "", "0.1 s"),
        ("blocks", stereo, "--blocksize=512", "blocks of 512 samples"),
        ("hour", shelf.tone(3600, 8000, 1, kind="silence"), "", "one hour of silence"),
    ):
        call("wavpack", "-q -y", options, tone, "-o", shelf.path(f"wv/{name}.wv"))
        seconds = {"high": 3.7, "surround": 3.1, "tenth": 0.1, "hour": 3600}.get(name, 5.3)
        shelf.add(f"wv/{name}.wv", note, source(seconds, "wvunpack", 0.001))
    encode(stereo, shelf.path("wv/by-ffmpeg.wv"), "-c:a wavpack")
    shelf.add("wv/by-ffmpeg.wv", "by ffmpeg", source(5.3, "wvunpack"))
    shelf.put(
        "wv/piped.wv",
        "piped: total samples unknown",
        call("wavpack", "-q -y -i - -o -", stdin=sox(stereo, "-t wav -")),
        source(5.3, "wvunpack"),
    )
    shelf.hard("wv/piped.wv")
    plain = shelf.path("wv/plain.wv").read_bytes()
    tagged = plain + apev2() + id3v1()
    shelf.put("wv/tagged.wv", "APEv2 and ID3v1 at the end", tagged, source(5.3, "wvunpack"))
    dsd = shelf.path("dsf/stereo.dsf")
    call("wavpack", "-q -y", dsd, "-o", shelf.path("wv/dsd.wv"))
    shelf.add("wv/dsd.wv", "DSD64", built(3.0, "source of 3 s of DSD", "ffmpeg"))
    shelf.hard("wv/dsd.wv", reports="MediaInfo #372")
    blocks = shelf.path("wv/blocks.wv").read_bytes()
    second = blocks.index(b"wvpk", len(blocks) // 2)
    shelf.put(
        "wv/cut.wv",
        "from its middle on",
        blocks[second:],
        built(5.3 - struct.unpack_from("<I", blocks, second + 16)[0] / 44100, "samples of the blocks"),
        LYING,
    )
    shelf.hard("wv/cut.wv", LYING)
