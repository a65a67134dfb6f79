"""How the benchmarks measure: whole processes in interleaved rounds, medians, ratios of the same round."""

import statistics
import subprocess
import time
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DATA = ROOT / "build" / "bench-data"
PROGRAMS = ROOT / "build" / "bench"
SCAN = str(PROGRAMS / "src" / "cli" / "velmora-scan")


def native(name: str) -> str:
    """The path of one of our own benchmark programs."""
    return str(PROGRAMS / "bench" / name)


@dataclass
class Contender:
    """A command to time against others. It runs in every `every`-th round, slow ones in fewer than all."""

    name: str
    command: Sequence[str]
    every: int = 1
    before: Callable[[], None] = lambda: None  # runs before each time, untimed
    must_succeed: bool = True
    seconds: dict[int, float] = field(default_factory=dict)  # by round
    output: str = ""  # of the last time

    def run(self, number: int) -> None:
        self.before()
        begin = time.perf_counter()
        done = subprocess.run(self.command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False)
        self.seconds[number] = time.perf_counter() - begin
        self.output = done.stdout.decode(errors="replace")
        if self.must_succeed and done.returncode != 0:
            raise SystemExit(f"{self.name}: {done.stderr.decode(errors='replace').strip()[-500:]}")

    def median(self) -> float:
        return statistics.median(self.seconds.values())

    def ratio_to(self, other: "Contender") -> float:
        """How many times as long as `other` this takes: the median over the rounds both ran in."""
        return statistics.median(self.seconds[number] / other.seconds[number] for number in self.seconds)


def interleave(contenders: Sequence[Contender], rounds: int) -> None:
    """Runs the contenders in turn, `rounds` times over; what disturbs one disturbs its neighbours as well."""
    for number in range(rounds):
        for contender in contenders:
            if number % contender.every == contender.every // 2:  # not in the first round, which warms up
                print(f"  round {number + 1} of {rounds}: {contender.name}", flush=True)
                contender.run(number)


def output_of(command: Sequence[str], environment: Mapping[str, str] | None = None) -> str:
    return subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                          env=environment).stdout


def peak_memory(command: Sequence[str]) -> float:
    """The largest resident size of `command` in MB (10^6 bytes)."""
    done = subprocess.run(["/usr/bin/time", "-f", "%M", *command], check=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    return int(done.stderr.split()[-1]) * 1024 / 1e6


def warm(files: Sequence[str]) -> None:
    """Reads the files once, so that every contender finds them in the page cache."""
    for file in files:
        with open(file, "rb", buffering=0) as stream:
            while stream.read(1 << 20):
                pass


def table(head: Sequence[str], rows: Sequence[Sequence[str]]) -> str:
    """A Markdown table; the first column is text, the others are figures."""
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 1) + "|"]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines) + "\n"
