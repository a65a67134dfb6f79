"""A scan while the main thread is busy for 15 ms of every 16 ms."""

from measuring import DATA, native, output_of, table
from scaling import count_of, small_files

ROUNDS = 9


def run() -> str:
    folders = small_files(DATA)[:2]
    free, asleep, computing = map(float, output_of(
        [native("bench_blocked_main_thread"), str(ROUNDS), *map(str, folders)]).split())
    return ("## A busy main thread\n\n"
            f"A scan of {count_of(folders):,} small files while the main thread is kept from its events for\n"
            f"15 ms of every 16 ms; medians of {ROUNDS} interleaved rounds. Computing takes a core from the\n"
            "workers besides.\n\n"
            + table(["main thread", "seconds", "times the free one"],
                    [["free", f"{free:.3f}", "1.00"], ["asleep", f"{free * asleep:.3f}", f"{asleep:.2f}"],
                     ["computing", f"{free * computing:.3f}", f"{computing:.2f}"]]))
