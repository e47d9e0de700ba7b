// The face of levels 2 and 3 and of whole matrices: views in, one call of the table each.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"
#include "kernel/orientation.h"

namespace nequar::kernel {

template <class Real>
void gemv(Real alpha, View<const Real> a, Strided<const Real> x, Update update, Strided<Real> y) {
    table<Real>().gemv(a.height, a.width, alpha, block_of(a), x.data, x.stride,
                       update == Update::accumulate, y.data, y.stride);
}

template <class Real>
void ger(Real alpha, Strided<const Real> x, Strided<const Real> y, View<Real> a) {
    if (a.row_stride < 0 && a.height > 0) {
        a = with_rows_turned(a);
        x = turned(x);
    }
    if (a.column_stride < 0 && a.width > 0) {
        a = with_columns_turned(a);
        y = turned(y);
    }
    table<Real>().ger(a.height, a.width, alpha, x.data, x.stride, y.data, y.stride, block_of(a));
}

template <class Real>
void trsv(Triangle triangle, Diagonal diagonal, View<const Real> t, Strided<Real> x) {
    table<Real>().trsv(triangle == Triangle::lower, diagonal == Diagonal::unit, x.size, block_of(t),
                       x.data, x.stride);
}

template <class Real>
void gemm(Real alpha, View<const Real> a, View<const Real> b, Update update, View<Real> c) {
    turn_forwards(a, b, c);
    table<Real>().gemm(c.height, c.width, a.width, alpha, block_of(a), block_of(b),
                       update == Update::accumulate, block_of(c));
}

template <class Real>
void gemmt(Triangle triangle, Real alpha, View<const Real> a, View<const Real> b, Update update,
           View<Real> c) {
    if (a.column_stride < 0 && b.row_stride < 0 && a.width > 0) {
        a = with_columns_turned(a);
        b = with_rows_turned(b);
    }
    table<Real>().gemmt(triangle == Triangle::lower, c.height, a.width, alpha, block_of(a),
                        block_of(b), update == Update::accumulate, block_of(c));
}

template <class Real>
void syrk(Triangle triangle, Real alpha, View<const Real> a, Update update, View<Real> c) {
    gemmt(triangle, alpha, a, a.transposed(), update, c);
}

template <class Real>
void trsm(Triangle triangle, Diagonal diagonal, View<const Real> t, View<Real> b) {
    if (b.column_stride < 0 && b.width > 0) b = with_columns_turned(b);
    table<Real>().trsm(triangle == Triangle::lower, diagonal == Diagonal::unit, b.height, b.width,
                       block_of(t), block_of(b));
}

template <class Real>
void trmm(Triangle triangle, Diagonal diagonal, View<const Real> t, View<Real> b) {
    if (b.column_stride < 0 && b.width > 0) b = with_columns_turned(b);
    table<Real>().trmm(triangle == Triangle::lower, diagonal == Diagonal::unit, b.height, b.width,
                       block_of(t), block_of(b));
}

template <class Real>
void copy(View<const Real> a, View<Real> b) {
    if (b.is_empty()) return;
    if (a.row_stride < 0 && b.row_stride < 0) {
        a = with_rows_turned(a);
        b = with_rows_turned(b);
    }
    if (a.column_stride < 0 && b.column_stride < 0) {
        a = with_columns_turned(a);
        b = with_columns_turned(b);
    }
    table<Real>().copy_matrix(b.height, b.width, block_of(a), block_of(b));
}

template <class Real>
void transpose(View<const Real> a, View<Real> b) {
    copy(a.transposed(), b);
}

template <class Real>
void transpose_in_place(View<Real> a) {
    table<Real>().transpose_in_place(a.height, block_of(a));
}

template <class Real>
void fill(Real value, View<Real> a) {
    if (a.is_empty()) return;
    if (a.row_stride < 0) a = with_rows_turned(a);
    if (a.column_stride < 0) a = with_columns_turned(a);
    table<Real>().fill_matrix(a.height, a.width, value, block_of(a));
}

template <class Real>
void gather_rows(View<const Real> a, const int* perm, View<Real> b) {
    const Table<Real>& kernels = table<Real>();
    for (Size i = 0; i < b.height; ++i) {
        kernels.copy(b.width, a.data + perm[i] * a.row_stride, a.column_stride,
                     b.data + i * b.row_stride, b.column_stride);
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                                 \
    template void gemv(Real, View<const Real>, Strided<const Real>, Update, Strided<Real>);      \
    template void ger(Real, Strided<const Real>, Strided<const Real>, View<Real>);               \
    template void trsv(Triangle, Diagonal, View<const Real>, Strided<Real>);                     \
    template void gemm(Real, View<const Real>, View<const Real>, Update, View<Real>);            \
    template void gemmt(Triangle, Real, View<const Real>, View<const Real>, Update, View<Real>); \
    template void syrk(Triangle, Real, View<const Real>, Update, View<Real>);                    \
    template void trsm(Triangle, Diagonal, View<const Real>, View<Real>);                        \
    template void trmm(Triangle, Diagonal, View<const Real>, View<Real>);                        \
    template void copy(View<const Real>, View<Real>);                                            \
    template void transpose(View<const Real>, View<Real>);                                       \
    template void transpose_in_place(View<Real>);                                                \
    template void fill(Real, View<Real>);                                                        \
    template void gather_rows(View<const Real>, const int*, View<Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar::kernel
