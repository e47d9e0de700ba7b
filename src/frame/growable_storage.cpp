// calloc knows which pages come zero from the system and leaves them untouched. It aligns to 16
// only, so a block is taken 64 bytes longer and its start is noted just below the aligned address.
#include "nequar_algebra/frame/growable_storage.h"

#include <cstdlib>
#include <cstring>

namespace nequar {
namespace {

constexpr std::size_t kAlignment = 64;
// From here on every block is a mapping of its own; smaller ones may be recycled memory, which
// calloc would have to clear.
constexpr std::size_t kFreshPages = std::size_t(32) << 20;

}  // namespace

void* take_growable_storage(std::ptrdiff_t bytes, bool& is_zero) noexcept {
    is_zero = false;
    if (bytes < 0 || bytes > PTRDIFF_MAX - 4096) return nullptr;
    const std::size_t room = static_cast<std::size_t>(bytes) + kAlignment;
    is_zero = room > kFreshPages;
    void* const start = is_zero ? std::calloc(room, 1) : std::malloc(room);
    if (start == nullptr) return nullptr;
    // At least one step of malloc's alignment up, so that the start fits in below.
    const std::size_t misalignment = reinterpret_cast<std::uintptr_t>(start) % kAlignment;
    unsigned char* const aligned = static_cast<unsigned char*>(start) + (kAlignment - misalignment);
    std::memcpy(aligned - sizeof(start), &start, sizeof(start));
    return aligned;
}

void release_growable_storage(void* bytes) noexcept {
    if (bytes == nullptr) return;
    void* start = nullptr;
    std::memcpy(&start, static_cast<unsigned char*>(bytes) - sizeof(start), sizeof(start));
    std::free(start);
}

}  // namespace nequar
