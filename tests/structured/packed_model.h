// A packed matrix beside a dense mirror: reads and writes with any coordinates go where the mirror
// has them, or fail with the records that the class leaves; nothing else changes. Of a matrix whose
// vector was resized behind its back nothing is asked, but that nothing is touched outside.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

#include "fuzz/input.h"
#include "structured/packed_support.h"

namespace packed_test {

struct Position {
    int x, y;
};

inline int wrapped(int i, int n) {
    return n == 0 ? 0 : (i % n + n) % n;
}

// The positions at column - row = d, by increasing row.
inline std::vector<Position> diagonal_of(const Shape& s, int d) {
    std::vector<Position> positions;
    for (int y = std::max(0, -d); y < s.height && y + d < s.width; ++y)
        positions.push_back({y + d, y});
    return positions;
}

template <class Kind>
class PackedModel {
    using Real = typename Kind::Real;
    static constexpr Real kUntouched = -1000;

public:
    typename Kind::Packed m;
    Shape shape = Kind::limited({});
    bool is_resized = false;

    Real& at(int x, int y) {
        if (Kind::is_mirrored && x > y) std::swap(x, y);
        return mirror_[std::size_t(y * shape.width + x)];
    }
    Real value(int x, int y) { return shape.has(x, y) ? at(x, y) : Real(0); }

    void check() {
        if (is_resized) return;
        NEQUAR_REQUIRE(m.mh() == shape.height && m.mw() == shape.width);
        const nequar::Matrix<Real> dense = Kind::exported(m);
        for (int y = 0; y < shape.height; ++y)
            for (int x = 0; x < shape.width; ++x) NEQUAR_REQUIRE(dense[y][x] == value(x, y));
    }

    void create(const Shape& s, Real value) {
        Kind::create(m, s, value);
        const bool is_legal = Kind::is_legal(s);
        NEQUAR_REQUIRE(failures_of(m) == (is_legal ? "" : Kind::refusal(s)));
        if (is_legal) reset(s, value);
    }
    // The upper half of a symmetric matrix is read.
    void import(const Shape& s, const nequar::Matrix<Real>& dense) {
        Kind::with_bands(s, [&](auto... bands) {
            if constexpr (Kind::is_mirrored)
                m.iu_Import_Upper_part_of(&dense, bands...);
            else
                m.i_Import(&dense, bands...);
        });
        reset(s, 0);
        for (int y = 0; y < s.height; ++y)
            for (int x = Kind::is_mirrored ? y : 0; x < s.width; ++x) at(x, y) = dense[y][x];
    }

    void get_element(int x, int y) {
        const Real got = m.ge_Get_Element(x, y);
        const std::string failure = failures_of(m);
        if (is_resized) return;
        wrap(x, y);
        NEQUAR_REQUIRE(failure == element_failure("", x, y));
        NEQUAR_REQUIRE(got == value(x, y));
    }
    void set_element(int x, int y, Real v) {
        m.se_Set_Element(x, y, v);
        const std::string failure = failures_of(m);
        if (is_resized) return;
        wrap(x, y);
        NEQUAR_REQUIRE(failure == element_failure("se_Set_Element: 1", x, y));
        if (shape.has(x, y)) at(x, y) = v;
    }

    // The band through (x, y), read and then set to v, or to v, v + 1, ... from an array.
    void band(int x, int y, Real v, bool from_array) {
        std::vector<Real> out(std::size_t(2 + shape.height + shape.width), kUntouched);
        std::vector<Real> in(out.size());
        std::iota(in.begin(), in.end(), v);
        int got = -1, set = -1;
        m.gb_Get_Band(x, y, out.data(), got);
        const std::string getting = failures_of(m);
        from_array ? m.sb_Set_Band(x, y, in.data(), set) : m.sb_Set_Band(x, y, v, set);
        const std::string setting = failures_of(m);
        NEQUAR_REQUIRE(got == set);
        if (is_resized) return;
        wrap(x, y);
        NEQUAR_REQUIRE(getting == band_failure("gb_Get_Band: 1", x, y));
        NEQUAR_REQUIRE(setting == band_failure("sb_Set_Band: 1", x, y));
        if (!shape.has(x, y)) return NEQUAR_REQUIRE(got == -1 && out[0] == kUntouched);
        const auto band = diagonal_of(shape, Kind::is_mirrored ? std::abs(x - y) : x - y);
        NEQUAR_REQUIRE(std::size_t(got) == band.size() && out[band.size()] == kUntouched);
        for (std::size_t k = 0; k < band.size(); ++k) {
            NEQUAR_REQUIRE(out[k] == at(band[k].x, band[k].y));
            at(band[k].x, band[k].y) = from_array ? in[k] : v;
        }
    }

    // A row or a column, read and (where the class can) set to v, or to v + k at k from an array.
    void line(int index, bool is_row, Real v, bool from_array) {
        if constexpr (!Kind::is_diagonal) {
            const int size = is_row ? shape.width : shape.height;
            std::vector<Real> out(std::size_t(2 + shape.height + shape.width), kUntouched);
            std::vector<Real> in(out.size());
            std::iota(in.begin(), in.end(), v);
            std::vector<Answer> answers;
            const auto ask = [&](const auto& get) {
                Answer& answer = answers.emplace_back();
                get(answer.first, answer.last);
                answer.failures = failures_of(m);
            };
            ask([&](int& first, int& last) {
                is_row ? m.gr_Get_Row(index, out.data(), first, last)
                       : m.gc_Get_Column(index, out.data(), first, last);
            });
            int found = index;
            if constexpr (!Kind::is_symmetric) {
                ask([&](int& first, int& last) {
                    is_row ? m.fvr_Find_Valid_range_of_Row(found, first, last)
                           : m.fvc_Find_Valid_range_of_Column(found, first, last);
                });
            }
            if constexpr (!Kind::is_mirrored) {
                ask([&](int& first, int& last) {
                    if (from_array)
                        is_row ? m.sr_Set_Row(index, in.data(), first, last)
                               : m.sc_Set_Column(index, in.data(), first, last);
                    else
                        is_row ? m.sr_Set_Row(index, v, first, last)
                               : m.sc_Set_Column(index, v, first, last);
                });
            }
            if (is_resized) return;
            index = wrapped(index, is_row ? shape.height : shape.width);
            NEQUAR_REQUIRE(Kind::is_symmetric || found == index);
            Answer expected;
            std::vector<Real> whole(out.size(), kUntouched);
            for (int k = 0; k < size; ++k) {
                const int x = is_row ? k : index, y = is_row ? index : k;
                whole[std::size_t(k)] = value(x, y);
                if (!shape.has(x, y)) continue;
                if (expected.first < 0) expected.first = k;
                expected.last = k;
                if (!Kind::is_mirrored) at(x, y) = from_array ? in[std::size_t(k)] : v;
            }
            if (expected.first < 0) {
                whole.assign(out.size(), kUntouched);
                expected.failures =
                    is_row ? "fvr_Find_Valid_range_of_Row: 1" : "fvc_Find_Valid_range_of_Column: 1";
            }
            NEQUAR_REQUIRE(out == whole);
            for (const Answer& answer : answers) NEQUAR_REQUIRE(answer == expected);
        }
    }

    // The index of (x, y), the range of its band, and the position of any index.
    void find(int x, int y, int any_index) {
        if constexpr (!Kind::is_diagonal) {
            int index = -1, column = -7, row = -7;
            Answer range;
            m.fp_Find_Position_of_element(any_index, column, row);
            const std::string failure = failures_of(m);
            int index_x = x, index_y = y;
            m.fi_Find_Index_of_element(index_x, index_y, index);
            const std::string finding = failures_of(m);
            m.fib_Find_Index_range_of_a_Band(x, y, range.first, range.last);
            range.failures = failures_of(m);
            if (is_resized) return;
            NEQUAR_REQUIRE(x == index_x && y == index_y && x >= 0 && x < m.mw());
            NEQUAR_REQUIRE(finding == element_failure("", x, y));
            const bool is_index = any_index >= 0 && any_index < m.vs();
            NEQUAR_REQUIRE(failure == (is_index ? "" : "fp_Find_Position_of_element: 1"));
            if (is_index)
                NEQUAR_REQUIRE(value(column, row) == m[any_index]);
            else
                NEQUAR_REQUIRE(column == -7 && row == -7);
            Answer expected{-1, -1, band_failure("", x, y)};
            if (shape.has(x, y)) {
                const int d = Kind::is_mirrored ? std::abs(x - y) : x - y;
                expected.first = index - std::min(x, y);
                expected.last = expected.first + int(diagonal_of(shape, d).size()) - 1;
                NEQUAR_REQUIRE(m[index] == at(x, y));
                m.fp_Find_Position_of_element(index, column, row);
                if (Kind::is_mirrored && x > y) std::swap(x, y);
                NEQUAR_REQUIRE(column == x && row == y);
            } else {
                NEQUAR_REQUIRE(index == -1);
            }
            NEQUAR_REQUIRE(range == expected);
        }
    }

private:
    struct Answer {
        int first = -1, last = -1;
        std::string failures = {};
        bool operator==(const Answer&) const = default;
    };

    void reset(const Shape& s, Real value) {
        shape = Kind::limited(s);
        mirror_.assign(std::size_t(shape.height) * std::size_t(shape.width), value);
        is_resized = false;
    }
    void wrap(int& x, int& y) const {
        x = wrapped(x, shape.width);
        y = wrapped(y, shape.height);
    }

    // Where (x, y) is not stored. Band matrices tell the two sides apart.
    std::string element_failure(const char* of_diagonal, int x, int y) const {
        if (shape.has(x, y)) return "";
        if (Kind::is_diagonal) return of_diagonal;
        return std::string("fi_Find_Index_of_element: ") + (Kind::is_band && x > y ? "2" : "1");
    }
    std::string band_failure(const char* of_diagonal, int x, int y) const {
        if (shape.has(x, y)) return "";
        if (Kind::is_diagonal) return of_diagonal;
        return std::string("fib_Find_Index_range_of_a_Band: ") +
               (Kind::is_band && x < y ? "2" : "1");
    }

    std::vector<Real> mirror_ = {Real(0)};
};

}  // namespace packed_test
