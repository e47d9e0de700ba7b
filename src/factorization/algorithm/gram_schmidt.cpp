#include "factorization/algorithm/gram_schmidt.h"

#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

namespace {

// x := x / ||x||; false for x = 0. A length that is subnormal (and so imprecise) or infinite is
// met by a power of two first.
template <class Real>
bool normalize(Strided<Real> x) {
    Real norm = kernel::norm2(reading(x));
    if (norm == 0) return false;
    const Real small = std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();
    const Real largest = std::abs(x(kernel::index_of_largest_magnitude(reading(x))));
    if ((norm < small || std::isinf(norm)) && std::isfinite(largest)) {
        const int exponent = std::ilogb(largest);
        for (Size i = 0; i < x.size; ++i) x(i) = std::scalbn(x(i), -exponent);
        norm = kernel::norm2(reading(x));
    }
    for (Size i = 0; i < x.size; ++i) x(i) /= norm;
    return true;
}

}  // namespace

template <class Real>
Outcome gram_schmidt(View<const Real> a, View<Real> q, Size block) {
    const Size m = a.height;
    const Size n = a.width;
    if (block <= 0) block = 32;
    Workspace<Real> r_elements(n * block);
    Workspace<Real> panel_elements(block * padded_length(m));
    if (!r_elements || !panel_elements) return {OutcomeKind::no_memory};
    for (Size first = 0; first < n; first += block) {
        const Size width = n - first < block ? n - first : block;
        const View<const Real> input = a.columns(first, width);
        const View<const Real> before = q.columns(0, first);
        const View<Real> panel = scratch_by_columns(panel_elements.data(), m, width, q.row_stride);
        const View<Real> r(r_elements.data(), first, width, width);
        kernel::copy(input, panel);
        kernel::gemm(Real(1), before.transposed(), input, Update::set, r);
        kernel::gemm(Real(-1), before, reading(r), Update::accumulate, panel);
        Outcome outcome;
        for (Size j = 0; j < width && outcome; ++j) {
            const View<const Real> done = panel.columns(0, j);
            const Strided<Real> t(r_elements.data(), j);
            kernel::gemv(Real(1), done.transposed(), input.column(j), Update::set, t);
            kernel::gemv(Real(-1), done, reading(t), Update::accumulate, panel.column(j));
            if (!normalize(panel.column(j))) outcome = {OutcomeKind::zero_column, first + j};
        }
        kernel::copy(reading(panel), q.columns(first, width));
        if (!outcome) return outcome;
    }
    return Outcome::success();
}

template Outcome gram_schmidt(View<const double>, View<double>, Size);
template Outcome gram_schmidt(View<const float>, View<float>, Size);

}  // namespace nequar
