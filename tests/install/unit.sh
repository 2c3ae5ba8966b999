#!/usr/bin/env bash
# The unit template is one that systemd takes, and says where zerva really is.
#
# usage: unit.sh BUILD
. "$(dirname "$0")/common.sh"
readonly build=$1

install_into "$work/tree" "$build" runtime command systemd
unit=$work/tree/lib/systemd/system/zerva@.service
expect_line "$unit" "^ExecStart=$work/tree/bin/zerva run "

# accepts: whether systemd does; it complains about what it does not know, and goes on.
accepts() {
  [ -z "$(MANPATH=$work/tree/share/man systemd-analyze verify --man=no --recursive-errors=no \
    "$work/tree/lib/systemd/system/zerva@harbour.service" 2>&1 | tee "$work/log" |
    grep -vE 'Failed to (connect|create).*bus')" ]
}
ln -s zerva@.service "$work/tree/lib/systemd/system/zerva@harbour.service"
accepts || {
  cat "$work/log" >&2
  fail 'systemd does not take the unit'
}

# That it can be refused.
sed -i 's/^Type=notify/Type=notified/' "$unit"
if accepts; then fail 'systemd takes anything'; fi

systemd-sysusers --root="$work/tree" --dry-run "$work/tree/lib/sysusers.d/zerva.conf" >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  fail 'systemd-sysusers does not take the user'
}

# A prefix of the system's own, under a staging directory.
DESTDIR=$work/stage cmake --install "$build" --prefix /usr --component systemd >/dev/null
expect_line "$work/stage/usr/lib/systemd/system/zerva@.service" '^ExecStart=/usr/bin/zerva run '
