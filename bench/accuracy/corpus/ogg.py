"""Ogg with Vorbis, Opus, Speex and FLAC, by each format's own encoder and by ffmpeg.

Chained files (one stream after the other) are left out: the program answers from the last page of the file,
by design.
"""

from .layout import id3v1
from .shelf import Shelf, built, source
from .tools import call, encode, ffmpeg


def make(shelf: Shelf):
    _vorbis(shelf)
    _opus(shelf)
    _speex_flac(shelf)


def _vorbis(shelf):
    stereo = shelf.tone()
    for name, tone, options, seconds, note in (
        ("ogg/vorbis.ogg", stereo, "", 5.3, "Vorbis"),
        ("oga/vorbis-q10.oga", stereo, "-q 10", 5.3, "Vorbis -q10"),
        ("ogg/vorbis-low.ogg", shelf.tone(5.3, 8000, 1), "-q -1", 5.3, "Vorbis, 8 kHz mono"),
        ("ogg/vorbis-high.ogg", shelf.tone(4.3, 96000), "", 4.3, "Vorbis, 96 kHz"),
        ("ogg/vorbis-six.ogg", shelf.tone(4.3, 48000, 6), "", 4.3, "Vorbis, 5.1"),
        ("ogg/vorbis-managed.ogg", stereo, "--managed -b 128", 5.3, "Vorbis, managed"),
        ("ogg/tenth.ogg", shelf.tone(0.1), "", 0.1, "Vorbis, 0.1 s"),
        (
            "ogg/hour.ogg",
            shelf.tone(3600, 8000, 1, kind="silence"),
            "-q 0",
            3600.0,
            "Vorbis, one hour of silence",
        ),
        ("ogg/comments.ogg", stereo, ("-c", "NOTE=" + "x" * 100_000), 5.3, "Vorbis, 100 KB of comments"),
    ):
        call("oggenc", "--quiet", options, "-o", shelf.path(name), tone)
        shelf.add(name, note, source(seconds, "oggdec", 0.001 if seconds < 1 else 0.05))
    encode(stereo, shelf.path("ogg/by-ffmpeg.ogg"), "-c:a libvorbis -q:a 4")
    shelf.add("ogg/by-ffmpeg.ogg", "Vorbis by ffmpeg", source(5.3, "oggdec"))
    shelf.put(
        "ogg/id3v1.ogg",
        "Vorbis, ID3v1 at the end",
        shelf.path("ogg/vorbis.ogg").read_bytes() + id3v1(),
        built(5.3, "source", "ffmpeg"),
    )
    shelf.put(
        "ogg/zeros-behind.ogg",
        "Vorbis, 100 KB of zeros at the end",
        shelf.path("ogg/vorbis.ogg").read_bytes() + bytes(100_000),
        built(5.3, "source", "ffmpeg"),
    )
    shelf.put(
        "oga/piped.oga",
        "Vorbis, piped",
        call("oggenc", "--quiet -", stdin=stereo.read_bytes()),
        source(5.3, "oggdec"),
    )
    encode(stereo, shelf.path("OGG/capitals.OGG"), "-c:a libvorbis -f ogg")
    shelf.add("OGG/capitals.OGG", "extension in capitals", source(5.3, "oggdec"))


def _opus(shelf):
    fast = shelf.tone(5.3, 48000)
    for name, tone, options, seconds, note in (
        ("music", fast, "", 5.3, "48 kHz"),
        ("from-44k", shelf.tone(), "", 5.3, "from 44.1 kHz"),
        ("speech", shelf.tone(5.3, 16000, 1), "--bitrate 12 --speech", 5.3, "16 kHz speech, 12 kbit/s"),
        ("frames-60", fast, "--framesize 60", 5.3, "frames of 60 ms"),
        ("frames-2.5", fast, "--framesize 2.5", 5.3, "frames of 2.5 ms"),
        ("cbr", fast, "--hard-cbr --bitrate 96", 5.3, "CBR 96"),
        ("six", shelf.tone(4.3, 48000, 6), "", 4.3, "5.1"),
        ("tenth", shelf.tone(0.1, 48000), "", 0.1, "0.1 s"),
        ("cover", fast, ("--picture", shelf.cover()), 5.3, "with a picture of some hundred KB"),
        (
            "hour",
            shelf.tone(3600, 8000, 1, kind="silence"),
            "--bitrate 6 --comp 0 --framesize 60",
            3600.0,
            "one hour of silence",
        ),
    ):
        call("opusenc", "--quiet", options, tone, shelf.path(f"opus/{name}.opus"))
        shelf.add(
            f"opus/{name}.opus", f"Opus, {note}", source(seconds, "opusdec", 0.001 if seconds < 1 else 0.05)
        )
    encode(fast, shelf.path("opus/by-ffmpeg.opus"), "-c:a libopus")
    shelf.add("opus/by-ffmpeg.opus", "Opus by ffmpeg", source(5.3, "opusdec"))
    call("opusenc", "--quiet", fast, shelf.path("ogg/opus.ogg"))
    shelf.add("ogg/opus.ogg", "Opus named .ogg", source(5.3, "opusdec"))


def _speex_flac(shelf):
    for name, rate, options, note in (
        ("ogg/speex-narrow.ogg", 8000, "-n", "narrow band"),
        ("oga/speex-wide.oga", 16000, "-w", "wide band"),
        ("ogg/speex-ultra.ogg", 32000, "-u --vbr", "ultra-wide band, VBR"),
        ("ogg/speex-dtx.ogg", 8000, "--vad --dtx", "DTX"),
    ):
        tone = shelf.tone(10, rate, 1, kind="speech") if "dtx" in name else shelf.tone(5.3, rate, 1)
        call("speexenc", options, tone, shelf.path(name))
        shelf.add(name, f"Speex, {note}", source(10.0 if "dtx" in name else 5.3))
    stereo = shelf.tone()
    call("flac", "-s -f --ogg -o", shelf.path("oga/flac.oga"), stereo)
    shelf.add("oga/flac.oga", "FLAC in Ogg", source(5.3, "flac"))
    call("flac", "-s -f --ogg -o", shelf.path("ogg/flac-24.ogg"), shelf.tone(3.7, 96000, 2, 24))
    shelf.add("ogg/flac-24.ogg", "FLAC in Ogg, 24 bit, 96 kHz", source(3.7, "flac"))
    shelf.put(
        "oga/flac-piped.oga",
        "FLAC in Ogg by ffmpeg, piped",
        ffmpeg("-i", stereo, "-c:a flac -f ogg -"),
        built(5.3, "source", "ffmpeg"),
    )
