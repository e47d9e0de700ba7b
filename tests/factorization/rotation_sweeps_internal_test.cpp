// Recorded sweeps of rotations, applied in batches, against the same rotations one by one.
#include <cmath>
#include <random>
#include <vector>

#include "factorization/algorithm/rotation_sweeps.h"
#include "frame/views.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

TWINS(RotationSweepsTest);

TWIN_TEST(RotationSweepsTest, BatchesOfSweepsOverChangingRanges) {
    for (const int rows : {2, 3, 6, 40, 130})
        for (const int columns : {1, 20, 70, 300})
            for (const bool transposed : {false, true}) {
                std::mt19937 random(unsigned(rows + columns));
                Uniform uniform(3);
                Matrix<Real> found = transposed ? random_matrix<Real>(columns, rows)
                                                : random_matrix<Real>(rows, columns);
                Matrix<Real> expected = found;
                const auto view = [transposed](Matrix<Real>& of) {
                    return transposed ? view_of(&of).transposed() : view_of(&of);
                };
                const View<Real> plain = view(expected);
                std::vector<Real> scratch(std::size_t(RotationSweeps<Real>::scratch(rows)));
                RotationSweeps<Real> sweeps(scratch.data(), rows);
                const int count = 150;
                for (int sweep = 0; sweep < count; ++sweep) {
                    const Size first = sweep % 3 == 0 ? 0 : Size(random()) % (rows - 1);
                    const Size last = first + 1 + Size(random()) % (rows - 1 - first);
                    if (sweeps.is_full()) sweeps.apply(view(found));
                    Real* const pairs = sweeps.begin(first, last);
                    for (Size i = first; i < last; ++i) {
                        const double phi = 2.3 * uniform();
                        const Real c = pairs[2 * i] = Real(std::cos(phi));
                        const Real s = pairs[2 * i + 1] = Real(std::sin(phi));
                        for (Size j = 0; j < columns; ++j) {
                            const Real x = plain(i, j);
                            plain(i, j) = c * x - s * plain(i + 1, j);
                            plain(i + 1, j) = s * x + c * plain(i + 1, j);
                        }
                    }
                }
                for (int twice = 0; twice < 2; ++twice) sweeps.apply(view(found));
                EXPECT_LE(largest_difference(found, expected), count * kEpsilon<Real>)
                    << rows << " x " << columns;
            }
}

}  // namespace
}  // namespace nequar
