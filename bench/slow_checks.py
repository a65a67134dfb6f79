"""Whether slow storage is as slow as it is said to be. Each check is a row: what was done, how long it was
to take, how long it took. Where one is further off than may be, all are done again, a few times at most."""

import mmap
import os
import random
import threading
import time
from collections.abc import Callable, Iterable, Sequence
from contextlib import ExitStack
from itertools import islice
from pathlib import Path

from measuring import table
from slow import OwnDisk, SlowDisk, SlowNetwork, Storage

TRIES = 3  # other programs disturb
TOLERANCE = 0.15  # of what was expected; what the models and their questioners need themselves is about 5%
STILL_IN_MEMORY = 0.01  # of the files on this machine's disk: others may read them as well
AT_ONCE = 0.02  # seconds, for what is to cost nothing
SEEK = 0.008
BYTES_A_SECOND = 150e6
TRIP = 0.005
BLOCK = 4096
MEBIBYTE = 1 << 20


class IsOff(Exception):
    """A model costs something else than it should."""


class Checks:
    def __init__(self) -> None:
        self.rows: list[list[str]] = []

    def __call__(self, what: str, expected: float, work: Callable[[], None]) -> None:
        """Does `work`, ahead of all other programs, and compares its seconds with those expected."""
        os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(1))
        begin = time.perf_counter()
        work()
        took = time.perf_counter() - begin
        os.sched_setscheduler(0, os.SCHED_OTHER, os.sched_param(0))
        if abs(took - expected) > max(TOLERANCE * expected, AT_ONCE):
            raise IsOff(f"{what}: {took:.3f} s in place of {expected:.3f} s")
        self.rows.append([what, f"{expected:.3f}", f"{took:.3f}"])


class Files:
    """Open files, which are closed in the end."""

    def __init__(self, stack: ExitStack) -> None:
        self.stack = stack
        self.all: list[int] = []

    def open(self, path: Path | str, folder: int | None = None) -> int:
        file = os.open(path, os.O_RDONLY, dir_fd=folder)
        self.stack.callback(os.close, file)
        self.all.append(file)
        return file

    def each(self, work: Callable[[int], object]) -> None:
        for file in self.all:
            work(file)


def checked(slow: Storage) -> str:
    """The checks of a storage as a table."""
    checks = {SlowDisk: disk_checks, SlowNetwork: network_checks, OwnDisk: own_checks}[type(slow)]
    for attempt in range(TRIES):
        check = Checks()
        slow.chill()
        try:
            with ExitStack() as stack:
                checks(slow, check, stack)
            return table(["the storage, checked", "expected, s", "measured, s"], check.rows)
        except IsOff as off:
            print(f"  the storage is off, attempt {attempt + 1} of {TRIES}: {off}", flush=True)
    raise SystemExit("the storage does not cost what it should")


def disk_checks(disk: SlowDisk, check: Checks, stack: ExitStack) -> None:
    chance = random.Random(1)
    device = os.open(disk.device, os.O_RDONLY | os.O_DIRECT)
    stack.callback(os.close, device)

    def read(offset: int, count: int) -> None:
        os.preadv(device, [mmap.mmap(-1, count)], offset)

    def read_anywhere(times: int) -> None:
        for _ in range(times):
            read(chance.randrange(2000) * MEBIBYTE, BLOCK)

    def read_in_sequence(times: int) -> None:
        for block in range(times):
            read((100 + block) * MEBIBYTE, MEBIBYTE)

    one_read = SEEK + BLOCK / BYTES_A_SECOND
    check("90 MiB in sequence", SEEK + 90 * MEBIBYTE / BYTES_A_SECOND, lambda: read_in_sequence(90))
    check("60 reads of 4 KiB anywhere", 60 * one_read, lambda: read_anywhere(60))
    check("the same by six threads", 60 * one_read, lambda: on_threads(6, lambda: read_anywhere(10)))
    files = Files(stack)
    for path in islice((path for path in disk.folder.rglob("*") if path.is_file()), 40):
        files.open(path)
    check("40 places asked for ahead (`POSIX_FADV_WILLNEED`)", 0,
          lambda: files.each(lambda file: os.posix_fadvise(file, 0, BLOCK, os.POSIX_FADV_WILLNEED)))
    check("until they are read", 40 * one_read, lambda: files.each(read_begin))
    check("read again", 0, lambda: files.each(read_begin))


def network_checks(network: SlowNetwork, check: Checks, stack: ExitStack) -> None:
    names = names_of(network, Files(stack))
    files = Files(stack)

    def open_next(count: int, threads: int = 1) -> None:
        shares = [list(islice(names, count // threads)) for _ in range(threads)]
        check(f"{count:,} look-ups and opens, threads: {threads}", count / threads * 2 * TRIP,
              lambda: on_threads(threads, lambda: open_all(shares.pop(), files)))

    open_next(200)
    check("their stat", 0, lambda: files.each(os.fstat))
    files.each(lambda file: os.posix_fadvise(file, 0, 0, os.POSIX_FADV_RANDOM))
    check("a read of 4 KiB of each", 200 * TRIP, lambda: files.each(read_begin))
    check("read again", 0, lambda: files.each(read_begin))
    open_next(1200, threads=6)
    open_next(3200, threads=32)


def own_checks(disk: OwnDisk, _: Checks, stack: ExitStack) -> None:
    files = Files(stack)
    for path in disk.music.files():
        files.open(path)
    share = sum(map(is_in_memory, files.all)) / len(files.all)
    if share > STILL_IN_MEMORY:
        raise IsOff(f"{share:.1%} of the files are in memory")


def names_of(network: SlowNetwork, folders: Files) -> Iterable[tuple[int, str]]:
    """Open folders of the network and names in them, none of which it was asked for yet."""
    for folder in network.whole:
        for below in (network.origin.parent / folder.name).iterdir():
            there = folders.open(folder / below.name)
            yield from ((there, path.name) for path in below.iterdir())


def open_all(names: Sequence[tuple[int, str]], files: Files) -> None:
    for folder, name in names:
        files.open(name, folder)


def on_threads(count: int, work: Callable[[], None]) -> None:
    threads = [threading.Thread(target=work) for _ in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def is_in_memory(file: int) -> bool:
    try:
        os.preadv(file, [bytearray(1)], 0, os.RWF_NOWAIT)
    except BlockingIOError:
        return False
    return True


def read_begin(file: int) -> None:
    os.pread(file, BLOCK, 0)
