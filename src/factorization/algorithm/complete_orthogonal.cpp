#include "factorization/algorithm/complete_orthogonal.h"

#include <utility>

#include "kernel/kernel.h"

namespace nequar {

namespace {

// Row i of Z goes to row perm(i); perm becomes the identity.
template <class Real>
void scatter_rows(View<Real> z, int* perm) {
    for (Size i = 0; i < z.height; ++i)
        while (perm[i] != i) {
            const Size target = perm[i];
            kernel::swap(z.row(i), z.row(target));
            std::swap(perm[i], perm[target]);
        }
}

}  // namespace

template <class Real>
Outcome complete_orthogonal(View<Real> a, const View<Real>* q, const View<Real>* z, int* perm,
                            int& rank, QrBlocking blocking) {
    PivotedQrResult result;
    Outcome outcome = pivoted_qr(a, q, perm, result, blocking);
    if (!outcome) return outcome;
    rank = result.rank;
    for (Size i = 1; i < a.height; ++i)
        kernel::fill(Real(0), a.block(i, 0, 1, i < a.width ? i : a.width));

    // ( R11 R12 )^T = Z0 T^T
    const View<Real> r = a.rows(0, rank);
    outcome = z != nullptr ? qr(r.transposed(), *z, blocking) : qr(r.transposed(), blocking);
    if (!outcome) return outcome;
    for (Size i = 0; i < rank; ++i) kernel::fill(Real(0), a.block(i, i + 1, 1, a.width - i - 1));
    if (z != nullptr) scatter_rows(*z, perm);
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                                                 \
    template Outcome complete_orthogonal(View<Real>, const View<Real>*, const View<Real>*, int*, \
                                         int&, QrBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
