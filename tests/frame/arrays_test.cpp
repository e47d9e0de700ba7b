// Vectors and matrices of every element type: copies, storage, shapes, coordinates, printing.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <sstream>
#include <utility>

#include "nequar_algebra/frame.h"
#include "support/matrix_gallery.h"

namespace nequar::test {
namespace {

// Arrays of n elements or n x 3 of them, all 1.
template <class Element>
const Element* create(Vector<Element>& v, int n) {
    return v.c_Create(n, Element(1));
}
template <class Element>
const Element* create(Matrix<Element>& m, int n) {
    return m.c_Create(n, 3, Element(1)) == nullptr ? nullptr : m.p()[0];
}
template <class Element>
Element& last_of(Vector<Element>& v) {
    return v[v.vs() - 1];
}
template <class Element>
Element& last_of(Matrix<Element>& m) {
    return m[m.mh() - 1][2];
}

template <class Array>
class ArrayOf : public testing::Test {};
using Arrays =
    testing::Types<CNqVector, CNqVectorFloat, CNqVectorInt, CNqVectorBool, CNqVectorChar,
                   CNqVectorUchar, CNqVectorShort, CNqMatrix, CNqMatrixFloat, CNqMatrixInt>;
TYPED_TEST_SUITE(ArrayOf, Arrays);

TYPED_TEST(ArrayOf, CopiesMovesAndComparesItsElements) {
    TypeParam v, two;
    create(v, 300);
    create(two, 2);
    TypeParam copy = v;
    last_of(v) = 0;
    EXPECT_FALSE(copy == v);
    EXPECT_EQ(last_of(copy), 1);
    TypeParam moved = std::move(copy);
    EXPECT_EQ(last_of(moved), 1);
    EXPECT_TRUE(copy == TypeParam());
    const TypeParam& same = moved;
    moved = same;
    EXPECT_FALSE(moved.cp_Copy(&moved) == nullptr || moved == v);
    create(copy, 2);
    moved = std::move(copy);
    EXPECT_TRUE(moved == two && copy == TypeParam());
    EXPECT_TRUE(copy.cp_Copy(&two) != nullptr && copy == two);
}

TYPED_TEST(ArrayOf, KeepsItsStorageAndRefusesNegativeSizes) {
    TypeParam v;
    const auto* const elements = create(v, 100);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(elements) % 64, 0u);
    for (const int size : {100, 10, 1, 100}) {
        EXPECT_EQ(create(v, size), elements);
        last_of(v) = 0;
        const TypeParam before = v;
        EXPECT_EQ(create(v, -1), nullptr);
        EXPECT_EQ(create(v, INT_MIN), nullptr);
        EXPECT_TRUE(v == before);
    }
    EXPECT_EQ(v.ged_Get_Error_Detail(), "1");
}

TEST(Vector, PrintsComparesAndReports) {
    const auto printed = [](const auto& v) {
        std::ostringstream out;
        out << v;
        return out.str();
    };
    CNqVectorInt numbers;
    numbers.c_Create(18);
    for (int i = 0; i < 18; ++i) numbers[i] = i;
    EXPECT_EQ(printed(numbers),
              "[0, 1, 2, 3, 4, 5, 6, 7, ..., 10, 11, 12, 13, 14, 15, 16, 17] (18)");
    numbers.c_Create(18);  // keeps the elements
    EXPECT_EQ(numbers[17], 17);
    EXPECT_EQ(numbers.c_Create(-1), nullptr);
    EXPECT_EQ(numbers.grm_Get_Recorded_Message(), "CNqVectorInt::c_Create: 1");
    EXPECT_EQ(printed(CNqVector()), "[]");
    EXPECT_EQ(printed(vector_of<double>({-1.5, -1.5})), "[-1.5, -1.5]");
    EXPECT_EQ(printed(vector_of<char>({'A'})), "[65]");
    const auto nan = vector_of<double>({std::nan("")});
    EXPECT_FALSE(nan == nan);
}

// Element (y, x) is 100 y + x.
template <class Element>
Matrix<Element> counted(int height, int width) {
    return matrix_of<Element>(height, width, [](int y, int x) { return 100 * y + x; });
}

template <class Element>
void expect_shape(const Matrix<Element>& m, int height, int width) {
    int w = -1, h = -1;
    m.ms_Matrix_Width_Height(w, h);
    EXPECT_TRUE(w == width && h == height);
    for (int y = 0; y < height; ++y) EXPECT_EQ(m.p()[y], m.p()[0] + std::ptrdiff_t(y) * width) << y;
    EXPECT_EQ(m.p()[0] == nullptr, height == 0);
}

template <class Element>
class MatrixOf : public testing::Test {};
using Elements = testing::Types<double, float, int>;
TYPED_TEST_SUITE(MatrixOf, Elements);

TYPED_TEST(MatrixOf, KeepsItsStorageAndAnEqualShapeItsElements) {
    auto m = counted<TypeParam>(6, 4);
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
    auto target = counted<TypeParam>(7, 7);
    target = std::move(m);
    expect_shape(target, 2, 2);
    expect_shape(m, 0, 0);
    // Equal elements in another shape are another matrix.
    EXPECT_FALSE(counted<TypeParam>(1, 0) == counted<TypeParam>(0, 1));
}

TYPED_TEST(MatrixOf, RefusesSizesThatCannotBeAndStaysAsItWas) {
    for (auto m : {counted<TypeParam>(0, 0), counted<TypeParam>(2, 2)}) {
        const auto before = m;
        const std::array<int, 3> bad[] = {{-1, 2, 1},
                                          {2, -1, 1},
                                          {INT_MIN, INT_MIN, 1},
                                          {INT_MAX, INT_MAX, 1},
                                          {1 << 15, INT_MAX, 2}};
        for (const auto& [height, width, detail] : bad) {
            EXPECT_EQ(m.c_Create(height, width), nullptr);
            EXPECT_EQ(m.ged_Get_Error_Detail(), std::to_string(detail).c_str());
            EXPECT_EQ(m.c_Create(height, width, 7), nullptr);
            EXPECT_TRUE(m == before);
            expect_shape(m, before.mh(), before.mw());
        }
    }
}

TYPED_TEST(MatrixOf, WrapsCoordinatesAndGetsPartsOfRowsAndColumns) {
    const auto m = counted<TypeParam>(4, 3);
    const Matrix<TypeParam> empty;
    for (const auto& [given, column, row] :
         {std::tuple(2, 2, 2), {3, 0, 3}, {-1, 2, 3}, {INT_MAX, 1, 3}, {INT_MIN, 1, 0}}) {
        int x = given, y = given;
        m.mcc_Modify_Coordinate_of_Column(x);
        m.mcr_Modify_Coordinate_of_Row(y);
        EXPECT_TRUE(x == column && y == row) << given;
        empty.mcc(y);
        EXPECT_EQ(y, 0);
    }
    Vector<TypeParam> v;
    m.gr_Get_Row(2, 1, 2, &v);
    EXPECT_TRUE(v == vector_of<TypeParam>({201, 202}));
    m.gr_Get_Row(0, 3, 0, &v);
    EXPECT_EQ(v.vs(), 0);
    m.gc_Get_Column(-1, 0, 4, &v);
    EXPECT_TRUE(v == vector_of<TypeParam>({2, 102, 202, 302}));
    const auto before = v;
    m.gr_Get_Row(0, 1, 3, &v);
    m.gr_Get_Row(0, -1, 1, &v);
    m.gc_Get_Column(0, INT_MAX, INT_MAX, &v);
    m.gc_Get_Column(0, 2, -1, &v);
    EXPECT_EQ(m.ged_Get_Error_Detail(), "1");
    empty.gr_Get_Row(0, 0, 0, &v);
    EXPECT_TRUE(v == before);
}

TEST(Matrix, PrintsAlignedColumnsAndAbbreviatesLargeOnes) {
    const auto m = matrix_of<double>(2, 2, {1.5, 1.5, -12.25, 1.5});
    std::ostringstream out;
    out << m << std::fixed;
    out.precision(1);
    out << m << counted<int>(14, 1) << CNqMatrix();
    EXPECT_EQ(out.str(),
              "   1.5     1.5\n-12.25     1.5\n(2 x 2)\n  1.5    1.5\n-12.2    1.5\n(2 x 2)\n"
              "   0\n 100\n 200\n 300\n 400\n 500\n ...\n 800\n 900\n1000\n1100\n1200\n1300\n"
              "(14 x 1)\n(0 x 0)\n");
}

}  // namespace
}  // namespace nequar::test
