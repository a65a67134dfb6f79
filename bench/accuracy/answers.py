"""What each program answers for the files of the corpus: velmora-scan in one run, the peers as they are
usually called.

Every function takes the paths and returns {path: seconds}; a path without a positive answer is left out.
"""

import json
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

_PATIENCE = 60  # seconds a peer may take for one file


def velmora(scan: Path, paths):
    """One run over all files; every file must come back, as measured or as unreadable."""
    names = b"\0".join(str(path).encode() for path in paths)
    done = subprocess.run(
        [str(scan), "--json", "--quiet", "--files0-from", "-"], input=names, capture_output=True, check=False
    )
    if done.returncode not in (0, 1, 3):
        raise RuntimeError(
            f"{scan} ended with {done.returncode}: {done.stderr.decode(errors='replace')[-600:]}"
        )
    answer = json.loads(done.stdout)
    seconds = {Path(row["path"]): row["seconds"] for row in answer["files"]}
    unread = {Path(row["path"]) for row in answer["unreadableFiles"]}
    if seconds.keys() & unread or seconds.keys() | unread != set(paths):
        raise RuntimeError("velmora-scan did not account for every file once")
    return seconds


def ffprobe(paths):
    """One process a file, as ffprobe has to be run."""
    return _each(
        paths,
        "ffprobe",
        "-v",
        "quiet",
        "-show_entries",
        "format=duration",
        "-of",
        "default=noprint_wrappers=1:nokey=1",
    )


def soxi(paths):
    """One process a file: a file that it cannot read would end a common run."""
    return _each(paths, "soxi", "-D")


def mediainfo(paths):
    """One process for all; runs of numbered names are not to be taken for one recording."""
    done = subprocess.run(
        [
            "mediainfo",
            "--File_TestContinuousFileNames=0",
            "--Output=General;%CompleteName%|%Duration%\\n",
            *map(str, paths),
        ],
        capture_output=True,
        text=True,
        check=False,
    )
    answers = {}
    for line in done.stdout.splitlines():
        name, bar, milliseconds = line.rpartition("|")
        if bar and (seconds := _positive(milliseconds)) is not None:
            answers[Path(name)] = seconds / 1000
    return answers


def taglib(paths, folder: Path):
    """A small program over TagLib, built into `folder`: milliseconds for each path."""
    program = folder / "taglib-milliseconds"
    source = Path(__file__).with_name("taglib_milliseconds.cpp")
    if not program.exists() or program.stat().st_mtime < source.stat().st_mtime:
        subprocess.run(["c++", "-std=c++20", "-O2", str(source), "-o", str(program), "-ltag"], check=True)
    done = subprocess.run([str(program), *map(str, paths)], capture_output=True, text=True, check=True)
    answers = {}
    for path, line in zip(paths, done.stdout.split(), strict=True):
        if (seconds := _positive(line)) is not None:
            answers[path] = seconds / 1000
    return answers


def versions():
    """{name: version} of the peers, for the page."""

    def words(*argv):
        return subprocess.run(argv, capture_output=True, text=True, check=False).stdout.split()

    return {
        "ffprobe": words("ffprobe", "-version")[2],
        "mediainfo": words("mediainfo", "--Version")[-1].removeprefix("v"),
        "soxi": words("sox", "--version")[-1].removeprefix("v"),
        "TagLib": words("pkg-config", "--modversion", "taglib")[0],
    }


def _each(paths, *argv):
    def ask(path):
        try:
            done = subprocess.run(
                [*argv, str(path)],
                capture_output=True,
                text=True,
                check=False,
                timeout=_PATIENCE,
                stdin=subprocess.DEVNULL,
            )
        except subprocess.TimeoutExpired:
            return None
        return _positive(done.stdout.strip())

    with ThreadPoolExecutor(2) as pool:
        return {path: seconds for path, seconds in zip(paths, pool.map(ask, paths)) if seconds is not None}


def _positive(text):
    try:
        number = float(text)
    except ValueError:
        return None
    return number if 0 < number < float("inf") else None
