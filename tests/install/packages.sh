#!/usr/bin/env bash
# The Debian packages: what is in them, and that a project builds and runs with what they install.
#
# usage: packages.sh PRESET BITS SOURCE [OTHER_PRESET]
. "$(dirname "$0")/common.sh"
readonly preset=$1 bits=$2 source=$3 other=${4:-} here=$(cd "$(dirname "$0")" && pwd)
readonly triplet=$(triplet "$bits")

DEBFULLNAME='Ada Keeper' DEBEMAIL=ada@harbour.example \
  "$source/scripts/package.sh" --no-build "$preset" $other >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  fail 'packing failed'
}
readonly packages=$source/build/packages
architecture() { if [ "$1" = 32 ]; then echo i386; else echo amd64; fi; }

# package NAME BITS: its file.
package() { echo "$packages"/"$1"_*_"$(architecture "$2")".deb; }

# has PACKAGE PATTERN...: a file each.
has() {
  local file=$1 pattern
  dpkg-deb -c "$file" | awk '{print $6}' >"$work/contents"
  shift
  for pattern; do expect_line "$work/contents" "^\./usr/$pattern\$"; done
}
has "$(package zerva "$bits")" "bin/zerva$bits" "lib/$triplet/zerva/bin/zerva" \
  "lib/$triplet/zerva/lib/libServiceConfigurator\.so" 'share/man/man1/zerva\.1\.gz' "share/man/man1/zerva$bits\.1\.gz" \
  'lib/systemd/system/zerva@\.service' 'share/bash-completion/completions/zerva'
! grep -qE 'include|cmake|/bin/zerva$' <(grep -v "$triplet/zerva/bin" "$work/contents") ||
  fail 'the package of the program has more than that'
has "$(package zerva-dev "$bits")" 'include/zerva/framework/Service\.h' 'share/cmake/zerva/zervaConfig\.cmake' \
  "lib/$triplet/pkgconfig/zerva\.pc"
has "$(package zerva-examples "$bits")" 'share/doc/zerva/examples/demo\.directives' \
  "lib/$triplet/zerva/lib/libExampleWind\.so"

for name in zerva zerva-dev zerva-examples; do
  has "$(package $name "$bits")" "share/doc/$name/copyright" "share/doc/$name/changelog\.gz"
  ! grep -qE '/share/man/.*[0-9]$' "$work/contents" || fail "$name has a manual page that is not compressed"
  [ "$(dpkg-deb -f "$(package $name "$bits")" Maintainer)" = 'Ada Keeper <ada@harbour.example>' ] ||
    fail "$name is of another maintainer"
  [ "$(dpkg-deb -f "$(package $name "$bits")" Multi-Arch)" = same ] || fail "$name is not Multi-Arch: same"
done

# newest PACKAGE NAME: the highest version of a name, as GLIBC, that something in the package calls.
newest() {
  rm -rf "$work/unpacked"
  dpkg-deb -x "$1" "$work/unpacked"
  find "$work/unpacked" -type f \( -name '*.so' -o -path '*/bin/*' \) -exec objdump -T {} + |
    sed -nE "s/.*[( ]$2_([0-9.]+)[) ].*/\1/p" | sort -Vu | tail -1
}
for name in zerva zerva-examples; do
  version=$(newest "$(package $name "$bits")" GLIBC)
  [ -n "$version" ] || fail "$name calls nothing of the C library"
  least=$(dpkg-deb -f "$(package $name "$bits")" Depends | sed -nE 's/.*libc6 \(>= ([0-9.]+)\).*/\1/p')
  dpkg --compare-versions "$least" ge "$version" ||
    fail "$name depends on libc6 $least, but calls what is in $version only"
done

[ "$(dpkg-deb -f "$(package zerva-dev "$bits")" Description | head -1)" = \
  'headers and packages to build services for zerva' ] || fail 'zerva-dev says it is something else'

# The packages of both word sizes side by side, in a system of their own that has nothing else.
root=$work/tree
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/etc/alternatives" \
  "$root/var/lib/dpkg/alternatives" "$root/var/log"
touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
dpkg --root="$root" --add-architecture i386
sizes=("$bits")
[ -z "$other" ] || sizes+=("$((96 - bits))")
files=()
for size in "${sizes[@]}"; do
  files+=("$(package zerva "$size")" "$(package zerva-dev "$size")" "$(package zerva-examples "$size")")
done
dpkg --root="$root" --force-script-chrootless --force-depends --force-not-root --log="$work/dpkg" \
  --install "${files[@]}" >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  fail 'the packages do not install beside each other'
}
for size in "${sizes[@]}"; do
  expect_elf "$size" "$root/usr/lib/$(triplet "$size")/zerva/bin/zerva"
  [ -L "$root/usr/bin/zerva$size" ] || fail "no link zerva$size"
  "$root/usr/bin/zerva$size" --version >"$work/version"
  expect_line "$work/version" '^zerva [0-9]'
done
[ "$(readlink "$root/usr/bin/zerva")" = /etc/alternatives/zerva ] || fail 'no alternative for zerva'
expect_line "$root/usr/lib/systemd/system/zerva@.service" '^ExecStart=/usr/bin/zerva run '

# A link to the system's alternatives leads out of that root; the consumer calls what it would be.
ln -sfn "zerva$bits" "$root/usr/bin/zerva"
"$here/consumes.sh" "$root/usr" "$bits" "$here/consumer" package
