#include "nequar_algebra/frame/vector.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <utility>

namespace {

template <class Vector>
class VectorOf : public testing::Test {};

using Vectors = testing::Types<CNqVector, CNqVectorFloat, CNqVectorInt, CNqVectorBool,
                               CNqVectorChar, CNqVectorUchar, CNqVectorShort>;
TYPED_TEST_SUITE(VectorOf, Vectors);

TYPED_TEST(VectorOf, CopiesMovesAndComparesItsElements) {
    TypeParam v;
    EXPECT_EQ(v.vs(), 0);
    auto* const elements = v.c_Create(300, 1);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(elements) % 64, 0u);
    TypeParam copy = v;
    v[0] = 0;
    EXPECT_FALSE(copy == v);
    EXPECT_EQ(copy[0], 1);

    const TypeParam moved = std::move(copy);
    EXPECT_EQ(moved.vs(), 300);
    EXPECT_TRUE(copy == TypeParam());
    ASSERT_NE(copy.c_Create(2, 1), nullptr);
    EXPECT_EQ(moved[298], 1);
    const TypeParam& same = v;
    v = same;
    EXPECT_EQ(v.cp_Copy(&v), elements);
    EXPECT_EQ(v.vs(), 300);
    v = std::move(copy);
    EXPECT_EQ(v.vs(), 2);
    EXPECT_EQ(copy.vs(), 0);
}

TYPED_TEST(VectorOf, KeepsItsStorageAndRefusesNegativeSizes) {
    TypeParam v;
    auto* const elements = v.c_Create(100, 1);
    for (const int size : {100, 10, 0, 100}) {
        EXPECT_EQ(v.c_Create(size), elements);
        EXPECT_EQ(v.c_Create(-1), nullptr);
        EXPECT_EQ(v.c_Create(INT_MIN, 0), nullptr);
        EXPECT_EQ(v.vs(), size);
    }
    EXPECT_EQ(v[99], 1);
    EXPECT_EQ(v.ged_Get_Error_Detail(), "1");
}

TEST(Vector, PrintsComparesAndReports) {
    const auto printed = [](const auto& v) {
        std::ostringstream out;
        out << v;
        return out.str();
    };
    CNqVector v;
    EXPECT_EQ(printed(v), "[]");
    v.c_Create(2, -1.5);
    EXPECT_EQ(printed(v), "[-1.5, -1.5]");
    CNqVectorChar letters;
    letters.c_Create(1, 'A');
    EXPECT_EQ(printed(letters), "[65]");
    CNqVectorInt numbers;
    numbers.c_Create(18);
    for (int i = 0; i < 18; ++i) numbers[i] = i;
    EXPECT_EQ(printed(numbers),
              "[0, 1, 2, 3, 4, 5, 6, 7, ..., 10, 11, 12, 13, 14, 15, 16, 17] (18)");
    numbers.c_Create(-1);
    EXPECT_EQ(numbers.grm_Get_Recorded_Message(), "CNqVectorInt::c_Create: 1");
    v[0] = std::nan("");
    EXPECT_FALSE(v == v);
}

}  // namespace
