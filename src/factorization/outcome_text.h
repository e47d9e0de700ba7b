// The detail texts that every family words alike.
#pragma once

namespace nequar::text {

inline constexpr const char* kOutOfMemory = "out of memory";
inline constexpr const char* kCannotSize = "cannot size the output";
inline constexpr const char* kBadInput = "bad input";

}  // namespace nequar::text
