// Normals are directions: edges may be scaled by powers of two, each by its own, before they are
// multiplied, so that neither 1e200 nor 1e-200 as a coordinate costs anything.
#include "frame/algorithm/geometry.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace nequar {
namespace {

template <class Real, int N>
struct Direction {
    Real at[std::size_t{N}];
};

template <class Real, int N>
Real largest_magnitude(const Real* x) {
    Real largest = 0;
    for (int i = 0; i < N; ++i) largest = std::abs(x[i]) > largest ? std::abs(x[i]) : largest;
    return largest;
}

template <class Real, int N>
bool is_finite(const Real* x) {
    bool finite = true;
    for (int i = 0; i < N; ++i) finite = finite && std::isfinite(x[i]);
    return finite;
}

// x 2^-e, e the exponent of the largest |x_i|
template <class Real, int N>
void scale_to_one(Real* x) {
    const Real largest = largest_magnitude<Real, N>(x);
    if (largest == 0 || !is_finite<Real, N>(x)) return;
    const int exponent = std::ilogb(largest);
    for (int i = 0; i < N; ++i) x[i] = std::scalbn(x[i], -exponent);
}

// A positive multiple of to - from: half of it where the difference itself overflows.
template <class Real, int N>
Direction<Real, N> direction(const Real* from, const Real* to) {
    Direction<Real, N> d;
    for (int i = 0; i < N; ++i) d.at[i] = to[i] - from[i];
    if (!is_finite<Real, N>(d.at))
        for (int i = 0; i < N; ++i) d.at[i] = to[i] / 2 - from[i] / 2;
    scale_to_one<Real, N>(d.at);
    return d;
}

// x := x / |x|
template <class Real, int N>
bool make_unit(Real* x) {
    if (!is_finite<Real, N>(x)) {
        for (int i = 0; i < N; ++i) x[i] = std::numeric_limits<Real>::quiet_NaN();
        return false;
    }
    scale_to_one<Real, N>(x);
    Real sum = 0;
    for (int i = 0; i < N; ++i) sum += x[i] * x[i];
    if (sum == 0) return false;
    const Real norm = std::sqrt(sum);
    for (int i = 0; i < N; ++i) x[i] /= norm;
    return true;
}

template <class Real>
void store_cross_product(const Real* a, const Real* b, Real* out) {
    const Real x = a[1] * b[2] - a[2] * b[1];
    const Real y = a[2] * b[0] - a[0] * b[2];
    const Real z = a[0] * b[1] - a[1] * b[0];
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

// flat = (n, -n p): the line or plane through p with the unit normal n
template <class Real, int N>
bool store_flat(bool defined, const Direction<Real, N>& n, const Real* p, Real* flat) {
    Real offset = 0;
    for (int i = 0; i < N; ++i) offset -= n.at[i] * p[i];
    for (int i = 0; i < N; ++i) flat[i] = n.at[i];
    flat[N] = offset;
    return defined && std::isfinite(offset);
}

template <class Real>
bool segment(const Real* p0, const Real* p1, Direction<Real, 2>& normal) {
    const Direction<Real, 2> d = direction<Real, 2>(p0, p1);
    normal = {{-d.at[1], d.at[0]}};
    if (normal.at[0] == 0) normal.at[0] = 0;  // not -0
    return make_unit<Real, 2>(normal.at);
}

template <class Real>
bool triangle(const Real* p0, const Real* p1, const Real* p2, Direction<Real, 3>& normal) {
    const Direction<Real, 3> a = direction<Real, 3>(p0, p1);
    const Direction<Real, 3> b = direction<Real, 3>(p0, p2);
    store_cross_product(a.at, b.at, normal.at);
    return make_unit<Real, 3>(normal.at);
}

// The coefficients are scaled so that the largest of the normal is near one: n n neither over- nor
// underflows, and the quotient does not change.
template <class Real, int N>
Real distance_squared_to_flat(const Real* point, const Real* flat) {
    const Real largest = largest_magnitude<Real, N>(flat);
    const int exponent = largest > 0 && std::isfinite(largest) ? std::ilogb(largest) : 0;
    Real value = 0;
    Real square = 0;
    for (int i = 0; i < N; ++i) {
        const Real coefficient = std::scalbn(flat[i], -exponent);
        value += coefficient * point[i];
        square += coefficient * coefficient;
    }
    value += std::scalbn(flat[N], -exponent);
    const Real plain = value * value / square;
    return std::isinf(plain) ? value * (value / square) : plain;
}

}  // namespace

template <class Real>
void cross_product(const Real* a, const Real* b, Real* out) {
    store_cross_product(a, b, out);
}

template <class Real>
bool normal_of_segment(const Real* p0, const Real* p1, Real* normal) {
    Direction<Real, 2> n;
    const bool defined = segment(p0, p1, n);
    normal[0] = n.at[0];
    normal[1] = n.at[1];
    return defined;
}

template <class Real>
bool line_of_segment(const Real* p0, const Real* p1, Real* line) {
    Direction<Real, 2> n;
    const bool defined = segment(p0, p1, n);
    return store_flat<Real, 2>(defined, n, p0, line);
}

template <class Real>
bool normal_of_triangle(const Real* p0, const Real* p1, const Real* p2, Real* normal) {
    Direction<Real, 3> n;
    const bool defined = triangle(p0, p1, p2, n);
    for (int i = 0; i < 3; ++i) normal[i] = n.at[i];
    return defined;
}

template <class Real>
bool plane_of_triangle(const Real* p0, const Real* p1, const Real* p2, Real* plane) {
    Direction<Real, 3> n;
    const bool defined = triangle(p0, p1, p2, n);
    return store_flat<Real, 3>(defined, n, p0, plane);
}

template <class Real>
Real distance_squared_to_line(const Real* point, const Real* line) {
    return distance_squared_to_flat<Real, 2>(point, line);
}

template <class Real>
Real distance_squared_to_plane(const Real* point, const Real* plane) {
    return distance_squared_to_flat<Real, 3>(point, plane);
}

#define NEQUAR_INSTANTIATE(Real)                                                    \
    template void cross_product(const Real*, const Real*, Real*);                   \
    template bool normal_of_segment(const Real*, const Real*, Real*);               \
    template bool line_of_segment(const Real*, const Real*, Real*);                 \
    template bool normal_of_triangle(const Real*, const Real*, const Real*, Real*); \
    template bool plane_of_triangle(const Real*, const Real*, const Real*, Real*);  \
    template Real distance_squared_to_line(const Real*, const Real*);               \
    template Real distance_squared_to_plane(const Real*, const Real*);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
