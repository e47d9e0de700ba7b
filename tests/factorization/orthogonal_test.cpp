// QR and its relatives: the public operations.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/factorization.h"
#include "support/chain.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

enum class Form { qr, ql, rq, lq };
constexpr Form kForms[] = {Form::qr, Form::ql, Form::rq, Form::lq};

template <class Real>
class OrthogonalFactorizations : public testing::Test {
protected:
    bool in_place(Form form, Matrix<Real>* matrix, Matrix<Real>* orthogonal) const {
        if (form == Form::qr)
            return f_.u_dqrh_Decompose_into_QR_matrices_based_on_Householder(matrix, orthogonal);
        if (form == Form::ql)
            return f_.u_dqlh_Decompose_into_QL_matrices_based_on_Householder(matrix, orthogonal);
        if (form == Form::rq)
            return f_.u_drqh_Decompose_into_RQ_matrices_based_on_Householder(matrix, orthogonal);
        return f_.u_dlqh_Decompose_into_LQ_matrices_based_on_Householder(matrix, orthogonal);
    }
    template <class Upper, class Lower>
    bool decompose(Form form, const Matrix<Real>* a, Upper* u, Lower* l, Matrix<Real>* q) const {
        if (form == Form::qr)
            return f_.dqrh_Decompose_into_QR_matrices_based_on_Householder(a, q, u);
        if (form == Form::ql)
            return f_.dqlh_Decompose_into_QL_matrices_based_on_Householder(a, q, l);
        if (form == Form::rq)
            return f_.drqh_Decompose_into_RQ_matrices_based_on_Householder(a, u, q);
        return f_.dlqh_Decompose_into_LQ_matrices_based_on_Householder(a, l, q);
    }
    bool dense(Form form, const Matrix<Real>* a, Matrix<Real>* t, Matrix<Real>* q) const {
        return decompose(form, a, t, t, q);
    }
    bool packed(Form form, const Matrix<Real>* a, Matrix<Real>* t, Matrix<Real>* q) {
        const bool done = decompose(form, a, &upper, &lower, q);
        if (done) *t = form == Form::ql || form == Form::lq ? unpacked(lower) : unpacked(upper);
        return done;
    }

    MatrixFactorization<Real> f_;
    MatrixTriangularLower<Real> lower;
    MatrixTriangularUpper<Real> upper;
};

// The packed factor and Q rebuild A in every form, shape and size about the blocks; the dense forms
// hold the same triangle and Q; A stays as it is, and may be an output.
TWIN_TEST(OrthogonalFactorizations, RebuildTheMatrix) {
    const std::pair<int, int> shapes[] = {
        {1, 1},   {2, 2},    {7, 7},    {31, 31},  {48, 48}, {65, 65}, {130, 130}, {9, 4},
        {90, 33}, {120, 50}, {150, 20}, {150, 10}, {4, 9},   {33, 90}, {50, 120},  {300, 130}};
    for (const Form form : kForms)
        for (const auto& [m, n] : shapes) {
            if ((form == Form::ql && m < n) || (form == Form::rq && m > n)) continue;
            int kind = 0;
            for (const Matrix<Real>& a : hard_matrices<Real>(m, n)) {
                SCOPED_TRACE(testing::Message() << "form " << int(form) << ' ' << m << 'x' << n
                                                << " matrix " << kind++);
                const Matrix<Real> before = a;
                Matrix<Real> t, q, t_dense, q_dense;
                ASSERT_TRUE(this->packed(form, &a, &t, &q));
                const bool q_first = form == Form::qr || form == Form::ql;
                EXPECT_LT(q_first ? rebuilding_error(a, q, t) : rebuilding_error(a, t, q), 30);
                EXPECT_LT(orthogonality_error(q), 30);
                ASSERT_TRUE(this->dense(form, &a, &t_dense, &q_dense));
                EXPECT_TRUE(a == before);
                EXPECT_TRUE(q == q_dense);
                for (int i = 0; i < m; ++i)
                    for (int j = 0; j < n; ++j)
                        ASSERT_TRUE(t[i][j] == 0 || t[i][j] == t_dense[i][j]);
                Matrix<Real> in_place = a, as_output = a;
                ASSERT_TRUE(this->in_place(form, &in_place, nullptr));
                EXPECT_TRUE(in_place == t_dense);
                ASSERT_TRUE(this->dense(form, &as_output, &as_output, &q_dense));
                EXPECT_TRUE(as_output == t_dense && q == q_dense);
                as_output = a;
                ASSERT_TRUE(this->dense(form, &as_output, &t_dense, &as_output));
                EXPECT_TRUE(as_output == q);
            }
        }
}

TWIN_TEST(OrthogonalFactorizations, TextbookValues) {
    Real x[] = {3, 4}, y[] = {0, -2, 0}, beta = 7, c = 7, s = 7;
    ASSERT_TRUE(this->f_.ghv_Get_Householder_Vector(x, 2, 0, beta));
    EXPECT_TRUE(beta == Real(0.4) && x[0] == 1 && x[1] == -2);
    ASSERT_TRUE(this->f_.ghv_Get_Householder_Vector(y, 3, 1, beta));
    EXPECT_TRUE(beta == 0 && y[1] == 1);
    this->f_.ggr_Get_Givens_Rotation(Real(-5), Real(0), c, s);
    EXPECT_TRUE(c == 1 && s == 0);
    this->f_.ggr_Get_Givens_Rotation(Real(3), Real(-4), c, s);
    EXPECT_NEAR(c * 3 - s * -4, 5, 1e-6);
    EXPECT_NEAR(s * 3 + c * -4, 0, 1e-6);

    auto v = vector_of<Real>({0, 0, 0});
    Matrix<Real> h, q;
    this->f_.chm_Create_Householder_Matrix(&v, &h);
    EXPECT_TRUE(h == identity_of<Real>(3));
    v[0] = v[2] = std::numeric_limits<Real>::denorm_min() * 3;
    this->f_.chm_Create_Householder_Matrix(&v, &h);
    EXPECT_NEAR(h[0][2], -1, 1e-6);
    EXPECT_NEAR(h[1][1], 1, 1e-6);

    // R keeps below its diagonal what stood there; a sign stays where no reflection is made
    Matrix<Real> a = matrix_of<Real>(2, 2, {3, 3, 4, 3});
    ASSERT_TRUE(this->f_.u_dqrh_Decompose_into_QR_matrices_based_on_Householder(&a, nullptr));
    EXPECT_NEAR(a[0][0], 5, 1e-6);
    EXPECT_EQ(a[1][0], 4);
    a = constant_matrix<Real>(1, 1, -3);
    ASSERT_TRUE(this->f_.u_dqrh_Decompose_into_QR_matrices_based_on_Householder(&a, &q));
    EXPECT_TRUE(a[0][0] == -3 && q[0][0] == 1);
}

TWIN_TEST(OrthogonalFactorizations, RefusalsLeaveEverythingAsItWas) {
    const auto& f = this->f_;
    const Matrix<Real> tall = random_matrix<Real>(4, 3), wide = random_matrix<Real>(3, 4);
    const Matrix<Real> mark = random_matrix<Real>(2, 2, 9);
    Matrix<Real> q = mark, t = mark, a = tall;
    for (const Form form : kForms) {
        EXPECT_TRUE(fails_with(f, "1", this->in_place(form, &a, &a)));
        EXPECT_TRUE(fails_with(f, "1", this->dense(form, &tall, &t, &t)));
    }
    EXPECT_TRUE(a == tall);
    EXPECT_TRUE(fails_as(f,
                         "u_dqlh_Decompose_into_QL_matrices_based_on_Householder: 11\n"
                         "dqlh_Decompose_into_QL_matrices_based_on_Householder: 1",
                         this->dense(Form::ql, &wide, &t, &q)));
    EXPECT_TRUE(fails_with(f, "1", this->packed(Form::rq, &tall, &t, &q)));
    a = wide;
    EXPECT_TRUE(fails_with(f, "11", this->in_place(Form::ql, &a, &q)));

    CNqVectorInt perm;
    perm.c_Create(1, 7);
    int interchanges = 7, rank = 7;
    EXPECT_FALSE(f.u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting(
        &a, &q, &perm, interchanges, rank));
    EXPECT_TRUE(fails_with(f, "1",
                           f.dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
                               &wide, &q, &t, &perm, interchanges, rank)));
    EXPECT_TRUE(fails_with(
        f, "1", f.u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(&a, &q, &t, rank)));
    EXPECT_TRUE(q == mark && t == mark && a == wide);
    EXPECT_TRUE(perm[0] == 7 && rank == 7 && interchanges == 7);

    Real x[] = {3, 4}, beta = 7;
    EXPECT_TRUE(fails_with(f, "N=-1", f.ghv_Get_Householder_Vector(x, -1, 0, beta)));
    EXPECT_TRUE(fails_with(f, "pos = 2/2", f.ghv_Get_Householder_Vector(x, 2, 2, beta)));
    EXPECT_TRUE(x[0] == 3 && beta == 7);
}

TWIN_TEST(OrthogonalFactorizations, EmptyMatrices) {
    for (const Form form : kForms) {
        Matrix<Real> a, q = random_matrix<Real>(2, 2), t;
        EXPECT_TRUE(this->in_place(form, &a, &q));
        EXPECT_EQ(q.mh(), 0);
        EXPECT_TRUE(this->dense(form, &a, &t, &q));
        EXPECT_TRUE(fails_with(this->f_, "cannot size the output", this->packed(form, &a, &t, &q)));
    }
    Matrix<Real> a, q, z;
    a.c_Create(3, 0);
    CNqVectorInt perm;
    int interchanges = 7, rank = 7;
    EXPECT_TRUE(
        this->f_.u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting(
            &a, &q, &perm, interchanges, rank));
    EXPECT_TRUE(rank == 0 && interchanges == 0 && perm.vs() == 0);
    EXPECT_TRUE(q == identity_of<Real>(3));
    EXPECT_TRUE(this->f_.u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(&a, &q, &z, rank));
    EXPECT_TRUE(this->in_place(Form::qr, &a, &q));
    EXPECT_TRUE(q == identity_of<Real>(3));
}

TWIN_TEST(OrthogonalFactorizations, ColumnPivotingAndTheCompleteDecomposition) {
    for (const int n : {1, 5, 40, 80}) {
        const int m = n + n / 2;
        Matrix<Real> a = random_matrix<Real>(m, n, 6);
        for (int i = 0; i < n; ++i)
            a[i][i] += static_cast<Real>(20 * n);  // the rank is judged right
        Matrix<Real> q, z;
        CNqVectorInt perm;
        int interchanges = -1, rank = -1;
        ASSERT_TRUE(this->f_.dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
            &a, &q, &this->upper, &perm, interchanges, rank));
        EXPECT_EQ(rank, n);
        const Matrix<Real> permuted =
            matrix_of<Real>(m, n, [&](int i, int j) { return a[i][perm[j]]; });
        EXPECT_LT(rebuilding_error(permuted, q, unpacked(this->upper)), 30);
        EXPECT_LT(orthogonality_error(q), 30);

        for (const int wanted : {n, (n + 1) / 2}) {
            if (wanted < n)  // columns that repeat coordinate directions
                a = matrix_of<Real>(
                    m, n, [&](int i, int j) { return i == j % wanted ? 1 + (i + 2 * j) % 5 : 0; });
            ASSERT_TRUE(this->f_.dco_Decompose_matrix_Complete_Orthogonal_algorithm(
                &a, &q, &this->lower, &z, rank));
            EXPECT_EQ(rank, wanted);
            Matrix<Real> t = a, q2, z2;
            ASSERT_TRUE(
                this->f_.u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(&t, &q2, &z2, rank));
            EXPECT_TRUE(q2 == q && z2 == z);
            EXPECT_LT(rebuilding_error(a, q, t, transposed(z)), 30);
            EXPECT_LT(orthogonality_error(q), 30);
            EXPECT_LT(orthogonality_error(z), 30);
            EXPECT_TRUE(unpacked(this->lower) ==
                        matrix_of<Real>(wanted, wanted, [&](int i, int j) { return t[i][j]; }));
            for (int i = 0; i < m; ++i)
                for (int j = i < rank ? i + 1 : 0; j < n; ++j) ASSERT_EQ(t[i][j], 0);
        }
    }
    const auto zero = constant_matrix<Real>(3, 2);
    Matrix<Real> q, z;
    int rank = 7;
    EXPECT_TRUE(fails_with(this->f_, "2",
                           this->f_.dco_Decompose_matrix_Complete_Orthogonal_algorithm(
                               &zero, &q, &this->lower, &z, rank)));
    EXPECT_EQ(rank, 0);
    EXPECT_TRUE(z == identity_of<Real>(2));
}

TWIN_TEST(OrthogonalFactorizations, RqOf3x3) {
    const auto rq3 = [this](const Matrix<Real>* a, Matrix<Real>* r, Matrix<Real>* q,
                            auto&&... more) {
        return this->f_.drq3_Decompose_into_RQ_matrices_for_3x3_matrix(a, r, q, more...);
    };
    Matrix<Real> a, r, q, qx, qy, qz;
    for (const double scale : {1.0, 1e-30, 1e30, sizeof(Real) == 4 ? 1e-40 : 1e-312})
        for (unsigned zeros = 0; zeros < 8; ++zeros) {
            SCOPED_TRACE(testing::Message() << scale << " zeros " << zeros);
            const Matrix<Real> plain = random_matrix<Real>(3, 3, zeros);
            a = matrix_of<Real>(3, 3, [&](int i, int j) { return plain[i][j] * Real(scale); });
            if (zeros & 1) a[2][1] = 0;
            if (zeros & 2) a[2][0] = 0;
            if (zeros & 4) a[1][0] = 0;
            Real x = 0, y = 0, z = 0;
            ASSERT_TRUE(rq3(&a, &r, &q, &qx, &qy, &qz, x, y, z));
            EXPECT_TRUE(r[1][0] == 0 && r[2][0] == 0 && r[2][1] == 0);
            EXPECT_TRUE(zeros != 7 || r == a);
            EXPECT_LT(rebuilding_error(a, r, q), 10);
            EXPECT_LT(orthogonality_error(q), 10);
            EXPECT_LT(rebuilding_error(q, qz, qy, qx), 10);
            const Real angles[] = {x, y, z};
            const Real cosines[] = {qx[1][1], qy[0][0], qz[0][0]};
            const Real sines[] = {qx[2][1], qy[0][2], qz[1][0]};
            for (int k = 0; k < 3; ++k) {
                EXPECT_NEAR(cosines[k], std::cos(angles[k]), 1e-6);
                EXPECT_NEAR(sines[k], -std::sin(angles[k]), 1e-6);
            }
        }
    Matrix<Real> both = a;
    ASSERT_TRUE(rq3(&both, &both, &qx));
    EXPECT_TRUE(both == r && qx == q);
    EXPECT_TRUE(fails_with(this->f_, "1", rq3(&a, &q, &q)));
    const Matrix<Real> wrong = random_matrix<Real>(3, 4);
    EXPECT_FALSE(rq3(&wrong, &r, &q));
    EXPECT_TRUE(q == qx);
}

TWIN_TEST(OrthogonalFactorizations, GramSchmidt) {
    Matrix<Real> vectors = random_matrix<Real>(60, 40, 2), out;
    const auto orthogonalize = [&](const Matrix<Real>* in) {
        return this->f_.ogs_Orthogonalize_set_of_vectors_based_on_Gram_Schmidt_algorithm(in, &out);
    };
    ASSERT_TRUE(orthogonalize(&vectors));
    EXPECT_LT(orthogonality_error(out), 1000);
    vectors = matrix_of<Real>(2, 3, {1, 2, 3, 0, 0, 0});
    EXPECT_TRUE(fails_with(this->f_, "1", orthogonalize(&vectors)));
    EXPECT_EQ(out[0][0], 1);
}

TWIN_TEST(OrthogonalFactorizations, HessenbergForms) {
    const auto& f = this->f_;
    const auto by_givens = [&](auto* h, auto*... factors) {
        return f.dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(
            h, factors...);
    };
    for (const int n : {0, 1, 2, 3, 20, 70, 110}) {
        const Matrix<Real> a = random_matrix<Real>(n, n, 2);
        Matrix<Real> h, q, r, g;
        ASSERT_TRUE(f.dhr_Do_Hessenberg_Reduction(&a, &h, &q));
        EXPECT_LT(rebuilding_error(a, q, h, transposed(q)), 30);
        if (n > 3) h[3][2] = 0;  // nothing to annihilate
        ASSERT_TRUE(by_givens(&h, &g, &r));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < i; ++j) ASSERT_TRUE((j + 1 == i || h[i][j] == 0) && r[i][j] == 0);
        EXPECT_LT(orthogonality_error(q), 30);
        EXPECT_LT(orthogonality_error(g), 30);
        EXPECT_LT(rebuilding_error(h, g, r), 30);
    }
    const Matrix<Real> wide = random_matrix<Real>(3, 4);
    Matrix<Real> a = wide, q;
    EXPECT_TRUE(fails_with(f, "non-square matrix", f.dhr_Do_Hessenberg_Reduction(&wide, &a, &q)));
    EXPECT_TRUE(fails_with(f, "2", f.u_dhr_Do_Hessenberg_Reduction(&a, &q)));
    EXPECT_TRUE(fails_with(f, "1", f.u_dhr_Do_Hessenberg_Reduction(&a, &a)));
    EXPECT_TRUE(fails_with(
        f, "2",
        f.u_dhqrg_Decompose_square_upper_Hessenberg_matrix_into_QR_matrices_via_Givens(&a, &q)));
    a = random_matrix<Real>(3, 3);
    EXPECT_TRUE(fails_with(f, "2", by_givens(&a, &q, &q)));
    EXPECT_TRUE(a == random_matrix<Real>(3, 3));
}

// NIST's Wampler1, y = 1 + x + ... + x^5 on 0 ... 20: nine digits of each coefficient, also where
// products and sums are rounded apart.
TEST(OrthogonalFactorizations, CertifiedPolynomial) {
    const auto a = matrix_of<double>(21, 6, [](int i, int j) { return std::pow(i, j); });
    Matrix<double> r, q, y = product(a, constant_matrix<double>(6, 1, 1));
    ASSERT_TRUE(MatrixFactorization<double>().dqrh_Decompose_into_QR_matrices_based_on_Householder(
        &a, &q, &r));
    y = product(transposed(q), y);
    for (int j = 5; j >= 0; --j) {
        for (int k = j + 1; k < 6; ++k) y[j][0] -= r[j][k] * y[k][0];
        y[j][0] /= r[j][j];
        EXPECT_LT(std::abs(y[j][0] - 1), 1e-9);
    }
}

}  // namespace
}  // namespace nequar::test
