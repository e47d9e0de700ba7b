// Level 1 sums and searches. Contiguous vectors go into several accumulators, so that neither the
// latency of the addition nor its order is that of a single chain; strided ones into four.
#pragma once

#include "kernel/simd/shuffle.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr unsigned kAccumulators = 8;

// The vector of the stretch that begins at some i, read from any of the arrays; past the end its
// lanes are zero, also those of a constant.
template <class Real>
struct WholeVector {
    Size at;
    NEQUAR_INLINE Vector<Real> operator()(const Real* p) const { return load(p + at); }
    NEQUAR_INLINE Vector<Real> constant(Real c) const { return broadcast(c); }
};
template <class Real>
struct LastVector {
    Size at;
    FirstLanes<Real> lanes;
    NEQUAR_INLINE Vector<Real> operator()(const Real* p) const { return load(p + at, lanes); }
    NEQUAR_INLINE Vector<Real> constant(Real c) const {
        alignas(64) Real filled[unsigned(kLanes<Real>)];
        store(filled, broadcast(c));
        return load(static_cast<const Real*>(filled), lanes);
    }
};

// The sum over i of what step(acc, at) adds, `at` one of these vectors. The order depends on n
// alone, not on where the vectors lie in memory.
template <class Real, class Step>
NEQUAR_INLINE Real accumulate_vectors(Size n, Step step) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size group = Size(kAccumulators) * lanes;
    Size i = 0;
    Vector<Real> sum = {};
    if (n >= 2 * group) {
        Vector<Real> acc[kAccumulators] = {};
        for (; i + group <= n; i += group) {
            NEQUAR_UNROLL for (unsigned u = 0; u < kAccumulators; ++u) {
                acc[u] = step(acc[u], WholeVector<Real>{i + Size(u) * lanes});
            }
        }
        NEQUAR_UNROLL for (unsigned half = kAccumulators / 2; half > 0; half /= 2) {
            NEQUAR_UNROLL for (unsigned u = 0; u < half; ++u) acc[u] += acc[u + half];
        }
        sum = acc[0];
    }
    if (i + 2 * lanes <= n) {
        Vector<Real> acc[4] = {};
        for (; i + 4 * lanes <= n; i += 4 * lanes) {
            NEQUAR_UNROLL for (unsigned u = 0; u < 4; ++u) {
                acc[u] = step(acc[u], WholeVector<Real>{i + Size(u) * lanes});
            }
        }
        if (i + 2 * lanes <= n) {
            NEQUAR_UNROLL for (unsigned u = 0; u < 2; ++u) {
                acc[u] = step(acc[u], WholeVector<Real>{i + Size(u) * lanes});
            }
            i += 2 * lanes;
        }
        sum += (acc[0] + acc[2]) + (acc[1] + acc[3]);
    }
    if (i + lanes <= n) {
        sum = step(sum, WholeVector<Real>{i});
        i += lanes;
    }
    if (i < n) {
        sum = step(sum, LastVector<Real>{i, first_lanes<Real>(n - i)});
    }
    return sum_of_lanes<Real>(sum);
}

// The sum of term(i), in four chains.
template <class Real, class Term>
NEQUAR_INLINE Real accumulate_elements(Size n, Term term) {
    Real acc[4] = {};
    Size i = 0;
    for (; i + 4 <= n; i += 4) {
        NEQUAR_UNROLL for (Size u = 0; u < 4; ++u) acc[u] += term(i + u);
    }
    for (; i < n; ++i) acc[0] += term(i);
    return (acc[0] + acc[2]) + (acc[1] + acc[3]);
}

template <class Real>
Real sum(Size n, const Real* x) {
    return accumulate_vectors<Real>(n, [=](Vector<Real> acc, auto at) { return acc + at(x); });
}

template <class Real>
Real squares_about(Size n, const Real* x, Real centre) {
    return accumulate_vectors<Real>(n, [=](Vector<Real> acc, auto at) {
        const Vector<Real> v = at(x) - at.constant(centre);
        return multiply_add(v, v, acc);
    });
}

// Down to one lane.
template <unsigned half, class Real, class Better>
NEQUAR_INLINE Real best_lane(Vector<Real> v, Better better) {
    Vector<Real> other = v;
    exchange<half>(v, other);
    v = better(v, other);
    if constexpr (half > 1) return best_lane<half / 2, Real>(v, better);
    return v[0];
}

// The best of n elements and `other`, better(a, b) lane by lane; NaN is none better.
template <class Real, class Better>
NEQUAR_INLINE Real extremum(Size n, const Real* x, Real other, Better better) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> best[kAccumulators];
    NEQUAR_UNROLL for (unsigned u = 0; u < kAccumulators; ++u) best[u] = broadcast(other);
    Size i = 0;
    for (; i + Size(kAccumulators) * lanes <= n; i += Size(kAccumulators) * lanes) {
        NEQUAR_UNROLL for (unsigned u = 0; u < kAccumulators; ++u) {
            best[u] = better(load(x + i + Size(u) * lanes), best[u]);
        }
    }
    for (; i + lanes <= n; i += lanes) best[0] = better(load(x + i), best[0]);
    if (i < n && n >= lanes) {
        best[1] = better(load(x + n - lanes), best[1]);  // some elements once more
    } else {
        for (; i < n; ++i) best[1] = better(broadcast(x[i]), best[1]);
    }
    NEQUAR_UNROLL for (unsigned half = kAccumulators / 2; half > 0; half /= 2) {
        NEQUAR_UNROLL for (unsigned u = 0; u < half; ++u) best[u] = better(best[u], best[u + half]);
    }
    return best_lane<unsigned(kLanes<Real>) / 2, Real>(best[0], better);
}

template <class Real>
Real largest(Size n, const Real* x, Real other) {
    return extremum(n, x, other, [](Vector<Real> a, Vector<Real> b) { return larger<Real>(a, b); });
}

template <class Real>
Real smallest(Size n, const Real* x, Real other) {
    return extremum(n, x, other, [](Vector<Real> a, Vector<Real> b) { return lesser<Real>(a, b); });
}

template <class Real>
Real dot(Size n, const Real* x, Size sx, const Real* y, Size sy) {
    if (sx == 1 && sy == 1) {
        return accumulate_vectors<Real>(
            n, [=](Vector<Real> acc, auto at) { return multiply_add(at(x), at(y), acc); });
    }
    return accumulate_elements<Real>(n, [=](Size i) { return x[i * sx] * y[i * sy]; });
}

template <class Real>
Real sum_of_magnitudes(Size n, const Real* x, Size sx) {
    if (sx == 1) {
        return accumulate_vectors<Real>(
            n, [=](Vector<Real> acc, auto at) { return acc + magnitude<Real>(at(x)); });
    }
    return accumulate_elements<Real>(n, [=](Size i) {
        const Real xi = x[i * sx];
        return xi < 0 ? -xi : xi;
    });
}

template <class Real>
Real sum_of_squares(Size n, const Real* x, Size sx) {
    if (sx == 1) {
        return accumulate_vectors<Real>(n, [=](Vector<Real> acc, auto at) {
            const Vector<Real> v = at(x);
            return multiply_add(v, v, acc);
        });
    }
    return accumulate_elements<Real>(n, [=](Size i) { return x[i * sx] * x[i * sx]; });
}

template <class Real>
Real distance_squared(Size n, const Real* x, Size sx, const Real* y, Size sy) {
    if (sx == 1 && sy == 1) {
        return accumulate_vectors<Real>(n, [=](Vector<Real> acc, auto at) {
            const Vector<Real> v = at(x) - at(y);
            return multiply_add(v, v, acc);
        });
    }
    return accumulate_elements<Real>(n, [=](Size i) {
        const Real difference = x[i * sx] - y[i * sy];
        return difference * difference;
    });
}

// The distances of x from `rows` contiguous rows at once.
template <class Real, unsigned rows>
NEQUAR_INLINE void squared_distances_of_rows(Size d, const Real* x, const Real* a, Size step,
                                             Real* out) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> acc[rows] = {};
    Size k = 0;
    for (; k + lanes <= d; k += lanes) {
        const Vector<Real> xk = load(x + k);
        NEQUAR_UNROLL for (unsigned r = 0; r < rows; ++r) {
            const Vector<Real> v = xk - load(a + Size(r) * step + k);
            acc[r] = multiply_add(v, v, acc[r]);
        }
    }
    if (k < d) {
        const FirstLanes<Real> last = first_lanes<Real>(d - k);
        const Vector<Real> xk = load(x + k, last);
        NEQUAR_UNROLL for (unsigned r = 0; r < rows; ++r) {
            const Vector<Real> v = xk - load(a + Size(r) * step + k, last);
            acc[r] = multiply_add(v, v, acc[r]);
        }
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < rows; ++r) out[r] = sum_of_lanes<Real>(acc[r]);
}

// Where columns are contiguous: a stretch of out grows by a few columns at a time, so that memory
// is read in a few streams.
template <class Real>
NEQUAR_INLINE void squared_distances_by_columns(Size n, Size d, const Real* x, const Real* a,
                                                Size step, Real* out) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size stretch = 1024;
    constexpr Size columns = 8;
    for (Size start = 0; start < n; start += stretch) {
        const Size end = start + stretch < n ? start + stretch : n;
        Size k = 0;
        do {
            const Size count = d - k < columns ? d - k : columns;
            const auto grow = [&](Size i, auto load_at, auto store_at) {
                Vector<Real> acc = {};
                if (k > 0) acc = load_at(out + i);
                for (Size j = k; j < k + count; ++j) {
                    const Vector<Real> v = broadcast(x[j]) - load_at(a + j * step + i);
                    acc = multiply_add(v, v, acc);
                }
                store_at(out + i, acc);
            };
            Size i = start;
            for (; i + lanes <= end; i += lanes) {
                grow(
                    i, [](const Real* p) { return load(p); },
                    [](Real* p, Vector<Real> v) { store(p, v); });
            }
            if (i < end) {
                const FirstLanes<Real> last = first_lanes<Real>(end - i);
                grow(
                    i, [last](const Real* p) { return load(p, last); },
                    [last](Real* p, Vector<Real> v) { store(p, v, last); });
            }
            k += count;
        } while (k < d);
    }
}

template <class Real>
void squared_distances(Size n, Size d, const Real* x, Block<const Real> a, Real* out) {
    if (a.row_stride == 1 && (a.column_stride != 1 || d == 1)) {
        squared_distances_by_columns(n, d, x, a.data, a.column_stride, out);
        return;
    }
    Size i = 0;
    if (a.column_stride == 1) {
        for (; i + 4 <= n; i += 4) {
            squared_distances_of_rows<Real, 4>(d, x, a.data + i * a.row_stride, a.row_stride,
                                               out + i);
        }
    }
    for (; i < n; ++i)
        out[i] = distance_squared(d, x, 1, a.data + i * a.row_stride, a.column_stride);
}

template <class Real>
NEQUAR_INLINE Real magnitude_of(Real x) {
    return x < 0 ? -x : x;
}

// The largest magnitude of n contiguous elements; -1 when nothing but NaN is there.
template <class Real>
NEQUAR_INLINE Real largest_magnitude(Size n, const Real* x) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> largest[4];
    NEQUAR_UNROLL for (unsigned u = 0; u < 4; ++u) largest[u] = broadcast(Real(-1));
    Size i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes) {
        NEQUAR_UNROLL for (unsigned u = 0; u < 4; ++u) {
            largest[u] = larger<Real>(magnitude<Real>(load(x + i + u * lanes)), largest[u]);
        }
    }
    for (; i + lanes <= n; i += lanes) {
        largest[0] = larger<Real>(magnitude<Real>(load(x + i)), largest[0]);
    }
    largest[0] =
        larger<Real>(larger<Real>(largest[0], largest[1]), larger<Real>(largest[2], largest[3]));
    Real result = -1;
    NEQUAR_UNROLL for (Size lane = 0; lane < lanes; ++lane) {
        if (largest[0][lane] > result) result = largest[0][lane];
    }
    for (; i < n; ++i) {
        if (magnitude_of(x[i]) > result) result = magnitude_of(x[i]);
    }
    return result;
}

// A stretch is searched for its largest magnitude, and again for the place only when that is above
// what came before.
template <class Real>
Size index_of_largest_magnitude(Size n, const Real* x, Size sx) {
    if (n <= 0) return -1;
    Size index = 0;
    Real best = -1;
    if (sx == 1) {
        constexpr Size stretch = 512;
        for (Size start = 0; start < n; start += stretch) {
            const Size count = n - start < stretch ? n - start : stretch;
            const Real here = largest_magnitude(count, x + start);
            if (here > best) {
                best = here;
                index = start;
                while (magnitude_of(x[index]) != best) ++index;
            }
        }
        return index;
    }
    for (Size i = 0; i < n; ++i) {
        const Real here = magnitude_of(x[i * sx]);
        if (here > best) {
            best = here;
            index = i;
        }
    }
    return index;
}

}  // namespace nequar::kernel::NEQUAR_UNIT
