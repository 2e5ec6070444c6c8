"""What torvio does with files: the functions of torvio.h, with their JSON as Python objects.

`file` is the path of a file, or its contents as bytes. `kind` ("sheet", ...) is detected if it is None. `encoding` is
the code page of the texts in the file. Functions that can return what was read of a damaged file do so only with
damaged=True; without it they raise Error, whose `result` is the same.
"""
from __future__ import annotations

import json
import os
from typing import Any, Dict, Iterable, List, NamedTuple, Optional, Union

from . import _core, _paths
from ._errors import Error, NotRead, Refused

__all__ = ["Comparison", "NewFile", "check", "convert", "diff", "draw", "draw_page", "format", "from_json", "info",
           "map", "map_page", "recover", "schema", "supported", "to_json"]

File = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview]

_OK, _DAMAGED, _BAD_ARGUMENT, _NOT_READ, _REFUSED = range(5)


def _source(file: File, kind: Optional[str], encoding: Optional[str] = None) -> Any:
    for text in (kind, encoding):
        if text is not None and "\0" in text:
            raise ValueError("a name contains a NUL")
    if isinstance(file, (bytes, bytearray, memoryview)):
        return _core._Source(None, bytes(file), None, kind, encoding)
    return _core._Source(_paths.encoded(file), b"", None, kind, encoding)


def _answer(file: Any, reply: Any, damaged: bool = False, report: Any = None) -> Any:
    status, result, message, field, offset = reply[:5]
    if status == _OK or (status == _DAMAGED and damaged):
        return result
    if status == _BAD_ARGUMENT:
        raise ValueError(message)
    is_path = isinstance(file, (str, os.PathLike))
    message = f"{_paths.shown(file)}: {message}" if is_path else message
    common = {"field": field, "offset": offset, "path": file if is_path else None, "report": report}
    if status == _DAMAGED:
        raise Error(message, status=1, result=result, **common)
    if status == _NOT_READ:
        raise NotRead(message, status=-2, **common)
    raise (Refused if status == _REFUSED else Error)(message, **common)


def check(file: File, kind: Optional[str] = None) -> Dict[str, Any]:
    """Whether a file is sound, damaged, foreign or unreadable, as `torvio check --json`. Returns for every file."""
    return _judged(_core._check(_source(file, kind)))


def info(file: File, kind: Optional[str] = None, encoding: Optional[str] = None) -> Dict[str, Any]:
    """What a file contains at a glance, as `torvio info --json`. Returns for every file."""
    return _judged(_core._info(_source(file, kind, encoding)))


def _judged(reply: Any) -> Dict[str, Any]:
    result: Dict[str, Any] = json.loads(_answer(None, reply) if reply[1] is None else reply[1])
    return result


def to_json(file: Union[File, _core.Record], version: Optional[int] = None, *, kind: Optional[str] = None,
            encoding: Optional[str] = None, damaged: bool = False) -> Dict[str, Any]:
    """The complete record of a file, or a record to be saved in a version, as the document that docs/json.md
    describes."""
    if isinstance(file, _core.Record):
        if version is None:
            raise TypeError("the document of a record needs the version to save it in")
        return dict(json.loads(_core._json(file, version, encoding or "cp1252", False)))
    if version is not None:
        raise TypeError("a file has a version already")
    return dict(json.loads(_answer(file, _core._file_json(_source(file, kind, encoding), False), damaged)))


def from_json(document: Union[Dict[str, Any], str, bytes], version: int = 0) -> bytes:
    """The bytes of a file made from such a document, in its version or in another."""
    if isinstance(document, dict):
        document = json.dumps(document)
    if isinstance(document, str):
        document = document.encode()
    data: bytes = _answer(None, _core._from_json(_source(document, None), version))
    return data


def schema(kind: str) -> Dict[str, Any]:
    """The JSON Schema of these documents."""
    return dict(json.loads(_answer(None, _core._schema(kind))))


def _lines(text: bytes) -> List[Dict[str, Any]]:
    return [json.loads(line) for line in text.split(b"\n") if line]


def map(file: File, find: Optional[str] = None, range: Optional[str] = None, *, kind: Optional[str] = None,
        encoding: Optional[str] = None, damaged: bool = False) -> List[Dict[str, Any]]:
    """Every field of a file with its offset, size and value, as `torvio map --json`. `find` selects by names
    ("**.*Count"), `range` by offsets ("0x1f4..0x200")."""
    return _lines(_answer(file, _core._map(_source(file, kind, encoding), find, range, False), damaged))


def map_page(file: File, *, kind: Optional[str] = None, encoding: Optional[str] = None, damaged: bool = False) -> str:
    """An HTML page with the bytes and fields of a file side by side."""
    page: bytes = _answer(file, _core._map(_source(file, kind, encoding), None, None, True), damaged)
    return page.decode()


def draw(file: File, *, kind: Optional[str] = None, encoding: Optional[str] = None, damaged: bool = False) -> str:
    """A sheet, part, group part or machine as SVG."""
    picture: bytes = _answer(file, _core._draw(_source(file, kind, encoding)), damaged)
    return picture.decode()


def draw_page(files: Iterable[File], title: Optional[str] = None, *, encoding: Optional[str] = None,
              damaged: bool = False) -> str:
    """The pictures of several files on an HTML page. With damaged=True a file that cannot be drawn has the reason in
    place of its picture."""
    page: bytes = _answer(None, _core._draw_page([_source(file, None, encoding) for file in files], title), damaged)
    return page.decode()


class Comparison(NamedTuple):
    """What diff() finds."""

    same: bool
    differences: List[Dict[str, Any]]
    totals: Dict[str, Any]


def diff(a: File, b: File, *, part: Optional[str] = None, tolerance: float = 0, common: bool = False,
         kind: Optional[str] = None, encoding: Optional[str] = None, damaged: bool = False) -> Comparison:
    """Where two files differ, as `torvio diff --json`."""
    reply = _core._diff(_source(a, kind, encoding), _source(b, kind, encoding), part, tolerance, common)
    lines = _lines(_answer(None, reply, damaged))
    return Comparison(reply[5], lines[:-1], lines[-1]["summary"])


class NewFile(NamedTuple):
    """A file that convert() or recover() has made, and the report about it."""

    data: bytes
    report: Dict[str, Any]


def convert(file: File, version: int, *, allow_loss: bool = False, kind: Optional[str] = None,
            encoding: Optional[str] = None) -> NewFile:
    """The file in another version. Raises Refused if something would be lost; allow_loss=True makes it
    nevertheless."""
    return _new_file(file, _core._convert(_source(file, kind, encoding), version, allow_loss))


def recover(file: File, *, kind: Optional[str] = None, encoding: Optional[str] = None) -> NewFile:
    """A loadable file, made from the sound beginning of a damaged one."""
    return _new_file(file, _core._recover(_source(file, kind, encoding)))


def _new_file(file: File, reply: Any) -> NewFile:
    report = json.loads(reply[5]) if reply[5] is not None else None
    return NewFile(_answer(file, reply, report=report), report)


def format(name: str, language: str = "markdown") -> str:
    """The stored form of a kind of file or of a record: as "markdown", "json" or "kaitai"."""
    text: bytes = _answer(None, _core._format(name, language))
    return text.decode()


def supported() -> Dict[str, Any]:
    """The kinds of files with their versions, the records and the code pages that the library knows."""
    return dict(json.loads(_answer(None, _core._supported())))
