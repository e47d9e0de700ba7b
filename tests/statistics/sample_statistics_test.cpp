#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <tuple>
#include <vector>

#include "statistics/statistics_support.h"
#include "support/data_files.h"
#include "support/residual.h"
#include "support/twins.h"

namespace {

using namespace statistics_test;

template <class Real>
class SampleStatistics : public testing::Test {
protected:
    RandomNumberGeneratorAdvanced<Real> generator;

    static Real element(int i) { return Real(1000 + std::sin(1.7 * i)); }
};

// The blocked sum as it is described.
template <class Real, class Term>
Real stated_sum(const std::vector<Real>& a, const bool* mask, int begin, int end, Term term) {
    const long rounded = std::lround(std::sqrt(double(a.size())));
    const long block = rounded < 16 ? 16 : rounded;
    Real total = 0;
    Real partial = 0;
    long counted = 0;
    for (int i = begin; i < end; ++i) {
        if (mask != nullptr && !mask[i]) continue;
        partial += term(a[std::size_t(i)]);
        if (++counted % block == 0) {
            total += partial;
            partial = 0;
        }
    }
    return total + partial;
}

TWIN_TEST(SampleStatistics, MeanAndVarianceInBlocksToTheLastBit) {
    for (const int n : {1, 10, 15, 16, 17, 240, 272, 400, 1000, 5000}) {
        std::vector<Real> a(std::size_t(n), Real(0));
        const auto mask = std::make_unique<bool[]>(std::size_t(n));
        for (int i = 0; i < n; ++i) {
            a[std::size_t(i)] = this->element(i);
            mask[std::size_t(i)] = i % 3 != 1;
        }
        for (const bool* m :
             {static_cast<const bool*>(nullptr), static_cast<const bool*>(mask.get())})
            for (const int begin : {0, n / 5})
                for (const int end : {n, n - n / 7}) {
                    SCOPED_TRACE(testing::Message() << n << ' ' << begin << ' ' << end);
                    int expected_count = 0;
                    for (int i = begin; i < end; ++i) expected_count += m == nullptr || m[i];
                    if (expected_count == 0) continue;
                    const Real mean = stated_sum(a, m, begin, end, [](Real x) { return x; }) /
                                      Real(expected_count);
                    const Real variance =
                        stated_sum(a, m, begin, end,
                                   [mean](Real x) { return (x - mean) * (x - mean); }) /
                        Real(expected_count);
                    int count = 0;
                    Real mu = 0;
                    Real var = 0;
                    ASSERT_TRUE(this->generator.csn(a.data(), n, m, begin, end, &count, &mu, &var));
                    EXPECT_EQ(count, expected_count);
                    EXPECT_EQ(mu, mean);
                    EXPECT_EQ(var, variance);
                    Real alone = 0;
                    ASSERT_TRUE(
                        this->generator.csn(a.data(), n, m, begin, end, nullptr, nullptr, &alone));
                    EXPECT_EQ(alone, variance);
                }
    }
    Real variance = 0;
    const auto four = vector_of<Real>({1, 2, 3, 4});
    ASSERT_TRUE(this->generator.csn(four, nullptr, 0, 4, nullptr, nullptr, &variance));
    EXPECT_EQ(variance, Real(1.25));
    GrowableVector<Real> growing;
    growing.ap_Append(&four, 4);
    ASSERT_TRUE(this->generator.csn(growing, nullptr, 0, 4, nullptr, nullptr, &variance));
    EXPECT_EQ(variance, Real(1.25));
}

TWIN_TEST(SampleStatistics, RefusedRangesWriteNothing) {
    auto& g = this->generator;
    const auto a = vector_of<Real>({1, 2, 3});
    const auto none = mask_of({false, false, false});
    const auto few = mask_of({true, true});
    const GrowableVector<Real> empty;
    int count = -1;
    Real mean = -1;
    Real variance = -1;
    const auto refused = [&](bool done, const char* detail) {
        EXPECT_TRUE(
            fails_as(g, std::string("csn_Compute_Statistics_of_random_Numbers: ") + detail, done));
        EXPECT_TRUE(count == -1 && mean == Real(-1) && variance == Real(-1));
    };
    const bool* const all = nullptr;
    const Real* const nothing = nullptr;
    refused(g.csn(nothing, 3, all, 0, 3, &count, &mean, &variance), "invalid array pointer");
    refused(g.csn(empty, nullptr, 0, 1, &count, &mean, &variance), "invalid array pointer");
    refused(g.csn(a.p(), 0, all, 0, 0, &count, &mean, &variance), "bad parameter(s)");
    refused(g.csn(a, nullptr, 1, 1, &count, &mean, &variance), "bad parameter(s)");
    refused(g.csn(a, nullptr, -1, 1, &count, &mean, &variance), "bad parameter(s)");
    refused(g.csn(a, nullptr, 0, 4, &count, &mean, &variance), "bad parameter(s)");
    refused(g.csn(a, &few, 0, 3, &count, &mean, &variance), "bad parameter(s)");
    refused(g.csn(a, &none, 0, 3, &count, &mean, &variance), "no valid element");
    EXPECT_TRUE(g.csn(a, &few, 0, 2, &count, &mean, &variance));
    EXPECT_EQ(mean, Real(1.5));

    const auto samples = matrix_of<Real>(2, 3, {1, 2, 3, 4, 5, 6});
    Vector<Real> mu = vector_of<Real>({9});
    for (const auto& [by_column, end, mask, detail] :
         {std::tuple(true, 4, static_cast<const CNqVectorBool*>(nullptr), "bad parameter(s)"),
          std::tuple(false, 3, static_cast<const CNqVectorBool*>(nullptr), "bad parameter(s)"),
          std::tuple(true, 3, &few, "bad parameter(s)"),
          std::tuple(true, 3, &none, "no valid element")}) {
        EXPECT_TRUE(
            fails_with(g, detail, g.csv(samples, by_column, mask, 0, end, nullptr, &mu, nullptr)));
        EXPECT_EQ(mu.vs(), 1);
    }
    EXPECT_TRUE(fails_with(g, "invalid array pointer",
                           g.csv(Matrix<Real>(), true, nullptr, 0, 1, nullptr, &mu, nullptr)));
}

// Means and covariances of vectors, in all containers and layouts, with more vectors than are
// treated at a time.
TWIN_TEST(SampleStatistics, MeanVectorsAndCovariances) {
    const int d = 3;
    const int n = 700;
    Matrix<Real> rows;
    rows.c_Create(n, d);
    CNqVectorBool mask;
    mask.c_Create(n);
    for (int i = 0; i < n; ++i) {
        mask[i] = i % 5 != 2;
        for (int k = 0; k < d; ++k)
            rows[i][k] = Real(std::sin(i * (k + 1.0)) + 0.1 * k * std::cos(i));
    }
    const Matrix<Real> columns = transposed(rows);
    GrowableMatrix<Real, Growth::columns> growing_columns;
    GrowableMatrix<Real, Growth::rows> growing_rows;
    growing_columns.in_Initialize(d, n + 10);
    growing_rows.in_Initialize(d, n + 10);
    growing_columns.ap_Append(&columns, n);
    growing_rows.ap_Append(&rows, n);
    for (const CNqVectorBool* m :
         {static_cast<const CNqVectorBool*>(nullptr), static_cast<const CNqVectorBool*>(&mask)}) {
        const int begin = 3;
        const int end = n - 1;
        std::vector<int> chosen;
        for (int i = begin; i < end; ++i)
            if (m == nullptr || mask[i]) chosen.push_back(i);
        const int expected_count = int(chosen.size());
        std::vector<double> mean(d, 0.0);
        Matrix<double> expected;
        expected.c_Create(d, d, 0.0);
        for (const int i : chosen)
            for (int k = 0; k < d; ++k) mean[std::size_t(k)] += rows[i][k] / double(expected_count);
        for (const int i : chosen)
            for (int k = 0; k < d; ++k)
                for (int l = 0; l < d; ++l)
                    expected[k][l] +=
                        (rows[i][k] - mean[std::size_t(k)]) * (rows[i][l] - mean[std::size_t(l)]);
        const auto check = [&](bool done, int count, const Vector<Real>& mu,
                               const Matrix<Real>& spread) {
            ASSERT_TRUE(done);
            EXPECT_EQ(count, expected_count);
            ASSERT_TRUE(mu.vs() == d && spread.mh() == d && spread.mw() == d);
            for (int k = 0; k < d; ++k) {
                EXPECT_NEAR(mu[k], mean[std::size_t(k)], 100 * kEpsilon<Real>);
                for (int l = 0; l < d; ++l) {
                    EXPECT_NEAR(spread[k][l], expected[k][l] / expected_count,
                                100 * kEpsilon<Real>);
                    EXPECT_EQ(spread[k][l], spread[l][k]);
                }
            }
        };
        for (int form = 0; form < 5; ++form) {
            SCOPED_TRACE(form);
            int count = 0;
            Vector<Real> mu;
            Matrix<Real> spread = rows;
            const bool done =
                form == 0 ? this->generator.csv(rows, false, m, begin, end, &count, &mu, &spread)
                : form == 1
                    ? this->generator.csv(columns, true, m, begin, end, &count, &mu, &spread)
                : form == 2
                    ? this->generator.csv(growing_columns, m, begin, end, &count, &mu, &spread)
                : form == 3
                    ? this->generator.csv(growing_rows, m, begin, end, &count, &mu, &spread)
                    : this->generator.csv(spread, false, m, begin, end, &count, &mu, &spread);
            check(done, count, mu, spread);
        }
    }
}

TWIN_TEST(SampleStatistics, DistancesAndTheirEstimates) {
    auto& g = this->generator;
    for (const int d : {1, 2, 5, 33})
        for (const int n : {1, 7, 1030}) {
            SCOPED_TRACE(testing::Message() << d << ' ' << n);
            Matrix<Real> rows;
            rows.c_Create(n, d);
            Vector<Real> x;
            x.c_Create(d);
            for (int k = 0; k < d; ++k) x[k] = Real(std::cos(0.3 * k));
            for (int i = 0; i < n; ++i)
                for (int k = 0; k < d; ++k) rows[i][k] = Real(std::sin(i + 2.0 * k));
            const Matrix<Real> columns = transposed(rows);
            std::vector<double> expected;
            for (int i = 0; i < n; ++i) {
                double sum = 0;
                for (int k = 0; k < d; ++k) sum += std::pow(double(x[k]) - double(rows[i][k]), 2);
                expected.push_back(sum);
            }
            std::vector<double> sorted = expected;
            std::sort(sorted.begin(), sorted.end());
            for (const bool by_column : {true, false}) {
                const Matrix<Real>& samples = by_column ? columns : rows;
                Vector<Real> distances;
                ASSERT_TRUE(g.csd(x, samples, by_column, distances));
                for (int i = 0; i < n; ++i)
                    ASSERT_NEAR(distances[i], expected[std::size_t(i)],
                                8 * d * kEpsilon<Real> * expected[std::size_t(i)]);
                Vector<Real> same = x;
                ASSERT_TRUE(g.csd(same, samples, by_column, same) && same == distances);
                for (const int k : {1, (n + 1) / 2, n}) {
                    const double volume =
                        std::pow(std::numbers::pi * sorted[std::size_t(k - 1)], d / 2.0) /
                        std::tgamma(d / 2.0 + 1);
                    Real p = 0;
                    ASSERT_TRUE(g.epknne(x, samples, by_column, k, p, &same));
                    EXPECT_NEAR(p * volume * n / k, 1, 40 * d * kEpsilon<Real>);
                    EXPECT_TRUE(same == distances);
                    same = x;
                    Real again = 0;
                    ASSERT_TRUE(g.epknne(same, samples, by_column, k, again, &same));
                    EXPECT_EQ(again, p);

                    const Real h = std::sqrt(distances[n / 2]);
                    int count = 0;
                    for (int i = 0; i < n; ++i) count += distances[i] <= h * h;
                    ASSERT_TRUE(g.eppwh(x, samples, by_column, h, p));
                    const double ball =
                        std::pow(std::numbers::pi * double(h) * double(h), d / 2.0) /
                        std::tgamma(d / 2.0 + 1);
                    EXPECT_NEAR(p * ball * n, count,
                                1e-3 * kEpsilon<Real> + 40 * d * count * kEpsilon<Real>);
                }
                // Every sample a query of its own.
                Vector<Real> all;
                ASSERT_TRUE(g.epknne(samples, samples, by_column, n, all));
                ASSERT_EQ(all.vs(), n);
                Vector<Real> point;
                by_column ? samples.gc_Get_Column(n / 2, 0, d, &point)
                          : samples.gr_Get_Row(n / 2, 0, d, &point);
                Real p = 0;
                ASSERT_TRUE(g.epknne(point, samples, by_column, n, p, nullptr));
                EXPECT_EQ(all[n / 2], p);
                ASSERT_TRUE(g.eppwh(samples, samples, by_column, Real(0.5), all));
                ASSERT_TRUE(g.eppwh(point, samples, by_column, Real(0.5), p));
                EXPECT_EQ(all[n / 2], p);
            }
        }
}

TWIN_TEST(SampleStatistics, EstimatesAtTheirLimits) {
    auto& g = this->generator;
    const auto samples = matrix_of<Real>(1, 4, {0, 1, 3, 3});
    const auto x = vector_of<Real>({3});
    Real p = -1;
    ASSERT_TRUE(g.epknne(x, samples, true, 2, p, nullptr));  // two samples at the distance 0
    EXPECT_EQ(p, Real(1e15));
    ASSERT_TRUE(g.epknne(x, samples, true, 3, p, nullptr));
    EXPECT_NEAR(p, 3 / (4.0 * 4), 4 * kEpsilon<Real>);
    ASSERT_TRUE(g.eppwh(x, samples, true, Real(2), p));  // one of them on the boundary
    EXPECT_NEAR(p, 3 / (4.0 * 4), 4 * kEpsilon<Real>);
    ASSERT_TRUE(g.eppwh(vector_of<Real>({2}), samples, true, Real(0), p));
    EXPECT_TRUE(std::isnan(p));
    for (const double bad : {kNan, std::numeric_limits<double>::infinity()}) {
        const auto broken = matrix_of<Real>(1, 3, {0, bad, 1});
        for (const int k : {1, 2, 3}) {
            ASSERT_TRUE(g.epknne(vector_of<Real>({bad}), broken, true, k, p, nullptr));
            EXPECT_TRUE(std::isnan(p)) << k;
        }
        ASSERT_TRUE(g.eppwh(vector_of<Real>({bad}), broken, true, Real(1), p));
        EXPECT_TRUE(std::isnan(p));
    }
    p = -1;
    const char* const nearest = "epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation: ";
    for (const int k : {0, -1, 5}) {
        EXPECT_TRUE(
            fails_as(g, nearest + std::string("2"), g.epknne(x, samples, true, k, p, nullptr)));
    }
    EXPECT_TRUE(fails_as(g, std::string("csd_Compute_Set_of_Distances: mismatch\n") + nearest + "1",
                         g.epknne(x, samples, false, 1, p, nullptr)));
    EXPECT_TRUE(fails_with(g, "mismatch", g.eppwh(x, samples, false, Real(1), p)));
    EXPECT_EQ(p, Real(-1));
    Vector<Real> all;
    for (const bool by_column : {true, false}) {
        EXPECT_TRUE(fails_as(g,
                             nearest + std::string("2\n") + nearest + (by_column ? "111" : "222"),
                             g.epknne(samples, samples, by_column, 5, all)));
        EXPECT_EQ(all.vs(), by_column ? 4 : 1);
    }
    // Dimensions in which the factors of the volume leave the range of doubles.
    for (const int d : {200, 400}) {
        Matrix<Real> far;
        far.c_Create(1, d, Real(0));
        Vector<Real> origin;
        origin.c_Create(d, Real(0));
        far[0][0] = 4;
        ASSERT_TRUE(g.epknne(origin, far, false, 1, p, nullptr));
        const double log_p = std::lgamma(d / 2.0 + 1) - d / 2.0 * std::log(std::numbers::pi * 16);
        if (std::isfinite(p) && p > 0 && std::isnormal(p)) {
            EXPECT_NEAR(std::log(double(p)), log_p, 1e-6);
        } else {
            EXPECT_TRUE((std::is_same_v<Real, float>)) << d;
        }
    }
}

TWIN_TEST(SampleStatistics, GaussianDensities) {
    auto& g = this->generator;
    const double root = std::sqrt(2 * std::numbers::pi);
    const auto unit = symmetric_of<Real>(1, {1});
    Real p = 0;
    Vector<Real> all;
    const auto zero = vector_of<Real>({0});
    ASSERT_TRUE(g.cpgm(zero, zero, unit, p));
    EXPECT_NEAR(p, 1 / root, kEpsilon<Real>);
    ASSERT_TRUE(g.cpgm(vector_of<Real>({1}), zero, unit, p));
    EXPECT_NEAR(p, std::exp(-2) / root, kEpsilon<Real>);
    ASSERT_TRUE(g.cpgm(matrix_of<Real>(1, 2, {0, 1}), true, zero, unit, all));
    EXPECT_NEAR(all[0], 1 / root, kEpsilon<Real>);
    EXPECT_NEAR(all[1], std::exp(-0.5) / root, kEpsilon<Real>);

    const auto S = symmetric_of<Real>(3, {2, 0.5, 0, 0.5, 1, 0.25, 0, 0.25, 3});
    const auto mean = vector_of<Real>({0.5, -1, 0.25});
    const double det = 2 * (3 - 0.0625) - 0.5 * 1.5;
    const int n = 300;
    Matrix<Real> rows;
    rows.c_Create(n, 3);
    for (int i = 0; i < n; ++i)
        for (int k = 0; k < 3; ++k) rows[i][k] = Real(std::sin(i + 3.0 * k));
    const Matrix<Real> columns = transposed(rows);
    for (const bool by_column : {true, false}) {
        ASSERT_TRUE(g.cpgm(by_column ? columns : rows, by_column, mean, S, all));
        ASSERT_EQ(all.vs(), n);
        for (int i = 0; i < n; ++i) {
            double q = 0;
            for (int k = 0; k < 3; ++k)
                for (int l = 0; l < 3; ++l)
                    q += (double(rows[i][k]) - mean[k]) * S.ge_Get_Element(l, k) *
                         (double(rows[i][l]) - mean[l]);
            const double height = std::sqrt(det) / (root * root * root);
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

    const auto refused = [&](bool done, const char* detail) {
        EXPECT_TRUE(fails_with(g, detail, done));
    };
    p = -1;
    refused(g.cpgm(zero, mean, S, p), "1");
    refused(g.cpgm(rows, true, mean, S, all), "1");
    refused(g.cpgm(mean, mean, unit, p), "2");
    refused(g.cpgm(zero, zero, symmetric_of<Real>(1, {0}), p), "111");
    refused(g.cpgm(zero, zero, symmetric_of<Real>(1, {-2}), p), "det=0");
    refused(g.cpgm(zero, zero, symmetric_of<Real>(1, {kNan}), p), "det=0");
    EXPECT_EQ(p, Real(-1));
}

// NIST's certified values; the standard deviation is that with n - 1.
TEST(SampleStatisticsOnData, ReachTheirDigits) {
    struct Certified {
        const char* name;
        double mean, deviation, digits;
    };
    for (const Certified& set : {Certified{"NumAcc3", 1000000.2, 0.1, 9.4},
                                 {"Michelso", 299.852400000000, 0.0790105478190518, 13.5},
                                 {"Lew", -177.435000000000, 277.332168044316, 14.5}}) {
        const std::string file = std::string(set.name) + ".dat";
        if (!std::filesystem::exists(data_file(file)))
            GTEST_SKIP() << "there is no ../shared/data/" << file;
        std::ifstream stream(data_file(file));
        std::string line;
        while (std::getline(stream, line) && line.rfind("Data: Y", 0) != 0) {
        }
        std::getline(stream, line);
        std::vector<double> y;
        for (double value = 0; stream >> value;) y.push_back(value);
        const int n = static_cast<int>(y.size());
        ASSERT_GE(n, 100) << set.name;
        const CNqRandom_Number_Generator_Advanced g;
        double mean = 0;
        double variance = 0;
        const bool* const all = nullptr;
        ASSERT_TRUE(g.csn(y.data(), n, all, 0, n, nullptr, &mean, &variance));
        const auto digits = [](double value, double exact) {
            return value == exact ? 15.0 : -std::log10(std::abs(value / exact - 1));
        };
        EXPECT_GE(digits(mean, set.mean), set.digits) << set.name;
        EXPECT_GE(digits(std::sqrt(variance * n / (n - 1)), set.deviation), set.digits) << set.name;
    }
}

}  // namespace
