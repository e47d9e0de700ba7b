#pragma once

#include "nequar_algebra/linear_equation/eigen_solver.h"

namespace nequar {

/// Solving and inverting by way of the singular value decomposition A = U S V^T, and the
/// pseudo-inverse.
///
///     ssv_  isv_     full rank, square     x = V S^-1 U^T b
///     pisv_          any A                 A^+ = sum of v_i u_i^T / s_i over i < rank
///
/// The rank is that of `u_rsv_Rank_based_on_SVD`, relative to the largest singular value, with a
/// tolerance in [0, 1). A matrix that is not square or not of full rank is refused by solves and
/// inverses, never solved in the sense of least squares: multiply with the pseudo-inverse for that.
///
/// Within the decomposition the number of steps is limited by one that grows with the order.
/// Solutions and inverses may be any of the inputs. On failure nothing is written.
///
/// Details of the object forms: "1" the decomposition failed (recorded before, see `dsvb_…`: a
/// matrix with more columns than rows, except in `pisv_…`, or NaN or infinity in it), "2" the form
/// with the decomposition failed (recorded before). Beside those named below there are "out of
/// memory" and "cannot size the output".
///
/// A decomposition that has not converged within its limit, 100 + 40 n steps, is a failure here:
/// "not converged" under the name of `u_dsvb_…`, then "1" under that of `dsvb_…`, then "1".
///
/// Cost: of full rank beyond doubt, about 8/3 n^3 for the singular values, and 10/3 n^3 more for an
/// inverse, since A = U B V^T with a bidiagonal B divides as it is; otherwise that of the
/// decomposition with both factors, about 25 n^3. Source: Golub and Van Loan,
/// Matrix Computations, 5.5.
template <class Real>
class NEQUAR_API SpectralSolver : public EigenSolver<Real> {
public:
    /// A X = B, A x = b, for a square A of full rank.
    bool ssv_Solve_based_on_SVD(const Matrix<Real>* a, Real tolerance, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool ssv_Solve_based_on_SVD(const Matrix<Real>* a, Real tolerance, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1, for a square A of full rank.
    bool isv_Inverse_matrix_based_on_SVD(const Matrix<Real>* a, Real tolerance,
                                         Matrix<Real>* inverse) const;
    /// The pseudo-inverse, n x m for A of m x n with m >= n or m < n.
    bool pisv_Pseudo_Inverse_matrix_based_on_SVD(const Matrix<Real>* a, Real tolerance,
                                                 Matrix<Real>* inverse) const;

    /// A X = B, A x = b from the decomposition. "1": `u_tcs_…` refuses it. "2": the rank is not the
    /// number of rows of the right-hand side. Layout of raw arrays, n x k: with row_major element
    /// (i, c) is data[i k + c]; without, right-hand side c is data[c n … c n + n-1].
    bool u_ssv_Solve_based_on_SVD(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                  const Matrix<Real>* v, Real tolerance, const Matrix<Real>* b,
                                  Matrix<Real>* x) const;
    bool u_ssv_Solve_based_on_SVD(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                  const Matrix<Real>* v, Real tolerance, const Vector<Real>* b,
                                  Vector<Real>* x) const;
    bool u_ssv_Solve_based_on_SVD(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                  const Matrix<Real>* v, Real tolerance, Real* data, bool row_major,
                                  int k, int n) const;
    /// A^-1 from the decomposition. "1": `u_tcs_…` refuses it.
    bool u_isv_Inverse_matrix_based_on_SVD(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                           const Matrix<Real>* v, Real tolerance,
                                           Matrix<Real>* inverse) const;
    /// A^+ from the components whose singular values exceed tolerance s[0], up to the first that
    /// does not; a zero matrix has the pseudo-inverse zero. U may have all of its columns, or the
    /// leading ones alone, as many as there are singular values; V as many as S is wide.
    ///
    /// "1", "2": the sizes of U, of V do not fit those of S. "3": the tolerance is not in [0, 1).
    /// "incorrect ordering", "negative value", "not finite": as in `u_rsv_…`, but under this name.
    bool u_pisv_Pseudo_Inverse_matrix_based_on_SVD(const Matrix<Real>* u,
                                                   const MatrixDiagonal<Real>* s,
                                                   const Matrix<Real>* v, Real tolerance,
                                                   Matrix<Real>* inverse) const;
    /// The rank by `u_rsv_…` with the order checked ("1"); U ("2"), V ("3") and S ("4") have to be
    /// rank x rank, so that only a square matrix of full rank passes. The rank is given in these
    /// three cases too.
    bool u_tcs_Test_Components_from_SVD(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                        const Matrix<Real>* v, Real tolerance, int& rank) const;

protected:
    SpectralSolver();
    SpectralSolver(const SpectralSolver&) = default;
    SpectralSolver(SpectralSolver&&) noexcept = default;
    ~SpectralSolver() override;
    SpectralSolver& operator=(const SpectralSolver&) = default;
    SpectralSolver& operator=(SpectralSolver&&) noexcept = default;

private:
    bool begin_with_svd(const char* method, const Matrix<Real>* a) const;
    bool test_square(const View<const Real>& a, const Vector<Real>* sigma, Real tolerance) const;
    template <class Object>
    bool solve_by_svd(const Matrix<Real>* a, Real tolerance, const Object* b, Object* x) const;
    template <class Object>
    bool solve_with_components(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                               const Matrix<Real>* v, Real tolerance, const Object* b,
                               Object* x) const;
    bool can_solve_with_components(const Matrix<Real>* u, const MatrixDiagonal<Real>* s,
                                   const Matrix<Real>* v, Real tolerance, std::ptrdiff_t n) const;
};

}  // namespace nequar

extern template class nequar::SpectralSolver<double>;
extern template class nequar::SpectralSolver<float>;
