// Rotations of rows and the symmetric product: every variant against the plain loops.
#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Rotations);

// Pairs (tan half the angle, sin), some of them the identity.
template <class Real>
std::vector<Real> rotations(Size count, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<Real> angle(Real(-2.3), Real(2.3));
    std::vector<Real> pairs;
    for (Size i = 0; i < count; ++i) {
        const Real phi = i % 5 == 3 ? Real(0) : angle(generator);
        pairs.push_back(std::tan(phi / 2));
        pairs.push_back(std::sin(phi));
    }
    return pairs;
}

TWIN_TEST(Rotations, SweepsOverRows) {
    const auto compare = [](auto* table, Size sweeps, Size count, Size n) {
        const auto pairs = rotations<Real>(sweeps * (count + 2), 7);
        const Operand<Real> a(count + 1, n, Layout::rows, 5);
        expect_agreement(table, a, Real(4 * (sweeps + 1)) * kEps<Real>, [&](auto& t, auto& out) {
            t.rotate_rows(sweeps, count, n, pairs.data(), 2 * count + 4, out.data(),
                          out.row_stride());
        });
    };
    with_each(compare, variants<Real>(), Sizes{1, 2, 3, 4, 5, 9},
              Sizes{0, 1, 2, 3, 4, 5, 6, 11, 23}, Sizes{1, 3, 8, 16, 17, 33, 66, 150});
}

TWIN_TEST(Rotations, OneRowWithMany) {
    const auto compare = [](auto* table, Size count, Size n) {
        auto pairs = rotations<Real>(count, 11);
        for (std::size_t q = 0; q < pairs.size(); q += 2)  // s, tau = s / (1 + c)
            std::swap(pairs[q], pairs[q + 1]);
        const Operand<Real> a(count + 1, n, Layout::rows, 3);
        expect_agreement(table, a, Real(20) * kEps<Real>, [&](auto& t, auto& out) {
            const Size row = out.row_stride();
            t.rotate_with_rows(count, n, out.data(), out.data() + row, row, pairs.data());
        });
    };
    with_each(compare, variants<Real>(), Sizes{0, 1, 4, 9}, Sizes{1, 7, 16, 65, 140});
}

TWIN_TEST(Rotations, SymmetricProductReadsTheUpperTriangle) {
    const auto compare = [](auto* table, Size n) {
        Operand<Real> a(n, n, Layout::rows, 1), x(1, n, Layout::rows, 2);
        a.assign([&](Size i, Size j) { return j < i ? kNaN<Real> : a(i, j); });
        expect_agreement(table, Operand<Real>(1, n, Layout::rows), Real(n) * kEps<Real>,
                         [&](auto& t, auto& out) {
                             t.symv_upper(n, a.data(), a.row_stride(), x.data(), out.data());
                         });
    };
    with_each(compare, variants<Real>(), Sizes{0, 1, 2, 3, 4, 5, 8, 13, 16, 31, 37, 70, 133});
}

}  // namespace
}  // namespace nequar::kernel::testing
