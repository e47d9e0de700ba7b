#include "nequar_algebra/factorization/orthogonal_factorization.h"

#include "algebra/algorithm/gram_schmidt.h"
#include "core/workspace.h"
#include "factorization/algorithm/complete_orthogonal.h"
#include "factorization/algorithm/pivoted_qr.h"
#include "factorization/algorithm/qr.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/rotation.h"
#include "factorization/algorithm/rq3.h"
#include "factorization/outcome_text.h"
#include "kernel/kernel.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr Size kMatrixBytes = 8192;  // workspaces of small matrices stay on the stack

struct Names {
    const char* in_place;
    const char* object;
};

constexpr Names kNames[] = {
    {"u_dqrh_Decompose_into_QR_matrices_based_on_Householder",
     "dqrh_Decompose_into_QR_matrices_based_on_Householder"},
    {"u_dqlh_Decompose_into_QL_matrices_based_on_Householder",
     "dqlh_Decompose_into_QL_matrices_based_on_Householder"},
    {"u_drqh_Decompose_into_RQ_matrices_based_on_Householder",
     "drqh_Decompose_into_RQ_matrices_based_on_Householder"},
    {"u_dlqh_Decompose_into_LQ_matrices_based_on_Householder",
     "dlqh_Decompose_into_LQ_matrices_based_on_Householder"},
};
constexpr Names kPivoted = {
    "u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting",
    "dqrc_Decompose_into_QR_matrices_with_Column_pivoting"};
constexpr Names kComplete = {"u_dco_Decompose_matrix_Complete_Orthogonal_algorithm",
                             "dco_Decompose_matrix_Complete_Orthogonal_algorithm"};

const Names& names_of(OrthogonalForm form) {
    return kNames[static_cast<std::size_t>(form)];
}

// The elements of a triangle aligned with the bottom (right) that the packed type, aligned with
// the top (left), would hold too: zero in the factor.
template <class Real>
void clear_strip(OrthogonalForm form, View<Real> t) {
    if (form == OrthogonalForm::rq) t = t.transposed();
    if (form != OrthogonalForm::ql && form != OrthogonalForm::rq) return;
    const Size strip = t.height - t.width;
    for (Size i = 0; i < t.height; ++i) {
        const Size first = i - strip + 1 > 0 ? i - strip + 1 : 0;
        for (Size j = first; j < t.width && j <= i; ++j) t(i, j) = 0;
    }
}

}  // namespace

template <class Real>
OrthogonalFactorization<Real>::OrthogonalFactorization() = default;
template <class Real>
OrthogonalFactorization<Real>::~OrthogonalFactorization() = default;

// ---- reflectors and rotations ------------------------------------------------------------------

template <class Real>
bool OrthogonalFactorization<Real>::ghv_Get_Householder_Vector(Real* x, int n, int pos,
                                                               Real& beta) const {
    constexpr const char* kMethod = "ghv_Get_Householder_Vector";
    CNqString detail;
    if (n <= 0)
        detail.fm_Format("N=%d", n);
    else if (pos < 0 || pos >= n)
        detail.fm_Format("pos = %d/%d", pos, n);
    if (detail.size() > 0) {
        this->set_error_detail(detail);
        this->zsm(CNqString::literal(kMethod));
        return false;
    }
    beta = householder_vector(Strided<Real>(x, n), Size(pos));
    return true;
}

template <class Real>
void OrthogonalFactorization<Real>::chm_Create_Householder_Matrix(const Vector<Real>* v,
                                                                  Matrix<Real>* h) const {
    constexpr const char* kMethod = "chm_Create_Householder_Matrix";
    if (h->c_Create(v->vs(), v->vs()) == nullptr) return this->report(text::kCannotSize, kMethod);
    if (!householder_matrix(view_of(v), view_of(h))) this->report(text::kOutOfMemory, kMethod);
}

template <class Real>
void OrthogonalFactorization<Real>::ggr_Get_Givens_Rotation(Real a, Real b, Real& c,
                                                            Real& s) const {
    const Rotation<Real> rotation = givens_rotation(a, b);
    c = rotation.c;
    s = rotation.s;
}

// ---- QR, QL, RQ, LQ ----------------------------------------------------------------------------

// Records why not, if not.
template <class Real>
bool OrthogonalFactorization<Real>::fits(OrthogonalForm form, const Matrix<Real>* a) const {
    const bool is_refused = (form == OrthogonalForm::ql && a->mh() < a->mw()) ||
                            (form == OrthogonalForm::rq && a->mh() > a->mw());
    return is_refused ? this->fail("11", names_of(form).in_place) : true;
}

template <class Real>
bool OrthogonalFactorization<Real>::can_begin_orthogonal(OrthogonalForm form,
                                                         const Matrix<Real>* a) const {
    if (!fits(form, a)) return this->fail("1", names_of(form).object);
    if (element_count(a) == 0) return this->fail(text::kCannotSize, names_of(form).object);
    return true;
}

template <class Real>
bool OrthogonalFactorization<Real>::fail_orthogonal_for_memory(OrthogonalForm form) const {
    this->fail(text::kOutOfMemory, names_of(form).in_place);
    return this->fail("1", names_of(form).object);
}

template <class Real>
bool OrthogonalFactorization<Real>::decompose_in_place(OrthogonalForm form, Matrix<Real>* a,
                                                       Matrix<Real>* q) const {
    const char* const method = names_of(form).in_place;
    if (a == q) return this->fail("1", method);
    if (!fits(form, a)) return false;
    const int order = begins_with_q(form) ? a->mh() : a->mw();
    if (q != nullptr && q->c_Create(order, order) == nullptr)
        return this->fail(text::kCannotSize, method);
    const View<Real> seen = seen_by_qr(form, view_of(a));
    const Outcome outcome = q != nullptr ? qr(seen, seen_by_qr(form, view_of(q))) : qr(seen);
    return outcome ? true : this->fail(text::kOutOfMemory, method);
}

template <class Real>
bool OrthogonalFactorization<Real>::decompose_dense(OrthogonalForm form, const Matrix<Real>* a,
                                                    Matrix<Real>* q, Matrix<Real>* triangle) const {
    const char* const method = names_of(form).object;
    const CNqClass::CallScope scope(this);
    if (q == triangle) {
        this->fail("1", names_of(form).in_place);
        return this->fail("1", method);
    }
    if (!fits(form, a)) return this->fail("1", method);
    if (triangle->cp_Copy(a) == nullptr) return this->fail(text::kCannotSize, method);
    return decompose_in_place(form, triangle, q) ? true : this->fail("1", method);
}

template <class Real>
template <class Triangular>
bool OrthogonalFactorization<Real>::decompose_packed(OrthogonalForm form, const Matrix<Real>* a,
                                                     Matrix<Real>* q, Triangular* triangle) const {
    const char* const method = names_of(form).object;
    const CNqClass::CallScope scope(this);
    if (!can_begin_orthogonal(form, a)) return false;
    const int m = a->mh();
    const int n = a->mw();
    const int order = begins_with_q(form) ? m : n;
    Workspace<Real, kMatrixBytes> work(Size(m) * n);
    if (!work) return fail_orthogonal_for_memory(form);
    const View<Real> dense = matrix_view(work.data(), m, n);
    kernel::copy(view_of(a), dense);
    if (!size_packed(triangle, m, n) || (q != nullptr && q->c_Create(order, order) == nullptr))
        return this->fail(text::kCannotSize, method);
    const View<Real> seen = seen_by_qr(form, dense);
    const Outcome outcome = q != nullptr ? qr(seen, seen_by_qr(form, view_of(q))) : qr(seen);
    if (!outcome) return fail_orthogonal_for_memory(form);
    clear_strip(form, dense);
    pack_lower(reading(has_lower_triangle(form) ? dense : dense.transposed()), triangle->p());
    return true;
}

#define NEQUAR_IN_PLACE(name, form)                                                        \
    template <class Real>                                                                  \
    bool OrthogonalFactorization<Real>::u_##name(Matrix<Real>* a, Matrix<Real>* q) const { \
        return decompose_in_place(OrthogonalForm::form, a, q);                             \
    }
#define NEQUAR_Q_FIRST(name, form, Triangular)                                       \
    template <class Real>                                                            \
    bool OrthogonalFactorization<Real>::name(const Matrix<Real>* a, Matrix<Real>* q, \
                                             Matrix<Real>* triangle) const {         \
        return decompose_dense(OrthogonalForm::form, a, q, triangle);                \
    }                                                                                \
    template <class Real>                                                            \
    bool OrthogonalFactorization<Real>::name(const Matrix<Real>* a, Matrix<Real>* q, \
                                             Triangular<Real>* triangle) const {     \
        return decompose_packed(OrthogonalForm::form, a, q, triangle);               \
    }
#define NEQUAR_TRIANGLE_FIRST(name, form, Triangular)                                           \
    template <class Real>                                                                       \
    bool OrthogonalFactorization<Real>::name(const Matrix<Real>* a, Matrix<Real>* triangle,     \
                                             Matrix<Real>* q) const {                           \
        return decompose_dense(OrthogonalForm::form, a, q, triangle);                           \
    }                                                                                           \
    template <class Real>                                                                       \
    bool OrthogonalFactorization<Real>::name(const Matrix<Real>* a, Triangular<Real>* triangle, \
                                             Matrix<Real>* q) const {                           \
        return decompose_packed(OrthogonalForm::form, a, q, triangle);                          \
    }

NEQUAR_IN_PLACE(dqrh_Decompose_into_QR_matrices_based_on_Householder, qr)
NEQUAR_IN_PLACE(dqlh_Decompose_into_QL_matrices_based_on_Householder, ql)
NEQUAR_IN_PLACE(drqh_Decompose_into_RQ_matrices_based_on_Householder, rq)
NEQUAR_IN_PLACE(dlqh_Decompose_into_LQ_matrices_based_on_Householder, lq)
NEQUAR_Q_FIRST(dqrh_Decompose_into_QR_matrices_based_on_Householder, qr, MatrixTriangularUpper)
NEQUAR_Q_FIRST(dqlh_Decompose_into_QL_matrices_based_on_Householder, ql, MatrixTriangularLower)
NEQUAR_TRIANGLE_FIRST(drqh_Decompose_into_RQ_matrices_based_on_Householder, rq,
                      MatrixTriangularUpper)
NEQUAR_TRIANGLE_FIRST(dlqh_Decompose_into_LQ_matrices_based_on_Householder, lq,
                      MatrixTriangularLower)

#undef NEQUAR_IN_PLACE
#undef NEQUAR_Q_FIRST
#undef NEQUAR_TRIANGLE_FIRST

// ---- column pivoting ---------------------------------------------------------------------------

// The checks are the callers'.
template <class Real>
bool OrthogonalFactorization<Real>::pivot_in_place(const View<Real>& a, Matrix<Real>* q,
                                                   CNqVectorInt* perm, int& interchanges,
                                                   int& rank) const {
    const char* const method = kPivoted.in_place;
    const int m = static_cast<int>(a.height);
    int* const order = perm->c_Create(static_cast<int>(a.width));
    if (order == nullptr || (q != nullptr && q->c_Create(m, m) == nullptr))
        return this->fail(text::kCannotSize, method);
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    PivotedQrResult result;
    const Outcome outcome = pivoted_qr(a, q != nullptr ? &q_view : nullptr, order, result);
    if (!outcome) return this->fail(text::kOutOfMemory, method);
    interchanges = result.interchanges;
    rank = result.rank;
    return true;
}

template <class Real>
bool OrthogonalFactorization<Real>::
    u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting(
        Matrix<Real>* a, Matrix<Real>* q, CNqVectorInt* perm, int& interchanges, int& rank) const {
    if (a->mh() < a->mw() || a == q) return this->fail("1", kPivoted.in_place);
    return pivot_in_place(view_of(a), q, perm, interchanges, rank);
}

template <class Real>
bool OrthogonalFactorization<Real>::dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
    const Matrix<Real>* a, Matrix<Real>* q, Matrix<Real>* r, CNqVectorInt* perm, int& interchanges,
    int& rank) const {
    const CNqClass::CallScope scope(this);
    if (a->mh() < a->mw() || q == r) {
        this->fail("1", kPivoted.in_place);
        return this->fail("1", kPivoted.object);
    }
    if (r->cp_Copy(a) == nullptr) return this->fail(text::kCannotSize, kPivoted.object);
    return pivot_in_place(view_of(r), q, perm, interchanges, rank)
               ? true
               : this->fail("1", kPivoted.object);
}

template <class Real>
bool OrthogonalFactorization<Real>::dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
    const Matrix<Real>* a, Matrix<Real>* q, MatrixTriangularUpper<Real>* r, CNqVectorInt* perm,
    int& interchanges, int& rank) const {
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    if (m < n) {
        this->fail("1", kPivoted.in_place);
        return this->fail("1", kPivoted.object);
    }
    if (n == 0) return this->fail(text::kCannotSize, kPivoted.object);
    Workspace<Real, kMatrixBytes> work(Size(m) * n);
    if (!work) return this->fail(text::kOutOfMemory, kPivoted.object);
    const View<Real> dense = matrix_view(work.data(), m, n);
    kernel::copy(view_of(a), dense);
    if (!size_packed(r, m, n)) return this->fail(text::kCannotSize, kPivoted.object);
    if (!pivot_in_place(dense, q, perm, interchanges, rank))
        return this->fail("1", kPivoted.object);
    pack_lower(reading(dense.transposed()), r->p());
    return true;
}

// ---- complete orthogonal -----------------------------------------------------------------------

namespace {

// The middle factor in place of A; the outcome is done or no_memory.
template <class Real>
Outcome complete_in_place(const View<Real>& a, Matrix<Real>* q, Matrix<Real>* z, int& rank) {
    Workspace<int> perm(a.width);
    if (!perm) return {OutcomeKind::no_memory};
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    const View<Real> z_view = z != nullptr ? view_of(z) : View<Real>();
    int found = 0;
    const Outcome outcome = complete_orthogonal(
        a, q != nullptr ? &q_view : nullptr, z != nullptr ? &z_view : nullptr, perm.data(), found);
    if (outcome) rank = found;
    return outcome;
}

template <class Real>
bool size_squares(Matrix<Real>* q, int m, Matrix<Real>* z, int n) {
    return (q == nullptr || q->c_Create(m, m) != nullptr) &&
           (z == nullptr || z->c_Create(n, n) != nullptr);
}

}  // namespace

template <class Real>
bool OrthogonalFactorization<Real>::u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(
    Matrix<Real>* a, Matrix<Real>* q, Matrix<Real>* z, int& rank) const {
    const char* const method = kComplete.in_place;
    const CNqClass::CallScope scope(this);
    if (a->mh() < a->mw() || a == q) {
        this->fail("1", kPivoted.in_place);
        return this->fail("1", method);
    }
    if (a == z || (q == z && q != nullptr)) return this->fail("1", method);
    if (!size_squares(q, a->mh(), z, a->mw())) return this->fail(text::kCannotSize, method);
    return complete_in_place(view_of(a), q, z, rank) ? true
                                                     : this->fail(text::kOutOfMemory, method);
}

template <class Real>
bool OrthogonalFactorization<Real>::dco_Decompose_matrix_Complete_Orthogonal_algorithm(
    const Matrix<Real>* a, Matrix<Real>* q, MatrixTriangularLower<Real>* t, Matrix<Real>* z,
    int& rank) const {
    const char* const method = kComplete.object;
    const CNqClass::CallScope scope(this);
    const int m = a->mh();
    const int n = a->mw();
    if (m < n) this->fail("1", kPivoted.in_place);
    if (m < n || (q == z && q != nullptr)) {
        this->fail("1", kComplete.in_place);
        return this->fail("1", method);
    }
    Workspace<Real, kMatrixBytes> work(Size(m) * n);
    if (!work) return this->fail(text::kOutOfMemory, method);
    const View<Real> dense = matrix_view(work.data(), m, n);
    kernel::copy(view_of(a), dense);
    if (!size_squares(q, m, z, n)) return this->fail(text::kCannotSize, method);
    if (!complete_in_place(dense, q, z, rank)) {
        this->fail(text::kOutOfMemory, kComplete.in_place);
        return this->fail("1", method);
    }
    if (rank == 0) return this->fail("2", method);
    if (!size_packed(t, rank, rank)) return this->fail(text::kCannotSize, method);
    pack_lower(reading(dense.block(0, 0, rank, rank)), t->p());
    return true;
}

// ---- others ------------------------------------------------------------------------------------

template <class Real>
bool OrthogonalFactorization<Real>::drq3_Decompose_into_RQ_matrices_for_3x3_matrix(
    const Matrix<Real>* a, Matrix<Real>* r, Matrix<Real>* q) const {
    Matrix<Real> qx, qy, qz;
    return drq3_Decompose_into_RQ_matrices_for_3x3_matrix(a, r, q, &qx, &qy, &qz);
}

template <class Real>
bool OrthogonalFactorization<Real>::drq3_Decompose_into_RQ_matrices_for_3x3_matrix(
    const Matrix<Real>* a, Matrix<Real>* r, Matrix<Real>* q, Matrix<Real>* qx, Matrix<Real>* qy,
    Matrix<Real>* qz) const {
    Real angle_x, angle_y, angle_z;
    return drq3_Decompose_into_RQ_matrices_for_3x3_matrix(a, r, q, qx, qy, qz, angle_x, angle_y,
                                                          angle_z);
}

template <class Real>
bool OrthogonalFactorization<Real>::drq3_Decompose_into_RQ_matrices_for_3x3_matrix(
    const Matrix<Real>* a, Matrix<Real>* r, Matrix<Real>* q, Matrix<Real>* qx, Matrix<Real>* qy,
    Matrix<Real>* qz, Real& angle_x, Real& angle_y, Real& angle_z) const {
    constexpr const char* kMethod = "drq3_Decompose_into_RQ_matrices_for_3x3_matrix";
    Matrix<Real>* const outputs[] = {r, q, qx, qy, qz};
    bool agrees = a->mh() == 3 && a->mw() == 3;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < i; ++j) agrees = agrees && outputs[i] != outputs[j];
    if (!agrees) return this->fail("1", kMethod);

    Real elements[6][9];
    View<Real> views[6];
    for (int i = 0; i < 6; ++i) views[i] = matrix_view(elements[i], 3, 3);
    const View<Real>& product = views[5];
    kernel::copy(view_of(a), views[0]);
    for (Matrix<Real>* output : outputs)
        if (output->c_Create(3, 3) == nullptr) return this->fail(text::kCannotSize, kMethod);
    const Rq3<Real> angles = rq3(views[0], views[2], views[3], views[4]);
    kernel::gemm(Real(1), reading(views[4]), reading(views[3]), kernel::Update::set, product);
    kernel::gemm(Real(1), reading(product), reading(views[2]), kernel::Update::set, views[1]);
    for (int i = 0; i < 5; ++i) kernel::copy(reading(views[i]), view_of(outputs[i]));
    angle_x = angles.angle_x;
    angle_y = angles.angle_y;
    angle_z = angles.angle_z;
    return true;
}

template <class Real>
bool OrthogonalFactorization<Real>::
    ogs_Orthogonalize_set_of_vectors_based_on_Gram_Schmidt_algorithm(const Matrix<Real>* in,
                                                                     Matrix<Real>* out) const {
    constexpr const char* kMethod =
        "ogs_Orthogonalize_set_of_vectors_based_on_Gram_Schmidt_algorithm";
    if (out != in && out->c_Create(in->mh(), in->mw()) == nullptr)
        return this->fail(text::kCannotSize, kMethod);
    const Outcome outcome = gram_schmidt(view_of(in), view_of(out));
    if (outcome) return true;
    return this->fail(outcome.kind == OutcomeKind::zero_column ? "1" : text::kOutOfMemory, kMethod);
}

template class OrthogonalFactorization<double>;
template class OrthogonalFactorization<float>;

}  // namespace nequar
