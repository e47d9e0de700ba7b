#include "numbers/dense.h"

#include <unistd.h>

namespace program {

double memory_of_this_machine() {
    return static_cast<double>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<double>(sysconf(_SC_PAGE_SIZE));
}

}  // namespace program
