// Matrices packed by diagonals: every variant against the definition, on shapes around each vector
// length and each chunk. Packed elements lie on the heap, exactly as many as there are, so that the
// address sanitizer sees what is read past them.
#include <numeric>

#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Bands);

// wrong(row, column, k) for the stored elements in packed order; answers how many are.
template <class Wrong>
Size count_wrong(Size height, Size width, const Wrong& wrong) {
    Size count = 0;
    std::size_t k = 0;
    for (Size d = 0; d < height; ++d)
        for (Size p = 0; p < width && p + d < height; ++p) count += wrong(p + d, p, k++);
    return count;
}

// The lower trapezoid, or a symmetric matrix, which packs the averages across the diagonal.
template <class Real>
void check_packed(const Table<Real>* table, Size height, Size width, Layout layout,
                  bool symmetric = false) {
    std::vector<Real> packed(std::size_t(count_wrong(height, width, [](auto...) { return true; })));
    std::iota(packed.begin(), packed.end(), Real(1));
    Operand<Real> a(height, width, layout);  // NaN, which must stay above a trapezoid
    if (symmetric)
        table->unpack_symmetric(height, packed.data(), a.block());
    else
        table->unpack_lower(height, width, packed.data(), a.block());
    Size wrong = a.count([&](Size i, Size j) {
        return j > i && (symmetric ? a(i, j) != a(j, i) : !std::isnan(a(i, j)));
    });
    wrong += count_wrong(height, width, [&](Size row, Size column, std::size_t k) {
        return a(row, column) != packed[k];
    });
    EXPECT_TRUE(a.guards_stand());
    a.randomize(1);
    std::vector<Real> out(packed.size());
    if (symmetric)
        table->pack_symmetric(height, a.reading(), out.data());
    else
        table->pack_lower(height, width, a.reading(), out.data());
    wrong += count_wrong(height, width, [&](Size row, Size column, std::size_t k) {
        return out[k] !=
               (symmetric ? (a(row, column) + a(column, row)) * Real(0.5) : a(row, column));
    });
    EXPECT_EQ(wrong, 0);
}

TWIN_TEST(Bands, EveryShapeAroundTheVectorsAndTheChunks) {
    Sizes sizes(36);
    std::iota(sizes.begin(), sizes.end(), 0);
    const Layout either[] = {Layout::rows, Layout::columns};
    with_each([](auto... arguments) { check_packed<Real>(arguments...); }, variants<Real>(), sizes,
              sizes, either);
    const std::array<Size, 2> shapes[] = {
        {1, 1},     {5, 3},     {20, 40}, {127, 127}, {128, 128}, {129, 129}, {131, 17},
        {150, 140}, {257, 256}, {260, 2}, {300, 16},  {300, 131}, {271, 271}};
    with_each([](auto* table, const auto& shape,
                 Layout layout) { check_packed(table, shape[0], shape[1], layout); },
              variants<Real>(), shapes, kLayouts);
    for (const Size n : {63, 64, 127, 128, 129, 144, 150, 255, 257, 271}) sizes.push_back(n);
    with_each([](auto* table, Size n, Layout layout) { check_packed(table, n, n, layout, true); },
              variants<Real>(), sizes, kLayouts);
}

}  // namespace
}  // namespace nequar::kernel::testing
