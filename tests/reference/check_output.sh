#!/usr/bin/env bash
# check_output.sh PROGRAM EXPECTED: the program ends well and prints exactly that.
set -euo pipefail
printed=$("$1" && echo end)
diff -u "$2" <(printf '%s\n' "${printed%$'\n'end}")
