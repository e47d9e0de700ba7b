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
#include "support/twins.h"

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
    Vector<Real> v, w, u;
    MatrixSymmetric<Real> s, s2;
    MatrixTriangular<Real, TriangleSide::lower> l, l2;
    MatrixTriangular<Real, TriangleSide::upper> r;
    MatrixBand<Real> band, band2;
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
        s = packed_of(matrix_of<Real>(
            kOrder, kOrder, [&](int i, int j) { return i == j ? Real(2 * kOrder + i) : a[i][j]; }));
        v.c_Create(kOrder);
        reversal.c_Create(kOrder);
        columns.in_Initialize(kOrder, 0);
        rows.in_Initialize(kOrder, 0);
        m.czm(kOrder, kOrder, 0);
        m2.czm(kOrder, kOrder, 0);
        sm.czm(kOrder, 0);
        sv.czv(kOrder, 0);
        for (int i = 0; i < kOrder; ++i) {
            v[i] = Real(1) / Real(i + 1);
            reversal[i] = kOrder - 1 - i;
            m.se(i, (7 * i) % kOrder, Real(i + 1));
            m2.se(i, (5 * i) % kOrder, Real(i + 2));
            sm.se(i, (i + kOrder) / 2, Real(i - 7));
            if (i % 3 == 0) sv.se(i, Real(i + 1));
        }
        toeplitz.im_Import(kOrder, v);
        l2.i_Import(&a);
        band2.i_Import(&a, 20, 30);
        pca.c_Create(12, kOrder, Real(0.05), Real(0.1));
        for (int i = 0; i < 12; ++i) {
            Vector<Real> sample;
            b.gr_Get_Row(i, 0, kOrder, &sample);
            pca.inv_INput_a_Vector(sample, nullptr);
        }
        random.ss_Set_Seed(5);
    }

    // What the operation reported on; void ones have failed when there is a detail.
    const CNqClass* asked = &tool;
    bool has_detail() const { return asked->ged_Get_Error_Detail().size() > 0; }
    bool says(const CNqClass& object, bool answer) {
        asked = &object;
        return answer;
    }
    bool quiet(const CNqClass& object) { return says(object, true) && !has_detail(); }

    std::vector<double> numbers() const {
        std::vector<double> all;
        const auto add = [&all](int height, int width, const auto* elements) {
            all.push_back(height);
            all.insert(all.end(), elements, elements + height * width);
        };
        Matrix<Real> full, full2, full_symmetric;
        Vector<Real> whole;
        m.ex(&full);
        m2.ex(&full2);
        sm.ex(&full_symmetric);
        sv.ex(&whole);
        using Matrices = std::vector<const Matrix<Real>*>;
        for (const auto* matrix : Matrices{&a, &b, &x, &y, &z, &full, &full2, &full_symmetric})
            add(matrix->mh(), matrix->mw(), matrix->mh() > 0 ? matrix->p()[0] : nullptr);
        // The packed ones are vectors of their elements.
        using Vectors = std::vector<const Vector<Real>*>;
        for (const auto* list :
             Vectors{&v, &w, &u, &s2, &l, &r, &band, &band_symmetric, &d, &whole})
            add(list->vs(), 1, list->p());
        add(perm.vs(), 1, perm.p());
        add(grown.nee(), 1, grown.p());
        for (const int size : {columns.nee(), rows.nee(), set.ne(), queue.ne(), count, rank})
            all.push_back(size);
        all.push_back(double(number));
        return all;
    }
};

bool are_close(const std::vector<double>& found, const std::vector<double>& wanted,
               double tolerance) {
    const auto is_close = [=](double a, double b) {
        return a == b || (std::isnan(a) && std::isnan(b)) ||
               std::abs(a - b) <= tolerance * (1 + std::abs(b));
    };
    return std::equal(found.begin(), found.end(), wanted.begin(), wanted.end(), is_close);
}

template <class Real>
struct Operation {
    std::string name;
    std::function<bool(Things<Real>&)> run;
    bool can_be_repeated = true;
};

// For one that uses up its input, or draws with the clock's seed.
template <class Real>
Operation<Real> once(Operation<Real> operation) {
    operation.can_be_repeated = false;
    return operation;
}

template <class Real>
void refuse_every_request(const Operation<Real>& operation) {
    SCOPED_TRACE(operation.name);
    constexpr double tolerance = std::is_same_v<Real, double> ? 1e-7 : 1e-2;
    Matrix<Real>().c_Create(-1, 1);  // the first failure makes the frame's own lasting things
    Things<Real> undisturbed;
    ASSERT_TRUE(operation.run(undisturbed)) << undisturbed.asked->ged_Get_Error_Detail().c_str();
    const std::vector<double> wanted = undisturbed.numbers();
    for (const bool and_all_later : {false, true}) {
        bool was_refused = true;
        for (long k = 1; was_refused && !testing::Test::HasFailure(); ++k) {
            SCOPED_TRACE(testing::Message()
                         << "request " << k << (and_all_later ? " and later ones" : ""));
            ASSERT_LT(k, 2000);
            const long before = blocks_held();
            {
                Things<Real> things;
                bool answer = false, ends = true;
                refuse_request(k, and_all_later);
                try {
                    answer = operation.run(things);
                } catch (...) {
                    ends = false;
                }
                was_refused = end_refusals();
                EXPECT_TRUE(ends) << "an exception left it";
                EXPECT_TRUE(answer || was_refused) << "it failed without a refusal";
                EXPECT_TRUE(answer || things.has_detail()) << "a failure without a detail";
                if (operation.can_be_repeated) {
                    if (!answer) operation.run(things);
                    EXPECT_TRUE(are_close(things.numbers(), wanted, tolerance))
                        << (answer ? "it answered with" : "asked again it gave")
                        << " something else";
                } else if (answer) {
                    EXPECT_EQ(things.numbers().size(), wanted.size());
                }
            }
            EXPECT_EQ(blocks_held(), before) << "leaked";
        }
    }
}

TWINS(Allocation);

// Operations on one of the things t, which answer, and which do not.
#define ASK(object, call)                                               \
    Operation<Real> {                                                   \
#call, [=](auto& t) { return t.says(t.object, t.object.call); } \
    }
#define CALL(object, call)                                               \
    Operation<Real> {                                                    \
#call, [=](auto& t) { return t.object.call, t.quiet(t.object); } \
    }

template <class Real>
void refuse_in(const std::vector<Operation<Real>>& operations) {
    for (const Operation<Real>& operation : operations) refuse_every_request(operation);
}

TWIN_TEST(Allocation, Frame) {
    refuse_in<Real>({
        CALL(x, c_Create(30, 40, Real(1))),
        CALL(x, cp_Copy(&t.a)),
        CALL(a, gc_Get_Column(1, 0, kOrder, &t.w)),
        ASK(grown, ap_Append(&t.v, kOrder)),
        ASK(columns, ap_Append(&t.a, kOrder)),
        ASK(rows, ap_Append(&t.a, kOrder)),
        ASK(set, c_Create(7) != nullptr),
        ASK(queue, c_Create(5, kOrder, Real(1))),
        ASK(ranker, fklbp(t.v, 0, kOrder, 5, t.number, nullptr, &t.perm)),
    });
}

TWIN_TEST(Allocation, Algebra) {
    refuse_in<Real>({
        CALL(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.x)),
        CALL(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.a)),
        CALL(algebra, mmm_Multiply_Matrix_Matrix(&t.a, &t.b, &t.a, &t.x)),
        CALL(algebra, mmv_Multiply_Matrix_Vector(&t.a, &t.v, &t.v)),
        CALL(algebra, mmdt_Multiply_Matrix_Dmatrix_Tmatrix(&t.a, &t.v, &t.b, &t.x)),
        CALL(algebra, amtw_Add_Matrix_Tmatrix_with_Weight(&t.a, &t.b, 2, 3, &t.b)),
        CALL(algebra, tpm_Transpose_Matrix(&t.a, &t.a)),
        CALL(algebra, gso_Gram_Schmidt_Orthogonalization(&t.a, &t.x)),
        CALL(algebra, avvw_Add_Vector_Vector_with_Weight(&t.v, &t.v, 1, 2, &t.w)),
        ASK(algebra, slet_Solve_Linear_Equation_for_Triangular_matrix(true, &t.a, &t.b, &t.a)),
        ASK(algebra, imt_Inverse_Matrix_for_Triangular_matrix(false, &t.a, &t.x)),
        once(ASK(algebra, mll_Multiply_Lmatrix_Lmatrix(&t.l2, &t.l2, &t.l2))),
        CALL(algebra, opr_Permute_Rows(&t.a, &t.reversal)),
    });
}

TWIN_TEST(Allocation, Structured) {
    refuse_in<Real>({
        CALL(s2, i_Import(&t.a)),
        CALL(s, e_Export(&t.x)),
        CALL(l, i_Import(&t.a)),
        CALL(band, i_Import(&t.a, 20, 30)),
        CALL(band, cp_Copy(&t.band2)),
        CALL(band_symmetric, i_Import(&t.s, 20)),
        CALL(d, i_Import(&t.a)),
        CALL(toeplitz, ex_Export(&t.x, &t.s2, &t.w)),
        ASK(toeplitz, fimt_Find_Inverse_Matrix_by_Trench(&t.x, &t.s2)),
        ASK(toeplitz, slel_Solve_Linear_Equation_by_Levinson(t.v)),
        ASK(toeplitz, u_sywd_Solve_Yule_Walker_equation_by_Durbin(t.v, &t.w, nullptr)),
        ASK(vandermonde, im_Import(t.v)),
    });
}

TWIN_TEST(Allocation, Factorization) {
    refuse_in<Real>({
        ASK(tool, dluc_Decompose_into_LU_matrices_by_Crout(&t.a, &t.l, &t.r, &t.perm, t.count)),
        ASK(tool,
            dluc_Decompose_into_LU_matrices_by_Crout(&t.a, &t.l, &t.d, &t.r, &t.perm, t.count)),
        ASK(tool, dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&t.a, &t.l, &t.r, &t.perm,
                                                                        t.count)),
        ASK(tool, dch_Decompose_matrix_by_Cholesky_algorithm(&t.s, &t.l)),
        ASK(tool, d_Determinant(&t.s, t.number)),
        ASK(tool, ecn_Estimate_Condition_Number(&t.a, t.number)),
        ASK(tool, dqrh_Decompose_into_QR_matrices_based_on_Householder(&t.a, &t.x, &t.r)),
        ASK(tool, dqlh_Decompose_into_QL_matrices_based_on_Householder(&t.a, &t.x, &t.y)),
        ASK(tool, drqh_Decompose_into_RQ_matrices_based_on_Householder(&t.a, &t.x, &t.y)),
        ASK(tool, dlqh_Decompose_into_LQ_matrices_based_on_Householder(&t.a, &t.l, &t.y)),
        ASK(tool, dqrc_Decompose_into_QR_matrices_with_Column_pivoting(&t.b, &t.x, &t.y, &t.perm,
                                                                       t.count, t.rank)),
        ASK(tool,
            dco_Decompose_matrix_Complete_Orthogonal_algorithm(&t.a, &t.x, &t.l, &t.y, t.rank)),
        ASK(tool, dhr_Do_Hessenberg_Reduction(&t.b, &t.x, &t.y)),
        ASK(tool, bdm_Bidiagonalize_Matrix(&t.b, &t.x, &t.band, &t.y)),
        ASK(tool, dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                      &t.b, &t.x, &t.d, &t.y, 1000, t.count)),
        ASK(tool, rsv_Reconstruct_matrix_via_Singular_Value_decomposition(&t.a, Real(0.1), &t.x)),
        ASK(tool, devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(&t.s, &t.x, &t.d)),
        ASK(tool, devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(&t.s, &t.x, &t.d, 1000,
                                                                             t.count)),
        ASK(tool, tdm_Tridiagonalize_Matrix(&t.s, &t.x, &t.band)),
        ASK(tool, dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(&t.s, &t.x, &t.band)),
        ASK(tool, dgea_Do_Generalized_Eigen_Analysis(&t.s, &t.s, &t.x, &t.d)),
        ASK(tool, rsv_Rank_based_on_Singular_Value_decomposition(&t.a, Real(1e-4), t.rank)),
        ASK(tool, rev_Rank_based_on_Eigen_Value_decomposition(&t.a, Real(1e-4), t.rank)),
        ASK(tool, rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&t.a, t.rank)),
        ASK(tool, fin_Find_Input_Null_vector_space(&t.a, Real(0.9), t.rank, &t.x, nullptr, nullptr,
                                                   nullptr)),
        ASK(tool, shle_Solve_Homogeneous_Linear_Equation(&t.a, &t.w)),
    });
}

TWIN_TEST(Allocation, Solvers) {
    refuse_in<Real>({
        ASK(tool, slup_Solve_based_on_LUP(&t.a, &t.b, &t.x)),
        ASK(tool, pisv_Pseudo_Inverse_matrix_based_on_SVD(&t.a, Real(1e-4), &t.x)),
        ASK(tool,
            shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&t.a, &t.b, Real(0.5), &t.w)),
        ASK(tool, shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(&t.a, &t.b, Real(1e-3),
                                                                             &t.w, &t.u)),
    });
    for (int code = 0; code < 10; ++code) {
        SCOPED_TRACE(code);
        refuse_in<Real>({
            ASK(tool, sle_Solve_Linear_Equation(code, &t.s, &t.b, &t.x)),
            ASK(tool, im_Inverse_Matrix(code, &t.s, &t.x)),
        });
        // Dense ones also onto their own right-hand sides.
        if (code < 7)
            refuse_in<Real>({ASK(tool, sle_Solve_Linear_Equation(code, &t.a, &t.b, &t.b))});
    }
}

TWIN_TEST(Allocation, Sparse) {
    refuse_in<Real>({
        ASK(m, czm(30, 40, 50)),
        ASK(m, cim(30, 4)),
        ASK(m, im(&t.a)),
        ASK(m, ex(&t.x)),
        ASK(m, se(3, 9, Real(2))),
        ASK(m, cp_Copy(&t.m2)),
        ASK(m, amm(&t.m2)),
        ASK(m, mvva(&t.sv, &t.sv)),
        ASK(m, mmme(&t.m2)),
        ASK(m, t(&t.m2)),
        ASK(m, t(&t.m)),
        ASK(m, gb(3, 4, 20, 30, &t.m2)),
        ASK(m, sb(0, 0, &t.m2)),
        ASK(m, gc(3, 0, kOrder, &t.sv)),
        ASK(m, gr(0, 3, kOrder, &t.sv)),
        ASK(m, sr(0, 3, &t.sv)),
        ASK(m, sc(3, 0, &t.sv)),
        ASK(sm, im(&t.a, true, &t.x)),
        ASK(sm, im(&t.m, false, &t.x)),
        ASK(sm, im(&t.s, &t.x)),
        ASK(sm, ex(&t.m, &t.x)),
        ASK(sm, mvva(&t.sv)),
        ASK(sm, gb(3, 4, 20, 30, &t.m2)),
        ASK(sv, im(&t.v)),
        ASK(sv, g(3, 20, &t.sv)),
        ASK(sv, s(1, &t.sv)),
    });
}

TWIN_TEST(Allocation, Statistics) {
    refuse_in<Real>({
        once(ASK(random, gng(0, 1, 3000, t.w))),
        once(ASK(random, ang(0, 1, 3000, t.grown))),
        ASK(random, ctl(t.s, t.x)),
        once(ASK(random, gvg(t.v, t.s, 20, true, t.x))),
        once(ASK(random, avg(t.v, t.s, 20, t.columns))),
        ASK(random, csv(t.a, true, nullptr, 0, kOrder - 1, &t.count, &t.w, &t.x)),
        ASK(random, csd(t.v, t.a, true, t.w)),
        ASK(random, cpgm(t.a, true, t.v, t.s, t.w)),
        ASK(random, epknne(t.a, t.b, true, 3, t.w)),
        ASK(random, eppwh(t.a, t.b, true, Real(3), t.w)),
        ASK(pca, c_Create(12, kOrder, Real(0.05), Real(0.1))),
        ASK(pca, inv_INput_a_Vector(t.v, nullptr)),
        ASK(pca, cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix()),
    });
}

#undef ASK
#undef CALL

// Printing throws what the stream's own strings would throw; nothing leaks then.
TEST(AllocationOfText, LastsAndPrints) {
    CNqMatrix matrix;
    matrix.c_Create(-1, 2);
    const long before = blocks_held();
    for (long k = 1; k < 6; ++k) {
        refuse_request(k, false);
        const CNqString message = matrix.grm_Get_Recorded_Message();
        const CNqString trace = matrix.gft_Get_Failure_Trace();
        const CNqString last = Nq_Last_Message();
        CNqString text;
        text.fm_Format("%200d", 5);
        end_refusals();
        EXPECT_TRUE(message.size() == 0 || message == "CNqMatrix::c_Create: 1");
    }
    EXPECT_EQ(blocks_held(), before);
}

}  // namespace
}  // namespace nequar::test
