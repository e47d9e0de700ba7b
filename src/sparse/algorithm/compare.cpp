#include "sparse/algorithm/compare.h"

#include <bit>
#include <cstdint>
#include <type_traits>

namespace nequar {
namespace {

// Calls both(i, j), only_a(i) or only_b(j) for every index stored in either; while they answer
// true.
template <class Real, class Both, class OnlyA, class OnlyB>
bool walk(const Run<Real>& a, const Run<Real>& b, const Both& both, const OnlyA& only_a,
          const OnlyB& only_b) {
    Size i = 0;
    Size j = 0;
    while (i < a.count && j < b.count) {
        const int at = a.indices[i];
        const int bt = b.indices[j];
        if (!(at == bt ? both(i, j) : at < bt ? only_a(i) : only_b(j))) return false;
        i += at <= bt;
        j += bt <= at;
    }
    for (; i < a.count; ++i)
        if (!only_a(i)) return false;
    for (; j < b.count; ++j)
        if (!only_b(j)) return false;
    return true;
}

template <class Real, class OfColumns>
bool for_columns(const Columns<Real>& a, const Columns<Real>& b, const OfColumns& of_columns) {
    for (Size c = 0; c < a.width; ++c)
        if (!of_columns(a.column(c), b.column(c))) return false;
    return true;
}

}  // namespace

template <class Real>
Real distance_squared(const Run<Real>& a, const Run<Real>& b) {
    Real total = 0;
    const auto add = [&total](Real difference) {
        total += difference * difference;
        return true;
    };
    walk(
        a, b, [&](Size i, Size j) { return add(a.values[i] - b.values[j]); },
        [&](Size i) { return add(a.values[i]); }, [&](Size j) { return add(b.values[j]); });
    return total;
}

template <class Real>
Real distance_squared(const Columns<Real>& a, const Columns<Real>& b) {
    Real total = 0;
    for_columns(a, b, [&total](const Run<Real>& x, const Run<Real>& y) {
        total += distance_squared(x, y);
        return true;
    });
    return total;
}

template <class Real>
Real mean_squared_difference(const Columns<Real>& a, const Columns<Real>& b) {
    const Size elements = a.width * a.height;
    return elements == 0 ? Real(0) : distance_squared(a, b) / static_cast<Real>(elements);
}

template <class Real>
Real product(const Run<Real>& a, const Run<Real>& b) {
    Real total = 0;
    const auto skip = [](Size) { return true; };
    walk(
        a, b,
        [&](Size i, Size j) {
            total += a.values[i] * b.values[j];
            return true;
        },
        skip, skip);
    return total;
}

template <class Real>
bool are_equal(const Run<Real>& a, const Run<Real>& b) {
    return walk(
        a, b, [&](Size i, Size j) { return a.values[i] == b.values[j]; },
        [&](Size i) { return a.values[i] == Real(0); },
        [&](Size j) { return b.values[j] == Real(0); });
}

template <class Real>
bool are_equal(const Columns<Real>& a, const Columns<Real>& b) {
    return for_columns(a, b,
                       [](const Run<Real>& x, const Run<Real>& y) { return are_equal(x, y); });
}

// Nothing branches on which index is the smaller: the product, zero or the old value is selected by
// bits.
template <class Real>
void multiply_elementwise(const Run<Real>& a, const Run<Real>& b, Real* values) {
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
    Size i = 0;
    Size j = 0;
    while (i < a.count && j < b.count) {
        const int at = a.indices[i];
        const int bt = b.indices[j];
        const Bits both = Bits(0) - Bits(at == bt);
        const Bits not_yet = Bits(0) - Bits(at > bt);
        values[i] = std::bit_cast<Real>((std::bit_cast<Bits>(values[i] * b.values[j]) & both) |
                                        (std::bit_cast<Bits>(values[i]) & not_yet));
        i += at <= bt;
        j += bt <= at;
    }
    std::fill(values + i, values + a.count, Real(0));
}

#define NEQUAR_INSTANTIATE(Real)                                                       \
    template Real distance_squared(const Run<Real>&, const Run<Real>&);                \
    template Real distance_squared(const Columns<Real>&, const Columns<Real>&);        \
    template Real mean_squared_difference(const Columns<Real>&, const Columns<Real>&); \
    template Real product(const Run<Real>&, const Run<Real>&);                         \
    template bool are_equal(const Run<Real>&, const Run<Real>&);                       \
    template bool are_equal(const Columns<Real>&, const Columns<Real>&);               \
    template void multiply_elementwise(const Run<Real>&, const Run<Real>&, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
