#include "numbers/sparse.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <type_traits>
#include <vector>

#include "errors.h"

namespace program {
namespace {

template <class Real>
using Values = std::conditional_t<std::is_same_v<Real, double>, CNqXvector, CNqXvectorFloat>;

template <class Real>
struct Element {
    int row;
    Real value;
};

template <class Number>
void append(std::string& text, Number number, char end) {
    char digits[64];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    text += end;
}

}  // namespace

template <class Real>
void make_sparse(const FileMatrix<Real>& from, typename Twin<Real>::Sparse& to) {
    const auto width = static_cast<std::size_t>(from.width);
    std::vector<long long> start(width + 1);
    from.for_each([&](int, int column, Real) { ++start[static_cast<std::size_t>(column) + 1]; });
    for (std::size_t c = 0; c < width; ++c) start[c + 1] += start[c];
    if (start[width] > std::numeric_limits<int>::max())
        throw InputError(from.path, from.size_line, "there are too many elements");

    std::vector<Element<Real>> elements(static_cast<std::size_t>(start[width]));
    std::vector<long long> next(start.begin(), start.end() - 1);
    from.for_each([&](int row, int column, Real value) {
        elements[static_cast<std::size_t>(next[static_cast<std::size_t>(column)]++)] = {row, value};
    });
    for (std::size_t c = 0; c < width; ++c)
        std::sort(elements.begin() + start[c], elements.begin() + start[c + 1],
                  [](const auto& a, const auto& b) { return a.row < b.row; });

    std::vector<Real> stored(elements.size());
    std::vector<int> stored_rows(elements.size());
    for (std::size_t k = 0; k < elements.size(); ++k) {
        stored[k] = elements[k].value;
        stored_rows[k] = elements[k].row;
    }
    Values<Real> values;
    CNqXvectorInt rows;
    CNqVectorInt starts;
    const auto count = static_cast<int>(elements.size());
    const bool has_room = values.in_Initialize(count) && rows.in_Initialize(count) &&
                          starts.c_Create(from.width + 1) != nullptr;
    if (!has_room || (count > 0 && !(values.ap_Append(stored.data(), count) &&
                                     rows.ap_Append(stored_rows.data(), count))))
        throw Failure("there is not enough memory for the matrix of " + from.path);
    for (int c = 0; c <= from.width; ++c)
        starts[c] = static_cast<int>(start[static_cast<std::size_t>(c)]);
    if (!to.im_Import(from.height, &values, &rows, &starts))
        throw Failure("the matrix of " + from.path + " cannot be stored:\n" +
                      to.gft_Get_Failure_Trace().c_str());
}

template <class Real>
void write_coordinates(OutputFile& file, const std::string& comment,
                       const typename Twin<Real>::Sparse& matrix) {
    constexpr std::size_t block = 1 << 16;
    const Real* values = nullptr;
    const int *rows = nullptr, *start = nullptr;
    int width = 0, height = 0, count = 0;
    matrix.z_gii_Get_Informations_Internal(nullptr, &values, &rows, &start, &width, &height,
                                           &count);
    std::string text = "%%MatrixMarket matrix coordinate real general\n% " + comment + "\n";
    append(text, height, ' ');
    append(text, width, ' ');
    append(text, count, '\n');
    for (int c = 0; c < width; ++c) {
        for (int k = start[c]; k < start[c + 1]; ++k) {
            append(text, rows[k] + 1, ' ');
            append(text, c + 1, ' ');
            append(text, values[k], '\n');
        }
        if (text.size() > block) {
            file.write(text);
            text.clear();
        }
    }
    file.write(text);
}

template void make_sparse(const FileMatrix<double>&, CNqSmatrix&);
template void make_sparse(const FileMatrix<float>&, CNqSmatrixFloat&);
template void write_coordinates<double>(OutputFile&, const std::string&, const CNqSmatrix&);
template void write_coordinates<float>(OutputFile&, const std::string&, const CNqSmatrixFloat&);

}  // namespace program
