#!/usr/bin/env bash
# Rules about the sources that neither compiler nor linter knows.
. "$(dirname "$0")/common.sh"

say "checking the rules for sources"
failed=0

# complain TEXT...: a rule is broken.
complain() {
  printf '%s\n' "$*" >&2
  failed=1
}

# occurrences WHY PATTERN FILE...: a line for each file that has the pattern outside of comments.
occurrences() {
  local why=$1 pattern=$2 file found
  shift 2
  { grep -lE "$pattern" "$@" || true; } | while IFS= read -r file; do
    found=$(g++ -fpreprocessed -dD -E -P -x c++ "$file" 2>/dev/null | grep -nE "$pattern" || true)
    [ -z "$found" ] || echo "$file: $why: ${found#*:}"
  done
}

# forbid WHY PATTERN FILE...: the pattern is nowhere in these files, comments left out.
forbid() {
  local found
  found=$(occurrences "$@")
  [ -z "$found" ] || complain "$found"
}

mapfile -t system < <(sources 'src/*.h' 'src/*.cpp' 'include/*.h')
mapfile -t contract < <(sources 'include/*.h' 'framework/*.h' 'rmi/*.h')
mapfile -t code < <(sources '*.h' '*.cpp')
mapfile -t tests < <(sources 'tests/*.cpp' 'tests/*.h')

forbid 'the system reads no environment' '\b(secure_)?getenv\b' "${system[@]}"
forbid 'the system catches nothing' '\bcatch\b' "${system[@]}"
forbid 'libraries and threads are the platform'\''s' '\b(dlopen|dlsym|dlclose|pthread_\w+)\b' \
  "${system[@]}"
forbid 'locks and threads are the platform'\''s' \
  '\bstd::(\w*mutex|j?thread|async|condition_variable\w*|atomic_flag)\b' "${system[@]}"
forbid 'the system knows the platform by framework/ only' \
  '#include "(runtime|tests|host|registry|examples)/' "${system[@]}"
forbid 'the contract has no system header' '#include <[^>]*(\.h|/[^>]*)>' "${contract[@]}"
forbid 'it can sleep for ever with this compiler' '\bstd::(counting|binary)_semaphore\b' \
  "${code[@]}"
forbid 'no test is left out' '\b(GTEST_SKIP|DISABLED_\w+)' "${tests[@]}"

for file in "${code[@]}"; do
  lines=$(wc -l <"$file")
  [ "$lines" -le 500 ] || complain "$file: $lines lines, more than 500"
done

# Sources are listed, so one that nobody lists would silently be no part of anything.
mapfile -t lists < <(sources '*CMakeLists.txt')
for file in "${code[@]}"; do
  [[ $file == *.cpp ]] || continue
  name=${file##*/}
  grep -qwF "${name%.cpp}" "${lists[@]}" || complain "$file: in no CMakeLists.txt"
done
globbed=$(grep -nE 'file\((GLOB|GLOB_RECURSE)\b' "${lists[@]}" cmake/*.cmake || true)
[ -z "$globbed" ] || complain "sources are listed, not globbed: $globbed"

# Documents name files that are there; what looks like a link in code is none.
mapfile -t documents < <(sources '*.md')
for document in "${documents[@]}"; do
  while IFS= read -r link; do
    link=${link%%#*}
    [ -z "$link" ] || [ -e "$(dirname "$document")/$link" ] ||
      complain "$document: links to $link, which is not there"
  done < <(awk '/^```/ { code = !code } !code' "$document" | grep -oE '\]\([^)]+\)' |
    sed 's/^](//; s/)$//' | grep -vE '^[a-z]+:' || true)
done

# Code in documents is code of the file that the line before it names.
for document in "${documents[@]}"; do
  source='' block='' open=0
  while IFS= read -r line || [ -n "$line" ]; do
    case $open,$line in
      0,'<!-- from '*' -->')
        source=${line#<!-- from }
        source=${source% -->}
        ;;
      0,'```'*)
        open=1 block=''
        ;;
      1,'```')
        open=0
        [ -z "$source" ] || [[ $(cat "$source")$'\n' == *"$block"* ]] ||
          complain "$document: its code from $source is not there any more"
        source=''
        ;;
      1,*) block+=$line$'\n' ;;
    esac
  done <"$document"
done

# A promise is held by tests that are there.
while IFS= read -r test; do
  suite=${test%%.*} name=${test#*.}
  grep -qE "^TEST(_F|_P)?\($suite, ${name/\*/[A-Za-z0-9_]+}\)" "${tests[@]}" ||
    complain "docs/reliability.md: there is no test $test"
done < <(grep -oE '`[A-Z][A-Za-z0-9]*\.([A-Za-z0-9_]+|\*)`' docs/reliability.md | tr -d '`' |
  grep -vE '\.(md|json|txt)$' || true)

# What the document says a service with its proxy and invoker takes.
lines=$(cat examples/water/* | wc -l)
[ "$lines" -lt 80 ] || complain "examples/water: $lines lines, the document promises fewer than 80"

[ $failed -eq 0 ] || fail "a rule for sources is broken"
