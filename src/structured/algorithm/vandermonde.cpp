#include "structured/algorithm/vandermonde.h"

#include <limits>

#include "kernel/kernel.h"

namespace nequar {
namespace {

// x - x is 0 for finite numbers alone.
template <class Real>
bool are_finite(Size n, const Real* x) {
    Real sum = 0;
    for (Size i = 0; i < n; ++i) sum += x[i] - x[i];
    return sum == Real(0);
}

// False, and the data made NaN, when the nodes are no points at which anything can be said.
template <class Real>
bool can_begin(Size n, const Real* nodes, Real* data) {
    if (n <= 1 || are_finite(n, nodes)) return n > 1;
    kernel::fill(n, std::numeric_limits<Real>::quiet_NaN(), data);
    return false;
}

}  // namespace

template <class Real>
bool are_distinct(Size n, const Real* nodes) {
    for (Size i = 0; i < n; ++i) {
        bool found = false;
        for (Size j = i + 1; j < n; ++j) found |= nodes[i] == nodes[j];
        if (found) return false;
    }
    return true;
}

template <class Real>
void interpolate(Size n, const Real* nodes, Real* f) {
    if (!can_begin(n, nodes, f)) return;
    for (Size k = 0; k + 1 < n; ++k)
        for (Size i = n - 1; i > k; --i) f[i] = (f[i] - f[i - 1]) / (nodes[i] - nodes[i - k - 1]);
    for (Size k = n - 2; k >= 0; --k)
        for (Size i = k; i + 1 < n; ++i) f[i] -= f[i + 1] * nodes[k];
}

template <class Real>
void solve_vandermonde(Size n, const Real* nodes, Real* b) {
    if (!can_begin(n, nodes, b)) return;
    for (Size k = 0; k + 1 < n; ++k)
        for (Size i = n - 1; i > k; --i) b[i] -= nodes[k] * b[i - 1];
    for (Size k = n - 2; k >= 0; --k) {
        for (Size i = k + 1; i < n; ++i) b[i] /= nodes[i] - nodes[i - k - 1];
        for (Size i = k; i + 1 < n; ++i) b[i] -= b[i + 1];
    }
}

template <class Real>
Real power(Real a, Size i) {
    if (i <= 0) return Real(1);
    Size bit = 1;
    while (bit <= i / 2) bit *= 2;
    Real result = a;
    for (bit /= 2; bit > 0; bit /= 2) {
        result *= result;
        if ((i & bit) != 0) result *= a;
    }
    return result;
}

template <class Real>
void powers_of_nodes(Size n, const Real* nodes, Size i, Real* out) {
    for (Size j = 0; j < n; ++j) out[j] = power(nodes[j], i);
}

template <class Real>
void powers_of_node(Size n, Real a, Real* out) {
    for (Size i = 0; i < n; ++i) {
        if (i < 2)
            out[i] = i == 0 ? Real(1) : a;
        else
            out[i] = out[i / 2] * out[i / 2] * (i % 2 != 0 ? a : Real(1));
    }
}

template <class Real>
void vandermonde_matrix(const Real* nodes, View<Real> v) {
    const Size n = v.width;
    for (Size i = 0; i < v.height; ++i) {
        Real* const row = &v(i, 0);
        if (i == 0) {
            kernel::fill(n, Real(1), row);
        } else if (i == 1) {
            kernel::copy(Strided<const Real>(nodes, n), Strided<Real>(row, n));
        } else {
            const Real* const half = &v(i / 2, 0);
            kernel::multiply_elementwise(n, half, half, row);
            if (i % 2 != 0) kernel::multiply_elementwise<Real>(n, row, nodes, row);
        }
    }
}

#define NEQUAR_INSTANTIATE(Real)                                   \
    template bool are_distinct(Size, const Real*);                 \
    template void interpolate(Size, const Real*, Real*);           \
    template void solve_vandermonde(Size, const Real*, Real*);     \
    template Real power(Real, Size);                               \
    template void powers_of_nodes(Size, const Real*, Size, Real*); \
    template void powers_of_node(Size, Real, Real*);               \
    template void vandermonde_matrix(const Real*, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
