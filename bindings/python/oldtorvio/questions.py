"""The queries of the library that take the path of a file, under their names in OldTorvIO.h.

Each loads the file, copies the results out and discards the rest. load() returns everything at once; these
return single values, in the form of the C functions. Texts are bytes. All raise Error with the status of the
library if it is not 0; what would make the library end the process is an Error, too.
"""
from __future__ import annotations

from typing import Any, List, NamedTuple, Tuple

from . import _core, _paths
from ._errors import Error, NotRead

_REASONS = {1: "the file is damaged, or the key is unknown",
            -1: "a version that this kind of file does not have", -2: "cannot be opened"}


def _asked(path: _paths.Path, answer: Tuple[Any, ...]) -> Tuple[Any, ...]:
    status = answer[0]
    if status != 0:
        error = NotRead if status == -2 else Error
        raise error(f"{_paths.shown(path)}: {_REASONS.get(status, 'fails')}", status=status, path=path)
    return answer[1:]


def _key(key: str) -> bytes:
    if "\0" in key:
        raise ValueError("the key contains a NUL")
    return key.encode()


class PartInfo(NamedTuple):
    materialType: bytes
    width: float
    height: float
    thickness: float


def GetOldPartInfo(path: _paths.Path) -> PartInfo:
    """The material type and the size of a part."""
    return PartInfo(*_asked(path, _core._GetOldPartInfo(_paths.encoded(path))))


def GetOldPartInfo_v1(path: _paths.Path, key: str) -> bytes:
    """One value of a part as text: "angle", "Revision", "MatType" or "Thickness"."""
    value: bytes
    value, = _asked(path, _core._GetOldPartInfo_v1(_paths.encoded(path), _key(key)))
    return value


def GetOldPartTool(path: _paths.Path) -> bytes:
    """The tools of a part, each followed by a comma."""
    value: bytes
    value, = _asked(path, _core._GetOldPartTool(_paths.encoded(path)))
    return value


def GetOldSptFromPart(path: _paths.Path) -> bytes:
    """The files of the special tools of a part, each between two commas."""
    value: bytes
    value, = _asked(path, _core._GetOldSptFromPart(_paths.encoded(path)))
    return value


def GetOldSptFromGroupPart(path: _paths.Path) -> bytes:
    """The files of the special tools of a group part file, each followed by a comma."""
    value: bytes
    value, = _asked(path, _core._GetOldSptFromGroupPart(_paths.encoded(path)))
    return value


class SpecialToolShape(NamedTuple):
    type: int
    x: float
    y: float
    values: Tuple[float, float, float, float]


class SpecialToolInfo(NamedTuple):
    shapes: List[SpecialToolShape]
    orientation: float
    specialValue: float
    dimensions: Tuple[float, float, float]
    firstValueCount: int
    firstValues: Tuple[float, ...]
    secondValueCount: int
    secondValues: Tuple[float, ...]
    extraValues: Tuple[float, float]
    lateFlag: int


def OpenSpecialToolFile(path: _paths.Path) -> SpecialToolInfo:
    """A special tool and its shapes. For a file without shapes, those of the previous special tool."""
    shapes, *rest = _asked(path, _core._OpenSpecialToolFile(_paths.encoded(path)))
    return SpecialToolInfo([SpecialToolShape(*shape) for shape in shapes], *rest)


def LoadOldToolInventoryForCount(path: _paths.Path) -> int:
    """The number of tools of a tool inventory. A damaged file has none."""
    count: int
    count, = _asked(path, _core._LoadOldToolInventoryForCount(_paths.encoded(path)))
    return count


class MachineInformation(NamedTuple):
    infoKind: int
    infoVersion: int
    infoSizeX: float
    infoSizeY: float
    infoText1: bytes
    infoText2: bytes
    infoStationWord: int
    infoExtra1: int
    infoExtra2: int
    infoStationMode: int
    infoStationCount: int


def LoadOldMachineInformation(path: _paths.Path) -> MachineInformation:
    """Kind, size, texts and stations of a machine. For a damaged file everything is 0."""
    return MachineInformation(*_asked(path, _core._LoadOldMachineInformation(_paths.encoded(path))))


class MachineName(NamedTuple):
    displayName: bytes
    kind: int
    text2: bytes
    secondText: bytes
    lateText: bytes


def GetOldVLMQMachineName(path: _paths.Path) -> MachineName:
    """The name, kind and texts of a machine."""
    return MachineName(*_asked(path, _core._GetOldVLMQMachineName(_paths.encoded(path))))


class MachineDatas(NamedTuple):
    sizeX: float
    sizeY: float
    clampCount: int
    blockMode: int
    stationLimits: Tuple[float, float, float, float]
    """The lowest x and y, the highest x and y."""
    area: Tuple[float, float, float, float]


def GetMachineDatasForQD(path: _paths.Path) -> MachineDatas:
    """Size, clamps, station limits and work area of a machine."""
    return MachineDatas(*_asked(path, _core._GetMachineDatasForQD(_paths.encoded(path))))


def LoadOldSheetInformation(path: _paths.Path) -> None:
    """Only says whether the version of a sheet is accepted: raises Error if not."""
    _asked(path, _core._LoadOldSheetInformation(_paths.encoded(path)))


class SheetInfo(NamedTuple):
    materialName: bytes
    materialGroup: bytes
    materialType: bytes
    materialText3: bytes
    materialText4: bytes
    materialText5: bytes
    machinePath: bytes
    sheetLabel: bytes
    materialFile: bytes
    width: float
    height: float
    thickness: float
    lateValue: float
    partNames: bytes
    tools: bytes


def GetOldSheetInfo(path: _paths.Path) -> SheetInfo:
    """The material and size of a sheet, its parts and the tools that its nest uses."""
    answer = _core._GetOldSheetInfo(_paths.encoded(path))
    if answer[1]:
        raise Error(f"{_paths.shown(path)}: the nest uses a tool number for which the machine has no tool", status=1,
                    path=path)
    texts, *rest = _asked(path, (answer[0], *answer[2:]))
    return SheetInfo(*texts, *rest)


class ClampInfo(NamedTuple):
    word: int
    first: float
    second: float
    third: float
    positions: Tuple[float, ...]
    clampCount: int
    spacing: float


def GetOldClampInfo(path: _paths.Path) -> ClampInfo:
    """The clamps of a sheet."""
    return ClampInfo(*_asked(path, _core._GetOldClampInfo(_paths.encoded(path))))


class MaterialNames(NamedTuple):
    text3: bytes
    text5: bytes


def GetOldVLMQMaterialName(path: _paths.Path) -> MaterialNames:
    """The third and the fifth of the part texts of a sheet."""
    return MaterialNames(*_asked(path, _core._GetOldVLMQMaterialName(_paths.encoded(path))))


def GetOldSkeletonUtil(path: _paths.Path) -> float:
    """The utilization of the plate."""
    value: float
    value, = _asked(path, _core._GetOldSkeletonUtil(_paths.encoded(path)))
    return value


def GetSheetDriverFlags(path: _paths.Path) -> Tuple[int, ...]:
    """All 601 driver flags of a sheet."""
    flags: Tuple[int, ...]
    flags, = _asked(path, _core._GetSheetDriverFlags(_paths.encoded(path)))
    return flags


def GetSheetSequenceListSize(path: _paths.Path) -> int:
    """The number of work entries of a sheet."""
    count: int
    count, = _asked(path, _core._GetSheetSequenceListSize(_paths.encoded(path)))
    return count


def GetOldSheetInfoByName(sheet: _core.OldSheet, key: str) -> bytes:
    """One value of a loaded sheet as text, such as "part_count"; OldTorvIO.h lists the keys. Empty for any other
    key."""
    value: bytes
    value, = _asked("sheet", _core._GetOldSheetInfoByName(sheet, _key(key)))
    return value


def GetOldSheetInfoPartGroupIDs(sheet: _core.OldSheet) -> bytes:
    """The group ids of the parts of a loaded sheet."""
    value: bytes
    value, = _asked("sheet", _core._GetOldSheetInfoPartGroupIDs(sheet))
    return value
