// SparseMatrix: self-tests. Random sparse matrices with dense twins; each operation is carried out
// on both, and the exported result has to equal the dense one exactly, since all of them move
// elements or compute each by itself. Included by sparse_matrix.cpp alone.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "sparse/random_elements.h"
#include "sparse/self_test.h"
#include "sparse/self_test_dense.h"

namespace nequar {

template <class Real>
bool SparseMatrix<Real>::u_mrsm_Make_a_Random_Sparse_Matrix(int d1, int d2, int number_of_non_zeros,
                                                            double min, double max, SparseMatrix* s,
                                                            Matrix<Real>* a) const {
    constexpr const char* kName = "u_mrsm_Make_a_Random_Sparse_Matrix";
    const CNqClass::CallScope scope(this);
    const auto low = static_cast<Real>(min);
    const auto high = static_cast<Real>(max);
    if (d1 < 1 || d2 < 1 || number_of_non_zeros < 0) return this->fail("1", kName);
    if (!(low <= high) || std::isinf(low) || std::isinf(high)) return this->fail("2", kName);
    Matrix<Real> own_dense;
    SparseMatrix own_sparse;
    if (a == nullptr) a = &own_dense;
    if (s == nullptr) s = &own_sparse;
    if (a->c_Create(d1, d2) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("3", kName);
    }
    draw_elements(Strided<Real>(a->p()[0], element_count(a)), number_of_non_zeros, low, high);
    if (s->im(a)) return true;
    this->adopt_failure_of(*s);
    return this->fail("4", kName);
}

// ---- elements, statistics, scalars --------------------------------------------------------------

template <class Real>
bool SparseMatrix<Real>::u_toe_Test_Operations_Elementary(int d1, int d2, double density,
                                                          double min, double max, double constant,
                                                          int repetitions) {
    constexpr const char* kName = "u_toe_Test_Operations_Elementary";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(d1, d2, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const auto c = static_cast<Real>(constant);
    if (!std::isfinite(c)) return this->fail("1", kName);
    const int number = number_of_nonzeros(d1, d2, density);
    SparseMatrix s, other;
    Matrix<Real> a, b;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &s, &a) ||
            !u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &other, &b))
            return this->fail("7", kName);
        Real value = 0;
        for (int y = 0; y < d1; ++y)
            for (int x = 0; x < d2; ++x)
                if (!s.ge(x, y, &value) || value != a[y][x]) return this->fail("8", kName);
        if (s.ge(d2, 0, &value) || value != Real(0)) return this->fail("9", kName);
        if (s.se(0, -1, Real(1)) || s.ace(-1, 0, Real(1)) || !holds(s, a))
            return this->fail("10", kName);

        // Every other element takes the value of the other matrix, 0.0 included.
        for (int y = 0; y < d1; ++y)
            for (int x = (y + repetition) % 2; x < d2; x += 2) {
                a[y][x] = b[y][x];
                if (!(x % 3 == 0 ? s.ace(x, y, b[y][x]) : s.se(x, y, b[y][x])))
                    return this->fail("11", kName);
            }
        if (!holds(s, a)) return this->fail("12", kName);
        const Size zeros = std::count(a.p()[0], a.p()[0] + element_count(&a), Real(0));
        if (!s.rze() || s.nee() != element_count(&a) - zeros || !holds(s, a))
            return this->fail("13", kName);
        int x = -1;
        int y = -1;
        if (s.itze() != (zeros > 0) || s.fize(x, y) != (zeros > 0) ||
            (zeros > 0 && a[y][x] != Real(0)))
            return this->fail("14", kName);

        const Real* const elements = a.p()[0];
        Real least = 0;
        int x_least = -1;
        int y_least = -1;
        const Real largest = s.maxmin(least, &x, &y, &x_least, &y_least);
        if (!is_extremum(true, largest, elements, element_count(&a)) || a[y][x] != largest ||
            !is_extremum(false, least, elements, element_count(&a)) ||
            a[y_least][x_least] != least || s.max() != largest || s.min() != least)
            return this->fail("1212", kName);
        const DenseStatistics dense = statistics_of(elements, element_count(&a));
        Real deviation = 0;
        const Real average = s.mst(deviation);
        const long double mean_magnitude = dense.magnitude / dense.terms;
        if (!agrees(average, dense.mean, mean_magnitude, dense.terms) || s.m() != average ||
            !agrees(deviation, dense.deviation, dense.deviation + mean_magnitude, dense.terms) ||
            !agrees(s.nf(), dense.norm, dense.norm, dense.terms))
            return this->fail("15", kName);

        const Matrix<Real> scaled = dense_result(a, a, [c](Real v, Real) { return v * c; });
        SparseMatrix product = s;
        product *= c;
        if (!holds(s * c, scaled) || !holds(product, scaled)) return this->fail("16", kName);
        SparseMatrix quotient = s;
        if (c == Real(0)) {
            if ((quotient /= c) || !holds(quotient, a)) return this->fail("18222", kName);
        } else {
            const Matrix<Real> divided = dense_result(a, a, [c](Real v, Real) { return v / c; });
            if (!(quotient /= c) || !holds(quotient, divided) || !holds(s / c, divided))
                return this->fail("17", kName);
        }
        if (s != s || (s == other) != (a == b)) return this->fail("18", kName);
    }
    return true;
}

// ---- columns, rows, blocks ----------------------------------------------------------------------

template <class Real>
bool SparseMatrix<Real>::u_toc_Test_Operations_for_Columns(int d1, int d2, double density,
                                                           double min, double max,
                                                           int repetitions) {
    constexpr const char* kName = "u_toc_Test_Operations_for_Columns";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(d1, d2, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(d1, d2, density);
    SparseMatrix from, to;
    Matrix<Real> a, b;
    SparseVector<Real> part;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &from, &a) ||
            !u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &to, &b))
            return this->fail("7", kName);
        for (int x = 0; x < d2; ++x)
            for (int y = 0; y < d1; ++y)
                for (int dy = d1 - y; dy > 0; --dy) {
                    if (!from.gc(x, y, dy, &part)) return this->fail("8", kName);
                    if (!to.sc(x, y, &part)) return this->fail("9", kName);
                    for (int r = y; r < y + dy; ++r) b[r][x] = a[r][x];
                    if (!(dense_line(part, false) == dense_part(a, x, y, 1, dy)))
                        return this->fail("10", kName);
                    if (!holds(to, b)) return this->fail("11", kName);
                }
    }
    return true;
}

template <class Real>
bool SparseMatrix<Real>::u_tor_Test_Operations_for_Rows(int d1, int d2, double density, double min,
                                                        double max, int repetitions) {
    constexpr const char* kName = "u_tor_Test_Operations_for_Rows";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(d1, d2, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(d1, d2, density);
    SparseMatrix from, to;
    Matrix<Real> a, b;
    SparseVector<Real> part;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &from, &a) ||
            !u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &to, &b))
            return this->fail("7", kName);
        for (int y = 0; y < d1; ++y)
            for (int x = 0; x < d2; ++x)
                for (int dx = d2 - x; dx > 0; --dx) {
                    if (!from.gr(x, y, dx, &part)) return this->fail("8", kName);
                    if (!to.sr(x, y, &part)) return this->fail("9", kName);
                    for (int column = x; column < x + dx; ++column) b[y][column] = a[y][column];
                    if (!(dense_line(part, true) == dense_part(a, x, y, dx, 1)))
                        return this->fail("10", kName);
                    if (!holds(to, b)) return this->fail("11", kName);
                }
    }
    return true;
}

template <class Real>
bool SparseMatrix<Real>::u_tob_Test_Operations_for_Blocks(int d1, int d2, double density,
                                                          double min, double max, int repetitions) {
    constexpr const char* kName = "u_tob_Test_Operations_for_Blocks";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(d1, d2, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(d1, d2, density);
    SparseMatrix from, to, block;
    this->zet_x(&from, &to, &block);
    Matrix<Real> a, b;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &from, &a) ||
            !u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &to, &b))
            return this->fail("7", kName);
        for (int x = 0; x < d2; ++x)
            for (int y = 0; y < d1; ++y)
                for (int dx = d2 - x; dx > 0; --dx)
                    for (int dy = d1 - y; dy > 0; --dy) {
                        if (!from.gb(x, y, dx, dy, &block)) return this->fail("8", kName);
                        if (!to.sb(x, y, &block)) return this->fail("9", kName);
                        const Matrix<Real> part = dense_part(a, x, y, dx, dy);
                        kernel::copy<Real>(view_of(&part), view_of(&b).block(y, x, dy, dx));
                        if (!holds(block, part)) return this->fail("10", kName);
                        if (!holds(to, b)) return this->fail("11", kName);
                    }
    }
    return true;
}

// ---- two matrices -------------------------------------------------------------------------------

template <class Real>
bool SparseMatrix<Real>::u_tom_Test_Operations_with_Matrices(int d1, int d2, double density,
                                                             double min, double max,
                                                             int repetitions) {
    constexpr const char* kName = "u_tom_Test_Operations_with_Matrices";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(d1, d2, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(d1, d2, density);
    SparseMatrix s, u;
    Matrix<Real> a, b;
    SparseVector<Real> left, right;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &s, &a) ||
            !u_mrsm_Make_a_Random_Sparse_Matrix(d1, d2, number, min, max, &u, &b))
            return this->fail("7", kName);
        const Real weight = s.max() - Real(2);
        const auto sum = [](Real p, Real q) { return p + q; };
        const auto weighted = [weight](Real p, Real q) { return p + weight * q; };
        const auto difference = [](Real p, Real q) { return p - q; };
        const auto product = [](Real p, Real q) { return p * q; };
        for (const bool with_itself : {false, true}) {
            const Matrix<Real>& dense = with_itself ? a : b;
            const auto check = [&](const auto& apply, const auto& of_elements, const char* code) {
                SparseMatrix result = s;
                return (apply(result, with_itself ? &result : &u) &&
                        holds(result, dense_result(a, dense, of_elements))) ||
                       this->fail(code, kName);
            };
            if (!check([](auto& r, auto* q) { return r.amm(q); }, sum, "8") ||
                !check([weight](auto& r, auto* q) { return r.ammw(q, weight); }, weighted, "9") ||
                !check([](auto& r, auto* q) { return r.smm(q); }, difference, "10") ||
                !check([](auto& r, auto* q) { return r.mmme(q); }, product, "11"))
                return false;
        }
        Matrix<Real> turned;
        turned.c_Create(d2, d1);
        kernel::transpose<Real>(view_of(&a), view_of(&turned));
        SparseMatrix transposed, in_place = s;
        if (!s.t(&transposed) || !holds(transposed, turned) || !in_place.t(&in_place) ||
            !holds(in_place, turned))
            return this->fail("12", kName);

        if (!s.gc(0, 0, d1, &left) || !u.gr(0, 0, d2, &right)) return this->fail("13", kName);
        Matrix<Real> updated = a;
        for (int y = 0; y < d1; ++y)
            for (int x = 0; x < d2; ++x)
                if (a[y][0] != Real(0) && b[0][x] != Real(0)) updated[y][x] += b[0][x] * a[y][0];
        SparseMatrix with_product = s;
        if (!with_product.mvva(&left, &right) || !holds(with_product, updated))
            return this->fail("14", kName);

        const Matrix<Real> gap = dense_result(a, b, difference);
        long double squares = 0;
        for (Size i = 0; i < element_count(&gap); ++i)
            squares += static_cast<long double>(gap.p()[0][i]) * gap.p()[0][i];
        const auto elements = static_cast<double>(element_count(&gap));
        if (!agrees(s.mse(&u), squares / elements, squares / elements, elements))
            return this->fail("15", kName);
    }
    return true;
}

template <class Real>
bool SparseMatrix<Real>::u_tot_Test_Operations_Total(int d1, int d2, double density, double min,
                                                     double max, double constant,
                                                     int repetitions_elementary,
                                                     int repetitions_columns, int repetitions_rows,
                                                     int repetitions_blocks,
                                                     int repetitions_matrices) {
    constexpr const char* kName = "u_tot_Test_Operations_Total";
    const CNqClass::CallScope scope(this);
    if (!u_toe_Test_Operations_Elementary(d1, d2, density, min, max, constant,
                                          repetitions_elementary))
        return this->fail("u_toe_Test_Operations_Elementary", kName);
    if (!u_toc_Test_Operations_for_Columns(d1, d2, density, min, max, repetitions_columns))
        return this->fail("u_toc_Test_Operations_for_Columns", kName);
    if (!u_tor_Test_Operations_for_Rows(d1, d2, density, min, max, repetitions_rows))
        return this->fail("u_tor_Test_Operations_for_Rows", kName);
    if (!u_tob_Test_Operations_for_Blocks(d1, d2, density, min, max, repetitions_blocks))
        return this->fail("u_tob_Test_Operations_for_Blocks", kName);
    if (!u_tom_Test_Operations_with_Matrices(d1, d2, density, min, max, repetitions_matrices))
        return this->fail("u_tom_Test_Operations_with_Matrices", kName);
    return true;
}

}  // namespace nequar
