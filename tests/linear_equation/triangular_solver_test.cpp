// Solvers and inverses with triangular factors, and Gauss-Jordan: the public operations.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

template <class Real>
class TriangularSolvers : public testing::Test {
protected:
    // Positive definite, so that every method can solve with it, Gauss-Jordan included.
    void prepare(int n, int k) {
        a = test::positive_definite_matrix<Real>(n, 20, 7);
        s.i_Import(&a);
        b = test::random_matrix<Real>(n, k, 8);
    }

    template <class Right>
    bool solve(int method, const Right* right, Right* out) const {
        if (method == 0) return solver.slu_Solve_based_on_LUD(&a, right, out);
        if (method == 1) return solver.slup_Solve_based_on_LUP(&a, right, out);
        if (method == 2) return solver.sll_Solve_based_on_LLD(&s, right, out);
        if (method == 3) return solver.suu_Solve_based_on_UUD(&s, right, out);
        return solver.sgj_Solve_based_on_GJE(&a, right, out);
    }
    bool invert(int method, Matrix<Real>* out) const {
        if (method == 0) return solver.ilu_Inverse_matrix_based_on_LUD(&a, out);
        if (method == 1) return solver.ilup_Inverse_matrix_based_on_LUP(&a, out);
        if (method == 2) return solver.ill_Inverse_matrix_based_on_LLD(&s, out);
        if (method == 3) return solver.iuu_Inverse_matrix_based_on_UUD(&s, out);
        return solver.igj_Inverse_matrix_based_on_GJE(&a, out);
    }
    static constexpr int kMethods = 5;

    bool factor() {
        return solver.dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&a, &l, &u, &perm,
                                                                            interchanges) &&
               solver.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &ll) &&
               solver.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &uu);
    }

    std::string chain(std::initializer_list<std::string> records) const {
        return test::chain(solver, records);
    }
    // What the call leaves behind: false, and these records.
    void expect_refused(bool result, std::initializer_list<std::string> records) const {
        EXPECT_FALSE(result);
        EXPECT_EQ(trace(), chain(records));
    }
    std::string trace() const { return solver.gft_Get_Failure_Trace().c_str(); }

    LinearEquation<Real> solver;
    Matrix<Real> a;
    MatrixSymmetric<Real> s;
    Matrix<Real> b;
    MatrixTriangularLower<Real> l;
    MatrixTriangularUpper<Real> u;
    CNqVectorInt perm;
    int interchanges = 0;
    MatrixTriangularLower<Real> ll;
    MatrixTriangularUpper<Real> uu;
};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(TriangularSolvers, Reals);

TYPED_TEST(TriangularSolvers, EveryMethodSolvesAndInverts) {
    using Real = TypeParam;
    for (const int n : {1, 2, 5, 31, 32, 33, 65, 100}) {
        for (const int k : {1, 2, n}) {
            this->prepare(n, k);
            const Matrix<Real> kept = this->a;
            for (int method = 0; method < this->kMethods; ++method) {
                Matrix<Real> x;
                ASSERT_TRUE(this->solve(method, &this->b, &x)) << method;
                EXPECT_LT(test::solution_residual(this->a, x, this->b), 3.0)
                    << "method " << method << ", n = " << n << ", k = " << k;
                // In place, and as a vector, the numbers are the same.
                Matrix<Real> same = this->b;
                ASSERT_TRUE(this->solve(method, &same, &same));
                EXPECT_EQ(same, x);
                Vector<Real> column;
                this->b.gc_Get_Column(0, 0, n, &column);
                Vector<Real> solution;
                ASSERT_TRUE(this->solve(method, &column, &solution));
                ASSERT_EQ(solution.vs(), n);
                for (int i = 0; i < n; ++i)
                    EXPECT_NEAR(solution[i], x[i][0],
                                200 * n * test::kEpsilon<Real> * test::largest_of(x));
                ASSERT_TRUE(this->solve(method, &column, &column));
                EXPECT_EQ(column, solution);
            }
            EXPECT_EQ(this->a, kept);
        }
        for (int method = 0; method < this->kMethods; ++method) {
            Matrix<Real> inverse;
            ASSERT_TRUE(this->invert(method, &inverse));
            EXPECT_LT(test::solution_residual(this->a, inverse, test::identity_of<Real>(n)), 3.0)
                << "method " << method << ", n = " << n;
        }
    }
}

// A may be the output, and the right-hand side too.
TYPED_TEST(TriangularSolvers, OutputMayBeTheMatrix) {
    using Real = TypeParam;
    for (const int method : {0, 1, 4}) {
        this->prepare(40, 3);
        Matrix<Real> expected;
        ASSERT_TRUE(this->solve(method, &this->b, &expected));
        Matrix<Real> inverse;
        ASSERT_TRUE(this->invert(method, &inverse));
        const Matrix<Real> kept = this->a;
        ASSERT_TRUE(this->solve(method, &this->b, &this->a));
        EXPECT_EQ(this->a, expected) << method;
        this->a = kept;
        ASSERT_TRUE(this->invert(method, &this->a));
        EXPECT_EQ(this->a, inverse) << method;
        this->a = kept;
        ASSERT_TRUE(this->solve(method, &this->a, &this->a));  // A X = A
        EXPECT_LT(test::largest_difference(this->a, test::identity_of<Real>(40)),
                  1e4 * test::kEpsilon<Real>);
    }
    // A packed factor is a vector, too.
    this->prepare(6, 1);
    ASSERT_TRUE(this->factor());
    Vector<Real> right;
    this->b.gc_Get_Column(0, 0, 6, &right);
    Vector<Real> expected;
    ASSERT_TRUE(
        this->solver.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &right, &expected));
    ASSERT_TRUE(this->solver.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &right,
                                                      static_cast<Vector<Real>*>(&this->u)));
    EXPECT_EQ(static_cast<Vector<Real>&>(this->u), expected);
}

TYPED_TEST(TriangularSolvers, FactorsSolveInEveryLayout) {
    using Real = TypeParam;
    for (const int n : {1, 3, 33, 70}) {
        const int k = 4;
        this->prepare(n, k);
        ASSERT_TRUE(this->factor());
        const auto& f = this->solver;
        const auto check = [&](int kind, const Matrix<Real>& x) {
            EXPECT_LT(test::solution_residual(this->a, x, this->b), 3.0) << kind << ", n = " << n;
        };
        Matrix<Real> x;
        ASSERT_TRUE(f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &this->b, &x));
        check(0, x);
        Matrix<Real> y = this->b;
        ASSERT_TRUE(f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &y, &y));
        EXPECT_EQ(x, y);
        y = this->b;
        ASSERT_TRUE(
            f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, y.p()[0], true, k, n));
        EXPECT_EQ(x, y);
        // Without row_major: read row by row, written column by column.
        y = this->b;
        ASSERT_TRUE(
            f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, y.p()[0], false, k, n));
        const Real* const columns = y.p()[0];
        check(1, test::matrix_of<Real>(n, k, [&](int i, int c) { return columns[c * n + i]; }));

        for (const bool upper : {false, true}) {
            const auto u_solve = [&](Real* data, bool row_major) {
                return upper ? f.u_suu_Solve_based_on_UUD(&this->uu, data, row_major, k, n)
                             : f.u_sll_Solve_based_on_LLD(&this->ll, data, row_major, k, n);
            };
            ASSERT_TRUE(upper ? f.u_suu_Solve_based_on_UUD(&this->uu, &this->b, &x)
                              : f.u_sll_Solve_based_on_LLD(&this->ll, &this->b, &x));
            check(2, x);
            y = this->b;
            ASSERT_TRUE(u_solve(y.p()[0], true));
            EXPECT_EQ(x, y);
            Matrix<Real> by_columns = test::transposed(this->b);
            ASSERT_TRUE(u_solve(by_columns.p()[0], false));
            check(3, test::transposed(by_columns));
            Matrix<Real> inverse;
            ASSERT_TRUE(upper ? f.u_iuu_Inverse_matrix_based_on_UUD(&this->uu, &inverse)
                              : f.u_ill_Inverse_matrix_based_on_LLD(&this->ll, &inverse));
            EXPECT_LT(test::solution_residual(this->a, inverse, test::identity_of<Real>(n)), 3.0);
        }
        Matrix<Real> inverse;
        ASSERT_TRUE(f.u_ilu_Inverse_matrix_based_on_LUD(&this->l, &this->u, &this->perm, &inverse));
        EXPECT_LT(test::solution_residual(this->a, inverse, test::identity_of<Real>(n)), 3.0);
    }
}

// L need not be unit, and the order need not be a permutation: y_i = b[perm[i]] is all it says.
TYPED_TEST(TriangularSolvers, AnyTrianglesAndAnyOrder) {
    using Real = TypeParam;
    const int n = 5;
    this->l.c_Create(n, n);
    this->u.c_Create(n, n);
    const Matrix<Real> values = test::dominant_matrix<Real>(n, 5);
    this->l.i_Import(&values);
    this->u.i_Import(&values);
    this->perm.c_Create(n);
    const int order[] = {2, 2, 0, 4, 1};
    for (int i = 0; i < n; ++i) this->perm[i] = order[i];
    Matrix<Real> dense_l;
    Matrix<Real> dense_u;
    this->l.e_Export(&dense_l, true);
    this->u.e_Export(&dense_u, true);
    const auto product = test::matrix_of<Real>(n, n, [&](int i, int j) {
        double sum = 0;
        for (int k = 0; k < n; ++k) sum += double(dense_l[i][k]) * double(dense_u[k][j]);
        return sum;
    });
    const Matrix<Real> gathered = test::with_rows(test::identity_of<Real>(n), order);
    const Matrix<Real> identity = test::identity_of<Real>(n);
    Matrix<Real> x;
    Matrix<Real> inverse;
    ASSERT_TRUE(
        this->solver.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &identity, &x));
    ASSERT_TRUE(
        this->solver.u_ilu_Inverse_matrix_based_on_LUD(&this->l, &this->u, &this->perm, &inverse));
    EXPECT_LT(test::solution_residual(product, x, gathered), 3.0);
    EXPECT_LT(test::solution_residual(product, inverse, gathered), 3.0);
}

TYPED_TEST(TriangularSolvers, ChainsOfRecords) {
    using Real = TypeParam;
    const auto& f = this->solver;
    EXPECT_EQ(f.gcn_Get_Class_Name(),
              (std::is_same_v<Real, float> ? "LCNqUtility_for_Linear_Equation_Float"
                                           : "LCNqUtility_for_Linear_Equation"));
    const std::string crout = "u_dluc_Decompose_into_LU_matrices_by_Crout: ";
    const std::string partial = "u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting: ";
    const std::string cholesky = "u_dch_Decompose_matrix_by_Cholesky_algorithm: ";
    struct Case {
        int method;
        std::string reduce, factor, solve, solver;
        const char* singular;
    };
    const Case cases[] = {
        {0, crout, "dluc_Decompose_into_LU_matrices_by_Crout: 1", "u_slu_Solve_based_on_LUD: 1",
         "slu_Solve_based_on_LUD: ", "singular"},
        {1, partial, "dlup_Decompose_into_LU_matrices_with_Partial_pivoting: 1",
         "u_slu_Solve_based_on_LUD: 1", "slup_Solve_based_on_LUP: ", "singular"},
        {2, cholesky, "dch_Decompose_matrix_by_Cholesky_algorithm: 1",
         "u_sll_Solve_based_on_LLD: 1", "sll_Solve_based_on_LLD: ", "non-positive definite"},
        {3, cholesky, "dch_Decompose_matrix_by_Cholesky_algorithm: 1",
         "u_suu_Solve_based_on_UUD: 1", "suu_Solve_based_on_UUD: ", "non-positive definite"}};
    for (const int n : {2, 40})
        for (const Case& c : cases) {
            Matrix<Real> x = test::random_matrix<Real>(1, 2);
            const Matrix<Real> kept = x;
            // A column of zeros is singular for every method.
            this->prepare(n, 2);
            for (int i = 0; i < n; ++i) this->a[i][n - 1] = this->a[n - 1][i] = 0;
            this->s.i_Import(&this->a);
            this->expect_refused(this->solve(c.method, &this->b, &x),
                                 {c.reduce + c.singular, c.factor, c.solver + "1"});
            EXPECT_EQ(f.ged_Get_Error_Detail(), "1");
            // Right-hand sides of the wrong size.
            this->prepare(n, 2);
            const Matrix<Real> longer = test::random_matrix<Real>(n + 1, 2);
            const Vector<Real> none;
            Vector<Real> y;
            y.c_Create(3, Real(4));
            this->expect_refused(this->solve(c.method, &longer, &x), {c.solve, c.solver + "2"});
            this->expect_refused(this->solve(c.method, &none, &y), {c.solve, c.solver + "2"});
            EXPECT_EQ(y.vs(), 3);
            EXPECT_EQ(x, kept);
            if (c.reduce == cholesky) continue;
            this->a = test::random_matrix<Real>(n, n + 1);
            this->expect_refused(this->solve(c.method, &this->b, &x),
                                 {c.reduce + "non-square", c.factor, c.solver + "1"});
        }
    // Inverses, and no right-hand side at all.
    Matrix<Real> x = test::random_matrix<Real>(1, 2);
    this->prepare(3, 0);
    this->expect_refused(this->solve(0, &this->b, &x),
                         {"u_slu_Solve_based_on_LUD: 1", "slu_Solve_based_on_LUD: 2"});
    EXPECT_TRUE(this->solve(2, &this->b, &x));
    EXPECT_EQ(x.mw(), 0);
    this->a.c_Create(3, 3, Real(0));
    this->s.i_Import(&this->a);
    const char* const inverses[] = {
        "ilu_Inverse_matrix_based_on_LUD: 1", "ilup_Inverse_matrix_based_on_LUP: 1",
        "ill_Inverse_matrix_based_on_LLD: 1", "iuu_Inverse_matrix_based_on_UUD: 1"};
    for (const Case& c : cases)
        this->expect_refused(this->invert(c.method, &x),
                             {c.reduce + c.singular, c.factor, inverses[c.method]});
}

TYPED_TEST(TriangularSolvers, FactorsThatDoNotAgreeAreRefused) {
    using Real = TypeParam;
    const auto& f = this->solver;
    this->prepare(4, 2);
    ASSERT_TRUE(this->factor());
    Matrix<Real> x = test::random_matrix<Real>(1, 2);
    const Matrix<Real> kept = x;
    const auto solve = [&] {
        return f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, &this->b, &x);
    };
    for (const int entry :
         {-1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        const int good = this->perm[2];
        this->perm[2] = entry;
        this->expect_refused(solve(), {"u_slu_Solve_based_on_LUD: 1"});
        Real data[8] = {};
        EXPECT_FALSE(
            f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, data, false, 2, 4));
        this->expect_refused(
            f.u_ilu_Inverse_matrix_based_on_LUD(&this->l, &this->u, &this->perm, &x),
            {"u_slu_Solve_based_on_LUD: 1", "u_ilu_Inverse_matrix_based_on_LUD: 2"});
        this->perm[2] = good;
    }
    Real data[8] = {};
    for (const auto& [k, n] : {std::pair{0, 4}, {-2, 4}, {2, 3}, {2, -4}, {2, 5}})
        EXPECT_FALSE(f.u_slu_Solve_based_on_LUD(&this->l, &this->u, &this->perm, data, true, k, n));
    EXPECT_FALSE(f.u_sll_Solve_based_on_LLD(&this->ll, data, true, 2, 3));
    this->expect_refused(f.u_suu_Solve_based_on_UUD(&this->uu, data, true, 2, -4),
                         {"u_suu_Solve_based_on_UUD: 1"});
    EXPECT_TRUE(f.u_sll_Solve_based_on_LLD(&this->ll, data, true, -3, 4));  // k is not checked
    EXPECT_TRUE(f.u_suu_Solve_based_on_UUD(&this->uu, data, false, 0, 4));

    // Exact zeros on a diagonal, NaN passes.
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    this->u.se_Set_Element(3, 3, 0);
    this->expect_refused(solve(), {"u_slu_Solve_based_on_LUD: 2"});
    this->u.se_Set_Element(3, 3, nan);
    EXPECT_TRUE(solve());
    EXPECT_TRUE(std::isnan(x[0][0]));
    x = kept;
    this->l.se_Set_Element(0, 0, Real(-0.0));
    EXPECT_FALSE(solve());
    this->ll.se_Set_Element(1, 1, 0);
    this->uu.se_Set_Element(1, 1, 0);
    this->expect_refused(f.u_sll_Solve_based_on_LLD(&this->ll, &this->b, &x),
                         {"u_sll_Solve_based_on_LLD: 2"});
    this->expect_refused(f.u_iuu_Inverse_matrix_based_on_UUD(&this->uu, &x),
                         {"u_suu_Solve_based_on_UUD: 2", "u_iuu_Inverse_matrix_based_on_UUD: 2"});

    // Trapezoids, and a vector that was resized under its matrix.
    this->l.c_Create(6, 4, Real(1));
    this->u.c_Create(4, 4, Real(1));
    EXPECT_FALSE(solve());
    this->ll.c_Create(4, 3, Real(1));
    EXPECT_FALSE(f.u_sll_Solve_based_on_LLD(&this->ll, &this->b, &x));
    EXPECT_FALSE(f.u_ill_Inverse_matrix_based_on_LLD(&this->ll, &x));
    this->l.c_Create(4, 4, Real(1));
    static_cast<Vector<Real>&>(this->l).c_Create(4);
    EXPECT_FALSE(solve());
    EXPECT_EQ(x, kept);
}

TYPED_TEST(TriangularSolvers, GaussJordan) {
    using Real = TypeParam;
    const auto& f = this->solver;
    const auto of = [](double value) {
        return test::matrix_of<Real>(1, 1, [&](int, int) { return value; });
    };
    const Matrix<Real> negative = of(-2);
    const Matrix<Real> four = of(4);
    Matrix<Real> x;
    ASSERT_TRUE(f.sgj_Solve_based_on_GJE(&negative, &four, &x));
    EXPECT_EQ(x, of(2));  // the magnitude scales, not the pivot
    const Matrix<Real> zero = of(0);
    this->expect_refused(f.sgj_Solve_based_on_GJE(&zero, &four, &x),
                         {"u_sgj_Solve_based_on_GJE: 1", "sgj_Solve_based_on_GJE: 3"});
    Vector<Real> v;
    v.c_Create(1, Real(4));
    this->expect_refused(f.sgj_Solve_based_on_GJE(&zero, &v, &v),
                         {"u_sgj_Solve_based_on_GJE: 1", "sgj_Solve_based_on_GJE: 2"});
    this->expect_refused(f.igj_Inverse_matrix_based_on_GJE(&zero, &x),
                         {"u_sgj_Solve_based_on_GJE: 1", "igj_Inverse_matrix_based_on_GJE: 2"});
    const Matrix<Real> wide = test::random_matrix<Real>(1, 2);
    const Matrix<Real> tall = test::random_matrix<Real>(2, 1);
    this->expect_refused(f.sgj_Solve_based_on_GJE(&wide, &four, &x), {"sgj_Solve_based_on_GJE: 1"});
    this->expect_refused(f.sgj_Solve_based_on_GJE(&four, &tall, &x), {"sgj_Solve_based_on_GJE: 2"});
    EXPECT_FALSE(f.igj_Inverse_matrix_based_on_GJE(&wide, &x));
    v.c_Create(2, Real(1));
    this->expect_refused(f.sgj_Solve_based_on_GJE(&four, &v, &v), {"sgj_Solve_based_on_GJE: 1"});
    const Matrix<Real> empty;
    EXPECT_TRUE(f.igj_Inverse_matrix_based_on_GJE(&empty, &x));
    EXPECT_EQ(x.mh(), 0);

    // Both layouts, k above and below n: what lies behind B stays.
    for (const int n : {1, 4, 33}) {
        for (const int k : {1, 2, n + 3}) {
            this->prepare(n, k);
            for (const bool row_major : {true, false}) {
                Matrix<Real> left = this->a;  // symmetric: the same in both layouts
                const Matrix<Real> laid = row_major ? this->b : test::transposed(this->b);
                std::vector<Real> data(laid.p()[0], laid.p()[0] + n * k);
                data.push_back(77);
                ASSERT_TRUE(f.u_sgj_Solve_based_on_GJE(row_major, n, k, left.p()[0], data.data()));
                EXPECT_EQ(data.back(), Real(77));
                const auto x_of_array = test::matrix_of<Real>(n, k, [&](int i, int c) {
                    return data[static_cast<std::size_t>(row_major ? i * k + c : i + n * c)];
                });
                EXPECT_LT(test::solution_residual(this->a, x_of_array, this->b), 3.0);
                EXPECT_LT(test::largest_difference(left, test::identity_of<Real>(n)),
                          1e4 * test::kEpsilon<Real>);
            }
        }
    }
    Real nothing = 0;
    EXPECT_TRUE(f.u_sgj_Solve_based_on_GJE(true, 0, 0, &nothing, &nothing));
    EXPECT_FALSE(f.u_sgj_Solve_based_on_GJE(true, -1, 1, &nothing, &nothing));
    this->expect_refused(f.u_sgj_Solve_based_on_GJE(false, 1, -1, &nothing, &nothing),
                         {"u_sgj_Solve_based_on_GJE: 2"});
    this->expect_refused(f.u_sgj_Solve_based_on_GJE(false, 1, 1, &nothing, &nothing),
                         {"u_sgj_Solve_based_on_GJE: 2"});
}

}  // namespace
}  // namespace nequar
