"""Records as the bytes of files and of pickles."""
from __future__ import annotations

from . import _core
from ._errors import Error


def dumps(record: _core.Record, version: int) -> bytes:
    """The bytes of the file that save() writes."""
    if not 0 <= version <= 32767:
        raise Error(f"a file cannot be saved in version {version}", status=-1)
    data: bytes
    data, status, reason = _core._dumps(record, version)
    if status != 0:
        raise Error(reason, status=status, version=version)
    return data


def restore(name: str, packed: bytes) -> _core.Record:
    """The record of a pickle."""
    record: _core.Record = _core._restore(name, packed)
    return record
