"""Makes an archive that unpacks to itself: quine.py OUT.gz, or OUT.zip, whose one member is named so.

A deflated stream can be read as a program of two instructions, each made five bytes long here:

  literal(n)  the head of a stored block: the next n bytes are put out     (RFC 1951, 3.2.4)
  repeat(n)   a block of fixed codes: the last n bytes are put out again   (RFC 1951, 3.2.6)

`program` is one whose output is what stands before it, itself, and what stands after it. The archive also
holds its own checksum: CRC-32 is linear, so the right one is the solution of 32 linear equations."""

import struct
import sys
import zlib
from collections.abc import Callable
from pathlib import Path

OPCODE = 5  # bytes
END = struct.pack("<BHH", 1, 0, 0xFFFF)  # the stream's last block, which is empty


def literal(count: int) -> bytes:
    return struct.pack("<BHH", 0, count, count ^ 0xFFFF)


def lowest_first(value: int, count: int) -> list[int]:
    return [value >> bit & 1 for bit in range(count)]


def highest_first(value: int, count: int) -> list[int]:
    return lowest_first(value, count)[::-1]


def code_and_rest(value: int, group: int) -> tuple[int, int, int]:
    """The code of a length or distance (0 the least), its number of further bits, and these. Each further bit
    serves `group` codes; the first 2 * `group` codes have none."""
    further = max((value // group).bit_length() - 1, 0) if value >= 2 * group else 0
    return group * further + (value >> further), further, value & ((1 << further) - 1)


def match(length: int, distance: int) -> list[int]:
    """The bits for: again `length` bytes, which begin `distance` bytes back."""
    code, further, rest = (28, 0, 0) if length == 258 else code_and_rest(length - 3, 4)
    bits = highest_first(code + 1, 7) if code < 23 else highest_first(code - 23 + 0b11000000, 8)
    bits += lowest_first(rest, further)
    code, further, rest = code_and_rest(distance - 1, 2)
    return bits + highest_first(code, 5) + lowest_first(rest, further)


def block(*matches: list[int]) -> list[int]:
    return [0, 1, 0] + sum(matches, []) + [0] * 7


def repeat(count: int) -> bytes:
    """Raises ValueError for the many lengths that no five bytes stand for."""
    for first in range(count, 2, -1):
        lengths = [length for length in (first, count - first) if length > 0]
        if not all(3 <= length <= 258 for length in lengths):
            continue
        bits = block(*(match(length, count) for length in lengths))
        while len(bits) < 8 * OPCODE:
            bits += block()
        if len(bits) == 8 * OPCODE:
            return sum(bit << place for place, bit in enumerate(bits)).to_bytes(OPCODE, "little")
    raise ValueError(f"no five bytes repeat {count}")


def program(before: bytes, after: bytes) -> bytes:
    """`after` begins with END."""
    head, tail = len(before) + OPCODE, len(after) + OPCODE
    one, four, none = literal(OPCODE), literal(4 * OPCODE), literal(0)
    repeat_head, repeat_four, repeat_tail = repeat(head), repeat(4 * OPCODE), repeat(tail)
    last = [none, none, literal(tail), repeat_tail]
    return b"".join([literal(head), before, literal(head), repeat_head,
                     one, repeat_head,
                     one, one,
                     four, repeat_head, one, one, four, repeat_four,
                     four, repeat_four, four, repeat_four, four, repeat_four,
                     four, repeat_four, none, none, literal(tail), repeat_four,
                     *last, after, repeat_tail])


def with_own_checksum(archive: Callable[[int], bytes]) -> bytes:
    """`archive` makes it with the checksum it is told. Raises ValueError where none is right."""
    def error(checksum: int) -> int:
        return zlib.crc32(archive(checksum)) ^ checksum

    constant = error(0)
    rows = [(error(1 << bit) ^ constant, 1 << bit) for bit in range(32)]  # what flipping these bits changes
    wanted, checksum = constant, 0
    for place in range(32):
        pivot = next((row for row in rows if row[0] >> place & 1), None)
        if pivot is None:
            raise ValueError("no checksum is right")
        rows.remove(pivot)
        rows = [(a ^ pivot[0], b ^ pivot[1]) if a >> place & 1 else (a, b) for a, b in rows]
        if wanted >> place & 1:
            wanted, checksum = wanted ^ pivot[0], checksum ^ pivot[1]
    return archive(checksum)


def whole(parts: Callable[[int, int, int], tuple[bytes, bytes]]) -> bytes:
    """`parts` makes what stands before and after the stream. It is told the checksum, the stream's size and
    the size of all."""
    before, after = parts(0, 0, 0)
    stream = len(program(before, after)) + len(END)
    size = len(before) + stream + len(after) - len(END)

    def archive(checksum: int) -> bytes:
        before, after = parts(checksum, stream, size)
        return before + program(before, after) + after
    return with_own_checksum(archive)


def gzip() -> bytes:
    name = b"a\0"  # for a length that can be repeated
    return whole(lambda checksum, stream, size:
                 (b"\x1F\x8B\x08\x08" + bytes(5) + b"\x03" + name, END + struct.pack("<II", checksum, size)))


def zip_archive(name: bytes) -> bytes:
    padding = 60 - 30 - len(name)  # 65 and 258 bytes can be repeated
    extra = struct.pack("<HH", 0xCAFE, padding - 4) + bytes(padding - 4)
    comment = bytes(258 - OPCODE - len(END) - 46 - len(name) - 22)

    def parts(checksum: int, stream: int, size: int) -> tuple[bytes, bytes]:
        fields = struct.pack("<HHHHHIIIH", 20, 0, 8, 0, 0x5821, checksum, stream, size, len(name))
        entry = b"PK\1\2" + struct.pack("<H", 20) + fields + bytes(16) + name
        before = b"PK\3\4" + fields + struct.pack("<H", len(extra)) + name + extra
        end = b"PK\5\6" + struct.pack("<HHHHIIH", 0, 0, 1, 1, len(entry), len(before) + stream, len(comment))
        return before, END + entry + end + comment
    return whole(parts)


def main(out: Path) -> None:
    out.write_bytes(zip_archive(out.name.encode()) if out.suffix == ".zip" else gzip())


main(Path(sys.argv[1]))
