#include "peak.h"

#include <algorithm>

#include "clock.h"

namespace bench {
namespace {

constexpr int kChains = 12;  // independent sums: latency of four cycles, two or three a cycle
constexpr long kSteps = 1 << 16;

// s := s x + y, in a register of its own; the empty asm keeps the compiler from leaving any out.
#define NEQUAR_STEP(s) \
    s = s * x + y;     \
    asm volatile("" : "+x"(s));
#define NEQUAR_ALL(do_with)                                                             \
    do_with(s0) do_with(s1) do_with(s2) do_with(s3) do_with(s4) do_with(s5) do_with(s6) \
        do_with(s7) do_with(s8) do_with(s9) do_with(s10) do_with(s11)

// Runs the chains and gives the number of operations. A macro, because the loop must be compiled as
// a whole for the instruction set of its function.
#define NEQUAR_DECLARE(s) Vector s = x;
#define NEQUAR_CHAINS(name, features, Real, bytes)                             \
    __attribute__((target(features))) double name() {                          \
        typedef Real Vector __attribute__((vector_size(bytes)));               \
        const Vector x = Vector{} + Real(0.9999), y = Vector{} + Real(0.0001); \
        NEQUAR_ALL(NEQUAR_DECLARE)                                             \
        for (long step = 0; step < kSteps; ++step) {                           \
            NEQUAR_ALL(NEQUAR_STEP)                                            \
        }                                                                      \
        return 2.0 * kChains * kSteps * bytes / sizeof(Real);                  \
    }
NEQUAR_CHAINS(avx512_double, "avx512f", double, 64)
NEQUAR_CHAINS(avx512_float, "avx512f", float, 64)
NEQUAR_CHAINS(avx2_double, "avx2,fma", double, 32)
NEQUAR_CHAINS(avx2_float, "avx2,fma", float, 32)
NEQUAR_CHAINS(sse2_double, "sse2", double, 16)
NEQUAR_CHAINS(sse2_float, "sse2", float, 16)
#undef NEQUAR_CHAINS

double best_rate(double (*loop)()) {
    double best = 0;
    for (int round = 0; round < 200; ++round) {
        const double start = processor_seconds();
        const double operations = loop();
        best = std::max(best, operations / (processor_seconds() - start) * 1e-9);
    }
    return best;
}

}  // namespace

Peak measure_peak() {
    if (__builtin_cpu_supports("avx512f"))
        return {best_rate(avx512_double), best_rate(avx512_float), "AVX-512"};
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        return {best_rate(avx2_double), best_rate(avx2_float), "AVX2 + FMA"};
    return {best_rate(sse2_double), best_rate(sse2_float), "SSE2"};
}

}  // namespace bench
