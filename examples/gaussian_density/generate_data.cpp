// generate_data > clouds.txt
//
// Points of two Gaussian clouds in the plane; the library's own generators take their seed from the
// clock, so that a file that stays the same is drawn here.
//
//   cloud   weight   mean x y   covariance xx xy yy
//   point   x y   number of its cloud
#include <cmath>
#include <cstdio>
#include <random>

#include "support/random_numbers.h"

namespace {

struct Cloud {
    int points;
    double x, y, xx, xy, yy;
};

constexpr Cloud kClouds[] = {{900, -1, 0, 1, 0.3, 0.5}, {600, 2.5, 1.5, 0.4, -0.2, 0.8}};

}  // namespace

int main() {
    for (const Cloud& c : kClouds)
        std::printf("cloud %.2f  %g %g  %g %g %g\n", c.points / 1500.0, c.x, c.y, c.xx, c.xy, c.yy);
    std::mt19937 bits(1809);
    int number = 0;
    for (const Cloud& c : kClouds) {
        ++number;
        const double lxx = std::sqrt(c.xx), lyx = c.xy / lxx, lyy = std::sqrt(c.yy - lyx * lyx);
        for (int k = 0; k < c.points; ++k) {
            const double a = gaussian(bits), b = gaussian(bits);
            std::printf("point %.4f %.4f %d\n", c.x + lxx * a, c.y + lyx * a + lyy * b, number);
        }
    }
    return 0;
}
