// Any bytes are a table of finite numbers or a refusal that names a line.
#include <cmath>

#include "errors.h"
#include "files/csv_reader.h"
#include "fuzz/memory_file.h"

namespace {

template <class Real>
bool read(const nequar::fuzz::MemoryFile& file) {
    try {
        const program::Table<Real> table = program::read_csv<Real>(file.path());
        NEQUAR_REQUIRE(table.height > 0 && table.width > 0);
        NEQUAR_REQUIRE(table.values.size() == std::size_t(table.height) * std::size_t(table.width));
        NEQUAR_REQUIRE(table.names.empty() || table.names.size() == std::size_t(table.width));
        for (const Real value : table.values) NEQUAR_REQUIRE(std::isfinite(value));
        return true;
    } catch (const program::InputError& error) {
        NEQUAR_REQUIRE(std::string(error.what()).rfind(file.path() + ":", 0) == 0);
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const nequar::fuzz::MemoryFile file(data, size);
    const bool fits_float = read<float>(file);
    NEQUAR_REQUIRE(read<double>(file) || !fits_float);
    return 0;
}
