#include "nequar_algebra/linear_equation/linear_equation.h"

#include "core/twin_name.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "linear_equation/algorithm/spectral_solve.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kSolve = "sle_Solve_Linear_Equation";
constexpr const char* kInvert = "im_Inverse_Matrix";
constexpr const char* kConstrained = "shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0";
constexpr const char* kInRange = "shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat";

constexpr double kSpectralTolerance = 1e-10;

enum Method { gje, lud, qrd, qld, rqd, lqd, svd, lld, uud, evd };

bool is_symmetric_method(int method) {
    return method >= lld && method <= evd;
}

// The detail of a failure: none when the method succeeded.
const char* detail_unless(bool succeeded, const char* detail) {
    return succeeded ? nullptr : detail;
}
const char* detail_unless(bool succeeded, bool is_from_symmetric, const char* of_dense,
                          const char* of_symmetric) {
    return detail_unless(succeeded, is_from_symmetric ? of_symmetric : of_dense);
}

}  // namespace

template <class Real>
LinearEquation<Real>::LinearEquation() {
    this->set_class_name(twin_name<Real>("LCNqUtility_for_Linear_Equation",
                                         "LCNqUtility_for_Linear_Equation_Float"));
}

template <class Real>
LinearEquation<Real>::~LinearEquation() = default;

// ---- choice of the method ----------------------------------------------------------------------

// Without A, where a symmetric one could not be spread, every method has failed.
template <class Real>
template <class Object>
const char* LinearEquation<Real>::solve_dense(int method, bool is_from_symmetric,
                                              const Matrix<Real>* a, const Object* b,
                                              Object* x) const {
    const bool s = is_from_symmetric;
    if (method == gje)
        return detail_unless(a != nullptr && this->sgj_Solve_based_on_GJE(a, b, x), "4");
    if (method == qrd)
        return detail_unless(a != nullptr && this->sqr_Solve_based_on_QRD(a, b, x), "5");
    if (method == rqd)
        return detail_unless(a != nullptr && this->srq_Solve_based_on_RQD(a, b, x), s, "6", "7");
    if (method == svd)
        return detail_unless(
            a != nullptr && this->ssv_Solve_based_on_SVD(a, Real(kSpectralTolerance), b, x), s, "7",
            "9");
    if (method == qld && s)
        return detail_unless(a != nullptr && this->sql_Solve_based_on_QLD(a, b, x), "6");
    if (method == lqd && s)
        return detail_unless(a != nullptr && this->slq_Solve_based_on_LQD(a, b, x), "8");
    return detail_unless(a != nullptr && this->slu_Solve_based_on_LUD(a, b, x), s, "8", "10");
}

template <class Real>
template <class Object>
const char* LinearEquation<Real>::solve_symmetric(int method, const MatrixSymmetric<Real>* a,
                                                  const Object* b, Object* x) const {
    if (method == lld) return detail_unless(this->sll_Solve_based_on_LLD(a, b, x), "1");
    if (method == uud) return detail_unless(this->suu_Solve_based_on_UUD(a, b, x), "2");
    return detail_unless(this->sev_Solve_based_on_EVD(a, Real(kSpectralTolerance), b, x), "3");
}

template <class Real>
const char* LinearEquation<Real>::invert_dense(int method, bool is_from_symmetric,
                                               const Matrix<Real>* a, Matrix<Real>* inverse) const {
    const bool s = is_from_symmetric;
    if (method == gje)
        return detail_unless(a != nullptr && this->igj_Inverse_matrix_based_on_GJE(a, inverse),
                             "4");
    if (method == qrd)
        return detail_unless(a != nullptr && this->iqr_Inverse_matrix_based_on_QRD(a, inverse),
                             "5");
    if (method == rqd)
        return detail_unless(a != nullptr && this->irq_Inverse_matrix_based_on_RQD(a, inverse), s,
                             "6", "7");
    if (method == svd)
        return detail_unless(a != nullptr && this->isv_Inverse_matrix_based_on_SVD(
                                                 a, Real(kSpectralTolerance), inverse),
                             s, "7", "9");
    if (method == qld && s)
        return detail_unless(a != nullptr && this->iql_Inverse_matrix_based_on_QLD(a, inverse),
                             "6");
    if (method == lqd && s)
        return detail_unless(a != nullptr && this->ilq_Inverse_matrix_based_on_LQD(a, inverse),
                             "8");
    return detail_unless(a != nullptr && this->ilu_Inverse_matrix_based_on_LUD(a, inverse), s, "8",
                         "10");
}

template <class Real>
const char* LinearEquation<Real>::invert_symmetric(int method, const MatrixSymmetric<Real>* a,
                                                   Matrix<Real>* inverse) const {
    if (method == lld) return detail_unless(this->ill_Inverse_matrix_based_on_LLD(a, inverse), "1");
    if (method == uud) return detail_unless(this->iuu_Inverse_matrix_based_on_UUD(a, inverse), "2");
    return detail_unless(
        this->iev_Inverse_matrix_based_on_EVD(a, Real(kSpectralTolerance), inverse), "3");
}

// False, and the failure taken over, for a matrix that is not square or cannot be held.
template <class Real>
bool LinearEquation<Real>::import_symmetric(const Matrix<Real>* a,
                                            MatrixSymmetric<Real>* symmetric) const {
    symmetric->i_Import(a);
    if (a->mh() == a->mw() && symmetric->mh() == a->mh()) return true;
    this->adopt_failure_of(*symmetric);
    return false;
}

// What a symmetric matrix is to the methods for dense ones: empty for codes that get nothing, null
// when its elements are gone or there is no memory to spread them.
template <class Real>
const Matrix<Real>* export_dense(int method, const MatrixSymmetric<Real>* a, Matrix<Real>* dense) {
    if (method >= lld) return dense;
    a->e_Export(dense);
    const bool is_spread = holds_its_elements(a) && dense->mh() == a->mh();
    return is_spread ? dense : nullptr;
}

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve(int method, const Matrix<Real>* a, const Object* b,
                                 Object* x) const {
    const CNqClass::CallScope scope(this);
    const char* detail = nullptr;
    if (is_symmetric_method(method)) {
        MatrixSymmetric<Real> symmetric;
        if (import_symmetric(a, &symmetric))
            detail = solve_symmetric(method, &symmetric, b, x);
        else
            detail = method == lld ? "1" : method == uud ? "2" : "3";
    } else {
        detail = solve_dense(method, false, a, b, x);
    }
    return detail == nullptr ? true : this->fail(detail, kSolve);
}

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve(int method, const MatrixSymmetric<Real>* a, const Object* b,
                                 Object* x) const {
    const CNqClass::CallScope scope(this);
    const char* detail = nullptr;
    if (is_symmetric_method(method)) {
        detail = solve_symmetric(method, a, b, x);
    } else {
        Matrix<Real> dense;
        const Matrix<Real>* const spread = export_dense(method, a, &dense);
        if (spread == nullptr) this->adopt_failure_of(*a);
        detail = solve_dense(method, true, spread, b, x);
    }
    return detail == nullptr ? true : this->fail(detail, kSolve);
}

template <class Real>
bool LinearEquation<Real>::sle_Solve_Linear_Equation(int method, const Matrix<Real>* a,
                                                     const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve(method, a, b, x);
}

template <class Real>
bool LinearEquation<Real>::sle_Solve_Linear_Equation(int method, const Matrix<Real>* a,
                                                     const Vector<Real>* b, Vector<Real>* x) const {
    return solve(method, a, b, x);
}

template <class Real>
bool LinearEquation<Real>::sle_Solve_Linear_Equation(int method, const MatrixSymmetric<Real>* a,
                                                     const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve(method, a, b, x);
}

template <class Real>
bool LinearEquation<Real>::sle_Solve_Linear_Equation(int method, const MatrixSymmetric<Real>* a,
                                                     const Vector<Real>* b, Vector<Real>* x) const {
    return solve(method, a, b, x);
}

template <class Real>
bool LinearEquation<Real>::im_Inverse_Matrix(int method, const Matrix<Real>* a,
                                             Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const char* detail = nullptr;
    if (is_symmetric_method(method)) {
        MatrixSymmetric<Real> symmetric;
        if (import_symmetric(a, &symmetric))
            detail = invert_symmetric(method, &symmetric, inverse);
        else
            detail = method == lld ? "1" : method == uud ? "2" : "3";
    } else {
        detail = invert_dense(method, false, a, inverse);
    }
    return detail == nullptr ? true : this->fail(detail, kInvert);
}

template <class Real>
bool LinearEquation<Real>::im_Inverse_Matrix(int method, const MatrixSymmetric<Real>* a,
                                             Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const char* detail = nullptr;
    if (is_symmetric_method(method)) {
        detail = invert_symmetric(method, a, inverse);
    } else {
        Matrix<Real> dense;
        const Matrix<Real>* const spread = export_dense(method, a, &dense);
        if (spread == nullptr) this->adopt_failure_of(*a);
        detail = invert_dense(method, true, spread, inverse);
    }
    return detail == nullptr ? true : this->fail(detail, kInvert);
}

// ---- homogeneous equations under a constraint --------------------------------------------------

// x := basis y, y the solution of (A basis) y = 0; details "2".
template <class Real>
bool LinearEquation<Real>::solve_within(const char* method, const Matrix<Real>* a,
                                        const Matrix<Real>& basis, Vector<Real>* y,
                                        Vector<Real>* x) const {
    if (a->mw() != basis.mh()) return this->fail("2", method);
    Matrix<Real> product;
    if (product.c_Create(a->mh(), basis.mw()) == nullptr)
        return this->fail(text::kOutOfMemory, method);
    kernel::gemm(Real(1), view_of(a), view_of(&basis), kernel::Update::set, view_of(&product));
    if (!this->shle_Solve_Homogeneous_Linear_Equation(&product, y)) return this->fail("2", method);
    if (x->c_Create(basis.mh()) == nullptr) return this->fail(text::kCannotSize, method);
    kernel::gemv(Real(1), view_of(&basis), reading(view_of(y)), kernel::Update::set, view_of(x));
    return true;
}

template <class Real>
bool LinearEquation<Real>::shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(
    const Matrix<Real>* a, const Matrix<Real>* c, Real tolerance, Vector<Real>* x) const {
    const CNqClass::CallScope scope(this);
    Matrix<Real> null_space;
    Vector<Real> y;
    int rank = 0;
    if (!this->fin_Find_Input_Null_vector_space(c, tolerance, rank, &null_space, nullptr, nullptr,
                                                nullptr))
        return this->fail("1", kConstrained);
    return solve_within(kConstrained, a, null_space, &y, x);
}

template <class Real>
bool LinearEquation<Real>::shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
    const Matrix<Real>* a, const Matrix<Real>* g, Real tolerance, Vector<Real>* x,
    Vector<Real>* x_hat) const {
    const CNqClass::CallScope scope(this);
    if (x == x_hat) return this->fail("1", kInRange);
    Matrix<Real> range, v;
    MatrixDiagonal<Real> s;
    Vector<Real> y;
    int rank = 0;
    if (!this->for_Find_Output_Range_vector_space(g, tolerance, rank, &range, nullptr,
                                                  x_hat != nullptr ? &s : nullptr,
                                                  x_hat != nullptr ? &v : nullptr))
        return this->fail("1", kInRange);
    if (!solve_within(kInRange, a, range, &y, x)) return false;
    if (x_hat == nullptr) return true;
    if (x_hat->c_Create(g->mw()) == nullptr) return this->fail(text::kCannotSize, kInRange);
    const View<Real> components(y.p(), rank, 1, 1, 1);
    divide_rows(components, Strided<const Real>(s.p(), rank));
    kernel::gemv(Real(1), reading(view_of(&v).columns(0, rank)), reading(components.column(0)),
                 kernel::Update::set, view_of(x_hat));
    return true;
}

template class LinearEquation<double>;
template class LinearEquation<float>;

}  // namespace nequar
