"""README shows the example programs word for word."""
import pathlib
import sys

root = pathlib.Path(sys.argv[1])
readme = (root / "README.md").read_text()
missing = [name for name in ("readme.c", "readme.py") if (root / "examples" / name).read_text() not in readme]
sys.exit("README differs from examples/" + ", ".join(missing) if missing else 0)
