// SparseVector: self-tests against dense vectors, as those of SparseMatrix. Included by
// sparse_vector.cpp alone.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "sparse/random_elements.h"
#include "sparse/self_test.h"

namespace nequar {

template <class Real>
bool SparseVector<Real>::u_mrsv_Make_a_Random_Sparse_Vector(int dimension, int number_of_non_zeros,
                                                            double min, double max, SparseVector* s,
                                                            Vector<Real>* a) const {
    constexpr const char* kName = "u_mrsv_Make_a_Random_Sparse_Vector";
    const CNqClass::CallScope scope(this);
    const auto low = static_cast<Real>(min);
    const auto high = static_cast<Real>(max);
    if (dimension < 1 || number_of_non_zeros < 0) return this->fail("1", kName);
    if (!(low <= high) || std::isinf(low) || std::isinf(high)) return this->fail("2", kName);
    Vector<Real> own_dense;
    SparseVector own_sparse;
    if (a == nullptr) a = &own_dense;
    if (s == nullptr) s = &own_sparse;
    if (a->c_Create(dimension) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("3", kName);
    }
    draw_elements(view_of(a), number_of_non_zeros, low, high);
    if (s->im(a)) return true;
    this->adopt_failure_of(*s);
    return this->fail("4", kName);
}

namespace {

template <class Real>
bool holds(const SparseVector<Real>& s, const Vector<Real>& a) {
    Vector<Real> exported;
    return s.ex(&exported) && exported == a;
}

template <class Real, class Operation>
Vector<Real> dense_result(const Vector<Real>& a, const Vector<Real>& b,
                          const Operation& operation) {
    Vector<Real> result;
    result.c_Create(a.vs());
    for (int i = 0; i < a.vs(); ++i) result[i] = operation(a[i], b[i]);
    return result;
}

}  // namespace

template <class Real>
bool SparseVector<Real>::u_toe_Test_Operations_Elementary(int dimension, double density, double min,
                                                          double max, double constant,
                                                          int repetitions) {
    constexpr const char* kName = "u_toe_Test_Operations_Elementary";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(dimension, 1, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const auto c = static_cast<Real>(constant);
    if (!std::isfinite(c)) return this->fail("1", kName);
    const int number = number_of_nonzeros(dimension, 1, density);
    SparseVector s, other;
    Vector<Real> a, b;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &s, &a) ||
            !u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &other, &b))
            return this->fail("7", kName);
        Real value = 0;
        for (int i = 0; i < dimension; ++i)
            if (!s.ge(i, &value) || value != a[i]) return this->fail("8", kName);
        if (s.ge(dimension, &value) || value != Real(0)) return this->fail("9", kName);
        if (s.se(-1, Real(1)) || s.ace(dimension, Real(1)) || !holds(s, a))
            return this->fail("10", kName);

        // Every other element takes the value of the other vector, 0.0 included.
        for (int i = repetition % 2; i < dimension; i += 2) {
            a[i] = b[i];
            if (!(i % 3 == 0 ? s.ace(i, b[i]) : s.se(i, b[i]))) return this->fail("11", kName);
        }
        if (!holds(s, a)) return this->fail("12", kName);
        const Size zeros = std::count(a.p(), a.p() + dimension, Real(0));
        if (!s.rze() || s.nee() != dimension - zeros || !holds(s, a))
            return this->fail("13", kName);
        int i = -1;
        if (s.itze() != (zeros > 0) || (s.fize(i) && a[i] != Real(0)))
            return this->fail("14", kName);

        // The place of a zero that is the extremum may not be found; its value is right all the
        // same.
        int place = -1;
        const Real largest = s.max();
        const Real least = s.min();
        if (!is_extremum(true, largest, a.p(), dimension) ||
            !is_extremum(false, least, a.p(), dimension) || s.maxmin(value) != largest ||
            value != least ||
            (largest > Real(0) && (s.max(&place) != largest || a[place] != largest)))
            return this->fail("1212", kName);
        const DenseStatistics dense = statistics_of(a.p(), dimension);
        Real deviation = 0;
        const Real average = s.mst(deviation);
        const long double mean_magnitude = dense.magnitude / dense.terms;
        if (!agrees(average, dense.mean, mean_magnitude, dense.terms) || s.m() != average ||
            !agrees(deviation, dense.deviation, dense.deviation + mean_magnitude, dense.terms) ||
            !agrees(s.n1(), dense.magnitude, dense.magnitude, dense.terms) ||
            !agrees(s.n2(), dense.norm, dense.norm, dense.terms) ||
            !agrees(s.ng(2), dense.norm, dense.norm, dense.terms))
            return this->fail("15", kName);

        const Vector<Real> scaled = dense_result(a, a, [c](Real v, Real) { return v * c; });
        SparseVector product = s;
        product *= c;
        if (!holds(s * c, scaled) || !holds(product, scaled)) return this->fail("16", kName);
        SparseVector quotient = s;
        if (c == Real(0)) {
            if ((quotient /= c) || !holds(quotient, a)) return this->fail("18222", kName);
        } else {
            const Vector<Real> divided = dense_result(a, a, [c](Real v, Real) { return v / c; });
            if (!(quotient /= c) || !holds(quotient, divided) || !holds(s / c, divided))
                return this->fail("17", kName);
        }
        if (s != s || (s == other) != (a == b)) return this->fail("18", kName);
    }
    return true;
}

template <class Real>
bool SparseVector<Real>::u_tob_Test_Operations_for_Blocks(int dimension, double density, double min,
                                                          double max, int repetitions) {
    constexpr const char* kName = "u_tob_Test_Operations_for_Blocks";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(dimension, 1, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(dimension, 1, density);
    SparseVector from, to, part;
    this->zet_x(&from, &to, &part);
    Vector<Real> a, b, dense_part;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &from, &a) ||
            !u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &to, &b))
            return this->fail("7", kName);
        for (int start = 0; start < dimension; ++start)
            for (int length = dimension - start; length > 0; --length) {
                if (!from.g(start, length, &part)) return this->fail("8", kName);
                if (!to.s(start, &part)) return this->fail("9", kName);
                dense_part.c_Create(length);
                std::copy_n(a.p() + start, length, dense_part.p());
                std::copy_n(a.p() + start, length, b.p() + start);
                if (!holds(part, dense_part)) return this->fail("10", kName);
                if (!holds(to, b)) return this->fail("11", kName);
            }
    }
    return true;
}

template <class Real>
bool SparseVector<Real>::u_tov_Test_Operations_with_Vectors(int dimension, double density,
                                                            double min, double max,
                                                            int repetitions) {
    constexpr const char* kName = "u_tov_Test_Operations_with_Vectors";
    const CNqClass::CallScope scope(this);
    const char* const bad = code_of_bad_parameter(dimension, 1, density, min, max, repetitions);
    if (bad != nullptr) return this->fail(bad, kName);
    const int number = number_of_nonzeros(dimension, 1, density);
    SparseVector s, u;
    Vector<Real> a, b;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        if (!u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &s, &a) ||
            !u_mrsv_Make_a_Random_Sparse_Vector(dimension, number, min, max, &u, &b))
            return this->fail("7", kName);
        const Real weight = s.max() - Real(2);
        const auto sum = [](Real p, Real q) { return p + q; };
        const auto weighted = [weight](Real p, Real q) { return p + weight * q; };
        const auto difference = [](Real p, Real q) { return p - q; };
        const auto product = [](Real p, Real q) { return p * q; };
        for (const bool with_itself : {false, true}) {
            const Vector<Real>& dense = with_itself ? a : b;
            const auto check = [&](const auto& apply, const auto& of_elements, const char* code) {
                SparseVector result = s;
                return (apply(result, with_itself ? &result : &u) &&
                        holds(result, dense_result(a, dense, of_elements))) ||
                       this->fail(code, kName);
            };
            if (!check([](auto& r, auto* q) { return r.avv(q); }, sum, "8") ||
                !check([weight](auto& r, auto* q) { return r.avvw(q, weight); }, weighted, "9") ||
                !check([](auto& r, auto* q) { return r.svv(q); }, difference, "10") ||
                !check([](auto& r, auto* q) { return r.mvve(q); }, product, "11"))
                return false;
        }
        long double squares = 0;
        long double scalar = 0;
        long double magnitude = 0;
        for (int i = 0; i < dimension; ++i) {
            const long double gap = a[i] - b[i];
            const long double term = static_cast<long double>(a[i]) * b[i];
            squares += gap * gap;
            scalar += term;
            magnitude += std::abs(term);
        }
        if (!agrees(s.ds(&u), squares, squares, dimension) ||
            !agrees(s.mse(&u), squares / dimension, squares / dimension, dimension) ||
            !agrees(s.ps(&u), scalar, magnitude, dimension))
            return this->fail("12", kName);
    }
    return true;
}

template <class Real>
bool SparseVector<Real>::u_tot_Test_Operations_Total(int dimension, double density, double min,
                                                     double max, double constant,
                                                     int repetitions_elementary,
                                                     int repetitions_blocks,
                                                     int repetitions_vectors) {
    constexpr const char* kName = "u_tot_Test_Operations_Total";
    const CNqClass::CallScope scope(this);
    if (!u_toe_Test_Operations_Elementary(dimension, density, min, max, constant,
                                          repetitions_elementary))
        return this->fail("u_toe_Test_Operations_Elementary", kName);
    if (!u_tob_Test_Operations_for_Blocks(dimension, density, min, max, repetitions_blocks))
        return this->fail("u_tob_Test_Operations_for_Blocks", kName);
    if (!u_tov_Test_Operations_with_Vectors(dimension, density, min, max, repetitions_vectors))
        return this->fail("u_tov_Test_Operations_with_Vectors", kName);
    return true;
}

}  // namespace nequar
