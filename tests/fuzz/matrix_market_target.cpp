// Any bytes are a matrix or a refusal that names a line; a matrix that is written reads back as it
// was.
#include <cmath>
#include <filesystem>

#include "errors.h"
#include "files/matrix_market_reader.h"
#include "files/matrix_market_writer.h"
#include "fuzz/memory_file.h"

namespace {

using nequar::fuzz::MemoryFile;
using program::FileMatrix;

template <class Real>
void check_elements(const FileMatrix<Real>& matrix) {
    NEQUAR_REQUIRE(matrix.height > 0 && matrix.width > 0);
    matrix.for_each([&](int row, int column, Real value) {
        NEQUAR_REQUIRE(row >= 0 && row < matrix.height && column >= 0 && column < matrix.width);
        NEQUAR_REQUIRE(std::isfinite(value));
    });
}

template <class Real>
std::vector<Real> dense_of(const FileMatrix<Real>& matrix) {
    std::vector<Real> dense(std::size_t(matrix.height) * std::size_t(matrix.width));
    matrix.for_each([&](int row, int column, Real value) {
        Real& element = dense[std::size_t(row) * std::size_t(matrix.width) + std::size_t(column)];
        NEQUAR_REQUIRE(element == Real(0));  // none is given twice
        element = value;
    });
    return dense;
}

template <class Real>
bool read(const MemoryFile& file) {
    constexpr long long kMostRewritten = 1 << 12;
    try {
        const auto matrix = program::read_matrix_market<Real>(file.path());
        check_elements(matrix);
        if (static_cast<long long>(matrix.height) * matrix.width > kMostRewritten) return true;
        const std::vector<Real> dense = dense_of(matrix);
        const std::string copy = std::filesystem::temp_directory_path() /
                                 ("nequar-fuzz-" + std::to_string(getpid()) + ".mtx");
        {
            program::OutputFile out(copy);
            program::write_matrix_market(out, "", matrix.height, matrix.width, dense.data());
            out.commit();
        }
        const auto again = program::read_matrix_market<Real>(copy);
        std::filesystem::remove(copy);
        NEQUAR_REQUIRE(dense_of(again) == dense);
        return true;
    } catch (const program::InputError& error) {
        NEQUAR_REQUIRE(std::string(error.what()).rfind(file.path() + ":", 0) == 0);
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    const bool fits_float = read<float>(file);
    NEQUAR_REQUIRE(read<double>(file) || !fits_float);
    return 0;
}
