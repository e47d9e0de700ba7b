#include "linear_equation/algorithm/gauss_jordan.h"

#include <cmath>

#include "core/workspace.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

// The best pivot so far: strictly larger ones alone replace it, so the first of equals stays.
template <class Real>
struct Pivot {
    Real magnitude = 0;
    Size row = -1;
};

// The largest |row[j]| w[j]; w is one where the column is not used and zero where it is (zero times
// infinity is NaN, which never wins).
template <class Real>
Real largest_unused(Size n, const Real* row, const Real* weight) {
    Real largest = 0;
    for (Size j = 0; j < n; ++j) {
        const Real magnitude = std::abs(row[j]) * weight[j];
        if (magnitude > largest) largest = magnitude;
    }
    return largest;
}

template <class Real>
void divide_row(Real magnitude, Strided<Real> row) {
    const Real scale = 1 / magnitude;
    if (std::isinf(scale)) {
        for (Size j = 0; j < row.size; ++j) row(j) /= magnitude;
        return;
    }
    kernel::scale(scale, row);
}

}  // namespace

template <class Real>
Outcome gauss_jordan(View<Real> a, View<Real> b) {
    const Size n = a.height;
    Workspace<Real> work(3 * n);
    if (!work) return {OutcomeKind::no_memory};
    Real* const weight = work.data();      // by column: 1 not used, 0 used
    Real* const factor = work.data() + n;  // a(r, pc) before the step
    Real* const largest = work.data() + 2 * n;
    for (Size i = 0; i < n; ++i) weight[i] = 1;

    for (Size r = 0; r < n; ++r) largest[r] = largest_unused(n, &a(r, 0), weight);
    for (Size step = 0; step < n; ++step) {
        Pivot<Real> pivot;
        for (Size r = 0; r < n; ++r) {
            if (weight[r] == 0 || !(largest[r] > pivot.magnitude)) continue;
            pivot = {largest[r], r};
        }
        if (pivot.row < 0) return {OutcomeKind::singular, step};
        Size pc = 0;
        while (weight[pc] == 0 || !(std::abs(a(pivot.row, pc)) == pivot.magnitude)) ++pc;
        weight[pc] = 0;
        if (pivot.row != pc) {
            kernel::swap(a.row(pivot.row), a.row(pc));
            kernel::swap(b.row(pivot.row), b.row(pc));
        }
        divide_row(pivot.magnitude, a.row(pc));
        divide_row(pivot.magnitude, b.row(pc));
        for (Size r = 0; r < n; ++r) {
            factor[r] = a(r, pc);
            if (r == pc) continue;
            kernel::axpy(-factor[r], reading(a.row(pc)), a.row(r));
            largest[r] = largest_unused(n, &a(r, 0), weight);
        }
        // Row pc itself is left out, not multiplied by zero: it may hold infinities.
        const Strided<const Real> factors(factor, n);
        const Strided<const Real> pivot_row = reading(b.row(pc));
        kernel::ger(Real(-1), factors.part(0, pc), pivot_row, b.rows(0, pc));
        kernel::ger(Real(-1), factors.part(pc + 1, n - pc - 1), pivot_row,
                    b.rows(pc + 1, n - pc - 1));
    }
    return Outcome::success();
}

template Outcome gauss_jordan(View<double>, View<double>);
template Outcome gauss_jordan(View<float>, View<float>);

}  // namespace nequar
