#!/usr/bin/env bash
# list_symbols.sh LIBRARY INCLUDE_DIR [OUTPUT]
# The functions that the shared library shows its users, one a line, demangled and sorted. Listed are
# the library's own functions whose name stands in a public section of a public header, either as a
# declaration or as a call that is compiled into users' programs, and the operations for heirs, whose
# names begin with z. What is left out may change without anybody's noticing: instances of the
# standard library's templates, private members, and the tables that a compiler makes of classes.
# Status 77: nm or c++filt is not installed.
set -euo pipefail
library=$1 include_dir=$2 output=${3:-/dev/stdout}
export LC_ALL=C
command -v nm >/dev/null && command -v c++filt >/dev/null || exit 77

find "$include_dir" -name '*.h' -print | sort | xargs awk '
    FNR == 1 { hidden = 0 }
    /^(private|protected):/ { hidden = 1 }
    /^public:/ || /^};/ { hidden = 0 }
    {
        text = $0
        sub(/\/\/.*/, "", text)
        while (match(text, /[A-Za-z_][A-Za-z_0-9]*\(/)) {
            if (!hidden || substr(text, RSTART, 1) == "z") print substr(text, RSTART, RLENGTH - 1)
            text = substr(text, RSTART + RLENGTH)
        }
    }' | sort -u |
    awk '
        NR == FNR { is_public[$0] = 1; next }
        # What stands before the first parenthesis, all template arguments left out: class::name, with
        # the result before it where the symbol is an instance of a function template.
        function path_of(symbol,    i, c, depth, path) {
            if (symbol ~ /operator/) return "operator"
            depth = 0
            path = ""
            for (i = 1; i <= length(symbol); i++) {
                c = substr(symbol, i, 1)
                if (c == "<") depth++
                if (c == "(" && depth == 0) break
                if (depth == 0) path = path c
                if (c == ">") depth--
            }
            sub(/.* /, "", path)
            return path
        }
        /^(typeinfo|vtable|VTT|guard variable|construction vtable|non-virtual thunk)/ { next }
        !/(^|[ &*])(nequar::|L?CNq|Nq_|operator==\(CNq)/ || /^[^(]*std::_/ { next }
        {
            path = path_of($0)
            n = split(path, part, "::")
            name = part[n]
            # Constructors of classes that are made by their heirs stand in no public section.
            if (path == "operator" || name in is_public || name ~ /^~/ || (n > 1 && name == part[n - 1]))
                print
        }' \
        - <(nm -D --defined-only "$library" | awk '{ print $3 }' | c++filt | sort -u) >"$output"
