#include "nequar_algebra/statistics/principal_components.h"

#include <algorithm>
#include <cstdint>

#include "algebra/temporary.h"
#include "core/twin_name.h"
#include "core/workspace.h"
#include "factorization/algorithm/symmetric_eigen.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "nequar_algebra/frame/message.h"
#include "statistics/algorithm/convert.h"
#include "statistics/algorithm/principal_components.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kAnalyse = "cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix";
constexpr const char* kAnalyseRaw =
    "u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix";
constexpr const char* kInput = "inv_INput_a_Vector <CNqVector>";
constexpr const char* kInformation = "gi_Get_Information";
constexpr const char* kReconstruct = "dar_Do_Analysis_and_Reconstruction";

constexpr int kLargestForRotations = 9;

template <class From, class To>
bool convert_vector(const Vector<From>& from, Vector<To>& to) {
    if (to.c_Create(from.vs()) == nullptr) return false;
    convert(Size(from.vs()), from.p(), to.p());
    return true;
}

template <class Real>
void give(Real value, Real* out) {
    if (out != nullptr) *out = value;
}

}  // namespace

template <class Real>
PrincipalComponents<Real>::PrincipalComponents() {
    this->set_class_name(twin_name<Real>("CNqPrPca", "CNqPrPcaFloat"));
}

template <class Real>
PrincipalComponents<Real>::~PrincipalComponents() = default;

template <class Real>
void PrincipalComponents<Real>::zet_xm_Error_Trace_mode_Transfer_to_its_Members() {
    this->zet_x(&samples_, &mean_, &components_);
    this->zet_x(&eigenvalues_);
    this->zet_x(&factorization_, &matrix_algebra_, &vector_algebra_);
}

template <class Real>
bool PrincipalComponents<Real>::report_failure(const char* detail, const char* method) const {
    this->report(detail, method);
    return false;
}

template <class Real>
bool PrincipalComponents<Real>::c_Create(int N, int d, Real ratio, Real residual_share) {
    valid_ = false;
    if (!(residual_share > Real(0) && residual_share < Real(1)))
        return report_failure("1", "c_Create");
    if (!(ratio > Real(0) && ratio <= Real(0.1))) return report_failure("2", "c_Create");
    zet_xm();
    if (N < 1 || d < 1 || !samples_.c_Create(N, d, Real(0))) return report_failure("3", "c_Create");
    ratio_ = ratio;
    residual_share_ = residual_share;
    return true;
}

template <class Real>
bool PrincipalComponents<Real>::inv_INput_a_Vector(const Vector<Real>& x, int* slot) {
    valid_ = false;
    zet_xm();
    if (samples_.inv_INput_a_Vector(x, slot)) return true;
    this->adopt_failure_of(samples_);
    return report_failure("1", kInput);
}

template <class Real>
bool PrincipalComponents<Real>::inv_INput_a_Vector(const CNqVectorInt& x, int* slot) {
    valid_ = false;
    Vector<Real> converted;
    if (!convert_vector(x, converted)) return report_failure(text::kOutOfMemory, kInput);
    return inv_INput_a_Vector(converted, slot);
}

// ---- the analysis -------------------------------------------------------------------------------

// Rotations; but they cost ten times as much as QR steps, which large matrices therefore take. From
// the upper triangle of G. Answers the detail of the failure, null when there is none.
template <class Real>
const char* PrincipalComponents<Real>::decompose(const View<Real>& gram, Matrix<Real>& vectors,
                                                 MatrixDiagonal<Real>& values) {
    const int order = static_cast<int>(gram.height);
    if (order <= kLargestForRotations) {
        MatrixSymmetric<Real> packed;
        if (!size_packed(&packed, order, order)) return text::kCannotSize;
        pack_lower(reading(gram).transposed(), packed.p());
        if (factorization_.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
                &packed, &vectors, &values))
            return nullptr;
        this->adopt_failure_of(factorization_);
        return "1";
    }
    values.c_Create(order, order);
    if (vectors.c_Create(order, order) == nullptr || values.vs() != order) return text::kCannotSize;
    const View<Real> v = view_of(&vectors);
    std::int64_t steps = 0;
    return eigen_by_qr_steps(gram, values.p(), &v, sufficient_qr_steps(gram.height), steps)
               ? nullptr
               : text::kOutOfMemory;
}

// Answers the detail of the failure, null when there is none. The outputs are written after the
// last look at the samples.
template <class Real>
const char* PrincipalComponents<Real>::analyse(const View<const Real>& samples, Real ratio,
                                               Vector<Real>& mean,
                                               GrowableVector<Real>& eigenvalues, Real& total,
                                               VectorSet<Real>& components) {
    const Size n = samples.height;
    const Size d = samples.width;
    if (n < 1 || d < 1) return "bad parameter(s)";
    const Size K = std::min(n, d);
    const TemporaryMatrix<Real> storage(samples.column_stride == 1 ? n : d,
                                        samples.column_stride == 1 ? d : n);
    const TemporaryMatrix<Real> gram(K, K);
    Workspace<Real> mean_found(d);
    if (!storage || !gram || !mean_found) return text::kOutOfMemory;
    const View<Real> deviations =
        samples.column_stride == 1 ? storage.view() : storage.view().transposed();
    if (!gram_of_deviations(samples, mean_found.data(), deviations, gram.view()))
        return text::kOutOfMemory;

    zet_xm();
    Matrix<Real> vectors;
    MatrixDiagonal<Real> values;
    if (const char* detail = decompose(gram.view(), vectors, values); detail != nullptr)
        return detail;
    if (values.vs() != K || vectors.mh() != K || vectors.mw() != K) return "111";

    const KeptEigenvalues<Real> kept = keep_eigenvalues(K, values.p(), ratio);
    if (kept.fault == EigenvalueFault::largest_is_negative) return "max eigen-value <0";
    if (kept.fault == EigenvalueFault::one_is_negative) return "eigen-value < 0";
    const bool few_samples = n <= d;
    const TemporaryMatrix<Real> directions(few_samples ? kept.count : 0, d);
    if (!directions) return text::kOutOfMemory;
    if (few_samples)
        components_of_samples(kept.count, values.p(), view_of(&vectors), reading(deviations),
                              directions.view());

    if (mean.c_Create(static_cast<int>(d)) == nullptr) return text::kCannotSize;
    std::copy_n(mean_found.data(), d, mean.p());
    if (!eigenvalues.in_Initialize(static_cast<int>(kept.count)) ||
        !eigenvalues.ap_Append(&values, static_cast<int>(kept.count)) ||
        components.c_Create(static_cast<int>(K)) == nullptr)
        return text::kCannotSize;
    for (Size k = 0; k < K; ++k) {
        Vector<Real>* const component = components.gpe(static_cast<int>(k));
        if (component->c_Create(static_cast<int>(d)) == nullptr) return text::kCannotSize;
        if (!few_samples)
            kernel::copy(reading(view_of(&vectors).column(k)), view_of(component));
        else if (k < kept.count)
            kernel::copy(reading(directions.view().row(k)), view_of(component));
        else
            kernel::fill(d, Real(0), component->p());
    }
    total = kept.total;
    return nullptr;
}

template <class Real>
bool PrincipalComponents<Real>::u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
    const Matrix<Real>& X, Real ratio, Vector<Real>& mean, GrowableVector<Real>& eigenvalues,
    Real& total, VectorSet<Real>& components) {
    const CNqClass::CallScope scope(this);
    if (!(ratio > Real(0) && ratio <= Real(0.1)))
        return this->fail("0 < RATIO <= 0.1", kAnalyseRaw);
    const char* detail =
        analyse(view_of(&X).transposed(), ratio, mean, eigenvalues, total, components);
    return detail == nullptr ? true : this->fail(detail, kAnalyseRaw);
}

template <class Real>
bool PrincipalComponents<Real>::u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
    const VectorQueue<Real>& samples, Real ratio, Vector<Real>& mean,
    GrowableVector<Real>& eigenvalues, Real& total, VectorSet<Real>& components) {
    const CNqClass::CallScope scope(this);
    if (!(ratio > Real(0) && ratio <= Real(0.1)))
        return this->fail("0 < RATIO <= 0.1", kAnalyseRaw);
    const TemporaryMatrix<Real> gathered(samples.ne(), samples.vs());
    if (!gathered) return this->fail(text::kOutOfMemory, kAnalyseRaw);
    for (int i = 0; i < samples.ne(); ++i)
        kernel::copy(view_of(samples.gpe(i)), gathered.view().row(i));
    const char* detail =
        analyse(reading(gathered.view()), ratio, mean, eigenvalues, total, components);
    return detail == nullptr ? true : this->fail(detail, kAnalyseRaw);
}

template <class Real>
bool PrincipalComponents<Real>::cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix() {
    const CNqClass::CallScope scope(this);
    valid_ = false;
    Real total = 0;
    if (!u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
            samples_, ratio_, mean_, eigenvalues_, total, components_))
        return report_failure("1", kAnalyse);
    int N = 0;
    int d = 0;
    gp_Get_Parameters(&N, &d, nullptr, nullptr);
    const int kept = eigenvalues_.nee();
    if (d <= N && kept > d) return report_failure("3", kAnalyse);
    if (d > N && kept > N) return report_failure("2", kAnalyse);
    number_of_components_ = 0;
    error_ = Real(0);
    if (total != Real(0)) {
        const auto explained =
            explained_share(Size(kept), eigenvalues_.p(), total, residual_share_);
        number_of_components_ = static_cast<int>(explained.components);
        error_ = Real(1) - explained.share;
    }
    valid_ = true;
    return true;
}

// ---- what was found -----------------------------------------------------------------------------

template <class Real>
bool PrincipalComponents<Real>::is_valid(const char* method) const {
    return valid_ || report_failure("Not valid", method);
}

template <class Real>
bool PrincipalComponents<Real>::has_component(int k, const char* method) const {
    if (!is_valid(method)) return false;
    return (k >= 0 && k < eigenvalues_.nee()) || report_failure("Void index", method);
}

template <class Real>
int PrincipalComponents<Real>::nbev_NumBer_of_Eigen_Vectors() const {
    return is_valid("nbev_NumBer_of_Eigen_Vectors") ? eigenvalues_.nee() : 0;
}

template <class Real>
int PrincipalComponents<Real>::nbpc_NumBer_of_Principal_Components() const {
    return is_valid("nbpc_NumBer_of_Principal_Components") ? number_of_components_ : 0;
}

template <class Real>
Real PrincipalComponents<Real>::rre_Relative_Reconstruction_Error() const {
    return is_valid("rre_Relative_Reconstruction_Error") ? error_ : Real(0);
}

template <class Real>
const Vector<Real>* PrincipalComponents<Real>::ppc_Pointer_of_Principal_Component(int k) const {
    return has_component(k, "ppc_Pointer_of_Principal_Component") ? components_.gpe(k) : nullptr;
}

template <class Real>
Vector<Real>* PrincipalComponents<Real>::ppc_Pointer_of_Principal_Component(int k) {
    return has_component(k, "ppc_Pointer_of_Principal_Component") ? components_.gpe(k) : nullptr;
}

template <class Real>
bool PrincipalComponents<Real>::gipc_Get_Information_about_a_Principal_Component(
    int k, Vector<Real>* component, Real* eigenvalue) const {
    constexpr const char* kMethod = "gipc_Get_Information_about_a_Principal_Component";
    if (!has_component(k, kMethod)) return false;
    if (component != nullptr && component->cp_Copy(components_.gpe(k)) == nullptr)
        return report_failure(text::kCannotSize, kMethod);
    give(eigenvalues_[k], eigenvalue);
    return true;
}

template <class Real>
bool PrincipalComponents<Real>::gi_Get_Information(Vector<Real>* mean, int* eigen_vectors,
                                                   int* principal_components,
                                                   GrowableVector<Real>* eigenvalues,
                                                   VectorSet<Real>* components,
                                                   Matrix<Real>* matrix, Real* error) const {
    if (!is_valid(kInformation)) return false;
    const int kept = eigenvalues_.nee();
    bool is_sized = mean == nullptr || mean->cp_Copy(&mean_) != nullptr;
    is_sized = is_sized && (eigenvalues == nullptr || eigenvalues->cp_Copy(&eigenvalues_));
    is_sized = is_sized && (components == nullptr || kept == 0 || components->c_Create(kept));
    is_sized = is_sized && (matrix == nullptr || matrix->c_Create(mean_.vs(), kept) != nullptr);
    if (components != nullptr && kept == 0) components->c_Create(0);
    for (int k = 0; is_sized && k < kept; ++k) {
        const Vector<Real>* const component = components_.gpe(k);
        is_sized = components == nullptr || components->gpe(k)->cp_Copy(component) != nullptr;
        if (matrix != nullptr) kernel::copy(view_of(component), view_of(matrix).column(k));
    }
    if (!is_sized) return report_failure(text::kCannotSize, kInformation);
    give(kept, eigen_vectors);
    give(number_of_components_, principal_components);
    give(error_, error);
    return true;
}

template <class Real>
void PrincipalComponents<Real>::gp_Get_Parameters(int* N, int* d, Real* ratio,
                                                  Real* residual_share) const {
    give(samples_.ne(), N);
    give(samples_.vs(), d);
    give(ratio_, ratio);
    give(residual_share_, residual_share);
}

template <class Real>
bool PrincipalComponents<Real>::dar_Do_Analysis_and_Reconstruction(
    const Vector<Real>& x, int& count, Vector<Real>* coefficients, Vector<Real>* reconstruction,
    Real* deviation_squared, Real* residual_squared, Real* weighted_sum,
    Real* relative_residual) const {
    if (!is_valid(kReconstruct)) return false;
    const int d = mean_.vs();
    const int m = count < 0 ? number_of_components_ : count;
    if (x.vs() != d) return report_failure("1", kReconstruct);
    for (int k = 0; k < eigenvalues_.nee(); ++k)
        if (components_.gpe(k)->vs() != d) {
            Nq_Printf("dim= %d, %d", d, components_.gpe(k)->vs());
            return report_failure("2", kReconstruct);
        }
    if (m > eigenvalues_.nee()) return report_failure("3", kReconstruct);
    if (m > components_.ne()) return report_failure("4", kReconstruct);
    Workspace<Real> work(2 * Size(d) + m);
    if (!work || (coefficients != nullptr && coefficients == reconstruction))
        return report_failure("5", kReconstruct);
    Real* const deviation = work.data();
    Real* const rebuilt = deviation + d;
    Real* const c = rebuilt + d;
    kernel::subtract(Size(d), x.p(), mean_.p(), deviation);
    std::copy_n(mean_.p(), d, rebuilt);
    for (int k = 0; k < m; ++k)
        c[k] = add_component(Size(d), components_.gpe(k)->p(), deviation, rebuilt);
    const Real whole = sum_of_squares(Size(d), deviation);
    kernel::subtract<Real>(Size(d), x.p(), rebuilt, deviation);
    const Real rest = sum_of_squares(Size(d), deviation);

    if ((coefficients != nullptr && coefficients->c_Create(m) == nullptr) ||
        (reconstruction != nullptr && reconstruction->c_Create(d) == nullptr))
        return report_failure("5", kReconstruct);
    if (coefficients != nullptr) std::copy_n(c, m, coefficients->p());
    if (reconstruction != nullptr) std::copy_n(rebuilt, d, reconstruction->p());
    count = m;
    give(whole, deviation_squared);
    give(rest, residual_squared);
    give(weighted_sum_of_squares(Size(m), c, eigenvalues_.p()), weighted_sum);
    give(relative_square(rest, whole), relative_residual);
    return true;
}

// ---- conversions --------------------------------------------------------------------------------

#define NEQUAR_DEFINE_CONVERSION(From, To)                                                \
    template <class Real>                                                                 \
    bool PrincipalComponents<Real>::u_cv_Convert_Vector(const From& from, To& to) const { \
        return convert_vector(from, to) || report_failure("1", "u_cv_Convert_Vector");    \
    }
NEQUAR_DEFINE_CONVERSION(Vector<Real>, CNqVectorChar)
NEQUAR_DEFINE_CONVERSION(Vector<Real>, Vector<OtherReal>)
NEQUAR_DEFINE_CONVERSION(Vector<Real>, CNqVectorInt)
NEQUAR_DEFINE_CONVERSION(Vector<Real>, CNqVectorShort)
NEQUAR_DEFINE_CONVERSION(Vector<Real>, CNqVectorUchar)
NEQUAR_DEFINE_CONVERSION(CNqVectorChar, Vector<Real>)
NEQUAR_DEFINE_CONVERSION(Vector<OtherReal>, Vector<Real>)
NEQUAR_DEFINE_CONVERSION(CNqVectorInt, Vector<Real>)
NEQUAR_DEFINE_CONVERSION(CNqVectorShort, Vector<Real>)
NEQUAR_DEFINE_CONVERSION(CNqVectorUchar, Vector<Real>)
#undef NEQUAR_DEFINE_CONVERSION

template class PrincipalComponents<double>;
template class PrincipalComponents<float>;

}  // namespace nequar
