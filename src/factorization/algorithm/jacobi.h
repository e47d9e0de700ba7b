// Diagonalization of a symmetric matrix by Jacobi rotations: A -> J^T A J, V -> V J.
//
//   rotation of (p, q), p < q:   theta = (d_q - d_p) / (2 a_pq)
//                                t = 1 / (|theta| + sqrt(1 + theta^2)), negative unless theta > 0
//                                c = 1 / sqrt(1 + t^2),  s = t c,  tau = s / (1 + c)
//       d_p -= t a_pq,  d_q += t a_pq,  a_pq = 0
//       every other pair in rows (columns) p and q:  g -= s (h + g tau),  h += s (g - h tau)
//
// An element that is negligible beside d_p and d_q, by a hundredth of rounding, is set to zero
// without a rotation; so is the effect of one that is not above the threshold: none at all.
//
//   classical   the largest a_pq^2, again and again; tolerance absolute, on sqrt(sum of a_ij^2, i <
//   j) threshold   cyclic by rows; in the first three sweeps the threshold 0.2 off / n^2; until off
//   = 0 relative    cyclic by rows; until sqrt(off) <= tolerance * the Frobenius norm of the input
//
// with off = 2 sum of a_ij^2 over i < j. The cyclic forms work on p's pairs in blocks of rows q:
//
//          j < p    p  between   block    after    the angles come out of r and the block's own
//      p  [ left  |   |         | r    | right ]   square; then row p and the rows of the block
//         [       |   |         | B    |       ]   are rotated: L and R as they lie, L in the lower
//      q  [ L     |   |         | \    | R     ]   triangle, R in the upper; between the two as
//      q  [ L     |   |         |   \  | R     ]   columns B, turned
//
// and what the sweep has left in the lower triangle is taken to the upper at its end.
//
// V is kept transposed, so that its rows are rotated: one row p with many rows q at once.
//
// Golub & Van Loan, Matrix Computations, 8.5; Rutishauser, The Jacobi method for real symmetric
// matrices, Numerische Mathematik 9, 1966.
#pragma once

#include <cstdint>

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

enum class JacobiMode { classical = 0, threshold = 1, relative = 2 };

struct JacobiCounts {
    std::int64_t sweeps = 0;       // rotations tried in the classical form
    std::int64_t annihilated = 0;  // rotations made, and negligible elements set to zero
};

// A (contiguous rows, of which the upper triangle is read, and both are used up) becomes diagonal
// as far as the limit of sweeps lets it; d (n) := the diagonal; the rows of V^T (n x n, contiguous,
// no overlap; may be null) := the vectors. All elements are finite and their squares neither
// overflow nor vanish; `unit` is what A was multiplied by to that end. Not sorted.
template <class Real>
Outcome jacobi(JacobiMode mode, View<Real> a, Real* d, const View<Real>* vt,
               std::int64_t max_sweeps, Real tolerance, Real unit, JacobiCounts& counts);

// The rotation of p and q (p < q) alone, on rows that lie anywhere: the upper triangle of A, and
// columns p and q of V (may be null). Answers whether an element was annihilated.
template <class Real>
bool jacobi_rotate(Real* const* a, Real* d, Real* const* v, Size n, Size p, Size q, Real threshold);

}  // namespace nequar
