// Finding the non-zeros of a dense run.
#pragma once

#include "core/view.h"

namespace nequar {

// Calls visit(i) for every x[i] other than 0.0; blocks of zeros are passed over at once.
template <class Real, class Visit>
void for_nonzeros(const Real* x, Size count, const Visit& visit) {
    constexpr Size kBlock = 8;
    Size i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        int nonzeros = 0;
        for (Size k = 0; k < kBlock; ++k) nonzeros += x[i + k] != Real(0);
        if (nonzeros == 0) continue;
        for (Size k = 0; k < kBlock; ++k)
            if (x[i + k] != Real(0)) visit(i + k);
    }
    for (; i < count; ++i)
        if (x[i] != Real(0)) visit(i);
}

}  // namespace nequar
