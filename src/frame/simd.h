// AVX2 helpers shared by the kernels: lane masks for row tails and typed
// loads and stores, so that one templated row body serves every sample type.
//
// A row ends in whole vectors, then one masked pass in 32-bit lanes over what
// is left, then at most three single samples (8u) or one (16u). Masked loads
// read nothing, and masked stores write nothing, in the lanes that are off, so
// no byte past the row's last sample is touched.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace lum::simd {

// Eight lanes on, then eight off: loading eight words at kLaneMask + 8 - n
// gives a mask with the first n lanes on (0 <= n <= 8).
alignas(64) inline constexpr int32_t kLaneMask[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};

inline __m256i firstLanes(int n) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(kLaneMask + 8 - n));
}

// Typed access to 256-bit vectors: integers travel in __m256i, floats in
// __m256. Masked forms take a 32-bit lane mask.
template <class T>
struct Vec {
    using type = __m256i;
    static constexpr int lanes = 32 / static_cast<int>(sizeof(T));
    static type load(const T* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static void store(T* p, type v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    static type loadMasked(const T* p, __m256i m) { return _mm256_maskload_epi32(reinterpret_cast<const int*>(p), m); }
    static void storeMasked(T* p, __m256i m, type v) { _mm256_maskstore_epi32(reinterpret_cast<int*>(p), m, v); }
    static type set1(T v) {
        if constexpr (sizeof(T) == 1) return _mm256_set1_epi8(static_cast<char>(v));
        else if constexpr (sizeof(T) == 2) return _mm256_set1_epi16(static_cast<short>(v));
        else return _mm256_set1_epi32(static_cast<int>(v));
    }
};

template <>
struct Vec<float> {
    using type = __m256;
    static constexpr int lanes = 8;
    static type load(const float* p) { return _mm256_loadu_ps(p); }
    static void store(float* p, type v) { _mm256_storeu_ps(p, v); }
    static type loadMasked(const float* p, __m256i m) { return _mm256_maskload_ps(p, m); }
    static void storeMasked(float* p, __m256i m, type v) { _mm256_maskstore_ps(p, m, v); }
    static type set1(float v) { return _mm256_set1_ps(v); }
};

// Row strip-mining for element-wise work of one sample type: calls
// body.vec(x) for each full vector, body.masked(x, mask, lanes32) once for
// the remainder that fills whole 32-bit lanes, and body.one(x) for the last
// samples. Two vectors a step in the main run.
template <class T, class Body>
inline void stripMine(int n, Body&& body) {
    constexpr int V = Vec<T>::lanes;
    int x = 0;
    for (; x + 2 * V <= n; x += 2 * V) {
        body.vec(x);
        body.vec(x + V);
    }
    if (x + V <= n) {
        body.vec(x);
        x += V;
    }
    const int lanes32 = (n - x) * static_cast<int>(sizeof(T)) / 4;
    if (lanes32 > 0) {
        body.masked(x, firstLanes(lanes32), lanes32);
        x += lanes32 * 4 / static_cast<int>(sizeof(T));
    }
    for (; x < n; ++x) body.one(x);
}

}  // namespace lum::simd
