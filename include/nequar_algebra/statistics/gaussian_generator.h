#pragma once

#include "nequar_algebra/algebra/matrix_algebra.h"
#include "nequar_algebra/factorization/matrix_factorization.h"
#include "nequar_algebra/frame/growable_matrix.h"
#include "nequar_algebra/frame/growable_vector.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/random.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/structured/symmetric.h"

namespace nequar {

/// Gaussian random numbers, and random vectors with a given covariance.
///
/// Beware of the seed: every generating call takes it anew from the calendar time in seconds, so
/// two calls within one second give the same numbers. Whoever needs repeatable or distinct streams
/// calls `Nq_Rand_Gaussianf` with a state of his own. A sample is a number of single precision, in
/// the double class too. The seed state of the object is where the last call left it.
///
/// A set of vectors is a matrix: the vectors are its columns when `by_column` is true, its rows
/// when it is false. Ranges are begin … end-1; a mask, where given, chooses those of a range whose
/// entry is true, and may choose none. All operations answer true on success and record their
/// failures; outputs sized before a failing check stay sized. Beside the details named below there
/// are "out of memory" and "cannot size the output". Short names forward to the long ones.
///
/// Cost: O(1) a number, by the ziggurat of `Nq_Rand_Gaussianf`; a vector of dimension d with a
/// covariance costs 2 d^2 operations beside its numbers, and each call that generates such vectors
/// decomposes the covariance once, by Jacobi rotations (some 40 d^3).
template <class Real>
class NEQUAR_API GaussianGenerator : public RandomNumberGenerator<Real> {
public:
    /// Hands the error-trace flag to the member objects.
    void zet_xm_Error_Trace_mode_Transfer_to_its_Members();
    void zet_xm() { zet_xm_Error_Trace_mode_Transfer_to_its_Members(); }

    // ---- numbers ----

    /// Standard normal samples in out[n-1], out[n-2], …, out[0], in this order. "array size <= 0".
    bool gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance(int n, Real* out);
    bool gng_wzu(int n, Real* out) {
        return gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance(n, out);
    }
    /// a[k] = mean + sqrt(variance) sample for the chosen k of begin … end-1, others stay as they
    /// are; `replaced` (may be null) receives how many. "bad size or indices" unless n > 0 and
    /// 0 <= begin < end <= n; "negative variance", also for NaN.
    bool rng_Replace_random_Numbers_Gaussian(Real mean, Real variance, int n, Real* a, int begin,
                                             int end, const bool* mask, int* replaced);
    bool rng(Real mean, Real variance, int n, Real* a, int begin, int end, const bool* mask,
             int* replaced) {
        return rng_Replace_random_Numbers_Gaussian(mean, variance, n, a, begin, end, mask,
                                                   replaced);
    }
    /// n numbers. The vector is sized to max(n, 1); fails as `rng_…` does, which is recorded first.
    bool gng_Generate_random_Numbers_Gaussian(Real mean, Real variance, int n, Vector<Real>& out);
    bool gng_Generate_random_Numbers_Gaussian(Real mean, Real variance, int n, Real* out);
    bool gng(Real mean, Real variance, int n, Vector<Real>& out) {
        return gng_Generate_random_Numbers_Gaussian(mean, variance, n, out);
    }
    bool gng(Real mean, Real variance, int n, Real* out) {
        return gng_Generate_random_Numbers_Gaussian(mean, variance, n, out);
    }
    /// Appends n numbers. "gng": they could not be generated.
    bool ang_Append_random_Numbers_Gaussian(Real mean, Real variance, int n,
                                            GrowableVector<Real>& x);
    bool ang(Real mean, Real variance, int n, GrowableVector<Real>& x) {
        return ang_Append_random_Numbers_Gaussian(mean, variance, n, x);
    }
    /// Appends the chosen numbers of a range to `out`. "size of CNqVectorBool is less than
    /// in_last_index_of_range_plus_1"; "bad size or indices" as for `rng_…`.
    bool evn_Extract_Valid_random_Numbers(const Vector<Real>& in, int begin, int end,
                                          const CNqVectorBool* mask, GrowableVector<Real>& out);
    bool evn_Extract_Valid_random_Numbers(int n, const Real* in, int begin, int end,
                                          const bool* mask, GrowableVector<Real>& out);
    bool evn(const Vector<Real>& in, int begin, int end, const CNqVectorBool* mask,
             GrowableVector<Real>& out) {
        return evn_Extract_Valid_random_Numbers(in, begin, end, mask, out);
    }
    bool evn(int n, const Real* in, int begin, int end, const bool* mask,
             GrowableVector<Real>& out) {
        return evn_Extract_Valid_random_Numbers(n, in, begin, end, mask, out);
    }

    // ---- vectors ----

    /// `count` vectors of dimension `dim` with independent standard normal elements. M is sized
    /// here. "bad dimension or numbers" unless dim > 0 and count >= 1; "gng_wzu".
    bool gvg_wzu_Generate_random_Vectors_Gaussian_White_Zero_mean_Unit_variance(int dim, int count,
                                                                                bool by_column,
                                                                                Matrix<Real>& M);
    bool gvg_wzu(int dim, int count, bool by_column, Matrix<Real>& M) {
        return gvg_wzu_Generate_random_Vectors_Gaussian_White_Zero_mean_Unit_variance(dim, count,
                                                                                      by_column, M);
    }
    /// T with T T^T = cov: the eigenvectors of cov as columns, each times the square root of its
    /// eigenvalue, the largest first. A computed eigenvalue whose size is within rounding of the
    /// largest one's (n epsilon) counts as zero, so that a singular covariance is accepted.
    ///
    /// "Eigen Analysis Error"; "Strange !!!" does not occur; "Not valid covariance matrix": an
    /// eigenvalue is negative (columns before it are scaled then) or not a finite number.
    bool ctl_Compute_Transform_Linear(const MatrixSymmetric<Real>& cov, Matrix<Real>& T);
    bool ctl(const MatrixSymmetric<Real>& cov, Matrix<Real>& T) {
        return ctl_Compute_Transform_Linear(cov, T);
    }
    /// Overwrites the chosen vectors of M by random ones of covariance cov AND MEAN ZERO: `mean` is
    /// used for its size alone, the vectors are not shifted by it. M = T Z with T from `ctl_…` and
    /// Z standard normal, as one product. Other vectors stay as they are; `replaced` (may be null)
    /// receives how many were written.
    ///
    /// "mismatch between mean and covariance": one of them has not the dimension of M's vectors;
    /// "bad size or indices" unless 0 <= begin < end <= the number of vectors; "size of
    /// <CNqVectorBool> is too small": the mask ends before the range; "ctl"; "gng_wzu".
    bool rvg_Replace_random_Vectors_Gaussian(const Vector<Real>& mean,
                                             const MatrixSymmetric<Real>& cov, bool by_column,
                                             Matrix<Real>& M, int begin, int end,
                                             const CNqVectorBool* mask, int* replaced);
    bool rvg(const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, bool by_column,
             Matrix<Real>& M, int begin, int end, const CNqVectorBool* mask, int* replaced) {
        return rvg_Replace_random_Vectors_Gaussian(mean, cov, by_column, M, begin, end, mask,
                                                   replaced);
    }
    /// `count` vectors of mean zero, as `rvg_…` makes them. M is sized for max(count, 1) vectors of
    /// the mean's dimension; fails as `rvg_…` does, which is recorded first.
    bool gvg_Generate_random_Vectors_Gaussian(const Vector<Real>& mean,
                                              const MatrixSymmetric<Real>& cov, int count,
                                              bool by_column, Matrix<Real>& M);
    bool gvg(const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, int count, bool by_column,
             Matrix<Real>& M) {
        return gvg_Generate_random_Vectors_Gaussian(mean, cov, count, by_column, M);
    }
    /// Appends `count` such vectors; both containers get the same ones. An empty container takes
    /// their dimension. "mismatch between mean and covariance"; "gvg"; "dimension mismatch": the
    /// container holds vectors of another dimension.
    bool avg_Append_random_Vectors_Gaussian(const Vector<Real>& mean,
                                            const MatrixSymmetric<Real>& cov, int count,
                                            GrowableMatrix<Real, Growth::columns>& out);
    bool avg_Append_random_Vectors_Gaussian(const Vector<Real>& mean,
                                            const MatrixSymmetric<Real>& cov, int count,
                                            GrowableMatrix<Real, Growth::rows>& out);
    template <Growth growth>
    bool avg(const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, int count,
             GrowableMatrix<Real, growth>& out) {
        return avg_Append_random_Vectors_Gaussian(mean, cov, count, out);
    }
    /// Appends the chosen vectors of a range to a container, which may be the same one. "size of
    /// CNqVectorBool is less than in_last_index_of_range_plus_1"; "bad size or indices"; "dimension
    /// mismatch".
    bool evv_Extract_Valid_random_Vectors(const GrowableMatrix<Real, Growth::columns>& in,
                                          int begin, int end, const CNqVectorBool* mask,
                                          GrowableMatrix<Real, Growth::columns>& out);
    bool evv_Extract_Valid_random_Vectors(const GrowableMatrix<Real, Growth::rows>& in, int begin,
                                          int end, const CNqVectorBool* mask,
                                          GrowableMatrix<Real, Growth::rows>& out);
    template <Growth growth>
    bool evv(const GrowableMatrix<Real, growth>& in, int begin, int end, const CNqVectorBool* mask,
             GrowableMatrix<Real, growth>& out) {
        return evv_Extract_Valid_random_Vectors(in, begin, end, mask, out);
    }

protected:
    GaussianGenerator();
    GaussianGenerator(const GaussianGenerator&) = default;
    GaussianGenerator(GaussianGenerator&&) noexcept = default;
    ~GaussianGenerator() override;
    GaussianGenerator& operator=(const GaussianGenerator&) = default;
    GaussianGenerator& operator=(GaussianGenerator&&) noexcept = default;

    AlgebraForMatrix<Real> algebra_;
    MatrixFactorization<Real> factorization_;

private:
    bool can_replace(int n, int begin, int end, const char* method) const;
    void generate(std::ptrdiff_t n, Real* out);
    template <Growth growth>
    bool append_vectors(const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, int count,
                        GrowableMatrix<Real, growth>& out);
    template <Growth growth>
    bool extract_vectors(const GrowableMatrix<Real, growth>& in, int begin, int end,
                         const CNqVectorBool* mask, GrowableMatrix<Real, growth>& out);
    template <Growth growth>
    bool append_to(const Matrix<Real>& vectors, int count, GrowableMatrix<Real, growth>& out,
                   const char* method);
};

}  // namespace nequar

extern template class nequar::GaussianGenerator<double>;
extern template class nequar::GaussianGenerator<float>;
