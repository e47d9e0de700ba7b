#include "nequar_algebra/linear_equation/spectral_solver.h"

#include "core/workspace.h"
#include "factorization/algorithm/singular_values.h"
#include "linear_equation/algorithm/spectral_solve.h"
#include "linear_equation/right_hand_side.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kSolve = "ssv_Solve_based_on_SVD";
constexpr const char* kSolveWith = "u_ssv_Solve_based_on_SVD";
constexpr const char* kInvert = "isv_Inverse_matrix_based_on_SVD";
constexpr const char* kInvertWith = "u_isv_Inverse_matrix_based_on_SVD";
constexpr const char* kPseudo = "pisv_Pseudo_Inverse_matrix_based_on_SVD";
constexpr const char* kPseudoWith = "u_pisv_Pseudo_Inverse_matrix_based_on_SVD";
constexpr const char* kTest = "u_tcs_Test_Components_from_SVD";

}  // namespace

template <class Real>
SpectralSolver<Real>::SpectralSolver() = default;
template <class Real>
SpectralSolver<Real>::~SpectralSolver() = default;

// ---- components --------------------------------------------------------------------------------

template <class Real>
bool SpectralSolver<Real>::u_tcs_Test_Components_from_SVD(const Matrix<Real>* u,
                                                          const MatrixDiagonal<Real>* s,
                                                          const Matrix<Real>* v, Real tolerance,
                                                          int& rank) const {
    const CNqClass::CallScope scope(this);
    if (!this->u_rsv_Rank_based_on_SVD(s, tolerance, true, rank)) return this->fail("1", kTest);
    if (!is_square_of(u, rank)) return this->fail("2", kTest);
    if (!is_square_of(v, rank)) return this->fail("3", kTest);
    return s->mh() == rank && s->mw() == rank ? true : this->fail("4", kTest);
}

// The same, recorded alike, for the decomposition of a matrix whose factors need not exist.
template <class Real>
bool SpectralSolver<Real>::test_square(const View<const Real>& a, const Vector<Real>* sigma,
                                       Real tolerance) const {
    int rank = 0;
    if (!this->u_rsv_Rank_based_on_SVD(sigma, tolerance, true, rank)) return this->fail("1", kTest);
    return a.height == rank && a.width == rank ? true : this->fail("2", kTest);
}

// ---- solve -------------------------------------------------------------------------------------

// Records, as the decomposition does, that a wide matrix is refused.
template <class Real>
bool SpectralSolver<Real>::begin_with_svd(const char* method, const Matrix<Real>* a) const {
    if (a->mh() >= a->mw()) return true;
    this->refuse_wide(a);
    return this->fail("1", method);
}

template <class Real>
template <class Object>
bool SpectralSolver<Real>::solve_by_svd(const Matrix<Real>* a, Real tolerance, const Object* b,
                                        Object* x) const {
    const CNqClass::CallScope scope(this);
    if (!begin_with_svd(kSolve, a)) return false;
    const bool is_square = a->mh() == a->mw();
    const Size n = a->mw();
    const View<const Real> right = columns_of(b);
    const Size k = right.width;
    Vector<Real> sigma;
    Workspace<Real, kSquareBytes> factors(is_square ? 2 * n * n : 0);
    Workspace<Real> work(2 * n * k);
    if (!factors || !work || sigma.c_Create(a->mw()) == nullptr)
        return this->fail(text::kOutOfMemory, kSolve);
    const View<Real> u = matrix_view(factors.data(), n, n);
    const View<Real> v = matrix_view(factors.data() + n * n, n, n);
    const View<Real> solution = matrix_view(work.data(), n, k);
    const bool fits = is_square && right.height == n;
    if (fits) kernel::copy(right, solution);
    SvdInverse<Real> direct{tolerance, true, &solution, false};
    if (!this->find_singular_values(view_of(a), sigma.p(), fits ? &u : nullptr, fits ? &v : nullptr,
                                    fits ? &direct : nullptr))
        return this->fail("1", kSolve);
    const char* detail = nullptr;
    if (!test_square(view_of(a), &sigma, tolerance))
        detail = "1";
    else if (right.height != n)
        detail = "2";
    if (detail != nullptr) {
        this->fail(detail, kSolveWith);
        return this->fail("2", kSolve);
    }
    if (!direct.is_done)
        solve_with_svd(reading(u), reading(view_of(&sigma)), reading(v), solution,
                       matrix_view(work.data() + n * k, n, k));
    if (!size_like(b, x)) return this->fail(text::kCannotSize, kSolve);
    kernel::copy(reading(solution), columns_of(x));
    return true;
}

template <class Real>
bool SpectralSolver<Real>::ssv_Solve_based_on_SVD(const Matrix<Real>* a, Real tolerance,
                                                  const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_by_svd(a, tolerance, b, x);
}

template <class Real>
bool SpectralSolver<Real>::ssv_Solve_based_on_SVD(const Matrix<Real>* a, Real tolerance,
                                                  const Vector<Real>* b, Vector<Real>* x) const {
    return solve_by_svd(a, tolerance, b, x);
}

// Records why not, if not.
template <class Real>
bool SpectralSolver<Real>::can_solve_with_components(const Matrix<Real>* u,
                                                     const MatrixDiagonal<Real>* s,
                                                     const Matrix<Real>* v, Real tolerance,
                                                     std::ptrdiff_t n) const {
    int rank = 0;
    if (!u_tcs_Test_Components_from_SVD(u, s, v, tolerance, rank))
        return this->fail("1", kSolveWith);
    return rank == n ? true : this->fail("2", kSolveWith);
}

template <class Real>
template <class Object>
bool SpectralSolver<Real>::solve_with_components(const Matrix<Real>* u,
                                                 const MatrixDiagonal<Real>* s,
                                                 const Matrix<Real>* v, Real tolerance,
                                                 const Object* b, Object* x) const {
    const CNqClass::CallScope scope(this);
    if (!can_solve_with_components(u, s, v, tolerance, columns_of(b).height)) return false;
    const char* const detail =
        solve_apart(b, x, [&](const View<Real>& solution, const View<Real>& scratch) {
            solve_with_svd(view_of(u), values_of(s), view_of(v), solution, scratch);
        });
    return detail == nullptr ? true : this->fail(detail, kSolveWith);
}

template <class Real>
bool SpectralSolver<Real>::u_ssv_Solve_based_on_SVD(const Matrix<Real>* u,
                                                    const MatrixDiagonal<Real>* s,
                                                    const Matrix<Real>* v, Real tolerance,
                                                    const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_with_components(u, s, v, tolerance, b, x);
}

template <class Real>
bool SpectralSolver<Real>::u_ssv_Solve_based_on_SVD(const Matrix<Real>* u,
                                                    const MatrixDiagonal<Real>* s,
                                                    const Matrix<Real>* v, Real tolerance,
                                                    const Vector<Real>* b, Vector<Real>* x) const {
    return solve_with_components(u, s, v, tolerance, b, x);
}

template <class Real>
bool SpectralSolver<Real>::u_ssv_Solve_based_on_SVD(const Matrix<Real>* u,
                                                    const MatrixDiagonal<Real>* s,
                                                    const Matrix<Real>* v, Real tolerance,
                                                    Real* data, bool row_major, int k,
                                                    int n) const {
    const CNqClass::CallScope scope(this);
    if (!can_solve_with_components(u, s, v, tolerance, n)) return false;
    if (k < 1) return true;
    const char* const detail =
        solve_apart(view_of_array(row_major, n, k, data),
                    [&](const View<Real>& solution, const View<Real>& scratch) {
                        solve_with_svd(view_of(u), values_of(s), view_of(v), solution, scratch);
                    });
    return detail == nullptr ? true : this->fail(detail, kSolveWith);
}

// ---- inverse -----------------------------------------------------------------------------------

template <class Real>
bool SpectralSolver<Real>::isv_Inverse_matrix_based_on_SVD(const Matrix<Real>* a, Real tolerance,
                                                           Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    if (!begin_with_svd(kInvert, a)) return false;
    const bool is_square = a->mh() == a->mw();
    const int n = a->mw();
    Vector<Real> sigma;
    Workspace<Real, kSquareBytes> factors(is_square ? 2 * Size(n) * n : 0);
    if (!factors || sigma.c_Create(n) == nullptr) return this->fail(text::kOutOfMemory, kInvert);
    const View<Real> u = matrix_view(factors.data(), n, n);
    const View<Real> v = matrix_view(factors.data() + Size(n) * n, n, n);
    SvdInverse<Real> direct{tolerance, true, nullptr, false};
    if (!this->find_singular_values(view_of(a), sigma.p(), is_square ? &u : nullptr,
                                    is_square ? &v : nullptr, is_square ? &direct : nullptr))
        return this->fail("1", kInvert);
    const char* detail = nullptr;
    if (!test_square(view_of(a), &sigma, tolerance))
        detail = "1";
    else if (inverse->c_Create(n, n) == nullptr)
        detail = text::kCannotSize;
    if (detail != nullptr) {
        this->fail(detail, kInvertWith);
        return this->fail("2", kInvert);
    }
    if (direct.is_done)
        kernel::transpose(reading(u), view_of(inverse));
    else
        invert_with_svd(reading(u), reading(view_of(&sigma)), v, view_of(inverse));
    return true;
}

template <class Real>
bool SpectralSolver<Real>::pisv_Pseudo_Inverse_matrix_based_on_SVD(const Matrix<Real>* a,
                                                                   Real tolerance,
                                                                   Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    const Size count = m < n ? m : n;
    Workspace<Real, kSquareBytes> factors((Size(m) + n) * count);
    Workspace<Real> sigma(count);
    if (!factors || !sigma) return this->fail(text::kOutOfMemory, kPseudo);
    const View<Real> u = matrix_view(factors.data(), m, count);
    const View<Real> v = matrix_view(factors.data() + m * count, n, count);
    SvdInverse<Real> direct{tolerance, false, nullptr, false};
    if (!this->find_singular_values(view_of(a), sigma.data(), &u, &v, &direct))
        return this->fail("1", kPseudo);
    const char* detail = nullptr;
    if (!(tolerance >= 0 && tolerance < 1))
        detail = "3";
    else if (inverse->c_Create(n, m) == nullptr)
        detail = text::kCannotSize;
    if (detail != nullptr) {
        this->fail(detail, kPseudoWith);
        return this->fail("2", kPseudo);
    }
    if (direct.is_done) {
        kernel::copy(m < n ? reading(v) : reading(u.transposed()), view_of(inverse));
        return true;
    }
    const Strided<const Real> values(sigma.data(), count);
    const int rank = count_leading(values, tolerance);
    invert_with_svd(reading(u.columns(0, rank)), values.part(0, rank), v.columns(0, rank),
                    view_of(inverse));
    return true;
}

template <class Real>
bool SpectralSolver<Real>::u_isv_Inverse_matrix_based_on_SVD(const Matrix<Real>* u,
                                                             const MatrixDiagonal<Real>* s,
                                                             const Matrix<Real>* v, Real tolerance,
                                                             Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    int n = 0;
    if (!u_tcs_Test_Components_from_SVD(u, s, v, tolerance, n)) return this->fail("1", kInvertWith);
    const Size count = Size(n) * n;
    Workspace<Real, kSquareBytes> work(2 * count);
    if (!work) return this->fail(text::kOutOfMemory, kInvertWith);
    const View<Real> left = matrix_view(work.data(), n, n);
    const View<Real> right = matrix_view(work.data() + count, n, n);
    kernel::copy(view_of(u), left);
    kernel::copy(view_of(v), right);
    if (inverse->c_Create(n, n) == nullptr) return this->fail(text::kCannotSize, kInvertWith);
    invert_with_svd(reading(left), values_of(s), right, view_of(inverse));
    return true;
}

template <class Real>
bool SpectralSolver<Real>::u_pisv_Pseudo_Inverse_matrix_based_on_SVD(const Matrix<Real>* u,
                                                                     const MatrixDiagonal<Real>* s,
                                                                     const Matrix<Real>* v,
                                                                     Real tolerance,
                                                                     Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    if (!this->fits_left_of(u, s)) return this->fail("1", kPseudoWith);
    if (v->mw() != s->mw()) return this->fail("2", kPseudoWith);
    int unused = 0;
    switch (find_rank(values_of(s), tolerance, true, unused)) {
        case RankFault::tolerance:
            return this->fail("3", kPseudoWith);
        case RankFault::ordering:
            return this->fail("incorrect ordering", kPseudoWith);
        case RankFault::negative:
            return this->fail("negative value", kPseudoWith);
        case RankFault::not_finite:
            return this->fail("not finite", kPseudoWith);
        default:
            break;
    }
    const int m = u->mh();
    const int n = v->mh();
    const int rank = count_leading(values_of(s), tolerance);
    Workspace<Real, kSquareBytes> work((Size(m) + n) * rank);
    if (!work) return this->fail(text::kOutOfMemory, kPseudoWith);
    const View<Real> left = matrix_view(work.data(), m, rank);
    const View<Real> right = matrix_view(work.data() + Size(m) * rank, n, rank);
    kernel::copy(view_of(u).columns(0, rank), left);
    kernel::copy(view_of(v).columns(0, rank), right);
    if (inverse->c_Create(n, m) == nullptr) return this->fail(text::kCannotSize, kPseudoWith);
    invert_with_svd(reading(left), values_of(s).part(0, rank), right, view_of(inverse));
    return true;
}

template class SpectralSolver<double>;
template class SpectralSolver<float>;

}  // namespace nequar
