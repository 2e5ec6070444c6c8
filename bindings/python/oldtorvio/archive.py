"""Whole archives: all files of folders examined by many processes, on one machine or on a Dask cluster.

    from oldtorvio import archive
    print(archive.scan("/archive", out="archive.sqlite"))

The results are those of `torvio check`, and the catalogue is the one of `torvio check -o`: docs/catalogue.md describes
it.
"""
from __future__ import annotations

import collections
import dataclasses
import json
import os
import queue
from typing import Any, Callable, Deque, Dict, Iterable, Iterator, List, Mapping, Optional, Union

from . import _core, _paths
from ._errors import Error
from ._workers import Died, File, Options, Outcomes, Pool, Processes

__all__ = ["Row", "Summary", "rows", "scan"]

Row = Dict[str, Any]
"""The result for a file: the object of `torvio check --json`, as a dict."""

Paths = Union[_paths.Path, Iterable[_paths.Path]]

BATCH_BYTES = 32 << 20


@dataclasses.dataclass
class Summary:
    """The totals of a scan, so far or at its end."""

    files: int = 0
    verdicts: Dict[str, int] = dataclasses.field(default_factory=dict)
    """The number of files with each verdict, as in {"sound": 12, "damaged": 1}."""
    unchanged: int = 0
    """Files that were not read, because the catalogue has them."""
    with_warnings: int = 0
    deaths: int = 0
    """How often a task was lost because its worker ended. It was done again."""
    given_up: List[str] = dataclasses.field(default_factory=list)
    """Files that end every process that examines them. Their verdict is "unreadable"."""


def scan(paths: Paths, client: Any = None, *, out: Optional[_paths.Path] = None, kind: Optional[str] = None,
         ext: Optional[Mapping[str, str]] = None, encoding: str = "cp1252", processes: Optional[int] = None,
         batch_bytes: int = BATCH_BYTES, on_row: Optional[Callable[[Row], object]] = None,
         progress: Optional[Callable[[Summary], object]] = None) -> Summary:
    """Examines files and all files of folders, and returns the totals.

    paths        files and folders. Workers on other machines need them at the same paths
    client       a distributed.Client: its workers examine the files. Without it, processes of this machine do
    out          keeps the results in this SQLite database. Files that have not changed since are not read again
    kind         of every file, such as "sheet"; by default the extension and the contents decide
    ext          kinds by extension, as in {".nst": "sheet"}
    encoding     the code page of texts in the catalogue
    processes    how many without a client, by default one for each processor
    batch_bytes  a worker gets files of about this size at a time; that much is done again if it ends
    on_row       is called with the Row of each file
    progress     is called with the Summary after each batch; an exception in it ends the scan

    A worker that ends, by SIGKILL or for lack of memory, loses no file and doubles none.
    """
    summary = Summary()
    for results in _scan(summary, paths, client, out, kind, ext, encoding, processes, batch_bytes, on_row is not None):
        for row in results:
            assert on_row is not None
            on_row(row)
        if progress is not None:
            progress(summary)
    return summary


def rows(paths: Paths, client: Any = None, *, out: Optional[_paths.Path] = None, kind: Optional[str] = None,
         ext: Optional[Mapping[str, str]] = None, encoding: str = "cp1252", processes: Optional[int] = None,
         batch_bytes: int = BATCH_BYTES) -> Iterator[Row]:
    """The same as an iterator over the rows. Files are examined only as rows are read, with some batches in advance:
    the run of a catalogue is only complete if the iterator is read to its end."""
    for results in _scan(Summary(), paths, client, out, kind, ext, encoding, processes, batch_bytes, True):
        yield from results


@dataclasses.dataclass(eq=False)
class _Task:
    """Files for one worker, and their results."""

    files: List[File]
    ready: Any = None
    """Results of files that need no worker."""
    packed: Optional[bytes] = None
    deaths: int = 0
    is_alone: bool = False


# A task that ends its worker is split into this many: a few steps lead to the file that does it.
_PIECES = 8
# Limits on results that wait for those of an earlier task.
_MOST_WAITING_BYTES = 64 << 20
_MOST_WAITING_TASKS = 1000


def _scan(summary: Summary, paths: Paths, client: Any, out: Optional[_paths.Path], kind: Optional[str],
          ext: Optional[Mapping[str, str]], encoding: str, processes: Optional[int], batch_bytes: int,
          with_rows: bool) -> Iterator[List[Row]]:
    """The rows of each batch, in the order of the names; empty lists if they are not wanted."""
    roots = _roots(paths)
    if batch_bytes < 1:
        raise ValueError("batch_bytes is below 1")
    options = Options(kind, list((ext or {}).items()), encoding, out is not None)
    if processes is None:
        processes = len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1
    if not 1 <= processes <= 256:
        raise ValueError("processes is not from 1 to 256")
    catalogue: Any = None
    batches: Any = None
    pool: Optional[Pool] = None
    unread_folders: List[bytes] = []
    try:
        if out is not None:
            file = _paths.encoded(out)
            catalogue = _checked(out, lambda: _core._Catalogue(file, options.core()))
        batches = _core._Batches(roots, catalogue, batch_bytes)
        outcomes: Outcomes = queue.SimpleQueue()
        if client is None:
            pool = Processes(processes, options, outcomes)
        else:
            from ._cluster import Cluster
            pool = Cluster(client, options, outcomes)
        for task in _done(batches, pool, outcomes, summary):
            packed = [_core._Results(task.packed)] if task.packed is not None else []
            for results in [task.ready, *packed]:
                if results is None or len(results) == 0:
                    continue
                _count(results, summary, unread_folders)
                found = [json.loads(line) for line in results.json().splitlines()] if with_rows else []
                if catalogue is not None:
                    _checked(out, lambda: catalogue.add(results))
                yield found
        batches = None
        if catalogue is not None:
            _checked(out, lambda: catalogue.finish(roots, unread_folders))
    finally:
        if pool is not None:
            pool.close()
        batches = None
        if catalogue is not None:
            catalogue.close()


def _roots(paths: Paths) -> List[bytes]:
    one = isinstance(paths, (str, os.PathLike, bytes, bytearray, memoryview))
    named: Any = [paths] if one else paths
    return [_core._catalogue_path(_paths.encoded(path)) for path in named]


def _checked(out: Any, call: Callable[[], Any]) -> Any:
    """Raises Error if a catalogue cannot be opened, read or written."""
    try:
        return call()
    except RuntimeError as error:
        raise Error(str(error), path=out) from None


def _count(results: Any, summary: Summary, unread_folders: List[bytes]) -> None:
    for verdict, is_known, has_warnings, folder in results.overview():
        summary.files += 1
        summary.verdicts[verdict] = summary.verdicts.get(verdict, 0) + 1
        summary.unchanged += is_known
        summary.with_warnings += has_warnings
        if folder is not None:
            unread_folders.append(folder)


def _done(batches: Any, pool: Pool, outcomes: Outcomes, summary: Summary) -> Iterator[_Task]:
    """All tasks with their results, in order."""
    tasks: Deque[_Task] = collections.deque()  # in the order of the names, from the first that is not done
    suspects: List[_Task] = []                 # of one file each, that wait until they are the only ones in the cluster
    submitted = waiting_bytes = 0
    is_at_end = False

    def submit(task: _Task) -> None:
        nonlocal submitted
        submitted += 1
        pool.submit(task, task.files)

    while True:
        while not (is_at_end or suspects or submitted >= pool.room()
                   or waiting_bytes > _MOST_WAITING_BYTES or len(tasks) > _MOST_WAITING_TASKS):
            batch = batches.next()
            if batch is None:
                is_at_end = True
            else:
                tasks.append(_Task(batch[0], batch[1]))
                if batch[0]:
                    submit(tasks[-1])
                elif len(tasks) == 1:
                    break
        while tasks and (tasks[0].packed is not None or not tasks[0].files):
            task = tasks.popleft()
            waiting_bytes -= len(task.packed or b"")
            yield task
        if suspects and submitted == 0:
            suspects[0].is_alone = True
            submit(suspects.pop(0))
        if submitted == 0:
            if is_at_end and not tasks:
                return
            continue

        task, outcome = outcomes.get()
        submitted -= 1
        if isinstance(outcome, BaseException):
            raise outcome
        if isinstance(outcome, Died):
            summary.deaths += 1
            task.deaths += 1
            if len(task.files) > 1 and task.deaths >= pool.deaths_before_split:
                for piece in _split(tasks, task):
                    submit(piece)
                continue
            if len(task.files) > 1 or (pool.blames_exactly and task.deaths < pool.deaths_before_end):
                submit(task)
                continue
            if not (pool.blames_exactly or task.is_alone):
                suspects.append(task)
                continue
            path, is_named = task.files[0]
            summary.given_up.append(os.fsdecode(path))
            packed: bytes = _core._not_examined(path, is_named, "ends every process that examines it")
        else:
            packed = outcome
        task.packed = packed
        waiting_bytes += len(packed)


def _split(tasks: Deque[_Task], task: _Task) -> List[_Task]:
    """Replaces a task by several with fewer files each."""
    size = -(-len(task.files) // _PIECES)
    pieces = [_Task(task.files[at:at + size]) for at in range(0, len(task.files), size)]
    pieces[0].ready = task.ready
    at = tasks.index(task)
    del tasks[at]
    for offset, piece in enumerate(pieces):
        tasks.insert(at + offset, piece)
    return pieces
