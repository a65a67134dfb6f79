"""What the walls cost: libavformat in helper processes against the same code in the program itself, and a
confined tool for each small archive against the tool by hand."""

import os
import subprocess
from pathlib import Path

from library import library
from measuring import DATA, SCAN, Contender, interleave, native, output_of, table

FILES = 500
ARCHIVES = 200
ROUNDS = 15

# Formats that only libavformat times here, by their content.
NEEDING = (("tta", "-c:a tta -f tta"), ("ra", "-c:a ac3 -f rm"), ("mp3", "-c:a ac3 -f ac3"),
           ("mp2", "-c:a aac -f flv"), ("mpc", "-c:a libmp3lame -f avi"))


def run() -> str:
    return helper() + "\n" + tools()


def helper() -> str:
    rows = []
    for name, folder in (("the library above", str(library(DATA).folder)),
                         (f"{FILES} files that only libavformat times", str(needing_files()))):
        ours = Contender("helper", [SCAN, "--quiet", folder])
        direct = Contender("in process", [native("bench_scan_in_process"), "--quiet", folder])
        interleave([direct, ours], ROUNDS)
        if ours.output != direct.output:
            raise SystemExit(f"{folder}: {ours.output} and {direct.output}")
        rows.append([name, f"{direct.median():.3f}", f"{ours.median():.3f}", f"{ours.ratio_to(direct):.2f}"])
    return ("## libavformat behind its wall\n\n"
            "velmora-scan, which runs libavformat in helper processes, and the same program with\n"
            f"libavformat in it; medians of {ROUNDS} interleaved rounds, warm cache.\n\n"
            + table(["files", "in process, seconds", "helper, seconds", "ratio"], rows))


def tools() -> str:
    folder = small_archives()
    by_hand = ('for archive in "$1"/*.zip; do cp "$archive" "$2/copy" && mkdir "$2/out" && '
               'unzip -qq -o "$2/copy" -d "$2/out" && rm -r "$2/copy" "$2/out"; done')
    work = DATA / "walls-work"
    work.mkdir(exist_ok=True)
    hand = Contender("by hand", ["sh", "-c", by_hand, "sh", str(folder), str(work)])
    ours = Contender("gathering", ["env", f"TMPDIR={work}", native("bench_gathering"), str(folder)])
    interleave([hand, ours], ROUNDS)
    return ("## Tools behind their wall\n\n"
            f"{ARCHIVES} zip archives of one short file: copied, unpacked and removed by hand in a shell;\n"
            "and gathered by Velmora, which tries tar first, as for every archive, and puts up a wall\n"
            "around each tool.\n\n"
            + table(["archives", "by hand, seconds", "gathering, seconds", "ratio"],
                    [["zip", f"{hand.median():.2f}", f"{ours.median():.2f}", f"{ours.ratio_to(hand):.2f}"]]))


def needing_files() -> Path:
    folder = DATA / "needing"
    if not folder.exists():
        unfinished = DATA / "needing.unfinished"
        unfinished.mkdir(parents=True, exist_ok=True)
        for extension, options in NEEDING:
            first = unfinished / f"0.{extension}"
            output_of(["sh", "-c", 'ffmpeg -v error -y -f lavfi -i anoisesrc=d=60:r=44100:a=0.1 -ac 2 '
                       f'{options} "$1"', "sh", str(first)])
            for number in range(1, FILES // len(NEEDING)):
                os.link(first, unfinished / f"{number}.{extension}")
        unfinished.rename(folder)
    return folder


def small_archives() -> Path:
    folder = DATA / "small-archives"
    if not folder.exists():
        unfinished = DATA / "small-archives.unfinished"
        unfinished.mkdir(parents=True, exist_ok=True)
        output_of(["sh", "-c", 'ffmpeg -v error -y -f lavfi -i sine=d=1 "$1/a.wav"', "sh", str(unfinished)])
        for number in range(ARCHIVES):
            subprocess.run(["zip", "-q", "-j", f"{number}.zip", "a.wav"], cwd=unfinished, check=True)
        (unfinished / "a.wav").unlink()
        unfinished.rename(folder)
    return folder
