// The members of SymmetricEigenFactorization that make tridiagonal matrices and factor them.
// Included by symmetric_eigen_factorization.cpp alone.
#pragma once

#include "factorization/algorithm/symmetric_eigen.h"
#include "factorization/algorithm/tridiagonal_factor.h"
#include "factorization/outcome_text.h"
#include "factorization/symmetric_copy.h"
#include "nequar_algebra/factorization/symmetric_eigen_factorization.h"

namespace nequar {
namespace tridiagonal_forms {

inline constexpr const char* kReduceInPlace = "u_td_Tridiagonalize_matrix";
inline constexpr const char* kReduce = "tdm_Tridiagonalize_Matrix";
inline constexpr const char* kFactorInPlace =
    "u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix";
inline constexpr const char* kFactor = "dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix";

// A band that has as many super-diagonals as asked for, as far as the order allows them.
template <class Real>
bool size_band(MatrixBand<Real>* band, int n, int p, int q) {
    p = p < n ? p : n - 1;
    q = q < n ? q : n - 1;
    band->c_Create(n, n, p, q);
    int width = 0;
    int height = 0;
    int p_now = 0;
    int q_now = 0;
    band->msb_Matrix_Width_Height_Bands(width, height, p_now, q_now);
    return width == n && height == n && p_now == p && q_now == q;
}

// The symmetric tridiagonal matrix (d, e) in each of its three forms; false when it cannot be
// sized.
template <class Real>
bool store_symmetric(int n, const Real* d, const Real* e, Matrix<Real>* t) {
    if (t->c_Create(n, n) == nullptr) return false;
    const View<Real> view = view_of(t);
    kernel::fill(Real(0), view);
    for (Size i = 0; i < n; ++i) view(i, i) = d[i];
    for (Size i = 0; i + 1 < n; ++i) view(i, i + 1) = view(i + 1, i) = e[i];
    return true;
}
template <class Real>
bool store_symmetric(int n, const Real* d, const Real* e, MatrixSymmetric<Real>* t) {
    if (!size_packed(t, n, n)) return false;
    Real* const packed = t->p();
    kernel::fill(Size(t->vs()), Real(0), packed);
    for (Size i = 0; i < n; ++i) packed[i] = d[i];
    for (Size i = 0; i + 1 < n; ++i) packed[n + i] = e[i];
    return true;
}
template <class Real>
bool store_symmetric(int n, const Real* d, const Real* e, MatrixBand<Real>* t) {
    if (!size_band(t, n, 1, 1)) return false;
    Real* next = t->p();
    for (Size i = 0; i + 1 < n; ++i) *next++ = e[i];
    for (Size i = 0; i < n; ++i) *next++ = d[i];
    for (Size i = 0; i + 1 < n; ++i) *next++ = e[i];
    return true;
}

// R with its two super-diagonals.
template <class Real>
bool store_triangle(int n, const Real* diagonal, const Real* above, const Real* second,
                    Matrix<Real>* r) {
    if (r->c_Create(n, n) == nullptr) return false;
    const View<Real> view = view_of(r);
    kernel::fill(Real(0), view);
    for (Size i = 0; i < n; ++i) view(i, i) = diagonal[i];
    for (Size i = 0; i + 1 < n; ++i) view(i, i + 1) = above[i];
    for (Size i = 0; i + 2 < n; ++i) view(i, i + 2) = second[i];
    return true;
}
template <class Real>
bool store_triangle(int n, const Real* diagonal, const Real* above, const Real* second,
                    MatrixBand<Real>* r) {
    if (!size_band(r, n, 0, 2)) return false;
    Real* next = r->p();
    for (Size i = 0; i < n; ++i) *next++ = diagonal[i];
    for (Size i = 0; i + 1 < n; ++i) *next++ = above[i];
    for (Size i = 0; i + 2 < n; ++i) *next++ = second[i];
    return true;
}

}  // namespace tridiagonal_forms

// ---- A = Q T Q^T -------------------------------------------------------------------------------

// d and e lie apart from the matrices.
template <class Real>
template <class Symmetric>
bool SymmetricEigenFactorization<Real>::tridiagonalize_into(const Symmetric* a, Matrix<Real>* q,
                                                            Real* d, Real* e) const {
    using namespace tridiagonal_forms;
    const Size n = a->mh();
    const SymmetricCopy<Real> copy(a);
    if (!copy) return this->fail(text::kOutOfMemory, kReduceInPlace);
    if (q != nullptr && q->c_Create(a->mh(), a->mh()) == nullptr)
        return this->fail(text::kCannotSize, kReduceInPlace);
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    const Outcome outcome =
        tridiagonal_form(copy.view(), Strided<Real>(d, n), Strided<Real>(e, n > 0 ? n - 1 : 0),
                         q != nullptr ? &q_view : nullptr);
    return outcome ? true : this->fail(text::kOutOfMemory, kReduceInPlace);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::u_td_Tridiagonalize_matrix(Matrix<Real>* a,
                                                                   Matrix<Real>* q) const {
    using namespace tridiagonal_forms;
    if (a == q) return this->fail("1", kReduceInPlace);
    if (a->mh() != a->mw()) return this->fail("2", kReduceInPlace);
    const int n = a->mh();
    Workspace<Real> bands(2 * Size(n));
    if (!bands) return this->fail(text::kOutOfMemory, kReduceInPlace);
    if (!tridiagonalize_into(a, q, bands.data(), bands.data() + n)) return false;
    store_symmetric(n, bands.data(), bands.data() + n, a);
    return true;
}

template <class Real>
bool SymmetricEigenFactorization<Real>::u_td_Tridiagonalize_matrix(Matrix<Real>* a, Matrix<Real>* q,
                                                                   Vector<Real>* d,
                                                                   Vector<Real>* e) const {
    using namespace tridiagonal_forms;
    if (a == q || d == e) return this->fail("1", kReduceInPlace);
    if (a->mh() != a->mw()) return this->fail("2", kReduceInPlace);
    const int n = a->mh();
    d->c_Create(n);
    e->c_Create(n > 0 ? n - 1 : 0);
    if (d->vs() != n || e->vs() != (n > 0 ? n - 1 : 0))
        return this->fail(text::kCannotSize, kReduceInPlace);
    return tridiagonalize_into(a, q, d->p(), e->p());
}

template <class Real>
template <class Symmetric, class Tridiagonal>
bool SymmetricEigenFactorization<Real>::tridiagonalize(const Symmetric* a, Matrix<Real>* q,
                                                       Tridiagonal* t) const {
    using namespace tridiagonal_forms;
    const CNqClass::CallScope scope(this);
    const CNqClass* const result = t;
    if (!is_readable(a))
        return this->fail(a->mh() != a->mw() ? "non-square matrix" : text::kBadInput, kReduce);
    if (result == q) {
        this->fail("1", kReduceInPlace);
        return this->fail("1", kReduce);
    }
    const int n = a->mh();
    Workspace<Real> bands(2 * Size(n));
    if (!bands) return this->fail(text::kOutOfMemory, kReduce);
    if (!tridiagonalize_into(a, q, bands.data(), bands.data() + n)) return this->fail("1", kReduce);
    if (!store_symmetric(n, bands.data(), bands.data() + n, t))
        return this->fail(text::kCannotSize, kReduce);
    return true;
}

template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const Matrix<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  Matrix<Real>* t) const {
    return tridiagonalize(a, q, t);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const Matrix<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  MatrixSymmetric<Real>* t) const {
    return tridiagonalize(a, q, t);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const Matrix<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  MatrixBand<Real>* t) const {
    return tridiagonalize(a, q, t);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  Matrix<Real>* t) const {
    return tridiagonalize(a, q, t);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  MatrixSymmetric<Real>* t) const {
    return tridiagonalize(a, q, t);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::tdm_Tridiagonalize_Matrix(const MatrixSymmetric<Real>* a,
                                                                  Matrix<Real>* q,
                                                                  MatrixBand<Real>* t) const {
    return tridiagonalize(a, q, t);
}

// ---- T = Q R -----------------------------------------------------------------------------------

// The three bands of a tridiagonal input, read from wherever they lie.
template <class Real>
struct SymmetricEigenFactorization<Real>::Bands {
    Size n;
    Strided<const Real> below;
    Strided<const Real> diagonal;
    Strided<const Real> above;

    static Bands of(const Real* d, const Real* e, Size n) {
        const Size rest = n > 0 ? n - 1 : 0;
        return {n, {e, rest}, {d, n}, {e, rest}};
    }
    static Bands of(const Matrix<Real>* t) {
        const Size n = t->mh();
        if (n < 2) return of(t->p()[0], nullptr, n);
        const View<const Real> view = view_of(t);
        return {n, view.block(1, 0, n - 1, n - 1).diagonal(), view.diagonal(),
                view.block(0, 1, n - 1, n - 1).diagonal()};
    }
    static Bands of(const MatrixSymmetric<Real>* t) {
        return of(t->p(), t->p() + t->mh(), t->mh());
    }
};

template <class Real>
template <class Triangle>
bool SymmetricEigenFactorization<Real>::factor_bands(const Bands& bands, Matrix<Real>* q,
                                                     Triangle* r, const char* method) const {
    using namespace tridiagonal_forms;
    const Size n = bands.n;
    Workspace<Real> work(4 * n);
    if (!work) return this->fail(text::kOutOfMemory, method);
    Real* const below = work.data();
    Real* const diagonal = below + n;
    Real* const above = diagonal + n;
    Real* const second = above + n;
    kernel::copy(bands.below, Strided<Real>(below, bands.below.size));
    kernel::copy(bands.diagonal, Strided<Real>(diagonal, n));
    kernel::copy(bands.above, Strided<Real>(above, bands.above.size));
    const int order = static_cast<int>(n);
    if (q != nullptr && q->c_Create(order, order) == nullptr)
        return this->fail(text::kCannotSize, method);
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    qr_of_tridiagonal(n, below, diagonal, above, second, q != nullptr ? &q_view : nullptr);
    if (!store_triangle(order, diagonal, above, second, r))
        return this->fail(text::kCannotSize, method);
    return true;
}

template <class Real>
bool SymmetricEigenFactorization<Real>::u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(
    Matrix<Real>* t, Matrix<Real>* q) const {
    using namespace tridiagonal_forms;
    if (t == q) return this->fail("1", kFactorInPlace);
    if (t->mh() != t->mw()) return this->fail("2", kFactorInPlace);
    return factor_bands(Bands::of(t), q, t, kFactorInPlace);
}

template <class Real>
template <class Triangle>
bool SymmetricEigenFactorization<Real>::factor_vectors(const Vector<Real>* d, const Vector<Real>* e,
                                                       Matrix<Real>* q, Triangle* r) const {
    using namespace tridiagonal_forms;
    const CNqClass* const result = r;
    if (result == q) return this->fail("1", kFactorInPlace);
    if (d->vs() < 1 || e->vs() < d->vs() - 1) return this->fail("2", kFactorInPlace);
    return factor_bands(Bands::of(d->p(), e->p(), d->vs()), q, r, kFactorInPlace);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(
    const Vector<Real>* d, const Vector<Real>* e, Matrix<Real>* q, Matrix<Real>* r) const {
    return factor_vectors(d, e, q, r);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(
    const Vector<Real>* d, const Vector<Real>* e, Matrix<Real>* q, MatrixBand<Real>* r) const {
    return factor_vectors(d, e, q, r);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const Vector<Real>* d, const Vector<Real>* e, Matrix<Real>* q, Matrix<Real>* r) const {
    const CNqClass::CallScope scope(this);
    return factor_vectors(d, e, q, r) ? true : this->fail("1", tridiagonal_forms::kFactor);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const Vector<Real>* d, const Vector<Real>* e, Matrix<Real>* q, MatrixBand<Real>* r) const {
    const CNqClass::CallScope scope(this);
    return factor_vectors(d, e, q, r) ? true : this->fail("1", tridiagonal_forms::kFactor);
}

template <class Real>
template <class Tridiagonal, class Triangle>
bool SymmetricEigenFactorization<Real>::factor_tridiagonal(const Tridiagonal* t, Matrix<Real>* q,
                                                           Triangle* r) const {
    using namespace tridiagonal_forms;
    const CNqClass::CallScope scope(this);
    const CNqClass* const result = r;
    if (!is_readable(t))
        return this->fail(t->mh() != t->mw() ? "non-square matrix" : text::kBadInput, kFactor);
    if (result == q) {
        this->fail("1", kFactorInPlace);
        return this->fail("1", kFactor);
    }
    return factor_bands(Bands::of(t), q, r, kFactorInPlace) ? true : this->fail("1", kFactor);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const Matrix<Real>* t, Matrix<Real>* q, Matrix<Real>* r) const {
    return factor_tridiagonal(t, q, r);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const Matrix<Real>* t, Matrix<Real>* q, MatrixBand<Real>* r) const {
    return factor_tridiagonal(t, q, r);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const MatrixSymmetric<Real>* t, Matrix<Real>* q, Matrix<Real>* r) const {
    return factor_tridiagonal(t, q, r);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const MatrixSymmetric<Real>* t, Matrix<Real>* q, MatrixBand<Real>* r) const {
    return factor_tridiagonal(t, q, r);
}

// A band matrix without off-diagonals is factored as one that holds zeros there.
template <class Real>
template <class Triangle>
bool SymmetricEigenFactorization<Real>::factor_band_matrix(const MatrixBandSymmetric<Real>* t,
                                                           Matrix<Real>* q, Triangle* r) const {
    MatrixSymmetric<Real> whole;
    t->e_Export(&whole);
    if (t->mh() == 0 || whole.mh() != t->mh())
        return this->fail(text::kBadInput, tridiagonal_forms::kFactor);
    return factor_tridiagonal(&whole, q, r);
}

template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const MatrixBandSymmetric<Real>* t, Matrix<Real>* q, Matrix<Real>* r) const {
    return factor_band_matrix(t, q, r);
}
template <class Real>
bool SymmetricEigenFactorization<Real>::dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(
    const MatrixBandSymmetric<Real>* t, Matrix<Real>* q, MatrixBand<Real>* r) const {
    return factor_band_matrix(t, q, r);
}

}  // namespace nequar
