#!/usr/bin/env bash
# Converts one file of an archive, and keeps the report. docs/archive.md shows how it is used.
set -euo pipefail
if [ $# -lt 4 ]; then
  echo 'usage: convert_file.sh VERSION FROM TO [OPTION ...] FILE

FILE is in the folder FROM. The new file gets the same name in the folder TO, and its report, one JSON object, the same
name and ".json" in TO.reports. A file that is older than its report is skipped, so that a run that was interrupted
continues where it stopped; with --allow-loss it is converted again. If a file is refused, a result of an earlier run
is removed from TO. The options are those of torvio convert.' >&2
  exit 2
fi
version=$1 from=${2%/} to=${3%/} file=${*: -1}
options=("${@:4:$#-4}")
name=${file#"$from"/}
if [ "$name" = "$file" ]; then
  echo "convert_file.sh: $file is not in $from" >&2
  exit 2
fi
new=$to/$name report=$to.reports/$name.json
if [[ " ${options[*]} " != *" --allow-loss "* && $report -nt $file ]]; then exit 0; fi
mkdir -p "$(dirname "$new")" "$(dirname "$report")"
code=0
torvio convert "$file" "$new" --version "$version" --json "${options[@]}" >"$report.new" 2>/dev/null || code=$?
# Why a file is refused is in its report. A file that was converted has one.
trouble=
if [ "$code" -gt 1 ]; then trouble="ended with $code"; fi
if [[ $code = 0 && ! -s $report.new ]]; then trouble='printed no report' code=3; fi
if [ -n "$trouble" ]; then
  rm -f "$report.new"
  echo "convert_file.sh: $file: torvio convert $trouble" >&2
  exit "$code"
fi
# The result of what the file was before.
if [[ $code = 1 && " ${options[*]} " != *" --dry-run "* ]]; then rm -f "$new"; fi
# A file of unknown kind has no report.
if [ -s "$report.new" ]; then mv "$report.new" "$report"; else rm -f "$report.new" "$report"; fi
