// Cache sizes from CPUID: leaf 4 (Intel) and leaf 0x8000001D (AMD) list the caches in the same
// form,
//   bytes = ways * partitions * line size * sets.
#include "kernel/memory.h"

#include <new>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace nequar::kernel {

namespace {

constexpr std::align_val_t kScratchAlignment{64};

constexpr std::ptrdiff_t kKiB = 1024;
constexpr CacheSizes kPlausible = {32 * kKiB, 512 * kKiB, 4096 * kKiB};

#if defined(__x86_64__)

// Reads the list of caches under `leaf` into `sizes`; false when the CPU has no such list.
bool read_cache_list(unsigned leaf, CacheSizes& sizes) {
    bool found = false;
    for (unsigned index = 0; index < 16; ++index) {
        unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
        if (__get_cpuid_count(leaf, index, &eax, &ebx, &ecx, &edx) == 0) return found;
        const unsigned type = eax & 0x1f;  // 0: end of the list, 1: data, 2: instructions, 3: both
        if (type == 0) return found;
        if (type == 2) continue;
        const std::ptrdiff_t line = (ebx & 0xfff) + 1;
        const std::ptrdiff_t partitions = ((ebx >> 12) & 0x3ff) + 1;
        const std::ptrdiff_t ways = ((ebx >> 22) & 0x3ff) + 1;
        const std::ptrdiff_t bytes = line * partitions * ways * (std::ptrdiff_t{ecx} + 1);
        switch ((eax >> 5) & 7) {
            case 1:
                sizes.first = bytes;
                break;
            case 2:
                sizes.second = bytes;
                break;
            case 3:
                sizes.last = bytes;
                break;
            default:
                break;
        }
        found = true;
    }
    return found;
}

#endif

std::ptrdiff_t clamped(std::ptrdiff_t value, std::ptrdiff_t low, std::ptrdiff_t high) {
    return value < low ? low : value > high ? high : value;
}

CacheSizes ask_cpu() {
    CacheSizes sizes = kPlausible;
#if defined(__x86_64__)
    if (!read_cache_list(4, sizes)) read_cache_list(0x8000001d, sizes);
#endif
    // A virtual machine may report anything.
    sizes.first = clamped(sizes.first, 16 * kKiB, 256 * kKiB);
    sizes.second = clamped(sizes.second, 128 * kKiB, 8192 * kKiB);
    sizes.last = clamped(sizes.last, 1024 * kKiB, 65536 * kKiB);
    return sizes;
}

}  // namespace

const CacheSizes& cache_sizes() noexcept {
    static const CacheSizes sizes = ask_cpu();
    return sizes;
}

void* allocate_scratch(std::ptrdiff_t bytes) noexcept {
    if (bytes < 0) return nullptr;
    return ::operator new(static_cast<std::size_t>(bytes), kScratchAlignment, std::nothrow);
}

void release_scratch(void* scratch) noexcept {
    ::operator delete(scratch, kScratchAlignment);
}

}  // namespace nequar::kernel
