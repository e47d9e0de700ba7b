#include "algebra/algorithm/sums.h"

#include <algorithm>

#include "kernel/kernel.h"

namespace nequar {
namespace {

constexpr Size kChunk = 512;

}  // namespace

template <class Real, std::size_t Count>
void sum(Size n, const std::array<const Real*, Count>& operands, Real* out) {
    alignas(64) Real partial[kChunk];
    for (Size start = 0; start < n; start += kChunk) {
        const Size count = std::min(kChunk, n - start);
        kernel::add(count, operands[0] + start, operands[1] + start, partial);
        for (std::size_t k = 2; k + 1 < Count; ++k)
            kernel::add(count, partial, operands[k] + start, partial);
        kernel::add(count, partial, operands[Count - 1] + start, out + start);
    }
}

template <class Real, std::size_t Count>
void weighted_sum(Size n, const std::array<const Real*, Count>& operands,
                  const std::array<Real, Count>& weights, Real* out) {
    alignas(64) Real partial[kChunk];
    for (Size start = 0; start < n; start += kChunk) {
        const Size count = std::min(kChunk, n - start);
        kernel::add_weighted(count, operands[0] + start, operands[1] + start, weights[0],
                             weights[1], partial);
        for (std::size_t k = 2; k + 1 < Count; ++k)
            kernel::add_weighted(count, partial, operands[k] + start, Real(1), weights[k], partial);
        kernel::add_weighted(count, partial, operands[Count - 1] + start, Real(1),
                             weights[Count - 1], out + start);
    }
}

#define NEQUAR_INSTANTIATE(Real, Count)                                     \
    template void sum(Size, const std::array<const Real*, Count>&, Real*);  \
    template void weighted_sum(Size, const std::array<const Real*, Count>&, \
                               const std::array<Real, Count>&, Real*);

NEQUAR_INSTANTIATE(double, 3)
NEQUAR_INSTANTIATE(double, 4)
NEQUAR_INSTANTIATE(float, 3)
NEQUAR_INSTANTIATE(float, 4)

}  // namespace nequar
