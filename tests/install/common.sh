# Read by the tests of what is installed.

set -euo pipefail
export LC_ALL=C.UTF-8
# The test is of the installed files, whatever the machine has beside them.
unset ZERVA_BUS LD_LIBRARY_PATH PKG_CONFIG_PATH CMAKE_PREFIX_PATH ${!ZERVA_*}

# fail TEXT...: says why, and ends the test.
fail() {
  printf 'failed: %s\n' "$*" >&2
  exit 1
}

# triplet BITS
triplet() { if [ "$1" = 32 ]; then echo i386-linux-gnu; else echo x86_64-linux-gnu; fi; }

# install_into PREFIX BUILD COMPONENT...
install_into() {
  local to=$1 from=$2 component
  shift 2
  for component; do
    cmake --install "$from" --prefix "$to" --component "$component" >/dev/null
  done
}

# expect_line FILE PATTERN: a line of the file has the pattern; if not, the file is shown.
expect_line() {
  grep -qE -- "$2" "$1" || {
    cat "$1" >&2
    fail "no line '$2'"
  }
}

# expect_elf BITS FILE...
expect_elf() {
  local class=ELF$1 file
  shift
  for file; do
    readelf -h "$file" | grep -q "Class: *$class\$" || fail "$file is not $class"
  done
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
