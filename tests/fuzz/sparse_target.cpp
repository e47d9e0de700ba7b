// Random operations on the sparse types: legal ones beside mirrors, after each of which the storage
// has to be in order and hold exactly what the mirror says, explicit zeros included; and any ones.
// Values beside mirrors are small integers, so nothing is rounded.
#include "sparse/any_calls.h"
#include "sparse/matrix_steps.h"
#include "sparse/symmetric_steps.h"
#include "sparse/vector_steps.h"

namespace {

using namespace sparse_test;

template <class Real>
void walk_somewhere(int way, bool looks_at_copies_alone, Input input) {
    if (way == 0) return walk(Matrices<Real>(input), 1000, looks_at_copies_alone);
    if (way == 1) return walk(Symmetrics<Real>(input), 200, looks_at_copies_alone);
    if (way == 2) return AnyCalls<Real>(input).run();
    walk(Vectors<Real>(input), 1000, looks_at_copies_alone);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const Input input(data + 1, size - 1);
    const int variant = data[0] / 24;
    const bool is_double = data[0] % 8 < 6, looks_at_copies_alone = variant % 2 != 0;
    const int way = variant == 8 ? 3 : is_double ? data[0] % 8 / 2 : data[0] / 8 % 3;
    if (is_double)
        walk_somewhere<double>(way, looks_at_copies_alone, input);
    else
        walk_somewhere<float>(way, looks_at_copies_alone, input);
    return 0;
}
