"""Whether slow storage is as slow as it is said to be. Each check is a row: what was done, how long it was to
take, how long it took; one that is further off than may be ends the benchmark."""

import mmap
import os
import random
import threading
import time
from collections.abc import Callable, Iterable
from itertools import islice
from pathlib import Path

from measuring import table
from slow import OwnDisk, SlowDisk, SlowNetwork

TOLERANCE = 0.1  # of what was expected; the model itself takes up to 3%, a busy machine more
TOLERANCE_OF_MANY = 0.35  # several threads wait for this machine's processors as well
AT_ONCE = 0.02  # seconds, for what is to cost nothing
SEEK = 0.008
BYTES_A_SECOND = 150e6
TRIP = 0.005
BLOCK = 4096


class Checks:
    def __init__(self) -> None:
        self.rows: list[list[str]] = []

    def __call__(self, what: str, expected: float, work: Callable[[], None],
                 tolerance: float = TOLERANCE) -> None:
        begin = time.perf_counter()
        work()
        took = time.perf_counter() - begin
        if abs(took - expected) > max(tolerance * expected, AT_ONCE):
            raise SystemExit(f"the model is off: {what}: {took:.3f} s in place of {expected:.3f} s")
        self.rows.append([what, f"{expected:.3f}", f"{took:.3f}"])

    def table(self) -> str:
        return table(["the model, checked", "expected, s", "measured, s"], self.rows)


def disk_checks(disk: SlowDisk) -> str:
    check = Checks()
    size = 1 << 20
    chance = random.Random(1)
    device = os.open(disk.device, os.O_RDONLY | os.O_DIRECT)

    def read(offset: int, count: int = BLOCK) -> None:
        os.preadv(device, [memoryview(mmap.mmap(-1, count))], offset)

    def read_anywhere(times: int) -> None:
        for _ in range(times):
            read(chance.randrange(2000) * size)

    def read_in_sequence() -> None:
        for block in range(100, 190):
            read(block * size, size)

    one_read = SEEK + BLOCK / BYTES_A_SECOND
    check("90 MiB in sequence", SEEK + 90 * size / BYTES_A_SECOND, read_in_sequence)
    check("60 reads of 4 KiB anywhere", 60 * one_read, lambda: read_anywhere(60))
    check("the same by six threads", 60 * one_read, lambda: on_threads(6, lambda: read_anywhere(10)))
    os.close(device)
    disk.chill()
    opened = open_some(islice(files_below(disk.folder), 40))
    check("40 places asked for ahead (`POSIX_FADV_WILLNEED`)", 0,
          lambda: each(opened, lambda file: os.posix_fadvise(file, 0, BLOCK, os.POSIX_FADV_WILLNEED)))
    check("until they are read", 40 * one_read, lambda: each(opened, read_begin))
    check("read again", 0, lambda: each(opened, read_begin))
    close(opened)
    return check.table()


def network_checks(network: SlowNetwork) -> str:
    check = Checks()
    network.chill()
    names = names_of(network)
    opened: list[int] = []
    alone, by_six, together = names[:200], names[200:1400], names[1400:]
    check("200 look-ups and opens, one thread", 200 * 2 * TRIP, lambda: open_all(alone, opened))
    check("stat of the last 100 of them", 0, lambda: each(opened[100:], os.fstat))
    for file in opened:
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_RANDOM)
    check("200 reads of 4 KiB, one thread", 200 * TRIP, lambda: each(opened, read_begin))
    check("read again", 0, lambda: each(opened, read_begin))
    close(opened)
    for threads, files in ((6, by_six), (32, together)):
        shares = [files[start::threads] for start in range(threads)]
        check(f"{len(files):,} look-ups and opens, {threads} threads", len(files) / threads * 2 * TRIP,
              lambda: on_threads(threads, lambda: open_all(shares.pop(), opened)), TOLERANCE_OF_MANY)
    close(opened)
    each({folder for folder, _ in names}, os.close)
    return check.table()


def own_checks(disk: OwnDisk) -> None:
    """Ends the benchmark if some of the files are in memory after all."""
    disk.chill()
    opened = open_some(disk.music.files())
    for file in opened:
        try:
            os.preadv(file, [bytearray(1)], 0, os.RWF_NOWAIT)
        except BlockingIOError:
            continue
        raise SystemExit("what was to be cold is in memory")
    close(opened)


def on_threads(count: int, work: Callable[[], None]) -> None:
    threads = [threading.Thread(target=work) for _ in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def each(files: Iterable[int], work: Callable[[int], object]) -> None:
    for file in files:
        work(file)


def open_some(paths: Iterable[Path | str]) -> list[int]:
    return [os.open(path, os.O_RDONLY) for path in paths]


def read_begin(file: int) -> None:
    os.pread(file, BLOCK, 0)


def files_below(folder: Path) -> Iterable[Path]:
    return (path for path in folder.rglob("*") if path.is_file())


def names_of(network: SlowNetwork) -> list[tuple[int, str]]:
    """The first 5,000 files: open folders on the network, and names in them that it was not yet asked for."""
    names = []
    for folder in network.whole:
        for below in sorted(os.listdir(network.origin.parent / folder.name)):
            there = os.open(folder / below, os.O_RDONLY | os.O_DIRECTORY)
            names += [(there, name) for name in os.listdir(network.origin.parent / folder.name / below)]
    return names[:5000]


def open_all(names: Iterable[tuple[int, str]], opened: list[int]) -> None:
    opened += [os.open(name, os.O_RDONLY, dir_fd=folder) for folder, name in names]


def close(files: list[int]) -> None:
    """Closes the files and empties the list."""
    each(files, os.close)
    files.clear()
