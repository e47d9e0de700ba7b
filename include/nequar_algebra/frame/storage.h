#pragma once

#include <cstddef>
#include <cstdint>

#include "nequar_algebra/frame/export.h"

namespace nequar {

/// Bytes aligned to 64, or null when they cannot be had; to be given back to `release_storage`.
NEQUAR_API void* take_storage(std::ptrdiff_t bytes) noexcept;
NEQUAR_API void release_storage(void* bytes) noexcept;

/// A block of elements that remembers its capacity: the storage of vectors and matrices. It is
/// never cleared, shrinks only when given back, and never throws.
template <class Element>
class Storage {
public:
    Storage() noexcept = default;
    ~Storage() { release_storage(data_); }
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;
    Storage(Storage&& other) noexcept { swap(other); }
    Storage& operator=(Storage&& other) noexcept {
        swap(other);
        return *this;
    }

    /// Room for at least `count` elements. What was stored is lost when the block has to move, and
    /// kept when it does not. False, and nothing changed, when the memory cannot be had.
    bool reserve(std::ptrdiff_t count) noexcept {
        if (count <= capacity_) return true;
        if (count > kLargestCount) return false;
        void* const fresh = take_storage(count * std::ptrdiff_t(sizeof(Element)));
        if (fresh == nullptr) return false;
        release_storage(data_);
        data_ = static_cast<Element*>(fresh);
        capacity_ = count;
        return true;
    }

    Element* data() const noexcept { return data_; }
    std::ptrdiff_t capacity() const noexcept { return capacity_; }

    void swap(Storage& other) noexcept {
        Element* const data = data_;
        data_ = other.data_;
        other.data_ = data;
        const std::ptrdiff_t capacity = capacity_;
        capacity_ = other.capacity_;
        other.capacity_ = capacity;
    }

private:
    static constexpr std::ptrdiff_t kLargestCount =
        (PTRDIFF_MAX - 4096) / std::ptrdiff_t(sizeof(Element));

    Element* data_ = nullptr;
    std::ptrdiff_t capacity_ = 0;
};

}  // namespace nequar
