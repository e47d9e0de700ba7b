#include "nequar_algebra/frame/vector_set.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <vector>

#include "nequar_algebra/frame/vector_queue.h"

namespace {

TEST(VectorSet, HandsOutItsMembersAndNothingElse) {
    CNqSet_of_Vector set;
    EXPECT_EQ(set.gpe(0), nullptr);
    CNqVector* const first = set.c_Create(3);
    EXPECT_EQ(first, set.gpe(0));
    for (int i = 0; i < 3; ++i) set.gpe(i)->c_Create(i + 1, i);
    EXPECT_EQ((*set.gpe(2))[2], 2.0);
    for (const int i : {-1, 3, INT_MIN, INT_MAX}) {
        set.cr_Clear_Record();
        EXPECT_EQ(std::as_const(set).gpe(i), nullptr);
        EXPECT_EQ(set.grm_Get_Recorded_Message(),
                  "CNqSet_of_Vector::gpe_Get_Pointer_of_Element: 1");
    }
    EXPECT_EQ(set.c_Create(-1), nullptr);
    EXPECT_EQ(set.ne(), 3);
    EXPECT_EQ(set.gpe(2)->vs(), 3);
    EXPECT_EQ(set.c_Create(2), first);
    EXPECT_EQ(set.gpe(2), nullptr);
}

TEST(VectorSet, CopiesDeeplyAndMoves) {
    CNqSet_of_VectorFloat set;
    EXPECT_EQ(set.gcn_Get_Class_Name(), "CNqSet_of_VectorFloat");
    set.c_Create(2);
    set.gpe(1)->c_Create(4, 5.0f);
    CNqSet_of_VectorFloat copy = set;
    EXPECT_TRUE(copy == set);
    (*copy.gpe(1))[3] = 6.0f;
    EXPECT_FALSE(copy == set);
    EXPECT_EQ((*set.gpe(1))[3], 5.0f);
    CNqSet_of_VectorFloat moved = std::move(copy);
    EXPECT_EQ(copy.ne(), 0);
    copy = moved;
    set = std::move(moved);
    EXPECT_EQ(moved.ne(), 0);
    EXPECT_EQ((*set.gpe(1))[3], 6.0f);
    moved = CNqSet_of_VectorFloat();
    const CNqSet_of_VectorFloat& same = set;
    set = same;
    EXPECT_TRUE(set == copy);
}

TEST(VectorQueue, DropsTheOldestAndGivesTheSlotBack) {
    CNqQueueCircular_of_Vector ring;
    ASSERT_TRUE(ring.c_Create(3, 2, 0.5));
    EXPECT_EQ(ring.ne(), 3);
    EXPECT_EQ((*ring.gpe(2))[1], 0.5);
    CNqVector x;
    for (int k = 1; k <= 7; ++k) {
        x.c_Create(2, k);
        int slot = -1;
        ASSERT_TRUE(ring.inv_INput_a_Vector(x, k % 2 == 0 ? nullptr : &slot));
        if (k % 2 == 1) {
            EXPECT_EQ(slot, (k - 1) % 3);
        }
        for (int age = 0; age < 3; ++age)
            EXPECT_EQ((*ring.gpa(age))[1], k > age ? k - age : 0.5) << k << ' ' << age;
    }
    // One of its own vectors may be put in: the newest, and the one that it replaces.
    ASSERT_TRUE(ring.inv_INput_a_Vector(*ring.gpa(0), nullptr));
    ASSERT_TRUE(ring.inv_INput_a_Vector(*ring.gpa(2), nullptr));
    EXPECT_EQ((*ring.gpa(0))[0], 6.0);
    EXPECT_EQ((*ring.gpa(1))[0], 7.0);
}

TEST(VectorQueue, RefusesWithNothingChanged) {
    CNqQueueCircular_of_VectorFloat ring;
    CNqVectorFloat x;
    int slot = 42;
    EXPECT_FALSE(ring.inv_INput_a_Vector(x, &slot));
    ASSERT_TRUE(ring.c_Create(2, 3, 1.0f));
    x.c_Create(2, 9.0f);
    EXPECT_FALSE(ring.inv_INput_a_Vector(x, &slot));
    EXPECT_EQ(ring.grm_Get_Recorded_Message(),
              "CNqQueueCircular_of_VectorFloat::inv_INput_a_Vector: 1");
    EXPECT_FALSE(ring.c_Create(-1, 3, 0.0f));
    EXPECT_FALSE(ring.c_Create(2, -1, 0.0f));
    EXPECT_EQ(slot, 42);
    EXPECT_EQ(ring.ne(), 2);
    EXPECT_EQ(ring.vs(), 3);
    for (const int bad : {-1, 2, INT_MIN, INT_MAX}) {
        EXPECT_EQ(ring.gpe(bad), nullptr);
        EXPECT_EQ(ring.gpa(bad), nullptr);
    }

    x.c_Create(3, 4.0f);
    ring.inv_INput_a_Vector(x, nullptr);
    const CNqQueueCircular_of_VectorFloat copy = ring;
    CNqQueueCircular_of_VectorFloat moved = std::move(ring);
    EXPECT_EQ((*copy.gpa(0))[0], 4.0f);
    moved.inv_INput_a_Vector(x, &slot);
    EXPECT_EQ(slot, 1);
    EXPECT_FALSE(ring.inv_INput_a_Vector(x, &slot));
    ASSERT_TRUE(ring.c_Create(0, 3, 0.0f));
    EXPECT_FALSE(ring.inv_INput_a_Vector(x, &slot));
}

}  // namespace
