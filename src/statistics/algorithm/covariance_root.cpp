#include "statistics/algorithm/covariance_root.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kernel/kernel.h"

namespace nequar {

template <class Real>
Outcome scale_by_roots(const Real* eigenvalues, View<Real> v) {
    const Size n = v.width;
    if (n == 0) return Outcome::success();
    const Real largest = std::max(std::abs(eigenvalues[0]), std::abs(eigenvalues[n - 1]));
    const Real rounding = static_cast<Real>(n) * std::numeric_limits<Real>::epsilon() * largest;
    for (Size j = 0; j < n; ++j) {
        const Real value = eigenvalues[j];
        if (!(value >= -rounding) || std::isinf(value))
            return {OutcomeKind::not_positive_definite, j};
        kernel::scale(value > rounding ? std::sqrt(value) : Real(0), v.column(j));
    }
    return Outcome::success();
}

template Outcome scale_by_roots(const double*, View<double>);
template Outcome scale_by_roots(const float*, View<float>);

}  // namespace nequar
