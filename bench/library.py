"""Makes the music library that the benchmarks time: 2,000 tracks of about four minutes in a typical mix of
formats.

Three songs are synthesised and encoded once for each format; the tracks are copies of those, each a file of
its own. Every MP3 gets a tag of its own with a cover of 264 KB. The library is made once and kept.
"""

import os
import shutil
import subprocess
from dataclasses import dataclass
from pathlib import Path

SONG_SECONDS = (228, 240, 252)
COVER_BYTES = 264 * 1024
TRACKS_IN_AN_ALBUM = 12


@dataclass(frozen=True)
class Kind:
    """One kind of file in the library."""

    name: str
    extension: str
    count: int
    encode: str  # a shell command: $IN is the song as WAV, $COVER a JPEG, $OUT the file to write
    id3: bool = False  # put an ID3v2 tag with the cover before what the encoder wrote


KINDS = (
    Kind("MP3, constant bit rate", "mp3", 500, 'lame --quiet -b 128 "$IN" "$OUT"', id3=True),
    Kind("MP3, variable, with index", "mp3", 450, 'lame --quiet -V 5 "$IN" "$OUT"', id3=True),
    Kind("MP3, constant, no header", "mp3", 60, 'lame --quiet -t -b 128 "$IN" "$OUT"', id3=True),
    Kind("MP3, variable, no index", "mp3", 20, 'lame --quiet -t -V 5 "$IN" "$OUT"', id3=True),
    Kind("FLAC", "flac", 350, 'flac -s --picture="$COVER" -o "$OUT" "$IN"'),
    Kind("M4A, index first", "m4a", 180, 'ffmpeg -v error -i "$IN" -b:a 96k -movflags +faststart "$OUT"'),
    Kind("M4A, index last", "m4a", 80, 'ffmpeg -v error -i "$IN" -b:a 96k "$OUT"'),
    Kind("Ogg Vorbis", "ogg", 120, 'oggenc -Q -q 3 -o "$OUT" "$IN"'),
    Kind("Opus", "opus", 80, 'opusenc --quiet --bitrate 64 "$IN" "$OUT"'),
    Kind("WMA", "wma", 60, 'ffmpeg -v error -i "$IN" -b:a 64k "$OUT"'),
    Kind("WAV", "wav", 20, 'cp "$IN" "$OUT"'),
    Kind("AAC, no index", "aac", 30, 'ffmpeg -v error -i "$IN" -b:a 96k "$OUT"'),
    Kind("AIFF", "aiff", 10, 'sox "$IN" "$OUT"'),
    Kind("WavPack", "wv", 20, 'wavpack -q "$IN" -o "$OUT"'),
    Kind("Musepack", "mpc", 10, 'mpcenc --silent "$IN" "$OUT"'),
    Kind("Matroska", "mka", 10, 'ffmpeg -v error -i "$IN" -c:a libopus -b:a 64k "$OUT"'),
)

TRACKS = sum(kind.count for kind in KINDS)


@dataclass(frozen=True)
class Library:
    folder: Path
    seconds: float  # how long all of it plays

    def files(self) -> list[str]:
        return sorted(str(path) for path in self.folder.rglob("*") if path.is_file())


def library(data: Path) -> Library:
    """The library below the folder `data`; made if it is not there yet."""
    folder = data / "library"
    if not folder.exists():
        print(f"making a library of {TRACKS} tracks in {folder}", flush=True)
        masters = make_masters(data)
        unfinished = data / "library.unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        seconds = fill(unfinished, data / "cover.jpg", masters)
        (data / "library.seconds").write_text(f"{seconds}\n")
        unfinished.rename(folder)
    return Library(folder, float((data / "library.seconds").read_text()))


def folder_of(folder: Path, kind: Kind) -> Path:
    """Where in the library's `folder` the tracks of a kind are: one artist published in one kind."""
    return folder / f"Artist {KINDS.index(kind) + 1:02}"


def master_path(data: Path, kind: Kind, song: int) -> Path:
    return data / "masters" / f"{kind.name.replace(', ', '-').replace(' ', '-')}-{song + 1}.{kind.extension}"


def make_masters(data: Path) -> dict[Kind, list[Path]]:
    """Encodes every song as every kind."""
    (data / "masters").mkdir(parents=True, exist_ok=True)
    cover = data / "cover.jpg"
    make_cover(cover)
    masters = {kind: [] for kind in KINDS}
    for song, seconds in enumerate(SONG_SECONDS):
        wav = data / f"song-{song + 1}.wav"
        synthesise(wav, seconds, 110 * (song + 1))
        for kind, paths in masters.items():
            out = master_path(data, kind, song)
            out.unlink(missing_ok=True)
            encode(kind.encode, wav, out, COVER=str(cover))
            paths.append(out)
    return masters


def encode(command: str, source: Path, out: Path, **variables: str) -> None:
    """Runs a shell command that finds `source` in $IN and `out` in $OUT."""
    environment = {**os.environ, "IN": str(source), "OUT": str(out), **variables}
    subprocess.run(["sh", "-c", command], check=True, env=environment, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL)


def synthesise(path: Path, seconds: int, pitch: int) -> None:
    """A plucked string that swells over a little noise: encoders of variable rate have something to vary."""
    length = str(seconds)
    subprocess.run(["sox", "-R", "-D", "-n", "-r", "44100", "-c", "2", "-b", "16", str(path),
                    "synth", length, "pinknoise", "gain", "-40", "synth", length, "pluck", "mix", str(pitch),
                    "remix", "1", "1", "tremolo", "0.05", "90", "gain", "-n", "-12"], check=True)


def make_cover(path: Path) -> None:
    """A JPEG of exactly COVER_BYTES: a real picture, with zeros after its end."""
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i", "testsrc2=s=1000x1000",
                    "-frames:v", "1", "-q:v", "2", str(path)], check=True)
    picture = path.read_bytes()
    path.write_bytes(picture + bytes(COVER_BYTES - len(picture)))


def fill(folder: Path, cover: Path, masters: dict[Kind, list[Path]]) -> float:
    """Writes the tracks, an album of one kind each. Returns how many seconds they play."""
    picture = cover.read_bytes()
    seconds = 0.0
    for kind, paths in masters.items():
        for track in range(kind.count):
            album = folder_of(folder, kind) / f"Album {track // TRACKS_IN_AN_ALBUM + 1}"
            album.mkdir(parents=True, exist_ok=True)
            song = track % len(SONG_SECONDS)
            title = f"{track % TRACKS_IN_AN_ALBUM + 1:02} - Song {track + 1}"
            copy = album / f"{title}.{kind.extension}"
            with open(copy, "wb") as out:
                if kind.id3:
                    out.write(id3_tag(title, album.name, picture))
                out.write(paths[song].read_bytes())
            seconds += SONG_SECONDS[song]
    return seconds


def id3_tag(title: str, album: str, picture: bytes) -> bytes:
    """An ID3v2.3 tag with a title, an album and a front cover."""
    frames = (id3_frame(b"TIT2", b"\0" + title.encode("latin-1"))
              + id3_frame(b"TALB", b"\0" + album.encode("latin-1"))
              + id3_frame(b"APIC", b"\0image/jpeg\0\x03\0" + picture))
    size = len(frames)
    synchsafe = bytes((size >> shift) & 0x7F for shift in (21, 14, 7, 0))
    return b"ID3\x03\0\0" + synchsafe + frames


def id3_frame(name: bytes, content: bytes) -> bytes:
    return name + len(content).to_bytes(4, "big") + b"\0\0" + content
