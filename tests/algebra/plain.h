// Matrices and vectors for tests, and what they should come to: plain loops in double.
#pragma once

#include <cmath>
#include <functional>
#include <initializer_list>
#include <limits>
#include <string>

#include "nequar_algebra/algebra.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"
#include "support/twins.h"

namespace plain {

using nequar::test::random_matrix;
using nequar::test::worse;

template <class Real>
nequar::Matrix<Real> matrix(int h, int w, std::initializer_list<double> elements) {
    return nequar::test::matrix_of<Real>(h, w, elements);
}
template <class Real>
nequar::Vector<Real> vector(std::initializer_list<double> elements) {
    return nequar::test::vector_of<Real>(elements);
}
inline CNqVectorInt indices(std::initializer_list<double> elements) {
    return nequar::test::vector_of<int>(elements);
}
template <class Real>
nequar::Vector<Real> random_vector(int n, unsigned seed) {
    nequar::Vector<Real> v;
    random_matrix<Real>(1, n, seed).gr_Get_Row(0, 0, n, &v);
    return v;
}

// A matrix of doubles, element by element from a function.
using Element = std::function<double(int, int)>;

template <class Real>
double largest_difference(const nequar::Matrix<Real>& A, int h, int w, const Element& expected) {
    if (A.mh() != h || A.mw() != w) return std::numeric_limits<double>::quiet_NaN();
    double largest = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            largest = worse(std::abs(double(A[y][x]) - expected(y, x)), largest);
    return largest;
}

template <class Real>
double largest_difference(const nequar::Vector<Real>& v, int n,
                          const std::function<double(int)>& expected) {
    if (v.vs() != n) return std::numeric_limits<double>::quiet_NaN();
    double largest = 0;
    for (int i = 0; i < n; ++i) largest = worse(std::abs(double(v[i]) - expected(i)), largest);
    return largest;
}

// What n operations on numbers up to one may lose.
template <class Real>
double bound(int n) {
    return (8.0 + n) * std::numeric_limits<Real>::epsilon();
}

// sum of left(y, k) right(k, x), k < inner
inline Element product(const Element& left, const Element& right, int inner) {
    return [=](int y, int x) {
        double sum = 0;
        for (int k = 0; k < inner; ++k) sum += left(y, k) * right(k, x);
        return sum;
    };
}

template <class Real>
Element of(const nequar::Matrix<Real>& A) {
    return [A](int y, int x) { return double(A[y][x]); };
}

template <class Real>
Element transpose_of(const nequar::Matrix<Real>& A) {
    return [A](int y, int x) { return double(A[x][y]); };
}

template <class Real>
Element column_of(const nequar::Vector<Real>& v) {
    return [v](int y, int) { return double(v[y]); };
}

template <class Real>
Element row_of(const nequar::Vector<Real>& v) {
    return [v](int, int x) { return double(v[x]); };
}

template <class Real>
Element diagonal_of(const nequar::Vector<Real>& d) {
    return [d](int y, int x) { return y == x ? double(d[x]) : 0.0; };
}

// The record of one failure: "Class::method: detail", and nothing before it.
template <class Object>
::testing::AssertionResult failed_with(const Object& object, const std::string& method,
                                       const std::string& detail) {
    const std::string expected =
        std::string(object.gcn_Get_Class_Name().c_str()) + "::" + method + ": " + detail;
    const std::string recorded = object.grm_Get_Recorded_Message().c_str();
    const std::string trace = object.gft_Get_Failure_Trace().c_str();
    if (recorded != expected || trace != expected ||
        !(object.ged_Get_Error_Detail() == detail.c_str()))
        return ::testing::AssertionFailure() << "recorded \"" << recorded << "\", trace \"" << trace
                                             << "\", expected \"" << expected << '"';
    return ::testing::AssertionSuccess();
}

template <class Object>
bool never_failed(const Object& object) {
    return object.grm_Get_Recorded_Message().size() == 0;
}

// A sum of up to four operands, and what its elements should be. In SUM the operation of `al` and
// the formula name the operands a, b, c, d and the output.
template <class Operand>
struct SumCase {
    const char* name;
    std::function<void(const Operand*, const Operand*, const Operand*, const Operand*, Operand*)>
        run;
    double (*expected)(double, double, double, double);
};
#define SUM(operation, formula)                                                                    \
    {                                                                                              \
#operation,                                                                                \
            [&]([[maybe_unused]] auto a, [[maybe_unused]] auto b, [[maybe_unused]] auto c,         \
                [[maybe_unused]] auto d,                                                           \
                auto out) { al.operation; },                                                       \
                                          []([[maybe_unused]] double a, [[maybe_unused]] double b, \
                                             [[maybe_unused]] double c, [[maybe_unused]] double d) \
                                               -> double { return formula; }                       \
    }

// The operation of `al` records this failure alone; and, refused, "1", with `out` as `kept`.
#define EXPECT_FAILED(detail, method, ...) \
    al.method(__VA_ARGS__);                \
    EXPECT_TRUE(failed_with(al, #method, detail))
#define EXPECT_REFUSED(method, ...)          \
    EXPECT_FAILED("1", method, __VA_ARGS__); \
    EXPECT_TRUE(out == kept) << #method

}  // namespace plain
