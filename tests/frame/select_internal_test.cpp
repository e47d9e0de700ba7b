#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

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

std::vector<Counted> items(int n, int distinct) {
    std::mt19937 random(11);
    std::vector<Counted> a;
    for (int i = 0; i < n; ++i) a.push_back({static_cast<int>(random() % unsigned(distinct))});
    return a;
}

void expect_partitioned(const std::vector<Counted>& a, const std::vector<Counted>& before,
                        nequar::Size rank) {
    const auto value = [](const Counted& x) { return x.value; };
    std::vector<int> sorted;
    std::transform(before.begin(), before.end(), std::back_inserter(sorted), value);
    std::sort(sorted.begin(), sorted.end());
    const int selected = a[std::size_t(rank)].value;
    EXPECT_EQ(selected, sorted[std::size_t(rank)]);
    std::vector<int> now;
    std::transform(a.begin(), a.end(), std::back_inserter(now), value);
    EXPECT_TRUE(
        std::all_of(now.begin(), now.begin() + rank, [selected](int x) { return x <= selected; }));
    EXPECT_TRUE(
        std::all_of(now.begin() + rank, now.end(), [selected](int x) { return x >= selected; }));
    std::sort(now.begin(), now.end());
    EXPECT_EQ(now, sorted);
}

TEST(Select, IsLinearInTheWorstCaseToo) {
    // Without any work allowed for the quick pivots, every pivot is a median of medians.
    for (const nequar::Size work_per_item : {0, 1, 8})
        for (const int distinct : {1, 2, 40, 1 << 30})
            for (const int n : {1, 24, 25, 29, 30, 1000, 40000}) {
                const std::vector<Counted> before = items(n, distinct);
                for (const nequar::Size rank : {0, n / 3, n / 2, n - 1}) {
                    std::vector<Counted> a = before;
                    Counted::comparisons = 0;
                    nequar::select(a.data(), n, rank, work_per_item);
                    EXPECT_LT(Counted::comparisons, 40L * n + 300) << n << ' ' << distinct;
                    expect_partitioned(a, before, rank);
                }
            }
}

TEST(Select, TakesAPivotWithThreeTenthsOnEitherSide) {
    for (int n = 100; n < 200; ++n) {
        std::vector<Counted> a = items(n, 1 << 30);
        const Counted pivot = nequar::median_of_medians(a.data(), n);
        const auto smaller =
            std::count_if(a.begin(), a.end(), [&pivot](const Counted& x) { return x < pivot; });
        EXPECT_GE(smaller, 3 * n / 10 - 6);
        EXPECT_LE(smaller, 7 * n / 10 + 6);
    }
}

TEST(Select, SurvivesAnInputMadeAgainstItsPivots) {
    // The sampled places hold the largest items, so every quick pivot cuts off next to nothing.
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
    const std::vector<Counted> before = a;
    Counted::comparisons = 0;
    nequar::select(a.data(), n, nequar::Size(10));
    EXPECT_LT(Counted::comparisons, 60L * n);
    expect_partitioned(a, before, 10);
}

}  // namespace
