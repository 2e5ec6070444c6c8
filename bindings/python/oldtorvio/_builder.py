"""The part builder of the library."""
from __future__ import annotations

from typing import Optional, Sequence, Union

from . import _core, _paths
from ._errors import Error

Text = Union[bytes, str]


def _bytes(text: Optional[Text]) -> Optional[bytes]:
    if text is not None and not isinstance(text, (str, bytes)):
        raise TypeError(f"a text is bytes or str, not {type(text).__name__}")
    return _core.encode(text) if isinstance(text, str) else text


class PartBuilder:
    """A new part, shape by shape.

    width, height and thickness are in the suite's length unit. Texts are bytes, or str in the code page cp1252; None
    selects the default of the library ("NEW PART", "NEW ASSEMBLY", "NEW MATERIAL", empty). assemblyName and
    materialName have at most 20 bytes, the others 255.
    """

    def __init__(self, width: float, height: float, thickness: float, partKind: int = 0, *,
                 partName: Optional[Text] = None, assemblyName: Optional[Text] = None,
                 materialName: Optional[Text] = None, customText1: Optional[Text] = None,
                 customText2: Optional[Text] = None, customText3: Optional[Text] = None) -> None:
        texts = (partName, assemblyName, materialName, customText1, customText2, customText3)
        self._builder = _core._PartBuilder(width, height, thickness, partKind, *(_bytes(one) for one in texts))

    def add_pattern(self, x: float, y: float, type: int, values: Sequence[float] = (), *, flags: int = 0,
                    itemWord1: int = 0, itemWord2: float = 0, pairs: Sequence[float] = (0, 0, 0, 0),
                    toolName: Optional[Text] = None, itemShort1: int = 0, itemShort2: int = 0, itemWord3: float = 0,
                    itemWord4: float = 0) -> int:
        """Adds a shape of that type at x, y, with up to nine values. toolName is the name of a special tool. Returns
        the number of shapes."""
        return self._added(self._builder.add_pattern(x, y, type, flags, list(values), itemWord1, itemWord2, list(pairs),
                                                     _bytes(toolName), itemShort1, itemShort2, itemWord3, itemWord4),
                           toolName)

    def add_group(self, x: float, y: float, angle: float, toolName: Text) -> int:
        """Adds a group: a head at x, y and the shapes of a special tool. Returns the number of shapes."""
        return self._added(self._builder.add_group(x, y, angle, _bytes(toolName)), toolName)

    def add_to_group(self, groupIndex: int, x: float, y: float, type: int, values: Sequence[float] = ()) -> int:
        """Adds a member to the group whose head is shape groupIndex, from 1. Returns the number of shapes."""
        return self._added(self._builder.add_to_group(groupIndex, x, y, type, list(values)), None)

    @staticmethod
    def _added(count: int, toolName: Optional[Text]) -> int:
        if count < 0:
            if toolName is not None:
                raise Error(f"the special tool {toolName!r} is not found or cannot be loaded", status=count)
            raise MemoryError
        return count

    def __len__(self) -> int:
        """The number of shapes."""
        return int(self._builder.shape_count())

    def save(self, path: _paths.Path, version: int) -> None:
        """Saves the part as it is now. More can be added, and it can be saved again."""
        if not 0 <= version <= 32767:
            raise Error(f"a part file cannot be saved in version {version}", status=-1)
        status = self._builder.save(_paths.encoded(path), version)
        if status != 0:
            reason = {-1: f"a part file cannot be saved in version {version}"}.get(
                status, "cannot be written" if len(self) else "a part without shapes cannot be saved")
            raise Error(f"{_paths.shown(path)}: {reason}", status=status, path=path, version=version)
