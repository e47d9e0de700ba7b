// One random operation on sparse symmetric matrices and on their mirrors, which hold the lower
// half.
#pragma once

#include <cmath>

#include "sparse/mirror.h"

namespace sparse_test {

template <class Real>
Mirror<Real> lower_of(Mirror<Real> m) {
    std::erase_if(m.stored, [](const auto& e) { return e.first.first > e.first.second; });
    return m;
}
template <class Real>
Mirror<Real> full_of(Mirror<Real> lower) {
    lower.stored.merge(lower.transposed().stored);
    return lower;
}

// Each element is named from either side in turn.
template <class Real>
nequar::SparseSymmetricMatrix<Real> symmetric_of(const Mirror<Real>& m) {
    nequar::SparseSymmetricMatrix<Real> s;
    s.czm(m.height, 0);
    for (const auto& [place, v] : m.stored) {
        s.se(place.second, place.first, Real(1));
        s.se(place.first, place.second, v);
    }
    return s;
}

template <class Real>
struct Symmetrics : Operands<nequar::SparseSymmetricMatrix<Real>, Real> {
    using Base = Operands<nequar::SparseSymmetricMatrix<Real>, Real>;
    using Sparse = nequar::SparseSymmetricMatrix<Real>;
    using General = nequar::SparseMatrix<Real>;
    using Base::a, Base::b, Base::input, Base::ma, Base::mb;

    explicit Symmetrics(Input decisions) : Base(decisions) {
        renew(a, ma, input.in(1, kLargest));
        mb = ma;
        b = a;
    }
    void renew(Sparse& s, Mirror<Real>& m, int n) {
        m = lower_of(random_mirror<Real>(input, n, n));
        s = symmetric_of(m);
    }
    Mirror<Real> whole() const { return full_of(ma); }

    // Every eighth step or so looks at the statistics, too.
    bool step() {
        if (input.in(0, 7) == 0) check_statistics();
        const int n = ma.height;
        const int x = input.in(0, n - 1);
        const int y = input.in(0, n - 1);
        const int dx = input.in(1, n - x);
        const int dy = input.in(1, n - y);
        const Real v = Real(input.in(-3, 3));
        const bool itself = input.in(0, 3) == 0;
        const bool lower = input.in(0, 1) == 0;
        if (!itself && mb.height != n) renew(b, mb, n);
        const Sparse* const other = itself ? &a : &b;
        const Mirror<Real>& mother = itself ? ma : mb;
        const int which = input.in(0, 18);
        switch (which) {
            case 11: {
                const auto u = random_mirror<Real>(input, n, 1);
                const auto us = vector_of(u);
                Mirror<Real> product{n, n, {}};
                product.add_product(u, u);
                ma.add(lower_of(product), Real(1));
                return a.mvva(&us);
            }
            case 12: {
                const Mirror<Real> full = full_of(mother);
                nequar::SparseVector<Real> column, row;
                return other->gc(x, y, dy, &column) && other->gr(x, y, dx, &row) &&
                       fault_of(column, full.block(x, y, 1, dy, true)) == "" &&
                       fault_of(row, full.block(x, y, dx, 1, true).transposed()) == "";
            }
            case 13: {
                General block;
                return other->gb(x, y, dx, dy, &block) &&
                       fault_of(block, full_of(mother).block(x, y, dx, dy, false)) == "";
            }
            case 14: {
                General exported;
                nequar::Matrix<Real> dense;
                return a.ex(&exported, &dense) && fault_of(exported, whole()) == "" &&
                       dense == dense_of(whole());
            }
            case 15:
            case 16: {  // from one half of a matrix that is not symmetric, sparse or dense
                const Mirror<Real> general = random_mirror<Real>(input, n, n);
                const General sparse = matrix_of(general);
                nequar::Matrix<Real> from = dense_of(general), dense;
                ma = lower_of(lower ? general : general.transposed());
                if (which == 15)
                    return a.im(&sparse, lower, itself ? nullptr : &dense) && a.sbs() == 4 &&
                           (itself || dense == dense_of(whole()));
                ma.remove_zeros();
                if (input.in(0, 2) == 0) return a.im(&from, lower, nullptr);
                return a.im(&from, lower, itself ? &from : &dense) && a.sbs() == 4 &&
                       (itself ? from : dense) == dense_of(whole());
            }
            case 17: {
                nequar::MatrixSymmetric<Real> packed;
                nequar::Matrix<Real> dense = dense_of(whole());
                packed.i_Import(&dense);
                ma.remove_zeros();
                return a.im(&packed, itself ? nullptr : &dense) && dense == dense_of(whole());
            }
            case 18:
                std::swap(ma, mb);
                std::swap(a, b);
                return a.mbs(input.in(0, 3)) && (a = a * Real(2) / Real(2), true) &&
                       a == symmetric_of(ma);
            case 10:
                renew(b, mb, n);
                return true;
            default:
                return Base::shared(which, x, y, v, other, mother);
        }
    }

    // What is said of the whole matrix, against a walk over all its elements.
    void check_statistics() {
        const Mirror<Real> full = full_of(ma), full_b = full_of(mb);
        const int n = ma.height;
        Real sum = 0, squares = 0, distance = 0, largest = full.at(0, 0), least = largest;
        bool has_zero = false;
        for (int k = 0; k < n * n; ++k) {
            const Real v = full.at(k / n, k % n), gap = v - full_b.at(k / n, k % n);
            sum += v;
            squares += v * v;
            distance += gap * gap;
            largest = std::max(largest, v);
            least = std::min(least, v);
            has_zero = has_zero || v == Real(0);
        }
        const Real count = Real(n * n), mean = sum / count;
        Real deviation = -1, minimum = -1;
        int x = -1, y = -1, low_x = -1, low_y = -1;
        NEQUAR_REQUIRE(a.m() == mean && a.mst(deviation) == mean);
        const Real variance_error = deviation * deviation + mean * mean - squares / count;
        NEQUAR_REQUIRE(std::abs(variance_error) <= Real(1e-4) * (squares / count));
        NEQUAR_REQUIRE(std::abs(a.nf() - std::sqrt(squares)) <= Real(1e-6) * std::sqrt(squares));
        NEQUAR_REQUIRE(mb.height != n || a.mse(&b) == distance / count);
        NEQUAR_REQUIRE(a.itze() == has_zero && a.fize(x, y) == has_zero);
        NEQUAR_REQUIRE(!has_zero || full.at(x, y) == Real(0));
        NEQUAR_REQUIRE(a.max() == largest && a.min() == least);
        NEQUAR_REQUIRE(a.maxmin(minimum, &x, &y, &low_x, &low_y) == largest && minimum == least);
        NEQUAR_REQUIRE(full.at(x, y) == largest && full.at(low_x, low_y) == least);
    }
};

}  // namespace sparse_test
