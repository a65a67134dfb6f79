"""Which lines of src/ the tests reach: sums up what the programs of the preset `coverage` counted.

    coverage.py [--missed]

Prints how many lines of code in each folder of src/ ran; with --missed also the numbers of the others.
"""

import json
import subprocess
import sys
from collections import defaultdict
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "coverage"

# Whether each line of code ran, by the file's path in the project.
Reached = dict[Path, dict[int, bool]]


def main() -> int:
    reached = all_reached()
    if sys.argv[1:] == ["--missed"]:
        for file, lines in sorted(reached.items()):
            if not all(lines.values()):
                print(f"{file}: {', '.join(str(line) for line in sorted(lines) if not lines[line])}")
    folders: dict[str, list[bool]] = defaultdict(list)
    for file, lines in reached.items():
        folders[file.parts[1]] += lines.values()
    for folder, lines in sorted(folders.items()):
        print(share(folder, lines))
    print(share("src", [line for lines in folders.values() for line in lines]))
    return 0


def share(name: str, lines: list[bool]) -> str:
    return f"{name:12} {sum(lines):5} of {len(lines):5} lines, {100 * sum(lines) / len(lines):5.1f} %"


def all_reached() -> Reached:
    """A line that is compiled several times, as those of a header are, ran if one of them did."""
    result: Reached = defaultdict(lambda: defaultdict(bool))
    with ThreadPoolExecutor() as pool:
        for counted in pool.map(counted_in, BUILD.rglob("*.gcno")):
            for file, line, count in counted:
                result[file][line] |= count > 0
    return result


def counted_in(notes: Path) -> list[tuple[Path, int, int]]:
    """File, line and count of all that an object holds of src/."""
    answer = subprocess.run(["gcov", "--json-format", "--stdout", notes], cwd=BUILD, check=True,
                            capture_output=True).stdout
    return [(file, line["line_number"], line["count"]) for document in answer.splitlines()
            for file, lines in files_in(json.loads(document)) for line in lines]


def files_in(document: dict) -> Iterator[tuple[Path, list[dict]]]:
    for file in document["files"]:
        path = Path(document["current_working_directory"], file["file"]).resolve()
        if ROOT / "src" in path.parents:
            yield path.relative_to(ROOT), file["lines"]


if __name__ == "__main__":
    raise SystemExit(main())
