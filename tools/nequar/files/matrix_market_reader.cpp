#include "files/matrix_market_reader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <type_traits>
#include <utility>

#include "errors.h"
#include "files/line_reader.h"
#include "files/text.h"
#include "long_step.h"

namespace program {
namespace {

// Reserved at once, at most: a file may declare more elements than it holds.
constexpr long long kMostReserved = 1 << 20;

bool is_comment_or_blank(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t\v\f");
    return first == std::string_view::npos || line[first] == '%';
}

template <class Real>
class Reader {
public:
    explicit Reader(const std::string& path) : lines_(path) { matrix_.path = path; }

    FileMatrix<Real> read() {
        read_banner();
        read_sizes();
        if (matrix_.format == Format::coordinate)
            read_coordinates();
        else
            read_array();
        if (next()) lines_.fail("there is more than the " + declared() + " that the file declares");
        return std::move(matrix_);
    }

private:
    // The next line that holds data.
    bool next() {
        while (lines_.next(line_))
            if (!is_comment_or_blank(line_)) return true;
        return false;
    }

    std::string declared() const {
        return std::to_string(count_) + (count_ == 1 ? " element" : " elements");
    }

    [[noreturn]] void fail_number(NumberStatus status, std::string_view word, const char* wanted) {
        switch (status) {
            case NumberStatus::not_finite:
                lines_.fail(quoted(word) + " is not a finite number");
            case NumberStatus::out_of_range:
                lines_.fail(quoted(word) + " does not fit " + wanted);
            default:
                lines_.fail(quoted(word) + " is not " + wanted);
        }
    }

    void read_banner();
    void read_sizes();
    void read_coordinates();
    void read_array();

    int size(std::string_view word);
    int index(std::string_view word, int limit, const char* name);
    Real value(std::string_view word);
    void refuse_repeated(const std::vector<long long>& line_of);

    LineReader lines_;
    std::string_view line_;
    FileMatrix<Real> matrix_;
    long long count_ = 0;  // of the stored elements
};

template <class Real>
void Reader<Real>::read_banner() {
    if (!lines_.next(line_)) lines_.fail("the file is empty");
    const Words words(line_);
    if (words.count() == 0 || !same_word(words[0], "%%matrixmarket"))
        lines_.fail("this is no Matrix Market file: the first line must begin with %%MatrixMarket");
    if (words.count() != 5)
        lines_.fail("the banner must be: %%MatrixMarket matrix FORMAT FIELD SYMMETRY");
    if (!same_word(words[1], "matrix"))
        lines_.fail("the object is " + quoted(words[1]) + "; only \"matrix\" can be read");

    if (same_word(words[2], "coordinate"))
        matrix_.format = Format::coordinate;
    else if (same_word(words[2], "array"))
        matrix_.format = Format::array;
    else
        lines_.fail("unknown format " + quoted(words[2]) + "; it must be coordinate or array");

    if (same_word(words[3], "real"))
        matrix_.field = Field::real;
    else if (same_word(words[3], "integer"))
        matrix_.field = Field::integer;
    else if (same_word(words[3], "pattern"))
        matrix_.field = Field::pattern;
    else if (same_word(words[3], "complex"))
        lines_.fail("the matrix is complex; only real, integer and pattern files can be read");
    else
        lines_.fail("unknown field " + quoted(words[3]) + "; it must be real, integer or pattern");
    if (matrix_.field == Field::pattern && matrix_.format == Format::array)
        lines_.fail("a pattern has no values, so it cannot be an array");

    if (same_word(words[4], "general"))
        matrix_.symmetry = Symmetry::general;
    else if (same_word(words[4], "symmetric"))
        matrix_.symmetry = Symmetry::symmetric;
    else if (same_word(words[4], "skew-symmetric"))
        matrix_.symmetry = Symmetry::skew;
    else if (same_word(words[4], "hermitian"))
        lines_.fail("a hermitian matrix is complex; only real files can be read");
    else
        lines_.fail("unknown symmetry " + quoted(words[4]) +
                    "; it must be general, symmetric or skew-symmetric");
    if (matrix_.symmetry == Symmetry::skew && matrix_.field == Field::pattern)
        lines_.fail("a pattern has no signs, so it cannot be skew-symmetric");
}

template <class Real>
int Reader<Real>::size(std::string_view word) {
    long long value = 0;
    const NumberStatus status = parse_integer(word, value);
    if (status == NumberStatus::not_a_number) fail_number(status, word, "a size");
    if (status == NumberStatus::good && value < 1)
        lines_.fail("a matrix of size " + quoted(word) + " holds nothing; sizes begin at 1");
    if (status != NumberStatus::good || value > std::numeric_limits<int>::max())
        lines_.fail("the size " + quoted(word) + " is beyond " +
                    std::to_string(std::numeric_limits<int>::max()) + ", the largest possible");
    return static_cast<int>(value);
}

template <class Real>
void Reader<Real>::read_sizes() {
    if (!next()) lines_.fail("the file ends before the line with the sizes");
    const bool coordinate = matrix_.format == Format::coordinate;
    const Words words(line_);
    if (words.count() != (coordinate ? 3 : 2))
        lines_.fail(coordinate ? "the sizes must be: height width elements"
                               : "the sizes of an array must be: height width");
    matrix_.size_line = lines_.line_number();
    const long long height = matrix_.height = size(words[0]);
    const long long width = matrix_.width = size(words[1]);
    if (matrix_.symmetry != Symmetry::general && height != width)
        lines_.fail("a symmetric or skew-symmetric matrix must be square, this one is " +
                    std::to_string(height) + " x " + std::to_string(width));

    // Both sizes fit an int, so their product fits 64 bits.
    long long cells = height * width;
    if (matrix_.symmetry == Symmetry::symmetric) cells = (height * (height - 1)) / 2 + height;
    if (matrix_.symmetry == Symmetry::skew) cells = (height * (height - 1)) / 2;
    count_ = cells;
    if (coordinate) {
        const NumberStatus status = parse_integer(words[2], count_);
        if (status == NumberStatus::not_a_number || (status == NumberStatus::good && count_ < 0))
            fail_number(NumberStatus::not_a_number, words[2], "a number of elements");
        if (status != NumberStatus::good || count_ > cells)
            lines_.fail(quoted(words[2]) + " elements are more than the " + std::to_string(cells) +
                        " that this shape can store");
    }
    const auto room = static_cast<std::size_t>(std::min(count_, kMostReserved));
    matrix_.values.reserve(room);
    if (coordinate) {
        matrix_.rows.reserve(room);
        matrix_.columns.reserve(room);
    }
}

template <class Real>
int Reader<Real>::index(std::string_view word, int limit, const char* name) {
    long long value = 0;
    const NumberStatus status = parse_integer(word, value);
    if (status == NumberStatus::not_a_number) fail_number(status, word, "an index");
    if (status != NumberStatus::good || value < 1 || value > limit)
        lines_.fail(std::string("the ") + name + " " + quoted(word) + " is outside 1 .. " +
                    std::to_string(limit));
    return static_cast<int>(value - 1);
}

template <class Real>
Real Reader<Real>::value(std::string_view word) {
    if (matrix_.field == Field::integer) {
        long long whole = 0;
        if (parse_integer(word, whole) == NumberStatus::not_a_number)
            fail_number(NumberStatus::not_a_number, word, "an integer");
    }
    Real value = 0;
    const NumberStatus status = parse_real(word, value);
    if (status != NumberStatus::good)
        fail_number(status, word,
                    status == NumberStatus::not_a_number ? "a number"
                    : std::is_same_v<Real, float>        ? "single precision"
                                                         : "double precision");
    return value;
}

template <class Real>
void Reader<Real>::read_coordinates() {
    const int expected = matrix_.field == Field::pattern ? 2 : 3;
    std::vector<long long> line_of;
    for (long long k = 0; k < count_; ++k) {
        if (!next()) lines_.fail("the file ends after " + std::to_string(k) + " of " + declared());
        const Words words(line_);
        if (words.count() < expected)
            lines_.fail(expected == 2 ? "an element must be: row column"
                                      : "an element must be: row column value");
        if (words.count() > expected)
            lines_.fail(quoted(words[expected]) + " stands after the element");
        const int row = index(words[0], matrix_.height, "row");
        const int column = index(words[1], matrix_.width, "column");
        if (matrix_.symmetry == Symmetry::symmetric && row < column)
            lines_.fail(
                "the element lies above the diagonal; a symmetric file stores the lower "
                "triangle alone");
        if (matrix_.symmetry == Symmetry::skew && row <= column)
            lines_.fail(
                "the element lies on or above the diagonal; a skew-symmetric file stores "
                "what is below it alone");
        matrix_.rows.push_back(row);
        matrix_.columns.push_back(column);
        matrix_.values.push_back(expected == 2 ? Real(1) : value(words[2]));
        line_of.push_back(lines_.line_number());
    }
    refuse_repeated(line_of);
}

template <class Real>
void Reader<Real>::refuse_repeated(const std::vector<long long>& line_of) {
    const auto place = [this](std::size_t k) {
        return static_cast<std::uint64_t>(matrix_.columns[k]) << 32 |
               static_cast<std::uint32_t>(matrix_.rows[k]);
    };
    // Most files come sorted down their columns; then one pass tells.
    bool ascending = true;
    for (std::size_t k = 1; ascending && k < line_of.size(); ++k)
        ascending = place(k - 1) < place(k);
    if (ascending) return;

    std::vector<std::size_t> order(line_of.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return place(a) != place(b) ? place(a) < place(b) : a < b;
    });
    for (std::size_t k = 1; k < order.size(); ++k) {
        const std::size_t first = order[k - 1], second = order[k];
        if (place(first) != place(second)) continue;
        throw InputError(matrix_.path, line_of[second],
                         "element (" + std::to_string(matrix_.rows[second] + 1) + ", " +
                             std::to_string(matrix_.columns[second] + 1) +
                             ") was given before, on line " + std::to_string(line_of[first]));
    }
}

template <class Real>
void Reader<Real>::read_array() {
    for (long long k = 0; k < count_; ++k) {
        if (!next()) lines_.fail("the file ends after " + std::to_string(k) + " of " + declared());
        const Words words(line_);
        if (words.count() > 1)
            lines_.fail(quoted(words[1]) + " stands after the value; an array has one on a line");
        matrix_.values.push_back(value(words[0]));
    }
}

}  // namespace

template <class Real>
FileMatrix<Real> read_matrix_market(const std::string& path) {
    const LongStep step("reading " + path);
    return Reader<Real>(path).read();
}

template FileMatrix<double> read_matrix_market(const std::string&);
template FileMatrix<float> read_matrix_market(const std::string&);

}  // namespace program
