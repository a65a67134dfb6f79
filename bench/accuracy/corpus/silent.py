"""Files without audio, named as audio: nothing, noise, text, lists that point elsewhere, pictures, documents,
tags.
"""

import io
import random
import struct
import tarfile
import zipfile
import zlib
from pathlib import Path

from .layout import apev2, id3v1, id3v2, id3v2_picture
from .shelf import NO_AUDIO, SILENT, Shelf
from .tools import ffmpeg

EXTENSIONS = (
    "wav wave bwf aif aiff aifc caf flac alac mp3 mp2 m4a m4b m4r aac adts ogg oga opus wma ape wv dsf dff "
    "amr mka au snd ra mpc aa aax 3ga voc w64 rf64 sd2"
).split()


def make(shelf: Shelf):
    _nothing(shelf)
    _noise(shelf)
    _text(shelf)
    _pointers(shelf)
    _pictures(shelf)
    _documents(shelf)
    _tags(shelf)


def put(shelf, name, note, data):
    shelf.put(name, note, data, NO_AUDIO, SILENT)


def _nothing(shelf):
    for extension in ("wav", "mp3", "flac", "m4a", "ogg", "opus", "wma", "aac", "mka", "sd2"):
        put(shelf, f"empty.{extension}", "empty", b"")
    for size, extensions in (
        (1, ("mp3", "wav")),
        (27, ("ogg", "aac")),
        (1000, ("voc", "au", "amr")),
        (65536, ("mp3", "m4a", "dsf")),
        (1 << 20, ("mp3", "mp2", "aac", "wav", "caf", "wma")),
    ):
        for extension in extensions:
            put(shelf, f"zeros-{size}.{extension}", f"{size} zeros", bytes(size))
    for extension in ("mp3", "mp2", "aac", "adts"):
        put(shelf, f"ones.{extension}", "64 KB of 0xFF: sync bits all along", b"\xFF" * 65536)


def _noise(shelf):
    sizes = (100, 1000, 4096, 30_000, 65_536, 200_000)
    for index, extension in enumerate(EXTENSIONS):
        size = sizes[index % len(sizes)]
        put(shelf, f"random-{size}.{extension}", f"{size} random bytes", random.Random(index).randbytes(size))
    for index, extension in enumerate(("mp3", "mp2", "aac", "wav", "ogg", "m4a")):
        put(
            shelf,
            f"random-million.{extension}",
            "1,000,000 random bytes",
            random.Random(100 + index).randbytes(1_000_000),
        )


def _text(shelf):
    here = Path(__file__).read_text()
    rows = (
        ("text.mp3", "plain text", "one line\n"),
        ("text-long.aac", "100 KB of text", "The quick brown fox. " * 5000),
        ("page.mp3", "HTML: a failed download", "<!DOCTYPE html><html><body><h1>404</h1></body></html>\n"),
        (
            "page.m4a",
            "HTML",
            "<html><head><title>x</title></head><body>" + "<p>x</p>" * 500 + "</body></html>",
        ),
        ("data.wav", "JSON", '{"duration": 12.5, "format": "wav"}'),
        ("data.flac", "XML", "<?xml version='1.0'?><a/>"),
        ("source.ogg", "a program's text", here),
        ("lines.opus", "CRLF lines", "a\r\nb\r\n" * 1000),
        ("lyrics.mp3", "LRC lyrics", "[ti:t]\n[00:01.00]one\n[00:58.00]two\n"),
        ("captions.mp3", "SubRip", "1\n00:00:01,000 --> 00:00:59,000\nwords\n"),
        ("captions.aac", "WebVTT", "WEBVTT\n\n00:01.000 --> 00:59.000\nwords\n"),
        (
            "captions.m4a",
            "SubStation Alpha",
            "[Script Info]\nScriptType: v4.00+\n\n[Events]\nFormat: Layer, Start, End, Style, Text\n"
            "Dialogue: 0,0:00:01.00,0:00:59.00,Default,words\n",
        ),
        ("captions.mka", "MicroDVD", "{1}{1}25\n{25}{1475}words\n"),
    )
    for name, note, text in rows:
        put(shelf, name, note, text.encode())


def _pointers(shelf):
    """Lists whose entries exist: what opens them opens a second file. `neighbour.dat` is a WAV file."""
    neighbour = shelf.path("neighbour.dat", SILENT)
    neighbour.write_bytes(shelf.tone().read_bytes())
    stream = (
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXTINF:5.3,\nneighbour.dat\n#EXT-X-ENDLIST\n"
    )
    sheet = 'FILE "neighbour.dat" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n'
    description = (
        "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
        "a=range:npt=0-60\nm=audio 5004 RTP/AVP 0\n"
        "a=rtpmap:0 PCMU/8000\n"
    )
    dash = (
        '<?xml version="1.0"?><MPD xmlns="urn:mpeg:dash:schema:mpd:2011" type="static" '
        'mediaPresentationDuration="PT60S" profiles="urn:mpeg:dash:profile:isoff-on-demand:2011"><Period>'
        '<AdaptationSet mimeType="audio/mp4"><Representation id="1" bandwidth="1">'
        "<BaseURL>neighbour.dat</BaseURL></Representation></AdaptationSet></Period></MPD>"
    )
    shortcut = "[playlist]\nFile1=neighbour.dat\nLength1=60\nNumberOfEntries=1\nVersion=2\n"
    rows = (
        ("concat.mp3", "ffconcat", "ffconcat version 1.0\nfile neighbour.dat\n"),
        ("concat.wav", "ffconcat with a duration", "ffconcat version 1.0\nfile neighbour.dat\nduration 60\n"),
        ("concat.m4a", "ffconcat", "ffconcat version 1.0\nfile 'neighbour.dat'\n"),
        ("hls.mp3", "HLS", stream),
        ("hls.aac", "HLS", stream),
        ("hls.m4a", "HLS with far parts", stream.replace("neighbour.dat", "http://127.0.0.1:9/a.ts")),
        ("sdp.mp3", "SDP", description),
        ("sdp.amr", "SDP", description),
        ("list.mp3", "M3U", "neighbour.dat\n"),
        ("list.ogg", "M3U, extended", "#EXTM3U\n#EXTINF:60,x\nneighbour.dat\n"),
        ("list.wav", "PLS", shortcut),
        ("sheet.flac", "cue sheet", sheet),
        ("sheet.ape", "cue sheet", sheet),
        ("dash.m4a", "DASH manifest", dash),
        ("list.wma", "ASX", '<asx version="3.0"><entry><ref href="neighbour.dat"/></entry></asx>'),
        (
            "list.opus",
            "XSPF",
            '<?xml version="1.0"?><playlist version="1" xmlns="http://xspf.org/ns/0/"><trackList><track>'
            "<location>neighbour.dat</location></track></trackList></playlist>",
        ),
        ("link.ra", "RealAudio link", "file:neighbour.dat\n"),
        (
            "metadata.mp3",
            "ffmetadata with a chapter",
            ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1\nSTART=0\nEND=60\ntitle=x\n",
        ),
    )
    for name, note, text in rows:
        put(shelf, name, note, text.encode())


def _pictures(shelf):
    def drawn(codec):
        return ffmpeg("-f lavfi -i testsrc=s=320x240 -frames:v 1 -c:v", codec, "-f image2pipe -")

    moving = ffmpeg("-f lavfi -i testsrc=s=64x64:d=3 -f gif -")
    rows = (
        ("png", drawn("png"), ("mp3", "flac", "m4a")),
        ("jpeg", drawn("mjpeg"), ("mp3", "aac", "wav")),
        ("bmp", drawn("bmp"), ("ogg", "aiff")),
        ("tiff", drawn("tiff"), ("aif",)),
        ("webp", drawn("libwebp"), ("wav", "opus")),
        ("gif", moving, ("mp3", "mka")),
        ("svg", b"<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>", ("mp3",)),
        ("ppm", drawn("ppm"), ("voc",)),
    )
    for kind, data, extensions in rows:
        for extension in extensions:
            put(shelf, f"picture-{kind}.{extension}", f"a {kind.upper()} picture", data)


def _documents(shelf):
    packed, taped = io.BytesIO(), io.BytesIO()
    with zipfile.ZipFile(packed, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("a.txt", "text " * 1000)
    with tarfile.open(fileobj=taped, mode="w") as archive:
        archive.add(Path(__file__), "a.py")
    page = b"%PDF-1.4\n1 0 obj<</Type/Catalog>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n"
    program = b"\x7fELF\2\1\1" + bytes(9) + struct.pack("<HHI", 2, 62, 1) + random.Random(7).randbytes(50_000)
    notes = b"MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\x0c\0\x90\x3c\x40\x60\x80\x3c\x40\0\xff\x2f\0"
    rows = (
        ("pdf.mp3", "PDF", page),
        ("pdf.wav", "PDF", page * 200),
        ("zip.mp3", "zip", packed.getvalue()),
        ("zip.m4b", "zip", packed.getvalue()),
        ("tar.ogg", "tar", taped.getvalue()),
        ("deflated.mp3", "zlib stream", zlib.compress(bytes(range(256)) * 4000)),
        ("elf.mp3", "a program", program),
        ("elf.aac", "a program", program),
        ("midi.mp3", "MIDI: notes, no sound", notes),
        (
            "midi.wav",
            "RIFF-MIDI",
            b"RIFF"
            + struct.pack("<I", 12 + len(notes))
            + b"RMIDdata"
            + struct.pack("<I", len(notes))
            + notes,
        ),
        ("sqlite.flac", "SQLite", b"SQLite format 3\0" + bytes(4080)),
        ("font.caf", "OpenType", b"OTTO\0\1" + bytes(5000)),
    )
    for name, note, data in rows:
        put(shelf, name, note, data)


def _tags(shelf):
    rows = (
        ("id3v2.mp3", "ID3v2 only", id3v2(1000)),
        ("id3v2-picture.mp3", "ID3v2 with a picture only", id3v2_picture(200_000)),
        ("id3v1.mp3", "ID3v1 only", id3v1()),
        ("apev2.mp3", "APEv2 only", apev2()),
        ("apev2.ape", "APEv2 only", apev2()),
        ("tags.mp3", "ID3v2, zeros, ID3v1", id3v2(500) + bytes(5000) + id3v1()),
        ("tags.flac", "ID3v2 and nothing", id3v2(3000)),
        ("tags.aac", "ID3v2 and text", id3v2(400) + b"no sound here\n" * 100),
        ("tags.wav", "ID3v2 and noise", id3v2(400) + random.Random(9).randbytes(20_000)),
        ("id3v2-endless.mp3", "ID3v2 that states more than the file", id3v2(300_000)[:2000]),
    )
    for name, note, data in rows:
        put(shelf, name, note, data)
