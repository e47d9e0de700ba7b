#include "nequar_algebra/frame/ranker.h"

#include "core/workspace.h"
#include "frame/algorithm/rank_key.h"
#include "frame/algorithm/select.h"

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

    Workspace<RankKey<Real>> keys(count);
    if (!keys) return fail("3", kName);
    for (int i = 0; i < count; ++i) keys.data()[i] = rank_key(v[begin + i]);
    select(keys.data(), count, rank);
    const RankKey<Real> selected = keys.data()[rank];

    // In descending order: the larger elements, those equal to the selected one, the smaller ones,
    // each in the order of their positions.
    int larger = 0;
    int larger_or_equal = 0;
    for (int i = 0; i < count; ++i) {
        larger += keys.data()[i] < selected;
        larger_or_equal += keys.data()[i] <= selected;
    }
    if (order != nullptr) {
        int* const positions = order->c_Create(count);
        if (positions == nullptr) {
            adopt_failure_of(*order);
            return fail("3", kName);
        }
        int next[] = {0, larger, larger_or_equal};
        for (int i = begin; i < end; ++i) {
            const RankKey<Real> key = rank_key(v[i]);
            positions[next[int(key >= selected) + int(key > selected)]++] = i;
        }
    }
    int found = begin;
    for (int ties_before = rank - larger;; ++found)
        if (rank_key(v[found]) == selected && ties_before-- == 0) break;
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
