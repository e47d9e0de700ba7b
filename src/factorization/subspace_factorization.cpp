#include "nequar_algebra/factorization/subspace_factorization.h"

#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/gram_rank.h"
#include "factorization/algorithm/pivoted_qr.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/singular_values.h"
#include "factorization/outcome_text.h"
#include "kernel/kernel.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kRank = "r_Rank";
constexpr const char* kRankBySvd = "rsv_Rank_based_on_Singular_Value_decomposition";
constexpr const char* kRankByEigenvalues = "rev_Rank_based_on_Eigen_Value_decomposition";
constexpr const char* kRankByQr = "rqr_Rank_based_on_QR_decomposition_with_column_pivoting";
constexpr const char* kInputVector = "fib_Find_an_Input_Basis_vector";
constexpr const char* kOutputVector = "fob_Find_an_Output_Basis_vector";
constexpr const char* kInputSpaces = "fidn_Find_Input_Domain_and_Null_vector_spaces";
constexpr const char* kOutputSpaces = "foru_Find_Output_Range_and_Unreached_vector_space";
constexpr const char* kHomogeneous = "shle_Solve_Homogeneous_Linear_Equation";

constexpr double kHomogeneousTolerance = 1e-20;

bool are_distinct(const CNqClass* const* objects, int count) {
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < i; ++j)
            if (objects[i] != nullptr && objects[i] == objects[j]) return false;
    return true;
}

// The decomposition, kept here until A, which may be one of the outputs, is needed no more.
template <class Real>
class Decomposition {
public:
    Decomposition(const Matrix<Real>* a, Size columns_of_u, Size columns_of_v)
        : count_(a->mh() < a->mw() ? a->mh() : a->mw()),
          u_elements_(a->mh() * columns_of_u),
          v_elements_(a->mw() * columns_of_v),
          sigma_(count_),
          has_u_(columns_of_u > 0),
          has_v_(columns_of_v > 0),
          u(u_elements_.data(), a->mh(), columns_of_u, columns_of_u),
          v(v_elements_.data(), a->mw(), columns_of_v, columns_of_v) {}

    explicit operator bool() const { return u_elements_ && v_elements_ && sigma_; }
    const View<Real>* wanted_u() const { return has_u_ ? &u : nullptr; }
    const View<Real>* wanted_v() const { return has_v_ ? &v : nullptr; }
    Real* values() const { return sigma_.data(); }
    Strided<const Real> sigma() const { return {sigma_.data(), count_}; }

private:
    Size count_;
    Workspace<Real> u_elements_;
    Workspace<Real> v_elements_;
    Workspace<Real> sigma_;
    bool has_u_;
    bool has_v_;

public:
    View<Real> u;
    View<Real> v;
};

template <class Real>
bool deliver(const View<Real>& from, Matrix<Real>* to) {
    if (to == nullptr) return true;
    if (to->c_Create(static_cast<int>(from.height), static_cast<int>(from.width)) == nullptr)
        return false;
    kernel::copy(reading(from), view_of(to));
    return true;
}

template <class Real>
bool deliver(const View<Real>& from, Size column, Vector<Real>* to) {
    if (to->c_Create(static_cast<int>(from.height)) == nullptr) return false;
    kernel::copy(reading(from.column(column)), view_of(to));
    return true;
}

// What the caller wants of the decomposition itself.
template <class Real>
bool deliver(const Decomposition<Real>& found, int m, int n, Matrix<Real>* u,
             MatrixDiagonal<Real>* s, Matrix<Real>* v) {
    if (!deliver(found.u, u) || !deliver(found.v, v)) return false;
    if (s == nullptr) return true;
    if (!size_packed(s, m, n)) return false;
    kernel::copy(found.sigma(), Strided<Real>(s->p(), found.sigma().size));
    return true;
}

}  // namespace

template <class Real>
SubspaceFactorization<Real>::SubspaceFactorization() = default;
template <class Real>
SubspaceFactorization<Real>::~SubspaceFactorization() = default;

// ---- rank --------------------------------------------------------------------------------------

template <class Real>
bool SubspaceFactorization<Real>::r_Rank(const Matrix<Real>* a, Real tolerance, int& rank) const {
    const CNqClass::CallScope scope(this);
    const Size count = a->mh() < a->mw() ? a->mh() : a->mw();
    Workspace<Real> sigma(count);
    if (!sigma) return this->fail(text::kOutOfMemory, kRank);
    if (std::isnan(tolerance) || !this->find_singular_values_in_100_steps(view_of(a), sigma.data()))
        return this->fail("1", kRank);
    rank = count_above(Strided<const Real>(sigma.data(), count), tolerance);
    return true;
}

template <class Real>
int SubspaceFactorization<Real>::r_Rank(const Matrix<Real>* a, Real tolerance) const {
    const CNqClass::CallScope scope(this);
    int rank = 0;
    if (!r_Rank(a, tolerance, rank)) this->fail("1", kRank);
    return rank;
}

template <class Real>
bool SubspaceFactorization<Real>::rsv_Rank_based_on_Singular_Value_decomposition(
    const Matrix<Real>* a, Real tolerance, int& rank) const {
    const CNqClass::CallScope scope(this);
    return r_Rank(a, tolerance, rank) ? true : this->fail("1", kRankBySvd);
}

template <class Real>
int SubspaceFactorization<Real>::rsv_Rank_based_on_Singular_Value_decomposition(
    const Matrix<Real>* a, Real tolerance) const {
    const CNqClass::CallScope scope(this);
    int rank = 0;
    if (!rsv_Rank_based_on_Singular_Value_decomposition(a, tolerance, rank))
        this->fail("1", kRankBySvd);
    return rank;
}

template <class Real>
bool SubspaceFactorization<Real>::rev_Rank_based_on_Eigen_Value_decomposition(const Matrix<Real>* a,
                                                                              Real tolerance,
                                                                              int& rank) const {
    const Size order = a->mh() < a->mw() ? a->mh() : a->mw();
    const char* const detail = order < kFirstTridiagonal ? "1" : "2";
    Real largest = 0;
    if (std::isnan(tolerance)) return this->fail("1", kRankByEigenvalues);
    if (!find_largest_finite(view_of(a), largest)) return this->fail(detail, kRankByEigenvalues);
    int found = 0;
    if (!rank_by_gram_matrix(view_of(a), largest, tolerance, found))
        return this->fail(detail, kRankByEigenvalues);
    rank = found;
    return true;
}

template <class Real>
int SubspaceFactorization<Real>::rev_Rank_based_on_Eigen_Value_decomposition(const Matrix<Real>* a,
                                                                             Real tolerance) const {
    const CNqClass::CallScope scope(this);
    int rank = 0;
    if (!rev_Rank_based_on_Eigen_Value_decomposition(a, tolerance, rank))
        this->fail("1", kRankByEigenvalues);
    return rank;
}

template <class Real>
bool SubspaceFactorization<Real>::rqr_Rank_based_on_QR_decomposition_with_column_pivoting(
    const Matrix<Real>* a, int& rank) const {
    const bool is_wide = a->mh() < a->mw();
    const View<const Real> matrix = is_wide ? view_of(a).transposed() : view_of(a);
    Real largest = 0;
    if (!find_largest_finite(matrix, largest)) return this->fail("1", kRankByQr);
    Workspace<Real, 8192> work(matrix.height * matrix.width);
    Workspace<int> perm(matrix.width);
    if (!work || !perm) return this->fail(text::kOutOfMemory, kRankByQr);
    const View<Real> copy(work.data(), matrix.height, matrix.width, matrix.width);
    kernel::copy(matrix, copy);
    PivotedQrResult result;
    if (!pivoted_qr<Real>(copy, nullptr, perm.data(), result))
        return this->fail(text::kOutOfMemory, kRankByQr);
    rank = result.rank;
    return true;
}

template <class Real>
int SubspaceFactorization<Real>::rqr_Rank_based_on_QR_decomposition_with_column_pivoting(
    const Matrix<Real>* a) const {
    const CNqClass::CallScope scope(this);
    int rank = 0;
    if (!rqr_Rank_based_on_QR_decomposition_with_column_pivoting(a, rank))
        this->fail("1", kRankByQr);
    return rank;
}

// ---- basis vectors and subspaces ---------------------------------------------------------------

// Records why not, if not.
template <class Real>
bool SubspaceFactorization<Real>::is_tolerance(const char* method, Real th) const {
    if (th >= 0 && th < 1) return true;
    CNqString detail;
    detail.fm_Format("th=%e", double(th));
    this->set_error_detail(static_cast<CNqString&&>(detail));
    this->zsm(CNqString::literal(method));
    return false;
}

template <class Real>
bool SubspaceFactorization<Real>::find_basis_vector(const char* method, bool is_input,
                                                    const Matrix<Real>* a, Real th, int ndx,
                                                    int& rank, Real& sigma, Vector<Real>* x,
                                                    Matrix<Real>* u, MatrixDiagonal<Real>* s,
                                                    Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    const int count = m < n ? m : n;
    if (ndx < 0 || ndx >= (is_input ? n : count)) {
        CNqString detail;
        detail.fm_Format("ndx=%d", ndx);
        this->set_error_detail(static_cast<CNqString&&>(detail));
        this->zsm(CNqString::literal(method));
        return false;
    }
    if (!is_tolerance(method, th)) return false;
    const CNqClass* const outputs[] = {x, u, s, v};
    if (!are_distinct(outputs, 4)) return this->fail("1", method);
    const Size columns_of_u = u != nullptr ? m : is_input ? 0 : count;
    const Size columns_of_v = v != nullptr || ndx >= count ? n : is_input ? count : 0;
    const Decomposition<Real> found(a, columns_of_u, columns_of_v);
    if (!found) return this->fail(text::kOutOfMemory, method);
    if (!this->find_singular_values(view_of(a), found.values(), found.wanted_u(), found.wanted_v()))
        return this->fail("1", method);
    if (!deliver(is_input ? found.v : found.u, ndx, x) || !deliver(found, m, n, u, s, v))
        return this->fail(text::kCannotSize, method);
    sigma = ndx < count ? found.sigma()(ndx) : Real(0);
    rank = count_leading(found.sigma(), th);
    return true;
}

template <class Real>
bool SubspaceFactorization<Real>::fib_Find_an_Input_Basis_vector(const Matrix<Real>* a, Real th,
                                                                 int ndx, int& rank, Real& sigma,
                                                                 Vector<Real>* x, Matrix<Real>* u,
                                                                 MatrixDiagonal<Real>* s,
                                                                 Matrix<Real>* v) const {
    return find_basis_vector(kInputVector, true, a, th, ndx, rank, sigma, x, u, s, v);
}

template <class Real>
bool SubspaceFactorization<Real>::fob_Find_an_Output_Basis_vector(const Matrix<Real>* a, Real th,
                                                                  int ndx, int& rank, Real& sigma,
                                                                  Vector<Real>* x, Matrix<Real>* u,
                                                                  MatrixDiagonal<Real>* s,
                                                                  Matrix<Real>* v) const {
    return find_basis_vector(kOutputVector, false, a, th, ndx, rank, sigma, x, u, s, v);
}

template <class Real>
bool SubspaceFactorization<Real>::find_spaces(const char* method, bool is_input,
                                              const Matrix<Real>* a, Real th, int& rank,
                                              Matrix<Real>* leading, Matrix<Real>* rest,
                                              Matrix<Real>* u, MatrixDiagonal<Real>* s,
                                              Matrix<Real>* v) const {
    const CNqClass::CallScope scope(this);
    if (!is_tolerance(method, th)) return false;
    const CNqClass* const outputs[] = {leading, rest, u, s, v};
    if (!are_distinct(outputs, 5)) return this->fail("1", method);
    const int m = a->mh();
    const int n = a->mw();
    const int count = m < n ? m : n;
    const auto columns = [&](bool is_side, const Matrix<Real>* whole, int all) {
        if (whole != nullptr || (is_side && rest != nullptr)) return all;
        return is_side && leading != nullptr ? count : 0;
    };
    const Decomposition<Real> found(a, columns(!is_input, u, m), columns(is_input, v, n));
    if (!found) return this->fail(text::kOutOfMemory, method);
    if (!this->find_singular_values(view_of(a), found.values(), found.wanted_u(), found.wanted_v()))
        return this->fail("1", method);
    const int r = count_leading(found.sigma(), th);
    const View<Real>& basis = is_input ? found.v : found.u;
    const bool is_delivered =
        (leading == nullptr || deliver(basis.columns(0, r), leading)) &&
        (rest == nullptr || deliver(basis.columns(r, basis.width - r), rest)) &&
        deliver(found, m, n, u, s, v);
    if (!is_delivered) return this->fail(text::kCannotSize, method);
    rank = r;
    return true;
}

template <class Real>
bool SubspaceFactorization<Real>::fidn_Find_Input_Domain_and_Null_vector_spaces(
    const Matrix<Real>* a, Real th, int& rank, Matrix<Real>* domain, Matrix<Real>* null,
    Matrix<Real>* u, MatrixDiagonal<Real>* s, Matrix<Real>* v) const {
    return find_spaces(kInputSpaces, true, a, th, rank, domain, null, u, s, v);
}

template <class Real>
bool SubspaceFactorization<Real>::foru_Find_Output_Range_and_Unreached_vector_space(
    const Matrix<Real>* a, Real th, int& rank, Matrix<Real>* range, Matrix<Real>* unreached,
    Matrix<Real>* u, MatrixDiagonal<Real>* s, Matrix<Real>* v) const {
    return find_spaces(kOutputSpaces, false, a, th, rank, range, unreached, u, s, v);
}

#define NEQUAR_ONE_SPACE(name, both_name, is_input, leading, rest)                           \
    template <class Real>                                                                    \
    bool SubspaceFactorization<Real>::name(const Matrix<Real>* a, Real th, int& rank,        \
                                           Matrix<Real>* space, Matrix<Real>* u,             \
                                           MatrixDiagonal<Real>* s, Matrix<Real>* v) const { \
        const CNqClass::CallScope scope(this);                                               \
        if (space == nullptr) return this->fail("1", #name);                                 \
        return find_spaces(both_name, is_input, a, th, rank, leading, rest, u, s, v)         \
                   ? true                                                                    \
                   : this->fail("2", #name);                                                 \
    }

NEQUAR_ONE_SPACE(fid_Find_Input_Domain_vector_space, kInputSpaces, true, space, nullptr)
NEQUAR_ONE_SPACE(fin_Find_Input_Null_vector_space, kInputSpaces, true, nullptr, space)
NEQUAR_ONE_SPACE(for_Find_Output_Range_vector_space, kOutputSpaces, false, space, nullptr)
NEQUAR_ONE_SPACE(fou_Find_Output_Unreached_vector_space, kOutputSpaces, false, nullptr, space)

#undef NEQUAR_ONE_SPACE

// ---- homogeneous equations ---------------------------------------------------------------------

template <class Real>
bool SubspaceFactorization<Real>::shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a,
                                                                         Real tolerance,
                                                                         Vector<Real>* x,
                                                                         int& rank) const {
    const CNqClass::CallScope scope(this);
    Real sigma = 0;
    return fib_Find_an_Input_Basis_vector(a, tolerance, a->mw() - 1, rank, sigma, x, nullptr,
                                          nullptr, nullptr)
               ? true
               : this->fail("1", kHomogeneous);
}

template <class Real>
bool SubspaceFactorization<Real>::shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a,
                                                                         Real tolerance, Real* x,
                                                                         int& n, int& rank) const {
    Vector<Real> solution;
    if (!shle_Solve_Homogeneous_Linear_Equation(a, tolerance, &solution, rank)) return false;
    n = solution.vs();
    kernel::copy(reading(view_of(&solution)), Strided<Real>(x, n));
    return true;
}

template <class Real>
bool SubspaceFactorization<Real>::shle_Solve_Homogeneous_Linear_Equation(const Matrix<Real>* a,
                                                                         Vector<Real>* x) const {
    int rank = 0;
    return shle_Solve_Homogeneous_Linear_Equation(a, Real(kHomogeneousTolerance), x, rank);
}

template class SubspaceFactorization<double>;
template class SubspaceFactorization<float>;

}  // namespace nequar
