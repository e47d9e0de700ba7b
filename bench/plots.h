// Pictures of a run: for each operation and type, GF/s of all contenders against n.
#pragma once

#include <string>
#include <vector>

#include "report.h"

namespace bench {

// Writes FOLDER/OPERATION-TYPE.svg for each operation that was measured at two sizes or more; the
// horizontal line is the peak. False when a file cannot be written.
bool write_plots(const std::string& folder, const std::vector<Result>& results);

}  // namespace bench
