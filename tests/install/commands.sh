#!/usr/bin/env bash
# Runs what README.md, the document about installing and the manual pages show. What is in files that
# they show is theirs; only what they name without showing it comes from here.
#
# usage: commands.sh BUILD BITS SOURCE
. "$(dirname "$0")/common.sh"
readonly build=$1 bits=$2 source=$3 here=$(cd "$(dirname "$0")" && pwd)
readonly prefix=$work/opt archdir=$work/opt/lib/$(triplet "$2")

install_into "$prefix" "$build" runtime command development examples
export PKG_CONFIG_PATH=$archdir/pkgconfig

# A host that is shown without an end gets one; what it starts is as it is.
mkdir "$work/first"
cat >"$work/first/zerva" <<END
#!/usr/bin/env bash
if [[ "\$1" != run || " \$* " == *' --for '* || -n "\${SHOWN:-}" ]]; then exec "$prefix/bin/zerva" "\$@"; fi
shift
SHOWN=1 exec "$prefix/bin/zerva" run --for 2 "\$@"
END
# The compiler makes what the host is.
cat >"$work/first/g++" <<END
#!/usr/bin/env bash
exec $(command -v g++) "\$@" -m$bits
END
chmod +x "$work/first/zerva" "$work/first/g++"
export PATH=$work/first:$archdir/zerva/bin:$PATH

# show DOCUMENT [FROM TO]...: with what its commands expect to be there.
show() {
  local directory
  directory=$(mktemp -d -p "$work")
  (
    cd "$directory"
    ln -s "$source/examples" examples
    grep createServiceRegistry examples/demo.directives >registry.directives
    grep WindSensor examples/demo.directives >sensors.directives
    [[ $1 != *installing.md ]] || cp "$here/consumer/TideService.cpp" "$here/consumer/Tide.h" .
    mkdir -m 700 plant
    PYTHONDONTWRITEBYTECODE=1 python3 "$here/commands.py" "$@" /tmp/plant "$directory/plant" \
      /run/user/1000/plant "$directory/plant"
  ) || fail "not everything that $1 shows works"
}

show "$source/README.md" 'PATH=build/linux32/bin:$PATH ' ''
show "$source/docs/installing.md" 'build/linux32' "$build" i386-linux-gnu "$(triplet "$bits")" \
  -m32 "-m$bits" /opt/zerva "$work/opt2"
for page in zerva.1 zerva.3 zerva-directives.5; do
  show "$source/docs/man/$page" /usr/share/doc/zerva "$prefix/share/doc/zerva"
done

# That it can fail: wrong WHAT COMPLAINT BLOCK... is a document with these blocks, beside one that is right.
wrong() {
  local what=$1 complaint=$2
  shift 2
  printf '%s\n' '<!-- runs -->' '' '    zerva --version' '' 'text' '' "$@" >"$work/wrong.md"
  if (show "$work/wrong.md") >"$work/said" 2>&1; then fail "$what is not noticed"; fi
  expect_line "$work/said" "$complaint"
}
wrong 'a command that fails' 'ended with 4' '<!-- runs -->' '' '    zerva run nothing.directives'
for command in 'zerva run nothing.directives' './nothing.sh' 'cmake --preset linux32' 'PATH=. ctest --preset linux32' \
  'scripts/nothing.sh' 'comment:
    service_info: ST libA.so createA /a AIfc'; do
  wrong "'$command' without a mark" 'shown and not run' "    $command"
done
wrong 'a directive file with an error' 'ended with 1' '<!-- file a.directives -->' '' '    service_info: ST libA.so'
for command in './nothing.sh' './bench.sh nothing' './README.md' 'cmake --preset linux33' 'ctest --preset fuzz' \
  'cmake --preset linux32 && ./nothing.sh' 'zerva nothing'; do
  wrong "'$command', which is not there," 'there is no: ' '<!-- runs elsewhere -->' '' "    $command"
done
printf '<!-- runs elsewhere -->\n\n    %s\n' './bench.sh list' >"$work/wrong.md"
if (show "$work/wrong.md") >"$work/said" 2>&1; then fail 'a document without a command is not noticed'; fi
expect_line "$work/said" 'no command was run'
