#include "report.h"

#include <fmt/core.h>

#include <cstdio>
#include <ctime>
#include <fstream>

#include "kernel/kernel.h"
#include "peers/peers.h"

namespace bench {
namespace {

std::string cpu_name() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0 && line.find(": ") != std::string::npos)
            return line.substr(line.find(": ") + 2);
    return "unknown CPU";
}

std::string today() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now));
    return text;
}

std::string time_text(double seconds) {
    if (seconds < 1e-3) return fmt::format("{:.2f} us", seconds * 1e6);
    return fmt::format("{:.2f} ms", seconds * 1e3);
}

std::string in_json(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) quoted += c;
    }
    return quoted + "\"";
}

}  // namespace

const char* name_of(Who who) {
    switch (who) {
        case Who::eigen:
            return "eigen";
        case Who::openblas:
            return "openblas";
        default:
            return "nequar";
    }
}

const Timing* Result::of(Who who) const {
    for (const Timing& timing : timings)
        if (timing.who == who) return &timing;
    return nullptr;
}

double Result::ratio() const {
    const Timing* ours = of(Who::nequar);
    if (ours == nullptr || !ours->is_right()) return 0;
    double best = -1;
    for (const Timing& timing : timings)
        if (timing.who != Who::nequar && timing.is_right() && (best < 0 || timing.seconds < best))
            best = timing.seconds;
    return best < 0 ? -1 : best / ours->seconds;
}

Machine this_machine() {
    return {cpu_name(),          today(),       nequar::kernel::variant_name(), describe_eigen(),
            describe_openblas(), measure_peak()};
}

void print_head(const Machine& machine) {
    fmt::print("{}, one thread, {}\n", machine.cpu, machine.date);
    fmt::print("peak      {:.1f} GF/s double, {:.1f} GF/s float ({})\n", machine.peak.in_double,
               machine.peak.in_float, machine.peak.instructions);
    fmt::print("nequar    kernels: {}\n", machine.kernels);
    fmt::print("eigen     {}\nopenblas  {}\n", machine.eigen, machine.openblas);
    fmt::print(
        "ratio     time of the best peer / ours: above 1.00 is ahead; a wrong result counts as "
        "0\n\n");
    fmt::print("{:<14}{:<7}{:>6} {:>12}{:>8}{:>7} {:>12}{:>8} {:>12}{:>8}{:>8}\n", "operation",
               "type", "n", "nequar", "GF/s", "peak", "eigen", "GF/s", "openblas", "GF/s", "ratio");
    std::fflush(stdout);
}

void print_result(const Result& result) {
    std::string line = fmt::format("{:<14}{:<7}{:>6}", result.operation, result.type, result.n);
    for (const Who who : kEverybody) {
        const Timing* timing = result.of(who);
        if (timing == nullptr) {
            line += fmt::format(" {:>12}{:>8}", "-", "-");
        } else if (!timing->is_right()) {
            line += fmt::format(" {:>12}{:>8}", time_text(timing->seconds), "WRONG");
        } else {
            line +=
                fmt::format(" {:>12}{:>8.2f}", time_text(timing->seconds), result.rate(*timing));
        }
        if (who == Who::nequar)
            line += timing != nullptr && timing->is_right()
                        ? fmt::format("{:>6.1f}%", 100 * result.rate(*timing) / result.peak)
                        : fmt::format("{:>7}", "-");
    }
    line +=
        result.ratio() < 0 ? fmt::format("{:>8}", "-") : fmt::format("{:>8.2f}", result.ratio());
    fmt::print("{}\n", line);
    std::fflush(stdout);
}

bool write_json(const std::string& path, const Machine& machine,
                const std::vector<Result>& results) {
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) return false;
    fmt::print(file, "{{\n  \"cpu\": {}, \"date\": {}, \"threads\": 1,\n", in_json(machine.cpu),
               in_json(machine.date));
    fmt::print(file,
               "  \"peak\": {{\"double\": {:.3f}, \"float\": {:.3f}, \"instructions\": {}}},\n",
               machine.peak.in_double, machine.peak.in_float, in_json(machine.peak.instructions));
    fmt::print(file, "  \"nequar\": {}, \"eigen\": {}, \"openblas\": {},\n",
               in_json(machine.kernels), in_json(machine.eigen), in_json(machine.openblas));
    fmt::print(file, "  \"results\": [");
    const char* separator = "\n";
    for (const Result& result : results) {
        fmt::print(file, "{}    {{\"operation\": {}, \"type\": {}, \"n\": {}, \"flops\": {:.6g}",
                   separator, in_json(result.operation), in_json(result.type), result.n,
                   result.flops);
        for (const Timing& timing : result.timings)
            fmt::print(file,
                       ",\n     \"{}\": {{\"seconds\": {:.6g}, \"gflops\": {:.4g}, \"peak_share\": "
                       "{:.4g}, "
                       "\"right\": {}}}",
                       name_of(timing.who), timing.seconds, result.rate(timing),
                       result.rate(timing) / result.peak, timing.is_right());
        if (result.ratio() < 0)
            fmt::print(file, ",\n     \"ratio\": null}}");
        else
            fmt::print(file, ",\n     \"ratio\": {:.4g}}}", result.ratio());
        separator = ",\n";
    }
    fmt::print(file, "\n  ]\n}}\n");
    const bool good = std::ferror(file) == 0;
    return std::fclose(file) == 0 && good;
}

}  // namespace bench
