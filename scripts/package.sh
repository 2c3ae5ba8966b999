#!/usr/bin/env bash
# Builds both word sizes and makes their Debian packages, in build/packages.
#
# usage: scripts/package.sh [--no-build] [PRESET...]
#
# Their maintainer is who DEBFULLNAME and DEBEMAIL say, when both are set.
#
# PRESET: linux32, linux64 or both, which is meant when none is given. --no-build: packs what is built.
. "$(dirname "$0")/common.sh"

build=1
if [ "${1:-}" = --no-build ]; then
  build=''
  shift
fi
presets=("$@")
[ $# -gt 0 ] || presets=(linux32 linux64)

maintainer=()
[ -z "${DEBFULLNAME:-}" ] || [ -z "${DEBEMAIL:-}" ] ||
  maintainer=(-D "CPACK_PACKAGE_CONTACT=$DEBFULLNAME <$DEBEMAIL>")

readonly packages=$PWD/build/packages
mkdir -p "$packages"
for preset in "${presets[@]}"; do
  [ -z "$build" ] || scripts/build.sh --no-tests "$preset" zerva ServiceRegistry zerva_examples
  say "$preset: packing"
  log=build/$preset/package.log
  # Only its own directory: what it leaves beside the packages is of no use.
  (cd "build/$preset" && cpack -G DEB --config CPackConfig.cmake "${maintainer[@]}") >"$log" 2>&1 </dev/null || {
    cat "$log" >&2
    fail "$preset: packing failed"
  }
  mv "build/$preset"/zerva*.deb "$packages"
  rm -rf "build/$preset/_CPack_Packages"
done
ls "$packages"
