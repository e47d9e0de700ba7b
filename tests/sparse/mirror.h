// A sparse matrix as a map from (column, row) to the stored value, in the order of compressed
// columns: every rule of storage is one or two lines here. A sparse vector is a matrix of one
// column.
#pragma once

#include <map>
#include <random>
#include <string>
#include <utility>

#include "nequar_algebra/frame.h"
#include "nequar_algebra/sparse.h"

namespace sparse_test {

template <class Real>
struct Mirror {
    int height = 1;
    int width = 1;
    std::map<std::pair<int, int>, Real> stored;

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

// What is wrong with the storage of a matrix, or how it differs from its mirror; "" when all is
// well.
template <class Real>
std::string fault_of(const nequar::CompressedColumns<Real>& s, const Mirror<Real>& m) {
    const nequar::Vector<int>* start_vector = nullptr;
    const Real* values = nullptr;
    const int* rows = nullptr;
    const int* start = nullptr;
    int width = 0, height = 0, count = 0, blank = -1;
    s.z_gii(&start_vector, &values, &rows, &start, &width, &height, &count, &blank);
    if (width != m.width || height != m.height || start_vector->vs() != width + 1) return "shape";
    if (start[0] != 0 || start[width] != count) return "ends of the start pointers";
    if (count != static_cast<int>(m.stored.size())) return "number of elements";
    if (blank < 0 || blank != s.sbs()) return "blank space";
    int k = 0;
    int column = 0;
    for (const auto& [place, v] : m.stored) {
        while (start[column + 1] == k && column < place.first) ++column;
        if (place.first != column || k < start[column] || k >= start[column + 1])
            return "column of element " + std::to_string(k);
        if (rows[k] != place.second) return "row of element " + std::to_string(k);
        if (!(values[k] == v)) return "value of element " + std::to_string(k);
        ++k;
    }
    return "";
}

template <class Real>
std::string fault_of(const nequar::SparseVector<Real>& s, const Mirror<Real>& m) {
    const Real* values = nullptr;
    const int* indices = nullptr;
    int dimension = 0, count = 0, blank = -1;
    s.z_gii(&values, &indices, &dimension, &count, &blank);
    if (dimension != m.height) return "dimension";
    if (count != static_cast<int>(m.stored.size())) return "number of elements";
    if (blank < 0 || blank != s.sbs()) return "blank space";
    int k = 0;
    for (const auto& [place, v] : m.stored) {
        if (indices[k] != place.second) return "index of element " + std::to_string(k);
        if (!(values[k] == v)) return "value of element " + std::to_string(k);
        ++k;
    }
    return "";
}

// Throws of a generator, or bytes that a fuzzer chose: after the last of them every throw is the
// lowest.
class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    Dice(const unsigned char* bytes, std::size_t count)
        : bytes_(bytes), end_(bytes + count), has_bytes_(true) {}

    int operator()(int first, int last) {
        if (has_bytes_) return is_used_up() ? first : first + *bytes_++ % (last - first + 1);
        return std::uniform_int_distribution<int>(first, last)(engine_);
    }
    bool is_used_up() const { return bytes_ == end_; }
    template <class Real>
    Real value() {
        return Real((*this)(-3, 3));
    }

private:
    std::mt19937 engine_;
    const unsigned char* bytes_ = nullptr;
    const unsigned char* end_ = nullptr;
    bool has_bytes_ = false;
};

// A random matrix, explicit zeros included.
template <class Real>
Mirror<Real> random_mirror(Dice& dice, int height, int width) {
    Mirror<Real> m{height, width, {}};
    const int share = dice(0, 4);
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y)
            if (dice(0, 3) < share) m.stored[{x, y}] = dice.value<Real>();
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

// The failures of the last failing call, innermost first, as "method: detail" joined by " | ".
template <class Object>
std::string failures_of(Object& object) {
    const std::string trace = object.gft_Get_Failure_Trace().c_str();
    object.cr_Clear_Record();
    std::string text;
    for (std::size_t at = 0; at < trace.size();) {
        const std::size_t end = std::min(trace.find('\n', at), trace.size());
        const std::string line = trace.substr(at, end - at);
        text += (text.empty() ? "" : " | ") + line.substr(line.find("::") + 2);
        at = end + 1;
    }
    return text;
}

}  // namespace sparse_test
