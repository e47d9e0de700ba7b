#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <utility>

#include "statistics/statistics_support.h"
#include "support/residual.h"
#include "support/twins.h"

namespace {

using namespace statistics_test;

constexpr const char* kAnalyse = "cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix";

template <class Real>
class PrincipalComponentsTest : public testing::Test {
protected:
    PrincipalComponents<Real> analysis;

    bool analyse() {
        return analysis.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix();
    }
    // Samples m +- sqrt(s_k / 2) e_k, whose scatter matrix is diag(s).
    bool feed(std::initializer_list<double> scatter, double ratio, double residual_share) {
        const int d = static_cast<int>(scatter.size());
        bool done = analysis.c_Create(2 * d, d, Real(ratio), Real(residual_share));
        int k = 0;
        for (const double s : scatter) {
            for (const double sign : {1.0, -1.0}) {
                Vector<Real> x;
                x.c_Create(d, Real(3));
                x[k] += Real(sign * std::sqrt(s / 2));
                done = done && analysis.inv_INput_a_Vector(x, nullptr);
            }
            ++k;
        }
        return done;
    }
};

TWIN_TEST(PrincipalComponentsTest, ParametersAndValidity) {
    auto& pca = this->analysis;
    EXPECT_STREQ(pca.gcn_Get_Class_Name().c_str(),
                 (std::is_same_v<Real, double> ? "CNqPrPca" : "CNqPrPcaFloat"));
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
    int n = 0;
    int d = 0;
    Real ratio = 0;
    Real share = 0;
    pca.gp_Get_Parameters(&n, &d, &ratio, &share);
    EXPECT_TRUE(n == 4 && d == 2 && ratio == Real(0.1) && share == Real(0.5));

    const auto not_valid = [&] {
        pca.cr_Clear_Record();
        EXPECT_EQ(pca.nbpc(), 0);
        EXPECT_EQ(records_of(pca), "nbpc_NumBer_of_Principal_Components: Not valid");
        EXPECT_EQ(pca.nbev(), 0);
        EXPECT_EQ(pca.rre(), Real(0));
        EXPECT_EQ(pca.ppc(0), nullptr);
        EXPECT_FALSE(pca.gipc(0, nullptr, nullptr));
        EXPECT_FALSE(
            pca.gi_Get_Information(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
        int count = -1;
        EXPECT_TRUE(fails_as(pca, "dar_Do_Analysis_and_Reconstruction: Not valid",
                             pca.dar(vector_of<Real>({1, 2}), count, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr)));
    };
    not_valid();
    int slot = -1;
    CNqVectorInt whole;
    whole.c_Create(2, 7);
    ASSERT_TRUE(pca.inv_INput_a_Vector(vector_of<Real>({1, 2}), &slot) && slot == 0);
    ASSERT_TRUE(pca.inv_INput_a_Vector(whole, &slot) && slot == 1);
    ASSERT_TRUE(this->analyse());
    EXPECT_GT(pca.nbev(), 0);
    EXPECT_NE(pca.ppc(0), nullptr);
    EXPECT_EQ(pca.ppc(pca.nbev()), nullptr);
    EXPECT_EQ(detail_of(pca), "Void index");
    EXPECT_EQ(pca.ppc(-1), nullptr);
    EXPECT_FALSE(pca.inv_INput_a_Vector(vector_of<Real>({1}), &slot));  // refused, and yet
    EXPECT_EQ(detail_of(pca), "1");
    EXPECT_NE(records_of(pca).find("inv_INput_a_Vector <CNqVector>: 1"), std::string::npos);
    not_valid();
    ASSERT_TRUE(this->analyse());
    EXPECT_FALSE(pca.c_Create(4, 2, Real(0.5), Real(0.5)));
    not_valid();

    ASSERT_TRUE(pca.inv_INput_a_Vector(vector_of<Real>({kNan, 2}), nullptr));
    EXPECT_TRUE(fails_as(pca,
                         std::string("u_") + kAnalyse + ": max eigen-value <0\n" + kAnalyse + ": 1",
                         this->analyse()));
    not_valid();
    const PrincipalComponents<Real> fresh;
    EXPECT_FALSE(PrincipalComponents<Real>(fresh)
                     .cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix());
}

TWIN_TEST(PrincipalComponentsTest, TheCrossingComponentIsNotCountedButItsShareIs) {
    struct Row {
        std::initializer_list<double> scatter;
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
        ASSERT_TRUE(this->feed(row.scatter, row.ratio, row.residual_share));
        ASSERT_TRUE(this->analyse());
        EXPECT_EQ(this->analysis.nbev(), row.kept);
        EXPECT_EQ(this->analysis.nbpc(), row.components);
        EXPECT_NEAR(this->analysis.rre(), row.error, 1e-6);
    }
}

// Both forms, against the definition: S c = lambda c for the scatter matrix S, |c| = 1.
TWIN_TEST(PrincipalComponentsTest, ComponentsAreEigenvectorsOfTheScatterMatrix) {
    for (const auto& [n, d] : {std::pair{40, 6}, {7, 6}, {6, 6}, {5, 6}, {3, 50}, {1, 4}, {9, 1}}) {
        SCOPED_TRACE(testing::Message() << n << ' ' << d);
        Matrix<Real> X;
        X.c_Create(d, n);
        for (int i = 0; i < d; ++i)
            for (int j = 0; j < n; ++j)
                X[i][j] = Real(5 + std::sin(1.3 * i * j + i) / (1 + 0.3 * i));
        Vector<Real> mean;
        GrowableVector<Real> eigenvalues;
        VectorSet<Real> components;
        Real total = -1;
        PrincipalComponents<Real> p;
        ASSERT_TRUE(p.u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
            X, Real(0.01), mean, eigenvalues, total, components));
        const int m = eigenvalues.nee();
        ASSERT_EQ(components.ne(), std::min(n, d));
        ASSERT_TRUE(mean.vs() == d && m < std::min(n, d + 1) + 1);
        Matrix<double> D;
        D.c_Create(d, n);
        double trace = 0;
        for (int i = 0; i < d; ++i) {
            double mu = 0;
            for (int j = 0; j < n; ++j) mu += double(X[i][j]) / n;
            EXPECT_NEAR(mean[i], mu, 20 * kEpsilon<Real>);
            for (int j = 0; j < n; ++j) {
                D[i][j] = double(X[i][j]) - mu;
                trace += D[i][j] * D[i][j];
            }
        }
        const double tolerance = 200 * kEpsilon<Real> * (1 + trace);
        for (int k = 0; k < m; ++k) {
            const Vector<Real>& c = *components.gpe(k);
            ASSERT_EQ(c.vs(), d);
            EXPECT_GE(eigenvalues[k], Real(0.01) * eigenvalues[0]);
            if (k > 0) {
                EXPECT_LE(eigenvalues[k], eigenvalues[k - 1]);
            }
            for (int i = 0; i < d; ++i) {
                double image = 0;
                for (int j = 0; j < n; ++j) {
                    double along = 0;
                    for (int l = 0; l < d; ++l) along += D[l][j] * c[l];
                    image += D[i][j] * along;
                }
                EXPECT_NEAR(image, double(eigenvalues[k]) * c[i], tolerance);
            }
            for (int l = 0; l <= k; ++l) {
                double product = 0;
                for (int i = 0; i < d; ++i) product += double(c[i]) * (*components.gpe(l))[i];
                EXPECT_NEAR(product, k == l ? 1 : 0, 2000 * kEpsilon<Real>);
            }
        }
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
        ASSERT_EQ(p.nbev(), m);
        Vector<Real> component;
        Real eigenvalue = 0;
        for (int k = 0; k < m; ++k) {
            ASSERT_TRUE(p.gipc(k, &component, &eigenvalue));
            EXPECT_NEAR(eigenvalue, eigenvalues[k], tolerance);
            EXPECT_TRUE(component == *p.ppc(k));
        }
        Vector<Real> mu;
        int kept = -1;
        int counted = -1;
        GrowableVector<Real> values;
        VectorSet<Real> set;
        Matrix<Real> matrix;
        Real error = -1;
        ASSERT_TRUE(p.gi_Get_Information(&mu, &kept, &counted, &values, &set, &matrix, &error));
        EXPECT_TRUE(kept == m && counted == p.nbpc() && error == p.rre() && values.nee() == m);
        EXPECT_TRUE(set.ne() == m && matrix.mh() == d && matrix.mw() == m);
        for (int k = 0; k < m; ++k) {
            EXPECT_TRUE(*set.gpe(k) == *p.ppc(k));
            EXPECT_EQ(matrix[d - 1][k], (*p.ppc(k))[d - 1]);
        }
    }
    VectorSet<Real> components;
    Vector<Real> mean;
    GrowableVector<Real> values;
    Real total = 0;
    auto& pca = this->analysis;
    for (const double ratio : {0.0, 0.11, kNan}) {
        EXPECT_TRUE(fails_as(
            pca, std::string("u_") + kAnalyse + ": 0 < RATIO <= 0.1",
            pca.u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
                matrix_of<Real>(1, 2, {1, 2}), Real(ratio), mean, values, total, components)));
    }
}

TWIN_TEST(PrincipalComponentsTest, AnalysisAndReconstruction) {
    auto& pca = this->analysis;
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
        Real whole = -1;
        Real rest = -1;
        Real weighted = -1;
        Real relative = -1;
        ASSERT_TRUE(pca.dar(rebuilt, count, &c, &rebuilt, &whole, &rest, &weighted, &relative));
        EXPECT_EQ(count, row.taken);
        ASSERT_EQ(c.vs(), row.taken);
        const int axes[] = {1, 2, 0};
        for (int k = 0; k < row.taken; ++k) {
            EXPECT_NEAR(std::abs(c[k]), x[axes[k]] - 3, tolerance);
            EXPECT_NEAR(rebuilt[axes[k]], x[axes[k]], tolerance);
        }
        if (row.taken < 3) {
            EXPECT_NEAR(rebuilt[0], 3, tolerance);
        }
        EXPECT_NEAR(whole, 14, tolerance);
        EXPECT_NEAR(rest, row.rest, tolerance);
        EXPECT_NEAR(weighted, row.weighted, tolerance);
        EXPECT_NEAR(relative, row.rest / 14, tolerance);
    }
    int count = 4;
    Vector<Real> out;
    const auto refused = [&](bool done, const char* detail) {
        EXPECT_TRUE(
            fails_as(pca, std::string("dar_Do_Analysis_and_Reconstruction: ") + detail, done));
        EXPECT_EQ(out.vs(), 0);
    };
    refused(pca.dar(x, count, &out, nullptr, nullptr, nullptr, nullptr, nullptr), "3");
    count = 1;
    refused(pca.dar(out, count, &out, nullptr, nullptr, nullptr, nullptr, nullptr), "1");
    refused(pca.dar(x, count, &out, &out, nullptr, nullptr, nullptr, nullptr), "5");
    pca.ppc(1)->c_Create(2);
    refused(pca.dar(x, count, &out, nullptr, nullptr, nullptr, nullptr, nullptr), "2");
}

TWIN_TEST(PrincipalComponentsTest, ConversionsSaturate) {
    const auto from = vector_of<Real>({kNan, 1e30, -1e30, 2.5, -1.6, 200});
    CNqVectorChar chars;
    CNqVectorUchar uchars;
    CNqVectorShort shorts;
    CNqVectorInt ints;
    Vector<Real> back;
    typename PrincipalComponents<Real>::OtherReal other_type = 0;
    (void)other_type;
    Vector<decltype(other_type)> others;
    const auto check = [&](auto& to, double low, double high) {
        ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(from, to));
        ASSERT_EQ(to.vs(), from.vs());
        const double expected[] = {0, high, low, 2, low < 0 ? -2.0 : 0.0, std::min(200.0, high)};
        for (int i = 0; i < 6; ++i) EXPECT_EQ(double(to[i]), expected[i]) << i;
        ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(to, back));
        for (int i = 0; i < 6; ++i) EXPECT_EQ(back[i], Real(to[i])) << i;
    };
    check(chars, CHAR_MIN, CHAR_MAX);
    check(uchars, 0, UCHAR_MAX);
    check(shorts, SHRT_MIN, SHRT_MAX);
    check(ints, INT_MIN, INT_MAX);
    ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(vector_of<Real>({1.5, -2}), others));
    ASSERT_TRUE(this->analysis.u_cv_Convert_Vector(others, back));
    EXPECT_TRUE(back == vector_of<Real>({1.5, -2}));
}

}  // namespace
