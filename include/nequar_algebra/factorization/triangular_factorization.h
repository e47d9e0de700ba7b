#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/structured/diagonal.h"
#include "nequar_algebra/structured/symmetric.h"
#include "nequar_algebra/structured/triangular.h"

namespace nequar {

struct Outcome;
template <class Real>
struct View;

/// A packed lower triangle.
template <class Real>
using MatrixTriangularLower = MatrixTriangular<Real, TriangleSide::lower>;
/// A packed upper triangle.
template <class Real>
using MatrixTriangularUpper = MatrixTriangular<Real, TriangleSide::upper>;

/// LU and Cholesky factorizations, the determinant, tests of definiteness and symmetry, the
/// condition number.
///
/// A `u_` form works in place on a dense matrix; the other forms leave their input as it is and
/// size their outputs. Operations that answer bool answer true on success; on failure they store
/// an error detail, record their name, and answer false. When one operation fails because another
/// one did, both are recorded ("u_dluc_…: singular", then "dluc_…: 1"), also where the work is done
/// by a shorter way. Beside the details named below, "out of memory" tells that a workspace, and
/// "cannot size the output" that an output could not be had: packed matrices are 1 x 1 at least
/// and at most of order 65535, and a packed input that no longer holds its elements is "bad input".
///
/// Permutations: row i of P A is row perm[i] of A. The number of interchanges counts the steps that
/// exchanged two rows; its parity is the sign of P.
template <class Real>
class NEQUAR_API TriangularFactorization : public CNqClass {
public:
    // ---- LU, the pivots chosen before the update ----

    /// P A = L U by Crout's scheme, in place: U on and above the diagonal of `a`, the multipliers
    /// of the unit lower triangular L below it.
    ///
    /// Column by column: the pivot is the largest element of column j from row j down, the last of
    /// equals, on the column AS IT STANDS BEFORE IT IS UPDATED; then rows are exchanged and the
    /// column is updated. There is no scaling of rows and no tolerance: only a pivot that is
    /// exactly zero fails.
    ///
    /// Beware: this is not partial pivoting. The rule does not see what the elimination makes of
    /// the candidates, so it refuses many regular matrices as singular ([[4,4,1],[2,1,1],[2,2,3]]
    /// with determinant -10 is one), and lets the factors of others grow without bound (growth of
    /// 1e22 was met on real ones) until the factors are useless. Where the answer matters use
    /// `u_dlup_…`, or a QR decomposition, or check the residual.
    ///
    /// An element that is not a number is never chosen as a pivot; a column of nothing else leaves
    /// the pivot on the diagonal, and NaN passes through. A pivot so small that its reciprocal
    /// overflows is divided by.
    ///
    /// "non-square": nothing was changed. "singular": a pivot is exactly zero at some column j;
    /// the columns before j are factored, column j is updated, the columns after it are those of
    /// the input, rows are exchanged so far, perm and interchanges as they are.
    ///
    /// perm is sized here. An empty matrix succeeds. Cost 2/3 n^3, and n^2 elements of workspace.
    /// Source: Crout's scheme; the recursion on columns after Golub and Van Loan, Matrix
    /// Computations, 3.2.11.
    bool u_dluc_Decompose_into_LU_matrices_by_Crout(Matrix<Real>* a, CNqVectorInt* perm,
                                                    int& interchanges) const;

    /// P A = L U: the factors of `u_dluc_…` in packed form, the diagonal of L stored as ones.
    ///
    /// "1": `u_dluc_…` failed; of the outputs only perm and interchanges were written then.
    bool dluc_Decompose_into_LU_matrices_by_Crout(const Matrix<Real>* a,
                                                  MatrixTriangularLower<Real>* l,
                                                  MatrixTriangularUpper<Real>* u,
                                                  CNqVectorInt* perm, int& interchanges) const;

    /// P A = L D U with ones on the diagonals of both L and U: D is the diagonal of the U above,
    /// and each row of U is divided by it. "1": as above.
    bool dluc_Decompose_into_LU_matrices_by_Crout(const Matrix<Real>* a,
                                                  MatrixTriangularLower<Real>* l,
                                                  MatrixDiagonal<Real>* d,
                                                  MatrixTriangularUpper<Real>* u,
                                                  CNqVectorInt* perm, int& interchanges) const;

    // ---- LU with partial pivoting ----

    /// P A = L U in place, like `u_dluc_…`, but with the largest element of the UPDATED column as
    /// the pivot, the first of equals. No multiplier exceeds one, and growth is rare (bounded by
    /// 2^(n-1), in practice small): the LU factorization to use by default.
    ///
    /// "non-square": nothing was changed. "singular": a pivot is exactly zero. The factorization
    /// is finished all the same: `a`, perm and interchanges hold P A = L U with that zero on the
    /// diagonal of U (columns without a pivot keep zero multipliers).
    ///
    /// Cost 2/3 n^3. Source: Toledo, Locality of reference in LU decomposition with partial
    /// pivoting, SIAM J. Matrix Anal. Appl. 18, 1997: recursion on the columns.
    bool u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting(Matrix<Real>* a,
                                                                 CNqVectorInt* perm,
                                                                 int& interchanges) const;

    /// P A = L U as packed factors, the diagonal of L stored as ones. "1": `u_dlup_…` failed; of
    /// the outputs only perm and interchanges were written then.
    bool dlup_Decompose_into_LU_matrices_with_Partial_pivoting(const Matrix<Real>* a,
                                                               MatrixTriangularLower<Real>* l,
                                                               MatrixTriangularUpper<Real>* u,
                                                               CNqVectorInt* perm,
                                                               int& interchanges) const;

    /// An estimate of the condition number ||A|| ||A^-1|| in the 1-norm, from LU factors with
    /// partial pivoting and a few triangular solves, without the inverse: a lower bound that is
    /// rarely below a third of the truth. About log10(condition) of the digits of a solution of
    /// A x = b are lost. NaN in A gives NaN, overflow gives infinity, an empty matrix 1.
    ///
    /// "1": `u_dlup_…` failed, so `a` is not square, or exactly singular in working precision;
    /// `condition` is then untouched. Cost 2/3 n^3 + O(n^2).
    /// Source: Higham, Accuracy and Stability of Numerical Algorithms, algorithm 15.4.
    bool ecn_Estimate_Condition_Number(const Matrix<Real>* a, Real& condition) const;

    // ---- Cholesky ----

    /// The Cholesky factor in place, in one triangle, of a symmetric positive definite matrix that
    /// is read from the other.
    ///
    /// lower = true: A = L L^T. The diagonal and the strict upper triangle are the input; L is
    /// written into the strict lower triangle and, at the end, onto the diagonal. The strict upper
    /// triangle keeps the input.
    ///
    /// lower = false: A = U U^T (not U^T U), built from the bottom right corner. The diagonal and
    /// the strict lower triangle are the input, U goes into the strict upper triangle and onto the
    /// diagonal, the strict lower triangle keeps the input.
    ///
    /// "non-square matrix": nothing was changed. "non-positive definite": a pivot is not above
    /// zero, NaN included (no tolerance); the triangle of the factor is partly overwritten, the
    /// diagonal and the triangle of the input are as they were. Cost 1/3 n^3. Source: Golub and Van
    /// Loan, Matrix Computations, 4.2.
    bool u_dch_Decompose_matrix_by_Cholesky_algorithm(bool lower, Matrix<Real>* a) const;

    /// A = L L^T. "1": `u_dch_…` failed; L is untouched.
    bool dch_Decompose_matrix_by_Cholesky_algorithm(const MatrixSymmetric<Real>* a,
                                                    MatrixTriangularLower<Real>* l) const;
    /// A = U U^T. "1": `u_dch_…` failed; U is untouched.
    bool dch_Decompose_matrix_by_Cholesky_algorithm(const MatrixSymmetric<Real>* a,
                                                    MatrixTriangularUpper<Real>* u) const;

    // ---- what follows from the factors ----

    /// The determinant: the product of the diagonal of U from `u_dluc_…`, negated for an odd
    /// number of interchanges. It is a plain product, which overflows and underflows where the
    /// determinant does (or, on the way, where it does not). One for an empty matrix.
    ///
    /// A matrix that `u_dluc_…` calls singular makes this FAIL, rather than give 0.0; and regular
    /// matrices that `u_dluc_…` refuses are refused here too.
    ///
    /// "not square"; "1": `u_dluc_…` failed. `determinant` is then untouched. Cost 2/3 n^3.
    bool d_Determinant(const Matrix<Real>* a, Real& determinant) const;
    bool d_Determinant(const MatrixSymmetric<Real>* a, Real& determinant) const;
    /// The same as a value; 0.0, and one more record with detail "1", on failure.
    Real d_Determinant(const Matrix<Real>* a) const;
    Real d_Determinant(const MatrixSymmetric<Real>* a) const;

    /// Whether all pivots of the Cholesky decomposition are above zero. It reports nothing: a
    /// matrix that it cannot look at is not positive definite. At most 1/3 n^3, on a copy.
    bool ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(
        const MatrixSymmetric<Real>* a) const;

    /// Whether the matrix is square and a(i, j) equals a(j, i) exactly, for every i < j; a NaN off
    /// the diagonal equals nothing, one on it is not looked at. It reports nothing. O(n^2).
    bool is_Is_Symmetric(const Matrix<Real>* a) const;

protected:
    TriangularFactorization();
    TriangularFactorization(const TriangularFactorization&) = default;
    TriangularFactorization(TriangularFactorization&&) noexcept = default;
    ~TriangularFactorization() override;
    TriangularFactorization& operator=(const TriangularFactorization&) = default;
    TriangularFactorization& operator=(TriangularFactorization&&) noexcept = default;

    // The factors where nobody asked for packed ones, with the records that the forms above would
    // have left. The views are n x n, n being the order that the check of the shape allows.

    enum class Pivoting { before_update, partial };

    /// Whether `dluc_…` (or `dlup_…`) would begin with this matrix: square and, as packed factors
    /// would be made of it, not empty.
    bool can_begin_lu(Pivoting pivoting, const Matrix<Real>* a) const;
    /// lu := the factors of P A; false, recorded like `dluc_…` (or `dlup_…`), when there are none.
    bool find_lu(Pivoting pivoting, const Matrix<Real>* a, const View<Real>& lu, int* perm,
                 int& interchanges) const;
    /// Likewise for `dch_…`.
    bool can_begin_cholesky(const MatrixSymmetric<Real>* a) const;
    /// The lower triangle of `factor` := L of A = L L^T, or the upper one := U of A = U U^T.
    bool find_cholesky(bool upper, const MatrixSymmetric<Real>* a, const View<Real>& factor) const;

private:
    bool decompose_in_place(Pivoting pivoting, Matrix<Real>* a, CNqVectorInt* perm,
                            int& interchanges) const;
    bool decompose(Pivoting pivoting, const Matrix<Real>* a, MatrixTriangularLower<Real>* l,
                   MatrixDiagonal<Real>* d, MatrixTriangularUpper<Real>* u, CNqVectorInt* perm,
                   int& interchanges) const;
    bool fail_with(const Outcome& outcome, const char* method) const;
    template <class Triangular>
    bool decompose_packed(bool upper, const MatrixSymmetric<Real>* a, Triangular* factor) const;
    bool determinant_of(const View<const Real>& a, Real& determinant) const;
};

}  // namespace nequar

extern template class nequar::TriangularFactorization<double>;
extern template class nequar::TriangularFactorization<float>;
