#include "files/text.h"

#include <charconv>
#include <cmath>

namespace program {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}
char to_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// from_chars knows no plus sign; "+-1" stays wrong.
std::string_view without_plus(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    return word;
}

// Whether a number beyond the range of its type is a large one: d.ddd x 10^e with e > 0, from the
// place of the first significant digit and the exponent.
bool is_large(std::string_view word) {
    long long exponent = 0;
    const std::size_t mark = word.find_first_of("eE");
    if (mark != std::string_view::npos) {
        std::string_view digits = without_plus(word.substr(mark + 1));
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (result.ec == std::errc::result_out_of_range) return digits[0] != '-';
        word = word.substr(0, mark);
    }
    const std::size_t point =
        word.find('.') == std::string_view::npos ? word.size() : word.find('.');
    const std::size_t first = word.find_first_of("123456789");
    if (first == std::string_view::npos) return false;
    return static_cast<long long>(point) - static_cast<long long>(first) + exponent > 0;
}

}  // namespace

Words::Words(std::string_view line) {
    std::size_t i = 0;
    for (;;) {
        while (i < line.size() && is_blank(line[i])) ++i;
        if (i == line.size() || count_ > kMost) return;
        const std::size_t first = i;
        while (i < line.size() && !is_blank(line[i])) ++i;
        if (count_ < kMost) words_[count_] = line.substr(first, i - first);
        ++count_;
    }
}

bool same_word(std::string_view word, std::string_view lower) {
    if (word.size() != lower.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (to_lower(word[i]) != lower[i]) return false;
    return true;
}

std::string quoted(std::string_view word) {
    constexpr std::size_t longest = 40;
    constexpr char hexadecimal[] = "0123456789abcdef";
    std::string text = "\"";
    for (const char c : word.substr(0, longest)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f) {
            text += c;
        } else {
            text += "\\x";
            text += hexadecimal[byte >> 4];
            text += hexadecimal[byte & 15];
        }
    }
    if (word.size() > longest) text += "...";
    return text + "\"";
}

NumberStatus parse_integer(std::string_view word, long long& value) {
    word = without_plus(word);
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    if (result.ec == std::errc::invalid_argument || result.ptr != end)
        return NumberStatus::not_a_number;
    return result.ec == std::errc() ? NumberStatus::good : NumberStatus::out_of_range;
}

template <class Real>
NumberStatus parse_real(std::string_view word, Real& value) {
    word = without_plus(word);
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    if (result.ec == std::errc::invalid_argument || result.ptr != end)
        return NumberStatus::not_a_number;
    if (result.ec == std::errc::result_out_of_range) {
        if (is_large(word)) return NumberStatus::out_of_range;
        value = word[0] == '-' ? -Real(0) : Real(0);
        return NumberStatus::good;
    }
    return std::isfinite(value) ? NumberStatus::good : NumberStatus::not_finite;
}

template NumberStatus parse_real(std::string_view, double&);
template NumberStatus parse_real(std::string_view, float&);

}  // namespace program
