#!/usr/bin/env bash
# Both word sizes with one prefix: each is found by those who are of its size.
#
# usage: beside.sh BUILD32 BUILD64 SOURCE
. "$(dirname "$0")/common.sh"
readonly build32=$1 build64=$2 here=$(cd "$(dirname "$0")" && pwd)

install_into "$work/both" "$build64" runtime development command
cp "$work/both/share/cmake/zerva/zervaConfig.cmake" "$work/config64"

# Before the other one is there, it is said to be missing.
code=0
cmake -S "$3" -B "$work/missing" -G Ninja -D CMAKE_CXX_FLAGS=-m32 -D CMAKE_PREFIX_PATH="$work/both" \
  >"$work/log" 2>&1 || code=$?
[ "$code" -ne 0 ] || fail 'a 32-bit project was configured without 32-bit libraries'
tr -s ' \n' ' ' <"$work/log" >"$work/joined"
expect_line "$work/joined" 'zerva is not installed for 32-bit programs'

install_into "$work/both" "$build32" runtime development
cmp "$work/config64" "$work/both/share/cmake/zerva/zervaConfig.cmake" ||
  fail 'the two word sizes differ in a file that they share'
expect_elf 32 "$work/both/bin/zerva32"
expect_elf 64 "$work/both/bin/zerva64" "$work/both/bin/zerva"
"$work/both/bin/zerva32" --version >/dev/null
"$work/both/bin/zerva64" --version >/dev/null

for bits in 32 64; do
  # The host of that size; the consumer calls it by its short name.
  ln -sfn "zerva$bits" "$work/both/bin/zerva"
  "$here/consumes.sh" "$work/both" "$bits" "$3" package
done
