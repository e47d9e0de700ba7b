// A long random sequence of operations on the symmetric matrix: after each step the lower half has
// to be stored as the mirror says, explicit zeros included, and all that is read has to be the full
// matrix. Values are small integers, so nothing is rounded.
#include "sparse/symmetric_steps.h"

namespace {

using namespace sparse_test;

TWINS(SparseSymmetricSequence);

TWIN_TEST(SparseSymmetricSequence, Matrix) {
    Symmetrics<Real> m;
    expect_sequence(m, 200);
}

}  // namespace
