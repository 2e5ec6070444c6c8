"""Checks that every code block of the documentation is run or checked by a test: blocks.py TORVIO SOURCE_FOLDER

Blocks ```console of README.md and docs/*.md are run by guide.py. Any other has to be listed in blocks.txt, with what
checks it.
"""
import json
import pathlib
import re
import subprocess
import sys

tool, root = sys.argv[1], pathlib.Path(sys.argv[2])
pages = [root / name for name in ("README.md", "HACKING.md", "CHANGELOG.md")] + sorted((root / "docs").rglob("*.md"))
# guide.py leaves out pages that work on the files of another script.
run_by_guide = [page for page in [root / "README.md", *(root / "docs").glob("*.md")]
                if not re.search(r"(?m)^examples/(?!guide_files)\w+_files\.sh build", page.read_text(encoding="utf-8"))]
listed = [[cell.strip() for cell in line.split("|", 3)]
          for line in (root / "tests/docs/blocks.txt").read_text(encoding="utf-8").splitlines()
          if line and not line.startswith("#")]
wrong = [f"blocks.txt: a line has not four columns: {line}" for line in listed if len(line) != 4]
used, count = set(), 0
for page in pages:
    name, lines, inside = str(page.relative_to(root)), page.read_text(encoding="utf-8").split("\n"), False
    for number, line in enumerate(lines):
        fence = re.match(r"^ *```(\w*)$", line)
        inside = bool(fence) != inside
        if not fence or not inside:
            continue
        count += 1
        language, first = fence[1], lines[number + 1].strip()
        if language == "console" and page in run_by_guide and first.startswith("$ "):
            continue
        matches = [at for at, (of_page, of_language, begin, _) in enumerate(listed)
                   if (of_page, of_language) == (name, language) and (begin == "*" or first.startswith(begin))]
        used.update(matches)
        if not matches:
            wrong.append(f"{name}:{number + 1}: no test runs this block, and tests/docs/blocks.txt does not list it: {first}")
wrong += [f"blocks.txt lists a block that does not exist: {' | '.join(line[:3])}"
          for at, line in enumerate(listed) if at not in used]

# The document that json.md shows has the members of a real one, in their order.
shown = json.loads(re.search(r"```json\n(.*?)\n```", (root / "docs/json.md").read_text(encoding="utf-8"), re.S)[1])
schema = json.loads(subprocess.run([tool, "schema", shown["kind"]], capture_output=True, check=True).stdout)
if list(shown) != schema["required"]:
    wrong.append(f"docs/json.md shows the members {list(shown)}, but a document has {schema['required']}")
print("\n".join(wrong) or f"{count} blocks")
sys.exit(1 if wrong else 0)
