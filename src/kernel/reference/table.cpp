// The table of the plain loops.
#include "kernel/table.h"

#include "kernel/reference/bands.h"
#include "kernel/reference/factor.h"
#include "kernel/reference/level1.h"
#include "kernel/reference/level2.h"
#include "kernel/reference/level3.h"
#include "kernel/reference/rotations.h"
#include "kernel/reference/whole.h"

namespace nequar::kernel::reference {

namespace {

template <class Real>
constexpr Table<Real> kTable = {
    .name = "reference",
#include "kernel/table_entries.inl"
};

}  // namespace

const Table<double>& table_of_double() {
    return kTable<double>;
}
const Table<float>& table_of_float() {
    return kTable<float>;
}

}  // namespace nequar::kernel::reference
