#include "statistics/algorithm/principal_components.h"

#include <cmath>

#include "kernel/kernel.h"
#include "statistics/algorithm/sample_layout.h"
#include "statistics/algorithm/sample_moments.h"

namespace nequar {

template <class Real>
Outcome gram_of_deviations(View<const Real> samples, Real* mean, View<Real> deviations,
                           View<Real> gram) {
    const Size n = samples.height;
    const Size d = samples.width;
    if (const Outcome outcome = mean_vector(samples, Selection{0, n, nullptr}, mean); !outcome)
        return outcome;
    if (stored_as_columns(samples)) {
        for (Size k = 0; k < d; ++k)
            kernel::add_constant(n, &samples(0, k), -mean[k], &deviations(0, k));
    } else {
        for (Size i = 0; i < n; ++i)
            kernel::subtract<Real>(d, &samples(i, 0), mean, &deviations(i, 0));
    }
    kernel::syrk(kernel::Triangle::upper, Real(1),
                 reading(n <= d ? deviations : deviations.transposed()), kernel::Update::set, gram);
    return Outcome::success();
}

template <class Real>
KeptEigenvalues<Real> keep_eigenvalues(Size k, const Real* eigenvalues, Real ratio) {
    KeptEigenvalues<Real> result;
    const Real largest = eigenvalues[0];
    if (largest == Real(0)) return result;
    if (!(largest > Real(0))) {
        result.fault = EigenvalueFault::largest_is_negative;
        return result;
    }
    for (Size i = 0; i < k; ++i) {
        const Real share = eigenvalues[i] / largest;
        if (!(eigenvalues[i] > Real(0))) {
            if (!(std::abs(share) < ratio)) result.fault = EigenvalueFault::one_is_negative;
            return result;
        }
        result.total += eigenvalues[i];
        if (share < ratio) return result;
        ++result.count;
    }
    return result;
}

template <class Real>
void components_of_samples(Size m, const Real* eigenvalues, View<Real> v,
                           View<const Real> deviations, View<Real> components) {
    for (Size k = 0; k < m; ++k) kernel::scale(Real(1) / std::sqrt(eigenvalues[k]), v.column(k));
    kernel::gemm(Real(1), reading(v.columns(0, m).transposed()), deviations, kernel::Update::set,
                 components);
}

template <class Real>
ExplainedShare<Real> explained_share(Size m, const Real* eigenvalues, Real total,
                                     Real residual_share) {
    ExplainedShare<Real> result;
    const Real threshold = Real(1) - residual_share;
    for (; result.components < m; ++result.components) {
        result.share += eigenvalues[result.components] / total;
        if (result.share > threshold) break;
    }
    return result;
}

template <class Real>
Real add_component(Size d, const Real* direction, const Real* deviation, Real* reconstruction) {
    const Strided<const Real> along(direction, d);
    const Real c = kernel::dot(along, Strided<const Real>(deviation, d));
    kernel::axpy(c, along, Strided<Real>(reconstruction, d));
    return c;
}

template <class Real>
Real sum_of_squares(Size d, const Real* x) {
    const Strided<const Real> v(x, d);
    return kernel::dot(v, v);
}

template <class Real>
Real weighted_sum_of_squares(Size m, const Real* coefficients, const Real* eigenvalues) {
    Real sum = 0;
    for (Size k = 0; k < m; ++k) sum += coefficients[k] * coefficients[k] / eigenvalues[k];
    return sum;
}

template <class Real>
Real relative_square(Real rest, Real whole) {
    return whole == Real(0) && rest == Real(0) ? Real(0) : rest / whole;
}

#define NEQUAR_INSTANTIATE(Real)                                                          \
    template Outcome gram_of_deviations(View<const Real>, Real*, View<Real>, View<Real>); \
    template KeptEigenvalues<Real> keep_eigenvalues(Size, const Real*, Real);             \
    template void components_of_samples(Size, const Real*, View<Real>, View<const Real>,  \
                                        View<Real>);                                      \
    template ExplainedShare<Real> explained_share(Size, const Real*, Real, Real);         \
    template Real add_component(Size, const Real*, const Real*, Real*);                   \
    template Real relative_square(Real, Real);                                            \
    template Real sum_of_squares(Size, const Real*);                                      \
    template Real weighted_sum_of_squares(Size, const Real*, const Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
