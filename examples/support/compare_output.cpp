// compare_output EXPECTED ACTUAL [--whole-numbers-within N]
//
// Compares two text files word by word. Words are equal when they are the same text; besides,
//
//   a number with a point or an exponent may differ by one unit of the last digit that EXPECTED
//   shows: a program prints no more digits than its arithmetic holds, so what another CPU's
//   kernels round otherwise can move the last one by one, and no more;
//
//   whole numbers are exact, or may differ by N (the pixels of a picture);
//
//   "<=1e-9" and ">=9.0" in EXPECTED stand for any number that keeps the bound: for rounding errors
//   themselves, of which the size is known but no digit.
//
// Words end at blanks, commas and quotation marks. NaN keeps no bound. The line breaks count, the
// blanks between words do not.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

namespace {

bool is_number(const std::string& word, double& value) {
    char* end = nullptr;
    value = std::strtod(word.c_str(), &end);
    return !word.empty() && *end == '\0';
}

// One unit of the last digit shown: 12.50 -> 0.01, -1.5e-07 -> 1e-08; `whole` for a whole number.
double last_digit_of(const std::string& word, double whole) {
    const size_t exponent_at = word.find_first_of("eE");
    const size_t point_at = word.find('.');
    if (exponent_at == std::string::npos && point_at == std::string::npos) return whole;
    const size_t digits_end = exponent_at == std::string::npos ? word.size() : exponent_at;
    const int decimals =
        point_at == std::string::npos ? 0 : static_cast<int>(digits_end - point_at) - 1;
    const int exponent =
        exponent_at == std::string::npos ? 0 : std::atoi(word.c_str() + exponent_at + 1);
    return std::pow(10.0, exponent - decimals);
}

bool agree(const std::string& expected, const std::string& actual, double whole) {
    if (expected == actual) return true;
    double wanted = 0, found = 0;
    if (!is_number(actual, found)) return false;
    if (expected.starts_with("<=")) return is_number(expected.substr(2), wanted) && found <= wanted;
    if (expected.starts_with(">=")) return is_number(expected.substr(2), wanted) && found >= wanted;
    if (!is_number(expected, wanted)) return false;
    // One unit, and the rounding of both numbers to binary, which counts from fourteen digits on.
    const double rounding =
        std::numeric_limits<double>::epsilon() * (std::fabs(found) + std::fabs(wanted));
    return std::fabs(found - wanted) <= 1.005 * last_digit_of(expected, whole) + rounding;
}

// Commas and quotation marks as words of their own.
std::string spaced(const std::string& line) {
    std::string out;
    for (char c : line) {
        if (c == ',' || c == '"')
            out.append({' ', c, ' '});
        else
            out += c;
    }
    return out;
}

bool lines_agree(const std::string& expected, const std::string& actual, double whole) {
    std::istringstream wanted(spaced(expected)), found(spaced(actual));
    std::string a, b;
    while (wanted >> a)
        if (!(found >> b) || !agree(a, b, whole)) return false;
    return !(found >> b);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3 && !(count == 5 && std::string(arguments[3]) == "--whole-numbers-within")) {
        std::fputs("compare_output EXPECTED ACTUAL [--whole-numbers-within N]\n", stderr);
        return 2;
    }
    const double whole = count == 5 ? std::atof(arguments[4]) : 0;
    std::ifstream expected(arguments[1]), actual(arguments[2]);
    if (!expected || !actual) {
        std::fprintf(stderr, "cannot read %s\n", arguments[expected ? 2 : 1]);
        return 2;
    }
    int line = 0, differences = 0;
    std::string a, b;
    for (;;) {
        ++line;
        const bool more_expected = static_cast<bool>(std::getline(expected, a));
        const bool more_actual = static_cast<bool>(std::getline(actual, b));
        if (!more_expected && !more_actual) break;
        if (more_expected && more_actual && lines_agree(a, b, whole)) continue;
        std::fprintf(stderr, "line %d\n  expected: %s\n  actual:   %s\n", line,
                     more_expected ? a.c_str() : "(the file has ended)",
                     more_actual ? b.c_str() : "(the file has ended)");
        if (++differences == 10 || !more_expected || !more_actual) break;
    }
    return differences == 0 ? 0 : 1;
}
