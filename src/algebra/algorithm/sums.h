// Sums of several arrays:
//
//   out = ((x_0 + x_1) + x_2) + ...           out = ((w_0 x_0 + w_1 x_1) + w_2 x_2) + ...
//
// A chunk at a time: the partial sum stays in the first cache, and out, written once per element
// after all operands were read there, may be any of them.
#pragma once

#include <array>

#include "core/view.h"

namespace nequar {

template <class Real, std::size_t Count>
void sum(Size n, const std::array<const Real*, Count>& operands, Real* out);

template <class Real, std::size_t Count>
void weighted_sum(Size n, const std::array<const Real*, Count>& operands,
                  const std::array<Real, Count>& weights, Real* out);

}  // namespace nequar
