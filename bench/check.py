"""`velmora-scan --check`: how fast it is beside the tests of decoders, what it finds in damaged files, and
what it finds in healthy ones. Writes docs/check.md."""

import json
import random
import subprocess
import sys
from collections import Counter
from pathlib import Path

from library import KINDS, Kind, encode, library, make_cover, synthesise
from measuring import DATA, ROOT, SCAN, Contender, interleave, table, warm

sys.path.insert(0, str(ROOT / "bench" / "accuracy"))

import corpus  # noqa: E402
from corpus.shelf import HEALTHY  # noqa: E402
from truth import all_true_seconds  # noqa: E402

ROUNDS = 3
EVERY = 20  # of so many tracks decoders test one
SEED = 20_240_611
DAMAGES = ("cut", "bit", "zeros", "joined")
DAMAGED_FILES = 200

# Findings in the healthy corpus that are true: its files are right in length, not in all they say.
TRUE_FINDINGS = {
    "aac/junk-between.aac": "damaged",
    "aac/part-frame.aac": "truncated",
    "flac/zeros-behind.flac": "trailing",
    "mka/no-duration.mka": "damaged",
    "mp3/junk-between.mp3": "damaged",
    "mp3/part-frame.mp3": "truncated",
    "mp3/xing-wrong.mp3": "truncated",
    "mp3/zeros-behind.mp3": "trailing",
    "mp3/zeros-between.mp3": "damaged",
    "ogg/zeros-behind.ogg": "trailing",
    "w64/ima.w64": "longer",
    "wav/wrapped.wav": "longer",
    "wav/zeros-behind.wav": "trailing",
}


def run(machine: str) -> str:
    made = f"Made by `./dev bench check` on: {machine}.\n"
    page = "\n".join(["# Checks\n", made, speed(), damage(), healthy()])
    (ROOT / "docs" / "check.md").write_text(page)
    return page


def findings(paths: list[str]) -> dict[str, list[str]]:
    """{path: kinds} of what a check finds in the files, each of them named."""
    names = b"\0".join(path.encode() for path in paths)
    done = subprocess.run([SCAN, "--quiet", "--check", "--json", "--files0-from", "-"], input=names,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    report = json.loads(done.stdout)
    return {file["path"]: [finding["kind"] for finding in file["findings"]]
            for file in report["files"] + report["unreadableFiles"]}


def speed() -> str:
    """The check beside decoders that test the same tracks, six processes at once as it has six threads."""
    files = library(DATA).files()
    flac = [file for file in files if file.endswith(".flac")][::EVERY]
    mpeg = [file for file in files if file.endswith(".mp3")][::EVERY]
    warm(flac + mpeg)

    def ours(name: str, of: list[str]) -> Contender:
        return listed(name, of, f"xargs -0 {SCAN} --quiet --check")

    pairs = [
        (ours("`velmora-scan --check`, FLAC", flac),
         listed("`flac -ts`, six at once", flac, "xargs -0 -n 1 -P 6 flac -ts"), flac),
        (ours("`velmora-scan --check`, MP3", mpeg),
         listed("`mpg123 -qt`, six at once", mpeg, "xargs -0 -n 4 -P 6 mpg123 -qt"), mpeg),
    ]
    readers = [listed("`cat`, six at once", of, "xargs -0 -n 4 -P 6 cat") for _, _, of in pairs]
    contenders = [(*pair[:2], reader) for pair, reader in zip(pairs, readers)]
    interleave([contender for row in contenders for contender in row], ROUNDS)
    rows = []
    for (check, decoder, of), reader in zip(pairs, readers):
        megabytes = sum(Path(file).stat().st_size for file in of) / 1e6
        rows += [[contender.name, str(len(of)), f"{megabytes:,.0f}", f"{contender.median():.2f}",
                  f"{megabytes / contender.median():,.0f}", f"{contender.ratio_to(check):.2f}"]
                 for contender in (check, decoder, reader)]
    return ("## Speed\n\n"
            f"Every {EVERY}th FLAC and MP3 track of the library of 2,000, warm cache, in {ROUNDS}\n"
            "interleaved rounds: the median, and the median of the ratios within a round. `cat` only\n"
            "reads.\n\n"
            + table(["", "files", "MB", "s", "MB/s", "times"], rows))


def listed(name: str, files: list[str], command: str) -> Contender:
    """`command` with the names of `files` on its standard input, parted by NUL."""
    names = DATA / f"check-{len(files)}.list"
    names.write_bytes(b"\0".join(file.encode() for file in files))
    return Contender(name, ["sh", "-c", f"{command} <{names} >/dev/null"], must_succeed=False)


def damage() -> str:
    """What is found in files that a seeded script has damaged, by kind of file and of damage."""
    folder = DATA / "check"
    folder.mkdir(parents=True, exist_ok=True)
    whole = originals(folder)
    rng = random.Random(SEED)
    files: dict[str, tuple[Kind, str]] = {}
    for number in range(DAMAGED_FILES):
        kind = KINDS[number % len(KINDS)]
        how = DAMAGES[number // len(KINDS) % len(DAMAGES)]
        path = folder / f"{number:03}-{how}.{kind.extension}"
        path.write_bytes(damaged(whole[kind], how, rng))
        files[str(path)] = (kind, how)
    found = findings(list(files))
    hits: Counter = Counter(files[path] for path, kinds in found.items() if kinds and path in files)
    made: Counter = Counter(files.values())
    undamaged = {str(folder / f"whole-{KINDS.index(kind)}.{kind.extension}") for kind in KINDS}
    alarms = sum(bool(kinds) for kinds in findings(sorted(undamaged)).values())

    def row(name: str, kinds: tuple[Kind, ...]) -> list[str]:
        cells = [(sum(hits[kind, how] for kind in kinds), sum(made[kind, how] for kind in kinds))
                 for how in DAMAGES]
        return [name, *(f"{hit} of {all_there}" for hit, all_there in cells)]

    rows = [*(row(kind.name, (kind,)) for kind in KINDS), row("all", KINDS)]
    return ("## Damaged files\n\n"
            f"{len(files)} files of 30 seconds that a seeded script has damaged: cut off at any place; one\n"
            "bit of the last nine tenths turned; 4 to 64 KiB of zeros written over them; joined to\n"
            "themselves. How many had a finding; of the "
            f"{len(undamaged)} files they were made of, {alarms} had one.\n\n"
            + table(["", "cut", "bit turned", "zeros", "joined"], rows)
            + "\nWhere a format has no checksums, only decoding could find a bit; PCM may be any bytes. A\n"
              "stream of frames without an index states no length: joined to another it is one stream.\n")


def originals(folder: Path) -> dict[Kind, bytes]:
    """A file of each kind, undamaged."""
    source, cover = folder / "source.wav", folder / "cover.jpg"
    if not source.exists():
        synthesise(source, 30, 220)
        make_cover(cover)
    whole = {}
    for kind in KINDS:
        path = folder / f"whole-{KINDS.index(kind)}.{kind.extension}"
        if not path.exists():
            encode(kind.encode, source, path, COVER=str(cover))
        whole[kind] = path.read_bytes()
    return whole


def damaged(content: bytes, how: str, rng: random.Random) -> bytes:
    size = len(content)
    at = rng.randrange(size // 10, size)
    if how == "cut":
        return content[:at]
    if how == "bit":
        return content[:at] + bytes([content[at] ^ 1 << rng.randrange(8)]) + content[at + 1:]
    if how == "zeros":
        count = min(rng.randrange(4 << 10, 64 << 10), size // 4)
        at = min(at, size - count)
        return content[:at] + bytes(count) + content[at + count:]
    return content + content


def healthy() -> str:
    """What is found in the files of the accuracy benchmark that are right in length."""
    root = ROOT / "build" / "accuracy-corpus"
    variants, _ = corpus.obtain(root, all_true_seconds)
    notes = {str(root / variant.name): variant.note for variant in variants
             if variant.group == HEALTHY and not variant.hard}
    found = {path: kinds for path, kinds in findings(sorted(notes)).items() if kinds}
    prefix = f"{root}/{HEALTHY}/"
    expected = {path for path in found if found[path] == [TRUE_FINDINGS.get(path.removeprefix(prefix))]}
    rows = [[path.removeprefix(prefix), ", ".join(found[path]), notes.get(path, ""),
             "true" if path in expected else "FALSE ALARM"] for path in sorted(found)]
    return ("## Healthy files\n\n"
            f"{len(notes)} files of the accuracy benchmark that can be timed rightly: findings in\n"
            f"{len(found)}, {len(found) - len(expected)} of them false alarms. The others say what their\n"
            "makers put there.\n\n"
            + table(["file", "finding", "how it was made", ""], rows))
