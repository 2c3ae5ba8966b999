#!/usr/bin/env bash
# Fails when a C++ file is not as clang-format would write it. With --fix, rewrites it instead.
. "$(dirname "$0")/common.sh"

say "checking the format"
mapfile -t files < <(sources '*.h' '*.cpp')
if [ "${1:-}" = --fix ]; then
  clang-format -i "${files[@]}"
else
  clang-format --dry-run --Werror "${files[@]}" || fail "./test.sh format puts that right"
fi
