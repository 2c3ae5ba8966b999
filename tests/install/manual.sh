#!/usr/bin/env bash
# The manual pages are well-formed, tell of every command, option, exit code and exported symbol.
#
# usage: manual.sh PREFIX BITS
. "$(dirname "$0")/common.sh"
readonly prefix=$1 bits=$2 man=$1/share/man
readonly here=$(cd "$(dirname "$0")" && pwd)

for page in man1/zerva.1 man3/zerva.3 man5/zerva-directives.5; do
  [ -e "$man/$page" ] || fail "no $page"
  # Style is said, and no more than that; a version of its own date is not asked for.
  mandoc -T lint -W warning "$man/$page" >"$work/lint" 2>&1 || true
  [ ! -s "$work/lint" ] || {
    cat "$work/lint" >&2
    fail "mandoc does not like $page"
  }
  groff -mandoc -ww -Tutf8 "$man/$page" 2>"$work/warnings" >/dev/null
  [ ! -s "$work/warnings" ] || {
    cat "$work/warnings" >&2
    fail "groff does not like $page"
  }
done

[ "$(cat "$man/man1/zerva$bits.1")" = '.so man1/zerva.1' ] || fail "no page of zerva$bits"
groff -mandoc -Tascii -P-cbou "$man/man1/zerva.1" >"$work/page"
for word in ZERVA_BUS ZERVA_TRACE ZERVA_STATUS XDG_RUNTIME_DIR TMPDIR NO_COLOR JOURNAL_STREAM NOTIFY_SOCKET \
  WATCHDOG_USEC WATCHDOG_PID; do
  grep -q "$word" "$work/page" || fail "zerva(1) does not tell of $word"
done
"$prefix/bin/zerva" completion bash >"$work/words"
# Its lists of options and commands are those of the parser.
for word in $(sed -nE "s/^ *(options|commands)='(.*)'$/\2/p" "$work/words"); do
  grep -qE -e "(^|[^a-z-])$word([^a-z-]|$)" "$work/page" || fail "zerva(1) does not tell of $word"
done
readme=$here/../../README.md
PYTHONDONTWRITEBYTECODE=1 python3 "$here/manual.py" "$prefix/bin/zerva" "$man/man1/zerva.1" "$readme" ||
  fail 'zerva(1) and the help differ'

# missed EXPRESSION COMPLAINT: what is noticed when the page, or README.md, is changed like that.
missed() {
  sed -E "$1" "$man/man1/zerva.1" >"$work/zerva.1"
  sed -E "$1" "$readme" >"$work/README.md"
  ! PYTHONDONTWRITEBYTECODE=1 python3 "$here/manual.py" "$prefix/bin/zerva" "$work/zerva.1" "$work/README.md" \
    >"$work/complaints" || fail "'$1' is not noticed"
  expect_line "$work/complaints" "$2"
}
missed 's/-patience/-pace/' '^--patience is not in the part about status$'
missed 's/^\.Fl -bus , -json$/.Fl -json/' '^--bus is not in the part about watch$'
missed 's/, 10 as above//' '^call ends with \[0, 1, 2, 3, 4, 5, 6, 10\], and the page says \[0, 1, 2, 3, 4, 5, 6\]$'
missed 's/1 when one was; //' '^check ends with '
missed 's/that hung/that did not end/' '^README.md says of 8: '
missed 's/That was waited|that was waited/that is waited/' '^the page says of 11: '

# Every keyword is in the page about the file.
groff -mandoc -Tascii -P-cbou "$man/man5/zerva-directives.5" >"$work/page"
for word in service_instance service_info service_legacy invoker_info proxy_info start_process comment; do
  grep -q "$word:" "$work/page" || fail "zerva-directives(5) does not tell of $word"
done

libraries=("$prefix/lib/$(triplet "$bits")/zerva/lib"/lib{ServiceConfigurator,ServiceExecutor,FwkTimer,ClientUtils,LoggingHandler,ExceptionPublisher,ZervaVersion,ServiceRegistry}.so)
PYTHONDONTWRITEBYTECODE=1 python3 "$here/documented.py" "$prefix/include/zerva" "$man/man3/zerva.3" \
  "${libraries[@]}" || fail 'something is not documented'

# The check can fail: without one comment, and without one name.
cp -r "$prefix/include/zerva" "$work/include"
sed -i '/Starts a timer\. @returns/d' "$work/include/SvcRTEContext.h"
sed 's/Threader/Thread/' "$man/man3/zerva.3" >"$work/zerva.3"
PYTHONDONTWRITEBYTECODE=1 python3 "$here/documented.py" "$work/include" "$work/zerva.3" \
  "${libraries[@]}" >"$work/complaints" && fail 'nothing is missed'
expect_line "$work/complaints" 'no comment above: virtual bool startTimer\(int id\) = 0;'
expect_line "$work/complaints" '^framework/Threader\.h: Threader is not in zerva\(3\)$'
expect_line "$work/complaints" '^libClientUtils\.so: Threader is not in zerva\(3\)$'
