// The kernels compiled for AVX2 and FMA.
#if defined(__x86_64__)

#define NEQUAR_UNIT avx2
#define NEQUAR_VECTOR_BYTES 32
#include "kernel/simd/unit.h"

namespace nequar::kernel::avx2 {

namespace {
constexpr Table<double> kTableOfDouble = table_named<double>("avx2");
constexpr Table<float> kTableOfFloat = table_named<float>("avx2");
}  // namespace

const Table<double>& table_of_double() {
    return kTableOfDouble;
}
const Table<float>& table_of_float() {
    return kTableOfFloat;
}

}  // namespace nequar::kernel::avx2

#endif
