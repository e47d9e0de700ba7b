#include "nequar_algebra/algebra/triangular_algebra.h"

#include "algebra/algorithm/triangular.h"
#include "algebra/details.h"
#include "algebra/temporary.h"
#include "core/twin_name.h"
#include "kernel/kernel.h"
#include "structured/algorithm/band.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kSolve = "slet_Solve_Linear_Equation_for_Triangular_matrix";
constexpr const char* kInvert = "imt_Inverse_Matrix_for_Triangular_matrix";

template <class Real>
void solve_triangle(bool lower, View<const Real> t, View<Real> x) {
    const kernel::Triangle triangle = lower ? kernel::Triangle::lower : kernel::Triangle::upper;
    if (x.width == 1)
        kernel::trsv(triangle, kernel::Diagonal::stored, t, x.column(0));
    else
        kernel::trsm(triangle, kernel::Diagonal::stored, t, x);
}

template <class Real>
bool overlap(const Matrix<Real>* t, const View<Real>& x) {
    const Real* const first = t->p()[0];
    return x.data < first + element_count(t) && first < x.data + x.height * x.width;
}

template <class Packed>
bool is_whole_square(const Packed* t) {
    return t->mh() == t->mw() && holds_its_elements(t);
}

template <class Real>
void set_identity(const View<Real>& a) {
    kernel::fill(Real(0), a);
    for (Size i = 0; i < a.height; ++i) a(i, i) = 1;
}

constexpr bool is_lower(TriangleSide side) {
    return side == TriangleSide::lower;
}

}  // namespace

template <class Real>
AlgebraForMatrixSpecial<Real>::AlgebraForMatrixSpecial() {
    this->set_class_name(
        twin_name<Real>("LCNqAlgebra_for_Matrix_Special", "LCNqAlgebra_for_MatrixFloat_Special"));
}
template <class Real>
AlgebraForMatrixSpecial<Real>::~AlgebraForMatrixSpecial() = default;

// ---- solves ------------------------------------------------------------------------------------

// Records why not, if not.
template <class Real>
bool AlgebraForMatrixSpecial<Real>::can_solve(const View<const Real>& t, std::ptrdiff_t n) const {
    if (t.height != n || t.width != n) return this->fail("1", kSolve);
    for (Size i = 0; i < n; ++i)
        if (t(i, i) == 0) return this->fail("2", kSolve);
    return true;
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    bool lower, const Matrix<Real>* t, Real* b, bool rhs_by_row, int m, int n) const {
    if (!can_solve(view_of(t), n)) return false;
    if (m < 1) return true;
    const View<Real> x = rhs_by_row ? View<Real>(b, n, m, m, 1) : View<Real>(b, n, m, 1, n);
    const Matrix<Real>* const shared = overlap(t, x) ? t : nullptr;
    const KeptMatrix<Real> kept(t, shared);
    if (!kept) return this->fail(kOutOfMemory, kSolve);
    solve_triangle(lower, kept.view(), x);
    return true;
}

// T shares nothing with the solution.
template <class Real>
template <class Object>
bool AlgebraForMatrixSpecial<Real>::solve_copy(bool lower, const View<const Real>& t,
                                               const Object* b, Object* x) const {
    if (x->cp_Copy(b) == nullptr) return this->fail(kCannotSizeOutput, kSolve);
    const View<Real> columns = columns_of(x);
    if (!can_solve(t, columns.height)) return false;
    solve_triangle(lower, t, columns);
    return true;
}

template <class Real>
template <class Object>
bool AlgebraForMatrixSpecial<Real>::solve_dense(bool lower, const Matrix<Real>* t, const Object* b,
                                                Object* x) const {
    const CNqClass* const output = x;
    const KeptMatrix<Real> kept(t, output == t ? t : nullptr);
    if (!kept) return this->fail(kOutOfMemory, kSolve);
    return solve_copy(lower, kept.view(), b, x);
}

template <class Real>
template <TriangleSide side, class Object>
bool AlgebraForMatrixSpecial<Real>::solve_packed(const MatrixTriangular<Real, side>* t,
                                                 const Object* b, Object* x) const {
    if (!is_whole_square(t))
        return this->fail(x->cp_Copy(b) == nullptr ? kCannotSizeOutput : "1", kSolve);
    const TemporaryMatrix<Real> dense(t->mh(), t->mw());
    if (!dense) return this->fail(kOutOfMemory, kSolve);
    unpack_lower(t->p(), as_lower(side, dense.view()));
    return solve_copy(is_lower(side), reading(dense.view()), b, x);
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    bool lower, const Matrix<Real>* t, const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_dense(lower, t, b, x);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    bool lower, const Matrix<Real>* t, const Vector<Real>* b, Vector<Real>* x) const {
    return solve_dense(lower, t, b, x);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    const Lower* t, const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_packed(t, b, x);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    const Lower* t, const Vector<Real>* b, Vector<Real>* x) const {
    return solve_packed(t, b, x);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    const Upper* t, const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_packed(t, b, x);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::slet_Solve_Linear_Equation_for_Triangular_matrix(
    const Upper* t, const Vector<Real>* b, Vector<Real>* x) const {
    return solve_packed(t, b, x);
}

// ---- inverses ----------------------------------------------------------------------------------

// T shares nothing with the inverse.
template <class Real>
bool AlgebraForMatrixSpecial<Real>::invert(bool lower, const View<const Real>& t,
                                           Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    const int n = static_cast<int>(t.height);
    if (inverse->c_Create(n, n) == nullptr) return this->fail("1", kInvert);
    const View<Real> x = view_of(inverse);
    if (can_solve(t, n)) {
        invert_lower(lower ? t : t.transposed(), lower ? x : x.transposed());
        return true;
    }
    set_identity(x);
    return this->fail("2", kInvert);
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::imt_Inverse_Matrix_for_Triangular_matrix(
    bool lower, const Matrix<Real>* t, Matrix<Real>* inverse) const {
    const KeptMatrix<Real> kept(t, inverse);
    if (!kept) return this->fail(kOutOfMemory, kInvert);
    return invert(lower, kept.view(), inverse);
}

template <class Real>
template <TriangleSide side>
bool AlgebraForMatrixSpecial<Real>::invert_packed(const MatrixTriangular<Real, side>* t,
                                                  Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    if (!is_whole_square(t)) {
        const int n = t->mh();
        if (inverse->c_Create(n, n) == nullptr) return this->fail("1", kInvert);
        set_identity(view_of(inverse));
        this->fail("1", kSolve);
        return this->fail("2", kInvert);
    }
    const TemporaryMatrix<Real> dense(t->mh(), t->mw());
    if (!dense) return this->fail(kOutOfMemory, kInvert);
    unpack_lower(t->p(), as_lower(side, dense.view()));
    return invert(is_lower(side), reading(dense.view()), inverse);
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::imt_Inverse_Matrix_for_Triangular_matrix(
    const Lower* t, Matrix<Real>* inverse) const {
    return invert_packed(t, inverse);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::imt_Inverse_Matrix_for_Triangular_matrix(
    const Upper* t, Matrix<Real>* inverse) const {
    return invert_packed(t, inverse);
}

// ---- products ----------------------------------------------------------------------------------

// An upper product is the transposed lower one with its factors exchanged: (A B)^T = B^T A^T.
template <class Real>
template <TriangleSide side>
bool AlgebraForMatrixSpecial<Real>::multiply(const char* method, bool accumulate,
                                             const MatrixTriangular<Real, side>* a,
                                             const MatrixTriangular<Real, side>* b,
                                             MatrixTriangular<Real, side>* c) const {
    const int n = a->mh();
    bool agrees = is_whole_square(a) && is_whole_square(b) && b->mh() == n;
    if (accumulate) agrees = agrees && is_whole_square(c) && c->mh() == n && c != a && c != b;
    if (!agrees) return this->fail("1", method);
    const TemporaryMatrix<Real> left(n, n);
    const TemporaryMatrix<Real> right(n, n);
    const Size count = packed_shape(a).count();
    Workspace<Real> sum(accumulate ? count : 0);
    if (!left || !right || !sum) return this->fail(kOutOfMemory, method);
    unpack_lower((is_lower(side) ? a : b)->p(), left.view());
    unpack_lower((is_lower(side) ? b : a)->p(), right.view());
    multiply_lower_by_lower(left.view(), right.view());
    if (accumulate) {
        pack_lower(reading(left.view()), sum.data());
        kernel::add(count, c->p(), sum.data(), c->p());
        return true;
    }
    if (!size_packed(c, n, n)) return this->fail(kCannotSizeOutput, method);
    pack_lower(reading(left.view()), c->p());
    return true;
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::mlla_Multiply_Lmatrix_Lmatrix_and_Accumulate(const Lower* a,
                                                                                 const Lower* b,
                                                                                 Lower* c) const {
    return multiply("mlla_Multiply_Lmatrix_Lmatrix_and_Accumulate", true, a, b, c);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::mll_Multiply_Lmatrix_Lmatrix(const Lower* a, const Lower* b,
                                                                 Lower* c) const {
    return multiply("mll_Multiply_Lmatrix_Lmatrix", false, a, b, c);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::muua_Multiply_Umatrix_Umatrix_and_Accumulate(const Upper* a,
                                                                                 const Upper* b,
                                                                                 Upper* c) const {
    return multiply("muua_Multiply_Umatrix_Umatrix_and_Accumulate", true, a, b, c);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::muu_Multiply_Umatrix_Umatrix(const Upper* a, const Upper* b,
                                                                 Upper* c) const {
    return multiply("muu_Multiply_Umatrix_Umatrix", false, a, b, c);
}

// ---- band products -----------------------------------------------------------------------------

template <class Real>
bool AlgebraForMatrixSpecial<Real>::multiply_bands(const char* method, const MatrixBand<Real>* a,
                                                   const MatrixBand<Real>* b, bool accumulate,
                                                   Matrix<Real>* c) const {
    const BandShape left = band_shape_of(a);
    const BandShape right = band_shape_of(b);
    bool agrees = left.width == right.height && a->vs() >= left.count() && b->vs() >= right.count();
    if (accumulate) agrees = agrees && c->mh() == left.height && c->mw() == right.width;
    if (!agrees) return this->fail("1", method);
    if (!accumulate) {
        if (c->c_Create(a->mh(), b->mw()) == nullptr) return this->fail(kCannotSizeOutput, method);
        kernel::fill(Real(0), view_of(c));
    }
    add_product_of_bands(left, a->p(), right, b->p(), view_of(c));
    return true;
}

template <class Real>
bool AlgebraForMatrixSpecial<Real>::mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(
    const MatrixBand<Real>* a, const MatrixBand<Real>* b, Matrix<Real>* c) const {
    return multiply_bands("mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate", a, b, true, c);
}
template <class Real>
bool AlgebraForMatrixSpecial<Real>::mbb_Multiply_Bmatrix_Bmatrix(const MatrixBand<Real>* a,
                                                                 const MatrixBand<Real>* b,
                                                                 Matrix<Real>* c) const {
    return multiply_bands("mbb_Multiply_Bmatrix_Bmatrix", a, b, false, c);
}

template class AlgebraForMatrixSpecial<double>;
template class AlgebraForMatrixSpecial<float>;

}  // namespace nequar
