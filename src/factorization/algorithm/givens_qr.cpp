#include "factorization/algorithm/givens_qr.h"

#include "factorization/algorithm/rotation.h"
#include "kernel/kernel.h"

namespace nequar {

template <class Real>
void givens_qr_of_hessenberg(View<Real> h, const View<Real>* q) {
    const Size n = h.height;
    // Rows of Q^T are rotated, which lie together in memory; row k has k + 1 elements by then.
    if (q != nullptr) {
        kernel::fill(Real(0), *q);
        for (Size i = 0; i < n; ++i) (*q)(i, i) = 1;
    }
    for (Size k = 0; k + 1 < n; ++k) {
        const Real below = h(k + 1, k);
        if (below == 0) continue;
        const Rotation<Real> g = givens_rotation(h(k, k), below);
        h(k, k) = g.c * h(k, k) - g.s * below;
        h(k + 1, k) = 0;
        const Size right = n - k - 1;
        kernel::rotate(h.row(k).part(k + 1, right), h.row(k + 1).part(k + 1, right), g.c, g.s);
        if (q != nullptr)
            kernel::rotate(q->row(k).part(0, k + 2), q->row(k + 1).part(0, k + 2), g.c, g.s);
    }
    if (q != nullptr) kernel::transpose_in_place(*q);
}

template void givens_qr_of_hessenberg(View<double>, const View<double>*);
template void givens_qr_of_hessenberg(View<float>, const View<float>*);

}  // namespace nequar
