// SparseVector: self-tests against dense vectors, as those of SparseMatrix. Included by
// sparse_vector.cpp alone.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "sparse/random_elements.h"
#include "sparse/self_test.h"
#include "sparse/self_test_dense.h"

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
using VectorPair = TwinPair<SparseVector<Real>, Vector<Real>>;

template <class Real, class Check>
const char* first_code(const SparseVector<Real>& maker, const SelfTestInput& input,
                       VectorPair<Real>& pair, const Check& check) {
    const auto draw = [&](int number, SparseVector<Real>* s, Vector<Real>* a) {
        return maker.u_mrsv_Make_a_Random_Sparse_Vector(input.d1, number, input.min, input.max, s,
                                                        a);
    };
    return first_code(input, pair, draw, check);
}

template <class Real>
const char* code_of_elements(VectorPair<Real>& pair, int repetition) {
    SparseVector<Real>& s = pair.s;
    Vector<Real>& a = pair.a;
    const int dimension = a.vs();
    Real value = 0;
    for (int i = 0; i < dimension; ++i)
        if (!s.ge(i, &value) || value != a[i]) return "8";
    if (s.ge(dimension, &value) || value != Real(0)) return "9";
    if (s.se(-1, Real(1)) || s.ace(dimension, Real(1)) || !holds(s, a)) return "10";

    // Every other element takes the value of the other vector, 0.0 included.
    for (int i = repetition % 2; i < dimension; i += 2) {
        a[i] = pair.b[i];
        if (!(i % 3 == 0 ? s.ace(i, a[i]) : s.se(i, a[i]))) return "11";
    }
    if (!holds(s, a)) return "12";
    const Size zeros = std::count(a.p(), a.p() + dimension, Real(0));
    if (!s.rze() || s.nee() != dimension - zeros || !holds(s, a)) return "13";
    int i = -1;
    return s.itze() != (zeros > 0) || (s.fize(i) && a[i] != Real(0)) ? "14" : nullptr;
}

// The place of a zero that is the extremum may not be found; its value is right all the same.
template <class Real>
const char* code_of_statistics(const SparseVector<Real>& s, const Vector<Real>& a) {
    const int dimension = a.vs();
    Real value = 0;
    int place = -1;
    const Real largest = s.max();
    const Real least = s.min();
    if (!is_extremum(true, largest, a.p(), dimension) ||
        !is_extremum(false, least, a.p(), dimension) || s.maxmin(value) != largest ||
        value != least || (largest > Real(0) && (s.max(&place) != largest || a[place] != largest)))
        return "1212";
    const DenseStatistics dense = statistics_of(a.p(), dimension);
    return has_moments(s, dense) && agrees(s.n1(), dense.magnitude, dense.magnitude, dense.terms) &&
                   agrees(s.n2(), dense.norm, dense.norm, dense.terms) &&
                   agrees(s.ng(2), dense.norm, dense.norm, dense.terms)
               ? nullptr
               : "15";
}

// Each part is taken from the first vector into the second.
template <class Real>
const char* code_of_blocks(VectorPair<Real>& pair, SparseVector<Real>& part) {
    const int dimension = pair.a.vs();
    Vector<Real> expected;
    for (int start = 0; start < dimension; ++start)
        for (int length = dimension - start; length > 0; --length) {
            if (!pair.s.g(start, length, &part)) return "8";
            if (!pair.other.s(start, &part)) return "9";
            if (expected.c_Create(length) == nullptr) return "10";
            std::copy_n(pair.a.p() + start, length, expected.p());
            std::copy_n(pair.a.p() + start, length, pair.b.p() + start);
            if (!holds(part, expected)) return "10";
            if (!holds(pair.other, pair.b)) return "11";
        }
    return nullptr;
}

template <class Real>
const char* code_of_distances(const VectorPair<Real>& pair) {
    const int dimension = pair.a.vs();
    long double squares = 0;
    long double scalar = 0;
    long double magnitude = 0;
    for (int i = 0; i < dimension; ++i) {
        const long double gap = pair.a[i] - pair.b[i];
        const long double term = static_cast<long double>(pair.a[i]) * pair.b[i];
        squares += gap * gap;
        scalar += term;
        magnitude += std::abs(term);
    }
    return agrees(pair.s.ds(&pair.other), squares, squares, dimension) &&
                   agrees(pair.s.mse(&pair.other), squares / dimension, squares / dimension,
                          dimension) &&
                   agrees(pair.s.ps(&pair.other), scalar, magnitude, dimension)
               ? nullptr
               : "12";
}

}  // namespace

template <class Real>
bool SparseVector<Real>::u_toe_Test_Operations_Elementary(int dimension, double density, double min,
                                                          double max, double constant,
                                                          int repetitions) {
    constexpr const char* kName = "u_toe_Test_Operations_Elementary";
    const CNqClass::CallScope scope(this);
    const SelfTestInput input = {dimension, 1, density, min, max, repetitions};
    const auto c = static_cast<Real>(constant);
    const char* const bad = code_of_bad_parameter(input, c);
    if (bad != nullptr) return this->fail(bad, kName);
    VectorPair<Real> pair;
    const char* const failed =
        first_code(*this, input, pair, [c](VectorPair<Real>& drawn, int repetition) {
            const char* code = code_of_elements(drawn, repetition);
            if (code == nullptr) code = code_of_statistics(drawn.s, drawn.a);
            if (code == nullptr) code = code_of_scalars(drawn.s, drawn.a, c);
            return code != nullptr ? code : code_of_comparison(drawn);
        });
    return failed == nullptr || this->fail(failed, kName);
}

template <class Real>
bool SparseVector<Real>::u_tob_Test_Operations_for_Blocks(int dimension, double density, double min,
                                                          double max, int repetitions) {
    const CNqClass::CallScope scope(this);
    VectorPair<Real> pair;
    SparseVector part;
    this->zet_x(&pair.s, &pair.other, &part);
    const char* const failed =
        first_code(*this, {dimension, 1, density, min, max, repetitions}, pair,
                   [&part](VectorPair<Real>& drawn, int) { return code_of_blocks(drawn, part); });
    return failed == nullptr || this->fail(failed, "u_tob_Test_Operations_for_Blocks");
}

template <class Real>
bool SparseVector<Real>::u_tov_Test_Operations_with_Vectors(int dimension, double density,
                                                            double min, double max,
                                                            int repetitions) {
    const CNqClass::CallScope scope(this);
    VectorPair<Real> pair;
    const char* const failed =
        first_code(*this, {dimension, 1, density, min, max, repetitions}, pair,
                   [](VectorPair<Real>& drawn, int) {
                       const char* const code = code_of_sums(
                           drawn, [](auto& r, auto* q) { return r.avv(q); },
                           [](auto& r, auto* q, auto weight) { return r.avvw(q, weight); },
                           [](auto& r, auto* q) { return r.svv(q); },
                           [](auto& r, auto* q) { return r.mvve(q); });
                       return code != nullptr ? code : code_of_distances(drawn);
                   });
    return failed == nullptr || this->fail(failed, "u_tov_Test_Operations_with_Vectors");
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
