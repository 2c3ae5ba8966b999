#!/usr/bin/env bash
# Installs runtime and development and moves them elsewhere, which is where the tests after this one
# look: nothing that is installed may know where it was built or where it was installed first. What
# pkg-config reads is the exception.
#
# usage: installs.sh BUILD BITS DIRECTORY; what is installed is left in DIRECTORY
. "$(dirname "$0")/common.sh"
readonly build=$1 bits=$2 directory=$3 tree=lib/$(triplet "$2")/zerva

install_into "$work/first" "$build" runtime
for file in bin/zerva$bits $tree/bin/zerva $tree/lib/libServiceConfigurator.so \
  $tree/lib/libServiceRegistry.so $tree/lib/libClientUtils.so; do
  [ -e "$work/first/$file" ] || fail "runtime has no $file"
done
[ ! -e "$work/first/include" ] || fail 'runtime has headers'
[ ! -e "$work/first/bin/zerva" ] || fail 'runtime has the link bin/zerva, which is command'
expect_elf "$bits" "$work/first/$tree/bin/zerva" "$work/first/$tree"/lib/*.so

install_into "$work/first" "$build" development command
[ "$(readlink "$work/first/bin/zerva")" = "../$tree/bin/zerva" ] || fail 'no link bin/zerva'

for package in zerva zerva-configurator; do
  libs=$(PKG_CONFIG_PATH=$work/first/lib/$(triplet "$bits")/pkgconfig pkg-config --libs $package)
  [[ " $libs " == *" -Wl,-rpath,$work/first/$tree/lib "* ]] || fail "pkg-config says '$libs'"
done

# What is installed is for everybody, whoever installs it.
(umask 077 && install_into "$work/closed" "$build" runtime development systemd)
closed=$(find "$work/closed" -type f ! -perm -444)
[ -z "$closed" ] || fail "not everybody can read $closed"

rm -rf "$directory"
mv "$work/first" "$directory"

for file in "$directory/$tree"/bin/zerva "$directory/$tree"/lib/*.so; do
  path=$(readelf -d "$file" | sed -nE 's/.*RUNPATH.*\[(.*)\]$/\1/p')
  [ "$path" = '$ORIGIN/../lib:$ORIGIN' ] || fail "$file has RUNPATH '$path'"
done
# Nothing is linked but what is here, and the C and C++ libraries.
for file in "$directory/$tree"/bin/zerva "$directory/$tree"/lib/*.so; do
  for needed in $(readelf -d "$file" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]$/\1/p'); do
    case $needed in
      libc.so.6 | libm.so.6 | libgcc_s.so.1 | libstdc++.so.6 | ld-linux*.so.2) ;;
      *) [ -e "$directory/$tree/lib/$needed" ] || fail "${file##*/} needs $needed" ;;
    esac
  done
done
readelf -d "$directory/$tree/bin/zerva" | grep -q 'NEEDED.*libstdc++' || fail 'the program needs nothing'
if found=$(grep -rlF --exclude='*.pc' -e "$work" -e "$build" "$directory"); then fail "has paths of this machine: $found"; fi

"$directory/bin/zerva" --version >"$work/version"
expect_line "$work/version" '^zerva [0-9]+\.[0-9]+\.[0-9]+$'
