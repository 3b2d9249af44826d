// Vector pieces shared by the integral and window kernels: masked access to
// 32-bit and 64-bit elements, and rows filled with one value.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "frame/simd.h"
#include "lumcv.h"

namespace lum::kernel::isimd {

// Stand-in for the squared result of members that have none.
struct NoSqr {};

// First n of four 32-bit lanes on (0 <= n <= 4).
inline __m128i firstLanes4(int n) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(simd::kLaneMask + 8 - n));
}

// Masks for the two halves of eight 64-bit elements, the first n on
// (0 <= n <= 8): each element takes two 32-bit lanes.
inline __m256i firstDoublesLow(int n) { return simd::firstLanes(2 * (n < 4 ? n : 4)); }
inline __m256i firstDoublesHigh(int n) { return simd::firstLanes(2 * (n > 4 ? n - 4 : 0)); }

// 32-bit elements (Lum32s or Lum32f) as __m256i, and 64-bit floats.
template <class T>
struct Lanes;

template <>
struct Lanes<Lum32s> {
    static __m256i load(const Lum32s* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static __m256i load(const Lum32s* p, __m256i m) { return _mm256_maskload_epi32(p, m); }
    static void store(Lum32s* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    static void store(Lum32s* p, __m256i m, __m256i v) { _mm256_maskstore_epi32(p, m, v); }
};

template <>
struct Lanes<Lum32f> {
    static __m256 load(const Lum32f* p) { return _mm256_loadu_ps(p); }
    static __m256 load(const Lum32f* p, __m256i m) { return _mm256_maskload_ps(p, m); }
    static void store(Lum32f* p, __m256 v) { _mm256_storeu_ps(p, v); }
    static void store(Lum32f* p, __m256i m, __m256 v) { _mm256_maskstore_ps(p, m, v); }
};

template <>
struct Lanes<Lum64f> {
    static __m256d load(const Lum64f* p) { return _mm256_loadu_pd(p); }
    static __m256d load(const Lum64f* p, __m256i m) { return _mm256_maskload_pd(p, m); }
    static void store(Lum64f* p, __m256d v) { _mm256_storeu_pd(p, v); }
    static void store(Lum64f* p, __m256i m, __m256d v) { _mm256_maskstore_pd(p, m, v); }
};

inline __m256i splat(Lum32s v) { return _mm256_set1_epi32(v); }
inline __m256 splat(Lum32f v) { return _mm256_set1_ps(v); }
inline __m256d splat(Lum64f v) { return _mm256_set1_pd(v); }

// n elements of one value: whole vectors, then one masked store.
template <class T>
inline void fillRow(T* p, int n, T value) {
    constexpr int per = 32 / static_cast<int>(sizeof(T));
    const auto v = splat(value);
    int x = 0;
    for (; x + per <= n; x += per) Lanes<T>::store(p + x, v);
    if (x < n) Lanes<T>::store(p + x, simd::firstLanes((n - x) * static_cast<int>(sizeof(T)) / 4), v);
}

}  // namespace lum::kernel::isimd
