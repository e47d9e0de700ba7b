#include <cstdint>
#include <ctime>

#include "statistics/statistics_support.h"

namespace {

using namespace statistics_test;

TWINS(GaussianGeneratorTest);

const std::string kBadRange = "bad size or indices";

// What a call that began within the second `time` has to give.
template <class Real>
std::vector<Real> samples(int time, int count) {
    std::vector<Real> s(std::size_t(count), Real(0));
    for (Real& x : s) x = Real(Nq_Rand_Gaussianf(time));
    return s;
}

// call() repeated until the clock stood still meanwhile; answers that second.
template <class Call>
int within_one_second(const Call& call) {
    for (;;) {
        const std::time_t before = std::time(nullptr);
        call();
        if (std::time(nullptr) == before) return int(std::uint32_t(before));
    }
}

// What a growable matrix holds, its vectors as rows.
template <class Real, Growth growth>
Matrix<Real> rows_of(const GrowableMatrix<Real, growth>& vectors) {
    const Matrix<Real>* m = nullptr;
    vectors.z_gii(&m);
    return matrix_of<Real>(vectors.nee(), vectors.vs(), [m](int v, int k) {
        return growth == Growth::columns ? (*m)[k][v] : (*m)[v][k];
    });
}

TWIN_TEST(GaussianGeneratorTest, NumbersAreTheSamplesOfTheSecondInTheirOrder) {
    RandomNumberGeneratorAdvanced<Real> g;
    EXPECT_STREQ(g.gcn_Get_Class_Name().c_str(),
                 (std::is_same_v<Real, double> ? "CNqRandom_Number_Generator_Advanced"
                                               : "CNqRandomFloat_Number_Generator_Advanced"));
    std::vector<Real> out(1000);
    int time = within_one_second([&] { ASSERT_TRUE(g.gng_wzu(1000, out.data())); });
    std::reverse(out.begin(), out.end());  // filled from the end
    EXPECT_EQ(out, samples<Real>(time, 1000));

    Matrix<Real> m;
    time = within_one_second([&] { ASSERT_TRUE(g.gvg_wzu(3, 7, true, m)); });
    EXPECT_TRUE(m.mh() == 3 && m.mw() == 7);
    EXPECT_EQ(m[2][6], samples<Real>(time, 1)[0]);
    EXPECT_TRUE(g.gvg_wzu(3, 7, false, m) && m.mh() == 7 && m.mw() == 3);

    auto a = vector_of<Real>({9, 9, 9, 9, 9, 9});
    const bool mask[] = {true, true, false, true, false, true};
    int replaced = -1;
    time = within_one_second(
        [&] { ASSERT_TRUE(g.rng(Real(2), Real(0.25), 6, a.p(), 1, 5, mask, &replaced)); });
    const auto z = samples<Real>(time, 2);
    EXPECT_EQ(replaced, 2);
    EXPECT_TRUE(a == vector_of<Real>({9, 2 + z[0] / 2, 9, 2 + z[1] / 2, 9, 9}));
    const bool none[] = {false, false};
    ASSERT_TRUE(g.rng(Real(2), Real(1), 2, a.p(), 0, 2, none, &replaced));
    EXPECT_TRUE(replaced == 0 && a[0] == Real(9));

    Vector<Real> v;
    GrowableVector<Real> x;
    x.ae_Append_Element(Real(1));
    ASSERT_TRUE(g.gng(Real(5), Real(0), 3, v) && v == vector_of<Real>({5, 5, 5}));
    ASSERT_TRUE(g.ang(Real(4), Real(0), 2, x));
    EXPECT_TRUE(x.nee() == 3 && x[0] == Real(1) && x[2] == Real(4));
}

TWIN_TEST(GaussianGeneratorTest, RefusedArgumentsOfNumbers) {
    RandomNumberGeneratorAdvanced<Real> g;
    Real a[4] = {};
    EXPECT_TRUE(fails_as(g,
                         "gng_wzu_Generate_random_Numbers_Gaussian_White_Zero_mean_Unit_variance: "
                         "array size <= 0",
                         g.gng_wzu(0, a)));
    const std::string negative = "negative variance";
    struct Row {
        double variance;
        int n, begin, end;
        std::string detail;
    };
    for (const Row& row : {Row{1, 4, 2, 2, kBadRange},
                           {1, 4, 0, 5, kBadRange},
                           {1, 4, -1, 3, kBadRange},
                           {1, 0, 0, 0, kBadRange},
                           {-1, 4, 3, 2, kBadRange},
                           {-1, 4, 0, 4, negative},
                           {kNan, 4, 0, 4, negative}}) {
        EXPECT_TRUE(fails_as(
            g, "rng_Replace_random_Numbers_Gaussian: " + row.detail,
            g.rng(Real(7), Real(row.variance), row.n, a, row.begin, row.end, nullptr, nullptr)));
        EXPECT_EQ(a[0], Real(0));
    }
    Vector<Real> v;
    EXPECT_TRUE(fails_with(g, kBadRange, g.gng(Real(0), Real(1), -3, v)));
    EXPECT_EQ(v.vs(), 1);
    GrowableVector<Real> x;
    EXPECT_TRUE(fails_as(g,
                         {"rng_Replace_random_Numbers_Gaussian: " + negative,
                          "gng_Generate_random_Numbers_Gaussian: " + negative,
                          "ang_Append_random_Numbers_Gaussian: gng"},
                         g.ang(Real(0), Real(-1), 3, x)));
    Matrix<Real> m;
    for (const auto& [dim, count] : {std::pair{0, 3}, {3, 0}, {-1, 1}})
        EXPECT_TRUE(fails_with(g, "bad dimension or numbers", g.gvg_wzu(dim, count, true, m)));
}

TWIN_TEST(GaussianGeneratorTest, TransformIsARootOfTheCovariance) {
    RandomNumberGeneratorAdvanced<Real> g;
    Matrix<Real> T;
    for (const int rank : {5, 2, 1, 0}) {  // singular ones are covariances too
        const auto root = matrix_of<Real>(
            5, rank, [](int i, int k) { return std::cos(k * (i + 0.5)); });  // first, all ones
        const auto dense = product(root, transposed(root));
        ASSERT_TRUE(g.ctl(packed_of(dense), T)) << rank << records_of(g);
        EXPECT_LT(rebuilding_error(dense, T, transposed(T)), 20) << rank;
    }
    for (const auto& bad : {symmetric_of<Real>(2, {1, 2, 2, 1}), symmetric_of<Real>(1, {-1e-20}),
                            symmetric_of<Real>(2, {1, 0, 0, -1e-3})})
        EXPECT_TRUE(fails_as(g, "ctl_Compute_Transform_Linear: Not valid covariance matrix",
                             g.ctl(bad, T)));
    for (const double x : {kNan, kInfinity})
        EXPECT_FALSE(g.ctl(symmetric_of<Real>(2, {1, x, x, 1}), T)) << x;
}

// Both layouts, whole ranges and masked ones: what is chosen is T Z, what is not stays.
TWIN_TEST(GaussianGeneratorTest, VectorsAreTheRootTimesTheSamplesWhereTheyAreWanted) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto cov = symmetric_of<Real>(2, {4, 1.2, 1.2, 1});
    const auto mean = vector_of<Real>({100, -50});  // which shifts nothing
    Matrix<Real> T;
    ASSERT_TRUE(g.ctl(cov, T));
    for (const int n : {8, 1400})  // more than are made at a time
        for (const int form : {0, 1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << n << ' ' << form);
            const bool by_column = form % 2 == 0, masked = form < 2;
            const auto mask = vector_of<bool>(n - 2, [=](int v) { return !masked || v % 7 != 3; });
            Matrix<Real> m;
            int count = 0;
            const int time = within_one_second([&] {
                by_column ? m.c_Create(2, n, Real(7)) : m.c_Create(n, 2, Real(7));
                ASSERT_TRUE(
                    g.rvg(mean, cov, by_column, m, 1, n - 2, masked ? &mask : nullptr, &count));
            });
            if (by_column) m = transposed(m);
            const auto white = samples<Real>(time, 2 * count);
            const auto z = [&](int row, int column) {  // of dim x count, filled from its end
                return double(white[std::size_t(2 * count - 1 - row * count - column)]);
            };
            int taken = 0;
            for (int v = 0; v < n; ++v) {
                const bool chosen = v >= 1 && v < n - 2 && mask[v];
                for (int k = 0; k < 2; ++k)
                    EXPECT_NEAR(m[v][k], chosen ? T[k][0] * z(0, taken) + T[k][1] * z(1, taken) : 7,
                                40 * kEpsilon<Real>);
                taken += chosen ? 1 : 0;
            }
            EXPECT_EQ(count, taken);
        }
}

TWIN_TEST(GaussianGeneratorTest, RefusedArgumentsOfVectors) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto cov = symmetric_of<Real>(2, {1, 0, 0, 1});
    const auto mean = vector_of<Real>({0, 0}), three = vector_of<Real>({0, 0, 0});
    const auto mask = vector_of<bool>({1, 1}), none = vector_of<bool>({0, 0, 0});
    Matrix<Real> m = matrix_of<Real>(2, 3, {1, 2, 3, 4, 5, 6});
    const Matrix<Real> before = m;
    const std::string mismatch = "mismatch between mean and covariance";
    const auto refused = [&](const std::string& detail, const Vector<Real>& mu, bool by_column,
                             auto... range) {
        EXPECT_TRUE(fails_as(g, "rvg_Replace_random_Vectors_Gaussian: " + detail,
                             g.rvg(mu, cov, by_column, m, range..., nullptr)));
    };
    refused(mismatch, three, true, 0, 1, nullptr);
    refused(mismatch, mean, false, 0, 1, nullptr);
    refused(kBadRange, mean, true, 0, 4, nullptr);
    refused(kBadRange, mean, true, -1, 2, &mask);
    refused(kBadRange, mean, true, 1, 1, nullptr);
    refused("size of <CNqVectorBool> is too small", mean, true, 0, 3, &mask);
    EXPECT_TRUE(fails_as(
        g,
        {"ctl_Compute_Transform_Linear: Not valid covariance matrix",
         "rvg_Replace_random_Vectors_Gaussian: ctl"},
        g.rvg(mean, symmetric_of<Real>(2, {1, 2, 2, 1}), true, m, 0, 1, nullptr, nullptr)));
    int replaced = -1;
    EXPECT_TRUE(g.rvg(mean, cov, true, m, 0, 3, &none, &replaced));
    EXPECT_TRUE(m == before && replaced == 0);
    EXPECT_TRUE(fails_with(g, mismatch, g.gvg(three, cov, 4, true, m)));
    EXPECT_TRUE(m.mh() == 3 && m.mw() == 4);
    EXPECT_TRUE(fails_with(g, kBadRange, g.gvg(mean, cov, 0, true, m)));
    EXPECT_TRUE(m.mh() == 2 && m.mw() == 1);
}

TWIN_TEST(GaussianGeneratorTest, AppendsAndExtracts) {
    RandomNumberGeneratorAdvanced<Real> g;
    const auto cov = symmetric_of<Real>(2, {2, 1, 1, 2});
    const auto mean = vector_of<Real>({0, 0}), one = vector_of<Real>({0});
    GrowableMatrix<Real, Growth::columns> columns, picked;
    GrowableMatrix<Real, Growth::rows> rows;
    within_one_second([&] {
        columns.z_cne(0);
        rows.z_cne(0);
        ASSERT_TRUE(g.avg(mean, cov, 4, columns) && g.avg(mean, cov, 4, rows));
    });
    const auto vectors = rows_of(rows);
    ASSERT_TRUE(vectors.mh() == 4 && vectors.mw() == 2);
    EXPECT_NE(vectors[0][0], vectors[1][0]);
    EXPECT_LT(largest_difference(rows_of(columns), vectors), 8 * kEpsilon<Real>);
    EXPECT_TRUE(fails_with(g, "mismatch between mean and covariance", g.avg(one, cov, 4, rows)));
    EXPECT_TRUE(fails_with(g, "gvg", g.avg(mean, cov, 0, rows)));
    EXPECT_TRUE(
        fails_with(g, "dimension mismatch", g.avg(one, symmetric_of<Real>(1, {1}), 1, columns)));

    const auto expect_rows = [](const auto& found, const Matrix<Real>& of, std::vector<int> which) {
        EXPECT_TRUE(rows_of(found) == matrix_of<Real>(int(which.size()), 2, [&](int v, int k) {
                        return of[which[std::size_t(v)]][k];
                    }));
    };
    const auto mask = vector_of<bool>({1, 0, 1, 1}), few = vector_of<bool>({1});
    ASSERT_TRUE(g.evv(rows, 1, 4, &mask, rows));  // its own vectors, some of them, once more
    expect_rows(rows, vectors, {0, 1, 2, 3, 2, 3});
    ASSERT_TRUE(g.evv(columns, 0, 4, &mask, picked) && g.evv(columns, 3, 4, nullptr, picked));
    expect_rows(picked, rows_of(columns), {0, 2, 3, 3});
    EXPECT_TRUE(fails_with(g, kBadRange, g.evv(columns, 0, 5, nullptr, picked)));
    const std::string short_mask =
        "size of CNqVectorBool is less than in_last_index_of_range_plus_1";
    EXPECT_TRUE(fails_as(g, "evv_Extract_Valid_random_Vectors: " + short_mask,
                         g.evv(columns, 0, 2, &few, picked)));

    const auto v = vector_of<Real>({1, 2, 3, 4});
    GrowableVector<Real> x;
    ASSERT_TRUE(g.evn(v, 1, 4, &mask, x) && g.evn(v, 0, 1, nullptr, x));
    ASSERT_EQ(x.nee(), 3);
    EXPECT_TRUE(x[0] == Real(3) && x[1] == Real(4) && x[2] == Real(1));
    for (int twice = 0; twice < 5; ++twice)  // out of the storage that grows
        ASSERT_TRUE(g.evn(x.nee(), x.p(), 0, x.nee(), nullptr, x));
    ASSERT_EQ(x.nee(), 96);
    EXPECT_EQ(x[93], Real(3));
    EXPECT_TRUE(
        fails_as(g, "evn_Extract_Valid_random_Numbers: " + short_mask, g.evn(v, 0, 2, &few, x)));
    EXPECT_TRUE(fails_with(g, kBadRange, g.evn(v, 2, 2, nullptr, x)));
}

}  // namespace
