"""Checks that each command of docs/guide.md prints what the guide shows. With --update the guide is rewritten.

guide.py BUILD_FOLDER SOURCE_FOLDER [--update]

A block ```console has commands after "$ ", which "> " continues, and what they print. All run one after the other in a
folder that examples/guide_files.sh makes. The guide calls this folder /srv/shop.
"""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

build, root = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
update = sys.argv[3:] == ["--update"]
guide = root / "docs" / "guide.md"
old = guide.read_text(encoding="utf-8")
SHOWN_FOLDER = "/srv/shop"
if shutil.which("sqlite3") is None:
    print("sqlite3 is not installed, and the guide uses it")
    sys.exit(77)


def goes_on(command):
    """Whether the next line belongs to the command."""
    try:
        shlex.split(command)
        return command.endswith("\\")
    except ValueError:
        return True


def commands_in(block):
    """[["torvio check \\", "  archive"], ...]: the lines of each command."""
    commands = []
    for line in block.splitlines():
        if line.startswith("$ "):
            commands.append([line[2:]])
        elif line.startswith("> ") and commands and goes_on("\n".join(commands[-1])):
            commands[-1].append(line[2:])
    return commands


failed = []
with tempfile.TemporaryDirectory() as scratch:
    folder = pathlib.Path(scratch).resolve() / "shop"
    made = subprocess.run(["bash", str(root / "examples" / "guide_files.sh"), str(build), str(folder)],
                          capture_output=True, text=True)
    if made.returncode != 0:
        sys.exit(f"the files of the guide cannot be made: {made.stderr}")
    environment = dict(os.environ, PATH=f"{build / 'bin'}:{os.environ['PATH']}", LC_ALL="C.UTF-8")
    environment.pop("OLDPWD", None)
    code = 0

    def run(command):
        """What a terminal would show."""
        global code
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

if len(re.findall(r"(?m)^\$ torvio ", old)) < 15:
    failed.append("the guide has hardly any command: the pattern does not match any more")
if update and new != old:
    guide.write_text(new, encoding="utf-8")
    print("guide.md: rewritten")
elif new != old:
    for before, after in zip(old.splitlines(), new.splitlines()):
        if before != after:
            failed.append(f"the guide shows\n  {before}\nbut the command prints\n  {after}\n./dev docs rewrites it")
            break
    else:
        failed.append("a command prints more or less than the guide shows; ./dev docs rewrites it")
sys.exit("\n".join(failed) if failed else 0)
