"""Archives examined by several processes: the catalogue is that of torvio check, whatever happens to the processes."""
import contextlib
import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import time

import pytest

import oldtorvio
from conftest import SOURCE
from oldtorvio import Error, archive

# So small that there are far more batches than processes.
BATCH = 300_000
# Ends every process that is about to examine such a file.
KILLER = """
import os, signal
import oldtorvio._workers as workers
real = workers.examine
def examine(options, files):
    if any(path.endswith(b"killer.sheet") for path, _ in files):
        os.kill(os.getpid(), signal.SIGKILL)
    return real(options, files)
workers.examine = examine
"""


def contents(catalogue):
    """All rows of all tables, without the times of the runs."""
    with contextlib.closing(sqlite3.connect(catalogue)) as database:
        tables = {table: database.execute(f"SELECT * FROM {table} ORDER BY 1, 2").fetchall()
                  for table in ("file", "part", "tool", "warning")}
        tables["run"] = database.execute("SELECT id, finished IS NULL, settings FROM run ORDER BY id").fetchall()
        return tables


def children():
    """The processes that this one has started."""
    found = []
    for task in pathlib.Path("/proc/self/task").iterdir():
        found += map(int, (task / "children").read_text().split())
    return found


@pytest.fixture(scope="module")
def folder(shop, all_kinds, tmp_path_factory):
    """Some 900 files of all kinds and verdicts."""
    folder = tmp_path_factory.mktemp("archive")
    for number in range(40):
        shutil.copytree(shop / "archive", folder / f"{number:02}")
    (folder / "kinds").mkdir()
    for _, _, path in all_kinds:
        shutil.copy(path, folder / "kinds")
    (folder / "many.mac").write_bytes((folder / "00/tools/tab.mac").read_bytes())
    for name in (b"\xff\xfe.sheet", b"two\nlines.sheet"):
        shutil.copy(folder / "00/nests/nest_80.sheet", os.path.join(os.fsencode(folder), name))
    os.symlink("nowhere", folder / "link")
    return folder


@pytest.fixture(scope="module")
def wanted(folder, torvio, tmp_path_factory):
    """The catalogue that torvio check makes."""
    out = tmp_path_factory.mktemp("check") / "check.sqlite"
    assert torvio("check", folder, "-o", out).returncode == 3
    found = contents(out)
    assert len(found["file"]) > 700 and len(found["part"]) > 1000 and len(found["tool"]) > 1000 and found["warning"]
    return found


@pytest.fixture
def out(tmp_path):
    return tmp_path / "scan.sqlite"


# ---- processes of this machine -------------------------------------------------------------------------

@pytest.mark.parametrize("processes", [1, 3])
def test_catalogue_and_rows_are_those_of_torvio_check(folder, wanted, torvio, out, processes):
    found, seen = [], []
    summary = archive.scan(folder, out=out, processes=processes, batch_bytes=BATCH, on_row=found.append,
                           progress=lambda summary: seen.append(summary.files))
    assert contents(out) == wanted
    assert found == [json.loads(line) for line in torvio("check", "--json", folder).stdout.splitlines()]
    assert seen == sorted(seen) and len(seen) > 30 and seen[-1] == summary.files == len(found)
    assert summary.verdicts == {verdict: [row["verdict"] for row in found].count(verdict)
                                for verdict in {row["verdict"] for row in found}}
    assert summary.with_warnings == sum("warnings" in row for row in found)
    assert (summary.unchanged, summary.deaths, summary.given_up) == (0, 0, [])
    assert not children()


def test_rows_come_without_a_catalogue(folder):
    found = list(archive.rows([folder / "00", str(folder / "01/notes.txt")], batch_bytes=BATCH))
    assert len(found) == 15 and found[-1]["path"] == str(folder / "01/notes.txt")


def test_a_killed_process_loses_and_doubles_nothing(folder, wanted, out):
    killed = []

    def kill(summary):
        # One that was killed may still be there for a moment.
        others = [child for child in children() if child not in killed]
        if others and len(killed) < 3 and summary.files > 100 * (len(killed) + 1):
            killed.append(others[0])
            os.kill(killed[-1], signal.SIGKILL)

    summary = archive.scan(folder, out=out, processes=2, batch_bytes=BATCH, progress=kill)
    assert contents(out) == wanted
    assert len(killed) == 3 and summary.deaths >= 1 and summary.given_up == []


def with_killer(folder, wanted, tmp_path):
    """A folder like this one with a file that ends processes, and the rows that are wanted of it."""
    copied = tmp_path / "killing"
    copied.mkdir()
    for name in ("00", "01", "02"):
        shutil.copytree(folder / name, copied / name)
    shutil.copy(folder / "00/nests/nest_180.sheet", copied / "01/nests/killer.sheet")
    (tmp_path / "modules").mkdir()
    (tmp_path / "modules/sitecustomize.py").write_text(KILLER)
    return copied, {"PYTHONPATH": f"{tmp_path / 'modules'}{os.pathsep}{os.environ['PYTHONPATH']}"}


def check_killed(copied, out, summary, found, torvio, tmp_path):
    killer = copied / "01/nests/killer.sheet"
    assert summary.given_up == [str(killer)] and summary.deaths >= 3
    assert summary.files == len(found) == 3 * 14 + 1 and len({row["path"] for row in found}) == len(found)
    row = {"path": str(killer), "verdict": "unreadable", "error": "ends every process that examines it"}
    assert row in found
    with contextlib.closing(sqlite3.connect(out)) as database:
        columns = "verdict, error, size, modified, kind, status"
        assert database.execute(f"SELECT {columns} FROM file WHERE path = ?", [str(killer)]).fetchall() == [
            ("unreadable", row["error"], killer.stat().st_size, None, None, None)]
    # It is the only row that differs, and the next run reads it again.
    assert torvio("check", copied, "-o", tmp_path / "check.sqlite").returncode == 1
    other = contents(tmp_path / "check.sqlite")
    assert [one[1:] for one in contents(out)["file"] if one[1] != str(killer)] == [
        one[1:] for one in other["file"] if one[1] != str(killer)]
    again = archive.scan(copied, out=out)
    assert again.unchanged == again.files - 1 and again.given_up == []
    for table, key in (("part", "name"), ("tool", "list"), ("warning", "code")):
        query = f"SELECT f.path, t.position, t.{key} FROM {table} t JOIN file f ON f.id = t.file ORDER BY 1, 2"
        with contextlib.closing(sqlite3.connect(out)) as one, \
                contextlib.closing(sqlite3.connect(tmp_path / "check.sqlite")) as two:
            assert one.execute(query).fetchall() == two.execute(query).fetchall()


def test_a_file_that_ends_processes_has_a_row(folder, wanted, torvio, tmp_path, out):
    copied, environment = with_killer(folder, wanted, tmp_path)
    found = []
    with pytest.MonkeyPatch.context() as patch:
        patch.setenv("PYTHONPATH", environment["PYTHONPATH"])
        summary = archive.scan(copied, out=out, processes=2, on_row=found.append)
    check_killed(copied, out, summary, found, torvio, tmp_path)


def test_a_later_run_reads_what_has_changed(folder, torvio, tmp_path, out):
    copied = tmp_path / "archive"
    for name in ("00", "01"):
        shutil.copytree(folder / name, copied / name)
    first = archive.scan(copied, out=out)
    assert (first.files, first.unchanged) == (28, 0)
    rows = list(archive.rows(copied, out=out))
    assert sorted(row["path"] for row in rows) == sorted(str(path) for path in copied.rglob("*") if path.is_file())
    assert archive.scan(copied, out=out).unchanged == 28

    (copied / "00/notes.txt").write_text("longer than before, by some words of one syllable")
    (copied / "01/notes.txt").unlink()
    second = archive.scan(copied, out=out)
    assert (second.files, second.unchanged) == (27, 26)
    # So does torvio check, and each continues the catalogue of the other.
    assert torvio("check", copied, "-o", out).returncode == 1
    found = contents(out)
    assert {row[-2] for row in found["file"]} == {1, 4} and {row[-1] for row in found["file"]} == {5}
    assert len(found["file"]) == 27
    assert archive.scan(copied, out=out, encoding="cp437").unchanged == 0


def test_options_are_those_of_torvio_check(folder, torvio, tmp_path, out):
    for number, (arguments, options) in enumerate([
            (["--ext", "macro=.mac", "--ext", "part=.sheet"], {"ext": {".mac": "macro", ".part": "part"}}),
            (["--ext", "part=.sheet"], {"ext": {".sheet": "part"}}),
            (["--kind", "sheet", "--encoding", "cp850"], {"kind": "sheet", "encoding": "cp850"})]):
        other, one = tmp_path / f"{number}.sqlite", tmp_path / f"{number}_scan.sqlite"
        torvio("check", folder / "00", "-o", other, *arguments)
        archive.scan(folder / "00", out=one, **options)
        assert (contents(one) == contents(other)) == (number > 0)


def test_wrong_arguments(folder, tmp_path):
    for options in ({"kind": "plate"}, {"ext": {".x": "plate"}}, {"ext": {"": "part"}}, {"encoding": "utf-8"},
                    {"processes": 0}, {"processes": 257}, {"batch_bytes": 0}):
        with pytest.raises(ValueError):
            archive.scan(folder, **options)
    with pytest.raises(TypeError):
        archive.scan(b"bytes")
    (tmp_path / "text").write_text("no database, but a text that is long enough to be one" * 20)
    with pytest.raises(Error, match="text: file is not a database"):
        archive.scan(folder, out=tmp_path / "text")
    with pytest.raises(Error, match="unable to open"):
        archive.scan(folder, out=tmp_path / "no/folder")
    assert archive.scan([]).files == 0
    assert archive.scan(tmp_path / "nothing").verdicts == {"unreadable": 1}
    assert not children()


def test_an_interrupted_scan_leaves_no_process_and_is_continued(folder, wanted, out):
    class Stop(Exception):
        pass

    def stop(summary):
        if summary.files > 200:
            raise Stop

    with pytest.raises(Stop):
        archive.scan(folder, out=out, batch_bytes=BATCH, progress=stop)
    assert not children()
    rows = archive.rows(folder, out=out, batch_bytes=BATCH)
    assert next(rows)["path"].startswith(str(folder))
    assert children()
    rows.close()
    assert not children()
    summary = archive.scan(folder, out=out)
    assert summary.unchanged > 200
    found = contents(out)
    assert [run[1] for run in found["run"]] == [1, 1, 0]
    assert sorted(row[1:-2] for row in found["file"] if isinstance(row[1], str)) == sorted(
        row[1:-2] for row in wanted["file"] if isinstance(row[1], str))


@pytest.mark.parametrize("end", [signal.SIGINT, signal.SIGKILL])
def test_processes_end_with_the_client(folder, end):
    program = ("import signal, sys; from oldtorvio import archive\n"
               "signal.signal(signal.SIGINT, signal.default_int_handler)\n"
               "while True: archive.scan(sys.argv[1], processes=2,"
               " progress=lambda summary: print('begun', flush=True))")
    client = subprocess.Popen([sys.executable, "-c", program, folder], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    assert client.stdout.readline() == b"begun\n"
    client.send_signal(end)
    # The errors end when all processes have ended that could write some.
    errors = client.communicate(timeout=30)[1]
    assert client.returncode == -end
    assert errors == b"" if end == signal.SIGKILL else errors.endswith(b"KeyboardInterrupt\n")


def test_a_worker_of_another_version_is_refused(folder, monkeypatch):
    options = archive.Options(None, [], "cp1252", False)
    monkeypatch.setattr(options, "version", "0.0.1")
    with pytest.raises(Error, match=f"a worker has oldtorvio {oldtorvio.__version__}, and the client 0.0.1"):
        oldtorvio._workers.examine(options, [])
    with pytest.raises(RuntimeError, match="of another version"):
        oldtorvio._core._Results(b"results of something else")


def test_no_module_of_the_working_folder_is_run(folder, tmp_path):
    for name in ("pickle", "struct", "oldtorvio", "sitecustomize"):
        (tmp_path / f"{name}.py").write_text("open('harm', 'w')")
    program = ("import sys; sys.path[0:1] = []; sys.modules['distributed'] = None; from oldtorvio import archive;"
               "print(archive.scan(sys.argv[1]).files)")
    done = subprocess.run([sys.executable, "-c", program, folder / "00"], cwd=tmp_path, capture_output=True, text=True,
                          check=False)
    assert done.stdout == "14\n" and not (tmp_path / "harm").exists(), done.stderr


# ---- a Dask cluster --------------------------------------------------------------------------------------

@contextlib.contextmanager
def cluster(folder, **environment):
    """A scheduler and two workers, each with a nanny that starts it again, as processes; yields a client."""
    pytest.importorskip("distributed", reason="distributed is not installed (Debian package: python3-distributed)")
    from distributed import Client
    settings = {**os.environ, "DASK_DISTRIBUTED__WORKER__MEMORY__TERMINATE": "false",
                "PYTHONDONTWRITEBYTECODE": "1", **environment}
    address = folder / "scheduler.json"
    with open(folder / "log", "wb") as log:
        def start(module, *arguments):
            return subprocess.Popen([sys.executable, "-m", f"distributed.cli.{module}", "--scheduler-file", address,
                                     "--no-dashboard", *arguments], stdout=log, stderr=log, cwd=folder, env=settings)

        started = [start("dask_scheduler", "--host", "127.0.0.1", "--port", "0", "--dashboard-address", "127.0.0.1:0"),
                   start("dask_worker", "--host", "127.0.0.1", "--nworkers", "2", "--nthreads", "1",
                         "--local-directory", folder)]
        try:
            end = time.monotonic() + 60
            while not address.exists():
                assert time.monotonic() < end, (folder / "log").read_text()
                time.sleep(0.05)
            with Client(scheduler_file=str(address), timeout=60) as client:
                client.wait_for_workers(2, timeout=60)
                yield client
        finally:
            for process in reversed(started):
                process.terminate()
                try:
                    process.wait(20)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()


def test_a_cluster_of_which_a_worker_is_killed(folder, wanted, tmp_path, out):
    with cluster(tmp_path) as client:
        found = []
        summary = archive.scan(folder, client, out=out, batch_bytes=BATCH, on_row=found.append)
        assert contents(out) == wanted and len(found) == summary.files and summary.deaths == 0
        first = client.run(os.getpid)
        out.unlink()
        killed = []

        def kill(summary):
            if not killed and summary.files > 300:
                killed.append(next(iter(first.values())))
                os.kill(killed[0], signal.SIGKILL)

        summary = archive.scan(folder, client, out=out, batch_bytes=BATCH, progress=kill)
        assert contents(out) == wanted
        assert summary.files == len(found) and killed and summary.given_up == []
        client.wait_for_workers(2, timeout=60)
        assert killed[0] not in client.run(os.getpid).values()
        # Nothing is left in the cluster.
        assert not client.who_has()

        # The program of docs/cluster.md.
        done = subprocess.run([sys.executable, SOURCE / "examples/scan_cluster.py", client.scheduler.address, folder,
                               tmp_path / "program.sqlite"], capture_output=True, text=True, check=False)
        assert done.returncode == 0, done.stderr
        assert sorted(line.split(maxsplit=1) for line in done.stdout.splitlines()) == sorted(
            [str(count), verdict] for verdict, count in summary.verdicts.items())
        assert contents(tmp_path / "program.sqlite")["part"] == wanted["part"]

        stopped = archive.rows(folder, client, batch_bytes=BATCH)
        assert next(stopped)["verdict"]
        stopped.close()
        with pytest.raises(ValueError, match="asynchronous"):
            archive.scan(folder, type("Client", (), {"asynchronous": True})())


def test_a_file_that_ends_the_workers_of_a_cluster_has_a_row(folder, wanted, torvio, tmp_path, out):
    copied, environment = with_killer(folder, wanted, tmp_path)
    found = []
    with cluster(tmp_path, DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES="0", **environment) as client:
        summary = archive.scan(copied, client, out=out, on_row=found.append)
    check_killed(copied, out, summary, found, torvio, tmp_path)
