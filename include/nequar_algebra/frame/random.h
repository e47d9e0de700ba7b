#pragma once

#include "nequar_algebra/frame/class.h"

/// One standard normal number from a seed state, which is advanced by one step.
///
/// Every int is a valid state. The states form one cycle of length 2^32, entered at far-apart
/// places by neighbouring seeds: the sequences of two seeds that differ by less than 987 share
/// nothing within 1.9 million samples. The same state gives the same number on every machine with
/// the same mathematical library. Two threads may call it at once with states of their own.
///
/// Ziggurat of 256 layers (Marsaglia and Tsang 2000) on bits hashed from the state.
NEQUAR_API float Nq_Rand_Gaussianf(int& state);

namespace nequar {

/// Scalar random numbers, uniform and Gaussian, from a seed state of 32 bits.
template <class Real>
class NEQUAR_API RandomNumberGenerator : public CNqClass {
public:
    /// Starts from the seed 1, so that a program gives the same numbers each time that it runs.
    RandomNumberGenerator();

    /// Sets the seed state; any int will do.
    void ss_Set_Seed(int seed) noexcept { state_ = seed; }
    /// Sets the seed state from the calendar time in seconds.
    void sst_Set_Seed_from_Time() noexcept;
    /// The seed state, from which `ss_Set_Seed` resumes the sequence.
    int gs_Get_Seed() const noexcept { return state_; }

    /// A number of the uniform distribution on min <= x < max; min itself when the two are equal.
    /// Bounds out of order or not finite are reported ("1") and give 0.
    Real gu_Generate_Uniform(Real min, Real max);
    Real gu(Real min, Real max) { return gu_Generate_Uniform(min, max); }
    /// A number of the normal distribution, with all the digits of the type. A variance that is
    /// negative or not a number is reported ("negative variance") and gives 0.
    Real gg_Generate_Gaussian(Real mean, Real variance);
    Real gg(Real mean, Real variance) { return gg_Generate_Gaussian(mean, variance); }

private:
    int state_ = 1;
};

}  // namespace nequar

using CNqRandom_Number_Generator = nequar::RandomNumberGenerator<double>;
using CNqRandomFloat_Number_Generator = nequar::RandomNumberGenerator<float>;

extern template class nequar::RandomNumberGenerator<double>;
extern template class nequar::RandomNumberGenerator<float>;
