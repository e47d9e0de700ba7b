#pragma once

#include <type_traits>

#include "nequar_algebra/algebra/matrix_algebra.h"
#include "nequar_algebra/algebra/vector_algebra.h"
#include "nequar_algebra/factorization/matrix_factorization.h"
#include "nequar_algebra/frame/growable_vector.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/frame/vector_queue.h"
#include "nequar_algebra/frame/vector_set.h"

namespace nequar {

/// Principal component analysis of the most recent N sample vectors of dimension d.
///
///     c_Create  ->  inv_INput_a_Vector ...  ->  cevvcm_...  ->  results, dar_...
///
/// Samples go into a ring, the oldest falling out. Beware: the ring holds N vectors from the start,
/// all zero, and the analysis takes all N; put in N samples first. Results are valid after a
/// successful `cevvcm_…` until the next input or `c_Create`; asking before is reported as "Not
/// valid". Beside the details named below there are "out of memory" and "cannot size the output".
///
/// Matrices of order 10 and above are decomposed by QR steps instead of Jacobi rotations: the same
/// within rounding, but components may have the other sign.
///
/// Eigenvalues are those of the scatter matrix, the sum (not the mean) of the outer products of the
/// deviations from the mean, in descending order.
///
/// Cost of an analysis, with K = min(N, d): N d K for the products, the eigenproblem of order K
/// (some 40 K^3 by rotations, 9 K^3 above order 32), and 2 N d for each component when N <= d.
/// Putting a sample in costs one copy of it, a reconstruction 4 d for each component that it takes.
///
/// Source: Turk and Pentland, Eigenfaces for recognition, J. Cognitive Neuroscience 3, 1991 (the
/// smaller of the two products).
template <class Real>
class NEQUAR_API PrincipalComponents : public CNqClass {
public:
    /// The element type of the other twin.
    using OtherReal = std::conditional_t<std::is_same_v<Real, double>, float, double>;

    PrincipalComponents();
    PrincipalComponents(const PrincipalComponents&) = default;
    PrincipalComponents(PrincipalComponents&&) noexcept = default;
    ~PrincipalComponents() override;
    PrincipalComponents& operator=(const PrincipalComponents&) = default;
    PrincipalComponents& operator=(PrincipalComponents&&) noexcept = default;

    /// Hands the error-trace flag to the member objects.
    void zet_xm_Error_Trace_mode_Transfer_to_its_Members();
    void zet_xm() { zet_xm_Error_Trace_mode_Transfer_to_its_Members(); }

    /// A ring of N zero vectors of dimension d. `ratio`, 0 < ratio <= 0.1, is the smallest share of
    /// the largest eigenvalue with which an eigenvalue is kept; `residual_share`, strictly between
    /// 0 and 1, the share of the variance that the principal components may leave unexplained.
    ///
    /// "1": residual_share, "2": ratio, "3": the ring cannot be made. On failure the ring and the
    /// parameters stay; results are not valid in any case.
    bool c_Create(int N, int d, Real ratio, Real residual_share);

    /// Puts a sample in, in place of the oldest; `slot` (may be null) receives its place in the
    /// ring. "1": it has not the dimension of the ring. Results are not valid afterwards, also when
    /// the sample was refused.
    bool inv_INput_a_Vector(const Vector<Real>& x, int* slot);
    bool inv_INput_a_Vector(const CNqVectorInt& x, int* slot);

    /// Analyses the samples of the ring. The number of principal components is the number of those
    /// before the one with which the explained share first exceeds 1 - residual_share: beware, THE
    /// COMPONENT THAT CROSSES IS NOT COUNTED, and may be the first. The relative reconstruction
    /// error is 1 - share, with the share of the crossing component included. Samples that are all
    /// equal have no component and the error 0.
    ///
    /// "1": the analysis fails (`u_cevvcm_…` is recorded first); "2", "3" do not occur.
    bool cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix();

    /// The number of kept eigenvalues; 0 when not valid.
    int nbev_NumBer_of_Eigen_Vectors() const;
    int nbev() const { return nbev_NumBer_of_Eigen_Vectors(); }
    /// The number of principal components; 0 when not valid.
    int nbpc_NumBer_of_Principal_Components() const;
    int nbpc() const { return nbpc_NumBer_of_Principal_Components(); }
    /// The relative reconstruction error; 0.0 when not valid.
    Real rre_Relative_Reconstruction_Error() const;
    Real rre() const { return rre_Relative_Reconstruction_Error(); }
    /// Component k, a unit vector, 0 <= k < nbev(); null with "Not valid" or "Void index".
    const Vector<Real>* ppc_Pointer_of_Principal_Component(int k) const;
    Vector<Real>* ppc_Pointer_of_Principal_Component(int k);
    const Vector<Real>* ppc(int k) const { return ppc_Pointer_of_Principal_Component(k); }
    Vector<Real>* ppc(int k) { return ppc_Pointer_of_Principal_Component(k); }
    /// Copies component k and its eigenvalue; null: not wanted. Fails as `ppc_…` does.
    bool gipc_Get_Information_about_a_Principal_Component(int k, Vector<Real>* component,
                                                          Real* eigenvalue) const;
    bool gipc(int k, Vector<Real>* component, Real* eigenvalue) const {
        return gipc_Get_Information_about_a_Principal_Component(k, component, eigenvalue);
    }
    /// Copies out the analysis; null: not wanted. The mean; nbev; nbpc; the kept eigenvalues; the
    /// kept components as a set and as the columns of a d x nbev matrix; the relative
    /// reconstruction error. "Not valid".
    bool gi_Get_Information(Vector<Real>* mean, int* eigen_vectors, int* principal_components,
                            GrowableVector<Real>* eigenvalues, VectorSet<Real>* components,
                            Matrix<Real>* matrix, Real* error) const;
    /// N, d, ratio and residual share; null: not wanted.
    void gp_Get_Parameters(int* N, int* d, Real* ratio, Real* residual_share) const;

    /// Analyses a vector and reconstructs it from its first components:
    ///
    ///     c_k = (x - mean) . component k,     reconstruction = mean + sum c_k component k
    ///
    /// `count` is how many components to take, 0 included; a negative one means nbpc(), which comes
    /// back. Outputs may be null: the c_k; the reconstruction; |x - mean|^2; |x -
    /// reconstruction|^2; sum c_k^2 / eigenvalue_k; and the quotient of the two squares, 0 where
    /// both vanish. Either output vector may be x.
    ///
    /// "Not valid"; "1": x, "2": a component has not the size of the mean (both sizes are printed);
    /// "3": more components than are kept, "4": than there are; "5": both output vectors are one
    /// object, or memory cannot be had.
    bool dar_Do_Analysis_and_Reconstruction(const Vector<Real>& x, int& count,
                                            Vector<Real>* coefficients,
                                            Vector<Real>* reconstruction, Real* deviation_squared,
                                            Real* residual_squared, Real* weighted_sum,
                                            Real* relative_residual) const;
    bool dar(const Vector<Real>& x, int& count, Vector<Real>* coefficients,
             Vector<Real>* reconstruction, Real* deviation_squared, Real* residual_squared,
             Real* weighted_sum, Real* relative_residual) const {
        return dar_Do_Analysis_and_Reconstruction(x, count, coefficients, reconstruction,
                                                  deviation_squared, residual_squared, weighted_sum,
                                                  relative_residual);
    }

    /// The analysis itself, of the samples that are the columns of the d x n matrix X, or the
    /// vectors of a ring: mean, kept eigenvalues, their total, and K = min(n, d) vectors of size d
    /// of which the first, as many as eigenvalues are kept, are the components. (Those behind them
    /// are the other eigenvectors when n > d, else zero.)
    ///
    /// With n <= d the n x n matrix of the products of the deviations is decomposed, else the d x d
    /// scatter matrix. Kept are the eigenvalues down to the first below `ratio` times the largest;
    /// beware, that first one still counts into the total. Samples that are all equal keep none.
    ///
    /// "0 < RATIO <= 0.1"; "1": the decomposition fails; "111" does not occur; "max eigen-value <0"
    /// (also for samples that are not finite), "eigen-value < 0": what no scatter matrix has; "bad
    /// parameter(s)": no sample, or dimension 0.
    bool u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
        const Matrix<Real>& X, Real ratio, Vector<Real>& mean, GrowableVector<Real>& eigenvalues,
        Real& total, VectorSet<Real>& components);
    bool u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
        const VectorQueue<Real>& samples, Real ratio, Vector<Real>& mean,
        GrowableVector<Real>& eigenvalues, Real& total, VectorSet<Real>& components);

    /// Element conversions; the output is sized here ("1" when it cannot be). To whole numbers:
    /// rounded to the nearest, halves to even; numbers out of range become the nearest limit, NaN
    /// becomes 0.
    bool u_cv_Convert_Vector(const Vector<Real>& from, CNqVectorChar& to) const;
    bool u_cv_Convert_Vector(const Vector<Real>& from, Vector<OtherReal>& to) const;
    bool u_cv_Convert_Vector(const Vector<Real>& from, CNqVectorInt& to) const;
    bool u_cv_Convert_Vector(const Vector<Real>& from, CNqVectorShort& to) const;
    bool u_cv_Convert_Vector(const Vector<Real>& from, CNqVectorUchar& to) const;
    bool u_cv_Convert_Vector(const CNqVectorChar& from, Vector<Real>& to) const;
    bool u_cv_Convert_Vector(const Vector<OtherReal>& from, Vector<Real>& to) const;
    bool u_cv_Convert_Vector(const CNqVectorInt& from, Vector<Real>& to) const;
    bool u_cv_Convert_Vector(const CNqVectorShort& from, Vector<Real>& to) const;
    bool u_cv_Convert_Vector(const CNqVectorUchar& from, Vector<Real>& to) const;

private:
    bool is_valid(const char* method) const;
    bool has_component(int k, const char* method) const;
    bool report_failure(const char* detail, const char* method) const;
    const char* decompose(const View<Real>& gram, Matrix<Real>& vectors,
                          MatrixDiagonal<Real>& values);
    const char* analyse(const View<const Real>& samples, Real ratio, Vector<Real>& mean,
                        GrowableVector<Real>& eigenvalues, Real& total,
                        VectorSet<Real>& components);

    bool valid_ = false;
    VectorQueue<Real> samples_;
    Vector<Real> mean_;
    VectorSet<Real> components_;
    GrowableVector<Real> eigenvalues_;
    int number_of_components_ = 0;
    Real ratio_ = 0;
    Real error_ = 0;
    Real residual_share_ = 0;
    MatrixFactorization<Real> factorization_;
    AlgebraForMatrix<Real> matrix_algebra_;
    AlgebraForVector<Real> vector_algebra_;
};

}  // namespace nequar

using CNqPrPca = nequar::PrincipalComponents<double>;
using CNqPrPcaFloat = nequar::PrincipalComponents<float>;

extern template class nequar::PrincipalComponents<double>;
extern template class nequar::PrincipalComponents<float>;
