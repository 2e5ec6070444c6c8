#!/usr/bin/env bash
# Makes the files of docs/tasks.md: those of the guide, and the nests of some jobs with a backup of them. Needs jq.
set -euo pipefail
if [ $# != 2 ]; then
  echo 'usage: tasks_files.sh BUILD_FOLDER NEW_FOLDER    (the folder of a finished build)' >&2
  exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
"$here/guide_files.sh" "$build" "$2"
cd "$2"
mkdir -p jobs/tools backup

# nest FILE CHANGE: the nest of the guide with what jq changes in its record.
nest() {
  "$build/bin/torvio" json archive/nests/nest_180.sheet | jq ".record |= ($2)" | "$build/bin/torvio" from-json -o "$1"
}
tp50='.machine.path = "C:\\KESTRADA\\MACHINES\\TP-50.mch" | .machine.displayName = "TP-50 in hall 1"'
nest jobs/4711.sheet .
nest jobs/4712.sheet ".sheetLabel = \"NEST 4712\" | .materialType = \"ALMG3\" | .materialGroup = \"ALUMINIUM\" | $tp50
  | .partList.parts |= .[:6] | .partList.parts[].woNumber = \"WO-7003\" | .utilization = 0.21875"
nest jobs/4713.sheet '.sheetLabel = "NEST 4713" | .width = 60 | .partList.parts |= .[4:10] | .utilization = 0.5625
  | .partList.parts[].woNumber = "WO-7002"'
nest jobs/4714.sheet ".sheetLabel = \"NEST 4714\" | .materialType = \"1.4301\" | .materialGroup = \"STAINLESS\" | $tp50
  | .partList.parts |= .[3:5] | .partList.parts[].woNumber = \"WO-7004\" | .utilization = 0.125
  | .machine.stationsA.tools[36].specialToolPath = \"C:\\\\KESTRADA\\\\SPECTOOL\\\\KeySlot.spt\""
cp archive/tools/*.spt jobs/tools
cp archive/tools/KeySlot.spt jobs/tools/Star.spt

# A nest that is new since then, one that is gone, one that has changed and two that have not.
cp jobs/471[14].sheet backup
nest backup/4710.sheet '.sheetLabel = "NEST 4710"'
"$build/bin/torvio" json jobs/4712.sheet |
  jq '.record.partList.parts[0].patterns[0].gridCount1 = 3 | .record.utilization = 0.25' |
  "$build/bin/torvio" from-json -o backup/4712.sheet
# Nests of several versions.
mkdir old
cp archive/nests/nest_*.sheet archive/tools/KeySlot.spt old
