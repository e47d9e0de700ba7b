// A table of finite numbers.
#include <cmath>

#include "files/csv_reader.h"
#include "fuzz/memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    nequar::fuzz::read_any_bytes(data, size, []<class Real>(const std::string& path, Real) {
        const program::Table<Real> table = program::read_csv<Real>(path);
        NEQUAR_REQUIRE(table.height > 0 && table.width > 0);
        NEQUAR_REQUIRE(table.values.size() == std::size_t(table.height) * std::size_t(table.width));
        NEQUAR_REQUIRE(table.names.empty() || table.names.size() == std::size_t(table.width));
        for (const Real value : table.values) NEQUAR_REQUIRE(std::isfinite(value));
    });
    return 0;
}
