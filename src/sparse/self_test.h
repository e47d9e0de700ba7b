// What the self-tests share: their parameters, and comparisons with dense twins.
#pragma once

#include <cmath>
#include <limits>

#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

// What a self-test is asked for: random objects of d1 x d2 with so many non-zero values in min …
// max.
struct SelfTestInput {
    int d1;
    int d2;
    double density;
    double min;
    double max;
    int repetitions;
};

// The code of the first bad parameter, or null; written so that a NaN is bad.
inline const char* code_of_bad_parameter(const SelfTestInput& input) {
    if (!(input.d1 > 0)) return "2";
    if (!(input.d2 > 0)) return "3";
    if (!(input.density >= 0 && input.density <= 1)) return "4";
    if (!(input.repetitions >= 0)) return "5";
    if (!(input.min <= input.max)) return "6";
    return nullptr;
}

// The same for a test that takes a constant as well.
template <class Real>
const char* code_of_bad_parameter(const SelfTestInput& input, Real constant) {
    const char* const bad = code_of_bad_parameter(input);
    return bad == nullptr && !std::isfinite(constant) ? "1" : bad;
}

// d1 d2 density, rounded; -1 when an int cannot count it.
inline int number_of_nonzeros(const SelfTestInput& input) {
    const double number = std::round(static_cast<double>(input.d1) * input.d2 * input.density);
    return number <= std::numeric_limits<int>::max() ? static_cast<int>(number) : -1;
}

// Two random sparse objects with their dense twins.
template <class Sparse, class Dense>
struct TwinPair {
    Sparse s, other;
    Dense a, b;
};

// The code of the first failure of a self-test, or null: of its parameters, then of check(pair,
// repetition) on each of so many pairs, whose halves draw(number of non-zeros, s, a) makes.
template <class Pair, class Draw, class Check>
const char* first_code(const SelfTestInput& input, Pair& pair, const Draw& draw,
                       const Check& check) {
    const char* const bad = code_of_bad_parameter(input);
    if (bad != nullptr) return bad;
    const int number = number_of_nonzeros(input);
    for (int repetition = 0; repetition < input.repetitions; ++repetition) {
        if (!draw(number, &pair.s, &pair.a) || !draw(number, &pair.other, &pair.b)) return "7";
        const char* const code = check(pair, repetition);
        if (code != nullptr) return code;
    }
    return nullptr;
}

// Whether a result agrees with what was summed in long double over `terms` terms, which add up to
// `magnitude` in absolute value.
template <class Real>
bool agrees(Real result, long double expected, long double magnitude, double terms) {
    if (result == static_cast<Real>(expected)) return true;
    const long double bound = 8 * (terms + 8) * std::numeric_limits<Real>::epsilon() * magnitude;
    return std::abs(static_cast<long double>(result) - expected) <= bound;
}

// Mean, deviation and norm of all elements of a dense array.
struct DenseStatistics {
    double terms = 0;
    long double magnitude = 0;  // sum |x|
    long double mean = 0;
    long double deviation = 0;
    long double norm = 0;
};

template <class Real>
DenseStatistics statistics_of(const Real* x, std::ptrdiff_t count) {
    DenseStatistics s;
    s.terms = static_cast<double>(count);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const long double v = x[i];
        s.mean += v;
        s.magnitude += std::abs(v);
        s.norm += v * v;
    }
    s.mean /= static_cast<long double>(count);
    s.norm = std::sqrt(s.norm);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const long double difference = x[i] - s.mean;
        s.deviation += difference * difference;
    }
    s.deviation = std::sqrt(s.deviation / static_cast<long double>(count));
    return s;
}

// Whether `value` is the largest (smallest) of all.
template <class Real>
bool is_extremum(bool largest, Real value, const Real* x, std::ptrdiff_t count) {
    bool found = false;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        if (!(largest ? x[i] <= value : x[i] >= value)) return false;
        found = found || x[i] == value;
    }
    return found;
}

}  // namespace nequar
