#!/usr/bin/env python3
"""A mutation run: each comparison, constant and condition of src/, include/ and torvio/explain/ is
changed once, and a test has to fail. See "The mutation run" in HACKING.md.

  mutate.py [--again] [--only TEXT] [--longest SECONDS] [--thorough] [--jobs N] [--sources]

The sources are rewritten into build/mutation/rewritten, where a number selects one change, a mutant, at
run time (rewrite.py, switch.h). They are built once. Results: build/mutation/results.txt.
"""
import argparse
import collections
import itertools
import json
import os
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

import rewrite

TOP = pathlib.Path(__file__).resolve().parents[2]
BUILD = TOP / "build" / "mutation"
REWRITTEN = BUILD / "rewritten"
QUICK = 0.2  # seconds
NOT_BUILT = {name: "not part of the program on this system"
             for name in ("src/frame/host/platform_windows.cpp", "torvio/explain/file_content_windows.cpp",
                          "torvio/explain/file_names_windows.cpp")}

# Code that cannot be rewritten as it is: (file, code, its replacement in the rewritten sources).
REPLACEMENTS = [
    # A mutated default must not be computed before the mutant is known.
    ("include/OldTorvIO/lazy_array.h", "static inline const T kDefault{};",
     "static const T& kDefault() { alignas(T) static unsigned char room[sizeof(T)]; "
     "static const T* const all = new (room) T(); return *all; }"),
    ("include/OldTorvIO/lazy_array.h", ": kDefault;", ": kDefault();"),
    # The compiler would compute a constant integer itself.
    ("torvio/explain/format_printer.h", "const char kind = std", "char kind = std"),
]


def plain_source(file):
    text = (TOP / file).read_text(encoding="utf-8")
    for name, before, after in REPLACEMENTS:
        if name == file:
            if text.count(before) != 1:
                sys.exit(f"{file}: {before!r} does not occur exactly once; see REPLACEMENTS in mutate.py")
            text = text.replace(before, after)
    return text


def rewrite_all():
    """Writes the rewritten sources. Returns all sites, and the places that were skipped."""
    files = sorted(str(p.relative_to(TOP)) for folder in ("src", "include", "torvio/explain")
                   for p in (TOP / folder).rglob("*") if p.suffix in (".h", ".cpp"))
    ids = itertools.count(1)
    shared, own, sources = set(), {}, []
    shared_tables = {}
    for file in files:
        if file in NOT_BUILT:
            continue
        constants = shared if file.endswith(".h") else own.setdefault(file, set())
        source = rewrite.Source(file, plain_source(file), ids, constants)
        source.find_unchanged()
        source.take_constants()
        if file.endswith(".h"):
            shared_tables.update(source.tables)
        sources.append(source)
    for source in sources:
        live = {n for n, t in {**shared_tables, **source.tables}.items() if t[4] not in rewrite.LIVE_TABLES}
        source.take_sites(shared | source.constants, live)
        source.rewrite_tables()
        write_if_changed(REWRITTEN / source.file, finished(source))
    kept = {str(REWRITTEN / s.file) for s in sources}
    for old in REWRITTEN.rglob("*"):
        if old.is_file() and str(old) not in kept:
            old.unlink()
    sites = [site for source in sources for site in source.sites]
    skipped = [one for source in sources for one in source.skipped]
    skipped += [(why, file) for file, why in NOT_BUILT.items()]
    return sites, skipped


def finished(source):
    text = source.rewritten()
    if source.file == "src/frame/versions.h":  # they use tables that are rebuilt for each access
        text = re.sub(r"^constexpr bool", "inline bool", text, flags=re.MULTILINE)
    return text


def write_if_changed(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")


def build(jobs):
    subprocess.run(["cmake", "--preset", "mutation", "--log-level=WARNING"], cwd=TOP, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "mutation", "-j", str(jobs), "--target", "oldtorvio_tests",
                    "--", "--quiet"], cwd=TOP, check=True)
    return BUILD / "tests" / "oldtorvio_tests"


def compiled_sites(program):
    """The places that were compiled into the program: each stores its number in a section of its own."""
    section = BUILD / "sites.bin"
    subprocess.run(["objcopy", "--dump-section", f"oldtorvio_sites={section}", str(program), os.devnull], check=True)
    data = section.read_bytes()
    return set(struct.unpack(f"<{len(data) // 4}i", data))


class Server:
    """One test program that waits for work, with a folder of its own for the files that tests write."""

    def __init__(self, program):
        self.folder = tempfile.mkdtemp(prefix="oldtorvio_mutation_", dir="/dev/shm" if os.path.isdir("/dev/shm") else None)
        self.touched = self.folder + ".touched"
        environment = dict(os.environ, TMPDIR=self.folder, OLDTORVIO_MUTATION_SERVE="1",
                           OLDTORVIO_MUTATION_TOUCHED=self.touched)
        self.process = subprocess.Popen([str(program)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        env=environment, cwd=self.folder)

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        reply = self.process.stdout.readline().rstrip("\n")
        for left in os.scandir(self.folder):  # by a process that was killed
            shutil.rmtree(left.path, ignore_errors=True) if left.is_dir() else os.unlink(left.path)
        return reply

    def names(self):
        self.process.stdin.write("list\n")
        self.process.stdin.flush()
        return list(iter(lambda: self.process.stdout.readline().rstrip("\n"), ""))

    def close(self):
        self.process.stdin.close()
        self.process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)
        pathlib.Path(self.touched).unlink(missing_ok=True)


def in_parallel(program, jobs, work, each):
    """Calls each(server, item) for every item of `work`, on as many servers as `jobs`."""
    queue, lock = collections.deque(work), threading.Lock()

    def worker():
        server = Server(program)
        try:
            while True:
                with lock:
                    if not queue:
                        return
                    item = queue.popleft()
                each(server, item)
        finally:
            server.close()

    threads = [threading.Thread(target=worker) for _ in range(jobs)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


class Test:
    def __init__(self, number, name):
        self.number, self.name, self.seconds, self.sites = number, name, 0.0, frozenset()


def measure(program, jobs):
    """Runs every test by itself, without a mutant: its time, and the places that it evaluates."""
    server = Server(program)
    tests = [Test(i, name) for i, name in enumerate(server.names())]
    server.close()
    kept = BUILD / "tests.json"
    stamp = str(program.stat().st_mtime_ns)
    if kept.exists() and (known := json.loads(kept.read_text(encoding="utf-8")))["program"] == stamp:
        for test, (test.seconds, places) in zip(tests, known["tests"]):
            test.sites = frozenset(places)
        return tests, known["unfit"]
    unfit = []

    def one(server, test):
        begin = time.monotonic()
        reply, _, places = server.ask(f"touch 120000:{test.number}").partition(";")
        test.seconds = time.monotonic() - begin
        if reply == "passed":
            test.sites = frozenset(map(int, places.split()))
        else:
            unfit.append(f"{test.name} ({reply})")

    in_parallel(program, jobs, tests, one)

    # Together as well, in several orders: a test that fails because of another would kill mutants for no reason.
    def together(server, order):
        order = [test for test in order if test.sites]
        while (reply := server.ask(f"run 0 {groups_for(order)}")) != "passed":
            failed = tests[int(reply.split()[1])]
            unfit.append(f"{failed.name} ({reply.split()[0]} among others)")
            order.remove(failed)
            failed.sites = frozenset()

    by_time = sorted(tests, key=lambda test: test.seconds)
    orders = [by_time, by_time[::-1], random.Random(1).sample(tests, len(tests)), random.Random(2).sample(tests, len(tests))]
    in_parallel(program, jobs, orders, together)
    unfit = sorted(set(unfit))
    kept.write_text(json.dumps({"program": stamp, "tests": [(test.seconds, sorted(test.sites)) for test in tests],
                                "unfit": unfit}), encoding="utf-8")
    return tests, unfit


def groups_for(tests):
    """The tests in groups of growing length, each with its time limit, in the form that the test program reads."""
    words, group, seconds, longest = [], [], 0.0, 0.03
    for test in tests:
        group.append(test.number)
        seconds += test.seconds
        if seconds >= longest:
            words.append(f"{int(10000 * seconds + 2000)}:{','.join(map(str, group))}")
            group, seconds, longest = [], 0.0, min(longest * 2, 2.0)
    if group:
        words.append(f"{int(10000 * seconds + 2000)}:{','.join(map(str, group))}")
    return " ".join(words)


def run_mutants(program, jobs, sites, tests, longest, explained):
    """The result of each mutant. A survivor costs a run of all tests that reach it, hours for all survivors: those
    with an explanation get only the quick tests."""
    by_site = collections.defaultdict(list)
    for test in tests:
        for site in test.sites:
            by_site[site].append(test)
    killers = collections.defaultdict(collections.Counter)  # by file: the tests that kill its mutants
    results, begun, lock = {}, time.monotonic(), threading.Lock()

    def one(server, site):
        good = killers[site.file]
        most = min(longest, QUICK if site.id in explained else longest)
        able = sorted((test for test in by_site[site.id] if test.seconds <= most),
                      key=lambda test: test.seconds / (1 + good[test.number]))
        if not able:
            result = "not reached" if not by_site[site.id] else "survived"
        else:
            reply = server.ask(f"run {site.id} {groups_for(able)}")
            how, _, number = reply.partition(" ")
            if how == "passed":
                result = "survived"
            else:
                killer = tests[int(number)].name if int(number) >= 0 else "the setup of the test program"
                good[int(number)] += 1
                result = f"killed by {killer}" + ("" if how == "failed" else f" ({how})")
        with lock:
            results[site.id] = result
            print(f"{site.name}: {result}", file=progress, flush=True)
            if len(results) % 100 == 0:
                print(f"{len(results)} of {len(sites)} mutants, {time.monotonic() - begun:.0f} s", file=sys.stderr)

    progress = open(BUILD / "progress.txt", "w", encoding="utf-8")
    in_parallel(program, jobs, sites, one)
    return results


class Explanations:
    """tests/mutation/survivors.txt: FILE | PIECE OF THE LINE | MUTANT | REASON; "*" matches any."""

    def __init__(self, sites):
        self.lines = {file: (TOP / file).read_text(encoding="utf-8").splitlines() for file in {s.file for s in sites}}
        self.entries = []
        for line in (TOP / "tests" / "mutation" / "survivors.txt").read_text(encoding="utf-8").splitlines():
            if line.strip() and not line.startswith("#"):
                file, piece, what, reason = (part.strip() for part in line.split(" | ", 3))
                self.entries.append([file, piece, what, reason, 0])

    def line_of(self, site):
        return self.lines[site.file][site.line - 1].strip()

    def entry_for(self, site):
        for entry in self.entries:
            file, piece, what = entry[:3]
            if file == site.file and (piece == "*" or piece in self.line_of(site)) \
                    and what in ("*", f"{site.what} -> {site.instead}"):
                return entry
        return None

    def reason_for(self, site):
        entry = self.entry_for(site)
        if entry is None:
            return None
        entry[4] += 1
        return entry[3]

    def unused(self):
        return [" | ".join(entry[:3]) for entry in self.entries if entry[4] == 0]


def report(sites, results, explained, skipped, constant, unfit, seconds, only):
    """Whether every survivor is explained and 95 % were killed. If `only` some mutants ran, neither this bar nor the
    explanations of the others apply."""
    counts = collections.defaultdict(collections.Counter)
    unexplained, detail = [], []
    for site in sites:
        result = results[site.id]
        kind = "killed" if result.startswith("killed") else "survived"
        counts[site.file][kind] += 1
        if kind == "survived":
            reason = explained.reason_for(site)
            result += f": {reason}" if reason else ": NOT EXPLAINED"
            if not reason:
                unexplained.append(f"{site.name}   {explained.line_of(site)}")
        detail.append(f"{site.name}: {result}")
    why = collections.Counter(reason for reason, _ in skipped)
    total = sum(sum(c.values()) for c in counts.values())
    killed = sum(c["killed"] for c in counts.values())

    summary = [f"{'file':44} mutants  killed  survived"]
    for file in sorted(counts):
        c = counts[file]
        summary.append(f"{file:44} {sum(c.values()):7} {c['killed']:7} {c['survived']:9}")
    summary += ["", f"{total} mutants, {killed} killed, {100 * killed / max(total, 1):.2f} %; {total - killed} survivors, "
                    f"{len(unexplained)} of them not explained; {seconds:.0f} s, {seconds / max(total, 1):.2f} s a mutant"]
    summary += ["", f"left out: {len(constant)} that only the compiler evaluates, and by reason"]
    summary += [f"{n:7} {reason}" for reason, n in sorted(why.items())]
    if unfit:
        summary += ["", "tests left out because they fail in this build even without a mutant:"] + unfit
    if explained.unused() and not only:
        summary += ["", "explanations without a survivor:"] + explained.unused()
    (BUILD / "results.txt").write_text("\n".join(detail) + "\n", encoding="utf-8")
    (BUILD / "summary.txt").write_text("\n".join(summary) + "\n", encoding="utf-8")
    (BUILD / "left_out.txt").write_text("\n".join([f"{one}: {reason}" for reason, one in skipped] + [
        f"{site.name}: only the compiler evaluates it" for site in constant]) + "\n", encoding="utf-8")
    print("\n".join(summary))
    if unexplained:
        print("\nnot explained:\n" + "\n".join(unexplained))
    return not unexplained and (bool(only) or killed >= 0.95 * total)


def main():
    options = argparse.ArgumentParser(description="Changes each comparison, constant and condition once and runs the tests.")
    options.add_argument("--again", action="store_true", help="only mutants that the last run did not kill; the rest keeps its result")
    options.add_argument("--only", default="", metavar="TEXT", help="only mutants whose name contains this text")
    options.add_argument("--longest", type=float, default=1e9, metavar="SECONDS",
                         help="leave out tests that take longer, for a quick first run")
    options.add_argument("--thorough", action="store_true",
                         help="run all tests on explained survivors as well, not only the quick ones: takes hours")
    options.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    options.add_argument("--sources", action="store_true", help="only rewrite the sources")
    args = options.parse_args()

    sites, skipped = rewrite_all()
    if args.sources:
        print(f"{len(sites)} places, {len(skipped)} left out")
        return 0
    program = build(args.jobs)
    begin = time.monotonic()
    compiled = compiled_sites(program)
    constant = [site for site in sites if site.id not in compiled]
    sites = [site for site in sites if site.id in compiled and args.only in site.name]
    before = {}
    if args.again:
        for line in (BUILD / "results.txt").read_text(encoding="utf-8").splitlines():
            name, result = line.rsplit(": killed by ", 1) if ": killed by " in line else (None, None)
            before[name] = f"killed by {result}"
    tests, unfit = measure(program, args.jobs)
    print(f"{len(tests)} tests of {sum(test.seconds for test in tests):.0f} s, {len(sites)} mutants", file=sys.stderr)
    explained = Explanations(sites)
    known = {site.id for site in sites if explained.entry_for(site)}
    to_run = [site for site in sites if site.name not in before]
    results = run_mutants(program, args.jobs, to_run, tests, args.longest, set() if args.thorough else known)
    results.update({site.id: before[site.name] for site in sites if site.id not in results})
    return 0 if report(sites, results, explained, skipped, constant, unfit, time.monotonic() - begin, args.only) else 1


if __name__ == "__main__":
    sys.exit(main())
