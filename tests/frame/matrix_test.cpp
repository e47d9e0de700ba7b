#include "nequar_algebra/frame/matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <sstream>
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
void expect_shape(const Matrix& m, int height, int width) {
    int w = -1;
    int h = -1;
    m.ms_Matrix_Width_Height(w, h);
    EXPECT_EQ(w, width);
    EXPECT_EQ(h, height);
    for (int y = 0; y < height; ++y) EXPECT_EQ(m.p()[y], m.p()[0] + std::ptrdiff_t(y) * width) << y;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(m.p()[0]) % 64, 0u);
    EXPECT_EQ(m.p()[0] == nullptr, height == 0);
}

template <class Matrix>
class MatrixOf : public testing::Test {};
using Matrices = testing::Types<CNqMatrix, CNqMatrixFloat, CNqMatrixInt>;
TYPED_TEST_SUITE(MatrixOf, Matrices);

TYPED_TEST(MatrixOf, CopiesMovesAndCompares) {
    TypeParam m = counted<TypeParam>(4, 3);
    const TypeParam copy = m;
    EXPECT_TRUE(copy == m);
    m[3][2] = 0;
    EXPECT_FALSE(copy == m);
    EXPECT_EQ(copy[3][2], 302);

    TypeParam target = counted<TypeParam>(7, 7);
    target = std::move(m);
    expect_shape(target, 4, 3);
    expect_shape(m, 0, 0);
    m = copy;
    const TypeParam& same = m;
    m = same;
    EXPECT_TRUE(m == copy);
    // Equal elements in another shape are another matrix.
    EXPECT_FALSE(counted<TypeParam>(1, 0) == counted<TypeParam>(0, 1));
    std::vector<TypeParam> matrices;
    for (int i = 0; i < 20; ++i) matrices.push_back(counted<TypeParam>(i, i));
    EXPECT_EQ(matrices[19][18][18], 1818);
    expect_shape(matrices[19], 19, 19);
}

TYPED_TEST(MatrixOf, KeepsItsStorageAndAnEqualShapeItsElements) {
    TypeParam m = counted<TypeParam>(6, 4);
    const auto* const block = m.p()[0];
    m.c_Create(6, 4);
    EXPECT_EQ(m[5][3], 503);
    for (const auto& [height, width] : {std::pair(2, 12), {12, 2}, {1, 1}, {0, 3}, {6, 4}}) {
        m.c_Create(height, width);
        expect_shape(m, height, width);
        EXPECT_EQ(m.p()[0], height > 0 ? block : nullptr);
    }
    m.c_Create(2, 2, 9);
    EXPECT_EQ(m[1][1], 9);
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
            expect_shape(m, before.mh(), before.mw());
        }
    }
}

TYPED_TEST(MatrixOf, WrapsCoordinatesAndGetsPartsOfRowsAndColumns) {
    const TypeParam m = counted<TypeParam>(4, 3);
    for (const auto& [given, column, row] :
         {std::tuple(2, 2, 2), {3, 0, 3}, {-1, 2, 3}, {INT_MAX, 1, 3}, {INT_MIN, 1, 0}}) {
        int x = given;
        int y = given;
        m.mcc_Modify_Coordinate_of_Column(x);
        m.mcr_Modify_Coordinate_of_Row(y);
        EXPECT_EQ(x, column) << given;
        EXPECT_EQ(y, row) << given;
        TypeParam().mcc(y);
        EXPECT_EQ(y, 0);
    }
    nequar::Vector<std::remove_cvref_t<decltype(m[0][0])>> v;
    m.gr_Get_Row(2, 1, 2, &v);
    EXPECT_EQ(v.vs(), 2);
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
    CNqMatrix m;
    m.c_Create(2, 2, 1.5);
    m[1][0] = -12.25;
    std::ostringstream out;
    out << m << std::fixed;
    out.precision(1);
    out << m << counted<CNqMatrixInt>(14, 1) << CNqMatrix();
    EXPECT_EQ(out.str(),
              "   1.5     1.5\n-12.25     1.5\n(2 x 2)\n  1.5    1.5\n-12.2    1.5\n(2 x 2)\n"
              "   0\n 100\n 200\n 300\n 400\n 500\n ...\n 800\n 900\n1000\n1100\n1200\n1300\n"
              "(14 x 1)\n(0 x 0)\n");
}

}  // namespace
