// The table of one unit: every kernel compiled for its instruction set.
#pragma once

#include "kernel/simd/bands.h"
#include "kernel/simd/elementwise.h"
#include "kernel/simd/factor.h"
#include "kernel/simd/gemm.h"
#include "kernel/simd/level2.h"
#include "kernel/simd/reduction.h"
#include "kernel/simd/rotations.h"
#include "kernel/simd/triangular.h"
#include "kernel/simd/whole.h"

namespace nequar::kernel::NEQUAR_UNIT {

template <class Real>
constexpr Table<Real> table_named(const char* name) {
    return {
        .name = name,
        .add = add<Real>,
        .subtract = subtract<Real>,
        .add_weighted = add_weighted<Real>,
        .add_constant = add_constant<Real>,
        .multiply_by = multiply_by<Real>,
        .multiply_elementwise = multiply_elementwise<Real>,
        .fill = fill<Real>,
        .add_reversed = add_reversed<Real>,
        .dot = dot<Real>,
        .sum_of_magnitudes = sum_of_magnitudes<Real>,
        .sum_of_squares = sum_of_squares<Real>,
        .distance_squared = distance_squared<Real>,
        .squared_distances = squared_distances<Real>,
        .axpy = axpy<Real>,
        .scale = scale<Real>,
        .copy = copy<Real>,
        .swap = swap<Real>,
        .rotate = rotate<Real>,
        .index_of_largest_magnitude = index_of_largest_magnitude<Real>,
        .gemv = gemv<Real>,
        .ger = ger<Real>,
        .trsv = trsv<Real>,
        .gemm = gemm<Real>,
        .gemmt = gemmt<Real>,
        .trsm = trsm<Real>,
        .trmm = trmm<Real>,
        .copy_matrix = copy_matrix<Real>,
        .transpose_in_place = transpose_in_place<Real>,
        .fill_matrix = fill_matrix<Real>,
        .unpack_lower = unpack_lower<Real>,
        .pack_lower = pack_lower<Real>,
        .unpack_symmetric = unpack_symmetric<Real>,
        .pack_symmetric = pack_symmetric<Real>,
        .lu_small = lu_small<Real>,
        .cholesky_small = cholesky_small<Real>,
        .lu_panel = lu_panel<Real>,
        .last_largest_of_columns = last_largest_of_columns<Real>,
        .eliminate_column = eliminate_column<Real>,
        .rotate_rows = rotate_rows<Real>,
        .rotate_with_rows = rotate_with_rows<Real>,
        .symv_upper = symv_upper<Real>,
    };
}

}  // namespace nequar::kernel::NEQUAR_UNIT
