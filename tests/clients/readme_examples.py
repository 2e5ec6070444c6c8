"""README shows the example programs verbatim, and docs/quirks.md names tests that exist."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
readme = (root / "README.md").read_text()
wrong = ["README differs from examples/" + name
         for name in ("readme.c", "readme.py", "readme_sheet.py")
         if (root / "examples" / name).read_text() not in readme]

tests = "".join(path.read_text() for path in (root / "tests").rglob("*_test.cpp"))
existing = {".".join(names) for names in re.findall(r"\bTEST(?:_F|_P)?\((\w+),\s*(\w+)\)", tests)}
named = re.findall(r"`(\w+)\.(\w+|\*)`", (root / "docs" / "quirks.md").read_text())
wrong += [f"docs/quirks.md names {suite}.{test}, which does not exist" for suite, test in named
          if not any(one.startswith(suite + ".") and test in ("*", one.split(".")[1]) for one in existing)]
wrong += [] if len(named) > 20 else ["docs/quirks.md names hardly any test: the pattern does not match any more"]
sys.exit("\n".join(wrong) if wrong else 0)
