"""Which reads of files a command makes, seen with strace."""

import re
import tempfile
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path

from measuring import output_of


@dataclass(frozen=True)
class Read:
    path: str
    size: int  # bytes asked for
    offset: int
    got: int  # bytes


def reads_below(path: Path, command: Sequence[str]) -> list[Read]:
    """The reads that a command makes of the file at `path` or of files below it, those of each thread in
    their order. Anything but `pread` of such a file is an error: a mapped file's reads cannot be seen. One
    that is to take what is in memory, and finds nothing, is no read."""
    reads = []
    seen = re.compile(rf'pread(?:64|v2)\(\d+<({re.escape(str(path))}[^>]*)>, '
                      r'(?:\[\{iov_base=)?""(?:\.\.\.)?, '
                      r"(?:iov_len=)?(\d+)(?:\}\], 1)?, (\d+)(?:, RWF_NOWAIT)?\) += (\d+|-1 EAGAIN)")
    with tempfile.TemporaryDirectory() as logs:
        output_of(["strace", "-ff", "-y", "-v", "-qq", "-s", "0", "-o", f"{logs}/log",
                   "-e", "trace=read,pread64,readv,preadv,preadv2,mmap", *command])
        for log in Path(logs).iterdir():
            for line in log.read_text(errors="replace").splitlines():
                if f"<{path}" not in line:
                    continue
                if not (call := seen.match(line)):
                    raise SystemExit(f"this is no read that can be followed: {line}")
                if call[4].isdecimal():
                    reads.append(Read(call[1], *map(int, call.groups()[1:])))
    return reads
