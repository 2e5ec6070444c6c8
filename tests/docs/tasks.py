"""Runs the tasks of docs/tasks.md in the shell and in Python, and compares what both print and write.

tasks.py BUILD_FOLDER SOURCE_FOLDER [--update] [--python]

Each command of a block ```console must print what the page shows; --update rewrites the page. With --python and the
package in PYTHONPATH, the block ```python of each task must print what the first block of commands does, and write the
same files. Each task is solved in a folder of its own, which examples/tasks_files.sh makes.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

build, root = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
page = root / "docs" / "tasks.md"
SHOWN_FOLDER = "/srv/shop"
TASKS = 10
for program in ("sqlite3", "jq"):
    if shutil.which(program) is None:
        print(f"{program} is not installed, and the tasks use it")
        sys.exit(77)
environment = {**os.environ, "PATH": f"{build / 'bin'}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
failed = []


def commands_in(block):
    """Each command, with the lines that "> " continues it with. Everything else is output."""
    commands, goes_on = [], False
    for line in block.splitlines():
        if line.startswith("$ "):
            commands.append(line[2:])
        elif goes_on and line.startswith("> "):
            commands[-1] += "\n" + line[2:]
        goes_on = line.startswith("$ ") or (goes_on and line.startswith("> "))
    return commands


def run(arguments, folder):
    done = subprocess.run(arguments, cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)
    if done.returncode in (126, 127):
        failed.append(f"{arguments[-1]}: cannot be run")
    return done.stdout.decode().replace(str(folder), SHOWN_FOLDER)


def tree(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


with tempfile.TemporaryDirectory() as scratch:
    scratch = pathlib.Path(scratch).resolve()
    made = scratch / "made"
    done = subprocess.run(["bash", root / "examples/tasks_files.sh", build, made], capture_output=True, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(f"the files of the tasks cannot be made: {done.stderr}")

    def in_new_folder(call):
        """What call(folder) returns, and the files that it made or changed in a copy of the folder."""
        folder = scratch / "shop"
        shutil.copytree(made, folder)
        before = tree(folder)
        try:
            result = call(folder)
            return result, {name: data for name, data in tree(folder).items() if before.get(name) != data}
        finally:
            shutil.rmtree(folder)

    def solved_in_shell(section):
        """The section with what its commands print, the output of the first block, and the files it wrote."""
        def solve(folder):
            outputs = []

            def shown(block):
                printed = [(command, run(["bash", "-c", command], folder)) for command in commands_in(block[1])]
                if not outputs:
                    new_files.update(tree(folder))
                outputs.append("".join(output for _, output in printed))
                return "```console\n" + "".join("$ " + command.replace("\n", "\n> ") + "\n" + output
                                                for command, output in printed) + "```\n"

            new_files = {}
            text = re.sub(r"(?ms)^```console\n(.*?)^```\n", shown, section)
            before = tree(made)
            return text, outputs, {name: data for name, data in new_files.items() if before.get(name) != data}
        return in_new_folder(solve)[0]

    # The catalogue of the introduction is there for all tasks.
    sections = re.split(r"(?m)^(?=## )", page.read_text(encoding="utf-8"))
    for command in commands_in(re.search(r"(?ms)^```console\n(.*?)^```\n", sections[0])[1]):
        if output := run(["bash", "-c", command], made):
            failed.append(f"{command}\nprints {output}")
    new = [sections[0]]
    for section in sections[1:]:
        title = section.splitlines()[0]
        text, outputs, written = solved_in_shell(section)
        new.append(text)
        programs = re.findall(r"(?ms)^```python\n(.*?)^```\n", section)
        if len(programs) != 1 or not outputs or not (outputs[0] or written):
            failed.append(f"{title}: needs a program in Python, and commands that print or write something")
        elif "--python" in sys.argv:
            output, files = in_new_folder(lambda folder: run([sys.executable, "-c", programs[0]], folder))
            if files != written:
                contents = " with other contents" if set(files) == set(written) else ""
                failed.append(f"{title}: the shell writes {sorted(map(str, written))}, Python "
                              f"{sorted(map(str, files))}{contents}")
            # Commands that write files report what they do.
            if output != ("" if written else outputs[0]):
                failed.append(f"{title}: the shell prints\n{outputs[0]}and Python\n{output}")

if len(new) != TASKS + 1:
    failed.append(f"{len(new) - 1} tasks were found, not {TASKS}")
if new != sections and "--update" in sys.argv:
    page.write_text("".join(new), encoding="utf-8")
    print("tasks.md: rewritten")
elif new != sections:
    pairs = zip("".join(sections).splitlines(), "".join(new).splitlines())
    shown, printed = next(((a, b) for a, b in pairs if a != b), ("", "more or less"))
    failed.append(f"the page shows\n  {shown}\nbut the command prints\n  {printed}\n./dev docs rewrites it")
sys.exit("\n".join(failed) if failed else 0)
