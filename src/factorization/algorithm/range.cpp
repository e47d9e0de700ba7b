#include "factorization/algorithm/range.h"

#include <cmath>
#include <limits>

#include "kernel/kernel.h"

namespace nequar {

template <class Real>
bool find_largest_finite(View<const Real> a, Real& largest) {
    largest = 0;
    if (a.is_empty()) return true;
    if (std::abs(a.column_stride) > std::abs(a.row_stride)) a = a.transposed();
    for (Size i = 0; i < a.height; ++i) {
        const Strided<const Real> row = a.row(i);
        const Real here = std::abs(row(kernel::index_of_largest_magnitude(row)));
        if (!(here <= largest)) largest = here;
        if (std::isfinite(kernel::sum_of_magnitudes(row))) continue;
        for (Size j = 0; j < a.width; ++j)
            if (!std::isfinite(row(j))) return false;
    }
    return true;
}

template <class Real>
int exponent_near_ends(Real largest) {
    constexpr int widest = std::numeric_limits<Real>::max_exponent / 3;
    if (largest == 0) return 0;
    const int exponent = std::ilogb(largest);
    return exponent > widest || exponent < -widest ? exponent : 0;
}

template <class Real>
void scale_by_power_of_two(View<Real> a, int exponent) {
    if (exponent == 0) return;
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) a(i, j) = std::scalbn(a(i, j), exponent);
}

#define NEQUAR_INSTANTIATE(Real)                                \
    template bool find_largest_finite(View<const Real>, Real&); \
    template int exponent_near_ends(Real);                      \
    template void scale_by_power_of_two(View<Real>, int);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
