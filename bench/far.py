"""velmora-scan and the programs one would otherwise use where a library is cold and far: on a disk with one
head, on a network, on this machine's disk. bench/slow.py makes the storage."""

from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path

import slow_checks
from measuring import DATA, SCAN, Contender, interleave, native, table
from slow import OwnDisk, SlowDisk, SlowNetwork, Storage, storage
from traced import reads_below

ROUNDS = 3
ONCE = ROUNDS  # in every third round
WIDTH = 6  # files that a scan measures at once


@dataclass
class Runner(Contender):
    """A contender that saw one file of `share` only; its seconds are for all."""

    share: int = 1

    def run(self, number: int) -> None:
        super().run(number)
        self.seconds[number] *= self.share


@dataclass
class Race:
    scan: Runner
    alone: Runner  # what a scan of width 1 takes
    by_inode: Runner  # the same reads by one thread
    by_six: Runner
    peers: list[Runner]

    def all(self) -> list[Runner]:
        return [self.scan, self.alone, self.by_inode, self.by_six, *self.peers]

    def table(self) -> str:
        rows = [[runner.name + (f", one file of {runner.share}" if runner.share > 1 else ""),
                 f"{runner.median():.2f}", f"{runner.ratio_to(self.scan):.2f}", str(len(runner.seconds))]
                for runner in self.all()]
        return table(["program", "seconds", "times velmora-scan", "rounds"], rows)

    def compared_to(self, other: Runner, goal: float) -> str:
        """How many times as long as another the scan takes."""
        return (f"- velmora-scan takes {1 / other.ratio_to(self.scan):.2f} times as long as: {other.name}\n"
                f"  (the goal: at most {goal}).\n")


def run() -> str:
    with storage("disk") as disk:
        on_disk = disk_section(disk)
    with storage("network") as network:
        on_network = network_section(network)
    with storage("own") as own:
        cold = own_section(own)
    return ("## Cold and far\n\n"
            "Libraries of which nothing is in memory. The disk with one head and the network are models, as\n"
            "bench/native/SlowDisk.cpp and SlowNetwork.cpp describe them, and are checked before they are\n"
            "used; no real rotating disk and no real network was measured. The third table is of this\n"
            f"machine's own disk. Seconds are the median of {ROUNDS} interleaved rounds, or those of one;\n"
            "each begins cold. \"The same reads\" opens each file, asks for its size and reads what\n"
            "velmora-scan reads of it.\n\n"
            + "\n".join([on_disk, on_network, cold]))


def disk_section(disk: SlowDisk) -> str:
    checked = slow_checks.checked(disk)
    race = raced(disk)
    return (f"### A disk with one head, {count_of(disk)} tracks\n\n"
            "8 ms for each read that does not follow the last one, 150 MB/s; ext4.\n\n"
            + race.table() + "\n" + race.compared_to(race.by_inode, 1.1) + race.compared_to(race.alone, 1)
            + "\n" + checked)


def network_section(network: SlowNetwork) -> str:
    checked = slow_checks.checked(network)
    race = raced(network, rounds_alone=1, share=5)
    many = Runner("velmora-scan", [SCAN, "--quiet", *map(str, network.whole)], before=network.chill)
    interleave([many], 1)
    trips = many.median() * WIDTH / 10_000 / slow_checks.TRIP
    return (f"### A network, {count_of(network)} tracks\n\n"
            "5 ms for each look-up of a name, open and read; any number of them at once.\n\n"
            + race.table() +
            f"\n- 10,000 tracks take velmora-scan {many.median():.1f} s (the goal: below 40 s), which is\n"
            f"  {trips:.1f} round trips a file, one after another, of {WIDTH} files at once.\n\n" + checked)


def own_section(own: OwnDisk) -> str:
    slow_checks.checked(own)
    race = raced(own)
    return (f"### This machine's disk, {count_of(own)} tracks\n\n"
            "The content of the files is let go with `posix_fadvise`, their names and inodes with\n"
            "`drop_caches`; the blocks of the disk that hold names and inodes may be in memory still.\n\n"
            + race.table() + "\n" + race.compared_to(race.by_six, 1.2))


def raced(slow: Storage, rounds_alone: int = ROUNDS, share: int = 1) -> Race:
    """Races all programs on a storage. Those of one thread run in `rounds_alone` rounds; the slowest in one,
    with the folders' `share`-th part."""
    folder = str(slow.folder)
    reads = DATA / "slow.reads"
    expected = write_reads(slow.origin, reads)
    some = sorted(str(path) for path in slow.folder.iterdir())[::share]
    alone = ROUNDS // rounds_alone
    same_reads = native("bench_same_reads")

    def runner(name: str, command: Sequence[str], every: int = 1, **further: object) -> Runner:
        return Runner(name, command, every, before=slow.chill, **further)

    race = Race(
        runner("velmora-scan", [SCAN, "--quiet", folder]),
        runner("velmora's measuring, one file after another", [native("bench_one_by_one"), folder], alone),
        runner("the same reads, one thread, by inode",
               [same_reads, "1", str(reads), folder], alone),
        runner("the same reads, six threads, by inode",
               [same_reads, "6", str(reads), folder]),
        [runner("TagLib, one thread", [native("bench_taglib"), "1", folder], ONCE),
         runner("TagLib, six threads", [native("bench_taglib"), "6", folder], ONCE),
         runner("mediainfo, one process",
                ["sh", "-c", 'find "$@" -type f -print0 | sort -z | xargs -0 mediainfo '
                 '--File_TestContinuousFileNames=0 "--Inform=General;%Duration%\\n"', "sh", *some],
                ONCE, share=share),
         runner("exiftool, one process", ["exiftool", "-q", "-r", "-n", "-p", "$Duration", *some], ONCE,
                must_succeed=False, share=share),
         runner("`find -size`, which opens nothing", ["find", folder, "-type", "f", "-size", "+1k"])])
    interleave(race.all(), ROUNDS)
    for same in (race.by_inode, race.by_six):
        if int(same.output) != expected:
            raise SystemExit(f"{same.name}: {same.output.strip()} bytes were read in place of {expected}")
    return race


def write_reads(origin: Path, out: Path) -> int:
    """Writes what is read of each file below `origin`, as bench_same_reads wants it. Returns how many
    bytes that are."""
    reads = reads_below(origin, [native("bench_one_by_one"), str(origin)])
    out.write_text("".join(f"{read.offset} {read.got} {Path(read.path).relative_to(origin)}\n"
                           for read in reads))
    return sum(read.got for read in reads)


def count_of(slow: Storage) -> str:
    return f"{sum(path.is_file() for path in slow.folder.rglob('*')):,}"
