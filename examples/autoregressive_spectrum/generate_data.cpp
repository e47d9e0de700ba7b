// generate_data > two_tones.txt
//
//   x_t = sin(2 pi 0.10 t) + 0.7 sin(2 pi 0.13 t + 1) + 0.6 e_t,    t = 0 ... 399
//
// with standard normal noise e_t: two tones, 5 and 2 decibels above all the noise together.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>

#include "support/random_numbers.h"

int main() {
    std::puts("# sin(2 pi 0.10 t) + 0.7 sin(2 pi 0.13 t + 1) + 0.6 e_t, written by generate_data");
    std::mt19937 bits(1927);
    for (int t = 0; t < 400; ++t)
        std::printf("%.4f\n", std::sin(2 * std::numbers::pi * 0.10 * t) +
                                  0.7 * std::sin(2 * std::numbers::pi * 0.13 * t + 1) +
                                  0.6 * gaussian(bits));
    return 0;
}
