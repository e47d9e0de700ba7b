// The kernels compiled for AVX-512 (F, DQ, VL, BW).
#if defined(__x86_64__)

#define NEQUAR_UNIT avx512
#define NEQUAR_VECTOR_BYTES 64
#include "kernel/simd/unit.h"

namespace nequar::kernel::avx512 {

namespace {
constexpr Table<double> kTableOfDouble = table_named<double>("avx512");
constexpr Table<float> kTableOfFloat = table_named<float>("avx512");
}  // namespace

const Table<double>& table_of_double() {
    return kTableOfDouble;
}
const Table<float>& table_of_float() {
    return kTableOfFloat;
}

}  // namespace nequar::kernel::avx512

#endif
