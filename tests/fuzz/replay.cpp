// Runs the target once for each file of the folders named, so that what fuzzers have found stays
// found, and on drawn inputs, the same ones each time.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/input.h"

namespace {

// Small bytes alone decide for small integers; the larger ones for the ends of the range and for
// any bits. The first few, which choose among the operations, are always of any size.
std::vector<std::uint8_t> drawn_bytes(unsigned seed) {
    constexpr unsigned kinds[] = {8, 128, 144, 176, 240, 256};
    std::mt19937 engine(seed);
    std::vector<std::uint8_t> bytes(engine() % 600);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(engine() % (i < 4 ? 256 : kinds[seed % 6]));
    return bytes;
}

}  // namespace

int main(int argument_count, char** arguments) {
    namespace fs = std::filesystem;
    int runs = 0;
    for (int i = 1; i < argument_count; ++i) {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(arguments[i]))
            files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files) {
            std::ifstream stream(file, std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
            std::fprintf(stderr, "%s\n", file.c_str());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            ++runs;
        }
    }
    for (unsigned seed = 0; seed < 10000; ++seed) {
        const std::vector<std::uint8_t> bytes = drawn_bytes(seed);
        std::fprintf(stderr, "drawn input %u\n", seed);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return runs > 0 ? 0 : 1;
}
