// Random numbers for data that stay the same everywhere: the standard fixes the bits of
// std::mt19937, but not what its distributions make of them.
#pragma once

#include <cmath>
#include <numbers>
#include <random>

// Uniform in (0, 1).
inline double uniform(std::mt19937& bits) {
    return (static_cast<double>(bits()) + 0.5) / 4294967296.0;
}

// Standard normal, by the method of Box and Muller.
inline double gaussian(std::mt19937& bits) {
    const double radius = std::sqrt(-2 * std::log(uniform(bits)));
    return radius * std::cos(2 * std::numbers::pi * uniform(bits));
}
