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
        const auto set = [&] { ma.set(0, i, v); };
        const Step steps[] = {
            {set, [&] { return a.se(i, v); }},
            {set, [&] { return a.ace(i, v); }},
            {[&] { ma.remove_zeros(); }, [&] { return a.rze(); }},
            {[&] { ma.add_elements(mother, Real(1)); }, [&] { return a.avv(other); }},
            {[&] { ma.add_elements(mother, v); }, [&] { return a.avvw(other, v); }},
            {[&] { ma.add_elements(mother, Real(-1)); }, [&] { return a.svv(other); }},
            {[&] { ma.multiply(mother); }, [&] { return a.mvve(other); }},
            {[&] { ma.scale(v); }, [&] { return a.mvc(v); }},
            {[&] { ma.replace(0, i, mother); }, [&] { return a.s(i, other); }},
        };
        const int which = input.in(0, 13);
        switch (which) {
            case 10: {  // the end of the range may lie beyond the vector
                const int length = input.in(1, 2 * n);
                mb = ma.block(0, i, 1, length, false);
                return a.g(i, length, &b);
            }
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
            case 13:
                ma = ma.block(0, i, 1, input.in(1, n), false);
                return a.g(i, ma.height, &a);
            default:
                return steps[std::min(which, 8)].take();
        }
    }
};

}  // namespace sparse_test
