// Long random sequences of operations: after each step the storage has to be in order and hold
// exactly what the mirror says, explicit zeros included. Values are small integers, so nothing is
// rounded.
#include "fuzz/random_inputs.h"
#include "sparse/any_calls.h"
#include "sparse/matrix_steps.h"
#include "sparse/symmetric_steps.h"
#include "sparse/vector_steps.h"

namespace {

using namespace sparse_test;

TWINS(SparseSequence);

template <class Sequence>
void expect_sequence(float largest_magnitude) {
    for (const bool looks_at_copies_alone : {false, true})
        nequar::fuzz::expect_walks(800, 1500, [&](Input input) {
            walk(Sequence(input), largest_magnitude, looks_at_copies_alone);
        });
}

TWIN_TEST(SparseSequence, Vector) {
    expect_sequence<Vectors<Real>>(1000);
}
TWIN_TEST(SparseSequence, Matrix) {
    expect_sequence<Matrices<Real>>(1000);
}
TWIN_TEST(SparseSequence, SymmetricMatrix) {
    expect_sequence<Symmetrics<Real>>(200);
}
TWIN_TEST(SparseSequence, AnyCalls) {
    nequar::fuzz::expect_walks(1000, 1500, [](Input input) { AnyCalls<Real>(input).run(); });
}

}  // namespace
