"""./dev bench [NAME…]: runs the benchmarks named and prints what they find; without names runs all of them
and writes docs/performance.md. `accuracy` is a program of its own and always writes docs/accuracy.md;
`check` writes docs/check.md; `faults` and `load` time nothing and run only by name."""

import platform
import subprocess
import sys

import archives
import busy
import check
import far
import faults
import kinds
import load
import micro
import million
import peers
import scaling
import slow
import walls
import window
from measuring import DATA, ROOT, SCAN, output_of

PERFORMANCE = {"peers": peers, "kinds": kinds, "scaling": scaling, "million": million, "busy": busy,
               "micro": micro, "archives": archives, "walls": walls, "far": far, "window": window}
NAMES = (*PERFORMANCE, "accuracy", "check", "faults", "load")


def main(names: list[str]) -> int:
    unknown = [name for name in names if name not in NAMES]
    if unknown:
        print(f"bench: there is no {', '.join(unknown)}; there are: {', '.join(NAMES)}", file=sys.stderr)
        return 2
    if not names or "far" in names:
        slow.demand()
    DATA.mkdir(parents=True, exist_ok=True)
    sections = [PERFORMANCE[name].run() for name in names or NAMES if name in PERFORMANCE]
    if sections:
        page = "\n".join(["# Performance\n", f"Made by `./dev bench` on: {machine()}.\n", *sections])
        print(page)
        if not names:
            (ROOT / "docs" / "performance.md").write_text(page)
    if not names or "check" in names:
        print(check.run(machine()))
    for name, trial in {"faults": faults, "load": load}.items():
        if name in names:
            print(trial.run())
    return accuracy() if not names or "accuracy" in names else 0


def accuracy() -> int:
    return subprocess.run([sys.executable, "-B", str(ROOT / "bench" / "accuracy" / "run.py"), "--scan", SCAN,
                           "--out", str(ROOT / "docs" / "accuracy.md")], check=False).returncode


def machine() -> str:
    fields = dict(line.split(":", 1) for line in output_of(["lscpu"]).splitlines() if ":" in line)
    cpu, cores = fields["Model name"].strip(), fields["CPU(s)"].strip()
    return f"{cpu}, {cores} cores, Linux {platform.release().split('-')[0]}"


sys.exit(main(sys.argv[1:]))
