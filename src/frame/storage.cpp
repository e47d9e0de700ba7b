#include "nequar_algebra/frame/storage.h"

#include <new>

namespace nequar {
namespace {

constexpr std::align_val_t kAlignment{64};

}  // namespace

void* take_storage(std::ptrdiff_t bytes) noexcept {
    if (bytes < 0) return nullptr;
    return ::operator new(static_cast<std::size_t>(bytes), kAlignment, std::nothrow);
}

void release_storage(void* bytes) noexcept {
    ::operator delete(bytes, kAlignment);
}

}  // namespace nequar
