// Runs the target once for each file of the folders named: what fuzzers have found stays found.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/input.h"

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
    return runs > 0 ? 0 : 1;
}
