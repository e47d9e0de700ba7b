// Lists that an operation reads may lie in the very storage that it rearranges. Such a list is
// copied aside first; any other is read where it is.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/workspace.h"

namespace nequar {

// Whether [first, first + bytes) and [other, other + other_bytes) share a byte.
inline bool overlap(const void* first, Size bytes, const void* other, Size other_bytes) {
    const auto a = reinterpret_cast<std::uintptr_t>(first);
    const auto b = reinterpret_cast<std::uintptr_t>(other);
    return bytes > 0 && other_bytes > 0 && a < b + static_cast<std::uintptr_t>(other_bytes) &&
           b < a + static_cast<std::uintptr_t>(bytes);
}

template <class Element>
class Detached {
public:
    Detached(const Element* list, Size count, const void* storage, Size storage_bytes)
        : list_(list),
          copied_(overlap(list, count * Size(sizeof(Element)), storage, storage_bytes)),
          copy_(copied_ ? count : 0) {
        if (!copied_ || !copy_) return;
        std::memcpy(copy_.data(), list, static_cast<std::size_t>(count) * sizeof(Element));
        list_ = copy_.data();
    }

    // False when a copy was needed and could not be had.
    explicit operator bool() const { return !copied_ || copy_; }
    const Element* data() const { return list_; }

private:
    const Element* list_;
    bool copied_;
    Workspace<Element> copy_;
};

}  // namespace nequar
