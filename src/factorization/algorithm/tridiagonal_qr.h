// Eigenvalues of a symmetric tridiagonal matrix by implicit QR steps with the Wilkinson shift.
//
//   T = tridiag(d, e), n x n;  T -> G T G^T with plane rotations, Q -> Q G^T, until e = 0
//
// One step on the block first ... last, with x = d_first - mu, z = e_first, mu the eigenvalue of
// the trailing 2 x 2 block that is closer to d_last:
//
//     k = first ... last - 1:   (c, s) from (x, z): c x - s z = r, s x + c z = 0
//                               t = s (d_k - d_(k+1)) + 2 c e_k
//                               d_k -= s t,  d_(k+1) += s t,  e_k = c t - e_k,  e_(k-1) = r
//                               x = e_k,  z = -s e_(k+1),  e_(k+1) = c e_(k+1)
//
// The rotations of a step are one sweep over rows k, k + 1 of G; they are recorded and applied in
// batches.
//
// Golub & Van Loan, Matrix Computations, algorithms 8.3.2 and 8.3.3.
#pragma once

#include <cstdint>

#include "core/view.h"
#include "factorization/algorithm/rotation_sweeps.h"

namespace nequar {

// One step on d[first ... last], e[first ... last - 1], first < last; the rotation of k and k + 1
// goes to pairs[2 k], pairs[2 k + 1], unless `pairs` is null.
template <class Real>
void implicit_qr_step(Real* d, Real* e, Size first, Size last, Real* pairs);

// Where rotations go: sweeps over the rows of G, which is the identity at first.
template <class Real>
struct RotatedIdentity {
    RotationSweeps<Real>* sweeps;
    View<Real> rows;
};

// Repeats: off-diagonals that are absorbed, |e_k| + (|d_k| + |d_(k+1)|) == |d_k| + |d_(k+1)|,
// become zero; the last block that is not diagonal is found; an iteration is counted; one step is
// made. Ends when all is diagonal, and when the count reaches the limit, before the step. Answers
// the count. `target` may be null.
//
// The elements are finite, and the largest of them is between 1e-77 and 1e77 (1e-9 and 1e9 in
// float) or all are zero: an off-diagonal below the smallest normal number, which rounding in units
// of the smallest number may keep alive for ever, is nothing then and becomes zero too. Should the
// limit be above 50 n + 100 steps, it is that: convergence takes about two steps a value.
template <class Real>
std::int64_t diagonalize_tridiagonal(Size n, Real* d, Real* e, std::int64_t limit,
                                     const RotatedIdentity<Real>* target);

}  // namespace nequar
