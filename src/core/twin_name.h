// One template source serves the double and the float class; only their names differ. The name
// string of a class comes from here, as a literal that costs nothing to store.
#pragma once

#include <type_traits>

namespace nequar {

template <class Real>
constexpr const char* twin_name(const char* name_in_double, const char* name_in_float) {
    return std::is_same_v<Real, float> ? name_in_float : name_in_double;
}

}  // namespace nequar
