// The kernels compiled for the x86-64 baseline (SSE2), or any other CPU's own 128-bit vectors.
#define NEQUAR_UNIT baseline
#define NEQUAR_VECTOR_BYTES 16
#include "kernel/simd/unit.h"

namespace nequar::kernel::baseline {

namespace {
constexpr Table<double> kTableOfDouble = table_named<double>("baseline");
constexpr Table<float> kTableOfFloat = table_named<float>("baseline");
}  // namespace

const Table<double>& table_of_double() {
    return kTableOfDouble;
}
const Table<float>& table_of_float() {
    return kTableOfFloat;
}

}  // namespace nequar::kernel::baseline
