#include "factorization/algorithm/gram_rank.h"

#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/singular_values.h"
#include "factorization/algorithm/symmetric_eigen.h"
#include "kernel/kernel.h"

namespace nequar {

template <class Real>
Outcome rank_by_gram_matrix(View<const Real> a, Real largest, Real tolerance, int& rank) {
    if (a.height > a.width) a = a.transposed();
    const Size n = a.height;
    rank = 0;
    if (n == 0 || largest == 0) return Outcome::success();
    Workspace<Real> work(n * n + n);
    Workspace<Real> copied(n * a.width);
    if (!work || !copied) return {OutcomeKind::no_memory};
    // the largest element becomes one of 1 ... 2
    const View<Real> scaled(copied.data(), n, a.width, a.width);
    const int exponent = std::ilogb(largest);
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j < a.width; ++j) scaled(i, j) = std::scalbn(a(i, j), -exponent);
    const View<Real> gram(work.data(), n, n, n);
    kernel::syrk(kernel::Triangle::upper, Real(1), reading(scaled), kernel::Update::set, gram);
    Real* const values = work.data() + n * n;
    Outcome outcome;
    if (n < kFirstTridiagonal) {
        JacobiOptions options;
        options.tolerance = 1e-31;
        JacobiCounts counts;
        outcome = eigen_by_rotations<Real>(options, gram, values, nullptr, counts);
    } else {
        std::int64_t iterations = 0;
        outcome =
            eigen_by_qr_steps<Real>(gram, values, nullptr, sufficient_qr_steps(n), iterations);
    }
    if (outcome) rank = count_above(Strided<const Real>(values, n), tolerance * tolerance);
    return outcome;
}

#define NEQUAR_INSTANTIATE(Real) \
    template Outcome rank_by_gram_matrix(View<const Real>, Real, Real, int&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
