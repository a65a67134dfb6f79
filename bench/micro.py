"""Single steps of a scan on one thread, by Google Benchmark."""

import json

from library import library
from measuring import DATA, native, output_of, table

READ_WHOLE = ("no-index", "no-header")  # kinds whose frames are counted from the first to the last
FIRST_SONG = "[-]1[.]"


def run() -> str:
    library(DATA)
    report = json.loads(output_of([native("bench_micro"), str(DATA / "masters"), "--benchmark_format=json",
                                   "--benchmark_min_time=0.2",
                                   f"--benchmark_filter={FIRST_SONG}|order|hand"]))
    rows = []
    for step in report["benchmarks"]:
        if "error_message" in step:
            raise SystemExit(f"{step['name']}: {step['error_message']}")
        rows.append([step["name"].removesuffix("/real_time"), f"{microseconds(step):,.1f}", rate(step)])
    return ("## Single steps\n\n"
            "On one thread, warm cache. Where a file states no length its frames are counted, and the rate\n"
            "is that of going through all of it. `order/100000` orders 100,000 paths; `hand over` is one\n"
            "result's way to the main thread.\n\n"
            + table(["step", "µs", "GB/s"], rows))


def microseconds(step: dict) -> float:
    return step["real_time"] * {"ns": 1e-3, "us": 1, "ms": 1e3}[step["time_unit"]]


def rate(step: dict) -> str:
    if not any(mark in step["name"] for mark in READ_WHOLE):
        return ""
    return f"{step['bytes_per_second'] / 1e9:.1f}"
