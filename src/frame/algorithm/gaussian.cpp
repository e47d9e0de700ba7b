#include "frame/algorithm/gaussian.h"

namespace nequar {
namespace {

// The library does no work at its start, so the table is computed by the compiler, for which the
// elementary functions have to be spelled out. Accurate to a few ulps for the arguments used here.

// exp(-y), 0 <= y < 8: (Taylor of y / 16)^16
constexpr double exp_of_minus(double y) {
    const double reduced = -y / 16.0;
    double sum = 1.0;
    for (int k = 20; k > 0; --k) sum = 1.0 + sum * reduced / k;
    for (int square = 0; square < 4; ++square) sum *= sum;
    return sum;
}

// -ln f, 0 < f <= 1, by Newton's iteration on exp(-y) = f from below
constexpr double minus_log(double f) {
    double y = 0.0;
    double scale = 1.0;
    while (f * scale < 0.5) {
        scale *= 2.0;
        y += 0.693147180559945309417;
    }
    const double t = (1.0 - f * scale) / (1.0 + f * scale);  // ln = -2 artanh t, t <= 1/3
    double sum = 0.0;
    for (int k = 41; k > 0; k -= 2) sum = sum * t * t + 1.0 / k;
    return y + 2.0 * t * sum;
}

constexpr double square_root(double a) {
    double root = a > 1.0 ? a : 1.0;
    for (int step = 0; step < 40; ++step) root = 0.5 * (root + a / root);
    return root;
}

constexpr double kTailStart = 3.6541528853610088;      // r
constexpr double kLayerArea = 0.00492867323399141410;  // v = r f(r) + tail beyond r

constexpr Ziggurat make_ziggurat() {
    Ziggurat z{};
    z.edge[1] = kTailStart;
    z.height[1] = exp_of_minus(0.5 * kTailStart * kTailStart);
    z.edge[0] = kLayerArea / z.height[1];  // as wide as a rectangle of the base's area
    z.height[0] = 0.0;
    for (int i = 2; i < kZigguratLayers; ++i) {
        z.height[i] = z.height[i - 1] + kLayerArea / z.edge[i - 1];
        z.edge[i] = square_root(2.0 * minus_log(z.height[i]));
    }
    z.edge[kZigguratLayers] = 0.0;
    z.height[kZigguratLayers] = 1.0;
    for (int i = 0; i < kZigguratLayers; ++i) {
        z.layers[i].width = z.edge[i] * 0x1p-54;
        z.layers[i].inner = static_cast<std::int64_t>(z.edge[i + 1] / z.edge[i] * 0x1p54);
    }
    return z;
}

// The tail beyond r (Marsaglia 1964): x = r + a, a = -ln u / r, taken when -2 ln u' >= a^2. Draws
// go on from `draw`; each is taken with probability 0.93 at least.
double tail_number(std::uint32_t state, std::uint32_t draw) {
    for (;; draw += 2) {
        const double a = -std::log(unit_number(hashed_bits(state, draw))) / kTailStart;
        const double b = -std::log(unit_number(hashed_bits(state, draw + 1)));
        if (b + b >= a * a) return kTailStart + a;
    }
}

}  // namespace

constinit const Ziggurat kZiggurat = make_ziggurat();

double gaussian_beyond(std::uint32_t state, int layer, std::int64_t j) {
    for (std::uint32_t draw = 1;; ++draw) {
        const ZigguratLayer& shape = kZiggurat.layers[layer];
        const double x = static_cast<double>(j) * shape.width;
        if ((j < 0 ? -j : j) < shape.inner) return x;
        if (layer == 0) {
            const double tail = tail_number(state, draw);
            return j < 0 ? -tail : tail;
        }
        // The wedge: a height drawn within the layer, under the curve or not.
        const double low = kZiggurat.height[layer];
        const double high = kZiggurat.height[layer + 1];
        const double y = low + unit_number(hashed_bits(state, draw++)) * (high - low);
        if (y < std::exp(-0.5 * x * x)) return x;
        const std::uint64_t bits = hashed_bits(state, draw);
        layer = static_cast<int>(bits & (kZigguratLayers - 1));
        j = static_cast<std::int64_t>(bits) >> 9;
    }
}

}  // namespace nequar
