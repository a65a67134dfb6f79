"""All of what tests/scan and tests/window try a sample of: 1,000 scans in one process; 300,000 files in the
window; 200 resets and 200 deaths of it. Built as the tests are."""

import os
import subprocess

from measuring import ROOT

BUILD = ROOT / "build" / "dev" / "tests"
TESTS = {"test_scan": BUILD / "scan" / "test_scan", "test_window": BUILD / "window" / "test_window"}


def run() -> str:
    subprocess.run(["cmake", "--preset", "dev"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "dev", "--target", *TESTS], cwd=ROOT, check=True)
    return "".join(map(figures, TESTS.values()))


def figures(program: os.PathLike) -> str:
    """What the program's tests print beside GoogleTest's lines."""
    tests = subprocess.run([program, "--gtest_filter=LoadTest.*"], stdin=subprocess.DEVNULL, text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False,
                           env={**os.environ, "VELMORA_FAULTS": "1/1"})
    if tests.returncode != 0:
        raise SystemExit(tests.stdout)
    return "".join(line + "\n" for line in tests.stdout.splitlines() if line[:1].isdigit())
