#include "markdown.h"

#include <fmt/core.h>

#include <algorithm>
#include <fstream>

namespace bench {
namespace {

std::string cell(const Result& result) {
    if (result.ratio() >= 0) return fmt::format("{:.2f}", result.ratio());
    const Timing* ours = result.of(Who::nequar);
    return ours == nullptr ? "" : fmt::format("({:.3g})", result.rate(*ours));
}

void write_table(std::ofstream& file, const std::string& type, const std::vector<Result>& results) {
    std::vector<Size> sizes;
    std::vector<std::string> operations;
    for (const Result& result : results) {
        if (result.type != type) continue;
        if (std::find(sizes.begin(), sizes.end(), result.n) == sizes.end())
            sizes.push_back(result.n);
        if (std::find(operations.begin(), operations.end(), result.operation) == operations.end())
            operations.emplace_back(result.operation);
    }
    if (operations.empty()) return;
    std::sort(sizes.begin(), sizes.end());
    std::string head = "| " + type + ", n =", rule = "|---";
    for (const Size n : sizes) {
        head += fmt::format(" | {}", n);
        rule += "|--:";
    }
    file << head << " |\n" << rule << "|\n";
    for (const std::string& operation : operations) {
        std::string line = "| " + operation;
        for (const Size n : sizes) {
            const auto found =
                std::find_if(results.begin(), results.end(), [&](const Result& result) {
                    return result.type == type && result.operation == operation && result.n == n;
                });
            line += " | " + (found == results.end() ? std::string() : cell(*found));
        }
        file << line << " |\n";
    }
    file << "\n";
}

}  // namespace

bool write_markdown(const std::string& path, const Machine& machine,
                    const std::vector<Result>& results) {
    std::ofstream file(path);
    file << machine.cpu << ", " << machine.date << ", one thread; "
         << fmt::format("peak {:.1f} GF/s double, {:.1f} float ({}); ", machine.peak.in_double,
                        machine.peak.in_float, machine.peak.instructions)
         << "our kernels: " << machine.kernels << "; " << machine.eigen << "; " << machine.openblas
         << ".\n\n";
    write_table(file, "double", results);
    write_table(file, "float", results);
    file.close();
    return file.good();
}

}  // namespace bench
