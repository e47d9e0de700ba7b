#include "factorization/algorithm/tridiagonal_factor.h"

#include "factorization/algorithm/rotation.h"
#include "kernel/kernel.h"

namespace nequar {

template <class Real>
void qr_of_tridiagonal(Size n, Real* below, Real* diagonal, Real* above, Real* second,
                       const View<Real>* q) {
    if (q != nullptr) {
        kernel::fill(Real(0), *q);
        for (Size i = 0; i < n; ++i) (*q)(i, i) = 1;
    }
    for (Size k = 0; k + 1 < n; ++k) {
        //   | diagonal  above      second |  row k       | r  x  x |
        //   | below     diagonal'  above' |  row k + 1   | 0  x  x |
        const bool has_second = k + 2 < n;
        if (has_second) second[k] = 0;
        if (below[k] == 0) continue;
        const Rotation<Real> g = givens_rotation(diagonal[k], below[k]);
        diagonal[k] = g.c * diagonal[k] - g.s * below[k];
        const Real upper = above[k];
        const Real lower = diagonal[k + 1];
        above[k] = g.c * upper - g.s * lower;
        diagonal[k + 1] = g.s * upper + g.c * lower;
        if (has_second) {
            second[k] = -g.s * above[k + 1];
            above[k + 1] *= g.c;
        }
        // rows of Q^T; row k has k + 1 elements by now
        if (q != nullptr)
            kernel::rotate(q->row(k).part(0, k + 2), q->row(k + 1).part(0, k + 2), g.c, g.s);
    }
    if (q != nullptr) kernel::transpose_in_place(*q);
}

template void qr_of_tridiagonal(Size, double*, double*, double*, double*, const View<double>*);
template void qr_of_tridiagonal(Size, float*, float*, float*, float*, const View<float>*);

}  // namespace nequar
