"""Builds the manual and checks it: manual.py SOURCE_FOLDER FOLDER

Doxygen has no warning, every exported function and every record with its fields has a description, and every link leads
somewhere. 77 if Doxygen or its theme is not installed.
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree

root, folder = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
if shutil.which("doxygen") is None or not pathlib.Path("/usr/share/doxygen-awesome-css").exists():
    print("the manual is not built: the Debian packages doxygen and doxygen-awesome-css are not installed")
    sys.exit(77)
if subprocess.run([sys.executable, str(root / "docs/manual/build.py"), str(folder)]).returncode != 0:
    sys.exit(1)

described = {}  # {"LoadOldPart": text, "OldSheet": text, "OldSheet::width": text}
for file in folder.joinpath("xml").glob("*.xml"):
    for compound in xml.etree.ElementTree.parse(file).getroot().iter("compounddef"):
        owner = (compound.findtext("compoundname") or "").removeprefix("oldtorvio::")
        is_record = compound.get("kind") in ("struct", "class")
        for name, element in [(owner, compound)] + [
                (f"{owner}::{one.findtext('name')}" if is_record else one.findtext("name"), one)
                for one in compound.iter("memberdef")]:
            said = "".join("".join(element.find(part).itertext()) for part in ("briefdescription", "detaileddescription"))
            described[name] = max(described.get(name, ""), said.strip(), key=len)

wanted = (root / "cmake/exports.txt").read_text().split()
table = json.loads((root / "bindings/functions.json").read_text(encoding="utf-8"))
for library in table["libraries"]:
    wanted += [function["name"] for function in library["functions"]]
    for struct, members in library["structs"].items():
        wanted += [struct, *[f"{struct}::{member}" for member in members]]
functions = len(set(wanted))
# The lists of members are complete: tests/values/ checks that.
for path in (root / "torvio/values").glob("*_members.h"):
    for record, members in re.findall(r"^MEMBERS(?:_BEYOND\(\w+, |\()(\w+),(.*?)\);", path.read_text(), re.M | re.S):
        names = re.findall(r"\w+", re.sub(r"UNSTORED\((?:record\.)?(\w+)\)|record\.", r"\1", members))
        wanted += [record, *[f"{record}::{name}" for name in names]]
if functions < 60 or len(set(wanted)) < 1000:
    sys.exit(f"only {functions} functions and structs and {len(set(wanted))} names: the patterns do not match any more")
missing = sorted({name for name in wanted if not described.get(name)})
if missing:
    sys.exit("the manual has no description of " + ", ".join(missing))
print(f"{len(set(wanted))} functions, records and fields are described")
sys.exit(subprocess.run([sys.executable, str(root / "tests/docs/links.py"), "html", str(folder / "html")]).returncode)
