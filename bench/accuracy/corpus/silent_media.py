"""Media files without audio: pictures in motion only, headers whose sound is missing, containers of nothing.
"""

import struct

from .dsd import dsdiff, dsf
from .layout import box, chunk, id3v2_picture, iff, iff64, riff
from .ape_musepack import ape, ape_old, musepack_seven
from .aiff_au import comm, form
from .caf import caf_chunk, desc
from .shelf import SILENT, Shelf
from .silent import put
from .tools import ffmpeg
from .wav_made import data_of, fmt


def make(shelf: Shelf):
    _video(shelf)
    _heads(shelf)
    _made(shelf)


def _video(shelf):
    scene = "-f lavfi -i testsrc=s=64x64:d=4"
    rows = (
        ("video.m4a", "H.264 in MP4", "-c:v libx264 -f mp4"),
        ("video.m4b", "MPEG-4 in MP4", "-c:v mpeg4 -f mp4"),
        (
            "video-fragments.m4a",
            "H.264 in fragments",
            "-c:v libx264 -movflags frag_keyframe+empty_moov -f mp4",
        ),
        ("video.aax", "H.264 in QuickTime", "-c:v libx264 -f mov"),
        ("video.3ga", "H.263 in 3GP", "-c:v h263 -s 176x144 -f 3gp"),
        ("video.mka", "VP8 in Matroska", "-c:v libvpx -f matroska"),
        ("webm.mka", "VP9 in WebM", "-c:v libvpx-vp9 -f webm"),
        ("video.ogg", "Theora in Ogg", "-c:v libtheora -f ogg"),
        ("video.oga", "Theora in Ogg", "-c:v libtheora -f ogg"),
        ("video.ra", "RealVideo", "-c:v rv10 -s 176x144 -f rm"),
        ("video.wav", "AVI", "-c:v mpeg4 -f avi"),
        ("asf.mp3", "Windows Media Video", "-c:v wmv2 -f asf"),
        ("stream.mp3", "MPEG transport stream", "-c:v mpeg2video -f mpegts"),
        ("program.mp2", "MPEG program stream", "-c:v mpeg2video -f mpeg"),
        ("elementary.mp2", "bare MPEG video", "-c:v mpeg2video -f mpeg2video"),
        ("elementary.aac", "bare H.264", "-c:v libx264 -f h264"),
        ("flash.m4a", "Flash video", "-c:v flv -f flv"),
        ("motion.m4r", "motion JPEG in MP4", "-c:v mjpeg -f mp4"),
    )
    for name, note, options in rows:
        put(shelf, name, f"{note}, 4 s, no sound track", _made_by(shelf, name, scene, options))
    put(
        shelf,
        "cover.m4a",
        "one picture in MP4",
        _made_by(shelf, "cover.m4a", "-i", shelf.cover(), "-c:v png -f mp4"),
    )
    put(
        shelf,
        "cover.mka",
        "one picture in Matroska",
        _made_by(shelf, "cover.mka", "-i", shelf.cover(), "-c:v png -f matroska"),
    )
    words = shelf.root / "sources" / "words.srt"
    words.write_text("1\n00:00:01,000 --> 00:00:59,000\nwords\n")
    put(
        shelf,
        "words.m4a",
        "subtitles in MP4",
        _made_by(shelf, "words.m4a", "-i", words, "-c:s mov_text -f mp4"),
    )
    put(
        shelf,
        "words.mka",
        "subtitles in Matroska",
        _made_by(shelf, "words.mka", "-i", words, "-c:s srt -f matroska"),
    )


def _made_by(shelf, name, *arguments) -> bytes:
    path = shelf.root / "sources" / f"silent-{name}"
    path.parent.mkdir(parents=True, exist_ok=True)
    ffmpeg(*arguments, path)
    return path.read_bytes()


def _heads(shelf):
    """Real files cut off where their sound begins: the length may be stated, but nothing can be heard."""
    stereo = shelf.tone(2.5)
    for name, note, options, mark in (
        ("head.flac", "FLAC header that states 2.5 s", "-c:a flac -f flac", None),
        ("head.m4a", "MP4 header that states 2.5 s", "-c:a aac -movflags +faststart -f mp4", b"mdat"),
        ("head.mka", "Matroska header that states 2.5 s", "-c:a flac -f matroska", b"\x1F\x43\xB6\x75"),
        ("head.caf", "CAF header", "-f caf", b"data"),
        ("head.ogg", "Vorbis headers", "-c:a libvorbis -f ogg", None),
        ("head.opus", "Opus headers", "-c:a libopus -f opus", None),
        ("head.voc", "VOC header", "-f voc", None),
    ):
        whole = _made_by(shelf, name, "-i", stereo, options)
        put(shelf, name, f"{note}, nothing after it", whole[: _sound_at(whole, mark)])
    for name, source in (("head-wave.wv", "wv/plain.wv"), ("head-amr.amr", "amr/nb-7.amr")):
        size = {"wv": 20, "amr": 6}[name.rpartition(".")[2]]
        put(shelf, name, f"the first {size} bytes of {source}", shelf.path(source).read_bytes()[:size])


def _sound_at(whole, mark):
    if mark is not None:
        return whole.index(mark) - (4 if mark == b"mdat" else 0)
    if whole[:4] == b"fLaC":
        at, last = 4, False
        while not last:
            last = bool(whole[at] & 0x80)
            at += 4 + int.from_bytes(whole[at + 1:at + 4], "big")
        return at
    if whole[:4] == b"OggS":
        # Header pages carry granule 0; the first other page begins the sound.
        at = 0
        while whole[at + 6:at + 14] == bytes(8):
            count = whole[at + 26]
            at += 27 + count + sum(whole[at + 27:at + 27 + count])
        return at
    return 26


def _made(shelf):
    empty_riff = riff(fmt(), data_of(0, b""))
    ds64 = chunk(b"ds64", bytes(28))
    sun = struct.pack(">4sIIIII", b".snd", 24, 0, 3, 44100, 2)
    pcm = desc(44100.0, b"lpcm", 2, 4, 1, 2, 16)
    frame = b"\xFF\xFB\x90\x64"
    lame = frame + bytes(32) + b"Info" + struct.pack(">II", 1, 0) + bytes(365)
    rows = (
        ("data-zero.wav", "WAV of no samples", empty_riff),
        ("no-data.wav", "WAV without a data chunk", riff(fmt())),
        ("no-format.wav", "WAV without fmt, 4 KB of data", riff(chunk(b"data", bytes(4096)))),
        ("bare-riff.wav", "RIFF header only", riff()),
        ("junk-only.bwf", "WAV of JUNK", riff(chunk(b"JUNK", bytes(9000)))),
        ("rate-zero.wav", "WAV of rate 0 and blocks of 0", riff(fmt(0, 0, 0), chunk(b"data", bytes(400)))),
        ("data-zero.rf64", "RF64 of no samples", riff(ds64, fmt(), data_of(0xFFFFFFFF, b""), name=b"RF64")),
        ("no-frames.aiff", "AIFF of no samples", form(comm(0), iff(b"SSND", bytes(8)))),
        ("no-sound.aif", "AIFF without SSND", form(comm(0))),
        (
            "picture.aiff",
            "AIFF, an empty SSND before a picture",
            form(comm(0), iff(b"SSND", bytes(8)), iff(b"ID3 ", id3v2_picture(90_000))),
        ),
        ("bare-form.aifc", "FORM header only", iff(b"FORM", b"AIFC")),
        ("data-zero.au", "Sun audio of no samples", sun),
        ("short.snd", "10 bytes of a Sun audio header", sun[:10]),
        ("data-zero.caf", "CAF of no samples", b"caff\0\1\0\0" + pcm + caf_chunk(b"data", bytes(4))),
        ("bare.caf", "CAF header only", b"caff\0\1\0\0"),
        (
            "end-only.voc",
            "VOC of a terminator",
            b"Creative Voice File\x1A" + struct.pack("<HHH", 26, 0x010A, 0x1129) + b"\0",
        ),
        ("no-samples.dsf", "DSF of no samples", dsf(0)),
        ("padding.dsf", "DSF of no samples, blocks of padding", dsf(0, padding=1)),
        ("cut.dsf", "DSF header that states 3 s, no data", dsf(3.0)[:92]),
        ("no-data.dff", "DSDIFF of no samples", dsdiff(iff64(b"DSD ", b""))),
        ("no-frames.ape", "Monkey's Audio descriptor only", ape(44100)[:52]),
        ("cut.ape", "Monkey's Audio header, no frames", ape(44100 * 9)[:76]),
        (
            "stub.ape",
            "Monkey's Audio 3.97, 14 KB of a file of 83 hours",
            ape_old(83 * 3600 * 44100)[:13_955],
        ),
        ("no-frames.mpc", "SV7 of no frames", musepack_seven(0)[:28]),
        ("magic.mpc", "SV8 magic only", b"MPCK"),
        ("magic.mka", "EBML magic only", b"\x1A\x45\xDF\xA3\x80"),
        ("magic.ra", "RealMedia magic only", b".RMF\0\0\0\x12\0\0\0\0\0\0\0\0\0\0"),
        ("magic.wma", "ASF GUID only", bytes.fromhex("3026B2758E66CF11A6D900AA0062CE6C")),
        ("magic.aa", "Audible magic only", struct.pack(">II", 100, 0x57907536)),
        ("magic.opus", "OggS only", b"OggS"),
        ("ftyp.m4a", "ftyp only", box(b"ftyp", b"M4A \0\0\0\0M4A mp42isom")),
        ("ftyp.m4b", "ftyp and free", box(b"ftyp", b"M4B \0\0\0\0M4B mp42isom") + box(b"free", bytes(3000))),
        (
            "mdat.m4a",
            "ftyp and mdat without moov",
            box(b"ftyp", b"M4A \0\0\0\0M4A mp42isom") + box(b"mdat", bytes(9000)),
        ),
        ("ftyp.aax", "aax brand only", box(b"ftyp", b"aax \0\0\0\0aax ")),
        (
            "empty-moov.m4r",
            "moov without tracks",
            box(b"ftyp", b"M4A \0\0\0\0") + box(b"moov", box(b"mvhd", bytes(100))),
        ),
        ("header.mp3", "one frame header", frame),
        ("lame.mp3", "one Info frame of 0 frames", lame),
        ("header.aac", "one ADTS header", b"\xFF\xF1\x50\x80\x2E\x7F\xFC"),
        ("sync.mp3", "frame headers in text, wide apart", (b"words " * 300 + frame) * 20),
    )
    for name, note, data in rows:
        put(shelf, name, note, data)
    for name in ("padding.dsf", "picture.aiff", "stub.ape"):
        shelf.hard(name, SILENT)
    whole = shelf.path("sd2/s16.sd2").with_name("._s16.sd2").read_bytes()
    put(shelf, "fork-only.sd2", "a Sound Designer II fork without its sound", whole)
