#include "nequar_algebra/factorization/triangular_factorization.h"

#include "core/workspace.h"
#include "factorization/algorithm/cholesky.h"
#include "factorization/algorithm/condition.h"
#include "factorization/algorithm/lu.h"
#include "factorization/algorithm/lu_partial.h"
#include "factorization/algorithm/symmetry.h"
#include "factorization/outcome_text.h"
#include "kernel/kernel.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr Size kSquareBytes = 8192;  // workspaces of small matrices stay on the stack

constexpr const char* kCrout = "dluc_Decompose_into_LU_matrices_by_Crout";
constexpr const char* kCroutInPlace = "u_dluc_Decompose_into_LU_matrices_by_Crout";
constexpr const char* kPartial = "dlup_Decompose_into_LU_matrices_with_Partial_pivoting";
constexpr const char* kPartialInPlace = "u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting";
constexpr const char* kCholesky = "dch_Decompose_matrix_by_Cholesky_algorithm";
constexpr const char* kCholeskyInPlace = "u_dch_Decompose_matrix_by_Cholesky_algorithm";

template <class Real>
bool is_square(const Matrix<Real>* a) {
    return a->mh() == a->mw();
}

constexpr kernel::Triangle triangle_of(bool upper) {
    return upper ? kernel::Triangle::upper : kernel::Triangle::lower;
}

// The view in which the named triangle is a lower one, as packed bands have it.
template <class Real>
View<Real> as_lower(bool upper, const View<Real>& a) {
    return upper ? a.transposed() : a;
}

}  // namespace

template <class Real>
TriangularFactorization<Real>::TriangularFactorization() = default;
template <class Real>
TriangularFactorization<Real>::~TriangularFactorization() = default;

template <class Real>
bool TriangularFactorization<Real>::fail_with(const Outcome& outcome, const char* method) const {
    switch (outcome.kind) {
        case OutcomeKind::singular:
            return this->fail("singular", method);
        case OutcomeKind::not_positive_definite:
            return this->fail("non-positive definite", method);
        default:
            return this->fail(text::kOutOfMemory, method);
    }
}

// ---- LU ----------------------------------------------------------------------------------------

template <class Real>
bool TriangularFactorization<Real>::decompose_in_place(Pivoting pivoting, Matrix<Real>* a,
                                                       CNqVectorInt* perm,
                                                       int& interchanges) const {
    const char* const method =
        pivoting == Pivoting::before_update ? kCroutInPlace : kPartialInPlace;
    if (!is_square(a)) return this->fail("non-square", method);
    int* const order = perm->c_Create(a->mh());
    if (order == nullptr) return this->fail(text::kCannotSize, method);
    int exchanges = 0;
    const Outcome outcome = pivoting == Pivoting::before_update
                                ? lu_before_update_in_place(view_of(a), order, exchanges)
                                : lu_partial_in_place(view_of(a), order, exchanges);
    interchanges = exchanges;
    return outcome ? true : fail_with(outcome, method);
}

template <class Real>
bool TriangularFactorization<Real>::u_dluc_Decompose_into_LU_matrices_by_Crout(
    Matrix<Real>* a, CNqVectorInt* perm, int& interchanges) const {
    return decompose_in_place(Pivoting::before_update, a, perm, interchanges);
}

template <class Real>
bool TriangularFactorization<Real>::u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting(
    Matrix<Real>* a, CNqVectorInt* perm, int& interchanges) const {
    return decompose_in_place(Pivoting::partial, a, perm, interchanges);
}

template <class Real>
bool TriangularFactorization<Real>::can_begin_lu(Pivoting pivoting, const Matrix<Real>* a) const {
    const bool before_update = pivoting == Pivoting::before_update;
    if (!is_square(a)) {
        this->fail("non-square", before_update ? kCroutInPlace : kPartialInPlace);
        return this->fail("1", before_update ? kCrout : kPartial);
    }
    if (a->mh() == 0) return this->fail(text::kCannotSize, before_update ? kCrout : kPartial);
    return true;
}

template <class Real>
bool TriangularFactorization<Real>::find_lu(Pivoting pivoting, const Matrix<Real>* a,
                                            const View<Real>& lu, int* perm,
                                            int& interchanges) const {
    if (pivoting == Pivoting::before_update) {
        const Outcome outcome = lu_before_update(view_of(a), lu, perm, interchanges);
        if (outcome) return true;
        fail_with(outcome, kCroutInPlace);
        return this->fail("1", kCrout);
    }
    kernel::copy(view_of(a), lu);
    const Outcome outcome = lu_partial_in_place(lu, perm, interchanges);
    if (outcome) return true;
    fail_with(outcome, kPartialInPlace);
    return this->fail("1", kPartial);
}

template <class Real>
bool TriangularFactorization<Real>::decompose(Pivoting pivoting, const Matrix<Real>* a,
                                              MatrixTriangularLower<Real>* l,
                                              MatrixDiagonal<Real>* d,
                                              MatrixTriangularUpper<Real>* u, CNqVectorInt* perm,
                                              int& interchanges) const {
    const CNqClass::CallScope scope(this);
    const bool before_update = pivoting == Pivoting::before_update;
    const char* const method = before_update ? kCrout : kPartial;
    const char* const in_place = before_update ? kCroutInPlace : kPartialInPlace;
    if (!is_square(a)) return can_begin_lu(pivoting, a);  // records why not
    const int n = a->mh();
    int* const order = perm->c_Create(n);
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (order == nullptr || !work) {
        this->fail(order == nullptr ? text::kCannotSize : text::kOutOfMemory, in_place);
        return this->fail("1", method);
    }
    int exchanges = 0;
    const View<Real> lu = square_view(work.data(), n);
    const bool found = find_lu(pivoting, a, lu, order, exchanges);
    interchanges = exchanges;
    if (!found) return false;
    if (!size_packed(l, n, n) || !size_packed(u, n, n) || (d != nullptr && !size_packed(d, n, n)))
        return this->fail(text::kCannotSize, method);
    if (d != nullptr) {
        for (Size i = 0; i < n; ++i) {
            const Real pivot = d->p()[i] = lu(i, i);
            lu(i, i) = 1;
            for (Size j = i + 1; j < n; ++j) lu(i, j) /= pivot;
        }
    }
    pack_lower(reading(lu), l->p());
    kernel::fill(Size(n), Real(1), l->p());  // band 0
    pack_lower(reading(lu.transposed()), u->p());
    return true;
}

template <class Real>
bool TriangularFactorization<Real>::dluc_Decompose_into_LU_matrices_by_Crout(
    const Matrix<Real>* a, MatrixTriangularLower<Real>* l, MatrixTriangularUpper<Real>* u,
    CNqVectorInt* perm, int& interchanges) const {
    return decompose(Pivoting::before_update, a, l, nullptr, u, perm, interchanges);
}

template <class Real>
bool TriangularFactorization<Real>::dluc_Decompose_into_LU_matrices_by_Crout(
    const Matrix<Real>* a, MatrixTriangularLower<Real>* l, MatrixDiagonal<Real>* d,
    MatrixTriangularUpper<Real>* u, CNqVectorInt* perm, int& interchanges) const {
    return decompose(Pivoting::before_update, a, l, d, u, perm, interchanges);
}

template <class Real>
bool TriangularFactorization<Real>::dlup_Decompose_into_LU_matrices_with_Partial_pivoting(
    const Matrix<Real>* a, MatrixTriangularLower<Real>* l, MatrixTriangularUpper<Real>* u,
    CNqVectorInt* perm, int& interchanges) const {
    return decompose(Pivoting::partial, a, l, nullptr, u, perm, interchanges);
}

template <class Real>
bool TriangularFactorization<Real>::ecn_Estimate_Condition_Number(const Matrix<Real>* a,
                                                                  Real& condition) const {
    constexpr const char* kMethod = "ecn_Estimate_Condition_Number";
    const CNqClass::CallScope scope(this);
    if (!is_square(a)) {
        this->fail("non-square", kPartialInPlace);
        return this->fail("1", kMethod);
    }
    const Size n = a->mh();
    if (n == 0) {
        condition = 1;
        return true;
    }
    Workspace<Real, kSquareBytes> work(n * n);
    Workspace<int> perm(n);
    if (!work || !perm) return this->fail(text::kOutOfMemory, kMethod);
    const View<Real> lu = square_view(work.data(), n);
    kernel::copy(view_of(a), lu);
    int interchanges = 0;
    const Outcome outcome = lu_partial_in_place(lu, perm.data(), interchanges);
    if (!outcome) {
        fail_with(outcome, kPartialInPlace);
        return this->fail("1", kMethod);
    }
    Real norm = 0;
    Real norm_of_inverse = 0;
    if (!norm1(view_of(a), norm) ||
        !estimate_norm1_of_inverse(reading(lu), perm.data(), norm_of_inverse))
        return this->fail(text::kOutOfMemory, kMethod);
    condition = norm * norm_of_inverse;
    return true;
}

// ---- Cholesky ----------------------------------------------------------------------------------

template <class Real>
bool TriangularFactorization<Real>::u_dch_Decompose_matrix_by_Cholesky_algorithm(
    bool lower, Matrix<Real>* a) const {
    if (!is_square(a)) return this->fail("non-square matrix", kCholeskyInPlace);
    const Outcome outcome = cholesky_from_opposite(triangle_of(!lower), view_of(a));
    return outcome ? true : fail_with(outcome, kCholeskyInPlace);
}

template <class Real>
bool TriangularFactorization<Real>::can_begin_cholesky(const MatrixSymmetric<Real>* a) const {
    if (!holds_its_elements(a)) return this->fail(text::kBadInput, kCholesky);
    if (a->mh() == 0) return this->fail(text::kCannotSize, kCholesky);
    return true;
}

template <class Real>
bool TriangularFactorization<Real>::find_cholesky(bool upper, const MatrixSymmetric<Real>* a,
                                                  const View<Real>& factor) const {
    unpack_lower(a->p(), as_lower(upper, factor));
    const Outcome outcome = cholesky(triangle_of(upper), factor);
    if (outcome) return true;
    fail_with(outcome, kCholeskyInPlace);
    return this->fail("1", kCholesky);
}

template <class Real>
template <class Triangular>
bool TriangularFactorization<Real>::decompose_packed(bool upper, const MatrixSymmetric<Real>* a,
                                                     Triangular* factor) const {
    const CNqClass::CallScope scope(this);
    if (!can_begin_cholesky(a)) return false;
    const int n = a->mh();
    Workspace<Real, kSquareBytes> work(Size(n) * n);
    if (!work) {
        this->fail(text::kOutOfMemory, kCholeskyInPlace);
        return this->fail("1", kCholesky);
    }
    const View<Real> dense = square_view(work.data(), n);
    if (!find_cholesky(upper, a, dense)) return false;
    if (!size_packed(factor, n, n)) return this->fail(text::kCannotSize, kCholesky);
    pack_lower(reading(as_lower(upper, dense)), factor->p());
    return true;
}

template <class Real>
bool TriangularFactorization<Real>::dch_Decompose_matrix_by_Cholesky_algorithm(
    const MatrixSymmetric<Real>* a, MatrixTriangularLower<Real>* l) const {
    return decompose_packed(false, a, l);
}

template <class Real>
bool TriangularFactorization<Real>::dch_Decompose_matrix_by_Cholesky_algorithm(
    const MatrixSymmetric<Real>* a, MatrixTriangularUpper<Real>* u) const {
    return decompose_packed(true, a, u);
}

// ---- what follows from the factors -------------------------------------------------------------

template <class Real>
bool TriangularFactorization<Real>::determinant_of(const View<const Real>& a,
                                                   Real& determinant) const {
    constexpr const char* kMethod = "d_Determinant";
    const Size n = a.height;
    Workspace<Real, kSquareBytes> work(n * n);
    Workspace<int> perm(n);
    const View<Real> lu = square_view(work.data(), n);
    int interchanges = 0;
    Outcome outcome{OutcomeKind::no_memory};
    if (work && perm) outcome = lu_before_update(a, lu, perm.data(), interchanges);
    if (!outcome) {
        fail_with(outcome, kCroutInPlace);
        return this->fail("1", kMethod);
    }
    determinant = determinant_from_lu(reading(lu), interchanges);
    return true;
}

template <class Real>
bool TriangularFactorization<Real>::d_Determinant(const Matrix<Real>* a, Real& determinant) const {
    const CNqClass::CallScope scope(this);
    if (!is_square(a)) return this->fail("not square", "d_Determinant");
    return determinant_of(view_of(a), determinant);
}

template <class Real>
bool TriangularFactorization<Real>::d_Determinant(const MatrixSymmetric<Real>* a,
                                                  Real& determinant) const {
    const CNqClass::CallScope scope(this);
    if (!holds_its_elements(a)) return this->fail(text::kBadInput, "d_Determinant");
    const Size n = a->mh();
    Workspace<Real, kSquareBytes> work(n * n);
    if (!work) return this->fail(text::kOutOfMemory, "d_Determinant");
    const View<Real> dense = square_view(work.data(), n);
    unpack_symmetric(a->p(), dense);
    return determinant_of(reading(dense), determinant);
}

template <class Real>
Real TriangularFactorization<Real>::d_Determinant(const Matrix<Real>* a) const {
    const CNqClass::CallScope scope(this);
    Real determinant = 0;
    if (!d_Determinant(a, determinant)) this->report("1", "d_Determinant");
    return determinant;
}

template <class Real>
Real TriangularFactorization<Real>::d_Determinant(const MatrixSymmetric<Real>* a) const {
    const CNqClass::CallScope scope(this);
    Real determinant = 0;
    if (!d_Determinant(a, determinant)) this->report("1", "d_Determinant");
    return determinant;
}

template <class Real>
bool TriangularFactorization<Real>::
    ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(
        const MatrixSymmetric<Real>* a) const {
    const Size n = a->mh();
    Workspace<Real, kSquareBytes> work(n * n);
    if (!work || !holds_its_elements(a)) return false;
    const View<Real> dense = square_view(work.data(), n);
    unpack_lower(a->p(), dense);
    return bool(cholesky(kernel::Triangle::lower, dense));
}

template <class Real>
bool TriangularFactorization<Real>::is_Is_Symmetric(const Matrix<Real>* a) const {
    return is_symmetric(view_of(a));
}

template class TriangularFactorization<double>;
template class TriangularFactorization<float>;

}  // namespace nequar
