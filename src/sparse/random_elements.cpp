#include "sparse/random_elements.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <ctime>

#include "nequar_algebra/frame/random.h"

namespace nequar {
namespace {

int next_seed() {
    constexpr std::uint32_t kStep = 0x9E3779B9;  // odd, so that 2^32 calls have different seeds
    static std::atomic<std::uint32_t> seed{static_cast<std::uint32_t>(std::time(nullptr))};
    return static_cast<int>(seed.fetch_add(kStep));
}

}  // namespace

template <class Real>
void draw_elements(Strided<Real> elements, Size draws, Real min, Real max) {
    std::fill_n(elements.data, elements.size, Real(0));
    RandomNumberGenerator<double> places;
    RandomNumberGenerator<Real> values;
    places.ss_Set_Seed(next_seed());
    values.ss_Set_Seed(next_seed());
    const double end = static_cast<double>(elements.size) - 0.00001;
    for (Size k = 0; k < draws; ++k) {
        const double draw = std::round(places.gu(0.0, end));  // halves away from zero
        const Size place = draw > 0 ? static_cast<Size>(draw) : 0;
        elements(std::min(place, elements.size - 1)) = values.gu(min, max);
    }
}

template void draw_elements(Strided<double>, Size, double, double);
template void draw_elements(Strided<float>, Size, float, float);

}  // namespace nequar
