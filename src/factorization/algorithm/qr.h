// A = Q R by Householder reflections, and with it QL, RQ and LQ.
//
//   A m x n,  Q m x m,  R m x n;  reflections: m - 1 when m <= n, else n
//
// R stands in A's upper triangle. Below it every column keeps what stood there when it was reduced;
// the reflectors are kept elsewhere. The other three are the same decomposition of the matrix seen
// from another corner, with Q seen from there too (J reverses the order of rows or columns):
//
//   A = Q L    J A J     = (J Q J) (J L J)          qr(a.reversed(), q.reversed())
//   A = L Q    A^T       = Q^T L^T                  qr(a.transposed(), q.transposed())
//   A = R Q    J A^T J   = (J Q^T J) (J R^T J)      qr(a.reversed().transposed(), ...)
//
// so that every diagonal comes out not negative where a reflection was made, the triangle of a
// rectangular matrix is aligned with the bottom (QL) or the right (RQ), and their leftovers lie on
// its other side.
//
// Blocked: a panel of columns is reduced by halves, down to a few columns that are done one by one,
//
//      |  R   R   R   |      P   panel, copied out: its R and leftovers are written back
//      |     [P]  C   |      U   its reflectors, S their coupling
//      |     [P]  C   |      C   trailing matrix, C := (I - U T U^T)^T C
//
// Golub & Van Loan, Matrix Computations, algorithms 5.2.1 and 5.2.3; Elmroth & Gustavson, Applying
// recursion to serial and parallel QR factorization leads to better performance, IBM J. R&D 44,
// 2000.
#pragma once

#include "core/outcome.h"
#include "factorization/algorithm/block_reflector.h"

namespace nequar {

enum class OrthogonalForm : int { qr, ql, rq, lq };

// A, or its orthogonal factor, as the QR of the form sees it.
template <class Real>
View<Real> seen_by_qr(OrthogonalForm form, View<Real> a) {
    if (form == OrthogonalForm::ql) return a.reversed();
    if (form == OrthogonalForm::lq) return a.transposed();
    if (form == OrthogonalForm::rq) return a.reversed().transposed();
    return a;
}

inline bool has_lower_triangle(OrthogonalForm form) {
    return form == OrthogonalForm::ql || form == OrthogonalForm::lq;
}

// The orthogonal factor stands left of the triangle.
inline bool begins_with_q(OrthogonalForm form) {
    return form == OrthogonalForm::qr || form == OrthogonalForm::ql;
}

struct QrBlocking {
    Size block = 0;  // columns of a panel; 0: by the size of the matrix, 1: no blocks at all
    Size leaf = 0;   // columns of a panel that are reduced one by one; 0: a cache line's elements
};

inline Size reflections_of_qr(Size height, Size width) {
    if (height == 0) return 0;
    return height <= width ? height - 1 : width;
}

// A := R with leftovers.
template <class Real>
Outcome qr(View<Real> a, QrBlocking blocking = {});

// The same, and Q (m x m, no overlap with A).
template <class Real>
Outcome qr(View<Real> a, View<Real> q, QrBlocking blocking = {});

// For callers that bring scratch of their own. What becomes of the reflectors, besides reducing A:
template <class Real>
struct QrTargets {
    const ReflectorStore<Real>* store = nullptr;  // kept here; its block is that of the blocking
    View<Real> right_side;                        // B := Q^T B
};

// The columns of a panel that the blocking comes to; 1: no blocks.
Size block_of_qr(Size height, Size width, QrBlocking blocking);
// `right_sides` columns of B.
template <class Real>
Size scratch_of_qr(Size height, Size width, Size right_sides, QrBlocking blocking);
template <class Real>
void qr_into(View<Real> a, const QrTargets<Real>& targets, QrBlocking blocking,
             Scratch<Real> scratch);

}  // namespace nequar
