// The packed classes as type parameters: what they differ in, and where their elements are stored.
#pragma once

#include <string>
#include <tuple>
#include <type_traits>

#include "nequar_algebra/frame.h"
#include "nequar_algebra/structured.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"

namespace packed_test {

// The failures of the last failing call, innermost first, as "method: detail" lines without the
// name of the class; the record is cleared.
template <class Object>
std::string failures_of(Object& object) {
    const std::string text = nequar::test::records_of(object);
    object.cr_Clear_Record();
    return text;
}

// Elements are stored where -q <= y - x <= p; of symmetric ones those of either half are one.
struct Shape {
    int height = 1, width = 1, p = 0, q = 0;
    bool has(int x, int y) const { return y - x <= p && x - y <= q; }
};

enum class Form { diagonal, symmetric, lower, upper, band, band_symmetric };

template <class Number, Form kForm>
struct Kind {
    using Real = Number;
    using Packed = std::tuple_element_t<
        std::size_t(kForm),
        std::tuple<nequar::MatrixDiagonal<Number>, nequar::MatrixSymmetric<Number>,
                   nequar::MatrixTriangular<Number, nequar::TriangleSide::lower>,
                   nequar::MatrixTriangular<Number, nequar::TriangleSide::upper>,
                   nequar::MatrixBand<Number>, nequar::MatrixBandSymmetric<Number>>>;
    static constexpr bool is_diagonal = kForm == Form::diagonal;
    static constexpr bool is_symmetric = kForm == Form::symmetric;
    static constexpr bool is_lower = kForm == Form::lower;
    static constexpr bool is_upper = kForm == Form::upper;
    static constexpr bool is_band = kForm == Form::band;
    static constexpr bool is_band_symmetric = kForm == Form::band_symmetric;
    static constexpr bool is_triangle = is_lower || is_upper;
    static constexpr bool is_mirrored = is_symmetric || is_band_symmetric;

    static std::string name() {
        constexpr const char* names[] = {"Diagonal",        "Symmetric", "TriangularLower",
                                         "TriangularUpper", "Band",      "Band_Symmetric"};
        const std::string twin = std::is_same_v<Number, double> ? "" : "Float";
        return "CNqMatrix" + twin + "_" + names[int(kForm)];
    }

    static bool is_legal(const Shape& s) {
        if (s.height < 1 || (!is_band_symmetric && s.width < 1)) return false;
        if (is_symmetric) return s.height == s.width;
        if (is_band && (s.q < 0 || s.q >= s.width)) return false;
        return !(is_band || is_band_symmetric) || (s.p >= 0 && s.p < s.height);
    }
    static std::string refusal(const Shape& s) {
        const bool is_flat = is_diagonal && s.height < s.width;
        return std::string("zivs_Initialize_and_Vector_Size: ") + (is_flat ? "2" : "1") +
               "\nc_Create: 1";
    }
    // With the bandwidths that the class has.
    static Shape limited(const Shape& s) {
        if (is_diagonal) return {s.height, s.width, 0, 0};
        if (is_triangle)
            return {s.height, s.width, is_lower ? s.height : 0, is_lower ? 0 : s.width};
        if (is_symmetric) return {s.height, s.height, s.height, s.height};
        return is_band ? s : Shape{s.height, s.height, s.p, s.p};
    }

    // call(p, q), call(b) or call(): operations end with the bandwidths.
    template <class Call>
    static void with_bands(const Shape& s, const Call& call) {
        if constexpr (is_band)
            call(s.p, s.q);
        else if constexpr (is_band_symmetric)
            call(s.p);
        else
            call();
    }
    template <class... Value>
    static void create(Packed& m, const Shape& s, Value... value) {
        with_bands(s, [&](auto... bands) {
            if constexpr (is_band_symmetric)
                m.c_Create(s.height, bands..., value...);
            else
                m.c_Create(s.height, s.width, bands..., value...);
        });
    }
    // From a dense array by rows, of symmetric matrices the average of both halves.
    static void import(Packed& m, const Shape& s, const Number* elements) {
        with_bands(s, [&](auto... bands) {
            if constexpr (is_mirrored)
                m.i_Import(true, s.height, elements, bands...);
            else
                m.i_Import(true, s.height, s.width, elements, bands...);
        });
    }
    static nequar::Matrix<Number> exported(const Packed& m) { return nequar::test::unpacked(m); }
};

using AllKinds =
    testing::Types<Kind<double, Form::diagonal>, Kind<float, Form::diagonal>,
                   Kind<double, Form::symmetric>, Kind<float, Form::symmetric>,
                   Kind<double, Form::lower>, Kind<float, Form::lower>, Kind<double, Form::upper>,
                   Kind<float, Form::upper>, Kind<double, Form::band>, Kind<float, Form::band>,
                   Kind<double, Form::band_symmetric>, Kind<float, Form::band_symmetric>>;

}  // namespace packed_test
