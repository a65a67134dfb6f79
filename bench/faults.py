"""Everything that tests/faults tries a sample of: each call to the system that a scan makes fails in each way
it can, and a scan gets each of six signals at 200 moments. Built as the tests are; each core takes a share
of them."""

import os
import subprocess

from measuring import ROOT

TESTS = ROOT / "build" / "dev" / "tests" / "faults" / "test_faults"
FILTER = "FailedCall.*:KilledAtRandom.*:SignalAtRandom.*"


def run() -> str:
    subprocess.run(["cmake", "--preset", "dev"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "dev", "--target", "test_faults"], cwd=ROOT, check=True)
    parts = os.cpu_count() or 1
    shares = [start(part, parts) for part in range(1, parts + 1)]
    outputs = [share.communicate()[0] for share in shares]
    if any(share.returncode != 0 for share in shares):
        raise SystemExit("".join(outputs))
    tried = sum(number(output, "faults") for output in outputs)
    killed = sum(number(output, "kills") for output in outputs)
    signalled = sum(number(output, "signals") for output in outputs)
    seed = os.environ.get("VELMORA_SEED", "1")
    return (f"{tried} failed calls, {killed} kills, {signalled} other signals (seed {seed}): no wrong total, "
            "no loss, nothing left over.\n")


def start(part: int, parts: int) -> subprocess.Popen:
    return subprocess.Popen([TESTS, f"--gtest_filter={FILTER}"], stdin=subprocess.DEVNULL, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env={**os.environ, "VELMORA_FAULTS": f"{part}/{parts}"})


def number(output: str, what: str) -> int:
    """The number in front of `what` in a line such as "35 faults, 890 calls"."""
    lines = [line for line in output.splitlines() if f" {what}" in line and line[0].isdigit()]
    return sum(int(line.split()[0]) for line in lines)
