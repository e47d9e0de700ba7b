#pragma once

#include "nequar_algebra/factorization/singular_value_factorization.h"

namespace nequar {

/// Rank, the four fundamental subspaces, and homogeneous equations, for matrices of any shape.
///
///     A = U S V^T, A m x n     the first r columns     the rest
///     of V, n x n              input domain            input null space
///     of U, m x m              output range            unreached space
///
/// The columns of a basis are orthonormal and follow the singular values, the largest first. A
/// matrix with m < n is decomposed through its transpose, so that V is n x n and the null space
/// complete; column k >= min(m, n) of U or V has the singular value 0.
///
/// A tolerance is relative to the largest singular value: with th in [0, 1) the rank is the number
/// of leading singular values greater than th s[0]. A zero matrix has rank 0.
///
/// The caller's own U (m x m), S (m x n) and V (n x n) receive the decomposition unless they are
/// null. All outputs are sized here, may be A, and must be different objects ("1"); a failed check
/// leaves them as they were. The numbers of steps within the SVD are limited by one that grows with
/// the order, except in the ranks by `r_Rank` and `rsv_Rank_…`.
///
/// Details: "1" also where the decomposition failed, as for NaN or infinity in A, or for one that
/// has not converged within its limit of 100 + 40 min(m, n) steps ("not converged" under the name
/// of `u_dsvb_…`). Beside those named below there are "out of memory" and "cannot size the output".
///
/// Cost: that of the singular value decomposition with the factors that are needed, from 8/3 n^3
/// for a rank to about 25 n^3 of a square matrix for both factors.
///
/// Source: Golub and Van Loan, Matrix Computations, 2.4 and 5.5.
template <class Real>
class NEQUAR_API SubspaceFactorization : public SingularValueFactorization<Real> {
public:
    // ---- rank ----

    /// The rank: i + 1 for the last i with s[i] / s[0] > tolerance, 0 when there is none. The
    /// tolerance is not confined to [0, 1), but may not be NaN ("1").
    ///
    /// Beware: at most 99 steps are made (see `dsvb_…`), so that the singular values of a matrix
    /// with more than about 50 rows and columns may not have converged. `fin_…` and its siblings
    /// give the rank without that limit.
    bool r_Rank(const Matrix<Real>* a, Real tolerance, int& rank) const;
    /// The rank, 0 after a failure, which is recorded as "1" once more.
    int r_Rank(const Matrix<Real>* a, Real tolerance) const;
    /// `r_Rank` under another name; its failure is recorded before, then "1" under this one.
    bool rsv_Rank_based_on_Singular_Value_decomposition(const Matrix<Real>* a, Real tolerance,
                                                        int& rank) const;
    int rsv_Rank_based_on_Singular_Value_decomposition(const Matrix<Real>* a, Real tolerance) const;

    /// The rank from the eigenvalues of the Gram matrix of the smaller side, A^T A or A A^T: i + 1
    /// for the last i with lambda[i] / lambda[0] > tolerance^2. Below order 10 by Jacobi rotations
    /// ("1" when they fail, or for NaN), from there on through the tridiagonal form ("2"). Quicker
    /// than by singular values, but blind below about the square root of the precision: for
    /// tolerances under 1e-7 (in float 1e-3) rounding decides.
    bool rev_Rank_based_on_Eigen_Value_decomposition(const Matrix<Real>* a, Real tolerance,
                                                     int& rank) const;
    int rev_Rank_based_on_Eigen_Value_decomposition(const Matrix<Real>* a, Real tolerance) const;

    /// As rank the number of steps that QR with column pivoting makes on A, or on its transpose
    /// when the height is below the width. There is no tolerance, and it is NOT the numerical rank:
    /// see `u_dqrh_…_with_Column_Pivoting`. "1": NaN or infinity in A.
    bool rqr_Rank_based_on_QR_decomposition_with_column_pivoting(const Matrix<Real>* a,
                                                                 int& rank) const;
    int rqr_Rank_based_on_QR_decomposition_with_column_pivoting(const Matrix<Real>* a) const;

    // ---- basis vectors and subspaces ----

    /// x := column ndx of V, sigma its singular value. "ndx=%d": ndx is not in 0 … n-1. "th=%e": th
    /// is not in [0, 1).
    bool fib_Find_an_Input_Basis_vector(const Matrix<Real>* a, Real th, int ndx, int& rank,
                                        Real& sigma, Vector<Real>* x, Matrix<Real>* u,
                                        MatrixDiagonal<Real>* s, Matrix<Real>* v) const;
    /// x := column ndx of U, ndx in 0 … min(m, n)-1: an m x m factor is formed for the caller's U
    /// alone.
    bool fob_Find_an_Output_Basis_vector(const Matrix<Real>* a, Real th, int ndx, int& rank,
                                         Real& sigma, Vector<Real>* x, Matrix<Real>* u,
                                         MatrixDiagonal<Real>* s, Matrix<Real>* v) const;

    /// Bases of the input domain and the null space; either may be null. "th=%e": th is not in [0,
    /// 1). A space without dimensions gives a matrix without columns.
    bool fidn_Find_Input_Domain_and_Null_vector_spaces(const Matrix<Real>* a, Real th, int& rank,
                                                       Matrix<Real>* domain, Matrix<Real>* null,
                                                       Matrix<Real>* u, MatrixDiagonal<Real>* s,
                                                       Matrix<Real>* v) const;
    /// One of these bases. "1": the output is null. "2": the form above failed.
    bool fid_Find_Input_Domain_vector_space(const Matrix<Real>* a, Real th, int& rank,
                                            Matrix<Real>* domain, Matrix<Real>* u,
                                            MatrixDiagonal<Real>* s, Matrix<Real>* v) const;
    bool fin_Find_Input_Null_vector_space(const Matrix<Real>* a, Real th, int& rank,
                                          Matrix<Real>* null, Matrix<Real>* u,
                                          MatrixDiagonal<Real>* s, Matrix<Real>* v) const;

    /// Bases of the output range and the unreached space, likewise from the columns of U. The
    /// unreached space takes an m x m factor, the range does not.
    bool foru_Find_Output_Range_and_Unreached_vector_space(const Matrix<Real>* a, Real th,
                                                           int& rank, Matrix<Real>* range,
                                                           Matrix<Real>* unreached, Matrix<Real>* u,
                                                           MatrixDiagonal<Real>* s,
                                                           Matrix<Real>* v) const;
    bool for_Find_Output_Range_vector_space(const Matrix<Real>* a, Real th, int& rank,
                                            Matrix<Real>* range, Matrix<Real>* u,
                                            MatrixDiagonal<Real>* s, Matrix<Real>* v) const;
    bool fou_Find_Output_Unreached_vector_space(const Matrix<Real>* a, Real th, int& rank,
                                                Matrix<Real>* unreached, Matrix<Real>* u,
                                                MatrixDiagonal<Real>* s, Matrix<Real>* v) const;

    // ---- homogeneous equations ----

    /// x := the unit vector that minimises |A x|, the right singular vector of the smallest
    /// singular value (of 0 when m < n). rank < n tells that A x = 0 holds within the tolerance.
    /// "1": `fib_…` failed, which is recorded before; a matrix without columns is such a failure.
    ///
    /// x has room for n elements; n comes back.
    bool shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a, Real tolerance, Real* x,
                                                int& n, int& rank) const;
    bool shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a, Real tolerance,
                                                Vector<Real>* x, int& rank) const;
    /// The same with the tolerance 1e-20.
    bool shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a, Vector<Real>* x) const;

protected:
    SubspaceFactorization();
    SubspaceFactorization(const SubspaceFactorization&) = default;
    SubspaceFactorization(SubspaceFactorization&&) noexcept = default;
    ~SubspaceFactorization() override;
    SubspaceFactorization& operator=(const SubspaceFactorization&) = default;
    SubspaceFactorization& operator=(SubspaceFactorization&&) noexcept = default;

private:
    bool is_tolerance(const char* method, Real th) const;
    bool find_basis_vector(const char* method, bool is_input, const Matrix<Real>* a, Real th,
                           int ndx, int& rank, Real& sigma, Vector<Real>* x, Matrix<Real>* u,
                           MatrixDiagonal<Real>* s, Matrix<Real>* v) const;
    bool find_spaces(const char* method, bool is_input, const Matrix<Real>* a, Real th, int& rank,
                     Matrix<Real>* leading, Matrix<Real>* rest, Matrix<Real>* u,
                     MatrixDiagonal<Real>* s, Matrix<Real>* v) const;
};

}  // namespace nequar

extern template class nequar::SubspaceFactorization<double>;
extern template class nequar::SubspaceFactorization<float>;
