// Standard normal samples of single precision, in bulk: out[n-1], out[n-2], ..., out[0] in this
// order, each from one step of the state.
#pragma once

#include "core/view.h"
#include "frame/algorithm/gaussian.h"
#include "statistics/algorithm/selection.h"

namespace nequar {

template <class Real>
void fill_gaussian(Size n, std::uint32_t& state, Real* out) {
    std::uint32_t s = state;
    for (Size i = n - 1; i >= 0; --i) {
        s = next_state(s);
        out[i] = static_cast<Real>(static_cast<float>(gaussian_number(s)));
    }
    state = s;
}

// Columns first ... first + panel.width - 1 of the matrix of `total_width` columns, as high as the
// panel, that fill_gaussian fills row after row from `state`.
template <class Real>
void fill_gaussian_panel(Size first, Size total_width, std::uint32_t state, View<Real> panel) {
    const Size total = panel.height * total_width;
    for (Size k = 0; k < panel.height; ++k) {
        const Size last = k * total_width + first + panel.width - 1;
        std::uint32_t s = state_after(static_cast<std::uint64_t>(total - 1 - last), state);
        fill_gaussian(panel.width, s, &panel(k, 0));
    }
}

// a[i] = mean + sqrt(variance) sample for the selected i in ascending order; answers how many.
template <class Real>
Size replace_gaussian(Real mean, Real variance, const Selection& selection, std::uint32_t& state,
                      Real* a) {
    const Real deviation = std::sqrt(variance);
    std::uint32_t s = state;
    for (Size i = selection.begin; i < selection.end; ++i) {
        if (!selection.has(i)) continue;
        s = next_state(s);
        a[i] = mean + deviation * static_cast<Real>(static_cast<float>(gaussian_number(s)));
    }
    state = s;
    return selection.count();
}

}  // namespace nequar
