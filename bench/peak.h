// The multiply-add peak of this core: what a loop that lives in registers reaches.
#pragma once

namespace bench {

struct Peak {
    double in_double = 0, in_float = 0;  // GF/s, a multiply-add counted as two
    const char* instructions = "";
};

// Measures it with the widest vectors that the CPU has.
Peak measure_peak();

}  // namespace bench
