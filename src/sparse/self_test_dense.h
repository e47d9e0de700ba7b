// The dense twins' side of the self-tests, and the checks that vectors and matrices, or both kinds
// of matrices, have in common. A check answers the code of its failure, or null. Without memory a
// result stays empty, and is not what was expected.
#pragma once

#include <algorithm>

#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "sparse/self_test.h"

namespace nequar {

// Whether a sparse object exports to exactly the dense one.
template <class Sparse, class Dense>
bool holds(const Sparse& s, const Dense& a) {
    Dense exported;
    return s.ex(&exported) && exported == a;
}

// The height x width part of a that begins at (x, y).
template <class Real>
Matrix<Real> dense_part(const Matrix<Real>& a, int x, int y, int width, int height) {
    Matrix<Real> part;
    if (part.c_Create(height, width) != nullptr)
        kernel::copy<Real>(view_of(&a).block(y, x, height, width), view_of(&part));
    return part;
}

// Writes a part at (x, y) of a.
template <class Real>
void set_part(Matrix<Real>& a, int x, int y, const Matrix<Real>& part) {
    kernel::copy<Real>(view_of(&part), view_of(&a).block(y, x, part.mh(), part.mw()));
}

template <class Real>
Matrix<Real> dense_line(const SparseVector<Real>& v, bool is_row) {
    Vector<Real> exported;
    Matrix<Real> line;
    if (v.ex(&exported) &&
        line.c_Create(is_row ? 1 : exported.vs(), is_row ? exported.vs() : 1) != nullptr)
        std::copy(exported.p(), exported.p() + exported.vs(), line.p()[0]);
    return line;
}

template <class Real, class Operation>
Matrix<Real> dense_result(const Matrix<Real>& a, const Matrix<Real>& b,
                          const Operation& operation) {
    Matrix<Real> result;
    if (result.c_Create(a.mh(), a.mw()) != nullptr)
        std::transform(a.p()[0], a.p()[0] + element_count(&a), b.p()[0], result.p()[0], operation);
    return result;
}

template <class Real, class Operation>
Vector<Real> dense_result(const Vector<Real>& a, const Vector<Real>& b,
                          const Operation& operation) {
    Vector<Real> result;
    if (result.c_Create(a.vs()) != nullptr)
        std::transform(a.p(), a.p() + a.vs(), b.p(), result.p(), operation);
    return result;
}

// Mean and deviation, which every sparse object has.
template <class Sparse>
bool has_moments(const Sparse& s, const DenseStatistics& dense) {
    decltype(s.m()) deviation = 0;
    const auto average = s.mst(deviation);
    const long double mean_magnitude = dense.magnitude / dense.terms;
    return agrees(average, dense.mean, mean_magnitude, dense.terms) && s.m() == average &&
           agrees(deviation, dense.deviation, dense.deviation + mean_magnitude, dense.terms);
}

template <class Sparse, class Real>
const char* code_of_statistics(const Sparse& s, const Matrix<Real>& a) {
    const Real* const elements = a.p()[0];
    const Size count = element_count(&a);
    Real least = 0;
    int x = -1, y = -1, x_least = -1, y_least = -1;
    const Real largest = s.maxmin(least, &x, &y, &x_least, &y_least);
    if (!is_extremum(true, largest, elements, count) || a[y][x] != largest ||
        !is_extremum(false, least, elements, count) || a[y_least][x_least] != least ||
        s.max() != largest || s.min() != least)
        return "1212";
    const DenseStatistics dense = statistics_of(elements, count);
    return has_moments(s, dense) && agrees(s.nf(), dense.norm, dense.norm, dense.terms) ? nullptr
                                                                                        : "15";
}

template <class Sparse, class Dense, class Real>
const char* code_of_scalars(const Sparse& s, const Dense& a, Real c) {
    const Dense scaled = dense_result(a, a, [c](Real v, Real) { return v * c; });
    Sparse product = s;
    product *= c;
    if (!holds(s * c, scaled) || !holds(product, scaled)) return "16";
    Sparse quotient = s;
    if (c == Real(0)) return (quotient /= c) || !holds(quotient, a) ? "18222" : nullptr;
    const Dense divided = dense_result(a, a, [c](Real v, Real) { return v / c; });
    return (quotient /= c) && holds(quotient, divided) && holds(s / c, divided) ? nullptr : "17";
}

template <class Pair>
const char* code_of_comparison(const Pair& pair) {
    return pair.s != pair.s || (pair.s == pair.other) != (pair.a == pair.b) ? "18" : nullptr;
}

// Sum, weighted sum, difference and product of elements, of two objects and of one with itself.
template <class Pair, class Add, class AddWeighted, class Subtract, class Multiply>
const char* code_of_sums(const Pair& pair, const Add& add, const AddWeighted& add_weighted,
                         const Subtract& subtract, const Multiply& multiply) {
    using Real = decltype(pair.s.max());
    const Real weight = pair.s.max() - Real(2);
    for (const bool with_itself : {false, true}) {
        const auto gives = [&](const auto& apply, const auto& of_elements) {
            auto result = pair.s;
            return apply(result, with_itself ? &result : &pair.other) &&
                   holds(result, dense_result(pair.a, with_itself ? pair.a : pair.b, of_elements));
        };
        if (!gives(add, [](Real p, Real q) { return p + q; })) return "8";
        if (!gives([&](auto& r, auto* q) { return add_weighted(r, q, weight); },
                   [weight](Real p, Real q) { return p + weight * q; }))
            return "9";
        if (!gives(subtract, [](Real p, Real q) { return p - q; })) return "10";
        if (!gives(multiply, [](Real p, Real q) { return p * q; })) return "11";
    }
    return nullptr;
}

template <class Pair>
const char* code_of_matrix_sums(const Pair& pair) {
    return code_of_sums(
        pair, [](auto& r, auto* q) { return r.amm(q); },
        [](auto& r, auto* q, auto weight) { return r.ammw(q, weight); },
        [](auto& r, auto* q) { return r.smm(q); }, [](auto& r, auto* q) { return r.mmme(q); });
}

// The mean squared error between the two matrices of a pair.
template <class Pair>
const char* code_of_distance(const Pair& pair) {
    const Size count = element_count(&pair.a);
    long double squares = 0;
    for (Size i = 0; i < count; ++i) {
        const auto gap = pair.a.p()[0][i] - pair.b.p()[0][i];
        squares += static_cast<long double>(gap) * gap;
    }
    const auto elements = static_cast<double>(count);
    const long double expected = squares / elements;
    return agrees(pair.s.mse(&pair.other), expected, expected, elements) ? nullptr : "15";
}

}  // namespace nequar
