#include "factorization/algorithm/cholesky.h"

#include "core/workspace.h"
#include "factorization/algorithm/elimination.h"
#include "factorization/algorithm/triangular_inverse.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Rounding;
using kernel::Triangle;
using kernel::Update;

// The kernel factors A = R^T R with R upper. For A = L L^T that is R = L^T. For A = U U^T it is the
// reversed problem: J A J = (J U J)(J U J)^T, so R = (J U J)^T, J the reversal.
template <class Real>
View<Real> as_kernel_upper(Triangle triangle, const View<Real>& a) {
    return triangle == Triangle::lower ? a.transposed() : a.reversed().transposed();
}

// `from` and `to` hold the input and the factor in the triangle of the factor.
template <class Real>
Outcome factor_small(Triangle triangle, Rounding rounding, View<const Real> from, View<Real> to) {
    const Size stopped = kernel::cholesky_small(rounding, as_kernel_upper(triangle, from),
                                                as_kernel_upper(triangle, to));
    if (stopped < 0) return Outcome::success();
    return {OutcomeKind::not_positive_definite,
            triangle == Triangle::lower ? stopped : to.height - 1 - stopped};
}

template <class Real>
Outcome factor_lower(View<Real> a, Size base) {
    const Size n = a.height;
    if (n <= base) return factor_small(Triangle::lower, Rounding::fused, reading(a), a);
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> l11 = a.block(0, 0, n1, n1);
    const View<Real> l21 = a.block(n1, 0, n2, n1);
    const View<Real> a22 = a.block(n1, n1, n2, n2);
    const Outcome first = factor_lower(l11, base);
    if (!first) return first;
    kernel::trsm(Triangle::lower, Diagonal::stored, reading(l11), l21.transposed());
    kernel::syrk(Triangle::lower, Real(-1), reading(l21), Update::accumulate, a22);
    Outcome second = factor_lower(a22, base);
    if (!second) second.index += n1;
    return second;
}

template <class Real>
Outcome factor_upper(View<Real> a, Size base) {
    const Size n = a.height;
    if (n <= base) return factor_small(Triangle::upper, Rounding::fused, reading(a), a);
    const Size n2 = split_of(n, base);
    const Size n1 = n - n2;
    const View<Real> u22 = a.block(n1, n1, n2, n2);
    const View<Real> u12 = a.block(0, n1, n1, n2);
    const View<Real> a11 = a.block(0, 0, n1, n1);
    Outcome first = factor_upper(u22, base);
    if (!first) {
        first.index += n1;
        return first;
    }
    kernel::trsm(Triangle::upper, Diagonal::stored, reading(u22), u12.transposed());
    kernel::syrk(Triangle::upper, Real(-1), reading(u12), Update::accumulate, a11);
    return factor_upper(a11, base);
}

}  // namespace

template <class Real>
Outcome cholesky(Triangle triangle, View<Real> a, CholeskyBlocking blocking) {
    if (a.height <= blocking.plain)
        return factor_small(triangle, Rounding::separate, reading(a), a);
    return triangle == Triangle::lower ? factor_lower(a, blocking.base)
                                       : factor_upper(a, blocking.base);
}

template <class Real>
Outcome cholesky_from_opposite(Triangle triangle, View<Real> a, CholeskyBlocking blocking) {
    const Size n = a.height;
    if (n <= blocking.plain)
        return factor_small(triangle, Rounding::separate, reading(a.transposed()), a);
    Workspace<Real> diagonal(n);
    if (!diagonal) return {OutcomeKind::no_memory};
    const Strided<Real> kept(diagonal.data(), n);
    kernel::copy(reading(a.diagonal()), kept);
    mirror_lower_to_upper(triangle == Triangle::upper ? a : a.transposed());
    const Outcome outcome = cholesky(triangle, a, blocking);
    if (!outcome) kernel::copy(reading(kept), a.diagonal());
    return outcome;
}

#define NEQUAR_INSTANTIATE(Real)                                       \
    template Outcome cholesky(Triangle, View<Real>, CholeskyBlocking); \
    template Outcome cholesky_from_opposite(Triangle, View<Real>, CholeskyBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
