// Scratch memory and cache sizes for the kernels. Plain functions, so that units compiled for one
// instruction set can call them without including anything of the standard library.
#pragma once

#include <cstddef>

namespace nequar::kernel {

// Bytes of the data caches that one core can use: private first and second level, shared last
// level.
struct CacheSizes {
    std::ptrdiff_t first;
    std::ptrdiff_t second;
    std::ptrdiff_t last;
};

// Asked of the CPU once; plausible sizes where it does not tell.
const CacheSizes& cache_sizes() noexcept;

// Aligned to 64 bytes; null when it cannot be had.
void* allocate_scratch(std::ptrdiff_t bytes) noexcept;
void release_scratch(void* scratch) noexcept;

}  // namespace nequar::kernel
