#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/vector.h"

/// Order statistics.
class NEQUAR_API CNqRanker : public CNqClass {
public:
    CNqRanker();

    /// The element of rank `rank` among v[begin] … v[end-1], rank 0 being the largest: what would
    /// stand at v[begin + rank] if the range were sorted in descending order. v is not changed.
    ///
    /// `index` (may be null) receives the position in v of that element. `order` (may be null)
    /// receives the end - begin positions of the range, partitioned: first those of the elements
    /// above that element, then those of all elements equal to it, then the rest, each part in the
    /// order of the positions. order[rank] is the position that `index` receives.
    ///
    /// Equal elements rank in the order of their positions; 0.0 and -0.0 are equal. A NaN ranks
    /// below every number, -infinity included, and equals another NaN here.
    ///
    /// False, with outputs untouched, for a range that is empty or not within v ("1"), a rank that
    /// is not in 0 … end-begin-1 ("2"), or memory that cannot be had ("3").
    ///
    /// Selection by partitioning (introselect): expected and worst cost O(end - begin), with a copy
    /// of the range.
    bool fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(const CNqVector& v, int begin,
                                                              int end, int rank, double& value,
                                                              int* index, CNqVectorInt* order);
    bool fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(const CNqVectorFloat& v, int begin,
                                                              int end, int rank, float& value,
                                                              int* index, CNqVectorInt* order);
    bool fklbp(const CNqVector& v, int begin, int end, int rank, double& value, int* index,
               CNqVectorInt* order) {
        return fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(v, begin, end, rank, value,
                                                                    index, order);
    }
    bool fklbp(const CNqVectorFloat& v, int begin, int end, int rank, float& value, int* index,
               CNqVectorInt* order) {
        return fklbp_Find_k_th_Largest_value_by_Binary_Partitioning(v, begin, end, rank, value,
                                                                    index, order);
    }

private:
    template <class Real>
    bool find(const nequar::Vector<Real>& v, int begin, int end, int rank, Real& value, int* index,
              CNqVectorInt* order);
};
