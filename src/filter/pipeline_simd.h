// Pieces shared by the row and column pipeline kernels: conversions whose
// scalar forms give the same bits as the vector instructions, widening
// loads, and the narrowing packs.
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <cstdint>

#include "lumcv.h"

namespace lum::kernel::pipe {

// Float to int32 as the vector conversions do it: round to nearest even (or
// toward zero), and the integer indefinite value 0x80000000 for NaN and
// anything outside the int32 range.
inline int32_t cvtNearest(float f) { return _mm_cvtss_si32(_mm_set_ss(f)); }
inline int32_t cvtTrunc(float f) { return _mm_cvttss_si32(_mm_set_ss(f)); }

// max, then min, like _mm256_min_ps(_mm256_max_ps(v, lo), hi) for every
// value that is not NaN (the pipelines never form one).
inline float clampTo(float v, float lo, float hi) { return std::min(std::max(v, lo), hi); }

inline int16_t sat16(int32_t v) { return static_cast<int16_t>(v < -32768 ? -32768 : v > 32767 ? 32767 : v); }
inline uint16_t satU16(int32_t v) { return static_cast<uint16_t>(v < 0 ? 0 : v > 65535 ? 65535 : v); }
inline int8_t sat8(int32_t v) { return static_cast<int8_t>(v < -128 ? -128 : v > 127 ? 127 : v); }
inline uint8_t satU8(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

// Wrapping 32-bit integer arithmetic of the integer sums.
inline uint32_t wrapMul(int32_t a, int32_t b) { return static_cast<uint32_t>(a) * static_cast<uint32_t>(b); }

// ------------------------------------------------------------ loads

// 16 samples widened to 16-bit lanes.
inline __m256i load16x16(const Lum8u* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
inline __m256i load16x16(const Lum16s* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// 8 samples as floats.
inline __m256 load8f(const Lum16s* p) {
    return _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
inline __m256 load8f(const Lum16u* p) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
inline __m256 load8f(const Lum32f* p) { return _mm256_loadu_ps(p); }

inline void store16(Lum16s* q, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(q), v); }
inline void store16(Lum16u* q, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(q), v); }

// Two vectors of eight int32 (samples 0..7 and 8..15) to sixteen saturated
// 16-bit samples in order: the pack interleaves 128-bit halves
// (0-3 8-11 | 4-7 12-15), the permutation puts them back.
inline __m256i packOrdered16s(__m256i lo, __m256i hi) {
    return _mm256_permute4x64_epi64(_mm256_packs_epi32(lo, hi), 0xD8);
}
inline __m256i packOrdered16u(__m256i lo, __m256i hi) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(lo, hi), 0xD8);
}

// Sixteen ordered 16-bit samples to sixteen saturated bytes.
inline __m128i packBytesSigned(__m256i v) {
    return _mm_packs_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}
inline __m128i packBytesUnsigned(__m256i v) {
    return _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}

}  // namespace lum::kernel::pipe
