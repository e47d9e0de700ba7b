#include "nequar_algebra/structured/toeplitz.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "structured/generated_support.h"
#include "support/chain.h"
#include "support/twins.h"

namespace {

using namespace nequar;
using namespace nequar::test;

TWINS(ToeplitzTest);

constexpr double (*kSequences[])(int) = {
    [](int k) { return 4 * std::pow(0.5, k); },
    [](int k) { return std::pow(-0.9, k); },
    // Two sinusoids in white noise.
    [](int k) { return (k == 0 ? 1.5 : 0.0) + std::cos(0.7 * k) + 0.5 * std::cos(2.1 * k); },
    [](int k) { return -3 * std::pow(0.3, k); },
    // The prolate matrices, which become singular to working precision where they grow.
    [](int k) {
        return k == 0 ? 0.8 : std::sin(0.8 * std::numbers::pi * k) / (std::numbers::pi * k);
    },
};

template <class Real>
Matrix<Real> full(const Vector<Real>& r, int n) {
    return matrix_of<Real>(n, n, [&](int i, int j) { return r[std::abs(i - j)]; });
}

template <class Real>
double residual(const Vector<Real>& r, const Vector<Real>& x, const Vector<Real>& b) {
    return solution_residual(full(r, b.vs()), column_of(x), column_of(b));
}

TWIN_TEST(ToeplitzTest, SolutionsAndInversesHaveSmallResiduals) {
    constexpr bool is_double = std::is_same_v<Real, double>;
    for (const auto sequence : kSequences)
        for (const int n : {1, 2, 3, 4, 7, 17, 32, 33, 64, 65, 66, 131, 500}) {
            if (n > 131 && !is_double) break;
            if (sequence == kSequences[4] && n > (is_double ? 17 : 7)) break;
            SCOPED_TRACE(testing::Message() << sequence(1) << ' ' << n);
            const auto r = generated_vector<Real>(n + 3, sequence);  // longer than needed
            const auto b = generated_vector<Real>(n, [](int i) { return std::sin(1 + 3 * i); });
            const MatrixToeplitzSymmetric<Real> t;
            Vector<Real> x, y;
            ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r, b, x));
            EXPECT_LT(residual(r, x, b), 10);

            const auto first = generated_vector<Real>(n + 1, sequence);
            const auto right = generated_vector<Real>(n, [&](int i) { return -r[i + 1]; });
            MatrixToeplitzSymmetric<Real> leading, own;
            ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(first, &y, &leading));
            EXPECT_LT(residual(r, y, right), 10);

            ASSERT_TRUE(own.im_Import(n, r));
            EXPECT_TRUE(own == leading);
            Matrix<Real> inverse, unpacked;
            MatrixSymmetric<Real> packed, alone;
            ASSERT_TRUE(own.fimt_Find_Inverse_Matrix_by_Trench(&inverse, &packed));
            EXPECT_LT(solution_residual(full(r, n), inverse, identity_of<Real>(n)), 10);
            packed.e_Export(&unpacked);
            EXPECT_TRUE(inverse == unpacked && inverse == transposed(inverse));
            EXPECT_TRUE(inverse == matrix_of<Real>(n, n, [&](int i, int j) {
                            return inverse[n - 1 - j][n - 1 - i];
                        }));
            ASSERT_TRUE(own.fimt_Find_Inverse_Matrix_by_Trench(nullptr, &alone));
            alone.e_Export(&unpacked);
            EXPECT_LE(largest_difference(unpacked, inverse),
                      n * kEpsilon<Real> * largest_of(inverse));
        }
}

TWIN_TEST(ToeplitzTest, ArgumentsMayBeOneObjectAndOthersDoNotChange) {
    MatrixToeplitzSymmetric<Real> t;
    const auto r = vector_of<Real>({4, 2, 1});
    const auto b = vector_of<Real>({1, -2, 3});
    auto r_used = r, b_used = b;
    Vector<Real> x, y;
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b_used, x));
    EXPECT_TRUE(r_used == r && b_used == b);
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b_used, b_used));
    EXPECT_TRUE(b_used == x);
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b, r_used));
    EXPECT_TRUE(r_used == x);
    t.im_Import(3, r);
    b_used = b;
    ASSERT_TRUE(t.slel_Solve_Linear_Equation_by_Levinson(b_used));
    EXPECT_TRUE(b_used == x);

    ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r, &y, nullptr));
    r_used = r;
    ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r_used, &r_used, &t));
    EXPECT_TRUE(r_used == y);
    EXPECT_EQ(t.mw(), 2);
    MatrixSymmetric<Real> packed, expected;  // which is a vector too, and here the first row
    packed.c_Create(2, 2);
    for (int i = 0; i < 3; ++i) packed[i] = r[i];
    ASSERT_TRUE(t.u_fimt_Find_Inverse_Matrix_by_Trench(r, nullptr, &expected));
    ASSERT_TRUE(t.u_fimt_Find_Inverse_Matrix_by_Trench(packed, nullptr, &packed));
    EXPECT_TRUE(packed == expected);
}

TWIN_TEST(ToeplitzTest, FailuresAreNamedAndSmallOrdersAreNot) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    const MatrixToeplitzSymmetric<Real> t;
    EXPECT_STREQ(t.gcn_Get_Class_Name().c_str(),
                 (std::is_same_v<Real, double> ? "CNqMatrix_Toeplitz_Symmetric"
                                               : "CNqMatrixFloat_Toeplitz_Symmetric"));
    const std::string bad = "Not Positive-Definite", zero = "r[0]==0";
    const struct {
        std::initializer_list<double> r;
        int n;  // of the right-hand side
        std::string durbin, levinson, trench;
    } rows[] = {
        {{0, 1}, 2, zero, zero, zero},
        {{0}, 1, zero, zero, zero},
        {{1, 1}, 2, "", bad, bad},
        {{1, 1, 1}, 3, bad, bad, bad},
        {{1, 2, 0.5}, 3, bad, bad, bad},
        {{1, nan, 0}, 3, bad, bad, bad},
        {{nan, 1, 0}, 3, bad, bad, bad},
        {{inf, 1, 0}, 3, bad, bad, bad},
        {{1, inf, 0}, 3, bad, bad, bad},
        {{1, 0.5}, 3, "", "1", ""},
        {{1, 5}, 1, "", "", bad},  // Levinson does not look at r[1]
        {{}, 0, "1", "1", "1"},
        {{2}, 1, "", "", ""},
        {{2}, 0, "", "", ""},
    };
    for (const auto& row : rows) {
        const auto r = vector_of<Real>(row.r);
        SCOPED_TRACE(testing::Message() << r << " / " << row.n);
        Vector<Real> b;
        b.c_Create(row.n, Real(1));
        auto out = vector_of<Real>({7, 7, 7, 7, 7});
        Matrix<Real> inverse;
        const auto check = [&](bool done, const std::string& detail, const std::string& method) {
            EXPECT_TRUE(detail.empty() ? done : fails_as(t, method + ": " + detail, done));
        };
        check(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r, &out, nullptr), row.durbin,
              "u_sywd_Solve_Yule_Walker_equation_by_Durbin");
        EXPECT_EQ(out.vs(), row.durbin.empty() ? r.vs() - 1 : 5);
        check(t.u_slel_Solve_Linear_Equation_by_Levinson(r, b, out), row.levinson,
              "u_slel_Solve_Linear_Equation_by_Levinson");
        check(t.u_fimt_Find_Inverse_Matrix_by_Trench(r, &inverse, nullptr), row.trench,
              "u_fimt_Find_Inverse_Matrix_by_Trench");
    }
    Vector<Real> y;
    MatrixToeplitzSymmetric<Real> leading;
    EXPECT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(vector_of<Real>({3}), &y, &leading));
    EXPECT_TRUE(y.vs() == 0 && leading.mw() == 1);
}

TWIN_TEST(ToeplitzTest, ImportElementsRowsAndExports) {
    MatrixToeplitzSymmetric<Real> t;
    EXPECT_EQ(t.ge_Get_Element(0, 0), Real(1));
    const auto v = vector_of<Real>({5, 4, 3, 2});
    EXPECT_TRUE(fails_as(t, "im_Import: 1", t.im_Import(0, v)));
    EXPECT_TRUE(fails_as(t, "im_Import: Bad Upper Part", t.im_Import(5, v)));
    EXPECT_EQ(t.mw(), 1);
    ASSERT_TRUE(t.im_Import(3, v));
    Matrix<Real> dense, unpacked;
    MatrixSymmetric<Real> packed;
    Vector<Real> r;
    t.ex_Export(&dense, &packed, &r);
    packed.e_Export(&unpacked);
    EXPECT_TRUE(r == vector_of<Real>({5, 4, 3}));
    EXPECT_TRUE(dense == full(v, 3) && unpacked == dense);
    expect_elements(t, dense);
    auto moved = std::move(t);
    EXPECT_EQ(moved.mw(), 3);
    EXPECT_EQ(t.mw(), 0);
    EXPECT_EQ(t.ge_Get_Element(1, 1), Real(0));
    t = moved;
    EXPECT_TRUE(t == moved);
    t.ex_Export(nullptr, &packed, &packed);
    EXPECT_STREQ(t.ged_Get_Error_Detail().c_str(), "1");
}

}  // namespace
