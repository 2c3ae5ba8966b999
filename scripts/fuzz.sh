#!/usr/bin/env bash
# Builds the fuzz targets and runs each of them for some time, one after the other.
#
# usage: scripts/fuzz.sh [SECONDS [TARGET...]]
#
# SECONDS is for each target, 60 if not given; a TARGET is the name of a folder of
# tests/fuzz/corpus/, all of them if none is given. What a run finds of interest is kept in
# build/fuzz/corpus/TARGET, and the next run begins with it and with the corpus of the tree. An input
# that a target could not take is in build/fuzz/, and its path is printed.
#
# The last line is "N passed, N failed", counted in targets.
. "$(dirname "$0")/common.sh"

readonly seconds=${1:-60} output=build/fuzz
[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "usage: scripts/fuzz.sh [SECONDS [TARGET...]]"
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(ls tests/fuzz/corpus)
for target in "${targets[@]}"; do
  [ -d "tests/fuzz/corpus/$target" ] || fail "there is no fuzz target '$target'"
done

# Limits for one input: megabytes of memory in all, seconds, bytes.
readonly limits=(-rss_limit_mb=2048 -malloc_limit_mb=512 -timeout=60 -max_len=4096)

# figures LOG: executions, coverage, and how many inputs are kept, from what libFuzzer says last.
figures() {
  local last
  last=$(grep -E '^#[0-9]+' "$1" | tail -n 1)
  sed -nE 's/^#([0-9]+).* cov: ([0-9]+) ft: [0-9]+ corp: ([0-9]+).*/\1 executions, coverage \2, \3 inputs kept/p' \
    <<<"$last"
}

# run_target NAME: fails when there is an input that it cannot take.
run_target() {
  local folder=$output/corpus/$1 log=$output/$1.log options=("${limits[@]}") artifacts
  mkdir -p "$folder"
  # What a directive file starts lives on, which is looked at after each input otherwise, and slow.
  [ "$1" != directive_file ] || options+=(-detect_leaks=0)
  say "$1: fuzzing for $seconds seconds"
  # New inputs go to the first folder; the tree's is only read.
  if env ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:allocator_may_return_null=0 \
    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    "$output/bin/fuzz_$1" -max_total_time="$seconds" "${options[@]}" -print_final_stats=1 \
    -artifact_prefix="$output/$1-" "$folder" "tests/fuzz/corpus/$1" >"$log" 2>&1 </dev/null; then
    say "$1: $(figures "$log")"
    return 0
  fi
  tail -n 60 "$log" >&2
  artifacts=$(sed -nE 's/.*Test unit written to (.*)$/\1/p' "$log")
  say "$1: failed; its log is $log, the input ${artifacts:-unknown}"
  return 1
}

scripts/build.sh fuzz zerva_fuzz
passed=0
failed=0
for target in "${targets[@]}"; do
  if run_target "$target"; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
