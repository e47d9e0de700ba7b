#include "nequar_algebra/structured/toeplitz.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "support/residual.h"
#include "support/twins.h"

namespace {

using namespace nequar;
using namespace nequar::test;

TWINS(ToeplitzTest);

enum class Sequence { kms, slow_kms, prolate, prediction_error, negative };

template <class Real>
Vector<Real> sequence(Sequence kind, int n) {
    Vector<Real> r;
    r.c_Create(n);
    for (int k = 0; k < n; ++k) {
        double value = 0;
        switch (kind) {
            case Sequence::kms:
                value = 4 * std::pow(0.5, k);
                break;
            case Sequence::slow_kms:
                value = std::pow(-0.9, k);
                break;
            case Sequence::prolate:
                value =
                    k == 0 ? 0.8 : std::sin(0.8 * std::numbers::pi * k) / (std::numbers::pi * k);
                break;
            case Sequence::prediction_error:  // two sinusoids in white noise
                value = (k == 0 ? 1.5 : 0.0) + std::cos(0.7 * k) + 0.5 * std::cos(2.1 * k);
                break;
            case Sequence::negative:
                value = -3 * std::pow(0.3, k);
                break;
        }
        r[k] = static_cast<Real>(value);
    }
    return r;
}
constexpr Sequence kSequences[] = {Sequence::kms, Sequence::slow_kms, Sequence::prolate,
                                   Sequence::prediction_error, Sequence::negative};

template <class Real>
Matrix<Real> full(const Vector<Real>& r, int n) {
    Matrix<Real> t;
    t.c_Create(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) t[i][j] = r[std::abs(i - j)];
    return t;
}

template <class Real>
double residual(const Vector<Real>& r, const Vector<Real>& x, const Vector<Real>& b) {
    return solution_residual(full(r, b.vs()), column_of(x), column_of(b));
}

TWIN_TEST(ToeplitzTest, SolutionsAndInversesHaveSmallResiduals) {
    for (const Sequence kind : kSequences)
        for (const int n : {1, 2, 3, 4, 7, 17, 32, 33, 64, 65, 66, 131, 500}) {
            if (n > 131 && std::is_same_v<Real, float>) break;
            // The prolate matrices become singular to working precision where they grow.
            if (kind == Sequence::prolate && n > (std::is_same_v<Real, double> ? 17 : 7)) break;
            SCOPED_TRACE(testing::Message() << int(kind) << ' ' << n);
            const Vector<Real> r = sequence<Real>(kind, n + 3);  // longer than needed
            Vector<Real> b;
            b.c_Create(n);
            for (int i = 0; i < n; ++i) b[i] = Real(std::sin(1.0 + 3.0 * i));
            const MatrixToeplitzSymmetric<Real> t;
            Vector<Real> x;
            ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r, b, x));
            EXPECT_LT(residual(r, x, b), 10);

            Vector<Real> first = r;
            first.c_Create(n + 1);
            Vector<Real> y;
            MatrixToeplitzSymmetric<Real> leading;
            ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(first, &y, &leading));
            Vector<Real> right;
            right.c_Create(n);
            for (int i = 0; i < n; ++i) right[i] = -r[i + 1];
            EXPECT_LT(residual(r, y, right), 10);

            MatrixToeplitzSymmetric<Real> own;
            ASSERT_TRUE(own.im_Import(n, r));
            EXPECT_TRUE(own == leading);
            Matrix<Real> inverse;
            MatrixSymmetric<Real> packed;
            ASSERT_TRUE(own.fimt_Find_Inverse_Matrix_by_Trench(&inverse, &packed));
            EXPECT_LT(solution_residual(full(r, n), inverse, identity_of<Real>(n)), 10);
            Matrix<Real> unpacked;
            packed.e_Export(&unpacked);
            EXPECT_TRUE(inverse == unpacked);
            EXPECT_TRUE(inverse == transposed(inverse));
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < n; ++j) ASSERT_EQ(inverse[i][j], inverse[n - 1 - j][n - 1 - i]);
            MatrixSymmetric<Real> alone;
            ASSERT_TRUE(own.fimt_Find_Inverse_Matrix_by_Trench(nullptr, &alone));
            alone.e_Export(&unpacked);
            EXPECT_LE(largest_difference(unpacked, inverse),
                      n * kEpsilon<Real> * largest_of(inverse));
        }
}

TWIN_TEST(ToeplitzTest, ArgumentsMayBeOneObjectAndOthersDoNotChange) {
    const MatrixToeplitzSymmetric<Real> t;
    const auto r = vector_of<Real>({4, 2, 1});
    const auto b = vector_of<Real>({1, -2, 3});
    auto r_used = r;
    auto b_used = b;
    Vector<Real> x;
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b_used, x));
    EXPECT_TRUE(r_used == r && b_used == b);
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b_used, b_used));
    EXPECT_TRUE(b_used == x);
    ASSERT_TRUE(t.u_slel_Solve_Linear_Equation_by_Levinson(r_used, b, r_used));
    EXPECT_TRUE(r_used == x);
    MatrixToeplitzSymmetric<Real> own;
    own.im_Import(3, r);
    b_used = b;
    ASSERT_TRUE(own.slel_Solve_Linear_Equation_by_Levinson(b_used));
    EXPECT_TRUE(b_used == x);

    Vector<Real> y;
    ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r, &y, nullptr));
    r_used = r;
    ASSERT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r_used, &r_used, &own));
    EXPECT_TRUE(r_used == y);
    EXPECT_EQ(own.mw(), 2);
    MatrixSymmetric<Real> packed;  // which is a vector too, and here the first row
    MatrixSymmetric<Real> expected;
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
    const std::string name = t.gcn_Get_Class_Name().c_str();
    EXPECT_EQ(name, (std::is_same_v<Real, double> ? "CNqMatrix_Toeplitz_Symmetric"
                                                  : "CNqMatrixFloat_Toeplitz_Symmetric"));
    struct Row {
        Vector<Real> r;
        int n;  // of the right-hand side
        const char *durbin, *levinson, *trench;
    };
    const char* const bad = "Not Positive-Definite";
    const Row rows[] = {
        {vector_of<Real>({0, 1}), 2, "r[0]==0", "r[0]==0", "r[0]==0"},
        {vector_of<Real>({0}), 1, "r[0]==0", "r[0]==0", "r[0]==0"},
        {vector_of<Real>({1, 1}), 2, "", bad, bad},
        {vector_of<Real>({1, 1, 1}), 3, bad, bad, bad},
        {vector_of<Real>({1, 2, 0.5}), 3, bad, bad, bad},
        {vector_of<Real>({1, nan, 0}), 3, bad, bad, bad},
        {vector_of<Real>({nan, 1, 0}), 3, bad, bad, bad},
        {vector_of<Real>({inf, 1, 0}), 3, bad, bad, bad},
        {vector_of<Real>({1, inf, 0}), 3, bad, bad, bad},
        {vector_of<Real>({1, 0.5}), 3, "", "1", ""},
        {vector_of<Real>({1, 5}), 1, "", "", bad},  // Levinson does not look at r[1]
        {vector_of<Real>({}), 0, "1", "1", "1"},
        {vector_of<Real>({2}), 1, "", "", ""},
        {vector_of<Real>({2}), 0, "", "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.r << " / " << row.n);
        Vector<Real> b;
        b.c_Create(row.n, Real(1));
        Vector<Real> out = vector_of<Real>({7, 7, 7, 7, 7});
        Matrix<Real> inverse;
        const auto check = [&](bool done, const char* detail, const char* method) {
            EXPECT_EQ(done, *detail == '\0');
            if (done) return;
            EXPECT_STREQ(t.ged_Get_Error_Detail().c_str(), detail);
            EXPECT_EQ(t.gft_Get_Failure_Trace().c_str(), name + "::" + method + ": " + detail);
        };
        check(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(row.r, &out, nullptr), row.durbin,
              "u_sywd_Solve_Yule_Walker_equation_by_Durbin");
        EXPECT_EQ(out.vs(), *row.durbin == '\0' ? row.r.vs() - 1 : 5);
        check(t.u_slel_Solve_Linear_Equation_by_Levinson(row.r, b, out), row.levinson,
              "u_slel_Solve_Linear_Equation_by_Levinson");
        check(t.u_fimt_Find_Inverse_Matrix_by_Trench(row.r, &inverse, nullptr), row.trench,
              "u_fimt_Find_Inverse_Matrix_by_Trench");
    }
    Vector<Real> y;
    MatrixToeplitzSymmetric<Real> leading;
    EXPECT_TRUE(
        t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(vector_of<Real>({1, 1}), &y, nullptr));
    EXPECT_TRUE(y == vector_of<Real>({-1}));
    EXPECT_TRUE(t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(vector_of<Real>({3}), &y, &leading));
    EXPECT_EQ(y.vs(), 0);
    EXPECT_EQ(leading.mw(), 1);
    Matrix<Real> inverse;
    EXPECT_TRUE(t.u_fimt_Find_Inverse_Matrix_by_Trench(vector_of<Real>({2}), &inverse, nullptr));
    EXPECT_EQ(inverse[0][0], Real(0.5));
}

TWIN_TEST(ToeplitzTest, ImportElementsRowsAndExports) {
    MatrixToeplitzSymmetric<Real> t;
    EXPECT_EQ(t.ge_Get_Element(0, 0), Real(1));
    const auto v = vector_of<Real>({5, 4, 3, 2});
    EXPECT_FALSE(t.im_Import(0, v));
    EXPECT_STREQ(
        t.grm_Get_Recorded_Message().c_str() + std::string(t.gcn_Get_Class_Name().c_str()).size(),
        "::im_Import: 1");
    EXPECT_FALSE(t.im_Import(5, v));
    EXPECT_STREQ(t.ged_Get_Error_Detail().c_str(), "Bad Upper Part");
    EXPECT_EQ(t.mw(), 1);
    ASSERT_TRUE(t.im_Import(3, v));
    Matrix<Real> dense;
    MatrixSymmetric<Real> packed;
    Vector<Real> r;
    t.ex_Export(&dense, &packed, &r);
    EXPECT_TRUE(r == vector_of<Real>({5, 4, 3}));
    EXPECT_TRUE(dense == full(v, 3));
    Matrix<Real> unpacked;
    packed.e_Export(&unpacked);
    EXPECT_TRUE(unpacked == dense);
    Real raw[9] = {};
    int order = 0;
    t.ex_Export(false, raw, &order);
    EXPECT_EQ(order, 3);
    for (int index = -4; index < 5; ++index) {
        Vector<Real> row;
        Real line[3];
        t.gr_Get_Row(index, &row);
        t.gc_Get_Column(index, line);
        for (int j = 0; j < 3; ++j) {
            const Real expected = dense[(index + 6) % 3][j];
            EXPECT_EQ(row[j], expected);
            EXPECT_EQ(line[j], expected);
            EXPECT_EQ(raw[(index + 6) % 3 * 3 + j], expected);
            EXPECT_EQ(t.ge_Get_Element(index, j - 3), expected);
        }
    }
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
