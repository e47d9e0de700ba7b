#include <numbers>
#include <numeric>

#include "statistics/statistics_support.h"

namespace {

using namespace statistics_test;

TWINS(SampleStatistics);

const bool* const kAll = nullptr;
const CNqVectorBool* const kAllOfThem = nullptr;

// The mean of some of n numbers, summed in blocks as it is described.
template <class Real>
Real stated_mean(const std::vector<Real>& chosen, int n) {
    const long block = std::max(16L, std::lround(std::sqrt(double(n))));
    Real total = 0;
    for (auto from = chosen.begin(); from != chosen.end();) {
        const auto to = from + std::min(block, chosen.end() - from);
        total += std::accumulate(from, to, Real(0));
        from = to;
    }
    return total / Real(chosen.size());
}

TWIN_TEST(SampleStatistics, MeanAndVarianceInBlocksToTheLastBit) {
    RandomNumberGeneratorAdvanced<Real> g;
    Real variance = 0;
    for (const int n : {1, 10, 15, 16, 17, 240, 272, 400, 1000, 5000}) {
        const auto a = vector_of<Real>(n, [](int i) { return 1000 + std::sin(1.7 * i); });
        const auto mask = vector_of<bool>(n, [](int i) { return i % 3 != 1; });
        for (const bool* m : {kAll, mask.p()})
            for (const int begin : {0, n / 5})
                for (const int end : {n, n - n / 7}) {
                    SCOPED_TRACE(testing::Message() << n << ' ' << begin << ' ' << end);
                    std::vector<Real> chosen;
                    for (int i = begin; i < end; ++i)
                        if (m == nullptr || m[i]) chosen.push_back(a[i]);
                    if (chosen.empty()) continue;
                    int count = 0;
                    Real mean = 0;
                    ASSERT_TRUE(g.csn(a.p(), n, m, begin, end, &count, &mean, &variance));
                    EXPECT_EQ(count, int(chosen.size()));
                    EXPECT_EQ(mean, stated_mean(chosen, n));
                    for (Real& x : chosen) x = (x - mean) * (x - mean);
                    EXPECT_EQ(variance, stated_mean(chosen, n));
                    Real alone = 0;
                    ASSERT_TRUE(g.csn(a.p(), n, m, begin, end, nullptr, nullptr, &alone));
                    EXPECT_EQ(alone, variance);
                }
    }
    const auto four = vector_of<Real>({1, 2, 3, 4});
    GrowableVector<Real> growing;
    growing.ap_Append(&four, 4);
    ASSERT_TRUE(g.csn(growing, nullptr, 1, 4, nullptr, nullptr, &variance));
    EXPECT_EQ(variance, Real(2) / Real(3));
}

TWIN_TEST(SampleStatistics, RefusedRangesWriteNothing) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto a = vector_of<Real>({1, 2, 3});
    const auto none = vector_of<bool>({0, 0, 0}), few = vector_of<bool>({1, 1});
    int count = -1;
    Real mean = -1, variance = -1;
    const auto refused = [&](const std::string& detail, const auto&... what) {
        EXPECT_TRUE(fails_as(g, "csn_Compute_Statistics_of_random_Numbers: " + detail,
                             g.csn(what..., &count, &mean, &variance)));
        EXPECT_TRUE(count == -1 && mean == Real(-1) && variance == Real(-1));
    };
    const Real* const nothing = nullptr;
    refused("invalid array pointer", nothing, 3, kAll, 0, 3);
    refused("invalid array pointer", GrowableVector<Real>(), nullptr, 0, 1);
    refused("bad parameter(s)", a.p(), 0, kAll, 0, 0);
    refused("bad parameter(s)", a, nullptr, 1, 1);
    refused("bad parameter(s)", a, nullptr, -1, 1);
    refused("bad parameter(s)", a, nullptr, 0, 4);
    refused("bad parameter(s)", a, &few, 0, 3);
    refused("no valid element", a, &none, 0, 3);
    EXPECT_TRUE(g.csn(a, &few, 0, 2, &count, &mean, &variance) && mean == Real(1.5));

    const auto samples = matrix_of<Real>(2, 3, {1, 2, 3, 4, 5, 6});
    Vector<Real> mu = vector_of<Real>({9});
    const auto csv = [&](bool by_column, int end, const CNqVectorBool* mask) {
        return g.csv(samples, by_column, mask, 0, end, nullptr, &mu, nullptr);
    };
    EXPECT_TRUE(fails_with(g, "bad parameter(s)", csv(true, 4, nullptr)));
    EXPECT_TRUE(fails_with(g, "bad parameter(s)", csv(false, 3, nullptr)));
    EXPECT_TRUE(fails_with(g, "bad parameter(s)", csv(true, 3, &few)));
    EXPECT_TRUE(fails_with(g, "no valid element", csv(true, 3, &none)));
    EXPECT_TRUE(fails_with(g, "invalid array pointer",
                           g.csv(Matrix<Real>(), true, nullptr, 0, 1, nullptr, &mu, nullptr)));
    EXPECT_EQ(mu.vs(), 1);
}

// In all containers and layouts, with more vectors than are treated at a time.
TWIN_TEST(SampleStatistics, MeanVectorsAndCovariances) {
    RandomNumberGeneratorAdvanced<Real> g;
    const int d = 3, n = 700, begin = 3, end = n - 1;
    const auto rows = waves<Real>(n, d), columns = transposed(rows);
    GrowableMatrix<Real, Growth::columns> growing_columns;
    GrowableMatrix<Real, Growth::rows> growing_rows;
    growing_columns.in_Initialize(d, n + 10);
    growing_rows.in_Initialize(d, n + 10);
    growing_columns.ap_Append(&columns, n);
    growing_rows.ap_Append(&rows, n);
    const auto some = vector_of<bool>(n, [](int i) { return i % 5 != 2; });
    for (const CNqVectorBool* mask : {kAllOfThem, &some}) {
        std::vector<int> chosen;
        for (int i = begin; i < end; ++i)
            if (mask == nullptr || some[i]) chosen.push_back(i);
        const auto average = [&](const auto& term) {
            double sum = 0;
            for (const int i : chosen) sum += term(i);
            return sum / double(chosen.size());
        };
        const auto mean = matrix_of<Real>(
            d, 1, [&](int k, int) { return average([&](int i) { return double(rows[i][k]); }); });
        const auto covariance = matrix_of<Real>(d, d, [&](int k, int l) {
            return average([&](int i) {
                return (double(rows[i][k]) - mean[k][0]) * (double(rows[i][l]) - mean[l][0]);
            });
        });
        const auto expect_statistics = [&](auto&... samples) {
            int count = 0;
            Vector<Real> mu;
            Matrix<Real> spread;
            ASSERT_TRUE(g.csv(samples..., mask, begin, end, &count, &mu, &spread));
            EXPECT_EQ(count, int(chosen.size()));
            EXPECT_LT(largest_difference(column_of(mu), mean), 100 * kEpsilon<Real>);
            EXPECT_LT(largest_difference(spread, covariance), 100 * kEpsilon<Real>);
            EXPECT_TRUE(spread == transposed(spread));
        };
        const bool by_column = true, by_row = false;
        expect_statistics(rows, by_row);
        expect_statistics(columns, by_column);
        expect_statistics(growing_columns);
        expect_statistics(growing_rows);
        Matrix<Real> same = rows;
        ASSERT_TRUE(g.csv(same, by_row, mask, begin, end, nullptr, nullptr, &same));
        EXPECT_LT(largest_difference(same, covariance), 100 * kEpsilon<Real>);
    }
}

TWIN_TEST(SampleStatistics, DistancesAndTheirEstimates) {
    RandomNumberGeneratorAdvanced<Real> g;
    for (const int d : {1, 2, 5, 33})
        for (const int n : {1, 7, 1030}) {
            SCOPED_TRACE(testing::Message() << d << ' ' << n);
            const auto rows = waves<Real>(n, d), columns = transposed(rows);
            const auto x = vector_of<Real>(d, [](int k) { return std::cos(0.3 * k); });
            const auto squared = [&](int i) {
                double sum = 0;
                for (int k = 0; k < d; ++k) sum += std::pow(double(x[k]) - double(rows[i][k]), 2);
                return sum;
            };
            std::vector<double> sorted;
            for (int i = 0; i < n; ++i) sorted.push_back(squared(i));
            std::sort(sorted.begin(), sorted.end());
            const auto samples_in_ball = [&](double density, double radius_squared) {
                return density * n * std::pow(std::numbers::pi * radius_squared, d / 2.0) /
                       std::tgamma(d / 2.0 + 1);
            };
            const double tolerance = 40 * d * kEpsilon<Real>;
            for (const bool by_column : {true, false}) {
                const Matrix<Real>& samples = by_column ? columns : rows;
                Vector<Real> distances;
                ASSERT_TRUE(g.csd(x, samples, by_column, distances));
                for (int i = 0; i < n; ++i)
                    ASSERT_NEAR(distances[i] / squared(i), 1, 8 * d * kEpsilon<Real>);
                Vector<Real> same = x;
                ASSERT_TRUE(g.csd(same, samples, by_column, same) && same == distances);
                Real p = 0;
                for (const int k : {1, (n + 1) / 2, n}) {
                    ASSERT_TRUE(g.epknne(x, samples, by_column, k, p, &same));
                    EXPECT_NEAR(samples_in_ball(p, sorted[std::size_t(k - 1)]) / k, 1, tolerance);
                    EXPECT_TRUE(same == distances);
                    same = x;
                    Real again = 0;
                    ASSERT_TRUE(g.epknne(same, samples, by_column, k, again, &same));
                    EXPECT_EQ(again, p);
                }
                const Real h = std::sqrt(distances[n / 2]);
                const auto count = std::count_if(distances.p(), distances.p() + n,
                                                 [h](Real distance) { return distance <= h * h; });
                ASSERT_TRUE(g.eppwh(x, samples, by_column, h, p));
                EXPECT_NEAR(samples_in_ball(p, double(h) * double(h)), double(count),
                            1e-3 * kEpsilon<Real> + tolerance * double(count));

                // Every sample a query of its own.
                Vector<Real> all, point;
                rows.gr_Get_Row(n / 2, 0, d, &point);
                ASSERT_TRUE(g.epknne(samples, samples, by_column, n, all) && all.vs() == n);
                ASSERT_TRUE(g.epknne(point, samples, by_column, n, p, nullptr));
                EXPECT_EQ(all[n / 2], p);
                ASSERT_TRUE(g.eppwh(samples, samples, by_column, Real(0.5), all));
                ASSERT_TRUE(g.eppwh(point, samples, by_column, Real(0.5), p));
                EXPECT_EQ(all[n / 2], p);
            }
        }
}

TWIN_TEST(SampleStatistics, EstimatesAtTheirLimits) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto samples = matrix_of<Real>(1, 4, {0, 1, 3, 3});
    const auto x = vector_of<Real>({3});
    Real p = -1;
    ASSERT_TRUE(g.epknne(x, samples, true, 2, p, nullptr));  // two samples at the distance 0
    EXPECT_EQ(p, Real(1e15));
    ASSERT_TRUE(g.eppwh(x, samples, true, Real(2), p));  // one of them on the boundary
    EXPECT_NEAR(p, 3 / (4.0 * 4), 4 * kEpsilon<Real>);
    ASSERT_TRUE(g.eppwh(vector_of<Real>({2}), samples, true, Real(0), p));
    EXPECT_TRUE(std::isnan(p));
    for (const double bad : {kNan, kInfinity}) {
        const auto broken = matrix_of<Real>(1, 3, {0, bad, 1});
        for (const int k : {1, 2, 3}) {
            ASSERT_TRUE(g.epknne(vector_of<Real>({bad}), broken, true, k, p, nullptr));
            EXPECT_TRUE(std::isnan(p)) << k;
        }
        ASSERT_TRUE(g.eppwh(vector_of<Real>({bad}), broken, true, Real(1), p));
        EXPECT_TRUE(std::isnan(p));
    }
    p = -1;
    const std::string nearest = "epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation: ";
    for (const int k : {0, -1, 5})
        EXPECT_TRUE(fails_as(g, nearest + "2", g.epknne(x, samples, true, k, p, nullptr)));
    EXPECT_TRUE(fails_as(g, {"csd_Compute_Set_of_Distances: mismatch", nearest + "1"},
                         g.epknne(x, samples, false, 1, p, nullptr)));
    EXPECT_TRUE(fails_with(g, "mismatch", g.eppwh(x, samples, false, Real(1), p)));
    EXPECT_EQ(p, Real(-1));
    Vector<Real> all;
    for (const bool by_column : {true, false}) {
        EXPECT_TRUE(fails_as(g, {nearest + "2", nearest + (by_column ? "111" : "222")},
                             g.epknne(samples, samples, by_column, 5, all)));
        EXPECT_EQ(all.vs(), by_column ? 4 : 1);
    }
    // Dimensions in which the factors of the volume leave the range of doubles.
    for (const int d : {200, 400}) {
        const auto origin = vector_of<Real>(d, [](int) { return 0; });
        const auto far = matrix_of<Real>(1, d, [](int, int k) { return k == 0 ? 4 : 0; });
        ASSERT_TRUE(g.epknne(origin, far, false, 1, p, nullptr));
        const double log_p = std::lgamma(d / 2.0 + 1) - d / 2.0 * std::log(std::numbers::pi * 16);
        if (std::isnormal(p) && p > 0) {
            EXPECT_NEAR(std::log(double(p)), log_p, 1e-6);
        } else {
            EXPECT_TRUE((std::is_same_v<Real, float>)) << d;
        }
    }
}

TWIN_TEST(SampleStatistics, GaussianDensities) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto unit = symmetric_of<Real>(1, {1});
    const auto zero = vector_of<Real>({0});
    const double root = std::sqrt(2 * std::numbers::pi);
    Real p = 0;
    Vector<Real> all;
    ASSERT_TRUE(g.cpgm(vector_of<Real>({1}), zero, unit, p));
    EXPECT_NEAR(p, std::exp(-2) / root, kEpsilon<Real>);
    const auto S = symmetric_of<Real>(3, {2, 0.5, 0, 0.5, 1, 0.25, 0, 0.25, 3});
    const auto mean = vector_of<Real>({0.5, -1, 0.25});
    const double det = 2 * (3 - 0.0625) - 0.5 * 1.5;
    const double height = std::sqrt(det) / (root * root * root);
    const auto rows = waves<Real>(300, 3), columns = transposed(rows);
    for (const bool by_column : {true, false}) {
        ASSERT_TRUE(g.cpgm(by_column ? columns : rows, by_column, mean, S, all));
        ASSERT_EQ(all.vs(), 300);
        for (int i = 0; i < 300; ++i) {
            double q = 0;
            for (int k = 0; k < 3; ++k)
                for (int l = 0; l < 3; ++l)
                    q += (double(rows[i][k]) - mean[k]) * S.ge_Get_Element(l, k) *
                         (double(rows[i][l]) - mean[l]);
            EXPECT_NEAR(all[i], height * std::exp(-0.5 * q), 20 * kEpsilon<Real>);
            Vector<Real> x;
            rows.gr_Get_Row(i, 0, 3, &x);
            ASSERT_TRUE(g.cpgm(x, mean, S, p));
            EXPECT_NEAR(p, height * std::exp(-2 * q), 20 * kEpsilon<Real>);
        }
    }
    Vector<Real> same = mean;
    ASSERT_TRUE(g.cpgm(rows, false, same, S, same));
    EXPECT_TRUE(same == all);

    p = -1;
    EXPECT_TRUE(fails_with(g, "1", g.cpgm(zero, mean, S, p)));
    EXPECT_TRUE(fails_with(g, "1", g.cpgm(rows, true, mean, S, all)));
    EXPECT_TRUE(fails_with(g, "2", g.cpgm(mean, mean, unit, p)));
    for (const auto& [corner, detail] : {std::pair{0.0, "111"}, {-2.0, "det=0"}, {kNan, "det=0"}})
        EXPECT_TRUE(fails_with(g, detail, g.cpgm(zero, zero, symmetric_of<Real>(1, {corner}), p)));
    EXPECT_EQ(p, Real(-1));
}

}  // namespace
