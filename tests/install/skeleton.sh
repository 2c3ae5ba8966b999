#!/usr/bin/env bash
# Writes the skeleton of a service, builds it against what is installed, and runs its tests.
#
# usage: skeleton.sh PREFIX BITS
. "$(dirname "$0")/common.sh"
readonly prefix=$1 bits=$2
cd "$work"

"$prefix/bin/zerva" new service TideGauge >said
expect_line said '^TideGauge/README\.md tells'
[ -z "$(grep -rlE '@[A-Z_]+@' TideGauge)" ] || fail 'something is not filled in'

cd TideGauge
# As README.md of the skeleton tells, and without a warning.
options=$(sed -nE 's/^    cmake -S \. -B build ?//p' README.md)
{
  cmake -S . -B build -G Ninja $options -D CMAKE_PREFIX_PATH="$prefix" \
    -D CMAKE_CXX_FLAGS="-m$bits -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror" &&
    cmake --build build && ctest --test-dir build --output-on-failure --no-tests=error
} >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  fail 'does not build and run as it stands'
}
expect_line "$work/log" '100% tests passed, 0 tests failed out of 2'
expect_elf "$bits" build/libTideGauge.so build/libTideGaugeAccess.so
cmake --install build --prefix "$work/own" >/dev/null
[ -e "$work/own/share/TideGauge/TideGauge.directives" ] || fail 'does not install'

"$prefix/bin/zerva" check --strict --lib-dir build TideGauge.directives >"$work/checked" || {
  cat "$work/checked" >&2
  fail 'its directives are not right'
}
expect_line "$work/checked" '^[0-9] notes?$'

# The tests can fail: with a service that answers something else they do.
sed -i 's/, this is/, that is/' TideGaugeService.cpp
cmake --build build >/dev/null
if ctest --test-dir build -R answers_its_callers >"$work/log" 2>&1; then fail 'its tests notice nothing'; fi
expect_line "$work/log" '0% tests passed, 1 tests failed out of 1'
