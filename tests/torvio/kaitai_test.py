"""Readers that Kaitai Struct makes of `torvio format KIND --as kaitai` read what `torvio map` shows.

Writes a sound file of every kind and version and compares with tests/torvio/kaitai_compare.mjs. Needs Node.js and three
npm packages, which are installed into the scratch folder once; without them the test is skipped with the reason.
--short compares two versions of each kind.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys

SKIPPED = 77
PACKAGES = ["kaitai-struct-compiler@0.11.0", "kaitai-struct@0.11.0", "yaml@2"]


def skip(reason):
    print("SKIP:", reason)
    sys.exit(SKIPPED)


def install(modules):
    """The npm packages, or a skipped test."""
    wanted = [modules / "node_modules" / package.split("@")[0] for package in PACKAGES]
    if all(folder.is_dir() for folder in wanted):
        return
    npm = shutil.which("npm")
    if npm is None:
        skip("no npm, and the packages are not installed")
    modules.mkdir(parents=True, exist_ok=True)
    command = [npm, "install", "--no-audit", "--no-fund", "--no-save", "--prefix", str(modules), *PACKAGES]
    try:
        done = subprocess.run(command, capture_output=True, text=True, timeout=120)
    except subprocess.TimeoutExpired:
        skip("npm did not answer in 120 seconds")
    if done.returncode != 0:
        skip("npm cannot install " + ", ".join(PACKAGES) + ": " + done.stderr.strip()[-300:])


def shorten(folder):
    """Keeps the oldest and the newest file of each kind."""
    kinds = {}
    for path in folder.glob("*.bin"):
        kind, version = re.fullmatch(r"(.+?)_(\d+)(?:_[a-z]+)?\.bin", path.name).groups()
        kinds.setdefault(kind, []).append((int(version), path))
    for files in kinds.values():
        for _, path in sorted(files)[1:-1]:
            path.unlink()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--torvio", required=True)
    parser.add_argument("--files", required=True, help="the program that writes a file of every kind and version")
    parser.add_argument("--scratch", required=True, type=pathlib.Path)
    parser.add_argument("--modules", type=pathlib.Path, help="where the npm packages are or go")
    parser.add_argument("--short", action="store_true")
    options = parser.parse_args()

    node = shutil.which("node")
    if node is None:
        skip("no Node.js")
    modules = options.modules or options.scratch / "npm"
    install(modules)
    folder = options.scratch / "files"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    subprocess.run([options.files, str(folder)], check=True)
    if options.short:
        shorten(folder)
    script = pathlib.Path(__file__).with_name("kaitai_compare.mjs")
    sys.exit(subprocess.run([node, str(script), options.torvio, str(modules), str(folder)]).returncode)


if __name__ == "__main__":
    main()
