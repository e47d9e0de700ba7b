#pragma once

#include "nequar_algebra/factorization/hessenberg_factorization.h"
#include "nequar_algebra/structured/band.h"
#include "nequar_algebra/structured/band_symmetric.h"

namespace nequar {

/// Eigenvalues and eigenvectors of symmetric matrices, by Jacobi rotations or through a tridiagonal
/// matrix; the generalized problem; tridiagonal matrices.
///
/// Eigenvalues come in descending order, equal ones in the order in which they were found; column k
/// of V belongs to value k and has length 1. V may be null where nobody wants vectors: they are not
/// formed then. Of a dense symmetric input only the upper triangle is read.
///
/// NaN or infinity in the input makes every value and every vector NaN; that is no failure. Inputs
/// near the ends of the range are scaled. Reaching a limit is no failure either: what was reached
/// is delivered, sorted, and the count tells.
///
/// Outputs are sized here, after the checks. Beside the details named below there are "out of
/// memory" and "cannot size the output" (also for a matrix of order 0, as packed results have
/// none).
///
/// Sources: Golub and Van Loan, Matrix Computations, 8.5 (Jacobi), 8.3 (tridiagonal form, implicit
/// QR), 8.7.1 (the generalized problem), 5.2.5 (rotations); Rutishauser, The Jacobi method for real
/// symmetric matrices, Numerische Mathematik 9, 1966; Dongarra, Hammarling and Sorensen, Block
/// reduction of matrices to condensed forms, J. Comput. Appl. Math. 27, 1989.
template <class Real>
class NEQUAR_API SymmetricEigenFactorization : public HessenbergFactorization<Real> {
public:
    // ---- Jacobi rotations: 6 n^3 operations a sweep with V, some seven sweeps ----

    /// A = V D V^T by rotations. The mode: 0, classical: the largest element off the diagonal is
    /// annihilated, at most max_sweeps n (n-1) / 2 times, until sqrt(sum of a_ij^2, i < j) <=
    /// tolerance, which is absolute (each search costs n^2); 1, cyclic: all pairs by rows, at most
    /// max_sweeps times, with a threshold in the first three sweeps, until everything off the
    /// diagonal is 0.0; 2, cyclic, until sqrt(2 sum) <= tolerance times the Frobenius norm. A
    /// negative tolerance is 0.
    ///
    /// `a` (n x n) is used up. `sweeps`: sweeps made, rotations tried in mode 0. `annihilated`:
    /// rotations made, and negligible elements set to zero.
    ///
    /// "1": not square, V is `a`, a mode or tolerance that is none.
    bool u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(
        int mode, Matrix<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d, int max_sweeps,
        Real tolerance, int& sweeps, int& annihilated) const;
    /// The same in mode 2, 100 sweeps, tolerance 1e-31. "1": the form above failed (recorded too).
    bool u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(
        Matrix<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d) const;
    /// The same for a packed matrix, which is kept. "1": `u_dsj_…` failed (recorded too), or the
    /// matrix no longer holds its elements.
    bool devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
        int mode, const MatrixSymmetric<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d,
        int max_sweeps, Real tolerance, int& sweeps, int& annihilated) const;
    /// The same in mode 2, 100 sweeps, tolerance 1e-32 (unlike the 1e-31 of the dense form,
    /// deliberately).
    bool devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(const MatrixSymmetric<Real>* a,
                                                                    Matrix<Real>* v,
                                                                    MatrixDiagonal<Real>* d) const;

    /// One rotation of the pair p < q, on rows given by pointers: the upper triangle of `a` but its
    /// diagonal, which is d, and columns p and q of V (null: none). Nothing happens unless |a_pq| >
    /// threshold; an element that is negligible beside d_p and d_q is only set to zero; either way
    /// `annihilated` counts one. Indices that are no pair of 0 … n-1 do nothing.
    void u_jru_Jacobi_Rotation_and_Update(Real** a, Real* d, Real** v, int n, int p, int q,
                                          Real threshold, int& annihilated) const;

    // ---- tridiagonal form: A = Q T Q^T, 4/3 n^3, and 4/3 n^3 for Q (null: not formed) ----

    /// A = Q T Q^T: `a` becomes T in place, all else is set to exact zeros. "1": Q is `a`. "2": not
    /// square.
    bool u_td_Tridiagonalize_matrix(Matrix<Real>* a, Matrix<Real>* q) const;
    /// The same with T as two vectors: the diagonal d (n) and the off-diagonal e (n-1). `a` is used
    /// up. "1": Q is `a`, or d is e. "2": not square.
    bool u_td_Tridiagonalize_matrix(Matrix<Real>* a, Matrix<Real>* q, Vector<Real>* d,
                                    Vector<Real>* e) const;
    /// A = Q T Q^T with A kept. T may be the input, Q may not be T ("1": it is, or the form in
    /// place failed). A dense input that is not square: "non-square matrix". A band result has one
    /// sub- and one super-diagonal, none for order 1.
    bool tdm_Tridiagonalize_Matrix(const Matrix<Real>* a, Matrix<Real>* q, Matrix<Real>* t) const;
    bool tdm_Tridiagonalize_Matrix(const Matrix<Real>* a, Matrix<Real>* q,
                                   MatrixSymmetric<Real>* t) const;
    bool tdm_Tridiagonalize_Matrix(const Matrix<Real>* a, Matrix<Real>* q,
                                   MatrixBand<Real>* t) const;
    bool tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a, Matrix<Real>* q,
                                   Matrix<Real>* t) const;
    bool tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a, Matrix<Real>* q,
                                   MatrixSymmetric<Real>* t) const;
    bool tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a, Matrix<Real>* q,
                                   MatrixBand<Real>* t) const;

    // ---- eigenvalues through the tridiagonal form ----

    /// One implicit QR step on the block of `size` rows from `start` on of the tridiagonal matrix
    /// with the diagonal d and the off-diagonal e, shifted by the eigenvalue of the block's last 2
    /// x 2 that is closer to its last element. The rotations go into the columns start … start +
    /// size - 1 of Q (may be null). A block below order 2 has no step. "1": the block does not lie
    /// in d and e. "2": Q is not that wide. O(size), and O(size height) for Q.
    bool u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift(Vector<Real>* d, Vector<Real>* e,
                                                           int start, int size,
                                                           Matrix<Real>* q) const;
    /// A = V D V^T by QR steps on the last block that is not diagonal, until none is left. Each is
    /// counted in `iterations` before it is made, and the one with which the count reaches
    /// max_iterations is not made any more. Convergence takes about two steps a value: 30 n is
    /// ample; more than 50 n
    /// + 100 are never made. "1": the tridiagonalization failed, or the matrix no longer holds its
    /// elements. 4/3 n^3, with vectors some 9 n^3.
    bool devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(const MatrixSymmetric<Real>* a,
                                                                    Matrix<Real>* v,
                                                                    MatrixDiagonal<Real>* d,
                                                                    int max_iterations,
                                                                    int& iterations) const;
    /// The same with a limit of 100: a matrix of order above about 50 MAY STOP UNCONVERGED, its
    /// diagonal passed off as eigenvalues. Large matrices take the form above.
    bool devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(const MatrixSymmetric<Real>* a,
                                                                    Matrix<Real>* v,
                                                                    MatrixDiagonal<Real>* d) const;

    /// Whether the smallest eigenvalue, by Jacobi rotations, is above 0.0. It reports nothing but
    /// what `devj_…` does: a matrix that it cannot look at is not positive definite.
    bool ipde_Is_Positive_Definite_matrix_based_on_Eigen_value_decomposition(
        const MatrixSymmetric<Real>* a) const;

    /// A x = lambda B x, B positive definite: eigenvalues in D, in descending order, eigenvectors
    /// of length 1 as the columns of X (null: none); X^T B X is diagonal. With B = L L^T it is the
    /// problem of C = L^-1 A L^-T, X = L^-T Y. Orders up to 10 take the tridiagonal route (100
    /// iterations), larger ones Jacobi rotations (mode 2), which is what most of the cost is: some
    /// 40 n^3, beside about 3 n^3 for the rest. An ill-conditioned B takes as many digits as its
    /// condition has.
    ///
    /// "1": A and B are not of one order, or no longer hold their elements. "2": B is not positive
    /// definite. "3", "4": a solve with L failed. "5": Jacobi rotations failed. "6": the
    /// tridiagonal route, or the solve with L^T, did. "7": an eigenvector has length 0.0.
    bool dgea_Do_Generalized_Eigen_Analysis(const MatrixSymmetric<Real>* a,
                                            const MatrixSymmetric<Real>* b, Matrix<Real>* x,
                                            MatrixDiagonal<Real>* d) const;

    // ---- QR of a tridiagonal matrix, T = Q R: n-1 rotations, R has two super-diagonals ----

    /// T = Q R in place: `t` becomes R, what is outside its three bands is not read and set to
    /// zero; Q may be null. "1": Q is `t`. "2": not square. O(n^2), the rotations themselves O(n).
    bool u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(Matrix<Real>* t,
                                                                   Matrix<Real>* q) const;
    /// The same for the symmetric tridiagonal matrix of the diagonal d (n) and the off-diagonal e
    /// (n-1, or longer). "1": Q is R. "2": d is empty, or e too short. A band R has two
    /// super-diagonals, as far as the order allows them.
    bool u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(const Vector<Real>* d,
                                                                   const Vector<Real>* e,
                                                                   Matrix<Real>* q,
                                                                   Matrix<Real>* r) const;
    bool u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(const Vector<Real>* d,
                                                                   const Vector<Real>* e,
                                                                   Matrix<Real>* q,
                                                                   MatrixBand<Real>* r) const;
    /// T = Q R with T kept. "1": the form with vectors failed, recorded too. What a matrix holds
    /// outside its three bands is ignored; a dense one need not be symmetric. "non-square matrix".
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const Vector<Real>* d,
                                                                const Vector<Real>* e,
                                                                Matrix<Real>* q,
                                                                Matrix<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const Vector<Real>* d,
                                                                const Vector<Real>* e,
                                                                Matrix<Real>* q,
                                                                MatrixBand<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const Matrix<Real>* t,
                                                                Matrix<Real>* q,
                                                                Matrix<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const Matrix<Real>* t,
                                                                Matrix<Real>* q,
                                                                MatrixBand<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const MatrixSymmetric<Real>* t,
                                                                Matrix<Real>* q,
                                                                Matrix<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const MatrixSymmetric<Real>* t,
                                                                Matrix<Real>* q,
                                                                MatrixBand<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const MatrixBandSymmetric<Real>* t,
                                                                Matrix<Real>* q,
                                                                Matrix<Real>* r) const;
    bool dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(const MatrixBandSymmetric<Real>* t,
                                                                Matrix<Real>* q,
                                                                MatrixBand<Real>* r) const;

protected:
    SymmetricEigenFactorization();
    SymmetricEigenFactorization(const SymmetricEigenFactorization&) = default;
    SymmetricEigenFactorization(SymmetricEigenFactorization&&) noexcept = default;
    ~SymmetricEigenFactorization() override;
    SymmetricEigenFactorization& operator=(const SymmetricEigenFactorization&) = default;
    SymmetricEigenFactorization& operator=(SymmetricEigenFactorization&&) noexcept = default;

private:
    struct Bands;

    template <class Symmetric>
    bool diagonalize(int mode, const Symmetric* a, Matrix<Real>* v, MatrixDiagonal<Real>* d,
                     int max_sweeps, Real tolerance, int& sweeps, int& annihilated) const;
    template <class Symmetric>
    bool tridiagonalize_into(const Symmetric* a, Matrix<Real>* q, Real* d, Real* e) const;
    template <class Symmetric, class Tridiagonal>
    bool tridiagonalize(const Symmetric* a, Matrix<Real>* q, Tridiagonal* t) const;
    template <class Triangle>
    bool factor_bands(const Bands& bands, Matrix<Real>* q, Triangle* r, const char* method) const;
    template <class Triangle>
    bool factor_vectors(const Vector<Real>* d, const Vector<Real>* e, Matrix<Real>* q,
                        Triangle* r) const;
    template <class Tridiagonal, class Triangle>
    bool factor_tridiagonal(const Tridiagonal* t, Matrix<Real>* q, Triangle* r) const;
    template <class Triangle>
    bool factor_band_matrix(const MatrixBandSymmetric<Real>* t, Matrix<Real>* q, Triangle* r) const;
};

}  // namespace nequar

extern template class nequar::SymmetricEigenFactorization<double>;
extern template class nequar::SymmetricEigenFactorization<float>;
