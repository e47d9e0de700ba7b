// The face of level 1: contiguous and strided vectors.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"
#include "kernel/orientation.h"
#include "kernel/values.h"

namespace nequar::kernel {

template <class Real>
void add(Size n, const Real* a, const Real* b, Real* out) {
    table<Real>().add(n, a, b, out);
}

template <class Real>
void subtract(Size n, const Real* a, const Real* b, Real* out) {
    table<Real>().subtract(n, a, b, out);
}

template <class Real>
void add_weighted(Size n, const Real* a, const Real* b, Real wa, Real wb, Real* out) {
    table<Real>().add_weighted(n, a, b, wa, wb, out);
}

template <class Real>
void add_constant(Size n, const Real* a, Real c, Real* out) {
    table<Real>().add_constant(n, a, c, out);
}

template <class Real>
void scale(Size n, const Real* a, Real c, Real* out) {
    table<Real>().multiply_by(n, a, c, out);
}

template <class Real>
void multiply_elementwise(Size n, const Real* a, const Real* b, Real* out) {
    table<Real>().multiply_elementwise(n, a, b, out);
}

template <class Real>
void fill(Size n, Real value, Real* out) {
    table<Real>().fill(n, value, out);
}

template <class Real>
void add_reversed(Size n, Real alpha, Real* x) {
    table<Real>().add_reversed(n, alpha, x);
}

template <class Real>
Real sum(Size n, const Real* x) {
    return table<Real>().sum(n, x);
}

template <class Real>
Real squares_about(Size n, const Real* x, Real centre) {
    return table<Real>().squares_about(n, x, centre);
}

template <class Real>
Real largest(Size n, const Real* x, Real other) {
    return table<Real>().largest(n, x, other);
}

template <class Real>
Real smallest(Size n, const Real* x, Real other) {
    return table<Real>().smallest(n, x, other);
}

// Apart, so that the way forwards needs no stack.
template <class Real>
__attribute__((noinline)) Real dot_backwards(const Strided<const Real>& x,
                                             const Strided<const Real>& y) {
    return dot<Real>(turned(x), turned(y));
}

template <class Real>
Real dot(const Strided<const Real>& x, const Strided<const Real>& y) {
    if (run_backwards(x, y)) return dot_backwards(x, y);
    return table<Real>().dot(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
Real sum_of_magnitudes(const Strided<const Real>& x) {
    return table<Real>().sum_of_magnitudes(x.size, x.data, x.stride);
}

template <class Real>
Real distance_squared(const Strided<const Real>& x, const Strided<const Real>& y) {
    return table<Real>().distance_squared(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void squared_distances(const Real* x, const View<const Real>& a, Real* out) {
    table<Real>().squared_distances(a.height, a.width, x, block_of(a), out);
}

template <class Real>
void axpy(Real alpha, const Strided<const Real>& x, const Strided<Real>& y) {
    if (run_backwards(x, y)) return axpy<Real>(alpha, turned(x), turned(y));
    table<Real>().axpy(y.size, alpha, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void scale(Real alpha, const Strided<Real>& x) {
    if (x.stride < 0 && x.size > 0) return scale<Real>(alpha, turned(x));
    table<Real>().scale(x.size, alpha, x.data, x.stride);
}

template <class Real>
void copy(const Strided<const Real>& x, const Strided<Real>& y) {
    if (run_backwards(x, y)) return copy<Real>(turned(x), turned(y));
    table<Real>().copy(y.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void swap(const Strided<Real>& x, const Strided<Real>& y) {
    if (run_backwards(x, y)) return swap<Real>(turned(x), turned(y));
    table<Real>().swap(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void rotate(const Strided<Real>& x, const Strided<Real>& y, Real c, Real s) {
    if (run_backwards(x, y)) return rotate<Real>(turned(x), turned(y), c, s);
    table<Real>().rotate(x.size, x.data, x.stride, y.data, y.stride, c, s);
}

template <class Real>
Size index_of_largest_magnitude(const Strided<const Real>& x) {
    return table<Real>().index_of_largest_magnitude(x.size, x.data, x.stride);
}

#define NEQUAR_INSTANTIATE(Real)                                                            \
    template void add(Size, const Real*, const Real*, Real*);                               \
    template void subtract(Size, const Real*, const Real*, Real*);                          \
    template void add_weighted(Size, const Real*, const Real*, Real, Real, Real*);          \
    template void add_constant(Size, const Real*, Real, Real*);                             \
    template void scale(Size, const Real*, Real, Real*);                                    \
    template void multiply_elementwise(Size, const Real*, const Real*, Real*);              \
    template void fill(Size, Real, Real*);                                                  \
    template void add_reversed(Size, Real, Real*);                                          \
    template Real sum(Size, const Real*);                                                   \
    template Real squares_about(Size, const Real*, Real);                                   \
    template Real largest(Size, const Real*, Real);                                         \
    template Real smallest(Size, const Real*, Real);                                        \
    template void squared_distances(const Real*, const View<const Real>&, Real*);           \
    template Real dot(const Strided<const Real>&, const Strided<const Real>&);              \
    template Real sum_of_magnitudes(const Strided<const Real>&);                            \
    template Real distance_squared(const Strided<const Real>&, const Strided<const Real>&); \
    template void axpy(Real, const Strided<const Real>&, const Strided<Real>&);             \
    template void scale(Real, const Strided<Real>&);                                        \
    template void copy(const Strided<const Real>&, const Strided<Real>&);                   \
    template void swap(const Strided<Real>&, const Strided<Real>&);                         \
    template void rotate(const Strided<Real>&, const Strided<Real>&, Real, Real);           \
    template Size index_of_largest_magnitude(const Strided<const Real>&);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar::kernel
