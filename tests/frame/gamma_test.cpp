#include "nequar_algebra/frame/gamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double relative_error(double x) {
    const long double exact = std::lgamma(static_cast<long double>(x));
    return static_cast<double>(std::fabs((Nq_Gamma_Log(x) - exact) / exact));
}

TEST(GammaLog, HasFourteenDigitsForEveryPositiveArgument) {
    for (double x = 5e-324; x < 2.5e305; x *= x < 1e-3 || x > 1e3 ? 1.7 : 1.00037) {
        if (x < 2e-323) x = 2e-323;
        ASSERT_LT(relative_error(x), 3e-15) << x;
    }
    // Next to the seams and to the zeros at 1 and 2, where the result is tiny.
    for (const double seam : {0.5, 1.0, 1.5, 2.0, 2.5, 3.5, 10.0})
        for (double d = 1e-16; d < 0.1; d *= 3)
            for (const double x : {seam - d, seam + d})
                EXPECT_TRUE(x == 1.0 || x == 2.0 || relative_error(x) < 3e-15) << x;
    EXPECT_EQ(Nq_Gamma_Log(1.0), 0.0);
    EXPECT_EQ(Nq_Gamma_Log(2.0), 0.0);
}

TEST(GammaLog, ReflectsNegativeArguments) {
    for (double x = -1e-300; x > -150.0; x = x * 1.0101 - (x < -1e-2 ? 1e-3 : 0.0)) {
        const double exact = double(std::lgamma(static_cast<long double>(x)));
        const double size = 1.0 + std::fabs(x) * std::log(1.0 - x);
        ASSERT_NEAR(Nq_Gamma_Log(x), exact, 3e-15 * (size + std::fabs(exact))) << x;
    }
}

TEST(GammaLog, IsDefinedAtThePolesAndBeyondNumbers) {
    for (const double x : {0.0, -0.0, -1.0, -2.0, -1e15, -4503599627370497.0, -1e300, -kInfinity,
                           kInfinity, 1e306, std::numeric_limits<double>::max()})
        EXPECT_EQ(Nq_Gamma_Log(x), kInfinity) << x;
    EXPECT_TRUE(std::isnan(Nq_Gamma_Log(std::nan(""))));
}

}  // namespace
