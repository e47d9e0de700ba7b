// Long random sequences of operations: after each step the storage has to be in order and hold
// exactly what the mirror says, explicit zeros included. Values are small integers, so nothing is
// rounded.

#include "sparse/mirror.h"

namespace {

using namespace sparse_test;

TWINS(SparseSequence);

constexpr int kLargest = 7;  // of the sizes

template <class Real>
struct Matrices : Operands<nequar::SparseMatrix<Real>, Real> {
    using Base = Operands<nequar::SparseMatrix<Real>, Real>;
    using Sparse = nequar::SparseMatrix<Real>;
    using Base::a, Base::b, Base::dice, Base::ma, Base::mb;

    void renew(Sparse& s, Mirror<Real>& m) {
        m = random_mirror<Real>(dice, dice(1, kLargest), dice(1, kLargest));
        s = matrix_of(m);
    }
    void renew() { renew(a, ma); }
    const Mirror<Real>& whole() const { return ma; }

    bool step() {
        const int h = ma.height;
        const int w = ma.width;
        const int x = dice(0, w - 1);
        const int y = dice(0, h - 1);
        const int dx = dice(1, w - x);
        const int dy = dice(1, h - y);
        const Real v = dice.template value<Real>();
        const bool itself = dice(0, 3) == 0;
        const Sparse* const other = itself ? &a : &b;
        if (!itself && (mb.height != h || mb.width != w)) {
            mb = random_mirror<Real>(dice, h, w);
            b = matrix_of(mb);
        }
        const Mirror<Real>& mother = itself ? ma : mb;
        const int which = dice(0, 21);
        switch (which) {
            case 11:
                ma = ma.transposed();
                return a.t(&a);
            case 12:
                mb = ma.transposed();
                return a.t(&b);
            case 13:
                mb = ma.block(x, y, dx, dy, false);
                return a.gb(x, y, dx, dy, &b);
            case 14: {
                const Mirror<Real> part = mother.block(0, 0, dx, dy, itself);
                Sparse block = matrix_of(part);
                ma.write(x, y, part);
                return a.sb(x, y, &block);
            }
            case 15: {
                nequar::SparseVector<Real> line;
                const Mirror<Real> part = mother.block(x, y, 1, dy, true);
                const bool got = other->gc(x, y, dy, &line);
                const int to = dice(0, w - 1);
                const int from_row = dice(0, h - dy);
                ma.replace(to, from_row, part);
                return got && fault_of(line, part) == "" && a.sc(to, from_row, &line);
            }
            case 16: {
                nequar::SparseVector<Real> line;
                const Mirror<Real> part = mother.block(x, y, dx, 1, true);
                const bool got = other->gr(x, y, dx, &line);
                const int to = dice(0, h - 1);
                const int from_column = dice(0, w - dx);
                ma.write(from_column, to, part);
                return got && fault_of(line, part.transposed()) == "" &&
                       a.sr(from_column, to, &line);
            }
            case 17: {
                const auto u = random_mirror<Real>(dice, h, 1);
                const auto t = random_mirror<Real>(dice, w, 1);
                const auto us = vector_of(u);
                const auto ts = vector_of(t);
                ma.add_product(u, t);
                return a.mvva(&us, &ts);
            }
            case 18: {
                const auto dense = dense_of(ma);
                ma.remove_zeros();
                nequar::Matrix<Real> exported;
                return a.ex(&exported) && exported == dense && a.im(&dense) && a.sbs() == 4;
            }
            case 19:
                ma = ma.block(x, y, dx, dy, false);
                return a.gb(x, y, dx, dy, &a);
            case 20:
                std::swap(ma, mb);
                std::swap(a, b);
                return true;
            case 10:
                renew(b, mb);
                return true;
            case 21:
                return a.sb(0, 0, &a) && a.mbs(dice(0, 3)) && (a = a * Real(1), true) &&
                       a == matrix_of(ma);
            default:
                return Base::shared(which, x, y, v, other, mother);
        }
    }
};

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
