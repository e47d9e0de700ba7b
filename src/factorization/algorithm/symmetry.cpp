#include "factorization/algorithm/symmetry.h"

#include <algorithm>

namespace nequar {

template <class Real>
bool is_symmetric(View<const Real> a, Size tile) {
    if (a.height != a.width) return false;
    const Size n = a.height;
    for (Size i0 = 0; i0 < n; i0 += tile) {
        const Size i1 = std::min(i0 + tile, n);
        for (Size j0 = 0; j0 <= i0; j0 += tile) {
            bool differs = false;
            for (Size i = i0; i < i1; ++i) {
                const Size j1 = std::min(j0 + tile, i);
                for (Size j = j0; j < j1; ++j) differs |= !(a(i, j) == a(j, i));
            }
            if (differs) return false;
        }
    }
    return true;
}

template bool is_symmetric(View<const double>, Size);
template bool is_symmetric(View<const float>, Size);

}  // namespace nequar
