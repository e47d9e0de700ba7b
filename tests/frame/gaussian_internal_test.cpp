#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/algorithm/gaussian.h"

namespace {

// Bins finer than the layers of the ziggurat, and samples enough to see a wedge that is drawn
// wrongly: one sample in eighty comes from a wedge.
TEST(Ziggurat, FollowsTheDensityWithinItsLayers) {
    constexpr int kBins = 2048;
    constexpr double kLimit = 4.0;
    constexpr double kSamples = 4e7;
    std::vector<double> counts(kBins);
    std::uint32_t state = 0;
    for (int i = 0; i < static_cast<int>(kSamples); ++i) {
        state = nequar::next_state(state);
        const double place = (nequar::gaussian_number(state) / kLimit + 1.0) * (kBins / 2);
        if (place >= 0.0 && place < kBins) counts[static_cast<std::size_t>(place)] += 1.0;
    }
    double chi_squared = 0.0;
    for (int bin = 0; bin < kBins; ++bin) {
        const auto upper_tail = [](int edge) {
            const double x = kLimit * (edge / (kBins / 2.0) - 1.0);
            return 0.5 * std::erfc(x / std::sqrt(2.0));
        };
        const double expected = kSamples * (upper_tail(bin) - upper_tail(bin + 1));
        chi_squared += std::pow(counts[static_cast<std::size_t>(bin)] - expected, 2) / expected;
    }
    EXPECT_LT(std::fabs(chi_squared - kBins) / std::sqrt(2.0 * kBins), 4.5);
}

}  // namespace
