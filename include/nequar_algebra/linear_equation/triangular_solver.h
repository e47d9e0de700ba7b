#pragma once

#include "nequar_algebra/factorization/matrix_factorization.h"

namespace nequar {

template <class Real>
struct Strided;

/// Solving and inverting with factors that end in triangular substitution, and by Gauss-Jordan
/// elimination.
///
///     LUD   P A = L U, pivots before the update    slu_  ilu_  u_slu_  u_ilu_
///     LUP   P A = L U, partial pivoting            slup_ ilup_
///     LLD   A = L L^T, positive definite           sll_  ill_  u_sll_  u_ill_
///     UUD   A = U U^T, positive definite           suu_  iuu_  u_suu_  u_iuu_
///     GJE   Gauss-Jordan, full pivoting            sgj_  igj_  u_sgj_
///
/// LUD is the method to know about rather than to use: see `u_dluc_…` for the regular matrices that
/// it refuses and the growth that it does not stop. GJE, as it stands, solves nothing unless every
/// pivot that it meets is positive: see `u_sgj_…`. LUP is the one for general matrices.
///
/// A has n rows and columns. The matrix forms take B, n x k with k >= 1, one right-hand side a
/// column, and make X n x k; the vector forms take b of size n and make x. The solution may be the
/// right-hand side itself, and A or A's object may be the output as well: what is still needed is
/// copied first. A is not changed otherwise.
///
/// All operations answer true on success; on failure they store a detail, record their name, and
/// answer false. The details of the object forms: "1" the factorization failed (recorded before:
/// see `dluc_…`, `dlup_…`, `dch_…`), "2" solving or inverting with its factors failed (recorded
/// before under the name of the `u_` form). Every check is made before the output is touched.
///
/// NaN in A or in the right-hand side comes out as NaN or as a failure. Infinity in A need not: a
/// division by an infinite pivot gives zero, so that a solution can look like one although A was no
/// matrix of numbers. The spectral solvers refuse such an A.
///
/// Details of the `u_` forms with factors: "1" the sizes of the factors, the permutation and the
/// right-hand side do not agree, an entry of the permutation is out of range, or a factor does not
/// hold its elements; "2" an element on the diagonal of a factor is exactly 0.0 (there is no
/// tolerance, and NaN passes). In the `u_i…` forms that is recorded under the name of the `u_s…`
/// form, then "2" under their own. Beside these: "out of memory", "cannot size the output".
///
/// Layout of raw arrays, n x k: with row_major entry (i, c) is data[i k + c]; without, right-hand
/// side c is data[c n … c n + n-1]. Sizes multiply in 64 bits.
///
/// Cost: the factorization (LU 2/3 n^3, Cholesky 1/3 n^3), 2 n^2 for a right-hand side, 4/3 n^3
/// more for an inverse from LU and 2/3 n^3 from Cholesky. Gauss-Jordan takes 2 n^3 and 2 n^2 for a
/// right-hand side. The object forms work on the dense factors: nothing is packed.
///
/// Sources: Golub and Van Loan, Matrix Computations, 3.1 to 3.4 and 4.2; Higham, Accuracy and
/// Stability of Numerical Algorithms, chapter 14 (inverses).
template <class Real>
class NEQUAR_API TriangularSolver : public MatrixFactorization<Real> {
public:
    // ---- LUD ----

    /// A X = B, A x = b. "1", "2" as said above. 2/3 n^3, and 2 n^2 for each right-hand side.
    bool slu_Solve_based_on_LUD(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool slu_Solve_based_on_LUD(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1. "1", "2" as said above. 2 n^3.
    bool ilu_Inverse_matrix_based_on_LUD(const Matrix<Real>* a, Matrix<Real>* inverse) const;

    /// Solves with P A = L U: row i of L U is row perm[i] of A. L need not have a unit diagonal.
    bool u_slu_Solve_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                  const MatrixTriangularUpper<Real>* u, const CNqVectorInt* perm,
                                  const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_slu_Solve_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                  const MatrixTriangularUpper<Real>* u, const CNqVectorInt* perm,
                                  const Vector<Real>* b, Vector<Real>* x) const;
    /// The same in place on an array of n k elements. k below 1 gives "1" too.
    ///
    /// Right-hand sides are read at data[perm[i] k + c] WHATEVER THE LAYOUT, all of them before
    /// anything is overwritten; solutions are written in the layout. So without row_major, and with
    /// k > 1, the input is row by row and the output column by column.
    bool u_slu_Solve_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                  const MatrixTriangularUpper<Real>* u, const CNqVectorInt* perm,
                                  Real* data, bool row_major, int k, int n) const;
    /// A^-1 from the factors.
    bool u_ilu_Inverse_matrix_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                           const MatrixTriangularUpper<Real>* u,
                                           const CNqVectorInt* perm, Matrix<Real>* inverse) const;

    // ---- LUP: as LUD, with partial pivoting; `u_slu_…` solves with its factors, too ----

    /// A X = B, A x = b, for a general matrix.
    bool slup_Solve_based_on_LUP(const Matrix<Real>* a, const Matrix<Real>* b,
                                 Matrix<Real>* x) const;
    bool slup_Solve_based_on_LUP(const Matrix<Real>* a, const Vector<Real>* b,
                                 Vector<Real>* x) const;
    /// A^-1. 2 n^3.
    bool ilup_Inverse_matrix_based_on_LUP(const Matrix<Real>* a, Matrix<Real>* inverse) const;

    // ---- LLD and UUD ----

    /// A X = B, A x = b by A = L L^T. 1/3 n^3, and 2 n^2 for each right-hand side.
    bool sll_Solve_based_on_LLD(const MatrixSymmetric<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool sll_Solve_based_on_LLD(const MatrixSymmetric<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = L L^T, both triangles. n^3.
    bool ill_Inverse_matrix_based_on_LLD(const MatrixSymmetric<Real>* a,
                                         Matrix<Real>* inverse) const;
    /// The same by A = U U^T.
    bool suu_Solve_based_on_UUD(const MatrixSymmetric<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool suu_Solve_based_on_UUD(const MatrixSymmetric<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = U U^T, both triangles. n^3.
    bool iuu_Inverse_matrix_based_on_UUD(const MatrixSymmetric<Real>* a,
                                         Matrix<Real>* inverse) const;

    /// From the factor: L L^T X = B.
    bool u_sll_Solve_based_on_LLD(const MatrixTriangularLower<Real>* l, const Matrix<Real>* b,
                                  Matrix<Real>* x) const;
    bool u_sll_Solve_based_on_LLD(const MatrixTriangularLower<Real>* l, const Vector<Real>* b,
                                  Vector<Real>* x) const;
    /// The same in place. The number k is not checked: below 1 there is nothing to solve.
    bool u_sll_Solve_based_on_LLD(const MatrixTriangularLower<Real>* l, Real* data, bool row_major,
                                  int k, int n) const;
    /// (L L^T)^-1.
    bool u_ill_Inverse_matrix_based_on_LLD(const MatrixTriangularLower<Real>* l,
                                           Matrix<Real>* inverse) const;
    /// From the factor: U U^T X = B, the raw form as that of LLD.
    bool u_suu_Solve_based_on_UUD(const MatrixTriangularUpper<Real>* u, const Matrix<Real>* b,
                                  Matrix<Real>* x) const;
    bool u_suu_Solve_based_on_UUD(const MatrixTriangularUpper<Real>* u, const Vector<Real>* b,
                                  Vector<Real>* x) const;
    bool u_suu_Solve_based_on_UUD(const MatrixTriangularUpper<Real>* u, Real* data, bool row_major,
                                  int k, int n) const;
    /// (U U^T)^-1.
    bool u_iuu_Inverse_matrix_based_on_UUD(const MatrixTriangularUpper<Real>* u,
                                           Matrix<Real>* inverse) const;

    // ---- GJE ----

    /// A X = B, A x = b by Gauss-Jordan elimination with full pivoting.
    ///
    /// "1": A is not square; "2": B does not have n rows; "3": the elimination failed. The vector
    /// form: "1": A is not square or b not of size n; "2": the elimination failed.
    ///
    /// Beware of negative pivots: see `u_sgj_…`.
    bool sgj_Solve_based_on_GJE(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool sgj_Solve_based_on_GJE(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by Gauss-Jordan elimination. "1": A is not square; "2": the elimination failed.
    bool igj_Inverse_matrix_based_on_GJE(const Matrix<Real>* a, Matrix<Real>* inverse) const;

    /// Gauss-Jordan elimination of A, n x n, and B, n x k, both overwritten; B becomes the
    /// solution, A about the identity.
    ///
    /// Each step takes the largest element in the rows and columns not yet used as its pivot,
    /// brings it to the diagonal by exchanging two rows, divides its row by it and clears its
    /// column. The row is multiplied by the reciprocal of the MAGNITUDE of the pivot: a negative
    /// pivot becomes -1, and its column is then doubled instead of cleared. So [[-2]] x = [4] gives
    /// x = [2], and the answer is right only if every pivot is positive, as for positive definite
    /// matrices. An infinite or NaN element ends in NaN or in a failure.
    ///
    /// Entry (r, c) is A[r n + c] and B[r k + c] with row_major, A[r + n c] and B[r + n c] without;
    /// all k entries of each row of B take part, and nothing else. "1" (row_major) or "2" (not):
    /// the remaining block is exactly zero, or n or k is negative; A and B are then partly
    /// eliminated.
    bool u_sgj_Solve_based_on_GJE(bool row_major, int n, int k, Real* a, Real* b) const;

protected:
    TriangularSolver();
    TriangularSolver(const TriangularSolver&) = default;
    TriangularSolver(TriangularSolver&&) noexcept = default;
    ~TriangularSolver() override;
    TriangularSolver& operator=(const TriangularSolver&) = default;
    TriangularSolver& operator=(TriangularSolver&&) noexcept = default;

private:
    using Pivoting = typename TriangularFactorization<Real>::Pivoting;

    template <class Use>
    bool with_lu(Pivoting pivoting, const char* method, const char* inner, const Matrix<Real>* a,
                 const Use& use) const;
    template <class Object>
    bool solve_lu(Pivoting pivoting, const char* method, const Matrix<Real>* a, const Object* b,
                  Object* x) const;
    bool invert_lu(Pivoting pivoting, const char* method, const Matrix<Real>* a,
                   Matrix<Real>* inverse) const;
    bool can_solve_with(const MatrixTriangularLower<Real>* l, const MatrixTriangularUpper<Real>* u,
                        const CNqVectorInt* perm, std::ptrdiff_t n, std::ptrdiff_t k) const;
    template <class Object>
    bool solve_with_lu(const MatrixTriangularLower<Real>* l, const MatrixTriangularUpper<Real>* u,
                       const CNqVectorInt* perm, const Object* b, Object* x) const;
    bool solve_with_lu(const MatrixTriangularLower<Real>* l, const MatrixTriangularUpper<Real>* u,
                       const CNqVectorInt* perm, const View<const Real>& b,
                       const View<Real>& x) const;

    template <class Use>
    bool with_cholesky(bool upper, const char* method, const char* inner,
                       const MatrixSymmetric<Real>* a, const Use& use) const;
    template <class Object>
    bool solve_cholesky(bool upper, const char* method, const MatrixSymmetric<Real>* a,
                        const Object* b, Object* x) const;
    bool invert_cholesky(bool upper, const char* method, const MatrixSymmetric<Real>* a,
                         Matrix<Real>* inverse) const;
    template <class Triangular>
    bool can_solve_with(bool upper, const Triangular* factor, std::ptrdiff_t n) const;
    template <class Triangular, class Object>
    bool solve_with_cholesky(bool upper, const Triangular* factor, const Object* b,
                             Object* x) const;
    template <class Triangular>
    bool solve_with_cholesky(bool upper, const Triangular* factor, const View<Real>& x) const;
    template <class Triangular>
    bool solve_array_with_cholesky(bool upper, const Triangular* factor, Real* data, bool row_major,
                                   int k, int n) const;
    template <class Triangular>
    bool invert_with_cholesky(bool upper, const Triangular* factor, Matrix<Real>* inverse) const;

    template <class Object>
    bool solve_gauss_jordan(const Matrix<Real>* a, const Object* b, Object* x,
                            const char* detail) const;
};

}  // namespace nequar

extern template class nequar::TriangularSolver<double>;
extern template class nequar::TriangularSolver<float>;
