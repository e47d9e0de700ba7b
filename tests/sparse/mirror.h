// A sparse matrix as a map from (column, row) to the stored value, in the order of compressed
// columns: every rule of storage is one or two lines here. A sparse vector is a matrix of one
// column.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/input.h"
#include "nequar_algebra/frame.h"
#include "nequar_algebra/sparse.h"
#include "support/chain.h"
#include "support/twins.h"

namespace sparse_test {

using nequar::fuzz::Input;
using nequar::test::fails_with;

template <class Real>
struct Mirror {
    int height = 1;
    int width = 1;
    std::map<std::pair<int, int>, Real> stored;

    bool operator==(const Mirror&) const = default;
    Real at(int x, int y) const {
        const auto found = stored.find({x, y});
        return found == stored.end() ? Real(0) : found->second;
    }
    void set(int x, int y, Real v) {
        if (stored.count({x, y}) != 0 || v != Real(0)) stored[{x, y}] = v;
    }
    void add(const Mirror b, Real w) {
        for (const auto& [place, v] : b.stored)
            if (v != Real(0)) stored[place] += w * v;
    }
    void add_elements(const Mirror b, Real w) {
        for (const auto& [place, v] : b.stored) {
            const auto [x, y] = place;
            set(x, y, at(x, y) + w * v);
        }
    }
    void multiply(const Mirror b) {
        for (auto& [place, v] : stored)
            v = b.stored.count(place) != 0 ? v * b.stored.at(place) : Real(0);
    }
    void scale(Real c) {
        for (auto& [place, v] : stored) v *= c;
    }
    void remove_zeros() {
        std::erase_if(stored, [](const auto& element) { return element.second == Real(0); });
    }
    Mirror transposed() const {
        Mirror t{width, height, {}};
        for (const auto& [place, v] : stored) t.stored[{place.second, place.first}] = v;
        return t;
    }
    Mirror block(int x, int y, int dx, int dy, bool with_zeros) const {
        Mirror b{dy, dx, {}};
        for (const auto& [place, v] : stored) {
            const int column = place.first - x;
            const int row = place.second - y;
            if (column >= 0 && column < dx && row >= 0 && row < dy && (with_zeros || v != Real(0)))
                b.stored[{column, row}] = v;
        }
        return b;
    }
    // What is stored stays stored; what the source does not store becomes zero.
    void write(int x, int y, const Mirror b) {
        for (auto& [place, v] : stored) {
            const int column = place.first - x;
            const int row = place.second - y;
            if (column >= 0 && column < b.width && row >= 0 && row < b.height)
                v = b.at(column, row);
        }
        for (const auto& [place, v] : b.stored) set(x + place.first, y + place.second, v);
    }
    // The run of column x is replaced; what would lie below the last row is left out.
    void replace(int x, int y, const Mirror b) {
        std::erase_if(stored, [&](const auto& element) {
            const auto [column, row] = element.first;
            return column == x && row >= y && row < y + b.height;
        });
        for (const auto& [place, v] : b.stored)
            if (y + place.second < height) stored[{x, y + place.second}] = v;
    }
    void add_product(const Mirror u, const Mirror v) {
        for (const auto& [up, uv] : u.stored)
            for (const auto& [vp, vv] : v.stored)
                if (uv != Real(0) && vv != Real(0)) stored[{vp.second, up.second}] += uv * vv;
    }
    Real largest_magnitude() const {
        Real largest = 0;
        for (const auto& [place, v] : stored) largest = std::max(largest, std::abs(v));
        return largest;
    }
};

template <class Real>
nequar::Matrix<Real> dense_of(const Mirror<Real>& m) {
    nequar::Matrix<Real> dense;
    dense.c_Create(m.height, m.width, Real(0));
    for (const auto& [place, v] : m.stored) dense[place.second][place.first] = v;
    return dense;
}

// What is stored, if that is in order; elements of symmetric matrices lie below the diagonal.
template <class Real>
std::optional<Mirror<Real>> stored_in(const nequar::CompressedColumns<Real>& s) {
    const bool is_lower = dynamic_cast<const nequar::SparseSymmetricMatrix<Real>*>(&s) != nullptr;
    const nequar::Vector<int>* start_vector = nullptr;
    const Real* values = nullptr;
    const int *rows = nullptr, *start = nullptr;
    Mirror<Real> m;
    int count = 0, blank = -1;
    s.z_gii(&start_vector, &values, &rows, &start, &m.width, &m.height, &count, &blank);
    if (blank < 0 || blank != s.sbs()) return {};
    if (m.width == 0 && count == 0) return m;  // moved from
    if (start_vector->vs() != m.width + 1 || start[0] != 0 || start[m.width] != count) return {};
    for (int x = 0; x < m.width; ++x) {
        if (start[x] > start[x + 1]) return {};
        int last = is_lower ? x - 1 : -1;
        for (int k = start[x]; k < start[x + 1]; ++k) {
            if (rows[k] <= last || rows[k] >= m.height) return {};
            last = rows[k];
            m.stored.emplace_hint(m.stored.end(), std::pair(x, last), values[k]);
        }
    }
    return m;
}
template <class Real>
std::optional<Mirror<Real>> stored_in(const nequar::SparseVector<Real>& s) {
    const Real* values = nullptr;
    const int* indices = nullptr;
    Mirror<Real> m;
    int count = 0, blank = -1, last = -1;
    s.z_gii(&values, &indices, &m.height, &count, &blank);
    if (blank < 0 || blank != s.sbs()) return {};
    for (int k = 0; k < count; ++k) {
        if (indices[k] <= last || indices[k] >= m.height) return {};
        last = indices[k];
        m.stored[{0, last}] = values[k];
    }
    return m;
}

// How the storage differs from its mirror, "" where it does not.
template <class Sparse>
std::string fault_of(const Sparse& s,
                     const typename decltype(stored_in(std::declval<Sparse>()))::value_type& m) {
    const auto found = stored_in(s);
    if (!found) return "out of order";
    return *found == m ? "" : "another shape, or another element";
}

// A random matrix, explicit zeros included.
template <class Real>
Mirror<Real> random_mirror(Input& input, int height, int width) {
    Mirror<Real> m{height, width, {}};
    const int share = input.in(0, 4);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            if (input.in(0, 3) < share) m.stored[{x, y}] = Real(input.in(-3, 3));
    return m;
}

// Built element by element; explicit zeros are written over ones.
template <class Real>
nequar::SparseMatrix<Real> matrix_of(const Mirror<Real>& m) {
    nequar::SparseMatrix<Real> s;
    s.czm(m.height, m.width, 0);
    for (const auto& [place, v] : m.stored) {
        s.se(place.first, place.second, Real(1));
        s.se(place.first, place.second, v);
    }
    return s;
}
template <class Real>
nequar::SparseVector<Real> vector_of(const Mirror<Real>& m) {
    nequar::SparseVector<Real> s;
    s.czv(m.height, 0);
    for (const auto& [place, v] : m.stored) {
        s.se(place.second, Real(1));
        s.se(place.second, v);
    }
    return s;
}

// The failures of the last failing call, innermost first; the record is cleared.
template <class Object>
std::string failures_of(Object& object) {
    const std::string text = nequar::test::records_of(object);
    object.cr_Clear_Record();
    return text;
}

template <class T>
nequar::GrowableVector<T> growable(const std::vector<T>& list) {
    nequar::GrowableVector<T> g;
    for (const T v : list) g.ae_Append_Element(v);
    return g;
}
inline CNqVectorInt ints(const std::vector<int>& list) {
    CNqVectorInt v;
    v.c_Create(static_cast<int>(list.size()));
    std::copy(list.begin(), list.end(), v.p());
    return v;
}

inline constexpr int kLargest = 7;  // of the sizes

// One operation on a mirror and then on what it mirrors, which has to answer true.
struct Step {
    std::function<void()> mirrored;
    std::function<bool()> done;

    bool take() const {
        mirrored();
        return done();
    }
};

// A matrix that is worked on, another operand, and their mirrors.
template <class Sparse, class Real>
struct Operands {
    Input input;
    Sparse a, b;
    Mirror<Real> ma, mb;

    explicit Operands(Input decisions) : input(decisions) {}
    bool get(int x, int y, Real* value) { return a.ge(x, y, value); }

    // One of the operations that general and symmetric matrices share, on element (x, y) or with
    // another matrix and its mirror; the return value of each has to be true. Symmetric matrices
    // store an element below the diagonal, whichever side it is named from.
    bool shared(int which, int x, int y, Real v, const Sparse* other, const Mirror<Real>& mother) {
        const auto set = [&] {
            if constexpr (std::is_same_v<Sparse, nequar::SparseSymmetricMatrix<Real>>)
                ma.set(std::min(x, y), std::max(x, y), v);
            else
                ma.set(x, y, v);
        };
        const Step steps[] = {
            {set, [&] { return a.ace(x, y, v); }},
            {[&] { ma.remove_zeros(); }, [&] { return a.rze(); }},
            {[&] { ma.add(mother, Real(1)); }, [&] { return a.amm(other); }},
            {[&] { ma.add(mother, v); }, [&] { return a.ammw(other, v); }},
            {[&] { ma.add(mother, Real(-1)); }, [&] { return a.smm(other); }},
            {[&] { ma.multiply(mother); }, [&] { return a.mmme(other); }},
            {[&] { ma.scale(v); }, [&] { return a.mmc(v); }},
            {set, [&] { return a.se(x, y, v); }},
        };
        return steps[std::min(which, 7)].take();
    }
};

// Random steps, after each of which the storage is in order and what is read is the whole matrix.
// Looking at the start pointers keeps them up to date from then on, a copy brings them up to date
// once: some walks look now and then and at copies alone.
template <class Sequence>
void walk(Sequence m, float largest_magnitude, bool looks_at_copies_alone) {
    while (!m.input.empty() && m.ma.largest_magnitude() < largest_magnitude) {
        NEQUAR_REQUIRE(m.step());
        const bool looks = m.input.in(0, 3) == 0;
        if (looks_at_copies_alone && !looks) continue;
        const auto copy = m.a;
        NEQUAR_REQUIRE(fault_of(copy, m.ma) == "");
        if (looks && !looks_at_copies_alone) NEQUAR_REQUIRE(fault_of(m.a, m.ma) == "");
        NEQUAR_REQUIRE(fault_of(m.b, m.mb) == "");
        const auto whole = m.whole();
        auto value = whole.at(0, 0);
        for (int x = 0; x < whole.width; ++x)
            for (int y = 0; y < whole.height; ++y)
                NEQUAR_REQUIRE(m.get(x, y, &value) && value == whole.at(x, y));
    }
    NEQUAR_REQUIRE(failures_of(m.a) == "");
}

}  // namespace sparse_test
