#include "nequar_algebra/linear_equation/triangular_solver.h"

#include "core/workspace.h"
#include "factorization/algorithm/triangular_inverse.h"
#include "linear_equation/algorithm/factor_solve.h"
#include "linear_equation/algorithm/gauss_jordan.h"
#include "linear_equation/right_hand_side.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kSolveWithLu = "u_slu_Solve_based_on_LUD";
constexpr const char* kInvertWithLu = "u_ilu_Inverse_matrix_based_on_LUD";

constexpr const char* solve_with_cholesky_name(bool upper) {
    return upper ? "u_suu_Solve_based_on_UUD" : "u_sll_Solve_based_on_LLD";
}
constexpr const char* invert_with_cholesky_name(bool upper) {
    return upper ? "u_iuu_Inverse_matrix_based_on_UUD" : "u_ill_Inverse_matrix_based_on_LLD";
}

// The diagonal of a packed triangle is its band 0.
template <class Packed>
bool has_zero_on_diagonal(const Packed* factor, Size n) {
    for (Size i = 0; i < n; ++i)
        if (factor->p()[i] == 0) return true;
    return false;
}

constexpr kernel::Triangle triangle_of(bool upper) {
    return upper ? kernel::Triangle::upper : kernel::Triangle::lower;
}

template <class Real, class Triangular>
void unpack_triangle(bool upper, const Triangular* factor, const View<Real>& dense) {
    unpack_lower(factor->p(), upper ? dense.transposed() : dense);
}

}  // namespace

template <class Real>
TriangularSolver<Real>::TriangularSolver() = default;
template <class Real>
TriangularSolver<Real>::~TriangularSolver() = default;

// ---- LUD and LUP -------------------------------------------------------------------------------

// Factors A and calls use(factors, perm), which answers the detail of the failure of `inner`, null
// when there is none.
template <class Real>
template <class Use>
bool TriangularSolver<Real>::with_lu(Pivoting pivoting, const char* method, const char* inner,
                                     const Matrix<Real>* a, const Use& use) const {
    const CNqClass::CallScope scope(this);
    if (!this->can_begin_lu(pivoting, a)) return this->fail("1", method);
    const Size n = a->mh();
    Workspace<Real, kSquareBytes> work(n * n);
    Workspace<int, 1024> perm(n);
    if (!work || !perm) return this->fail(text::kOutOfMemory, method);
    const View<Real> lu = square_view(work.data(), n);
    int interchanges = 0;
    if (!this->find_lu(pivoting, a, lu, perm.data(), interchanges)) return this->fail("1", method);
    const char* const detail = use(reading(lu), perm.data());
    if (detail == nullptr) return true;
    this->fail(detail, inner);
    return this->fail("2", method);
}

template <class Real>
template <class Object>
bool TriangularSolver<Real>::solve_lu(Pivoting pivoting, const char* method, const Matrix<Real>* a,
                                      const Object* b, Object* x) const {
    const auto solve = [&](const View<const Real>& lu, const int* perm) {
        const View<const Real> right = columns_of(b);
        if (right.height != lu.height || right.width < 1) return "1";
        return deliver(b, x, [&](const View<const Real>& from, const View<Real>& to) {
            solve_from_lu(lu, perm, from, to);
        });
    };
    return with_lu(pivoting, method, kSolveWithLu, a, solve);
}

template <class Real>
bool TriangularSolver<Real>::invert_lu(Pivoting pivoting, const char* method, const Matrix<Real>* a,
                                       Matrix<Real>* inverse) const {
    const int n = a->mh();
    const auto invert = [&](const View<const Real>& lu, const int* perm) {
        if (inverse->c_Create(n, n) == nullptr) return "1";
        return invert_from_lu(lu, perm, view_of(inverse)) ? nullptr : text::kOutOfMemory;
    };
    return with_lu(pivoting, method, kInvertWithLu, a, invert);
}

// Records why not, if not.
template <class Real>
bool TriangularSolver<Real>::can_solve_with(const MatrixTriangularLower<Real>* l,
                                            const MatrixTriangularUpper<Real>* u,
                                            const CNqVectorInt* perm, std::ptrdiff_t n,
                                            std::ptrdiff_t k) const {
    bool agrees = k >= 1 && l->mw() == n && l->mh() == n && u->mw() == n && u->mh() == n &&
                  perm->vs() == n && holds_its_elements(l) && holds_its_elements(u);
    for (Size i = 0; agrees && i < n; ++i) agrees = perm->p()[i] >= 0 && perm->p()[i] < n;
    if (!agrees) return this->fail("1", kSolveWithLu);
    if (has_zero_on_diagonal(l, n) || has_zero_on_diagonal(u, n))
        return this->fail("2", kSolveWithLu);
    return true;
}

// One workspace serves both triangles, one after the other, since the diagonal of L may be any.
template <class Real>
bool TriangularSolver<Real>::solve_with_lu(const MatrixTriangularLower<Real>* l,
                                           const MatrixTriangularUpper<Real>* u,
                                           const CNqVectorInt* perm, const View<const Real>& b,
                                           const View<Real>& x) const {
    const Size n = b.height;
    Workspace<Real, kSquareBytes> work(n * n);
    if (!work) return false;
    const View<Real> dense = square_view(work.data(), n);
    gather_right_hand_sides(b, perm->p(), x);
    unpack_lower(l->p(), dense);
    solve_triangle(kernel::Triangle::lower, kernel::Diagonal::stored, reading(dense), x);
    unpack_lower(u->p(), dense.transposed());
    solve_triangle(kernel::Triangle::upper, kernel::Diagonal::stored, reading(dense), x);
    return true;
}

template <class Real>
template <class Object>
bool TriangularSolver<Real>::solve_with_lu(const MatrixTriangularLower<Real>* l,
                                           const MatrixTriangularUpper<Real>* u,
                                           const CNqVectorInt* perm, const Object* b,
                                           Object* x) const {
    const View<const Real> right = columns_of(b);
    if (!can_solve_with(l, u, perm, right.height, right.width)) return false;
    bool solved = false;
    const char* const detail =
        deliver(b, x, [&](const View<const Real>& from, const View<Real>& to) {
            solved = solve_with_lu(l, u, perm, from, to);
        });
    if (detail != nullptr) return this->fail(detail, kSolveWithLu);
    return solved ? true : this->fail(text::kOutOfMemory, kSolveWithLu);
}

template <class Real>
bool TriangularSolver<Real>::u_slu_Solve_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                                      const MatrixTriangularUpper<Real>* u,
                                                      const CNqVectorInt* perm, Real* data,
                                                      bool row_major, int k, int n) const {
    if (!can_solve_with(l, u, perm, n, k)) return false;
    Size count = 0;
    if (!checked_product(n, k, count)) return this->fail("1", kSolveWithLu);
    Workspace<Real> work(count);
    if (!work) return this->fail(text::kOutOfMemory, kSolveWithLu);
    const View<Real> right(work.data(), n, k, k);
    kernel::copy(View<const Real>(data, n, k, k), right);
    if (!solve_with_lu(l, u, perm, reading(right), view_of_array(row_major, n, k, data)))
        return this->fail(text::kOutOfMemory, kSolveWithLu);
    return true;
}

template <class Real>
bool TriangularSolver<Real>::u_ilu_Inverse_matrix_based_on_LUD(const MatrixTriangularLower<Real>* l,
                                                               const MatrixTriangularUpper<Real>* u,
                                                               const CNqVectorInt* perm,
                                                               Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const Size n = l->mh();
    if (!can_solve_with(l, u, perm, n, n)) return this->fail("2", kInvertWithLu);
    Workspace<Real, kSquareBytes> work(n * n);
    if (!work) return this->fail(text::kOutOfMemory, kInvertWithLu);
    if (inverse->c_Create(l->mh(), l->mh()) == nullptr) return this->fail("1", kInvertWithLu);
    const View<Real> upper = square_view(work.data(), n);
    unpack_lower(u->p(), upper.transposed());
    unpack_lower(l->p(), view_of(inverse));
    if (!invert_from_lu_in_place(kernel::Diagonal::stored, reading(upper), perm->p(),
                                 view_of(inverse)))
        return this->fail(text::kOutOfMemory, kInvertWithLu);
    return true;
}

// ---- LLD and UUD -------------------------------------------------------------------------------

// As with_lu, with the dense factor.
template <class Real>
template <class Use>
bool TriangularSolver<Real>::with_cholesky(bool upper, const char* method, const char* inner,
                                           const MatrixSymmetric<Real>* a, const Use& use) const {
    const CNqClass::CallScope scope(this);
    if (!this->can_begin_cholesky(a)) return this->fail("1", method);
    const Size n = a->mh();
    Workspace<Real, kSquareBytes> work(n * n);
    if (!work) return this->fail(text::kOutOfMemory, method);
    // L is kept by columns, so that the small factorization at the ends finds rows of L^T
    // contiguous.
    const View<Real> square = square_view(work.data(), n);
    const View<Real> factor = upper ? square : square.transposed();
    if (!this->find_cholesky(upper, a, factor)) return this->fail("1", method);
    const char* const detail = use(factor);
    if (detail == nullptr) return true;
    this->fail(detail, inner);
    return this->fail("2", method);
}

template <class Real>
template <class Object>
bool TriangularSolver<Real>::solve_cholesky(bool upper, const char* method,
                                            const MatrixSymmetric<Real>* a, const Object* b,
                                            Object* x) const {
    const auto solve = [&](const View<Real>& factor) {
        if (columns_of(b).height != factor.height) return "1";
        return deliver(b, x, [&](const View<const Real>& from, const View<Real>& to) {
            kernel::copy(from, to);
            solve_from_cholesky(triangle_of(upper), reading(factor), to);
        });
    };
    return with_cholesky(upper, method, solve_with_cholesky_name(upper), a, solve);
}

template <class Real>
bool TriangularSolver<Real>::invert_cholesky(bool upper, const char* method,
                                             const MatrixSymmetric<Real>* a,
                                             Matrix<Real>* inverse) const {
    const int n = a->mh();
    const auto invert = [&](const View<Real>& factor) -> const char* {
        if (inverse->c_Create(n, n) == nullptr) return "1";
        invert_from_cholesky(triangle_of(upper), factor);
        kernel::copy(reading(factor), view_of(inverse));
        return nullptr;
    };
    return with_cholesky(upper, method, invert_with_cholesky_name(upper), a, invert);
}

// Records why not, if not.
template <class Real>
template <class Triangular>
bool TriangularSolver<Real>::can_solve_with(bool upper, const Triangular* factor,
                                            std::ptrdiff_t n) const {
    const char* const method = solve_with_cholesky_name(upper);
    if (factor->mw() != factor->mh() || factor->mw() != n || !holds_its_elements(factor))
        return this->fail("1", method);
    if (has_zero_on_diagonal(factor, n)) return this->fail("2", method);
    return true;
}

template <class Real>
template <class Triangular>
bool TriangularSolver<Real>::solve_with_cholesky(bool upper, const Triangular* factor,
                                                 const View<Real>& x) const {
    Workspace<Real, kSquareBytes> work(x.height * x.height);
    if (!work) return false;
    const View<Real> dense = square_view(work.data(), x.height);
    unpack_triangle(upper, factor, dense);
    solve_from_cholesky(triangle_of(upper), reading(dense), x);
    return true;
}

template <class Real>
template <class Triangular, class Object>
bool TriangularSolver<Real>::solve_with_cholesky(bool upper, const Triangular* factor,
                                                 const Object* b, Object* x) const {
    if (!can_solve_with(upper, factor, columns_of(b).height)) return false;
    bool solved = false;
    const char* const detail =
        deliver(b, x, [&](const View<const Real>& from, const View<Real>& to) {
            kernel::copy(from, to);
            solved = solve_with_cholesky(upper, factor, to);
        });
    if (detail != nullptr) return this->fail(detail, solve_with_cholesky_name(upper));
    return solved ? true : this->fail(text::kOutOfMemory, solve_with_cholesky_name(upper));
}

template <class Real>
template <class Triangular>
bool TriangularSolver<Real>::invert_with_cholesky(bool upper, const Triangular* factor,
                                                  Matrix<Real>* inverse) const {
    const char* const method = invert_with_cholesky_name(upper);
    const CNqClass::CallScope scope(this);
    const Size n = factor->mh();
    if (!can_solve_with(upper, factor, n)) return this->fail("2", method);
    if (inverse->c_Create(factor->mh(), factor->mh()) == nullptr) return this->fail("1", method);
    const View<Real> dense = view_of(inverse);
    unpack_triangle(upper, factor, dense);
    invert_from_cholesky(triangle_of(upper), dense);
    return true;
}

template <class Real>
template <class Triangular>
bool TriangularSolver<Real>::solve_array_with_cholesky(bool upper, const Triangular* factor,
                                                       Real* data, bool row_major, int k,
                                                       int n) const {
    if (!can_solve_with(upper, factor, n)) return false;
    if (k < 1 || solve_with_cholesky(upper, factor, view_of_array(row_major, n, k, data)))
        return true;
    return this->fail(text::kOutOfMemory, solve_with_cholesky_name(upper));
}

// ---- GJE ---------------------------------------------------------------------------------------

template <class Real>
bool TriangularSolver<Real>::u_sgj_Solve_based_on_GJE(bool row_major, int n, int k, Real* a,
                                                      Real* b) const {
    constexpr const char* kMethod = "u_sgj_Solve_based_on_GJE";
    const char* const singular = row_major ? "1" : "2";
    if (n < 0 || k < 0) return this->fail(singular, kMethod);
    const View<Real> left = view_of_array(row_major, n, n, a);
    const View<Real> right = view_of_array(row_major, n, k, b);
    Outcome outcome;
    if (row_major) {
        outcome = gauss_jordan(left, right);
    } else {
        // Rows have to be contiguous.
        Size width = Size(n) + k;
        Size count = 0;
        if (!checked_product(n, width, count)) return this->fail(singular, kMethod);
        Workspace<Real, kSquareBytes> work(count);
        if (!work) return this->fail(text::kOutOfMemory, kMethod);
        const View<Real> both(work.data(), n, width, width);
        kernel::copy(reading(left), both.columns(0, n));
        kernel::copy(reading(right), both.columns(n, k));
        outcome = gauss_jordan(both.columns(0, n), both.columns(n, k));
        kernel::copy(reading(both.columns(0, n)), left);
        kernel::copy(reading(both.columns(n, k)), right);
    }
    if (outcome) return true;
    return this->fail(outcome.kind == OutcomeKind::singular ? singular : text::kOutOfMemory,
                      kMethod);
}

// The solution takes the right-hand side and becomes the solution in place.
template <class Real>
template <class Object>
bool TriangularSolver<Real>::solve_gauss_jordan(const Matrix<Real>* a, const Object* b, Object* x,
                                                const char* detail) const {
    constexpr const char* kMethod = "sgj_Solve_based_on_GJE";
    const int n = a->mh();
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (!work) return this->fail(text::kOutOfMemory, kMethod);
    kernel::copy(view_of(a), square_view(work.data(), n));
    if (x->cp_Copy(b) == nullptr && n > 0) return this->fail(text::kCannotSize, kMethod);
    const int k = static_cast<int>(columns_of(b).width);
    Real* const right = view_of(x).data;
    return u_sgj_Solve_based_on_GJE(true, n, k, work.data(), right) ? true
                                                                    : this->fail(detail, kMethod);
}

template <class Real>
bool TriangularSolver<Real>::sgj_Solve_based_on_GJE(const Matrix<Real>* a, const Matrix<Real>* b,
                                                    Matrix<Real>* x) const {
    constexpr const char* kMethod = "sgj_Solve_based_on_GJE";
    const CNqClass::CallScope scope(this);
    if (a->mh() != a->mw()) return this->fail("1", kMethod);
    if (b->mh() != a->mh()) return this->fail("2", kMethod);
    return solve_gauss_jordan(a, b, x, "3");
}

template <class Real>
bool TriangularSolver<Real>::sgj_Solve_based_on_GJE(const Matrix<Real>* a, const Vector<Real>* b,
                                                    Vector<Real>* x) const {
    const CNqClass::CallScope scope(this);
    if (a->mh() != a->mw() || b->vs() != a->mh()) return this->fail("1", "sgj_Solve_based_on_GJE");
    return solve_gauss_jordan(a, b, x, "2");
}

template <class Real>
bool TriangularSolver<Real>::igj_Inverse_matrix_based_on_GJE(const Matrix<Real>* a,
                                                             Matrix<Real>* inverse) const {
    constexpr const char* kMethod = "igj_Inverse_matrix_based_on_GJE";
    const CNqClass::CallScope scope(this);
    if (a->mh() != a->mw()) return this->fail("1", kMethod);
    const int n = a->mh();
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (!work) return this->fail(text::kOutOfMemory, kMethod);
    kernel::copy(view_of(a), square_view(work.data(), n));
    if (inverse->c_Create(n, n, Real(0)) == nullptr) return this->fail(text::kCannotSize, kMethod);
    const View<Real> identity = view_of(inverse);
    for (Size i = 0; i < n; ++i) identity(i, i) = 1;
    return u_sgj_Solve_based_on_GJE(true, n, n, work.data(), identity.data)
               ? true
               : this->fail("2", kMethod);
}

// ---- the names ---------------------------------------------------------------------------------

#define NEQUAR_FROM_MATRIX(solve_name, invert_name, Input, how, kind)                             \
    template <class Real>                                                                         \
    bool TriangularSolver<Real>::solve_name(const Input<Real>* a, const Matrix<Real>* b,          \
                                            Matrix<Real>* x) const {                              \
        return solve_##how(kind, #solve_name, a, b, x);                                           \
    }                                                                                             \
    template <class Real>                                                                         \
    bool TriangularSolver<Real>::solve_name(const Input<Real>* a, const Vector<Real>* b,          \
                                            Vector<Real>* x) const {                              \
        return solve_##how(kind, #solve_name, a, b, x);                                           \
    }                                                                                             \
    template <class Real>                                                                         \
    bool TriangularSolver<Real>::invert_name(const Input<Real>* a, Matrix<Real>* inverse) const { \
        return invert_##how(kind, #invert_name, a, inverse);                                      \
    }

#define NEQUAR_FROM_CHOLESKY(solve_name, invert_name, Triangular, upper)                           \
    template <class Real>                                                                          \
    bool TriangularSolver<Real>::solve_name(const Triangular<Real>* t, const Matrix<Real>* b,      \
                                            Matrix<Real>* x) const {                               \
        return solve_with_cholesky(upper, t, b, x);                                                \
    }                                                                                              \
    template <class Real>                                                                          \
    bool TriangularSolver<Real>::solve_name(const Triangular<Real>* t, const Vector<Real>* b,      \
                                            Vector<Real>* x) const {                               \
        return solve_with_cholesky(upper, t, b, x);                                                \
    }                                                                                              \
    template <class Real>                                                                          \
    bool TriangularSolver<Real>::solve_name(const Triangular<Real>* t, Real* data, bool row_major, \
                                            int k, int n) const {                                  \
        return solve_array_with_cholesky(upper, t, data, row_major, k, n);                         \
    }                                                                                              \
    template <class Real>                                                                          \
    bool TriangularSolver<Real>::invert_name(const Triangular<Real>* t, Matrix<Real>* inverse)     \
        const {                                                                                    \
        return invert_with_cholesky(upper, t, inverse);                                            \
    }

#define NEQUAR_FROM_LU(Object)                                                      \
    template <class Real>                                                           \
    bool TriangularSolver<Real>::u_slu_Solve_based_on_LUD(                          \
        const MatrixTriangularLower<Real>* l, const MatrixTriangularUpper<Real>* u, \
        const CNqVectorInt* perm, const Object<Real>* b, Object<Real>* x) const {   \
        return solve_with_lu(l, u, perm, b, x);                                     \
    }

NEQUAR_FROM_MATRIX(slu_Solve_based_on_LUD, ilu_Inverse_matrix_based_on_LUD, Matrix, lu,
                   Pivoting::before_update)
NEQUAR_FROM_MATRIX(slup_Solve_based_on_LUP, ilup_Inverse_matrix_based_on_LUP, Matrix, lu,
                   Pivoting::partial)
NEQUAR_FROM_MATRIX(sll_Solve_based_on_LLD, ill_Inverse_matrix_based_on_LLD, MatrixSymmetric,
                   cholesky, false)
NEQUAR_FROM_MATRIX(suu_Solve_based_on_UUD, iuu_Inverse_matrix_based_on_UUD, MatrixSymmetric,
                   cholesky, true)
NEQUAR_FROM_LU(Matrix)
NEQUAR_FROM_LU(Vector)
NEQUAR_FROM_CHOLESKY(u_sll_Solve_based_on_LLD, u_ill_Inverse_matrix_based_on_LLD,
                     MatrixTriangularLower, false)
NEQUAR_FROM_CHOLESKY(u_suu_Solve_based_on_UUD, u_iuu_Inverse_matrix_based_on_UUD,
                     MatrixTriangularUpper, true)

#undef NEQUAR_FROM_MATRIX
#undef NEQUAR_FROM_CHOLESKY
#undef NEQUAR_FROM_LU

template class TriangularSolver<double>;
template class TriangularSolver<float>;

}  // namespace nequar
