#pragma once

#include <iosfwd>

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/structured/symmetric.h"

namespace nequar {

struct Outcome;

/// A symmetric positive definite Toeplitz matrix of order n: element (x, y) is r[|x - y|], and the
/// first row r is all that is stored.
///
/// Systems and the inverse cost O(n^2), by recursions that raise the order step by step and need
/// every leading principal part to be positive definite. Beware: where these are badly conditioned
/// the recursions lose digits that a dense solve would keep.
///
/// The algorithms divide by r[0] first, in copies: the vectors handed to them do not change unless
/// they are outputs too, and any of them may be. On failure the outputs stay as they were, except
/// that an inverse may have been sized. Their details are "r[0]==0" (exactly zero), "Not
/// Positive-Definite" (a leading part is not, or r is not made of finite numbers), "1" (sizes that
/// do not fit, or an empty r), "out of memory" and "cannot size the output". A negative r[0] is no
/// failure: -T is then the positive definite one.
///
/// Source of the algorithms: Golub and Van Loan, Matrix Computations, 4.7.
template <class Real>
class NEQUAR_API MatrixToeplitzSymmetric : public CNqClass {
public:
    /// Order 1, the only element 1.0.
    MatrixToeplitzSymmetric();
    MatrixToeplitzSymmetric(const MatrixToeplitzSymmetric&) = default;
    /// A move leaves a matrix of order 0.
    MatrixToeplitzSymmetric(MatrixToeplitzSymmetric&&) noexcept = default;
    ~MatrixToeplitzSymmetric() override;
    MatrixToeplitzSymmetric& operator=(const MatrixToeplitzSymmetric&) = default;
    MatrixToeplitzSymmetric& operator=(MatrixToeplitzSymmetric&&) noexcept = default;
    /// Makes this matrix a copy of another.
    void cp_Copy(const MatrixToeplitzSymmetric* source);

    /// Gives the width, then the height; both are the order.
    void ms_Matrix_Width_Height(int& width, int& height) const noexcept;
    void ms(int& width, int& height) const noexcept { ms_Matrix_Width_Height(width, height); }
    int mw() const noexcept { return r_.vs(); }
    int mh() const noexcept { return r_.vs(); }

    /// r := the first n elements of v. "1": n is not above 0; "Bad Upper Part": v has fewer than n
    /// elements. The matrix then stays as it was.
    bool im_Import(int n, const Vector<Real>& v);
    /// Writes the full matrix, the packed symmetric matrix and r, each sized here; null: not
    /// wanted. "1": an output cannot be sized, or the last two are one object.
    void ex_Export(Matrix<Real>* dense, MatrixSymmetric<Real>* symmetric, Vector<Real>* r) const;
    /// Writes the matrix into an array of order * order elements. The flag has no effect, since the
    /// matrix is symmetric.
    void ex_Export(bool row_major, Real* elements, int* order) const;

    /// Element (column x, row y), each wrapped: -1 is the last. 0.0 and detail "1" from a matrix of
    /// order 0, as for rows.
    Real ge_Get_Element(int x, int y) const;
    /// Row `index` (wrapped) in out[0 … n-1]; rows and columns are equal.
    void gr_Get_Row(int index, Real* out) const;
    void gr_Get_Row(int index, Vector<Real>* out) const;
    void gc_Get_Column(int index, Real* out) const;
    void gc_Get_Column(int index, Vector<Real>* out) const;

    /// The Yule-Walker equations: y with T_m y = -(r[1], …, r[m]), m = r.vs() - 1, where T_m is the
    /// matrix of r[0 … m-1]. With one element in r, y becomes empty.
    ///
    /// T (may be null) receives the matrix of the first m elements of r as they stand; since there
    /// is no matrix of order 0, m = 0 is reported on T ("1"), which stays as it was, and the
    /// operation succeeds all the same. Durbin's algorithm, 2 m^2.
    ///
    /// Only the parts up to T_m are tested: r = (1, 1) gives y = (-1).
    bool u_sywd_Solve_Yule_Walker_equation_by_Durbin(const Vector<Real>& r, Vector<Real>* y,
                                                     MatrixToeplitzSymmetric* T) const;

    /// Solves T x = b in place: b becomes x. With b shorter than the order, the leading part of
    /// that size is solved with.
    bool slel_Solve_Linear_Equation_by_Levinson(Vector<Real>& b) const;
    /// Solves with the matrix of the first b.vs() elements of r; r may be longer ("1" when it is
    /// shorter). x is sized here and may be r or b. Levinson's algorithm, 4 n^2.
    bool u_slel_Solve_Linear_Equation_by_Levinson(const Vector<Real>& r, const Vector<Real>& b,
                                                  Vector<Real>& x) const;

    /// The inverse, exactly symmetric, as a dense and as a packed matrix, each sized here; null:
    /// not wanted. Trench's algorithm, 13/4 n^2 and the n^2 elements; without `dense` the packed
    /// elements are found directly, and may differ in the last bits from those of the dense form.
    /// Packed matrices reach order 65535.
    bool fimt_Find_Inverse_Matrix_by_Trench(Matrix<Real>* dense,
                                            MatrixSymmetric<Real>* symmetric) const;
    /// The same for the matrix whose first row is r.
    bool u_fimt_Find_Inverse_Matrix_by_Trench(const Vector<Real>& r, Matrix<Real>* dense,
                                              MatrixSymmetric<Real>* symmetric) const;

    /// Same order and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixToeplitzSymmetric& other) const noexcept { return r_ == other.r_; }

private:
    bool fail_with(const Outcome& outcome, const char* method) const;
    bool get_line(int index, Real* out, const char* method) const;
    void get_line(int index, Vector<Real>* out, const char* method) const;

    Vector<Real> r_;
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixToeplitzSymmetric<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Toeplitz_Symmetric = nequar::MatrixToeplitzSymmetric<double>;
using CNqMatrixFloat_Toeplitz_Symmetric = nequar::MatrixToeplitzSymmetric<float>;

extern template class nequar::MatrixToeplitzSymmetric<double>;
extern template class nequar::MatrixToeplitzSymmetric<float>;
