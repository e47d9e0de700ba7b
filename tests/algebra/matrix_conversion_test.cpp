// Transposition, conversion and the tests of structure.
#include "algebra/plain.h"

namespace nequar::test {
namespace {

TWINS(MatrixConversion);

TWIN_TEST(MatrixConversion, TranspositionsDiagonalsAndIdentities) {
    const AlgebraForMatrix<Real> al;
    Matrix<Real> out;
    for (const auto& [h, w] :
         {std::pair(0, 0), {1, 1}, {1, 9}, {3, 0}, {0, 3}, {17, 17}, {70, 45}}) {
        const auto A = random_matrix<Real>(h, w, 1);
        al.tpm_Transpose_Matrix(&A, &out);
        EXPECT_TRUE(out == transposed(A));
        auto B = A;
        al.tpm_Transpose_Matrix(&B, &B);
        EXPECT_TRUE(B == out);
        if (h == w) al.tpms_Transpose_Matrix_Square(&(B = A));
        EXPECT_TRUE(B == out);
        const auto d = random_vector<Real>(h + w, 2);
        al.cdm_Convert_Dmatrix_to_Matrix(h, w, &d, &out);
        EXPECT_TRUE(out == diagonal_of(d, h, w));
        EXPECT_TRUE(al.ci_Create_Identity_matrix(w, &out));
        EXPECT_TRUE(out == identity_of<Real>(w));
    }
    EXPECT_TRUE(never_failed(al));

    EXPECT_FALSE(al.ci_Create_Identity_matrix(-1, &out));
    const auto d = random_vector<Real>(4, 1);
    al.cdm_Convert_Dmatrix_to_Matrix(2, -1, &d, &out);
    EXPECT_EQ(out.mh(), 45);
    EXPECT_TRUE(fails_with(al, "cannot size the output", false));
}

TWIN_TEST(MatrixConversion, RawArraysInBothOrdersAndTypes) {
    const AlgebraForMatrix<Real> al;
    const auto check = [&](auto* const src, auto to, const auto& by_rows) {
        // By rows it is 3 x 2, by columns the transpose.
        std::remove_cvref_t<decltype(by_rows)> m;
        al.em_Export_Matrix(true, 3, 2, src, &m);
        EXPECT_TRUE(m == by_rows);
        al.em_Export_Matrix(false, 2, 3, src, &m);
        EXPECT_TRUE(m == transposed(by_rows));
        for (const bool rows : {true, false}) {
            int h = 0, w = 0;
            decltype(to) array[6] = {};
            al.im_Import_Matrix(rows, rows ? &by_rows : &m, array, h, w);
            EXPECT_TRUE(h == (rows ? 3 : 2) && w == (rows ? 2 : 3));
            EXPECT_TRUE(std::equal(array, array + 6, src));
        }
    };
    const double doubles[] = {1, 2, 3, 4, 5, 6};
    const float floats[] = {1, 2, 3, 4, 5, 6};
    const auto expected = matrix_of<Real>(3, 2, {1, 2, 3, 4, 5, 6});
    check(doubles, 0.0F, expected);
    check(floats, 0.0, expected);

    // Arrays within the matrix itself, larger than the scratch on the stack.
    const auto A = random_matrix<Real>(50, 40, 1);
    auto B = A;
    int h = 0, w = 0;
    al.im_Import_Matrix(false, &B, B.p()[0], h, w);
    for (int i = 0; i < 2000; ++i) ASSERT_EQ(B[0][i], A[i % 50][i / 50]);
    al.em_Export_Matrix(false, 50, 40, B.p()[0], &B);
    EXPECT_TRUE(B == A);
    al.em_Export_Matrix(true, 49, 40, B.p()[1], &B);
    EXPECT_TRUE(B == matrix_of<Real>(49, 40, [&](int y, int x) { return A[y + 1][x]; }));
    EXPECT_TRUE(never_failed(al));
    al.em_Export_Matrix(true, -1, 2, doubles, &B);
    EXPECT_TRUE(fails_with(al, "cannot size the output", false));
}

TWIN_TEST(MatrixConversion, StructureOfSquareMatricesOnly) {
    const AlgebraForMatrix<Real> al;
    const auto symmetric = matrix_of<Real>(2, 2, {4, 1, 1, 3}), wide = constant_matrix<Real>(2, 3);
    const auto lower = matrix_of<Real>(2, 2, {4, 0, 1, 3}), upper = transposed(lower);
    EXPECT_TRUE(al.il_Is_Lower_matrix(&lower, 0, false) && al.iu_Is_Upper_matrix(&upper, 0, false));
    EXPECT_TRUE(al.il_Is_Lower_matrix(&upper, Real(0.25), true));
    EXPECT_TRUE(al.isy_Is_Symmetric_matrix(&symmetric, 0, false));
    EXPECT_TRUE(al.ispd_Is_Symmetric_and_Positive_Definite_matrix(&symmetric, 0, false));
    EXPECT_TRUE(al.isdd_Is_Strictly_Diagonal_Dominant(&symmetric));
    EXPECT_FALSE(al.isdd_Is_Strictly_Diagonal_Dominant(&wide));
    EXPECT_FALSE(al.il_Is_Lower_matrix(&upper, Real(0.5), false) ||
                 al.il_Is_Lower_matrix(&wide, 1, false));
    for (const auto* const A : {&lower, &wide})
        EXPECT_FALSE(al.iu_Is_Upper_matrix(A, Real(0.5), false) ||
                     al.isy_Is_Symmetric_matrix(A, Real(0.5), false) ||
                     al.ispd_Is_Symmetric_and_Positive_Definite_matrix(A, Real(0.5), false));
    EXPECT_TRUE(never_failed(al));
}

}  // namespace
}  // namespace nequar::test
