# Sourced by make_*.sh NEQUAR OUTPUT, which write OUTPUT from the help texts of the program NEQUAR.
# shellcheck shell=bash disable=SC2120
nequar=$1 output=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
mkdir -p "$(dirname "$output")"

# records [COMMAND]: its help text, as read_help.awk gives it.
records() { "$nequar" "$@" --help | awk -f "$here/read_help.awk"; }

# The names of the commands, one a line.
commands() {
    records | awk -F '\t' '$1 == "section" { s = $2 } $1 == "entry" && s == "Subcommands" { print $2 }'
}
