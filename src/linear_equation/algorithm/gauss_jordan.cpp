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

struct Rows {
    Size first;
    Size count;
};

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
    // By column: one where it is not used and zero where it is (zero times infinity is NaN, which
    // never wins).
    Real* const weight = work.data();
    Real* const factors = work.data() + n;      // a(r, pc) before the step
    Real* const largest = work.data() + 2 * n;  // by row, after the step, in columns not used
    kernel::fill(n, Real(1), weight);

    for (Size r = 0; r < n; ++r) {
        const Size at = kernel::index_of_largest_magnitude(reading(a.row(r)));
        largest[r] = std::abs(a(r, at));
    }
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
        // Row pc itself is left out, not multiplied by zero: it may hold infinities.
        const Strided<const Real> pivot_row = reading(b.row(pc));
        const Rows others[] = {{0, pc}, {pc + 1, n - pc - 1}};
        for (const auto& [first, count] : others) {
            kernel::eliminate_column(pc, &a(pc, 0), weight, a.rows(first, count), factors + first,
                                     largest + first);
            kernel::ger(Real(-1), Strided<const Real>(factors + first, count), pivot_row,
                        b.rows(first, count));
        }
    }
    return Outcome::success();
}

template Outcome gauss_jordan(View<double>, View<double>);
template Outcome gauss_jordan(View<float>, View<float>);

}  // namespace nequar
