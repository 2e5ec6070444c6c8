"""Measures oldtorvio.archive.scan: seconds, and processor time and peak memory of the client.

usage: measure_scan.py BUILD_FOLDER NESTS_FOLDER [WORKERS ...] [--dask | --steps]    with the package in PYTHONPATH

--dask leaves out what is not Dask. --steps measures the steps of a scan one by one instead, on 5,000 of the files.


NESTS_FOLDER has the files *.nst that tests/torvio/check_speed.py makes. Each number of workers (by default 1, 2 and 4)
is measured with processes of this machine and, if distributed is installed, with workers of a Dask cluster on it, which
has started before; and for comparison with as many threads of torvio check. All catalogues are new. The files are read
once before, so that all runs find them in the file cache.
"""
import contextlib
import json
import os
import pathlib
import pickle
import signal
import subprocess
import sys
import tempfile
import time

from oldtorvio import _core, _workers, archive

PROGRAM = """
import resource, sys, time
from oldtorvio import archive
nests, workers, address, out = sys.argv[1:]
client = None
if address:
    from distributed import Client
    client = Client(address)
start, before = time.monotonic(), resource.getrusage(resource.RUSAGE_SELF)
found = archive.scan(nests, client, ext={".nst": "sheet"}, out=out or None, processes=int(workers))
seconds, after = time.monotonic() - start, resource.getrusage(resource.RUSAGE_SELF)
print(found.files, seconds, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, after.ru_maxrss / 1024)
"""


@contextlib.contextmanager
def cluster(workers, folder):
    """A scheduler and workers of one thread each; yields their address."""
    address = folder / "address"
    log = open(folder / "cluster.log", "wb")
    run = [sys.executable, "-m"]
    started = [subprocess.Popen([*run, "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0",
                                 "--no-dashboard", "--dashboard-address", "127.0.0.1:0", "--scheduler-file", address],
                                stdout=log, stderr=log)]
    try:
        while not address.exists():
            time.sleep(0.1)
        started.append(subprocess.Popen([*run, "distributed.cli.dask_worker", "--scheduler-file", address, "--nworkers",
                                         str(workers), "--nthreads", "1", "--no-dashboard", "--local-directory",
                                         folder / "workers"], stdout=log, stderr=log))
        from distributed import Client
        with Client(scheduler_file=str(address)) as client:
            client.wait_for_workers(workers)
            yield client.scheduler.address
    finally:
        for process in reversed(started):
            process.send_signal(signal.SIGTERM)
            process.wait()
        address.unlink(missing_ok=True)


def show(what, workers, found):
    files, seconds, processor, memory = map(float, found)
    print(f"{what:34} {workers}  {seconds:6.2f} s  {files / seconds:7.0f} files/s  client {processor:6.2f} s  "
          f"{memory:4.0f} MiB", flush=True)


def steps(nests):
    """Microseconds of processor time for each file, of the worker and of the client."""
    options = _workers.Options(None, [(".nst", "sheet")], "cp1252", True)

    def timed(what, count, call):
        start = time.process_time()
        result = call()
        print(f"{what:34} {(time.process_time() - start) / count * 1e6:6.1f} us", flush=True)
        return result

    def walk():
        batches = _core._Batches([os.fsencode(nests)], None, archive.BATCH_BYTES)
        return [file for batch in iter(batches.next, None) for file in batch[0]]

    files = walk()
    files = timed("client: names and sizes", len(files), walk)[:5000]
    packed = timed("worker: examine", len(files), lambda: _workers.examine(options, files))
    print(f"{'worker to client':34} {len(packed) / len(files):6.0f} bytes")
    timed("pickle, and back", len(files), lambda: pickle.loads(pickle.dumps(packed)))
    results = timed("client: results from bytes", len(files), lambda: _core._Results(packed))
    timed("client: totals", len(files), results.overview)
    timed("client: rows as dicts", len(files), lambda: [json.loads(line) for line in results.json().splitlines()])
    with tempfile.TemporaryDirectory(dir=os.path.dirname(nests)) as folder:
        catalogue = _core._Catalogue(os.fsencode(folder) + b"/catalogue.sqlite", options.core())
        timed("client: catalogue", len(files), lambda: (catalogue.add(results), catalogue.finish([], [])))


def main():
    if "--steps" in sys.argv:
        return steps(sys.argv[2])
    build, nests = pathlib.Path(sys.argv[1]), sys.argv[2]
    only_dask = "--dask" in sys.argv
    counts = [int(word) for word in sys.argv[3:] if word != "--dask"] or [1, 2, 4]
    archive.scan(nests)
    with tempfile.TemporaryDirectory(dir=os.path.dirname(nests)) as scratch:
        folder = pathlib.Path(scratch)
        out = folder / "catalogue.sqlite"

        def scan(what, workers, address, catalogue):
            out.unlink(missing_ok=True)
            done = subprocess.run([sys.executable, "-c", PROGRAM, nests, str(workers), address,
                                   out if catalogue else ""], stdout=subprocess.PIPE, text=True, check=True)
            show(what, workers, done.stdout.split())

        for workers in [] if only_dask else counts:
            out.unlink(missing_ok=True)
            start = time.monotonic()
            process = subprocess.Popen([build / "bin/torvio", "check", nests, "--ext", "sheet=.nst", "-o", out,
                                        "--jobs", str(workers), "--only", "unreadable"])
            _, _, usage = os.wait4(process.pid, 0)
            process.returncode = 1
            files = sum(len(names) for _, _, names in os.walk(nests))
            show("torvio check, threads", workers, (files, time.monotonic() - start, usage.ru_utime + usage.ru_stime,
                                                    usage.ru_maxrss / 1024))
        for workers in [] if only_dask else counts:
            scan("processes", workers, "", True)
            scan("processes, no catalogue", workers, "", False)
        try:
            import distributed  # noqa: F401
        except ImportError:
            sys.exit("distributed is not installed")
        for workers in counts:
            with cluster(workers, folder) as address:
                scan("Dask", workers, address, True)
                scan("Dask, no catalogue", workers, address, False)


if __name__ == "__main__":
    main()
