// The face of levels 2 and 3 and of whole matrices: views in, one call of the table each.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"
#include "kernel/orientation.h"

namespace nequar::kernel {

template <class Real>
void gemv(Real alpha, const View<const Real>& a, const Strided<const Real>& x, Update update,
          const Strided<Real>& y) {
    table<Real>().gemv(a.height, a.width, alpha, block_of(a), x.data, x.stride,
                       update == Update::accumulate, y.data, y.stride);
}

template <class Real>
void ger(Real alpha, const Strided<const Real>& x, const Strided<const Real>& y,
         const View<Real>& a) {
    if (a.row_stride < 0 && a.height > 0)
        return ger<Real>(alpha, turned(x), y, with_rows_turned(a));
    if (a.column_stride < 0 && a.width > 0)
        return ger<Real>(alpha, x, turned(y), with_columns_turned(a));
    table<Real>().ger(a.height, a.width, alpha, x.data, x.stride, y.data, y.stride, block_of(a));
}

template <class Real>
void trsv(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const Strided<Real>& x) {
    table<Real>().trsv(triangle == Triangle::lower, diagonal == Diagonal::unit, x.size, block_of(t),
                       x.data, x.stride);
}

// The product with every dimension the way round that suits it.
template <class Real>
[[gnu::noinline]] void gemm_turned(Real alpha, View<const Real> a, View<const Real> b,
                                   Update update, View<Real> c) {
    turn_forwards(a, b, c);
    table<Real>().gemm(c.height, c.width, a.width, alpha, block_of(a), block_of(b),
                       update == Update::accumulate, block_of(c));
}

template <class Real>
void gemm(Real alpha, const View<const Real>& a, const View<const Real>& b, Update update,
          const View<Real>& c) {
    if (run_backwards(a, b, c)) return gemm_turned(alpha, a, b, update, c);
    table<Real>().gemm(c.height, c.width, a.width, alpha, block_of(a), block_of(b),
                       update == Update::accumulate, block_of(c));
}

template <class Real>
void gemmt(Triangle triangle, Real alpha, const View<const Real>& a, const View<const Real>& b,
           Update update, const View<Real>& c) {
    if (a.column_stride < 0 && b.row_stride < 0 && a.width > 0)
        return gemmt<Real>(triangle, alpha, with_columns_turned(a), with_rows_turned(b), update, c);
    table<Real>().gemmt(triangle == Triangle::lower, c.height, a.width, alpha, block_of(a),
                        block_of(b), update == Update::accumulate, block_of(c));
}

template <class Real>
void syrk(Triangle triangle, Real alpha, const View<const Real>& a, Update update,
          const View<Real>& c) {
    gemmt(triangle, alpha, a, a.transposed(), update, c);
}

template <class Real>
void trsm(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const View<Real>& b) {
    if (b.column_stride < 0 && b.width > 0)
        return trsm<Real>(triangle, diagonal, t, with_columns_turned(b));
    table<Real>().trsm(triangle == Triangle::lower, diagonal == Diagonal::unit, b.height, b.width,
                       block_of(t), block_of(b));
}

template <class Real>
void trmm(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const View<Real>& b) {
    if (b.column_stride < 0 && b.width > 0)
        return trmm<Real>(triangle, diagonal, t, with_columns_turned(b));
    table<Real>().trmm(triangle == Triangle::lower, diagonal == Diagonal::unit, b.height, b.width,
                       block_of(t), block_of(b));
}

template <class Real>
void copy(const View<const Real>& a, const View<Real>& b) {
    if (b.is_empty()) return;
    if (a.row_stride < 0 && b.row_stride < 0)
        return copy<Real>(with_rows_turned(a), with_rows_turned(b));
    if (a.column_stride < 0 && b.column_stride < 0)
        return copy<Real>(with_columns_turned(a), with_columns_turned(b));
    table<Real>().copy_matrix(b.height, b.width, block_of(a), block_of(b));
}

template <class Real>
void transpose(const View<const Real>& a, const View<Real>& b) {
    copy(a.transposed(), b);
}

template <class Real>
void transpose_in_place(const View<Real>& a) {
    table<Real>().transpose_in_place(a.height, block_of(a));
}

template <class Real>
void fill(Real value, const View<Real>& a) {
    if (a.is_empty()) return;
    if (a.row_stride < 0) return fill<Real>(value, with_rows_turned(a));
    if (a.column_stride < 0) return fill<Real>(value, with_columns_turned(a));
    table<Real>().fill_matrix(a.height, a.width, value, block_of(a));
}

template <class Real>
void gather_rows(const View<const Real>& a, const int* perm, const View<Real>& b) {
    const Table<Real>& kernels = table<Real>();
    for (Size i = 0; i < b.height; ++i) {
        kernels.copy(b.width, a.data + perm[i] * a.row_stride, a.column_stride,
                     b.data + i * b.row_stride, b.column_stride);
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                                  \
    template void gemv(Real, const View<const Real>&, const Strided<const Real>&, Update,         \
                       const Strided<Real>&);                                                     \
    template void ger(Real, const Strided<const Real>&, const Strided<const Real>&,               \
                      const View<Real>&);                                                         \
    template void trsv(Triangle, Diagonal, const View<const Real>&, const Strided<Real>&);        \
    template void gemm(Real, const View<const Real>&, const View<const Real>&, Update,            \
                       const View<Real>&);                                                        \
    template void gemmt(Triangle, Real, const View<const Real>&, const View<const Real>&, Update, \
                        const View<Real>&);                                                       \
    template void syrk(Triangle, Real, const View<const Real>&, Update, const View<Real>&);       \
    template void trsm(Triangle, Diagonal, const View<const Real>&, const View<Real>&);           \
    template void trmm(Triangle, Diagonal, const View<const Real>&, const View<Real>&);           \
    template void copy(const View<const Real>&, const View<Real>&);                               \
    template void transpose(const View<const Real>&, const View<Real>&);                          \
    template void transpose_in_place(const View<Real>&);                                          \
    template void fill(Real, const View<Real>&);                                                  \
    template void gather_rows(const View<const Real>&, const int*, const View<Real>&);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar::kernel
