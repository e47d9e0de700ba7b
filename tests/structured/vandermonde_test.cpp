#include "nequar_algebra/structured/vandermonde.h"

#include <cmath>
#include <limits>

#include "structured/generated_support.h"
#include "support/chain.h"
#include "support/twins.h"

namespace {

using namespace nequar;
using namespace nequar::test;

TWINS(VandermondeTest);

TWIN_TEST(VandermondeTest, InterpolatesAndSolves) {
    const MatrixVandermonde<Real> any;
    for (const int n : {1, 2, 3, 5, 8, 13, 16}) {
        SCOPED_TRACE(n);
        const auto nodes = generated_vector<Real>(n, [n](int i) { return (2 * i + 1.0) / n - 1; });
        const auto data = generated_vector<Real>(n, [](int i) { return std::cos(2.0 * i); });
        MatrixVandermonde<Real> v;
        ASSERT_TRUE(v.im_Import(nodes));
        Matrix<Real> matrix, transposed;
        v.ex_Export(&matrix, &transposed, nullptr);
        auto x = data;
        ASSERT_TRUE(v.sle_Solve_Linear_Equation(x));
        EXPECT_LT(solution_residual(matrix, column_of(x), column_of(data)), 10);
        x = data;
        ASSERT_TRUE(v.fcp_Find_Coefficients_of_Polynomial(x));
        EXPECT_LT(solution_residual(transposed, column_of(x), column_of(data)), 10);

        // The nodes as their own data: p(t) = t, and the sum of nothing but the first powers.
        x = nodes;
        auto kept = nodes;
        ASSERT_TRUE(any.u_fcp_Find_Coefficients_of_Polynomial(x, x, false));
        ASSERT_TRUE(any.u_fcp_Find_Coefficients_of_Polynomial(nodes, kept, false));
        EXPECT_TRUE(x == kept);
        x = kept = nodes;
        ASSERT_TRUE(any.u_sle_Solve_Linear_Equation(x, x, true));
        ASSERT_TRUE(any.u_sle_Solve_Linear_Equation(nodes, kept, true));
        EXPECT_TRUE(x == kept);
    }
}

TWIN_TEST(VandermondeTest, RefusesEqualNodesAndOtherSizes) {
    const std::string equal = "All the elements should be different !!!";
    const std::string coefficients = "u_fcp_Find_Coefficients_of_Polynomial: ";
    const MatrixVandermonde<Real> any;
    const auto data = vector_of<Real>({1, 2, 3});
    auto f = data;
    const struct {
        std::initializer_list<double> nodes;
        bool test;
        std::string detail;
    } rows[] = {{{1, 1, 2}, true, equal},
                {{0, 5, -0.0}, true, equal},
                {{1, 2}, true, "1"},
                {{1, 1}, false, "1"},
                {{1, 2, 3, 3}, true, equal}};
    for (const auto& row : rows) {
        const auto nodes = vector_of<Real>(row.nodes);
        SCOPED_TRACE(testing::Message() << nodes);
        EXPECT_TRUE(fails_as(any, coefficients + row.detail,
                             any.u_fcp_Find_Coefficients_of_Polynomial(nodes, f, row.test)));
        EXPECT_TRUE(fails_as(any, "u_sle_Solve_Linear_Equation: " + row.detail,
                             any.u_sle_Solve_Linear_Equation(nodes, f, row.test)));
        EXPECT_TRUE(f == data);
    }
    MatrixVandermonde<Real> v;
    EXPECT_TRUE(fails_as(v, "im_Import: " + equal, v.im_Import(vector_of<Real>({1, 1, 2}))));
    EXPECT_EQ(v.ge_Get_Element(2, 1), Real(2));
    EXPECT_FALSE(v.fcp_Find_Coefficients_of_Polynomial(f));
    // Without the test equal or endless nodes never give plausible numbers.
    constexpr double inf = std::numeric_limits<double>::infinity();
    for (const auto& nodes : {vector_of<Real>({1, 1, 2}), vector_of<Real>({0, 1, inf})})
        for (const bool interpolating : {true, false}) {
            f = data;
            EXPECT_TRUE(interpolating ? any.u_fcp_Find_Coefficients_of_Polynomial(nodes, f, false)
                                      : any.u_sle_Solve_Linear_Equation(nodes, f, false));
            EXPECT_FALSE(std::isfinite(f[0]) && std::isfinite(f[1]) && std::isfinite(f[2])) << f;
        }
}

TWIN_TEST(VandermondeTest, ElementsRowsAndExportsAgree) {
    MatrixVandermonde<Real> v, other;
    EXPECT_EQ(v.ge_Get_Element(3, 7), Real(1));
    const int n = 9;
    Vector<Real> same;
    const auto nodes = generated_vector<Real>(n, [](int i) { return Real(i) / 3 - 1; });
    ASSERT_TRUE(v.im_Import(nodes));
    Matrix<Real> matrix, transposed;
    v.ex_Export(&matrix, &transposed, &same);
    EXPECT_TRUE(same == nodes);
    EXPECT_TRUE(transposed == test::transposed(matrix));
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            const double expected = std::pow(double(nodes[x]), y);
            EXPECT_LE(std::abs(double(matrix[y][x]) - expected),
                      8 * kEpsilon<Real> * std::abs(expected));
        }
    expect_elements(v, matrix);
    EXPECT_TRUE(other != v);
    other.cp_Copy(&v);
    EXPECT_TRUE(other == v);
    v.ex_Export(&matrix, &matrix, nullptr);
    EXPECT_STREQ(v.ged_Get_Error_Detail().c_str(), "1");
}

}  // namespace
