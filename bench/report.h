// The table for people and the same as JSON for programs.
#pragma once

#include <string>
#include <vector>

#include "peak.h"
#include "timing.h"

namespace bench {

struct Machine {
    std::string cpu, date, kernels, eigen, openblas;
    Peak peak;
};

struct Result {
    const char* operation = "";
    const char* type = "";  // "double" or "float"
    Size n = 0;
    double flops = 0;
    double peak = 0;  // GF/s of this type
    std::vector<Timing> timings;

    const Timing* of(Who who) const;  // null when it took no part
    double rate(const Timing& timing) const { return flops / timing.seconds * 1e-9; }
    // The best peer's time by ours, above 1 is ahead; 0 when our result is wrong, -1 without a
    // peer.
    double ratio() const;
};

Machine this_machine();

void print_head(const Machine& machine);
void print_result(const Result& result);

// False when the file cannot be written.
bool write_json(const std::string& path, const Machine& machine,
                const std::vector<Result>& results);

}  // namespace bench
