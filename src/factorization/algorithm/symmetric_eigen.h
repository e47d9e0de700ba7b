// A = V diag(values) V^T for a symmetric A, n x n, the values in descending order (stable), the
// columns of V with them.
//
//   route of QR steps   A = Q T Q^T, G T G^T diagonal, V = Q G^T         tridiagonal_qr.h
//   route of rotations  A -> J^T A J                                    jacobi.h
//
// An A whose largest element is near an end of the range is multiplied by a power of two first, and
// the values are divided by it, so that no square overflows or vanishes. NaN or infinity anywhere
// in the upper triangle makes every value and every element of V NaN.
#pragma once

#include <cstdint>

#include "core/outcome.h"
#include "core/view.h"
#include "factorization/algorithm/jacobi.h"

namespace nequar {

// In all of these A's upper triangle is read, its rows are contiguous, and it is used up; V (n x n,
// no overlap) may be null.

// At most limit - 1 QR steps are made; `iterations` counts them, and the one that the limit
// stopped.
template <class Real>
Outcome eigen_by_qr_steps(View<Real> a, Real* values, const View<Real>* v, std::int64_t limit,
                          std::int64_t& iterations);

// Enough for every matrix of that order.
inline std::int64_t sufficient_qr_steps(Size n) {
    return 30 * std::int64_t(n) + 100;
}

struct JacobiOptions {
    JacobiMode mode = JacobiMode::relative;
    std::int64_t max_sweeps = 100;
    double tolerance = 1e-32;
};

template <class Real>
Outcome eigen_by_rotations(const JacobiOptions& options, View<Real> a, Real* values,
                           const View<Real>* v, JacobiCounts& counts);

// A = Q T Q^T; d n, e n - 1.
template <class Real>
Outcome tridiagonal_form(View<Real> a, Strided<Real> d, Strided<Real> e, const View<Real>* q);

}  // namespace nequar
