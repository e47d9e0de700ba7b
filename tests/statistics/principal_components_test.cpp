#include <climits>

#include "statistics/statistics_support.h"

namespace {

using namespace statistics_test;

const std::string kAnalyse = "cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix";

template <class Real>
class PrincipalComponentsTest : public testing::Test {
protected:
    PrincipalComponents<Real> analysis;

    bool analyse() {
        return analysis.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix();
    }
    // Samples 3 +- sqrt(s_k / 2) e_k, whose scatter matrix is diag(s).
    bool feed(const std::vector<double>& scatter, double ratio, double residual_share) {
        const int d = static_cast<int>(scatter.size());
        bool done = analysis.c_Create(2 * d, d, Real(ratio), Real(residual_share));
        for (int k = 0; k < 2 * d; ++k) {
            Vector<Real> x;
            x.c_Create(d, Real(3));
            const double step = std::sqrt(scatter[std::size_t(k / 2)] / 2);
            x[k / 2] += Real(k % 2 == 0 ? step : -step);
            done = done && analysis.inv_INput_a_Vector(x, nullptr);
        }
        return done;
    }
    bool reconstruct(const Vector<Real>& x, int count, Vector<Real>* coefficients,
                     Vector<Real>* rebuilt = nullptr) const {
        return analysis.dar(x, count, coefficients, rebuilt, nullptr, nullptr, nullptr, nullptr);
    }
    void expect_not_valid() {
        analysis.cr_Clear_Record();
        EXPECT_EQ(analysis.nbpc(), 0);
        EXPECT_EQ(records_of(analysis), "nbpc_NumBer_of_Principal_Components: Not valid");
        EXPECT_EQ(analysis.nbev(), 0);
        EXPECT_EQ(analysis.rre(), Real(0));
        EXPECT_EQ(analysis.ppc(0), nullptr);
        EXPECT_FALSE(analysis.gipc(0, nullptr, nullptr));
        EXPECT_FALSE(analysis.gi_Get_Information(nullptr, nullptr, nullptr, nullptr, nullptr,
                                                 nullptr, nullptr));
        EXPECT_TRUE(fails_as(analysis, "dar_Do_Analysis_and_Reconstruction: Not valid",
                             reconstruct(vector_of<Real>({1, 2}), -1, nullptr)));
    }
};

TWIN_TEST(PrincipalComponentsTest, ParametersAndValidity) {
    auto& pca = this->analysis;
    EXPECT_STREQ(pca.gcn_Get_Class_Name().c_str(),
                 (std::is_same_v<Real, double> ? "CNqPrPca" : "CNqPrPcaFloat"));
    EXPECT_FALSE(this->analyse());
    struct Row {
        int n, d;
        double ratio, share;
        const char* detail;
    };
    for (const Row& row : {Row{10, 3, 0.2, 0.5, "2"},
                           {10, 3, 0, 0.5, "2"},
                           {10, 3, kNan, 0.5, "2"},
                           {10, 3, 0.05, 1, "1"},
                           {10, 3, 0.05, 0, "1"},
                           {10, 3, 0.2, kNan, "1"},
                           {0, 3, 0.05, 0.5, "3"},
                           {10, -1, 0.05, 0.5, "3"}}) {
        EXPECT_FALSE(pca.c_Create(row.n, row.d, Real(row.ratio), Real(row.share)));
        EXPECT_EQ(records_of(pca).substr(records_of(pca).rfind("c_Create")),
                  std::string("c_Create: ") + row.detail);
    }
    ASSERT_TRUE(pca.c_Create(4, 2, Real(0.1), Real(0.5)));  // 0.1f is above 0.1
    int n = 0, d = 0;
    Real ratio = 0, share = 0;
    pca.gp_Get_Parameters(&n, &d, &ratio, &share);
    EXPECT_TRUE(n == 4 && d == 2 && ratio == Real(0.1) && share == Real(0.5));
    this->expect_not_valid();

    int slot = -1;
    ASSERT_TRUE(pca.inv_INput_a_Vector(vector_of<Real>({1, 2}), &slot) && slot == 0);
    ASSERT_TRUE(pca.inv_INput_a_Vector(vector_of<int>({7, 7}), &slot) && slot == 1);
    ASSERT_TRUE(this->analyse());
    EXPECT_NE(pca.ppc(0), nullptr);
    for (const int outside : {-1, pca.nbev()})
        EXPECT_TRUE(fails_with(pca, "Void index", pca.ppc(outside) != nullptr));
    // Refused, and yet:
    EXPECT_TRUE(fails_with(pca, "1", pca.inv_INput_a_Vector(vector_of<Real>({1}), &slot)));
    EXPECT_NE(records_of(pca).find("inv_INput_a_Vector <CNqVector>: 1"), std::string::npos);
    this->expect_not_valid();
    ASSERT_TRUE(this->analyse());
    EXPECT_FALSE(pca.c_Create(4, 2, Real(0.5), Real(0.5)));
    this->expect_not_valid();

    ASSERT_TRUE(pca.inv_INput_a_Vector(vector_of<Real>({kNan, 2}), nullptr));
    EXPECT_TRUE(fails_as(pca, {"u_" + kAnalyse + ": max eigen-value <0", kAnalyse + ": 1"},
                         this->analyse()));
    this->expect_not_valid();
}

TWIN_TEST(PrincipalComponentsTest, TheCrossingComponentIsNotCountedButItsShareIs) {
    struct Row {
        std::vector<double> scatter;
        double ratio, residual_share;
        int kept, components;
        double error;
    };
    for (const Row& row : {Row{{3, 6, 1}, 0.05, 0.3, 3, 1, 0.1},
                           {{3, 6, 1}, 0.05, 0.5, 3, 0, 0.4},
                           {{3, 6, 1}, 0.05, 0.05, 3, 2, 0},
                           // Cut off, but part of the total: no component crosses.
                           {{3, 6, 0.3, 0}, 0.1, 0.01, 2, 2, 0.3 / 9.3},
                           {{0.3, 6, 3, 0.1}, 0.1, 0.5, 2, 0, 1 - 6 / 9.3},
                           {{0, 0}, 0.1, 0.5, 0, 0, 0}}) {
        SCOPED_TRACE(testing::Message() << row.residual_share << ' ' << row.error);
        ASSERT_TRUE(this->feed(row.scatter, row.ratio, row.residual_share) && this->analyse());
        EXPECT_EQ(this->analysis.nbev(), row.kept);
        EXPECT_EQ(this->analysis.nbpc(), row.components);
        EXPECT_NEAR(this->analysis.rre(), row.error, 1e-6);
    }
}

// Both forms, against the definition: S c = lambda c for the scatter matrix S = D D^T, |c| = 1.
TWIN_TEST(PrincipalComponentsTest, ComponentsAreEigenvectorsOfTheScatterMatrix) {
    PrincipalComponents<Real> p;
    Vector<Real> mean;
    GrowableVector<Real> eigenvalues;
    VectorSet<Real> components;
    Real total = -1;
    for (const auto& [n, d] :
         {std::pair{40, 6}, {7, 6}, {6, 6}, {5, 6}, {3, 50}, {1, 4}, {9, 1}, {30, 16}}) {
        SCOPED_TRACE(testing::Message() << n << ' ' << d);
        const auto X = matrix_of<Real>(
            d, n, [](int i, int j) { return 5 + std::sin(1.3 * i * j + i) / (1 + 0.3 * i); });
        ASSERT_TRUE(p.u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
            X, Real(0.01), mean, eigenvalues, total, components));
        const int m = eigenvalues.nee();
        ASSERT_EQ(components.ne(), std::min(n, d));
        ASSERT_TRUE(mean.vs() == d && m <= std::min(n, d));
        Matrix<double> D = matrix_of<double>(d, n, [&](int i, int j) { return double(X[i][j]); });
        double trace = 0;
        for (int i = 0; i < d; ++i) {
            double mu = 0;
            for (int j = 0; j < n; ++j) mu += D[i][j] / n;
            EXPECT_NEAR(mean[i], mu, 20 * kEpsilon<Real>);
            for (int j = 0; j < n; ++j) trace += std::pow(D[i][j] -= mu, 2);
        }
        for (int k = 0; k < m; ++k) {
            ASSERT_EQ(components.gpe(k)->vs(), d);
            EXPECT_GE(eigenvalues[k], Real(0.01) * eigenvalues[0]);
            EXPECT_LE(eigenvalues[k], eigenvalues[std::max(k - 1, 0)]);
        }
        const double tolerance = 200 * kEpsilon<Real> * (1 + trace);
        const auto element = [&](int i, int k) { return double((*components.gpe(k))[i]); };
        const auto C = matrix_of<double>(d, m, element);
        const auto image =
            matrix_of<double>(d, m, [&](int i, int k) { return eigenvalues[k] * element(i, k); });
        EXPECT_LT(largest_difference(product(D, product(transposed(D), C)), image), tolerance);
        EXPECT_LT(largest_difference(product(transposed(C), C), identity_of<double>(m)),
                  2000 * kEpsilon<Real>);
        EXPECT_LE(total, trace + tolerance);

        // The ring gives the same, and keeps the last n.
        ASSERT_TRUE(p.c_Create(n, d, Real(0.01), Real(0.1)));
        Vector<Real> x;
        x.c_Create(d, Real(1e3));
        ASSERT_TRUE(p.inv_INput_a_Vector(x, nullptr));
        for (int j = 0; j < n; ++j) {
            X.gc_Get_Column(j, 0, d, &x);
            ASSERT_TRUE(p.inv_INput_a_Vector(x, nullptr));
        }
        ASSERT_TRUE(p.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix());
        Vector<Real> mu, component, column;
        GrowableVector<Real> values;
        VectorSet<Real> set;
        Matrix<Real> matrix;
        int kept = -1, counted = -1;
        Real error = -1, eigenvalue = -1;
        ASSERT_TRUE(p.gi_Get_Information(&mu, &kept, &counted, &values, &set, &matrix, &error));
        ASSERT_TRUE(p.nbev() == m && kept == m && values.nee() == m && set.ne() == m);
        EXPECT_TRUE(counted == p.nbpc() && error == p.rre());
        EXPECT_LT(largest_difference(column_of(mu), column_of(mean)), 20 * kEpsilon<Real>);
        ASSERT_TRUE(matrix.mh() == d && matrix.mw() == m);
        for (int k = 0; k < m; ++k) {
            ASSERT_TRUE(p.gipc(k, &component, &eigenvalue));
            EXPECT_NEAR(eigenvalue, eigenvalues[k], tolerance);
            EXPECT_EQ(eigenvalue, values[k]);
            matrix.gc_Get_Column(k, 0, d, &column);
            EXPECT_TRUE(component == *p.ppc(k) && component == *set.gpe(k) && component == column);
        }
    }
    for (const double ratio : {0.0, 0.11, kNan})
        EXPECT_TRUE(fails_as(
            p, "u_" + kAnalyse + ": 0 < RATIO <= 0.1",
            p.u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
                matrix_of<Real>(1, 2, {1, 2}), Real(ratio), mean, eigenvalues, total, components)));
}

TWIN_TEST(PrincipalComponentsTest, AnalysisAndReconstruction) {
    ASSERT_TRUE(this->feed({2, 8, 4}, 0.05, 0.3));
    ASSERT_TRUE(this->analyse());  // components e1, e2, e0 (counted from 0) up to the sign
    const auto x = vector_of<Real>({3 + 1, 3 + 2, 3 + 3});
    const double tolerance = 100 * kEpsilon<Real>;
    struct Row {
        int asked, taken;
        double rest, weighted;
    };
    for (const Row& row : {Row{3, 3, 0, 4.0 / 8 + 9.0 / 4 + 1.0 / 2},
                           {2, 2, 1, 4.0 / 8 + 9.0 / 4},
                           {0, 0, 14, 0},
                           {-1, 1, 10, 4.0 / 8}}) {
        SCOPED_TRACE(row.asked);
        int count = row.asked;
        Vector<Real> c;
        Vector<Real> rebuilt = x;
        Real whole = -1, rest = -1, weighted = -1, relative = -1;
        ASSERT_TRUE(
            this->analysis.dar(rebuilt, count, &c, &rebuilt, &whole, &rest, &weighted, &relative));
        EXPECT_EQ(count, row.taken);
        ASSERT_EQ(c.vs(), row.taken);
        const int axes[] = {1, 2, 0};
        for (int k = 0; k < 3; ++k) {
            const int axis = axes[k];
            EXPECT_NEAR(rebuilt[axis], k < row.taken ? x[axis] : Real(3), tolerance);
            if (k < row.taken) {
                EXPECT_NEAR(std::abs(c[k]), x[axis] - 3, tolerance);
            }
        }
        EXPECT_NEAR(whole, 14, tolerance);
        EXPECT_NEAR(rest, row.rest, tolerance);
        EXPECT_NEAR(weighted, row.weighted, tolerance);
        EXPECT_NEAR(relative, row.rest / 14, tolerance);
    }
    Vector<Real> out;
    const auto refused = [&](const char* detail, bool done) {
        EXPECT_TRUE(fails_as(this->analysis,
                             std::string("dar_Do_Analysis_and_Reconstruction: ") + detail, done));
        EXPECT_EQ(out.vs(), 0);
    };
    refused("3", this->reconstruct(x, 4, &out));
    refused("1", this->reconstruct(out, 1, &out));
    refused("5", this->reconstruct(x, 1, &out, &out));
    this->analysis.ppc(1)->c_Create(2);
    refused("2", this->reconstruct(x, 1, &out));
}

TWIN_TEST(PrincipalComponentsTest, ConversionsSaturate) {
    const auto from = vector_of<Real>({kNan, 1e30, -1e30, 2.5, -1.6, 200});
    Vector<Real> back;
    const auto check = [&](auto to, double low, double high) {
        ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(from, to));
        ASSERT_EQ(to.vs(), from.vs());
        const double expected[] = {0, high, low, 2, low < 0 ? -2.0 : 0.0, std::min(200.0, high)};
        ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(to, back));
        ASSERT_EQ(back.vs(), from.vs());
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(double(to[i]), expected[i]) << i;
            EXPECT_EQ(back[i], Real(to[i])) << i;
        }
    };
    check(CNqVectorChar(), CHAR_MIN, CHAR_MAX);
    check(CNqVectorUchar(), 0, UCHAR_MAX);
    check(CNqVectorShort(), SHRT_MIN, SHRT_MAX);
    check(CNqVectorInt(), INT_MIN, INT_MAX);
    const auto exact = vector_of<Real>({1.5, -2});
    Vector<typename PrincipalComponents<Real>::OtherReal> others;
    ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(exact, others));
    ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(others, back));
    EXPECT_TRUE(back == exact);
}

}  // namespace
