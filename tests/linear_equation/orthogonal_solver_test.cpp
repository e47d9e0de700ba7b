// Solvers and inverses with an orthogonal factor: the public operations.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/data_files.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

template <class Real>
class OrthogonalSolvers : public testing::Test {
protected:
    template <class Object>
    bool solve(int form, const Matrix<Real>* a, const Object* b, Object* x) const {
        if (form == 0) return s.sqr_Solve_based_on_QRD(a, b, x);
        if (form == 1) return s.sql_Solve_based_on_QLD(a, b, x);
        if (form == 2) return s.srq_Solve_based_on_RQD(a, b, x);
        return s.slq_Solve_based_on_LQD(a, b, x);
    }
    bool invert(int form, const Matrix<Real>* a, Matrix<Real>* x) const {
        if (form == 0) return s.iqr_Inverse_matrix_based_on_QRD(a, x);
        if (form == 1) return s.iql_Inverse_matrix_based_on_QLD(a, x);
        if (form == 2) return s.irq_Inverse_matrix_based_on_RQD(a, x);
        return s.ilq_Inverse_matrix_based_on_LQD(a, x);
    }
    // The factors of A with Q as the raw forms want it.
    void factor(int form, const Matrix<Real>* a) {
        if (form == 0) s.dqrh_Decompose_into_QR_matrices_based_on_Householder(a, &q, &upper);
        if (form == 1) s.dqlh_Decompose_into_QL_matrices_based_on_Householder(a, &q, &lower);
        if (form == 2) s.drqh_Decompose_into_RQ_matrices_based_on_Householder(a, &upper, &q);
        if (form == 3) s.dlqh_Decompose_into_LQ_matrices_based_on_Householder(a, &lower, &q);
        if (form >= 2) q = test::transposed(q);
    }
    template <class... Arguments>
    bool solve_with(int form, Arguments... arguments) const {
        if (form == 0) return s.u_sqr_Solve_based_on_QRD(&q, &upper, arguments...);
        if (form == 1) return s.u_sql_Solve_based_on_QLD(&q, &lower, arguments...);
        if (form == 2) return s.u_srq_Solve_based_on_RQD(&upper, &q, arguments...);
        return s.u_slq_Solve_based_on_LQD(&lower, &q, arguments...);
    }
    bool invert_with(int form, Matrix<Real>* x) const {
        if (form == 0) return s.u_iqr_Inverse_matrix_based_on_QRD(&q, &upper, x);
        if (form == 1) return s.u_iql_Inverse_matrix_based_on_QLD(&q, &lower, x);
        if (form == 2) return s.u_irq_Inverse_matrix_based_on_RQD(&upper, &q, x);
        return s.u_ilq_Inverse_matrix_based_on_LQD(&lower, &q, x);
    }
    std::string detail() const { return s.ged_Get_Error_Detail().c_str(); }
    void expect_refused(bool result, std::initializer_list<std::string> records) const {
        EXPECT_FALSE(result);
        EXPECT_EQ(std::string(s.gft_Get_Failure_Trace().c_str()), test::chain(s, records));
    }

    LinearEquation<Real> s;
    Matrix<Real> q;
    MatrixTriangularLower<Real> lower;
    MatrixTriangularUpper<Real> upper;
};

using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(OrthogonalSolvers, Reals);

// Matrix, vector, raw and in-place forms, and inverses, agree with A.
TYPED_TEST(OrthogonalSolvers, SolveAndInvert) {
    using Real = TypeParam;
    for (int form = 0; form < 4; ++form)
        for (const int n : {1, 2, 9, 48, 90}) {
            SCOPED_TRACE(testing::Message() << "form " << form << " n " << n);
            const Matrix<Real> a = test::random_matrix<Real>(n, n, 3);
            const Matrix<Real> b = test::random_matrix<Real>(n, 3, 4);
            Matrix<Real> x, inverse, again;
            ASSERT_TRUE(this->solve(form, &a, &b, &x));
            EXPECT_LT(test::solution_residual(a, x, b), 30);
            again = b;
            ASSERT_TRUE(this->solve(form, &a, &again, &again));
            EXPECT_TRUE(again == x);
            again = a;
            ASSERT_TRUE(this->solve(form, &again, &b, &again));
            EXPECT_TRUE(again == x);
            ASSERT_TRUE(this->invert(form, &a, &inverse));
            EXPECT_LT(test::solution_residual(a, inverse, test::identity_of<Real>(n)), 30);
            again = a;
            ASSERT_TRUE(this->invert(form, &again, &again));
            EXPECT_TRUE(again == inverse);

            Vector<Real> v, y;
            v.c_Create(n);
            Matrix<Real> column = test::matrix_of<Real>(n, 1, [&](int i, int) { return b[i][1]; });
            for (int i = 0; i < n; ++i) v[i] = b[i][1];
            ASSERT_TRUE(this->solve(form, &a, &v, &y));
            const auto residual_of = [&](const Vector<Real>& z) {
                const Matrix<Real> as_matrix =
                    test::matrix_of<Real>(n, 1, [&](int i, int) { return z[i]; });
                return test::solution_residual(a, as_matrix, column);
            };
            EXPECT_LT(residual_of(y), 30);

            this->factor(form, &a);
            ASSERT_TRUE(this->solve_with(form, &b, &x));
            EXPECT_LT(test::solution_residual(a, x, b), 60);
            ASSERT_TRUE(this->solve_with(form, &v, &y));
            EXPECT_LT(residual_of(y), 60);
            ASSERT_TRUE(this->invert_with(form, &inverse));
            EXPECT_LT(test::solution_residual(a, inverse, test::identity_of<Real>(n)), 60);
            const Matrix<Real> by_columns = test::transposed(b);
            again = by_columns;
            ASSERT_TRUE(this->solve_with(form, again.p()[0], false, 3, n));
            EXPECT_LT(test::solution_residual(a, test::transposed(again), b), 60);
            // a factor may take the result
            const Matrix<Real> kept = this->q;
            ASSERT_TRUE(this->solve_with(form, &b, &this->q));
            EXPECT_TRUE(this->q == x);
            this->q = kept;
            ASSERT_TRUE(this->invert_with(form, &this->q));
            EXPECT_TRUE(this->q == inverse);
        }
}

TYPED_TEST(OrthogonalSolvers, RefusalsAndTheirRecords) {
    using Real = TypeParam;
    const Matrix<Real> mark = test::random_matrix<Real>(2, 2, 9);
    const Matrix<Real> tall = test::random_matrix<Real>(4, 3);
    const Matrix<Real> square = test::random_matrix<Real>(3, 3);
    const Matrix<Real> b = test::random_matrix<Real>(4, 1);
    Matrix<Real> x = mark;
    this->expect_refused(this->solve(0, &tall, &b, &x),
                         {"u_sqr_Solve_based_on_QRD: 1", "sqr_Solve_based_on_QRD: 2"});
    this->expect_refused(
        this->solve(2, &tall, &b, &x),
        {"u_drqh_Decompose_into_RQ_matrices_based_on_Householder: 11",
         "drqh_Decompose_into_RQ_matrices_based_on_Householder: 1", "srq_Solve_based_on_RQD: 1"});
    this->expect_refused(this->invert(3, &tall, &x),
                         {"u_slq_Solve_based_on_LQD: 1", "u_ilq_Inverse_matrix_based_on_LQD: 2",
                          "ilq_Inverse_matrix_based_on_LQD: 2"});
    EXPECT_FALSE(this->solve(1, &square, &b, &x));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_TRUE(x == mark);

    // an exact zero on the diagonal
    Matrix<Real> singular;
    singular.c_Create(3, 3, Real(0));
    singular[0][0] = singular[2][2] = 1;
    const Matrix<Real> right = test::random_matrix<Real>(3, 2);
    this->expect_refused(this->solve(1, &singular, &right, &x),
                         {"u_sql_Solve_based_on_QLD: 2", "sql_Solve_based_on_QLD: 2"});
    this->expect_refused(this->invert(0, &singular, &x),
                         {"u_sqr_Solve_based_on_QRD: 2", "u_iqr_Inverse_matrix_based_on_QRD: 2",
                          "iqr_Inverse_matrix_based_on_QRD: 2"});
    for (int form = 0; form < 4; ++form) {
        this->factor(form, &singular);
        x = mark;
        EXPECT_FALSE(this->solve_with(form, &right, &x));
        EXPECT_EQ(this->detail(), "2");
        EXPECT_FALSE(this->invert_with(form, &x));
        EXPECT_EQ(this->detail(), "2");
        EXPECT_TRUE(x == mark);
        this->factor(form, &square);
        EXPECT_FALSE(this->solve_with(form, &b, &x));
        Real data[] = {1, 2, 3};
        EXPECT_FALSE(this->solve_with(form, data, true, 0, 3));
        EXPECT_FALSE(this->solve_with(form, data, true, 1, 2));
        EXPECT_EQ(this->detail(), "1");
        static_cast<Vector<Real>&>(this->lower).c_Create(2);
        static_cast<Vector<Real>&>(this->upper).c_Create(2);
        EXPECT_FALSE(this->solve_with(form, data, true, 1, 3));
        EXPECT_TRUE(data[2] == 3 && x == mark);
    }
    const Matrix<Real> empty;
    for (int form = 0; form < 4; ++form) {
        EXPECT_FALSE(this->solve(form, &empty, &empty, &x));
        EXPECT_FALSE(this->invert(form, &empty, &x));
        EXPECT_EQ(this->detail(), "1");
    }
}

TYPED_TEST(OrthogonalSolvers, NanInfinityAndTheEndsOfTheRange) {
    using Real = TypeParam;
    const Real large = sizeof(Real) == 4 ? Real(1e25) : Real(1e200);
    const Real bad[] = {std::numeric_limits<Real>::quiet_NaN(),
                        std::numeric_limits<Real>::infinity()};
    for (int form = 0; form < 4; ++form) {
        const Matrix<Real> b = test::random_matrix<Real>(60, 1, 4);
        Matrix<Real> x;
        for (const Real value : bad) {
            Matrix<Real> a = test::random_matrix<Real>(60, 60, 3);
            a[20][30] = value;
            ASSERT_TRUE(this->solve(form, &a, &b, &x));
            EXPECT_TRUE(std::isnan(x[0][0]) || std::isnan(x[59][0]));
        }
        for (const Real scale : {large, 1 / large}) {
            Matrix<Real> a = test::random_matrix<Real>(60, 60, 3), c = b;
            for (int i = 0; i < 60; ++i)
                for (int j = 0; j < 60; ++j) a[i][j] *= scale;
            for (int i = 0; i < 60; ++i) c[i][0] *= scale;
            ASSERT_TRUE(this->solve(form, &a, &c, &x));
            EXPECT_LT(test::solution_residual(a, x, c), 30) << form;
        }
    }
}

TEST(OrthogonalSolversOnData, SolveRealSystems) {
    for (const char* name : {"west0067", "gre_343", "steam3", "pores_1", "b1_ss"}) {
        const std::string file = std::string(name) + ".mtx";
        if (!std::filesystem::exists(test::data_file(file)))
            GTEST_SKIP() << "there is no ../shared/data/" << file;
        const Matrix<double> a = test::read_matrix_market<double>(file);
        const Matrix<double> b = test::matrix_of<double>(a.mh(), 1, [](int, int) { return 1.0; });
        LCNqUtility_for_Linear_Equation s;
        Matrix<double> x;
        ASSERT_TRUE(s.sqr_Solve_based_on_QRD(&a, &b, &x)) << name;
        EXPECT_LT(test::solution_residual(a, x, b), 30) << name;
    }
}

}  // namespace
}  // namespace nequar
