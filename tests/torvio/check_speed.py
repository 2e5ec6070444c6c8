"""Measures `torvio check` on many nests: seconds, processor time and peak memory of each run.

usage: check_speed.py BUILD_FOLDER WORK_FOLDER [FILES]

Writes FILES files (100,000 without it, about 4 GB) to WORK_FOLDER/nests: the sheets that make_corpus makes, a third of
them damaged, again and again. All runs after the first find them in the file cache, and so does the first if they
were just made.
"""
import itertools
import os
import pathlib
import subprocess
import sys
import time

build, work = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
count = int(sys.argv[3]) if len(sys.argv) > 3 else 100000
torvio = build / "bin" / "torvio"
nests, catalogue = work / "nests", work / "nests.sqlite"


def make_nests():
    corpus = work / "corpus"
    subprocess.run([build / "tests/torvio/make_corpus", corpus, "4000"], check=True)
    rows = (line.split("\t") for line in (corpus / "truth.tsv").read_text().splitlines()[1:])
    sheets = [(corpus / name).read_bytes() for name, kind, *_ in rows if kind == "sheet"]
    for number, sheet in zip(range(count), itertools.cycle(sheets)):
        folder = nests / f"{number // 1000:03}"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{number:06}.nst").write_bytes(sheet)
    print(f"{count} files, {sum(len(sheets[n % len(sheets)]) for n in range(count)) / count / 1000:.1f} KB on average")


def run(what, *options):
    # The times and the memory of this one process.
    start = time.monotonic()
    process = subprocess.Popen([torvio, "check", nests, "--summary", "--ext", "sheet=.nst", *options],
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    # Damaged files were found.
    if process.returncode != 1:
        sys.exit(f"{what}: exit code {process.returncode}")
    print(f"{what:32} {seconds:6.2f} s  processor {usage.ru_utime + usage.ru_stime:6.2f} s  "
          f"{usage.ru_maxrss / 1024:4.0f} MiB", flush=True)


if not nests.exists():
    make_nests()
catalogue.unlink(missing_ok=True)
run("first run")
run("warm")
run("warm, one thread", "--jobs", "1")
run("warm, NDJSON", "--json")
run("warm, a new catalogue", "-o", str(catalogue))
run("warm, the catalogue again", "-o", str(catalogue))
print(f"the catalogue: {catalogue.stat().st_size / 1e6:.0f} MB")
