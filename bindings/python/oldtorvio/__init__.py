"""The older binary files of a sheet-metal fabrication suite.

    nest = oldtorvio.load("nest.sheet")
    nest.partList.parts[0].woNumber = b"WO-7003"
    oldtorvio.save(nest, "nest.sheet", 180)

Each record of a file is a class with the attributes of the C++ record. Numbers are int and float, texts are bytes;
records, arrays and lists in a record are views of it, which convert nothing until it is accessed.
"""
from __future__ import annotations

from collections.abc import MutableSequence as _MutableSequence, Sequence as _Sequence
from typing import Any, Dict, NamedTuple, Optional, Tuple, Type, Union

from . import _core, _paths, archive as archive
from ._builder import PartBuilder as PartBuilder
from ._companion import *
from ._core import *
from ._core import __version__ as __version__
from ._errors import Error as Error, NotRead as NotRead, Refused as Refused
from ._saving import dumps as dumps

_Sequence.register(Array)
_MutableSequence.register(List)


def load(path: _paths.Path, kind: Optional[str] = None) -> Any:
    """Loads a file and returns its record. Without a kind, such as "sheet", the extension or the contents decide.

    Raises Error for a file that is damaged, of a refused version or of no known kind; its `record` has what was read.
    """
    return _record(_core._load(_paths.encoded(path), kind), path)


def loads(data: _paths.Data, kind: Optional[str] = None) -> Any:
    """Loads the contents of a file in memory, as load() does a file."""
    return _record(_core._loads(bytes(data), kind, ""), None)


def _record(loaded: Tuple[Any, ...], path: Optional[_paths.Path]) -> Any:
    record, kind, status, version, reason, field, offset = loaded
    if status == 0:
        return record
    reason = reason or "could not be loaded"
    message = reason if path is None else f"{_paths.shown(path)}: {reason}"
    error = NotRead if status == -2 else Error
    raise error(message, status=status, offset=offset, field=field, path=path, kind=kind, version=version,
                record=record)


def save(record: Record, path: _paths.Path, version: int) -> None:
    """Saves the record of a file in the layout of a version. A file that exists is replaced once the new one is
    complete."""
    _paths.encoded(path)
    _paths.replace(path, dumps(record, version))


def text(record: Record, name: str, encoding: str = "cp1252") -> str:
    """A text of a record as str."""
    return decode(getattr(record, name), encoding)


def set_text(record: Record, name: str, value: str, encoding: str = "cp1252") -> None:
    """Sets a text of a record from a str."""
    setattr(record, name, encode(value, encoding))


class Field(NamedTuple):
    """A member of a record."""

    name: str
    form: Tuple[Any, ...]
    """("int32",), ("fixedText", 256), ("list", ("record", "Shape")), ..."""
    is_stored: bool
    """Whether at least one version of one kind of file stores it."""


_fields: Dict[str, Tuple[Field, ...]] = {name: tuple(Field(*member) for member in members)
                                         for name, _, members in _core._records()}


def fields(record: Union[Record, Type[Record]]) -> Tuple[Field, ...]:
    """The members of a record or of its class, in declared order."""
    python_class = record if isinstance(record, type) else type(record)
    try:
        return _fields[python_class.__name__]
    except KeyError:
        raise TypeError("needs a record of a file") from None


def as_dict(record: Record) -> Dict[str, Any]:
    """A copy of a record in which records are dicts, and arrays and lists are Python lists."""
    return {field.name: _plain(getattr(record, field.name)) for field in fields(record)}


def _plain(value: Any) -> Any:
    if isinstance(value, Record):
        return as_dict(value)
    if isinstance(value, (Array, List)):
        return [_plain(element) for element in value]
    return value
