#pragma once

#include "nequar_algebra/factorization/triangular_factorization.h"

namespace nequar {

enum class OrthogonalForm : int;

/// Factorizations with an orthogonal factor: QR, QL, RQ and LQ by Householder reflections, QR with
/// column pivoting, the complete orthogonal decomposition, RQ of a 3 x 3 matrix, Gram-Schmidt, and
/// the reflectors and rotations that they are made of.
///
///     A = Q R    u_dqrh_  dqrh_     any m x n      Q is m x m
///     A = Q L    u_dqlh_  dqlh_     m >= n         Q is m x m
///     A = R Q    u_drqh_  drqh_     m <= n         Q is n x n
///     A = L Q    u_dlqh_  dlqh_     any m x n      Q is n x n
///     A P = Q R  u_dqrh_..._with_Column_Pivoting,  dqrc_    m >= n
///
/// A `u_` form works in place on a dense matrix, and forms the orthogonal factor in a second one
/// unless that pointer is null; the other forms leave their input as it is. Every output is sized
/// here. Nowhere is a tolerance: a reflection is left out only where the elements that it would
/// annihilate are zero (or vanish beside the leading one: by a factor of 1e150, in float 1e18).
///
/// Signs: a reflection maps onto a diagonal element that is not negative. Where none is made the
/// diagonal element keeps its sign, as the last one of a square matrix always does.
///
/// The triangular factor of a dense result is its triangle alone. The other side is NOT cleared: an
/// element there holds what it held when its column (in RQ and LQ: its row) was reduced. The
/// triangle of QL and RQ is the one that ends in the bottom right corner: when A is not square,
/// L is L(i, j), i - j >= m - n, and R is R(i, j), j - i >= n - m. The packed forms hold the
/// triangular factor with everything else zero, so that with Q they rebuild A in every shape.
///
/// Q may not be the matrix that is factored, nor two outputs one object: that is refused, "1".
/// The input of an object form may be an output. Where one operation fails because of another, both
/// are recorded ("u_dqlh_…: 11", then "dqlh_…: 1"). A failed check leaves all outputs as they were.
/// Beside the details named below there are "out of memory" and "cannot size the output" (a packed
/// factor is 1 x 1 at least).
///
/// Elements of any size are safe, subnormal ones included, as far as the results themselves can be
/// held. A NaN or an infinity makes NaN of what is computed from it, and all ends.
///
/// Cost for an m x n matrix, m >= n: 2 n^2 (m - n/3), and 4 m n (m - n) + 4/3 n^3 for Q. Blocked
/// throughout, the reflectors of a block applied as one, I - V T V^T.
///
/// Sources: Golub and Van Loan, Matrix Computations, 5.1 (reflectors, rotations), 5.2 (QR), 5.4.1
/// (pivoting; here with 1-norms), 5.4.2 (complete orthogonal); Elmroth and Gustavson, Applying
/// recursion to serial and parallel QR factorization, IBM J. Res. Dev. 44, 2000; Hartley and
/// Zisserman, Multiple View Geometry, A4.1.1 (3 x 3 RQ).
template <class Real>
class NEQUAR_API OrthogonalFactorization : public TriangularFactorization<Real> {
public:
    // ---- reflectors and rotations ----

    /// x, of length n, becomes the Householder vector v with v[pos] = 1, and H = I - beta v v^T
    /// maps x onto +||x|| e_pos. When the other elements are all zero (or vanish beside x[pos] > 0)
    /// beta is 0 and they stay as they are. NaN or infinity makes beta NaN.
    ///
    /// "N=%d" with n: n <= 0. "pos = %d/%d" with pos, n: pos is not in 0 … n-1. x and beta are then
    /// untouched. 3 n operations.
    bool ghv_Get_Householder_Vector(Real* x, int n, int pos, Real& beta) const;
    /// H = I - 2 v v^T / (v^T v), n x n for v of size n; the identity for a zero v.
    void chm_Create_Householder_Matrix(const Vector<Real>* v, Matrix<Real>* h) const;
    /// c and s with c^2 + s^2 = 1 and s a + c b = 0: (c a - s b, s a + c b) = (r, 0). The larger of
    /// c and s is not negative, so r may be negative. b = 0 gives c = 1, s = 0.
    void ggr_Get_Givens_Rotation(Real a, Real b, Real& c, Real& s) const;

    // ---- QR, QL, RQ, LQ ----

    /// A = Q R in place: `a` (m x n) becomes R with leftovers below the diagonal, Q (m x m, may be
    /// null) the orthogonal factor. "1": a and Q are one object.
    bool u_dqrh_Decompose_into_QR_matrices_based_on_Householder(Matrix<Real>* a,
                                                                Matrix<Real>* q) const;
    /// A = Q R with A kept. "1": the form in place failed, or Q and R are one object. Q may be
    /// null.
    bool dqrh_Decompose_into_QR_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* q,
                                                              Matrix<Real>* r) const;
    bool dqrh_Decompose_into_QR_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* q,
                                                              MatrixTriangularUpper<Real>* r) const;

    /// A = Q L. "1": a and Q are one object. "11": the height is below the width.
    bool u_dqlh_Decompose_into_QL_matrices_based_on_Householder(Matrix<Real>* a,
                                                                Matrix<Real>* q) const;
    bool dqlh_Decompose_into_QL_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* q,
                                                              Matrix<Real>* l) const;
    bool dqlh_Decompose_into_QL_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* q,
                                                              MatrixTriangularLower<Real>* l) const;

    /// A = R Q, Q being the product of the reflectors applied from the left. "1": a and Q are one
    /// object. "11": the height is above the width.
    bool u_drqh_Decompose_into_RQ_matrices_based_on_Householder(Matrix<Real>* a,
                                                                Matrix<Real>* q) const;
    bool drqh_Decompose_into_RQ_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* r,
                                                              Matrix<Real>* q) const;
    bool drqh_Decompose_into_RQ_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              MatrixTriangularUpper<Real>* r,
                                                              Matrix<Real>* q) const;

    /// A = L Q. "1": a and Q are one object.
    bool u_dlqh_Decompose_into_LQ_matrices_based_on_Householder(Matrix<Real>* a,
                                                                Matrix<Real>* q) const;
    bool dlqh_Decompose_into_LQ_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              Matrix<Real>* l,
                                                              Matrix<Real>* q) const;
    bool dlqh_Decompose_into_LQ_matrices_based_on_Householder(const Matrix<Real>* a,
                                                              MatrixTriangularLower<Real>* l,
                                                              Matrix<Real>* q) const;

    // ---- column pivoting ----

    /// A P = Q R in place, m >= n: column k of A P is column perm[k] of A. Interchanges counts the
    /// steps that exchanged two columns, rank the steps made.
    ///
    /// The pivot is the column with the largest 1-norm (sum of magnitudes), the first of equals;
    /// after step k the norm of column j is lowered by |R(k, j)|, not below zero. The decomposition
    /// stops when no norm is above zero.
    ///
    /// Beware: a reflection does not preserve 1-norms, so these running norms are not those of what
    /// remains, and the rank is NOT the numerical rank. [[1,2],[2,4]] gets rank 2; nearly half of
    /// random regular matrices of order 40 come out deficient, and then the columns from `rank` on
    /// are not reduced: A P = Q R holds with all their elements, not with those of the triangle.
    /// For the numerical rank count singular values. A column with a NaN is never chosen; one with
    /// an infinity is chosen but not reflected.
    ///
    /// "1": the height is below the width, or a and Q are one object. Q may be null.
    bool u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting(
        Matrix<Real>* a, Matrix<Real>* q, CNqVectorInt* perm, int& interchanges, int& rank) const;
    /// A P = Q R with A kept. "1": the form in place failed, or Q and R are one object. Q may be
    /// null.
    bool dqrc_Decompose_into_QR_matrices_with_Column_pivoting(const Matrix<Real>* a,
                                                              Matrix<Real>* q, Matrix<Real>* r,
                                                              CNqVectorInt* perm, int& interchanges,
                                                              int& rank) const;
    /// The same with R packed, which holds the triangle alone, also where the rank is below n.
    bool dqrc_Decompose_into_QR_matrices_with_Column_pivoting(const Matrix<Real>* a,
                                                              Matrix<Real>* q,
                                                              MatrixTriangularUpper<Real>* r,
                                                              CNqVectorInt* perm, int& interchanges,
                                                              int& rank) const;

    /// Complete orthogonal decomposition in place, m >= n:
    ///
    ///     A = Q | T 0 | Z^T,   Q m x m, Z n x n, T rank x rank and lower triangular,
    ///           | 0 0 |
    ///
    /// where `a` becomes the middle factor, T in its upper left corner. Q and Z may be null. The
    /// rank is that of the pivoted QR above, with all that is said there: where it is too small,
    /// rows from `rank` on keep on and above the diagonal what was neglected.
    ///
    /// "1": the pivoted QR failed, or two of a, Q and Z are one object.
    bool u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(Matrix<Real>* a, Matrix<Real>* q,
                                                              Matrix<Real>* z, int& rank) const;
    /// The same with A kept and T packed. "1": the form in place failed. "2": the rank is 0, so
    /// there is no T; Q, Z and rank are those of a matrix of rank 0, T is untouched.
    bool dco_Decompose_matrix_Complete_Orthogonal_algorithm(const Matrix<Real>* a, Matrix<Real>* q,
                                                            MatrixTriangularLower<Real>* t,
                                                            Matrix<Real>* z, int& rank) const;

    // ---- others ----

    /// A = R Q for a 3 x 3 matrix, as of a camera: Q = Qz Qy Qx, rotations about the axes,
    ///
    ///     Qx = [[1,0,0],[0,c,-s],[0,s,c]]  Qy = [[c,0,s],[0,1,0],[-s,0,c]]
    ///     Qz = [[c,-s,0],[s,c,0],[0,0,1]]
    ///
    /// each with c = cos(angle) and s = -sin(angle), angles in radians. An element below the
    /// diagonal that is zero already makes no rotation. The diagonal of R is not made positive
    /// beyond what the rotations do: R[2][2] is, where one was made.
    ///
    /// "1": A is not 3 x 3, or two outputs are one object. A may be an output.
    bool drq3_Decompose_into_RQ_matrices_for_3x3_matrix(const Matrix<Real>* a, Matrix<Real>* r,
                                                        Matrix<Real>* q) const;
    bool drq3_Decompose_into_RQ_matrices_for_3x3_matrix(const Matrix<Real>* a, Matrix<Real>* r,
                                                        Matrix<Real>* q, Matrix<Real>* qx,
                                                        Matrix<Real>* qy, Matrix<Real>* qz) const;
    bool drq3_Decompose_into_RQ_matrices_for_3x3_matrix(const Matrix<Real>* a, Matrix<Real>* r,
                                                        Matrix<Real>* q, Matrix<Real>* qx,
                                                        Matrix<Real>* qy, Matrix<Real>* qz,
                                                        Real& angle_x, Real& angle_y,
                                                        Real& angle_z) const;

    /// Classical Gram-Schmidt on the columns of `in` (m x n): column j loses its components along
    /// the columns before it, with coefficients taken from the INPUT column, and is scaled to
    /// length one. The scheme loses orthogonality with the square of the condition number; a QR
    /// does not. `out` may be `in`.
    ///
    /// "1": nothing is left of a column, exactly; the columns before it are written. 2 m n^2.
    bool ogs_Orthogonalize_set_of_vectors_based_on_Gram_Schmidt_algorithm(const Matrix<Real>* in,
                                                                          Matrix<Real>* out) const;

protected:
    OrthogonalFactorization();
    OrthogonalFactorization(const OrthogonalFactorization&) = default;
    OrthogonalFactorization(OrthogonalFactorization&&) noexcept = default;
    ~OrthogonalFactorization() override;
    OrthogonalFactorization& operator=(const OrthogonalFactorization&) = default;
    OrthogonalFactorization& operator=(OrthogonalFactorization&&) noexcept = default;

    /// Whether the object form would factor a matrix of this shape into a packed triangle; records
    /// why not as that form does.
    bool can_begin_orthogonal(OrthogonalForm form, const Matrix<Real>* a) const;
    /// Records the failure of that form for want of memory.
    bool fail_orthogonal_for_memory(OrthogonalForm form) const;

private:
    bool fits(OrthogonalForm form, const Matrix<Real>* a) const;
    bool decompose_in_place(OrthogonalForm form, Matrix<Real>* a, Matrix<Real>* q) const;
    bool decompose_dense(OrthogonalForm form, const Matrix<Real>* a, Matrix<Real>* q,
                         Matrix<Real>* triangle) const;
    template <class Triangular>
    bool decompose_packed(OrthogonalForm form, const Matrix<Real>* a, Matrix<Real>* q,
                          Triangular* triangle) const;
    bool pivot_in_place(const View<Real>& a, Matrix<Real>* q, CNqVectorInt* perm, int& interchanges,
                        int& rank) const;
};

}  // namespace nequar

extern template class nequar::OrthogonalFactorization<double>;
extern template class nequar::OrthogonalFactorization<float>;
