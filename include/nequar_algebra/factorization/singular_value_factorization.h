#pragma once

#include <cstdint>

#include "nequar_algebra/factorization/symmetric_eigen_factorization.h"

namespace nequar {

template <class Real>
struct Strided;
template <class Real>
struct SvdInverse;

/// The singular value decomposition, and the steps that it is made of.
///
///     A = U S V^T    m x n, m >= n;  U m x m, S m x n diagonal, V n x n
///
/// The singular values are not negative and descend, equal ones in the order in which they were
/// found; the first n columns of U and the columns of V follow them. The other columns of U
/// complete the basis. A matrix with m < n is refused: decompose its transpose.
///
/// U and V may be null, which saves the work for them, and may be A, but not one object ("1").
/// Every output is sized here; a failed check leaves the outputs as they were. A matrix with NaN or
/// infinity in it is refused: no reflector can be built. Elements of any other size are safe, as
/// far as the results can be held. Beside the details named below there are "out of memory" and
/// "cannot size the output".
///
/// Sources: Golub and Van Loan, Matrix Computations, 5.4.2 and 8.6; Chan, An improved algorithm for
/// computing the singular value decomposition, ACM TOMS 8, 1982 (QR first for tall matrices);
/// Dongarra, Hammarling and Sorensen, Block reduction of matrices to condensed forms, J. Comput.
/// Appl. Math. 27, 1989.
///
/// BEWARE OF THE LIMIT. One step of Golub and Kahan is made for about half a singular value, and
/// the forms without a limit of their own stop before step 100: a matrix of more than about 50
/// columns may stop unconverged there, which is no failure. What the diagonal then holds is
/// delivered, and U S V^T is not A. For larger matrices use the form that takes a limit, with 4 n
/// or more, and look at the steps that come back: fewer than the limit mean convergence.
template <class Real>
class NEQUAR_API SingularValueFactorization : public SymmetricEigenFactorization<Real> {
public:
    // ---- bidiagonalization ----

    /// A = U B V^T in place: `a` (m x n, m >= n) becomes B, upper bidiagonal with exact zeros
    /// elsewhere, U is m x m and V n x n, either null when it is not wanted. B's elements are not
    /// negative where a reflection made them; the last diagonal element of a square matrix and the
    /// last of the superdiagonal keep their signs.
    ///
    /// "1": two of a, U and V are one object. "height<width". "2", "3": NaN or infinity is met on
    /// the left, on the right side. 4 n^2 (m - n/3), and 4 m n (m - n) + 4/3 n^3 for U, 4/3 n^3
    /// for V.
    bool u_bd_Bidiagonalize_matrix(Matrix<Real>* a, Matrix<Real>* u, Matrix<Real>* v) const;
    /// The same from A, which any output may be. "1": the form in place failed.
    bool bdm_Bidiagonalize_Matrix(const Matrix<Real>* a, Matrix<Real>* u, Matrix<Real>* b,
                                  Matrix<Real>* v) const;
    /// The same with B as a band matrix of no sub- and one superdiagonal (none when n = 1).
    bool bdm_Bidiagonalize_Matrix(const Matrix<Real>* a, Matrix<Real>* u, MatrixBand<Real>* b,
                                  Matrix<Real>* v) const;

    // ---- steps on a bidiagonal matrix ----
    // d[0 … n-1] is the diagonal, f[0 … n-2] the superdiagonal. A block is the rows and columns
    // p … q_end-1, 0 <= p < q_end <= n, beside which f is zero: f[p-1] = 0 and f[q_end-1] = 0 as
    // far as they exist. Rotations from the left are accumulated into the columns of U, those from
    // the right into the columns of V, so that U B V^T stays as it is. Either may be null.

    /// One implicitly shifted step. The shift is Wilkinson's, of the trailing 2 x 2 block of B^T B.
    /// A block with zero superdiagonal elements inside gets one chase for each unreduced piece
    /// between them, each with the shift of its own end; that counts as one step. U and V are n
    /// rows of n elements.
    ///
    /// "n=%d, noo=%d,nzz=%d" with n, p and q_end: this is no block, or one of a single row.
    bool u_sgk_SVD_step_by_Golub_Kahan(int n, Real* d, Real* f, int p, int q_end, Real** u,
                                       Real** v) const;
    /// U and V have n columns at least and any number of rows. "1": f is not shorter than d by one,
    /// U or V has fewer columns, or two of the objects are one.
    bool sgk_SVD_step_by_Golub_Kahan(Vector<Real>* d, Vector<Real>* f, int p, int q_end,
                                     Matrix<Real>* u, Matrix<Real>* v) const;

    /// Splits the block where its diagonal is exactly zero. For d[i] = 0 with f[i] != 0, row i is
    /// cleared by rotations from the left with rows i+1, i+2, …; a zero in the last row of the
    /// block has nothing to its right, and column i is cleared by rotations from the right with
    /// columns i-1, i-2, …. All zeros of the block are treated, the last one first; a block without
    /// any is left as it is. "n=%d, noo=%d,nzz=%d": this is no block.
    bool u_mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(int n, int p, int q_end, Real* d, Real* f,
                                                          Real** u, Real** v) const;
    /// Object forms, of a block and of the whole; details as in `sgk_…`.
    bool mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(Vector<Real>* d, Vector<Real>* f, int p,
                                                        int q_end, Matrix<Real>* u,
                                                        Matrix<Real>* v) const;
    bool mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(Vector<Real>* d, Vector<Real>* f,
                                                        Matrix<Real>* u, Matrix<Real>* v) const;
    /// On a dense B of which the diagonal and superdiagonal alone are read and written; it has no
    /// fewer rows than columns ("1").
    bool mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(Matrix<Real>* b, int p, int q_end,
                                                        Matrix<Real>* u, Matrix<Real>* v) const;
    bool mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(Matrix<Real>* b, Matrix<Real>* u,
                                                        Matrix<Real>* v) const;

    // ---- the decomposition ----

    /// A = U S V^T with the singular values in a vector of size n. `iterations` counts the steps;
    /// when it reaches max_iterations (raised to 1 when smaller) the iteration stops before that
    /// step is made, and that is no failure. So a limit of 1 makes no step at all. Superdiagonal
    /// elements are dropped when they vanish beside the two diagonal elements in a floating-point
    /// sum, without any tolerance (and when they are about to be subnormal).
    ///
    /// Cost: 4 n^2 (m - n/3) for the values alone, of a square matrix about 25 n^3 with both
    /// factors; a tall matrix is brought to its triangle by QR first.
    ///
    /// "1": U and V are one object, `iterations` is left alone (all later failures make it 0).
    /// "(m,n)=(%d,%d)" with m, n: the height is below the width. "3": NaN or infinity in A
    /// (recorded before under the name of `u_bd_…`). "4" and "5", a failed chase or step, do not
    /// occur.
    bool u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        const Matrix<Real>* a, Matrix<Real>* u, Vector<Real>* sigma, Matrix<Real>* v,
        int max_iterations, int& iterations) const;
    /// A = U S V^T with the singular values as a diagonal matrix of the shape of A. "1": the form
    /// above failed.
    bool dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        const Matrix<Real>* a, Matrix<Real>* u, MatrixDiagonal<Real>* s, Matrix<Real>* v,
        int max_iterations, int& iterations) const;
    /// The same with max_iterations = 100: see above for what that means.
    bool dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(const Matrix<Real>* a,
                                                                      Matrix<Real>* u,
                                                                      MatrixDiagonal<Real>* s,
                                                                      Matrix<Real>* v) const;

    /// The rank by singular values in descending order: the first i >= 1 with s[i] <= tolerance
    /// s[0], all when there is none; 0 when s[0] is exactly 0 (or there are none). s[0] counts
    /// always.
    ///
    /// "1": the tolerance is not in [0, 1). With check_order, for i >= 1: "incorrect ordering" when
    /// s[i] exceeds s[i-1], "negative value" when it is below zero; s[0] is not tested for its
    /// sign. "not finite": a value is NaN or infinite. The rank is then untouched.
    bool u_rsv_Rank_based_on_SVD(const Vector<Real>* singular_values, Real tolerance,
                                 bool check_order, int& rank) const;

    /// `out` := A from its leading singular values, those beyond the rank by `u_rsv_…` dropped.
    /// A has no fewer rows than columns. At most 99 steps are made, see above. "1": the
    /// decomposition or the rank failed. `out` may be A.
    bool rsv_Reconstruct_matrix_via_Singular_Value_decomposition(const Matrix<Real>* a,
                                                                 Real tolerance,
                                                                 Matrix<Real>* out) const;
    /// The same from the decomposition, with as many rows as U and as many columns as V has rows.
    /// U may have all of its columns or the leading ones alone, as many as there are singular
    /// values. "1": the rank failed. "2": the shapes of U, S and V do not agree. `out` may be U or
    /// V.
    bool rsv_Reconstruct_matrix_via_Singular_Value_decomposition(const Matrix<Real>* u,
                                                                 const MatrixDiagonal<Real>* s,
                                                                 const Matrix<Real>* v,
                                                                 Real tolerance, bool check,
                                                                 Matrix<Real>* out) const;

protected:
    SingularValueFactorization();
    SingularValueFactorization(const SingularValueFactorization&) = default;
    SingularValueFactorization(SingularValueFactorization&&) noexcept = default;
    ~SingularValueFactorization() override;
    SingularValueFactorization& operator=(const SingularValueFactorization&) = default;
    SingularValueFactorization& operator=(SingularValueFactorization&&) noexcept = default;

    /// Singular values of a matrix of any shape, and the factors that are not null: `u` with all
    /// columns or the leading min(m, n), `v` likewise (one of them is square anyway). The limit
    /// grows with the order; a failure is recorded as `dsvb_…` does. Nothing may overlap. With
    /// `inverse`, for callers that only divide by the matrix, the factors may stay unformed: of a
    /// wide matrix it is the transpose that is decomposed, with U and V exchanged.
    bool find_singular_values(const View<const Real>& a, Real* sigma, const View<Real>* u,
                              const View<Real>* v, SvdInverse<Real>* inverse = nullptr) const;
    /// Records, as `dsvb_…` does, that a matrix with m < n is refused; always false.
    bool refuse_wide(const Matrix<Real>* a) const;
    /// Whether S holds the elements of its shape and U has the columns that belong to them: all, or
    /// the leading ones alone.
    bool fits_left_of(const Matrix<Real>* u, const MatrixDiagonal<Real>* s) const;
    /// Singular values alone, within 100 steps, recorded likewise.
    bool find_singular_values_in_100_steps(const View<const Real>& a, Real* sigma) const;

private:
    bool find_largest(const View<const Real>& a, const char* detail, const char* method,
                      Real& largest) const;
    bool bidiagonalize(const View<Real>& a, Matrix<Real>* u, Matrix<Real>* v) const;
    bool decompose(const View<const Real>& a, Real* sigma, const View<Real>* u, const View<Real>* v,
                   std::int64_t limit, std::int64_t& made,
                   SvdInverse<Real>* inverse = nullptr) const;
    bool decompose_into(const Matrix<Real>* a, Matrix<Real>* u, Matrix<Real>* v, Real* sigma,
                        int max_iterations, int& iterations) const;
    bool fail_as_wide(const Matrix<Real>* a) const;
    bool reconstruct(const View<const Real>& u, Strided<const Real> sigma,
                     const View<const Real>& v, int rank, Matrix<Real>* out) const;
    bool is_block(const char* method, int n, const Real* f, int p, int q_end, int smallest) const;
    bool fit_accumulators(const char* method, int n, const Matrix<Real>* u,
                          const Matrix<Real>* v) const;
    bool clear_zeros(int n, int p, int q_end, Real* d, Real* f, Real** u, int u_rows, Real** v,
                     int v_rows) const;
};

}  // namespace nequar

extern template class nequar::SingularValueFactorization<double>;
extern template class nequar::SingularValueFactorization<float>;
