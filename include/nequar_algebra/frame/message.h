#pragma once

#include "nequar_algebra/frame/export.h"
#include "nequar_algebra/frame/string.h"

/// Prints the last message that any object of this process recorded, on a line of its own, to the
/// standard error. Answers whether there was one.
NEQUAR_API bool Nq_Print_Message();

/// Prints a formatted line to the standard output (the rules of printf; a newline is added).
NEQUAR_API void Nq_Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The last message that any object of this process recorded, "Class::method: detail"; empty when
/// none. Safe to call from any thread.
NEQUAR_API CNqString Nq_Last_Message();
