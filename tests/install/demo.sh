#!/usr/bin/env bash
# Runs demo.sh as it stands, but on what is built already: what would install and build is told only.
#
# usage: demo.sh BUILD SOURCE
. "$(dirname "$0")/common.sh"
readonly build=$1 source=$2

mkdir -p "$work/tree/scripts" "$work/tree/build"
cd "$work/tree"
cp "$source/demo.sh" .
cp "$source/scripts/common.sh" scripts/
for script in install-dependencies build; do
  printf '#!/usr/bin/env bash\necho "%s: $*" >>asked\n' "$script" >scripts/$script.sh
  chmod +x scripts/$script.sh
done
ln -s "$build" build/linux32
mkdir examples
cp "$source"/examples/*.directives examples/

# demo: runs it.
demo() {
  code=0
  timeout 100 ./demo.sh >"$work/said" 2>&1 || code=$?
  tail -1 "$work/said" >"$work/last"
}

demo
[ "$code" -eq 0 ] || {
  cat "$work/said" >&2
  fail "it ended with $code"
}
expect_line "$work/last" '^demo: 8 services in 3 processes came up and went down, [1-9][0-9]* calls, 0 failures$'
expect_line asked '^install-dependencies: demo$'
# What it builds is there to be built.
targets=$(sed -n 's/^build: --no-tests linux32 //p' asked)
[ -n "$targets" ] || fail 'it builds nothing'
ninja -C "$build" -n $targets >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  fail "there is no $targets"
}

# That it can fail.
sed -i 's/libExampleClock/libMissing/' examples/demo.directives
demo
[ "$code" -ne 0 ] || fail 'a service that does not come up is not noticed'
expect_line "$work/last" '^demo: failed, '
