"""Checks that whatever states the version of the project agrees with CMakeLists.txt, where it is set.

usage: version_test.py SOURCE_FOLDER
"""
import json
import pathlib
import re
import subprocess
import sys

top = pathlib.Path(sys.argv[1])


def text(name):
    return (top / name).read_text(encoding="utf-8")


version = re.search(r"project\(OldTorvIO VERSION ([0-9]+\.[0-9]+\.[0-9]+)", text("CMakeLists.txt"))[1]
major, minor, _ = version.split(".")
abi = f"{major}.{minor}" if major == "0" else major
wrong = []


def expect(what, found, wanted):
    if found != wanted:
        wrong.append(f"{what}: {found!r} instead of {wanted!r}")


expect("CHANGELOG.md", re.search(r"(?m)^## (\S+)", text("CHANGELOG.md"))[1], version)
PACKAGES = ("bindings/node", "web/package")
for folder in PACKAGES:
    expect(f"{folder}/package.json", json.loads(text(f"{folder}/package.json"))["version"], version)
    lock = json.loads(text(f"{folder}/package-lock.json"))
    expect(f"{folder}/package-lock.json", [lock["version"], lock["packages"][""]["version"]], [version] * 2)
expect("examples/CMakeLists.txt", re.search(r"find_package\(OldTorvIO (\S+)", text("examples/CMakeLists.txt"))[1],
       f"{major}.{minor}")
# Programs load the libraries by the names of this ABI.
for name in ("bindings/node/raw.js", "bindings/csharp/OldTorvIO.Bindings.dll.config"):
    found = re.findall(r"lib\w+\.so\.([0-9.]+)|lib\w+?\.([0-9][0-9.]*)\.dylib", text(name))
    expect(name, {one or other for one, other in found}, {abi})

# No other file states it, but for the examples in a comment of torvio.h.
CHECKED = {"CMakeLists.txt", "CHANGELOG.md", "torvio/include/torvio.h",
           *(f"{folder}/{name}.json" for folder in PACKAGES for name in ("package", "package-lock"))}
listed = subprocess.run(["git", "-C", top, "grep", "-lF", version, "--", ".", ":!fuzz/corpus"], capture_output=True, text=True)
if listed.returncode == 0:
    expect("other files that state the version", sorted(set(listed.stdout.split()) - CHECKED), [])
print("\n".join(wrong) or f"all state {version}")
sys.exit(1 if wrong else 0)
