"""Builds the wheel for pip (PEP 517): CMake makes the package, this makes an archive of it.

Needs cmake, a C++20 compiler, pybind11 and nlohmann-json. Settings: pip install . --config-settings=build-dir=FOLDER
keeps the build folder for the next time.
"""
import base64
import csv
import hashlib
import io
import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[3]
ABOUT = "The older binary files of a sheet-metal fabrication suite"


def version():
    """The version of the library, which is stated once."""
    return re.search(r"project\(OldTorvIO VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


def tag():
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{python}-{python}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())


def metadata():
    text = f"Metadata-Version: 2.1\nName: oldtorvio\nVersion: {version()}\nSummary: {ABOUT}\nRequires-Python: >=3.10\n"
    return {"METADATA": text.encode(), "LICENSE": (ROOT / "LICENSE").read_bytes(),
            "WHEEL": f"Wheel-Version: 1.0\nGenerator: oldtorvio_build\nRoot-Is-Purelib: false\nTag: {tag()}\n".encode()}


def build(folder):
    """The files of the package by their names."""
    options = {"CMAKE_BUILD_TYPE": "Release", "CMAKE_MODULE_LINKER_FLAGS": "-s", "Python_EXECUTABLE": sys.executable,
               "OLDTORVIO_PYTHON": "ON", "OLDTORVIO_INSTALL": "OFF", "BUILD_TESTING": "OFF"}
    options.update({f"OLDTORVIO_{part}": "OFF" for part in ("TOOLS", "EXAMPLES", "TESTS", "FUZZ", "BENCH")})
    if shutil.which("ccache"):
        options["CMAKE_CXX_COMPILER_LAUNCHER"] = "ccache"
    generator = ["-G", "Ninja"] if shutil.which("ninja") else []
    definitions = [f"-D{name}={value}" for name, value in options.items()]
    subprocess.run(["cmake", "-S", ROOT, "-B", folder, *generator, *definitions], check=True)
    subprocess.run(["cmake", "--build", folder, "--target", "oldtorvio_python", "--parallel", str(os.cpu_count() or 1)],
                   check=True)
    package = pathlib.Path(folder) / "python"
    return {path.relative_to(package).as_posix(): path.read_bytes()
            for path in sorted(package.glob("oldtorvio/*")) if path.is_file()}


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    kept = (config_settings or {}).get("build-dir")
    folder = kept or tempfile.mkdtemp(prefix="oldtorvio-")
    try:
        files = build(folder)
    finally:
        if not kept:
            shutil.rmtree(folder, ignore_errors=True)
    info = f"oldtorvio-{version()}.dist-info"
    files.update({f"{info}/{name}": data for name, data in metadata().items()})
    record = io.StringIO()
    rows = csv.writer(record, lineterminator="\n")
    for name, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        rows.writerow([name, f"sha256={digest}", len(data)])
    rows.writerow([f"{info}/RECORD", "", ""])
    files[f"{info}/RECORD"] = record.getvalue().encode()

    wheel = f"oldtorvio-{version()}-{tag()}.whl"
    with zipfile.ZipFile(os.path.join(wheel_directory, wheel), "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            # The same files make the same archive.
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if name.endswith(".so") else 0o644) << 16
            archive.writestr(entry, data)
    return wheel


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    info = f"oldtorvio-{version()}.dist-info"
    folder = pathlib.Path(metadata_directory) / info
    folder.mkdir()
    for name, data in metadata().items():
        (folder / name).write_bytes(data)
    return info


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("the package is built from a checkout of OldTorvIO: its sources are above this folder")
