"""MP4 and its kin (.m4a .m4b .m4r .3ga .aax .alac) as ffmpeg writes them: layouts, fragments, codecs, edit
lists.
"""

from . import native
from .shelf import Shelf, built, decoded, source
from .tools import encode, ffmpeg


def make(shelf: Shelf):
    _layouts(shelf)
    _codecs(shelf)
    _fragments(shelf)
    _edits(shelf)
    _kin(shelf)


def _layouts(shelf):
    stereo = shelf.tone()
    for name, note, options in (
        ("m4a/plain.m4a", "moov at the end", ""),
        ("m4a/faststart.m4a", "moov first", "-movflags +faststart"),
        ("m4a/vbr.m4a", "VBR", "-q:a 1.2"),
        ("m4a/no-edit.m4a", "no edit list", "-use_editlist 0"),
        ("m4r/ring.m4r", "ring tone", ""),
        ("m4b/book.m4b", "book", "-movflags +faststart"),
        ("m4a/tagged.m4a", "tags", "-metadata title=t -metadata album=a"),
    ):
        encode(stereo, shelf.path(name), "-c:a aac", options, "-f", "mp4" if name.endswith("m4r") else "ipod")
        shelf.add(name, f"AAC, {note}", source(5.3, slack=0.06))
    ffmpeg(
        "-i",
        stereo,
        "-i",
        shelf.cover(),
        "-map 0:a -map 1:v -c:a aac -c:v copy -disposition:v attached_pic",
        shelf.path("m4a/cover.m4a"),
    )
    shelf.add("m4a/cover.m4a", "AAC with a cover", source(5.3, slack=0.06))
    marks = shelf.root / "sources" / "chapters.txt"
    marks.write_text(
        ";FFMETADATA1\n"
        + "".join(
            f"[CHAPTER]\nTIMEBASE=1/1\nSTART={start}\nEND={start + 1}\ntitle=part {start}\n"
            for start in range(5)
        )
    )
    ffmpeg("-i", stereo, "-i", marks, "-map 0:a -map_metadata 1 -c:a aac", shelf.path("m4b/chapters.m4b"))
    shelf.add("m4b/chapters.m4b", "AAC with a chapter track", source(5.3, slack=0.06))
    for name, seconds, rate, channels, kind in (
        ("m4a/tenth.m4a", 0.1, 44100, 2, "noise"),
        ("m4a/high.m4a", 4.3, 96000, 2, "noise"),
        ("m4b/hour.m4b", 3600, 8000, 1, "silence"),
        ("m4a/mono.m4a", 7.7, 22050, 1, "noise"),
        ("m4a/six.m4a", 4.3, 48000, 6, "noise"),
    ):
        encode(shelf.tone(seconds, rate, channels, kind=kind), shelf.path(name), "-c:a aac")
        shelf.add(
            name, f"AAC, {seconds} s, {rate} Hz, {channels} ch", source(float(seconds), slack=1100 / rate)
        )


def _codecs(shelf):
    stereo, fast = shelf.tone(), shelf.tone(5.3, 48000)
    for name, codec, tone in (
        ("alac", "alac", stereo),
        ("mp3", "libmp3lame", stereo),
        ("flac", "flac", stereo),
        ("opus", "libopus", fast),
        ("ac3", "ac3", fast),
        ("eac3", "eac3", fast),
        ("mp2", "mp2", fast),
    ):
        encode(tone, shelf.path(f"m4a/{name}.m4a"), "-c:a", codec, "-strict -2 -f mp4")
        exact = name in ("alac", "flac", "opus")
        shelf.add(f"m4a/{name}.m4a", f"{name} in MP4", source(5.3) if exact else source(5.3, slack=0.1))
    encode(shelf.tone(3.7, 96000, 2, 24), shelf.path("alac/high.alac"), "-c:a alac -f ipod")
    shelf.add("alac/high.alac", "ALAC, 24 bit, 96 kHz", source(3.7))
    encode(stereo, shelf.path("alac/plain.alac"), "-c:a alac -f ipod -movflags +faststart")
    shelf.add("alac/plain.alac", "ALAC in MP4", source(5.3))
    encode(shelf.tone(0.1), shelf.path("alac/tenth.alac"), "-c:a alac -f ipod")
    shelf.add("alac/tenth.alac", "ALAC, 0.1 s", source(0.1, slack=0.001))
    encode(stereo, shelf.path("m4a/pcm-in-mov.m4a"), "-c:a pcm_s16le -f mov")
    shelf.add("m4a/pcm-in-mov.m4a", "PCM in QuickTime", source(5.3))
    encode(stereo, shelf.path("m4a/ima-in-mov.m4a"), "-c:a adpcm_ima_qt -f mov")
    shelf.add("m4a/ima-in-mov.m4a", "IMA ADPCM in QuickTime", source(5.3))


def _fragments(shelf):
    stereo = shelf.tone(13.3)
    for name, note, flags in (
        ("fragments", "fragments of 1 s", "frag_keyframe+empty_moov"),
        ("dash", "DASH", "dash"),
        ("cmaf", "CMAF", "cmaf"),
        ("no-mfra", "fragments, no index at the end", "frag_keyframe+empty_moov+skip_trailer"),
        ("base-moof", "fragments relative to moof", "frag_keyframe+empty_moov+default_base_moof"),
        ("sidx", "fragments with a global index", "dash+global_sidx"),
        ("delayed", "moov after the first fragment", "frag_keyframe+delay_moov"),
    ):
        encode(
            stereo,
            shelf.path(f"m4a/{name}.m4a"),
            "-c:a aac -movflags",
            flags,
            "-frag_duration 1000000 -f mp4",
        )
        # Without an edit list the priming of 1,024 samples is heard.
        shelf.add(f"m4a/{name}.m4a", f"AAC, {note}", source(13.3, slack=0.06))
    encode(
        stereo,
        shelf.path("m4a/alac-fragments.m4a"),
        "-c:a alac -movflags frag_keyframe+empty_moov -frag_duration 1000000 -f mp4",
    )
    shelf.add("m4a/alac-fragments.m4a", "ALAC, fragments of 1 s", source(13.3))
    encode(
        shelf.tone(13.3, 48000),
        shelf.path("m4b/opus-fragments.m4b"),
        "-c:a libopus -movflags frag_keyframe+empty_moov -frag_duration 2000000 -f mp4",
    )
    shelf.add("m4b/opus-fragments.m4b", "Opus, fragments of 2 s", source(13.3, slack=0.06))


def _edits(shelf):
    """Cut without encoding again: the edit list tells which part of the samples is played."""
    whole = shelf.root / "sources" / "whole.m4a"
    encode(shelf.tone(21.3), whole, "-c:a aac")
    for name, start, length in (("cut-front", 5, None), ("cut-both", 3.2, 9.5)):
        ffmpeg(
            "-ss",
            start,
            *(["-t", length] if length else []),
            "-i",
            whole,
            "-c copy",
            shelf.path(f"m4a/{name}.m4a"),
        )
        shelf.add(f"m4a/{name}.m4a", "cut without encoding: edit list", decoded())


def _kin(shelf):
    narrow = b"#!AMR\n" + b"".join(native.amr_narrow_frames(shelf.tone(5.3, 8000, 1)))
    wide = b"#!AMR-WB\n" + b"".join(native.amr_wide_frames(shelf.tone(5.3, 16000, 1)))
    for name, stream, note in (
        ("3ga/narrow.3ga", narrow, "AMR-NB in 3GP"),
        ("3ga/wide.3ga", wide, "AMR-WB in 3GP"),
    ):
        ffmpeg("-i - -c copy -f 3gp", shelf.path(name), stdin=stream)
        shelf.add(name, note, source(5.3))
    encode(shelf.tone(5.3, 32000, 1), shelf.path("3ga/aac.3ga"), "-c:a aac -f 3gp")
    shelf.add("3ga/aac.3ga", "AAC in 3GP", source(5.3, slack=0.06))
    for name, note, options in (
        ("aax/plain.aax", "AAX brand", ""),
        ("aax/faststart.aax", "AAX brand, moov first", "-movflags +faststart"),
    ):
        encode(shelf.tone(9.3, 22050), shelf.path(name), "-c:a aac", options, "-f mp4")
        content = bytearray(shelf.path(name).read_bytes())
        content[8:12] = b"aax "
        shelf.put(name, note, bytes(content), source(9.3, slack=0.06))
        if not options:
            locked = bytes(content).replace(b"mp4a", b"aavd", 1)
            shelf.put(
                "aax/locked.aax",
                "AAX brand, encrypted sample entry",
                locked,
                built(9.3, "as the plain file; nothing decodes it without a key"),
            )
