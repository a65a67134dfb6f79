"""The zip export against zip, and unpacking against the tools it uses, on 1 GB of compressed audio."""

import os
import shutil
from dataclasses import dataclass
from pathlib import Path

from library import library
from measuring import DATA, SCAN, Contender, interleave, native, output_of, table

GIGABYTE = 1_000_000_000
COMPRESSED = {"mp3", "m4a", "ogg", "opus", "wma", "aac", "flac"}
ROUNDS = 3


@dataclass(frozen=True)
class Packed:
    extension: str
    pack: str  # a shell command: $1 is the folder to pack, $2 the archive to write
    unpack: str  # $2/copy is the archive, $2/out the folder to unpack into


PACKED = (
    Packed("tar", 'tar -c -f "$2" -C "$1" .', 'tar -x -f "$2/copy" -C "$2/out"'),
    Packed("zip", 'cd "$1" && zip -q -r -0 "$2" .', 'unzip -qq -o "$2/copy" -d "$2/out"'),
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
    rows = []
    for kind in PACKED:
        archive = DATA / f"compressed.{kind.extension}"
        if not archive.exists():
            output_of(["sh", "-c", kind.pack, "sh", str(folder), str(archive)])
        by_hand = f'cp --reflink=auto "$1" "$2/copy" && mkdir "$2/out" && {kind.unpack} && rm "$2/copy"'
        tool = Contender("by hand", ["sh", "-c", by_hand, "sh", str(archive), str(work)],
                         before=lambda: empty(work))
        ours = Contender("gathering", ["env", f"TMPDIR={work}", native("bench_gathering"), str(archive)],
                         before=lambda: empty(work))
        interleave([tool, ours], ROUNDS)
        rows.append([kind.extension, f"{tool.median():.2f}", f"{ours.median():.2f}",
                     f"{ours.ratio_to(tool):.2f}"])
    empty(work)
    return ("## Unpacking\n\n"
            "The same 1 GB in an archive: copied, unpacked and the copy removed by hand; and gathered by\n"
            "Velmora, which does the same, then walks and orders what came out, and removes it.\n\n"
            + table(["archive", "by hand, seconds", "gathering, seconds", "ratio"], rows))


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
