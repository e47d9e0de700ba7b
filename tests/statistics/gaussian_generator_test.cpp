#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <utility>
#include <vector>

#include "statistics/statistics_support.h"
#include "support/residual.h"
#include "support/twins.h"

namespace {

using namespace statistics_test;

template <class Real>
class GaussianGeneratorTest : public testing::Test {
protected:
    RandomNumberGeneratorAdvanced<Real> generator;

    // What a call that began within the second `time` has to give.
    static std::vector<Real> samples(int time, int count) {
        std::vector<Real> s(std::size_t(count), Real(0));
        for (Real& x : s) x = Real(Nq_Rand_Gaussianf(time));
        return s;
    }
    // call() repeated until the clock stood still meanwhile; answers that second.
    template <class Call>
    static int within_one_second(const Call& call) {
        for (;;) {
            const std::time_t before = std::time(nullptr);
            call();
            if (std::time(nullptr) == before) return int(std::uint32_t(before));
        }
    }
};

TWIN_TEST(GaussianGeneratorTest, NumbersAreTheSamplesOfTheSecondInTheirOrder) {
    auto& g = this->generator;
    EXPECT_STREQ(g.gcn_Get_Class_Name().c_str(),
                 (std::is_same_v<Real, double> ? "CNqRandom_Number_Generator_Advanced"
                                               : "CNqRandomFloat_Number_Generator_Advanced"));
    std::vector<Real> out(1000);
    int time = this->within_one_second([&] { ASSERT_TRUE(g.gng_wzu(1000, out.data())); });
    auto expected = this->samples(time, 1000);
    std::reverse(expected.begin(), expected.end());  // filled from the end
    EXPECT_EQ(out, expected);

    Matrix<Real> m;
    time = this->within_one_second([&] { ASSERT_TRUE(g.gvg_wzu(3, 7, true, m)); });
    EXPECT_TRUE(m.mh() == 3 && m.mw() == 7);
    EXPECT_EQ(m[2][6], this->samples(time, 1)[0]);
    EXPECT_TRUE(g.gvg_wzu(3, 7, false, m) && m.mh() == 7 && m.mw() == 3);

    Real a[] = {9, 9, 9, 9, 9, 9};
    const bool mask[] = {true, true, false, true, false, true};
    int replaced = -1;
    time = this->within_one_second(
        [&] { ASSERT_TRUE(g.rng(Real(2), Real(0.25), 6, a, 1, 5, mask, &replaced)); });
    expected = this->samples(time, 2);
    EXPECT_EQ(replaced, 2);
    const Real half = Real(0.5);
    const Real all[] = {9, Real(2) + half * expected[0], 9, Real(2) + half * expected[1], 9, 9};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(a[i], all[i]) << i;
    const bool none[] = {false, false};
    ASSERT_TRUE(g.rng(Real(2), Real(1), 2, a, 0, 2, none, &replaced));
    EXPECT_EQ(replaced, 0);
    EXPECT_EQ(a[0], Real(9));

    Vector<Real> v;
    GrowableVector<Real> x;
    x.ae_Append_Element(Real(1));
    ASSERT_TRUE(g.gng(Real(5), Real(0), 3, v) && v == vector_of<Real>({5, 5, 5}));
    ASSERT_TRUE(g.ang(Real(4), Real(0), 2, x));
    EXPECT_TRUE(x.nee() == 3 && x[0] == Real(1) && x[2] == Real(4));
}

TWIN_TEST(GaussianGeneratorTest, RefusedArgumentsOfNumbers) {
    auto& g = this->generator;
    Real a[4] = {};
    EXPECT_TRUE(fails_as(
        g,
        "gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance: array size "
        "<= 0",
        g.gng_wzu(0, a)));
    struct Row {
        double variance;
        int n, begin, end;
        const char* detail;
    };
    for (const Row& row : {Row{1, 4, 2, 2, "bad size or indices"},
                           {1, 4, 0, 5, "bad size or indices"},
                           {1, 4, -1, 3, "bad size or indices"},
                           {1, 0, 0, 0, "bad size or indices"},
                           {-1, 4, 3, 2, "bad size or indices"},
                           {-1, 4, 0, 4, "negative variance"},
                           {kNan, 4, 0, 4, "negative variance"}}) {
        EXPECT_TRUE(fails_as(
            g, std::string("rng_Replace_random_Numbers_Gaussian: ") + row.detail,
            g.rng(Real(7), Real(row.variance), row.n, a, row.begin, row.end, nullptr, nullptr)));
        EXPECT_EQ(a[0], Real(0));
    }
    Vector<Real> v;
    GrowableVector<Real> x;
    EXPECT_FALSE(g.gng(Real(0), Real(1), -3, v));
    EXPECT_EQ(v.vs(), 1);
    EXPECT_EQ(detail_of(g), "bad size or indices");
    EXPECT_TRUE(fails_as(g,
                         "rng_Replace_random_Numbers_Gaussian: negative variance\n"
                         "gng_Generate_random_Numbers_Gaussian: negative variance\n"
                         "ang_Append_random_Numbers_Gaussian: gng",
                         g.ang(Real(0), Real(-1), 3, x)));
    Matrix<Real> m;
    for (const auto& [dim, count] : {std::pair{0, 3}, {3, 0}, {-1, 1}}) {
        EXPECT_TRUE(fails_with(g, "bad dimension or numbers", g.gvg_wzu(dim, count, true, m)));
    }
}

TWIN_TEST(GaussianGeneratorTest, TransformIsARootOfTheCovariance) {
    auto& g = this->generator;
    const int n = 5;
    Matrix<Real> dense;
    dense.c_Create(n, n);
    Matrix<Real> T;
    for (const int rank :
         {5, 2, 1, 0}) {  // singular ones, all ones among them, are covariances too
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                dense[i][j] = 0;
                for (int k = 0; k < rank; ++k)
                    dense[i][j] += Real(std::cos(k * (i + 0.5)) * std::cos(k * (j + 0.5)));
            }
        MatrixSymmetric<Real> cov;
        cov.i_Import(&dense);
        ASSERT_TRUE(g.ctl(cov, T)) << rank << records_of(g);
        Matrix<Real> product;
        product.c_Create(n, n, Real(0));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                for (int k = 0; k < n; ++k) product[i][j] += T[i][k] * T[j][k];
        EXPECT_LE(largest_difference(product, dense), 20 * n * kEpsilon<Real> * largest_of(dense));
    }
    for (const auto& bad : {symmetric_of<Real>(2, {1, 2, 2, 1}), symmetric_of<Real>(1, {-1e-20}),
                            symmetric_of<Real>(2, {1, 0, 0, -1e-3})}) {
        EXPECT_TRUE(fails_as(g, "ctl_Compute_Transform_Linear: Not valid covariance matrix",
                             g.ctl(bad, T)));
    }
    for (const double x : {kNan, std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(g.ctl(symmetric_of<Real>(2, {1, x, x, 1}), T)) << x;
}

// Both layouts, whole ranges and masked ones: what is chosen is T Z, what is not stays.
TWIN_TEST(GaussianGeneratorTest, VectorsHaveTheCovarianceAndMeanZeroWhereTheyAreWanted) {
    auto& g = this->generator;
    const auto cov = symmetric_of<Real>(2, {4, 1.2, 1.2, 1});
    const auto mean = vector_of<Real>({100, -50});  // which shifts nothing
    Matrix<Real> T;
    ASSERT_TRUE(g.ctl(cov, T));
    for (const int n : {8, 1400})  // more than are made at a time
        for (const int form : {0, 1, 2, 3}) {
            const bool by_column = form % 2 == 0;
            const bool masked = form < 2;
            SCOPED_TRACE(testing::Message() << n << ' ' << form);
            CNqVectorBool mask;
            mask.c_Create(n - 2, true);
            for (int v = 0; masked && v < n - 2; ++v) mask[v] = v % 7 != 3;
            Matrix<Real> m;
            int count = 0;
            const int time = this->within_one_second([&] {
                by_column ? m.c_Create(2, n, Real(7)) : m.c_Create(n, 2, Real(7));
                ASSERT_TRUE(
                    g.rvg(mean, cov, by_column, m, 1, n - 2, masked ? &mask : nullptr, &count));
            });
            const auto white = this->samples(time, 2 * count);
            int taken = 0;
            for (int v = 0; v < n; ++v) {
                const bool chosen = v >= 1 && v < n - 2 && mask[v];
                for (int k = 0; k < 2; ++k) {
                    double expected = 7;
                    if (chosen) {  // Z is dim x count, filled from its end
                        const auto z = [&](int row) {
                            return double(white[std::size_t(2 * count - 1 - row * count - taken)]);
                        };
                        expected = T[k][0] * z(0) + T[k][1] * z(1);
                    }
                    EXPECT_NEAR(by_column ? m[k][v] : m[v][k], expected, 40 * kEpsilon<Real>);
                }
                taken += chosen ? 1 : 0;
            }
            EXPECT_EQ(count, taken);
        }
    Matrix<Real> m;
    ASSERT_TRUE(g.gvg(mean, cov, 40000, false, m));
    Vector<Real> found;
    Matrix<Real> spread;
    ASSERT_TRUE(g.csv(m, false, nullptr, 0, 40000, nullptr, &found, &spread));
    EXPECT_NEAR(found[0], 0, 0.05);
    EXPECT_NEAR(found[1], 0, 0.025);
    EXPECT_NEAR(spread[0][0], 4, 0.15);
    EXPECT_NEAR(spread[0][1], 1.2, 0.06);
    EXPECT_NEAR(spread[1][1], 1, 0.04);
}

TWIN_TEST(GaussianGeneratorTest, RefusedArgumentsOfVectors) {
    auto& g = this->generator;
    const auto cov = symmetric_of<Real>(2, {1, 0, 0, 1});
    const auto mean = vector_of<Real>({0, 0});
    const auto mask = mask_of({true, true});
    Matrix<Real> m = matrix_of<Real>(2, 3, {1, 2, 3, 4, 5, 6});
    const Matrix<Real> before = m;
    const auto refused = [&](const Vector<Real>& mu, bool by_column, int begin, int end,
                             const CNqVectorBool* chosen, const char* detail) {
        EXPECT_TRUE(fails_as(g, std::string("rvg_Replace_random_Vectors_Gaussian: ") + detail,
                             g.rvg(mu, cov, by_column, m, begin, end, chosen, nullptr)));
        EXPECT_TRUE(m == before);
    };
    refused(vector_of<Real>({0, 0, 0}), true, 0, 1, nullptr,
            "mismatch between mean and covariance");
    refused(mean, false, 0, 1, nullptr, "mismatch between mean and covariance");
    refused(mean, true, 0, 4, nullptr, "bad size or indices");
    refused(mean, true, -1, 2, &mask, "bad size or indices");
    refused(mean, true, 1, 1, nullptr, "bad size or indices");
    refused(mean, true, 0, 3, &mask, "size of <CNqVectorBool> is too small");
    EXPECT_TRUE(fails_as(
        g,
        "ctl_Compute_Transform_Linear: Not valid covariance matrix\n"
        "rvg_Replace_random_Vectors_Gaussian: ctl",
        g.rvg(mean, symmetric_of<Real>(2, {1, 2, 2, 1}), true, m, 0, 1, nullptr, nullptr)));
    int replaced = -1;
    const auto none = mask_of({false, false, false});
    EXPECT_TRUE(g.rvg(mean, cov, true, m, 0, 3, &none, &replaced));
    EXPECT_TRUE(m == before && replaced == 0);
    EXPECT_TRUE(fails_with(g, "mismatch between mean and covariance",
                           g.gvg(vector_of<Real>({0, 0, 0}), cov, 4, true, m)));
    EXPECT_TRUE(m.mh() == 3 && m.mw() == 4);
    EXPECT_TRUE(fails_with(g, "bad size or indices", g.gvg(mean, cov, 0, true, m)));
    EXPECT_TRUE(m.mh() == 2 && m.mw() == 1);
}

TWIN_TEST(GaussianGeneratorTest, AppendsAndExtracts) {
    auto& g = this->generator;
    const auto cov = symmetric_of<Real>(2, {2, 1, 1, 2});
    const auto mean = vector_of<Real>({0, 0});
    GrowableMatrix<Real, Growth::columns> columns;
    GrowableMatrix<Real, Growth::rows> rows;
    this->within_one_second([&] {
        columns.z_cne(0);
        rows.z_cne(0);
        ASSERT_TRUE(g.avg(mean, cov, 4, columns));
        ASSERT_TRUE(g.avg(mean, cov, 4, rows));
    });
    const Matrix<Real>* c = nullptr;
    const Matrix<Real>* r = nullptr;
    std::as_const(columns).z_gii(&c);
    std::as_const(rows).z_gii(&r);
    ASSERT_TRUE(columns.nee() == 4 && rows.nee() == 4 && columns.vs() == 2 && rows.vs() == 2);
    for (int v = 0; v < 4; ++v)
        for (int k = 0; k < 2; ++k) EXPECT_NEAR((*c)[k][v], (*r)[v][k], 8 * kEpsilon<Real>);
    EXPECT_TRUE(fails_with(g, "mismatch between mean and covariance",
                           g.avg(vector_of<Real>({0}), cov, 4, rows)));
    EXPECT_TRUE(fails_with(g, "gvg", g.avg(mean, cov, 0, rows)));
    EXPECT_TRUE(fails_with(g, "dimension mismatch",
                           g.avg(vector_of<Real>({0}), symmetric_of<Real>(1, {1}), 1, columns)));

    // Its own vectors, some of them, once more.
    const auto mask = mask_of({true, false, true, true});
    const Matrix<Real> old = *r;
    ASSERT_TRUE(g.evv(rows, 1, 4, &mask, rows));
    std::as_const(rows).z_gii(&r);
    ASSERT_EQ(rows.nee(), 6);
    for (int k = 0; k < 2; ++k) {
        EXPECT_EQ((*r)[4][k], old[2][k]);
        EXPECT_EQ((*r)[5][k], old[3][k]);
    }
    GrowableMatrix<Real, Growth::columns> picked;
    ASSERT_TRUE(g.evv(columns, 0, 4, &mask, picked) && g.evv(columns, 3, 4, nullptr, picked));
    const Matrix<Real>* p = nullptr;
    std::as_const(picked).z_gii(&p);
    ASSERT_TRUE(picked.nee() == 4 && picked.vs() == 2);
    for (int k = 0; k < 2; ++k) EXPECT_TRUE((*p)[k][1] == (*c)[k][2] && (*p)[k][3] == (*c)[k][3]);
    EXPECT_TRUE(fails_with(g, "bad size or indices", g.evv(columns, 0, 5, nullptr, picked)));
    const auto few = mask_of({true});
    const char* const short_mask =
        "size of CNqVectorBool is less than in_last_index_of_range_plus_1";
    EXPECT_TRUE(fails_as(g, std::string("evv_Extract_Valid_random_Vectors: ") + short_mask,
                         g.evv(columns, 0, 2, &few, picked)));

    const auto v = vector_of<Real>({1, 2, 3, 4});
    GrowableVector<Real> x;
    ASSERT_TRUE(g.evn(v, 1, 4, &mask, x) && g.evn(v, 0, 1, nullptr, x));
    ASSERT_EQ(x.nee(), 3);
    EXPECT_TRUE(x[0] == Real(3) && x[1] == Real(4) && x[2] == Real(1));
    for (int twice = 0; twice < 5; ++twice)  // out of the storage that grows
        ASSERT_TRUE(g.evn(x.nee(), x.p(), 0, x.nee(), nullptr, x));
    EXPECT_EQ(x.nee(), 96);
    EXPECT_EQ(x[93], Real(3));
    EXPECT_TRUE(fails_as(g, std::string("evn_Extract_Valid_random_Numbers: ") + short_mask,
                         g.evn(v, 0, 2, &few, x)));
    EXPECT_TRUE(fails_with(g, "bad size or indices", g.evn(v, 2, 2, nullptr, x)));
}

}  // namespace
