#include "frame/algorithm/structure.h"

#include <algorithm>
#include <cmath>

#include "kernel/kernel.h"

namespace nequar {
namespace {

// The bound on what counts as zero. The magnitude's scale leaves NaN out: where one matters, it
// fails its own comparison.
template <class Real>
Real bound_of(View<const Real> a, Tolerance tolerance) {
    const Real value = static_cast<Real>(tolerance.value);
    if (!tolerance.relative) return value;
    Real largest = 0;
    for (Size i = 0; i < a.height; ++i) {
        const Strided<const Real> row = a.row(i);
        const Real magnitude = std::abs(row(kernel::index_of_largest_magnitude(row)));
        if (magnitude > largest) largest = magnitude;
    }
    return value * largest;
}

template <class Real>
bool is_negligible(Real x, Real bound) {
    return x == 0 || std::abs(x) <= bound;
}

}  // namespace

template <class Real>
bool is_lower(View<const Real> a, Tolerance tolerance) {
    const Real bound = bound_of(a, tolerance);
    // Row by row in either layout: the upper triangle's columns are the rows of the transpose.
    const bool by_rows = a.column_stride == 1;
    for (Size i = 0; i < a.height; ++i) {
        const Strided<const Real> part =
            by_rows ? a.row(i).part(i + 1, a.width - i - 1) : a.column(i).part(0, i);
        for (Size k = 0; k < part.size; ++k)
            if (!is_negligible(part(k), bound)) return false;
    }
    return true;
}

template <class Real>
bool is_symmetric(View<const Real> a, Tolerance tolerance) {
    constexpr Size kTile = 32;  // a tile and its mirror stay in the first cache
    const Real bound = bound_of(a, tolerance);
    const auto equal = [bound](Real x, Real y) { return x == y || std::abs(x - y) <= bound; };
    for (Size i0 = 0; i0 < a.height; i0 += kTile) {
        const Size i1 = std::min(i0 + kTile, a.height);
        for (Size j0 = 0; j0 <= i0; j0 += kTile) {
            for (Size i = i0; i < i1; ++i) {
                const Size j1 = std::min(j0 + kTile, i + 1);
                for (Size j = j0; j < j1; ++j)
                    if (!equal(a(i, j), a(j, i))) return false;
            }
        }
    }
    return true;
}

template <class Real>
bool has_cholesky_factor(View<Real> a, Size panel) {
    const Size n = a.height;
    for (Size k = 0; k < n; k += panel) {
        const Size width = std::min(panel, n - k);
        const Size rest = n - k - width;
        const View<Real> d = a.block(k, k, width, width);
        // D = L11 L11^T, a row at a time
        for (Size i = 0; i < width; ++i) {
            for (Size j = 0; j <= i; ++j) {
                Real sum = d(i, j);
                for (Size p = 0; p < j; ++p) sum -= d(i, p) * d(j, p);
                if (j < i) {
                    d(i, j) = sum / d(j, j);
                } else {
                    if (!(sum > 0) || std::isinf(sum)) return false;
                    d(i, i) = std::sqrt(sum);
                }
            }
        }
        // L21 = A21 L11^-T,  A22 := A22 - L21 L21^T
        const View<Real> below = a.block(k + width, k, rest, width);
        kernel::trsm(kernel::Triangle::lower, kernel::Diagonal::stored, reading(d),
                     below.transposed());
        kernel::syrk(kernel::Triangle::lower, Real(-1), reading(below), kernel::Update::accumulate,
                     a.block(k + width, k + width, rest, rest));
    }
    return true;
}

template <class Real>
bool is_diagonally_dominant(View<const Real> a) {
    for (Size i = 0; i < a.height; ++i) {
        const Strided<const Real> row = a.row(i);
        const Real others = kernel::sum_of_magnitudes(row.part(0, i)) +
                            kernel::sum_of_magnitudes(row.part(i + 1, a.width - i - 1));
        if (!(std::abs(row(i)) > others)) return false;
    }
    return true;
}

#define NEQUAR_INSTANTIATE(Real)                             \
    template bool is_lower(View<const Real>, Tolerance);     \
    template bool is_symmetric(View<const Real>, Tolerance); \
    template bool has_cholesky_factor(View<Real>, Size);     \
    template bool is_diagonally_dominant(View<const Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
