"""The examination of the files of a scan: a function for any process, and processes of this machine that call it."""
from __future__ import annotations

import os
import pathlib
import pickle
import queue
import struct
import subprocess
import sys
import threading
from typing import IO, Any, List, Optional, Protocol, Sequence, Tuple, TypeAlias, Union

from . import _core
from ._errors import Error

File = Tuple[bytes, bool]
"""An absolute path, and whether the caller named it or it was found in a folder."""


class Options:
    """How files are judged, for all processes of a scan."""

    def __init__(self, kind: Optional[str], ext: Sequence[Tuple[str, str]], encoding: str, with_facts: bool) -> None:
        self.arguments = (kind, list(ext), encoding, with_facts)
        self.version = _core.__version__
        self.core()

    def core(self) -> Any:
        return _core._ScanOptions(*self.arguments)


def examine(options: Options, files: Sequence[File]) -> bytes:
    """The results of these files. Examining files twice does no harm."""
    if options.version != _core.__version__:
        raise Error(f"a worker has oldtorvio {_core.__version__}, and the client {options.version}")
    result: bytes = _core._examine(options.core(), list(files))
    return result


class Died:
    """Takes the place of results if the process ended before it had them."""


Outcome = Union[bytes, Died, BaseException]
Outcomes: TypeAlias = "queue.SimpleQueue[Tuple[Any, Outcome]]"
"""Tasks that are done, with their outcomes."""


class Pool(Protocol):
    """What examines the files of tasks."""

    blames_exactly: bool
    """Whether a lost task has itself ended its worker; otherwise it may have been another task of that worker."""
    deaths_before_split: int
    deaths_before_end: int

    def room(self) -> int:
        """How many tasks should be submitted at a time."""

    def submit(self, task: Any, files: Sequence[File]) -> None:
        """Starts a task. Its outcome is put into a queue."""

    def close(self) -> None:
        """Ends all work. Outcomes no longer matter."""


# Without the working folder in sys.path: it may be a folder of the archive, with any files.
_PROGRAM = f"import sys; sys.path[:1] = filter(None, sys.path[:1]); from {__name__} import serve; serve()"


class Processes:
    """Processes of this machine, each with one task at a time. One that ends is replaced without an effect on others.

    They are new interpreters, which inherit only the environment of this one: no process with threads is forked, and
    nothing of the calling script is run again.
    """

    # The process that ended is the one that examined the task.
    blames_exactly = True
    deaths_before_split = 2
    deaths_before_end = 3

    def __init__(self, count: int, options: Options, outcomes: Outcomes) -> None:
        self._count = count
        self._options = options
        self._outcomes = outcomes
        self._jobs: "queue.SimpleQueue[Any]" = queue.SimpleQueue()
        self._is_closed = False
        self._lock = threading.Lock()
        self._running: List["subprocess.Popen[bytes]"] = []
        self._threads = [threading.Thread(target=self._serve, daemon=True) for _ in range(count)]
        for thread in self._threads:
            thread.start()

    def room(self) -> int:
        return 2 * self._count

    def submit(self, task: Any, files: Sequence[File]) -> None:
        self._jobs.put((task, files))

    def close(self) -> None:
        """Ends the processes, whatever they are doing."""
        with self._lock:
            self._is_closed = True
            for process in self._running:
                process.kill()
        for _ in self._threads:
            self._jobs.put(None)
        for thread in self._threads:
            thread.join()

    def _serve(self) -> None:
        process: Optional["subprocess.Popen[bytes]"] = None
        while True:
            job = self._jobs.get()
            if job is None or self._is_closed:
                break
            task, files = job
            try:
                process = process or self._start()
                outcome = _asked(process, (self._options, files))
            except Exception as error:
                outcome = error
            if not isinstance(outcome, bytes) and process is not None:
                self._end(process)
                process = None
            self._outcomes.put((task, outcome))
        if process is not None:
            self._end(process)

    def _start(self) -> "subprocess.Popen[bytes]":
        environment = dict(os.environ)
        package = str(pathlib.Path(__file__).parent.parent)
        environment["PYTHONPATH"] = os.pathsep.join(filter(None, [package, environment.get("PYTHONPATH")]))
        for _ in range(5):
            # Ctrl-C in a terminal is for the client, not for its processes.
            process = subprocess.Popen([sys.executable, "-c", _PROGRAM], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, env=environment, start_new_session=True)
            with self._lock:
                self._running.append(process)
                if self._is_closed:
                    process.kill()
            assert process.stdout is not None
            if _read(process.stdout) is not None:
                return process
            code = process.wait()
            self._end(process)
            # Only a process that was ended by a signal is worth another try.
            if code >= 0 or self._is_closed:
                break
        raise Error(f"no process of {sys.executable} can be started: exit code {code}")

    def _end(self, process: "subprocess.Popen[bytes]") -> None:
        with self._lock:
            self._running.remove(process)
        process.kill()
        for pipe in (process.stdin, process.stdout):
            try:
                if pipe is not None:
                    pipe.close()
            except OSError:
                pass
        process.wait()


def _asked(process: "subprocess.Popen[bytes]", request: Any) -> Outcome:
    assert process.stdin is not None and process.stdout is not None
    try:
        _write(process.stdin, pickle.dumps(request))
        reply = _read(process.stdout)
    except OSError:
        return Died()
    if reply is None:
        return Died()
    outcome: Outcome = pickle.loads(reply)
    return outcome


def _write(pipe: IO[bytes], data: bytes) -> None:
    pipe.write(struct.pack("<Q", len(data)))
    pipe.write(data)
    pipe.flush()


def _read(pipe: IO[bytes]) -> Optional[bytes]:
    """The next message; None if the other process has ended."""
    size = pipe.read(8)
    if len(size) < 8:
        return None
    length = struct.unpack("<Q", size)[0]
    data = pipe.read(length)
    return data if len(data) == length else None


def serve() -> None:
    """The program of such a process: a reply to each request until there are no more."""
    requests = sys.stdin.buffer
    replies = os.fdopen(os.dup(1), "wb")
    os.dup2(2, 1)  # nothing else gets into the replies
    _write(replies, b"")
    while (request := _read(requests)) is not None:
        outcome: Outcome
        try:
            outcome = examine(*pickle.loads(request))
        except Exception as error:
            outcome = error
        try:
            _write(replies, pickle.dumps(outcome))
        except BrokenPipeError:
            os._exit(1)  # the client has ended

