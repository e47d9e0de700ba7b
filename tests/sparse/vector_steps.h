// One random operation on sparse vectors and on their mirrors, matrices of one column.
#pragma once

#include "sparse/mirror.h"

namespace sparse_test {

template <class Real>
struct Vectors : Operands<nequar::SparseVector<Real>, Real> {
    using Base = Operands<nequar::SparseVector<Real>, Real>;
    using Base::a, Base::b, Base::input, Base::ma, Base::mb;

    explicit Vectors(Input decisions) : Base(decisions) {
        ma = random_mirror<Real>(input, input.in(1, 2 * kLargest), 1);
        a = vector_of(ma);
    }
    const Mirror<Real>& whole() const { return ma; }
    bool get(int, int y, Real* value) { return a.ge(y, value); }

    bool step() {
        const int n = ma.height;
        const int i = input.in(0, n - 1);
        const Real v = Real(input.in(-3, 3));
        const bool itself = input.in(0, 3) == 0;
        if (!itself) {
            mb = random_mirror<Real>(input, n, 1);
            b = vector_of(mb);
        }
        const auto* const other = itself ? &a : &b;
        const Mirror<Real>& mother = itself ? ma : mb;
        switch (input.in(0, 13)) {
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
                const int length = input.in(1, 2 * n);
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
                ma = ma.block(0, i, 1, input.in(1, n), false);
                return a.g(i, ma.height, &a);
        }
    }
};

}  // namespace sparse_test
