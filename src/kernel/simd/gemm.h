// C := alpha A B (+ C), or a triangle of it: the loops around the micro-kernels.
//
//     for pc of k in steps of KC
//       for rows ic of C in steps of MC           A(ic, pc): packed where its rows are not
//       contiguous
//         for columns jc of C in steps of NC      B(pc, jc) packed: kc x nc, stays in the second
//         cache
//           for panels ir of A                    R rows x kc, stay in the first cache
//             for panels jr of the packed B       micro-kernel: one tile of C
//
// Tiles follow each other along the rows of C, so that R pages of C are at hand at a time, and each
// line of it is fetched once for KC steps. This is Goto's order with the parts of A and B
// exchanged. (Goto, van de Geijn, Anatomy of High-Performance Matrix Multiplication, ACM TOMS 34,
// 2008.)
//
// The micro-kernels read A through any strides, so contiguous rows of it are never packed, and B
// where its rows are contiguous and it fits the second cache. With few rows in A nothing would be
// gained by packing B; it streams through in steps of a few of its rows. C has unit stride along
// its rows; a C whose columns are contiguous is the transposed product, any other C is written tile
// by tile from scratch. Where packing memory cannot be had, the same loops run with blocks that fit
// a small buffer on the stack.
#pragma once

#include "kernel/memory.h"
#include "kernel/simd/few_columns.h"
#include "kernel/simd/pack.h"
#include "kernel/simd/tile.h"

namespace nequar::kernel::NEQUAR_UNIT {

enum class Region { all, lower, upper };  // the part of C that is wanted, with the diagonal

template <class Real>
struct Product {
    Size m;
    Size n;
    Size k;
    Real alpha;
    Block<const Real> a;
    Block<const Real> b;
    bool accumulate;
    Block<Real> c;
    Region region;
};

template <class Real>
NEQUAR_INLINE Block<Real> moved(const Block<Real>& block, Size i, Size j) {
    return {block.data + i * block.row_stride + j * block.column_stride, block.row_stride,
            block.column_stride};
}

template <class Real>
NEQUAR_INLINE Block<Real> transposed(const Block<Real>& block) {
    return {block.data, block.column_stride, block.row_stride};
}

// Field by field: two words that were written a moment ago, read back as one vector, would stall.
template <class Real>
NEQUAR_INLINE void assign(Block<const Real>& to, const Block<const Real>& from) {
    to.data = from.data;
    to.row_stride = from.row_stride;
    to.column_stride = from.column_stride;
}

// ---- one block of C ----------------------------------------------------------------------------

// A block product: rows [i0, i0 + mc), columns [j0, j0 + nc) of C, kc steps. A and B are packed or
// the operands themselves.
template <class Real>
struct BlockProduct {
    Size i0;
    Size j0;
    Size mc;
    Size nc;
    Size kc;
    Block<const Real> a;
    Block<const Real> b;
    bool packed_a;
    bool packed_b;
    bool accumulate;
};

// The columns of a block in panels of whole vectors. Packed panels have one size; panels that are
// read in place may be one vector wider where that avoids a narrow one.
template <class Real>
NEQUAR_INLINE Partition vector_panels(Size columns, bool packed) {
    const Size vectors = (columns + kLanes<Real> - 1) / kLanes<Real>;
    if (packed || kPackedVectors == kMostVectors) return partition(vectors, kPackedVectors);
    const Size parts = vectors <= kMostVectors ? 1 : vectors / kPackedVectors;
    return {parts, vectors / parts, vectors % parts};
}

// Tile at (i, j) of C, height x width, from scratch into C: what lies in the region alone.
template <class Real>
void merge_tile(const Product<Real>& product, Size i, Size j, Size height, Size width,
                const Real* scratch, Size scratch_row, bool accumulate) {
    for (Size r = 0; r < height; ++r) {
        Size first = 0;
        Size last = width;
        if (product.region == Region::lower) last = smaller(width, i + r - j + 1);
        if (product.region == Region::upper) first = i + r - j > 0 ? i + r - j : 0;
        Real* c = product.c.data + (i + r) * product.c.row_stride + j * product.c.column_stride;
        for (Size s = first; s < last; ++s) {
            Real& element = c[s * product.c.column_stride];
            const Real value = scratch[r * scratch_row + s];
            element = accumulate ? element + value : value;
        }
    }
}

enum class Placement { outside, crossing, inside };

// Where a tile lies with respect to the wanted region.
template <class Real>
NEQUAR_INLINE Placement placement_of(const Product<Real>& product, Size i, Size j, Size height,
                                     Size width) {
    if (product.region == Region::all) return Placement::inside;
    if (product.region == Region::lower) {
        if (j > i + height - 1) return Placement::outside;
        return j + width - 1 <= i ? Placement::inside : Placement::crossing;
    }
    if (i > j + width - 1) return Placement::outside;
    return i + height - 1 <= j ? Placement::inside : Placement::crossing;
}

// One tile of the block: `task` holds what all tiles share.
template <class Real>
NEQUAR_INLINE void run_tile(const Product<Real>& product, const BlockProduct<Real>& block,
                            bool in_place, Size i, Size height, Size j, Size vectors,
                            TileTask<Real>& task) {
    constexpr Size lanes = kLanes<Real>;
    const Size row = block.i0 + i;
    const Size column = block.j0 + j;
    const Size width = smaller(vectors * lanes, block.nc - j);
    const Placement placement = placement_of(product, row, column, height, width);
    if (placement == Placement::outside) return;
    task.b = block.b.data + (block.packed_b ? j * block.kc : j);
    task.b_row = block.packed_b ? vectors * lanes : block.b.row_stride;
    const TileKernel<Real> kernel = tile_kernel<Real>(width < vectors * lanes, vectors, height);
    task.last = first_lanes<Real>(width - (vectors - 1) * lanes);
    if (in_place && placement == Placement::inside) {
        task.c = product.c.data + row * product.c.row_stride + column;
        task.c_row = product.c.row_stride;
        task.accumulate = block.accumulate;
        kernel(task);
        return;
    }
    Real scratch[kTileVectors * unsigned(lanes)];
    task.c = scratch;
    task.c_row = vectors * lanes;
    task.accumulate = false;
    kernel(task);
    merge_tile(product, row, column, height, width, scratch, task.c_row, block.accumulate);
}

inline constexpr Size kNearElements = 32768;  // a C that is larger is fetched ahead

template <class Real>
void multiply_block(const Product<Real>& product, const BlockProduct<Real>& block) {
    const bool in_place = product.c.column_stride == 1 || product.n == 1;
    const Partition panels = vector_panels<Real>(block.nc, block.packed_b);
    const Size widest = panels.small + (panels.larges > 0 ? 1 : 0);
    const Partition rows = block.packed_a || widest == Size(kMostVectors)
                               ? partition(block.mc, block.packed_a ? Size(kPackedRows)
                                                                    : Size(most_rows(kMostVectors)))
                               : partition(block.mc, Size(most_rows(unsigned(widest))));
    TileTask<Real> task;
    task.k = block.kc;
    task.a_row = block.a.row_stride;
    task.a_column = block.a.column_stride;
    task.alpha = product.alpha;
    task.prefetch = product.m * product.n > kNearElements;
    Size i = 0;
    for (Size part = 0; part < rows.parts; ++part) {
        const Size height = size_of_part(rows, part);
        if (block.packed_a) {
            task.a = block.a.data + i * block.kc;
            task.a_row = 1;
            task.a_column = height;
        } else {
            task.a = block.a.data + i * block.a.row_stride;
        }
        Size j = 0;
        for (Size panel = 0; panel < panels.parts; ++panel) {
            const Size vectors = size_of_part(panels, panel);
            run_tile(product, block, in_place, i, height, j, vectors, task);
            j += vectors * kLanes<Real>;
        }
        i += height;
    }
}

// ---- the loops over blocks ---------------------------------------------------------------------

// Block sizes, and whether A and B are packed.
struct Blocking {
    Size mc;
    Size nc;
    Size kc;
    bool pack_a;
    bool pack_b;
};

template <class Real>
NEQUAR_INLINE Size packed_a_elements(const Blocking& blocking) {
    return blocking.pack_a ? round_up(blocking.mc * blocking.kc, 64 / Size(sizeof(Real))) : 0;
}
template <class Real>
NEQUAR_INLINE Size packed_b_elements(const Blocking& blocking) {
    return blocking.pack_b ? round_up(blocking.nc, kLanes<Real>) * blocking.kc : 0;
}

// Whether nothing of the block of C is wanted.
template <class Real>
NEQUAR_INLINE bool skips(const Product<Real>& product, Size i, Size j, Size height, Size width) {
    return placement_of(product, i, j, height, width) == Placement::outside;
}

template <class Real>
void multiply_in_blocks(const Product<Real>& product, const Blocking& blocking, Real* packed_a,
                        Real* packed_b) {
    const Partition columns = partition(product.n, blocking.nc);
    const Partition steps = partition(product.k, blocking.kc);
    const Partition rows = partition(product.m, blocking.mc);
    BlockProduct<Real> block;
    block.packed_a = blocking.pack_a;
    block.packed_b = blocking.pack_b;
    Size p0 = 0;
    for (Size pc = 0; pc < steps.parts; ++pc, p0 += block.kc) {
        block.kc = size_of_part(steps, pc);
        block.accumulate = product.accumulate || pc > 0;
        block.i0 = 0;
        for (Size ic = 0; ic < rows.parts; ++ic, block.i0 += block.mc) {
            block.mc = size_of_part(rows, ic);
            block.a = moved(product.a, block.i0, p0);
            if (blocking.pack_a) {
                pack_a(partition(block.mc, kPackedRows), block.kc, block.a, packed_a);
                block.a = {packed_a, 0, 0};
            }
            block.j0 = 0;
            for (Size jc = 0; jc < columns.parts; ++jc, block.j0 += block.nc) {
                block.nc = size_of_part(columns, jc);
                if (skips(product, block.i0, block.j0, block.mc, block.nc)) continue;
                block.b = moved(product.b, p0, block.j0);
                if (blocking.pack_b) {
                    pack_b(vector_panels<Real>(block.nc, true), block.nc, block.kc, block.b,
                           packed_b);
                    block.b = {packed_b, 0, 0};
                }
                multiply_block(product, block);
            }
        }
    }
}

// ---- the choice of blocks ----------------------------------------------------------------------

inline constexpr unsigned kStackBytes = 32768;

// The product as one block, B in place or packed.
template <class Real>
NEQUAR_INLINE void multiply_whole(const Product<Real>& product, const Block<const Real>& b,
                                  bool packed_b) {
    BlockProduct<Real> block;
    block.i0 = 0;
    block.j0 = 0;
    block.mc = product.m;
    block.nc = product.n;
    block.kc = product.k;
    assign(block.a, product.a);
    assign(block.b, b);
    block.packed_a = false;
    block.packed_b = packed_b;
    block.accumulate = product.accumulate;
    multiply_block(product, block);
}

template <class Real>
__attribute__((noinline)) void multiply_small_packed(const Product<Real>& product) {
    alignas(64) Real buffer[kStackBytes / sizeof(Real)];
    pack_b(vector_panels<Real>(product.n, true), product.n, product.k, product.b, buffer);
    multiply_whole<Real>(product, {buffer, 0, 0}, true);
}

template <class Real>
__attribute__((noinline)) void multiply_on_stack(const Product<Real>& product,
                                                 const Blocking& blocking) {
    alignas(64) Real buffer[kStackBytes / sizeof(Real)];
    multiply_in_blocks(product, blocking, buffer, buffer + packed_a_elements<Real>(blocking));
}

// B in panels that fit the stack, A in place: slower, and needs no memory.
template <class Real>
Blocking frugal_blocking() {
    constexpr Size nc = Size(kPackedVectors) * kLanes<Real>;
    return {.mc = 1 << 20,
            .nc = nc,
            .kc = Size(kStackBytes / sizeof(Real)) / nc,
            .pack_a = false,
            .pack_b = true};
}

template <class Real>
Blocking packed_blocking(const Product<Real>& product) {
    const CacheSizes& caches = cache_sizes();
    constexpr Size size = sizeof(Real);
    constexpr Size panel = Size(kPackedVectors) * kLanes<Real>;
    // A panel of A takes half of the first cache, a block of B half of the second, a packed A a
    // part of the last.
    const Size kc_most = caches.first / 2 / (Size(kPackedRows) * size);
    const Size kc = partition(product.k, kc_most).small + 1;
    const Size nc_most = caches.second / 2 / (kc * size * panel) * panel;
    const Size mc_most = smaller(caches.last / 4, Size(4) << 20) / (kc * size);
    const bool pack_a =
        product.a.column_stride != 1 && product.m * product.k * size > caches.second / 4;
    return {.mc = pack_a ? mc_most : product.m,
            .nc = nc_most > panel ? nc_most : panel,
            .kc = kc_most,
            .pack_a = pack_a,
            .pack_b = true};
}

inline constexpr Size kFewRows = 24;
inline constexpr Size kFewestSteps = 32;

// B in place, as many of its rows at a time as take a part of the second cache.
template <class Real>
Blocking streaming_blocking(const Product<Real>& product) {
    constexpr Size size = sizeof(Real);
    const Size kc = (Size(1) << 18) / (product.n * size);
    return {.mc = product.m,
            .nc = (Size(1) << 20) / (kFewestSteps * size),
            .kc = kc > kFewestSteps ? kc : kFewestSteps,
            .pack_a = false,
            .pack_b = false};
}

// Whether a B of contiguous rows is best read where it is. With A read across its rows too, both
// change pages at every step, and less of them is at hand.
template <class Real>
NEQUAR_INLINE bool stays_in_place(const Product<Real>& product, Size bytes_of_b) {
    if (bytes_of_b <= 65536) return true;
    return product.a.column_stride == 1 && bytes_of_b <= cache_sizes().second / 3;
}

template <class Real>
void multiply(const Product<Real>& product) {
    constexpr Size size = sizeof(Real);
    const bool rows_of_b = product.b.column_stride == 1 || product.n == 1;
    const Size bytes_of_b = round_up(product.n, kLanes<Real>) * product.k * size;
    if (rows_of_b && stays_in_place(product, bytes_of_b)) {
        multiply_whole(product, product.b, false);
        return;
    }
    if (bytes_of_b <= Size(kStackBytes)) {
        multiply_small_packed(product);
        return;
    }
    if (rows_of_b && product.m <= kFewRows) {
        multiply_in_blocks<Real>(product, streaming_blocking(product), nullptr, nullptr);
        return;
    }
    Blocking blocking = packed_blocking(product);
    blocking.mc = smaller(blocking.mc, product.m);
    blocking.nc = smaller(blocking.nc, product.n);
    blocking.kc = smaller(blocking.kc, product.k);
    const Size elements_of_a = packed_a_elements<Real>(blocking);
    const Size bytes = (elements_of_a + packed_b_elements<Real>(blocking)) * size;
    Real* buffer = static_cast<Real*>(allocate_scratch(bytes));
    if (buffer == nullptr) {
        multiply_on_stack(product, frugal_blocking<Real>());
        return;
    }
    multiply_in_blocks(product, blocking, buffer, buffer + elements_of_a);
    release_scratch(buffer);
}

// ---- what fits the caches ----------------------------------------------------------------------
// Panel after panel of B with all rows of C, without asking for memory: for the smallest products
// the choice of a way takes as long as the product.

inline constexpr unsigned kPanelBytes = 49152;
template <class Real>
inline constexpr Size kPanelColumns = Size(kMostVectors) * kLanes<Real>;
template <class Real>
inline constexpr Size kPanelSteps = Size(kPanelBytes / sizeof(Real)) / kPanelColumns<Real>;

inline constexpr Size kNearBytes = Size(1) << 19;  // a C that is larger is written block by block

// One panel: `task` holds B, the steps and the strides; a and c are at the first row.
template <class Real>
NEQUAR_INLINE void multiply_panel(Size m, Size columns, TileTask<Real>& task, const Real* a,
                                  Real* c) {
    constexpr Size lanes = kLanes<Real>;
    const Size vectors = (columns + lanes - 1) / lanes;
    const Size in_last = columns - (vectors - 1) * lanes;
    task.last = first_lanes<Real>(in_last);
    const Partition rows = partition(m, Size(most_rows(unsigned(vectors))));
    for (Size part = 0; part < rows.parts; ++part) {
        const Size height = size_of_part(rows, part);
        task.a = a;
        task.c = c;
        tile_kernel<Real>(in_last < lanes, vectors, height)(task);
        a += height * task.a_row;
        c += height * task.c_row;
    }
}

// C of contiguous rows, B read where it is.
template <class Real>
NEQUAR_INLINE void multiply_in_place(Size m, Size n, TileTask<Real>& task, const Real* a,
                                     const Real* b, Real* c) {
    if (n <= kPanelColumns<Real>) {
        task.b = b;
        multiply_panel(m, n, task, a, c);
        return;
    }
    const Partition panels = vector_panels<Real>(n, false);
    Size j = 0;
    for (Size part = 0; part < panels.parts; ++part) {
        const Size columns = size_of_part(panels, part) * kLanes<Real>;
        task.b = b + j;
        multiply_panel(m, smaller(columns, n - j), task, a, c + j);
        j += columns;
    }
}

// B packed panel by panel, as many of its rows at a time as the stack takes.
template <class Real>
__attribute__((noinline)) void multiply_packed_panels(Size m, Size n, Size k,
                                                      const Block<const Real>& b,
                                                      TileTask<Real>& task, const Real* a,
                                                      Real* c) {
    alignas(64) Real buffer[kPanelBytes / sizeof(Real)];
    const Partition panels = vector_panels<Real>(n, true);
    const Partition steps = partition(k, kPanelSteps<Real>);
    task.b = buffer;
    Size p = 0;
    for (Size part = 0; part < steps.parts; ++part) {
        task.k = size_of_part(steps, part);
        Size j = 0;
        for (Size panel = 0; panel < panels.parts; ++panel) {
            task.b_row = size_of_part(panels, panel) * kLanes<Real>;
            const Size columns = smaller(task.b_row, n - j);
            pack_panel_of_b(columns, task.b_row, task.k,
                            b.data + p * b.row_stride + j * b.column_stride, b.row_stride,
                            b.column_stride, buffer);
            multiply_panel(m, columns, task, a + p * task.a_column, c + j);
            j += columns;
        }
        p += task.k;
        task.accumulate = true;
    }
    task.b = b.data;  // the buffer ends here
}

// Whether B is best read where it is by panels.
template <class Real>
NEQUAR_INLINE bool goes_by_panels_in_place(Size n, Size k, const Block<const Real>& a) {
    if (k > kPanelSteps<Real> && n > kPanelColumns<Real>) return false;
    const Size bytes = n * k * Size(sizeof(Real));
    return bytes <= 65536 || (a.column_stride == 1 && bytes <= cache_sizes().second / 3);
}

// ---- the entries -------------------------------------------------------------------------------

template <class Real>
void clear_region(const Product<Real>& product) {
    for (Size i = 0; i < product.m; ++i) {
        const Size first = product.region == Region::upper ? i : 0;
        const Size last = product.region == Region::lower ? i + 1 : product.n;
        for (Size j = first; j < last; ++j) *moved(product.c, i, j).data = 0;
    }
}

template <class Real>
__attribute__((noinline)) void multiply_any(Size m, Size n, Size k, Real alpha,
                                            const Block<const Real>& a, const Block<const Real>& b,
                                            bool accumulate, const Block<Real>& c, Region region) {
    if (m <= 0 || n <= 0) return;
    Product<Real> product = {m, n, k, alpha, a, b, accumulate, c, region};
    if (k <= 0) {
        if (!accumulate) clear_region(product);
        return;
    }
    if (c.column_stride != 1 && c.row_stride == 1 && n > 1) {
        product.m = n;
        product.n = m;
        assign(product.a, transposed(b));
        assign(product.b, transposed(a));
        product.c = transposed(c);
        product.region = region == Region::lower   ? Region::upper
                         : region == Region::upper ? Region::lower
                                                   : Region::all;
    }
    multiply(product);
}

// Blocks go by reference and are read word by word: see assign.
template <class Real>
void gemm(Size m, Size n, Size k, Real alpha, const Block<const Real>& a,
          const Block<const Real>& b, bool accumulate, const Block<Real>& c) {
    if (c.row_stride == 1 && c.column_stride != 1 && n > 1) {
        gemm(n, m, k, alpha, transposed(b), transposed(a), accumulate, transposed(c));
        return;
    }
#if NEQUAR_VECTOR_BYTES == 64
    if (n <= kFewColumns<Real> && a.column_stride == 1 && pays_with_few_columns<Real>(m, n, k)) {
        multiply_few_columns(m, n, k, alpha, a, b, accumulate, c);
        return;
    }
#endif
    const bool in_place = b.column_stride == 1 || n == 1;
    if ((c.column_stride != 1 && n > 1) || m <= 0 || n <= 0 || k <= 0 ||
        m * n * Size(sizeof(Real)) > kNearBytes ||
        (in_place && !goes_by_panels_in_place(n, k, a))) {
        multiply_any<Real>(m, n, k, alpha, a, b, accumulate, c, Region::all);
        return;
    }
    TileTask<Real> task;
    task.k = k;
    task.a_row = a.row_stride;
    task.a_column = a.column_stride;
    task.b_row = b.row_stride;
    task.c_row = c.row_stride;
    task.alpha = alpha;
    task.accumulate = accumulate;
    task.prefetch = m * n > kNearElements;
    if (in_place)
        multiply_in_place(m, n, task, a.data, b.data, c.data);
    else
        multiply_packed_panels(m, n, k, b, task, a.data, c.data);
}

template <class Real>
void gemmt(bool lower, Size n, Size k, Real alpha, Block<const Real> a, Block<const Real> b,
           bool accumulate, Block<Real> c) {
    multiply_any<Real>(n, n, k, alpha, a, b, accumulate, c, lower ? Region::lower : Region::upper);
}

}  // namespace nequar::kernel::NEQUAR_UNIT
