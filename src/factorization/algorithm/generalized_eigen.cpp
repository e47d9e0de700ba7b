#include "factorization/algorithm/generalized_eigen.h"

#include "kernel/kernel.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;

template <class Real>
void transform_to_standard(View<const Real> l, View<Real> a, Real* packed) {
    kernel::trsm(Triangle::lower, Diagonal::stored, l, a);
    kernel::transpose_in_place(a);
    kernel::trsm(Triangle::lower, Diagonal::stored, l, a);
    kernel::pack_symmetric(reading(a), packed);
}

template <class Real>
Outcome transform_back(View<const Real> l, View<Real> x) {
    kernel::trsm(Triangle::upper, Diagonal::stored, l.transposed(), x);
    for (Size j = 0; j < x.width; ++j) {
        const Real length = kernel::norm2(reading(x.column(j)));
        if (length == 0) return {OutcomeKind::zero_column, j};
        const Strided<Real> column = x.column(j);
        for (Size i = 0; i < column.size; ++i) column(i) /= length;
    }
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                              \
    template void transform_to_standard(View<const Real>, View<Real>, Real*); \
    template Outcome transform_back(View<const Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
