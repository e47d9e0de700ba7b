// Solvers and inverses with triangular factors, and Gauss-Jordan: the public operations.
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class TriangularSolvers : public testing::Test {
protected:
    // Positive definite, so that every method can solve with it, Gauss-Jordan included.
    void prepare(int n, int k) {
        a = positive_definite_matrix<Real>(n, 20, 7);
        s.i_Import(&a);
        b = random_matrix<Real>(n, k, 8);
    }

    // With the matrix given, or its packed form s.
    template <class Right>
    bool solve(int method, const Matrix<Real>* given, const Right* right, Right* out) const {
        if (method == 0) return solver.slu_Solve_based_on_LUD(given, right, out);
        if (method == 1) return solver.slup_Solve_based_on_LUP(given, right, out);
        if (method == 2) return solver.sll_Solve_based_on_LLD(&s, right, out);
        if (method == 3) return solver.suu_Solve_based_on_UUD(&s, right, out);
        return solver.sgj_Solve_based_on_GJE(given, right, out);
    }
    bool invert(int method, const Matrix<Real>* given, Matrix<Real>* out) const {
        if (method == 0) return solver.ilu_Inverse_matrix_based_on_LUD(given, out);
        if (method == 1) return solver.ilup_Inverse_matrix_based_on_LUP(given, out);
        if (method == 2) return solver.ill_Inverse_matrix_based_on_LLD(&s, out);
        if (method == 3) return solver.iuu_Inverse_matrix_based_on_UUD(&s, out);
        return solver.igj_Inverse_matrix_based_on_GJE(given, out);
    }
    template <class... Arguments>
    bool solve_with_lu(Arguments... arguments) const {
        return solver.u_slu_Solve_based_on_LUD(&l, &u, &perm, arguments...);
    }
    static constexpr int kMethods = 5;

    bool invert_with_lu(Matrix<Real>* out) const {
        return solver.u_ilu_Inverse_matrix_based_on_LUD(&l, &u, &perm, out);
    }
    bool factor() {
        int interchanges = 0;
        return solver.dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&a, &l, &u, &perm,
                                                                            interchanges) &&
               solver.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &ll) &&
               solver.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &uu);
    }

    void expect_refused(bool done, std::initializer_list<std::string> records) const {
        EXPECT_TRUE(fails_as(solver, records, done));
    }

    LinearEquation<Real> solver;
    Matrix<Real> a, b;
    MatrixSymmetric<Real> s;
    MatrixTriangularLower<Real> l, ll;
    MatrixTriangularUpper<Real> u, uu;
    CNqVectorInt perm;
};

TWIN_TEST(TriangularSolvers, EveryMethodSolvesAndInverts) {
    for (const int n : {1, 2, 5, 31, 32, 33, 65, 100})
        for (int method = 0; method < this->kMethods; ++method) {
            SCOPED_TRACE(testing::Message() << "method " << method);
            this->prepare(n, 1);
            const Matrix<Real>& matrix = this->a;
            for (const int k : {1, 2, n})
                expect_solves(matrix, k, 3, [&](auto* given, auto* right, auto* x) {
                    return this->solve(method, given, right, x);
                });
            expect_inverts(matrix, 3,
                           [&](auto* given, auto* x) { return this->invert(method, given, x); });
        }
    // A packed factor is a vector, too.
    this->prepare(6, 1);
    ASSERT_TRUE(this->factor());
    Vector<Real> right, expected;
    this->b.gc_Get_Column(0, 0, 6, &right);
    ASSERT_TRUE(this->solve_with_lu(&right, &expected));
    ASSERT_TRUE(this->solve_with_lu(&right, static_cast<Vector<Real>*>(&this->u)));
    EXPECT_EQ(static_cast<Vector<Real>&>(this->u), expected);
}

TWIN_TEST(TriangularSolvers, FactorsSolveInEveryLayout) {
    const auto& f = this->solver;
    const int k = 4;
    for (const int n : {1, 3, 33, 70}) {
        this->prepare(n, k);
        ASSERT_TRUE(this->factor());
        const Matrix<Real>& matrix = this->a;
        const auto check = [&](const auto& solve, const auto& invert) {
            expect_solves(matrix, k, 3, [&](auto*, auto* in, auto* x) { return solve(in, x); });
            expect_inverts(matrix, 3, [&](auto*, auto* x) { return invert(x); });
        };
        const auto lower = [&](auto... args) {
            return f.u_sll_Solve_based_on_LLD(&this->ll, args...);
        };
        const auto upper = [&](auto... args) {
            return f.u_suu_Solve_based_on_UUD(&this->uu, args...);
        };
        check(lower, [&](auto* x) { return f.u_ill_Inverse_matrix_based_on_LLD(&this->ll, x); });
        check(upper, [&](auto* x) { return f.u_iuu_Inverse_matrix_based_on_UUD(&this->uu, x); });
        expect_solves_arrays(matrix, k, 3, lower);
        expect_solves_arrays(matrix, k, 3, upper);
        check([&](auto* in, auto* x) { return this->solve_with_lu(in, x); },
              [&](auto* x) { return this->invert_with_lu(x); });

        // With LU and without row_major: read row by row, written column by column.
        Matrix<Real> x, rows = this->b, columns = this->b;
        ASSERT_TRUE(this->solve_with_lu(&this->b, &x));
        ASSERT_TRUE(this->solve_with_lu(rows.p()[0], true, k, n));
        EXPECT_EQ(x, rows);
        ASSERT_TRUE(this->solve_with_lu(columns.p()[0], false, k, n));
        const Real* const y = columns.p()[0];
        EXPECT_EQ(x, matrix_of<Real>(n, k, [&](int i, int c) { return y[c * n + i]; }));
    }
}

// L need not be unit, and the order need not be a permutation: y_i = b[perm[i]] is all it says.
TWIN_TEST(TriangularSolvers, AnyTrianglesAndAnyOrder) {
    const int n = 5, order[] = {2, 2, 0, 4, 1};
    const Matrix<Real> values = dominant_matrix<Real>(n, 5), identity = identity_of<Real>(n);
    this->l.c_Create(n, n);
    this->u.c_Create(n, n);
    this->l.i_Import(&values);
    this->u.i_Import(&values);
    this->perm = vector_of<int>({2, 2, 0, 4, 1});
    const Matrix<Real> lu = product(unpacked(this->l), unpacked(this->u));
    Matrix<Real> x, inverse;
    ASSERT_TRUE(this->solve_with_lu(&identity, &x) && this->invert_with_lu(&inverse));
    for (const Matrix<Real>* found : {&x, &inverse})
        EXPECT_LT(solution_residual(lu, *found, with_rows(identity, order)), 3.0);
}

TWIN_TEST(TriangularSolvers, ChainsOfRecords) {
    const auto& f = this->solver;
    EXPECT_EQ(f.gcn_Get_Class_Name(),
              (std::is_same_v<Real, float> ? "LCNqUtility_for_Linear_Equation_Float"
                                           : "LCNqUtility_for_Linear_Equation"));
    struct Case {
        int method;
        std::string reduce, singular, apply, solve, invert;
    };
    const std::string crout = "dluc_Decompose_into_LU_matrices_by_Crout: ",
                      partial = "dlup_Decompose_into_LU_matrices_with_Partial_pivoting: ",
                      cholesky = "dch_Decompose_matrix_by_Cholesky_algorithm: ",
                      lu = "u_slu_Solve_based_on_LUD: 1";
    const Case cases[] = {{0, crout, "singular", lu,
                           "slu_Solve_based_on_LUD: ", "ilu_Inverse_matrix_based_on_LUD: 1"},
                          {1, partial, "singular", lu,
                           "slup_Solve_based_on_LUP: ", "ilup_Inverse_matrix_based_on_LUP: 1"},
                          {2, cholesky, "non-positive definite", "u_sll_Solve_based_on_LLD: 1",
                           "sll_Solve_based_on_LLD: ", "ill_Inverse_matrix_based_on_LLD: 1"},
                          {3, cholesky, "non-positive definite", "u_suu_Solve_based_on_UUD: 1",
                           "suu_Solve_based_on_UUD: ", "iuu_Inverse_matrix_based_on_UUD: 1"}};
    Matrix<Real> x = random_matrix<Real>(1, 2);
    const Matrix<Real> kept = x;
    const Vector<Real> none;
    auto y = vector_of<Real>({4, 4, 4});
    for (const int n : {2, 40})
        for (const Case& c : cases) {
            // A column of zeros is singular for every method.
            this->prepare(n, 2);
            for (int i = 0; i < n; ++i) this->a[i][n - 1] = this->a[n - 1][i] = 0;
            this->s.i_Import(&this->a);
            const std::string reduced = "u_" + c.reduce + c.singular, factored = c.reduce + "1";
            this->expect_refused(this->solve(c.method, &this->a, &this->b, &x),
                                 {reduced, factored, c.solve + "1"});
            EXPECT_EQ(f.ged_Get_Error_Detail(), "1");
            this->expect_refused(this->invert(c.method, &this->a, &x),
                                 {reduced, factored, c.invert});
            // Right-hand sides of the wrong size.
            this->prepare(n, 2);
            const Matrix<Real> longer = random_matrix<Real>(n + 1, 2);
            this->expect_refused(this->solve(c.method, &this->a, &longer, &x),
                                 {c.apply, c.solve + "2"});
            this->expect_refused(this->solve(c.method, &this->a, &none, &y),
                                 {c.apply, c.solve + "2"});
            EXPECT_TRUE(y.vs() == 3 && x == kept);
            if (c.reduce == cholesky) continue;
            this->a = random_matrix<Real>(n, n + 1);
            this->expect_refused(this->solve(c.method, &this->a, &this->b, &x),
                                 {"u_" + c.reduce + "non-square", factored, c.solve + "1"});
        }
    // No right-hand side at all.
    this->prepare(3, 0);
    this->expect_refused(this->solve(0, &this->a, &this->b, &x), {lu, cases[0].solve + "2"});
    EXPECT_TRUE(this->solve(2, &this->a, &this->b, &x));
    EXPECT_EQ(x.mw(), 0);
}

TWIN_TEST(TriangularSolvers, FactorsThatDoNotAgreeAreRefused) {
    const auto& f = this->solver;
    this->prepare(4, 2);
    ASSERT_TRUE(this->factor());
    Matrix<Real> x = random_matrix<Real>(1, 2);
    const Matrix<Real> kept = x;
    const auto solve = [&] { return this->solve_with_lu(&this->b, &x); };
    for (const int entry :
         {-1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        const int good = this->perm[2];
        this->perm[2] = entry;
        this->expect_refused(solve(), {"u_slu_Solve_based_on_LUD: 1"});
        Real data[8] = {};
        EXPECT_FALSE(this->solve_with_lu(data, false, 2, 4));
        this->expect_refused(this->invert_with_lu(&x), {"u_slu_Solve_based_on_LUD: 1",
                                                        "u_ilu_Inverse_matrix_based_on_LUD: 2"});
        this->perm[2] = good;
    }
    Real data[8] = {};
    for (const auto& [k, n] : {std::pair{0, 4}, {-2, 4}, {2, 3}, {2, -4}, {2, 5}})
        EXPECT_FALSE(this->solve_with_lu(data, true, k, n));
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

TWIN_TEST(TriangularSolvers, GaussJordan) {
    const auto& f = this->solver;
    const auto of = [](Real value) { return constant_matrix<Real>(1, 1, value); };
    const Matrix<Real> negative = of(-2), four = of(4), zero = of(0);
    Matrix<Real> x;
    ASSERT_TRUE(f.sgj_Solve_based_on_GJE(&negative, &four, &x));
    EXPECT_EQ(x, of(2));  // the magnitude scales, not the pivot
    this->expect_refused(f.sgj_Solve_based_on_GJE(&zero, &four, &x),
                         {"u_sgj_Solve_based_on_GJE: 1", "sgj_Solve_based_on_GJE: 3"});
    auto v = vector_of<Real>({4});
    this->expect_refused(f.sgj_Solve_based_on_GJE(&zero, &v, &v),
                         {"u_sgj_Solve_based_on_GJE: 1", "sgj_Solve_based_on_GJE: 2"});
    this->expect_refused(f.igj_Inverse_matrix_based_on_GJE(&zero, &x),
                         {"u_sgj_Solve_based_on_GJE: 1", "igj_Inverse_matrix_based_on_GJE: 2"});
    const Matrix<Real> wide = random_matrix<Real>(1, 2), tall = random_matrix<Real>(2, 1), empty;
    this->expect_refused(f.sgj_Solve_based_on_GJE(&wide, &four, &x), {"sgj_Solve_based_on_GJE: 1"});
    this->expect_refused(f.sgj_Solve_based_on_GJE(&four, &tall, &x), {"sgj_Solve_based_on_GJE: 2"});
    EXPECT_FALSE(f.igj_Inverse_matrix_based_on_GJE(&wide, &x));
    v.c_Create(2, Real(1));
    this->expect_refused(f.sgj_Solve_based_on_GJE(&four, &v, &v), {"sgj_Solve_based_on_GJE: 1"});
    EXPECT_TRUE(f.igj_Inverse_matrix_based_on_GJE(&empty, &x));
    EXPECT_EQ(x.mh(), 0);

    // k above and below n
    for (const int n : {1, 4, 33})
        for (const int k : {1, 2, n + 3}) {
            this->prepare(n, k);
            expect_solves_arrays(this->a, k, 3, [&](Real* data, bool row_major, int, int) {
                Matrix<Real> left = this->a;  // symmetric: the same in both layouts
                const bool done = f.u_sgj_Solve_based_on_GJE(row_major, n, k, left.p()[0], data);
                return done &&
                       largest_difference(left, identity_of<Real>(n)) < 1e4 * kEpsilon<Real>;
            });
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
