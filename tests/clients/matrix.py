#!/usr/bin/env python3
"""Builds the project as users do, without a preset, with both compilers and at every build type, and then uses the
installed library (consumers.py). Any warning is a failure.

usage: matrix.py [--short] [--jobs N]

--short: Release and Debug only, the library and the tool only, and one compiler for the consumers. Files are then
compiled together (CMAKE_UNITY_BUILD), which takes a third of the time.

Prints a line for each build and each consumer. The logs are in build/matrix/.
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parents[1]
BUILD = TOP / "build" / "matrix"
COMPILERS = (("gcc", "g++"), ("clang", "clang++"))
BUILD_TYPES = ("Release", "None", "Debug", "RelWithDebInfo", "MinSizeRel")
# What a build of only the product leaves out.
PRODUCT = ["-DBUILD_TESTING=OFF", "-DOLDTORVIO_BENCH=OFF"]
SHORT = [*PRODUCT, "-DOLDTORVIO_EXAMPLES=OFF", "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0"]


class Cell:
    def __init__(self, compilers, build_type, short):
        self.cc, self.cxx = compilers
        # The Release build sets no build type, as most users do.
        type_option = [] if build_type == "Release" else [f"-DCMAKE_BUILD_TYPE={build_type}"]
        self.everything = build_type == "Release" and not short
        self.name = f"{self.cxx} {build_type}, " + ("everything" if self.everything else "library and tool" if short
                                                    else "library, tool and examples")
        self.folder = BUILD / f"{'short_' if short else ''}{self.cxx}_{build_type}"
        self.options = type_option + ([] if self.everything else SHORT if short else PRODUCT)
        self.complaint = ""

    def build(self, jobs):
        begin = time.monotonic()
        self.folder.mkdir(parents=True, exist_ok=True)
        log = self.folder / "log.txt"
        environment = dict(os.environ, CMAKE_C_COMPILER_LAUNCHER="ccache", CMAKE_CXX_COMPILER_LAUNCHER="ccache")
        steps = (["cmake", "-S", TOP, "-B", self.folder, f"-DCMAKE_C_COMPILER={self.cc}",
                  f"-DCMAKE_CXX_COMPILER={self.cxx}", *self.options],
                 # Warnings only show when a file is compiled: compile all.
                 ["cmake", "--build", self.folder, "--clean-first", "-j", str(jobs)])
        with open(log, "w", encoding="utf-8") as output:
            for step in steps:
                if subprocess.run(step, stdout=output, stderr=subprocess.STDOUT, env=environment).returncode != 0:
                    self.complaint = f"{step[1]} fails"
                    break
        lines = log.read_text(encoding="utf-8", errors="replace").splitlines()
        found = [line for line in lines if re.search(r"\b(warning|error)\b", line, re.IGNORECASE)]
        if found and not self.complaint:
            self.complaint = f"{len(found)} warnings"
        if self.complaint:
            self.complaint += "".join(f"\n  {line}" for line in (found or lines)[-10:]) + f"\n  see {log}"
        how = "FAILED" if self.complaint else "passed"
        print(f"{how}  {time.monotonic() - begin:6.1f} s  {self.name}{': ' if self.complaint else ''}{self.complaint}",
              flush=True)


def consumers_of(cell, full):
    print(f"consumers of {cell.name}:", flush=True)
    return subprocess.run([sys.executable, str(HERE / "consumers.py"), "--build", str(cell.folder), "--cc", cell.cc,
                           "--cxx", cell.cxx, "--scratch", str(cell.folder / "consumers"), *(["--full"] if full else [])],
                          env=dict(os.environ, CMAKE_CXX_COMPILER_LAUNCHER="ccache")).returncode == 0


def main():
    options = argparse.ArgumentParser(description="Builds without presets, with both compilers, at every build type.")
    options.add_argument("--short", action="store_true")
    options.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    args = options.parse_args()
    begin = time.monotonic()

    build_types = ("Release", "Debug") if args.short else BUILD_TYPES
    cells = [Cell(compilers, build_type, args.short) for build_type in build_types for compilers in COMPILERS]
    at_once = min(args.jobs, len(cells))
    with concurrent.futures.ThreadPoolExecutor(at_once) as pool:
        list(pool.map(lambda cell: cell.build(args.jobs // at_once), cells))
    failed = [cell.name for cell in cells if cell.complaint]
    for cell in cells[:1] if args.short else [cell for cell in cells if cell.everything]:
        if not cell.complaint and not consumers_of(cell, not args.short):
            failed.append(f"consumers of {cell.name}")
    print(f"{len(cells)} builds in {time.monotonic() - begin:.0f} s, with their consumers: "
          + (f"FAILED: {'; '.join(failed)}" if failed else "no warning, nothing failed"))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
