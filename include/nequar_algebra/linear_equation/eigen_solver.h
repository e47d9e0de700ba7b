#pragma once

#include "nequar_algebra/linear_equation/orthogonal_solver.h"

namespace nequar {

/// Solving and inverting by way of the eigen-decomposition of a symmetric matrix, A = V L V^T, and
/// the pseudo-inverse.
///
///     sev_  iev_     full rank        x = V L^-1 V^T b
///     piev_          any symmetric A  A^+ = sum of v_i v_i^T / l_i over |l_i| > tolerance * scale
///
/// The rank is that of `u_rev_Rank_based_on_EVD`, relative to the largest magnitude of an
/// eigenvalue, with a tolerance in [0, 1). A matrix that is not of full rank is refused by solves
/// and inverses.
///
/// Solutions and inverses may be any of the inputs. On failure nothing is written.
///
/// Details of the object forms: "1" the decomposition failed, "2" the form with the decomposition
/// failed (each recorded before; with NaN or infinity in A the latter). Beside those named below
/// there are "out of memory" and "cannot size the output".
///
/// Cost: that of the decomposition, about 10 n^3. Source: Golub and Van Loan, Matrix Computations,
/// 8.3 and 5.5.
template <class Real>
class NEQUAR_API EigenSolver : public OrthogonalSolver<Real> {
public:
    /// A X = B, A x = b, for a symmetric A of full rank, definite or not.
    bool sev_Solve_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                const Matrix<Real>* b, Matrix<Real>* x) const;
    bool sev_Solve_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                const Vector<Real>* b, Vector<Real>* x) const;
    /// A^-1, for A of full rank.
    bool iev_Inverse_matrix_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                         Matrix<Real>* inverse) const;
    /// A^+, for a symmetric A of any rank.
    bool piev_Pseudo_Inverse_matrix_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                                 Matrix<Real>* inverse) const;

    /// A X = B, A x = b from the decomposition. "1": `u_tce_…` refuses it. "2": the rank is not the
    /// number of rows of the right-hand side. Layout of raw arrays, n x k: with row_major element
    /// (i, c) is data[i k + c]; without, right-hand side c is data[c n … c n + n-1].
    bool u_sev_Solve_based_on_EVD(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                                  Real tolerance, const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_sev_Solve_based_on_EVD(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                                  Real tolerance, const Vector<Real>* b, Vector<Real>* x) const;
    bool u_sev_Solve_based_on_EVD(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                                  Real tolerance, Real* data, bool row_major, int k, int n) const;
    /// A^-1 from the decomposition. "1": `u_tce_…` refuses it.
    bool u_iev_Inverse_matrix_based_on_EVD(const Matrix<Real>* v,
                                           const MatrixDiagonal<Real>* values, Real tolerance,
                                           Matrix<Real>* inverse) const;
    /// A^+ from every component whose eigenvalue is above the threshold in magnitude, wherever it
    /// stands; a zero matrix has the pseudo-inverse zero. "1": the tolerance is not in [0, 1). "2":
    /// V has not one column for each value. "incorrect ordering", "not finite": as in `u_rev_…`,
    /// but under this name.
    bool u_piev_Pseudo_Inverse_matrix_based_on_EVD(const Matrix<Real>* v,
                                                   const MatrixDiagonal<Real>* values,
                                                   Real tolerance, Matrix<Real>* inverse) const;

    /// The number of values with |l_i| > tolerance * scale, scale being the larger of |l_0| and
    /// |l_(n-1)|: of values in descending order the largest magnitude. All are counted, wherever
    /// they stand. "1": the tolerance is not in [0, 1). "incorrect ordering": with check_order, a
    /// value is above the one before it. "not finite": NaN or infinity among them.
    bool u_rev_Rank_based_on_EVD(const Vector<Real>* values, Real tolerance, bool check_order,
                                 int& rank) const;
    /// The rank by `u_rev_…` with the order checked ("1"); V ("2") and L ("3") have to be rank x
    /// rank, so that only a matrix of full rank passes. The rank is given in these two cases too.
    bool u_tce_Test_Components_from_EVD(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                                        Real tolerance, int& rank) const;
    /// The decomposition, V null where nobody wants vectors: order 9 and below by Jacobi rotations
    /// ("1" when they fail), order 10 and above through the tridiagonal form ("2"), with a limit of
    /// steps that grows with the order.
    bool u_dev_Decompose_to_find_Eigen_Values(const MatrixSymmetric<Real>* a, Matrix<Real>* v,
                                              MatrixDiagonal<Real>* values) const;

protected:
    EigenSolver();
    EigenSolver(const EigenSolver&) = default;
    EigenSolver(EigenSolver&&) noexcept = default;
    ~EigenSolver() override;
    EigenSolver& operator=(const EigenSolver&) = default;
    EigenSolver& operator=(EigenSolver&&) noexcept = default;

private:
    template <class Object>
    bool solve_by_evd(const MatrixSymmetric<Real>* a, Real tolerance, const Object* b,
                      Object* x) const;
    template <class Object>
    bool solve_with_components(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                               Real tolerance, const Object* b, Object* x) const;
    bool invert_with_components(const char* method, const Matrix<Real>* v,
                                const MatrixDiagonal<Real>* values, Real threshold,
                                Matrix<Real>* inverse) const;
    bool can_solve_with_components(const Matrix<Real>* v, const MatrixDiagonal<Real>* values,
                                   Real tolerance, std::ptrdiff_t n) const;
};

}  // namespace nequar

extern template class nequar::EigenSolver<double>;
extern template class nequar::EigenSolver<float>;
