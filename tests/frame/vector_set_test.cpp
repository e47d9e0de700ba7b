#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "nequar_algebra/frame.h"

namespace {

TEST(VectorSet, HandsOutItsMembersAndNothingElse) {
    CNqSet_of_VectorFloat set;
    EXPECT_EQ(set.gpe(0), nullptr);
    CNqVectorFloat* const first = set.c_Create(3);
    EXPECT_EQ(first, set.gpe(0));
    set.gpe(2)->c_Create(4, 5.0f);
    for (const int i : {-1, 3, INT_MIN, INT_MAX}) {
        set.cr_Clear_Record();
        EXPECT_EQ(std::as_const(set).gpe(i), nullptr);
        EXPECT_EQ(set.grm_Get_Recorded_Message(),
                  "CNqSet_of_VectorFloat::gpe_Get_Pointer_of_Element: 1");
    }
    EXPECT_EQ(set.c_Create(-1), nullptr);
    EXPECT_EQ(set.ne(), 3);

    CNqSet_of_VectorFloat copy = set;
    EXPECT_TRUE(copy == set);
    (*copy.gpe(2))[3] = 6.0f;
    EXPECT_FALSE(copy == set);
    CNqSet_of_VectorFloat moved = std::move(copy);
    EXPECT_EQ(copy.ne(), 0);
    copy = moved;
    set = std::move(moved);
    EXPECT_TRUE(moved.ne() == 0 && set == copy);
    const CNqSet_of_VectorFloat& same = set;
    set = same;
    EXPECT_TRUE(set == copy);
    EXPECT_TRUE(set.c_Create(2) != nullptr && set.gpe(2) == nullptr);
}

TEST(VectorQueue, DropsTheOldestAndGivesTheSlotBack) {
    CNqQueueCircular_of_Vector ring;
    ASSERT_TRUE(ring.c_Create(3, 2, 0.5));
    CNqVector x;
    for (int k = 1; k <= 8; ++k) {
        x.c_Create(2, k);
        int slot = (k - 1) % 3;
        ASSERT_TRUE(ring.inv_INput_a_Vector(x, k % 2 == 0 ? nullptr : &slot));
        EXPECT_EQ(slot, (k - 1) % 3);
        EXPECT_EQ((*ring.gpe(slot))[0], k);
        for (int age = 0; age < 3; ++age)
            EXPECT_EQ((*ring.gpa(age))[1], k > age ? k - age : 0.5) << k << ' ' << age;
    }
    // One of its own vectors may be put in: the newest, and the one that it replaces.
    ASSERT_TRUE(ring.inv_INput_a_Vector(*ring.gpa(0), nullptr));
    ASSERT_TRUE(ring.inv_INput_a_Vector(*ring.gpa(2), nullptr));
    EXPECT_TRUE((*ring.gpa(0))[0] == 7.0 && (*ring.gpa(1))[0] == 8.0);
    const CNqQueueCircular_of_Vector copy = ring;
    CNqQueueCircular_of_Vector moved = std::move(ring);
    EXPECT_TRUE(moved.inv_INput_a_Vector(x, nullptr));
    EXPECT_EQ((*moved.gpa(1))[0], (*copy.gpa(0))[0]);
    EXPECT_FALSE(ring.inv_INput_a_Vector(x, nullptr));
}

TEST(VectorQueue, RefusesWithNothingChanged) {
    CNqQueueCircular_of_VectorFloat ring;
    CNqVectorFloat x;
    int slot = 42;
    for (const int capacity : {0, 2}) {
        ASSERT_TRUE(ring.c_Create(capacity, 3, 1.0f));
        x.c_Create(capacity == 0 ? 3 : 2, 9.0f);
        EXPECT_FALSE(ring.inv_INput_a_Vector(x, &slot));
        EXPECT_EQ(ring.grm_Get_Recorded_Message(),
                  "CNqQueueCircular_of_VectorFloat::inv_INput_a_Vector: 1");
        EXPECT_FALSE(ring.c_Create(-1, 3, 0.0f) || ring.c_Create(2, -1, 0.0f));
        EXPECT_TRUE(ring.ne() == capacity && ring.vs() == 3);
        for (const int bad : {-1, 2, INT_MIN, INT_MAX})
            EXPECT_TRUE(ring.gpe(bad) == nullptr && ring.gpa(bad) == nullptr) << bad;
    }
    EXPECT_EQ(slot, 42);
}

}  // namespace
