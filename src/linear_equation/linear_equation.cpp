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

// The details with which a code fails, for a dense A and for a symmetric one.
struct Details {
    const char* of_dense;
    const char* of_symmetric;
};
constexpr Details kDetails[] = {{"4", "4"}, {"8", "10"}, {"5", "5"}, {"8", "6"}, {"6", "7"},
                                {"8", "8"}, {"7", "9"},  {"1", "1"}, {"2", "2"}, {"3", "3"}};

const Details& details_of(int method) {
    return kDetails[method >= gje && method <= evd ? method : lud];
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

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve_dense(int method, bool is_from_symmetric, const Matrix<Real>* a,
                                       const Object* b, Object* x) const {
    if (method == gje) return this->sgj_Solve_based_on_GJE(a, b, x);
    if (method == qrd) return this->sqr_Solve_based_on_QRD(a, b, x);
    if (method == rqd) return this->srq_Solve_based_on_RQD(a, b, x);
    if (method == svd) return this->ssv_Solve_based_on_SVD(a, Real(kSpectralTolerance), b, x);
    if (method == qld && is_from_symmetric) return this->sql_Solve_based_on_QLD(a, b, x);
    if (method == lqd && is_from_symmetric) return this->slq_Solve_based_on_LQD(a, b, x);
    return this->slu_Solve_based_on_LUD(a, b, x);
}

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve_symmetric(int method, const MatrixSymmetric<Real>* a,
                                           const Object* b, Object* x) const {
    if (method == lld) return this->sll_Solve_based_on_LLD(a, b, x);
    if (method == uud) return this->suu_Solve_based_on_UUD(a, b, x);
    return this->sev_Solve_based_on_EVD(a, Real(kSpectralTolerance), b, x);
}

template <class Real>
bool LinearEquation<Real>::invert_dense(int method, bool is_from_symmetric, const Matrix<Real>* a,
                                        Matrix<Real>* inverse) const {
    if (method == gje) return this->igj_Inverse_matrix_based_on_GJE(a, inverse);
    if (method == qrd) return this->iqr_Inverse_matrix_based_on_QRD(a, inverse);
    if (method == rqd) return this->irq_Inverse_matrix_based_on_RQD(a, inverse);
    if (method == svd)
        return this->isv_Inverse_matrix_based_on_SVD(a, Real(kSpectralTolerance), inverse);
    if (method == qld && is_from_symmetric)
        return this->iql_Inverse_matrix_based_on_QLD(a, inverse);
    if (method == lqd && is_from_symmetric)
        return this->ilq_Inverse_matrix_based_on_LQD(a, inverse);
    return this->ilu_Inverse_matrix_based_on_LUD(a, inverse);
}

template <class Real>
bool LinearEquation<Real>::invert_symmetric(int method, const MatrixSymmetric<Real>* a,
                                            Matrix<Real>* inverse) const {
    if (method == lld) return this->ill_Inverse_matrix_based_on_LLD(a, inverse);
    if (method == uud) return this->iuu_Inverse_matrix_based_on_UUD(a, inverse);
    return this->iev_Inverse_matrix_based_on_EVD(a, Real(kSpectralTolerance), inverse);
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

// What a symmetric matrix is to the methods for dense ones: empty for the codes that get nothing.
// False, and the failure taken over, when its elements are gone or there is no memory for all.
template <class Real>
bool LinearEquation<Real>::export_dense(int method, const MatrixSymmetric<Real>* a,
                                        Matrix<Real>* dense) const {
    if (method >= lld) return true;
    a->e_Export(dense);
    if (holds_its_elements(a) && dense->mh() == a->mh()) return true;
    this->adopt_failure_of(*a);
    return false;
}

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve(int method, const Matrix<Real>* a, const Object* b,
                                 Object* x) const {
    const CNqClass::CallScope scope(this);
    bool is_solved = false;
    if (is_symmetric_method(method)) {
        MatrixSymmetric<Real> symmetric;
        is_solved = import_symmetric(a, &symmetric) && solve_symmetric(method, &symmetric, b, x);
    } else {
        is_solved = solve_dense(method, false, a, b, x);
    }
    return is_solved ? true : this->fail(details_of(method).of_dense, kSolve);
}

template <class Real>
template <class Object>
bool LinearEquation<Real>::solve(int method, const MatrixSymmetric<Real>* a, const Object* b,
                                 Object* x) const {
    const CNqClass::CallScope scope(this);
    bool is_solved = false;
    if (is_symmetric_method(method)) {
        is_solved = solve_symmetric(method, a, b, x);
    } else {
        Matrix<Real> dense;
        is_solved = export_dense(method, a, &dense) && solve_dense(method, true, &dense, b, x);
    }
    return is_solved ? true : this->fail(details_of(method).of_symmetric, kSolve);
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
    bool is_inverted = false;
    if (is_symmetric_method(method)) {
        MatrixSymmetric<Real> symmetric;
        is_inverted =
            import_symmetric(a, &symmetric) && invert_symmetric(method, &symmetric, inverse);
    } else {
        is_inverted = invert_dense(method, false, a, inverse);
    }
    return is_inverted ? true : this->fail(details_of(method).of_dense, kInvert);
}

template <class Real>
bool LinearEquation<Real>::im_Inverse_Matrix(int method, const MatrixSymmetric<Real>* a,
                                             Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    bool is_inverted = false;
    if (is_symmetric_method(method)) {
        is_inverted = invert_symmetric(method, a, inverse);
    } else {
        Matrix<Real> dense;
        is_inverted =
            export_dense(method, a, &dense) && invert_dense(method, true, &dense, inverse);
    }
    return is_inverted ? true : this->fail(details_of(method).of_symmetric, kInvert);
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
