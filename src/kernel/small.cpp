// The face of the eliminations of what is small, or a step, and of rotations.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"

namespace nequar::kernel {

template <class Real>
Size lu_small(Rounding rounding, const View<const Real>& from, const int* rows,
              const View<Real>& to) {
    return table<Real>().lu_small(rounding == Rounding::fused, to.height, block_of(from), rows,
                                  block_of(to));
}

template <class Real>
Size cholesky_small(Rounding rounding, const View<const Real>& from, const View<Real>& to) {
    return table<Real>().cholesky_small(rounding == Rounding::fused, to.height, block_of(from),
                                        block_of(to));
}

template <class Real>
Size lu_pivoted_small(const View<Real>& a, int* pivots) {
    return table<Real>().lu_pivoted_small(a.height, block_of(a), pivots);
}

template <class Real>
Size lu_panel(Rounding rounding, const View<Real>& t, int* pivots) {
    return table<Real>().lu_panel(rounding == Rounding::fused, t.height, t.width, t.data,
                                  t.row_stride, pivots);
}

template <class Real>
void last_largest_of_columns(const View<const Real>& a, const int* rows, Size m, Real* largest,
                             Real* place) {
    table<Real>().last_largest_of_columns(m, a.width, a.data, a.row_stride, rows, largest, place);
}

template <class Real>
void eliminate_column(Size column, const Real* pivot_row, const Real* weight, const View<Real>& a,
                      Real* factors, Real* largest) {
    table<Real>().eliminate_column(a.height, a.width, column, pivot_row, weight, a.data,
                                   a.row_stride, factors, largest);
}

template <class Real>
void rotate_rows(const View<const Real>& pairs, const View<Real>& a) {
    table<Real>().rotate_rows(pairs.height, a.height - 1, a.width, pairs.data, pairs.row_stride,
                              a.data, a.row_stride);
}

template <class Real>
void rotate_with_rows(const Real* pairs, Real* x, const View<Real>& a) {
    table<Real>().rotate_with_rows(a.height, a.width, x, a.data, a.row_stride, pairs);
}

template <class Real>
void symv_upper(const View<const Real>& a, const Real* x, Real* y) {
    table<Real>().symv_upper(a.height, a.data, a.row_stride, x, y);
}

#define NEQUAR_INSTANTIATE(Real)                                                              \
    template Size lu_small(Rounding, const View<const Real>&, const int*, const View<Real>&); \
    template Size cholesky_small(Rounding, const View<const Real>&, const View<Real>&);       \
    template Size lu_pivoted_small(const View<Real>&, int*);                                  \
    template Size lu_panel(Rounding, const View<Real>&, int*);                                \
    template void last_largest_of_columns(const View<const Real>&, const int*, Size, Real*,   \
                                          Real*);                                             \
    template void eliminate_column(Size, const Real*, const Real*, const View<Real>&, Real*,  \
                                   Real*);                                                    \
    template void rotate_rows(const View<const Real>&, const View<Real>&);                    \
    template void rotate_with_rows(const Real*, Real*, const View<Real>&);                    \
    template void symv_upper(const View<const Real>&, const Real*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar::kernel
