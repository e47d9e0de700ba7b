// The vector wrapper that every SIMD kernel is written over: NEQUAR_VECTOR_BYTES of doubles or
// floats, held in the compiler's own vector types. A unit that is compiled for one instruction set
// defines
//
//   NEQUAR_UNIT           its namespace: avx2, avx512, ...
//   NEQUAR_VECTOR_BYTES   16, 32 or 64
//
// and includes the kernels; where the instruction set has fused multiply-adds or masked loads, they
// are used. Without them the same source compiles to plain operations at any width, which is how
// the logic of wide tiles is tested on a narrow machine.
//
// Nothing here may leave its unit: no standard template, no inline function outside NEQUAR_UNIT.
#pragma once

#include <cstddef>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#define NEQUAR_INLINE inline __attribute__((always_inline))
#define NEQUAR_UNROLL _Pragma("GCC unroll 32")

// Vectors wider than the instruction set's registers are passed to inlined functions only.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace nequar::kernel::NEQUAR_UNIT {

using Size = std::ptrdiff_t;

template <class Real>
struct VectorTraits;

template <>
struct VectorTraits<double> {
    typedef double Type __attribute__((vector_size(NEQUAR_VECTOR_BYTES)));
    typedef double Unaligned
        __attribute__((vector_size(NEQUAR_VECTOR_BYTES), aligned(alignof(double)), may_alias));
    typedef long long Bits __attribute__((vector_size(NEQUAR_VECTOR_BYTES)));
    static constexpr long long kMagnitude = 0x7fffffffffffffff;
};

template <>
struct VectorTraits<float> {
    typedef float Type __attribute__((vector_size(NEQUAR_VECTOR_BYTES)));
    typedef float Unaligned
        __attribute__((vector_size(NEQUAR_VECTOR_BYTES), aligned(alignof(float)), may_alias));
    typedef int Bits __attribute__((vector_size(NEQUAR_VECTOR_BYTES)));
    static constexpr int kMagnitude = 0x7fffffff;
};

template <class Real>
using Vector = typename VectorTraits<Real>::Type;

template <class Real>
inline constexpr Size kLanes = NEQUAR_VECTOR_BYTES / Size(sizeof(Real));

template <class Real>
NEQUAR_INLINE Vector<Real> load(const Real* p) {
    return *reinterpret_cast<const typename VectorTraits<Real>::Unaligned*>(p);
}

template <class Real>
NEQUAR_INLINE void store(Real* p, Vector<Real> v) {
    *reinterpret_cast<typename VectorTraits<Real>::Unaligned*>(p) = v;
}

NEQUAR_INLINE Vector<double> broadcast(double x) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_set1_pd(x);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__AVX__)
    return _mm256_set1_pd(x);
#else
    Vector<double> v;
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<double>; ++i) v[i] = x;
    return v;
#endif
}

NEQUAR_INLINE Vector<float> broadcast(float x) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_set1_ps(x);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__AVX__)
    return _mm256_set1_ps(x);
#else
    Vector<float> v;
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<float>; ++i) v[i] = x;
    return v;
#endif
}

// a b + c
NEQUAR_INLINE Vector<double> multiply_add(Vector<double> a, Vector<double> b, Vector<double> c) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_fmadd_pd(a, b, c);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__FMA__)
    return _mm256_fmadd_pd(a, b, c);
#else
    return a * b + c;
#endif
}

NEQUAR_INLINE Vector<float> multiply_add(Vector<float> a, Vector<float> b, Vector<float> c) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_fmadd_ps(a, b, c);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__FMA__)
    return _mm256_fmadd_ps(a, b, c);
#else
    return a * b + c;
#endif
}

// c - a b
NEQUAR_INLINE Vector<double> multiply_subtract_from(Vector<double> a, Vector<double> b,
                                                    Vector<double> c) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_fnmadd_pd(a, b, c);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__FMA__)
    return _mm256_fnmadd_pd(a, b, c);
#else
    return c - a * b;
#endif
}

NEQUAR_INLINE Vector<float> multiply_subtract_from(Vector<float> a, Vector<float> b,
                                                   Vector<float> c) {
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
    return _mm512_fnmadd_ps(a, b, c);
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__FMA__)
    return _mm256_fnmadd_ps(a, b, c);
#else
    return c - a * b;
#endif
}

template <class Real>
NEQUAR_INLINE Vector<Real> magnitude(Vector<Real> v) {
    using Bits = typename VectorTraits<Real>::Bits;
    return reinterpret_cast<Vector<Real>>(reinterpret_cast<Bits>(v) &
                                          VectorTraits<Real>::kMagnitude);
}

// Lane by lane the larger (lesser) one; b where either is NaN, and where both are zero.
template <class Real>
NEQUAR_INLINE Vector<Real> larger(Vector<Real> a, Vector<Real> b) {
    return a > b ? a : b;
}
template <class Real>
NEQUAR_INLINE Vector<Real> lesser(Vector<Real> a, Vector<Real> b) {
    return a < b ? a : b;
}
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
template <>
NEQUAR_INLINE Vector<double> larger<double>(Vector<double> a, Vector<double> b) {
    return _mm512_maskz_max_pd(0xff, a, b);  // unmasked, g++ 12 warns of an operand of its own
}
template <>
NEQUAR_INLINE Vector<float> larger<float>(Vector<float> a, Vector<float> b) {
    return _mm512_maskz_max_ps(0xffff, a, b);
}
template <>
NEQUAR_INLINE Vector<double> lesser<double>(Vector<double> a, Vector<double> b) {
    return _mm512_maskz_min_pd(0xff, a, b);  // unmasked, g++ 12 warns of an operand of its own
}
template <>
NEQUAR_INLINE Vector<float> lesser<float>(Vector<float> a, Vector<float> b) {
    return _mm512_maskz_min_ps(0xffff, a, b);
}
#elif NEQUAR_VECTOR_BYTES == 32 && defined(__AVX__)
template <>
NEQUAR_INLINE Vector<double> larger<double>(Vector<double> a, Vector<double> b) {
    return _mm256_max_pd(a, b);
}
template <>
NEQUAR_INLINE Vector<float> larger<float>(Vector<float> a, Vector<float> b) {
    return _mm256_max_ps(a, b);
}
template <>
NEQUAR_INLINE Vector<double> lesser<double>(Vector<double> a, Vector<double> b) {
    return _mm256_min_pd(a, b);
}
template <>
NEQUAR_INLINE Vector<float> lesser<float>(Vector<float> a, Vector<float> b) {
    return _mm256_min_ps(a, b);
}
#endif

// Halves are added to halves, in every variant.
template <class Real>
NEQUAR_INLINE Real sum_of_lanes(Vector<Real> v) {
    Real sums[kLanes<Real>];
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) sums[i] = v[i];
    NEQUAR_UNROLL for (Size half = kLanes<Real> / 2; half > 0; half /= 2) {
        NEQUAR_UNROLL for (Size i = 0; i < half; ++i) sums[i] += sums[i + half];
    }
    return sums[0];
}
#if NEQUAR_VECTOR_BYTES >= 32 && defined(__AVX__)
NEQUAR_INLINE double sum_of_half(__m256d v) {
    const __m128d sum = _mm256_castpd256_pd128(v) + _mm256_extractf128_pd(v, 1);
    return sum[0] + sum[1];
}
NEQUAR_INLINE float sum_of_half(__m256 v) {
    __m128 sum = _mm256_castps256_ps128(v) + _mm256_extractf128_ps(v, 1);
    sum += _mm_movehl_ps(sum, sum);
    return sum[0] + sum[1];
}
#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)
template <>
NEQUAR_INLINE double sum_of_lanes<double>(Vector<double> v) {
    return sum_of_half(__builtin_shufflevector(v, v, 0, 1, 2, 3) +
                       __builtin_shufflevector(v, v, 4, 5, 6, 7));
}
template <>
NEQUAR_INLINE float sum_of_lanes<float>(Vector<float> v) {
    return sum_of_half(__builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7) +
                       __builtin_shufflevector(v, v, 8, 9, 10, 11, 12, 13, 14, 15));
}
#elif NEQUAR_VECTOR_BYTES == 32
template <>
NEQUAR_INLINE double sum_of_lanes<double>(Vector<double> v) {
    return sum_of_half(v);
}
template <>
NEQUAR_INLINE float sum_of_lanes<float>(Vector<float> v) {
    return sum_of_half(v);
}
#endif
#endif

// ---- the first lanes of a vector ----------------------------------------------------------------
// The remainder of a row that is shorter than a vector: `count` lanes, 0 < count <= lanes, are read
// or written; memory past them is not touched, and lanes past them read as zero.

template <class Real>
struct FirstLanes {
    Size count;
#if NEQUAR_VECTOR_BYTES == 32 && defined(__AVX2__)
    __m256i mask;
#endif
};

#if NEQUAR_VECTOR_BYTES == 64 && defined(__AVX512F__)

template <class Real>
NEQUAR_INLINE FirstLanes<Real> first_lanes(Size count) {
    return {count};
}
NEQUAR_INLINE __mmask8 mask_of(FirstLanes<double> first) {
    return static_cast<__mmask8>((1u << static_cast<unsigned>(first.count)) - 1u);
}
NEQUAR_INLINE __mmask16 mask_of(FirstLanes<float> first) {
    return static_cast<__mmask16>((1u << static_cast<unsigned>(first.count)) - 1u);
}
NEQUAR_INLINE Vector<double> load(const double* p, FirstLanes<double> first) {
    return _mm512_maskz_loadu_pd(mask_of(first), p);
}
NEQUAR_INLINE Vector<float> load(const float* p, FirstLanes<float> first) {
    return _mm512_maskz_loadu_ps(mask_of(first), p);
}
NEQUAR_INLINE void store(double* p, Vector<double> v, FirstLanes<double> first) {
    _mm512_mask_storeu_pd(p, mask_of(first), v);
}
NEQUAR_INLINE void store(float* p, Vector<float> v, FirstLanes<float> first) {
    _mm512_mask_storeu_ps(p, mask_of(first), v);
}

#elif NEQUAR_VECTOR_BYTES == 32 && defined(__AVX2__)

alignas(32) inline constexpr int kLaneMasks[16] = {-1, -1, -1, -1, -1, -1, -1, -1,
                                                   0,  0,  0,  0,  0,  0,  0,  0};

template <class Real>
NEQUAR_INLINE FirstLanes<Real> first_lanes(Size count) {
    const int* start = kLaneMasks + 8 - count * Size(sizeof(Real) / sizeof(int));
    return {count, _mm256_loadu_si256(reinterpret_cast<const __m256i_u*>(start))};
}
NEQUAR_INLINE Vector<double> load(const double* p, FirstLanes<double> first) {
    return _mm256_maskload_pd(p, first.mask);
}
NEQUAR_INLINE Vector<float> load(const float* p, FirstLanes<float> first) {
    return _mm256_maskload_ps(p, first.mask);
}
// Masked stores are slow on some CPUs: whole halves and quarters instead.
NEQUAR_INLINE void store(double* p, Vector<double> v, FirstLanes<double> first) {
    if (first.count == kLanes<double>) {
        store(p, v);
        return;
    }
    __m128d part = _mm256_castpd256_pd128(v);
    if (first.count & 2) {
        _mm_storeu_pd(p, part);
        p += 2;
        part = _mm256_extractf128_pd(v, 1);
    }
    if (first.count & 1) _mm_store_sd(p, part);
}
NEQUAR_INLINE void store(float* p, Vector<float> v, FirstLanes<float> first) {
    if (first.count == kLanes<float>) {
        store(p, v);
        return;
    }
    __m128 part = _mm256_castps256_ps128(v);
    if (first.count & 4) {
        _mm_storeu_ps(p, part);
        p += 4;
        part = _mm256_extractf128_ps(v, 1);
    }
    if (first.count & 2) {
        _mm_storel_pi(reinterpret_cast<__m64*>(p), part);
        p += 2;
        part = _mm_movehl_ps(part, part);
    }
    if (first.count & 1) _mm_store_ss(p, part);
}

#else

template <class Real>
NEQUAR_INLINE FirstLanes<Real> first_lanes(Size count) {
    return {count};
}
template <class Real>
NEQUAR_INLINE Vector<Real> load(const Real* p, FirstLanes<Real> first) {
    Vector<Real> v = {};
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        if (i < first.count) v[i] = p[i];
    }
    return v;
}
template <class Real>
NEQUAR_INLINE void store(Real* p, Vector<Real> v, FirstLanes<Real> first) {
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        if (i < first.count) p[i] = v[i];
    }
}

#endif

NEQUAR_INLINE void prefetch(const void* p) {
    __builtin_prefetch(p, 0, 3);
}
NEQUAR_INLINE void prefetch_for_writing(const void* p) {
    __builtin_prefetch(p, 1, 3);
}

}  // namespace nequar::kernel::NEQUAR_UNIT
