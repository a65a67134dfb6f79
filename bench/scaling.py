"""From 1,000 to 100,000 small files: time a file, the share of walking and ordering, peak memory."""

import shutil
import subprocess
from pathlib import Path

from library import encode
from measuring import DATA, SCAN, Contender, interleave, native, output_of, peak_memory, table

FILES_IN_A_FOLDER = 20
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
    folders = small_files(DATA)
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
    return ("## From 1,000 to 100,000 files\n\n"
            "Small files of six formats, 20 in a folder, warm cache; medians of five interleaved rounds.\n\n"
            + table(["files", "seconds", "µs a file", "µs without the start", "walking and ordering",
                     "peak memory, MB"], rows))


def count_of(folders: list[Path]) -> int:
    return sum(STEPS[folder.name] * FILES_IN_A_FOLDER for folder in folders)


def small_files(data: Path) -> list[Path]:
    """The folders of STEPS; made if they are not there yet."""
    many = data / "many"
    if not many.exists():
        print(f"making 100,000 small files in {many}", flush=True)
        unfinished = data / "many.unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        masters = encode_masters(data / "small")
        for name, folders in STEPS.items():
            for folder in range(folders):
                fill(unfinished / name / f"Folder {folder + 1}", masters)
        unfinished.rename(many)
    return [many / name for name in STEPS]


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


def fill(folder: Path, masters: list[tuple[str, bytes]]) -> None:
    folder.mkdir(parents=True)
    for number in range(FILES_IN_A_FOLDER):
        extension, content = masters[number % len(masters)]
        (folder / f"{number + 1} small.{extension}").write_bytes(content)
