// The table of one unit: every kernel compiled for its instruction set.
#pragma once

#include "kernel/simd/bands.h"
#include "kernel/simd/elementwise.h"
#include "kernel/simd/factor.h"
#include "kernel/simd/gemm.h"
#include "kernel/simd/level2.h"
#include "kernel/simd/pivoted.h"
#include "kernel/simd/reduction.h"
#include "kernel/simd/rotations.h"
#include "kernel/simd/triangular.h"
#include "kernel/simd/whole.h"

namespace nequar::kernel::NEQUAR_UNIT {

template <class Real>
constexpr Table<Real> table_named(const char* name) {
    return {
        .name = name,
#include "kernel/table_entries.inl"
    };
}

}  // namespace nequar::kernel::NEQUAR_UNIT
