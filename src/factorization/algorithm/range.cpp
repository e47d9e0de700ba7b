#include "factorization/algorithm/range.h"

#include <cmath>
#include <limits>

#include "kernel/kernel.h"

namespace nequar {

namespace {

template <class Real>
bool find_largest_finite(Strided<const Real> line, Real& largest) {
    const Real here = std::abs(line(kernel::index_of_largest_magnitude(line)));
    if (!(here <= largest)) largest = here;
    // A sum is not finite when an element is not; large finite ones may overflow it.
    if (std::isfinite(kernel::sum_of_magnitudes(line))) return true;
    for (Size j = 0; j < line.size; ++j)
        if (!std::isfinite(line(j))) return false;
    return true;
}

}  // namespace

template <class Real>
bool find_largest_finite(View<const Real> a, Real& largest) {
    largest = 0;
    if (a.is_empty()) return true;
    if (std::abs(a.column_stride) > std::abs(a.row_stride)) a = a.transposed();
    if (a.column_stride == 1 && a.row_stride == a.width) {  // one after another: no short rows
        constexpr Size kStretch = 2048;
        const Size count = a.height * a.width;
        for (Size i = 0; i < count; i += kStretch)
            if (!find_largest_finite(
                    Strided<const Real>(a.data + i, count - i < kStretch ? count - i : kStretch),
                    largest))
                return false;
        return true;
    }
    for (Size i = 0; i < a.height; ++i)
        if (!find_largest_finite(a.row(i), largest)) return false;
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
