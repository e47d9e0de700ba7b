#include "nequar_algebra/frame/matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

// Element (y, x) is 100 y + x.
template <class Matrix>
Matrix counted(int height, int width) {
    Matrix m;
    m.c_Create(height, width);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            m[y][x] = static_cast<std::remove_reference_t<decltype(m[0][0])>>(100 * y + x);
    return m;
}

template <class Matrix>
void expect_contiguous_rows(const Matrix& m) {
    for (int y = 0; y < m.mh(); ++y)
        EXPECT_EQ(m.p()[y], m.p()[0] + std::ptrdiff_t(y) * m.mw()) << y;
}

template <class Matrix>
class MatrixOf : public testing::Test {};
using Matrices = testing::Types<CNqMatrix, CNqMatrixFloat, CNqMatrixInt>;
TYPED_TEST_SUITE(MatrixOf, Matrices);

TYPED_TEST(MatrixOf, LiesInOneBlockOfRowsAndAnswersItsShape) {
    TypeParam m = counted<TypeParam>(3, 5);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(m.p()[0]) % 64, 0u);
    expect_contiguous_rows(m);
    int width = 0;
    int height = 0;
    m.ms_Matrix_Width_Height(width, height);
    EXPECT_EQ(width, 5);
    EXPECT_EQ(height, 3);
    EXPECT_EQ(m.p()[0][7], 102);
    m.c_Create(2, 2, 9);
    expect_contiguous_rows(m);
    EXPECT_EQ(m[1][1], 9);
}

TYPED_TEST(MatrixOf, CopiesMovesAndCompares) {
    TypeParam m = counted<TypeParam>(4, 3);
    const TypeParam copy = m;
    EXPECT_TRUE(copy == m);
    m[3][2] = 0;
    EXPECT_FALSE(copy == m);
    EXPECT_EQ(copy[3][2], 302);

    TypeParam target = counted<TypeParam>(7, 7);
    target = std::move(m);
    EXPECT_EQ(target.mh(), 4);
    expect_contiguous_rows(target);
    EXPECT_EQ(m.mh(), 0);
    EXPECT_EQ(m.mw(), 0);
    EXPECT_EQ(m.p()[0], nullptr);
    m = copy;
    EXPECT_TRUE(m == copy);
    const TypeParam& same = m;
    m = same;
    EXPECT_TRUE(m == copy);
    // Equal elements in another shape are another matrix.
    EXPECT_FALSE(counted<TypeParam>(1, 0) == counted<TypeParam>(0, 1));

    std::vector<TypeParam> matrices;
    for (int i = 0; i < 20; ++i) matrices.push_back(counted<TypeParam>(i, i));
    EXPECT_EQ(matrices[19][18][18], 1818);
    expect_contiguous_rows(matrices[19]);
}

TYPED_TEST(MatrixOf, KeepsItsStorageAndAnEqualShapeItsElements) {
    TypeParam m = counted<TypeParam>(6, 4);
    const auto* const block = m.p()[0];
    m.c_Create(6, 4);
    EXPECT_EQ(m[5][3], 503);
    for (const auto& [height, width] : {std::pair(2, 12), {12, 2}, {1, 1}, {0, 3}, {6, 4}}) {
        m.c_Create(height, width);
        EXPECT_EQ(m.mh(), height);
        EXPECT_EQ(m.mw(), width);
        expect_contiguous_rows(m);
        EXPECT_EQ(m.p()[0], height > 0 ? block : nullptr);
    }
}

TYPED_TEST(MatrixOf, RefusesSizesThatCannotBeAndStaysAsItWas) {
    for (TypeParam m : {TypeParam(), counted<TypeParam>(2, 2)}) {
        const TypeParam before = m;
        for (const auto& [height, width, detail] : {std::tuple(-1, 2, "1"),
                                                    {2, -1, "1"},
                                                    {INT_MIN, INT_MIN, "1"},
                                                    {INT_MAX, INT_MAX, "1"},
                                                    {1 << 15, INT_MAX, "2"}}) {
            EXPECT_EQ(m.c_Create(height, width), nullptr);
            EXPECT_EQ(m.ged_Get_Error_Detail(), detail);
            EXPECT_EQ(m.c_Create(height, width, 7), nullptr);
            EXPECT_TRUE(m == before);
            expect_contiguous_rows(m);
            EXPECT_EQ(m.p()[0] == nullptr, m.mh() == 0);
        }
    }
}

TYPED_TEST(MatrixOf, WrapsCoordinates) {
    TypeParam m;
    m.c_Create(4, 3);
    for (const auto& [given, column, row] : {std::tuple(0, 0, 0),
                                             {2, 2, 2},
                                             {3, 0, 3},
                                             {-1, 2, 3},
                                             {INT_MAX, 1, 3},
                                             {INT_MIN, 1, 0}}) {
        int x = given;
        int y = given;
        m.mcc_Modify_Coordinate_of_Column(x);
        m.mcr_Modify_Coordinate_of_Row(y);
        EXPECT_EQ(x, column) << given;
        EXPECT_EQ(y, row) << given;
    }
    int x = -5;
    TypeParam().mcc(x);
    EXPECT_EQ(x, 0);
}

TYPED_TEST(MatrixOf, GetsPartsOfRowsAndColumns) {
    const TypeParam m = counted<TypeParam>(4, 3);
    nequar::Vector<std::remove_cvref_t<decltype(m[0][0])>> v;
    m.gr_Get_Row(2, 1, 2, &v);
    EXPECT_EQ(v.vs(), 2);
    EXPECT_EQ(v[0], 201);
    EXPECT_EQ(v[1], 202);
    m.gc_Get_Column(-1, 0, 4, &v);
    EXPECT_EQ(v.vs(), 4);
    EXPECT_EQ(v[3], 302);
    const auto before = v;
    m.gr_Get_Row(0, 1, 3, &v);
    m.gr_Get_Row(0, -1, 1, &v);
    m.gc_Get_Column(0, INT_MAX, INT_MAX, &v);
    m.gc_Get_Column(0, 2, -1, &v);
    EXPECT_EQ(m.ged_Get_Error_Detail(), "1");
    TypeParam().gr_Get_Row(0, 0, 0, &v);
    EXPECT_TRUE(v == before);
    m.gr_Get_Row(0, 3, 0, &v);
    EXPECT_EQ(v.vs(), 0);
}

TEST(Matrix, PrintsAlignedColumnsAndAbbreviatesLargeOnes) {
    std::ostringstream small;
    CNqMatrix m;
    m.c_Create(2, 2, 1.5);
    m[1][0] = -12.25;
    small << m;
    EXPECT_EQ(small.str(), "   1.5     1.5\n-12.25     1.5\n(2 x 2)\n");
    std::ostringstream fixed;
    fixed << std::fixed;
    fixed.precision(1);
    fixed << m;
    EXPECT_EQ(fixed.str(), "  1.5    1.5\n-12.2    1.5\n(2 x 2)\n");
    std::ostringstream large;
    large << counted<CNqMatrixInt>(14, 1);
    EXPECT_EQ(large.str(),
              "   0\n 100\n 200\n 300\n 400\n 500\n ...\n 800\n 900\n1000\n1100\n1200\n1300\n"
              "(14 x 1)\n");
    std::ostringstream empty;
    empty << CNqMatrix();
    EXPECT_EQ(empty.str(), "(0 x 0)\n");
}

}  // namespace
