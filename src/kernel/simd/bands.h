// Lower trapezoids packed by diagonals ("bands"), to and from dense rows or columns.
//
//   a(r, c) = packed[start(r - c) + c],  c <= r      start(d): the lengths of the bands before d
//
// A band runs down a diagonal, so a dense row takes each element from another band. Loads and
// stores of whole vectors need a strip of as many columns as a vector has lanes. Element c of row r
// stands in band r - c at position c: going down the strip, the vector that is loaded of each band
// gives its first element to this row, the second to the next row, and so on,
//
//        bands           rows
//        a b c d         a . . .      lane i arrives i rows later: a shear of the strip, which
//        e f g h   --->  e b . .      log2(lanes) delays build up, by 1 row where bit 0 of the lane
//        i j k l         i f c .      is set, by 2 where bit 1 is, ...
//        m n o p         m j g d
//
// each one blend of a vector with one that passed some rows earlier. Packing is the shear the other
// way. Nothing is shuffled, and each band and each row is touched in order. Dense columns (an upper
// triangle in rows, transposed) take a transposition of square blocks instead: in band d, position
// p, the dense element lies at p * (column_stride + 1) + d.
//
// Rows (bands) go in chunks, so that their pages and cache lines stay at hand while the strips of a
// chunk pass. Strips end in a triangle of partial vectors: the rows of a strip begin with one, its
// bands end with one.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/simd/shuffle.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

template <class Real>
inline constexpr unsigned kLaneCount = unsigned(kLanes<Real>);

inline constexpr Size kChunk = 128;  // rows or bands, a multiple of the lanes of every vector

// A packed trapezoid: height >= width.
template <class Real>
struct Bands {
    Real* packed;
    Size height;
    Size width;
};

template <class Real>
NEQUAR_INLINE Size length_of_band(const Bands<Real>& bands, Size d) {
    return smaller(bands.width, bands.height - d);
}

template <class Real>
NEQUAR_INLINE Real* band(const Bands<Real>& bands, Size d) {
    const Size full = bands.height - bands.width;  // bands 0 ... full have the length `width`
    if (d <= full) return bands.packed + bands.width * d;
    const Size terms = d - full;
    const Size ends = bands.width + bands.height - d + 1;
    return bands.packed + bands.width * full +
           (terms % 2 == 0 ? terms / 2 * ends : ends / 2 * terms);
}

// ---- the shear ----------------------------------------------------------------------------------

// Lane by lane b where the bit of the lane is set in the mask, else a.
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
template <unsigned mask>
NEQUAR_INLINE Vector<double> blend(Vector<double> a, Vector<double> b) {
    return _mm512_mask_blend_pd(static_cast<__mmask8>(mask), a, b);
}
template <unsigned mask>
NEQUAR_INLINE Vector<float> blend(Vector<float> a, Vector<float> b) {
    return _mm512_mask_blend_ps(static_cast<__mmask16>(mask), a, b);
}
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__AVX__)
template <unsigned mask>
NEQUAR_INLINE Vector<double> blend(Vector<double> a, Vector<double> b) {
    return _mm256_blend_pd(a, b, static_cast<int>(mask));
}
template <unsigned mask>
NEQUAR_INLINE Vector<float> blend(Vector<float> a, Vector<float> b) {
    return _mm256_blend_ps(a, b, static_cast<int>(mask));
}
#else
template <unsigned... Lane>
struct Lanes {};
template <unsigned count, unsigned... Lane>
struct FirstLanesOf : FirstLanesOf<count - 1, count - 1, Lane...> {};
template <unsigned... Lane>
struct FirstLanesOf<0, Lane...> {
    using Type = Lanes<Lane...>;
};
template <unsigned mask, class AnyVector, unsigned... Lane>
NEQUAR_INLINE AnyVector blend_lanes(const AnyVector& a, const AnyVector& b, Lanes<Lane...>) {
    return __builtin_shufflevector(a, b, ((mask >> Lane) % 2 ? sizeof...(Lane) + Lane : Lane)...);
}
template <unsigned mask, class AnyVector>
NEQUAR_INLINE AnyVector blend(const AnyVector& a, const AnyVector& b) {
    constexpr unsigned lanes = sizeof(AnyVector) / sizeof(a[0]);
    return blend_lanes<mask>(a, b, typename FirstLanesOf<lanes>::Type{});
}
#endif

enum class Delay { first_lane_least, last_lane_least };

// The lanes of a vector whose total delay contains `part`, a power of two.
template <Delay order>
constexpr unsigned lanes_delayed_by(unsigned lanes, unsigned part) {
    unsigned mask = 0;
    for (unsigned lane = 0; lane < lanes; ++lane) {
        const unsigned delay = order == Delay::first_lane_least ? lane : lanes - 1 - lane;
        if (delay & part) mask |= 1u << lane;
    }
    return mask;
}

// A stream of vectors in, one out for each: lane i is that of `i` (or lanes - 1 - i) vectors ago.
template <class Real, Delay order>
struct Shear {
    static constexpr unsigned lanes = kLaneCount<Real>;

    // What waits for its delay by 1: one vector; by 2: two; by 4: four; ...
    Vector<Real> earlier[lanes - 1];

    template <unsigned part = 1>
    NEQUAR_INLINE Vector<Real> next(const Vector<Real>& v) {
        if constexpr (part == lanes) {
            return v;
        } else {
            const Vector<Real> delayed = earlier[2 * part - 2];
            NEQUAR_UNROLL for (unsigned k = 2 * part - 2; k > part - 1; --k) {
                earlier[k] = earlier[k - 1];
            }
            earlier[part - 1] = v;
            return next<2 * part>(blend<lanes_delayed_by<order>(lanes, part)>(v, delayed));
        }
    }
};

// Calls strip(j) for the columns one vector at a time; the last strip overlaps the one before where
// the columns are no multiple of a vector. There is at least one vector of them.
template <class Real, class Strip>
NEQUAR_INLINE void for_each_strip(Size columns, const Strip& strip) {
    constexpr Size lanes = kLanes<Real>;
    Size j = 0;
    for (; j + lanes <= columns; j += lanes) strip(j);
    if (j < columns) strip(columns - lanes);
}

// Whether there are vectors to work on; what is smaller is moved element by element.
template <class Real>
NEQUAR_INLINE bool has_strips(const Bands<Real>& bands) {
    return bands.width >= kLanes<Real> && bands.height >= 2 * kLanes<Real>;
}

// The first `count` elements of a vector to (from) every stride-th element of an array. Called for
// the few vectors at the ends of strips, so it stays out of their loops.
template <class Real>
__attribute__((noinline)) void scatter(const Vector<Real>& v, Size count, Real* out, Size stride) {
    alignas(64) Real elements[kLaneCount<Real>];
    store(elements, v);
    for (Size q = 0; q < count; ++q) out[q * stride] = elements[q];
}
template <class Real>
__attribute__((noinline)) void gather(const Real* in, Size stride, Size count, Vector<Real>& v) {
    alignas(64) Real elements[kLaneCount<Real>] = {};
    for (Size q = 0; q < count; ++q) elements[q] = in[q * stride];
    v = load(static_cast<const Real*>(elements));
}

// ---- bands to dense rows ------------------------------------------------------------------------

template <bool mirror, class Real>
void unpack_elements(const Bands<const Real>& bands, const Block<Real>& a) {
    for (Size c = 0; c < bands.width; ++c) {
        const Real* element = bands.packed + c;
        for (Size r = c; r < bands.height; ++r) {
            a.data[r * a.row_stride + c * a.column_stride] = *element;
            if constexpr (mirror) a.data[c * a.row_stride + r * a.column_stride] = *element;
            element += length_of_band(bands, r - c);
        }
    }
}

// Row after row of a strip of columns [j, j + lanes).
template <bool mirror, class Real>
struct UnpackedStrip {
    static constexpr Size lanes = kLanes<Real>;

    Block<Real> a;
    Size j;
    Size r;              // the next row
    const Real* in;      // band r - j at position j
    const Real* in_end;  // of all bands
    Size length;         // of this band
    Shear<Real, Delay::first_lane_least> shear;

    NEQUAR_INLINE Real* row(Size i) const { return a.data + i * a.row_stride + j; }

    NEQUAR_INLINE Vector<Real> next(const Vector<Real>& v, Size shrink) {
        in += length;
        length -= shrink;
        return shear.next(v);
    }

    NEQUAR_INLINE void put(const Vector<Real>& v) {
        store(row(r), v);
        if constexpr (mirror) scatter<Real>(v, lanes, a.data + j * a.row_stride + r, a.row_stride);
        ++r;
    }

    // A vector may reach into the next band, but not past the last one.
    NEQUAR_INLINE Vector<Real> load_up_to_end() const {
        return in_end - in >= lanes ? load(in) : load(in, first_lanes<Real>(in_end - in));
    }

    // Rows up to `end`; from one to the next the bands grow shorter by `shrink`.
    NEQUAR_INLINE void rows(Size end, Size shrink) {
        for (; r + lanes <= end; r += lanes) {
            alignas(64) Real block[kLaneCount<Real> * kLaneCount<Real>];
            NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
                const Vector<Real> v = next(load(in), shrink);
                store(row(r + i), v);
                if constexpr (mirror) store(block + i * lanes, v);
            }
            if constexpr (mirror) {
                Vector<Real> columns[kLaneCount<Real>];
                load_transposed<kLaneCount<Real>>(static_cast<const Real*>(block), lanes, columns);
                NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) {
                    store(a.data + (j + q) * a.row_stride + r, columns[q]);
                }
            }
        }
        while (r < end) put(next(load(in), shrink));
    }
};

// The rows [r, end) of a strip, and, when r = j, all of the triangle with which it begins.
template <bool mirror, class Real>
void unpack_strip(const Bands<const Real>& bands, Size j, Size r, Size end, const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const Size first_band = r == j ? 0 : r - j - (lanes - 1);
    UnpackedStrip<mirror, Real> strip = {a,
                                         j,
                                         r,
                                         band(bands, first_band) + j,
                                         band(bands, bands.height),
                                         length_of_band(bands, first_band),
                                         {}};
    if (r == j) {
        for (Size i = 0; i < lanes; ++i) {
            const Vector<Real> v = strip.next(load(strip.in), 0);
            strip.length = length_of_band(bands, i + 1);
            store(strip.row(r + i), v, first_lanes<Real>(i + 1));
            if constexpr (mirror) {
                scatter<Real>(v, i, a.data + j * a.row_stride + r + i, a.row_stride);
            }
        }
        strip.r += lanes;
    } else {
        for (Size i = 1; i < lanes; ++i) {
            strip.next(strip.load_up_to_end(), 0);
            strip.length = length_of_band(bands, first_band + i);
        }
    }
    // Near the end of the bands are the last rows of the first columns only.
    const Size whole = j < lanes ? smaller(end, bands.height - lanes) : end;
    strip.rows(smaller(whole, j + bands.height - bands.width), 0);
    strip.rows(whole, 1);
    while (strip.r < end) strip.put(strip.next(strip.load_up_to_end(), 1));
}

template <bool mirror, class Real>
void unpack_rows(const Bands<const Real>& bands, const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    if (!has_strips(bands)) return unpack_elements<mirror>(bands, a);
    for (Size r = 0; r < bands.height; r += kChunk) {
        const Size end = smaller(bands.height, r + kChunk);
        for_each_strip<Real>(bands.width, [&](Size j) {
            const Size below_triangle = j + lanes;
            if (j >= r && j < end) {
                unpack_strip<mirror>(bands, j, j, end, a);
            } else if (j < r && below_triangle < end) {
                unpack_strip<mirror>(bands, j, below_triangle > r ? below_triangle : r, end, a);
            }
        });
    }
}

// ---- dense rows to bands ------------------------------------------------------------------------

// Positions [j, j_end) of bands [d, end), as far as the bands go.
template <bool average, class Real>
void pack_elements(const Bands<Real>& bands, Size j, Size j_end, Size d, Size end,
                   const Block<const Real>& a) {
    Real* out = band(bands, d);
    for (; d < end; ++d) {
        const Size length = length_of_band(bands, d);
        const Size last = smaller(length, j_end);
        for (Size c = j; c < last; ++c) {
            const Real lower = a.data[(c + d) * a.row_stride + c * a.column_stride];
            if constexpr (average) {
                const Real upper = a.data[c * a.row_stride + (c + d) * a.column_stride];
                out[c] = (lower + upper) * Real(0.5);
            } else {
                out[c] = lower;
            }
        }
        out += length;
    }
}

// Band after band of a strip of columns [j, j + lanes).
template <bool average, class Real>
struct PackedStrip {
    static constexpr Size lanes = kLanes<Real>;

    Block<const Real> a;
    Size j;
    Size d;          // the next band
    const Real* in;  // the last row that it reaches
    Real* out;       // its position j
    Size length;
    Shear<Real, Delay::last_lane_least> shear;

    NEQUAR_INLINE Vector<Real> next_row() {
        const Vector<Real> v = load(in);
        in += a.row_stride;
        return shear.next(v);
    }
    // The mirrored elements of `count` positions of band d.
    NEQUAR_INLINE Vector<Real> mirrored(Size count) const {
        Vector<Real> v;
        gather(a.data + j * (a.row_stride + 1) + d, a.row_stride + 1, count, v);
        return v;
    }
    NEQUAR_INLINE void advance(Size shrink) {
        out += length;
        length -= shrink;
        ++d;
    }

    // Whole vectors of the bands up to `end`.
    NEQUAR_INLINE void bands(Size end, Size shrink) {
        while (d + lanes <= end) {
            Vector<Real> upper[kLaneCount<Real>];
            if constexpr (average) {
                load_transposed<kLaneCount<Real>>(a.data + j * (a.row_stride + 1) + d,
                                                  a.row_stride + 1, upper);
            }
            NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
                Vector<Real> v = next_row();
                if constexpr (average) v = (v + upper[i]) * broadcast(Real(0.5));
                store(out, v);
                advance(shrink);
            }
        }
        while (d < end) {
            Vector<Real> v = next_row();
            if constexpr (average) v = (v + mirrored(lanes)) * broadcast(Real(0.5));
            store(out, v);
            advance(shrink);
        }
    }
    // The triangle with which the bands end: `lanes` positions of this band, one less of the next.
    NEQUAR_INLINE void triangle() {
        for (Size count = lanes; count > 0; --count) {
            Vector<Real> v = count == lanes ? next_row() : shear.next(Vector<Real>{});
            if constexpr (average) v = (v + mirrored(count)) * broadcast(Real(0.5));
            store(out, v, first_lanes<Real>(count));
            advance(1);
        }
    }
};

template <bool average, class Real>
void pack_strip(const Bands<Real>& bands, Size j, Size d, Size end, const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const Size triangle = bands.height - j - lanes;  // its first band
    PackedStrip<average, Real> strip = {
        a, j, d, a.data + (j + d) * a.row_stride + j, band(bands, d) + j, length_of_band(bands, d),
        {}};
    for (Size i = 1; i < lanes; ++i) strip.next_row();
    const Size whole = smaller(end, triangle);
    strip.bands(smaller(whole, bands.height - bands.width), 0);
    strip.bands(whole, 1);
    if (triangle < end) strip.triangle();
}

template <bool average, class Real>
void pack_rows(const Bands<Real>& bands, const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    if (!has_strips(bands)) {
        return pack_elements<average>(bands, 0, bands.width, 0, bands.height, a);
    }
    for (Size d = 0; d < bands.height; d += kChunk) {
        for_each_strip<Real>(bands.width, [&](Size j) {
            // Past its triangle, which belongs to the chunk in which it begins, a strip has ended.
            if (d <= bands.height - j - lanes) pack_strip<average>(bands, j, d, d + kChunk, a);
        });
    }
}

// ---- bands and dense columns --------------------------------------------------------------------

// Element (band d, position p) of a matrix whose columns are contiguous; those of a position follow
// each other.
template <class Real>
NEQUAR_INLINE Real* at_band(const Block<Real>& a, Size d, Size p) {
    return a.data + p * (a.column_stride + 1) + d;
}

// As many bands as a vector has lanes, from d on, at position p.
template <class Real>
struct BandRows {
    const Real* start[kLaneCount<Real>];

    NEQUAR_INLINE BandRows(const Bands<const Real>& bands, Size d, Size p) {
        const Real* at = band(bands, d) + p;
        NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
            start[i] = at;
            at += length_of_band(bands, d + i);
        }
    }
    NEQUAR_INLINE const Real* operator()(unsigned k) const { return start[k]; }
};

// For each block of bands [d, d + lanes) and positions [p, p + lanes) calls whole(d, p); blocks may
// overlap. The strip of positions ends with a triangle: triangle(d, p), or few(d, end, p) for
// whatever is too small for a block.
template <class Real, class Whole, class Triangle, class Few>
NEQUAR_INLINE void for_each_block(const Bands<Real>& bands, const Whole& whole,
                                  const Triangle& triangle, const Few& few) {
    constexpr Size lanes = kLanes<Real>;
    for (Size d0 = 0; d0 < bands.height; d0 += kChunk) {
        for_each_strip<Real>(bands.width, [&](Size p) {
            const Size last = bands.height - p - lanes;  // the first band of the triangle
            if (d0 > last) return;
            const Size end = smaller(d0 + kChunk, last);
            Size d = d0;
            for (; d + lanes <= end; d += lanes) whole(d, p);
            if (d < end) {
                if (end >= lanes) {
                    whole(end - lanes, p);
                } else {
                    few(d, end, p);
                }
            }
            if (last < d0 + kChunk) triangle(last, p);
        });
    }
}

template <class Real>
void unpack_columns(const Bands<const Real>& bands, const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const auto few = [&](Size d, Size end, Size p) {
        const Real* in = band(bands, d);
        for (; d < end; ++d) {
            const Size length = length_of_band(bands, d);
            const Size last = smaller(length, p + lanes);
            for (Size q = p; q < last; ++q) *at_band(a, d, q) = in[q];
            in += length;
        }
    };
    if (!has_strips(bands)) {
        for (Size p = 0; p < bands.width; p += lanes) few(0, bands.height - p, p);
        return;
    }
    const auto whole = [&](Size d, Size p) {
        Vector<Real> columns[kLaneCount<Real>];
        load_transposed<kLaneCount<Real>, Real>(BandRows<Real>(bands, d, p), columns);
        NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) store(at_band(a, d, p + q), columns[q]);
    };
    const auto triangle = [&](Size d, Size p) {
        // The vectors reach into the next band, at the first positions past the last one.
        if (p < lanes) return few(d, d + lanes, p);
        Vector<Real> columns[kLaneCount<Real>];
        load_transposed<kLaneCount<Real>, Real>(BandRows<Real>(bands, d, p), columns);
        NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) {
            store(at_band(a, d, p + q), columns[q], first_lanes<Real>(lanes - q));
        }
    };
    for_each_block(bands, whole, triangle, few);
}

template <class Real>
void pack_columns(const Bands<Real>& bands, const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    if (!has_strips(bands)) return pack_elements<false>(bands, 0, bands.width, 0, bands.height, a);
    const auto few = [&](Size d, Size end, Size p) {
        pack_elements<false>(bands, p, p + lanes, d, end, a);
    };
    const auto whole = [&](Size d, Size p) {
        Vector<Real> columns[kLaneCount<Real>];
        load_transposed<kLaneCount<Real>>(at_band(a, d, p), a.column_stride + 1, columns);
        Real* out = band(bands, d) + p;
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            store(out, columns[i]);
            out += length_of_band(bands, d + i);
        }
    };
    const auto triangle = [&](Size d, Size p) { few(d, d + lanes, p); };
    for_each_block(bands, whole, triangle, few);
}

// ---- entries ------------------------------------------------------------------------------------

template <class Real>
NEQUAR_INLINE Bands<Real> lower_bands(Real* packed, Size height, Size width) {
    return {packed, height, smaller(height, width)};
}

template <class Real>
void unpack_lower(Size height, Size width, const Real* packed, Block<Real> a) {
    if (height <= 0 || width <= 0) return;
    const Bands<const Real> bands = lower_bands(packed, height, width);
    if (a.column_stride == 1) {
        unpack_rows<false>(bands, a);
    } else if (a.row_stride == 1) {
        unpack_columns(bands, a);
    } else {
        unpack_elements<false>(bands, a);
    }
}

template <class Real>
void pack_lower(Size height, Size width, Block<const Real> a, Real* packed) {
    if (height <= 0 || width <= 0) return;
    const Bands<Real> bands = lower_bands(packed, height, width);
    if (a.column_stride == 1) {
        pack_rows<false>(bands, a);
    } else if (a.row_stride == 1) {
        pack_columns(bands, a);
    } else {
        pack_elements<false>(bands, 0, bands.width, 0, height, a);
    }
}

// The transpose of a symmetric matrix will do as well, so contiguous columns are taken for rows.
template <class Real>
NEQUAR_INLINE Block<Real> with_rows(const Block<Real>& a) {
    if (a.column_stride != 1 && a.row_stride == 1) return {a.data, a.column_stride, 1};
    return a;
}

template <class Real>
void unpack_symmetric(Size n, const Real* packed, Block<Real> a) {
    if (n <= 0) return;
    const Bands<const Real> bands = lower_bands(packed, n, n);
    a = with_rows(a);
    if (a.column_stride == 1) {
        unpack_rows<true>(bands, a);
    } else {
        unpack_elements<true>(bands, a);
    }
}

template <class Real>
void pack_symmetric(Size n, Block<const Real> a, Real* packed) {
    if (n <= 0) return;
    const Bands<Real> bands = lower_bands(packed, n, n);
    a = with_rows(a);
    if (a.column_stride == 1) {
        pack_rows<true>(bands, a);
    } else {
        pack_elements<true>(bands, 0, n, 0, n, a);
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
