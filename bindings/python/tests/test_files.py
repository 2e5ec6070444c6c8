"""Loads and saves of files of every kind and version."""
import json
import os
import pickle
import stat
import threading

import pytest

import oldtorvio
from oldtorvio import Error, NotRead, OldSheet


def test_every_file_loads_and_is_the_record_of_its_json(all_kinds):
    for kind, version, path in all_kinds:
        verdict = oldtorvio.check(path, kind)
        if not verdict["verdict"].startswith("sound"):
            with pytest.raises(Error) as caught:
                oldtorvio.load(path, kind)
            assert caught.value.status == verdict["status"]
            assert caught.value.field == verdict["fault"]["field"]
            continue
        record = oldtorvio.load(path, kind)
        if oldtorvio.check(path).get("kind") == kind:
            assert oldtorvio.load(path) == record
            assert oldtorvio.loads(path.read_bytes()) == without_path(oldtorvio.load(path))
        assert oldtorvio.loads(path.read_bytes(), kind) == without_path(record)
        document = oldtorvio.to_json(path, kind=kind)
        assert oldtorvio.to_json(without_path(record), version)["record"] == document["record"], path.name


def without_path(record):
    for name in ("path", "partFullDosName"):
        if hasattr(record, name) and type(record).__name__ in ("TorvPart", "OldMaterial", "OldToolInventory"):
            setattr(record, name, b"")
    return record


def test_a_load_stores_the_path_as_the_library_does(all_kinds):
    loaded = {type(oldtorvio.load(path, kind)).__name__: (kind, path) for kind, version, path in all_kinds
              if 150 <= version <= 180}
    for name, member in (("TorvPart", "partFullDosName"), ("OldMaterial", "path"), ("OldToolInventory", "path")):
        kind, path = loaded[name]
        assert getattr(oldtorvio.load(path, kind), member) == os.fsencode(path)
        assert getattr(oldtorvio.load(str(path), kind), member) == os.fsencode(path)
        assert getattr(oldtorvio.loads(path.read_bytes(), kind), member) == b""


def test_saves_store_what_from_json_stores(all_kinds, torvio, tmp_path):
    saved = 0
    for kind, version, path in all_kinds:
        if oldtorvio.check(path, kind)["verdict"] != "sound":
            continue
        record = without_path(oldtorvio.load(path, kind))
        try:
            wanted = oldtorvio.from_json(oldtorvio.to_json(path, kind=kind))
        except oldtorvio.Refused as refused:
            with pytest.raises(Error) as caught:
                oldtorvio.dumps(record, version)
            assert caught.value.status in (-1, -2) and str(caught.value) == str(refused)
            continue
        assert oldtorvio.dumps(record, version) == wanted, path.name
        saved += 1
    assert saved > 100


def test_pickles_of_every_record(all_kinds):
    for kind, _, path in all_kinds[::7]:
        if oldtorvio.check(path, kind)["verdict"] == "sound":
            record = oldtorvio.load(path, kind)
            assert pickle.loads(pickle.dumps(record)) == record


def test_a_cut_file_says_where_it_breaks(all_kinds, tmp_path):
    tried = 0
    for _, _, path in all_kinds[::5]:
        verdict = oldtorvio.check(path)
        data = path.read_bytes()[:path.stat().st_size * 3 // 4]
        if not verdict["verdict"].startswith("sound"):
            continue
        expected = oldtorvio.check(data, verdict["kind"])
        if expected["verdict"] != "damaged":
            continue
        with pytest.raises(Error) as caught:
            oldtorvio.loads(data, verdict["kind"])
        error = caught.value
        assert (error.status, error.offset, error.field) == (expected["status"], expected["fault"]["offset"],
                                                             expected["fault"]["field"])
        assert error.kind == verdict["kind"] and error.version == verdict["version"]
        assert isinstance(error.record, oldtorvio.Record)
        assert expected["fault"]["reason"] in str(error)
        tried += 1
    assert tried > 10


def test_an_error_of_a_nest(nest, tmp_path):
    path = tmp_path / "copy.sheet"
    path.write_bytes(nest.read_bytes()[:60000])
    with pytest.raises(Error) as caught:
        oldtorvio.load(path)
    error = caught.value
    assert (error.status, error.field, error.offset) == (1, "partList.parts[6].shapes.shapes[15].type", 60000)
    assert (error.kind, error.version, error.path) == ("sheet", 180, path)
    assert str(error).startswith(str(path)) and "the file has 0" in str(error)
    assert len(error.record.partList.parts) == 6
    assert error.record.partList.parts[5].partName == b"BRACKET 06"


def test_other_errors(tmp_path, nest):
    with pytest.raises(NotRead) as caught:
        oldtorvio.load(tmp_path / "nothing.sheet")
    assert isinstance(caught.value, OSError) and caught.value.status == -2 and "No such file" in str(caught.value)
    with pytest.raises(NotRead, match="is a folder"):
        oldtorvio.load(tmp_path)
    with pytest.raises(Error) as caught:
        oldtorvio.loads(b"no file of the suite")
    assert caught.value.status == -1 and caught.value.kind is None and caught.value.record is None
    with pytest.raises(Error) as caught:
        oldtorvio.loads(b"", "sheet")
    assert caught.value.status == 1
    with pytest.raises(Error) as caught:
        oldtorvio.loads(b"\x02\x00" + bytes(100), "sheet")
    assert caught.value.status == -1 and caught.value.version == 2
    with pytest.raises(ValueError, match="no kind of file: plate"):
        oldtorvio.load(nest, "plate")
    with pytest.raises(TypeError, match="loads"):
        oldtorvio.load(nest.read_bytes())
    with pytest.raises(ValueError, match="NUL"):
        oldtorvio.load(str(nest) + "\0")
    with pytest.raises(TypeError):
        oldtorvio.load(7)


def test_odd_names(tmp_path, nest):
    for name in ("Träger\n\x1b[31m.sheet", "日本.sheet", os.fsdecode(b"\xff\xfe.sheet"), " "):
        path = tmp_path / name
        oldtorvio.save(oldtorvio.load(nest), path, 180)
        assert oldtorvio.load(path).width == 96
        assert oldtorvio.check(path)["verdict"] == "sound"
        path.write_bytes(b"\xb4\x00")
        with pytest.raises(Error) as caught:
            oldtorvio.load(path, "sheet")
        assert "\n" not in str(caught.value) and "\x1b" not in str(caught.value)


def test_contents_may_be_any_bytes(nest):
    data = nest.read_bytes()
    for contents in (bytearray(data), memoryview(data), memoryview(bytearray(data))):
        assert oldtorvio.loads(contents) == oldtorvio.loads(data)
    with pytest.raises(TypeError):
        oldtorvio.loads("text")


def test_a_pipe_is_read_once(nest):
    reads, writes = os.pipe()
    data = nest.read_bytes()

    def feed():
        with os.fdopen(writes, "wb") as file:
            file.write(data)
    writer = threading.Thread(target=feed)
    writer.start()
    assert oldtorvio.load(f"/dev/fd/{reads}") == oldtorvio.loads(data)
    writer.join()
    os.close(reads)


def test_save_and_load(nest, tmp_path):
    sheet = oldtorvio.load(nest)
    path = tmp_path / "new.sheet"
    sheet.width = 120
    sheet.partList.parts[0].woNumber = b"WO-1"
    del sheet.partList.parts[6:]
    oldtorvio.save(sheet, path, 180)
    again = oldtorvio.load(path)
    assert again.width == 120 and len(again.partList.parts) == 6 and again == sheet
    assert path.read_bytes() == oldtorvio.dumps(sheet, 180)
    assert oldtorvio.check(path)["verdict"] == "sound"


def test_records_in_records_can_be_saved(nest, tmp_path):
    sheet = oldtorvio.load(nest)
    oldtorvio.save(sheet.partList.parts[3], tmp_path / "one.part", 180)
    part = oldtorvio.load(tmp_path / "one.part", "part")
    assert part.width == 6 and part.shapes == sheet.partList.parts[3].shapes
    oldtorvio.save(sheet.partList, tmp_path / "all.group", 180)
    assert len(oldtorvio.load(tmp_path / "all.group").parts) == 12
    with pytest.raises(TypeError, match="Shape is not the record of a file"):
        oldtorvio.dumps(sheet.partList.parts[0].shapes.shapes[0], 180)
    with pytest.raises(TypeError):
        oldtorvio.dumps(3, 180)


def test_a_refused_save_changes_no_file(tmp_path):
    path = tmp_path / "kept.sheet"
    path.write_bytes(b"kept")
    sheet = OldSheet()
    for version, status in ((51, -1), (181, -1), (-1, -1), (70000, -1)):
        with pytest.raises(Error) as caught:
            oldtorvio.save(sheet, path, version)
        assert caught.value.status == status
    sheet.textWidth = 0
    with pytest.raises(Error, match="cannot be saved in version 180") as caught:
        oldtorvio.save(sheet, path, 180)
    assert caught.value.status == -2 and caught.value.version == 180
    sheet.textWidth = 256
    sheet.blocks.add()
    with pytest.raises(Error, match="blocks"):
        oldtorvio.save(sheet, path, 180)
    with pytest.raises(FileNotFoundError) as caught:
        oldtorvio.save(OldSheet(), tmp_path / "no folder/x", 180)
    assert caught.value.filename == str(tmp_path / "no folder/x")
    assert path.read_bytes() == b"kept" and os.listdir(tmp_path) == ["kept.sheet"]


def test_a_file_keeps_its_permissions(tmp_path):
    path = tmp_path / "a.sheet"
    oldtorvio.save(OldSheet(), path, 180)
    os.chmod(path, 0o640)
    oldtorvio.save(OldSheet(width=1), path, 180)
    assert stat.S_IMODE(path.stat().st_mode) == 0o640
    link = tmp_path / "link.sheet"
    link.symlink_to(path)
    oldtorvio.save(OldSheet(width=2), link, 180)
    assert link.is_symlink() and oldtorvio.load(path).width == 2
    assert sorted(os.listdir(tmp_path)) == ["a.sheet", "link.sheet"]


def test_what_a_command_line_reads_is_what_python_saved(torvio, tmp_path):
    path = tmp_path / "made.sheet"
    sheet = OldSheet(sheetLabel=b"MADE")
    oldtorvio.save(sheet, path, 180)
    assert json.loads(torvio("check", "--json", path).stdout)["verdict"] == "sound"
    assert json.loads(torvio("json", path).stdout) == oldtorvio.to_json(path)


def test_large_files(nest, tmp_path):
    sheet = oldtorvio.load(nest)
    copies = sheet.partList.parts[:]
    for _ in range(45):
        sheet.partList.parts.extend(copies)
    path = tmp_path / "large.sheet"
    oldtorvio.save(sheet, path, 180)
    data = path.read_bytes()
    assert len(data) > 4 << 20
    assert oldtorvio.load(path) == oldtorvio.load(path, "sheet") == oldtorvio.loads(data) == sheet
    path.write_bytes(data[:-100])
    for kind in (None, "sheet"):
        with pytest.raises(Error) as caught:
            oldtorvio.load(path, kind)
        assert caught.value.offset is not None and caught.value.record.partList == sheet.partList
