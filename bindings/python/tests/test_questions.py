"""The queries of the library, compared with what the records say."""
import pytest

import oldtorvio
from oldtorvio import Error, NotRead, OldSheet, questions


def test_parts(shop, tmp_path):
    sheet = oldtorvio.load(shop / "archive/nests/nest_180.sheet")
    part = sheet.partList.parts[0]
    part.materialType, part.revision = b"DC01", b"B"
    path = tmp_path / "one.part"
    oldtorvio.save(part, path, 180)
    assert questions.GetOldPartInfo(path) == (b"DC01", part.width, part.height, part.thickness)
    assert questions.GetOldPartInfo_v1(path, "revision") == b"B"
    assert questions.GetOldPartInfo_v1(path, "Thickness") == b"%g" % part.thickness
    with pytest.raises(Error) as caught:
        questions.GetOldPartInfo_v1(path, "colour")
    assert caught.value.status == 1
    part.toolStations.stations.add(toolCount=1)
    part.toolStations.tools.add(shapeCode=108, specialToolPath=b"C:\\TOOLS\\" + b"x" * 200 + b".spt")
    part.toolStations.stations.add(toolCount=1)
    part.toolStations.tools.add(shapeCode=1, dimension1=0.5)
    oldtorvio.save(part, path, 180)
    special = part.toolStations.tools[-2].specialToolPath
    assert b"," + special + b"," in questions.GetOldSptFromPart(path)
    assert questions.GetOldPartTool(path).startswith(b"108 xxx")
    oldtorvio.save(oldtorvio.SheetPartList(parts=[part, part]), tmp_path / "two.group", 180)
    assert questions.GetOldSptFromGroupPart(tmp_path / "two.group") == (special + b",") * 2


def test_special_tools_inventories_machines(shop):
    tool = questions.OpenSpecialToolFile(shop / "archive/tools/Corner Punch.spt")
    record = oldtorvio.load(shop / "archive/tools/Corner Punch.spt")
    assert [shape.type for shape in tool.shapes] == [shape.type for shape in record.shapes.shapes]
    assert [(shape.x, shape.y, *shape.values) for shape in tool.shapes] == [
        (shape.x, shape.y, *shape.values[:4]) for shape in record.shapes.shapes]
    assert tool.dimensions == (record.tool.dimension1, record.tool.dimension2, record.tool.dimension3)
    assert questions.LoadOldToolInventoryForCount(shop / "archive/tools/shop.inv") == 3
    machine_path = shop / "archive/machines/punch.mch"
    machine = oldtorvio.load(machine_path)
    about = questions.LoadOldMachineInformation(machine_path)
    assert (about.infoVersion, about.infoStationCount) == (162, len(machine.stationsA.stations))
    assert questions.GetOldVLMQMachineName(machine_path).displayName == machine.displayName
    datas = questions.GetMachineDatasForQD(machine_path)
    assert (datas.sizeX, datas.sizeY) == (about.infoSizeX, about.infoSizeY)
    assert isinstance(datas.clampCount, int) and 0 <= datas.clampCount < 100


def test_sheets(nest):
    sheet = oldtorvio.load(nest)
    info = questions.GetOldSheetInfo(nest)
    assert (info.width, info.height, info.sheetLabel) == (sheet.width, sheet.height, sheet.sheetLabel)
    assert info.partNames == b"," + b"".join(part.partName + b"," for part in sheet.partList.parts)
    assert info.materialType == sheet.materialType and info.tools.startswith(b",") and len(info.tools) > 100
    assert questions.GetOldSkeletonUtil(nest) == sheet.utilization
    assert questions.GetSheetSequenceListSize(nest) == len(sheet.workList)
    assert questions.GetOldVLMQMaterialName(nest) == (sheet.partTexts[2], sheet.partTexts[4])
    assert questions.GetOldClampInfo(nest).clampCount == 3
    assert questions.GetSheetDriverFlags(nest) == tuple(sheet.paramTable.intParams)
    questions.LoadOldSheetInformation(nest)


def test_loaded_sheets(nest):
    sheet = oldtorvio.load(nest)
    assert questions.GetOldSheetInfoByName(sheet, "part_count") == b"12"
    sheet.partList.parts.clear()
    assert questions.GetOldSheetInfoByName(sheet, "part_count") == b"0"
    for _ in range(50):
        sheet.partList.parts.add(partName=b"x" * 256, partFullDosName=b"y" * 260, woNumber=b"z" * 256,
                                 patterns=[oldtorvio.Pattern(patternWord=2**31 - 1)])
    for key in ("partfulldosname_and_count_and_wonumber", "part_details_01", "partname_and_count_and_wonumber"):
        assert questions.GetOldSheetInfoByName(sheet, key).count(b"|") > 50
    assert questions.GetOldSheetInfoPartGroupIDs(sheet) == b"2147483647|," * 50
    assert questions.GetOldSheetInfoByName(sheet, "no such key") == b""
    with pytest.raises(TypeError, match="needs OldSheet"):
        questions.GetOldSheetInfoByName(oldtorvio.TorvPart(), "width")


def test_what_would_end_the_process_is_an_error(nest, tmp_path):
    sheet = oldtorvio.load(nest)
    stations = sheet.machine.stationsB.stations if sheet.machine.stationWord and len(
        sheet.machine.stationsB.stations) else sheet.machine.stationsA.stations
    sheet.partList.parts[0].patterns[0].items.add(toolNumber=len(stations) + 1)
    path = tmp_path / "impossible.sheet"
    oldtorvio.save(sheet, path, 180)
    assert oldtorvio.check(path)["verdict"] == "sound"
    with pytest.raises(Error, match="no tool"):
        questions.GetOldSheetInfo(path)


def test_files_that_cannot_be_asked(tmp_path, nest):
    for ask in (questions.GetOldPartInfo, questions.GetOldSheetInfo, questions.LoadOldToolInventoryForCount,
                questions.GetSheetDriverFlags, questions.OpenSpecialToolFile, questions.GetOldSptFromPart):
        with pytest.raises(NotRead) as caught:
            ask(tmp_path / "nothing")
        assert caught.value.status == -2
    old = tmp_path / "version_2"
    old.write_bytes(b"\2\0" + bytes(500))
    with pytest.raises(Error) as caught:
        questions.GetOldSheetInfo(old)
    assert caught.value.status == -1
    with pytest.raises(ValueError):
        questions.GetOldPartInfo("a\0b")
    with pytest.raises(ValueError):
        questions.GetOldSheetInfoByName(OldSheet(), "a\0b")
