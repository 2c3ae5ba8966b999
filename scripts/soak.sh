#!/usr/bin/env bash
# Starts and stops the demo's processes many times, in chunks of 1,000 in one process.
#
# usage: scripts/soak.sh [LIVES]
#
# LIVES is 10,000 if not given. What each chunk held at its beginning and at its end is kept in
# build/soak.log; ended in the middle and called again it goes on behind the last whole chunk, and
# begins anew when there are as many lives as wanted.
#
# The last line is "soak: N lives, nothing left behind"; it fails at the first chunk that leaves
# something.
. "$(dirname "$0")/common.sh"

readonly wanted=${1:-10000} chunk=1000 log=build/soak.log
[[ $wanted =~ ^[1-9][0-9]*$ ]] || fail "usage: scripts/soak.sh [LIVES]"

# lived: how many lives the whole chunks in the log had.
lived() { { grep -c '^whole' "$log" || true; } | awk -v chunk=$chunk '{ print $1 * chunk }'; }

scripts/build.sh linux32 zerva_soak
touch "$log"
[ "$(lived)" -lt "$wanted" ] || : >"$log"
while [ "$(lived)" -lt "$wanted" ]; do
  say "soak: $(lived) of $wanted lives"
  figures=$(build/linux32/bin/zerva_soak $chunk 2>&1 </dev/null | tee build/soak-chunk.log |
    grep '^after cycle ') || fail "a chunk left something, see build/soak-chunk.log"
  commit=$(git rev-parse --short HEAD 2>/dev/null || echo "no commit")
  printf 'chunk at %s\n%s\nwhole\n' "$commit" "$figures" >>"$log"
done
cat "$log"
say "soak: $(lived) lives, nothing left behind"
