// ln Γ(x)
//
//   1.5 <= x <= 2.5   ln Γ(2+z) = (1-γ) z + Σ_{k>=2} (ζ(k)-1) (-z)^k / k,   |z| <= 1/2
//                     (Abramowitz and Stegun 6.1.33); the factor z is kept apart, so that the zero
//                     at 2 keeps its relative accuracy
//   0.5 <= x < 1.5    ln Γ(x) = ln Γ(1+x) - ln x, both of which vanish at 1
//   0 < x < 0.5       ln Γ(x) = ln Γ(2+x) - ln x - ln (1+x)
//   2.5 < x < 10      ln Γ(x) = ln Γ(x-n) + ln ((x-1) ... (x-n))
//   10 <= x           Stirling: (x-1/2)(ln x - 1) + (ln 2π - 1)/2 + Σ B_2k / (2k (2k-1) x^(2k-1))
//   x < 0             reflection: ln |Γ(x)| = ln π - ln |sin πx| - ln Γ(1-x)
#include "nequar_algebra/frame/gamma.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace {

// (-1)^k (ζ(k) - 1) / k for k = 2 … 27
constexpr double kZetaSeries[] = {
    0.3224670334241132,     -0.0673523010531981,     0.020580808427784546,
    -0.007385551028673986,  0.0028905103307415234,   -0.001192753911703261,
    0.0005096695247430425,  -0.00022315475845357939, 9.945751278180853e-05,
    -4.492623673813314e-05, 2.050721277567069e-05,   -9.439488275268397e-06,
    4.374866789907488e-06,  -2.039215753801366e-06,  9.55141213040742e-07,
    -4.492469198764566e-07, 2.1207184805554665e-07,  -1.0043224823968099e-07,
    4.7698101693639804e-08, -2.2711094608943164e-08, 1.0838659214896955e-08,
    -5.183475041970047e-09, 2.4836745438024785e-09,  -1.1921401405860912e-09,
    5.731367241678862e-10,  -2.7595228851242334e-10,
};

// B_2k / (2k (2k-1)) for k = 1 … 8
constexpr double kStirlingSeries[] = {
    1.0 / 12,   -1.0 / 360,      1.0 / 1260, -1.0 / 1680,
    1.0 / 1188, -691.0 / 360360, 1.0 / 156,  -3617.0 / 122400,
};

template <std::size_t count>
double polynomial(const double (&coefficients)[count], double x) {
    double sum = 0.0;
    for (std::size_t k = count; k-- > 0;) sum = sum * x + coefficients[k];
    return sum;
}

// ln Γ(2 + z), |z| <= 1/2
double gamma_log_about_two(double z) {
    constexpr double kOneMinusEuler = 0.42278433509846713;
    return z * (kOneMinusEuler + z * polynomial(kZetaSeries, z));
}

double gamma_log_of_large(double x) {
    constexpr double kHalfLogTwoPiMinusOne = 0.4189385332046727;
    const double inverse = 1.0 / x;
    const double series = inverse * polynomial(kStirlingSeries, inverse * inverse);
    return (x - 0.5) * (std::log(x) - 1.0) + (kHalfLogTwoPiMinusOne + series);
}

double gamma_log_of_positive(double x) {
    if (x < 0.5) return gamma_log_about_two(x) - (std::log(x) + std::log1p(x));
    if (x < 1.5) return gamma_log_about_two(x - 1.0) - std::log(x);
    if (x >= 10.0) return gamma_log_of_large(x);
    double product = 1.0;
    while (x > 2.5) {
        x -= 1.0;
        product *= x;
    }
    return gamma_log_about_two(x - 2.0) + std::log(product);
}

// ln |Γ(x)| for x < 0 that is no integer. With d the distance to the nearest integer, which is
// exact, ln π - ln |sin πx| = -ln d - ln (sin πd / πd), good for the smallest d.
double gamma_log_of_negative(double x) {
    const double d = std::fabs(x - std::round(x));
    const double angle = std::numbers::pi * d;
    const double cardinal_sine = d < 1e-9 ? 1.0 : std::sin(angle) / angle;
    return -std::log(d) - std::log(cardinal_sine) - gamma_log_of_positive(1.0 - x);
}

}  // namespace

double Nq_Gamma_Log(double x) {
    if (x > 0.0) return gamma_log_of_positive(x);
    if (std::isnan(x)) return x;
    if (x == std::floor(x)) return std::numeric_limits<double>::infinity();
    return gamma_log_of_negative(x);
}
