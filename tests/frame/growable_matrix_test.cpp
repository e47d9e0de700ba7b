#include "nequar_algebra/frame/growable_matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

template <class Container>
class GrowableMatrixOf : public testing::Test {
public:
    static constexpr bool columns =
        std::is_same_v<Container, CNqXCmatrix> || std::is_same_v<Container, CNqXCmatrixFloat>;
    using Real = std::conditional_t<std::is_same_v<Container, CNqXCmatrix> ||
                                        std::is_same_v<Container, CNqXRmatrix>,
                                    double, float>;
    using Dense = nequar::Matrix<Real>;

    // Vectors of the given size; element i of vector k is 10 (first + k) + i.
    static Dense vectors(int size, int count, int first = 0) {
        Dense m;
        m.c_Create(columns ? size : count, columns ? count : size);
        for (int k = 0; k < count; ++k)
            for (int i = 0; i < size; ++i)
                (columns ? m[i][k] : m[k][i]) = static_cast<Real>(10 * (first + k) + i);
        return m;
    }

    // The first elements of the stored vectors, after every other one has been checked.
    static std::vector<int> stored(const Container& x) {
        const Real* const* rows = nullptr;
        int count = 0;
        int width = 0;
        int height = 0;
        int blank = 0;
        x.z_gii(nullptr, &rows, &width, &height, &count, &blank);
        EXPECT_EQ(columns ? width : height, count + blank);
        EXPECT_EQ(columns ? height : width, x.vs());
        EXPECT_EQ(count, x.nee());
        EXPECT_EQ(blank, x.sbs());
        std::vector<int> firsts;
        for (int k = 0; k < count; ++k) {
            const Real first = columns ? rows[0][k] : rows[k][0];
            for (int i = 1; i < x.vs(); ++i) {
                const Real element = columns ? rows[i][k] : rows[k][i];
                EXPECT_EQ(element, first == 0 && k > 0 ? 0 : first + static_cast<Real>(i));
            }
            firsts.push_back(static_cast<int>(first));
        }
        return firsts;
    }
};
using Containers = testing::Types<CNqXCmatrix, CNqXCmatrixFloat, CNqXRmatrix, CNqXRmatrixFloat>;
TYPED_TEST_SUITE(GrowableMatrixOf, Containers);

TYPED_TEST(GrowableMatrixOf, AppendsGrowsAndShrinks) {
    TypeParam x;
    ASSERT_TRUE(x.in_Initialize(3, 2));
    EXPECT_EQ(x.sbs(), 2);
    std::vector<int> expected;
    int moves = 0;
    for (int k = 0; k < 200; ++k) {
        const auto source = this->vectors(3, 2, 2 * k + 1);
        const int count = k % 3;
        moves += x.sbs() < count;
        ASSERT_TRUE(x.ap_Append(&source, count));
        for (int i = 0; i < count; ++i) expected.push_back(10 * (2 * k + 1 + i));
    }
    EXPECT_EQ(this->stored(x), expected);
    EXPECT_LT(moves, 10);

    nequar::Vector<typename TestFixture::Real> vector;
    vector.c_Create(3);
    for (int i = 0; i < 3; ++i) vector[i] = static_cast<typename TestFixture::Real>(70 + i);
    ASSERT_TRUE(x.ap_Append(&vector));
    expected.push_back(70);
    EXPECT_EQ(this->stored(x), expected);

    // Vectors that went do not come back.
    ASSERT_TRUE(x.z_cne(2));
    ASSERT_TRUE(x.z_cne(500));
    expected.resize(2);
    expected.resize(500, 0);
    EXPECT_EQ(this->stored(x), expected);
    ASSERT_TRUE(x.mbs(7));
    EXPECT_EQ(x.sbs(), 7);
    EXPECT_EQ(this->stored(x), expected);
    ASSERT_TRUE(x.in_Initialize(2, 1));
    EXPECT_EQ(x.nee(), 0);
    EXPECT_EQ(x.vs(), 2);
}

TYPED_TEST(GrowableMatrixOf, ReservesWithoutTouchingWhatIsStored) {
    TypeParam x;
    ASSERT_TRUE(x.is_Initialize_Space(4, 3));
    const auto source = this->vectors(4, 2, 1);
    ASSERT_TRUE(x.ap_Append(&source, 2));
    ASSERT_TRUE(x.is_Initialize_Space(4, 50));
    EXPECT_EQ(x.sbs(), 48);
    ASSERT_TRUE(x.is_Initialize_Space(4, 1));
    EXPECT_EQ(this->stored(x), (std::vector<int>{10, 20}));
    EXPECT_FALSE(x.is_Initialize_Space(5, 50));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "3");
    EXPECT_EQ(this->stored(x), (std::vector<int>{10, 20}));
    x.z_cne(0);
    ASSERT_TRUE(x.is_Initialize_Space(5, 1));
    EXPECT_EQ(x.vs(), 5);
}

TYPED_TEST(GrowableMatrixOf, AppendsItsOwnMatrix) {
    for (const int blank : {0, 1, 2, 9}) {
        TypeParam x;
        x.in_Initialize(3, 2);
        const auto source = this->vectors(3, 2, 1);
        x.ap_Append(&source, 2);
        x.mbs(blank);
        typename TestFixture::Dense* own = nullptr;
        x.z_gii(&own);
        ASSERT_TRUE(x.ap_Append(own, 2));
        EXPECT_EQ(this->stored(x), (std::vector<int>{10, 20, 10, 20})) << blank;
        // Someone reshapes the matrix that was handed out.
        x.z_gii(&own);
        own->c_Create(1, 1, 30);
        EXPECT_EQ(this->stored(x), (std::vector<int>{30}));
        EXPECT_FALSE(x.ap_Append(&source, 1));
    }
}

TYPED_TEST(GrowableMatrixOf, RefusesWithNothingChanged) {
    TypeParam x;
    const auto other_size = this->vectors(3, 3);
    EXPECT_FALSE(x.ap_Append(&other_size, 1));
    x.in_Initialize(2, 2);
    const auto source = this->vectors(2, 2, 1);
    x.ap_Append(&source, 2);
    const TypeParam before = x;
    EXPECT_FALSE(x.ap_Append(&other_size, 0));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "3");
    EXPECT_FALSE(x.ap_Append(&source, 3));
    EXPECT_FALSE(x.ap_Append(&source, -1));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "1");
    EXPECT_FALSE(x.in_Initialize(-1, 2) || x.in_Initialize(2, -1) || x.is_Initialize_Space(2, -1) ||
                 x.mbs(-1) || x.z_cne(-1));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "1");
    EXPECT_FALSE(x.mbs(INT_MAX));
    EXPECT_FALSE(x.in_Initialize(INT_MAX, INT_MAX));
    EXPECT_TRUE(x == before);
    EXPECT_EQ(x.sbs(), before.sbs());
    EXPECT_EQ(this->stored(x), (std::vector<int>{10, 20}));
}

TYPED_TEST(GrowableMatrixOf, CopiesAndMoves) {
    TypeParam x;
    x.in_Initialize(2, 5);
    const auto source = this->vectors(2, 3, 1);
    x.ap_Append(&source, 3);
    TypeParam copy = x;
    EXPECT_TRUE(copy == x);
    copy.z_cne(1);
    EXPECT_FALSE(copy == x);
    copy = x;
    EXPECT_EQ(copy.sbs(), 2);
    x = TypeParam(std::move(copy));
    EXPECT_EQ(this->stored(x), (std::vector<int>{10, 20, 30}));
    EXPECT_EQ(copy.nee() + copy.sbs() + copy.vs(), 0);
}

TEST(GrowableMatrix, ChainsTheRefusalOfItsMatrix) {
    CNqXRmatrixFloat x;
    EXPECT_FALSE(x.in_Initialize(INT_MAX, INT_MAX));
    EXPECT_EQ(x.gft_Get_Failure_Trace(),
              "CNqMatrixFloat::c_Create: 1\nCNqXRmatrixFloat::in_Initialize: 2");
    EXPECT_EQ(CNqXCmatrix().gcn_Get_Class_Name(), "CNqXCmatrix");
}

}  // namespace
