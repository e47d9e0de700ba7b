// LU, Cholesky, determinant, condition number: the public operations.
#include <limits>
#include <string>
#include <type_traits>

#include "nequar_algebra/factorization.h"
#include "support/chain.h"
#include "support/residual.h"
#include "support/stated_schemes.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

template <class Real>
class TriangularFactorizations : public testing::Test {
protected:
    bool crout(const Matrix<Real>& a) {
        return factorization.dluc_Decompose_into_LU_matrices_by_Crout(&a, &l, &u, &perm,
                                                                      interchanges);
    }
    bool crout_with_diagonal(const Matrix<Real>& a) {
        return factorization.dluc_Decompose_into_LU_matrices_by_Crout(&a, &l, &d, &u, &perm,
                                                                      interchanges);
    }
    bool crout_in_place(Matrix<Real>& a) {
        return factorization.u_dluc_Decompose_into_LU_matrices_by_Crout(&a, &perm, interchanges);
    }
    bool partial(const Matrix<Real>& a) {
        return factorization.dlup_Decompose_into_LU_matrices_with_Partial_pivoting(
            &a, &l, &u, &perm, interchanges);
    }
    bool partial_in_place(Matrix<Real>& a) {
        return factorization.u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&a, &perm,
                                                                                     interchanges);
    }

    void expect_refused(bool done, std::initializer_list<std::string> records) const {
        EXPECT_TRUE(fails_as(factorization, records, done));
    }

    MatrixFactorization<Real> factorization;
    CNqVectorInt perm;
    int interchanges = -1;
    MatrixTriangularLower<Real> l;
    MatrixTriangularUpper<Real> u;
    MatrixDiagonal<Real> d;
};

#define CROUT "dluc_Decompose_into_LU_matrices_by_Crout: "
#define PARTIAL "dlup_Decompose_into_LU_matrices_with_Partial_pivoting: "
#define CHOLESKY "dch_Decompose_matrix_by_Cholesky_algorithm: "

TWIN_TEST(TriangularFactorizations, ClassNameAndEmptyMatrix) {
    Matrix<Real> empty;
    EXPECT_EQ(this->factorization.gcn_Get_Class_Name(),
              (std::is_same_v<Real, float> ? "LCNqUtility_for_MatrixFloat_Factorization"
                                           : "LCNqUtility_for_Matrix_Factorization"));
    ASSERT_TRUE(this->crout_in_place(empty));
    EXPECT_TRUE(this->perm.vs() == 0 && this->interchanges == 0);
}

// The stated rule refuses a regular matrix that partial pivoting factors.
TWIN_TEST(TriangularFactorizations, CroutRefusesWhatPartialPivotingSolves) {
    const auto regular = matrix_of<Real>(3, 3, {4, 4, 1, 2, 1, 1, 2, 2, 3});
    const auto& f = this->factorization;
    this->expect_refused(this->crout(regular), {"u_" CROUT "singular", CROUT "1"});
    EXPECT_EQ(f.ged_Get_Error_Detail(), "1");
    ASSERT_TRUE(this->partial(regular));
    EXPECT_LT(componentwise_product_error(with_rows(regular, this->perm.p()), unpacked(this->l),
                                          unpacked(this->u)),
              1.0);
}

TWIN_TEST(TriangularFactorizations, PackedFactorsReproduceTheInput) {
    for (const int n : {1, 2, 9, 32, 33, 70}) {
        const Matrix<Real> a = dominant_matrix<Real>(n, 3);
        const Matrix<Real> kept = a;
        ASSERT_TRUE(this->crout(a));
        EXPECT_EQ(a, kept);
        const Matrix<Real> dense_l = unpacked(this->l), dense_u = unpacked(this->u);
        EXPECT_LT(componentwise_product_error(with_rows(a, this->perm.p()), dense_l, dense_u), 1.0);
        Matrix<Real> packed = a;
        ASSERT_TRUE(this->crout_in_place(packed));
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(dense_l[i][i], Real(1));
            for (int j = 0; j < n; ++j)
                EXPECT_EQ(i > j ? dense_l[i][j] : dense_u[i][j], packed[i][j]);
        }

        ASSERT_TRUE(this->crout_with_diagonal(a));
        const Matrix<Real> unit = unpacked(this->u);
        EXPECT_EQ(unpacked(this->l), dense_l);
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(this->d[i], dense_u[i][i]);
            EXPECT_EQ(unit[i][i], Real(1));
            for (int j = i + 1; j < n; ++j) EXPECT_EQ(unit[i][j], dense_u[i][j] / dense_u[i][i]);
        }
    }
}

TWIN_TEST(TriangularFactorizations, RefusedShapesTouchNothing) {
    Matrix<Real> wide = random_matrix<Real>(2, 3);
    const Matrix<Real> kept = wide;
    this->perm.c_Create(7, 5);
    const auto& f = this->factorization;
    this->expect_refused(this->crout_in_place(wide), {"u_" CROUT "non-square"});
    this->expect_refused(this->crout(wide), {"u_" CROUT "non-square", CROUT "1"});
    this->expect_refused(this->partial(wide), {"u_" PARTIAL "non-square", PARTIAL "1"});
    EXPECT_FALSE(this->partial_in_place(wide));
    this->expect_refused(f.u_dch_Decompose_matrix_by_Cholesky_algorithm(true, &wide),
                         {"u_" CHOLESKY "non-square matrix"});
    Real determinant = 7, condition = 8;
    this->expect_refused(f.d_Determinant(&wide, determinant), {"d_Determinant: not square"});
    this->expect_refused(f.ecn_Estimate_Condition_Number(&wide, condition),
                         {"u_" PARTIAL "non-square", "ecn_Estimate_Condition_Number: 1"});
    EXPECT_TRUE(determinant == 7 && condition == 8 && wide == kept);
    EXPECT_TRUE(this->interchanges == -1 && this->perm.vs() == 7 && this->l.mh() == 1);

    // Packed factors of an empty matrix cannot be had; nothing else is refused.
    const Matrix<Real> empty;
    this->expect_refused(this->crout(empty), {CROUT "cannot size the output"});
    EXPECT_TRUE(f.d_Determinant(&empty, determinant) && determinant == 1);
    EXPECT_TRUE(f.ecn_Estimate_Condition_Number(&empty, condition) && condition == 1);
}

// What a zero pivot leaves, in place and beside the packed outputs.
TWIN_TEST(TriangularFactorizations, SingularState) {
    const Matrix<Real> input =
        matrix_of<Real>(4, 4, {2, 4, 1, 7, 4, 8, 3, 1, 1, 2, 5, 9, 0, 0, 1, 2});
    const StatedLu<Real> stated = stated_crout(input);
    ASSERT_EQ(stated.zero_pivot, 1);
    Matrix<Real> a = input;
    this->expect_refused(this->crout_in_place(a), {"u_" CROUT "singular"});
    EXPECT_EQ(a, stated.a);
    this->perm.c_Create(1);
    this->interchanges = -1;
    this->l.c_Create(2, 2, Real(6));
    EXPECT_FALSE(this->crout_with_diagonal(input));
    EXPECT_EQ(this->interchanges, stated.interchanges);
    ASSERT_EQ(this->perm.vs(), 4);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(this->perm[i], stated.perm[static_cast<std::size_t>(i)]);
    EXPECT_TRUE(this->l.mh() == 2 && this->l[0] == 6 && this->d.mh() == 1);

    // Partial pivoting finishes: P A = L U with a zero on the diagonal of U.
    a = input;
    this->expect_refused(this->partial_in_place(a), {"u_" PARTIAL "singular"});
    EXPECT_EQ(a[1][1], Real(0));
}

TWIN_TEST(TriangularFactorizations, CholeskyBothForms) {
    const auto& f = this->factorization;
    const auto a = matrix_of<Real>(2, 2, {4, 2, 2, 3});
    Matrix<Real> lower = a, upper = a;
    ASSERT_TRUE(f.u_dch_Decompose_matrix_by_Cholesky_algorithm(true, &lower));
    EXPECT_EQ(lower, matrix_of<Real>(2, 2, {2, 2, 1, std::sqrt(2.0)}));
    ASSERT_TRUE(f.u_dch_Decompose_matrix_by_Cholesky_algorithm(false, &upper));
    EXPECT_TRUE(upper[1][1] == std::sqrt(Real(3)) && upper[1][0] == 2);

    for (const int n : {1, 2, 7, 32, 33, 64, 65, 100}) {
        const Matrix<Real> spd = positive_definite_matrix<Real>(n, 500, 9);
        const auto packed = packed_of(spd);
        ASSERT_TRUE(f.dch_Decompose_matrix_by_Cholesky_algorithm(&packed, &this->l));
        ASSERT_TRUE(f.dch_Decompose_matrix_by_Cholesky_algorithm(&packed, &this->u));
        const Matrix<Real> dense_l = unpacked(this->l), dense_u = unpacked(this->u);
        EXPECT_LT(componentwise_product_error(spd, dense_l, transposed(dense_l)), 1.0) << n;
        EXPECT_LT(componentwise_product_error(spd, dense_u, transposed(dense_u)), 1.0) << n;
        EXPECT_TRUE(f.ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(&packed));
        // In place: the triangle that is read stays, the other one gets the factor.
        Matrix<Real> in_place = spd;
        ASSERT_TRUE(f.u_dch_Decompose_matrix_by_Cholesky_algorithm(false, &in_place));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                const Real expected = i > j ? spd[i][j] : dense_u[i][j];
                EXPECT_NEAR(in_place[i][j], expected, 1e3 * kEpsilon<Real> * (i <= j));
            }
    }
}

TWIN_TEST(TriangularFactorizations, CholeskyRefusals) {
    const auto& f = this->factorization;
    const auto indefinite = packed_of(matrix_of<Real>(2, 2, {1, 2, 2, 1}));
    const auto semidefinite = packed_of(matrix_of<Real>(2, 2, {1, 1, 1, 1}));
    this->l.c_Create(3, 3, Real(5));
    for (const auto* a : {&indefinite, &semidefinite}) {
        this->expect_refused(f.dch_Decompose_matrix_by_Cholesky_algorithm(a, &this->l),
                             {"u_" CHOLESKY "non-positive definite", CHOLESKY "1"});
        EXPECT_FALSE(f.dch_Decompose_matrix_by_Cholesky_algorithm(a, &this->u));
        EXPECT_EQ(this->l.mh(), 3);
    }
    MatrixFactorization<Real> silent;
    EXPECT_FALSE(
        silent.ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(&semidefinite));
    auto nan = packed_of(identity_of<Real>(3));
    nan.se_Set_Element(1, 1, std::numeric_limits<Real>::quiet_NaN());
    EXPECT_FALSE(silent.ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(&nan));
    const auto tall = random_matrix<Real>(3, 2);
    EXPECT_FALSE(silent.is_Is_Symmetric(&tall));
    const auto one = random_matrix<Real>(1, 1);
    EXPECT_TRUE(silent.is_Is_Symmetric(&one));
    EXPECT_EQ(silent.gft_Get_Failure_Trace(), "");
    EXPECT_EQ(silent.ged_Get_Error_Detail(), "");

    // Someone resized the vector under the matrix: its elements are not read.
    auto broken = packed_of(identity_of<Real>(4));
    static_cast<Vector<Real>&>(broken).c_Create(3);
    this->expect_refused(f.dch_Decompose_matrix_by_Cholesky_algorithm(&broken, &this->l),
                         {CHOLESKY "bad input"});
    EXPECT_FALSE(silent.ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(&broken));
    Real determinant = 0;
    EXPECT_FALSE(f.d_Determinant(&broken, determinant));
}

TWIN_TEST(TriangularFactorizations, Determinants) {
    const auto& f = this->factorization;
    const auto a = matrix_of<Real>(2, 2, {0, 1, 1, 0});
    const auto s = packed_of(a);
    Real determinant = 0;
    EXPECT_TRUE(f.d_Determinant(&a, determinant) && determinant == -1);
    EXPECT_EQ(f.d_Determinant(&a), Real(-1));
    EXPECT_EQ(f.d_Determinant(&s), Real(-1));
    const auto known = matrix_of<Real>(3, 3, {2, -1, 0, -1, 2, -1, 0, -1, 2});
    EXPECT_NEAR(f.d_Determinant(&known), 4, 20 * kEpsilon<Real>);
    for (const int n : {33, 70}) {  // the product of the diagonal, found through the blocked form
        Matrix<Real> triangular = identity_of<Real>(n);
        for (int i = 0; i < n; ++i)
            for (int j = i; j < n; ++j) triangular[i][j] = i == j ? Real(i % 2 == 0 ? 2 : 0.5) : 1;
        for (int j = 0; j < n; ++j) std::swap(triangular[0][j], triangular[n - 1][j]);
        EXPECT_EQ(f.d_Determinant(&triangular), Real(n % 2 == 0 ? -1 : -2));
    }

    const auto singular = matrix_of<Real>(2, 2, {1, 2, 2, 4});
    const auto packed = packed_of(singular);
    determinant = 5;
    this->expect_refused(f.d_Determinant(&singular, determinant),
                         {"u_" CROUT "singular", "d_Determinant: 1"});
    EXPECT_FALSE(f.d_Determinant(&packed, determinant));
    EXPECT_EQ(determinant, Real(5));
    EXPECT_EQ(f.d_Determinant(&packed), Real(0));
    this->expect_refused(f.d_Determinant(&singular) != Real(0),
                         {"u_" CROUT "singular", "d_Determinant: 1", "d_Determinant: 1"});
    const auto wide = random_matrix<Real>(2, 3);
    this->expect_refused(f.d_Determinant(&wide) != Real(0),
                         {"d_Determinant: not square", "d_Determinant: 1"});
}

TWIN_TEST(TriangularFactorizations, ConditionNumber) {
    const auto& f = this->factorization;
    Real condition = 0;
    const auto diagonal = matrix_of<Real>(3, 3, {4, 0, 0, 0, 0.5, 0, 0, 0, 1});
    ASSERT_TRUE(f.ecn_Estimate_Condition_Number(&diagonal, condition));
    EXPECT_EQ(condition, Real(8));
    const auto hilbert = hilbert_matrix<Real>(4);
    ASSERT_TRUE(f.ecn_Estimate_Condition_Number(&hilbert, condition));
    EXPECT_NEAR(condition, 28375, 28375 * 1e5 * kEpsilon<Real>);
    condition = 3;
    const auto singular = matrix_of<Real>(2, 2, {1, 2, 2, 4});
    this->expect_refused(f.ecn_Estimate_Condition_Number(&singular, condition),
                         {"u_" PARTIAL "singular", "ecn_Estimate_Condition_Number: 1"});
    EXPECT_EQ(condition, Real(3));
    auto nan = random_matrix<Real>(5, 5);
    nan[2][2] = std::numeric_limits<Real>::quiet_NaN();
    EXPECT_TRUE(!f.ecn_Estimate_Condition_Number(&nan, condition) || std::isnan(condition));
}

}  // namespace
}  // namespace nequar::test
