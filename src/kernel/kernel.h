// The kernel layer's face: the loops that everything above is made of, on strided views.
//
//        algorithm layer
//              |
//        kernel.h   ------>  one table of function pointers per element type, chosen once for this
//              |             CPU: reference, baseline, avx2 or avx512 (NEQUAR_KERNEL overrides)
//        gemm engine, recursions on it (syrk, trsm, trmm), level 1 and 2, transposes
//
// Views go by reference: copies of what was just written, two words at a time, would stall for longer
// than a small product takes.
//
// Nothing here checks sizes or aliasing beyond what each comment says; nothing reports. NaN and
// infinity pass through: no operation skips a multiplication because a factor is zero.
// Empty operands are allowed everywhere.
#pragma once

#include "core/view.h"
#include "kernel/orders.h"

namespace nequar::kernel {

enum class Triangle { lower, upper };
enum class Diagonal { stored, unit };  // unit: the diagonal is one and is not read
enum class Update { set, accumulate };

// The name of the variant in use: "reference", "baseline", "avx2" or "avx512".
const char* variant_name();

// ---- level 1, contiguous: out may be one of the inputs, any other overlap is not allowed --------

template <class Real> void add(Size n, const Real* a, const Real* b, Real* out);
template <class Real> void subtract(Size n, const Real* a, const Real* b, Real* out);
template <class Real> void add_weighted(Size n, const Real* a, const Real* b, Real wa, Real wb, Real* out);
template <class Real> void add_constant(Size n, const Real* a, Real c, Real* out);
template <class Real> void scale(Size n, const Real* a, Real c, Real* out);  // out = c a
template <class Real> void multiply_elementwise(Size n, const Real* a, const Real* b, Real* out);
template <class Real> void fill(Size n, Real value, Real* out);
template <class Real> void add_reversed(Size n, Real alpha, Real* x);  // x_i += alpha x_{n-1-i}

// ---- level 1, strided (any stride, zero and negative included where they make sense) ------------

template <class Real> Real dot(const Strided<const Real>& x, const Strided<const Real>& y);
template <class Real> Real sum_of_magnitudes(const Strided<const Real>& x);
// sqrt(sum x_i^2), rescaled when the plain sum of squares over- or underflows; NaN stays NaN.
template <class Real> Real norm2(const Strided<const Real>& x);
// sqrt(sum (x_i - y_i)^2), with the same care.
template <class Real> Real distance2(const Strided<const Real>& x, const Strided<const Real>& y);
// sum (x_i - y_i)^2, plain.
template <class Real> Real distance_squared(const Strided<const Real>& x, const Strided<const Real>& y);
// out_i = sum_k (x_k - a(i, k))^2, plain, for the rows of A; out overlaps nothing.
template <class Real> void squared_distances(const Real* x, const View<const Real>& a, Real* out);
template <class Real> void axpy(Real alpha, const Strided<const Real>& x, const Strided<Real>& y);  // y += alpha x
template <class Real> void scale(Real alpha, const Strided<Real>& x);                        // x *= alpha
template <class Real> void copy(const Strided<const Real>& x, const Strided<Real>& y);
template <class Real> void swap(const Strided<Real>& x, const Strided<Real>& y);
// (x_i, y_i) := (c x_i - s y_i, s x_i + c y_i)
template <class Real> void rotate(const Strided<Real>& x, const Strided<Real>& y, Real c, Real s);
// The first index of the largest |x_i|; -1 when x is empty. NaN never wins against a number; when
// nothing but NaN is there, 0.
template <class Real> Size index_of_largest_magnitude(const Strided<const Real>& x);

// ---- level 2 ------------------------------------------------------------------------------------

// y := alpha A x (+ y)
template <class Real> void gemv(Real alpha, const View<const Real>& a, const Strided<const Real>& x, Update update, const Strided<Real>& y);
// A += alpha x y^T
template <class Real> void ger(Real alpha, const Strided<const Real>& x, const Strided<const Real>& y, const View<Real>& a);
// y := A x for a symmetric A (contiguous rows) of which the upper triangle alone is read; no overlap
template <class Real> void symv_upper(const View<const Real>& a, const Real* x, Real* y);
// x := T^-1 x
template <class Real> void trsv(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const Strided<Real>& x);

// ---- level 3, all operands on any strides; C must not overlap A or B ----------------------------

// C := alpha A B (+ C). With `set`, C is not read.
template <class Real> void gemm(Real alpha, const View<const Real>& a, const View<const Real>& b, Update update, const View<Real>& c);
// The named triangle (with the diagonal) of C := alpha A A^T (+ C); the other is neither read nor written.
template <class Real> void syrk(Triangle triangle, Real alpha, const View<const Real>& a, Update update, const View<Real>& c);
// The named triangle (with the diagonal) of C := alpha A B (+ C), for a product known to be symmetric or
// of which only a triangle is wanted.
template <class Real> void gemmt(Triangle triangle, Real alpha, const View<const Real>& a, const View<const Real>& b, Update update, const View<Real>& c);
// B := T^-1 B. A solve from the right is the transposed problem: X T = B  <=>  T^T X^T = B^T.
template <class Real> void trsm(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const View<Real>& b);
// B := T B
template <class Real> void trmm(Triangle triangle, Diagonal diagonal, const View<const Real>& t, const View<Real>& b);

// ---- whole matrices -----------------------------------------------------------------------------

template <class Real> void copy(const View<const Real>& a, const View<Real>& b);             // B := A, no overlap
template <class Real> void transpose(const View<const Real>& a, const View<Real>& b);       // B := A^T, no overlap
template <class Real> void transpose_in_place(const View<Real>& a);                   // square
template <class Real> void fill(Real value, const View<Real>& a);
// Rows i and perm[i] ... : B(i, :) := A(perm[i], :), no overlap
template <class Real> void gather_rows(const View<const Real>& a, const int* perm, const View<Real>& b);

// ---- packed by diagonals ------------------------------------------------------------------------
// A lower trapezoid of the shape of A with its diagonals one after another, the main one first, each from
// its top: a(r, c), c <= r, follows a(r - 1, c - 1). What is above the diagonal is neither read nor written.

template <class Real> void unpack_lower(const Real* packed, const View<Real>& a);
template <class Real> void pack_lower(const View<const Real>& a, Real* packed);
// A square symmetric matrix kept as its lower triangle: both triangles are written.
template <class Real> void unpack_symmetric(const Real* packed, const View<Real>& a);
// packed (r, c) := (a(r, c) + a(c, r)) * 0.5
template <class Real> void pack_symmetric(const View<const Real>& a, Real* packed);

// ---- eliminations of what is small, or a step ----------------------------------------------------

// Whether a product and its difference may be fused into one rounding, or are rounded one by one as in
// plain loops, to the last bit; products are subtracted in the order of the pivots either way.
enum class Rounding { fused, separate };

// to := the packed factors L U of `from` with row rows[i] as row i (null: rows as they stand), no
// search; order up to kSmallOrder; `to` may be `from`. Answers -1, or, with `to` untouched, the first
// pivot that is zero or whose reciprocal overflows.
template <class Real> Size lu_small(Rounding rounding, const View<const Real>& from, const int* rows, const View<Real>& to);
// Upper triangle of to := U of A = U^T U, from the upper triangle of A; order up to kSmallOrder; `to`
// may be `from`; nothing depends on the strict lower triangles, and they are not written. Answers -1, or, with `to`
// untouched, the first pivot that is not above zero.
template <class Real> Size cholesky_small(Rounding rounding, const View<const Real>& from, const View<Real>& to);
// P A = L U of a square A with partial pivoting, in place, order up to kSmallOrder; products and
// differences are rounded one by one. The pivots, and what is answered, are those of `lu_panel`.
template <class Real> Size lu_pivoted_small(const View<Real>& a, int* pivots);
// P A = L U of an m x w panel with partial pivoting, m >= w: row c of t (w x m, contiguous rows with
// kPanelPadding elements behind each) is column c of the panel. pivots[k] >= k is the row exchanged with
// row k, the first of the largest; NaN is never chosen. A column without a pivot is passed over. Answers
// the first such column, or -1.
template <class Real> Size lu_panel(Rounding rounding, const View<Real>& t, int* pivots);
// For each column of a (contiguous rows), over the rows rows[0 ... m-1]: the largest magnitude, and the
// last i at which row rows[i] has it. NaN never counts; 0 and -1 when there is nothing else.
template <class Real> void last_largest_of_columns(const View<const Real>& a, const int* rows, Size m, Real* largest, Real* place);
// For each row r of a (contiguous): factors[r] := a(r, column), a(r, :) -= factors[r] pivot_row, and then
// largest[r] := max |a(r, j)| weight[j], NaN left out.
template <class Real> void eliminate_column(Size column, const Real* pivot_row, const Real* weight, const View<Real>& a, Real* factors, Real* largest);

// ---- rotations of rows --------------------------------------------------------------------------

// For each row r of `pairs` in turn, and in it for i = 0, 1, ... while row i + 1 of A exists:
//   (a_i, a_(i+1)) := (c a_i - s a_(i+1), s a_i + c a_(i+1)),  s / (1 + c) = pairs(r, 2 i), s = pairs(r, 2 i + 1)
// Good rotations have no c near -1. The rows of both are contiguous; A is best a strip of columns that
// stays in the cache. What comes out below the smallest normal number may be zero.
template <class Real> void rotate_rows(const View<const Real>& pairs, const View<Real>& a);
// For q = 0, 1, ...: with g an element of x and h that of row q of A (contiguous rows),
//   (g, h) := (g - s (h + g tau), h + s (g - h tau)),   s = pairs[2 q], tau = pairs[2 q + 1]
// A row with s = 0 is passed over. x is no row of A.
template <class Real> void rotate_with_rows(const Real* pairs, Real* x, const View<Real>& a);

}  // namespace nequar::kernel
