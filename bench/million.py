"""10,000 and a million files: time and peak memory a file, by report, in plain and very deep folders.

The files are names (hard links) for a few files of one second, so they lie in the page cache and measuring
them takes next to nothing: what is left is what each file costs in the list itself. A folder holds 20 files.
"""

import os
import shutil
import subprocess
import time
from collections.abc import Callable
from pathlib import Path

from measuring import DATA, SCAN, native, output_of, table
from scaling import FILES_IN_A_FOLDER, encode_masters
from window import display

FEW = 500  # folders
MANY = 50_000  # folders, those few included
COPIES = 8  # of each small file: ext4 allows a file 65,000 names
BRANCH = 50  # folders at the end of each deep branch
ALBUM = 10  # of them, in a folder
DEPTH = 40  # folders on the way to a deep file
LETTERS = 25  # of a deep folder's name
SHORT_ROUNDS = 5
REPORTS = {"total": [], "--json": ["--json"], "--files": ["--files"]}


def run() -> str:
    start = min(run_of([SCAN, "--version"])[0] for _ in range(SHORT_ROUNDS))
    rows = []
    windows = []
    for name, folder_of in {"plain": plain, "deep": deep}.items():
        parts = many_files(DATA / f"million-{name}", folder_of)
        for count, tops in ((FEW, parts[:1]), (MANY, parts)):
            files = count * FILES_IN_A_FOLDER
            rows += [row(name, files, report, tops, start) for report in REPORTS]
        windows.append(window_steps(parts))
    return ("## A million files\n\n"
            f"Names for a few files of one second, {FILES_IN_A_FOLDER} in a folder, warm cache. Deep: "
            f"{DEPTH} folders of {LETTERS} letters on the\nway to each file. Without the start of the "
            "program; memory is all that is resident at the peak.\n\n"
            + table(["folders", "report", "files", "seconds", "µs a file", "bytes a file"], rows)
            + "\nThe million in the window, whose main thread has frames to draw meanwhile:\n\n"
            + table(["step", "plain, seconds", "main thread at most, ms", "deep, seconds",
                     "main thread at most, ms"],
                    [[step, *plain_figures, *deep_figures]
                     for (step, *plain_figures), (_, *deep_figures) in zip(*windows)]))


def window_steps(tops: list[Path]) -> list[list[str]]:
    """What each step is, its seconds and the longest turn of the main thread in it; then memory."""
    with display() as environment:
        *lines, memory = output_of([native("bench_many_rows"), *map(str, tops)], environment).splitlines()
    steps = [[step, seconds, longest] for seconds, longest, step in (line.split("\t") for line in lines)]
    before, peak = map(float, memory.split("\t"))
    files = MANY * FILES_IN_A_FOLDER
    taken = (peak - before) * 1e6 / files
    return [*steps, ["bytes a file at the peak, above the empty window", f"{taken:.0f}", ""]]


def row(name: str, files: int, report: str, tops: list[Path], start: float) -> list[str]:
    print(f"  {name}, {files:,} files, {report}", flush=True)
    command = [SCAN, "--quiet", *REPORTS[report], *map(str, tops)]
    runs = [run_of(command) for _ in range(SHORT_ROUNDS if files < 100_000 else 1)]
    seconds = min(seconds for seconds, _ in runs) - start
    memory = max(memory for _, memory in runs)
    return [name, report, f"{files:,}", f"{seconds:.2f}", f"{seconds / files * 1e6:.1f}",
            f"{memory / files:.0f}"]


def run_of(command: list[str]) -> tuple[float, int]:
    """The seconds that `command` takes, and its resident bytes at the peak."""
    begin = time.perf_counter()
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL) as process:
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command[0]} ended with {process.returncode}")
    return seconds, usage.ru_maxrss * 1024


def plain(number: int) -> Path:
    return Path(f"Artist {number // ALBUM + 1}") / f"Album {number + 1}"


def deep(number: int) -> Path:
    branch = number // BRANCH
    chain = [f"Branch {branch + 1} level {level + 1}" for level in range(DEPTH - 2)]
    names = [*chain, f"Artist {number // ALBUM + 1}", f"Album {number + 1}"]
    return Path(*(name.ljust(LETTERS, "x") for name in names))


def many_files(folder: Path, folder_of: Callable[[int], Path]) -> list[Path]:
    """Two folders, the few and the others; made if they are missing."""
    if not folder.exists():
        print(f"making a million names in {folder}", flush=True)
        unfinished = folder.with_suffix(".unfinished")
        shutil.rmtree(unfinished, ignore_errors=True)
        fill(unfinished, folder_of)
        unfinished.rename(folder)
    return [folder / "few", folder / "others"]


def fill(top: Path, folder_of: Callable[[int], Path]) -> None:
    masters = small_masters(top / "masters")
    for number in range(MANY):
        folder = top / ("few" if number < FEW else "others") / folder_of(number)
        folder.mkdir(parents=True)
        opened = os.open(folder, os.O_PATH)
        for file in range(number * FILES_IN_A_FOLDER, (number + 1) * FILES_IN_A_FOLDER):
            master = masters[file % len(masters)]
            os.link(master, f"{file % FILES_IN_A_FOLDER + 1:02} - Track {file + 1}{master.suffix}",
                    dst_dir_fd=opened)
        os.close(opened)


def small_masters(folder: Path) -> list[Path]:
    """Some files of one second in each format."""
    encoded = encode_masters(folder / "encoded")
    masters = []
    for copy in range(COPIES):
        for extension, content in encoded:
            masters.append(folder / f"{copy}.{extension}")
            masters[-1].write_bytes(content)
    return masters
