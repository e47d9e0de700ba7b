// Selection and the ziggurat: what their callers cannot see.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "frame/algorithm/gaussian.h"
#include "frame/algorithm/select.h"

namespace {

// Counts the comparisons that a selection makes.
struct Counted {
    int value;
    static inline long comparisons = 0;
    friend bool operator<(const Counted& a, const Counted& b) {
        ++comparisons;
        return a.value < b.value;
    }
};

void expect_selected(const std::vector<Counted>& given, int rank, nequar::Size work_per_item) {
    std::vector<Counted> a = given, sorted = given;
    Counted::comparisons = 0;
    nequar::select(a.data(), nequar::Size(a.size()), rank, work_per_item);
    EXPECT_LT(Counted::comparisons, 60L * long(a.size()) + 300);
    // Nothing larger before the selected item, nothing smaller behind it.
    std::sort(sorted.begin(), sorted.end());
    std::sort(a.begin(), a.begin() + rank);
    std::sort(a.begin() + rank + 1, a.end());
    EXPECT_TRUE(std::equal(a.begin(), a.end(), sorted.begin(),
                           [](const Counted& x, const Counted& y) { return x.value == y.value; }));
}

// Without any work allowed for the quick pivots, every pivot is a median of medians.
TEST(Select, IsLinearInTheWorstCaseToo) {
    for (const nequar::Size work_per_item : {0, 1, 8})
        for (const int distinct : {1, 2, 40, 1 << 30})
            for (const int n : {1, 24, 25, 29, 30, 1000, 40000}) {
                std::mt19937 random(11);
                std::vector<Counted> a;
                for (int i = 0; i < n; ++i) a.push_back({int(random() % unsigned(distinct))});
                for (const int rank : {0, n / 3, n / 2, n - 1})
                    expect_selected(a, rank, work_per_item);
            }

    // An input made against the pivots: the sampled places hold the largest items, so every quick
    // pivot cuts off next to nothing.
    constexpr int n = 20000;
    std::vector<Counted> a(n, Counted{0});
    std::vector<int> place(n);
    for (int i = 0; i < n; ++i) place[std::size_t(i)] = i;
    int next = n;
    for (int left = n; left > 24; left -= 9) {
        const int step = (left - 1) / 8;
        for (int k = 8; k >= 0; --k) {
            a[std::size_t(place[std::size_t(k * step)])].value = next--;
            place.erase(place.begin() + k * step);
        }
    }
    expect_selected(a, 10, 8);
}

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
