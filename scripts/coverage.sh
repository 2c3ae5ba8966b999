#!/usr/bin/env bash
# Tells how much of the product the tests of the preset coverage have reached, and whether that is
# enough. They have been built and run before.
#
# usage: scripts/coverage.sh
#
# Counted are the lines and the branches that are there in the source; edges that only an exception
# takes, or that the compiler has added, are left out. Below the limits the exit code is 1. Which
# lines and branches were not reached is in build/coverage, in lines-*.txt and branches-*.txt.
. "$(dirname "$0")/common.sh"

readonly directory=build/coverage
readonly counts=$directory/counts.json

# figures NAME FOLDER...: prints the table of some folders, and sets lines and branches.
figures() {
  local name=$1 filters=() folder summary=$directory/summary-$1.json
  shift
  for folder; do filters+=(--filter "$folder/"); done
  say "coverage of $*"
  gcovr --root . --add-tracefile "$counts" "${filters[@]}" --json-summary "$summary" \
    --txt-metric line --txt "$directory/lines-$name.txt"
  gcovr --root . --add-tracefile "$counts" "${filters[@]}" \
    --txt-metric branch --txt "$directory/branches-$name.txt"
  python3 - "$summary" <<'PYTHON'
import json, sys

rows = [(f["filename"], f["line_percent"], f["branch_percent"], f["branch_total"])
        for f in json.load(open(sys.argv[1]))["files"]]
width = max(len(name) for name, *_ in rows)
for name, lines, branches, total in rows:
    told = f"branches {branches:5.1f} %" if total else "no branches"
    print(f"{name:{width}}  lines {lines:5.1f} %  {told}")
PYTHON
  read -r lines branches < <(python3 -c '
import json, sys
summary = json.load(open(sys.argv[1]))
print(summary["line_percent"], summary["branch_percent"])' "$summary")
}

# at_least FIGURE LIMIT
at_least() { awk -v figure="$1" -v limit="$2" 'BEGIN { exit !(figure >= limit) }'; }

gcovr --root . "$directory" -j "$(nproc)" --exclude-throw-branches --exclude-unreachable-branches \
  --filter 'src/' --filter 'include/' --filter 'runtime/' --filter 'registry/' --filter 'host/' \
  --json "$counts"
figures src src include
src_lines=$lines src_branches=$branches
figures rest runtime registry host
echo "coverage: src $src_lines% lines $src_branches% branches, rest $lines% lines $branches% branches"
at_least "$src_lines" 98 && at_least "$src_branches" 95 && at_least "$lines" 90 &&
  at_least "$branches" 85
