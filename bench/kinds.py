"""What a file of each kind costs velmora-scan: reads, bytes, time."""

import re
import tempfile
from pathlib import Path

from library import KINDS, folder_of, library
from measuring import DATA, SCAN, Contender, interleave, output_of, table, warm

FILES_AT_ONCE = 600  # a kind's folder is given so often that one process times at least this many files
ROUNDS = 7


def run() -> str:
    music = library(DATA)
    warm(music.files())
    start = Contender("start", [SCAN, "--version"])
    scans = {}
    for kind in KINDS:
        repeats = -(-FILES_AT_ONCE // kind.count)
        folder = str(folder_of(music.folder, kind))
        scans[kind] = (Contender(kind.name, [SCAN, "--quiet", *[folder] * repeats]), repeats * kind.count)
    interleave([start, *(scan for scan, _ in scans.values())], ROUNDS)
    rows = []
    for kind, (scan, files) in scans.items():
        example = min(folder_of(music.folder, kind).rglob(f"*.{kind.extension}"))
        calls, read_bytes = reads_of(example)
        rows.append([kind.name, str(kind.count), f"{example.stat().st_size / 1e6:.1f}", str(calls),
                     f"{read_bytes / 1024:,.1f}", f"{(scan.median() - start.median()) / files * 1e6:.0f}"])
    return ("## What a file costs\n\n"
            "The reads that one file of the library takes and the bytes they bring, counted with strace;\n"
            f"the time a file, warm cache, of a scan of at least {FILES_AT_ONCE} of its kind without the\n"
            "program's start.\n\n"
            + table(["kind", "in the library", "MB", "reads", "KiB read", "µs"], rows))


def reads_of(file: Path) -> tuple[int, int]:
    """How many read calls a scan of `file` makes on it and how many bytes they return. A mapped file is an
    error: its reads cannot be counted."""
    calls = 0
    read_bytes = 0
    with tempfile.TemporaryDirectory() as logs:
        output_of(["strace", "-ff", "-y", "-qq", "-s", "0", "-o", f"{logs}/log",
                   "-e", "trace=read,pread64,readv,preadv,preadv2,mmap", SCAN, "--quiet", str(file)])
        for log in Path(logs).iterdir():
            for line in log.read_text(errors="replace").splitlines():
                if f"<{file}>" not in line:
                    continue
                if line.startswith("mmap"):
                    raise SystemExit(f"{file} is mapped: its reads cannot be counted")
                calls += 1
                read_bytes += int(re.search(r"= (\d+)", line)[1])
    return calls, read_bytes
