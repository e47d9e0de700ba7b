#include "files/matrix_market_writer.h"

#include <charconv>

namespace program {

template <class Real>
void write_matrix_market(OutputFile& file, const std::string& comment, int height, int width,
                         const Real* values) {
    constexpr std::size_t block = 1 << 16;
    std::string text = "%%MatrixMarket matrix array real general\n% " + comment + "\n" +
                       std::to_string(height) + " " + std::to_string(width) + "\n";
    for (int column = 0; column < width; ++column) {
        for (int row = 0; row < height; ++row) {
            char number[64];
            const Real value = values[static_cast<std::ptrdiff_t>(row) * width + column];
            const auto end = std::to_chars(number, number + sizeof number, value).ptr;
            text.append(number, end);
            text += '\n';
        }
        if (text.size() > block) {
            file.write(text);
            text.clear();
        }
    }
    file.write(text);
}

template void write_matrix_market(OutputFile&, const std::string&, int, int, const double*);
template void write_matrix_market(OutputFile&, const std::string&, int, int, const float*);

}  // namespace program
