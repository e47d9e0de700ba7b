#pragma once

#include "nequar_algebra/factorization/orthogonal_factorization.h"

namespace nequar {

/// Reduction to upper Hessenberg form, and the QR factorization of a Hessenberg matrix.
///
/// Both work on square matrices. Q may be null, may not be the matrix that is factored nor the
/// other output ("1"), and may be the input of an object form. Every output is sized here; a failed
/// check leaves the outputs as they were; where the form in place fails, both forms are recorded.
/// Beside the details named below there are "out of memory" and "cannot size the output".
///
/// Sources: Golub and Van Loan, Matrix Computations, 7.4.2 and 5.2.5; Quintana-Orti and van de
/// Geijn, Improving the performance of reduction to Hessenberg form, ACM TOMS 32, 2006.
template <class Real>
class NEQUAR_API HessenbergFactorization : public OrthogonalFactorization<Real> {
public:
    /// A = Q H Q^T in place: `a` becomes H, upper Hessenberg, Q orthogonal, its first row and
    /// column those of the identity. Elements below the subdiagonal are NOT cleared: they hold what
    /// they held when their column was reduced. The elements on the subdiagonal are not negative
    /// where a reflection was made, and keep their sign where none was needed (and in the last).
    ///
    /// "1": a and Q are one object. "2": not square. ("v[k1] != 1.0", a failed check of the
    /// reflector, does not occur.)
    ///
    /// 10/3 n^3, and 4/3 n^3 for Q; a fifth of it is matrix-vector work. A matrix of order 2 or
    /// less is Hessenberg already.
    bool u_dhr_Do_Hessenberg_Reduction(Matrix<Real>* a, Matrix<Real>* q) const;
    /// The same, with exact zeros below the subdiagonal of H. "non-square matrix". "1": the form in
    /// place failed.
    bool dhr_Do_Hessenberg_Reduction(const Matrix<Real>* a, Matrix<Real>* h, Matrix<Real>* q) const;

    /// H = Q R for an upper Hessenberg matrix, in place, by n-1 plane rotations at most: a
    /// subdiagonal element that is exactly zero needs none. `h` becomes R. The diagonal of R may be
    /// negative (see `ggr_…`).
    ///
    /// Whether H is Hessenberg is not checked: elements below the subdiagonal are neither read nor
    /// written. "1": h and Q are one object. "2": not square. O(n^2).
    bool u_dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(
        Matrix<Real>* h, Matrix<Real>* q) const;
    /// H = Q R with H kept. "non-square matrix". "2": the form in place failed. R holds below its
    /// subdiagonal what H held there.
    bool dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(
        const Matrix<Real>* h, Matrix<Real>* q, Matrix<Real>* r) const;

protected:
    HessenbergFactorization();
    HessenbergFactorization(const HessenbergFactorization&) = default;
    HessenbergFactorization(HessenbergFactorization&&) noexcept = default;
    ~HessenbergFactorization() override;
    HessenbergFactorization& operator=(const HessenbergFactorization&) = default;
    HessenbergFactorization& operator=(HessenbergFactorization&&) noexcept = default;

private:
    bool can_begin(const char* method, const Matrix<Real>* a, const Matrix<Real>* q) const;
};

}  // namespace nequar

extern template class nequar::HessenbergFactorization<double>;
extern template class nequar::HessenbergFactorization<float>;
