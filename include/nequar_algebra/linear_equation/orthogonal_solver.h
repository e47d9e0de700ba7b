#pragma once

#include "nequar_algebra/linear_equation/triangular_solver.h"

namespace nequar {

/// Solving and inverting by way of an orthogonal factor, for square matrices.
///
///     QRD   A = Q R    sqr_  iqr_  u_sqr_  u_iqr_
///     QLD   A = Q L    sql_  iql_  u_sql_  u_iql_
///     RQD   A = R Q    srq_  irq_  u_srq_  u_irq_
///     LQD   A = L Q    slq_  ilq_  u_slq_  u_ilq_
///
/// They need no pivoting and let nothing grow: the error of the solution is what the condition of A
/// makes of rounding, at twice the cost of LU. The four differ in cost and error by little.
///
/// A has n rows and columns. The matrix forms take B, n x k with k >= 1, one right-hand side a
/// column, and make X n x k; the vector forms take b of size n and make x. The solution may be the
/// right-hand side itself, and A, or a factor, may be the output as well: what is still needed is
/// copied first. A is not changed otherwise.
///
/// All operations answer true on success; on failure they store a detail, record their name, and
/// answer false. The details of the object forms: "1" the factorization failed (recorded before:
/// see `dqrh_…` and its siblings), "2" solving or inverting with its factors failed (recorded
/// before under the name of the `u_` form). A matrix that is not square gives "2", and "1" where
/// its factorization refuses the shape (a wide one in QLD, a tall one in RQD).
///
/// Details of the `u_` forms with factors: "1" Q, the triangle and the right-hand side are not of
/// one order n, k is below 1, or the triangle does not hold its elements; "2" an element on the
/// diagonal of the triangle is exactly 0.0 (there is no tolerance, a tiny one is divided by, and
/// NaN passes). In the `u_i…` forms that is recorded under the name of the `u_s…` form, then "2"
/// under their own. Beside these: "out of memory", "cannot size the output". Checks are made before
/// the output is touched, but an object form that meets a zero on the diagonal has sized the
/// solution and left partial results in it.
///
/// Beware: the `u_` forms of QRD and QLD apply Q^T and solve with the triangle, those of RQD and
/// LQD solve with the triangle and apply Q AS IT IS HANDED OVER, not its transpose. They solve
/// A x = b for A = Q R, A = Q L, A = R Q^T and A = L Q^T: from the factors of `drqh_…` and `dlqh_…`
/// hand over the transpose of Q. The object forms solve A x = b and invert A in all four.
///
/// Layout of raw arrays, n x k: with row_major entry (i, c) is data[i k + c]; without, right-hand
/// side c is data[c n … c n + n-1]. Sizes multiply in 64 bits.
///
/// Cost: 4/3 n^3 for the factorization, 4 n^2 for a right-hand side in QRD and QLD; Q is not formed
/// for a solve. An inverse costs 11/3 n^3. Source: Golub and Van Loan, Matrix Computations, 5.2.
template <class Real>
class NEQUAR_API OrthogonalSolver : public TriangularSolver<Real> {
public:
    // ---- QRD ----

    /// A X = B, A x = b by A = Q R.
    bool sqr_Solve_based_on_QRD(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool sqr_Solve_based_on_QRD(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = Q R.
    bool iqr_Inverse_matrix_based_on_QRD(const Matrix<Real>* a, Matrix<Real>* inverse) const;
    /// From the factors: R x = Q^T b. The raw form works in place.
    bool u_sqr_Solve_based_on_QRD(const Matrix<Real>* q, const MatrixTriangularUpper<Real>* r,
                                  const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_sqr_Solve_based_on_QRD(const Matrix<Real>* q, const MatrixTriangularUpper<Real>* r,
                                  const Vector<Real>* b, Vector<Real>* x) const;
    bool u_sqr_Solve_based_on_QRD(const Matrix<Real>* q, const MatrixTriangularUpper<Real>* r,
                                  Real* data, bool row_major, int k, int n) const;
    /// R^-1 Q^T.
    bool u_iqr_Inverse_matrix_based_on_QRD(const Matrix<Real>* q,
                                           const MatrixTriangularUpper<Real>* r,
                                           Matrix<Real>* inverse) const;

    // ---- QLD ----

    /// A X = B, A x = b by A = Q L.
    bool sql_Solve_based_on_QLD(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool sql_Solve_based_on_QLD(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = Q L.
    bool iql_Inverse_matrix_based_on_QLD(const Matrix<Real>* a, Matrix<Real>* inverse) const;
    /// From the factors: L x = Q^T b. The raw form works in place.
    bool u_sql_Solve_based_on_QLD(const Matrix<Real>* q, const MatrixTriangularLower<Real>* l,
                                  const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_sql_Solve_based_on_QLD(const Matrix<Real>* q, const MatrixTriangularLower<Real>* l,
                                  const Vector<Real>* b, Vector<Real>* x) const;
    bool u_sql_Solve_based_on_QLD(const Matrix<Real>* q, const MatrixTriangularLower<Real>* l,
                                  Real* data, bool row_major, int k, int n) const;
    /// L^-1 Q^T.
    bool u_iql_Inverse_matrix_based_on_QLD(const Matrix<Real>* q,
                                           const MatrixTriangularLower<Real>* l,
                                           Matrix<Real>* inverse) const;

    // ---- RQD ----

    /// A X = B, A x = b by A = R Q.
    bool srq_Solve_based_on_RQD(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool srq_Solve_based_on_RQD(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = R Q.
    bool irq_Inverse_matrix_based_on_RQD(const Matrix<Real>* a, Matrix<Real>* inverse) const;
    /// x = Q (R^-1 b), Q as handed over: beware, see above. The raw form works in place.
    bool u_srq_Solve_based_on_RQD(const MatrixTriangularUpper<Real>* r, const Matrix<Real>* q,
                                  const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_srq_Solve_based_on_RQD(const MatrixTriangularUpper<Real>* r, const Matrix<Real>* q,
                                  const Vector<Real>* b, Vector<Real>* x) const;
    bool u_srq_Solve_based_on_RQD(const MatrixTriangularUpper<Real>* r, const Matrix<Real>* q,
                                  Real* data, bool row_major, int k, int n) const;
    /// Q R^-1, Q as handed over.
    bool u_irq_Inverse_matrix_based_on_RQD(const MatrixTriangularUpper<Real>* r,
                                           const Matrix<Real>* q, Matrix<Real>* inverse) const;

    // ---- LQD ----

    /// A X = B, A x = b by A = L Q.
    bool slq_Solve_based_on_LQD(const Matrix<Real>* a, const Matrix<Real>* b,
                                Matrix<Real>* x) const;
    bool slq_Solve_based_on_LQD(const Matrix<Real>* a, const Vector<Real>* b,
                                Vector<Real>* x) const;
    /// A^-1 by A = L Q.
    bool ilq_Inverse_matrix_based_on_LQD(const Matrix<Real>* a, Matrix<Real>* inverse) const;
    /// x = Q (L^-1 b), Q as handed over: beware, see above. The raw form works in place.
    bool u_slq_Solve_based_on_LQD(const MatrixTriangularLower<Real>* l, const Matrix<Real>* q,
                                  const Matrix<Real>* b, Matrix<Real>* x) const;
    bool u_slq_Solve_based_on_LQD(const MatrixTriangularLower<Real>* l, const Matrix<Real>* q,
                                  const Vector<Real>* b, Vector<Real>* x) const;
    bool u_slq_Solve_based_on_LQD(const MatrixTriangularLower<Real>* l, const Matrix<Real>* q,
                                  Real* data, bool row_major, int k, int n) const;
    /// Q L^-1, Q as handed over.
    bool u_ilq_Inverse_matrix_based_on_LQD(const MatrixTriangularLower<Real>* l,
                                           const Matrix<Real>* q, Matrix<Real>* inverse) const;

protected:
    OrthogonalSolver();
    OrthogonalSolver(const OrthogonalSolver&) = default;
    OrthogonalSolver(OrthogonalSolver&&) noexcept = default;
    ~OrthogonalSolver() override;
    OrthogonalSolver& operator=(const OrthogonalSolver&) = default;
    OrthogonalSolver& operator=(OrthogonalSolver&&) noexcept = default;

private:
    template <class Object>
    bool solve(OrthogonalForm form, const Matrix<Real>* a, const Object* b, Object* x) const;
    bool invert(OrthogonalForm form, const Matrix<Real>* a, Matrix<Real>* inverse) const;
    template <class Triangular>
    bool can_solve_with(OrthogonalForm form, const Matrix<Real>* q, const Triangular* t,
                        std::ptrdiff_t n, std::ptrdiff_t k) const;
    template <class Triangular>
    bool solve_in_place(OrthogonalForm form, const Matrix<Real>* q, const Triangular* t,
                        const View<Real>& x) const;
    template <class Triangular, class Object>
    bool solve_with(OrthogonalForm form, const Matrix<Real>* q, const Triangular* t,
                    const Object* b, Object* x) const;
    template <class Triangular>
    bool solve_array(OrthogonalForm form, const Matrix<Real>* q, const Triangular* t, Real* data,
                     bool row_major, int k, int n) const;
    template <class Triangular>
    bool invert_with(OrthogonalForm form, const Matrix<Real>* q, const Triangular* t,
                     Matrix<Real>* inverse) const;
};

}  // namespace nequar

extern template class nequar::OrthogonalSolver<double>;
extern template class nequar::OrthogonalSolver<float>;
