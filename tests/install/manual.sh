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
for word in ZERVA_BUS ZERVA_TRACE XDG_RUNTIME_DIR TMPDIR NO_COLOR JOURNAL_STREAM NOTIFY_SOCKET; do
  grep -q "$word" "$work/page" || fail "zerva(1) does not tell of $word"
done
"$prefix/bin/zerva" completion bash >"$work/words"
# Its lists of options and commands are those of the parser.
for word in $(sed -nE "s/^ *(options|commands)='(.*)'$/\2/p" "$work/words"); do
  grep -qE -e "(^|[^a-z-])$word([^a-z-]|$)" "$work/page" || fail "zerva(1) does not tell of $word"
done
"$prefix/bin/zerva" run --help | sed -nE 's/^ {1,2}([0-9]+)  .*/\1/p' >"$work/codes"
[ "$(wc -l <"$work/codes")" -ge 12 ] || fail 'the help has no exit codes'
while read -r code; do
  grep -qE "^ +$code +[A-Z]" "$work/page" || fail "zerva(1) does not tell of exit code $code"
done <"$work/codes"

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
