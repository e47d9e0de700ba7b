// One measurement: an operation at one size and element type, and who carries it out.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace bench {

using Size = std::ptrdiff_t;

enum class Who { nequar, eigen, openblas };
inline constexpr Who kEverybody[] = {Who::nequar, Who::eigen, Who::openblas};
const char* name_of(Who who);

struct Contender {
    Who who;
    std::function<void()> run;      // what is timed, copying of the input included
    std::function<double()> error;  // of the last run's result, in units of its rounding bound
};

struct Case {
    double flops =
        0;  // of one run, as the field counts them (2n^3 for a product, 2/3 n^3 for LU, ...)
    std::vector<Contender> contenders;
};

// An operation of the table. A case is made for each size and type that was asked for.
struct Row {
    const char* name;
    const char* what;
    Case (*in_double)(Size n);
    Case (*in_float)(Size n);
};

// Every row, in the order of the table; rows.cpp lists them, the files in rows/ hold them.
std::span<const Row> row_table();

}  // namespace bench
