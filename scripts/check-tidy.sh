#!/usr/bin/env bash
# Runs clang-tidy on every source of the product and the examples, and on the headers they include.
# A source is not looked at again when it, the project's headers that it includes, its compiler
# options and .clang-tidy are as they were when it passed, in whichever checkout: what has passed is
# kept beside other caches of the user, for a month.
#
# usage: scripts/check-tidy.sh [FILE...]
. "$(dirname "$0")/common.sh"

readonly stamps=build/checks/tidy passed=${XDG_CACHE_HOME:-$HOME/.cache}/zerva/tidy
mkdir -p "$stamps" "$passed"
find "$passed" -type f -mtime +30 -delete

mapfile -t files < <(sources 'src/*.cpp' 'runtime/*.cpp' 'host/*.cpp' 'registry/*.cpp' \
  'examples/*.cpp')
[ $# -eq 0 ] || files=("$@")

# What the compiler is told, without what clang does not know.
scripts/build.sh linux32 build.ninja >/dev/null
sed 's/ -fno-gnu-unique//g' build/linux32/compile_commands.json >"$stamps/compile_commands.json"

# inclusions: for each source, one line with it and every file of the project that it includes,
# directly or not, as far as the text of the files tells.
inclusions() {
  sources '*.h' '*.cpp' | awk '
    { known[$0] = 1; order[++count] = $0 }
    function resolve(from, name,    directory) {
      directory = from
      sub(/[^\/]*$/, "", directory)
      if ((directory name) in known) return directory name
      if (name in known) return name
      if (("include/" name) in known) return "include/" name
      return ""
    }
    function read_file(file,    line, name) {
      direct[file] = ""
      while ((getline line < file) > 0) {
        if (line !~ /^[ \t]*#[ \t]*include[ \t]*"/) continue
        name = line
        sub(/^[^"]*"/, "", name)
        sub(/".*$/, "", name)
        name = resolve(file, name)
        if (name != "") direct[file] = direct[file] " " name
      }
      close(file)
    }
    function visit(file,    names, total, i) {
      if (file in seen) return
      seen[file] = 1
      found = found " " file
      total = split(direct[file], names, " ")
      for (i = 1; i <= total; ++i) visit(names[i])
    }
    END {
      for (i = 1; i <= count; ++i) read_file(order[i])
      for (i = 1; i <= count; ++i) {
        if (order[i] !~ /\.cpp$/) continue
        split("", seen)
        found = ""
        visit(order[i])
        print substr(found, 2)
      }
    }'
}

# options FILE: its line of the compile commands, wherever the checkout is.
options() {
  { grep -F "\"$PWD/$1\"" -B 1 "$stamps/compile_commands.json" || true; } | sed "s,$PWD,.,g"
}

declare -A state
common=$({ cat .clang-tidy; clang-tidy --version; } | sha256sum)
while read -r -a closure; do
  file=${closure[0]}
  state[$file]=$({ echo "$common"; options "$file"; cat "${closure[@]}"; } | sha256sum |
    cut -d ' ' -f 1)
done < <(inclusions)

todo=()
for file in "${files[@]}"; do
  [ -n "$(options "$file")" ] || fail "$file is in no target of linux32"
  [ -e "$passed/${state[$file]}" ] || todo+=("$file" "${state[$file]}")
done
[ ${#todo[@]} -gt 0 ] || exit 0

# tidy FILE STATE: what it finds, without its counts of what it does not show.
tidy() {
  local said
  if said=$(clang-tidy --quiet -p "$stamps" "$1" 2>/dev/null); then
    touch "$passed/$2"
  else
    printf '%s\n' "$said" >&2
    return 1
  fi
}
export -f tidy
export stamps passed

say "checking $((${#todo[@]} / 2)) sources with clang-tidy"
printf '%s\0' "${todo[@]}" | xargs -0 -n 2 -P "$(nproc)" bash -c 'tidy "$1" "$2"' tidy ||
  fail "clang-tidy found something"
