#!/usr/bin/env bash
# What is installed completes every command and every option that the help tells of, in each shell.
#
# usage: completion.sh PREFIX
. "$(dirname "$0")/common.sh"
readonly prefix=$1 zerva=$1/bin/zerva
cd "$work"
# Shells read and write what is at home.
export HOME=$work XDG_CONFIG_HOME=$work XDG_DATA_HOME=$work XDG_CACHE_HOME=$work

# Says whether bash would treat what is offered as the name of a file.
filenames=''
compopt() { [ "$*" != '-o filenames' ] || filenames=1; }
source "$prefix/share/bash-completion/completions/zerva"

# completed WORD...: what bash offers for the last word.
completed() {
  COMP_WORDS=("$@")
  filenames=''
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

# A command is no file, whatever lies there.
mkdir run
! complete -p zerva | grep -q filenames || fail 'everything is a file name'
_of() { completed "$@" >/dev/null; }
_of zerva ru
[ -z "$filenames" ] || fail 'a command is offered as the directory of its name'
_of zerva run th
[ -n "$filenames" ] || fail 'a file is not offered as one'
_of zerva run --lib-dir th
[ -n "$filenames" ] || fail 'a directory is not offered as one'

# in_fish LINE: what fish offers.
in_fish() {
  fish -c "source '$prefix/share/fish/vendor_completions.d/zerva.fish'
           complete -C '$1'" | cut -f 1
}
# A word counts where it is a command only.
in_fish 'zerva run service --lib' >offered
expect_line offered '^--lib-dir$'
in_fish 'zerva run service --i' >offered
! grep -qx -e --in offered || fail 'fish takes a file called service for a command'

# What an option can be.
offers x86_64 zerva check --machine x
in_fish 'zerva check --machine x' >offered
expect_line offered '^x86_64$'
grep -qE -e '--machine\) compadd -- .*x86_64' "$prefix/share/zsh/site-functions/_zerva" ||
  fail 'zsh does not offer a machine'

# The programs of one word size are completed like the one of either.
for name in zerva32 zerva64; do
  complete -p $name >/dev/null || fail "bash does not complete $name"
  in_fish "$name tim" >offered
  expect_line offered '^timeline$'
done
for file in "$prefix"/bin/zerva??; do
  name=${file##*/}
  for place in bash-completion/completions/$name fish/vendor_completions.d/$name.fish; do
    cmp "$prefix/share/$place" "$prefix/share/${place/$name/zerva}" || fail "no $place"
  done
done

code=0
"$zerva" completion bash >/dev/full 2>said || code=$?
[ "$code" -eq 1 ] || fail "printing it to where no room is gives $code"
expect_line said '^zerva: cannot print it: '
code=0
"$zerva" completion csh >/dev/null 2>&1 || code=$?
[ "$code" -eq 2 ] || fail "an unknown shell gives $code"
