"""What goes wrong with files."""
from __future__ import annotations

from typing import Any, Optional


class Error(Exception):
    """A file that could not be loaded, or a record that could not be saved.

    status   what the library returns: 1 damaged, -1 a version that is refused, -2 not opened or not saved. None for
             any other error
    offset   where in the file it is damaged, in bytes from its start, or None
    field    the field there, such as "partList.parts[3].x", or ""
    path     of the file, or None if it was in memory
    kind, version
             of the file, if they are known
    record   for a damaged file: what was read before the damage, or None
    result   for functions that do not return a record: their result for a damaged file, or None
    report   for a refused conversion or recovery: why, as a dict, or None
    """

    def __init__(self, message: str, *, status: Optional[int] = None, offset: Optional[int] = None, field: str = "",
                 path: Any = None, kind: Optional[str] = None, version: Optional[int] = None, record: Any = None,
                 result: Any = None, report: Any = None) -> None:
        super().__init__(message)
        self.status = status
        self.offset = offset
        self.field = field
        self.path = path
        self.kind = kind
        self.version = version
        self.record = record
        self.result = result
        self.report = report


class NotRead(Error, OSError):
    """A file that could not be opened or read to its end."""


class Refused(Error):
    """Something that cannot be made from this file, such as a picture of a macro."""
