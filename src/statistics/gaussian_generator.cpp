#include "nequar_algebra/statistics/gaussian_generator.h"

#include <algorithm>
#include <cmath>

#include "algebra/temporary.h"
#include "core/twin_name.h"
#include "core/workspace.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "statistics/algorithm/covariance_root.h"
#include "statistics/algorithm/gaussian_samples.h"
#include "statistics/algorithm/sample_moments.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kWhiteNumbers =
    "gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance";
constexpr const char* kWhiteVectors =
    "gvg_wzu_Generate_random_Vectors_Gaussian_White_Zero_mean_Unit_variance";
constexpr const char* kReplaceNumbers = "rng_Replace_random_Numbers_Gaussian";
constexpr const char* kNumbers = "gng_Generate_random_Numbers_Gaussian";
constexpr const char* kAppendNumbers = "ang_Append_random_Numbers_Gaussian";
constexpr const char* kExtractNumbers = "evn_Extract_Valid_random_Numbers";
constexpr const char* kTransform = "ctl_Compute_Transform_Linear";
constexpr const char* kReplaceVectors = "rvg_Replace_random_Vectors_Gaussian";
constexpr const char* kVectors = "gvg_Generate_random_Vectors_Gaussian";
constexpr const char* kAppendVectors = "avg_Append_random_Vectors_Gaussian";
constexpr const char* kExtractVectors = "evv_Extract_Valid_random_Vectors";

constexpr Size kPanel = 512;  // vectors that are made at a time

constexpr const char* kBadRange = "bad size or indices";
constexpr const char* kMismatch = "mismatch between mean and covariance";
constexpr const char* kShortMask = "size of <CNqVectorBool> is too small";
constexpr const char* kShortExtractMask =
    "size of CNqVectorBool is less than in_last_index_of_range_plus_1";

const bool* entries_of(const CNqVectorBool* mask) {
    return mask != nullptr ? mask->p() : nullptr;
}

// A range as rvg and its kin take it.
bool is_range(int n, int begin, int end) {
    return begin >= 0 && begin < end && end <= n;
}

}  // namespace

template <class Real>
GaussianGenerator<Real>::GaussianGenerator() = default;
template <class Real>
GaussianGenerator<Real>::~GaussianGenerator() = default;

template <class Real>
void GaussianGenerator<Real>::zet_xm_Error_Trace_mode_Transfer_to_its_Members() {
    this->zet_x(&algebra_);
    this->zet_x(&factorization_);
}

// Reseeds from the clock.
template <class Real>
void GaussianGenerator<Real>::generate(std::ptrdiff_t n, Real* out) {
    this->sst_Set_Seed_from_Time();
    auto state = static_cast<std::uint32_t>(this->gs_Get_Seed());
    fill_gaussian(n, state, out);
    this->ss_Set_Seed(static_cast<int>(state));
}

// ---- numbers ------------------------------------------------------------------------------------

template <class Real>
bool GaussianGenerator<
    Real>::gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance(int n,
                                                                                  Real* out) {
    if (n <= 0) return this->fail("array size <= 0", kWhiteNumbers);
    generate(n, out);
    return true;
}

template <class Real>
bool GaussianGenerator<Real>::can_replace(int n, int begin, int end, const char* method) const {
    return is_range(n, begin, end) || this->fail(kBadRange, method);
}

template <class Real>
bool GaussianGenerator<Real>::rng_Replace_random_Numbers_Gaussian(Real mean, Real variance, int n,
                                                                  Real* a, int begin, int end,
                                                                  const bool* mask, int* replaced) {
    if (!can_replace(n, begin, end, kReplaceNumbers)) return false;
    if (!(variance >= Real(0))) return this->fail("negative variance", kReplaceNumbers);
    this->sst_Set_Seed_from_Time();
    auto state = static_cast<std::uint32_t>(this->gs_Get_Seed());
    const Size count = replace_gaussian(mean, variance, Selection{begin, end, mask}, state, a);
    this->ss_Set_Seed(static_cast<int>(state));
    if (replaced != nullptr) *replaced = static_cast<int>(count);
    return true;
}

template <class Real>
bool GaussianGenerator<Real>::gng_Generate_random_Numbers_Gaussian(Real mean, Real variance, int n,
                                                                   Vector<Real>& out) {
    const CNqClass::CallScope scope(this);
    if (out.c_Create(std::max(n, 1)) == nullptr) return this->fail(text::kCannotSize, kNumbers);
    return gng_Generate_random_Numbers_Gaussian(mean, variance, n, out.p());
}

template <class Real>
bool GaussianGenerator<Real>::gng_Generate_random_Numbers_Gaussian(Real mean, Real variance, int n,
                                                                   Real* out) {
    const CNqClass::CallScope scope(this);
    if (rng_Replace_random_Numbers_Gaussian(mean, variance, n, out, 0, n, nullptr, nullptr))
        return true;
    this->zsm(CNqString::literal(kNumbers));
    return false;
}

template <class Real>
bool GaussianGenerator<Real>::ang_Append_random_Numbers_Gaussian(Real mean, Real variance, int n,
                                                                 GrowableVector<Real>& x) {
    const CNqClass::CallScope scope(this);
    Vector<Real> numbers;
    if (!gng_Generate_random_Numbers_Gaussian(mean, variance, n, numbers))
        return this->fail("gng", kAppendNumbers);
    if (x.ap_Append(&numbers, n)) return true;
    this->adopt_failure_of(x);
    return this->fail(text::kOutOfMemory, kAppendNumbers);
}

template <class Real>
bool GaussianGenerator<Real>::evn_Extract_Valid_random_Numbers(const Vector<Real>& in, int begin,
                                                               int end, const CNqVectorBool* mask,
                                                               GrowableVector<Real>& out) {
    if (mask != nullptr && mask->vs() < end) return this->fail(kShortExtractMask, kExtractNumbers);
    return evn_Extract_Valid_random_Numbers(in.vs(), in.p(), begin, end, entries_of(mask), out);
}

// Gathered first: the numbers may lie in the very container that grows.
template <class Real>
bool GaussianGenerator<Real>::evn_Extract_Valid_random_Numbers(int n, const Real* in, int begin,
                                                               int end, const bool* mask,
                                                               GrowableVector<Real>& out) {
    if (!can_replace(n, begin, end, kExtractNumbers)) return false;
    const Selection chosen{begin, end, mask};
    const Size count = chosen.count();
    Workspace<Real> numbers(count);
    if (!numbers) return this->fail(text::kOutOfMemory, kExtractNumbers);
    gather_numbers(in, chosen, numbers.data());
    if (out.ap_Append(numbers.data(), static_cast<int>(count))) return true;
    this->adopt_failure_of(out);
    return this->fail(text::kOutOfMemory, kExtractNumbers);
}

// ---- vectors ------------------------------------------------------------------------------------

template <class Real>
bool GaussianGenerator<
    Real>::gvg_wzu_Generate_random_Vectors_Gaussian_White_Zero_mean_Unit_variance(int dim,
                                                                                  int count,
                                                                                  bool by_column,
                                                                                  Matrix<Real>& M) {
    if (dim <= 0 || count < 1) return this->fail("bad dimension or numbers", kWhiteVectors);
    if (!(by_column ? M.c_Create(dim, count) : M.c_Create(count, dim))) {
        this->adopt_failure_of(M);
        return this->fail(text::kCannotSize, kWhiteVectors);
    }
    generate(element_count(&M), M.p()[0]);  // more than an int may count
    return true;
}

template <class Real>
bool GaussianGenerator<Real>::ctl_Compute_Transform_Linear(const MatrixSymmetric<Real>& cov,
                                                           Matrix<Real>& T) {
    const CNqClass::CallScope scope(this);
    zet_xm();
    MatrixDiagonal<Real> eigenvalues;
    if (!factorization_.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(&cov, &T,
                                                                                   &eigenvalues)) {
        this->adopt_failure_of(factorization_);
        return this->fail("Eigen Analysis Error", kTransform);
    }
    if (T.mh() != T.mw() || T.mh() != eigenvalues.vs())
        return this->fail("Strange !!!", kTransform);
    if (!scale_by_roots(eigenvalues.p(), view_of(&T)))
        return this->fail("Not valid covariance matrix", kTransform);
    return true;
}

template <class Real>
bool GaussianGenerator<Real>::rvg_Replace_random_Vectors_Gaussian(
    const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, bool by_column, Matrix<Real>& M,
    int begin, int end, const CNqVectorBool* mask, int* replaced) {
    const CNqClass::CallScope scope(this);
    const int dim = by_column ? M.mh() : M.mw();
    if (cov.mh() != dim || mean.vs() != dim) return this->fail(kMismatch, kReplaceVectors);
    if (!can_replace(by_column ? M.mw() : M.mh(), begin, end, kReplaceVectors)) return false;
    if (mask != nullptr && mask->vs() < end) return this->fail(kShortMask, kReplaceVectors);
    const Selection chosen{begin, end, entries_of(mask)};
    const Size count = chosen.count();
    if (replaced != nullptr) *replaced = static_cast<int>(count);
    Matrix<Real> T;
    if (!ctl_Compute_Transform_Linear(cov, T)) return this->fail("ctl", kReplaceVectors);
    if (count == 0) return true;

    // Vectors as columns, however M keeps them: M = T Z.
    const View<Real> vectors = by_column ? view_of(&M) : view_of(&M).transposed();
    const TemporaryMatrix<Real> product(by_column ? dim : kPanel, by_column ? kPanel : dim);
    const TemporaryMatrix<Real> white(dim, kPanel);
    if (!white || !product) return this->fail(text::kOutOfMemory, kReplaceVectors);
    const View<Real> made = by_column ? product.view() : product.view().transposed();
    this->sst_Set_Seed_from_Time();
    const auto state = static_cast<std::uint32_t>(this->gs_Get_Seed());
    Size done = 0;
    Selection rest = chosen;
    while (done < count) {
        const Size width = std::min(kPanel, count - done);
        const Selection part = rest.take(width);
        const View<Real> z = white.view().columns(0, width);
        const bool is_whole = part.end - part.begin == width;
        const View<Real> target =
            is_whole ? vectors.columns(part.begin, width) : made.columns(0, width);
        fill_gaussian_panel(done, count, state, z);
        kernel::gemm(Real(1), reading(view_of(&T)), reading(z), kernel::Update::set, target);
        if (!is_whole) scatter_columns(reading(target), part, vectors);
        done += width;
    }
    this->ss_Set_Seed(static_cast<int>(
        state_after(static_cast<std::uint64_t>(dim) * static_cast<std::uint64_t>(count), state)));
    return true;
}

template <class Real>
bool GaussianGenerator<Real>::gvg_Generate_random_Vectors_Gaussian(const Vector<Real>& mean,
                                                                   const MatrixSymmetric<Real>& cov,
                                                                   int count, bool by_column,
                                                                   Matrix<Real>& M) {
    const CNqClass::CallScope scope(this);
    const int dim = mean.vs();
    const int room = std::max(count, 1);
    if (!(by_column ? M.c_Create(dim, room) : M.c_Create(room, dim))) {
        this->adopt_failure_of(M);
        return this->fail(text::kCannotSize, kVectors);
    }
    if (rvg_Replace_random_Vectors_Gaussian(mean, cov, by_column, M, 0, count, nullptr, nullptr))
        return true;
    this->zsm(CNqString::literal(kVectors));
    return false;
}

// Appends vectors that lie in `vectors` as the container keeps its own.
template <class Real>
template <Growth growth>
bool GaussianGenerator<Real>::append_to(const Matrix<Real>& vectors, int count,
                                        GrowableMatrix<Real, growth>& out, const char* method) {
    const int dim = growth == Growth::columns ? vectors.mh() : vectors.mw();
    if (out.nee() > 0 && out.vs() != dim) return this->fail("dimension mismatch", method);
    if ((out.nee() > 0 || out.vs() == dim || out.in_Initialize(dim, count)) &&
        out.ap_Append(&vectors, count))
        return true;
    this->adopt_failure_of(out);
    return this->fail(text::kOutOfMemory, method);
}

template <class Real>
template <Growth growth>
bool GaussianGenerator<Real>::append_vectors(const Vector<Real>& mean,
                                             const MatrixSymmetric<Real>& cov, int count,
                                             GrowableMatrix<Real, growth>& out) {
    const CNqClass::CallScope scope(this);
    if (mean.vs() != cov.mh()) return this->fail(kMismatch, kAppendVectors);
    Matrix<Real> vectors;
    if (!gvg_Generate_random_Vectors_Gaussian(mean, cov, count, growth == Growth::columns, vectors))
        return this->fail("gvg", kAppendVectors);
    return append_to(vectors, count, out, kAppendVectors);
}

template <class Real>
template <Growth growth>
bool GaussianGenerator<Real>::extract_vectors(const GrowableMatrix<Real, growth>& in, int begin,
                                              int end, const CNqVectorBool* mask,
                                              GrowableMatrix<Real, growth>& out) {
    if (mask != nullptr && mask->vs() < end) return this->fail(kShortExtractMask, kExtractVectors);
    if (!can_replace(in.nee(), begin, end, kExtractVectors)) return false;
    const Selection chosen{begin, end, entries_of(mask)};
    const int count = static_cast<int>(chosen.count());
    const Matrix<Real>* stored = nullptr;
    in.z_gii(&stored);
    constexpr bool by_column = growth == Growth::columns;
    Matrix<Real> vectors;
    if (!(by_column ? vectors.c_Create(in.vs(), count) : vectors.c_Create(count, in.vs())))
        return this->fail(text::kOutOfMemory, kExtractVectors);
    if (by_column)
        gather_columns(view_of(stored), chosen, view_of(&vectors));
    else
        gather_columns(view_of(stored).transposed(), chosen, view_of(&vectors).transposed());
    return append_to(vectors, count, out, kExtractVectors);
}

template <class Real>
bool GaussianGenerator<Real>::avg_Append_random_Vectors_Gaussian(
    const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, int count,
    GrowableMatrix<Real, Growth::columns>& out) {
    return append_vectors(mean, cov, count, out);
}
template <class Real>
bool GaussianGenerator<Real>::avg_Append_random_Vectors_Gaussian(
    const Vector<Real>& mean, const MatrixSymmetric<Real>& cov, int count,
    GrowableMatrix<Real, Growth::rows>& out) {
    return append_vectors(mean, cov, count, out);
}
template <class Real>
bool GaussianGenerator<Real>::evv_Extract_Valid_random_Vectors(
    const GrowableMatrix<Real, Growth::columns>& in, int begin, int end, const CNqVectorBool* mask,
    GrowableMatrix<Real, Growth::columns>& out) {
    return extract_vectors(in, begin, end, mask, out);
}
template <class Real>
bool GaussianGenerator<Real>::evv_Extract_Valid_random_Vectors(
    const GrowableMatrix<Real, Growth::rows>& in, int begin, int end, const CNqVectorBool* mask,
    GrowableMatrix<Real, Growth::rows>& out) {
    return extract_vectors(in, begin, end, mask, out);
}

template class GaussianGenerator<double>;
template class GaussianGenerator<float>;

}  // namespace nequar
