"""docs/calling.md shows the examples verbatim: each job in each language, and what the examples print.

usage: snippets.py SOURCE_FOLDER

A line <!-- FILE --> comes before each piece of code. The code is in that file, perhaps indented. The table of methods
in docs/bindings.md is made from bindings/functions.json.
"""
import collections
import json
import pathlib
import re
import sys
import textwrap

LANGUAGES = {"c": "bindings/c/example.c", "cpp": "bindings/cpp/example.cpp", "python": "bindings/ctypes/example.py",
             "csharp": "bindings/csharp/Example.cs", "pascal": "bindings/pascal/example.pas",
             "js": "bindings/node/example.js", "text": "tests/bindings/example.txt"}
JOBS = 4


def contains(lines, piece):
    """Whether the lines of the piece follow each other in the file, all with the same indentation."""
    for at in range(len(lines) - len(piece) + 1):
        window = textwrap.dedent("\n".join(lines[at:at + len(piece)])).split("\n")
        if window == piece:
            return True
    return False


def method_rows(root):
    table = json.loads((root / "bindings" / "functions.json").read_text(encoding="utf-8"))
    functions = collections.defaultdict(list)
    for library in table["libraries"]:
        for function in library["functions"]:
            if "method" in function:
                functions[function["method"]].append(f"`{function['name']}`")
    return "\n".join(["| class and method | functions |", "|---|---|",
                      *[f"| `{method}` | {', '.join(names)} |" for method, names in functions.items()]])


def main():
    root = pathlib.Path(sys.argv[1])
    page = (root / "docs" / "calling.md").read_text(encoding="utf-8")
    classes = (root / "docs" / "bindings.md").read_text(encoding="utf-8")
    wrong, found = [], collections.Counter()
    for name, language, code in re.findall(r"<!-- (\S+) -->\n```(\w+)\n(.*?)\n```", page, re.S):
        found[language] += 1
        if LANGUAGES.get(language) != name:
            wrong.append(f"{name} is not an example in {language}")
        elif not contains((root / name).read_text(encoding="utf-8").split("\n"), code.split("\n")):
            wrong.append(f"docs/calling.md differs from {name}: {code.splitlines()[0]}")
    wrong += [f"docs/calling.md has {found[one]} pieces of code in {one}, not {JOBS}" for one in LANGUAGES
              if found[one] != JOBS]
    rows = re.search(r"<!-- methods -->\n(.*?)\n<!-- end -->", classes, re.S)
    if not rows or rows[1] != method_rows(root):
        wrong.append("the methods of docs/bindings.md are not those of bindings/functions.json; they should be:\n"
                     + method_rows(root))
    plain = re.findall(r"(?<! -->\n)```(c|cpp|python|csharp|pascal|js)\n", page)
    wrong += [f"docs/calling.md has code in {one} that is from no example" for one in plain]
    print("\n".join(wrong) or f"{sum(found.values())} pieces of code")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
