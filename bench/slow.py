"""Storage that is slow: models of a disk with one head and of a network (bench/native/SlowDisk.cpp and
SlowNetwork.cpp say what they are), and this machine's own disk with nothing of it in memory.

    python3 -B bench/slow.py disk|network|own COMMAND…

runs a command there, cold, and prints the seconds. {} in its arguments stands for the folder of music.
Only root may: mounting, loop devices and emptying the kernel's caches are root's."""

import ctypes
import os
import random
import shutil
import signal
import subprocess
import sys
import time
from collections.abc import Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path

from library import library
from measuring import DATA, native, output_of, warm
from scaling import linked_tracks

FOLDERS_ON_DISK = 20  # 400 tracks
IMAGE_BYTES = 2400 << 20
CLONE_NEWNS = 0x20000  # sched.h
LONGEST_START = 20  # seconds until a file system must have come up


class Storage:
    """A folder of music on storage that can be made cold."""

    folder: Path
    origin: Path  # where the same files can be read at this machine's speed, if anywhere

    def chill(self) -> None:
        """Leaves nothing of what it holds in this machine's memory."""
        raise NotImplementedError


class OwnDisk(Storage):
    """The library of 2,000 tracks where it lies."""

    def __init__(self, _: ExitStack) -> None:
        self.music = library(DATA)
        self.folder = self.origin = self.music.folder

    def chill(self) -> None:
        """The blocks of the disk that hold inodes and names may stay: every program's files would go too."""
        os.sync()
        for file in self.music.files():
            descriptor = os.open(file, os.O_RDONLY)
            os.posix_fadvise(descriptor, 0, 0, os.POSIX_FADV_DONTNEED)
            os.close(descriptor)
        Path("/proc/sys/vm/drop_caches").write_text("2")  # names and inodes; programs stay in memory


class SlowDisk(Storage):
    """400 tracks of all kinds on an ext4 of their own, below a loop device, on a disk with one head."""

    def __init__(self, stack: ExitStack) -> None:
        image = disk_image(DATA)
        warm([str(image)])  # what is slow is the model
        lower = stack.enter_context(mount_point("slow-disk"))
        stack.enter_context(served([native("bench_slow_disk"), str(image), str(lower)], lower))
        self.device = stack.enter_context(loop_device(lower / "disk", "--read-only"))
        queue = Path("/sys/block") / Path(self.device).name / "queue"
        (queue / "rotational").write_text("1")
        (queue / "read_ahead_kb").write_text("128")
        (queue / "scheduler").write_text("mq-deadline")
        self.mounted = stack.enter_context(mount_point("slow-disk-files"))
        self.folder = self.origin = self.mounted / "music"
        self.mount()

    def mount(self) -> None:
        output_of(["mount", "-t", "ext4", "-o", "ro,noatime", self.device, str(self.mounted)])

    def chill(self) -> None:
        """What the kernel holds of a file system and of its device goes when it is unmounted."""
        output_of(["umount", str(self.mounted)])
        self.mount()


class SlowNetwork(Storage):
    """1,000 tracks of all kinds on another machine, 20 in a folder; `whole` names folders of 10,000."""

    def __init__(self, stack: ExitStack) -> None:
        first, second, *_ = linked_tracks(DATA)
        warm(library(DATA).files())  # what is slow is the model
        for folder in (first, second):
            for path in folder.rglob("*"):
                path.stat()
        self.origin = first
        self.stack = stack.enter_context(ExitStack())
        self.mount()
        self.folder = self.mounted / first.name
        self.whole = [self.folder, self.mounted / second.name]

    def mount(self) -> None:
        self.mounted = self.stack.enter_context(mount_point("slow-network"))
        command = [native("bench_slow_network"), str(self.origin.parent), str(self.mounted)]
        self.stack.enter_context(served(command, self.mounted))

    def chill(self) -> None:
        self.stack.close()
        self.mount()


def hide_mounts() -> None:
    """Gives this process a mount namespace of its own. What it mounts goes with it and its children, whatever
    ends them; and no other namespace holds on to a file system that was unmounted here, and its cache."""
    if ctypes.CDLL(None, use_errno=True).unshare(CLONE_NEWNS) != 0:
        raise SystemExit(f"bench: no mount namespace: {os.strerror(ctypes.get_errno())}")
    output_of(["mount", "--make-rprivate", "/"])


@contextmanager
def mount_point(name: str) -> Iterator[Path]:
    """An empty folder to mount on; unmounted in the end."""
    point = DATA / name
    point.mkdir(parents=True, exist_ok=True)
    try:
        yield point
    finally:
        unmount(point)


def unmount(point: Path) -> None:
    """Takes away what is mounted on `point`, if anything; files that are open there hold it until closed."""
    subprocess.run(["umount", "--lazy", "--quiet", point], check=False, stderr=subprocess.DEVNULL)


@contextmanager
def served(command: list[str], point: Path) -> Iterator[None]:
    """Starts the program that serves a file system on `point`; it ends when that is unmounted."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL)
    try:
        end = time.monotonic() + LONGEST_START
        while not os.path.ismount(point):
            if process.poll() is not None or time.monotonic() > end:
                raise SystemExit(f"{command[0]} mounted nothing on {point}")
            time.sleep(0.01)
        yield
    finally:
        unmount(point)
        try:
            process.wait(LONGEST_START)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


@contextmanager
def loop_device(file: Path, *options: str) -> Iterator[str]:
    """A block device over a file, until nothing has it open any more."""
    device = output_of(["losetup", "--find", "--show", *options, str(file)]).strip()
    with open(device, "rb"):
        output_of(["losetup", "--detach", device])
        yield device


def disk_image(data: Path) -> Path:
    """An ext4 with the disk's tracks in `music`; made if it is not there yet. Its folders came to it one
    after another in no order."""
    image = data / "slow-disk.ext4"
    if not image.exists():
        print(f"making a disk in {image}", flush=True)
        first, *_ = linked_tracks(data)
        folders = [first / f"Folder {number + 1}" for number in range(FOLDERS_ON_DISK)]
        random.Random(1).shuffle(folders)
        unfinished = image.with_suffix(".unfinished")
        unfinished.unlink(missing_ok=True)
        with open(unfinished, "wb") as file:
            file.truncate(IMAGE_BYTES)
        output_of(["mkfs.ext4", "-q", "-E", "lazy_itable_init=0,lazy_journal_init=0", str(unfinished)])
        with loop_device(unfinished) as device, mount_point("slow-disk-files") as mounted:
            output_of(["mount", "-t", "ext4", device, str(mounted)])
            for folder in folders:
                shutil.copytree(folder, mounted / "music" / folder.name)
            output_of(["umount", str(mounted)])  # waits until all is written
        unfinished.rename(image)
    return image


def demand() -> None:
    """Ends the program where slow storage cannot be had."""
    if os.geteuid() != 0:
        raise SystemExit("bench: slow storage is mounted by root: run this as root")
    if not os.access("/dev/fuse", os.R_OK | os.W_OK):
        raise SystemExit("bench: slow storage is served through FUSE: no /dev/fuse can be opened here")


@contextmanager
def storage(name: str) -> Iterator[Storage]:
    """The storage of that name: `disk`, `network` or `own`."""
    demand()
    hide_mounts()
    for ending in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(ending, lambda number, _: sys.exit(128 + number))  # through every `finally`
    with ExitStack() as stack:
        yield STORAGE[name](stack)


STORAGE = {"disk": SlowDisk, "network": SlowNetwork, "own": OwnDisk}


def main(name: str, command: list[str]) -> int:
    with storage(name) as slow:
        slow.chill()
        begin = time.perf_counter()
        status = subprocess.run([word.replace("{}", str(slow.folder)) for word in command],
                                check=False).returncode
        print(f"{time.perf_counter() - begin:.3f} s", file=sys.stderr)
        return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
