"""The package is in PYTHONPATH; OLDTORVIO_BUILD is the build folder with the programs that make sample files."""
import os
import pathlib
import re
import subprocess

import hypothesis
import pytest

# No folder of examples where the tests are started.
hypothesis.settings.register_profile("here", database=None)
hypothesis.settings.load_profile("here")

BUILD = pathlib.Path(os.environ.get("OLDTORVIO_BUILD", "build/release")).resolve()
SOURCE = pathlib.Path(__file__).resolve().parents[3]


def program(*names):
    for name in names:
        if (BUILD / name).exists():
            return str(BUILD / name)
    pytest.exit(f"{names[0]} is not in {BUILD}: build it, or set OLDTORVIO_BUILD")


@pytest.fixture(scope="session")
def torvio():
    """Runs the command line."""
    command = program("bin/torvio")

    def run(*arguments):
        return subprocess.run([command, *map(str, arguments)], capture_output=True, check=False)
    return run


@pytest.fixture(scope="session")
def all_kinds(tmp_path_factory):
    """Small files of every kind and version: [(kind, version, path), ...]."""
    folder = tmp_path_factory.mktemp("kinds")
    subprocess.run([program("tests/torvio/torvio_kind_files", "tests/torvio_kind_files"), str(folder)], check=True)
    files = []
    for path in sorted(folder.glob("*.bin")):
        kind, version = re.fullmatch(r"(.+?)_(\d+)(?:_[a-z]+)?\.bin", path.name).groups()
        files.append((kind, int(version), path))
    assert len(files) > 200
    return files


@pytest.fixture(scope="session")
def shop(tmp_path_factory):
    """The folder of the guide: nests, parts, a machine, tools, materials."""
    folder = tmp_path_factory.mktemp("shop")
    subprocess.run(["bash", str(SOURCE / "examples/guide_files.sh"), str(BUILD), str(folder)], check=True,
                   capture_output=True)
    return folder


@pytest.fixture
def nest(shop):
    return shop / "archive/nests/nest_180.sheet"
