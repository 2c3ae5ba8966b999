#!/usr/bin/env bash
# Checks the models of tests/model/ with spin, every state that they can come to: with all rules there
# is no deadlock; without any one of them one is found, or an assertion that is broken.
#
# usage: scripts/check-model.sh [WORD]   only the checks whose line of commands has the word
#
# The last line is "N passed, N failed".
. "$(dirname "$0")/common.sh"

readonly only=${1:-}
readonly models=$PWD/tests/model
readonly place=$PWD/build/checks/model
passed=0
failed=0
rm -rf "$place"
mkdir -p "$place"

# note GOOD TEXT: counts a check and says how it ended.
note() {
  if [ "$1" = yes ]; then
    passed=$((passed + 1))
    echo "ok      $2"
  else
    failed=$((failed + 1))
    echo "FAILED  $2"
  fi
}

# explore LEVEL MODEL [SWITCH...]: leaves what the checker found in "$out". What finds a deadlock does so at
# once: there the compiler would take longer to optimise than the checker to run.
explore() {
  local level=$1 model=$2 folder
  shift
  folder=$place/$(tr ' ' '_' <<<"$*")
  shift
  mkdir -p "$folder"
  out=$folder/out
  (
    cd "$folder"
    { spin -a "${@/#/-D}" "$models/$model.pml" && gcc "$level" -w -DSAFETY -DCOLLAPSE -DVECTORSZ=2048 \
      -DMEMLIM=2048 -o pan pan.c && ./pan -m100000; } >out 2>&1 || true
    rm -f pan pan.?
  )
}

# figure PATTERN: the number that stands before, or after, a text in what the checker found.
figure() { sed -nE "s/$1/\\1/p" "$out" | head -n 1; }

# holds TEXT MODEL [SWITCH...]: every state was seen and none is bad.
holds() {
  local text=$1 good=no
  shift
  [[ " $* " == *"$only"* ]] || return 0
  explore -O1 "$@"
  ! grep -q 'errors: 0$' "$out" || grep -qE 'search depth too small|Search not completed|out of' "$out" ||
    good=yes
  note $good "$* ($text): no deadlock, $(figure ' *([0-9.e+]+) states, stored.*') states, depth $(figure \
    '.*depth reached ([0-9]+), errors.*'), $(figure '.*elapsed time ([0-9.e-]+) seconds') s"
  [ $good = no ] || sed -nE 's/.*"assert\(([0-9]+)\)".*/\1/p' "$out" | sort -u >>"$place/$1.missed"
  echo >>"$place/$1.held"
}

# breaks KIND TEXT MODEL [SWITCH...]: a deadlock, or a broken assertion, is found, as it must be.
breaks() {
  local kind=$1 text=$2 pattern='invalid end state' good=no
  shift 2
  [[ " $* " == *"$only"* ]] || return 0
  [ "$kind" = deadlock ] || pattern='assertion violated'
  explore -O0 "$@"
  ! grep -qE "^pan:1: $pattern" "$out" || good=yes
  note $good "$* ($text): $kind found, as it must be"
}

# all_reached: each place that a model must come to was reached in one of its checks that hold.
all_reached() {
  local file model held number what
  for file in "$models"/*.pml; do
    model=$(basename "$file" .pml)
    [ -e "$place/$model.held" ] || continue
    held=$(wc -l <"$place/$model.held")
    while IFS=$'\t' read -r number what; do
      [ "$(grep -cx "$number" "$place/$model.missed" || true)" -lt "$held" ] ||
        note no "$model: no state where $what"
    done < <(sed -nE 's/.*reached\(([0-9]+), "(.*)"\).*/\1\t\2/p' "$file")
  done
}

command -v spin >/dev/null || fail "there is no spin; scripts/install-dependencies.sh model"
say "checking the models"

holds 'all rules' calls
breaks deadlock 'a lock is held over calls' calls NO_RULE_1
breaks deadlock 'nothing is served while waiting' calls NO_RULE_2
breaks used-by-two 'any chain is served while waiting' calls ANY_CHAIN
breaks deadlock 'who waits keeps his place in the pool' calls NO_RULE_4
breaks deadlock 'two places to park' calls NO_RULE_5

holds 'all rules' registry
holds 'all rules' registry REGISTRY_MULTI
breaks deadlock 'nothing is served while waiting' registry NO_RULE_2
breaks deadlock 'an own executor not started is waited for' registry NO_RULE_8
breaks deadlock 'the initialise of a proxy looks up' registry NO_RULE_9
breaks deadlock 'the registry is asked under proxySem' registry ASK_UNDER_PROXYSEM
breaks deadlock 'the registry is asked under registrySem' registry ASK_UNDER_REGISTRYSEM

holds 'all rules' bringup
holds 'all rules' bringup LAZY_MULTI
breaks deadlock 'nothing is served while waiting' bringup NO_RULE_2
breaks deadlock 'a creation is awaited in the pool' bringup NO_RULE_3 LAZY_MULTI

holds 'all rules' goingdown
holds 'all rules' goingdown WITH_FAR
holds 'all rules' goingdown WITH_TIMER
holds 'all rules' goingdown WITH_OUTSIDE
breaks deadlock 'without the drain' goingdown NO_DRAIN
breaks deadlock 'the drain knows recorded ones only' goingdown DRAIN_RECORDED_ONLY
breaks deadlock 'what begins is counted later' goingdown COUNT_LATER
breaks deadlock 'shutdown waits' goingdown NO_RULE_6_SIGNAL
breaks deadlock 'queued requests get no error' goingdown NO_RULE_6_REFUSE
breaks deadlock 'shutdown does not wake who waits' goingdown NO_RULE_6_WAKE WITH_FAR
breaks used-after-deletion 'neither drain nor destructor waits' goingdown NO_RULE_6_DESTRUCTOR NO_DRAIN
breaks used-after-deletion 'a channel goes under deliveries' goingdown NO_RULE_7 WITH_OUTSIDE
breaks deadlock 'a destructor looks up' goingdown NO_RULE_9
breaks deadlock 'stop waits' goingdown NO_RULE_10
breaks deadlock 'stop calls shutdown()' goingdown STOP_CALLS_SHUTDOWN
breaks begun-too-late 'the bus stays open' goingdown OPEN_TO_OUTSIDE WITH_OUTSIDE
breaks used-after-deletion 'proxies go before services' goingdown PROXIES_FIRST

holds 'all rules' hosts
breaks deadlock 'nobody kills a host that hangs' hosts NO_KILL
breaks deadlock 'a lost connection tells nobody' hosts NO_CONNECTION_END
breaks used-after-end 'the started host ends first' hosts CHILDREN_FIRST

holds 'with the reply time-out' crossing REPLY_TIMEOUT
holds 'with the reply time-out' crossing REPLY_TIMEOUT CALLED_IN_INIT
breaks deadlock 'without the reply time-out' crossing
breaks deadlock 'without the reply time-out' crossing CALLED_IN_INIT

[ -n "$only" ] || all_reached
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
