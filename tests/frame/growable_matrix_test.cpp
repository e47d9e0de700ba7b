#include "nequar_algebra/frame/growable_matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "support/residual.h"

namespace nequar::test {
namespace {

template <class Container>
class GrowableMatrixOf;
template <class Real, Growth growth>
class GrowableMatrixOf<GrowableMatrix<Real, growth>> : public testing::Test {
protected:
    using Number = Real;

    // Vectors of the given size; element i of vector k is 10 (first + k) + i.
    static Matrix<Number> vectors(int size, int count, int first) {
        const auto rows =
            matrix_of<Number>(count, size, [first](int k, int i) { return 10 * (first + k) + i; });
        return growth == Growth::columns ? transposed(rows) : rows;
    }
    // The first elements of the stored vectors, after every other one has been checked.
    static std::vector<int> stored(const GrowableMatrix<Number, growth>& x) {
        const Number* const* own = nullptr;
        int count = 0, width = 0, height = 0, blank = 0;
        x.z_gii(nullptr, &own, &width, &height, &count, &blank);
        const bool columns = growth == Growth::columns;
        EXPECT_EQ(columns ? width : height, count + blank);
        EXPECT_EQ(columns ? height : width, x.vs());
        EXPECT_TRUE(count == x.nee() && blank == x.sbs());
        std::vector<int> firsts;
        for (int k = 0; k < count; ++k) {
            const Number first = columns ? own[0][k] : own[k][0];
            for (int i = 1; i < x.vs(); ++i)
                EXPECT_EQ(columns ? own[i][k] : own[k][i], first == 0 ? 0 : first + Number(i));
            firsts.push_back(static_cast<int>(first));
        }
        return firsts;
    }
};
using Containers = testing::Types<CNqXCmatrix, CNqXCmatrixFloat, CNqXRmatrix, CNqXRmatrixFloat>;
TYPED_TEST_SUITE(GrowableMatrixOf, Containers);

// Random operations beside the same on the first elements.
TYPED_TEST(GrowableMatrixOf, DoesWhatTheModelDoes) {
    using Real = typename TestFixture::Number;
    std::mt19937 random(5);
    TypeParam x;
    ASSERT_TRUE(x.in_Initialize(3, 2));
    EXPECT_EQ(x.sbs(), 2);
    std::vector<int> model;
    Matrix<Real>* own = nullptr;
    for (int step = 1; step < 2000; ++step) {
        const int n = static_cast<int>(random() % 4);
        const auto source = this->vectors(3, 3, step);
        const auto vector = vector_of<Real>({10.0 * step, 10.0 * step + 1, 10.0 * step + 2});
        switch (random() % 8) {
            case 0:  // its own matrix
                if (model.size() >= 100) break;
                x.z_gii(&own);
                ASSERT_TRUE(x.ap_Append(own, x.nee()));
                for (std::size_t k = model.size(), i = 0; i < k; ++i) model.push_back(model[i]);
                break;
            case 1:
                ASSERT_TRUE(x.ap_Append(&vector));
                model.push_back(10 * step);
                break;
            case 2:  // vectors that went do not come back
                ASSERT_TRUE(x.z_cne(x.nee() / 2) && x.z_cne(x.nee() + n));
                model.resize(model.size() / 2);
                model.resize(model.size() + std::size_t(n), 0);
                break;
            case 3:
                ASSERT_TRUE(x.mbs(n));
                EXPECT_EQ(x.sbs(), n);
                break;
            case 4: {
                TypeParam copy = x;
                EXPECT_EQ(copy.sbs(), x.sbs());
                TypeParam moved = std::move(x);
                EXPECT_EQ(x.nee() + x.sbs() + x.vs(), 0);
                x = std::move(moved);
                EXPECT_TRUE(copy == x);
                EXPECT_EQ(copy.z_cne(0) && copy == x, model.empty());
                break;
            }
            case 5:
                ASSERT_TRUE(x.is_Initialize_Space(3, 30));
                EXPECT_GE(x.nee() + x.sbs(), 30);
                EXPECT_EQ(x.is_Initialize_Space(4, 30), model.empty());
                if (model.empty()) x.in_Initialize(3, n);
                break;
            default:
                ASSERT_TRUE(x.ap_Append(&source, n));
                for (int k = 0; k < n; ++k) model.push_back(10 * (step + k));
        }
        ASSERT_EQ(this->stored(x), model) << step;
    }
    // Appending moves what is stored only so often.
    const auto source = this->vectors(3, 1, 1);
    int moves = 0;
    for (int k = 0; k < 500; ++k) {
        moves += x.sbs() == 0;
        ASSERT_TRUE(x.ap_Append(&source, 1));
    }
    EXPECT_LT(moves, 12);
    // Someone reshapes the matrix that was handed out.
    x.z_gii(&own);
    own->c_Create(1, 1, 30);
    EXPECT_EQ(this->stored(x), (std::vector<int>{30}));
}

TYPED_TEST(GrowableMatrixOf, RefusesWithNothingChanged) {
    TypeParam x;
    const auto other_size = this->vectors(3, 3, 0), source = this->vectors(2, 2, 1);
    EXPECT_FALSE(x.ap_Append(&other_size, 1));
    ASSERT_TRUE(x.in_Initialize(2, 2) && x.ap_Append(&source, 2));
    const TypeParam before = x;
    EXPECT_FALSE(x.ap_Append(&other_size, 0) || x.is_Initialize_Space(5, 50));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "3");
    EXPECT_FALSE(x.in_Initialize(-1, 2) || x.in_Initialize(2, -1) || x.is_Initialize_Space(2, -1) ||
                 x.mbs(-1) || x.z_cne(-1) || x.ap_Append(&source, 3) || x.ap_Append(&source, -1));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "1");
    EXPECT_FALSE(x.mbs(INT_MAX) || x.in_Initialize(INT_MAX, INT_MAX));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "2");
    EXPECT_TRUE(x == before && x.sbs() == before.sbs());
}

TEST(GrowableMatrix, ChainsTheRefusalOfItsMatrix) {
    CNqXRmatrixFloat x;
    EXPECT_FALSE(x.in_Initialize(INT_MAX, INT_MAX));
    EXPECT_EQ(x.gft_Get_Failure_Trace(),
              "CNqMatrixFloat::c_Create: 1\nCNqXRmatrixFloat::in_Initialize: 2");
}

}  // namespace
}  // namespace nequar::test
