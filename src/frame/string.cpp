#include "nequar_algebra/frame/string.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

CNqString::CNqString(const char* text) {
    *this = text;
}

CNqString::CNqString(const CNqString& other) {
    *this = other;
}

CNqString::CNqString(CNqString&& other) noexcept {
    *this = static_cast<CNqString&&>(other);
}

CNqString::~CNqString() {
    release();
}

CNqString& CNqString::operator=(const char* text) {
    if (text == nullptr) text = "";
    const std::size_t size = std::strlen(text);
    if (size >= static_cast<std::size_t>(std::numeric_limits<int>::max())) text = "";
    assign(text, static_cast<int>(std::strlen(text)));
    return *this;
}

CNqString& CNqString::operator=(const CNqString& other) {
    if (this == &other) return *this;
    if (other.capacity_ > 0) {
        assign(other.text_, other.size_);
    } else {
        release();
        text_ = other.text_;
        size_ = other.size_;
    }
    return *this;
}

CNqString& CNqString::operator=(CNqString&& other) noexcept {
    if (this == &other) return *this;
    release();
    text_ = other.text_;
    size_ = other.size_;
    capacity_ = other.capacity_;
    other.text_ = "";
    other.size_ = 0;
    other.capacity_ = 0;
    return *this;
}

CNqString CNqString::literal(const char* text) noexcept {
    CNqString string;
    string.text_ = text;
    string.size_ = static_cast<int>(std::strlen(text));
    return string;
}

void CNqString::fm_Format(const char* format, ...) {
    std::va_list arguments;
    std::va_list again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    // The result is built apart, since an argument may point into this string.
    CNqString formatted;
    if (size > 0 && size < std::numeric_limits<int>::max() && formatted.zcs_Create_Space(size)) {
        std::vsnprintf(const_cast<char*>(formatted.text_), static_cast<std::size_t>(size) + 1,
                       format, again);
        formatted.size_ = size;
    }
    va_end(again);
    *this = static_cast<CNqString&&>(formatted);
}

bool CNqString::zcs_Create_Space(int count) {
    if (count < 0 || count == std::numeric_limits<int>::max()) return false;
    const int wanted = (count < size_ ? size_ : count) + 1;
    if (capacity_ >= wanted) return true;
    char* const fresh =
        static_cast<char*>(::operator new(static_cast<std::size_t>(wanted), std::nothrow));
    if (fresh == nullptr) return false;
    const int size = size_;
    std::memcpy(fresh, text_, static_cast<std::size_t>(size));
    fresh[size] = '\0';
    release();
    text_ = fresh;
    size_ = size;
    capacity_ = wanted;
    return true;
}

bool operator==(const CNqString& a, const CNqString& b) noexcept {
    return a.size_ == b.size_ && std::strcmp(a.text_, b.text_) == 0;
}

bool operator==(const CNqString& a, const char* b) noexcept {
    return b != nullptr && std::strcmp(a.text_, b) == 0;
}

// Copies `size` characters; `text` may lie inside this string.
void CNqString::assign(const char* text, int size) {
    CNqString fresh;
    if (size > 0 && fresh.zcs_Create_Space(size)) {
        char* const characters = const_cast<char*>(fresh.text_);
        std::memcpy(characters, text, static_cast<std::size_t>(size));
        characters[size] = '\0';
        fresh.size_ = size;
    }
    *this = static_cast<CNqString&&>(fresh);
}

void CNqString::release() noexcept {
    if (capacity_ > 0) ::operator delete(const_cast<char*>(text_));
    text_ = "";
    size_ = 0;
    capacity_ = 0;
}
