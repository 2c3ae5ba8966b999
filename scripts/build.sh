#!/usr/bin/env bash
# Configures a preset, if that is not done yet, and builds it in build/PRESET.
#
# usage: scripts/build.sh [--no-tests] PRESET [TARGET...]
#
# --no-tests: where nothing is configured yet, leave the tests out, so that GoogleTest is not needed.
# They are added to the same directory by the first call without it.
. "$(dirname "$0")/common.sh"

tests=ON
if [ "${1:-}" = --no-tests ]; then
  tests=OFF
  shift
fi
[ $# -ge 1 ] || fail "usage: scripts/build.sh [--no-tests] PRESET [TARGET...]"
readonly preset=$1 directory=build/$1
shift

# cached NAME: what the build directory is configured with; nothing when it is not configured.
cached() { sed -n "s/^$1:[^=]*=//p" "$directory/CMakeCache.txt" 2>/dev/null || true; }

# configure ARGUMENT...: what it says is shown only when it fails.
configure() {
  say "$preset: configuring"
  mkdir -p "$directory"
  cmake --preset "$preset" "$@" >"$directory/configure.log" 2>&1 </dev/null || {
    cat "$directory/configure.log" >&2
    fail "$preset: configuring failed"
  }
}

if [ ! -e "$directory/build.ninja" ] || [ "$(cached CMAKE_HOME_DIRECTORY)" != "$PWD" ]; then
  # Fresh, since a directory that came from elsewhere, or was left half done, cannot be gone on with.
  configure --fresh -D "ZERVA_TESTS=$tests"
elif [ "$tests" = ON ] && [ "$(cached ZERVA_TESTS)" = OFF ]; then
  configure -D ZERVA_TESTS=ON
elif [ CMakePresets.json -nt "$directory/build.ninja" ]; then
  configure
fi

# Whether it has to be configured again is ninja's to know.
ninja -C "$directory" build.ninja >"$directory/configure.log" 2>&1 </dev/null || {
  cat "$directory/configure.log" >&2
  fail "$preset: configuring failed"
}

# A terminal gets ninja's progress line, everybody else only what the compiler says.
quiet=(--quiet)
[ -t 1 ] && quiet=()

if ninja -C "$directory" -n "$@" 2>/dev/null </dev/null | grep -q 'no work to do'; then
  say "$preset: nothing to build"
else
  say "$preset: building"
  ninja -C "$directory" "${quiet[@]}" "$@" </dev/null || fail "$preset: building failed"
fi
