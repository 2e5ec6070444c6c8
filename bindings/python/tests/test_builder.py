"""The part builder."""
import os
import subprocess
import sys

import pytest

import oldtorvio
from oldtorvio import Error, PartBuilder


def test_a_part_is_built(tmp_path):
    # Part files do not store partName.
    builder = PartBuilder(8, 4, 0.125, -1, partName="NAME", customText1="PLÄTTE", materialName=b"DC01")
    assert builder.add_pattern(1, 2, 3, [0.5, 0.25], itemWord1=7, itemShort1=-1) == 1
    assert builder.add_pattern(3, 4, 1) == 2
    path = tmp_path / "plate.part"
    for version in (62, 110, 180):
        builder.save(path, version)
        part = oldtorvio.load(path, "part")
        assert (part.width, part.height, part.thickness, part.partKind) == (8, 4, 0.125, -1)
        assert part.materialName == b"DC01"
        assert part.customText1 == (b"PL\xc4TTE" if version >= 110 else b"")
        assert [(shape.type, shape.x, shape.y) for shape in part.shapes.shapes] == [(3, 1, 2), (1, 3, 4)]
        assert list(part.shapes.shapes[0].values)[:3] == [0.5, 0.25, 0]
    assert len(builder) == 2


def test_builders_do_not_disturb_each_other(tmp_path):
    one, two = PartBuilder(1, 1, 1, materialName=b"ONE"), PartBuilder(2, 2, 2, materialName=b"TWO")
    for i in range(4):
        assert one.add_pattern(i, 0, 1) == i + 1
        two.add_pattern(i, 0, 2)
        two.add_pattern(i, 1, 2)
    one.save(tmp_path / "one", 180)
    del one
    two.save(tmp_path / "two", 180)
    first, second = (oldtorvio.load(tmp_path / name, "part") for name in ("one", "two"))
    assert (first.materialName, len(first.shapes.shapes)) == (b"ONE", 4)
    assert (second.materialName, len(second.shapes.shapes)) == (b"TWO", 8)


SPECIAL_TOOLS = """
import sys, oldtorvio
builder = oldtorvio.PartBuilder(8, 4, 0.125)
assert builder.add_pattern(1, 1, 3, toolName="corner punch") == 1
shapes = builder.add_group(2, 2, -1, "Corner Punch")
assert shapes > 2, shapes
assert builder.add_to_group(2, 2.5, 2.5, 1) == shapes + 1
try:
    builder.add_pattern(1, 1, 3, toolName="no such tool")
except oldtorvio.Error as error:
    assert "not found" in str(error)
else:
    sys.exit("no error")
assert len(builder) == shapes + 1
other = oldtorvio.PartBuilder(1, 1, 1)
builder.save(sys.argv[1], 180)
part = oldtorvio.load(sys.argv[1], "part")
assert [tool.shapeCode for tool in part.toolStations.tools] == [108]
assert oldtorvio.decode(part.shapes.shapes[1].text).endswith("Corner Punch.spt")
"""


def test_special_tools(shop, tmp_path):
    config = tmp_path / "config/OldTorvIO"
    config.mkdir(parents=True)
    folder = str(shop / "archive/tools") + "/"
    (config / "win.ini").write_text(f"[Kestrada64bit]\r\nZRK_DEFAULT_SPECIAL_TOOL_PATH={folder}\r\n")
    subprocess.run([sys.executable, "-c", SPECIAL_TOOLS, str(tmp_path / "made.part")], check=True,
                   env={**os.environ, "XDG_CONFIG_HOME": str(tmp_path / "config")})


def test_what_a_builder_refuses(tmp_path):
    for name, text in (("partName", b"x" * 256), ("assemblyName", b"x" * 21), ("materialName", b"x" * 21),
                       ("customText3", b"x" * 256), ("partName", b"a\0b")):
        with pytest.raises(ValueError, match=name):
            PartBuilder(1, 1, 1, **{name: text})
    with pytest.raises(TypeError, match="bytes or str, not int"):
        PartBuilder(1, 1, 1, partName=3)
    builder = PartBuilder(1, 1, 1)
    with pytest.raises(Error, match="without shapes") as caught:
        builder.save(tmp_path / "x", 180)
    assert caught.value.status == -2
    builder.add_pattern(0, 0, 1)
    with pytest.raises(Error) as caught:
        builder.save(tmp_path / "x", 53)
    assert caught.value.status == -1
    with pytest.raises(Error):
        builder.save(tmp_path / "x", -1)
    with pytest.raises(Error, match="cannot be written"):
        builder.save(tmp_path / "no folder/x", 180)
    with pytest.raises(ValueError, match="259"):
        builder.save("x" * 260, 180)
    with pytest.raises(ValueError, match="9 values"):
        builder.add_pattern(0, 0, 1, range(10))
    with pytest.raises(IndexError, match="has 1"):
        builder.add_to_group(2, 0, 0, 1)
    with pytest.raises(IndexError):
        builder.add_to_group(0, 0, 0, 1)
    with pytest.raises(ValueError, match="too long"):
        builder.add_pattern(0, 0, 1, toolName="x" * 250)
    with pytest.raises(ValueError, match="too long"):
        builder.add_group(0, 0, 0, "x" * 250)
    with pytest.raises(TypeError):
        builder.add_pattern(0, 0, 300)
    assert len(builder) == 1
