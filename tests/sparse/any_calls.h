// Any operations on the sparse types with any arguments and values: the storage stays in order,
// unless z_cne has put it out of step: then nothing may be touched outside of it (the sanitizers
// look on).
#pragma once

#include <algorithm>
#include <functional>
#include <utility>

#include "sparse/mirror.h"

namespace sparse_test {

template <class Real>
class AnyCalls {
public:
    explicit AnyCalls(Input decisions) : input(decisions) {}

    void run() {
        while (!input.empty()) {
            call();
            if (is_loose) continue;
            NEQUAR_REQUIRE(stored_in(m) && stored_in(other) && stored_in(s));
        }
    }

private:
    void call() {
        x = input.any_int();
        y = input.any_int();
        dx = input.any_int();
        dy = input.any_int();
        v = input.value<Real>();
        b = input.coin() ? &m : &other;
        const std::function<void()> calls[] = {
            [this] { m.czm(some_size(), some_size(), at_most_1000(x)); },
            [this] { s.czm(some_size(), at_most_1000(x)); },
            [this] { u.czv(input.any_int(), at_most_1000(x)); },
            [this] {
                m.cim(some_size(), at_most_1000(x));
                s.cim(some_size(), at_most_1000(y));
            },
            [this] {
                m.mbs(at_most_1000(x));
                s.mbs(at_most_1000(y));
                u.mbs(at_most_1000(dx));
            },
            [this] {
                is_loose = true;
                if (input.coin()) m.z_cne(std::min(x, 100));
                if (input.coin()) s.z_cne(std::min(y, 100));
                if (input.coin()) u.z_cne(std::min(dx, 100));
            },
            [this] { std::swap(m, other); },
            [this] { m = nequar::SparseMatrix<Real>(std::move(other)); },
            [this] {
                NEQUAR_REQUIRE(is_loose || m.gb(x, y, dx, dy, &other) == m.ivrb(x, y, dx, dy));
            },
            [this] { m.sb(x, y, b); },
            [this] { b->gc(x, y, dy, &u); },
            [this] { b->gr(x, y, dx, &u); },
            [this] { m.sc(x, y, &u); },
            [this] { m.sr(x, y, &u); },
            [this] { m.mvva(&u, input.coin() ? &u : &w); },
            [this] { s.mvva(&u); },
            [this] { b->t(input.coin() ? &m : &other); },
            [this] { m.ammw(b, v); },
            [this] { m.mmme(b); },
            [this] {
                m *= v;
                m = m / v;
            },
            [this] {
                m.rze();
                s.rze();
                u.rze();
            },
            [this] { s.im(b, input.coin()); },
            [this] {
                if (s.mh() <= 64) s.ex(&m, nullptr);
            },
            [this] {
                s.gb(x, y, dx, dy, &m);
                s.gc(x, y, dy, &u);
            },
            [this] {
                s.smm(&s);
                s.mmme(&s);
            },
            [this] { u.g(x, dx, input.coin() ? &u : &w); },
            [this] { u.s(x, &w); },
            [this] { u.avvw(&w, v); },
            [this] { u.mvve(&w); },
            [this] { std::swap(u, w); },
            [this] { import_arrays(); },
            [this] { ask(); },
        };
        const std::size_t choice = std::size_t(input.below(64));
        if (choice < std::size(calls)) return calls[choice]();
        if (choice % 3 == 0) m.se(x, y, v);
        if (choice % 3 == 1) s.se(x, y, v);
        if (choice % 3 == 2) u.se(x, v);
    }

    // Sizes that can be had, or that are refused.
    int some_size() {
        const int size = input.any_int();
        return size > 40 ? std::numeric_limits<int>::max() : size;
    }
    static int at_most_1000(int n) { return std::min(n, 1000); }

    // What is imported from arrays is in order, or refused.
    void import_arrays() {
        nequar::GrowableVector<Real> values;
        CNqXvectorInt rows;
        CNqVectorInt start;
        const int count = input.below(8), width = input.below(5);
        for (int k = 0; k < count; ++k) {
            values.ae_Append_Element(input.value<Real>());
            rows.ae_Append_Element(input.any_int());
        }
        start.c_Create(width);
        for (int c = 0; c < width; ++c) start[c] = input.any_int();
        m.im(x, &values, &rows, &start);
        s.im(x, &values, &rows, &start);
        u.im(x, &values, &rows);
    }

    void ask() {
        Real r = 0;
        m.mse(b), m.mst(r), m.nf(), m.maxmin(r, &x, &y, &x, &y), m.itze(), m.fize(x, y);
        s.mse(&s), s.mst(r), s.nf(), s.maxmin(r, &x, &y, &x, &y), s.itze(), s.fize(x, y);
        u.mse(&w), u.mst(r), u.ng(x), u.ps(&w), u.maxmin(r, &x, &y), u.itze(), u.fize(x);
        NEQUAR_REQUIRE(m == m);
        nequar::Matrix<Real> dense;
        if (b->mh() <= 64) b->ex(&dense);
    }

    Input input;
    nequar::SparseMatrix<Real> m, other;
    nequar::SparseSymmetricMatrix<Real> s;
    nequar::SparseVector<Real> u, w;
    bool is_loose = false;
    // The arguments of a call.
    int x = 0, y = 0, dx = 0, dy = 0;
    Real v = 0;
    const nequar::SparseMatrix<Real>* b = nullptr;
};

}  // namespace sparse_test
