#include "timing.h"

#include <algorithm>

#include "clock.h"

namespace bench {
namespace {

double time_of(const std::function<void()>& run, int runs) {
    const double start = processor_seconds();
    for (int i = 0; i < runs; ++i) run();
    return (processor_seconds() - start) / runs;
}

double median(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    const std::size_t middle = samples.size() / 2;
    return samples.size() % 2 == 1 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
}

}  // namespace

std::vector<Timing> measure(const Case& one, double budget) {
    constexpr int most_rounds = 31, fewest_rounds = 3;
    const std::size_t count = one.contenders.size();
    std::vector<int> runs(count);
    double slowest_sample = 0;
    for (std::size_t c = 0; c < count; ++c) {
        const std::function<void()>& run = one.contenders[c].run;
        run();  // first touch of its memory, first choice of its code
        const double once = std::max(time_of(run, 1), 1e-9);
        runs[c] = static_cast<int>(std::clamp(budget / most_rounds / once, 1.0, 1e6));
        slowest_sample = std::max(slowest_sample, runs[c] * once);
    }
    const int rounds = static_cast<int>(
        std::clamp(budget / slowest_sample, double(fewest_rounds), double(most_rounds)));
    std::vector<std::vector<double>> samples(count);
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t turn = 0; turn < count; ++turn) {
            const std::size_t c = (turn + static_cast<std::size_t>(round)) % count;
            samples[c].push_back(time_of(one.contenders[c].run, runs[c]));
        }
    }
    std::vector<Timing> timings;
    for (std::size_t c = 0; c < count; ++c)
        timings.push_back({one.contenders[c].who, median(samples[c]), one.contenders[c].error()});
    return timings;
}

}  // namespace bench
