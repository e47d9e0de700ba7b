#include "factorization/algorithm/condition.h"

#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Triangle;

constexpr int kTurns = 5;

template <class Real>
class Climb {
public:
    Climb(View<const Real> lu, const int* perm, Real* x, Real* y)
        : lu_(lu), perm_(perm), x_(x, lu.height), y_(y, lu.height) {}

    Real run() {
        const Size n = lu_.height;
        for (Size i = 0; i < n; ++i) x_(i) = Real(1) / static_cast<Real>(n);
        solve();
        Real estimate = kernel::sum_of_magnitudes(reading(x_));
        if (n == 1 || !std::isfinite(estimate)) return estimate;
        Size previous = -1;
        for (int turn = 1; turn < kTurns; ++turn) {
            for (Size i = 0; i < n; ++i) x_(i) = x_(i) < 0 ? Real(-1) : Real(1);
            solve_transposed();
            const Size j = kernel::index_of_largest_magnitude(reading(x_));
            if (j == previous) break;
            previous = j;
            kernel::fill(n, Real(0), x_.data);
            x_(j) = 1;
            solve();
            const Real climbed = kernel::sum_of_magnitudes(reading(x_));
            if (!std::isfinite(climbed)) return climbed;
            if (climbed <= estimate) break;
            estimate = climbed;
        }
        const Real alternating = try_alternating();
        return alternating > estimate ? alternating : estimate;
    }

private:
    // 2 ||A^-1 x||_1 / (3 n) with x = (1, -(1 + 1/(n-1)), 1 + 2/(n-1), ...), whose norm is 3n/2.
    Real try_alternating() {
        const Size n = lu_.height;
        Real sign = 1;
        for (Size i = 0; i < n; ++i, sign = -sign)
            x_(i) = sign * (1 + static_cast<Real>(i) / static_cast<Real>(n - 1));
        solve();
        return 2 * (kernel::sum_of_magnitudes(reading(x_)) / (3 * static_cast<Real>(n)));
    }

    // x := A^-1 x = U^-1 L^-1 P x
    void solve() {
        for (Size i = 0; i < x_.size; ++i) y_(i) = x_(perm_[i]);
        kernel::trsv(Triangle::lower, Diagonal::unit, lu_, y_);
        kernel::trsv(Triangle::upper, Diagonal::stored, lu_, y_);
        kernel::copy(reading(y_), x_);
    }

    // x := A^-T x = P^T L^-T U^-T x
    void solve_transposed() {
        kernel::trsv(Triangle::lower, Diagonal::stored, lu_.transposed(), x_);
        kernel::trsv(Triangle::upper, Diagonal::unit, lu_.transposed(), x_);
        for (Size i = 0; i < x_.size; ++i) y_(perm_[i]) = x_(i);
        kernel::copy(reading(y_), x_);
    }

    View<const Real> lu_;
    const int* perm_;
    Strided<Real> x_;
    Strided<Real> y_;
};

}  // namespace

template <class Real>
Outcome norm1(View<const Real> a, Real& norm) {
    Workspace<Real> sums(a.width);
    if (!sums) return {OutcomeKind::no_memory};
    Real* const sum = sums.data();
    for (Size j = 0; j < a.width; ++j) sum[j] = 0;
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) sum[j] += std::abs(a(i, j));
    Real largest = 0;
    for (Size j = 0; j < a.width; ++j)
        if (!(sum[j] <= largest)) {
            largest = sum[j];
            if (std::isnan(largest)) break;
        }
    norm = largest;
    return Outcome::success();
}

template <class Real>
Outcome estimate_norm1_of_inverse(View<const Real> lu, const int* perm, Real& norm) {
    const Size n = lu.height;
    Workspace<Real> work(2 * n);
    if (!work) return {OutcomeKind::no_memory};
    norm = n == 0 ? Real(0) : Climb<Real>(lu, perm, work.data(), work.data() + n).run();
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                     \
    template Outcome norm1(View<const Real>, Real&); \
    template Outcome estimate_norm1_of_inverse(View<const Real>, const int*, Real&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
