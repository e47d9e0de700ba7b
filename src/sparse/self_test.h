// What the self-tests share: their parameters, and comparisons with dense twins.
#pragma once

#include <cmath>
#include <limits>

#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

// The code of the first bad parameter, or null; written so that a NaN is bad.
inline const char* code_of_bad_parameter(int d1, int d2, double density, double min, double max,
                                         int repetitions) {
    if (!(d1 > 0)) return "2";
    if (!(d2 > 0)) return "3";
    if (!(density >= 0 && density <= 1)) return "4";
    if (!(repetitions >= 0)) return "5";
    if (!(min <= max)) return "6";
    return nullptr;
}

// d1 d2 density, rounded; -1 when an int cannot count it.
inline int number_of_nonzeros(int d1, int d2, double density) {
    const double number = std::round(static_cast<double>(d1) * d2 * density);
    return number <= std::numeric_limits<int>::max() ? static_cast<int>(number) : -1;
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
