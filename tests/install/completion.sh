#!/usr/bin/env bash
# What is installed completes every command and every option that the help tells of, in each shell.
#
# usage: completion.sh PREFIX
. "$(dirname "$0")/common.sh"
readonly prefix=$1 zerva=$1/bin/zerva
cd "$work"
# Shells read and write what is at home.
export HOME=$work XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work XDG_CACHE_HOME=$work

source "$prefix/share/bash-completion/completions/zerva"

# completed WORD...: what bash offers for the last word.
completed() {
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  _zerva
  printf '%s\n' "${COMPREPLY[@]}"
}

# offers PATTERN WORD...
offers() {
  local pattern=$1
  shift
  completed "$@" >offered
  grep -qxF -e "$pattern" offered || fail "'$*' does not offer '$pattern'"
}

# options COMMAND...: those of its help.
options() { "$zerva" "$@" --help | grep -oE '^  +(-h,)?--[a-z-]+' | grep -oE -e '--[a-z-]+'; }

# commands COMMAND...: those of its help.
commands() { "$zerva" "$@" --help | sed -n '/^Subcommands:/,/^[^ ]*$/s/^  \([a-z]*\) .*/\1/p'; }

# walk COMMAND...: it and all that are below it.
count=0
walk() {
  local option command
  for option in $(options "$@"); do
    offers "$option" zerva "$@" "${option:0:3}"
    fish -c "source '$prefix/share/fish/vendor_completions.d/zerva.fish'
             complete -C 'zerva $* ${option:0:3}'" | cut -f 1 | grep -qxF -e "$option" ||
      fail "fish: 'zerva $*' does not offer '$option'"
    grep -qF -e "'$option:" "$prefix/share/zsh/site-functions/_zerva" || fail "zsh: no '$option'"
    count=$((count + 1))
  done
  for command in $(commands "$@"); do
    offers "$command" zerva "$@" "${command:0:1}"
    count=$((count + 1))
    walk "$@" "$command"
  done
}
walk
[ "$count" -gt 15 ] || fail "only $count words were found in the help"
zsh -n "$prefix/share/zsh/site-functions/_zerva" || fail 'zsh does not understand it'

offers fish zerva completion f
fish -c "source '$prefix/share/fish/vendor_completions.d/zerva.fish'; complete -C 'zerva completion b'" |
  grep -qx bash || fail 'fish does not offer a shell'
grep -qx "        'zsh'" "$prefix/share/zsh/site-functions/_zerva" || fail 'zsh does not offer a shell'

mkdir there
: >there.directives
offers there zerva run --lib-dir th
[ "$(completed zerva run --lib-dir th)" = there ] || fail 'a file is offered as a directory'
offers there.directives zerva run th
[ -z "$(completed zerva run --for '')" ] || fail 'something is offered as a number'
offers there.directives zerva timeline th
[ -z "$(completed zerva load)" ] || fail 'what is for the program itself is offered'

code=0
"$zerva" completion csh >/dev/null 2>&1 || code=$?
[ "$code" -eq 2 ] || fail "an unknown shell gives $code"
