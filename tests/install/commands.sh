#!/usr/bin/env bash
# Runs what README.md, the document about installing and the manual pages show.
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
    cat registry.directives sensors.directives >wind.directives
    cp "$here/consumer/TideService.cpp" "$here/consumer/Tide.h" .
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

# That it can fail.
printf '<!-- runs -->\n\n    zerva run nothing.directives\n' >"$work/wrong.md"
if (show "$work/wrong.md") >/dev/null 2>&1; then fail 'a command that fails is not noticed'; fi
printf '\n    zerva run nothing.directives\n' >"$work/wrong.md"
if (show "$work/wrong.md") >/dev/null 2>&1; then fail 'a command that is not run is not noticed'; fi
