#pragma once

#include <cstddef>

#include "nequar_algebra/algebra/matrix_algebra.h"
#include "nequar_algebra/structured/band.h"
#include "nequar_algebra/structured/triangular.h"

namespace nequar {

template <class Real>
struct View;

/// Triangular matrices: solves by substitution, inverses, and products of packed triangles and band
/// matrices; with the matrix arithmetic of its base.
///
/// All operations answer true on success; on failure they store a detail, record their name, and
/// answer false. Beside the details named below: "out of memory" and "cannot size the output".
/// The output may be any of the inputs unless stated otherwise: what is still needed is copied.
///
/// Source: Golub and Van Loan, Matrix Computations, 3.1; Higham, Accuracy and Stability of
/// Numerical Algorithms, 14.2 (inverses).
template <class Real>
class NEQUAR_API AlgebraForMatrixSpecial : public AlgebraForMatrix<Real> {
public:
    /// The packed lower triangles of this twin.
    using Lower = MatrixTriangular<Real, TriangleSide::lower>;
    /// The packed upper triangles of this twin.
    using Upper = MatrixTriangular<Real, TriangleSide::upper>;

    AlgebraForMatrixSpecial();
    AlgebraForMatrixSpecial(const AlgebraForMatrixSpecial&) = default;
    AlgebraForMatrixSpecial(AlgebraForMatrixSpecial&&) noexcept = default;
    ~AlgebraForMatrixSpecial() override;
    AlgebraForMatrixSpecial& operator=(const AlgebraForMatrixSpecial&) = default;
    AlgebraForMatrixSpecial& operator=(AlgebraForMatrixSpecial&&) noexcept = default;

    // ---- solves ----

    /// B := T^-1 B in place, for m right-hand sides of length n. T is n x n; its lower triangle
    /// (with `lower`) or its upper one is all that is read. Element i of right-hand side c is
    /// b[i m + c] with `rhs_by_row`, an n x m block row by row, and b[i + n c] without.
    ///
    /// "1": T is not n x n. "2": an element of T's diagonal is exactly 0.0; there is no tolerance,
    /// a tiny one is divided by, and NaN passes. B is untouched then. m below 1 solves nothing.
    /// n^2 m operations.
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(bool lower, const Matrix<Real>* t,
                                                          Real* b, bool rhs_by_row, int m,
                                                          int n) const;
    /// X := T^-1 B, B untouched unless it is X. X becomes a copy of B first: when the solve is
    /// refused with "1" or "2", as above, it holds that copy.
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(bool lower, const Matrix<Real>* t,
                                                          const Matrix<Real>* b,
                                                          Matrix<Real>* x) const;
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(bool lower, const Matrix<Real>* t,
                                                          const Vector<Real>* b,
                                                          Vector<Real>* x) const;
    /// The same with a packed triangle. One that is not square, or no longer holds its elements, is
    /// refused with "1".
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(const Lower* t, const Matrix<Real>* b,
                                                          Matrix<Real>* x) const;
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(const Lower* t, const Vector<Real>* b,
                                                          Vector<Real>* x) const;
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(const Upper* t, const Matrix<Real>* b,
                                                          Matrix<Real>* x) const;
    bool slet_Solve_Linear_Equation_for_Triangular_matrix(const Upper* t, const Vector<Real>* b,
                                                          Vector<Real>* x) const;

    // ---- inverses ----

    /// Inverse := T^-1, the other triangle zero. "1": the inverse, of T's height, cannot be sized.
    /// "2": the solve of T X = I was refused (recorded before, as `slet_…`); the inverse holds the
    /// identity then. An empty T has an empty inverse. n^3 / 3 operations.
    bool imt_Inverse_Matrix_for_Triangular_matrix(bool lower, const Matrix<Real>* t,
                                                  Matrix<Real>* inverse) const;
    bool imt_Inverse_Matrix_for_Triangular_matrix(const Lower* t, Matrix<Real>* inverse) const;
    bool imt_Inverse_Matrix_for_Triangular_matrix(const Upper* t, Matrix<Real>* inverse) const;

    // ---- products of packed triangles, n^3 / 3 operations ----

    /// C += A B. "1": A, B and C are not square and of one order, or do not hold their elements, or
    /// C is A or B. C is untouched then.
    bool mlla_Multiply_Lmatrix_Lmatrix_and_Accumulate(const Lower* a, const Lower* b,
                                                      Lower* c) const;
    /// C := A B, C sized here; it may be A or B. "1": A and B are not square and of one order, or
    /// do not hold their elements.
    bool mll_Multiply_Lmatrix_Lmatrix(const Lower* a, const Lower* b, Lower* c) const;
    /// The two products for upper triangles.
    bool muua_Multiply_Umatrix_Umatrix_and_Accumulate(const Upper* a, const Upper* b,
                                                      Upper* c) const;
    bool muu_Multiply_Umatrix_Umatrix(const Upper* a, const Upper* b, Upper* c) const;

    // ---- products of band matrices: as many operations as there are pairs of stored elements ----

    /// C += A B, C dense; what a product leaves zero is not touched. "1": A's width is not B's
    /// height, a matrix does not hold its elements, or C has not A's height and B's width. C is
    /// untouched then.
    bool mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(const MatrixBand<Real>* a,
                                                      const MatrixBand<Real>* b,
                                                      Matrix<Real>* c) const;
    /// C := A B, C sized here and cleared. "1": A's width is not B's height, or a matrix does not
    /// hold its elements; C is untouched then.
    bool mbb_Multiply_Bmatrix_Bmatrix(const MatrixBand<Real>* a, const MatrixBand<Real>* b,
                                      Matrix<Real>* c) const;

private:
    bool multiply_bands(const char* method, const MatrixBand<Real>* a, const MatrixBand<Real>* b,
                        bool accumulate, Matrix<Real>* c) const;
    bool can_solve(const View<const Real>& t, std::ptrdiff_t n) const;
    template <class Object>
    bool solve_copy(bool lower, const View<const Real>& t, const Object* b, Object* x) const;
    template <class Object>
    bool solve_dense(bool lower, const Matrix<Real>* t, const Object* b, Object* x) const;
    template <TriangleSide side, class Object>
    bool solve_packed(const MatrixTriangular<Real, side>* t, const Object* b, Object* x) const;
    bool invert(bool lower, const View<const Real>& t, Matrix<Real>* inverse) const;
    template <TriangleSide side>
    bool invert_packed(const MatrixTriangular<Real, side>* t, Matrix<Real>* inverse) const;
    template <TriangleSide side>
    bool multiply(const char* method, bool accumulate, const MatrixTriangular<Real, side>* a,
                  const MatrixTriangular<Real, side>* b, MatrixTriangular<Real, side>* c) const;
};

}  // namespace nequar

using LCNqAlgebra_for_Matrix_Special = nequar::AlgebraForMatrixSpecial<double>;
using LCNqAlgebra_for_MatrixFloat_Special = nequar::AlgebraForMatrixSpecial<float>;

extern template class nequar::AlgebraForMatrixSpecial<double>;
extern template class nequar::AlgebraForMatrixSpecial<float>;
