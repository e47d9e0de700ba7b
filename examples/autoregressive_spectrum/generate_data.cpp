// generate_data > two_tones.txt
//
//   x_t = sin(2 pi 0.10 t) + 0.7 sin(2 pi 0.13 t + 1) + 0.6 e_t,    t = 0 ... 399
//
// with standard normal noise e_t: two tones, 5 and 2 decibels above all the noise together.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>

namespace {

// The standard fixes the bits of std::mt19937, but not what the distributions make of them.
double uniform(std::mt19937& bits) {
    return (static_cast<double>(bits()) + 0.5) / 4294967296.0;
}

double gaussian(std::mt19937& bits) {
    const double radius = std::sqrt(-2 * std::log(uniform(bits)));
    return radius * std::cos(2 * std::numbers::pi * uniform(bits));
}

}  // namespace

int main() {
    std::puts("# sin(2 pi 0.10 t) + 0.7 sin(2 pi 0.13 t + 1) + 0.6 e_t, written by generate_data");
    std::mt19937 bits(1927);
    for (int t = 0; t < 400; ++t)
        std::printf("%.4f\n", std::sin(2 * std::numbers::pi * 0.10 * t) +
                                  0.7 * std::sin(2 * std::numbers::pi * 0.13 * t + 1) +
                                  0.6 * gaussian(bits));
    return 0;
}
