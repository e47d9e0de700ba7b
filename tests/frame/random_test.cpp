#include "nequar_algebra/frame/random.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <unordered_set>
#include <vector>

#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

constexpr int kSamples = 1000000;

std::vector<double> gaussians(int seed, int count = kSamples) {
    std::vector<double> x(static_cast<std::size_t>(count));
    for (double& sample : x) sample = static_cast<double>(Nq_Rand_Gaussianf(seed));
    return x;
}

// Kolmogorov and Smirnov's statistic, sqrt(n) times the largest distance to the normal
// distribution.
double kolmogorov_smirnov(std::vector<double> x) {
    std::sort(x.begin(), x.end());
    const double n = double(x.size());
    double distance = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double normal = 0.5 * std::erfc(-x[i] / std::sqrt(2.0));
        distance = std::max({distance, normal - double(i) / n, double(i + 1) / n - normal});
    }
    return distance * std::sqrt(n);
}

// sqrt(n) times the correlation of x with y shifted by `lag`: standard normal when independent.
double correlation(const std::vector<double>& x, const std::vector<double>& y, int lag) {
    double sum = 0.0;
    const std::size_t count = x.size() - static_cast<std::size_t>(lag);
    for (std::size_t i = 0; i < count; ++i) sum += x[i + static_cast<std::size_t>(lag)] * y[i];
    return std::fabs(sum) / std::sqrt(static_cast<double>(count));
}

TEST(Gaussian, EverySeedGivesIndependentNormalSamples) {
    for (const int seed : {0, 1, -1, 1700000000, INT_MIN}) {
        SCOPED_TRACE(seed);
        const std::vector<double> x = gaussians(seed);
        EXPECT_LT(kolmogorov_smirnov(x), 1.95);  // 0.1 %
        for (const int lag : {1, 2, 3, 4, 5, 10, 100, 1000, 65536})
            EXPECT_LT(correlation(x, x, lag), 4.5) << lag;
        // Beyond 4.5 one expects 6.8 of 10^6.
        const auto beyond = std::count_if(x.begin(), x.end(),
                                          [](double sample) { return std::fabs(sample) > 4.5; });
        EXPECT_TRUE(beyond > 0 && beyond < 25) << beyond;
    }
}

TEST(Gaussian, NeighbouringSeedsAreUncorrelated) {
    constexpr int kShort = 100000;
    for (const int seed : {0, -3, 1700000000, INT_MAX - 8}) {
        const std::vector<double> x = gaussians(seed, kShort);
        for (const int step : {1, 2, 7})
            for (const int lag : {0, 1, 2}) {
                const std::vector<double> y = gaussians(seed + step, kShort);
                EXPECT_LT(worse(correlation(x, y, lag), correlation(y, x, lag)), 4.5)
                    << seed << ' ' << step;
            }
    }
    // The first samples of successive seeds are a sample of their own.
    std::vector<double> firsts;
    for (int seed = -kShort; seed < kShort; ++seed) firsts.push_back(gaussians(seed, 1)[0]);
    EXPECT_LT(kolmogorov_smirnov(firsts), 1.95);
    EXPECT_LT(correlation(firsts, firsts, 1), 4.5);
    // No state comes twice.
    std::unordered_set<int> states;
    for (int i = 0, state = 5; i < kSamples; ++i, Nq_Rand_Gaussianf(state)) states.insert(state);
    EXPECT_EQ(states.size(), std::size_t(kSamples));
}

TWINS(Generator);

TWIN_TEST(Generator, IsUniformWithinItsBounds) {
    constexpr Real kMost = std::numeric_limits<Real>::max();
    RandomNumberGenerator<Real> generator;
    std::vector<int> cells(100);
    for (int i = 0; i < kSamples; ++i) {
        const Real x = generator.gu(-2, 3);
        ASSERT_TRUE(x >= -2 && x < 3);
        ++cells[static_cast<std::size_t>((x + 2) * 20)];
    }
    double chi_squared = 0.0;
    for (const int count : cells) chi_squared += std::pow(count - 1e4, 2) / 1e4;
    EXPECT_LT(chi_squared, 160.0);  // 99 degrees of freedom: 0.01 %

    int negative = 0;
    for (int i = 0; i < 1000; ++i) {
        const Real wide = generator.gu(-kMost, kMost), next = std::nextafter(Real(1), Real(2));
        ASSERT_TRUE(std::isfinite(wide) && wide < kMost);
        negative += wide < 0;
        ASSERT_TRUE(generator.gu(1, next) == 1 && generator.gu(-next, -1) == -next);
    }
    EXPECT_NEAR(negative, 500, 80);
    EXPECT_EQ(generator.gu(4, 4), 4);
    for (const Real bad : {std::numeric_limits<Real>::quiet_NaN(), Real(-1), 2 * kMost}) {
        EXPECT_EQ(generator.gu(1, bad) + generator.gu(bad, -2), 0) << bad;
        EXPECT_EQ(generator.ged_Get_Error_Detail(), "1");
    }
}

TWIN_TEST(Generator, IsGaussianAndResumesFromItsSeed) {
    RandomNumberGenerator<Real> generator, resumed;
    generator.ss_Set_Seed(-7);
    int seed = -7;
    for (int i = 0; i < 1000; ++i)
        ASSERT_NEAR(generator.gg(10, 4), 10 + 2 * Nq_Rand_Gaussianf(seed), 30 * kEpsilon<float>);
    resumed.ss_Set_Seed(generator.gs_Get_Seed());
    EXPECT_EQ(resumed.gg(0, 1), generator.gg(0, 1));
    EXPECT_EQ(generator.gg(3, 0), 3);
    for (const Real bad : {Real(-1), std::numeric_limits<Real>::quiet_NaN()}) {
        EXPECT_EQ(generator.gg(3, bad), 0);
        EXPECT_EQ(generator.ged_Get_Error_Detail(), "negative variance");
    }
}

}  // namespace
}  // namespace nequar::test
