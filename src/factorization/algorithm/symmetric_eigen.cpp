#include "factorization/algorithm/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "factorization/algorithm/rotation_sweeps.h"
#include "factorization/algorithm/scratch.h"
#include "factorization/algorithm/tridiagonal_qr.h"
#include "factorization/algorithm/tridiagonalization.h"
#include "kernel/kernel.h"

namespace nequar {

namespace {

template <class Real>
inline constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();

// The largest magnitude of the upper triangle; NaN when not all of it is finite.
template <class Real>
Real largest_above(View<const Real> a) {
    Real largest = 0;
    for (Size i = 0; i < a.height; ++i) {
        const Strided<const Real> row = a.row(i).part(i, a.width - i);
        // A sum is not finite when an element is not; a large finite one may overflow it.
        if (!std::isfinite(kernel::sum_of_magnitudes(row)))
            for (Size j = 0; j < row.size; ++j)
                if (!std::isfinite(row(j))) return kNaN<Real>;
        largest = std::max(largest, std::abs(row(kernel::index_of_largest_magnitude(row))));
    }
    return largest;
}

// The exponent of the power of two by which A has to be divided.
template <class Real>
int exponent_of_unit(Real largest) {
    constexpr int safe = std::numeric_limits<Real>::max_exponent / 4;
    if (largest == 0) return 0;
    const int exponent = std::ilogb(largest);
    return exponent > safe || exponent < -safe ? exponent : 0;
}

// In two steps where one factor would be no normal number.
template <class Real>
void divide_by_power_of_two(View<Real> a, int exponent) {
    if (exponent == 0) return;
    const int half = exponent / 2;
    for (Size i = 0; i < a.height; ++i) {
        const Strided<Real> row = a.row(i).part(i, a.width - i);
        kernel::scale(std::ldexp(Real(1), -half), row);
        kernel::scale(std::ldexp(Real(1), half - exponent), row);
    }
}

template <class Real>
void multiply_by_power_of_two(Real* x, Size n, int exponent) {
    if (exponent == 0) return;
    for (Size i = 0; i < n; ++i) x[i] = std::scalbn(x[i], exponent);
}

template <class Real>
void fill_with_nan(Real* values, Size n, const View<Real>* v) {
    kernel::fill(n, kNaN<Real>, values);
    if (v != nullptr) kernel::fill(kNaN<Real>, *v);
}

// order: the positions of the values from the largest down.
template <class Real>
void sort_descending(Real* values, Size n, int* order, Real* scratch) {
    for (Size i = 0; i < n; ++i) order[i] = static_cast<int>(i);
    std::stable_sort(order, order + n, [values](int i, int j) { return values[i] > values[j]; });
    for (Size i = 0; i < n; ++i) scratch[i] = values[order[i]];
    kernel::copy(Strided<const Real>(scratch, n), Strided<Real>(values, n));
}

// A scaled by a power of two, or found to hold what is no number.
template <class Real>
struct Prepared {
    bool is_finite;
    int exponent;
};
template <class Real>
Prepared<Real> prepare(View<Real> a) {
    const Real largest = largest_above(reading(a));
    if (std::isnan(largest)) return {false, 0};
    const int exponent = exponent_of_unit(largest);
    divide_by_power_of_two(a, exponent);
    return {true, exponent};
}

}  // namespace

template <class Real>
Outcome tridiagonal_form(View<Real> a, Strided<Real> d, Strided<Real> e, const View<Real>* q) {
    const Size n = a.height;
    const Prepared<Real> prepared = prepare(a);
    if (!prepared.is_finite) {
        fill_with_nan(d.data, n, q);
        kernel::fill(e.size, kNaN<Real>, e.data);
        return Outcome::success();
    }
    const Outcome outcome = tridiagonalize(a, d, e, q);
    multiply_by_power_of_two(d.data, n, prepared.exponent);
    multiply_by_power_of_two(e.data, e.size, prepared.exponent);
    return outcome;
}

template <class Real>
Outcome eigen_by_qr_steps(View<Real> a, Real* values, const View<Real>* v, std::int64_t limit,
                          std::int64_t& iterations) {
    const Size n = a.height;
    iterations = 0;
    const Prepared<Real> prepared = prepare(a);
    if (!prepared.is_finite) {
        fill_with_nan(values, n, v);
        return Outcome::success();
    }
    const bool has_vectors = v != nullptr;
    const Size block = n < 200 ? 16 : n < 600 ? 32 : 48;  // reflectors applied at once
    const Size count = tridiagonal_reflections(n);
    using S = Scratch<Real>;
    const Size for_sweeps = RotationSweeps<Real>::scratch(n);
    const Size for_reflectors = S::rounded(block * count) + S::rounded(block * padded_length(n));
    Workspace<Real> work(2 * S::rounded(n) +
                         (has_vectors ? std::max(for_sweeps, for_reflectors) : 0));
    Workspace<int> order(n);
    if (!work || !order) return {OutcomeKind::no_memory};
    S scratch(work.data());
    Real* const e = scratch.take(n);
    Real* const line = scratch.take(n);
    const Outcome outcome =
        tridiagonalize(a, Strided<Real>(values, n), Strided<Real>(e, n > 0 ? n - 1 : 0));
    if (!outcome) return outcome;
    if (has_vectors) {
        // V's storage holds G until the end.
        kernel::fill(Real(0), *v);
        for (Size i = 0; i < n; ++i) (*v)(i, i) = 1;
        RotationSweeps<Real> sweeps(scratch.take(0), n);
        const RotatedIdentity<Real> target = {&sweeps, *v};
        iterations = diagonalize_tridiagonal(n, values, e, limit, &target);
    } else {
        iterations = diagonalize_tridiagonal<Real>(n, values, e, limit, nullptr);
    }
    sort_descending(values, n, order.data(), line);
    multiply_by_power_of_two(values, n, prepared.exponent);
    if (!has_vectors) return Outcome::success();
    if (count > 0) {
        const View<Real> couplings(scratch.take(block * count), block, count, count);
        Real* const elements = scratch.take(block * padded_length(n));
        const View<Real> vectors = v->transposed().rows(1, n - 1);
        apply_reflectors(Side::q, tridiagonal_store(a, couplings), vectors,
                         scratch_by_columns(elements, block, n, Size(1)));
    }
    kernel::gather_rows(reading(*v), order.data(), a);
    kernel::transpose(reading(a), *v);
    return Outcome::success();
}

template <class Real>
Outcome eigen_by_rotations(const JacobiOptions& options, View<Real> a, Real* values,
                           const View<Real>* v, JacobiCounts& counts) {
    const Size n = a.height;
    counts = {};
    const Prepared<Real> prepared = prepare(a);
    if (!prepared.is_finite) {
        fill_with_nan(values, n, v);
        return Outcome::success();
    }
    const Size stride = padded_length(n);
    Workspace<Real> work(n + (v != nullptr ? n * stride : 0));
    Workspace<int> order(n);
    if (!work || !order) return {OutcomeKind::no_memory};
    const View<Real> vt(work.data(), n, n, stride);
    const Real unit = std::ldexp(Real(1), -prepared.exponent);
    const Outcome outcome = jacobi(options.mode, a, values, v != nullptr ? &vt : nullptr,
                                   options.max_sweeps, Real(options.tolerance), unit, counts);
    if (!outcome) return outcome;
    Real* const line = work.data() + (v != nullptr ? n * stride : 0);
    sort_descending(values, n, order.data(), line);
    multiply_by_power_of_two(values, n, prepared.exponent);
    if (v == nullptr) return Outcome::success();
    kernel::gather_rows(reading(vt), order.data(), a);
    kernel::transpose(reading(a), *v);
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                                           \
    template Outcome tridiagonal_form(View<Real>, Strided<Real>, Strided<Real>,            \
                                      const View<Real>*);                                  \
    template Outcome eigen_by_qr_steps(View<Real>, Real*, const View<Real>*, std::int64_t, \
                                       std::int64_t&);                                     \
    template Outcome eigen_by_rotations(const JacobiOptions&, View<Real>, Real*,           \
                                        const View<Real>*, JacobiCounts&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
