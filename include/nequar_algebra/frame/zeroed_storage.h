#pragma once

#include <cstddef>
#include <cstdint>

#include "nequar_algebra/frame/export.h"

namespace nequar {

/// Bytes that read as zero, aligned to 64, or null when they cannot be had; to be given back to
/// `release_zeroed_storage`. A large block costs no time until it is written: the system hands out
/// its pages, already zero, when they are first touched.
NEQUAR_API void* take_zeroed_storage(std::ptrdiff_t bytes) noexcept;
NEQUAR_API void release_zeroed_storage(void* bytes) noexcept;

/// A block of elements that starts as zeros and remembers its capacity: the storage of growable
/// vectors. It never throws.
template <class Element>
class ZeroedStorage {
public:
    ZeroedStorage() noexcept = default;
    ~ZeroedStorage() { release_zeroed_storage(data_); }
    ZeroedStorage(const ZeroedStorage&) = delete;
    ZeroedStorage& operator=(const ZeroedStorage&) = delete;

    /// Replaces the block by a new one of `count` zeros. False, and nothing changed, when the
    /// memory cannot be had.
    bool take(std::ptrdiff_t count) noexcept {
        if (count < 0 || count > kLargestCount) return false;
        void* const fresh = take_zeroed_storage(count * std::ptrdiff_t(sizeof(Element)));
        if (fresh == nullptr) return false;
        release_zeroed_storage(data_);
        data_ = static_cast<Element*>(fresh);
        capacity_ = count;
        return true;
    }

    Element* data() const noexcept { return data_; }
    std::ptrdiff_t capacity() const noexcept { return capacity_; }

    void swap(ZeroedStorage& other) noexcept {
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
