// Recorded sweeps of rotations, applied in batches, against the same rotations one by one.
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "factorization/algorithm/rotation_sweeps.h"
#include "support/twins.h"

namespace nequar {
namespace {

TWINS(RotationSweepsTest);

TWIN_TEST(RotationSweepsTest, BatchesOfSweepsOverChangingRanges) {
    for (const Size rows : {2, 3, 6, 40, 130})
        for (const Size columns : {1, 20, 70, 300})
            for (const bool transposed : {false, true}) {
                std::mt19937 random(unsigned(rows + columns));
                std::uniform_real_distribution<Real> uniform(Real(-1), Real(1));
                std::vector<Real> elements(std::size_t(rows * columns));
                for (Real& element : elements) element = uniform(random);
                std::vector<Real> expected = elements;
                const auto view = [&](std::vector<Real>& of) {
                    return transposed ? View<Real>(of.data(), rows, columns, 1, rows)
                                      : View<Real>(of.data(), rows, columns, columns, 1);
                };
                const View<Real> plain = view(expected);
                std::vector<Real> scratch(std::size_t(RotationSweeps<Real>::scratch(rows)));
                RotationSweeps<Real> sweeps(scratch.data(), rows);
                const int count = 150;
                for (int sweep = 0; sweep < count; ++sweep) {
                    const Size first = sweep % 3 == 0 ? 0 : Size(random()) % (rows - 1);
                    const Size last = first + 1 + Size(random()) % (rows - 1 - first);
                    if (sweeps.is_full()) sweeps.apply(view(elements));
                    Real* const pairs = sweeps.begin(first, last);
                    for (Size i = first; i < last; ++i) {
                        const Real phi = Real(2.3) * uniform(random);
                        const Real c = pairs[2 * i] = std::cos(phi);
                        const Real s = pairs[2 * i + 1] = std::sin(phi);
                        for (Size j = 0; j < columns; ++j) {
                            const Real x = plain(i, j);
                            plain(i, j) = c * x - s * plain(i + 1, j);
                            plain(i + 1, j) = s * x + c * plain(i + 1, j);
                        }
                    }
                }
                sweeps.apply(view(elements));
                sweeps.apply(view(elements));
                Real largest = 0;
                for (std::size_t i = 0; i < elements.size(); ++i) {
                    const Real difference = std::abs(elements[i] - expected[i]);
                    if (!(difference <= largest)) largest = difference;
                }
                EXPECT_LE(largest, Real(count) * std::numeric_limits<Real>::epsilon())
                    << rows << " x " << columns;
            }
}

}  // namespace
}  // namespace nequar
