"""Paths of files."""
from __future__ import annotations

import contextlib
import os
import secrets
import stat
from typing import Union

Path = Union[str, "os.PathLike[str]"]
Data = Union[bytes, bytearray, memoryview]


def encoded(path: Path) -> bytes:
    """The path in the form that the system takes."""
    if isinstance(path, (bytes, bytearray, memoryview)):
        raise TypeError("a path is str or os.PathLike; bytes are the contents of a file, see loads()")
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("the path contains a NUL")
    return name


def shown(path: object) -> str:
    """A path in a message, on one line."""
    text = os.fspath(path) if isinstance(path, (str, os.PathLike)) else str(path)
    return text if text.isprintable() else repr(text)


def replace(path: Path, data: bytes) -> None:
    """Writes a file. One that exists keeps its contents until the new ones are complete, and its permissions."""
    target = os.fspath(path)
    try:
        before = os.lstat(target)
    except FileNotFoundError:
        before = None
    if before is not None and not stat.S_ISREG(before.st_mode):
        with open(target, "wb") as file:  # a device, a pipe or a link
            file.write(data)
        return
    folder, name = os.path.split(target)
    temporary = os.path.join(folder, f".{name[:64]}.{secrets.token_hex(6)}")
    try:
        file_number = os.open(temporary, os.O_WRONLY | os.O_CREAT | os.O_EXCL | getattr(os, "O_BINARY", 0), 0o666)
    except OSError as error:
        raise type(error)(error.errno, error.strerror, target) from None
    try:
        with os.fdopen(file_number, "wb") as file:
            file.write(data)
        if before is not None:
            os.chmod(temporary, stat.S_IMODE(before.st_mode))
        os.replace(temporary, target)
    except BaseException:
        with contextlib.suppress(OSError):
            os.unlink(temporary)
        raise
