#include "linear_equation/algorithm/eigen_solve.h"

#include <cmath>

#include "core/workspace.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Triangle;
using kernel::Update;

template <class Real>
EigenRank count_components(Strided<const Real> values, Real tolerance, bool check_order,
                           Real& threshold) {
    if (!(tolerance >= 0 && tolerance < 1)) return {EigenFault::tolerance};
    const Size n = values.size;
    for (Size i = 0; i < n; ++i)
        if (!std::isfinite(values(i))) return {EigenFault::not_finite};
    if (check_order)
        for (Size i = 1; i < n; ++i)
            if (values(i) > values(i - 1)) return {EigenFault::ordering};
    threshold = 0;
    if (n > 0) {
        const Real first = std::abs(values(0));
        const Real last = std::abs(values(n - 1));
        threshold = tolerance * (first > last ? first : last);
    }
    Size rank = 0;
    for (Size i = 0; i < n; ++i) rank += std::abs(values(i)) > threshold;
    return {EigenFault::none, rank};
}

template <class Real>
void solve_with_eigen(View<const Real> v, Strided<const Real> values, View<Real> b, View<Real> t) {
    kernel::gemm(Real(1), v.transposed(), reading(b), Update::set, t);
    for (Size i = 0; i < t.height; ++i)
        for (Size j = 0; j < t.width; ++j) t(i, j) /= values(i);
    kernel::gemm(Real(1), v, reading(t), Update::set, b);
}

template <class Real>
Outcome invert_with_eigen(View<const Real> v, Strided<const Real> values, Real threshold,
                          View<Real> x) {
    const Size n = v.height;
    Size rank = 0;
    for (Size i = 0; i < values.size; ++i) rank += std::abs(values(i)) > threshold;
    Workspace<Real> work(2 * n * rank);
    if (!work) return {OutcomeKind::no_memory};
    // the components that count as rows: v_i and v_i / l_i
    const View<Real> kept(work.data(), rank, n, n);
    const View<Real> divided(work.data() + n * rank, rank, n, n);
    Size k = 0;
    for (Size i = 0; i < values.size; ++i) {
        if (!(std::abs(values(i)) > threshold)) continue;
        kernel::copy(v.column(i), kept.row(k));
        for (Size j = 0; j < n; ++j) divided(k, j) = kept(k, j) / values(i);
        ++k;
    }
    kernel::gemmt(Triangle::lower, Real(1), reading(kept.transposed()), reading(divided),
                  Update::set, x);
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j < i; ++j) x(j, i) = x(i, j);
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                                                   \
    template EigenRank count_components(Strided<const Real>, Real, bool, Real&);                   \
    template void solve_with_eigen(View<const Real>, Strided<const Real>, View<Real>, View<Real>); \
    template Outcome invert_with_eigen(View<const Real>, Strided<const Real>, Real, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
