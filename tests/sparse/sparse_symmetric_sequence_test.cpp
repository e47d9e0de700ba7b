// A long random sequence of operations on the symmetric matrix: after each step the lower half has
// to be stored as the mirror says, explicit zeros included, and all that is read has to be the full
// matrix. Values are small integers, so nothing is rounded.
#include <gtest/gtest.h>

#include "sparse/symmetric_steps.h"

namespace {

using namespace sparse_test;

template <class Real>
class SparseSymmetricSequence : public testing::Test {};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(SparseSymmetricSequence, Reals);

constexpr int kSteps = 100000;

constexpr int kLargest = 7;  // of the sizes

TYPED_TEST(SparseSymmetricSequence, Matrix) {
    Symmetrics<TypeParam> m{Dice(3), {}, {}, {}, {}};
    // Looking at the start pointers keeps them up to date from then on: in every second episode
    // only copies are looked at, and not after each step.
    bool looks_at_copies = false;
    for (int step = 0; step < kSteps; ++step) {
        if (step % 40 == 0 || m.ma.largest_magnitude() > 200) {
            looks_at_copies = step % 80 < 40;
            m.a = nequar::SparseSymmetricMatrix<TypeParam>();
            m.renew(m.a, m.ma, m.dice(1, kLargest));
        }
        ASSERT_TRUE(m.step()) << "step " << step << ": " << failures_of(m.a);
        if (looks_at_copies && m.dice(0, 3) != 0) continue;
        const auto copy = m.a;
        ASSERT_EQ(fault_of(looks_at_copies ? copy : m.a, m.ma), "") << "step " << step;
        ASSERT_EQ(fault_of(m.b, m.mb), "") << "step " << step;
        const Mirror<TypeParam> full = full_of(m.ma);
        TypeParam value = -1;
        for (int x = 0; x < full.width; ++x)
            for (int y = 0; y < full.height; ++y)
                ASSERT_TRUE(m.a.ge(x, y, &value) && value == full.at(x, y)) << "step " << step;
        if (step % 8 != 0) continue;
        ASSERT_EQ(m.fault_of_statistics(), "") << "step " << step;
    }
    EXPECT_EQ(failures_of(m.a), "");
}

}  // namespace
