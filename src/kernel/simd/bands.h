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
// The two triangles of a symmetric matrix are read or written together: the squares that leave or
// enter the shear are transposed for the other side.
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

// A strip touches a line of each row and band of a chunk, more streams than the CPU follows by
// itself; what comes this many elements later along each of them is asked for in time.
template <class Real>
inline constexpr Size kAhead = 2 * 64 / Size(sizeof(Real));

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
template <unsigned mask, class AnyVector, unsigned... Lane>
NEQUAR_INLINE AnyVector blend_lanes(const AnyVector& a, const AnyVector& b, LaneList<Lane...>) {
    return __builtin_shufflevector(a, b, ((mask >> Lane) % 2 ? sizeof...(Lane) + Lane : Lane)...);
}
template <unsigned mask, class AnyVector>
NEQUAR_INLINE AnyVector blend(const AnyVector& a, const AnyVector& b) {
    constexpr unsigned lanes = sizeof(AnyVector) / sizeof(a[0]);
    return blend_lanes<mask>(a, b, typename AscendingLanes<lanes>::Type{});
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
    if (j < columns) strip(j == 0 ? 0 : columns - lanes);
}

// The first `count` elements of a vector; a count beyond its ends means none or all.
template <class Real>
NEQUAR_INLINE Vector<Real> load_first(const Real* p, Size count) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return load(p, first_lanes<Real>(count < 0 ? 0 : smaller(count, kLanes<Real>)));
#else
    if (count >= kLanes<Real>) return load(p);
    return count > 0 ? load(p, first_lanes<Real>(count)) : Vector<Real>{};
#endif
}
template <class Real>
NEQUAR_INLINE void store_first(Real* p, const Vector<Real>& v, Size count) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    store(p, v, first_lanes<Real>(count < 0 ? 0 : smaller(count, kLanes<Real>)));
#else
    if (count >= kLanes<Real>) {
        store(p, v);
    } else if (count > 0) {
        store(p, v, first_lanes<Real>(count));
    }
#endif
}

// What is so small is moved element by element.
template <class Real>
NEQUAR_INLINE bool is_small(const Bands<Real>& bands, Size most) {
    return bands.height * bands.width <= most;
}

// The columns of a strip that begins at j.
template <class Real>
NEQUAR_INLINE Size width_of_strip(const Bands<Real>& bands, Size j) {
    return smaller(kLanes<Real>, bands.width - j);
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

// Row after row of a strip of columns [j, j + lanes): band r - j arrives with row r.
template <class Real>
struct UnpackedStrip {
    static constexpr Size lanes = kLanes<Real>;

    const Real* in;      // the next band at position j
    const Real* in_end;  // of all bands
    Size length;         // of this band
    Shear<Real, Delay::first_lane_least> shear;

    NEQUAR_INLINE Vector<Real> next(const Vector<Real>& v, Size shrink) {
        in += length;
        length -= shrink;
        return shear.next(v);
    }
    // A vector may reach into the next band, but not past the last one.
    NEQUAR_INLINE Vector<Real> next_up_to_end(Size shrink) {
        return next(load_first(in, in_end - in), shrink);
    }
    // `count` whole rows, and with each the bands grow shorter by `shrink`.
    NEQUAR_INLINE Real* rows(Real* out, Size out_row, Size count, Size shrink) {
        for (; count >= lanes; count -= lanes) {
            NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
                prefetch(in + kAhead<Real>);
                prefetch_for_writing(out + kAhead<Real>);
                store(out, next(load(in), shrink));
                out += out_row;
            }
        }
        for (; count > 0; --count) {
            store(out, next(load(in), shrink));
            out += out_row;
        }
        return out;
    }
};

// The rows [r, end) of a strip, r >= j.
template <class Real>
void unpack_strip(const Bands<const Real>& bands, Size j, Size r, Size end, const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const Size width = width_of_strip(bands, j);
    const Size full = bands.height - bands.width;  // from this band on they grow shorter
    Size d = r - j < lanes ? 0 : r - j - (lanes - 1);
    UnpackedStrip<Real> strip = {
        band(bands, d) + j, band(bands, bands.height), length_of_band(bands, d), {}};
    for (; d < r - j; ++d) strip.next_up_to_end(d >= full);
    Real* out = a.data + r * a.row_stride + j;
    const auto row_up_to = [&](Size count) __attribute__((always_inline)) {
        store_first(out, strip.next_up_to_end(d >= full), count);
        out += a.row_stride;
        ++d;
    };
    if (d == 0 && width == lanes && end - j >= lanes && bands.height - j >= 2 * lanes) {
        NEQUAR_UNROLL for (Size i = 1; i < lanes; ++i) {
            store(out, strip.next(load(strip.in), i > full), first_lanes<Real>(i));
            out += a.row_stride;
        }
        d = lanes - 1;
    }
    const Size steady = width < lanes ? end - j : smaller(end - j, lanes - 1);
    while (d < steady) row_up_to(smaller(width, d + 1));
    // Near the end of the bands are the last rows of the first columns only.
    const Size whole = (j < lanes ? smaller(end, bands.height - lanes) : end) - j;
    const Size before = smaller(whole, full);
    if (d < before) {
        out = strip.rows(out, a.row_stride, before - d, 0);
        d = before;
    }
    if (d < whole) {
        out = strip.rows(out, a.row_stride, whole - d, 1);
        d = whole;
    }
    while (d < end - j) row_up_to(width);
}

// ---- dense rows to bands ------------------------------------------------------------------------

template <bool average, class Real>
void pack_elements(const Bands<Real>& bands, const Block<const Real>& a) {
    Real* out = bands.packed;
    for (Size d = 0; d < bands.height; ++d) {
        const Size length = length_of_band(bands, d);
        for (Size c = 0; c < length; ++c) {
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

// Band after band of a strip of columns: `in` is the last row that the band reaches.
template <class Real>
struct PackedStrip {
    static constexpr Size lanes = kLanes<Real>;

    const Real* in;
    Size in_row;
    Real* out;  // position j of the next band
    Size length;
    Size r;  // of the next row below j
    Size height, width;
    Shear<Real, Delay::last_lane_least> shear;

    // The strip of positions [j, j + lanes), ready for band d.
    NEQUAR_INLINE PackedStrip(const Bands<Real>& bands, Size j, Size d, const Block<const Real>& a)
        : in(a.data + (j + d) * a.row_stride + j),
          in_row(a.row_stride),
          out(band(bands, d) + j),
          length(length_of_band(bands, d)),
          r(d),
          height(bands.height - j),
          width(width_of_strip(bands, j)),
          shear{} {
        if (width == lanes && d + lanes <= height) {
            NEQUAR_UNROLL for (Size i = 1; i < lanes; ++i) next_row();
            r += lanes - 1;
        } else {
            for (Size i = 1; i < lanes; ++i) next_up_to_end();
        }
    }

    NEQUAR_INLINE Vector<Real> next_row() {
        const Vector<Real> v = load(in);
        in += in_row;
        return shear.next(v);
    }
    // One of a narrow strip, or near the end: zeros follow the last.
    NEQUAR_INLINE Vector<Real> next_up_to_end() {
        if (r++ >= height) return shear.next(Vector<Real>{});
        const Vector<Real> v = load_first(in, width);
        in += in_row;
        return shear.next(v);
    }
    NEQUAR_INLINE void advance(Size shrink) {
        out += length;
        length -= shrink;
    }
    // `count` bands that have whole vectors.
    NEQUAR_INLINE void bands(Size count, Size shrink) {
        for (; count >= lanes; count -= lanes) {
            NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
                prefetch(in + kAhead<Real>);
                prefetch_for_writing(out + kAhead<Real>);
                store(out, next_row());
                advance(shrink);
            }
        }
        for (; count > 0; --count) {
            store(out, next_row());
            advance(shrink);
        }
    }
};

// Positions [j, j + lanes) of bands [d, end).
template <class Real>
void pack_strip(const Bands<Real>& bands, Size j, Size d, Size end, const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    PackedStrip<Real> strip(bands, j, d, a);
    const Size width = strip.width;
    const Size height = strip.height;
    const Size full = bands.height - bands.width;
    end = smaller(end, height);
    const Size whole = width < lanes ? d : smaller(end, height - lanes + 1);
    const Size before = smaller(whole, full);
    if (d < before) {
        strip.bands(before - d, 0);
        strip.r += before - d;
        d = before;
    }
    if (d < whole) {
        strip.bands(whole - d, 1);
        strip.r += whole - d;
        d = whole;
    }
    // The triangle with which the bands end.
    if (d == height - lanes + 1 && end == height && width == lanes) {
        NEQUAR_UNROLL for (Size count = lanes - 1; count > 0; --count) {
            store(strip.out, strip.shear.next(Vector<Real>{}), first_lanes<Real>(count));
            strip.advance(d++ >= full);
        }
    }
    for (; d < end; ++d) {
        store_first(strip.out, strip.next_up_to_end(), smaller(width, height - d));
        strip.advance(d >= full);
    }
}

// ---- bands and dense columns --------------------------------------------------------------------

// Element (band d, position p) of a matrix whose columns are contiguous; those of a position follow
// each other.
template <class Real>
NEQUAR_INLINE Real* at_band(const Block<Real>& a, Size d, Size p) {
    return a.data + p * (a.column_stride + 1) + d;
}

// Blocks of bands [d, d + lanes) and positions [p, p + lanes), which meet the matrix where
// band + position < height.
template <class Real>
NEQUAR_INLINE bool is_whole_block(const Bands<Real>& bands, Size d, Size p) {
    return p + kLanes<Real> <= bands.width && d + p + 2 * (kLanes<Real> - 1) < bands.height;
}

template <class Real>
NEQUAR_INLINE void load_block_of_bands(const Bands<const Real>& bands, Size d, Size p,
                                       Vector<Real> (&columns)[kLaneCount<Real>]) {
    const Real* at = band(bands, d) + p;
#if NEQUAR_VECTOR_BYTES == 64
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        columns[i] = load(at);
        at += length_of_band(bands, d + i);
    }
    transpose_in_registers<Real>(columns);
#else
    const Real* rows[kLaneCount<Real>];
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        rows[i] = at;
        at += length_of_band(bands, d + i);
    }
    load_transposed<kLaneCount<Real>, Real>([&](unsigned k) { return rows[k]; }, columns);
#endif
}

// A block that is cut off by the end of the matrix.
template <class Real>
__attribute__((noinline)) void unpack_part_of_block(const Bands<const Real>& bands, Size d, Size p,
                                                    const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> v[kLaneCount<Real>];
    const Real* at = band(bands, d) + p;
    NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
        const Size length = length_of_band(bands, d + i);
        v[i] = load_first(at, length - p);
        at += length;
    }
    transpose_in_registers<Real>(v);
    const Size width = width_of_strip(bands, p);
    NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) {
        if (q < width) store_first(at_band(a, d, p + q), v[q], bands.height - p - q - d);
    }
}

template <class Real>
NEQUAR_INLINE void unpack_block(const Bands<const Real>& bands, Size d, Size p,
                                const Block<Real>& a) {
    if (!is_whole_block(bands, d, p)) return unpack_part_of_block(bands, d, p, a);
    Vector<Real> columns[kLaneCount<Real>];
    load_block_of_bands(bands, d, p, columns);
    NEQUAR_UNROLL for (Size q = 0; q < kLanes<Real>; ++q) store(at_band(a, d, p + q), columns[q]);
}

// The columns as far as they go, transposed: lane q of v[i] belongs to position p + q of band d +
// i.
template <class Real>
NEQUAR_INLINE void load_part_of_block(const Bands<Real>& bands, Size d, Size p,
                                      const Block<const Real>& a,
                                      Vector<Real> (&v)[kLaneCount<Real>]) {
    const Size width = width_of_strip(bands, p);
    NEQUAR_UNROLL for (Size q = 0; q < kLanes<Real>; ++q) {
        v[q] =
            q < width ? load_first(at_band(a, d, p + q), bands.height - p - q - d) : Vector<Real>{};
    }
    transpose_in_registers<Real>(v);
}

template <class Real>
__attribute__((noinline)) void pack_part_of_block(const Bands<Real>& bands, Size d, Size p,
                                                  const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> v[kLaneCount<Real>];
    load_part_of_block(bands, d, p, a, v);
    Real* out = band(bands, d) + p;
    NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
        const Size length = length_of_band(bands, d + i);
        store_first(out, v[i], length - p);
        out += length;
    }
}

template <class Real>
NEQUAR_INLINE void pack_block(const Bands<Real>& bands, Size d, Size p,
                              const Block<const Real>& a) {
    if (!is_whole_block(bands, d, p)) return pack_part_of_block(bands, d, p, a);
    Vector<Real> columns[kLaneCount<Real>];
    load_square<Real>(at_band(a, d, p), a.column_stride + 1, columns);
    Real* out = band(bands, d) + p;
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        prefetch_for_writing(out + kAhead<Real>);
        store(out, columns[i]);
        out += length_of_band(bands, d + i);
    }
}

// ---- both triangles of a symmetric matrix
// --------------------------------------------------------- Strips begin at multiples of a vector's
// length, as chunks do, and each band is one shorter than the one before.

template <class Real>
NEQUAR_INLINE Vector<Real> united(const Vector<Real>& a, const Vector<Real>& b) {
    using Bits = typename VectorTraits<Real>::Bits;
    return reinterpret_cast<Vector<Real>>(reinterpret_cast<Bits>(a) | reinterpret_cast<Bits>(b));
}

// The rows [r, end) of a strip, and what lies across the diagonal from them.
template <class Real>
void unpack_symmetric_strip(const Bands<const Real>& bands, Size j, Size r, Size end,
                            const Block<Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const Size width = width_of_strip(bands, j);
    const Size row = a.row_stride;
    const Size first = r == j ? 0 : r - j - (lanes - 1);
    UnpackedStrip<Real> strip = {
        band(bands, first) + j, band(bands, bands.height), length_of_band(bands, first), {}};
    Real* out = a.data + r * row + j;
    Real* across = a.data + j * row + r;
    Vector<Real> v[kLaneCount<Real>];
    if (r == j) {
        // The square on the diagonal: lanes above it are zero bits in each of the two.
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            v[i] = i < width ? strip.next_up_to_end(1) : Vector<Real>{};
        }
        Vector<Real> mirror[kLaneCount<Real>];
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) mirror[i] = v[i];
        transpose_in_registers<Real>(mirror);
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            if (i < width) store_first(out + i * row, united<Real>(v[i], mirror[i]), width);
        }
        r += lanes;
        out += lanes * row;
        across += lanes;
    } else {
        for (Size i = 1; i < lanes; ++i) strip.next_up_to_end(1);
    }
    const Size whole = j == 0 ? smaller(end, bands.height - lanes) : end;
    for (; r + lanes <= whole; r += lanes) {
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            prefetch_for_writing(out + kAhead<Real>);
            v[i] = strip.next(load(strip.in), 1);
            store(out, v[i]);
            out += row;
        }
        transpose_in_registers<Real>(v);
        NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) {
            prefetch_for_writing(across + q * row + kAhead<Real>);
            store(across + q * row, v[q]);
        }
        across += lanes;
    }
    for (; r < end; r += lanes) {
        const Size count = end - r;
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            if (i < count) {
                v[i] = strip.next_up_to_end(1);
                store(out, v[i]);
                out += row;
            } else {
                v[i] = Vector<Real>{};
            }
        }
        transpose_in_registers<Real>(v);
        NEQUAR_UNROLL for (Size q = 0; q < lanes; ++q) store_first(across + q * row, v[q], count);
        across += lanes;
    }
}

// Positions [j, j + lanes) of the bands [d, end).
template <class Real>
void pack_symmetric_strip(const Bands<Real>& bands, Size j, Size d, Size end,
                          const Block<const Real>& a) {
    constexpr Size lanes = kLanes<Real>;
    const Block<const Real> upper = {a.data, 1, a.row_stride};
    const Vector<Real> half = broadcast(Real(0.5));
    PackedStrip<Real> strip(bands, j, d, a);
    const Size width = strip.width;
    const Size height = strip.height;
    Vector<Real> across[kLaneCount<Real>];
    for (; d < end && is_whole_block(bands, d, j); d += lanes) {
        load_square<Real>(at_band(upper, d, j), a.row_stride + 1, across);
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            prefetch(strip.in + kAhead<Real>);
            prefetch_for_writing(strip.out + kAhead<Real>);
            store(strip.out, (strip.next_row() + across[i]) * half);
            strip.advance(1);
        }
        strip.r += lanes;
    }
    for (; d < smaller(end, height); d += lanes) {
        load_part_of_block(bands, d, j, upper, across);
        NEQUAR_UNROLL for (Size i = 0; i < lanes; ++i) {
            const Vector<Real> mean = (strip.next_up_to_end() + across[i]) * half;
            store_first(strip.out, mean, smaller(width, height - d - i));
            strip.advance(1);
        }
    }
}

// ---- chunks -------------------------------------------------------------------------------------

// Calls each(j, r, end) for the rows r ... end - 1 of a chunk below the top of each strip.
template <class Real, class Each>
NEQUAR_INLINE void for_each_chunk_of_rows(const Bands<const Real>& bands, const Each& each) {
    for (Size r = 0; r < bands.height; r += kChunk) {
        const Size end = smaller(bands.height, r + kChunk);
        for_each_strip<Real>(smaller(bands.width, end),
                             [&](Size j) { each(j, j > r ? j : r, end); });
    }
}

// Calls each(j, d, end) for the bands d ... end - 1 of a chunk.
template <class Real, class Each>
NEQUAR_INLINE void for_each_chunk_of_bands(const Bands<Real>& bands, const Each& each) {
    for (Size d = 0; d < bands.height; d += kChunk) {
        for_each_strip<Real>(length_of_band(bands, d), [&](Size j) { each(j, d, d + kChunk); });
    }
}

template <class Real>
void unpack_rows(const Bands<const Real>& bands, const Block<Real>& a) {
    for_each_chunk_of_rows(bands,
                           [&](Size j, Size r, Size end) { unpack_strip(bands, j, r, end, a); });
}

template <class Real>
void unpack_columns(const Bands<const Real>& bands, const Block<Real>& a) {
    for_each_chunk_of_bands(bands, [&](Size j, Size d, Size end) {
        end = smaller(end, bands.height - j);
        for (; d < end; d += kLanes<Real>) unpack_block(bands, d, j, a);
    });
}

template <class Real>
void pack_rows(const Bands<Real>& bands, const Block<const Real>& a) {
    for_each_chunk_of_bands(bands,
                            [&](Size j, Size d, Size end) { pack_strip(bands, j, d, end, a); });
}

template <class Real>
void pack_columns(const Bands<Real>& bands, const Block<const Real>& a) {
    for_each_chunk_of_bands(bands, [&](Size j, Size d, Size end) {
        end = smaller(end, bands.height - j);
        for (; d < end; d += kLanes<Real>) pack_block(bands, d, j, a);
    });
}

template <class Real>
void unpack_symmetric_rows(const Bands<const Real>& bands, const Block<Real>& a) {
    for (Size r = 0; r < bands.height; r += kChunk) {
        const Size end = smaller(bands.height, r + kChunk);
        for (Size j = 0; j < end; j += kLanes<Real>)
            unpack_symmetric_strip(bands, j, j > r ? j : r, end, a);
    }
}

template <class Real>
void pack_symmetric_rows(const Bands<Real>& bands, const Block<const Real>& a) {
    for (Size d = 0; d < bands.height; d += kChunk) {
        for (Size j = 0; j < bands.height - d; j += kLanes<Real>)
            pack_symmetric_strip(bands, j, d, d + kChunk, a);
    }
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
    if (is_small(bands, 256)) {
        unpack_elements<false>(bands, a);
    } else if (a.column_stride == 1) {
        unpack_rows(bands, a);
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
    if (is_small(bands, 256)) {
        pack_elements<false>(bands, a);
    } else if (a.column_stride == 1) {
        pack_rows(bands, a);
    } else if (a.row_stride == 1) {
        pack_columns(bands, a);
    } else {
        pack_elements<false>(bands, a);
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
    if (a.column_stride == 1 && !is_small(bands, 32)) {
        unpack_symmetric_rows(bands, a);
    } else {
        unpack_elements<true>(bands, a);
    }
}

template <class Real>
void pack_symmetric(Size n, Block<const Real> a, Real* packed) {
    if (n <= 0) return;
    const Bands<Real> bands = lower_bands(packed, n, n);
    a = with_rows(a);
    if (a.column_stride == 1 && !is_small(bands, 400)) {
        pack_symmetric_rows(bands, a);
    } else {
        pack_elements<true>(bands, a);
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
