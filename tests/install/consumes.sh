#!/usr/bin/env bash
# Copies a project out of the tree, builds it against what is installed and runs its service.
#
# usage: consumes.sh PREFIX BITS SOURCE package|pkgconfig
. "$(dirname "$0")/common.sh"
prefix=$1
readonly bits=$2 source=$3 how=$4

cp -r "$source" "$work/consumer"
cd "$work/consumer"
case $how in
  package)
    cmake -S . -B build -G Ninja -D CMAKE_CXX_FLAGS=-m"$bits" -D CMAKE_PREFIX_PATH="$prefix" \
      >"$work/log" 2>&1 && ninja -C build >>"$work/log" 2>&1
    ;;
  pkgconfig)
    mkdir build
    # A copy, as of a tree that was moved, so that nobody else misses what is renamed below.
    cp -a "$prefix" "$work/moved"
    prefix=$work/moved
    files=$prefix/lib/$(triplet "$bits")/pkgconfig
    export PKG_CONFIG_PATH=$files
    pkg_config="pkg-config --define-variable=prefix=$prefix"
    clang++ -m"$bits" -std=c++17 -fsyntax-only -Werror $($pkg_config --cflags zerva) TideService.cpp ||
      fail 'clang does not take the flags'
    make -C build -f ../Makefile VPATH=.. BITS="$bits" CPPFLAGS=-I.. PKG_CONFIG="$pkg_config" \
      >"$work/log" 2>&1 && mv "$files" "$files.renamed"
    ;;
esac || {
  cat "$work/log" >&2
  fail 'does not build'
}
expect_elf "$bits" build/*.so build/recorder

build/recorder >"$work/recorder"
expect_line "$work/recorder" '^version [0-9.]+, not known$'

code=0
timeout 100 "$prefix/bin/zerva" run --for 80 --lib-dir build tide.directives >"$work/run" 2>&1 || code=$?
expect_line "$work/run" "tide: 1\.25 m at pier 3, $bits bit"
[ "$code" -eq 0 ] || {
  cat "$work/run" >&2
  fail "zerva ended with $code"
}
