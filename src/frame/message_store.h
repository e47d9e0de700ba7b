// The process's last recorded message: the one piece of state that all objects share. Safe under
// concurrent use.
#pragma once

#include <string>

namespace nequar {

void store_last_message(const std::string& message);

}  // namespace nequar
