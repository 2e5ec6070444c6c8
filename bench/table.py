"""Runs the benchmarks and prints their medians and ratios as a table.

usage: table.py BENCHMARK_PROGRAM [--update]     (--update rewrites the table in docs/performance.md)
"""
import json
import pathlib
import re
import subprocess
import sys

COMMAND = ["--benchmark_repetitions=9", "--benchmark_enable_random_interleaving=true",
           "--benchmark_min_time=0.1", "--benchmark_format=json"]


def measure(program):
    run = subprocess.run([program, *COMMAND], capture_output=True, text=True, check=True)
    medians = {}
    for one in json.loads(run.stdout)["benchmarks"]:
        if one.get("aggregate_name") == "median":
            medians[one["run_name"]] = (one["real_time"], one["cpu_time"], one.get("bytes_per_second", 0))
    return medians


def time_text(nanoseconds):
    for unit, size in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.2f} {unit}"
    return f"{nanoseconds:.0f} ns"


def ratio(medians, above, below, column):
    if above not in medians or below not in medians:
        return "-"
    return f"{medians[above][column] / medians[below][column]:.2f}"


def table(medians):
    yield "| what | library | floor | one fread a field | library / floor (CPU) | fread / library (CPU) |"
    yield "|---|---|---|---|---|---|"
    for case in dict.fromkeys(name.split("/")[0] for name in medians):
        library, floor, fread = (f"{case}/{way}" for way in ("library", "floor", "fread"))
        if library not in medians:
            continue
        times = [time_text(medians[name][0]) if name in medians else "-" for name in (library, floor, fread)]
        to_floor = f"{ratio(medians, library, floor, 0)} ({ratio(medians, library, floor, 1)})"
        to_fread = f"{ratio(medians, fread, library, 0)} ({ratio(medians, fread, library, 1)})" if fread in medians else "-"
        yield f"| {case} | {' | '.join(times)} | {to_floor} | {to_fread} |"
    for name in [name for name in medians if name.endswith("/query")]:
        load = name.replace("/query", "/load")
        yield f"| {name.split('/')[0]} | {time_text(medians[name][0])} | load {time_text(medians[load][0])} | - | {ratio(medians, name, load, 0)} ({ratio(medians, name, load, 1)}) of the load | - |"
    for name, (real, _, rate) in medians.items():
        if name.startswith("LargePartInMemory/"):
            yield f"| {name.replace('/', ': ')} | {time_text(real)}, {rate / 1e9:.2f} GB/s | - | - | - | - |"


rows = "\n".join(table(measure(sys.argv[1])))
print(rows)
if "--update" in sys.argv[2:]:
    page = pathlib.Path(__file__).resolve().parent.parent / "docs" / "performance.md"
    text = page.read_text()
    page.write_text(re.sub(r"(<!-- table -->\n).*?(\n<!-- end -->)", lambda m: m[1] + rows + m[2], text, flags=re.S))
