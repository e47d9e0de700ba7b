// A run as tables for the documentation: for each type one, operations down, sizes across.
#pragma once

#include <string>
#include <vector>

#include "report.h"

namespace bench {

// Each cell is the ratio of the best peer's time to ours, or, without a peer, our GF/s in brackets.
// False when the file cannot be written.
bool write_markdown(const std::string& path, const Machine& machine,
                    const std::vector<Result>& results);

}  // namespace bench
