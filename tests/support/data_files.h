// Real data that lies beside the project, for tests that skip by name where it is missing.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace nequar::test {

inline std::filesystem::path data_file(const std::string& name) {
    return std::filesystem::path(NEQUAR_DATA) / name;
}

}  // namespace nequar::test
