// The details of failures that any operation of the algebra classes may meet.
#pragma once

namespace nequar {

inline constexpr const char* kCannotSizeOutput = "cannot size the output";
inline constexpr const char* kOutOfMemory = "out of memory";

}  // namespace nequar
