#include "nequar_algebra/factorization/hessenberg_factorization.h"

#include "factorization/algorithm/givens_qr.h"
#include "factorization/algorithm/hessenberg.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

constexpr const char* kReduce = "dhr_Do_Hessenberg_Reduction";
constexpr const char* kReduceInPlace = "u_dhr_Do_Hessenberg_Reduction";
constexpr const char* kGivens =
    "dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens";
constexpr const char* kGivensInPlace =
    "u_dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens";

}  // namespace

template <class Real>
HessenbergFactorization<Real>::HessenbergFactorization() = default;
template <class Real>
HessenbergFactorization<Real>::~HessenbergFactorization() = default;

// Records why not, if not.
template <class Real>
bool HessenbergFactorization<Real>::can_begin(const char* method, const Matrix<Real>* a,
                                              const Matrix<Real>* q) const {
    if (a == q) return this->fail("1", method);
    if (a->mh() != a->mw()) return this->fail("2", method);
    return true;
}

template <class Real>
bool HessenbergFactorization<Real>::u_dhr_Do_Hessenberg_Reduction(Matrix<Real>* a,
                                                                  Matrix<Real>* q) const {
    if (!can_begin(kReduceInPlace, a, q)) return false;
    if (q != nullptr && q->c_Create(a->mh(), a->mh()) == nullptr)
        return this->fail(text::kCannotSize, kReduceInPlace);
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    const Outcome outcome = hessenberg(view_of(a), q != nullptr ? &q_view : nullptr);
    return outcome ? true : this->fail(text::kOutOfMemory, kReduceInPlace);
}

template <class Real>
bool HessenbergFactorization<Real>::dhr_Do_Hessenberg_Reduction(const Matrix<Real>* a,
                                                                Matrix<Real>* h,
                                                                Matrix<Real>* q) const {
    const CNqClass::CallScope scope(this);
    if (a->mh() != a->mw()) return this->fail("non-square matrix", kReduce);
    if (h == q) {
        this->fail("1", kReduceInPlace);
        return this->fail("1", kReduce);
    }
    if (h->cp_Copy(a) == nullptr) return this->fail(text::kCannotSize, kReduce);
    if (!u_dhr_Do_Hessenberg_Reduction(h, q)) return this->fail("1", kReduce);
    const View<Real> view = view_of(h);
    for (Size i = 2; i < view.height; ++i) kernel::fill(Real(0), view.block(i, 0, 1, i - 1));
    return true;
}

template <class Real>
bool HessenbergFactorization<Real>::
    u_dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(
        Matrix<Real>* h, Matrix<Real>* q) const {
    if (!can_begin(kGivensInPlace, h, q)) return false;
    if (q != nullptr && q->c_Create(h->mh(), h->mh()) == nullptr)
        return this->fail(text::kCannotSize, kGivensInPlace);
    const View<Real> q_view = q != nullptr ? view_of(q) : View<Real>();
    givens_qr_of_hessenberg(view_of(h), q != nullptr ? &q_view : nullptr);
    return true;
}

template <class Real>
bool HessenbergFactorization<Real>::
    dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(
        const Matrix<Real>* h, Matrix<Real>* q, Matrix<Real>* r) const {
    const CNqClass::CallScope scope(this);
    if (h->mh() != h->mw()) return this->fail("non-square matrix", kGivens);
    if (r == q) {
        this->fail("1", kGivensInPlace);
        return this->fail("2", kGivens);
    }
    if (r->cp_Copy(h) == nullptr) return this->fail(text::kCannotSize, kGivens);
    return u_dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(r, q)
               ? true
               : this->fail("2", kGivens);
}

template class HessenbergFactorization<double>;
template class HessenbergFactorization<float>;

}  // namespace nequar
