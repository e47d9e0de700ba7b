#include "nequar_algebra/statistics/random_advanced.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "algebra/temporary.h"
#include "core/twin_name.h"
#include "core/workspace.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/frame/gamma.h"
#include "nequar_algebra/frame/ranker.h"
#include "statistics/algorithm/density.h"
#include "statistics/algorithm/sample_moments.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kNumbers = "csn_Compute_Statistics_of_random_Numbers";
constexpr const char* kVectors = "csv_Compute_Statistics_of_random_Vectors";
constexpr const char* kDistances = "csd_Compute_Set_of_Distances";
constexpr const char* kGaussian = "cpgm_Compute_Pdf_of_Gaussian_Multivariate";
constexpr const char* kNearest = "epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation";
constexpr const char* kParzen = "eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window";

constexpr const char* kBadParameters = "bad parameter(s)";
constexpr const char* kNoArray = "invalid array pointer";
constexpr const char* kNoElement = "no valid element";
constexpr const char* kMismatch = "mismatch";

const bool* entries_of(const CNqVectorBool* mask) {
    return mask != nullptr ? mask->p() : nullptr;
}

// The samples as rows.
template <class Real>
View<const Real> samples_of(const Matrix<Real>& samples, bool by_column) {
    return by_column ? view_of(&samples).transposed() : view_of(&samples);
}

double log_gamma_of_ball(Size d) {
    return Nq_Gamma_Log(static_cast<double>(d) / 2.0 + 1.0);
}

template <class Real>
bool deliver(const Real* result, Size size, Vector<Real>* out) {
    if (!size_to(static_cast<int>(size), out)) return false;
    std::copy_n(result, size, out->p());
    return true;
}

}  // namespace

template <class Real>
RandomNumberGeneratorAdvanced<Real>::RandomNumberGeneratorAdvanced() {
    this->set_class_name(twin_name<Real>("CNqRandom_Number_Generator_Advanced",
                                         "CNqRandomFloat_Number_Generator_Advanced"));
}

template <class Real>
RandomNumberGeneratorAdvanced<Real>::~RandomNumberGeneratorAdvanced() = default;

// ---- statistics ---------------------------------------------------------------------------------

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::has_bad_range(int n, const CNqVectorBool* mask, int begin,
                                                        int end) const {
    return n <= 0 || begin < 0 || begin >= end || end > n || (mask != nullptr && mask->vs() < end);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csn_Compute_Statistics_of_random_Numbers(
    const Real* a, int n, const bool* mask, int begin, int end, int* count, Real* mean,
    Real* variance) const {
    if (a == nullptr) return this->fail(kNoArray, kNumbers);
    if (has_bad_range(n, nullptr, begin, end)) return this->fail(kBadParameters, kNumbers);
    const Selection chosen{begin, end, mask};
    const Size counted = chosen.count();
    if (counted == 0) return this->fail(kNoElement, kNumbers);
    const Size block = summation_block(n);
    const Real mean_found = mean_of(a, chosen, block);
    if (mean != nullptr) *mean = mean_found;
    if (variance != nullptr) *variance = variance_about(mean_found, a, chosen, block);
    if (count != nullptr) *count = static_cast<int>(counted);
    return true;
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csn_Compute_Statistics_of_random_Numbers(
    const Vector<Real>& a, const CNqVectorBool* mask, int begin, int end, int* count, Real* mean,
    Real* variance) const {
    if (a.p() != nullptr && has_bad_range(a.vs(), mask, begin, end))
        return this->fail(kBadParameters, kNumbers);
    return csn_Compute_Statistics_of_random_Numbers(a.p(), a.vs(), entries_of(mask), begin, end,
                                                    count, mean, variance);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csn_Compute_Statistics_of_random_Numbers(
    const GrowableVector<Real>& a, const CNqVectorBool* mask, int begin, int end, int* count,
    Real* mean, Real* variance) const {
    if (a.p() != nullptr && has_bad_range(a.nee(), mask, begin, end))
        return this->fail(kBadParameters, kNumbers);
    return csn_Compute_Statistics_of_random_Numbers(a.p(), a.nee(), entries_of(mask), begin, end,
                                                    count, mean, variance);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csv_Compute_Statistics_of_random_Vectors(
    const Matrix<Real>& samples, bool by_column, const CNqVectorBool* mask, int begin, int end,
    int* count, Vector<Real>* mean, Matrix<Real>* covariance_matrix) const {
    const View<const Real> rows = samples_of(samples, by_column);
    return statistics_of(rows, mask, begin, end, count, mean, covariance_matrix);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csv_Compute_Statistics_of_random_Vectors(
    const GrowableMatrix<Real, Growth::columns>& samples, const CNqVectorBool* mask, int begin,
    int end, int* count, Vector<Real>* mean, Matrix<Real>* covariance_matrix) const {
    const Matrix<Real>* stored = nullptr;
    samples.z_gii(&stored);
    return statistics_of(samples_of(*stored, true).rows(0, samples.nee()), mask, begin, end, count,
                         mean, covariance_matrix);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csv_Compute_Statistics_of_random_Vectors(
    const GrowableMatrix<Real, Growth::rows>& samples, const CNqVectorBool* mask, int begin,
    int end, int* count, Vector<Real>* mean, Matrix<Real>* covariance_matrix) const {
    const Matrix<Real>* stored = nullptr;
    samples.z_gii(&stored);
    return statistics_of(samples_of(*stored, false).rows(0, samples.nee()), mask, begin, end, count,
                         mean, covariance_matrix);
}

// Results are delivered after the last look at the samples, which an output may hold.
template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::statistics_of(const View<const Real>& samples,
                                                        const CNqVectorBool* mask, int begin,
                                                        int end, int* count, Vector<Real>* mean,
                                                        Matrix<Real>* covariance_matrix) const {
    if (samples.data == nullptr) return this->fail(kNoArray, kVectors);
    if (has_bad_range(static_cast<int>(samples.height), mask, begin, end))
        return this->fail(kBadParameters, kVectors);
    const Selection chosen{begin, end, entries_of(mask)};
    const Size counted = chosen.count();
    if (counted == 0) return this->fail(kNoElement, kVectors);
    const Size d = samples.width;
    Workspace<Real> mean_found(d);
    const TemporaryMatrix<Real> spread(covariance_matrix != nullptr ? d : 0, d);
    if (!mean_found || !spread || !mean_vector(samples, chosen, mean_found.data()) ||
        (covariance_matrix != nullptr &&
         !covariance(samples, chosen, static_cast<const Real*>(mean_found.data()), spread.view())))
        return this->fail(text::kOutOfMemory, kVectors);
    if (mean != nullptr && !deliver(mean_found.data(), d, mean))
        return this->fail(text::kCannotSize, kVectors);
    if (covariance_matrix != nullptr) {
        if (!size_to(static_cast<int>(d), static_cast<int>(d), covariance_matrix))
            return this->fail(text::kCannotSize, kVectors);
        std::copy_n(spread.view().data, d * d, covariance_matrix->p()[0]);
    }
    if (count != nullptr) *count = static_cast<int>(counted);
    return true;
}

// ---- distances and densities --------------------------------------------------------------------

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::csd_Compute_Set_of_Distances(const Vector<Real>& x,
                                                                       const Matrix<Real>& samples,
                                                                       bool by_column,
                                                                       Vector<Real>& out) const {
    const View<const Real> rows = samples_of(samples, by_column);
    if (x.vs() != rows.width) return this->fail(kMismatch, kDistances);
    const KeptVector<Real> point(&x, &out);
    if (!point) return this->fail(text::kOutOfMemory, kDistances);
    if (!size_to(static_cast<int>(rows.height), &out))
        return this->fail(text::kCannotSize, kDistances);
    kernel::squared_distances(point.view().data, rows, out.p());
    return true;
}

// Answers the detail of the failure, null when there is none.
template <class Real>
const char* RandomNumberGeneratorAdvanced<Real>::prepare_density(const Vector<Real>& mean,
                                                                 const MatrixSymmetric<Real>& S,
                                                                 int dim, Matrix<Real>& dense,
                                                                 double& height) {
    if (mean.vs() != dim) return "1";
    if (S.mh() != dim || !holds_its_elements(&S)) return "2";
    S.e_Export(&dense);
    if (dense.mh() != dim) return text::kOutOfMemory;
    this->zet_xm();
    Real determinant = 0;
    if (!this->factorization_.d_Determinant(&dense, determinant)) {
        this->adopt_failure_of(this->factorization_);
        return "111";
    }
    if (!(determinant > Real(0))) return "det=0";
    height = gaussian_height(dim, static_cast<double>(determinant));
    return nullptr;
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::cpgm_Compute_Pdf_of_Gaussian_Multivariate(
    const Vector<Real>& x, const Vector<Real>& mean, const MatrixSymmetric<Real>& S, Real& p) {
    const CNqClass::CallScope scope(this);
    Matrix<Real> dense;
    double height = 0;
    if (const char* detail = prepare_density(mean, S, x.vs(), dense, height); detail != nullptr)
        return this->fail(detail, kGaussian);
    Real value = 0;
    const View<const Real> point(x.p(), 1, x.vs(), x.vs());
    if (!quadratic_forms(point, mean.p(), view_of(&std::as_const(dense)), &value))
        return this->fail(text::kOutOfMemory, kGaussian);
    gaussian_values(1, height, 1.0 / -0.5, &value);
    p = value;
    return true;
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::cpgm_Compute_Pdf_of_Gaussian_Multivariate(
    const Matrix<Real>& samples, bool by_column, const Vector<Real>& mean,
    const MatrixSymmetric<Real>& S, Vector<Real>& p) {
    const CNqClass::CallScope scope(this);
    const View<const Real> rows = samples_of(samples, by_column);
    Matrix<Real> dense;
    double height = 0;
    if (const char* detail = prepare_density(mean, S, static_cast<int>(rows.width), dense, height);
        detail != nullptr)
        return this->fail(detail, kGaussian);
    Workspace<Real> values(rows.height);
    if (!values || !quadratic_forms(rows, mean.p(), view_of(&std::as_const(dense)), values.data()))
        return this->fail(text::kOutOfMemory, kGaussian);
    gaussian_values(rows.height, height, -0.5, values.data());
    return deliver(values.data(), rows.height, &p) ? true
                                                   : this->fail(text::kCannotSize, kGaussian);
}

template <class Real>
bool RandomNumberGeneratorAdvanced<
    Real>::epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(const Vector<Real>& x,
                                                                       const Matrix<Real>& samples,
                                                                       bool by_column, int k,
                                                                       Real& p,
                                                                       Vector<Real>* distances) {
    const CNqClass::CallScope scope(this);
    const int d = x.vs();  // x may be the vector that keeps the distances
    Vector<Real> temporary;
    Vector<Real>& all = distances != nullptr ? *distances : temporary;
    if (!csd_Compute_Set_of_Distances(x, samples, by_column, all)) return this->fail("1", kNearest);
    const int n = all.vs();
    if (k < 1 || k > n) return this->fail("2", kNearest);
    CNqRanker ranker;
    this->zet_x(&ranker);
    Real nearest = 0;
    if (!ranker.fklbp(all, 0, n, n - k, nearest, nullptr, nullptr)) {
        this->adopt_failure_of(ranker);
        return this->fail("3", kNearest);
    }
    // To the ranker a NaN is smaller than every distance.
    if (has_nan(Size(n), std::as_const(all).p())) nearest = std::numeric_limits<Real>::quiet_NaN();
    p = nearest_neighbour_density<Real>(k, n, ball_volume(d, nearest, log_gamma_of_ball(d)));
    return true;
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::
    eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(const Vector<Real>& x,
                                                                    const Matrix<Real>& samples,
                                                                    bool by_column, Real h,
                                                                    Real& p) {
    const View<const Real> rows = samples_of(samples, by_column);
    if (x.vs() != rows.width) return this->fail(kMismatch, kParzen);
    const Size d = rows.width;
    p = parzen_density(x.p(), rows, h, log_gamma_of_ball(d));
    return true;
}

// estimate(x, p) for every query, in order.
template <class Real>
template <class Estimate>
bool RandomNumberGeneratorAdvanced<Real>::for_each_query(const Matrix<Real>& queries,
                                                         bool by_column, Vector<Real>& p,
                                                         const char* method,
                                                         const Estimate& estimate) {
    const CNqClass::CallScope scope(this);
    const View<const Real> rows = samples_of(queries, by_column);
    Vector<Real> x;
    if (!size_to(static_cast<int>(rows.height), &p) || !size_to(static_cast<int>(rows.width), &x))
        return this->fail(text::kCannotSize, method);
    for (Size i = 0; i < rows.height; ++i) {
        kernel::copy(rows.row(i), view_of(&x));
        if (!estimate(std::as_const(x), p[static_cast<int>(i)]))
            return this->fail(by_column ? "111" : "222", method);
    }
    return true;
}

template <class Real>
bool RandomNumberGeneratorAdvanced<
    Real>::epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(const Matrix<Real>& queries,
                                                                       const Matrix<Real>& samples,
                                                                       bool by_column, int k,
                                                                       Vector<Real>& p) {
    Vector<Real> distances;
    return for_each_query(queries, by_column, p, kNearest, [&](const Vector<Real>& x, Real& out) {
        return epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(x, samples, by_column, k,
                                                                           out, &distances);
    });
}

template <class Real>
bool RandomNumberGeneratorAdvanced<Real>::
    eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(const Matrix<Real>& queries,
                                                                    const Matrix<Real>& samples,
                                                                    bool by_column, Real h,
                                                                    Vector<Real>& p) {
    return for_each_query(queries, by_column, p, kParzen, [&](const Vector<Real>& x, Real& out) {
        return eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(x, samples,
                                                                               by_column, h, out);
    });
}

template class RandomNumberGeneratorAdvanced<double>;
template class RandomNumberGeneratorAdvanced<float>;

}  // namespace nequar
