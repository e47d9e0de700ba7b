#include "nequar_algebra/linear_equation/orthogonal_solver.h"

#include "core/workspace.h"
#include "linear_equation/algorithm/orthogonal_solve.h"
#include "linear_equation/right_hand_side.h"
#include "structured/views.h"

namespace nequar {
namespace {

struct Names {
    const char* solve;
    const char* solve_with_factors;
    const char* invert;
    const char* invert_with_factors;
};

constexpr Names kNames[] = {
    {"sqr_Solve_based_on_QRD", "u_sqr_Solve_based_on_QRD", "iqr_Inverse_matrix_based_on_QRD",
     "u_iqr_Inverse_matrix_based_on_QRD"},
    {"sql_Solve_based_on_QLD", "u_sql_Solve_based_on_QLD", "iql_Inverse_matrix_based_on_QLD",
     "u_iql_Inverse_matrix_based_on_QLD"},
    {"srq_Solve_based_on_RQD", "u_srq_Solve_based_on_RQD", "irq_Inverse_matrix_based_on_RQD",
     "u_irq_Inverse_matrix_based_on_RQD"},
    {"slq_Solve_based_on_LQD", "u_slq_Solve_based_on_LQD", "ilq_Inverse_matrix_based_on_LQD",
     "u_ilq_Inverse_matrix_based_on_LQD"},
};

const Names& names_of(OrthogonalForm form) {
    return kNames[static_cast<std::size_t>(form)];
}

// Whether the array of a matrix and one given from outside have an element in common.
template <class Real>
bool overlap(const Matrix<Real>* q, const View<Real>& x) {
    const Real* const first = q->p()[0];
    const Real* const last = first + element_count(q);
    return !x.is_empty() && x.data < last && first < x.data + x.height * x.width;
}

}  // namespace

template <class Real>
OrthogonalSolver<Real>::OrthogonalSolver() = default;
template <class Real>
OrthogonalSolver<Real>::~OrthogonalSolver() = default;

// ---- from the matrix ---------------------------------------------------------------------------

template <class Real>
template <class Object>
bool OrthogonalSolver<Real>::solve(OrthogonalForm form, const Matrix<Real>* a, const Object* b,
                                   Object* x) const {
    const Names& names = names_of(form);
    const CNqClass::CallScope scope(this);
    if (!this->can_begin_orthogonal(form, a)) return this->fail("1", names.solve);
    const Size n = a->mh();
    if (a->mw() != n || columns_of(b).height != n || columns_of(b).width < 1) {
        this->fail("1", names.solve_with_factors);
        return this->fail("2", names.solve);
    }
    // A must outlive the right-hand side's way into the solution.
    const CNqClass* const output = x;
    const bool shares_storage = output == a;
    Workspace<Real, kSquareBytes> kept(shares_storage ? n * n : 0);
    if (!kept) return this->fail(text::kOutOfMemory, names.solve);
    View<const Real> matrix = view_of(a);
    if (shares_storage) {
        kernel::copy(matrix, square_view(kept.data(), n));
        matrix = square_view(kept.data(), n);
    }
    if (x->cp_Copy(b) == nullptr) {
        this->fail(text::kCannotSize, names.solve_with_factors);
        return this->fail("2", names.solve);
    }
    const Outcome outcome = solve_by_orthogonal(form, matrix, columns_of(x));
    if (outcome) return true;
    if (outcome.kind == OutcomeKind::no_memory) {
        this->fail_orthogonal_for_memory(form);
        return this->fail("1", names.solve);
    }
    this->fail("2", names.solve_with_factors);
    return this->fail("2", names.solve);
}

template <class Real>
bool OrthogonalSolver<Real>::invert(OrthogonalForm form, const Matrix<Real>* a,
                                    Matrix<Real>* inverse) const {
    const Names& names = names_of(form);
    const CNqClass::CallScope scope(this);
    if (!this->can_begin_orthogonal(form, a)) return this->fail("1", names.invert);
    const int n = a->mh();
    if (a->mw() != n) {
        this->fail("1", names.solve_with_factors);
        this->fail("2", names.invert_with_factors);
        return this->fail("2", names.invert);
    }
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (!work) return this->fail(text::kOutOfMemory, names.invert);
    const View<Real> factor = square_view(work.data(), n);
    kernel::copy(view_of(a), factor);
    if (inverse->c_Create(n, n) == nullptr) {
        this->fail("1", names.invert_with_factors);
        return this->fail("2", names.invert);
    }
    const Outcome outcome = invert_by_orthogonal(form, factor, view_of(inverse));
    if (outcome) return true;
    if (outcome.kind == OutcomeKind::no_memory) {
        this->fail_orthogonal_for_memory(form);
        return this->fail("1", names.invert);
    }
    this->fail("2", names.solve_with_factors);
    this->fail("2", names.invert_with_factors);
    return this->fail("2", names.invert);
}

// ---- from the factors --------------------------------------------------------------------------

// Records why not, if not. The diagonal of a packed triangle is its band 0.
template <class Real>
template <class Triangular>
bool OrthogonalSolver<Real>::can_solve_with(OrthogonalForm form, const Matrix<Real>* q,
                                            const Triangular* t, std::ptrdiff_t n,
                                            std::ptrdiff_t k) const {
    const char* const method = names_of(form).solve_with_factors;
    if (k < 1 || q->mh() != n || q->mw() != n || t->mh() != n || t->mw() != n ||
        !holds_its_elements(t))
        return this->fail("1", method);
    for (Size i = 0; i < n; ++i)
        if (t->p()[i] == 0) return this->fail("2", method);
    return true;
}

// The checks are the callers'; false, and nothing recorded, when memory cannot be had.
template <class Real>
template <class Triangular>
bool OrthogonalSolver<Real>::solve_in_place(OrthogonalForm form, const Matrix<Real>* q,
                                            const Triangular* t, const View<Real>& x) const {
    const Size n = x.height;
    const bool shares_storage = overlap(q, x);
    Workspace<Real, kSquareBytes> triangle(n * n);
    Workspace<Real> work(n * x.width);
    Workspace<Real> kept(shares_storage ? n * n : 0);
    if (!triangle || !work || !kept) return false;
    View<const Real> orthogonal = view_of(q);
    if (shares_storage) {
        kernel::copy(orthogonal, square_view(kept.data(), n));
        orthogonal = square_view(kept.data(), n);
    }
    const View<Real> dense = square_view(triangle.data(), n);
    unpack_lower(t->p(), has_lower_triangle(form) ? dense : dense.transposed());
    return bool(solve_with_orthogonal_factors(form, orthogonal, reading(dense), x,
                                              View<Real>(work.data(), n, x.width, x.width)));
}

template <class Real>
template <class Triangular, class Object>
bool OrthogonalSolver<Real>::solve_with(OrthogonalForm form, const Matrix<Real>* q,
                                        const Triangular* t, const Object* b, Object* x) const {
    const char* const method = names_of(form).solve_with_factors;
    const View<const Real> right = columns_of(b);
    if (!can_solve_with(form, q, t, right.height, right.width)) return false;
    // Q, or the storage of the triangle, may belong to the object that takes the solution: it is
    // written after the last look at them.
    Workspace<Real> work(right.height * right.width);
    if (!work) return this->fail(text::kOutOfMemory, method);
    const View<Real> solution(work.data(), right.height, right.width, right.width);
    kernel::copy(right, solution);
    if (!solve_in_place(form, q, t, solution)) return this->fail(text::kOutOfMemory, method);
    if (x != b && x->cp_Copy(b) == nullptr) return this->fail(text::kCannotSize, method);
    kernel::copy(reading(solution), columns_of(x));
    return true;
}

template <class Real>
template <class Triangular>
bool OrthogonalSolver<Real>::solve_array(OrthogonalForm form, const Matrix<Real>* q,
                                         const Triangular* t, Real* data, bool row_major, int k,
                                         int n) const {
    if (!can_solve_with(form, q, t, n, k)) return false;
    return solve_in_place(form, q, t, view_of_array(row_major, n, k, data))
               ? true
               : this->fail(text::kOutOfMemory, names_of(form).solve_with_factors);
}

//   Q T:        inverse = T^-1 Q^T
//   T Q^T:      inverse = Q T^-1, the transposed problem T^T X^T = Q^T
template <class Real>
template <class Triangular>
bool OrthogonalSolver<Real>::invert_with(OrthogonalForm form, const Matrix<Real>* q,
                                         const Triangular* t, Matrix<Real>* inverse) const {
    const Names& names = names_of(form);
    const CNqClass::CallScope scope(this);
    const int n = t->mh();
    // an identity of order 0 has no column
    if (!can_solve_with(form, q, t, n, n)) return this->fail("2", names.invert_with_factors);
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (!work) return this->fail(text::kOutOfMemory, names.invert_with_factors);
    const View<Real> dense = square_view(work.data(), n);
    unpack_lower(t->p(), has_lower_triangle(form) ? dense : dense.transposed());
    if (inverse->cp_Copy(q) == nullptr) return this->fail("1", names.invert_with_factors);
    invert_with_orthogonal_factors(form, reading(dense), view_of(inverse));
    return true;
}

// ---- the names ---------------------------------------------------------------------------------

#define NEQUAR_FROM_MATRIX(solve_name, invert_name, form)                                          \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::solve_name(const Matrix<Real>* a, const Matrix<Real>* b,          \
                                            Matrix<Real>* x) const {                               \
        return solve(OrthogonalForm::form, a, b, x);                                               \
    }                                                                                              \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::solve_name(const Matrix<Real>* a, const Vector<Real>* b,          \
                                            Vector<Real>* x) const {                               \
        return solve(OrthogonalForm::form, a, b, x);                                               \
    }                                                                                              \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::invert_name(const Matrix<Real>* a, Matrix<Real>* inverse) const { \
        return invert(OrthogonalForm::form, a, inverse);                                           \
    }

// First and Second are the factors in the order of the form; q and t name them.
#define NEQUAR_FROM_FACTORS(solve_name, invert_name, form, First, first, Second, second)           \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::solve_name(const First<Real>* first, const Second<Real>* second,  \
                                            const Matrix<Real>* b, Matrix<Real>* x) const {        \
        return solve_with(OrthogonalForm::form, q, t, b, x);                                       \
    }                                                                                              \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::solve_name(const First<Real>* first, const Second<Real>* second,  \
                                            const Vector<Real>* b, Vector<Real>* x) const {        \
        return solve_with(OrthogonalForm::form, q, t, b, x);                                       \
    }                                                                                              \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::solve_name(const First<Real>* first, const Second<Real>* second,  \
                                            Real* data, bool row_major, int k, int n) const {      \
        return solve_array(OrthogonalForm::form, q, t, data, row_major, k, n);                     \
    }                                                                                              \
    template <class Real>                                                                          \
    bool OrthogonalSolver<Real>::invert_name(const First<Real>* first, const Second<Real>* second, \
                                             Matrix<Real>* inverse) const {                        \
        return invert_with(OrthogonalForm::form, q, t, inverse);                                   \
    }

NEQUAR_FROM_MATRIX(sqr_Solve_based_on_QRD, iqr_Inverse_matrix_based_on_QRD, qr)
NEQUAR_FROM_MATRIX(sql_Solve_based_on_QLD, iql_Inverse_matrix_based_on_QLD, ql)
NEQUAR_FROM_MATRIX(srq_Solve_based_on_RQD, irq_Inverse_matrix_based_on_RQD, rq)
NEQUAR_FROM_MATRIX(slq_Solve_based_on_LQD, ilq_Inverse_matrix_based_on_LQD, lq)
NEQUAR_FROM_FACTORS(u_sqr_Solve_based_on_QRD, u_iqr_Inverse_matrix_based_on_QRD, qr, Matrix, q,
                    MatrixTriangularUpper, t)
NEQUAR_FROM_FACTORS(u_sql_Solve_based_on_QLD, u_iql_Inverse_matrix_based_on_QLD, ql, Matrix, q,
                    MatrixTriangularLower, t)
NEQUAR_FROM_FACTORS(u_srq_Solve_based_on_RQD, u_irq_Inverse_matrix_based_on_RQD, rq,
                    MatrixTriangularUpper, t, Matrix, q)
NEQUAR_FROM_FACTORS(u_slq_Solve_based_on_LQD, u_ilq_Inverse_matrix_based_on_LQD, lq,
                    MatrixTriangularLower, t, Matrix, q)

#undef NEQUAR_FROM_MATRIX
#undef NEQUAR_FROM_FACTORS

template class OrthogonalSolver<double>;
template class OrthogonalSolver<float>;

}  // namespace nequar
