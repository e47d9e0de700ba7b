// The QR iteration on an upper bidiagonal matrix, B(i, i) = d(i), B(i, i+1) = f(i).
//
//   B = W_U B' W_V^T;  rotations from the right go into the columns of W_V, those from the left
//   into the columns of W_U, all in the form of rotation.h:  (x, y) := (c x - s y, s x + c y)
//
// A block is the rows begin ... end-1 of B. It may hold zero superdiagonal elements, which part it
// into pieces, and zero diagonal elements.
//
// Golub & Van Loan, Matrix Computations, algorithms 8.6.1 and 8.6.2.
#pragma once

#include "core/view.h"
#include "factorization/algorithm/rotation.h"

namespace nequar {

struct BidiagonalBlock {
    Size begin = 0;
    Size end = 0;
};

// The size of an element of B below which its product with another one may lose its digits to
// underflow, beside the largest element: the rounding of the largest is more than 10^8 times as
// much in single precision, 10^130 times in double.
template <class Real>
Real least_element(Size n, const Real* d, const Real* f);

// f(i) := 0 within the block where it vanishes beside its neighbours, |f(i)| + (|d(i)| + |d(i+1)|)
// == the sum, or is smaller than `least`; and so is d(i) where an element of f beside it is not
// zero. (With products that have lost their digits the steps would not end.) Answers whether an
// element of d is zero.
template <class Real>
bool deflate(Real* d, Real* f, BidiagonalBlock block, Real least);

// Narrows the block: from its first non-zero element of f to its last, one row more. False when
// there is none.
template <class Real>
bool find_block(const Real* f, BidiagonalBlock& block);

// mu, the eigenvalue of the trailing 2 x 2 block of B^T B that is nearer to its last element:
//
//   | t11 t12 |    h = (t11 - t22) / 2,   mu = t22 - t12^2 / (h + sign(h) sqrt(h^2 + t12^2))
//   | t12 t22 |
//
// and from it the vector (d(begin)^2 - mu, d(begin) f(begin)) that the first rotation annihilates,
// up to a common factor. The numbers are scaled, and t12 = 0 gives mu = t22.
template <class Real>
void first_vector(const Real* d, const Real* f, BidiagonalBlock piece, Real& y, Real& z);

// One step: in each piece of the block with two rows or more a shifted chase of its own,
//
//      | d f     |  right[j] on columns j, j+1    | d f     |
//      | b d f   |  left[j]  on rows    j, j+1    |   d f   |      j = begin ... end-2
//      |     d f |                                |   b d f |
//
// Rotations of planes between two pieces are the identity. Where the elements grow by much towards the
// end, the bulge can vanish by underflow long before it is there, and the shift with it: the chase
// then begins anew in that place, if the elements above are nothing beside the end.
template <class Real>
void golub_kahan_step(Real* d, Real* f, BidiagonalBlock block, Rotation<Real>* right,
                      Rotation<Real>* left);

// A zero on the diagonal, d(index) = 0, splits the piece that it stands in. Row `index` is cleared
// towards the right, rotated with rows index+1 ... last; or, for the last row of a piece, column
// `index` upwards, with columns index-1 ... last. rotations[i] is that of the i-th of these, where
// x is the row or column that it is rotated with, and y is `index`.
struct ZeroChase {
    enum Kind { none, row, column } kind = none;
    Size index = 0;
    Size last = 0;

    Size count() const { return kind == row ? last - index : index - last; }
    Size line(Size i) const { return kind == row ? index + 1 + i : index - 1 - i; }
};

// The last zero of the block with an element to be cleared: a row; a column at the end of the
// block, or, where `at_inner_ends`, at that of any piece.
template <class Real>
ZeroChase find_zero(const Real* d, const Real* f, BidiagonalBlock block, bool at_inner_ends);
// Clears it: f(index), or f(index-1), becomes zero and no other element of f stops being so. The
// chase ends where the element that it drives vanishes, and `last` is where that is.
template <class Real>
ZeroChase chase_zero(Real* d, Real* f, BidiagonalBlock block, ZeroChase chase,
                     Rotation<Real>* rotations);

// Rotations applied to the columns of a matrix of `count` rows; nothing when it has none.
template <class Real>
void rotate_columns(Real* const* rows, Size count, BidiagonalBlock block,
                    const Rotation<Real>* rotations);
template <class Real>
void rotate_columns(Real* const* rows, Size count, const ZeroChase& chase,
                    const Rotation<Real>* rotations);

}  // namespace nequar
