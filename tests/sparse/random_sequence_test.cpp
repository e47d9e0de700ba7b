// Long random sequences of operations: after each step the storage has to be in order and hold
// exactly what the mirror says, explicit zeros included. Values are small integers, so nothing is
// rounded.
#include <gtest/gtest.h>

#include "sparse/matrix_steps.h"

namespace {

using namespace sparse_test;

template <class Real>
class SparseSequence : public testing::Test {};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(SparseSequence, Reals);

constexpr int kSteps = 100000;

TYPED_TEST(SparseSequence, Matrix) {
    Matrices<TypeParam> m{Dice(1), {}, {}, {}, {}};
    m.renew(m.a, m.ma);
    m.renew(m.b, m.mb);
    // Looking at the start pointers keeps them up to date from then on: in every second episode
    // only copies are looked at, and not after each step.
    bool looks_at_copies = false;
    for (int step = 0; step < kSteps; ++step) {
        if (step % 40 == 0 || m.ma.largest_magnitude() > 1000) {
            looks_at_copies = step % 80 < 40;
            m.a = nequar::SparseMatrix<TypeParam>();
            m.renew(m.a, m.ma);
        }
        ASSERT_TRUE(m.step()) << "step " << step << ": " << failures_of(m.a);
        if (looks_at_copies && m.dice(0, 3) != 0) continue;
        const auto copy = m.a;
        ASSERT_EQ(fault_of(looks_at_copies ? copy : m.a, m.ma), "") << "step " << step;
        ASSERT_EQ(fault_of(m.b, m.mb), "") << "step " << step;
        TypeParam value = -1;
        for (int x = 0; x < m.ma.width; ++x)
            for (int y = 0; y < m.ma.height; ++y)
                ASSERT_TRUE(m.a.ge(x, y, &value) && value == m.ma.at(x, y)) << "step " << step;
    }
    EXPECT_EQ(failures_of(m.a), "");
}

TYPED_TEST(SparseSequence, Vector) {
    using Real = TypeParam;
    using Sparse = nequar::SparseVector<Real>;
    Dice dice(2);
    Sparse a, b;
    Mirror<Real> ma, mb;
    for (int step = 0; step < kSteps; ++step) {
        if (step % 40 == 0 || ma.largest_magnitude() > 1000) {
            ma = random_mirror<Real>(dice, dice(1, 2 * kLargest), 1);
            a = vector_of(ma);
        }
        const int n = ma.height;
        const int i = dice(0, n - 1);
        const Real v = dice.value<Real>();
        const bool itself = dice(0, 3) == 0;
        if (!itself) {
            mb = random_mirror<Real>(dice, n, 1);
            b = vector_of(mb);
        }
        const Sparse* const other = itself ? &a : &b;
        const Mirror<Real>& mother = itself ? ma : mb;
        bool done = true;
        switch (dice(0, 13)) {
            case 0:
            case 1:
                ma.set(0, i, v);
                done = a.se(i, v);
                break;
            case 2:
                ma.set(0, i, v);
                done = a.ace(i, v);
                break;
            case 3:
                ma.remove_zeros();
                done = a.rze();
                break;
            case 4:
                ma.add_elements(mother, Real(1));
                done = a.avv(other);
                break;
            case 5:
                ma.add_elements(mother, v);
                done = a.avvw(other, v);
                break;
            case 6:
                ma.add_elements(mother, Real(-1));
                done = a.svv(other);
                break;
            case 7:
                ma.multiply(mother);
                done = a.mvve(other);
                break;
            case 8:
                ma.scale(v);
                done = a.mvc(v);
                break;
            case 9: {  // the end of the range may lie beyond the vector
                const int length = dice(1, 2 * n);
                mb = ma.block(0, i, 1, length, false);
                done = a.g(i, length, &b);
                break;
            }
            case 10:
                ma.replace(0, i, mother);
                done = a.s(i, other);
                break;
            case 11: {
                nequar::Vector<Real> dense;
                done = a.ex(&dense) && dense.vs() == n && a.im(&dense) && a.sbs() == 4;
                ma.remove_zeros();
                break;
            }
            case 12: {
                nequar::GrowableVector<Real> values;
                CNqXvectorInt indices;
                int dimension = 0;
                done = a.ex(&dimension, &values, &indices) && dimension == n &&
                       b.im(n, &values, &indices) && a == b;
                mb = ma;
                break;
            }
            default:
                ma = ma.block(0, i, 1, dice(1, n), false);
                done = a.g(i, ma.height, &a);
        }
        ASSERT_TRUE(done) << "step " << step << ": " << failures_of(a);
        ASSERT_EQ(fault_of(a, ma), "") << "step " << step;
        ASSERT_EQ(fault_of(b, mb), "") << "step " << step;
        Real value = -1;
        for (int k = 0; k < ma.height; ++k)
            ASSERT_TRUE(a.ge(k, &value) && value == ma.at(0, k)) << "step " << step;
    }
    EXPECT_EQ(failures_of(a), "");
}

}  // namespace
