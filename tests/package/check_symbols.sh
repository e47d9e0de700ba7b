#!/usr/bin/env bash
# check_symbols.sh EXPECTED LIST_SYMBOLS...
# The library shows the functions that are written down, no fewer and no more. Status 77: skipped.
set -euo pipefail
expected=$1
shift
shown=$(mktemp)
trap 'rm -f "$shown"' EXIT
"$@" "$shown" || exit $?
[[ -s $shown ]] || { echo "FAILED: nothing is shown"; exit 1; }

vanished=$(LC_ALL=C comm -23 "$expected" "$shown")
appeared=$(LC_ALL=C comm -13 "$expected" "$shown")
if [[ -n $vanished ]]; then
    echo "FAILED: these functions are no longer shown; programs that use them will not start:"
    sed 's/^/  - /' <<<"$vanished"
fi
if [[ -n $appeared ]]; then
    echo "FAILED: these functions are shown and not written down:"
    sed 's/^/  + /' <<<"$appeared"
fi
[[ -z $vanished$appeared ]] && echo good && exit 0
echo "Where that is wanted, renew abi/nequar_algebra.symbols: cmake --build build/release --target nequar_symbols"
exit 1
