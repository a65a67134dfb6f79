"""Bare frames that many programs tell wrong: false statements, little sound beside much junk, clocks that
jump.

ADIF (ISO/IEC 13818-7): "ADIF", then bits: no copyright number, 2 flags, variable bit rate, 23 of bit rate, 4
of programs less one; a program: 4 number, 2 profile, 4 rate index, 4 each of elements in front, at the side,
at the back, 2 low frequencies, 3 data, 4 coupled, 3 flags, 5 for the element in front; whole bytes, size of
a comment.
"""

import struct

from .aac_amr import adts_frame, raw_blocks
from .layout import id3v1, id3v2
from .mpeg_made import frames_of, length_frame, noise
from .shelf import LYING, TRUNCATED, Shelf, built, decoded, source
from .tools import call, encode, ffmpeg

_FRAME = 1152 / 44100
_BLOCK = 1024 / 44100


def make(shelf: Shelf):
    shelf = shelf.for_hard_cases()
    vbr = call("lame", "--quiet -t -V2", shelf.tone(), "-")
    _false_statements(shelf)
    _statements_set_aside(shelf, vbr)
    _false_tags(shelf, vbr)
    _little_sound(shelf, vbr)
    _stream(shelf, vbr)
    _blocks(shelf)
    _clocks(shelf)
    _joined_files(shelf)
    _claim(shelf)


def _lame(shelf, name, tone, options) -> bytes:
    """What LAME writes, with its tag: in a pipe it leaves that out."""
    path = shelf.root / "sources" / name
    call("lame", "--quiet", options, tone, path)
    return path.read_bytes()


def _patched(content: bytes, at: int, part: bytes) -> bytes:
    return content[:at] + part + content[at + len(part):]


def _false_statements(shelf):
    """One second: a frame more or less is 2.6 %."""
    for name, tone, options in (
        ("stereo", shelf.tone(1.0), "-b 128"),
        ("mono", shelf.tone(1.0, 44100, 1), "-b 64 -m m"),
    ):
        content = _lame(shelf, f"info-{name}.mp3", tone, options)
        info = content.index(b"Info")
        frames = struct.unpack_from(">I", content, info + 8)[0]
        shelf.put(
            f"mp3/counts-itself-{name}.mp3",
            f"{name}: the Info frame counts itself",
            _patched(content, info + 8, struct.pack(">I", frames + 1)),
            source(1.0),
        )
        shelf.put(
            f"mp3/false-channels-{name}.mp3",
            f"{name}: the Info frame's header says otherwise",
            _patched(content, 3, bytes([content[3] ^ 0xC0])),
            built(1.0, "source"),
        )


def _statements_set_aside(shelf, vbr):
    frames = frames_of(vbr)
    host, size = max(frames, key=len), len(vbr)
    truth = built(len(frames) * _FRAME, "frames of 1152 samples", "mpg123")
    for name, note, stated in (
        ("xing-no-frames", "Xing that states 0 frames", 0),
        ("xing-endless", "Xing that states 4,294,967,295 frames, and its true size", 0xFFFFFFFF),
    ):
        fields = struct.pack(">III", 3, stated, size + len(host))
        shelf.put(f"mp3/{name}.mp3", note, length_frame(host, b"Xing", fields) + vbr, truth)
    tagged = _lame(shelf, "tagged.mp3", shelf.tone(13.3), "-V2")
    shelf.put(
        "half-download.mp3",
        "half a download, with the whole's LAME tag",
        tagged[: len(tagged) // 2],
        decoded(),
        TRUNCATED,
    )


def _false_tags(shelf, vbr):
    bare = built(len(frames_of(vbr)) * _FRAME, "frames of 1152 samples", "mpg123")
    length = b"TLEN" + struct.pack(">IH", 7, 0) + b"\0600000"
    low, high = (bytearray(id3v2(size, 3)) for size in (300, 200))
    low[6:10], high[6:10] = struct.pack(">I", 300), struct.pack(">I", 200)
    for name, note, content in (
        ("false-tlen", "VBR after a TLEN of ten minutes", id3v2(100, 3, body=length) + vbr),
        ("plain-size", "size of ID3v2 in 8 bits a byte, read as too small", bytes(low) + vbr),
        ("plain-size-high", "size of ID3v2 in 8 bits a byte, one of them 200", bytes(high) + vbr),
    ):
        shelf.put(f"mp3/{name}.mp3", note, content, bare)
    other = call("lame", "--quiet -t -b 128", shelf.tone(5.3, 48000), "-")
    seconds = len(frames_of(vbr)) * _FRAME + len(frames_of(other)) * 1152 / 48000
    shelf.put(
        "mp3/joined-rates.mp3",
        "44.1 and 48 kHz joined",
        vbr + other,
        built(seconds, "frames of 1152 samples", "ffmpeg", 0.1),
    )
    encode(shelf.tone(), shelf.path("mp3/riff.mp3"), "-c:a libmp3lame -f wav")
    shelf.add("mp3/riff.mp3", "MP3 in RIFF", decoded())


def _little_sound(shelf, vbr):
    frames = frames_of(call("lame", "--quiet -t -b 128", shelf.tone(), "-"))
    blocks = raw_blocks(ffmpeg("-i", shelf.tone(), "-c:a aac -f adts -"))
    adts = [adts_frame([block], 44100, 2) for block in blocks]
    for count in (1, 2, 4):
        for name, whole, seconds in (("mp3/few", frames, _FRAME), ("aac/few", adts, _BLOCK)):
            truth = built(count * seconds, "whole frames")
            extension = name.partition("/")[0]
            sound = b"".join(whole[20:20 + count])
            for end, note, tag in (("", "ID3v1", id3v1()), ("-id3v2", "ID3v2", id3v2(400, footer=True))):
                shelf.put(
                    f"{name}-{count}{end}.{extension}",
                    f"a part of a frame, {count} whole, {note}",
                    whole[19][-150:] + sound + tag,
                    truth,
                )
    shelf.put(
        "mp3/two-and-zeros.mp3",
        "two frames, then 9 KB of zeros",
        b"".join(frames[20:22]) + bytes(9000),
        built(2 * _FRAME, "whole frames"),
    )
    shelf.put(
        "mp3/filled-up.mp3",
        "junk before, four times as many zeros after",
        noise(3000) + vbr + bytes(4 * len(vbr)),
        built(len(frames_of(vbr)) * _FRAME, "frames of 1152 samples", "mpg123"),
    )


def _stream(shelf, vbr):
    """A rip with the stream's titles left in: after every 8,000 bytes of sound a byte of size, in units of
    16, and the title."""
    title = b"StreamTitle='title';".ljust(32, b"\0")
    parts = [vbr[at:at + 8000] for at in range(0, len(vbr), 8000)]
    inserted = (b"\2" + title, b"\0", b"\0", b"\0")
    content = b"".join(part + inserted[number % 4] for number, part in enumerate(parts))
    shelf.put(
        "mp3/icy.mp3",
        "the titles of a stream between and in the frames",
        content,
        built(len(frames_of(vbr)) * _FRAME, "frames of 1152 samples"),
    )


def adif(program: str) -> bytes:
    """A header for the program in `program`, up to the audio; no comment."""
    bits = "0" + "00" + "1" + "0" * 23 + "0000" + program
    bits = bits.ljust(-(-len(bits) // 8) * 8, "0")
    return b"ADIF" + int(bits, 2).to_bytes(len(bits) // 8, "big") + b"\0"


def _blocks(shelf):
    for name, note, tone, rate, index, pair in (
        ("adif", "stereo", shelf.tone(), 44100, "0100", "1"),
        ("adif-mono", "8 kHz mono", shelf.tone(5.3, 8000, 1), 8000, "1011", "0"),
    ):
        blocks = raw_blocks(ffmpeg("-i", tone, "-c:a aac -f adts -"))
        program = "0000" + "01" + index + "0001" + "0000" * 2 + "00" + "000" + "0000" + "000" + pair + "0000"
        shelf.put(
            f"aac/{name}.aac",
            f"ADIF, {note}",
            adif(program) + b"".join(blocks),
            built(len(blocks) * 1024 / rate, "blocks of 1024 samples"),
        )
    blocks = raw_blocks(ffmpeg("-i", shelf.tone(1.0), "-c:a aac -f adts -"))
    sound = [adts_frame([block], 44100, 2) for block in blocks]
    filling = adts_frame([b"\xC4\0\1\xC0"], 44100, 2)
    shelf.put(
        "aac/filling-first.aac",
        "the first frame holds nothing but filling",
        filling + b"".join(sound[1:]),
        built((len(sound) - 1) * _BLOCK, "blocks of 1024 samples with sound", "ffmpeg", 0.001),
    )


def _clocks(shelf):
    stream = "-c:a mp2 -f mpegts"
    first = ffmpeg("-i", shelf.tone(), stream, "-")
    later = ffmpeg("-i", shelf.tone(), stream, "-output_ts_offset 50000 -")
    for name, note, content in (
        ("clock-ahead", "two transport streams joined, the second's clock 14 hours ahead", first + later),
        ("clock-back", "two transport streams joined, the second's clock 14 hours back", later + first),
        (
            "clock-slow",
            "a transport stream whose time stamps overlap",
            ffmpeg("-i", shelf.tone(), "-bsf:a setts=ts=TS/2", stream, "-"),
        ),
    ):
        shelf.put(f"mp2/{name}.mp2", note, content, decoded())


def _joined_files(shelf):
    narrow = shelf.tone(5.3, 8000, 1)
    for name, note, tone, options, seconds in (
        ("ra/joined-ac3.ra", "AC-3 in RealMedia", shelf.tone(), "-c:a ac3 -f rm", 153 * 1536 / 44100),
        ("ra/joined-lpc.ra", "14.4 in RealMedia", narrow, "-c:a real_144 -f rm", 266 * 0.02),
        ("mp3/joined-flash.mp3", "AAC in Flash video", shelf.tone(), "-c:a aac -f flv", 230 * _BLOCK),
    ):
        one = shelf.root / "sources" / name.replace("/", "-")
        encode(tone, one, options)
        shelf.put(name, f"two files joined: {note}", one.read_bytes() * 2, built(2 * seconds, "frames"))


def _claim(shelf):
    """AST states its samples at byte 20."""
    one = shelf.root / "sources" / "short.ast"
    encode(shelf.tone(0.1, 48000), one, "-f ast")
    shelf.put(
        "claim.mp3",
        "0.1 s of AST that states 25 hours",
        _patched(one.read_bytes(), 20, b"\xFF" * 4),
        built(0.1, "source", "ffmpeg", 0.001),
        LYING,
    )
