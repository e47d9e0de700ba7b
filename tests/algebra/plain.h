// What the tests of the algebra share: operands, and how an operation fails.
#pragma once

#include <array>
#include <functional>
#include <limits>

#include "nequar_algebra/algebra.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {

template <class Real>
Vector<Real> random_vector(int n, unsigned seed) {
    Vector<Real> v;
    random_matrix<Real>(1, n, seed).gr_Get_Row(0, 0, n, &v);
    return v;
}
template <class Real>
Matrix<Real> diagonal_of(const Vector<Real>& d, int h, int w) {
    return matrix_of<Real>(h, w, [&](int y, int x) { return y == x ? d[x] : Real(0); });
}
// wa A + wb B
template <class Real>
Matrix<Real> sum_of(const Matrix<Real>& a, const Matrix<Real>& b, double wa = 1, double wb = 1) {
    return matrix_of<Real>(a.mh(), a.mw(),
                           [&](int y, int x) { return wa * a[y][x] + wb * b[y][x]; });
}

template <class Real>
double largest_difference(const Vector<Real>& a, const Vector<Real>& b) {
    return largest_difference(column_of(a), column_of(b));
}
// What n operations on numbers up to one may lose.
template <class Real>
double bound(int n) {
    return (8.0 + n) * kEpsilon<Real>;
}

template <class Object>
bool never_failed(const Object& object) {
    return object.grm_Get_Recorded_Message().size() == 0;
}

// The operation of `al` records this failure alone; and, refused, "1", with `out` as `kept`.
#define EXPECT_FAILED(detail, method, ...) \
    al.cr_Clear_Record();                  \
    al.method(__VA_ARGS__);                \
    EXPECT_TRUE(fails_as(al, std::string(#method ": ") + detail, false))
#define EXPECT_REFUSED(method, ...)          \
    EXPECT_FAILED("1", method, __VA_ARGS__); \
    EXPECT_TRUE(out == kept) << #method

}  // namespace nequar::test
