#include "statistics/algorithm/sample_moments.h"

#include <algorithm>
#include <cmath>

#include "core/workspace.h"
#include "kernel/kernel.h"
#include "statistics/algorithm/sample_layout.h"

namespace nequar {
namespace {

constexpr Size kShortestBlock = 16;
constexpr Size kCovarianceBlock = 256;  // samples whose deviations are multiplied at a time

// The sums of four neighbouring blocks grow side by side; what is added to what stays the same.
template <class Real, class Term>
Real blocked_sum(const Real* a, Size n, Size block, const Term& term) {
    Real total = 0;
    Size i = 0;
    for (; n - i >= 4 * block; i += 4 * block) {
        Real partial[4] = {};
        for (Size j = i; j < i + block; ++j)
            for (Size k = 0; k < 4; ++k) partial[k] += term(a[j + k * block]);
        for (const Real sum : partial) total += sum;
    }
    while (i < n) {
        const Size end = std::min(i + block, n);
        Real partial = 0;
        for (; i < end; ++i) partial += term(a[i]);
        total += partial;
    }
    return total;
}

template <class Real, class Term>
Real blocked_sum(const Real* a, const Selection& selection, Size block, const Term& term) {
    if (selection.mask == nullptr)
        return blocked_sum(a + selection.begin, selection.end - selection.begin, block, term);
    Real total = 0;
    Real partial = 0;
    Size added = 0;
    for (Size i = selection.begin; i < selection.end; ++i) {
        if (!selection.mask[i]) continue;
        partial += term(a[i]);
        if (++added % block != 0) continue;
        total += partial;
        partial = 0;
    }
    return total + partial;
}

// The next samples from `next` on that are selected, less the mean, as the columns (by_column: the
// coordinates are contiguous in the input) or the rows of a block; answers how many.
template <class Real>
Size gather_deviations(View<const Real> samples, const Selection& selection, const Real* mean,
                       bool by_column, Size& next, View<Real> block) {
    Size found = 0;
    const Size first = next;
    if (!by_column) {
        for (; next < selection.end && found < kCovarianceBlock; ++next)
            if (selection.has(next))
                kernel::subtract(samples.width, &samples(next, 0), mean, &block(found++, 0));
        return found;
    }
    for (; next < selection.end && found < kCovarianceBlock; ++next) found += selection.has(next);
    for (Size k = 0; k < samples.width; ++k) {
        const Real* const from = &samples(0, k);
        Real* to = &block(k, 0);
        for (Size i = first; i < next; ++i)
            if (selection.has(i)) *to++ = from[i] - mean[k];
    }
    return found;
}

}  // namespace

Size summation_block(Size n) {
    return std::max<Size>(std::llround(std::sqrt(static_cast<double>(n))), kShortestBlock);
}

template <class Real>
Real mean_of(const Real* a, const Selection& selection, Size block) {
    const Real sum = blocked_sum(a, selection, block, [](Real x) { return x; });
    return sum / static_cast<Real>(selection.count());
}

template <class Real>
Real variance_about(Real mean, const Real* a, const Selection& selection, Size block) {
    const Real sum =
        blocked_sum(a, selection, block, [mean](Real x) { return (x - mean) * (x - mean); });
    return sum / static_cast<Real>(selection.count());
}

template <class Real>
Outcome mean_vector(View<const Real> samples, const Selection& selection, Real* mean) {
    const Size d = samples.width;
    const Size block = summation_block(samples.height);
    if (stored_as_columns(samples)) {
        for (Size k = 0; k < d; ++k) mean[k] = mean_of(&samples(0, k), selection, block);
        return Outcome::success();
    }
    Workspace<Real> partial(d);
    if (!partial) return {OutcomeKind::no_memory};
    kernel::fill(d, Real(0), mean);
    kernel::fill(d, Real(0), partial.data());
    Size added = 0;
    for (Size i = selection.begin; i < selection.end; ++i) {
        if (!selection.has(i)) continue;
        kernel::add<Real>(d, partial.data(), &samples(i, 0), partial.data());
        if (++added % block != 0) continue;
        kernel::add<Real>(d, mean, partial.data(), mean);
        kernel::fill(d, Real(0), partial.data());
    }
    kernel::add<Real>(d, mean, partial.data(), mean);
    for (Size k = 0; k < d; ++k) mean[k] /= static_cast<Real>(added);
    return Outcome::success();
}

template <class Real>
Outcome covariance(View<const Real> samples, const Selection& selection, const Real* mean,
                   View<Real> result) {
    const Size d = samples.width;
    const bool by_column = stored_as_columns(samples);
    Workspace<Real> work(kCovarianceBlock * d);
    if (!work) return {OutcomeKind::no_memory};
    const View<Real> block = by_column
                                 ? View<Real>(work.data(), d, kCovarianceBlock, kCovarianceBlock)
                                 : View<Real>(work.data(), kCovarianceBlock, d, d);
    kernel::fill(Real(0), result);
    Size next = selection.begin;
    while (next < selection.end) {
        const Size found = gather_deviations(samples, selection, mean, by_column, next, block);
        const View<Real> deviations =
            by_column ? block.columns(0, found) : block.rows(0, found).transposed();
        kernel::syrk(kernel::Triangle::lower, Real(1), reading(deviations),
                     kernel::Update::accumulate, result);
    }
    const Real count = static_cast<Real>(selection.count());
    for (Size i = 0; i < d; ++i)
        for (Size j = 0; j <= i; ++j) result(j, i) = result(i, j) /= count;
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                             \
    template Real mean_of(const Real*, const Selection&, Size);              \
    template Real variance_about(Real, const Real*, const Selection&, Size); \
    template Outcome mean_vector(View<const Real>, const Selection&, Real*); \
    template Outcome covariance(View<const Real>, const Selection&, const Real*, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
