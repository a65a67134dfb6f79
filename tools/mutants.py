"""Builds the copy of the project as it stands, and asks the tests of one folder about it.

On a busy machine a test may fall though nothing is wrong. So a test that falls runs again right after, with
the programs as they were before anything was broken; if it falls then, too, it has proved nothing.
"""

import json
import os
import shutil
import subprocess
import tempfile
import time
from collections import Counter
from collections.abc import Iterator
from contextlib import contextmanager
from concurrent.futures import ThreadPoolExecutor, as_completed
from enum import Enum
from pathlib import Path

PRESET = "mutate"

# A broken program may kill whatever it can, so a test runs in a process namespace of its own; what it leaves
# goes with that. A shell stands before the test: the first process of a namespace is spared signals, and gets
# orphans. Its limit of 4 GiB, what a tool may have, keeps the memory from a loop that does not end.
NAMESPACE = ("unshare", "--pid", "--fork", "--kill-child", "--mount-proc",
             *(() if os.geteuid() == 0 else ("--user", "--map-current-user")),
             "sh", "-c", 'ulimit -v 4194304; "$@"; exit $?', "sh")


class Fate(Enum):
    killed = "fell"
    hung = "ran out of time"
    survived = "survived"
    none = "did not compile"


class Tests:
    """The tests of one folder, the ones that killed before first, then the shortest first."""

    def __init__(self, project: Path, folder: str) -> None:
        self._project = project
        self._folder = folder
        self.fallen = ""  # the test that the last mutant did not pass
        self.unsteady: Counter = Counter()  # the tests that fell, and did so without a mutant, too
        self._kills: Counter = Counter()
        subprocess.run(["cmake", "--preset", PRESET], cwd=project, check=True, stdout=subprocess.DEVNULL)
        if not self._builds():
            raise SystemExit(f"mutate: {folder} does not build as it is")
        self._commands = self._listed()
        self._times = project / "build" / f"seconds-of-{folder}.json"
        self._seconds = json.loads(self._times.read_text()) if self._times.exists() else {}
        self._keep_programs()

    def fate(self) -> Fate:
        """What becomes of the project as it stands."""
        self.fallen = ""
        if not self._builds():
            return Fate.none
        waiting = sorted(self._commands, key=lambda name: (-self._kills[name], self._seconds_of(name)))
        while fall := self._first_fall(waiting):
            name, fate = fall
            if self._passes_unbroken(name):
                self.fallen = name
                self._kills[name] += 1
                return fate
            self.unsteady[name] += 1
        return Fate.survived

    def _first_fall(self, waiting: list[str]) -> tuple[str, Fate] | None:
        """Runs the tests that wait until one falls. What has ended waits no longer."""
        for name, fate, seconds in self._run(list(waiting)):
            waiting.remove(name)
            if fate != Fate.survived:
                return name, fate
            self._seconds[name] = seconds
        self._times.write_text(json.dumps(self._seconds))
        return None

    def _passes_unbroken(self, name: str) -> bool:
        with self._unbroken_programs():
            return all(fate == Fate.survived for _, fate, _ in self._run([name]))

    def _keep_programs(self) -> None:
        """Keeps a copy of what was built and can be run."""
        shutil.rmtree(self._kept, ignore_errors=True)
        for file in self._built.rglob("*"):
            if "CMakeFiles" not in file.parts and file.is_file() and os.access(file, os.X_OK):
                there = self._kept / file.relative_to(self._built)
                there.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(file, there)

    @contextmanager
    def _unbroken_programs(self) -> Iterator[None]:
        """Puts the copy in the place of what is built: programs know each other by their paths."""
        aside = self._built.with_name("broken")
        self._built.rename(aside)
        self._kept.rename(self._built)
        try:
            yield
        finally:
            self._built.rename(self._kept)
            aside.rename(self._built)

    @property
    def _built(self) -> Path:
        return self._project / "build" / PRESET

    @property
    def _kept(self) -> Path:
        return self._project / "build" / "unbroken"

    def _seconds_of(self, name: str) -> float:
        return self._seconds.get(name, 5.0)  # before it is known

    def _builds(self) -> bool:
        command = ["cmake", "--build", "--preset", PRESET, "--target", f"tests/{self._folder}/all"]
        return subprocess.run(command, cwd=self._project, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def _listed(self) -> dict[str, list[str]]:
        """The command of each test."""
        tests = self._built / "tests" / self._folder
        listing = subprocess.run(["ctest", "--show-only=json-v1"], cwd=tests, check=True, capture_output=True)
        return {test["name"]: test["command"] for test in json.loads(listing.stdout)["tests"]}

    def _run(self, names: list[str]) -> Iterator[tuple[str, Fate, float]]:
        """Runs tests, two at a time, and yields each test's name, fate and seconds as it ends."""
        temporary = tempfile.mkdtemp(prefix="test-velmora-mutant-")
        os.chmod(temporary, 0o711)  # some tests become another user
        try:
            with ThreadPoolExecutor(2) as pool:
                tests = [pool.submit(self._run_one, name, temporary) for name in names]
                try:
                    for test in as_completed(tests):
                        yield test.result()
                finally:
                    for test in tests:
                        test.cancel()
        finally:
            shutil.rmtree(temporary, ignore_errors=True)

    def _run_one(self, name: str, temporary: str) -> tuple[str, Fate, float]:
        begin = time.monotonic()
        with subprocess.Popen([*NAMESPACE, *self._commands[name]], cwd=temporary, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              env={**os.environ, "TMPDIR": temporary}) as test:
            try:
                fate = Fate.survived if test.wait(20 + 10 * self._seconds_of(name)) == 0 else Fate.killed
            except subprocess.TimeoutExpired:
                test.kill()
                fate = Fate.hung
        return name, fate, time.monotonic() - begin
