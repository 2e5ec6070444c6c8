"""The functions of torvio return what its command line prints."""
import json

import pytest

import oldtorvio
from oldtorvio import Error, NotRead, Refused


def json_of(done):
    return json.loads(done.stdout)


def lines_of(done):
    return [json.loads(line) for line in done.stdout.splitlines()]


@pytest.fixture
def cut(shop):
    return shop / "archive/nests/copy.sheet"


def test_check_and_info(shop, torvio):
    for path in sorted(path for path in shop.rglob("*") if path.is_file()):
        assert oldtorvio.check(path) == json_of(torvio("check", "--json", path))
        assert oldtorvio.info(path) == json_of(torvio("info", "--json", path))
    assert oldtorvio.check(shop / "nothing")["verdict"] == "unreadable"
    assert oldtorvio.check(b"")["verdict"] == "foreign"
    with pytest.raises(ValueError, match="kind of the input"):
        oldtorvio.check(b"", "plate")


def test_json_of_a_file(nest, cut, torvio):
    assert oldtorvio.to_json(nest) == json_of(torvio("json", nest))
    assert oldtorvio.to_json(nest, encoding="cp437")["encoding"] == "cp437"
    with pytest.raises(Error) as caught:
        oldtorvio.to_json(cut)
    assert caught.value.offset == 60000 and json.loads(caught.value.result)["fault"]["offset"] == 60000
    assert oldtorvio.to_json(cut, damaged=True) == json_of(torvio("json", cut))
    with pytest.raises(TypeError):
        oldtorvio.to_json(nest, 180)


def test_json_of_a_record(nest):
    sheet = oldtorvio.load(nest)
    document = oldtorvio.to_json(sheet, 180)
    assert document == oldtorvio.to_json(nest)
    assert oldtorvio.from_json(document) == oldtorvio.dumps(sheet, 180)
    assert oldtorvio.loads(oldtorvio.from_json(document, 112)).version == 112
    document["record"]["width"] = 7
    assert oldtorvio.loads(oldtorvio.from_json(json.dumps(document))).width == 7
    document["record"]["width"] = "wide"
    with pytest.raises(Refused, match="width: must be a number, not a string"):
        oldtorvio.from_json(document)
    with pytest.raises(TypeError, match="version"):
        oldtorvio.to_json(sheet)
    with pytest.raises(LookupError):
        oldtorvio.to_json(sheet, 180, encoding="utf-8")


def test_schema_format_supported(torvio):
    for kind in oldtorvio.supported()["kinds"]:
        assert oldtorvio.schema(kind["name"]) == json_of(torvio("schema", kind["name"]))
        assert oldtorvio.format(kind["name"]).encode() == torvio("format", kind["name"]).stdout
    with pytest.raises(ValueError):
        oldtorvio.schema("plate")
    with pytest.raises(ValueError):
        oldtorvio.format("sheet", "latin")
    assert oldtorvio.supported()["version"] == oldtorvio.__version__


def test_map(nest, cut, torvio):
    assert oldtorvio.map(nest, "partList.parts[*].partName") == lines_of(
        torvio("map", "--json", "--find", "partList.parts[*].partName", nest))
    assert oldtorvio.map(nest, range="0..40") == lines_of(torvio("map", "--json", "--offset", "0..40", nest))
    with pytest.raises(Error):
        oldtorvio.map(cut)
    assert "fault" in oldtorvio.map(cut, damaged=True)[-1]
    with pytest.raises(ValueError, match="find"):
        oldtorvio.map(nest, "[")
    small = oldtorvio.dumps(oldtorvio.OldMacro(), 180)
    assert oldtorvio.map_page(small, kind="macro").startswith("<!doctype html>")


def test_draw(nest, cut, shop, torvio):
    assert oldtorvio.draw(nest).encode() == torvio("draw", nest).stdout
    with pytest.raises(Error) as caught:
        oldtorvio.draw(cut)
    assert caught.value.result.decode() == oldtorvio.draw(cut, damaged=True)
    with pytest.raises(Refused, match="has no picture"):
        oldtorvio.draw(shop / "archive/materials/steel.mat")
    with pytest.raises(NotRead):
        oldtorvio.draw(shop / "nothing")
    with pytest.raises(Error, match="file 2"):
        oldtorvio.draw_page([nest, cut])
    assert "Nests" in oldtorvio.draw_page([nest, cut], "Nests", damaged=True)


def test_diff(nest, tmp_path):
    sheet = oldtorvio.load(nest)
    assert oldtorvio.diff(nest, nest).same
    sheet.width += 0.25
    other = oldtorvio.dumps(sheet, 180)
    found = oldtorvio.diff(nest, other)
    assert not found.same and [one["fieldInA"] for one in found.differences] == ["width"]
    assert found.totals["differences"] == 1
    assert oldtorvio.diff(nest, other, tolerance=0.5).same
    with pytest.raises(ValueError, match="tolerance"):
        oldtorvio.diff(nest, other, tolerance=-1)


def test_convert_and_recover(nest, cut):
    with pytest.raises(Refused) as caught:
        oldtorvio.convert(nest, 112)
    assert caught.value.report["kind"] == "sheet"
    made = oldtorvio.convert(nest, 112, allow_loss=True)
    assert oldtorvio.check(made.data)["verdict"] == "sound" and made.report["kind"] == "sheet"
    same = oldtorvio.convert(nest, 180)
    assert oldtorvio.loads(same.data) == oldtorvio.load(nest)
    recovered = oldtorvio.recover(cut)
    assert oldtorvio.check(recovered.data)["verdict"] == "sound"
    assert len(oldtorvio.loads(recovered.data).partList.parts) == 6
    with pytest.raises(Refused):
        oldtorvio.recover(b"nothing at all")
    with pytest.raises(NotRead):
        oldtorvio.convert("/no such file", 180)
