// The table of kernels: one function pointer for each loop, one table for each variant (reference,
// baseline, avx2, avx512) and element type.
//
//      face (*.cpp here)  --->  Table<Real>  --->  reference/ | simd/ compiled for one instruction
//      set
//
// Units that are compiled for one instruction set include this file, so it holds aggregates only:
// no member function, no inline function, no standard header but <cstddef>. Whatever the linker
// keeps of such a unit is reached through its table alone.
#pragma once

#include <cstddef>

#include "kernel/orders.h"

namespace nequar::kernel {

// A matrix operand without its sizes: element (i, j) is data[i * row_stride + j * column_stride].
template <class Real>
struct Block {
    Real* data;
    std::ptrdiff_t row_stride;
    std::ptrdiff_t column_stride;
};

template <class Real>
struct Table {
    const char* name;

    // ---- level 1, contiguous ----
    void (*add)(std::ptrdiff_t n, const Real* a, const Real* b, Real* out);
    void (*subtract)(std::ptrdiff_t n, const Real* a, const Real* b, Real* out);
    void (*add_weighted)(std::ptrdiff_t n, const Real* a, const Real* b, Real wa, Real wb,
                         Real* out);
    void (*add_constant)(std::ptrdiff_t n, const Real* a, Real c, Real* out);
    void (*multiply_by)(std::ptrdiff_t n, const Real* a, Real c, Real* out);
    void (*multiply_elementwise)(std::ptrdiff_t n, const Real* a, const Real* b, Real* out);
    void (*fill)(std::ptrdiff_t n, Real value, Real* out);
    void (*add_reversed)(std::ptrdiff_t n, Real alpha, Real* x);

    Real (*sum)(std::ptrdiff_t n, const Real* x);
    Real (*squares_about)(std::ptrdiff_t n, const Real* x, Real centre);
    Real (*largest)(std::ptrdiff_t n, const Real* x, Real other);
    Real (*smallest)(std::ptrdiff_t n, const Real* x, Real other);

    // ---- level 1, strided: each vector is followed by its stride ----
    Real (*dot)(std::ptrdiff_t n, const Real* x, std::ptrdiff_t sx, const Real* y,
                std::ptrdiff_t sy);
    Real (*sum_of_magnitudes)(std::ptrdiff_t n, const Real* x, std::ptrdiff_t sx);
    Real (*sum_of_squares)(std::ptrdiff_t n, const Real* x, std::ptrdiff_t sx);
    Real (*distance_squared)(std::ptrdiff_t n, const Real* x, std::ptrdiff_t sx, const Real* y,
                             std::ptrdiff_t sy);
    void (*squared_distances)(std::ptrdiff_t n, std::ptrdiff_t d, const Real* x,
                              Block<const Real> samples, Real* out);
    void (*axpy)(std::ptrdiff_t n, Real alpha, const Real* x, std::ptrdiff_t sx, Real* y,
                 std::ptrdiff_t sy);
    void (*scale)(std::ptrdiff_t n, Real alpha, Real* x, std::ptrdiff_t sx);
    void (*copy)(std::ptrdiff_t n, const Real* x, std::ptrdiff_t sx, Real* y, std::ptrdiff_t sy);
    void (*swap)(std::ptrdiff_t n, Real* x, std::ptrdiff_t sx, Real* y, std::ptrdiff_t sy);
    void (*rotate)(std::ptrdiff_t n, Real* x, std::ptrdiff_t sx, Real* y, std::ptrdiff_t sy, Real c,
                   Real s);
    std::ptrdiff_t (*index_of_largest_magnitude)(std::ptrdiff_t n, const Real* x,
                                                 std::ptrdiff_t sx);

    // ---- level 2: A is m x n, T is n x n ----
    void (*gemv)(std::ptrdiff_t m, std::ptrdiff_t n, Real alpha, Block<const Real> a, const Real* x,
                 std::ptrdiff_t sx, bool accumulate, Real* y, std::ptrdiff_t sy);
    void (*ger)(std::ptrdiff_t m, std::ptrdiff_t n, Real alpha, const Real* x, std::ptrdiff_t sx,
                const Real* y, std::ptrdiff_t sy, Block<Real> a);
    void (*trsv)(bool lower, bool unit, std::ptrdiff_t n, Block<const Real> t, Real* x,
                 std::ptrdiff_t sx);

    // ---- level 3: C is m x n, A is m x k, B is k x n; T is m x m beside an m x n B ----
    void (*gemm)(std::ptrdiff_t m, std::ptrdiff_t n, std::ptrdiff_t k, Real alpha,
                 const Block<const Real>& a, const Block<const Real>& b, bool accumulate,
                 const Block<Real>& c);
    void (*gemmt)(bool lower, std::ptrdiff_t n, std::ptrdiff_t k, Real alpha, Block<const Real> a,
                  Block<const Real> b, bool accumulate, Block<Real> c);
    void (*trsm)(bool lower, bool unit, std::ptrdiff_t m, std::ptrdiff_t n, Block<const Real> t,
                 Block<Real> b);
    void (*trmm)(bool lower, bool unit, std::ptrdiff_t m, std::ptrdiff_t n, Block<const Real> t,
                 Block<Real> b);

    // ---- whole matrices ----
    void (*copy_matrix)(std::ptrdiff_t m, std::ptrdiff_t n, Block<const Real> a, Block<Real> b);
    void (*transpose_in_place)(std::ptrdiff_t n, Block<Real> a);
    void (*fill_matrix)(std::ptrdiff_t m, std::ptrdiff_t n, Real value, Block<Real> a);

    // ---- packed by diagonals: the lower trapezoid of a height x width A ----
    void (*unpack_lower)(std::ptrdiff_t height, std::ptrdiff_t width, const Real* packed,
                         Block<Real> a);
    void (*pack_lower)(std::ptrdiff_t height, std::ptrdiff_t width, Block<const Real> a,
                       Real* packed);
    void (*unpack_symmetric)(std::ptrdiff_t n, const Real* packed, Block<Real> a);
    void (*pack_symmetric)(std::ptrdiff_t n, Block<const Real> a, Real* packed);

    // ---- eliminations of what is small, or a step: see kernel.h ----
    std::ptrdiff_t (*lu_small)(bool fused, std::ptrdiff_t n, const Block<const Real>& from,
                               const int* rows, const Block<Real>& to);
    std::ptrdiff_t (*cholesky_small)(bool fused, std::ptrdiff_t n, const Block<const Real>& from,
                                     const Block<Real>& to);
    std::ptrdiff_t (*lu_pivoted_small)(std::ptrdiff_t n, const Block<Real>& a, int* pivots);
    std::ptrdiff_t (*lu_panel)(bool fused, std::ptrdiff_t w, std::ptrdiff_t m, Real* t,
                               std::ptrdiff_t stride, int* pivots);
    void (*last_largest_of_columns)(std::ptrdiff_t m, std::ptrdiff_t w, const Real* a,
                                    std::ptrdiff_t row_stride, const int* rows, Real* largest,
                                    Real* place);
    void (*eliminate_column)(std::ptrdiff_t m, std::ptrdiff_t n, std::ptrdiff_t column,
                             const Real* pivot_row, const Real* weight, Real* a,
                             std::ptrdiff_t row_stride, Real* factors, Real* largest);

    // ---- rotations of rows: see kernel.h ----
    void (*rotate_rows)(std::ptrdiff_t sweeps, std::ptrdiff_t count, std::ptrdiff_t n,
                        const Real* pairs, std::ptrdiff_t sweep_stride, Real* a,
                        std::ptrdiff_t row_stride);
    void (*rotate_with_rows)(std::ptrdiff_t count, std::ptrdiff_t n, Real* x, Real* rows,
                             std::ptrdiff_t row_stride, const Real* pairs);

    // ---- symmetric: y := A x from the upper triangle of A, rows contiguous ----
    void (*symv_upper)(std::ptrdiff_t n, const Real* a, std::ptrdiff_t a_row, const Real* x,
                       Real* y);
};

// The tables of the variants that were compiled in. Reading one is safe on every CPU; calling its
// entries is not.
#define NEQUAR_DECLARE_TABLES(variant)      \
    namespace variant {                     \
    const Table<double>& table_of_double(); \
    const Table<float>& table_of_float();   \
    }
NEQUAR_DECLARE_TABLES(reference)
NEQUAR_DECLARE_TABLES(baseline)
#if defined(__x86_64__)
NEQUAR_DECLARE_TABLES(avx2)
NEQUAR_DECLARE_TABLES(avx512)
#endif
#undef NEQUAR_DECLARE_TABLES

}  // namespace nequar::kernel
