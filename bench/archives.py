"""The zip export against zip, and unpacking against the tools it uses, on 1 GB of compressed audio.

Where the environment variable VELMORA_BENCH_BEFORE names the build folder of another tree's benchmarks, its
unpacking stands beside ours.
"""

import itertools
import os
import shutil
import tarfile
import tempfile
import zipfile
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

from library import library
from measuring import DATA, SCAN, Contender, interleave, native, table

GIGABYTE = 1_000_000_000
COMPRESSED = {"mp3", "m4a", "ogg", "opus", "wma", "aac", "flac"}
ROUNDS = 5

ZIPS = 20


def pack_zips(folder: Path, archives: Path) -> None:
    archives.mkdir()
    files = files_below(folder)
    for number in range(ZIPS):
        zip_of(files[number::ZIPS], archives / f"{number}.zip")


def pack_tar(folder: Path, archive: Path) -> None:
    with tarfile.open(archive, "w") as packed:
        packed.add(folder, ".")


def pack_nested(folder: Path, archive: Path) -> None:
    files = files_below(folder)
    parts = [archive.with_name(name) for name in ("4.zip", "3.zip", "2.tar")]
    zip_of(files[:1], parts[0])
    zip_of([parts[0], *files[::4]], parts[1])
    with tarfile.open(parts[2], "w") as packed:
        packed.add(parts[1], parts[1].name)
    zip_of([parts[2]], archive)


def files_below(folder: Path) -> list[Path]:
    return sorted(path for path in folder.rglob("*") if path.is_file())


def zip_of(files: list[Path], archive: Path) -> None:
    with zipfile.ZipFile(archive, "w") as packed:
        for file in files:
            packed.write(file, file.name)


@dataclass(frozen=True)
class Packed:
    """Archives, and how they are unpacked by hand: $1 is what was packed, $2 an empty folder."""

    name: str
    archives: str  # in DATA, a file or a folder
    pack: Callable[[Path, Path], None]
    by_hand: str


# Unpacks the archive $1 with a tool; what comes out is then in $out.
UNPACKED = ('unpacked() { out=$2/$(basename "$1").out; mkdir "$out"; cp --reflink=auto "$1" "$2/copy"; '
            'if [ "$3" = tar ]; then tar -x -f "$2/copy" -C "$out"; '
            'else unzip -qq -o "$2/copy" -d "$out"; fi; rm "$2/copy"; }')
PACKED = (
    Packed(f"{ZIPS} zip archives of 50 MB", "zips", pack_zips,
           'for zip in "$1"/*; do unpacked "$zip" "$2" unzip; done'),
    Packed("one tar archive of 1 GB", "one.tar", pack_tar, 'unpacked "$1" "$2" tar'),
    Packed("250 MB, four archives deep", "nested.zip", pack_nested,
           'unpacked "$1" "$2" unzip; unpacked "$out/2.tar" "$2" tar; unpacked "$out/3.zip" "$2" unzip'),
)


def run() -> str:
    folder = compressed_audio(DATA)
    work = DATA / "work"
    return export(folder, work) + "\n" + unpacking(folder, work)


def export(folder: Path, work: Path) -> str:
    out = str(work / "out.zip")
    scan = Contender("velmora-scan --zip", [SCAN, "--quiet", "--zip", out, str(folder)],
                     before=lambda: empty(work))
    zips = [Contender("zip -r", ["zip", "-q", "-r", out, str(folder)], before=lambda: empty(work)),
            Contender("zip -r -0, nothing deflated", ["zip", "-q", "-r", "-0", out, str(folder)],
                      before=lambda: empty(work))]
    interleave([scan, *zips], ROUNDS)
    rows = [[contender.name, f"{contender.median():.2f}", f"{contender.ratio_to(scan):.2f}"]
            for contender in [scan, *zips]]
    return ("## Zip export\n\n"
            f"1 GB of compressed audio, the scan included; medians of {ROUNDS} interleaved rounds.\n\n"
            + table(["program", "seconds", "times velmora-scan"], rows))


def unpacking(folder: Path, work: Path) -> str:
    heads = ["archives", "by hand, seconds", "gathering, seconds", "ratio"]
    programs = [native("bench_gathering")]
    if before := os.environ.get("VELMORA_BENCH_BEFORE"):
        heads += ["before, seconds", "ratio"]
        programs.append(str(Path(before) / "bench" / "bench_gathering"))
    rows = []
    for kind in PACKED:
        archives = str(packed(kind, folder))
        by_hand = f'set -e; {UNPACKED}; {kind.by_hand}; rm -r "$2"/*'
        tool = Contender("by hand", ["sh", "-c", by_hand, "sh", archives, str(work)],
                         before=lambda: empty(work))
        gatherings = [Contender(program, ["env", f"TMPDIR={work}", program, archives],
                                before=lambda: empty(work)) for program in programs]
        interleave([tool, *gatherings], ROUNDS)
        figures = [[f"{one.median():.2f}", f"{one.ratio_to(tool):.2f}"] for one in gatherings]
        rows.append([kind.name, f"{tool.median():.2f}", *itertools.chain(*figures)])
    empty(work)
    return ("## Unpacking\n\n"
            "Each archive is copied and unpacked, and the copy removed, by hand with tar and unzip; and\n"
            "gathered by Velmora, which does the same, looks through what came out, walks and orders it. In\n"
            "the end both remove all of it. Of four archives in one another the first three are opened.\n"
            f"Medians of {ROUNDS} interleaved rounds.\n\n" + table(heads, rows))


def packed(kind: Packed, folder: Path) -> Path:
    archives = DATA / kind.archives
    if not archives.exists():
        with tempfile.TemporaryDirectory(dir=DATA) as unfinished:
            kind.pack(folder, Path(unfinished) / kind.archives)
            (Path(unfinished) / kind.archives).rename(archives)
    return archives


def empty(folder: Path) -> None:
    """Leaves an empty folder and no writes under way."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    os.sync()


def compressed_audio(data: Path) -> Path:
    """A folder with 1 GB out of the library, every format in its share."""
    folder = data / "compressed"
    if not folder.exists():
        unfinished = data / "compressed.unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        files = [path for path in library(data).files() if path.rsplit(".", 1)[1] in COMPRESSED]
        total = sum(os.path.getsize(path) for path in files)
        step = total / GIGABYTE
        taken = 0
        while round(taken * step) < len(files):
            source = Path(files[round(taken * step)])
            target = unfinished / source.parent.name / f"{taken} {source.name}"
            target.parent.mkdir(parents=True, exist_ok=True)
            os.link(source, target)
            taken += 1
        unfinished.rename(folder)
    return folder
