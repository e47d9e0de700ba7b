// One standard normal number from a 32-bit state.
//
//   state := state + step (mod 2^32)                 a full cycle, whatever the state
//   bits   = hash(state, 0), hash(state, 1), ...     as many 64-bit words as the number needs
//
// The step s is the inverse of 2^32 / golden ratio, so that the seed k + d enters the cycle
// d * 2^32 / golden ratio places away from the seed k: of all shifts the one that keeps small
// multiples farthest from each other. The hash is a bijection of 64-bit words (Stafford's mix 13)
// on state and draw number, so no two states share a word.
//
// Ziggurat (Marsaglia and Tsang 2000): the density exp(-x^2/2), x >= 0, is covered by 256 layers of
// equal area v, layer i from 0 to x_i wide and from f(x_i) to f(x_{i+1}) high, x_0 > x_1 = r > ...
// > x_256 = 0; the lowest (i = 0) is the base rectangle with the tail beyond r.
//
//     layer = 8 bits,  j = 55 signed bits,  x = j x_i / 2^54
//     |x| < x_{i+1}: taken, 98.8 % of the time; else the wedge under the curve, or the tail
#pragma once

#include <cmath>
#include <cstdint>

namespace nequar {

inline constexpr int kZigguratLayers = 256;

struct ZigguratLayer {
    double width;        // x_i / 2^54
    std::int64_t inner;  // 2^54 x_{i+1} / x_i: below it, j needs no further test
};

struct Ziggurat {
    ZigguratLayer layers[kZigguratLayers];
    double edge[kZigguratLayers + 1];    // x_i
    double height[kZigguratLayers + 1];  // exp(-x_i^2 / 2)
};

extern const Ziggurat kZiggurat;

inline std::uint64_t hashed_bits(std::uint32_t state, std::uint32_t draw) {
    std::uint64_t z = (std::uint64_t(draw) << 32 | state) * 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

inline constexpr std::uint32_t kStateStep = 0x144CBC89u;  // times 0x9E3779B9 = 1 (mod 2^32)

inline std::uint32_t next_state(std::uint32_t state) {
    return state + kStateStep;
}

inline std::uint32_t state_after(std::uint64_t steps, std::uint32_t state) {
    return state + static_cast<std::uint32_t>(steps) * kStateStep;
}

// Uniform on (0, 1], 53 bits.
inline double unit_number(std::uint64_t bits) {
    return static_cast<double>((bits >> 11) + 1) * 0x1p-53;
}

// The rest of the draw, when j lies beyond the inner part of its layer.
double gaussian_beyond(std::uint32_t state, int layer, std::int64_t j);

// Standard normal, from a state that has just been advanced.
inline double gaussian_number(std::uint32_t state) {
    const std::uint64_t bits = hashed_bits(state, 0);
    const int layer = static_cast<int>(bits & (kZigguratLayers - 1));
    const std::int64_t j = static_cast<std::int64_t>(bits) >> 9;
    const ZigguratLayer& shape = kZiggurat.layers[layer];
    if ((j < 0 ? -j : j) < shape.inner) [[likely]]
        return static_cast<double>(j) * shape.width;
    return gaussian_beyond(state, layer, j);
}

}  // namespace nequar
