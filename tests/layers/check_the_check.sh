#!/usr/bin/env bash
# check_the_check.sh CHECK: builds small trees with one fault each and wants every fault to be found.
set -euo pipefail
check=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# tree: a sound one.
tree() {
    rm -rf "$work/tree"
    mkdir -p "$work"/tree/src/{core,kernel,frame/algorithm,algebra/algorithm} "$work"/tree/include/nequar_algebra/frame
    cd "$work/tree"
    echo '#pragma once' | tee src/core/view.h include/nequar_algebra/frame/class.h >/dev/null
    echo '#include "nequar_algebra/frame/class.h"' | tee include/nequar_algebra/{frame,algebra}.h >/dev/null
    echo '#include "nequar_algebra/algebra.h"' >include/nequar_algebra/nequar_algebra.h
    echo '#include "core/view.h"' | tee src/kernel/kernel.h src/frame/algorithm/sort.h >/dev/null
    printf '#include "kernel/kernel.h"\n#include "frame/algorithm/sort.h"\n#include <cmath>\n' >src/algebra/algorithm/add.h
    printf '#include "algebra/algorithm/add.h"\n#include "nequar_algebra/algebra.h"\n' >src/algebra/add.cpp
}
# expect TEXT: the check fails and says so.
expect() {
    if output=$(bash "$check" "$work/tree"); then
        echo "not found: $1"
        exit 1
    fi
    grep -qF "$1" <<<"$output" || { echo "expected \"$1\", got: $output"; exit 1; }
}

tree
bash "$check" "$work/tree"
tree; echo '#include "kernel/kernel.h"' >>src/core/view.h
expect "the core layer includes src/kernel/kernel.h"
tree; echo '#include "nequar_algebra/frame.h"' >>src/algebra/algorithm/add.h
expect "the algorithm layer includes include/nequar_algebra/frame.h"
tree; echo '#include "core/view.h"' >>include/nequar_algebra/frame.h
expect "the public layer includes src/core/view.h"
tree; echo '#include "algebra/algorithm/add.h"' >src/frame/algorithm/up.h
expect "algebra does not stand below it"
tree; echo '#include "other.h"' >src/core/one.h; echo '#include "core/one.h"' >src/core/other.h
expect "a circle of includes: src/core/o"
tree; echo '#include "core/gone.h"' >src/core/one.h
expect '"core/gone.h" is not found'
tree; mkdir src/stray; echo >src/stray/a.h
expect "src/stray/a.h: belongs to no layer"
echo good
