// One random operation on sparse matrices and on their mirrors.
#pragma once

#include "sparse/mirror.h"

namespace sparse_test {

inline constexpr int kLargest = 7;  // of the sizes

// Two matrices with their mirrors; a is worked on, b is the other operand.
template <class Real>
struct Matrices {
    using Sparse = nequar::SparseMatrix<Real>;

    Dice dice;
    Sparse a, b;
    Mirror<Real> ma, mb;

    void renew(Sparse& s, Mirror<Real>& m) {
        m = random_mirror<Real>(dice, dice(1, kLargest), dice(1, kLargest));
        s = matrix_of(m);
    }
    void make_b_like_a() {
        mb = random_mirror<Real>(dice, ma.height, ma.width);
        b = matrix_of(mb);
    }

    // One operation on both; the return value of every operation has to be true.
    bool step() {
        const int h = ma.height;
        const int w = ma.width;
        const int x = dice(0, w - 1);
        const int y = dice(0, h - 1);
        const int dx = dice(1, w - x);
        const int dy = dice(1, h - y);
        const Real v = dice.value<Real>();
        const bool itself = dice(0, 3) == 0;
        const Sparse* const other = itself ? &a : &b;
        if (!itself && (mb.height != h || mb.width != w)) make_b_like_a();
        const Mirror<Real>& mother = itself ? ma : mb;
        switch (dice(0, 21)) {
            case 0:
                renew(b, mb);
                return true;
            case 1:
            case 2:
            case 3:
                ma.set(x, y, v);
                return a.se(x, y, v);
            case 4:
                ma.set(x, y, v);
                return a.ace(x, y, v);
            case 5:
                ma.remove_zeros();
                return a.rze();
            case 6:
                ma.add(mother, Real(1));
                return a.amm(other);
            case 7:
                ma.add(mother, v);
                return a.ammw(other, v);
            case 8:
                ma.add(mother, Real(-1));
                return a.smm(other);
            case 9:
                ma.multiply(mother);
                return a.mmme(other);
            case 10:
                ma.scale(v);
                return a.mmc(v);
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
            default:
                return a.sb(0, 0, &a) && a.mbs(dice(0, 3)) && (a = a * Real(1), true) &&
                       a == matrix_of(ma);
        }
    }
};

}  // namespace sparse_test
