// What the shared library shows: everything else in it is hidden.
#pragma once

#if defined(__GNUC__)
#define NEQUAR_API __attribute__((visibility("default")))
#else
#define NEQUAR_API
#endif
