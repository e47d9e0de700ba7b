#!/usr/bin/env bash
# check_help.sh NEQUAR MAN_PAGE.gz COMPLETION
# The man page and the completion hold every command and every option that the program's help names.
set -euo pipefail
nequar=$1 man_page=$2 completion=$3
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

page=$(gzip -dc "$man_page" | sed 's/\\-/-/g; s/\\f[BIR]//g')
# shellcheck disable=SC1090
source "$completion"
complete_words() {  # WORD ...: the completions of the last one, in COMPREPLY
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _nequar
}

commands=$("$nequar" --help | sed -n '/^Subcommands:/,$ s/^  \([a-z-]*\) .*/\1/p')
[[ $(wc -w <<<"$commands") -ge 26 ]] || fail "only these commands are in the help: $commands"
for command in $commands; do
    section=$(awk -v head=".SS nequar $command " 'index($0 " ", head) == 1 { inside = 1; next } /^\.S[SH]/ { inside = 0 } inside' <<<"$page")
    [[ -n $section ]] || fail "the man page has no section for $command"
    complete_words nequar "$command"
    [[ " ${COMPREPLY[*]} " == *" $command "* ]] || fail "$command is not completed"
    complete_words nequar "$command" -
    for option in $("$nequar" "$command" --help | grep -oE '^  -[^ ]+' | tr ',' ' '); do
        [[ " ${COMPREPLY[*]} " == *" $option "* ]] || fail "$command $option is not completed"
        [[ $option == -h || $option == --help || $section == *"$option"* ]] ||
            fail "the man page does not say $command $option"
    done
done
complete_words nequar solve --method q
[[ "${COMPREPLY[*]}" == "qrd qld" ]] || fail "--method q becomes ${COMPREPLY[*]}"
complete_words nequar solve A
[[ ${#COMPREPLY[@]} -eq 0 ]] || fail "file names are not left to the shell: ${COMPREPLY[*]}"

if command -v groff >/dev/null; then
    warnings=$(gzip -dc "$man_page" | groff -man -Tutf8 -ww -z 2>&1 || true)
    [[ -z $warnings ]] || fail "groff says: $warnings"
fi
[[ $failures -eq 0 ]] && echo good
