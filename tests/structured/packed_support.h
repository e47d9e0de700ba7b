// What the tests of packed matrices share: the two twins as type parameters, the failures of a call
// as text, and a plain enumeration of the stored elements to hold every index rule against.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "nequar_algebra/frame.h"
#include "nequar_algebra/structured.h"
#include "support/chain.h"

namespace packed_test {

// The failures of the last failing call, innermost first, as "method: detail" lines without the
// name of the class; the record is cleared.
template <class Object>
std::string failures_of(Object& object) {
    const std::string text = nequar::test::records_of(object);
    object.cr_Clear_Record();
    return text;
}

inline const std::string kRefused = "zivs_Initialize_and_Vector_Size: 1\nc_Create: 1";

// The packed classes as type parameters.
struct AnyDiagonal {
    static constexpr const char* element_failure = "ge_Get_Element: 1";
    static constexpr const char* setting_failure = "se_Set_Element: 2";
    static constexpr const char* getting_band_failure = "gb_Get_Band: 2";
    static constexpr const char* setting_band_failure = "sb_Set_Band: 2";
};
struct AnyPacked {
    static constexpr const char* element_failure = "fi_Find_Index_of_element: 2";
    static constexpr const char* setting_failure = "fi_Find_Index_of_element: 2";
    static constexpr const char* getting_band_failure = "fib_Find_Index_range_of_a_Band: 2";
    static constexpr const char* setting_band_failure = "fib_Find_Index_range_of_a_Band: 2";
};

#define NEQUAR_PACKED_KIND(Kind, Base, Number, Class) \
    struct Kind : Base {                              \
        using Real = Number;                          \
        using Packed = Class;                         \
        static constexpr const char* name = #Class;   \
    };
NEQUAR_PACKED_KIND(Diagonal, AnyDiagonal, double, CNqMatrix_Diagonal)
NEQUAR_PACKED_KIND(DiagonalFloat, AnyDiagonal, float, CNqMatrixFloat_Diagonal)
NEQUAR_PACKED_KIND(Symmetric, AnyPacked, double, CNqMatrix_Symmetric)
NEQUAR_PACKED_KIND(SymmetricFloat, AnyPacked, float, CNqMatrixFloat_Symmetric)
NEQUAR_PACKED_KIND(Lower, AnyPacked, double, CNqMatrix_TriangularLower)
NEQUAR_PACKED_KIND(LowerFloat, AnyPacked, float, CNqMatrixFloat_TriangularLower)
NEQUAR_PACKED_KIND(Upper, AnyPacked, double, CNqMatrix_TriangularUpper)
NEQUAR_PACKED_KIND(UpperFloat, AnyPacked, float, CNqMatrixFloat_TriangularUpper)
#undef NEQUAR_PACKED_KIND
template <class Number>
struct Band {
    using Real = Number;
    using Packed = nequar::MatrixBand<Number>;
};
template <class Number>
struct BandSymmetric {
    using Real = Number;
    using Packed = nequar::MatrixBandSymmetric<Number>;
};

template <class Kind>
inline constexpr bool is_lower = std::is_same_v<Kind, Lower> || std::is_same_v<Kind, LowerFloat>;
template <class Kind>
inline constexpr bool is_diagonal = std::is_base_of_v<AnyDiagonal, Kind>;
template <class Kind>
inline constexpr bool is_symmetric =
    std::is_same_v<Kind, Symmetric> || std::is_same_v<Kind, SymmetricFloat>;

template <class Kind>
inline constexpr bool is_band_symmetric =
    std::is_same_v<typename Kind::Packed, nequar::MatrixBandSymmetric<typename Kind::Real>>;
template <class Kind>
inline constexpr bool is_band =
    is_band_symmetric<Kind> ||
    std::is_same_v<typename Kind::Packed, nequar::MatrixBand<typename Kind::Real>>;
template <class Kind>  // an element stands for its mirror, too
inline constexpr bool is_mirrored = is_symmetric<Kind> || is_band_symmetric<Kind>;

// The forms of import and export that differ in their arguments.
template <class Kind>
void import_square(typename Kind::Packed& packed, int n, const typename Kind::Real* elements) {
    if constexpr (is_symmetric<Kind>) {
        packed.i_Import(true, n, elements);
    } else {
        packed.i_Import(true, n, n, elements);
    }
}
template <class Kind>
void export_to(const typename Kind::Packed& packed, nequar::Matrix<typename Kind::Real>& dense) {
    if constexpr (is_symmetric<Kind>) {
        packed.e_Export(&dense);
    } else {
        packed.e_Export(&dense, true);
    }
}

struct Position {
    int x;
    int y;
};

// Every position inside height x width at distance d below (above) the diagonal, d = 0, 1, ...,
// running down within each d.
inline std::vector<Position> stored_positions(bool lower, int height, int width) {
    std::vector<Position> positions;
    for (int d = 0; d < (lower ? height : width); ++d) {
        for (int p = 0;; ++p) {
            const Position at = lower ? Position{p, p + d} : Position{p + d, p};
            if (at.x >= width || at.y >= height) break;
            positions.push_back(at);
        }
    }
    return positions;
}

// A dense height x width matrix of different numbers, row by row.
template <class Real>
std::vector<Real> numbered(int height, int width) {
    std::vector<Real> elements;
    for (int i = 0; i < height * width; ++i) elements.push_back(Real(1 + i));
    return elements;
}

template <class Real>
nequar::Matrix<Real> dense_of(int height, int width, const std::vector<Real>& elements) {
    nequar::Matrix<Real> matrix;
    matrix.c_Create(height, width);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) matrix[y][x] = elements[std::size_t(y * width + x)];
    return matrix;
}

template <class Real>
std::vector<Real> transposed(int height, int width, const std::vector<Real>& elements) {
    std::vector<Real> result;
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y) result.push_back(elements[std::size_t(y * width + x)]);
    return result;
}

}  // namespace packed_test
