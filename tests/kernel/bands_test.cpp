// Matrices packed by diagonals: every variant against the definition, on shapes around each vector
// length and each chunk. Packed elements lie on the heap, exactly as many as there are, so that the
// address sanitizer sees what is read past them.
#include <numeric>

#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Bands);

template <class Real>
std::vector<Real> numbers(Size count) {
    std::vector<Real> elements(static_cast<std::size_t>(count));
    std::iota(elements.begin(), elements.end(), Real(1));
    return elements;
}

// wrong(row, column, k) for the stored elements in packed order; answers how many are.
template <class Wrong>
Size count_wrong(Size height, Size width, const Wrong& wrong) {
    Size count = 0;
    std::size_t k = 0;
    for (Size d = 0; d < height; ++d)
        for (Size p = 0; p < width && p + d < height; ++p) count += wrong(p + d, p, k++);
    return count;
}

template <class Real>
void check_trapezoid(const Table<Real>* table, Size height, Size width, Layout layout) {
    const Size count = count_wrong(height, width, [](auto...) { return true; });
    const std::vector<Real> packed = numbers<Real>(count);
    Operand<Real> a(height, width, layout);
    a.assign([](Size, Size) { return Real(-1); });
    table->unpack_lower(height, width, packed.data(), a.block());
    Size wrong = a.count([&](Size i, Size j) { return j > i && a(i, j) != Real(-1); });
    wrong += count_wrong(height, width, [&](Size row, Size column, std::size_t k) {
        return a(row, column) != packed[k];
    });
    EXPECT_TRUE(a.guards_stand());
    std::vector<Real> out(packed.size());
    table->pack_lower(height, width, a.randomize(1).reading(), out.data());
    wrong += count_wrong(height, width, [&](Size row, Size column, std::size_t k) {
        return out[k] != a(row, column);
    });
    EXPECT_EQ(wrong, 0);
}

TWIN_TEST(Bands, EveryShapeAroundTheVectorsAndTheChunks) {
    Sizes all(36);
    std::iota(all.begin(), all.end(), 0);
    const Layout either[] = {Layout::rows, Layout::columns};
    with_each(check_trapezoid<Real>, variants<Real>(), all, all, either);
    const std::array<Size, 2> shapes[] = {
        {1, 1},     {5, 3},     {20, 40}, {127, 127}, {128, 128}, {129, 129}, {131, 17},
        {150, 140}, {257, 256}, {260, 2}, {300, 16},  {300, 131}, {271, 271}};
    with_each([](const Table<Real>* table, const auto& shape,
                 Layout layout) { check_trapezoid(table, shape[0], shape[1], layout); },
              variants<Real>(), shapes, kLayouts);
}

TWIN_TEST(Bands, SymmetricMatrices) {
    Sizes orders(36);
    std::iota(orders.begin(), orders.end(), 0);
    for (const Size n : {63, 64, 127, 128, 129, 144, 150, 255, 257, 271}) orders.push_back(n);
    with_each(
        [](const Table<Real>* table, Size n, Layout layout) {
            const std::vector<Real> packed = numbers<Real>(n * (n + 1) / 2);
            Operand<Real> a(n, n, layout);
            table->unpack_symmetric(n, packed.data(), a.block());
            Size wrong = count_wrong(n, n, [&](Size row, Size column, std::size_t k) {
                return a(row, column) != packed[k] || a(column, row) != packed[k];
            });
            EXPECT_TRUE(a.guards_stand());
            std::vector<Real> out(packed.size());
            table->pack_symmetric(n, a.randomize(1).reading(), out.data());
            wrong += count_wrong(n, n, [&](Size row, Size column, std::size_t k) {
                return out[k] != (a(row, column) + a(column, row)) * Real(0.5);
            });
            EXPECT_EQ(wrong, 0);
        },
        variants<Real>(), orders, kLayouts);
}

}  // namespace
}  // namespace nequar::kernel::testing
