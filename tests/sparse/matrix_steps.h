// One random operation on sparse matrices and on their mirrors.
#pragma once

#include "sparse/mirror.h"

namespace sparse_test {

template <class Real>
struct Matrices : Operands<nequar::SparseMatrix<Real>, Real> {
    using Base = Operands<nequar::SparseMatrix<Real>, Real>;
    using Sparse = nequar::SparseMatrix<Real>;
    using Base::a, Base::b, Base::input, Base::ma, Base::mb;

    explicit Matrices(Input decisions) : Base(decisions) {
        renew(a, ma);
        renew(b, mb);
    }
    void renew(Sparse& s, Mirror<Real>& m) {
        m = random_mirror<Real>(input, input.in(1, kLargest), input.in(1, kLargest));
        s = matrix_of(m);
    }
    const Mirror<Real>& whole() const { return ma; }

    bool step() {
        const int h = ma.height;
        const int w = ma.width;
        const int x = input.in(0, w - 1);
        const int y = input.in(0, h - 1);
        const int dx = input.in(1, w - x);
        const int dy = input.in(1, h - y);
        const Real v = Real(input.in(-3, 3));
        const bool itself = input.in(0, 3) == 0;
        const Sparse* const other = itself ? &a : &b;
        if (!itself && (mb.height != h || mb.width != w)) {
            mb = random_mirror<Real>(input, h, w);
            b = matrix_of(mb);
        }
        const Mirror<Real>& mother = itself ? ma : mb;
        const int which = input.in(0, 21);
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
                const int to = input.in(0, w - 1);
                const int from_row = input.in(0, h - dy);
                ma.replace(to, from_row, part);
                return got && fault_of(line, part) == "" && a.sc(to, from_row, &line);
            }
            case 16: {
                nequar::SparseVector<Real> line;
                const Mirror<Real> part = mother.block(x, y, dx, 1, true);
                const bool got = other->gr(x, y, dx, &line);
                const int to = input.in(0, h - 1);
                const int from_column = input.in(0, w - dx);
                ma.write(from_column, to, part);
                return got && fault_of(line, part.transposed()) == "" &&
                       a.sr(from_column, to, &line);
            }
            case 17: {
                const auto u = random_mirror<Real>(input, h, 1);
                const auto t = random_mirror<Real>(input, w, 1);
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
                return a.sb(0, 0, &a) && a.mbs(input.in(0, 3)) && (a = a * Real(1), true) &&
                       a == matrix_of(ma);
            default:
                return Base::shared(which, x, y, v, other, mother);
        }
    }
};

}  // namespace sparse_test
