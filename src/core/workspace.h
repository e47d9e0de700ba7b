// Scratch storage of one call: uninitialized, aligned to 64 bytes, on the stack while it is small.
//
//   Workspace<double> work(n * n);
//   if (!work) return {OutcomeKind::no_memory};
//   View<double> w(work.data(), n, n, n);
//
// Allocation failure leaves the workspace empty and false; it never throws.
#pragma once

#include <new>

#include "core/checked_size.h"

namespace nequar {

inline constexpr Size kWorkspaceInlineBytes = 4096;
inline constexpr std::align_val_t kStorageAlignment{64};

template <class Element, Size InlineBytes = kWorkspaceInlineBytes>
class Workspace {
    static_assert(std::is_trivially_copyable_v<Element>);

public:
    explicit Workspace(Size count) {
        Size elements = 0;
        if (!checked_element_count(count, 1, sizeof(Element), elements)) return;
        if (elements * Size(sizeof(Element)) <= InlineBytes) {
            data_ = reinterpret_cast<Element*>(inline_);
            return;
        }
        heap_ = ::operator new(static_cast<std::size_t>(elements) * sizeof(Element),
                               kStorageAlignment, std::nothrow);
        data_ = static_cast<Element*>(heap_);
    }
    ~Workspace() {
        if (heap_ != nullptr) ::operator delete(heap_, kStorageAlignment);
    }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    Element* data() const { return data_; }

private:
    Element* data_ = nullptr;
    void* heap_ = nullptr;
    alignas(64) unsigned char inline_[static_cast<std::size_t>(InlineBytes)];
};

}  // namespace nequar
