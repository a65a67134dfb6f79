"""The window on a real display: its first frame, what a frame costs, memory, rest, and a scan in it."""

import os
import statistics
import subprocess
import tempfile
import time
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from measuring import DATA, PROGRAMS, native, output_of, table
from scaling import count_of, small_files

WINDOW = str(PROGRAMS / "src" / "app" / "velmora")
STARTS = 9
SCANS = 9
SETTLED = 2.0  # seconds
WATCHED = 4.0  # seconds
FRAME_DRAWN = "Frame rendered"


def run() -> str:
    with display() as environment:
        first_frame = statistics.median(first_frame_seconds(environment) for _ in range(STARTS))
        shown, hidden, memory = at_rest(environment)
        folders = list(map(str, small_files(DATA)[:2]))
        free, ratio = map(float, output_of([native("bench_windowed_scan"), str(SCANS), *folders],
                                           environment).split())
    rows = [[f"first frame after the start, median of {STARTS} starts", f"{first_frame * 1000:.0f} ms"],
            ["processor, window shown and moving, no scan", f"{shown:.0%} of a core"],
            ["processor, window minimised", f"{hidden:.1%} of a core"],
            ["resident memory, window shown", f"{memory:.0f} MB"],
            [f"scan of {count_of(small_files(DATA)[:2]):,} small files without a window", f"{free:.3f} s"],
            ["the same in the shown, moving window", f"{ratio:.2f} times"]]
    rows += [[f"a frame, {name}", f"{milliseconds:.2f} ms"] for name, milliseconds in frames()]
    return ("## The window\n\n"
            "The program on a virtual display with a window manager, drawn in software, 940 by 728 points;\n"
            "a frame's cost is processor time without a display, of a window that moves at full intensity."
            "\n\n"
            + table(["what", "figure"], rows))


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


def first_frame_seconds(environment: dict[str, str]) -> float:
    talkative = {**environment, "QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true"}
    begin = time.perf_counter()
    with subprocess.Popen([WINDOW], stderr=subprocess.PIPE, text=True, env=talkative) as window:
        for line in window.stderr:
            if FRAME_DRAWN in line:
                break
        took = time.perf_counter() - begin
        window.terminate()
    return took


def at_rest(environment: dict[str, str]) -> tuple[float, float, float]:
    """The share of a core that the shown and the minimised window take, and the memory it holds, in MB."""
    window = subprocess.Popen([WINDOW], env=environment)
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


def frames() -> list[tuple[str, float]]:
    """The cost of one frame by back end and scale, in milliseconds."""
    kinds = [("software, scale 1", "software", "1"), ("software, scale 2", "software", "2"),
             ("scene graph, scale 1", "rhi", "1")]
    costs = []
    for name, backend, scale in kinds:
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_SCALE_FACTOR": scale}
        environment |= {"QT_QUICK_BACKEND": "software"} if backend == "software" else \
            {"QT_QUICK_BACKEND": "rhi", "QSG_RHI_BACKEND": "null"}
        costs.append((name, float(output_of([native("bench_window_frame"), "300"], environment))))
    return costs
