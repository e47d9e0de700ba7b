// Unsigned keys whose ascending order is the descending order of the numbers they stand for:
//
//   +inf < ... < 1 < ... < 0 = -0 < ... < -1 < ... < -inf < NaN
//
// An IEEE number x >= 0 read as an integer grows with x, and one below 0 shrinks; complementing the
// one and clearing the sign of the other puts both on one ascending scale.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace nequar {

template <class Real>
using RankKey = std::conditional_t<std::is_same_v<Real, float>, std::uint32_t, std::uint64_t>;

template <class Real>
inline RankKey<Real> rank_key(Real x) {
    using Key = RankKey<Real>;
    constexpr Key kSign = Key(1) << (std::numeric_limits<Key>::digits - 1);
    const Key bits = std::bit_cast<Key>(x + Real(0));  // -0 + 0 = 0
    const Key key = (bits & kSign) != 0 ? bits : Key(~bits & ~kSign);
    return std::isnan(x) ? std::numeric_limits<Key>::max() : key;
}

}  // namespace nequar
