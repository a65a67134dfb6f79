"""velmora-scan against the programs one would otherwise use, on a library of 2,000 tracks."""

import json
import re
from dataclasses import dataclass

from library import TRACKS, library
from measuring import DATA, SCAN, Contender, interleave, native, output_of, table, warm

ROUNDS = 15
SLOW = 5  # slow programs run in every fifth round
SLOWEST = ROUNDS  # one that takes minutes runs once


@dataclass
class Peer(Contender):
    """A program that prints the playing time of each file, or of all, as numbers on lines of their own."""

    units_a_second: int = 1

    def total(self) -> float:
        numbers = re.findall(r"^\d+(?:\.\d+)?$", self.output, re.MULTILINE)
        return sum(map(float, numbers)) / self.units_a_second


def run() -> str:
    music = library(DATA)
    files = music.files()
    folder = str(music.folder)
    warm(files)
    start = Contender("velmora-scan --version", [SCAN, "--version"])
    scan = Contender("velmora-scan", [SCAN, "--quiet", folder])
    floor = Contender("the floor: open, fstat, read 64 KiB at either end, close",
                      [native("bench_floor"), folder])
    peers = [
        Peer("TagLib, six threads", [native("bench_taglib"), "6", folder]),
        Peer("`soxi -T -D`", ["soxi", "-T", "-D", *files], every=SLOW, must_succeed=False),
        Peer("mediainfo, one process",
             ["mediainfo", "--File_TestContinuousFileNames=0", "--Inform=General;%Duration%\\n", *files],
             every=SLOW, units_a_second=1000),
        Peer("exiftool, one process", ["exiftool", "-q", "-r", "-n", "-p", "$Duration", folder], every=SLOW,
             must_succeed=False),
        Peer("ffprobe, a process a file, `xargs -P2`",
             ["sh", "-c", 'find "$1" -type f -print0 | xargs -0 -n 1 -P 2 '
              "ffprobe -v error -show_entries format=duration -of csv=p=0", "sh", folder], every=SLOWEST),
    ]
    interleave([start, scan, floor, *peers], ROUNDS)

    def row(contender: Contender, total: str) -> list[str]:
        return [contender.name, f"{contender.median():.3f}", f"{contender.ratio_to(scan):.2f}",
                str(len(contender.seconds)), total]

    found = json.loads(output_of([SCAN, "--quiet", "--json", folder]))["seconds"]
    rows = [row(scan, f"{found / music.seconds:.2%}"), row(floor, "")]
    rows += [row(peer, f"{peer.total() / music.seconds:.2%}") for peer in peers]
    return (f"## A library of {TRACKS:,} tracks\n\n"
            f"{TRACKS:,} tracks of about four minutes, {music.seconds / 3600:.1f} hours; warm cache; whole\n"
            "process against whole process in interleaved rounds. Seconds are the median of the rounds,\n"
            "\"times\" the median of the ratios within a round. \"Total\" is the sum of what a program\n"
            "says, as a share of the truth.\n\n"
            + table(["program", "seconds", "times velmora-scan", "rounds", "total"], rows)
            + f"\nOf its time `velmora-scan` needs {start.median() * 1000:.1f} ms to start and to load its\n"
            "libraries.\n")
