// Long random sequences of operations: after each step the storage has to be in order and hold
// exactly what the mirror says, explicit zeros included. Values are small integers, so nothing is
// rounded.

#include "sparse/matrix_steps.h"

namespace {

using namespace sparse_test;

TWINS(SparseSequence);

TWIN_TEST(SparseSequence, Matrix) {
    Matrices<Real> m;
    m.renew(m.b, m.mb);
    expect_sequence(m, 1000);
}

TWIN_TEST(SparseSequence, Vector) {
    using Sparse = nequar::SparseVector<Real>;
    Dice dice(2);
    Sparse a, b;
    Mirror<Real> ma, mb;
    for (int step = 0; step < 100000; ++step) {
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
        const auto take_step = [&] {
            switch (dice(0, 13)) {
                case 0:
                case 1:
                    ma.set(0, i, v);
                    return a.se(i, v);
                case 2:
                    ma.set(0, i, v);
                    return a.ace(i, v);
                case 3:
                    ma.remove_zeros();
                    return a.rze();
                case 4:
                    ma.add_elements(mother, Real(1));
                    return a.avv(other);
                case 5:
                    ma.add_elements(mother, v);
                    return a.avvw(other, v);
                case 6:
                    ma.add_elements(mother, Real(-1));
                    return a.svv(other);
                case 7:
                    ma.multiply(mother);
                    return a.mvve(other);
                case 8:
                    ma.scale(v);
                    return a.mvc(v);
                case 9: {  // the end of the range may lie beyond the vector
                    const int length = dice(1, 2 * n);
                    mb = ma.block(0, i, 1, length, false);
                    return a.g(i, length, &b);
                }
                case 10:
                    ma.replace(0, i, mother);
                    return a.s(i, other);
                case 11: {
                    nequar::Vector<Real> dense;
                    ma.remove_zeros();
                    return a.ex(&dense) && dense.vs() == n && a.im(&dense) && a.sbs() == 4;
                }
                case 12: {
                    nequar::GrowableVector<Real> values;
                    CNqXvectorInt indices;
                    int dimension = 0;
                    mb = ma;
                    return a.ex(&dimension, &values, &indices) && dimension == n &&
                           b.im(n, &values, &indices) && a == b;
                }
                default:
                    ma = ma.block(0, i, 1, dice(1, n), false);
                    return a.g(i, ma.height, &a);
            }
        };
        ASSERT_TRUE(take_step()) << "step " << step << ": " << failures_of(a);
        ASSERT_EQ(fault_of(a, ma), "") << "step " << step;
        ASSERT_EQ(fault_of(b, mb), "") << "step " << step;
        Real value = -1;
        for (int k = 0; k < ma.height; ++k)
            ASSERT_TRUE(a.ge(k, &value) && value == ma.at(0, k)) << "step " << step;
    }
    EXPECT_EQ(failures_of(a), "");
}

}  // namespace
