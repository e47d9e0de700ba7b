// Solvers and inverses with an orthogonal factor: the public operations.
#include <limits>
#include <string>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class OrthogonalSolvers : public testing::Test {
protected:
    template <class Object>
    bool solve(int form, const Matrix<Real>* a, const Object* b, Object* x) const {
        if (form == 0) return s_.sqr_Solve_based_on_QRD(a, b, x);
        if (form == 1) return s_.sql_Solve_based_on_QLD(a, b, x);
        if (form == 2) return s_.srq_Solve_based_on_RQD(a, b, x);
        return s_.slq_Solve_based_on_LQD(a, b, x);
    }
    bool invert(int form, const Matrix<Real>* a, Matrix<Real>* x) const {
        if (form == 0) return s_.iqr_Inverse_matrix_based_on_QRD(a, x);
        if (form == 1) return s_.iql_Inverse_matrix_based_on_QLD(a, x);
        if (form == 2) return s_.irq_Inverse_matrix_based_on_RQD(a, x);
        return s_.ilq_Inverse_matrix_based_on_LQD(a, x);
    }
    // The factors of A with Q as the raw forms want it.
    void factor(int form, const Matrix<Real>* a) {
        if (form == 0) s_.dqrh_Decompose_into_QR_matrices_based_on_Householder(a, &q, &upper);
        if (form == 1) s_.dqlh_Decompose_into_QL_matrices_based_on_Householder(a, &q, &lower);
        if (form == 2) s_.drqh_Decompose_into_RQ_matrices_based_on_Householder(a, &upper, &q);
        if (form == 3) s_.dlqh_Decompose_into_LQ_matrices_based_on_Householder(a, &lower, &q);
        if (form >= 2) q = transposed(q);
    }
    template <class... Arguments>
    bool solve_with(int form, Arguments... arguments) const {
        if (form == 0) return s_.u_sqr_Solve_based_on_QRD(&q, &upper, arguments...);
        if (form == 1) return s_.u_sql_Solve_based_on_QLD(&q, &lower, arguments...);
        if (form == 2) return s_.u_srq_Solve_based_on_RQD(&upper, &q, arguments...);
        return s_.u_slq_Solve_based_on_LQD(&lower, &q, arguments...);
    }
    bool invert_with(int form, Matrix<Real>* x) const {
        if (form == 0) return s_.u_iqr_Inverse_matrix_based_on_QRD(&q, &upper, x);
        if (form == 1) return s_.u_iql_Inverse_matrix_based_on_QLD(&q, &lower, x);
        if (form == 2) return s_.u_irq_Inverse_matrix_based_on_RQD(&upper, &q, x);
        return s_.u_ilq_Inverse_matrix_based_on_LQD(&lower, &q, x);
    }

    LinearEquation<Real> s_;
    Matrix<Real> q;
    MatrixTriangularLower<Real> lower;
    MatrixTriangularUpper<Real> upper;
};

// Matrix, vector, raw and in-place forms, and inverses, agree with A.
TWIN_TEST(OrthogonalSolvers, SolveAndInvert) {
    for (int form = 0; form < 4; ++form)
        for (const int n : {1, 2, 9, 48, 90}) {
            SCOPED_TRACE(testing::Message() << "form " << form);
            const Matrix<Real> a = random_matrix<Real>(n, n, 3);
            expect_solves(a, 3, 30, [&](auto* given, auto* b, auto* x) {
                return this->solve(form, given, b, x);
            });
            expect_inverts(a, 30,
                           [&](auto* given, auto* x) { return this->invert(form, given, x); });

            this->factor(form, &a);
            const Matrix<Real> b = random_matrix<Real>(n, 3, 4), kept = this->q;
            Matrix<Real> x, inverse;
            const auto solve = [&](auto... to) { return this->solve_with(form, to...); };
            expect_solves(a, 3, 60, [&](auto*, auto* right, auto* y) { return solve(right, y); });
            expect_solves_arrays(a, 3, 60, solve);
            ASSERT_TRUE(this->invert_with(form, &inverse));
            EXPECT_LT(solution_residual(a, inverse, identity_of<Real>(n)), 60);
            // a factor may take the result
            ASSERT_TRUE(solve(&b, &x) && solve(&b, &this->q));
            EXPECT_TRUE(this->q == x);
            this->q = kept;
            ASSERT_TRUE(this->invert_with(form, &this->q));
            EXPECT_TRUE(this->q == inverse);
        }
}

TWIN_TEST(OrthogonalSolvers, RefusalsAndTheirRecords) {
    const auto& s = this->s_;
    const Matrix<Real> mark = random_matrix<Real>(2, 2, 9), tall = random_matrix<Real>(4, 3),
                       square = random_matrix<Real>(3, 3), b = random_matrix<Real>(4, 1);
    Matrix<Real> x = mark;
    EXPECT_TRUE(fails_as(s, "u_sqr_Solve_based_on_QRD: 1\nsqr_Solve_based_on_QRD: 2",
                         this->solve(0, &tall, &b, &x)));
    EXPECT_TRUE(fails_as(s,
                         "u_drqh_Decompose_into_RQ_matrices_based_on_Householder: 11\n"
                         "drqh_Decompose_into_RQ_matrices_based_on_Householder: 1\n"
                         "srq_Solve_based_on_RQD: 1",
                         this->solve(2, &tall, &b, &x)));
    EXPECT_TRUE(fails_as(s,
                         "u_slq_Solve_based_on_LQD: 1\nu_ilq_Inverse_matrix_based_on_LQD: 2\n"
                         "ilq_Inverse_matrix_based_on_LQD: 2",
                         this->invert(3, &tall, &x)));
    EXPECT_TRUE(fails_with(s, "2", this->solve(1, &square, &b, &x)));
    EXPECT_TRUE(x == mark);

    // an exact zero on the diagonal
    Matrix<Real> singular = identity_of<Real>(3);
    singular[1][1] = 0;
    const Matrix<Real> right = random_matrix<Real>(3, 2), empty;
    EXPECT_TRUE(fails_as(s, "u_sql_Solve_based_on_QLD: 2\nsql_Solve_based_on_QLD: 2",
                         this->solve(1, &singular, &right, &x)));
    EXPECT_TRUE(fails_as(s,
                         "u_sqr_Solve_based_on_QRD: 2\nu_iqr_Inverse_matrix_based_on_QRD: 2\n"
                         "iqr_Inverse_matrix_based_on_QRD: 2",
                         this->invert(0, &singular, &x)));
    Matrix<Real> nearly = singular;
    nearly[1][1] = std::numeric_limits<Real>::denorm_min();
    for (int form = 0; form < 4; ++form) {
        EXPECT_TRUE(this->solve(form, &nearly, &right, &x));
        this->factor(form, &singular);
        x = mark;
        EXPECT_TRUE(fails_with(s, "2", this->solve_with(form, &right, &x)));
        EXPECT_TRUE(fails_with(s, "2", this->invert_with(form, &x)));
        this->factor(form, &square);
        EXPECT_FALSE(this->solve_with(form, &b, &x));
        Real data[] = {1, 2, 3};
        EXPECT_FALSE(this->solve_with(form, data, true, 0, 3));
        EXPECT_TRUE(fails_with(s, "1", this->solve_with(form, data, true, 1, 2)));
        static_cast<Vector<Real>&>(this->lower).c_Create(2);
        static_cast<Vector<Real>&>(this->upper).c_Create(2);
        EXPECT_FALSE(this->solve_with(form, data, true, 1, 3));
        EXPECT_TRUE(data[2] == 3 && x == mark);
        EXPECT_FALSE(this->solve(form, &empty, &empty, &x));
        EXPECT_TRUE(fails_with(s, "1", this->invert(form, &empty, &x)));
    }
}

TWIN_TEST(OrthogonalSolvers, NanInfinityAndTheEndsOfTheRange) {
    using Limits = std::numeric_limits<Real>;
    const Real large = sizeof(Real) == 4 ? Real(1e25) : Real(1e200);
    const Matrix<Real> plain = random_matrix<Real>(60, 60, 3), b = random_matrix<Real>(60, 1, 4);
    Matrix<Real> x;
    for (int form = 0; form < 4; ++form) {
        for (const Real bad : {Limits::quiet_NaN(), Limits::infinity()}) {
            Matrix<Real> a = plain;
            a[20][30] = bad;
            ASSERT_TRUE(this->solve(form, &a, &b, &x));
            EXPECT_TRUE(std::isnan(x[0][0]) || std::isnan(x[59][0]));
        }
        for (const Real scale : {large, 1 / large}) {
            const auto scaled = [scale](const Matrix<Real>& m) {
                return matrix_of<Real>(m.mh(), m.mw(),
                                       [&](int i, int j) { return m[i][j] * scale; });
            };
            const Matrix<Real> a = scaled(plain), c = scaled(b);
            ASSERT_TRUE(this->solve(form, &a, &c, &x));
            EXPECT_LT(solution_residual(a, x, c), 30) << form;
        }
    }
}

}  // namespace
}  // namespace nequar
