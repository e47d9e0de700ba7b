#pragma once

#include "nequar_algebra/frame/export.h"

/// A short text: class names, method names, error details, messages.
///
/// A string made by `literal` only points at its characters, so naming an object costs no
/// allocation; every other construction copies. When memory for a copy cannot be had the string
/// becomes empty; nothing is thrown.
class NEQUAR_API CNqString {
public:
    CNqString() noexcept = default;
    CNqString(const char* text);  // NOLINT: implicit on purpose, as a text is wanted everywhere
    CNqString(const CNqString& other);
    CNqString(CNqString&& other) noexcept;
    ~CNqString();
    CNqString& operator=(const char* text);
    CNqString& operator=(const CNqString& other);
    CNqString& operator=(CNqString&& other) noexcept;

    /// A string that refers to characters which live as long as the program (a string literal).
    static CNqString literal(const char* text) noexcept;

    /// The characters, ended by a zero; never null.
    const char* c_str() const noexcept { return text_; }
    /// The number of characters before the ending zero.
    int size() const noexcept { return size_; }

    /// Replaces the text by a formatted one (the rules of printf). The arguments may point into
    /// this string. A format error or a want of memory leaves the string empty.
    void fm_Format(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Makes room for `count` characters and the ending zero, keeping the text. Answers false, and
    /// changes nothing, when count is negative or the memory cannot be had.
    bool zcs_Create_Space(int count);

    /// Same characters.
    friend NEQUAR_API bool operator==(const CNqString& a, const CNqString& b) noexcept;
    friend NEQUAR_API bool operator==(const CNqString& a, const char* b) noexcept;

private:
    void assign(const char* text, int size);
    void release() noexcept;

    const char* text_ = "";
    int size_ = 0;
    int capacity_ = 0;  // 0: the characters are not ours
};
