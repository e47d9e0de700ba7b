// calloc knows which pages come zero from the system and leaves them untouched; it aligns to 16, so
// the block is taken 64 bytes longer and its start is noted just below the aligned address.
#include "nequar_algebra/frame/zeroed_storage.h"

#include <cstdlib>
#include <cstring>
#include <memory>

namespace nequar {
namespace {

constexpr std::size_t kAlignment = 64;

}  // namespace

void* take_zeroed_storage(std::ptrdiff_t bytes) noexcept {
    if (bytes < 0 || bytes > PTRDIFF_MAX - 4096) return nullptr;
    const std::size_t room = static_cast<std::size_t>(bytes) + kAlignment;
    unsigned char* const start = static_cast<unsigned char*>(std::calloc(room, 1));
    if (start == nullptr) return nullptr;
    // start is a multiple of 16 and never of 64 after the step, so 16 bytes at least lie below.
    const std::size_t misalignment = reinterpret_cast<std::uintptr_t>(start) % kAlignment;
    unsigned char* const aligned = start + (kAlignment - misalignment);
    std::memcpy(aligned - sizeof(start), &start, sizeof(start));
    return aligned;
}

void release_zeroed_storage(void* bytes) noexcept {
    if (bytes == nullptr) return;
    void* start = nullptr;
    std::memcpy(&start, static_cast<unsigned char*>(bytes) - sizeof(start), sizeof(start));
    std::free(start);
}

}  // namespace nequar
