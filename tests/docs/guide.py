"""Checks that each command in README.md and docs/*.md prints what the page shows. With --update the pages are rewritten.

guide.py BUILD_FOLDER SOURCE_FOLDER [--update]

A block ```console has commands after "$ ", which "> " continues, and what they print. Those of a page run one after the
other in a folder that examples/guide_files.sh makes. The pages call this folder /srv/shop.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

build, root = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
update = sys.argv[3:] == ["--update"]
SHOWN_FOLDER = "/srv/shop"
if shutil.which("sqlite3") is None:
    print("sqlite3 is not installed, and the pages use it")
    sys.exit(77)


def has_files_of_its_own(text):
    """Whether a page works on the files of another script. Such a page has a test of its own."""
    return re.search(r"(?m)^examples/(?!guide_files)\w+_files\.sh build", text)


def goes_on(command):
    """Whether the next line belongs to the command."""
    return command.endswith("\\") or subprocess.run(["bash", "-n", "-c", command], capture_output=True).returncode != 0


def commands_in(block):
    """[["torvio check \\", "  archive"], ...]: the lines of each command."""
    commands = []
    for line in block.splitlines():
        if line.startswith("$ "):
            commands.append([line[2:]])
        elif line.startswith("> ") and commands and goes_on("\n".join(commands[-1])):
            commands[-1].append(line[2:])
    return commands


def compared(page):
    """Runs the commands of a page and compares what they print with what it shows: [what is wrong, ...]"""
    failed, old, code = [], page.read_text(encoding="utf-8"), 0
    if "\n```console\n" not in old or has_files_of_its_own(old):
        return []
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve() / "shop"
        made = subprocess.run(["bash", str(root / "examples" / "guide_files.sh"), str(build), str(folder)],
                              capture_output=True, text=True)
        if made.returncode != 0:
            sys.exit(f"the files of the pages cannot be made: {made.stderr}")
        environment = dict(os.environ, PATH=f"{build / 'bin'}:{root / 'examples'}:{os.environ['PATH']}",
                           LC_ALL="C.UTF-8")
        environment.pop("OLDPWD", None)

        def run(command):
            """What a terminal would show."""
            nonlocal code
            text = "\n".join(command)
            # The command may ask for the exit code of the one before.
            ran = subprocess.run(["bash", "-c", f"(exit {code})\n{text}"], cwd=folder, env=environment,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            code = ran.returncode
            if code in (126, 127):
                failed.append(f"{text}: cannot be run")
            return ran.stdout.decode("utf-8").replace(str(folder), SHOWN_FOLDER)

        def shown(found):
            text = "```console\n"
            for command in commands_in(found[1]):
                text += "$ " + "\n> ".join(command) + "\n" + run(command)
            return text + "```\n"

        new = re.sub(r"(?ms)^```console\n(.*?)^```\n", shown, old)
    name = page.relative_to(root)
    if update and new != old:
        page.write_text(new, encoding="utf-8")
        print(f"{name}: rewritten")
    elif new != old:
        for before, after in zip(old.splitlines(), new.splitlines()):
            if before != after:
                failed.append(f"{name} shows\n  {before}\nbut the command prints\n  {after}\n./dev docs rewrites it")
                break
        else:
            failed.append(f"{name}: a command prints more or less than it shows; ./dev docs rewrites it")
    return failed


pages = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
wrong = [one for page in pages for one in compared(page)]
if len(re.findall(r"(?m)^\$ torvio ", (root / "docs" / "guide.md").read_text(encoding="utf-8"))) < 15:
    wrong.append("the guide has hardly any command: the pattern does not match any more")
sys.exit("\n".join(wrong) if wrong else 0)
