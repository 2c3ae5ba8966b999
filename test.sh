#!/usr/bin/env bash
# Installs what is missing, builds both word sizes and runs every check and every test.
#
# usage: ./test.sh            everything
#        ./test.sh PRESET     one preset: linux32 linux64 asan32 asan64 tsan64
#        ./test.sh faults     the long form of the tests with faults: every allocation fails once
#        ./test.sh coverage   the tests once more, and how much of the product they reach
#        ./test.sh checks     only the checks that come first: format, headers, rules, tidy
#        ./test.sh tidy       only clang-tidy
#        ./test.sh model      only the models of the locks and of going down, with a model checker
#        ./test.sh format     rewrites every C++ file as clang-format has it
#        ./test.sh mutation   plants faults in src/, one at a time, and tells which no test notices;
#                             [--only PATTERN] plants those whose place or text matches, [--list]
#                             lists them, [--survivors] goes on after a change of the tests
#        ./test.sh fuzz [SECONDS]
#                             the fuzz targets, 60 seconds each if not said otherwise; the last line
#                             counts them. scripts/fuzz.sh runs single ones
#        ./test.sh soak [LIVES]
#                             starts and stops the demo's processes, 10,000 times if not said
#                             otherwise; called again after it was ended it goes on
#        ./test.sh help       this text
#
# The last line is "N passed, N failed", counted over all presets that were run; the exit code is 0
# when something passed and nothing failed. A test that is skipped or cannot be run has failed. That
# of "mutation" is "mutation: N of M noticed"; its exit code is 0 when every other fault is known to
# change nothing. That of "coverage" is
# "coverage: src L% lines B% branches, rest L% lines B% branches"; its exit code is 0 when that is
# enough and every test has passed.
. "$(dirname "$0")/scripts/common.sh"

passed=0
failed=0

# finish: the last line.
finish() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
}

# run_preset NAME: builds it, runs its tests and adds them to the figures.
run_preset() {
  local results=$PWD/build/$1/test-results.xml code=0 all=0 good=0
  # Hosts of both word sizes are tested together, from the 64-bit side.
  if { [ "$1" = linux64 ] && ! scripts/build.sh linux32 zerva zerva_examples zerva_plugins ServiceRegistry; } ||
    ! scripts/build.sh "$1"; then
    failed=$((failed + 1))
    return
  fi
  rm -f "$results"
  say "$1: testing"
  # Of ctest's lines only those about tests that did not pass are of interest.
  ctest --preset "$1" --parallel "$(nproc)" --no-tests=error --output-junit "$results" \
    </dev/null 2>&1 | { grep --line-buffered -vE \
    '^ *Start +[0-9]+: |Passed +[0-9.]+ sec *$|^Test project |^Preset |^ *$|^Total Test time|^Label Time Summary|sec\*proc ' ||
    true; } || code=$?
  if [ -e "$results" ]; then
    all=$(grep -cE '^[[:space:]]*<testcase ' "$results" || true)
    good=$(grep -cE '^[[:space:]]*<testcase .* status="run"' "$results" || true)
  fi
  # No test at all is a failure, and so is whatever else ctest complains of.
  [ "$all" -gt 0 ] || all=1
  [ "$code" -eq 0 ] || [ "$all" -gt "$good" ] || failed=$((failed + 1))
  passed=$((passed + good))
  failed=$((failed + all - good))
}

# run_checks: the cheap ones first; nothing else is run when one of them fails.
run_checks() {
  local check
  for check in format headers sources tidy; do
    if ! "scripts/check-$check.sh"; then
      failed=$((failed + 1))
      say "stopped at check-$check; no test was run"
      finish || exit 1
    fi
  done
}

verb=${1:-all}
[ $# -le 1 ] || [ "$verb" = mutation ] || { [[ $verb = fuzz || $verb = soak ]] && [ $# -eq 2 ]; } ||
  verb=help
case "$verb" in
  all)
    scripts/install-dependencies.sh test
    run_checks
    for preset in linux32 linux64 asan32 tsan64; do run_preset "$preset"; done
    finish
    ;;
  linux32 | linux64 | asan32 | asan64 | tsan64)
    scripts/install-dependencies.sh test
    run_preset "$verb"
    finish
    ;;
  faults)
    scripts/install-dependencies.sh test
    scripts/build.sh linux32 faults_test
    ZERVA_FAULTS=all ZERVA_TEST_SECONDS=36000 build/linux32/bin/faults_test
    ;;
  coverage)
    scripts/install-dependencies.sh test
    # What earlier runs have counted is not of these sources.
    find build/coverage -name '*.gcda' -delete 2>/dev/null || true
    run_preset coverage
    code=0
    finish || code=1
    # Also after a failure, since that is when it is asked what the tests have reached.
    PYTHONDONTWRITEBYTECODE=1 python3 scripts/coverage || code=1
    exit "$code"
    ;;
  checks)
    scripts/install-dependencies.sh test
    for check in format headers sources tidy; do "scripts/check-$check.sh"; done
    ;;
  tidy)
    scripts/install-dependencies.sh test
    scripts/check-tidy.sh
    ;;
  model)
    scripts/install-dependencies.sh model
    scripts/check-model.sh
    ;;
  format)
    scripts/install-dependencies.sh test
    scripts/check-format.sh --fix
    ;;
  mutation)
    scripts/install-dependencies.sh test
    scripts/build.sh linux32 conformance_test
    PYTHONDONTWRITEBYTECODE=1 python3 scripts/mutation "${@:2}"
    ;;
  fuzz)
    scripts/install-dependencies.sh fuzz
    scripts/fuzz.sh "${@:2}"
    ;;
  soak)
    scripts/install-dependencies.sh test
    scripts/soak.sh "${@:2}"
    ;;
  help | --help | -h)
    sed -n '2,/^\. /{s/^# \{0,1\}//;/^\. /d;p}' "$0"
    ;;
  *)
    fail "there is no '$verb'; ./test.sh help tells what there is"
    ;;
esac
