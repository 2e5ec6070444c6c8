"""Checks that the tables of docs/formats/ are the output of `torvio format`. With --update the pages are rewritten.

A block begins with <!-- format NAME --> and ends with <!-- end -->.
"""
import pathlib
import re
import subprocess
import sys

tool, root = sys.argv[1:3]
update = sys.argv[3:] == ["--update"]
block = re.compile(r"(<!-- format (\S+) -->\n).*?(<!-- end -->\n)", re.DOTALL)
# Records whose rows are in the table of a file.
WITHIN = {"material-body"}


def printed(name):
    run = subprocess.run([tool, "format", name], capture_output=True, text=True, encoding="utf-8")
    return run.stdout if run.returncode == 0 else sys.exit(f"torvio has no format {name}")


documented, wrong = set(), []
for page in sorted((pathlib.Path(root) / "docs" / "formats").glob("*.md")):
    old = page.read_text(encoding="utf-8")
    new = block.sub(lambda found: found[1] + printed(found[2]) + found[3], old)
    documented.update(name for _, name, _ in block.findall(old))
    if len(block.findall(old)) != old.count("<!-- format"):
        wrong.append(f"{page.name}: a block has no end of its own")
    elif old == new:
        continue
    elif update:
        page.write_text(new, encoding="utf-8")
        print(f"{page.name}: rewritten")
    else:
        wrong.append(f"{page.name}: its tables differ from the output of torvio format; ./dev docs rewrites them")
listed = subprocess.run([tool, "format", "--help"], capture_output=True, text=True, encoding="utf-8").stdout
names = re.findall(r"[a-z][a-z0-9-]*", " ".join(re.findall(r"(?s)(?:Kinds|Records):(.*?)\n\n", listed)))
if len(names) < 20:
    wrong.append(f"torvio format --help lists only {names}")
for name in names:
    if name not in documented and name not in WITHIN:
        wrong.append(f"no page has the format of {name}")
sys.exit("\n".join(wrong) if wrong else 0)
