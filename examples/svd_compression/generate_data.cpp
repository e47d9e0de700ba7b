// generate_data > picture.pgm
//
// A landscape of 160 x 160 pixels, drawn from formulas: a sky that brightens downwards, the sun,
// two ranges of hills, a lake with ripples, a house and a fence. Each pixel is the mean of 4 x 4
// points.
#include <cmath>
#include <cstdio>
#include <initializer_list>

namespace {

constexpr int kSize = 160;
constexpr int kPoints = 4;

bool in_box(double x, double y, double left, double right, double top, double bottom) {
    return x >= left && x <= right && y >= top && y <= bottom;
}

// The grey, 0 ... 255, at x (to the right) and y (down), both 0 ... 1.
double grey(double x, double y) {
    const double far_hills = 0.46 - 0.07 * std::sin(7 * x + 0.6) - 0.02 * std::sin(23 * x);
    const double near_hills = 0.60 - 0.06 * std::sin(4 * x + 3.6) - 0.012 * std::sin(31 * x + 1);
    const double shore = 0.80 + 0.02 * std::sin(9 * x);

    // The fence in front of everything: two rails and pointed pales.
    const double in_pale = std::fabs(std::fmod(x * 12, 1.0) - 0.5);
    if (y > 0.86 + 0.06 * in_pale && y < 0.98 && in_pale < 0.22) return 225;
    if (in_box(x, y, 0, 1, 0.895, 0.905) || in_box(x, y, 0, 1, 0.945, 0.955)) return 210;
    // The house: roof, chimney, door, two windows with a cross, wall.
    if (y > 0.50 + 0.9 * std::fabs(x - 0.70) && y < 0.62) return 70;
    if (in_box(x, y, 0.76, 0.79, 0.50, 0.60)) return 50;
    if (in_box(x, y, 0.685, 0.725, 0.70, 0.78)) return 40;
    for (const double left : {0.615, 0.745}) {
        if (!in_box(x, y, left, left + 0.045, 0.66, 0.71)) continue;
        return std::fabs(x - left - 0.0225) < 0.004 || std::fabs(y - 0.685) < 0.004 ? 230 : 60;
    }
    if (in_box(x, y, 0.59, 0.81, 0.62, 0.78)) return 200;
    // Land and water.
    if (y > shore) return 120 - 60 * (y - shore);
    if (y > near_hills + 0.06 && x < 0.52)
        return 150 + 25 * std::sin(160 * y + 5 * std::sin(9 * x));
    if (y > near_hills) return 95 + 12 * std::sin(40 * x) * std::sin(55 * y);
    if (y > far_hills) return 130 + 60 * (y - far_hills);
    // The sun, its light, the sky.
    const double from_sun = std::hypot(x - 0.25, y - 0.20);
    if (from_sun < 0.07) return 255;
    return 165 + 110 * y + 50 * std::exp(-12 * from_sun);
}

}  // namespace

int main() {
    std::printf("P2\n%d %d\n255\n", kSize, kSize);
    for (int row = 0; row < kSize; ++row)
        for (int column = 0; column < kSize; ++column) {
            double sum = 0;
            for (int i = 0; i < kPoints * kPoints; ++i)
                sum += grey((column + (i % kPoints + 0.5) / kPoints) / kSize,
                            (row + (i / kPoints + 0.5) / kPoints) / kSize);
            const long level = std::lround(std::fmin(255, sum / (kPoints * kPoints)));
            std::printf("%ld%c", level, column + 1 == kSize ? '\n' : ' ');
        }
    return 0;
}
