#include "nequar_algebra/frame/ranker.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "support/twins.h"

namespace {

TWINS(RankerOf);

// Positions begin … end-1 in descending order of their elements, NaN last, equal ones in order.
template <class Real>
std::vector<int> ranked(const nequar::Vector<Real>& v, int begin, int end) {
    std::vector<int> order(static_cast<std::size_t>(end - begin));
    std::iota(order.begin(), order.end(), begin);
    std::stable_sort(order.begin(), order.end(), [&v](int a, int b) {
        return std::isnan(v[a]) ? false : std::isnan(v[b]) || v[a] > v[b];
    });
    return order;
}

template <class Real>
void expect_ranks(const nequar::Vector<Real>& v, int begin, int end, int rank) {
    const std::vector<int> sorted = ranked(v, begin, end);
    const int wanted = sorted[static_cast<std::size_t>(rank)];
    const auto same = [expected = v[wanted]](Real a) {
        return a == expected || (std::isnan(a) && std::isnan(expected));
    };
    CNqRanker ranker;
    Real value = -77;
    int index = -1;
    CNqVectorInt order;
    ASSERT_TRUE(ranker.fklbp(v, begin, end, rank, value, nullptr, nullptr) && same(value));
    ASSERT_TRUE(ranker.fklbp(v, begin, end, rank, value, &index, &order) && same(value));
    ASSERT_TRUE(order.vs() == end - begin && order[rank] == index && index == wanted);
    // The parts before and after hold the positions that the sorted order has there.
    const int* const o = order.p();
    const auto middle = sorted.begin() + rank;
    EXPECT_TRUE(std::is_permutation(o, o + rank, sorted.begin(), middle));
    EXPECT_TRUE(std::is_permutation(o + rank, o + order.vs(), middle, sorted.end()));
}

TWIN_TEST(RankerOf, FindsEveryRankOfDistinctRepeatedAndSpecialValues) {
    std::mt19937 random(3);
    using Limits = std::numeric_limits<Real>;
    constexpr Real kInfinity = Limits::infinity(), kNaN = Limits::quiet_NaN();
    const Real special[] = {0,     Real(-0.0),           kInfinity,     -kInfinity, kNaN,
                            -kNaN, Limits::denorm_min(), -Limits::max()};
    for (const int n : {1, 2, 23, 24, 25, 26, 100, 1000})
        for (int kind = 0; kind < 5; ++kind) {
            nequar::Vector<Real> v;
            v.c_Create(n + 2, kInfinity);  // nothing outside the range may be looked at
            for (int i = 0; i < n; ++i) {
                const Real k = Real(i);
                const Real choices[] = {Real(random()) - Real(2e9), k, -k, Real(random() % 3),
                                        special[random() % std::size(special)]};
                v[i + 1] = choices[kind];
            }
            for (int rank = 0; rank < n; rank += n < 30 ? 1 : n / 9)
                expect_ranks(v, 1, n + 1, rank);
            expect_ranks(v, 1, n + 1, n - 1);
        }
}

TWIN_TEST(RankerOf, RefusesBadRangesAndRanksWithOutputsUntouched) {
    nequar::Vector<Real> v;
    v.c_Create(5, 2);
    CNqRanker ranker;
    Real value = 7;
    int index = 7;
    CNqVectorInt order;
    const std::array<int, 4> bad[] = {
        {-1, 3, 0, 1}, {0, 6, 0, 1},  {2, 2, 0, 1}, {3, 2, 0, 1}, {INT_MIN, INT_MAX, 0, 1},
        {0, 5, 5, 2},  {0, 5, -1, 2}, {2, 4, 2, 2}};
    for (const auto& [begin, end, rank, detail] : bad) {
        EXPECT_FALSE(ranker.fklbp(v, begin, end, rank, value, &index, &order));
        EXPECT_EQ(ranker.ged_Get_Error_Detail(), std::to_string(detail).c_str());
    }
    EXPECT_TRUE(value == 7 && index == 7 && order.vs() == 0);
    EXPECT_EQ(ranker.grm_Get_Recorded_Message(),
              "CNqRanker::fklbp_Find_k_th_Largest_value_by_Binary_Partitioning: 2");
}

}  // namespace
