#include "nequar_algebra/frame/random.h"

#include <cmath>
#include <ctime>
#include <limits>

#include "core/twin_name.h"
#include "frame/algorithm/gaussian.h"

namespace nequar {
namespace {

std::uint32_t advance(int& state) {
    const std::uint32_t next = next_state(static_cast<std::uint32_t>(state));
    state = static_cast<int>(next);
    return next;
}

}  // namespace

template <class Real>
RandomNumberGenerator<Real>::RandomNumberGenerator() {
    set_class_name(
        twin_name<Real>("CNqRandom_Number_Generator", "CNqRandomFloat_Number_Generator"));
}

template <class Real>
void RandomNumberGenerator<Real>::sst_Set_Seed_from_Time() noexcept {
    state_ = static_cast<int>(static_cast<std::uint32_t>(std::time(nullptr)));
}

template <class Real>
Real RandomNumberGenerator<Real>::gu_Generate_Uniform(Real min, Real max) {
    if (!(min <= max) || std::isinf(min) || std::isinf(max)) {
        report("1", "gu_Generate_Uniform");
        return Real(0);
    }
    // As many bits as the type has digits, so that share < 1; the two products cannot overflow.
    constexpr int kDigits = std::numeric_limits<Real>::digits;
    constexpr Real kUnit = Real(1) / static_cast<Real>(std::uint64_t(1) << kDigits);
    const std::uint64_t bits = hashed_bits(advance(state_), 0) >> (64 - kDigits);
    const Real share = static_cast<Real>(static_cast<std::int64_t>(bits)) * kUnit;
    const Real x = min * (Real(1) - share) + max * share;
    // Rounding may reach over the ends.
    if (!(x > min)) return min;
    return x < max ? x : std::nextafter(max, min);
}

template <class Real>
Real RandomNumberGenerator<Real>::gg_Generate_Gaussian(Real mean, Real variance) {
    if (!(variance >= Real(0))) {
        report("negative variance", "gg_Generate_Gaussian");
        return Real(0);
    }
    return mean + std::sqrt(variance) * static_cast<Real>(gaussian_number(advance(state_)));
}

template class RandomNumberGenerator<double>;
template class RandomNumberGenerator<float>;

}  // namespace nequar

float Nq_Rand_Gaussianf(int& state) {
    return static_cast<float>(nequar::gaussian_number(nequar::advance(state)));
}
