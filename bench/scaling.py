"""From 1,000 to 100,000 files: time a file, the share of walking and ordering, peak memory."""

import itertools
import os
import shutil
import subprocess
from collections.abc import Callable, Iterator
from pathlib import Path

from library import encode, library
from measuring import DATA, SCAN, Contender, interleave, native, output_of, peak_memory, table

FILES_IN_A_FOLDER = 20
STRIDE = 7  # neighbours in a folder come from all over the library
# Folders of files, each adding to those before it: scans of 1,000, 10,000 and 100,000 files.
STEPS = {"first": 50, "second": 450, "third": 4500}
ENCODERS = {
    "mp3": 'lame --quiet -b 16 "$IN" "$OUT"',
    "flac": 'flac -s -o "$OUT" "$IN"',
    "m4a": 'ffmpeg -v error -i "$IN" "$OUT"',
    "ogg": 'oggenc -Q -o "$OUT" "$IN"',
    "opus": 'opusenc --quiet --bitrate 16 "$IN" "$OUT"',
    "wav": 'cp "$IN" "$OUT"',
}


def run() -> str:
    tracks = scan_table(linked_tracks(DATA))
    small = scan_table(small_files(DATA))
    return ("## From 1,000 to 100,000 files\n\n"
            "20 files in a folder, warm cache; medians of five interleaved rounds.\n\n"
            f"Tracks of the library above, each under fifty names:\n\n{tracks}\n"
            "Files of one second at 8 kHz, which take next to nothing to measure:\n\n" + small)


def scan_table(folders: list[Path]) -> str:
    """Scans the first, the first two, and all three of `folders`."""
    start = Contender("start", [SCAN, "--version"])
    scans = [Contender(f"{count_of(folders[:step + 1]):,} files",
                       [SCAN, "--quiet", *map(str, folders[:step + 1])]) for step in range(len(folders))]
    interleave([start, *scans], rounds=5)
    rows = []
    for step, scan in enumerate(scans):
        paths = list(map(str, folders[:step + 1]))
        files = count_of(folders[:step + 1])
        gathering = min(float(output_of([native("bench_gathering"), *paths]).split()[1]) for _ in range(3))
        rows.append([f"{files:,}", f"{scan.median():.3f}", f"{scan.median() / files * 1e6:.1f}",
                     f"{(scan.median() - start.median()) / files * 1e6:.1f}",
                     f"{gathering / scan.median():.1%}", f"{peak_memory(scan.command):.0f}"])
    return table(["files", "seconds", "µs a file", "µs without the start", "walking and ordering",
                  "peak memory, MB"], rows)


def count_of(folders: list[Path]) -> int:
    return sum(STEPS[folder.name] * FILES_IN_A_FOLDER for folder in folders)


def small_files(data: Path) -> list[Path]:
    """The folders of STEPS with small files; made if they are not there yet."""
    def fill(many: Path) -> None:
        masters = encode_masters(data / "small")
        for folder, numbers in folders_below(many):
            for number in numbers:
                extension, content = masters[number % len(masters)]
                (folder / f"{number + 1} small.{extension}").write_bytes(content)

    return made(data / "many", fill)


def linked_tracks(data: Path) -> list[Path]:
    """The folders of STEPS with the library's tracks, mixed, as hard links; made if they are missing."""
    tracks = [Path(path) for path in library(data).files()]

    def fill(linked: Path) -> None:
        names = itertools.count()
        for folder, numbers in folders_below(linked):
            for number in numbers:
                track = tracks[next(names) * STRIDE % len(tracks)]
                os.link(track, folder / f"{number + 1} {track.name}")

    return made(data / "linked", fill)


def made(folder: Path, fill: Callable[[Path], None]) -> list[Path]:
    if not folder.exists():
        print(f"making the files in {folder}", flush=True)
        unfinished = folder.with_suffix(".unfinished")
        shutil.rmtree(unfinished, ignore_errors=True)
        fill(unfinished)
        unfinished.rename(folder)
    return [folder / name for name in STEPS]


def folders_below(top: Path) -> Iterator[tuple[Path, range]]:
    """Makes every folder of STEPS below `top`, and gives each with the numbers of the files to be in it."""
    for name, folders in STEPS.items():
        for number in range(folders):
            folder = top / name / f"Folder {number + 1}"
            folder.mkdir(parents=True)
            yield folder, range(FILES_IN_A_FOLDER)


def encode_masters(folder: Path) -> list[tuple[str, bytes]]:
    """One second at 8 kHz in each format."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    wav = folder / "source.wav"
    subprocess.run(["sox", "-R", "-n", "-r", "8000", "-c", "1", "-b", "16", str(wav), "synth", "1", "pluck"],
                   check=True)
    for extension, command in ENCODERS.items():
        encode(command, wav, folder / f"small.{extension}")
    return [(extension, (folder / f"small.{extension}").read_bytes()) for extension in ENCODERS]
