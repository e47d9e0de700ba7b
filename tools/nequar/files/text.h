// Words and numbers of a line of text, independent of the locale.
#pragma once

#include <string>
#include <string_view>

namespace program {

// The words of a line between blanks and tabs. At most kMost are kept; count tells how many there
// are, kMost + 1 standing for "more".
struct Words {
    static constexpr int kMost = 6;
    explicit Words(std::string_view line);

    std::string_view operator[](int i) const { return words_[i]; }
    int count() const { return count_; }

private:
    std::string_view words_[kMost];
    int count_ = 0;
};

// Equal but for the case of ASCII letters; `lower` is in lower case.
bool same_word(std::string_view word, std::string_view lower);

// The word in quotes for a message: shortened, unprintable bytes shown as \xNN.
std::string quoted(std::string_view word);

enum class NumberStatus { good, not_a_number, not_finite, out_of_range };

// A count or an index: decimal digits with an optional sign. out_of_range: beyond 64 bits.
NumberStatus parse_integer(std::string_view word, long long& value);

// A real number as C and Fortran write it (1, -2.5, +3e-7). Infinity and NaN are not finite; a
// magnitude too small for Real becomes a zero of its sign, one too large is out of range.
template <class Real>
NumberStatus parse_real(std::string_view word, Real& value);

extern template NumberStatus parse_real(std::string_view, double&);
extern template NumberStatus parse_real(std::string_view, float&);

}  // namespace program
