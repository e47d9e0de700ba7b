// Matrices packed by diagonals: every variant against the definition, on shapes around each vector
// length and each chunk.
#include "kernel/kernel.h"
#include "variants.h"

namespace nequar::kernel::testing {
namespace {

template <class Real>
class Bands : public ::testing::Test {};
using Reals = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Bands, Reals);

struct Position {
    Size row;
    Size column;
};

// The stored elements in packed order.
std::vector<Position> stored(Size height, Size width) {
    std::vector<Position> positions;
    for (Size d = 0; d < height; ++d) {
        for (Size p = 0; p < width && p + d < height; ++p) positions.push_back({p + d, p});
    }
    return positions;
}

// Packed elements on the heap, exactly as many as there are, so that the address sanitizer sees
// what is read past them.
template <class Real>
std::vector<Real> numbers(std::size_t count) {
    std::vector<Real> elements(count);
    for (std::size_t i = 0; i < count; ++i) elements[i] = Real(i + 1);
    return elements;
}

template <class Real>
void check_trapezoid(Size height, Size width, Layout layout) {
    const std::vector<Position> positions = stored(height, width);
    for (const Table<Real>* table : variants<Real>()) {
        SCOPED_TRACE(std::string(table->name) + ' ' + std::to_string(height) + 'x' +
                     std::to_string(width) + " layout " + std::to_string(int(layout)));
        const std::vector<Real> packed = numbers<Real>(positions.size());
        Operand<Real> a(height, width, layout);
        for (Size i = 0; i < height; ++i) {
            for (Size j = 0; j < width; ++j) a(i, j) = Real(-1);
        }
        table->unpack_lower(height, width, packed.data(), a.block());
        Size wrong = 0;
        for (std::size_t k = 0; k < positions.size(); ++k) {
            Real& element = a(positions[k].row, positions[k].column);
            wrong += element != packed[k];
            element = kNaN<Real>;
        }
        for (Size i = 0; i < height; ++i) {
            for (Size j = i + 1; j < width; ++j) wrong += a(i, j) != Real(-1);
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_TRUE(a.guards_stand());

        a.randomize(1);
        std::vector<Real> out(positions.size());
        table->pack_lower(height, width, a.reading(), out.data());
        wrong = 0;
        for (std::size_t k = 0; k < positions.size(); ++k) {
            wrong += out[k] != a(positions[k].row, positions[k].column);
        }
        EXPECT_EQ(wrong, 0);
    }
}

TYPED_TEST(Bands, EveryShapeAroundTheVectors) {
    for (Size height = 0; height <= 35; ++height) {
        for (Size width = 0; width <= 35; ++width) {
            check_trapezoid<TypeParam>(height, width, Layout::rows);
            check_trapezoid<TypeParam>(height, width, Layout::columns);
        }
    }
}

TYPED_TEST(Bands, EveryLayoutAroundTheChunks) {
    const Size shapes[][2] = {{1, 1},     {5, 3},     {20, 40},   {127, 127}, {128, 128},
                              {129, 129}, {131, 17},  {150, 140}, {257, 256}, {260, 2},
                              {300, 16},  {300, 131}, {271, 271}};
    for (const auto& shape : shapes) {
        for (const Layout layout : kLayouts) check_trapezoid<TypeParam>(shape[0], shape[1], layout);
    }
}

TYPED_TEST(Bands, SymmetricMatrices) {
    using Real = TypeParam;
    std::vector<Size> orders = {63, 64, 127, 128, 129, 144, 150, 255, 257, 271};
    for (Size n = 0; n <= 35; ++n) orders.push_back(n);
    for (const Size n : orders) {
        const std::vector<Position> positions = stored(n, n);
        for (const Table<Real>* table : variants<Real>()) {
            for (const Layout layout : kLayouts) {
                SCOPED_TRACE(std::string(table->name) + ' ' + std::to_string(n) + " layout " +
                             std::to_string(int(layout)));
                const std::vector<Real> packed = numbers<Real>(positions.size());
                Operand<Real> a(n, n, layout);
                table->unpack_symmetric(n, packed.data(), a.block());
                Size wrong = 0;
                for (std::size_t k = 0; k < positions.size(); ++k) {
                    wrong += a(positions[k].row, positions[k].column) != packed[k];
                    wrong += a(positions[k].column, positions[k].row) != packed[k];
                }
                EXPECT_EQ(wrong, 0);
                EXPECT_TRUE(a.guards_stand());

                a.randomize(1);
                std::vector<Real> out(positions.size());
                table->pack_symmetric(n, a.reading(), out.data());
                wrong = 0;
                for (std::size_t k = 0; k < positions.size(); ++k) {
                    const auto [row, column] = positions[k];
                    wrong += out[k] != (a(row, column) + a(column, row)) * Real(0.5);
                }
                EXPECT_EQ(wrong, 0);
            }
        }
    }
}

// What stands on the other side of the diagonal is not used, and NaN and infinity pass through.
TYPED_TEST(Bands, TheOtherTriangleIsIgnored) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Layout layout : {Layout::rows, Layout::columns}) {
            constexpr Size n = 50;
            Operand<Real> a(n, n, layout);  // NaN everywhere
            std::vector<Real> packed = numbers<Real>(n * (n + 1) / 2);
            packed[3] = kInfinity<Real>;
            table->unpack_lower(n, n, packed.data(), a.block());
            std::vector<Real> out(packed.size());
            table->pack_lower(n, n, a.reading(), out.data());
            EXPECT_EQ(out, packed) << table->name;
            table->pack_symmetric(n, a.reading(), out.data());
            EXPECT_EQ(out[3], kInfinity<Real>);
            EXPECT_TRUE(std::isnan(out[n]) && std::isnan(out.back())) << table->name;
        }
    }
}

}  // namespace
}  // namespace nequar::kernel::testing
