"""Writes the type stubs of oldtorvio._core, which has a class for each record.

usage: make_stubs.py [FILE]    with the package in PYTHONPATH; without FILE it prints them
"""
import sys

import oldtorvio._core as core

HEAD = '''"""Made by tools/make_stubs.py from the records of the library: run it again after a change of a record."""
from typing import Any, Iterable, Iterator, List as _List, MutableSequence, Sequence, Tuple, TypeVar, overload

_T = TypeVar("_T")

__version__: str

class Array(Sequence[_T]):
    """An array of a record. Its length is fixed."""
    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> _T: ...
    @overload
    def __getitem__(self, index: slice) -> _List[_T]: ...
    @overload
    def __setitem__(self, index: int, value: _T) -> None: ...
    @overload
    def __setitem__(self, index: slice, value: Iterable[_T]) -> None: ...
    def __iter__(self) -> Iterator[_T]: ...
    def tolist(self) -> _List[Any]: ...

class List(MutableSequence[_T]):
    """A list of a record. It holds copies of what is put into it."""
    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> _T: ...
    @overload
    def __getitem__(self, index: slice) -> _List[_T]: ...
    @overload
    def __setitem__(self, index: int, value: _T) -> None: ...
    @overload
    def __setitem__(self, index: slice, value: Iterable[_T]) -> None: ...
    def __delitem__(self, index: int | slice) -> None: ...
    def __iter__(self) -> Iterator[_T]: ...
    def insert(self, index: int, value: _T) -> None: ...
    def add(self, **members: Any) -> _T: ...
    def tolist(self) -> _List[Any]: ...

class Record:
    """What all records have in common."""
    def __copy__(self: _T) -> _T: ...
    def __deepcopy__(self: _T, memo: Any) -> _T: ...

def raw(owner: Record | Array[bytes] | List[bytes], member: str | int) -> bytes: ...
def set_raw(owner: Record | Array[bytes] | List[bytes], member: str | int, data: bytes) -> None: ...
def decode(text: bytes, encoding: str = ...) -> str: ...
def encode(text: str, encoding: str = ...) -> bytes: ...
'''


def annotation(form):
    name = form[0]
    if name.startswith(("int", "uint")):
        return "int"
    if name.startswith("float"):
        return "float"
    if name in ("text", "fixedText", "bytes"):
        return "bytes"
    if name == "record":
        return form[1]
    if name == "pair":
        return f"Tuple[{annotation(form[1])}, {annotation(form[2])}]"
    return f"{'List' if name == 'list' else 'Array'}[{annotation(form[1])}]"


def comment(form):
    """A remark on what the annotation does not say."""
    name = form[0]
    if name in ("fixedText", "bytes"):
        return f"  # {form[1]} bytes"
    if name in ("array", "lazyArray"):
        return f"  # {form[2]} elements"
    return ""


def stub():
    text = HEAD
    for name, kind, members in core._records():
        about = f"The record of a {kind} file." if kind else "A record that files embed."
        text += f'\nclass {name}(Record):\n    """{about}"""\n'
        for member, form, _ in members:
            text += f"    {member}: {annotation(form)}{comment(form)}\n"
        text += "    def __init__(self, **members: Any) -> None: ...\n"
    # The functions that the modules of the package call.
    for name in sorted(vars(core)):
        if name.startswith("_") and not name.startswith("__") and callable(getattr(core, name)):
            text += f"\ndef {name}(*arguments: Any) -> Any: ..." if name.islower() or name[1:2].isupper() else ""
    return text + "\n"


def main():
    if len(sys.argv) > 2:
        sys.exit(__doc__)
    if len(sys.argv) == 2:
        with open(sys.argv[1], "w", encoding="utf-8") as file:
            file.write(stub())
    else:
        sys.stdout.write(stub())


if __name__ == "__main__":
    main()
