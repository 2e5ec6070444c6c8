#!/usr/bin/env bash
# Shows the library at work.
set -euo pipefail
if [ $# != 1 ]; then
  echo 'usage: demo.sh BUILD_FOLDER    (the folder of a finished build)' >&2
  exit 2
fi
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The demo has a setting of its own for the folder of special tools.
export XDG_CONFIG_HOME=$work/config XDG_CONFIG_DIRS=$work/none
mkdir -p "$work/config/OldTorvIO" "$work/files"
printf '[Kestrada64bit]\nZRK_DEFAULT_SPECIAL_TOOL_PATH=%s/\n' "$work/files" >"$work/config/OldTorvIO/win.ini"

echo '== a C++ program creates a nest: a plate, 12 parts in 60 placements, a machine with 40 stations'
"$build/examples/example_nest" "$work/files"
echo '== samples: special tools, a group part file, a machine, materials, an inventory, a macro, a part of version 5'
"$build/examples/make_samples" "$work/files"
echo '== a C program builds and saves parts, and queries them, the machine and the inventory'
"$build/examples/example_demo" "$work/files"
echo '== a C program calls every query on the nest, edits copies of it and queries them'
"$build/examples/example_nest_demo" "$work/files"
echo '== a Python program does the same and reads the samples'
python3 "$here/demo.py" "$build/libOldTorvIO.so" "$work/files"
echo '== a C++ program loads a material, a macro and the part of version 5 into records'
"$build/examples/example_records" "$work/files"
cd "$work/files"
echo '== torvio check: all files, and last the sheet of version 112 that an edit made unreadable'
mkdir ../apart
mv edited_112.sheet ../apart
"$build/bin/torvio" check ./*
damaged=0
"$build/bin/torvio" check --kind sheet ../apart/edited_112.sheet || damaged=$?
[ "$damaged" = 1 ]
echo '== torvio info brackets.group'
"$build/bin/torvio" info brackets.group
echo '== torvio draw: the nest as SVG, and a page with pictures of all that can be drawn'
"$build/bin/torvio" draw nest_180.sheet -o ../nest.svg
"$build/bin/torvio" draw nest_180.sheet brackets.group punch.mch old.part -o ../pictures.html
wc -c ../nest.svg ../pictures.html
echo '== torvio map tab.mac'
"$build/bin/torvio" map tab.mac
echo '== torvio map nest_180.sheet'
"$build/bin/torvio" map nest_180.sheet >../nest.map
head -n 40 ../nest.map
echo "... and $(($(wc -l <../nest.map) - 40)) more lines"
