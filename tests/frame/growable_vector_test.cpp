#include "nequar_algebra/frame/growable_vector.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

#include "support/matrix_gallery.h"

namespace {

using nequar::test::vector_of;

template <class Element>
nequar::GrowableVector<Element> growable(const std::vector<Element>& values) {
    nequar::GrowableVector<Element> x;
    x.ap_Append(values.data(), static_cast<int>(values.size()));
    return x;
}

template <class Element>
std::vector<Element> stored(const nequar::GrowableVector<Element>& x) {
    int count = 0;
    const Element* const p = x.z_vpne(count);
    return {p, p + count};
}

template <class Element>
class GrowableVectorOf : public testing::Test {};
using Elements = testing::Types<double, float, int>;
TYPED_TEST_SUITE(GrowableVectorOf, Elements);

// Random operations beside the same on a std::vector.
TYPED_TEST(GrowableVectorOf, DoesWhatTheModelDoes) {
    using Element = TypeParam;
    std::mt19937 random(7);
    const auto below = [&random](std::size_t n) {
        return static_cast<int>(random() % std::max<std::size_t>(n, 1));
    };
    nequar::GrowableVector<Element> x;
    std::vector<Element> model;
    Element next = 1;
    for (int step = 0; step < 20000; ++step) {
        const int size = static_cast<int>(model.size());
        const int many = below(7), place = below(model.size() + 1);
        std::vector<Element> values;
        std::vector<int> places;
        for (int k = 0; k < many; ++k) {
            values.push_back(next++);
            places.push_back(below(model.size() + 1));
        }
        std::sort(places.begin(), places.end());
        const auto at = [&model](int i) { return model.begin() + i; };
        switch (below(11)) {
            case 0:
                ASSERT_TRUE(x.ae_Append_Element(next) && x.i_Insert(place, next + 1));
                model.push_back(next++);
                model.insert(at(place), next++);
                break;
            case 1:  // and from its own elements
                ASSERT_TRUE(x.ap_Append(&x, place) && x.ap_Append(values.data(), many));
                values.insert(values.begin(), model.begin(), at(place));
                model.insert(model.end(), values.begin(), values.end());
                break;
            case 2:
            case 3:
                ASSERT_TRUE(x.i_Insert(values.data(), places.data(), many));
                for (std::size_t k = values.size(); k-- > 0;)
                    model.insert(at(places[k]), values[k]);
                break;
            case 4:
            case 5:
                places.erase(std::unique(places.begin(), places.end()), places.end());
                if (!places.empty() && places.back() == size) places.pop_back();
                ASSERT_TRUE(x.d_Delete(places.data(), static_cast<int>(places.size())));
                for (std::size_t k = places.size(); k-- > 0;) model.erase(at(places[k]));
                break;
            case 6:
                ASSERT_EQ(x.d_Delete(place), place < size);
                if (place < size) model.erase(at(place));
                break;
            case 7: {
                auto copy = x;
                auto moved = std::move(x);
                ASSERT_EQ(x.nee() + x.sbs(), 0);
                ASSERT_TRUE(copy.ae_Append_Element(next) && x.z_cne(2));
                ASSERT_EQ(stored(x), std::vector<Element>(2));
                x = std::move(moved);
                break;
            }
            case 8: {
                const int count = below(static_cast<std::size_t>(size - place) + 1);
                ASSERT_TRUE(x.r_Replace(place, count, values.data(), many));
                model.erase(at(place), at(place + count));
                model.insert(at(place), values.begin(), values.end());
                break;
            }
            case 9:
                ASSERT_TRUE(x.z_cne(place + many));
                model.resize(static_cast<std::size_t>(place + many));
                break;
            default:
                ASSERT_TRUE(many > 2 ? x.mbs(many) && x.sbs() == many
                                     : x.is_Initialize_Space(many * 20));
                if (size > 60) {
                    x.in_Initialize(many);
                    model.clear();
                }
        }
        ASSERT_EQ(stored(x), model) << "step " << step;
    }
}

// A vector of values and one of indices that are treated alike keep the same blank space.
TEST(GrowableVector, BlankSpaceDependsOnTheOperationsAlone) {
    CNqXvector values;
    CNqXvectorInt indices, other;
    other.in_Initialize(5000);
    indices.in_Initialize(1000);
    indices.in_Initialize(3);
    values.in_Initialize(3);
    EXPECT_EQ(values.sbs(), 3);
    int moves = 0;
    for (int i = 0; i < 100000; ++i) {
        moves += values.sbs() == 0;
        values.ae_Append_Element(i);
        indices.ae_Append_Element(i);
        ASSERT_EQ(values.sbs(), indices.sbs()) << i;
        EXPECT_TRUE(i % 7001 != 0 || (values.i_Insert(i / 2, 1.0) && indices.i_Insert(i / 2, 1)));
        if (i == 50) indices = std::move(other = indices);
    }
    EXPECT_LT(moves, 20);
}

TYPED_TEST(GrowableVectorOf, ElementsThatComeInAreZeroOrWhatWasWrittenThere) {
    nequar::GrowableVector<TypeParam> x;
    ASSERT_TRUE(x.in_Initialize(6));
    int count = -1;
    TypeParam* const p = x.z_vpne(count);
    EXPECT_EQ(count, 0);
    p[0] = 5;
    p[1] = 6;
    ASSERT_TRUE(x.z_cne(3));
    EXPECT_EQ(stored(x), (std::vector<TypeParam>{5, 6, 0}));
}

TEST(GrowableVector, TakesListsFromItsOwnStorage) {
    for (const bool has_room : {false, true}) {
        CNqXvectorInt x = growable<int>({0, 1, 1, 3});
        x.mbs(has_room ? 100 : 0);
        int count = 0;
        int* p = x.z_vpne(count);
        ASSERT_TRUE(x.i_Insert(p, p, 4));  // its elements are values and positions at once
        EXPECT_EQ(stored(x), (std::vector<int>{0, 0, 1, 1, 1, 1, 3, 3}));
        p = x.z_vpne(count);
        ASSERT_TRUE(x.r_Replace(1, 2, p + 2, 6));
        EXPECT_EQ(stored(x), (std::vector<int>{0, 1, 1, 1, 1, 3, 3, 1, 1, 1, 3, 3}));
        x = growable<int>({0, 2, 3, 9});
        ASSERT_TRUE(x.d_Delete(x.z_vpne(count), 3));
        EXPECT_EQ(stored(x), (std::vector<int>{2}));
        EXPECT_TRUE(x.r_Replace(0, 1, &x) && !x.i_Insert(&x, &x));  // position 2 of one element
        EXPECT_EQ(stored(x), (std::vector<int>{2}));
    }
}

TEST(GrowableVector, RefusesBadListsWithNothingChanged) {
    CNqXvector x = growable<double>({1, 2, 3});
    const CNqXvector before = x;
    const auto values = vector_of<double>({9, 9});
    for (const auto& positions :
         {vector_of<int>({1, 0}), vector_of<int>({-1, 0}), vector_of<int>({0, 4}),
          vector_of<int>({INT_MIN, INT_MAX}), vector_of<int>({3, -3})}) {
        EXPECT_FALSE(x.i_Insert(&values, &positions));
        EXPECT_EQ(x.grm_Get_Recorded_Message(), "CNqXvector::i_Insert: 1");
        EXPECT_FALSE(x.d_Delete(&positions));
    }
    const int twice[] = {1, 1};
    const auto one = vector_of<int>({0});
    EXPECT_FALSE(x.d_Delete(twice, 2) || x.d_Delete(twice, -1) || x.d_Delete(3) || x.d_Delete(-1));
    EXPECT_FALSE(x.i_Insert(&values, &one) || x.i_Insert(4, 1.0) || x.i_Insert(-1, 1.0));
    EXPECT_FALSE(x.r_Replace(INT_MAX, INT_MAX, &values) || x.r_Replace(1, INT_MAX, &values) ||
                 x.r_Replace(0, -1, &values) || x.r_Replace(-1, 1, &values));
    EXPECT_FALSE(x.ap_Append(&values, 3) || x.ap_Append(&values, -1));
    EXPECT_FALSE(x.in_Initialize(-1) || x.is_Initialize_Space(-1) || x.z_cne(-1) || x.mbs(-1));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "1");
    EXPECT_FALSE(x.mbs(INT_MAX));
    EXPECT_EQ(x.ged_Get_Error_Detail(), "2");
    for (const int i : {3, -1, INT_MIN, INT_MAX}) {
        x.cr_Clear_Record();
        EXPECT_EQ(x.ge_Get_Element(i), 0.0);
        EXPECT_EQ(x.grm_Get_Recorded_Message(), "CNqXvector::ge_Get_Element: 1");
        EXPECT_FALSE(x.se_Set_Element(i, 1.0));
    }
    EXPECT_TRUE(x == before && x.sbs() == before.sbs());
    EXPECT_TRUE(x.se_Set_Element(0, 2.0));
    EXPECT_FALSE(x == before);
}

// A large reserved room costs nothing until it is used, and one that cannot be had is refused.
TEST(GrowableVector, ReservesWithoutTouching) {
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    CNqXvector x = growable<double>({1, 2});
    ASSERT_TRUE(x.is_Initialize_Space(200 << 20));
    EXPECT_EQ(stored(x), (std::vector<double>{1, 2}));
    x.z_cne(3);
    EXPECT_EQ(x[2], 0.0);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 1 << 20);  // kibibytes
}

// A sanitizer needs the address space that is taken away here.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(GrowableVectorDeathTest, RefusesRoomThatCannotBeHad) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto within_one_gigabyte = [] {
        const rlimit limit{rlim_t(1) << 30, rlim_t(1) << 30};
        setrlimit(RLIMIT_AS, &limit);
        CNqXvector x = growable<double>({1, 2});
        const CNqXvector before = x;
        const bool done = x.in_Initialize(INT_MAX) || x.is_Initialize_Space(INT_MAX) ||
                          x.z_cne(INT_MAX) || x.mbs(INT_MAX - 2);
        const bool unchanged = x == before && x.sbs() == before.sbs();
        std::exit(!done && unchanged && x.ged_Get_Error_Detail() == "2" ? 0 : 1);
    };
    EXPECT_EXIT(within_one_gigabyte(), testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
