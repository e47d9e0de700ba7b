// Sweeps of plane rotations over adjacent rows, one rotation after another.
#pragma once

#include "core/view.h"

namespace nequar::kernel::reference {

template <class Real>
void rotate_rows(Size sweeps, Size count, Size n, const Real* pairs, Size sweep_stride, Real* a,
                 Size row_stride) {
    for (Size r = 0; r < sweeps; ++r)
        for (Size i = 0; i < count; ++i) {
            const Real t = pairs[r * sweep_stride + 2 * i];
            const Real s = pairs[r * sweep_stride + 2 * i + 1];
            Real* const x = a + i * row_stride;
            Real* const y = x + row_stride;
            for (Size j = 0; j < n; ++j) {
                const Real sheared = x[j] - t * y[j];
                y[j] += s * sheared;
                x[j] = sheared - t * y[j];
            }
        }
}

template <class Real>
void rotate_with_rows(Size count, Size n, Real* x, Real* rows, Size row_stride, const Real* pairs) {
    for (Size q = 0; q < count; ++q) {
        const Real s = pairs[2 * q];
        const Real tau = pairs[2 * q + 1];
        Real* const y = rows + q * row_stride;
        if (s == 0) continue;
        for (Size j = 0; j < n; ++j) {
            const Real g = x[j];
            const Real h = y[j];
            x[j] = g - s * (h + g * tau);
            y[j] = h + s * (g - h * tau);
        }
    }
}

}  // namespace nequar::kernel::reference
