#include "nequar_algebra/factorization/singular_value_factorization.h"

#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/bidiagonal.h"
#include "factorization/algorithm/golub_kahan.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/singular_values.h"
#include "factorization/outcome_text.h"
#include "kernel/kernel.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kBidiagonalizeInPlace = "u_bd_Bidiagonalize_matrix";
constexpr const char* kBidiagonalize = "bdm_Bidiagonalize_Matrix";
constexpr const char* kStepOnArrays = "u_sgk_SVD_step_by_Golub_Kahan";
constexpr const char* kStep = "sgk_SVD_step_by_Golub_Kahan";
constexpr const char* kClearOnArrays = "u_mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix";
constexpr const char* kClear = "mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix";
constexpr const char* kDecomposeToVector =
    "u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization";
constexpr const char* kDecompose = "dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization";
constexpr const char* kRank = "u_rsv_Rank_based_on_SVD";
constexpr const char* kReconstruct = "rsv_Reconstruct_matrix_via_Singular_Value_decomposition";

constexpr Size kMatrixBytes = 8192;  // workspaces of small matrices stay on the stack
constexpr int kUsualLimit = 100;

template <class Object>
bool is_one_object(const Object* a, const Object* b) {
    return a != nullptr && a == b;
}

template <class Real>
bool size_square(Matrix<Real>* q, int order) {
    return q == nullptr || q->c_Create(order, order) != nullptr;
}

// A view of an output that may be null.
template <class Real>
class Target {
public:
    explicit Target(Matrix<Real>* matrix) : is_wanted_(matrix != nullptr) {
        if (is_wanted_) view_ = view_of(matrix);
    }
    const View<Real>* get() const { return is_wanted_ ? &view_ : nullptr; }

private:
    bool is_wanted_;
    View<Real> view_;
};

template <class Real>
int rows_of(const Matrix<Real>* matrix) {
    return matrix != nullptr ? matrix->mh() : 0;
}
template <class Real>
Real** row_pointers(Matrix<Real>* matrix) {
    return matrix != nullptr ? matrix->p() : nullptr;
}

}  // namespace

template <class Real>
SingularValueFactorization<Real>::SingularValueFactorization() = default;
template <class Real>
SingularValueFactorization<Real>::~SingularValueFactorization() = default;

// ---- bidiagonalization -------------------------------------------------------------------------

// Records, when an element is not finite, which side's reflector meets it first. The reflectors of
// the left side see the first column before anything else; from there it spreads to all columns.
template <class Real>
bool SingularValueFactorization<Real>::find_largest(const View<const Real>& a, const char* detail,
                                                    const char* method, Real& largest) const {
    if (find_largest_finite(a, largest)) return true;
    Real of_column = 0;
    const bool is_left = a.width <= 2 || !find_largest_finite(a.columns(0, 1), of_column);
    this->fail(is_left ? "2" : "3", kBidiagonalizeInPlace);
    return detail == nullptr ? false : this->fail(detail, method);
}

// The checks are the callers'.
template <class Real>
bool SingularValueFactorization<Real>::bidiagonalize(const View<Real>& a, Matrix<Real>* u,
                                                     Matrix<Real>* v) const {
    Real largest = 0;
    if (!find_largest(reading(a), nullptr, nullptr, largest)) return false;
    if (!size_square(u, static_cast<int>(a.height)) || !size_square(v, static_cast<int>(a.width)))
        return this->fail(text::kCannotSize, kBidiagonalizeInPlace);
    const Outcome outcome =
        bidiagonalize_in_place(a, largest, Target<Real>(u).get(), Target<Real>(v).get());
    return outcome ? true : this->fail(text::kOutOfMemory, kBidiagonalizeInPlace);
}

template <class Real>
bool SingularValueFactorization<Real>::u_bd_Bidiagonalize_matrix(Matrix<Real>* a, Matrix<Real>* u,
                                                                 Matrix<Real>* v) const {
    if (is_one_object(u, v) || is_one_object(a, u) || is_one_object(a, v))
        return this->fail("1", kBidiagonalizeInPlace);
    if (a->mh() < a->mw()) return this->fail("height<width", kBidiagonalizeInPlace);
    return bidiagonalize(view_of(a), u, v);
}

template <class Real>
bool SingularValueFactorization<Real>::bdm_Bidiagonalize_Matrix(const Matrix<Real>* a,
                                                                Matrix<Real>* u, Matrix<Real>* b,
                                                                Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const Size m = a->mh();
    const Size n = a->mw();
    Workspace<Real, kMatrixBytes> work(m * n);
    if (!work) return this->fail(text::kOutOfMemory, kBidiagonalize);
    const View<Real> bidiagonal = matrix_view(work.data(), m, n);
    kernel::copy(view_of(a), bidiagonal);
    const char* detail = nullptr;
    if (is_one_object(u, v) || is_one_object(b, u) || is_one_object(b, v))
        detail = "1";
    else if (m < n)
        detail = "height<width";
    if (detail != nullptr) this->fail(detail, kBidiagonalizeInPlace);
    if (detail != nullptr || !bidiagonalize(bidiagonal, u, v))
        return this->fail("1", kBidiagonalize);
    if (b->c_Create(static_cast<int>(m), static_cast<int>(n)) == nullptr)
        return this->fail(text::kCannotSize, kBidiagonalize);
    kernel::copy(reading(bidiagonal), view_of(b));
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::bdm_Bidiagonalize_Matrix(const Matrix<Real>* a,
                                                                Matrix<Real>* u,
                                                                MatrixBand<Real>* b,
                                                                Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    const char* detail = is_one_object(u, v) ? "1" : m < n ? "height<width" : nullptr;
    if (detail != nullptr) {
        this->fail(detail, kBidiagonalizeInPlace);
        return this->fail("1", kBidiagonalize);
    }
    if (n == 0) return this->fail(text::kCannotSize, kBidiagonalize);
    Workspace<Real, kMatrixBytes> work(Size(m) * n);
    if (!work) return this->fail(text::kOutOfMemory, kBidiagonalize);
    const View<Real> bidiagonal = matrix_view(work.data(), m, n);
    kernel::copy(view_of(a), bidiagonal);
    if (!bidiagonalize(bidiagonal, u, v)) return this->fail("1", kBidiagonalize);
    const int above = n > 1 ? 1 : 0;
    b->c_Create(m, n, 0, above);
    if (b->mh() != m || b->mw() != n || b->vs() != (above == 1 ? 2 * n - 1 : 1))
        return this->fail(text::kCannotSize, kBidiagonalize);
    const View<Real> square = bidiagonal.rows(0, n);
    kernel::copy(reading(square.diagonal()), Strided<Real>(b->p(), n));
    if (above == 1)
        kernel::copy(reading(square.columns(1, n - 1).diagonal()),
                     Strided<Real>(b->p() + n, n - 1));
    return true;
}

// ---- steps -------------------------------------------------------------------------------------

// Records why not, if not.
template <class Real>
bool SingularValueFactorization<Real>::is_block(const char* method, int n, const Real* f, int p,
                                                int q_end, int smallest) const {
    if (p >= 0 && q_end <= n && Size(q_end) - p >= smallest && (p == 0 || f[p - 1] == 0) &&
        (q_end == n || f[q_end - 1] == 0))
        return true;
    CNqString detail;
    detail.fm_Format("n=%d, noo=%d,nzz=%d", n, p, q_end);
    this->set_error_detail(static_cast<CNqString&&>(detail));
    this->zsm(CNqString::literal(method));
    return false;
}

template <class Real>
bool SingularValueFactorization<Real>::fit_accumulators(const char* method, int n,
                                                        const Matrix<Real>* u,
                                                        const Matrix<Real>* v) const {
    const bool fit =
        !is_one_object(u, v) && (u == nullptr || u->mw() >= n) && (v == nullptr || v->mw() >= n);
    return fit ? true : this->fail("1", method);
}

template <class Real>
bool SingularValueFactorization<Real>::u_sgk_SVD_step_by_Golub_Kahan(int n, Real* d, Real* f, int p,
                                                                     int q_end, Real** u,
                                                                     Real** v) const {
    if (!is_block(kStepOnArrays, n, f, p, q_end, 2)) return false;
    Workspace<Rotation<Real>> rotations(2 * Size(n));
    if (!rotations) return this->fail(text::kOutOfMemory, kStepOnArrays);
    Rotation<Real>* const right = rotations.data();
    Rotation<Real>* const left = right + n;
    const BidiagonalBlock block{p, q_end};
    golub_kahan_step(d, f, block, right, left);
    rotate_columns(u, u != nullptr ? n : 0, block, left);
    rotate_columns(v, v != nullptr ? n : 0, block, right);
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::sgk_SVD_step_by_Golub_Kahan(Vector<Real>* d, Vector<Real>* f,
                                                                   int p, int q_end,
                                                                   Matrix<Real>* u,
                                                                   Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const int n = d->vs();
    if (f->vs() != n - 1 || d == f) return this->fail("1", kStep);
    if (!is_block(kStep, n, f->p(), p, q_end, 2) || !fit_accumulators(kStep, n, u, v)) return false;
    Workspace<Rotation<Real>> rotations(2 * Size(n));
    if (!rotations) return this->fail(text::kOutOfMemory, kStep);
    Rotation<Real>* const right = rotations.data();
    Rotation<Real>* const left = right + n;
    const BidiagonalBlock block{p, q_end};
    golub_kahan_step(d->p(), f->p(), block, right, left);
    rotate_columns(row_pointers(u), rows_of(u), block, left);
    rotate_columns(row_pointers(v), rows_of(v), block, right);
    return true;
}

// The checks are the callers'; false when memory cannot be had.
template <class Real>
bool SingularValueFactorization<Real>::clear_zeros(int n, int p, int q_end, Real* d, Real* f,
                                                   Real** u, int u_rows, Real** v,
                                                   int v_rows) const {
    Workspace<Rotation<Real>> rotations(n);
    if (!rotations) return false;
    const BidiagonalBlock block{p, q_end};
    for (;;) {
        const ZeroChase zero = find_zero(d, f, block, false);
        if (zero.kind == ZeroChase::none) return true;
        const ZeroChase chase = chase_zero(d, f, block, zero, rotations.data());
        if (chase.kind == ZeroChase::row)
            rotate_columns(u, u_rows, chase, rotations.data());
        else
            rotate_columns(v, v_rows, chase, rotations.data());
    }
}

template <class Real>
bool SingularValueFactorization<Real>::u_mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(
    int n, int p, int q_end, Real* d, Real* f, Real** u, Real** v) const {
    if (!is_block(kClearOnArrays, n, f, p, q_end, 1)) return false;
    return clear_zeros(n, p, q_end, d, f, u, u != nullptr ? n : 0, v, v != nullptr ? n : 0)
               ? true
               : this->fail(text::kOutOfMemory, kClearOnArrays);
}

template <class Real>
bool SingularValueFactorization<Real>::mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(
    Vector<Real>* d, Vector<Real>* f, int p, int q_end, Matrix<Real>* u, Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const int n = d->vs();
    if (f->vs() != n - 1 || d == f) return this->fail("1", kClear);
    if (!is_block(kClear, n, f->p(), p, q_end, 1) || !fit_accumulators(kClear, n, u, v))
        return false;
    return clear_zeros(n, p, q_end, d->p(), f->p(), row_pointers(u), rows_of(u), row_pointers(v),
                       rows_of(v))
               ? true
               : this->fail(text::kOutOfMemory, kClear);
}

template <class Real>
bool SingularValueFactorization<Real>::mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(
    Vector<Real>* d, Vector<Real>* f, Matrix<Real>* u, Matrix<Real>* v) const {
    return mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(d, f, 0, d->vs(), u, v);
}

template <class Real>
bool SingularValueFactorization<Real>::mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(
    Matrix<Real>* b, int p, int q_end, Matrix<Real>* u, Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const int n = b->mw();
    if (b->mh() < n || is_one_object(b, u) || is_one_object(b, v)) return this->fail("1", kClear);
    Workspace<Real> work(2 * Size(n));
    if (!work) return this->fail(text::kOutOfMemory, kClear);
    const Strided<Real> d(work.data(), n);
    const Strided<Real> f(work.data() + n, n > 1 ? n - 1 : 0);
    const View<Real> square = view_of(b).rows(0, n);
    const Strided<Real> above =
        n > 1 ? square.columns(1, n - 1).diagonal() : Strided<Real>(square.data, 0);
    kernel::copy(reading(square.diagonal()), d);
    kernel::copy(reading(above), f);
    if (!is_block(kClear, n, f.data, p, q_end, 1) || !fit_accumulators(kClear, n, u, v))
        return false;
    if (!clear_zeros(n, p, q_end, d.data, f.data, row_pointers(u), rows_of(u), row_pointers(v),
                     rows_of(v)))
        return this->fail(text::kOutOfMemory, kClear);
    kernel::copy(reading(d), square.diagonal());
    kernel::copy(reading(f), above);
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(
    Matrix<Real>* b, Matrix<Real>* u, Matrix<Real>* v) const {
    return mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(b, 0, b->mw(), u, v);
}

// ---- the decomposition -------------------------------------------------------------------------

// The shapes fit, m >= n, and nothing overlaps; what fails is recorded as `u_dsvb_…` does.
template <class Real>
bool SingularValueFactorization<Real>::decompose(const View<const Real>& a, Real* sigma,
                                                 const View<Real>* u, const View<Real>* v,
                                                 std::int64_t limit, std::int64_t& made,
                                                 SvdInverse<Real>* inverse) const {
    Real largest = 0;
    if (!find_largest(a, "3", kDecomposeToVector, largest)) return false;
    SvdSteps steps;
    steps.limit = limit;
    const Outcome outcome = svd(a, largest, SvdTargets<Real>{sigma, u, v}, steps, inverse);
    made = steps.made;
    if (!outcome) return this->fail(text::kOutOfMemory, kDecomposeToVector);
    return true;
}

// The largest singular value can overflow though no element does. The forms that hand out singular
// values show it; whoever counts or divides by them would take all others for zero.
template <class Real>
bool is_finite_largest(const View<const Real>& a, const Real* sigma) {
    return a.height == 0 || a.width == 0 || std::isfinite(sigma[0]);
}

template <class Real>
bool SingularValueFactorization<Real>::find_singular_values(const View<const Real>& a, Real* sigma,
                                                            const View<Real>* u,
                                                            const View<Real>* v,
                                                            SvdInverse<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const bool is_wide = a.height < a.width;
    const std::int64_t limit = generous_limit(is_wide ? a.height : a.width);
    std::int64_t made = 0;
    bool done = is_wide ? decompose(a.transposed(), sigma, v, u, limit, made, inverse)
                        : decompose(a, sigma, u, v, limit, made, inverse);
    if (done && made >= limit) done = this->fail("not converged", kDecomposeToVector);
    if (done && !is_finite_largest(a, sigma)) done = this->fail("not finite", kDecomposeToVector);
    return done ? true : this->fail("1", kDecompose);
}

template <class Real>
bool SingularValueFactorization<Real>::find_singular_values_in_100_steps(const View<const Real>& a,
                                                                         Real* sigma) const {
    const CNqClass::CallScope scope(this);
    std::int64_t made = 0;
    bool done = decompose(a.height < a.width ? a.transposed() : a, sigma, nullptr, nullptr,
                          kUsualLimit, made);
    if (done && !is_finite_largest(a, sigma)) done = this->fail("not finite", kDecomposeToVector);
    return done ? true : this->fail("1", kDecompose);
}

template <class Real>
bool SingularValueFactorization<Real>::fail_as_wide(const Matrix<Real>* a) const {
    CNqString detail;
    detail.fm_Format("(m,n)=(%d,%d)", a->mh(), a->mw());
    this->set_error_detail(static_cast<CNqString&&>(detail));
    this->zsm(CNqString::literal(kDecomposeToVector));
    return false;
}

template <class Real>
bool SingularValueFactorization<Real>::refuse_wide(const Matrix<Real>* a) const {
    fail_as_wide(a);
    return this->fail("1", kDecompose);
}

template <class Real>
bool SingularValueFactorization<Real>::fits_left_of(const Matrix<Real>* u,
                                                    const MatrixDiagonal<Real>* s) const {
    const int count = s->mh() < s->mw() ? s->mh() : s->mw();
    const bool has_leading = u->mw() == count || u->mw() == s->mh();
    const bool is_whole = s->mh() == s->mw() && u->mw() == u->mh() && u->mw() >= count;
    return s->vs() == count && (has_leading || is_whole);
}

// Everything but the outputs for the singular values themselves, of which there is room for n.
template <class Real>
bool SingularValueFactorization<Real>::decompose_into(const Matrix<Real>* a, Matrix<Real>* u,
                                                      Matrix<Real>* v, Real* sigma,
                                                      int max_iterations, int& iterations) const {
    if (is_one_object(u, v)) return this->fail("1", kDecomposeToVector);
    iterations = 0;
    const int m = a->mh();
    const int n = a->mw();
    if (m < n) return fail_as_wide(a);
    Real largest = 0;
    if (!find_largest(view_of(a), "3", kDecomposeToVector, largest)) return false;
    const bool is_output = u == a || v == a;
    Workspace<Real> kept(is_output ? Size(m) * n : 0);
    if (!kept) return this->fail(text::kOutOfMemory, kDecomposeToVector);
    View<const Real> matrix = view_of(a);
    if (is_output) {
        kernel::copy(matrix, matrix_view(kept.data(), m, n));
        matrix = matrix_view(kept.data(), m, n);
    }
    if (!size_square(u, m) || !size_square(v, n))
        return this->fail(text::kCannotSize, kDecomposeToVector);
    SvdSteps steps;
    steps.limit = max_iterations < 1 ? 1 : max_iterations;
    const Outcome outcome =
        svd(matrix, largest, SvdTargets<Real>{sigma, Target<Real>(u).get(), Target<Real>(v).get()},
            steps);
    if (!outcome) return this->fail(text::kOutOfMemory, kDecomposeToVector);
    iterations = static_cast<int>(steps.made);
    return true;
}

template <class Real>
bool SingularValueFactorization<
    Real>::u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(const Matrix<Real>* a,
                                                                          Matrix<Real>* u,
                                                                          Vector<Real>* sigma,
                                                                          Matrix<Real>* v,
                                                                          int max_iterations,
                                                                          int& iterations) const {
    const CNqClass::CallScope scope(this);
    const int n = a->mw();
    Workspace<Real> values(n);
    if (!values) return this->fail(text::kOutOfMemory, kDecomposeToVector);
    if (!decompose_into(a, u, v, values.data(), max_iterations, iterations)) return false;
    if (sigma->c_Create(n) == nullptr && n > 0)
        return this->fail(text::kCannotSize, kDecomposeToVector);
    kernel::copy(Strided<const Real>(values.data(), n), view_of(sigma));
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
    const Matrix<Real>* a, Matrix<Real>* u, MatrixDiagonal<Real>* s, Matrix<Real>* v,
    int max_iterations, int& iterations) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    Workspace<Real> values(n);
    if (!values) return this->fail(text::kOutOfMemory, kDecompose);
    if (m >= n && n == 0) return this->fail(text::kCannotSize, kDecompose);
    if (!decompose_into(a, u, v, values.data(), max_iterations, iterations))
        return this->fail("1", kDecompose);
    if (!size_packed(s, m, n)) return this->fail(text::kCannotSize, kDecompose);
    kernel::copy(Strided<const Real>(values.data(), n), Strided<Real>(s->p(), n));
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
    const Matrix<Real>* a, Matrix<Real>* u, MatrixDiagonal<Real>* s, Matrix<Real>* v) const {
    int iterations = 0;
    return dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(a, u, s, v, kUsualLimit,
                                                                        iterations);
}

template <class Real>
bool SingularValueFactorization<Real>::u_rsv_Rank_based_on_SVD(const Vector<Real>* singular_values,
                                                               Real tolerance, bool check_order,
                                                               int& rank) const {
    switch (find_rank(view_of(singular_values), tolerance, check_order, rank)) {
        case RankFault::tolerance:
            return this->fail("1", kRank);
        case RankFault::ordering:
            return this->fail("incorrect ordering", kRank);
        case RankFault::negative:
            return this->fail("negative value", kRank);
        case RankFault::not_finite:
            return this->fail("not finite", kRank);
        default:
            return true;
    }
}

// out := U(:, 0 … rank-1) S V(:, 0 … rank-1)^T; nothing overlaps the elements of `out` but, maybe,
// U or V, which are copied first.
template <class Real>
bool SingularValueFactorization<Real>::reconstruct(const View<const Real>& u,
                                                   Strided<const Real> sigma,
                                                   const View<const Real>& v, int rank,
                                                   Matrix<Real>* out) const {
    const Size m = u.height;
    const Size n = v.height;
    Workspace<Real, kMatrixBytes> work((m + n) * rank);
    if (!work) return this->fail(text::kOutOfMemory, kReconstruct);
    const View<Real> scaled = matrix_view(work.data(), m, rank);
    const View<Real> right = matrix_view(work.data() + m * rank, n, rank);
    kernel::copy(u.columns(0, rank), scaled);
    kernel::copy(v.columns(0, rank), right);
    scale_columns(sigma.part(0, rank), scaled);
    if (out->c_Create(static_cast<int>(m), static_cast<int>(n)) == nullptr)
        return this->fail(text::kCannotSize, kReconstruct);
    kernel::gemm(Real(1), reading(scaled), reading(right.transposed()), kernel::Update::set,
                 view_of(out));
    return true;
}

template <class Real>
bool SingularValueFactorization<Real>::rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
    const Matrix<Real>* u, const MatrixDiagonal<Real>* s, const Matrix<Real>* v, Real tolerance,
    bool check, Matrix<Real>* out) const {
    const CNqClass::CallScope scope(this);
    int rank = 0;
    if (!u_rsv_Rank_based_on_SVD(s, tolerance, check, rank)) return this->fail("1", kReconstruct);
    if (!fits_left_of(u, s) || v->mw() != s->mw()) return this->fail("2", kReconstruct);
    return reconstruct(view_of(u), view_of(static_cast<const Vector<Real>*>(s)), view_of(v), rank,
                       out);
}

template <class Real>
bool SingularValueFactorization<Real>::rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
    const Matrix<Real>* a, Real tolerance, Matrix<Real>* out) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    Vector<Real> sigma;
    Matrix<Real> v;
    Workspace<Real, kMatrixBytes> leading(Size(m) * n);
    if (!leading || sigma.c_Create(n) == nullptr || v.c_Create(n, n) == nullptr)
        return this->fail(text::kOutOfMemory, kReconstruct);
    if (m < n) {
        refuse_wide(a);
        return this->fail("1", kReconstruct);
    }
    const View<Real> u = matrix_view(leading.data(), m, n);
    const View<Real> v_view = view_of(&v);
    std::int64_t made = 0;
    if (!decompose(view_of(a), sigma.p(), &u, &v_view, kUsualLimit, made)) {
        this->fail("1", kDecompose);
        return this->fail("1", kReconstruct);
    }
    int rank = 0;
    if (!u_rsv_Rank_based_on_SVD(&sigma, tolerance, false, rank))
        return this->fail("1", kReconstruct);
    return reconstruct(reading(u), view_of(static_cast<const Vector<Real>*>(&sigma)),
                       reading(v_view), rank, out);
}

template class SingularValueFactorization<double>;
template class SingularValueFactorization<float>;

}  // namespace nequar
