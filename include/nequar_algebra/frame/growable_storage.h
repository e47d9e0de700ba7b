#pragma once

#include <cstddef>
#include <cstdint>

#include "nequar_algebra/frame/export.h"

namespace nequar {

/// Bytes aligned to 64, or null when they cannot be had; to be given back to
/// `release_growable_storage`. A large block reads as zero and costs no time until it is written,
/// since the system hands out its pages, already zero, when they are first touched; `is_zero` tells
/// whether this one does.
NEQUAR_API void* take_growable_storage(std::ptrdiff_t bytes, bool& is_zero) noexcept;
NEQUAR_API void release_growable_storage(void* bytes) noexcept;

/// A block of elements that remembers its capacity and how far it is known to be zero (or written):
/// the storage of growable vectors. It never throws.
template <class Element>
class GrowableStorage {
public:
    GrowableStorage() noexcept = default;
    ~GrowableStorage() { release_growable_storage(data_); }
    GrowableStorage(const GrowableStorage&) = delete;
    GrowableStorage& operator=(const GrowableStorage&) = delete;

    /// Replaces the block by a new one of `count` elements. False, and nothing changed, when the
    /// memory cannot be had.
    bool take(std::ptrdiff_t count) noexcept {
        if (count < 0 || count > kLargestCount) return false;
        bool is_zero = false;
        void* const fresh = take_growable_storage(count * std::ptrdiff_t(sizeof(Element)), is_zero);
        if (fresh == nullptr) return false;
        release_growable_storage(data_);
        data_ = static_cast<Element*>(fresh);
        capacity_ = count;
        defined_ = is_zero ? count : 0;
        return true;
    }

    Element* data() const noexcept { return data_; }
    std::ptrdiff_t capacity() const noexcept { return capacity_; }
    /// Elements before this one hold something; what the others hold is not specified.
    std::ptrdiff_t defined() const noexcept { return defined_; }
    void set_defined(std::ptrdiff_t count) noexcept { defined_ = count; }

    void swap(GrowableStorage& other) noexcept {
        exchange(data_, other.data_);
        exchange(capacity_, other.capacity_);
        exchange(defined_, other.defined_);
    }

private:
    static constexpr std::ptrdiff_t kLargestCount =
        (PTRDIFF_MAX - 4096) / std::ptrdiff_t(sizeof(Element));

    template <class T>
    static void exchange(T& a, T& b) noexcept {
        const T old = a;
        a = b;
        b = old;
    }

    Element* data_ = nullptr;
    std::ptrdiff_t capacity_ = 0;
    std::ptrdiff_t defined_ = 0;
};

}  // namespace nequar
