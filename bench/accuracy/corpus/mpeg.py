"""MPEG audio, layers II and III, as real encoders write it: LAME, Shine, TwoLAME, ffmpeg."""

from .shelf import Shelf, decoded, source
from .tools import call, encode, ffmpeg


def make(shelf: Shelf):
    _with_length(shelf)
    _without_length(shelf)
    _layer_two(shelf)


def lame(shelf, name, note, tone, options, truth):
    """One LAME encoding of `tone`, registered."""
    call("lame", "--quiet", options, tone, shelf.path(name))
    shelf.add(name, note, truth)


def _with_length(shelf):
    """LAME writes a first frame that holds the frame count, and how much is encoder delay and padding."""
    stereo = shelf.tone()
    for name, note, options in (
        ("cbr-128", "CBR 128", "-b 128"),
        ("cbr-320", "CBR 320", "-b 320"),
        ("vbr-v0", "VBR -V0", "-V0"),
        ("vbr-v9", "VBR -V9", "-V9"),
        ("abr", "ABR 160", "--abr 160"),
        ("crc", "with checksums", "-p -V4"),
        ("mono", "joined to mono", "-m m -b 64"),
        ("id3-both", "ID3v1 and ID3v2", "--add-id3v2 --tt t"),
        ("dual", "dual channel", "-m d -b 192"),
    ):
        lame(shelf, f"mp3/{name}.mp3", f"LAME, {note}", stereo, options, source(5.3))
    for rate in (8000, 11025, 12000, 16000, 22050, 24000, 32000, 48000):
        lame(shelf, f"mp3/rate-{rate}.mp3", f"LAME, {rate} Hz", shelf.tone(4.7, rate, 1), "-V5", source(4.7))
    lame(shelf, "mp3/tenth.mp3", "LAME, 0.1 s", shelf.tone(0.1), "-b 128", source(0.1, slack=0.001))
    lame(
        shelf, "mp3/tenth-48.mp3", "LAME VBR, 0.1 s", shelf.tone(0.1, 48000), "-V2", source(0.1, slack=0.001)
    )
    lame(
        shelf,
        "mp3/hour.mp3",
        "one hour of silence, frames too small for a LAME tag",
        shelf.tone(3600, 8000, 1, kind="silence"),
        "-b 8 -m m",
        decoded("mpg123"),
    )
    encode(stereo, shelf.path("mp3/ffmpeg.mp3"), "-c:a libmp3lame -q:a 4")
    shelf.add("mp3/ffmpeg.mp3", "VBR by ffmpeg: Xing with Lavf", source(5.3))
    ffmpeg(
        "-i",
        stereo,
        "-i",
        shelf.cover(),
        "-map 0:a -map 1:v -c:a libmp3lame -c:v copy",
        shelf.path("mp3/ffmpeg-cover.mp3"),
    )
    shelf.add("mp3/ffmpeg-cover.mp3", "by ffmpeg with a cover", source(5.3))


def _without_length(shelf):
    """No frame count anywhere: what can be heard is what the frames decode to."""
    stereo, speech = shelf.tone(), shelf.tone(61, 44100, 1, kind="speech")
    for name, note, tone, options in (
        ("bare-cbr", "CBR", stereo, "-b 128"),
        ("bare-vbr", "VBR", stereo, "-V2"),
        ("bare-abr", "ABR", stereo, "--abr 100"),
        ("bare-speech", "VBR, loud and silent parts", speech, "-V4"),
        ("bare-low", "VBR, 22,050 Hz", shelf.tone(9.1, 22050, 1), "-V6"),
        ("bare-lowest", "VBR, 11,025 Hz", shelf.tone(9.1, 11025, 1), "-V6"),
        ("bare-crc", "VBR with checksums", stereo, "-V3 -p"),
    ):
        lame(shelf, f"mp3/{name}.mp3", f"no length: {note}", tone, f"-t {options}", decoded("mpg123"))
    # The quiet half comes first: a guess from the first frames' bit rate goes astray.
    quiet = shelf.root / "sources" / "quiet-then-loud.wav"
    call("sox", "-R -D", shelf.tone(60, 44100, 1, kind="silence"), shelf.tone(60, 44100, 1), quiet)
    lame(
        shelf,
        "mp3/bare-quiet-first.mp3",
        "no length: VBR, a minute of silence, then noise",
        quiet,
        "-t -V2",
        decoded("mpg123"),
    )
    lame(
        shelf,
        "mp3/free-format.mp3",
        "free format, 400 kbit/s",
        stereo,
        "--freeformat -b 400 -t",
        decoded("mpg123"),
    )
    lame(
        shelf,
        "mp3/free-format-tagged.mp3",
        "free format with LAME tag",
        stereo,
        "--freeformat -b 450",
        source(5.3, "mpg123", 0.1),
    )
    for name, rate in (("shine", 44100), ("shine-22050", 22050)):
        encode(
            shelf.tone(5.3, rate),
            shelf.path(f"mp3/{name}.mp3"),
            "-c:a libshine -b:a",
            "128k" if rate == 44100 else "64k",
            "-write_xing 0",
        )
        shelf.add(f"mp3/{name}.mp3", f"no length: Shine, {rate} Hz", decoded("mpg123"))
    shelf.put(
        "mp3/piped.mp3",
        "piped by ffmpeg",
        ffmpeg("-i", stereo, "-c:a libmp3lame -q:a 2 -f mp3 -"),
        decoded("mpg123"),
    )


def _layer_two(shelf):
    for name, rate, channels, options, note in (
        ("cbr-192", 44100, 2, "-b 192", "192 kbit/s"),
        ("cbr-48k", 48000, 2, "-b 256", "48 kHz"),
        ("cbr-32k", 32000, 1, "-b 64", "32 kHz mono"),
        ("vbr", 44100, 2, "-v -V 4", "VBR"),
        ("crc", 44100, 2, "-b 160 -p", "with checksums"),
        ("low-24k", 24000, 2, "-b 64", "MPEG-2, 24 kHz"),
        ("low-22k", 22050, 1, "-b 48", "MPEG-2, 22,050 Hz"),
        ("low-16k", 16000, 1, "-b 32", "MPEG-2, 16 kHz"),
    ):
        call(
            "twolame",
            "-s",
            rate,
            "--quiet",
            options,
            shelf.tone(5.3, rate, channels),
            shelf.path(f"mp2/{name}.mp2"),
        )
        shelf.add(f"mp2/{name}.mp2", f"layer II, {note}", decoded("mpg123"))
    call(
        "twolame",
        "--quiet -v -V 0",
        shelf.root / "sources" / "quiet-then-loud.wav",
        shelf.path("mp2/quiet.mp2"),
    )
    shelf.add("mp2/quiet.mp2", "layer II, VBR, a minute of silence, then noise", decoded("mpg123"))
    encode(shelf.tone(), shelf.path("mp2/ffmpeg.mp2"))
    shelf.add("mp2/ffmpeg.mp2", "layer II by ffmpeg", decoded("mpg123"))
    encode(shelf.tone(3600, 16000, 1, kind="silence"), shelf.path("mp2/hour.mp2"), "-b:a 8k")
    shelf.add("mp2/hour.mp2", "layer II, one hour of silence", decoded("mpg123"))
    encode(shelf.tone(0.1, 48000), shelf.path("mp2/tenth.mp2"))
    shelf.add("mp2/tenth.mp2", "layer II, 0.1 s", decoded("mpg123"))
