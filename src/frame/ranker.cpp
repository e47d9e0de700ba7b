#include "nequar_algebra/frame/ranker.h"

#include <type_traits>

#include "core/workspace.h"
#include "frame/algorithm/rank_key.h"
#include "frame/algorithm/select.h"

namespace nequar {
namespace {

// A key and where it stands; equal keys order by position.
struct Placed {
    std::uint64_t key;
    int position;

    friend bool operator<(const Placed& a, const Placed& b) {
        return bool(int(a.key < b.key) | (int(a.key == b.key) & int(a.position < b.position)));
    }
};

// A float's key leaves room for the position in the same word.
struct PackedPlaced {
    std::uint64_t word;

    friend bool operator<(const PackedPlaced& a, const PackedPlaced& b) { return a.word < b.word; }
};

template <class Real>
using PlacedKey = std::conditional_t<std::is_same_v<Real, float>, PackedPlaced, Placed>;

Placed placed(std::uint64_t key, int position) {
    return {key, position};
}
PackedPlaced placed(std::uint32_t key, int position) {
    return {std::uint64_t(key) << 32 | static_cast<std::uint32_t>(position)};
}

int position_of(const Placed& item) {
    return item.position;
}
int position_of(const PackedPlaced& item) {
    return static_cast<int>(item.word & 0xffffffffu);
}

}  // namespace
}  // namespace nequar

CNqRanker::CNqRanker() {
    set_class_name("CNqRanker");
}

template <class Real>
bool CNqRanker::find(const nequar::Vector<Real>& v, int begin, int end, int rank, Real& value,
                     int* index, CNqVectorInt* order) {
    using namespace nequar;
    constexpr const char* kName = "fklbp_Find_k_th_Largest_value_by_Binary_Partitioning";
    if (begin < 0 || end > v.vs() || begin >= end) return fail("1", kName);
    const int count = end - begin;
    if (rank < 0 || rank >= count) return fail("2", kName);

    if (index == nullptr && order == nullptr) {
        Workspace<RankKey<Real>> keys(count);
        if (!keys) return fail("3", kName);
        for (int i = 0; i < count; ++i) keys.data()[i] = rank_key(v[begin + i]);
        select(keys.data(), count, rank);
        value = ranked_number<Real>(keys.data()[rank]);
        return true;
    }

    Workspace<PlacedKey<Real>> items(count);
    if (!items) return fail("3", kName);
    for (int i = 0; i < count; ++i) items.data()[i] = placed(rank_key(v[begin + i]), begin + i);
    select(items.data(), count, rank);
    const int found = position_of(items.data()[rank]);
    if (order != nullptr) {
        int* const positions = order->c_Create(count);
        if (positions == nullptr) {
            adopt_failure_of(*order);
            return fail("3", kName);
        }
        for (int i = 0; i < count; ++i) positions[i] = position_of(items.data()[i]);
    }
    if (index != nullptr) *index = found;
    value = v[found];
    return true;
}

bool CNqRanker::fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(const CNqVector& v, int begin,
                                                                     int end, int rank,
                                                                     double& value, int* index,
                                                                     CNqVectorInt* order) {
    return find(v, begin, end, rank, value, index, order);
}

bool CNqRanker::fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(const CNqVectorFloat& v,
                                                                     int begin, int end, int rank,
                                                                     float& value, int* index,
                                                                     CNqVectorInt* order) {
    return find(v, begin, end, rank, value, index, order);
}
