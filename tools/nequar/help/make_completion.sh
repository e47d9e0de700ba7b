#!/usr/bin/env bash
# make_completion.sh NEQUAR OUTPUT
# The completion of nequar's commands, their options, and the options' values in bash, from its help
# texts. Everything else completes to file names.
set -euo pipefail
# shellcheck source=SCRIPTDIR/records.sh
source "$(dirname "${BASH_SOURCE[0]}")/records.sh"

# The options of a command in one line, then a line "OPTION VALUE ..." for each that takes one of a
# few values.
options() {
    records "$1" | awk -F '\t' '
        $1 == "section" { section = $2 }
        $1 == "entry" && section == "Options" {
            split($2, part, " ")
            gsub(/,/, " ", part[1])
            all = all (all == "" ? "" : " ") part[1]
            if (match($2, /\{[^}]*\}/)) {
                values = substr($2, RSTART + 1, RLENGTH - 2)
                gsub(/,/, " ", values)
                choices = choices names[split(part[1], names, " ")] " " values "\n"
            }
        }
        END { print all; printf "%s", choices }'
}

{
    names=$(commands | paste -sd ' ')
    cat <<TEXT
# Completion of nequar for bash, made from its help texts.
_nequar() {
    local word=\${COMP_WORDS[COMP_CWORD]} before=\${COMP_WORDS[COMP_CWORD - 1]} words= values=
    if ((COMP_CWORD == 1)); then
        words="$names --help --version"
    else
        case \${COMP_WORDS[1]} in
TEXT
    for command in $names; do
        options "$command" | {
            IFS= read -r all
            printf '            %s)\n                words="%s"\n' "$command" "$all"
            while read -r option choices; do
                printf '                if [[ $before == %s ]]; then values="%s"; fi\n' "$option" "$choices"
            done
            printf '                ;;\n'
        }
    done
    cat <<'TEXT'
        esac
        if [[ -n $values ]]; then
            words=$values
        elif [[ $word != -* ]]; then
            words=
        fi
    fi
    COMPREPLY=()
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    fi
}
complete -o bashdefault -o default -F _nequar nequar
TEXT
} >"$output"
