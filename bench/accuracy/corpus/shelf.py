"""The shelf on which the makers put their files: one `Variant` a file, with what its true playing time is
known by.

The true playing time is what a gapless player plays: the length of the encoded source where the file tells a
decoder to drop the encoder's priming and padding, else everything that the frames decode to.
"""

import copy
import threading
from dataclasses import dataclass, replace
from pathlib import Path

from .tools import ffmpeg, sox

HEALTHY, MISNAMED, TRUNCATED, LYING, SILENT = "healthy", "misnamed", "truncated", "lying", "silent"


@dataclass(frozen=True)
class Truth:
    """How the true length is known. `seconds` is what the maker knows, else what `decoder` counts. Where both
    are present the decoder is a check: it must agree within `slack` seconds. `words` says it for the table.
    """

    words: str
    seconds: float | None = None
    decoder: str | None = None
    slack: float = 0.05


def decoded(decoder="ffmpeg"):
    """What `decoder` counts is the truth."""
    return Truth(f"decoded by {decoder}", decoder=decoder)


def source(seconds, decoder="ffmpeg", slack=0.05):
    """The encoder was given exactly `seconds`, and a gapless decoder gives them back."""
    return Truth(f"source, checked by {decoder}", seconds, decoder, slack)


def built(seconds, why, decoder=None, slack=0.05):
    """The file was put together so; `why` says what makes it `seconds` long."""
    return Truth(f"built: {why}" + (f"; checked by {decoder}" if decoder else ""), seconds, decoder, slack)


NO_AUDIO = Truth("no audio", 0.0)


@dataclass(frozen=True)
class Variant:
    """One file of the corpus. `name` is its path below the corpus, `note` one line for the table. `hard`
    marks one that programs are known to time wrongly; `reports` names public reports of that, if any, as
    project and number.
    """

    name: str
    group: str
    note: str
    truth: Truth
    hard: bool = False
    reports: str = ""

    @property
    def extension(self):
        return self.name.rpartition(".")[2].lower()


class Shelf:
    """Keeps the files below `root` and the list of them. May be used by several makers at once."""

    def __init__(self, root: Path):
        self.root = root
        self.variants: list[Variant] = []
        self._is_hard = False
        self._lock = threading.Lock()
        self._sources: dict[str, threading.Lock] = {}

    def tone(self, seconds=5.3, rate=44100, channels=2, bits=16, kind="noise") -> Path:
        """A WAV file of exactly `seconds` to encode from; made once. `kind`: noise, silence, or speech
        (bursts of noise with as much silence between them)."""
        path = self.root / "sources" / f"{kind}-{seconds}s-{rate}-{channels}ch-{bits}.wav"
        with self._lock:
            making = self._sources.setdefault(path.name, threading.Lock())
        with making:
            if not path.exists():
                path.parent.mkdir(parents=True, exist_ok=True)
                shape = ("-n -r", rate, "-c", channels, "-b", bits, path)
                if kind == "noise":
                    sox(shape, "synth", seconds, "pinknoise vol 0.3")
                elif kind == "silence":
                    sox("-D", shape, "trim 0", seconds)
                else:
                    sox("-D", shape, "synth 1 pinknoise vol 0.3 pad 0 1 repeat - trim 0", seconds)
        return path

    def cover(self) -> Path:
        """A PNG picture of some hundred KB; made once."""
        path = self.root / "sources" / "cover.png"
        with self._lock:
            if not path.exists():
                path.parent.mkdir(parents=True, exist_ok=True)
                ffmpeg("-f lavfi -i nullsrc=s=500x500,geq=random(1)*255:128:128 -frames:v 1", path)
        return path

    def path(self, name, group=HEALTHY) -> Path:
        """Where the file `name` is to be written; its folder exists."""
        path = self.root / group / name
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def add(self, name, note, truth: Truth, group=HEALTHY) -> Path:
        """Registers a file that has been written to `path(name, group)`."""
        path = self.path(name, group)
        if not path.is_file():
            raise FileNotFoundError(path)
        with self._lock:
            self.variants.append(Variant(f"{group}/{name}", group, note, truth, self._is_hard))
        return path

    def put(self, name, note, data: bytes, truth: Truth, group=HEALTHY) -> Path:
        """Writes `data` and registers it."""
        self.path(name, group).write_bytes(data)
        return self.add(name, note, truth, group)

    def for_hard_cases(self):
        """The same shelf, which marks every file that is registered there as a hard case."""
        shelf = copy.copy(self)
        shelf._is_hard = True
        return shelf

    def hard(self, name, group=HEALTHY, reports=""):
        """Marks a registered file as a hard case, and names public reports of it (see `Variant`)."""
        with self._lock:
            at = next(i for i, row in enumerate(self.variants) if row.name == f"{group}/{name}")
            self.variants[at] = replace(self.variants[at], hard=True, reports=reports)
