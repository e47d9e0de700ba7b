#!/usr/bin/env bash
# make_man_page.sh NEQUAR OUTPUT
# The man page of nequar: what its help texts say, and what they do not.
set -euo pipefail
# shellcheck source=SCRIPTDIR/records.sh
source "$(dirname "${BASH_SOURCE[0]}")/records.sh"

# Running text as roff: backslashes and hyphens stand for themselves, no line begins with a request.
# A term is an option or operand, in bold, and what it takes, in italics, said in words:
#   --height INT:INT in [1 - 200]=12  ->  --height INT in [1 - 200], 12 if not given
page() {
    awk -F '\t' -v command="$1" '
        function roff(text) {
            gsub(/\\/, "\\e", text)
            gsub(/-/, "\\-", text)
            sub(/^[.\x27]/, "\\\\\\&&", text)
            return text
        }
        function term(text,    value, name) {
            name = text
            value = ""
            if (match(text, / /)) {
                name = substr(text, 1, RSTART - 1)
                value = substr(text, RSTART + 1)
            }
            sub(/,--/, ", --", name)
            sub(/ ?REQUIRED/, "", value)
            if (value == "TEXT" && name !~ /^-/) value = ""
            sub(/^[A-Z]+:\{/, "{", value)
            if (match(value, /^[A-Z]+:[A-Z]+ in /)) sub(/:[A-Z]+ in /, " in ", value)
            if (match(value, /=[^=]*$/))
                value = substr(value, 1, RSTART - 1) ", " substr(value, RSTART + 1) " if not given"
            gsub(/,/, ", ", value)
            gsub(/,  /, ", ", value)
            return "\\fB" roff(name) "\\fR" (value == "" ? "" : " \\fI" roff(value) "\\fR")
        }
        $1 == "summary" && !said++ { summary = $2; next }
        $1 == "summary" { print ".PP\n" roff($2) }
        $1 == "usage" && command != "" {
            sub(/^nequar [^ ]+ \[OPTIONS\] ?/, "", $2)
            print ".SS " roff("nequar " command " [OPTION ...] " $2)
            print roff(toupper(substr(summary, 1, 1)) substr(summary, 2)) "."
        }
        $1 == "section" {
            section = $2
            if (command != "" && section !~ /^(Positionals|Options)$/) print ".PP\n" roff(section) ":"
        }
        $1 == "entry" && $2 ~ /^-h,/ && command != "" { next }
        $1 == "entry" && section != "Subcommands" { print ".TP\n" term($2) "\n" roff($3) }'
}

{
    version=$("$nequar" --version)
    cat <<TEXT
.TH NEQUAR 1 "" "$version" "User Commands"
.SH NAME
nequar \- numerical linear algebra on Matrix Market and CSV files
.SH SYNOPSIS
.B nequar
.I COMMAND
.RI [ OPTION " ...] " FILE " ..."
.br
.B nequar
.RI [ COMMAND ]
.B \-\-help
.SH DESCRIPTION
nequar solves systems, decomposes matrices and analyses samples, with the operations of the library
nequar_algebra.
Matrices are read from Matrix Market files, dense or sparse; samples from CSV files, one sample a
line.
Results are printed, and written as Matrix Market files where an option asks for it; a file appears
whole or not at all.
.SH OPTIONS
TEXT
    records | page ""
    echo ".SH COMMANDS"
    while IFS= read -r command; do
        records "$command" | page "$command"
    done < <(commands)
    cat <<'TEXT'
.SH EXIT STATUS
.TP
.B 0
done
.TP
.B 1
the computation failed, and the library's own trace says where; or the result is not the expected one
.TP
.B 2
the arguments or the input are wrong: FILE:LINE and what is wrong there
.SH ENVIRONMENT
.TP
.B NEQUAR_KERNEL
.IR reference ", " baseline ", " avx2 " or " avx512 :
the best kernels that may be used; without it, the best that the CPU can run
.SH EXAMPLES
.TP
.B nequar solve A.mtx b.mtx \-o x.mtx
solves A x = b, says by which method, and how far the solution can be trusted
.TP
.B nequar svd A.mtx \-o factors
writes factors_U.mtx, factors_S.mtx and factors_V.mtx
.TP
.B nequar pca data.csv \-\-plot components.svg
draws the principal components of a table
TEXT
} >"$output"
