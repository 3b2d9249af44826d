// Per-pixel float work over rows whose images have different sample types:
// one or two sources of 8u, 16u or 32f read as floats (8 and 16 bit values
// convert exactly), an optional 8u mask, a 32f image read and a 32f image
// written (the same one for in-place members). An op gives the new 32f value
// of a pixel, in a vector form and a scalar form that compute the same bits.
//
// A row is walked as in stripMine, after single pixels up to the first
// 32-byte boundary of the 32f image read: vectors of 8 pixels, two a step
// (four with a mask, which is loaded and compared 32 bytes at once); then one
// masked pass over what is left, in whole 32-bit lanes of every image (so a
// multiple of 4 pixels where an 8u image takes part, of 2 where the narrowest
// is 16u); then the last 1 to 3 pixels one by one. The masked pass reads
// nothing and writes nothing in the lanes that are off, the scalar pixels
// read exactly their own samples: nothing past a row's last sample is
// touched, and no vector overlaps one already stored, as in-place
// accumulation needs.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "frame/rows.h"
#include "frame/simd.h"

namespace lum::simd {

// ------------------------------------------------------------ loads as float

inline __m256 loadAsFloat(const uint8_t* p) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
inline __m256 loadAsFloat(const uint16_t* p) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
inline __m256 loadAsFloat(const float* p) { return _mm256_loadu_ps(p); }

// The first k of eight samples, k filling whole 32-bit lanes of the image;
// the other lanes are 0.0 and their bytes are not read.
inline __m256 loadAsFloatFirst(const uint8_t* p, int k) {
    const __m128i on = _mm256_castsi256_si128(firstLanes(k / 4));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_maskload_epi32(reinterpret_cast<const int*>(p), on)));
}
inline __m256 loadAsFloatFirst(const uint16_t* p, int k) {
    const __m128i on = _mm256_castsi256_si128(firstLanes(k / 2));
    return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_maskload_epi32(reinterpret_cast<const int*>(p), on)));
}
inline __m256 loadAsFloatFirst(const float* p, int k) { return _mm256_maskload_ps(p, firstLanes(k)); }

inline float asFloat(uint8_t v) { return static_cast<float>(v); }
inline float asFloat(uint16_t v) { return static_cast<float>(v); }
inline float asFloat(float v) { return v; }

// A load that the compiler keeps as one instruction instead of folding it
// into every operation that uses the value: an op that reads the 32f image
// twice (s - d, then + d) would otherwise load it twice just before storing
// to the same address, which costs a quarter of the loop's time.
inline __m256 loadOnce(const float* p) {
    return _mm256_castsi256_ps(_mm256_lddqu_si256(reinterpret_cast<const __m256i*>(p)));
}

// ------------------------------------------------------------ mask lanes

// The lanes whose mask byte is zero, all ones: the bytes are compared with
// zero and the results sign-extended to 32-bit lanes.
inline __m256 unselectedLanes(__m128i maskBytes) {
    return _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_cmpeq_epi8(maskBytes, _mm_setzero_si128())));
}
inline __m256 unselectedLanes(const uint8_t* m) {
    return unselectedLanes(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(m)));
}
// The first k (a multiple of 4) of eight mask bytes; the lanes past k count
// as unselected and their bytes are not read.
inline __m256 unselectedLanesFirst(const uint8_t* m, int k) {
    const __m128i on = _mm256_castsi256_si128(firstLanes(k / 4));
    return unselectedLanes(_mm_maskload_epi32(reinterpret_cast<const int*>(m), on));
}

// The per-pixel coefficient of a masked op: `base` where the mask selects,
// +0.0 where it does not, by an AND of the lane mask with the base's bits.
// The scalar form is the same AND on one pixel.
inline __m256 maskedCoefficient(__m256 unselected, __m256 base) { return _mm256_andnot_ps(unselected, base); }
inline float maskedCoefficient(bool selected, float base) { return selected ? base : 0.0f; }

// ------------------------------------------------------------ rows

// One row: out[x] = op(s1[x], s2[x], d[x], c[x]) with c the coefficient
// (`base`, masked by the mask where there is one). With one source, s2 is s1.
template <class S, class Op, bool TwoSources, bool Masked>
struct PixelRow {
    static constexpr bool masks = Masked;
    // Pixels of the masked pass: whole 32-bit lanes of the narrowest image.
    static constexpr int granule = (Masked || sizeof(S) == 1) ? 4 : static_cast<int>(4 / sizeof(S));

    const S* a;
    const S* b;
    const uint8_t* m;
    const float* d;
    float* out;
    const Op& op;
    __m256 baseV;
    float base;

    __m256 coefficient(__m256 unselected) const { return Masked ? maskedCoefficient(unselected, baseV) : baseV; }

    void vec(int x) const { vecWith(x, Masked ? unselectedLanes(m + x) : _mm256_setzero_ps()); }
    // Four vectors of a masked row with one load and one compare of the
    // mask's 32 bytes.
    void vec4(int x) const {
        const __m256i zero =
            _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(m + x)), _mm256_setzero_si256());
        const __m128i lo = _mm256_castsi256_si128(zero), hi = _mm256_extracti128_si256(zero, 1);
        vecWith(x, _mm256_castsi256_ps(_mm256_cvtepi8_epi32(lo)));
        vecWith(x + 8, _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(lo, lo))));
        vecWith(x + 16, _mm256_castsi256_ps(_mm256_cvtepi8_epi32(hi)));
        vecWith(x + 24, _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(hi, hi))));
    }
    void vecWith(int x, __m256 unselected) const {
        const __m256 s1 = loadAsFloat(a + x);
        const __m256 s2 = TwoSources ? loadAsFloat(b + x) : s1;
        _mm256_storeu_ps(out + x, op.vec(s1, s2, loadOnce(d + x), coefficient(unselected)));
    }
    void masked(int x, int k) const {
        const __m256i lanes = firstLanes(k);
        const __m256 s1 = loadAsFloatFirst(a + x, k);
        const __m256 s2 = TwoSources ? loadAsFloatFirst(b + x, k) : s1;
        const __m256 c = coefficient(Masked ? unselectedLanesFirst(m + x, k) : _mm256_setzero_ps());
        _mm256_maskstore_ps(out + x, lanes, op.vec(s1, s2, _mm256_maskload_ps(d + x, lanes), c));
    }
    void one(int x) const {
        const float s1 = asFloat(a[x]);
        const float s2 = TwoSources ? asFloat(b[x]) : s1;
        const float c = Masked ? maskedCoefficient(m[x] != 0, base) : base;
        out[x] = op.one(s1, s2, d[x], c);
    }
};

// Pixels to run one by one before the 32f image read lies on a 32-byte
// boundary: none unless its pointer is a multiple of 4 and at least 16
// pixels remain after them.
inline int pixelsToAlign(const float* d, int n) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(d);
    if ((address & 3) != 0) return 0;
    const int peel = static_cast<int>(((0 - address) & 31) >> 2);
    return n - peel >= 16 ? peel : 0;
}

template <class Row>
inline void walkPixelRow(int n, const Row& row) {
    int x = 0;
    for (const int peel = pixelsToAlign(row.d, n); x < peel; ++x) row.one(x);
    if constexpr (Row::masks)
        for (; x + 32 <= n; x += 32) row.vec4(x);
    for (; x + 16 <= n; x += 16) {
        row.vec(x);
        row.vec(x + 8);
    }
    if (x + 8 <= n) {
        row.vec(x);
        x += 8;
    }
    const int k = (n - x) & ~(Row::granule - 1);
    if (k > 0) {
        row.masked(x, k);
        x += k;
    }
    for (; x < n; ++x) row.one(x);
}

// The images of one call. b and m may be null where the op has no second
// source or no mask. The rows of d advance by dStep, those of out by outStep.
template <class S>
struct PixelImages {
    const S* a;
    int aStep;
    const S* b;
    int bStep;
    const uint8_t* m;
    int mStep;
    const float* d;
    int dStep;
    float* out;
    int outStep;
};

// Runs op over n x height pixels. Where every row follows the previous one
// without a gap in every image, the rows are run as one.
template <class S, class Op, bool TwoSources, bool Masked>
void pixelRows(const PixelImages<S>& im, int n, int height, const Op& op, float base) {
    const int64_t n64 = n;
    const int64_t sourceRow = n64 * static_cast<int64_t>(sizeof(S)), floatRow = n64 * 4;
    const bool narrowFollow = im.aStep == sourceRow && (!TwoSources || im.bStep == sourceRow) &&
                              (!Masked || im.mStep == n64);
    if (narrowFollow && floatRow <= INT32_MAX) joinRows(n, height, static_cast<int>(floatRow), im.dStep, im.outStep);
    const __m256 baseV = _mm256_set1_ps(base);
    for (int y = 0; y < height; ++y) {
        const PixelRow<S, Op, TwoSources, Masked> row{rowAt(im.a, im.aStep, y),
                                                      TwoSources ? rowAt(im.b, im.bStep, y) : nullptr,
                                                      Masked ? rowAt(im.m, im.mStep, y) : nullptr,
                                                      rowAt(im.d, im.dStep, y),
                                                      rowAt(im.out, im.outStep, y),
                                                      op,
                                                      baseV,
                                                      base};
        walkPixelRow(n, row);
    }
}

}  // namespace lum::simd
