#include <cstdlib>

#include "kernel/kernel.h"
#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Whole);

TWIN_TEST(Whole, CopiesFillsAndTransposesInEveryPairOfLayouts) {
    const std::array<Size, 2> shapes[] = {{0, 0}, {0, 4},   {1, 1},   {1, 40},   {40, 1},  {2, 3},
                                          {7, 8}, {16, 16}, {17, 33}, {63, 130}, {130, 71}};
    const auto compare = [](auto* table, const auto& shape, Layout la, Layout lb) {
        const Size m = shape[0], n = shape[1];
        Operand<Real> a(m, n, la, 1), b(m, n, lb);
        table->copy_matrix(m, n, a.reading(), b.block());
        EXPECT_EQ(largest_difference(a, b), Real(0));
        table->fill_matrix(m, n, Real(3), a.block());
        EXPECT_EQ(a.count([&](Size i, Size j) { return a(i, j) != Real(3); }), 0);
        EXPECT_TRUE(a.guards_stand() && b.guards_stand());
    };
    with_each(compare, variants<Real>(), shapes, kLayouts, kLayouts);
    const auto compare_turned = [](auto* table, Size n, Layout layout) {
        Operand<Real> a(n, n, layout, 1), before = a;
        table->transpose_in_place(n, a.block());
        EXPECT_EQ(a.count([&](Size i, Size j) { return a(i, j) != before(j, i); }), 0);
        EXPECT_TRUE(a.guards_stand());
    };
    with_each(compare_turned, variants<Real>(), Sizes{0, 1, 2, 7, 8, 9, 16, 31, 64, 65, 100, 200},
              kLayouts);
}

TEST(Dispatch, FallsBackToWhatTheCpuCanRunAndKeepsToTheEnvironment) {
    const char* const named = std::getenv("NEQUAR_KERNEL");
    Variant expected = best_up_to(Variant::avx512);
    for (const Variant wanted :
         {Variant::reference, Variant::baseline, Variant::avx2, Variant::avx512}) {
        const Variant best = best_up_to(wanted);
        EXPECT_TRUE(can_run(best) && best <= wanted);
        EXPECT_EQ(best == wanted, can_run(wanted));
        EXPECT_STREQ(table_of<double>(best).name, name_of(best));
        EXPECT_STREQ(table_of<float>(best).name, name_of(best));
        if (named != nullptr && std::string(named) == name_of(wanted)) expected = best;
    }
    EXPECT_EQ(&table<double>(), &table_of<double>(expected));
    EXPECT_EQ(&table<float>(), &table_of<float>(expected));
    EXPECT_STREQ(variant_name(), name_of(expected));
}

}  // namespace
}  // namespace nequar::kernel::testing
