#!/usr/bin/env bash
# check_includes.sh ROOT
# Reads every #include of ROOT/src and ROOT/include and says where the layers are broken:
#
#   core  <  kernel  <  <family>/algorithm  <  object layer (the rest of <family>, public headers)
#
# Calls, and with them includes, only go down; families build on each other in the order of `below`;
# and no chain of includes leads back to where it began.
set -euo pipefail
root=$(cd "$1" && pwd -P)
cd "$root"

# The families that a family may build on.
declare -A below=(
    [frame]=""
    [structured]="frame"
    [algebra]="frame structured"
    [factorization]="frame structured algebra"
    [linear_equation]="frame structured algebra factorization"
    [sparse]="frame structured"
    [statistics]="frame structured algebra factorization"
)

# place_of FILE: its layer and its family.
place_of() {
    local rest family
    case $1 in
        src/core/*) layer=core family_of=- ;;
        src/kernel/*) layer=kernel family_of=- ;;
        include/nequar_algebra/nequar_algebra.h) layer=everything family_of=- ;;
        include/nequar_algebra/*)
            rest=${1#include/nequar_algebra/}
            family=${rest%%/*}
            layer=public family_of=${family%.h}
            ;;
        src/*/algorithm/*) rest=${1#src/} layer=algorithm family_of=${rest%%/*} ;;
        src/*/*) rest=${1#src/} layer=object family_of=${rest%%/*} ;;
        *) layer=unknown family_of=- ;;
    esac
    if [[ $family_of != - && ! -v below[$family_of] ]]; then
        layer=unknown
    fi
}

declare -A may_include=(
    [core]="core"
    [kernel]="core kernel"
    [algorithm]="core kernel algorithm"
    [object]="core kernel algorithm object public"
    [public]="public"
    [everything]="public"
)

errors=0
complain() {
    echo "$*"
    errors=$((errors + 1))
}

# resolve FILE NAME: the path of an included file; empty when it is none of ours.
resolve() {
    local candidate
    for candidate in "$(dirname "$1")/$2" "src/$2" "include/$2"; do
        if [[ -f $candidate ]]; then
            realpath --relative-to="$root" "$candidate"
            return
        fi
    done
}

edges=$(mktemp)
trap 'rm -f "$edges"' EXIT
files=0
while IFS= read -r file; do
    files=$((files + 1))
    place_of "$file"
    from_layer=$layer from_family=$family_of
    if [[ $from_layer == unknown ]]; then
        complain "$file: belongs to no layer and family that is known here"
        continue
    fi
    while IFS=: read -r line text; do
        [[ $text =~ [\"\<]([^\"\>]+)[\"\>] ]] || continue
        name=${BASH_REMATCH[1]}
        target=$(resolve "$file" "$name")
        if [[ -z $target ]]; then
            [[ $text == *\"* ]] && complain "$file:$line: \"$name\" is not found in src or include"
            continue
        fi
        echo "$file $target" >>"$edges"
        place_of "$target"
        if [[ " ${may_include[$from_layer]} " != *" $layer "* ]]; then
            complain "$file:$line: the $from_layer layer includes $target of the $layer layer"
        elif [[ $family_of != - && $from_family != - && $family_of != "$from_family" &&
            " ${below[$from_family]} " != *" $family_of "* ]]; then
            complain "$file:$line: $from_family includes $target, and $family_of does not stand below it"
        fi
    done < <(grep -nE '^[[:space:]]*#[[:space:]]*include' "$file" || true)
done < <(find src include -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.inl' \) | sort)

((files > 0)) || complain "there are no sources in $root"
if ! circle=$(tsort "$edges" 2>&1 >/dev/null); then
    complain "a circle of includes: $(grep -v loop <<<"$circle" | sed 's/^tsort: //' | paste -sd' ')"
fi
echo "$files files, $(wc -l <"$edges") includes, $errors errors"
((errors == 0))
