#!/usr/bin/env bash
# Shows the library at work. Takes the folder of a finished build.
set -euo pipefail
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The folder of special tools is a setting of this demo alone.
export XDG_CONFIG_HOME=$work/config XDG_CONFIG_DIRS=$work/none
mkdir -p "$work/config/OldTorvIO" "$work/files"
printf '[Kestrada64bit]\nZRK_DEFAULT_SPECIAL_TOOL_PATH=%s/\n' "$work/files" >"$work/config/OldTorvIO/win.ini"

echo '== samples: two special tools and a group part file'
"$build/examples/make_samples" "$work/files"
echo '== a C program builds, saves and asks'
"$build/examples/example_demo" "$work/files"
echo '== a Python program does the same, and reads the samples'
python3 "$here/demo.py" "$build/libOldTorvIO.so" "$work/files"
cd "$work/files"
echo '== torvio check'
"$build/tools/torvio" check ./*
echo '== torvio map cover_62.part'
"$build/tools/torvio" map cover_62.part
