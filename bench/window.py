"""The window on a real display: its first frame, what a frame costs, memory, rest, and scans in it.

Where the environment variable VELMORA_BENCH_BEFORE names the build folder of another tree's benchmarks, its
figures stand beside ours.
"""

import itertools
import os
import shutil
import statistics
import subprocess
import tempfile
import time
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from measuring import DATA, PROGRAMS, output_of, table
from scaling import count_of, made, small_files

STARTS = 9
SCANS = 9
MANY = 3  # names for each of the small files
MANY_SCANS = 5
SETTLED = 2.0  # seconds
WATCHED = 4.0  # seconds
FRAME_DRAWN = "Frame rendered"


def run() -> str:
    heads, rows = ["what", "figure"], figures(PROGRAMS)
    if before := os.environ.get("VELMORA_BENCH_BEFORE"):
        heads.append("before")
        rows = [[*row, then[1]] for row, then in zip(rows, figures(Path(before)))]
    return ("## The window\n\n"
            "The program on a virtual display with a window manager, drawn in software, 940 by 728 points;\n"
            "a frame's cost is processor time without a display, of a window that moves at full intensity."
            "\n\n"
            + table(heads, rows))


def figures(programs: Path) -> list[list[str]]:
    """What each figure is, and the figure, of the programs built in a folder."""
    small = small_files(DATA)[:2]
    window = str(programs / "src" / "app" / "velmora")
    with display() as environment:
        first_frame = statistics.median(first_frame_seconds(window, environment) for _ in range(STARTS))
        shown, hidden, memory = at_rest(window, environment)
        scans = [str(programs / "bench" / "bench_windowed_scan"), str(SCANS), *map(str, small)]
        free, ratio = map(float, output_of(scans, environment).split())
        flood = many_files(programs, environment)
    return [[f"first frame after the start, median of {STARTS} starts", f"{first_frame * 1000:.0f} ms"],
            ["processor, window shown and moving, no scan", f"{shown:.0%} of a core"],
            ["processor, window minimised", f"{hidden:.1%} of a core"],
            ["resident memory, window shown", f"{memory:.0f} MB"],
            [f"scan of {count_of(small):,} small files without a window", f"{free:.3f} s"],
            ["the same in the shown, moving window", f"{ratio:.2f} times"],
            *flood,
            *([name, f"{milliseconds:.2f} ms"] for name, milliseconds in frames(programs))]


@contextmanager
def display() -> Iterator[dict[str, str]]:
    """The environment of programs on a display of their own, with folders of their own."""
    with tempfile.TemporaryDirectory() as home:
        read, write = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24"],
                                  pass_fds=[write], stderr=subprocess.DEVNULL)
        number = os.read(read, 16).decode().strip()
        environment = {**os.environ, "DISPLAY": f":{number}", "HOME": home, "XDG_RUNTIME_DIR": home,
                       "QT_QUICK_BACKEND": "software", "QT_QPA_PLATFORM": "xcb",
                       "VELMORA_MANIFEST_URL": "http://127.0.0.1:9/"}  # nobody answers there
        environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        manager = subprocess.Popen(["openbox"], env=environment, stderr=subprocess.DEVNULL)
        try:
            yield environment
        finally:
            for process in (manager, server):
                process.terminate()
                process.wait()


def first_frame_seconds(program: str, environment: dict[str, str]) -> float:
    talkative = {**environment, "QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true"}
    begin = time.perf_counter()
    with subprocess.Popen([program], stderr=subprocess.PIPE, text=True, env=talkative) as window:
        for line in window.stderr:
            if FRAME_DRAWN in line:
                break
        took = time.perf_counter() - begin
        window.terminate()
    return took


def at_rest(program: str, environment: dict[str, str]) -> tuple[float, float, float]:
    """The share of a core that the shown and the minimised window take, and the memory it holds, in MB."""
    window = subprocess.Popen([program], env=environment)
    try:
        time.sleep(SETTLED)
        shown = processor_share(window.pid)
        memory = resident_megabytes(window.pid)
        minimise = 'xdotool windowminimize "$(xdotool search --onlyvisible --name Velmora)"'
        subprocess.run(["sh", "-c", minimise], env=environment, check=True)
        time.sleep(SETTLED)
        return shown, processor_share(window.pid), memory
    finally:
        window.terminate()
        window.wait()


def processor_share(process: int) -> float:
    """Processor time over the next seconds, as a share of them."""
    def spent() -> float:
        fields = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    begin, before = time.perf_counter(), spent()
    time.sleep(WATCHED)
    return (spent() - before) / (time.perf_counter() - begin)


def resident_megabytes(process: int) -> float:
    status = Path(f"/proc/{process}/status").read_text()
    return int(status.split("VmRSS:")[1].split()[0]) * 1024 / 1e6


def many_files(programs: Path, environment: dict[str, str]) -> list[list[str]]:
    """A drop of 300,000 files and a reset."""
    folders = list(map(str, many_folders(DATA)))
    program = str(programs / "bench" / "bench_many_files")
    ratios, gaps, computing, memory = [], [], [], []
    for _ in range(MANY_SCANS):
        alone = float(output_of([program, "alone", *folders], environment))
        seconds, _, gap, processor, *megabytes = map(float, output_of([program, "window", *folders],
                                                                      environment).split())
        ratios.append(seconds / alone)
        gaps.append(gap)
        computing.append(processor)
        memory.append(megabytes)
    before, after, reset = (statistics.median(column) for column in zip(*memory))
    files = f"{MANY * count_of(small_files(DATA)):,} files"
    return [[f"{files} dropped: the scan in the window, to one without",
             f"{statistics.median(ratios):.2f} times"],
            ["the longest gap between two frames", f"{statistics.median(gaps):.0f} ms"],
            ["the most processor time of the main thread between two frames",
             f"{statistics.median(computing):.1f} ms"],
            ["resident memory before the drop", f"{before:.0f} MB"],
            ["at the end of the scan", f"{after:.0f} MB"],
            ["after a reset", f"{reset:.0f} MB"]]


def many_folders(data: Path) -> list[Path]:
    """The folders of small files, each file under MANY names; made if they are missing."""
    small = small_files(data)

    def fill(many: Path) -> None:
        for copy, folder in itertools.product(range(MANY), small):
            shutil.copytree(folder, many / str(copy) / folder.name, copy_function=os.link)

    made(data / "flood", fill)
    return [data / "flood" / str(copy) for copy in range(MANY)]


def frames(programs: Path) -> list[tuple[str, float]]:
    """The cost of one frame by back end and scale, in milliseconds."""
    software = {"QT_QUICK_BACKEND": "software"}
    graphics = {"QT_QUICK_BACKEND": "rhi", "QSG_RHI_BACKEND": "null"}
    kinds = [("a frame, software, scale 1", "moving", software, "1"),
             ("a frame, software, scale 2", "moving", software, "2"),
             ("a frame, scene graph, scale 1", "moving", graphics, "1"),
             ("the same without the moving scenery", "still", graphics, "1"),
             ("a step of resizing, software, scale 1", "resized", software, "1"),
             ("the dearest frame while a drag comes and goes, software, scale 1", "targeted", software, "1"),
             ("the same at scale 2", "targeted", software, "2")]
    program = str(programs / "bench" / "bench_window_frame")
    costs = []
    for name, how, backend, scale in kinds:
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_SCALE_FACTOR": scale, **backend}
        costs.append((name, float(output_of([program, how, "300"], environment))))
    return costs
