"""FLAC and WavPack, by their own encoders, with the tags and the unknown totals they meet in the wild."""

from .layout import apev2, id3v1, id3v2, id3v2_picture
from .shelf import Shelf, built, source
from .tools import call, encode, ffmpeg, pcm_of, sox


def make(shelf: Shelf):
    _flac(shelf)
    _flac_tagged(shelf)
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
    plain = shelf.path("wv/plain.wv").read_bytes()
    tagged = plain + apev2() + id3v1()
    shelf.put("wv/tagged.wv", "APEv2 and ID3v1 at the end", tagged, source(5.3, "wvunpack"))
    dsd = shelf.path("dsf/stereo.dsf")
    call("wavpack", "-q -y", dsd, "-o", shelf.path("wv/dsd.wv"))
    shelf.add("wv/dsd.wv", "DSD64", built(3.0, "source of 3 s of DSD", "ffmpeg"))
