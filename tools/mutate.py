"""Which lines of src/ the tests hold: breaks one at a time, builds, and runs the tests of that line's folder.

    mutate.py [--sample N] [--seed S] [FILE[:LINE]...]

Without a FILE, the folders gather, measure, export, scan and cli. Works on a copy of the project in
build/mutate. A mutant that does not compile is none. One that the tests let through survives: it is printed.
"""

import argparse
import os
import random
import shutil
import sys
from collections import Counter, defaultdict
from dataclasses import dataclass
from pathlib import Path

import mutants
from mutations import Mutation, mutations

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutate"
FOLDERS = ("gather", "measure", "export", "scan", "cli")


@dataclass(frozen=True)
class Mutant:
    file: Path  # relative to the project
    mutation: Mutation

    def __str__(self) -> str:
        before, after = self.mutation.before.strip(), self.mutation.after.strip()
        return f"{self.file}:{self.mutation.number}: {before} → {after}"


def main() -> int:
    asked = arguments()
    os.nice(10)
    copy_project()
    random.seed(asked.seed)
    print(f"seed {asked.seed}", file=sys.stderr)
    results = {}
    for folder, found in sorted(by_folder(asked.files).items()):
        random.shuffle(found)
        results[folder] = try_mutants(folder, found, asked.sample or len(found))
    for folder, result in results.items():
        print(line_of(folder, result))
    return 0


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="./dev mutate", description="Which lines of src/ the tests hold.")
    parser.add_argument("files", nargs="*", metavar="FILE[:LINE]", help="a file in src/, or a line of it")
    parser.add_argument("--sample", type=int, metavar="N", help="try N mutants of a folder, chosen at random")
    parser.add_argument("--seed", type=int, metavar="S", default=random.randrange(1_000_000),
                        help="the same seed chooses the same mutants")
    return parser.parse_args()


def copy_project() -> None:
    """Makes the copy as the project is. What is the same keeps its time, so that little is built again."""
    wanted = files_of(ROOT)
    for path in wanted:
        there = COPY / path
        if not there.is_file() or there.read_bytes() != (ROOT / path).read_bytes():
            there.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / path, there)
    for path in files_of(COPY) - wanted:
        (COPY / path).unlink()


def files_of(project: Path) -> set[Path]:
    """The files of the project, relative to it, without what is built."""
    return {Path(folder).relative_to(project) / name for folder, folders, names in os.walk(project)
            if not remove_built(folders) for name in names}


def remove_built(folders: list[str]) -> None:
    folders[:] = [name for name in folders if name not in ("build", ".git")]


def by_folder(files: list[str]) -> dict[str, list[Mutant]]:
    """All mutants of the files, by the folder of src/."""
    result: dict[str, list[Mutant]] = defaultdict(list)
    for file, line in [place(text) for text in files] or all_files():
        for mutation in mutations((ROOT / file).read_text()):
            if line in (0, mutation.number):
                result[file.parts[1]].append(Mutant(file, mutation))
    return result


def place(text: str) -> tuple[Path, int]:
    """"src/a/b.cpp:12" -> the file and the line; 0 for all of its lines."""
    name, _, line = text.partition(":")
    file = Path(name).resolve()
    if not file.is_file() or ROOT / "src" not in file.parents:
        raise SystemExit(f"mutate: {name} is no file in src/")
    return file.relative_to(ROOT), int(line or 0)


def all_files() -> list[tuple[Path, int]]:
    return [(file.relative_to(ROOT), 0) for folder in FOLDERS
            for file in sorted((ROOT / "src" / folder).rglob("*")) if file.suffix in (".h", ".cpp")]


def try_mutants(folder: str, found: list[Mutant], wanted: int) -> Counter:
    """What became of the first `wanted` that compile."""
    tests = mutants.Tests(COPY, folder)
    result: Counter = Counter()
    for mutant in found:
        if tried(result) == wanted:
            break
        fate = fate_of(mutant, tests)
        result[fate] += 1
        print(f"{folder}, {tried(result)} of {wanted}: {fate.value} {tests.fallen}: {mutant}",
              file=sys.stderr, flush=True)
        if fate == mutants.Fate.survived:
            print(mutant, flush=True)
    for name, times in tests.unsteady.items():
        print(f"{name} fell {times} times though nothing was broken: that was not counted", flush=True)
    return result


def tried(result: Counter) -> int:
    return result.total() - result[mutants.Fate.none]


def fate_of(mutant: Mutant, tests: mutants.Tests) -> mutants.Fate:
    file = COPY / mutant.file
    whole = file.read_text()
    lines = whole.split("\n")
    lines[mutant.mutation.number - 1] = mutant.mutation.after
    try:
        file.write_text("\n".join(lines))
        return tests.fate()
    finally:
        file.write_text(whole)


def line_of(folder: str, result: Counter) -> str:
    counts = ", ".join(f"{result[fate]} {fate.value}" for fate in mutants.Fate)
    share = 100 * (1 - result[mutants.Fate.survived] / max(tried(result), 1))
    return f"{folder:8} {tried(result):4} mutants, {share:5.1f} % killed: {counts}"


if __name__ == "__main__":
    raise SystemExit(main())
