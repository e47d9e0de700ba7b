#include "factorization/algorithm/reflector.h"

#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "frame/algorithm/norm.h"
#include "kernel/kernel.h"

namespace nequar {

namespace {

template <class Real>
inline constexpr Real kSmallestNormal = std::numeric_limits<Real>::min();

// Norms in this range keep their precision and can be inverted.
template <class Real>
inline constexpr Real kSmallNorm = kSmallestNormal<Real> / std::numeric_limits<Real>::epsilon();
template <class Real>
inline constexpr Real kLargeNorm = std::numeric_limits<Real>::max() / 16;

// Scaling by 2^-exponent is wanted when alpha or the norm of the rest leaves that range.
template <class Real>
bool is_plain(Real alpha, Real rest) {
    return rest >= kSmallNorm<Real> && rest <= kLargeNorm<Real> &&
           std::abs(alpha) <= kLargeNorm<Real>;
}

template <class Real>
Real length(Real alpha, Real rest) {
    const Real squares = alpha * alpha + rest * rest;
    if (squares >= kSmallNorm<Real> && squares <= kLargeNorm<Real>) return std::sqrt(squares);
    return std::hypot(alpha, rest);
}

template <class Real>
int exponent_of_largest(Strided<const Real> x) {
    return std::ilogb(x(kernel::index_of_largest_magnitude(x)));
}

// out := x / 2^exponent, exact but for what becomes subnormal
template <class Real>
void divide_by_power_of_two(Strided<const Real> x, int exponent, Strided<Real> out) {
    for (Size i = 0; i < x.size; ++i) out(i) = std::scalbn(x(i), -exponent);
}

template <class Real>
bool is_finite(Strided<const Real> x) {
    for (Size i = 0; i < x.size; ++i)
        if (!std::isfinite(x(i))) return false;
    return true;
}

template <class Real>
void fill(Real value, Strided<Real> x) {
    for (Size i = 0; i < x.size; ++i) x(i) = value;
}

template <class Real>
Real norm_without(Strided<const Real> x, Size pos) {
    const Real before = kernel::norm2(x.part(0, pos));
    const Real after = kernel::norm2(x.part(pos + 1, x.size - pos - 1));
    if (before == 0) return after;
    if (after == 0) return before;
    return std::hypot(before, after);
}

}  // namespace

template <class Real>
Real householder_vector(Strided<Real> x, Size pos) {
    Real alpha = x(pos);
    Real rest = norm_without(reading(x), pos);
    if (rest == 0) {
        x(pos) = 1;
        return 0;
    }
    int exponent = 0;
    if (!is_plain(alpha, rest)) {
        if (!is_finite(reading(x))) {
            fill(std::numeric_limits<Real>::quiet_NaN(), x);
            x(pos) = 1;
            return std::numeric_limits<Real>::quiet_NaN();
        }
        exponent = exponent_of_largest(reading(x));
        Real squares = 0;
        for (Size i = 0; i < x.size; ++i) {
            const Real scaled = std::scalbn(x(i), -exponent);
            if (i != pos) squares += scaled * scaled;
        }
        rest = std::sqrt(squares);
        alpha = std::scalbn(alpha, -exponent);
    }
    // beta = (rest / mu)^2 / (1 + alpha / mu), and v = -mu beta
    const Real mu = length(alpha, rest);
    const Real v = alpha <= 0 ? alpha - mu : -rest * (rest / (alpha + mu));
    const Real beta = -v / mu;
    x(pos) = 1;
    if (!(beta >= kSmallestNormal<Real>)) return 0;
    for (Size i = 0; i < x.size; ++i)
        if (i != pos) x(i) = std::scalbn(x(i), -exponent) / v;
    return beta;
}

// With c = sqrt(1 + |alpha| / mu), u = sqrt(beta) v is
//   alpha >  0:  u(0) = ||rest|| / (c mu),   u(i) = -(c / ||rest||) x(i)
//   alpha <= 0:  u(0) = c,                   u(i) = -x(i) / (c mu)
template <class Real>
Reflection<Real> make_reflector(Strided<const Real> x, Strided<Real> u) {
    const Size n = x.size;
    const Real first = x(0);
    Real alpha = first;
    Real rest = kernel::norm2(x.part(1, n - 1));
    if (rest == 0) {
        fill(Real(0), u);
        return {first, true};
    }
    int exponent = 0;
    if (!is_plain(alpha, rest)) {
        if (!is_finite(x)) {
            fill(std::numeric_limits<Real>::quiet_NaN(), u);
            return {std::numeric_limits<Real>::quiet_NaN(), false};
        }
        exponent = exponent_of_largest(x);
        divide_by_power_of_two(x, exponent, u);
        x = u;
        alpha = x(0);
        rest = kernel::norm2(x.part(1, n - 1));
    }
    const Real mu = length(alpha, rest);
    const Real c = std::sqrt(1 + std::abs(alpha) / mu);
    Real head = c;
    Real factor = -1 / (c * mu);
    if (alpha > 0) {
        head = rest / mu / c;
        factor = -c / rest;
        if (!(head * head >= kSmallestNormal<Real>)) {
            fill(Real(0), u);
            return {first, true};
        }
    }
    if (n <= 32) {
        for (Size i = 1; i < n; ++i) u(i) = factor * x(i);
    } else {
        if (x.data != u.data) kernel::copy(x, u);
        kernel::scale(factor, u);
    }
    u(0) = head;
    return {std::scalbn(mu, exponent), false, exponent == 0 ? factor : Real(0)};
}

template <class Real>
void reflect_from_left(Strided<const Real> u, View<Real> a, Strided<Real> w) {
    if (a.width == 1) {
        const Strided<Real> column = a.column(0);
        w(0) = kernel::dot(u, reading(column));
        kernel::axpy(-w(0), u, column);
        return;
    }
    // Below this the way to the kernels takes longer than the work.
    constexpr Size kTiny = 8;
    if (a.height <= kTiny && a.width <= kTiny) {
        for (Size j = 0; j < a.width; ++j) w(j) = 0;
        for (Size i = 0; i < a.height; ++i)
            for (Size j = 0; j < a.width; ++j) w(j) += u(i) * a(i, j);
        for (Size i = 0; i < a.height; ++i)
            for (Size j = 0; j < a.width; ++j) a(i, j) -= u(i) * w(j);
        return;
    }
    kernel::gemv(Real(1), reading(a.transposed()), u, kernel::Update::set, w);
    kernel::ger(Real(-1), u, reading(w), a);
}

template <class Real>
Outcome householder_matrix(Strided<const Real> v, View<Real> h) {
    const Size n = v.size;
    Workspace<Real> elements(n);
    if (!elements) return {OutcomeKind::no_memory};
    const Strided<Real> u(elements.data(), n);
    kernel::copy(v, u);
    kernel::fill(Real(0), h);
    for (Size i = 0; i < n; ++i) h(i, i) = 1;
    if (normalize(u))
        kernel::ger(Real(-2), reading(u), reading(u), h);
    else if (kernel::norm2(v) != 0)
        kernel::fill(std::numeric_limits<Real>::quiet_NaN(), h);
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                                     \
    template Real householder_vector(Strided<Real>, Size);                           \
    template Reflection<Real> make_reflector(Strided<const Real>, Strided<Real>);    \
    template void reflect_from_left(Strided<const Real>, View<Real>, Strided<Real>); \
    template Outcome householder_matrix(Strided<const Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
