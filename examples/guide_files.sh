#!/usr/bin/env bash
# Makes the files on which the commands in docs/ work: an archive of nests, parts, machines, tools and materials.
set -euo pipefail
if [ $# != 2 ]; then
  echo 'usage: guide_files.sh BUILD_FOLDER NEW_FOLDER    (the folder of a finished build)' >&2
  exit 2
fi
build=$(cd "$1" && pwd)
mkdir -p "$2/archive"/{nests,parts,machines,tools,materials}
cd "$2"
mkdir made
"$build/examples/example_nest" made >/dev/null
"$build/examples/make_samples" made
mv made/nest_*.sheet archive/nests
mv made/brackets.group made/old.part archive/parts
mv made/punch.mch archive/machines
mv made/*.spt made/shop.inv made/tab.mac archive/tools
mv made/*.mat archive/materials
rmdir made
# A copy that stopped early, a file that is something else, and a file whose name says nothing.
head -c 60000 archive/nests/nest_180.sheet >archive/nests/copy.sheet
echo 'Nests of 2009, from the old office computer.' >archive/notes.txt
cp archive/parts/brackets.group mystery.dat
