// A matrix, which reads back as it was when it is written.
#include <cmath>
#include <filesystem>

#include "files/matrix_market_reader.h"
#include "files/matrix_market_writer.h"
#include "fuzz/memory_file.h"

namespace {

constexpr long long kMostRewritten = 1 << 12;

template <class Real>
std::vector<Real> dense_of(const program::FileMatrix<Real>& matrix) {
    std::vector<Real> dense(std::size_t(matrix.height) * std::size_t(matrix.width));
    matrix.for_each([&](int row, int column, Real value) {
        Real& element = dense[std::size_t(row) * std::size_t(matrix.width) + std::size_t(column)];
        NEQUAR_REQUIRE(element == Real(0));  // none is given twice
        element = value;
    });
    return dense;
}

template <class Real>
void check(const std::string& path, Real) {
    const auto matrix = program::read_matrix_market<Real>(path);
    NEQUAR_REQUIRE(matrix.height > 0 && matrix.width > 0);
    matrix.for_each([&](int row, int column, Real value) {
        NEQUAR_REQUIRE(row >= 0 && row < matrix.height && column >= 0 && column < matrix.width);
        NEQUAR_REQUIRE(std::isfinite(value));
    });
    if (1LL * matrix.height * matrix.width > kMostRewritten) return;
    const std::vector<Real> dense = dense_of(matrix);
    const std::string copy = std::filesystem::temp_directory_path() /
                             ("nequar-fuzz-" + std::to_string(getpid()) + ".mtx");
    program::OutputFile out(copy);
    program::write_matrix_market(out, "", matrix.height, matrix.width, dense.data());
    out.commit();
    const auto again = program::read_matrix_market<Real>(copy);
    std::filesystem::remove(copy);
    NEQUAR_REQUIRE(dense_of(again) == dense);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    nequar::fuzz::read_any_bytes(data, size, [](const auto&... file) { check(file...); });
    return 0;
}
