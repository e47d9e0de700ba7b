// Every request for memory that an operation makes is refused once, and then every one from there
// on: the operation answers with a reported failure or finds another way to the same result;
// nothing leaks, nothing is thrown, and asked again, with memory, it does its work.
#include <gtest/gtest.h>
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "allocation/failing_allocator.h"
#include "support/matrix_gallery.h"

namespace nequar::test {
namespace {

constexpr int kOrder = 48;  // beyond what is kept on the stack

// Inputs and outputs of all kinds, made anew for each attempt.
template <class Real>
struct Things {
    LinearEquation<Real> tool;
    AlgebraForMatrixSpecial<Real> algebra;
    RandomNumberGeneratorAdvanced<Real> random;
    PrincipalComponents<Real> pca;
    CNqRanker ranker;

    Matrix<Real> a = dominant_matrix<Real>(kOrder), b = random_matrix<Real>(kOrder, kOrder, 2);
    Matrix<Real> x, y, z;
    Vector<Real> v, w, u, sample;
    MatrixSymmetric<Real> s, s2;
    MatrixTriangular<Real, TriangleSide::lower> l;
    MatrixTriangular<Real, TriangleSide::upper> r;
    MatrixBand<Real> band;
    MatrixBandSymmetric<Real> band_symmetric;
    MatrixDiagonal<Real> d;
    MatrixToeplitzSymmetric<Real> toeplitz;
    MatrixVandermonde<Real> vandermonde;
    SparseMatrix<Real> m, m2;
    SparseSymmetricMatrix<Real> sm;
    SparseVector<Real> sv;
    GrowableVector<Real> grown;
    GrowableMatrix<Real, Growth::columns> columns;
    GrowableMatrix<Real, Growth::rows> rows;
    VectorSet<Real> set;
    VectorQueue<Real> queue;
    CNqVectorInt perm, reversal;
    int count = 0, rank = 0;
    Real number = 0;

    Things() {
        Matrix<Real> symmetric = a;
        for (int i = 0; i < kOrder; ++i)
            for (int j = 0; j < i; ++j) symmetric[i][j] = symmetric[j][i];
        for (int i = 0; i < kOrder; ++i) symmetric[i][i] = Real(2 * kOrder + i);
        s.iu_Import_Upper_part_of(&symmetric);
        v.c_Create(kOrder);
        sample.c_Create(kOrder);
        reversal.c_Create(kOrder);
        for (int i = 0; i < kOrder; ++i) v[i] = Real(1) / Real(i + 1);
        for (int i = 0; i < kOrder; ++i) reversal[i] = kOrder - 1 - i;
        columns.in_Initialize(kOrder, 0);
        rows.in_Initialize(kOrder, 0);
        m.czm(kOrder, kOrder, 0);
        m2.czm(kOrder, kOrder, 0);
        sm.czm(kOrder, 0);
        sv.czv(kOrder, 0);
        for (int i = 0; i < kOrder; ++i) {
            m.se(i, (7 * i) % kOrder, Real(i + 1));
            m2.se(i, (5 * i) % kOrder, Real(i + 2));
            sm.se(i, (i + kOrder) / 2, Real(i - 7));
            if (i % 3 == 0) sv.se(i, Real(i + 1));
        }
        toeplitz.im_Import(kOrder, v);
        random.ss_Set_Seed(5);
    }

    // What the operation reported on; void ones have failed when there is a detail.
    const CNqClass* asked = nullptr;
    bool says(const CNqClass& object, bool answer) {
        asked = &object;
        return answer;
    }
    bool quiet(const CNqClass& object) {
        asked = &object;
        return object.ged_Get_Error_Detail().size() == 0;
    }

    std::vector<double> numbers() const {
        std::vector<double> all;
        const auto dense = [&](const Matrix<Real>& matrix) {
            all.push_back(matrix.mh());
            for (int i = 0; i < matrix.mh(); ++i)
                for (int j = 0; j < matrix.mw(); ++j) all.push_back(double(matrix[i][j]));
        };
        const auto vector = [&](const auto& list) {
            all.push_back(list.vs());
            for (int i = 0; i < list.vs(); ++i) all.push_back(double(list[i]));
        };
        for (const auto* matrix : {&a, &b, &x, &y, &z}) dense(*matrix);
        for (const auto* list : {&v, &w, &u}) vector(*list);
        vector(s2), vector(l), vector(r), vector(band), vector(band_symmetric), vector(d);
        vector(perm);
        Matrix<Real> full;
        for (const auto* sparse : {&m, &m2}) sparse->ex(&full), dense(full);
        sm.ex(&full), dense(full);
        Vector<Real> whole;
        sv.ex(&whole), vector(whole);
        for (int i = 0; i < grown.nee(); ++i) all.push_back(double(grown[i]));
        all.push_back(columns.nee()), all.push_back(rows.nee());
        all.push_back(set.ne()), all.push_back(queue.ne());
        all.push_back(count), all.push_back(rank), all.push_back(double(number));
        return all;
    }
};

bool are_close(const std::vector<double>& a, const std::vector<double>& b, double tolerance) {
    if (a.size() != b.size()) return false;
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (a[k] == b[k] || (std::isnan(a[k]) && std::isnan(b[k]))) continue;
        if (!(std::abs(a[k] - b[k]) <= tolerance * (1 + std::abs(b[k])))) return false;
    }
    return true;
}

template <class Real>
struct Operation {
    std::string name;
    std::function<bool(Things<Real>&)> run;
    bool can_be_repeated = true;  // not when it uses up its input, or draws with the clock's seed
};

template <class Real>
void refuse_every_request(const Operation<Real>& operation) {
    SCOPED_TRACE(operation.name);
    constexpr double tolerance = std::is_same_v<Real, double> ? 1e-7 : 1e-2;
    constexpr long kMost = 2000;
    std::vector<double> wanted;
    {
        Things<Real> things;
        ASSERT_TRUE(operation.run(things)) << things.asked->ged_Get_Error_Detail().c_str();
        wanted = things.numbers();
    }
    for (const Refusal refusal : {Refusal::one, Refusal::all_from_there}) {
        bool was_refused = true;
        for (long k = 1; was_refused; ++k) {
            SCOPED_TRACE(testing::Message()
                         << "request " << k
                         << (refusal == Refusal::one ? "" : " and all later ones"));
            ASSERT_LT(k, kMost);
            const long before = blocks_held();
            bool answer = false, has_detail = false, ends = true, agrees = true, works = true;
            {
                Things<Real> things;
                refuse_request(k, refusal);
                try {
                    answer = operation.run(things);
                } catch (...) {
                    ends = false;
                }
                was_refused = end_refusals();
                has_detail = things.asked->ged_Get_Error_Detail().size() > 0;
                if (answer) {
                    const std::vector<double> numbers = things.numbers();
                    agrees = operation.can_be_repeated ? are_close(numbers, wanted, tolerance)
                                                       : numbers.size() == wanted.size();
                }
                if (!answer && operation.can_be_repeated) {
                    operation.run(things);
                    works = are_close(things.numbers(), wanted, tolerance);
                }
            }
            const long after = blocks_held();
            EXPECT_TRUE(ends) << "an exception left it";
            EXPECT_TRUE(answer || was_refused) << "it failed without a refusal";
            EXPECT_TRUE(answer || has_detail) << "a failure without a detail";
            EXPECT_TRUE(agrees) << "it answered with something else";
            EXPECT_TRUE(works) << "asked again it gave something else";
            EXPECT_EQ(after, before) << "leaked";
            if (!ends || agrees + works + (answer || has_detail) < 3 || after != before) return;
        }
    }
}

// The first failures make the frame's own lasting things.
class AllocationEnvironment : public testing::Environment {
    void SetUp() override {
        CNqMatrix matrix;
        matrix.c_Create(-1, 1);
    }
};
const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new AllocationEnvironment);

template <class Real>
class Allocation : public testing::Test {};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(Allocation, Reals);

// T: the things; says(object, answer) for operations that answer, quiet(object) for those that do
// not.
#define NEQUAR_ASK(object, call) [](T& t) { return t.says(t.object, t.object.call); }
#define NEQUAR_DO(object, call) [](T& t) { return t.object.call, t.quiet(t.object); }

template <class Real>
void refuse_in(const std::vector<Operation<Real>>& operations) {
    for (const Operation<Real>& operation : operations) refuse_every_request(operation);
}

TYPED_TEST(Allocation, Frame) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"create", NEQUAR_DO(x, c_Create(30, 40, TypeParam(1)))},
        {"copy", NEQUAR_DO(x, cp_Copy(&t.a))},
        {"column", [](T& t) { return t.a.gc_Get_Column(1, 0, kOrder, &t.w), t.quiet(t.a); }},
        {"append", NEQUAR_ASK(grown, ap_Append(&t.v, kOrder))},
        {"append columns", NEQUAR_ASK(columns, ap_Append(&t.a, kOrder))},
        {"append rows", NEQUAR_ASK(rows, ap_Append(&t.a, kOrder))},
        {"set", [](T& t) { return t.says(t.set, t.set.c_Create(7) != nullptr); }},
        {"queue", NEQUAR_ASK(queue, c_Create(5, kOrder, TypeParam(1)))},
        {"rank", NEQUAR_ASK(ranker, fklbp(t.v, 0, kOrder, 5, t.number, nullptr, &t.perm))},
    });
}

TYPED_TEST(Allocation, Algebra) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"product", NEQUAR_DO(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.x))},
        {"product in place", NEQUAR_DO(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.a))},
        {"three products", NEQUAR_DO(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.a, &t.x))},
        {"product with a vector", NEQUAR_DO(algebra, mmv_Multiply_Matrix_Vector(&t.a, &t.v, &t.v))},
        {"product with a diagonal",
         NEQUAR_DO(algebra, mmdt_Multiply_Matrix_Dmatrix_Tmatrix(&t.a, &t.v, &t.b, &t.x))},
        {"sum", NEQUAR_DO(algebra, amtw_Add_Matrix_Tmatrix_with_Weight(&t.a, &t.b, 2, 3, &t.b))},
        {"transpose", NEQUAR_DO(algebra, tpm_Transpose_Matrix(&t.a, &t.a))},
        {"orthogonalize", NEQUAR_DO(algebra, gso_Gram_Schmidt_Orthogonalization(&t.a, &t.x))},
        {"vector sum",
         NEQUAR_DO(algebra, avvw_Add_Vector_Vector_with_Weight(&t.v, &t.v, 1, 2, &t.w))},
        {"triangular solve", NEQUAR_ASK(algebra, slet_Solve_Linear_Equation_for_Triangular_matrix(
                                                     true, &t.a, &t.b, &t.a))},
        {"triangular inverse",
         NEQUAR_ASK(algebra, imt_Inverse_Matrix_for_Triangular_matrix(false, &t.a, &t.x))},
        {"triangular product",
         [](T& t) {
             t.l.i_Import(&t.a);
             if (!t.quiet(t.l)) return false;
             return t.says(t.algebra, t.algebra.mll_Multiply_Lmatrix_Lmatrix(&t.l, &t.l, &t.l));
         },
         false},
        {"permute", NEQUAR_DO(algebra, opr_Permute_Rows(&t.a, &t.reversal))},
    });
}

TYPED_TEST(Allocation, Structured) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"symmetric", NEQUAR_DO(s2, i_Import(&t.a))},
        {"symmetric out", [](T& t) { return t.s.e_Export(&t.x), t.quiet(t.s); }},
        {"lower", NEQUAR_DO(l, i_Import(&t.a))},
        {"band", NEQUAR_DO(band, i_Import(&t.a, 20, 30))},
        {"band copy",
         [](T& t) {
             MatrixBand<TypeParam> from;
             from.i_Import(&t.a, 20, 30);
             if (!t.quiet(from)) t.asked = &t.band, t.band.c_Create(0, 0, 0, 0);
             t.band.cp_Copy(&from);
             return t.quiet(t.band);
         }},
        {"band symmetric", NEQUAR_DO(band_symmetric, i_Import(&t.s, 20))},
        {"diagonal", NEQUAR_DO(d, i_Import(&t.a))},
        {"Toeplitz", NEQUAR_DO(toeplitz, ex_Export(&t.x, &t.s2, &t.w))},
        {"Trench", NEQUAR_ASK(toeplitz, fimt_Find_Inverse_Matrix_by_Trench(&t.x, &t.s2))},
        {"Levinson", NEQUAR_ASK(toeplitz, slel_Solve_Linear_Equation_by_Levinson(t.v))},
        {"Durbin",
         NEQUAR_ASK(toeplitz, u_sywd_Solve_Yule_Walker_equation_by_Durbin(t.v, &t.w, nullptr))},
        {"Vandermonde", NEQUAR_ASK(vandermonde, im_Import(t.v))},
    });
}

TYPED_TEST(Allocation, Factorization) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"LU", NEQUAR_ASK(tool, dluc_Decompose_into_LU_matrices_by_Crout(&t.a, &t.l, &t.r, &t.perm,
                                                                         t.count))},
        {"LDU", NEQUAR_ASK(tool, dluc_Decompose_into_LU_matrices_by_Crout(&t.a, &t.l, &t.d, &t.r,
                                                                          &t.perm, t.count))},
        {"LUP", NEQUAR_ASK(tool, dlup_Decompose_into_LU_matrices_with_Partial_pivoting(
                                     &t.a, &t.l, &t.r, &t.perm, t.count))},
        {"Cholesky", NEQUAR_ASK(tool, dch_Decompose_matrix_by_Cholesky_algorithm(&t.s, &t.l))},
        {"determinant", NEQUAR_ASK(tool, d_Determinant(&t.s, t.number))},
        {"condition", NEQUAR_ASK(tool, ecn_Estimate_Condition_Number(&t.a, t.number))},
        {"QR",
         NEQUAR_ASK(tool, dqrh_Decompose_into_QR_matrices_based_on_Householder(&t.a, &t.x, &t.r))},
        {"QL",
         NEQUAR_ASK(tool, dqlh_Decompose_into_QL_matrices_based_on_Householder(&t.a, &t.x, &t.y))},
        {"RQ",
         NEQUAR_ASK(tool, drqh_Decompose_into_RQ_matrices_based_on_Householder(&t.a, &t.x, &t.y))},
        {"LQ",
         NEQUAR_ASK(tool, dlqh_Decompose_into_LQ_matrices_based_on_Householder(&t.a, &t.l, &t.y))},
        {"pivoted QR", NEQUAR_ASK(tool, dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
                                            &t.b, &t.x, &t.y, &t.perm, t.count, t.rank))},
        {"complete orthogonal", NEQUAR_ASK(tool, dco_Decompose_matrix_Complete_Orthogonal_algorithm(
                                                     &t.a, &t.x, &t.l, &t.y, t.rank))},
        {"Hessenberg", NEQUAR_ASK(tool, dhr_Do_Hessenberg_Reduction(&t.b, &t.x, &t.y))},
        {"bidiagonal", NEQUAR_ASK(tool, bdm_Bidiagonalize_Matrix(&t.b, &t.x, &t.band, &t.y))},
        {"singular values",
         NEQUAR_ASK(tool, dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                              &t.b, &t.x, &t.d, &t.y, 1000, t.count))},
        {"reconstruction", NEQUAR_ASK(tool, rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
                                                &t.a, TypeParam(0.1), &t.x))},
        {"Jacobi", NEQUAR_ASK(tool, devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
                                        &t.s, &t.x, &t.d))},
        {"tridiagonal QR",
         NEQUAR_ASK(tool, devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
                              &t.s, &t.x, &t.d, 1000, t.count))},
        {"tridiagonal", NEQUAR_ASK(tool, tdm_Tridiagonalize_Matrix(&t.s, &t.x, &t.band))},
        {"QR of tridiagonal",
         NEQUAR_ASK(tool,
                    dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(&t.s, &t.x, &t.band))},
        {"generalized",
         NEQUAR_ASK(tool, dgea_Do_Generalized_Eigen_Analysis(&t.s, &t.s, &t.x, &t.d))},
        {"rank", NEQUAR_ASK(tool, rsv_Rank_based_on_Singular_Value_decomposition(
                                      &t.a, TypeParam(1e-4), t.rank))},
        {"rank by eigenvalues", NEQUAR_ASK(tool, rev_Rank_based_on_Eigen_Value_decomposition(
                                                     &t.a, TypeParam(1e-4), t.rank))},
        {"rank by QR",
         NEQUAR_ASK(tool, rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&t.a, t.rank))},
        {"null space",
         NEQUAR_ASK(tool, fin_Find_Input_Null_vector_space(&t.a, TypeParam(0.9), t.rank, &t.x,
                                                           nullptr, nullptr, nullptr))},
        {"homogeneous", NEQUAR_ASK(tool, shle_Solve_Homogeneous_Linear_Equation(&t.a, &t.w))},
    });
}

TYPED_TEST(Allocation, Solvers) {
    using T = Things<TypeParam>;
    std::vector<Operation<TypeParam>> operations = {
        {"LUP", NEQUAR_ASK(tool, slup_Solve_based_on_LUP(&t.a, &t.b, &t.x))},
        {"pseudo-inverse",
         NEQUAR_ASK(tool, pisv_Pseudo_Inverse_matrix_based_on_SVD(&t.a, TypeParam(1e-4), &t.x))},
        {"constrained", NEQUAR_ASK(tool, shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(
                                             &t.a, &t.b, TypeParam(0.5), &t.w))},
        {"in a range", NEQUAR_ASK(tool, shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
                                            &t.a, &t.b, TypeParam(1e-3), &t.w, &t.u))},
    };
    // Dense ones also onto their own right-hand sides.
    for (int code = 0; code < 10; ++code) {
        operations.push_back(
            {"solve by " + std::to_string(code), [code](T& t) {
                 return t.says(t.tool, t.tool.sle_Solve_Linear_Equation(code, &t.s, &t.b, &t.x));
             }});
        operations.push_back({"invert by " + std::to_string(code), [code](T& t) {
                                  return t.says(t.tool, t.tool.im_Inverse_Matrix(code, &t.s, &t.x));
                              }});
        if (code < 7)
            operations.push_back({"solve in place by " + std::to_string(code), [code](T& t) {
                                      return t.says(t.tool, t.tool.sle_Solve_Linear_Equation(
                                                                code, &t.a, &t.b, &t.b));
                                  }});
    }
    refuse_in(operations);
}

TYPED_TEST(Allocation, Sparse) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"create", NEQUAR_ASK(m, czm(30, 40, 50))},
        {"identity", NEQUAR_ASK(m, cim(30, 4))},
        {"import", NEQUAR_ASK(m, im(&t.a))},
        {"export", [](T& t) { return t.says(t.m, t.m.ex(&t.x)); }},
        {"insert", NEQUAR_ASK(m, se(3, 9, TypeParam(2)))},
        {"copy", NEQUAR_ASK(m, cp_Copy(&t.m2))},
        {"sum", NEQUAR_ASK(m, amm(&t.m2))},
        {"product of vectors", NEQUAR_ASK(m, mvva(&t.sv, &t.sv))},
        {"elementwise", NEQUAR_ASK(m, mmme(&t.m2))},
        {"transpose", NEQUAR_ASK(m, t(&t.m2))},
        {"transpose in place", NEQUAR_ASK(m, t(&t.m))},
        {"block out", NEQUAR_ASK(m, gb(3, 4, 20, 30, &t.m2))},
        {"block in", NEQUAR_ASK(m, sb(0, 0, &t.m2))},
        {"column", NEQUAR_ASK(m, gc(3, 0, kOrder, &t.sv))},
        {"row", NEQUAR_ASK(m, gr(0, 3, kOrder, &t.sv))},
        {"set row", NEQUAR_ASK(m, sr(0, 3, &t.sv))},
        {"set column", NEQUAR_ASK(m, sc(3, 0, &t.sv))},
        {"symmetric from dense", NEQUAR_ASK(sm, im(&t.a, true, &t.x))},
        {"symmetric from sparse", NEQUAR_ASK(sm, im(&t.m, false, &t.x))},
        {"symmetric from packed", NEQUAR_ASK(sm, im(&t.s, &t.x))},
        {"symmetric out", NEQUAR_ASK(sm, ex(&t.m, &t.x))},
        {"symmetric update", NEQUAR_ASK(sm, mvva(&t.sv))},
        {"symmetric block", NEQUAR_ASK(sm, gb(3, 4, 20, 30, &t.m2))},
        {"vector in", NEQUAR_ASK(sv, im(&t.v))},
        {"vector part", NEQUAR_ASK(sv, g(3, 20, &t.sv))},
        {"vector set", NEQUAR_ASK(sv, s(1, &t.sv))},
    });
}

TYPED_TEST(Allocation, Statistics) {
    using T = Things<TypeParam>;
    refuse_in<TypeParam>({
        {"Gaussian numbers", NEQUAR_ASK(random, gng(0, 1, 3000, t.w)), false},
        {"Gaussian append", NEQUAR_ASK(random, ang(0, 1, 3000, t.grown)), false},
        {"transform", NEQUAR_ASK(random, ctl(t.s, t.x))},
        {"Gaussian vectors", NEQUAR_ASK(random, gvg(t.v, t.s, 20, true, t.x)), false},
        {"Gaussian columns", NEQUAR_ASK(random, avg(t.v, t.s, 20, t.columns)), false},
        {"statistics",
         NEQUAR_ASK(random, csv(t.a, true, nullptr, 0, kOrder - 1, &t.count, &t.w, &t.x))},
        {"distances", NEQUAR_ASK(random, csd(t.v, t.a, true, t.w))},
        {"density", NEQUAR_ASK(random, cpgm(t.a, true, t.v, t.s, t.w))},
        {"neighbours", NEQUAR_ASK(random, epknne(t.a, t.b, true, 3, t.w))},
        {"window", NEQUAR_ASK(random, eppwh(t.a, t.b, true, TypeParam(3), t.w))},
        {"principal components",
         [](T& t) {
             if (!t.says(t.pca, t.pca.c_Create(12, kOrder, TypeParam(0.05), TypeParam(0.1))))
                 return false;
             for (int i = 0; i < 12; ++i) {
                 std::copy_n(t.b[i], kOrder, t.sample.p());
                 if (!t.says(t.pca, t.pca.inv_INput_a_Vector(t.sample, nullptr))) return false;
             }
             return t.says(t.pca,
                           t.pca.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix());
         }},
    });
}

#undef NEQUAR_ASK
#undef NEQUAR_DO

// Printing throws what the stream's own strings would throw; nothing leaks then.
TEST(AllocationOfText, LastsAndPrints) {
    const long before = blocks_held();
    {
        CNqMatrix matrix;
        matrix.c_Create(-1, 2);
        for (long k = 1; k < 6; ++k) {
            refuse_request(k, Refusal::one);
            const CNqString message = matrix.grm_Get_Recorded_Message();
            const CNqString trace = matrix.gft_Get_Failure_Trace();
            const CNqString last = Nq_Last_Message();
            CNqString text;
            text.fm_Format("%200d", 5);
            end_refusals();
            EXPECT_TRUE(message.size() == 0 || message == "CNqMatrix::c_Create: 1");
        }
    }
    EXPECT_EQ(blocks_held(), before);
}

}  // namespace
}  // namespace nequar::test
