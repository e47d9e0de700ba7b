#pragma once

#include "nequar_algebra/statistics/gaussian_generator.h"

namespace nequar {

/// Gaussian numbers and vectors (see the base class), and what can be said about samples: means,
/// variances and covariances, distances, Gaussian densities, and two density estimates.
///
/// n sample vectors of dimension d are the columns of a d x n matrix when `by_column` is true, the
/// rows of an n x d matrix when it is false. Outputs may be inputs. All operations answer true on
/// success and record their failures; vectors sized before a failing check stay sized, scalar
/// outputs are written on success alone.
///
/// Cost: O(n d) where nothing else is said; a covariance n d^2, a density 2/3 d^3 for the
/// determinant and 2 d^2 a sample, an estimate O(n d) a query.
///
/// Source of the estimates: Duda, Hart and Stork, Pattern Classification, 4.3 and 4.4.
template <class Real>
class NEQUAR_API RandomNumberGeneratorAdvanced : public GaussianGenerator<Real> {
public:
    RandomNumberGeneratorAdvanced();
    RandomNumberGeneratorAdvanced(const RandomNumberGeneratorAdvanced&) = default;
    RandomNumberGeneratorAdvanced(RandomNumberGeneratorAdvanced&&) noexcept = default;
    ~RandomNumberGeneratorAdvanced() override;
    RandomNumberGeneratorAdvanced& operator=(const RandomNumberGeneratorAdvanced&) = default;
    RandomNumberGeneratorAdvanced& operator=(RandomNumberGeneratorAdvanced&&) noexcept = default;

    /// Count, mean and population variance (divided by the count, not by one less) of the elements
    /// a[begin] … a[end-1] whose mask entry is true, or all of them without a mask. Outputs may be
    /// null. n is the length of the array.
    ///
    /// Sums are taken in blocks of round(sqrt(n)) counted elements, 16 at least; the variance in a
    /// second pass. "invalid array pointer": a is null; "bad parameter(s)" unless n > 0 and
    /// 0 <= begin < end <= n, and for a mask that ends before the range; "no valid element".
    bool csn_Compute_Statistics_of_random_Numbers(const Real* a, int n, const bool* mask, int begin,
                                                  int end, int* count, Real* mean,
                                                  Real* variance) const;
    bool csn_Compute_Statistics_of_random_Numbers(const Vector<Real>& a, const CNqVectorBool* mask,
                                                  int begin, int end, int* count, Real* mean,
                                                  Real* variance) const;
    bool csn_Compute_Statistics_of_random_Numbers(const GrowableVector<Real>& a,
                                                  const CNqVectorBool* mask, int begin, int end,
                                                  int* count, Real* mean, Real* variance) const;

    /// Count, mean vector and d x d population covariance matrix of the chosen vectors of a range,
    /// with the checks of `csn_…`. Outputs may be null. The mean is summed as `csn_…` does.
    bool csv_Compute_Statistics_of_random_Vectors(const Matrix<Real>& samples, bool by_column,
                                                  const CNqVectorBool* mask, int begin, int end,
                                                  int* count, Vector<Real>* mean,
                                                  Matrix<Real>* covariance) const;
    bool csv_Compute_Statistics_of_random_Vectors(
        const GrowableMatrix<Real, Growth::columns>& samples, const CNqVectorBool* mask, int begin,
        int end, int* count, Vector<Real>* mean, Matrix<Real>* covariance) const;
    bool csv_Compute_Statistics_of_random_Vectors(const GrowableMatrix<Real, Growth::rows>& samples,
                                                  const CNqVectorBool* mask, int begin, int end,
                                                  int* count, Vector<Real>* mean,
                                                  Matrix<Real>* covariance) const;

    /// out[i] = the squared Euclidean distance from x to sample i. "mismatch": x has not the
    /// dimension of the samples.
    bool csd_Compute_Set_of_Distances(const Vector<Real>& x, const Matrix<Real>& samples,
                                      bool by_column, Vector<Real>& out) const;

    /// The Gaussian density with this mean and INVERSE covariance S at one point:
    /// c exp(-2 q), q = (x - mean)^T S (x - mean), c = sqrt(det S) / (2 pi)^(d/2). Beware: this
    /// form's exponent is -2 q, where the density of a normal distribution has -q/2, as the form
    /// for a matrix of samples has.
    ///
    /// "1": mean and x differ in size; "2": S is not d x d; "111": the determinant fails (its LU
    /// factorization refuses some regular matrices); "det=0": the determinant is not above zero.
    bool cpgm_Compute_Pdf_of_Gaussian_Multivariate(const Vector<Real>& x, const Vector<Real>& mean,
                                                   const MatrixSymmetric<Real>& S, Real& p);
    /// The Gaussian density c exp(-q/2) at every sample; S is the INVERSE of the covariance. One
    /// matrix product and n exponentials. Details as above.
    bool cpgm_Compute_Pdf_of_Gaussian_Multivariate(const Matrix<Real>& samples, bool by_column,
                                                   const Vector<Real>& mean,
                                                   const MatrixSymmetric<Real>& S, Vector<Real>& p);

    /// The density at x estimated from its k-th nearest neighbour among n samples: p = k / (V n), V
    /// the volume of the d-ball that reaches it; 1e15 when that sample is x itself (V = 0). NaN
    /// when some distance is.
    ///
    /// `distances` (may be null) keeps the squared distances from x to all samples. "1": x has not
    /// the dimension of the samples; "2" unless 1 <= k <= n; "3": the selection fails. The k-th
    /// smallest distance is selected, not sorted for: O(n d).
    bool epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(const Vector<Real>& x,
                                                                     const Matrix<Real>& samples,
                                                                     bool by_column, int k, Real& p,
                                                                     Vector<Real>* distances);
    /// The same for every query: the columns (rows) of a matrix, stored as the samples are. The
    /// first query that fails stops with "111" (columns) or "222" (rows); estimates before it stay.
    bool epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(const Matrix<Real>& queries,
                                                                     const Matrix<Real>& samples,
                                                                     bool by_column, int k,
                                                                     Vector<Real>& p);

    /// The density at x estimated with a Parzen window: p = count / (V n), where count is the
    /// number of samples at a distance of at most h from x. Beware: the window is the BALL of
    /// radius h and V its volume, whatever the name says. With h = 0 that is 0 / 0 or a division by
    /// zero, which is not a failure. NaN when some distance is. "mismatch" as for `csd_…`.
    bool eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(
        const Vector<Real>& x, const Matrix<Real>& samples, bool by_column, Real h, Real& p);
    /// The same for every query, as above.
    bool eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(
        const Matrix<Real>& queries, const Matrix<Real>& samples, bool by_column, Real h,
        Vector<Real>& p);

    // ---- short names: the arguments are handed on as they are ----

    /// `csn_Compute_Statistics_of_random_Numbers`.
    template <class... Arguments>
    bool csn(Arguments&&... arguments) const {
        return csn_Compute_Statistics_of_random_Numbers(static_cast<Arguments&&>(arguments)...);
    }
    /// `csv_Compute_Statistics_of_random_Vectors`.
    template <class... Arguments>
    bool csv(Arguments&&... arguments) const {
        return csv_Compute_Statistics_of_random_Vectors(static_cast<Arguments&&>(arguments)...);
    }
    /// `csd_Compute_Set_of_Distances`.
    template <class... Arguments>
    bool csd(Arguments&&... arguments) const {
        return csd_Compute_Set_of_Distances(static_cast<Arguments&&>(arguments)...);
    }
    /// `cpgm_Compute_Pdf_of_Gaussian_Multivariate`.
    template <class... Arguments>
    bool cpgm(Arguments&&... arguments) {
        return cpgm_Compute_Pdf_of_Gaussian_Multivariate(static_cast<Arguments&&>(arguments)...);
    }
    /// `epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation`.
    template <class... Arguments>
    bool epknne(Arguments&&... arguments) {
        return epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(
            static_cast<Arguments&&>(arguments)...);
    }
    /// `eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window`.
    template <class... Arguments>
    bool eppwh(Arguments&&... arguments) {
        return eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(
            static_cast<Arguments&&>(arguments)...);
    }

private:
    bool has_bad_range(int n, const CNqVectorBool* mask, int begin, int end) const;
    bool statistics_of(const View<const Real>& samples, const CNqVectorBool* mask, int begin,
                       int end, int* count, Vector<Real>* mean, Matrix<Real>* covariance) const;
    const char* prepare_density(const Vector<Real>& mean, const MatrixSymmetric<Real>& S, int dim,
                                Matrix<Real>& dense, double& height);
    template <class Estimate>
    bool for_each_query(const Matrix<Real>& queries, bool by_column, Vector<Real>& p,
                        const char* method, const Estimate& estimate);
};

}  // namespace nequar

using CNqRandom_Number_Generator_Advanced = nequar::RandomNumberGeneratorAdvanced<double>;
using CNqRandomFloat_Number_Generator_Advanced = nequar::RandomNumberGeneratorAdvanced<float>;

extern template class nequar::RandomNumberGeneratorAdvanced<double>;
extern template class nequar::RandomNumberGeneratorAdvanced<float>;
