// Alternating rounds: every contender gets one sample a round, in an order that turns from round to
// round, so that a disturbance of the machine meets everybody. The median of the samples counts.
#pragma once

#include <vector>

#include "case.h"

namespace bench {

struct Timing {
    Who who = Who::nequar;
    double seconds = 0;  // median of the time of one run
    double error = 0;    // of the result, in units of its rounding bound
    bool is_right() const { return error <= kLargestError; }

    static constexpr double kLargestError = 1;
};

// Takes about `budget` seconds for each contender, at least three rounds.
std::vector<Timing> measure(const Case& one, double budget);

}  // namespace bench
