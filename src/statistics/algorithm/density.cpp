#include "statistics/algorithm/density.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "kernel/kernel.h"
#include "statistics/algorithm/sample_layout.h"

namespace nequar {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr Size kCounted = 1024;  // samples whose distances are compared at a time
constexpr Size kForms = 128;     // samples whose deviations are multiplied by S at a time

}  // namespace

template <class Real>
Size count_within(const Real* x, View<const Real> samples, Real limit) {
    Real distances[kCounted];
    Size count = 0;
    for (Size i = 0; i < samples.height; i += kCounted) {
        const Size w = std::min(kCounted, samples.height - i);
        kernel::squared_distances(x, samples.rows(i, w), distances);
        if (has_nan(w, distances)) return -1;
        for (Size j = 0; j < w; ++j) count += distances[j] <= limit ? 1 : 0;
    }
    return count;
}

template <class Real>
bool has_nan(Size n, const Real* x) {
    bool found = false;
    for (Size i = 0; i < n; ++i) found |= std::isnan(x[i]);
    return found;
}

double ball_volume(Size d, double r2, double log_gamma) {
    const double half = static_cast<double>(d) / 2.0;
    const double power = std::pow(kPi * r2, half);
    const double gamma = std::exp(log_gamma);
    if (std::isnormal(power) && std::isfinite(gamma)) return power / gamma;
    return std::exp(half * std::log(kPi * r2) - log_gamma);
}

template <class Real>
Real nearest_neighbour_density(Size k, Size n, double volume) {
    if (volume == 0.0) return Real(1e15);
    return static_cast<Real>(static_cast<double>(k) / (volume * static_cast<double>(n)));
}

template <class Real>
Real parzen_density(const Real* x, View<const Real> samples, Real h, double log_gamma) {
    const Size count = count_within(x, samples, h * h);
    if (count < 0) return std::numeric_limits<Real>::quiet_NaN();
    const double radius = static_cast<double>(h);
    const double volume = ball_volume(samples.width, radius * radius, log_gamma);
    return static_cast<Real>(static_cast<double>(count) /
                             (volume * static_cast<double>(samples.height)));
}

template <class Real>
Outcome quadratic_forms(View<const Real> samples, const Real* mean, View<const Real> s, Real* q) {
    const Size n = samples.height;
    const Size d = samples.width;
    Workspace<Real> work(2 * kForms * d);
    if (!work) return {OutcomeKind::no_memory};
    for (Size first = 0; first < n; first += kForms) {
        const Size w = std::min(kForms, n - first);
        const View<const Real> part = samples.rows(first, w);
        if (stored_as_columns(samples)) {  // u: d x w, column after column a deviation
            const View<Real> u(work.data(), d, w, w);
            const View<Real> su(work.data() + d * w, d, w, w);
            for (Size k = 0; k < d; ++k) kernel::add_constant(w, &part(0, k), -mean[k], &u(k, 0));
            kernel::gemm(Real(1), s, reading(u), kernel::Update::set, su);
            kernel::fill(w, Real(0), q + first);
            for (Size k = 0; k < d; ++k) {
                kernel::multiply_elementwise<Real>(w, &u(k, 0), &su(k, 0), &u(k, 0));
                kernel::add<Real>(w, q + first, &u(k, 0), q + first);
            }
        } else {  // u: w x d, row after row
            const View<Real> u(work.data(), w, d, d);
            const View<Real> us(work.data() + w * d, w, d, d);
            for (Size i = 0; i < w; ++i) kernel::subtract(d, part.row(i).data, mean, u.row(i).data);
            kernel::gemm(Real(1), reading(u), s, kernel::Update::set, us);
            for (Size i = 0; i < w; ++i)
                q[first + i] = kernel::dot(reading(u.row(i)), reading(us.row(i)));
        }
    }
    return Outcome::success();
}

double gaussian_height(Size d, double determinant) {
    return std::sqrt(determinant) / std::pow(kTwoPi, static_cast<double>(d) / 2.0);
}

template <class Real>
void gaussian_values(Size n, double height, double factor, Real* values) {
    for (Size i = 0; i < n; ++i)
        values[i] = static_cast<Real>(std::exp(factor * static_cast<double>(values[i])) * height);
}

#define NEQUAR_INSTANTIATE(Real)                                                              \
    template Size count_within(const Real*, View<const Real>, Real);                          \
    template Real nearest_neighbour_density<Real>(Size, Size, double);                        \
    template Real parzen_density(const Real*, View<const Real>, Real, double);                \
    template bool has_nan(Size, const Real*);                                                 \
    template Outcome quadratic_forms(View<const Real>, const Real*, View<const Real>, Real*); \
    template void gaussian_values(Size, double, double, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
