#include "allocation/failing_allocator.h"

#include <cstddef>
#include <cstdlib>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void* block);
}

namespace nequar::test {
namespace {

long requests_left = 0;  // until one is refused; 0: none is
bool refuses_all = false;
bool has_refused = false;
long held = 0;

bool refuses() {
    if (has_refused && refuses_all) return true;
    if (requests_left == 0 || --requests_left > 0) return false;
    return has_refused = true;
}

void* counted(void* block) {
    if (block != nullptr) ++held;
    return block;
}

void* take(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (refuses()) return nullptr;
    const std::size_t room = (size + alignment) / alignment * alignment;
    return counted(std::aligned_alloc(alignment, room));
}

void* take_or_throw(std::size_t size) {
    void* const block = take(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void give_back(void* block) {
    if (block == nullptr) return;
    --held;
    __real_free(block);
}

}  // namespace

void refuse_request(long k, bool and_all_later) {
    requests_left = k;
    refuses_all = and_all_later;
    has_refused = false;
}

bool end_refusals() {
    requests_left = 0;
    refuses_all = false;
    return has_refused;
}

long blocks_held() {
    return held;
}

}  // namespace nequar::test

using namespace nequar::test;

void* __wrap_malloc(std::size_t size) {
    return refuses() ? nullptr : counted(__real_malloc(size));
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return refuses() ? nullptr : counted(__real_calloc(count, size));
}
void __wrap_free(void* block) {
    give_back(block);
}

// The forms of new and delete that the library and the tests use.
void* operator new(std::size_t size) {
    return take_or_throw(size);
}
void* operator new[](std::size_t size) {
    return take_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return take(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return take(size);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return take(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept {
    give_back(block);
}
void operator delete[](void* block) noexcept {
    give_back(block);
}
void operator delete(void* block, std::size_t) noexcept {
    give_back(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    give_back(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    give_back(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    give_back(block);
}
