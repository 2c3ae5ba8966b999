#!/usr/bin/env bash
# Installs what is missing, builds both word sizes and measures them, each figure beside the least that
# the machine could do, and beside what others do.
#
# usage: ./bench.sh               everything; takes about a quarter of an hour on a machine of its own
#        ./bench.sh NAME...       only these; the documents stay as they are
#        ./bench.sh --no-peers    everything but what others do; the documents stay as they are
#        ./bench.sh --rounds N [NAME...]
#                             the same with another number of rounds than 7; the documents stay as
#                             they are
#        ./bench.sh --smoke       whether everything works, in a minute; no figure means anything
#        ./bench.sh list          what there is to be measured
#        ./bench.sh help          this text
#
# Tables are printed, with an "aim:" line for each aim, and written to build/bench/results.json. A run of
# everything draws the charts of docs/charts/ and fills in the tables of docs/performance.md.
#
# The exit code is 0 when everything could be measured, whether the aims are met or not. The last line
# of --smoke is "N passed, N failed".
. "$(dirname "$0")/scripts/common.sh"

readonly presets=(linux32 linux64) output=build/bench

build_all() {
  local preset
  scripts/install-dependencies.sh bench
  for preset in "${presets[@]}"; do scripts/build.sh "$preset" zerva_bench; done
}

# Others are there for 64 bit only.
build_peers() {
  scripts/install-dependencies.sh peers
  scripts/build.sh linux64 build.ninja
  grep -q '^ZERVA_PEERS:BOOL=ON$' build/linux64/CMakeCache.txt ||
    cmake -S . -B build/linux64 -D ZERVA_PEERS=ON >build/linux64/configure.log 2>&1 ||
    fail "configuring with the peers failed, see build/linux64/configure.log"
  scripts/build.sh linux64 zerva_bench_peers
}

# smoke: the benchmarks as tests.
smoke() {
  local preset results passed=0 failed=0 all good
  for preset in "${presets[@]}"; do
    results=$PWD/build/$preset/bench-results.xml
    rm -f "$results"
    ctest --preset "$preset" --label-regex '^bench$' --no-tests=error --output-junit "$results" \
      </dev/null | grep -E 'Failed|\*\*\*|could not be measured' || true
    all=$(grep -cE '^[[:space:]]*<testcase ' "$results" || true)
    good=$(grep -cE '^[[:space:]]*<testcase .* status="run"' "$results" || true)
    passed=$((passed + good))
    failed=$((failed + all - good))
    [ "$all" -gt 0 ] || failed=$((failed + 1))
  done
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
}

# has PROGRAM NAME: whether it can be asked for that.
has() { "$1" --list | cut -d ' ' -f 1 | grep -qxF "$2"; }

# measure PROGRAM JSON NAME...: all that it has, or those of the names that it has.
measure() {
  local program=$1 json=$2 name wanted=()
  shift 2
  for name; do ! has "$program" "$name" || wanted+=("$name"); done
  [ $# -eq 0 ] || [ ${#wanted[@]} -gt 0 ] || return 0
  "$program" "${rounds[@]}" --json "$json" "${wanted[@]}" || code=1
}

# run_all PEERS NAME...: PEERS is yes or no.
run_all() {
  local peers=$1 name preset
  local programs=(build/linux32/bin/zerva_bench build/linux64/bin/zerva_bench)
  shift
  build_all
  if [ "$peers" = yes ]; then
    build_peers
    programs+=(build/linux64/bin/zerva_bench_peers)
  fi
  for name; do
    has "${programs[0]}" "$name" || { [ "$peers" = yes ] && has "${programs[2]}" "$name"; } ||
      fail "there is no benchmark '$name'; ./bench.sh list tells what there is"
  done
  rm -rf "$output"
  mkdir -p "$output"
  for preset in "${presets[@]}"; do
    say "$preset: measuring"
    measure "build/$preset/bin/zerva_bench" "$output/$preset.json" "$@"
  done
  if [ "$peers" = yes ]; then
    say "measuring what others do"
    measure "${programs[2]}" "$output/peers.json" "$@"
  fi
}

# without_documents PEERS NAME...: measures, and leaves the documents alone.
without_documents() {
  run_all "$@"
  python3 -B bench/report --results "$output/results.json" "$output"/*.json
}

code=0
rounds=()
case "${1:-all}" in
  all)
    run_all yes
    python3 -B bench/report --results "$output/results.json" --document docs/performance.md \
      --charts docs/charts "$output"/*.json
    ;;
  --smoke)
    [ $# -eq 1 ] || fail "--smoke takes no names"
    build_all
    smoke || code=1
    ;;
  list)
    build_all
    build_peers
    build/linux64/bin/zerva_bench --list
    build/linux64/bin/zerva_bench_peers --list
    ;;
  help | --help | -h)
    sed -n '2,/^\. /{s/^# \{0,1\}//;/^\. /d;p}' "$0"
    ;;
  --no-peers) without_documents no "${@:2}" ;;
  --rounds)
    [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || fail "--rounds takes a number"
    rounds=(--rounds "$2")
    without_documents yes "${@:3}"
    ;;
  -*) fail "there is no '$1'; ./bench.sh help tells what there is" ;;
  *) without_documents yes "$@" ;;
esac
exit "$code"
