#include "nequar_algebra/factorization/symmetric_eigen_factorization.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "factorization/algorithm/generalized_eigen.h"
#include "factorization/algorithm/symmetric_eigen.h"
#include "factorization/algorithm/tridiagonal_qr.h"
#include "factorization/outcome_text.h"
#include "factorization/symmetric_copy.h"
#include "factorization/tridiagonal_forms_impl.h"

namespace nequar {
namespace {

constexpr const char* kRotations = "u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations";
constexpr const char* kByRotations = "devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations";
constexpr const char* kStep = "u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift";
constexpr const char* kByQrSteps = "devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization";
constexpr const char* kGeneralized = "dgea_Do_Generalized_Eigen_Analysis";

constexpr int kStatedLimit = 100;  // sweeps or iterations of the forms that take none
constexpr int kLargestTridiagonalOrder = 10;

int as_int(std::int64_t count) {
    return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

// The vectors to fill, sized; false when they cannot be had.
template <class Real>
bool size_vectors(Matrix<Real>* v, int n) {
    return v == nullptr || v->c_Create(n, n) != nullptr;
}

}  // namespace

template <class Real>
SymmetricEigenFactorization<Real>::SymmetricEigenFactorization() = default;
template <class Real>
SymmetricEigenFactorization<Real>::~SymmetricEigenFactorization() = default;

// ---- Jacobi rotations --------------------------------------------------------------------------

template <class Real>
template <class Symmetric>
bool SymmetricEigenFactorization<Real>::diagonalize(int mode, const Symmetric* a, Matrix<Real>* v,
                                                    MatrixDiagonal<Real>* d, int max_sweeps,
                                                    Real tolerance, int& sweeps,
                                                    int& annihilated) const {
    const CNqClass* const input = a;
    if (!is_readable(a) || input == v || mode < 0 || mode > 2 || std::isnan(tolerance))
        return this->fail("1", kRotations);
    const int n = a->mh();
    const SymmetricCopy<Real> copy(a);
    if (!copy) return this->fail(text::kOutOfMemory, kRotations);
    if (!size_packed(d, n, n) || !size_vectors(v, n))
        return this->fail(text::kCannotSize, kRotations);
    const View<Real> vectors = v != nullptr ? view_of(v) : View<Real>();
    JacobiCounts counts;
    const JacobiOptions options = {static_cast<JacobiMode>(mode), max_sweeps, tolerance};
    const Outcome outcome =
        eigen_by_rotations(options, copy.view(), d->p(), v != nullptr ? &vectors : nullptr, counts);
    sweeps = as_int(counts.sweeps);
    annihilated = as_int(counts.annihilated);
    return outcome ? true : this->fail(text::kOutOfMemory, kRotations);
}

template <class Real>
bool SymmetricEigenFactorization<
    Real>::u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(int mode, Matrix<Real>* a,
                                                                        Matrix<Real>* v,
                                                                        MatrixDiagonal<Real>* d,
                                                                        int max_sweeps,
                                                                        Real tolerance, int& sweeps,
                                                                        int& annihilated) const {
    return diagonalize(mode, a, v, d, max_sweeps, tolerance, sweeps, annihilated);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::
    u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(Matrix<Real>* a, Matrix<Real>* v,
                                                                 MatrixDiagonal<Real>* d) const {
    const CNqClass::CallScope scope(this);
    int sweeps = 0;
    int annihilated = 0;
    if (diagonalize(2, a, v, d, kStatedLimit, Real(1e-31), sweeps, annihilated)) return true;
    return this->fail("1", kRotations);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
    int mode, const MatrixSymmetric<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d,
    int max_sweeps, Real tolerance, int& sweeps, int& annihilated) const {
    const CNqClass::CallScope scope(this);
    if (diagonalize(mode, a, v, d, max_sweeps, tolerance, sweeps, annihilated)) return true;
    return this->fail("1", kByRotations);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
    const MatrixSymmetric<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d) const {
    int sweeps = 0;
    int annihilated = 0;
    return devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
        2, a, v, d, kStatedLimit, Real(1e-32), sweeps, annihilated);
}

template <class Real>
void SymmetricEigenFactorization<Real>::u_jru_Jacobi_Rotation_and_Update(Real** a, Real* d,
                                                                         Real** v, int n, int p,
                                                                         int q, Real threshold,
                                                                         int& annihilated) const {
    if (p < 0 || p >= q || q >= n) return;
    if (jacobi_rotate<Real>(a, d, v, n, p, q, threshold)) ++annihilated;
}

// ---- the tridiagonal route ---------------------------------------------------------------------

template <class Real>
bool SymmetricEigenFactorization<Real>::u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift(
    Vector<Real>* d, Vector<Real>* e, int start, int size, Matrix<Real>* q) const {
    const Size end = Size(start) + size;
    if (start < 0 || size < 0 || end > d->vs() || end - 1 > e->vs()) return this->fail("1", kStep);
    if (q != nullptr && end > q->mw()) return this->fail("2", kStep);
    if (size < 2) return true;
    Workspace<Real> scratch(q != nullptr ? RotationSweeps<Real>::scratch(end) : 0);
    if (!scratch) return this->fail(text::kOutOfMemory, kStep);
    if (q == nullptr) {
        implicit_qr_step<Real>(d->p(), e->p(), start, end - 1, nullptr);
        return true;
    }
    RotationSweeps<Real> sweeps(scratch.data(), end);
    implicit_qr_step(d->p(), e->p(), start, end - 1, sweeps.begin(start, end - 1));
    sweeps.apply(view_of(q).columns(0, end).transposed());
    return true;
}

template <class Real>
bool SymmetricEigenFactorization<Real>::devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
    const MatrixSymmetric<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d, int max_iterations,
    int& iterations) const {
    if (!is_readable(a)) return this->fail("1", kByQrSteps);
    const int n = a->mh();
    const SymmetricCopy<Real> copy(a);
    if (!copy) return this->fail(text::kOutOfMemory, kByQrSteps);
    if (!size_packed(d, n, n) || !size_vectors(v, n))
        return this->fail(text::kCannotSize, kByQrSteps);
    const View<Real> vectors = v != nullptr ? view_of(v) : View<Real>();
    std::int64_t count = 0;
    const Outcome outcome = eigen_by_qr_steps(
        copy.view(), d->p(), v != nullptr ? &vectors : nullptr, max_iterations, count);
    iterations = as_int(count);
    return outcome ? true : this->fail("1", kByQrSteps);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
    const MatrixSymmetric<Real>* a, Matrix<Real>* v, MatrixDiagonal<Real>* d) const {
    int iterations = 0;
    return devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(a, v, d, kStatedLimit,
                                                                      iterations);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::
    ipde_Is_Positive_Definite_matrix_based_on_Eigen_value_decomposition(
        const MatrixSymmetric<Real>* a) const {
    MatrixDiagonal<Real> values;
    if (!devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(a, nullptr, &values))
        return false;
    return values[values.vs() - 1] > 0;
}

// ---- the generalized problem -------------------------------------------------------------------

template <class Real>
bool SymmetricEigenFactorization<Real>::dgea_Do_Generalized_Eigen_Analysis(
    const MatrixSymmetric<Real>* a, const MatrixSymmetric<Real>* b, Matrix<Real>* x,
    MatrixDiagonal<Real>* d) const {
    const CNqClass::CallScope scope(this);
    const int n = a->mh();
    if (!is_readable(a) || !is_readable(b) || b->mh() != n) return this->fail("1", kGeneralized);
    const SymmetricCopy<Real> c(a);
    const SymmetricCopy<Real> l(b);
    MatrixSymmetric<Real> packed;
    if (!c || !l || !size_packed(&packed, n, n))
        return this->fail(text::kOutOfMemory, kGeneralized);
    if (!this->find_cholesky(false, b, l.view())) return this->fail("2", kGeneralized);
    transform_to_standard(reading(l.view()), c.view(), packed.p());
    if (n <= kLargestTridiagonalOrder) {
        if (!devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(&packed, x, d))
            return this->fail("6", kGeneralized);
    } else if (!devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(&packed, x, d)) {
        return this->fail("5", kGeneralized);
    }
    if (x == nullptr) return true;
    return transform_back(reading(l.view()), view_of(x)) ? true : this->fail("7", kGeneralized);
}

template class SymmetricEigenFactorization<double>;
template class SymmetricEigenFactorization<float>;

}  // namespace nequar
