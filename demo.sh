#!/usr/bin/env bash
# Installs what is missing, builds the 32-bit system and shows it at work: a small weather station of
# two processes comes up, its services find and call each other for a few seconds, and it goes down.
#
# The last line tells what there was; the exit code is 0 when nothing failed and nothing is left
# running. Ctrl-C ends the services in order.
. "$(dirname "$0")/scripts/common.sh"

readonly zerva=build/linux32/bin/zerva
readonly directives=examples/demo.directives
# Between two beats of the services, so that the end comes into no call.
readonly seconds=5.5

scripts/install-dependencies.sh demo
scripts/build.sh --no-tests linux32 zerva zerva_examples

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkfifo "$work/pipe"

# Every process that comes from this run has this in its environment, and so can be found again.
export ZERVA_DEMO="$$.$work"
# Where the programs are that the directives start.
export PATH="$PWD/build/linux32/bin:$PATH"
# The processes of this run have a bus of their own, whatever else is there.
unset ZERVA_BUS

# of_this_run: the ids of the processes of this run that are there now.
of_this_run() {
  local folder
  for folder in /proc/[0-9]*; do
    if { tr '\0' '\n' <"$folder/environ"; } 2>/dev/null | grep -qxF "ZERVA_DEMO=$ZERVA_DEMO"; then
      echo "${folder#/proc/}"
    fi
  done
}

# A signal that comes before there is a host ends it as soon as it is there.
host='' ending=''
trap 'ending=1; [ -z "$host" ] || kill -TERM "$host" 2>/dev/null || true' INT TERM HUP

say "$zerva run --for $seconds $directives"
# Each in a process group of its own: Ctrl-C then comes to this script only, which passes it on once.
set -m
(
  unset ZERVA_DEMO
  exec tee "$work/output" <"$work/pipe"
) &
reader=$!
"$zerva" run --for "$seconds" "$directives" >"$work/pipe" 2>&1 </dev/null &
host=$!
set +m
[ -z "$ending" ] || kill -TERM "$host"

# A signal ends the wait, not what is waited for.
wait "$host" || true
while kill -0 "$host" 2>/dev/null; do wait "$host" || true; done
code=0
wait "$host" || code=$?

left=$(of_this_run)
for id in $left; do
  echo "still there: $id $(tr '\0' ' ' <"/proc/$id/cmdline" || true)"
  kill -KILL "$id" 2>/dev/null || true
done
wait "$reader" || true

# The figures are those that the hosts told, the started one among them; its start was counted by the
# one that started it. A host that did not come to that has not gone down.
figures=$(sed -nE 's/^zerva: ([0-9]+) services? and ([0-9]+) started process(es)? came up and went down, ([0-9]+) calls?, ([0-9]+) failures?$/\1 \2 \4 \5/p' \
  "$work/output" | awk '{ s += $1; p += $2; c += $3; f += $4 } END { if (NR) print s, p + 1, c, f, NR }')
read -r services processes calls failures hosts <<<"$figures" || true
started=$(grep -c '^zerva: starts ' "$work/output" || true)

if [ "$code" -ne 0 ]; then
  echo "demo: failed, zerva ended with exit code $code"
elif [ -n "$left" ]; then
  echo "demo: failed, something was still running at the end"
elif [ -z "$figures" ] || [ "$hosts" -lt "$started" ]; then
  echo "demo: failed, not everything that came up went down"
else
  echo "demo: $services services in $processes processes came up and went down, $calls calls," \
    "$failures failures"
  [ "$failures" -eq 0 ] && exit 0
fi
exit 1
