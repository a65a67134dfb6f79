"""WAV from real encoders: sample kinds, rates, channels, compressed codecs, broadcast and Sony Wave64 files.
"""

from . import native
from .shelf import Shelf, built, decoded, source
from .tools import call, encode, ffmpeg, sox


def make(shelf: Shelf):
    _plain(shelf)
    _compressed(shelf)
    _streamed(shelf)
    _broadcast(shelf)
    _wave64(shelf)


def _plain(shelf):
    stereo = shelf.tone()
    for codec, note in (
        ("pcm_u8", "8 bit"),
        ("pcm_s16le", "16 bit"),
        ("pcm_s24le", "24 bit"),
        ("pcm_s32le", "32 bit"),
        ("pcm_f32le", "32-bit float"),
        ("pcm_f64le", "64-bit float"),
    ):
        name = f"wav/{codec}.wav"
        encode(stereo, shelf.path(name), "-c:a", codec)
        shelf.add(name, f"PCM, {note}, 44.1 kHz stereo", source(5.3))
    for rate, channels in (
        (8000, 1),
        (11025, 1),
        (22050, 2),
        (48000, 2),
        (96000, 2),
        (192000, 2),
        (384000, 1),
    ):
        name = f"wav/rate-{rate}.wav"
        encode(shelf.tone(3.7, rate, channels), shelf.path(name), "-c:a pcm_s24le")
        shelf.add(name, f"PCM, {rate} Hz, {channels} ch", source(3.7))
    for channels, note in ((6, "5.1"), (8, "7.1")):
        name = f"wav/extensible-{channels}ch.wav"
        encode(shelf.tone(3.1, 48000, channels), shelf.path(name), "-c:a pcm_s24le")
        shelf.add(name, f"WAVE_FORMAT_EXTENSIBLE, {note}", source(3.1))
    encode(shelf.tone(0.1), shelf.path("wav/tenth.wav"))
    shelf.add("wav/tenth.wav", "0.1 s", source(0.1, slack=0.001))
    encode(stereo, shelf.path("wave/float.wave"), "-c:a pcm_f32le -f wav")
    shelf.add("wave/float.wave", "PCM, 32-bit float", source(5.3))
    encode(stereo, shelf.path("wave/plain.wave"), "-f wav")
    shelf.add("wave/plain.wave", "PCM, 16 bit", source(5.3))
    sox(stereo, "-t wav -B", shelf.path("wav/rifx.wav"))
    shelf.add("wav/rifx.wav", "RIFX: big-endian", source(5.3))
    sox(shelf.tone(3.7, 96000, 2, 24), "-t wav -B", shelf.path("wav/rifx-24.wav"))
    shelf.add("wav/rifx-24.wav", "RIFX, extensible", source(3.7, "sox"))
    shelf.hard("wav/rifx-24.wav")


def _compressed(shelf):
    mono = shelf.tone(5.3, 44100, 1)
    for codec, note in (
        ("pcm_mulaw", "mu-law"),
        ("pcm_alaw", "A-law"),
        ("adpcm_ms", "Microsoft ADPCM"),
        ("adpcm_ima_wav", "IMA ADPCM"),
        ("adpcm_yamaha", "Yamaha ADPCM"),
        ("g726", "G.726"),
        ("libgsm_ms", "GSM 6.10"),
        ("libmp3lame", "MP3"),
    ):
        rate = ["-ar 8000"] if codec in ("g726", "libgsm_ms") else []
        name = f"wav/{codec}.wav"
        encode(mono, shelf.path(name), "-c:a", codec, *rate)
        shelf.add(name, f"{note} in WAV", decoded())
    encode(shelf.tone(5.3, 8000, 1), shelf.path("wave/mulaw.wave"), "-c:a pcm_mulaw -f wav")
    shelf.add("wave/mulaw.wave", "mu-law, 8 kHz", source(5.3))
    encode(shelf.tone(), shelf.path("wave/ima.wave"), "-c:a adpcm_ima_wav -f wav")
    shelf.add("wave/ima.wave", "IMA ADPCM, stereo", decoded())


def _streamed(shelf):
    """Written to a pipe, so that the sizes in the header could not be filled in."""
    stereo = shelf.tone()
    shelf.put(
        "wav/piped-ffmpeg.wav", "piped: sizes 0xFFFFFFFF", ffmpeg("-i", stereo, "-f wav -"), source(5.3)
    )
    shelf.put("wav/piped-sox.wav", "piped: sizes near 2^31", sox(stereo, "-t wav -"), source(5.3))
    shelf.put(
        "wav/piped-flac.wav",
        "from a flac of unknown length",
        call("flac", "-s -d -c -", stdin=call("flac", "-s -c -", stdin=stereo.read_bytes())),
        source(5.3),
    )
    shelf.put(
        "wave/piped.wave",
        "piped: sizes 0xFFFFFFFF, 24 bit",
        ffmpeg("-i", stereo, "-c:a pcm_s24le -f wav -"),
        source(5.3),
    )


def _broadcast(shelf):
    stereo = shelf.tone(4.2, 48000)
    for name, codec, options, note in (
        ("bwf/bext.bwf", "pcm_s24le", ["-write_bext 1 -metadata description=take"], "bext chunk first"),
        ("wav/bext.wav", "pcm_s16le", ["-write_bext 1 -metadata originator=desk"], "bext chunk first"),
        ("bwf/rf64.bwf", "pcm_s24le", ["-write_bext 1 -rf64 always"], "RF64 with bext"),
        ("wav/peak.wav", "pcm_s16le", ["-write_peak on"], "peak envelope chunk after the data"),
        ("bwf/mpeg.bwf", "libmp3lame", ["-write_bext 1"], "MP3 in a broadcast WAV"),
    ):
        encode(stereo, shelf.path(name), options, "-c:a", codec, "-f wav")
        shelf.add(name, note, decoded())
    for name, codec in (
        ("rf64/always.rf64", "pcm_s16le"),
        ("rf64/deep.rf64", "pcm_s24le"),
        ("wav/rf64.wav", "pcm_f32le"),
    ):
        encode(stereo, shelf.path(name), "-c:a", codec, "-rf64 always -f wav")
        shelf.add(name, "RF64, sizes in ds64", source(4.2))
    native.sndfile_write(stereo, shelf.path("rf64/sndfile.rf64"), native.RF64 | native.S16)
    shelf.add("rf64/sndfile.rf64", "RF64 by libsndfile", source(4.2))


def _wave64(shelf):
    stereo = shelf.tone(4.9, 48000)
    for name, codec in (
        ("w64/s16.w64", "pcm_s16le"),
        ("w64/s24.w64", "pcm_s24le"),
        ("w64/float.w64", "pcm_f32le"),
        ("w64/mulaw.w64", "pcm_mulaw"),
    ):
        encode(stereo, shelf.path(name), "-c:a", codec)
        shelf.add(name, f"Wave64, {codec}", source(4.9))
    native.sndfile_write(stereo, shelf.path("w64/sndfile.w64"), native.W64 | native.S24)
    shelf.add("w64/sndfile.w64", "Wave64 by libsndfile, fact chunk", source(4.9))
    native.sndfile_write(stereo, shelf.path("w64/ima.w64"), native.W64 | native.IMA)
    shelf.add("w64/ima.w64", "Wave64, IMA ADPCM", source(4.9))
    shelf.put(
        "w64/piped.w64",
        "Wave64 piped: size unknown",
        ffmpeg("-i", stereo, "-f w64 -"),
        built(4.9, "bytes after the header; ffmpeg decodes nothing"),
    )
    encode(shelf.tone(0.1), shelf.path("w64/tenth.w64"))
    shelf.add("w64/tenth.w64", "Wave64, 0.1 s", source(0.1, slack=0.001))
