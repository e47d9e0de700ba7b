// Sums, transposition, conversion and the tests of structure.

#include "algebra/plain.h"

namespace {

using namespace plain;

TWINS(MatrixSumsTest);

TWIN_TEST(MatrixSumsTest, SumsIntoAnyOperand) {
    using M = nequar::Matrix<Real>;
    const nequar::AlgebraForMatrix<Real> al;
    const SumCase<M> cases[] = {
        SUM(amc_Add_Matrix_Constant(a, 3, out), a + 3),
        SUM(mmc_Multiply_Matrix_Constant(a, 3, out), 3 * a),
        SUM(amm_Add_Matrix_Matrix(a, b, out), a + b),
        SUM(amm_Add_Matrix_Matrix(a, b, c, out), a + b + c),
        SUM(amm_Add_Matrix_Matrix(a, b, c, d, out), a + b + c + d),
        SUM(smm_Subtract_Matrix_Matrix(a, b, out), a - b),
        SUM(ammw_Add_Matrix_Matrix_with_Weight(a, b, 2, -3, out), 2 * a - 3 * b),
        SUM(ammw_Add_Matrix_Matrix_with_Weight(a, b, c, 2, -3, 5, out), 2 * a - 3 * b + 5 * c),
        SUM(ammw_Add_Matrix_Matrix_with_Weight(a, b, c, d, 2, -3, 5, 7, out),
            2 * a - 3 * b + 5 * c + 7 * d),
        SUM(mmme_Multiply_Matrix_Elementwise(a, b, out), a * b)};
    for (const auto& test : cases)
        for (const auto& shape : {std::array{0, 0}, {1, 1}, {3, 0}, {40, 30}})
            for (int target = 0; target < 5; ++target) {
                const int h = shape[0], w = shape[1];
                M m[5];
                for (int i = 0; i < 4; ++i) m[i] = random_matrix<Real>(h, w, unsigned(i));
                m[4] = random_matrix<Real>(2, 5, 9);
                const M a = m[0], b = m[1], c = m[2], d = m[3];
                test.run(&m[0], &m[1], &m[2], &m[3], &m[target]);
                EXPECT_LT(largest_difference(m[target], h, w,
                                             [&](int y, int x) {
                                                 return test.expected(a[y][x], b[y][x], c[y][x],
                                                                      d[y][x]);
                                             }),
                          bound<Real>(20))
                    << test.name << " into " << target;
            }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixSumsTest, SumsWithTransposedAndDiagonal) {
    const nequar::AlgebraForMatrix<Real> al;
    for (const auto& shape : {std::array{1, 1}, {3, 0}, {5, 3}, {33, 33}, {70, 130}, {200, 40}}) {
        const int h = shape[0], w = shape[1];

        const auto A = random_matrix<Real>(h, w, 1);
        const auto B = random_matrix<Real>(w, h, 2);
        const auto d = random_vector<Real>(std::max(h, w), 3);
        const auto expected = [&](int y, int x) { return 2.0 * A[y][x] - 3.0 * B[x][y]; };
        nequar::Matrix<Real> out;
        al.amtw_Add_Matrix_Tmatrix_with_Weight(&A, &B, 2, -3, &out);
        EXPECT_LT(largest_difference(out, h, w, expected), bound<Real>(8)) << h << 'x' << w;
        out = A;
        al.amtw_Add_Matrix_Tmatrix_with_Weight(&out, &B, 2, -3, &out);
        EXPECT_LT(largest_difference(out, h, w, expected), bound<Real>(8)) << h << 'x' << w;
        out = B;
        al.amtw_Add_Matrix_Tmatrix_with_Weight(&A, &out, 2, -3, &out);
        EXPECT_LT(largest_difference(out, h, w, expected), bound<Real>(8)) << h << 'x' << w;
        if (h == w) {
            out = A;
            al.amtw_Add_Matrix_Tmatrix_with_Weight(&out, &out, 2, -3, &out);
            EXPECT_LT(largest_difference(
                          out, h, w, [&](int y, int x) { return 2.0 * A[y][x] - 3.0 * A[x][y]; }),
                      bound<Real>(8));
        }
        const auto plus_diagonal = [&](int y, int x) {
            return 2.0 * A[y][x] + (y == x ? 5.0 * d[x] : 0.0);
        };
        al.amdw_Add_Matrix_Dmatrix_with_Weight(&A, &d, 2, 5, &out);
        EXPECT_LT(largest_difference(out, h, w, plus_diagonal), bound<Real>(8));
        out = A;
        al.amdw_Add_Matrix_Dmatrix_with_Weight(&out, &d, 2, 5, &out);
        EXPECT_LT(largest_difference(out, h, w, plus_diagonal), bound<Real>(8));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixSumsTest, ShapesThatDifferAreReportedAndNothingIsTouched) {
    const nequar::AlgebraForMatrix<Real> al;
    const auto A = random_matrix<Real>(2, 3, 1);
    const auto B = random_matrix<Real>(3, 2, 2);
    const auto d = random_vector<Real>(1, 3);
    auto out = random_matrix<Real>(4, 5, 3);
    const auto kept = out;
    EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &B, &out);
    EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &A, &B, &out);
    EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &A, &A, &B, &out);
    EXPECT_REFUSED(smm_Subtract_Matrix_Matrix, &A, &B, &out);
    EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &B, 1, 2, &out);
    EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &A, &B, 1, 2, 3, &out);
    EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &A, &A, &B, 1, 2, 3, 4, &out);
    EXPECT_REFUSED(mmme_Multiply_Matrix_Elementwise, &A, &B, &out);
    EXPECT_REFUSED(amtw_Add_Matrix_Tmatrix_with_Weight, &A, &A, 1, 2, &out);
    EXPECT_REFUSED(amdw_Add_Matrix_Dmatrix_with_Weight, &A, &d, 1, 2, &out);
    EXPECT_REFUSED(cdm_Convert_Dmatrix_to_Matrix, 2, 3, &d, &out);
    EXPECT_REFUSED(tpms_Transpose_Matrix_Square, &out);
}

TWIN_TEST(MatrixSumsTest, TranspositionsDiagonalsAndIdentities) {
    const nequar::AlgebraForMatrix<Real> al;
    nequar::Matrix<Real> out;
    for (const auto& shape :
         {std::array{0, 0}, {1, 1}, {1, 9}, {3, 0}, {0, 3}, {17, 17}, {70, 45}}) {
        const int h = shape[0], w = shape[1];

        const auto A = random_matrix<Real>(h, w, 1);
        al.tpm_Transpose_Matrix(&A, &out);
        EXPECT_EQ(largest_difference(out, w, h, transpose_of(A)), 0);
        auto B = A;
        al.tpm_Transpose_Matrix(&B, &B);
        EXPECT_TRUE(B == out);
        if (h == w) {
            B = A;
            al.tpms_Transpose_Matrix_Square(&B);
            EXPECT_TRUE(B == out);
        }
    }
    const auto d = vector<Real>({1, 2, 3, 4});
    out.c_Create(3, 5, 9);
    al.cdm_Convert_Dmatrix_to_Matrix(3, 5, &d, &out);
    EXPECT_EQ(largest_difference(out, 3, 5, diagonal_of(d)), 0);
    al.cdm_Convert_Dmatrix_to_Matrix(5, 2, &d, &out);
    EXPECT_EQ(largest_difference(out, 5, 2, [](int y, int x) { return y == x ? x + 1.0 : 0.0; }),
              0);
    EXPECT_TRUE(al.ci_Create_Identity_matrix(3, &out));
    EXPECT_TRUE(out == matrix<Real>(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_TRUE(al.ci_Create_Identity_matrix(0, &out));
    EXPECT_TRUE(never_failed(al));

    EXPECT_FALSE(al.ci_Create_Identity_matrix(-1, &out));
    al.cdm_Convert_Dmatrix_to_Matrix(2, -1, &d, &out);
    EXPECT_EQ(out.mh(), 0);
    EXPECT_STREQ(al.ged_Get_Error_Detail().c_str(), "cannot size the output");
}

TWIN_TEST(MatrixSumsTest, RawArraysInBothOrdersAndTypes) {
    const nequar::AlgebraForMatrix<Real> al;
    const double doubles[] = {1, 2, 3, 4, 5, 6};
    const float floats[] = {1, 2, 3, 4, 5, 6};
    CNqMatrix d;
    CNqMatrixFloat f;
    al.em_Export_Matrix(false, 2, 3, doubles, &d);
    EXPECT_EQ(d[1][0], 2);
    EXPECT_TRUE(d == matrix<double>(2, 3, {1, 3, 5, 2, 4, 6}));
    al.em_Export_Matrix(false, 2, 3, doubles, &f);
    EXPECT_TRUE(f == matrix<float>(2, 3, {1, 3, 5, 2, 4, 6}));
    al.em_Export_Matrix(true, 3, 2, floats, &d);
    EXPECT_TRUE(d == matrix<double>(3, 2, {1, 2, 3, 4, 5, 6}));
    al.em_Export_Matrix(true, 3, 2, floats, &f);
    EXPECT_TRUE(f == matrix<float>(3, 2, {1, 2, 3, 4, 5, 6}));

    int h = 0, w = 0;
    std::vector<double> to_double(6);
    std::vector<float> to_float(6);
    al.im_Import_Matrix(false, &f, to_double.data(), h, w);
    EXPECT_TRUE(h == 3 && w == 2 && to_double == (std::vector<double>{1, 3, 5, 2, 4, 6}));
    al.im_Import_Matrix(false, &d, to_double.data(), h, w);
    EXPECT_EQ(to_double, (std::vector<double>{1, 3, 5, 2, 4, 6}));
    al.im_Import_Matrix(true, &d, to_float.data(), h, w);
    EXPECT_EQ(to_float, (std::vector<float>{1, 2, 3, 4, 5, 6}));
    al.im_Import_Matrix(false, &f, to_float.data(), h, w);
    EXPECT_EQ(to_float, (std::vector<float>{1, 3, 5, 2, 4, 6}));

    // Arrays within the matrix itself, larger than the scratch on the stack.
    const auto A = random_matrix<Real>(50, 40, 1);
    auto B = A;
    al.im_Import_Matrix(false, &B, B.p()[0], h, w);
    for (int i = 0; i < 2000; ++i) ASSERT_EQ(B[0][i], A[i % 50][i / 50]);
    al.em_Export_Matrix(false, 50, 40, B.p()[0], &B);
    EXPECT_TRUE(B == A);
    al.em_Export_Matrix(true, 49, 40, B.p()[1], &B);
    EXPECT_EQ(largest_difference(B, 49, 40, [&](int y, int x) { return A[y + 1][x]; }), 0);
    EXPECT_TRUE(never_failed(al));
    al.em_Export_Matrix(true, -1, 2, doubles, &d);
    EXPECT_STREQ(al.ged_Get_Error_Detail().c_str(), "cannot size the output");
}

TWIN_TEST(MatrixSumsTest, StructureOfSquareMatricesOnly) {
    const nequar::AlgebraForMatrix<Real> al;
    auto A = matrix<Real>(2, 2, {4, 1, 1, 3});
    EXPECT_TRUE(al.isy_Is_Symmetric_matrix(&A, 0, false));
    EXPECT_TRUE(al.ispd_Is_Symmetric_and_Positive_Definite_matrix(&A, 0, false));
    EXPECT_TRUE(al.isdd_Is_Strictly_Diagonal_Dominant(&A));
    EXPECT_FALSE(al.il_Is_Lower_matrix(&A, 0, false));
    EXPECT_TRUE(al.iu_Is_Upper_matrix(&A, Real(0.25), true));
    A[0][1] = 0;
    EXPECT_TRUE(al.il_Is_Lower_matrix(&A, 0, false));
    EXPECT_FALSE(al.iu_Is_Upper_matrix(&A, 0, false));
    EXPECT_FALSE(al.isy_Is_Symmetric_matrix(&A, 0, false));
    EXPECT_FALSE(al.ispd_Is_Symmetric_and_Positive_Definite_matrix(&A, Real(0.5), false));
    nequar::Matrix<Real> wide;
    wide.c_Create(2, 3, 0);
    EXPECT_FALSE(al.il_Is_Lower_matrix(&wide, 1, false));
    EXPECT_FALSE(al.iu_Is_Upper_matrix(&wide, 1, false));
    EXPECT_FALSE(al.isy_Is_Symmetric_matrix(&wide, 1, false));
    EXPECT_FALSE(al.ispd_Is_Symmetric_and_Positive_Definite_matrix(&wide, 1, false));
    EXPECT_FALSE(al.isdd_Is_Strictly_Diagonal_Dominant(&wide));
    EXPECT_TRUE(never_failed(al));
}

TEST(MatrixAlgebra, Names) {
    EXPECT_STREQ(LCNqAlgebra_for_Matrix().gcn_Get_Class_Name().c_str(), "LCNqAlgebra_for_Matrix");
    EXPECT_STREQ(LCNqAlgebra_for_MatrixFloat().gcn_Get_Class_Name().c_str(),
                 "LCNqAlgebra_for_MatrixFloat");
}

}  // namespace
