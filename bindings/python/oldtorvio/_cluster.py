"""The workers of a Dask cluster, which examine the files of a scan."""
from __future__ import annotations

import secrets
import time
from typing import Any, Dict, Sequence

from distributed import KilledWorker

from ._errors import Error
from ._workers import Died, File, Options, Outcome, Outcomes, examine


class Cluster:
    """If a worker ends, the scheduler itself runs its tasks again elsewhere, a limited number of times."""

    # A worker may have several tasks when it ends, and all of them are blamed.
    blames_exactly = False
    deaths_before_split = 1
    deaths_before_end = 1

    def __init__(self, client: Any, options: Options, outcomes: Outcomes) -> None:
        if client.asynchronous:
            raise ValueError("the client is asynchronous: scan() needs one that is not")
        self._client = client
        # Sent with each task, so that a worker that joins later has them, too.
        self._options = options
        self._outcomes = outcomes
        self._run = secrets.token_hex(8)
        self._number = 0
        self._futures: Dict[Any, Any] = {}
        self._threads = 0
        self._asked = 0.0

    def room(self) -> int:
        """Twice the threads of the workers, which may come and go."""
        if time.monotonic() - self._asked > 1:
            self._threads = sum(self._client.nthreads().values())
            self._asked = time.monotonic()
        return max(4, 2 * self._threads)

    def submit(self, task: Any, files: Sequence[File]) -> None:
        self._number += 1
        key = f"oldtorvio-scan-{self._run}-{self._number}"
        future = self._client.submit(examine, self._options, list(files), key=key)
        self._futures[key] = future
        future.add_done_callback(lambda done: self._outcomes.put((task, self._outcome(key, done))))

    def close(self) -> None:
        if self._futures:
            self._client.cancel(list(self._futures.values()))
        self._futures.clear()

    def _outcome(self, key: str, future: Any) -> Outcome:
        try:
            packed: bytes = future.result()
            return packed
        except KilledWorker:
            return Died()
        except BaseException as error:
            if future.cancelled():
                return Error("the scheduler was lost, or has cancelled a task of the scan")
            return error
        finally:
            # The worker frees the results when the last reference is gone.
            self._futures.pop(key, None)
