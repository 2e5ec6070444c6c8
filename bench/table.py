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
            medians[one["run_name"]] = (one["real_time"], one["cpu_time"], one.get("bytes_per_second", 0), one.get("peak"))
    # The floor of a load is the faster of the two ways to read its file.
    for name in [name for name in medians if name.endswith("/window")]:
        case = name.removesuffix("/window")
        medians[f"{case}/floor"] = min(medians[name], medians[f"{case}/at once"])
    return medians


def time_text(nanoseconds):
    for unit, size in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.2f} {unit}"
    return f"{nanoseconds:.0f} ns"


def size_text(size):
    return f"{size / 2**20:.1f} MiB" if size >= 2**20 else f"{size / 2**10:.0f} KiB"


def ratio_text(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.2f}" if value >= 0.01 else f"{value:.1g}"


def by_name(names):
    """Sorts sheets of 2,000 parts after those of 50."""
    return sorted(names, key=lambda name: [int(piece) if piece.isdigit() else piece for piece in re.split(r"(\d+)", name)])


def times(medians, *names):
    return " | ".join(time_text(medians[name][0]) if name in medians else "-" for name in names)


def ratio(medians, above, below):
    """Of real time, in parentheses of processor time."""
    if above not in medians or below not in medians:
        return "-"
    real, cpu = (ratio_text(medians[above][column] / medians[below][column]) for column in (0, 1))
    return f"{real} ({cpu})"


def peaks(medians, library, floor):
    if floor not in medians or medians[library][3] is None:
        return "-"
    of_library, of_floor = medians[library][3], medians[floor][3]
    return f"{size_text(of_library)}, {size_text(of_floor)}: {of_library / of_floor:.2f}"


def table(medians):
    yield "| what | library | floor | one fread a field | library / floor (CPU) | fread / library (CPU) | peak heap: library, floor, ratio |"
    yield "|---|---|---|---|---|---|---|"
    for library in by_name(name for name in medians if name.endswith("/library")):
        case = library.removesuffix("/library")
        floor, fread = f"{case}/floor", f"{case}/fread"
        yield (f"| {case} | {times(medians, library, floor, fread)} | {ratio(medians, library, floor)} | "
               f"{ratio(medians, fread, library)} | {peaks(medians, library, floor)} |")
    yield ""
    yield "| query | library | load | one fread a field | query / load (CPU) | fread / query (CPU) |"
    yield "|---|---|---|---|---|---|"
    for query in by_name(name for name in medians if "/query/" in name):
        name, _, case = query.split("/")
        load, fread = f"{case}/library", f"{case}/fread"
        yield (f"| {name} of {case.removeprefix('Load')} | {times(medians, query, load, fread)} | "
               f"{ratio(medians, query, load)} | {ratio(medians, fread, query)} |")
    yield ""
    yield "| in memory | time | rate |"
    yield "|---|---|---|"
    for name, (real, _, rate, _) in medians.items():
        if name.startswith("LargePartInMemory/"):
            yield f"| {name.replace('/', ': ')} | {time_text(real)} | {rate / 1e9:.2f} GB/s |"


rows = "\n".join(table(measure(sys.argv[1])))
print(rows)
if "--update" in sys.argv[2:]:
    page = pathlib.Path(__file__).resolve().parent.parent / "docs" / "performance.md"
    text = page.read_text()
    page.write_text(re.sub(r"(<!-- table -->\n).*?(\n<!-- end -->)", lambda m: m[1] + rows + m[2], text, flags=re.S))
