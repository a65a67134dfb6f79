"""./dev bench [NAME…]: runs the benchmarks named and prints what they say; without names runs all of them and
writes docs/performance.md as well."""

import platform
import sys

import archives
import busy
import kinds
import micro
import peers
import scaling
from measuring import DATA, ROOT, output_of

BENCHMARKS = {"peers": peers, "kinds": kinds, "scaling": scaling, "busy": busy, "micro": micro,
              "archives": archives}


def machine() -> str:
    fields = dict(line.split(":", 1) for line in output_of(["lscpu"]).splitlines() if ":" in line)
    return f"{fields['Model name'].strip()}, {fields['CPU(s)'].strip()} cores, Linux {platform.release().split('-')[0]}"


def main(names: list[str]) -> None:
    unknown = set(names) - set(BENCHMARKS)
    if unknown:
        sys.exit(f"bench: there is no {', '.join(sorted(unknown))}; there are: {', '.join(BENCHMARKS)}")
    DATA.mkdir(parents=True, exist_ok=True)
    sections = [BENCHMARKS[name].run() for name in names or BENCHMARKS]
    page = "\n".join(["# Performance\n", f"Made by `./dev bench` on: {machine()}.\n", *sections])
    print(page)
    if not names:
        (ROOT / "docs" / "performance.md").write_text(page)


main(sys.argv[1:])
