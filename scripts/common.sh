# Read by the other scripts: where they run, how they speak, and how the compiler cache is used.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

export LC_ALL=C.UTF-8
# Only with these does the cache serve sources that use a precompiled header.
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
# A checkout in another directory finds what this one compiled.
export CCACHE_BASEDIR="$PWD"
export CCACHE_NOHASHDIR=1

# say TEXT...: one line about what is done next.
say() { printf '== %s\n' "$*"; }

# fail TEXT...: says why, and ends the script.
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# sources PATTERN...: the files of this tree that match, one a line; "*" matches folders too.
sources() {
  local pattern matches=()
  for pattern; do matches+=(-o -path "./$pattern"); done
  find . \( -path ./build -o -path './.*' \) -prune -o \
    -type f \( "${matches[@]:1}" \) -print | sed 's,^\./,,' | LC_ALL=C sort
}
