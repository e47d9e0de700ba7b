#include "factorization/algorithm/cholesky.h"

#include <algorithm>
#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/elimination.h"
#include "factorization/algorithm/triangular_inverse.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

constexpr Size kLargestBase = 64;

// The upper triangle U = L^T is built row by row in a local square:
//   u(k, j) = u(k, j) / u(k, k),   row_i -= u(k, i) row_k,  i > k,  right of the diagonal
// and written to the lower triangle when it is complete. The views may share their elements.
template <class Real>
Outcome factor_small(View<const Real> upper, View<Real> lower) {
    const Size n = upper.height;
    alignas(64) Real square[kLargestBase * kLargestBase];
    const View<Real> u(square, n, n, n);
    for (Size i = 0; i < n; ++i)
        for (Size j = i; j < n; ++j) u(i, j) = upper(i, j);
    for (Size k = 0; k < n; ++k) {
        const Real s = u(k, k);
        if (!(s > 0)) return {OutcomeKind::not_positive_definite, k};
        const Real pivot = std::sqrt(s);
        u(k, k) = pivot;
        for (Size j = k + 1; j < n; ++j) u(k, j) /= pivot;
        for (Size i = k + 1; i < n; ++i)
            subtract_multiple(u(k, i), reading(u.row(k).part(i, n - i)), u.row(i).part(i, n - i));
    }
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j <= i; ++j) lower(i, j) = u(j, i);
    return Outcome::success();
}

}  // namespace

template <class Real>
Outcome cholesky_lower(View<Real> a, CholeskyBlocking blocking) {
    const Size n = a.height;
    const Size base = std::min(blocking.base, kLargestBase);
    if (n <= base) return factor_small(reading(a.transposed()), a);
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> l11 = a.block(0, 0, n1, n1);
    const View<Real> l21 = a.block(n1, 0, n2, n1);
    const View<Real> a22 = a.block(n1, n1, n2, n2);
    const Outcome first = cholesky_lower(l11, blocking);
    if (!first) return first;
    kernel::trsm(Triangle::lower, Diagonal::stored, reading(l11), l21.transposed());
    kernel::syrk(Triangle::lower, Real(-1), reading(l21), Update::accumulate, a22);
    Outcome second = cholesky_lower(a22, blocking);
    if (!second) second.index += n1;
    return second;
}

template <class Real>
Outcome cholesky_from_upper(View<Real> a, CholeskyBlocking blocking) {
    const Size n = a.height;
    if (n <= std::min(blocking.base, kLargestBase)) return factor_small(reading(a), a);
    Workspace<Real> diagonal(n);
    if (!diagonal) return {OutcomeKind::no_memory};
    const Strided<Real> kept(diagonal.data(), n);
    kernel::copy(reading(a.diagonal()), kept);
    mirror_lower_to_upper(a.transposed());
    const Outcome outcome = cholesky_lower(a, blocking);
    if (!outcome) kernel::copy(reading(kept), a.diagonal());
    return outcome;
}

#define NEQUAR_INSTANTIATE(Real)                                   \
    template Outcome cholesky_lower(View<Real>, CholeskyBlocking); \
    template Outcome cholesky_from_upper(View<Real>, CholeskyBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
