#!/usr/bin/env python3
"""Lines and branches of src/, include/ and torvio/explain/ that the tests reach, from the counters of a clang build.

usage: report.py TOP BUILD BINARY [BINARY ...]

The counts are in BUILD/profiles, the names of binaries are relative to BUILD.
A line of a template is reached if any instantiation in any program reaches it. Branches are the conditions
of the source with both outcomes; edges that the compiler adds for exceptions are not included.
tests/coverage/exceptions.txt lists what need not be reached, with reasons. An entry that was reached is
printed, but is no error: half of the outcomes are differences of two counters, which can be inexact if a
process ends early. Exits with 1 if anything else was not reached.
"""
import glob
import json
import os
import subprocess
import sys
from collections import defaultdict


def tool(name):
    return os.environ.get(name.upper().replace("-", "_"), name)


def exported(binary, others, profile, build, form):
    command = [tool("llvm-cov"), "export", binary, "-instr-profile", profile, "-format", form]
    for other in others:
        command += ["-object", other]
    if form == "text":
        command += ["-skip-functions", "-skip-expansions"]
    return subprocess.run(command, check=True, capture_output=True, text=True, cwd=build).stdout


def is_library(name):
    return name.startswith(("src/", "include/", "torvio/explain/"))


def source_name(name, build, top):
    """The objects name their sources relative to the folder of the build, so that ccache can share them."""
    return os.path.relpath(os.path.join(build, name), top)


def lines_of(lcov, build, top):
    """{(file, line): count}"""
    counts = defaultdict(int)
    name = ""
    for row in lcov.splitlines():
        if row.startswith("SF:"):
            name = source_name(row[3:], build, top)
        elif row.startswith("DA:"):
            line, count = row[3:].split(",")[:2]
            if is_library(name):
                counts[name, int(line)] += int(count)
    return counts


def branches_of(text, build, top):
    """{(file, line, column, end line, end column): [times true, times false]}"""
    counts = defaultdict(lambda: [0, 0])
    for one in json.loads(text)["data"][0]["files"]:
        name = source_name(one["filename"], build, top)
        if not is_library(name):
            continue
        for line, column, end_line, end_column, when_true, when_false, *_ in one.get("branches", []):
            both = counts[name, line, column, end_line, end_column]
            both[0] += when_true
            both[1] += when_false
    return counts


def exceptions(path):
    """{(file, kind, text): reason}. kind is `line`, `true` or `false`; text is the source line, or, in all
    files (`*`), the beginning of the condition."""
    found = {}
    with open(path, encoding="utf-8") as source:
        for row in source:
            row = row.rstrip("\n")
            if not row or row.startswith("#"):
                continue
            name, kind, text, reason = (part.strip() for part in row.split(" | "))
            found[name, kind, text] = reason
    return found


def main():
    top, build, *binaries = sys.argv[1:]
    top, build = os.path.abspath(top), os.path.abspath(build)
    profiles = os.path.join(build, "profiles")
    merged = os.path.join(profiles, "all.profdata")
    subprocess.run([tool("llvm-profdata"), "merge", "-sparse", "-o", merged, *glob.glob(profiles + "/*.profraw")],
                   check=True)
    lines = lines_of(exported(binaries[0], binaries[1:], merged, build, "lcov"), build, top)
    branches = branches_of(exported(binaries[0], binaries[1:], merged, build, "text"), build, top)
    excepted = exceptions(os.path.join(top, "tests/coverage/exceptions.txt"))
    unused = set(excepted)
    sources = {}

    def text_of(name, line):
        if name not in sources:
            with open(os.path.join(top, name), encoding="utf-8") as source:
                sources[name] = source.read().splitlines()
        return sources[name][line - 1]

    def excused(name, line, kind, what=""):
        key = (name, kind, text_of(name, line).strip())
        keys = [key] if key in excepted else [k for k in excepted
                                              if k[:2] == ("*", kind) and what and what.startswith(k[2])]
        unused.difference_update(keys)
        return bool(keys)

    missed, excused_count = [], 0
    for (name, line), count in sorted(lines.items()):
        if count == 0 and text_of(name, line).strip() != "}":
            if excused(name, line, "line"):
                excused_count += 1
            else:
                missed.append(f"{name}:{line}: not reached: {text_of(name, line).strip()}")
    line_misses = len(missed)
    outcomes = 0
    for (name, line, column, end_line, end_column), both in sorted(branches.items()):
        if both == [0, 0]:
            continue  # decided by the compiler, or after an outcome or line that is reported itself
        outcomes += 2
        for kind, count in zip(("true", "false"), both):
            if count == 0:
                what = text_of(name, line)[column - 1:end_column - 1 if end_line == line else None]
                if excused(name, line, kind, what):
                    excused_count += 1
                else:
                    missed.append(f"{name}:{line}:{column}: never {kind}: {what}")
    branch_misses = len(missed) - line_misses
    print("\n".join(missed))
    for name, kind, text in sorted(unused):
        print(f"{name}: this exception was reached ({kind}): {text}")
    print(f"lines: {len(lines) - line_misses} of {len(lines)} ({100 * (1 - line_misses / len(lines)):.1f} %)")
    print(f"outcomes of branches: {outcomes - branch_misses} of {outcomes} ({100 * (1 - branch_misses / outcomes):.1f} %)")
    print(f"excepted with a reason: {excused_count}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
