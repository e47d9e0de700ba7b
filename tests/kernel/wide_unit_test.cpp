// The kernels once more, at 64 bytes a vector in plain compiler vectors, for the tests alone.
#define NEQUAR_UNIT wide
#define NEQUAR_VECTOR_BYTES 64
#include "kernel/simd/unit.h"

namespace nequar::kernel::wide {

namespace {
constexpr Table<double> kTableOfDouble = table_named<double>("wide");
constexpr Table<float> kTableOfFloat = table_named<float>("wide");
}  // namespace

const Table<double>& table_of_double() {
    return kTableOfDouble;
}
const Table<float>& table_of_float() {
    return kTableOfFloat;
}

}  // namespace nequar::kernel::wide
