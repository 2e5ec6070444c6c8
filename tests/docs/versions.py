"""Checks that the accepted versions in docs/formats/ and OldTorvIO.h are those that loads accept.

A list of numbers after "Accepted versions:" is compared with the verdicts of `torvio check` on files that consist of a
version word only. Versions that a page or function describes by another one are not compared.
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

tool, root = sys.argv[1], pathlib.Path(sys.argv[2])
VERSIONS = [*range(0, 600), 32767]
LIST = re.compile(r"Accepted versions: (\d+(?: to \d+)?(?:(?:, and|,| and) \d+(?: to \d+)?)*)")
KIND_OF = {"LoadOldPart": "part", "LoadOldToolInventory": "tool-inventory", "LoadOldMaterial": "material",
           "LoadOldMachine": "machine", "LoadOldSheet": "sheet"}


def accepted(kind, folder):
    run = subprocess.run([tool, "check", "--kind", kind, "--json", folder], capture_output=True, text=True)
    files = [json.loads(line) for line in run.stdout.splitlines()]
    if len(files) != len(VERSIONS):
        sys.exit(f"{len(files)} of {len(VERSIONS)} files were checked: {run.stderr}")
    return {file["version"] for file in files if file["verdict"] != "refused version"}


def listed(text):
    runs = re.findall(r"(\d+)(?: to (\d+))?", text)
    return {version for first, last in runs for version in VERSIONS if int(first) <= version <= int(last or first)}


places = []  # where, kind, list
for page in sorted((root / "docs" / "formats").glob("*.md")):
    for found in LIST.finditer(" ".join(page.read_text(encoding="utf-8").split())):
        places.append((page.name, page.stem, found[1]))
header = (root / "include" / "OldTorvIO.h").read_text(encoding="utf-8")
for comment, function in re.findall(r"(/\*(?:(?!\*/).)*\*/)\s*[\w *]+[ *](\w+)\(", header, re.DOTALL):
    found = LIST.search(" ".join(re.sub(r"\n \* ?", " ", comment).split()))
    if found:
        places.append(("OldTorvIO.h", KIND_OF[function], found[1]))

wrong = [] if len(places) == 11 else [f"there are {len(places)} lists of versions, not 11"]
with tempfile.TemporaryDirectory() as folder:
    for version in VERSIONS:
        (pathlib.Path(folder) / str(version)).write_bytes(version.to_bytes(2, "little"))
    for where, kind, text in places:
        # The page of parts has the oldest versions in parentheses.
        expected = {version for version in accepted(kind, folder) if version >= 52 or where == "OldTorvIO.h"}
        if listed(text) != expected:
            wrong.append(f"{where}: {kind}: only one of page and load has {sorted(listed(text) ^ expected)}")
sys.exit("\n".join(wrong) if wrong else 0)
