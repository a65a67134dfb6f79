"""The programs that make and decode the corpus, called one way: a failure raises with what the program said.
"""

import subprocess
import wave
from contextlib import closing
from pathlib import Path


class ToolFailed(RuntimeError):
    """A program ended with an error; the text names the call and its last words."""


def call(*parts, stdin=None):
    """Runs a program and returns its standard output. A text among `parts` may hold several words, a path or
    a number is one, a tuple holds further parts. `stdin` is bytes, or nothing."""
    words = list(_words(parts))
    where = {"stdin": subprocess.DEVNULL} if stdin is None else {"input": stdin}
    done = subprocess.run(words, capture_output=True, check=False, **where)
    if done.returncode != 0:
        raise ToolFailed(f"{' '.join(words)}: {done.stderr.decode(errors='replace')[-600:]}")
    return done.stdout


def _words(part):
    if isinstance(part, str):
        yield from part.split()
    elif isinstance(part, (tuple, list)):
        for inner in part:
            yield from _words(inner)
    else:
        yield str(part)


def ffmpeg(*parts, stdin=None):
    """ffmpeg, quiet, overwriting; returns its standard output, where a last part "-" sends the result."""
    return call("ffmpeg -v error -y", "" if stdin else "-nostdin", *parts, stdin=stdin)


def encode(source: Path, target: Path, *options):
    """Encodes `source` into `target` with ffmpeg."""
    ffmpeg("-i", source, "-map_metadata -1", *options, target)
    return target


def sox(*parts):
    """sox with reproducible noise and without warnings; returns its standard output."""
    return call("sox -R -V1", *parts)


def pcm_of(source: Path) -> bytes:
    """The bare samples of a WAV file."""
    with closing(wave.open(str(source))) as reader:
        return reader.readframes(reader.getnframes())
