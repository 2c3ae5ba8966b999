#!/usr/bin/env bash
# Each header of include/ and framework/ compiles on its own, twice in one source, in both word sizes
# and under the oldest and the newest language version that it is meant for. Nothing is checked again
# that passed with the same headers and the same compiler.
. "$(dirname "$0")/common.sh"

mapfile -t headers < <(sources 'include/*.h' 'framework/*.h' 'rmi/*.h')
readonly stamps=build/checks/headers
mkdir -p "$stamps"
state=$({ cat "${headers[@]}" "$0"; g++ --version; } | sha256sum | cut -d ' ' -f 1)
[ -e "$stamps/$state" ] && exit 0

# check HEADER: in all four combinations.
check() {
  local bits standard
  for bits in 32 64; do
    for standard in 17 20; do
      printf '#include "%s"\n#include "%s"\n' "$1" "$1" |
        g++ -m$bits -std=c++$standard -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow \
          -Wnon-virtual-dtor -Werror -I. -Iinclude -x c++ - || {
        echo "$1 does not compile on its own, $bits bit, C++$standard" >&2
        return 1
      }
    done
  done
}
export -f check

say "checking that each of ${#headers[@]} headers compiles on its own"
printf '%s\0' "${headers[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' check ||
  fail "not every header compiles on its own"
rm -f "$stamps"/*
touch "$stamps/$state"
