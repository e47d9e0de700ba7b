// Sizes that the kernels of small eliminations and their callers agree on.
#pragma once

#include <cstddef>

namespace nequar::kernel {

// The largest order of `lu_small`, `lu_pivoted_small` and `cholesky_small`.
inline constexpr std::ptrdiff_t kSmallOrder = 64;

// Elements behind each row of the transposed panel of `lu_panel` that are the kernel's own.
inline constexpr std::ptrdiff_t kPanelPadding = 16;

}  // namespace nequar::kernel
