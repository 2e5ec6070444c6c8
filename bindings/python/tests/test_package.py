"""Stubs, examples, the guide, and an installation with pip."""
import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

import oldtorvio
from conftest import BUILD, SOURCE

BINDINGS = SOURCE / "bindings/python"
EXAMPLES = [SOURCE / "examples" / name for name in ("python_guide.py", "sheets_table.py", "change_nest.py", "scan_cluster.py")]
PACKAGE = pathlib.Path(oldtorvio.__file__).parent


def python(*arguments, **options):
    return subprocess.run([sys.executable, *map(str, arguments)], capture_output=True, text=True, check=False,
                          **options)


def test_stubs_are_those_of_the_records():
    made = python(BINDINGS / "tools/make_stubs.py")
    assert made.returncode == 0, made.stderr
    assert made.stdout == (BINDINGS / "oldtorvio/_core.pyi").read_text(), "run tools/make_stubs.py"


def test_the_package_is_that_of_the_sources():
    for path in (BINDINGS / "oldtorvio").glob("*.py*"):
        if path.is_file():
            assert (PACKAGE / path.name).read_bytes() == path.read_bytes()


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is not installed")
def test_types_of_package_and_examples(tmp_path):
    done = subprocess.run(["mypy", "--config-file", BINDINGS / "pyproject.toml", "--ignore-missing-imports",
                           "--cache-dir", tmp_path, "--python-executable", sys.executable, "-p", "oldtorvio"],
                          capture_output=True, text=True, cwd=BINDINGS, check=False)
    assert done.returncode == 0, done.stdout
    for example in EXAMPLES:
        done = subprocess.run(["mypy", "--config-file", BINDINGS / "pyproject.toml", "--ignore-missing-imports",
                               "--cache-dir", tmp_path, example],
                              capture_output=True, text=True, env={**os.environ, "MYPYPATH": str(BINDINGS)},
                              check=False)
        assert done.returncode == 0, done.stdout


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is not installed")
def test_wrong_types_are_found(tmp_path):
    wrong = tmp_path / "wrong.py"
    wrong.write_text("from oldtorvio import OldSheet, MarkEntry\nsheet = OldSheet()\nsheet.width = b''\n"
                     "sheet.marks.append(3)\nsheet.hight\nsheet.partList.parts[0].partName.decode()\n"
                     "x: str = sheet.marks[0]\nsheet.marks.append(MarkEntry())\n")
    done = subprocess.run(["mypy", "--cache-dir", tmp_path, wrong], capture_output=True, text=True,
                          env={**os.environ, "MYPYPATH": str(BINDINGS)}, check=False)
    assert sorted({int(line) for line in re.findall(r"wrong\.py:(\d+): error", done.stdout)}) == [3, 4, 5, 7]


def test_the_guide_shows_the_examples():
    shown = re.findall(r"^```python\n(.*?)^```$", (SOURCE / "docs/python.md").read_text(), re.M | re.S)
    sources = [path.read_text() for path in EXAMPLES]
    assert len(shown) > 10
    for snippet in shown:
        assert any(snippet in source for source in sources), snippet


def test_the_guide_runs(shop, tmp_path):
    shutil.copytree(shop / "archive", tmp_path / "archive")
    done = python(EXAMPLES[0], cwd=tmp_path)
    assert done.returncode == 0, done.stderr
    assert "1 60000 partList.parts[6].shapes.shapes[15].type\n6 parts were read\n" in done.stdout
    assert "True 0\n120.0\n['BRACKET 01', 'BRACKET 02']\n" in done.stdout
    assert "\n14 0 1\n14 14 1\n" in done.stdout
    assert done.stdout.endswith("/archive/nests/copy.sheet 60000 partList.parts[6].shapes.shapes[15].type\n")


def test_the_page_of_clusters_shows_its_program():
    shown = re.findall(r"^```python\n(.*?)^```$", (SOURCE / "docs/cluster.md").read_text(), re.M | re.S)
    assert len(shown) == 1 and shown[0] in EXAMPLES[3].read_text()


def test_the_tasks_are_solved_alike():
    done = python(SOURCE / "tests/docs/tasks.py", BUILD, SOURCE, "--python")
    if done.returncode == 77:
        pytest.skip(done.stdout)
    assert done.returncode == 0, done.stdout + done.stderr


def test_a_nest_is_changed(shop, tmp_path):
    done = python(EXAMPLES[2], shop / "archive/nests/nest_180.sheet", tmp_path / "new.sheet")
    assert done.returncode == 0, done.stderr
    assert done.stdout.count("BRACKET") == 6
    nest = oldtorvio.load(tmp_path / "new.sheet")
    assert nest.sheetLabel == b"NEST 4712" and len(nest.partList.parts) == 11
    assert {part.woNumber for part in nest.partList.parts} == {b"WO-7001", b"WO-9000"}


def test_a_table_of_sheets(shop):
    pytest.importorskip("pandas")
    done = python(EXAMPLES[1], shop)
    assert done.returncode == 0, done.stderr
    lines = done.stdout.splitlines()
    assert len(lines) == 4 and lines[0].split() == ["file", "version", "width", "height", "material", "parts"]
    assert lines[2].split() == ["nest_180.sheet", "180", "96.0", "48.0", "DC01", "12"]
    assert "copy.sheet" in done.stderr


def test_pip_installs_it(tmp_path):
    if python("-m", "pip", "--version").returncode != 0:
        pytest.skip("pip is not installed")
    folder = os.environ.get("OLDTORVIO_PIP_BUILD", str(tmp_path / "build"))
    done = python("-m", "pip", "install", "--no-index", "--disable-pip-version-check", "--root-user-action=ignore",
                  f"--config-settings=build-dir={folder}", "--target", tmp_path / "installed", BINDINGS)
    assert done.returncode == 0, done.stdout + done.stderr
    program = "import oldtorvio, sys; print(oldtorvio.__file__, oldtorvio.OldSheet().width, oldtorvio.__version__)"
    done = python("-c", program, cwd=tmp_path,
                  env={"PATH": os.environ["PATH"], "PYTHONPATH": str(tmp_path / "installed")})
    assert done.stdout.split() == [str(tmp_path / "installed/oldtorvio/__init__.py"), "60.0", oldtorvio.__version__]
    info = next((tmp_path / "installed").glob("oldtorvio-*.dist-info"))
    assert {"METADATA", "RECORD", "WHEEL", "LICENSE"} <= {path.name for path in info.iterdir()}
