// The face of level 1: contiguous and strided vectors.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"
#include "kernel/orientation.h"

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
Real dot(Strided<const Real> x, Strided<const Real> y) {
    turn_forwards(x, y);
    return table<Real>().dot(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
Real sum_of_magnitudes(Strided<const Real> x) {
    return table<Real>().sum_of_magnitudes(x.size, x.data, x.stride);
}

template <class Real>
Real distance_squared(Strided<const Real> x, Strided<const Real> y) {
    return table<Real>().distance_squared(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void squared_distances(const Real* x, View<const Real> a, Real* out) {
    table<Real>().squared_distances(a.height, a.width, x, block_of(a), out);
}

template <class Real>
void axpy(Real alpha, Strided<const Real> x, Strided<Real> y) {
    turn_forwards(x, y);
    table<Real>().axpy(y.size, alpha, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void scale(Real alpha, Strided<Real> x) {
    if (x.stride < 0 && x.size > 0) x = turned(x);
    table<Real>().scale(x.size, alpha, x.data, x.stride);
}

template <class Real>
void copy(Strided<const Real> x, Strided<Real> y) {
    turn_forwards(x, y);
    table<Real>().copy(y.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void swap(Strided<Real> x, Strided<Real> y) {
    turn_forwards(x, y);
    table<Real>().swap(x.size, x.data, x.stride, y.data, y.stride);
}

template <class Real>
void rotate(Strided<Real> x, Strided<Real> y, Real c, Real s) {
    turn_forwards(x, y);
    table<Real>().rotate(x.size, x.data, x.stride, y.data, y.stride, c, s);
}

template <class Real>
Size index_of_largest_magnitude(Strided<const Real> x) {
    return table<Real>().index_of_largest_magnitude(x.size, x.data, x.stride);
}

#define NEQUAR_INSTANTIATE(Real)                                                   \
    template void add(Size, const Real*, const Real*, Real*);                      \
    template void subtract(Size, const Real*, const Real*, Real*);                 \
    template void add_weighted(Size, const Real*, const Real*, Real, Real, Real*); \
    template void add_constant(Size, const Real*, Real, Real*);                    \
    template void scale(Size, const Real*, Real, Real*);                           \
    template void multiply_elementwise(Size, const Real*, const Real*, Real*);     \
    template void fill(Size, Real, Real*);                                         \
    template void add_reversed(Size, Real, Real*);                                 \
    template Real dot(Strided<const Real>, Strided<const Real>);                   \
    template Real sum_of_magnitudes(Strided<const Real>);                          \
    template Real distance_squared(Strided<const Real>, Strided<const Real>);      \
    template void squared_distances(const Real*, View<const Real>, Real*);         \
    template void axpy(Real, Strided<const Real>, Strided<Real>);                  \
    template void scale(Real, Strided<Real>);                                      \
    template void copy(Strided<const Real>, Strided<Real>);                        \
    template void swap(Strided<Real>, Strided<Real>);                              \
    template void rotate(Strided<Real>, Strided<Real>, Real, Real);                \
    template Size index_of_largest_magnitude(Strided<const Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar::kernel
