"""What a file of each kind costs velmora-scan: reads, bytes, time."""

from library import KINDS, folder_of, library
from measuring import DATA, SCAN, Contender, interleave, table, warm
from traced import reads_below

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
        reads = reads_below(example, [SCAN, "--quiet", str(example)])
        rows.append([kind.name, str(kind.count), f"{example.stat().st_size / 1e6:.1f}", str(len(reads)),
                     f"{sum(read.got for read in reads) / 1024:,.1f}",
                     f"{(scan.median() - start.median()) / files * 1e6:.0f}"])
    return ("## What a file costs\n\n"
            "The reads that one file of the library takes and the bytes they bring, counted with strace;\n"
            f"the time a file, warm cache, of a scan of at least {FILES_AT_ONCE} of its kind without the\n"
            "program's start.\n\n"
            + table(["kind", "in the library", "MB", "reads", "KiB read", "µs"], rows))
