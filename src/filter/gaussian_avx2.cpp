// Gaussian filter, AVX2. One float pipeline serves every sample type:
//
//   buffer (aligned up to 64): ring of k rows | spare row | strip area
//   each ring and spare row: S = (4 n + 63) & ~63 bytes, n = width x channels
//
// Each source row is turned once into a float row of the ring by the row
// pass; the column pass then combines the k ring rows (walked by index, never
// copied) into the spare row, and a conversion pass narrows the spare row to
// the destination (32f writes the destination directly). Rows above or below
// the image are resolved by the border word; constant rows are filled with
// the float of the border value and skip the row pass.
//
// Sums are formed in one fixed order, in the vector and the scalar forms
// alike, so results do not depend on the image size, the ROI placement or on
// which form computed a sample:
//   3 taps:  fma(t0 + t2, w0, w1 * t1)
//   k taps:  (t0 + t[k-1]) * w0, then fma(t[i] + t[k-1-i], w[i], acc) for
//            i = 1 .. r-1, then fma(t[r], w[r], acc)
// The vector row kernels add a pair of integer samples in 32-bit integers;
// the sum is exact, so it equals the float sum that the scalar edge code and
// the column pass form.
#include <immintrin.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "filter/gaussian_kernels.h"
#include "frame/border.h"
#include "frame/carve.h"
#include "frame/rows.h"
#include "frame/simd.h"

// The sums and their taps must inline into the row loops: a call per vector
// would cost more than the arithmetic.
#define LUM_INLINE inline __attribute__((always_inline))

namespace lum::kernel {
namespace {

// ------------------------------------------------------------ the sum

LUM_INLINE __m256 bcast(const float* w) { return _mm256_broadcast_ss(w); }

// Weights broadcast to vectors: held in registers when the radius R is known
// at compile time (1 to 5), broadcast from memory otherwise (R = 0). Stores
// through vector types may alias anything, so values the loops need must not
// live in memory that the compiler would reload after every store.
template <int R>
struct Weights {
    __m256 v[R + 1];
    explicit Weights(const float* w) {
        for (int i = 0; i <= R; ++i) v[i] = _mm256_set1_ps(w[i]);
    }
    LUM_INLINE __m256 operator[](int i) const { return v[i]; }
};
template <>
struct Weights<0> {
    const float* w;
    explicit Weights(const float* p) : w(p) {}
    LUM_INLINE __m256 operator[](int i) const { return bcast(w + i); }
};

// Taps supply tap i (0 .. 2r) as a vector (v) or a scalar (s), and the pair
// of taps i and j added (pair), before any multiply.
template <int R, class Taps>
LUM_INLINE __m256 symmetricSum(const Taps& t, const Weights<R>& w, int r) {
    const int rad = R > 0 ? R : r;
    const int last = 2 * rad;
    if (rad == 1) return _mm256_fmadd_ps(t.pair(0, 2), w[0], _mm256_mul_ps(w[1], t.v(1)));
    __m256 acc = _mm256_mul_ps(t.pair(0, last), w[0]);
    for (int i = 1; i < rad; ++i) acc = _mm256_fmadd_ps(t.pair(i, last - i), w[i], acc);
    return _mm256_fmadd_ps(t.v(rad), w[rad], acc);
}

template <int R, class Taps>
LUM_INLINE float symmetricSumScalar(const Taps& t, const float* w, int r) {
    const int rad = R > 0 ? R : r;
    const int last = 2 * rad;
    if (rad == 1) return std::fma(t.s(0) + t.s(2), w[0], w[1] * t.s(1));
    float acc = (t.s(0) + t.s(last)) * w[0];
    for (int i = 1; i < rad; ++i) acc = std::fma(t.s(i) + t.s(last - i), w[i], acc);
    return std::fma(t.s(rad), w[rad], acc);
}

// ------------------------------------------------------------ samples

// Eight samples widened to float, and a float narrowed back with rounding to
// nearest (ties to even, the default mode) and saturation.
template <class T>
struct Sample;

// Integer samples widen to 32 bits (wide8), where a pair adds exactly.
template <>
struct Sample<Lum8u> {
    LUM_INLINE static __m256i wide8(const Lum8u* p) {
        return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    LUM_INLINE static __m256 load8(const Lum8u* p) { return _mm256_cvtepi32_ps(wide8(p)); }
};
template <>
struct Sample<Lum16u> {
    LUM_INLINE static __m256i wide8(const Lum16u* p) {
        return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    LUM_INLINE static __m256 load8(const Lum16u* p) { return _mm256_cvtepi32_ps(wide8(p)); }
};
template <>
struct Sample<Lum16s> {
    LUM_INLINE static __m256i wide8(const Lum16s* p) {
        return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    LUM_INLINE static __m256 load8(const Lum16s* p) { return _mm256_cvtepi32_ps(wide8(p)); }
};
template <>
struct Sample<Lum32f> {
    LUM_INLINE static __m256 load8(const Lum32f* p) { return _mm256_loadu_ps(p); }
};

inline int roundToInt(float v) { return _mm_cvtss_si32(_mm_set_ss(v)); }

inline void storeVec(__m256i* p, __m256i v, bool nt) {
    if (nt) _mm256_stream_si256(p, v);
    else _mm256_storeu_si256(p, v);
}

// Narrowing of the spare row: `wide` samples a block (one 32-byte store),
// eight at a time after that, then single samples.
template <class T, bool LowBits>
struct Narrow;

template <bool LowBits>
struct Narrow<Lum8u, LowBits> {
    static constexpr int wide = 32;
    // Four vectors of eight: packs to 16 bits with signed saturation, then
    // to 8 bits unsigned; lanes come out as (a0 b0 c0 d0 | a1 b1 c1 d1) in
    // groups of four and are put back in order by one permute.
    static void block(Lum8u* d, const float* s, bool nt) {
        const __m256i a = _mm256_cvtps_epi32(_mm256_loadu_ps(s));
        const __m256i b = _mm256_cvtps_epi32(_mm256_loadu_ps(s + 8));
        const __m256i c = _mm256_cvtps_epi32(_mm256_loadu_ps(s + 16));
        const __m256i e = _mm256_cvtps_epi32(_mm256_loadu_ps(s + 24));
        const __m256i v = _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, e));
        storeVec(reinterpret_cast<__m256i*>(d),
                 _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)), nt);
    }
    static void eight(Lum8u* d, const float* s) {
        const __m256i a = _mm256_cvtps_epi32(_mm256_loadu_ps(s));
        const __m128i w = _mm_packs_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(w, w));
    }
    static Lum8u one(float v) {
        const int i = roundToInt(v);
        return static_cast<Lum8u>(i < 0 ? 0 : (i > 255 ? 255 : i));
    }
};

template <bool LowBits>
struct Narrow<Lum16u, LowBits> {
    static constexpr int wide = 16;
    static void block(Lum16u* d, const float* s, bool nt) {
        const __m256i a = _mm256_cvtps_epi32(_mm256_loadu_ps(s));
        const __m256i b = _mm256_cvtps_epi32(_mm256_loadu_ps(s + 8));
        // (a0..3 b0..3 | a4..7 b4..7) in 64-bit groups: reorder to a, b.
        storeVec(reinterpret_cast<__m256i*>(d), _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xD8), nt);
    }
    static void eight(Lum16u* d, const float* s) {
        const __m256i a = _mm256_cvtps_epi32(_mm256_loadu_ps(s));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d),
                         _mm_packus_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1)));
    }
    static Lum16u one(float v) {
        const int i = roundToInt(v);
        return static_cast<Lum16u>(i < 0 ? 0 : (i > 65535 ? 65535 : i));
    }
};

// 16s saturates, or (LowBits) keeps the low 16 bits of the rounded value:
// masking to 16 bits first makes the unsigned pack an exact truncation.
template <bool LowBits>
struct Narrow<Lum16s, LowBits> {
    static constexpr int wide = 16;
    static __m256i cvt(const float* s) {
        const __m256i a = _mm256_cvtps_epi32(_mm256_loadu_ps(s));
        return LowBits ? _mm256_and_si256(a, _mm256_set1_epi32(0xFFFF)) : a;
    }
    static __m256i pack(__m256i a, __m256i b) {
        return LowBits ? _mm256_packus_epi32(a, b) : _mm256_packs_epi32(a, b);
    }
    static __m128i pack(__m128i a, __m128i b) { return LowBits ? _mm_packus_epi32(a, b) : _mm_packs_epi32(a, b); }
    static void block(Lum16s* d, const float* s, bool nt) {
        storeVec(reinterpret_cast<__m256i*>(d), _mm256_permute4x64_epi64(pack(cvt(s), cvt(s + 8)), 0xD8), nt);
    }
    static void eight(Lum16s* d, const float* s) {
        const __m256i a = cvt(s);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), pack(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1)));
    }
    static Lum16s one(float v) {
        const int i = roundToInt(v);
        if (LowBits) return static_cast<Lum16s>(static_cast<uint16_t>(static_cast<uint32_t>(i) & 0xFFFFu));
        return static_cast<Lum16s>(i < -32768 ? -32768 : (i > 32767 ? 32767 : i));
    }
};

// Spare row to destination row; nt: streaming stores, for rows that start on
// a 32-byte boundary (the bits are the same either way).
template <class T, bool LowBits>
void narrowRow(const float* s, T* d, int n, bool nt) {
    using N = Narrow<T, LowBits>;
    int x = 0;
    for (; x + N::wide <= n; x += N::wide) N::block(d + x, s + x, nt);
    for (; x + 8 <= n; x += 8) N::eight(d + x, s + x);
    for (; x < n; ++x) d[x] = N::one(s[x]);
}

// ------------------------------------------------------------ row pass

// Taps of the row kernel around the centre sample c: tap i is the sample
// (i - r) pixels away, C samples a pixel. Integer samples are read as they
// are and a pair is added in 32-bit integers, then converted (exact, so the
// same as adding their floats); float pairs are added in float.
template <class T, int C>
struct RowTaps {
    const T* c;
    int rad;
    LUM_INLINE __m256 v(int i) const { return Sample<T>::load8(c + (i - rad) * C); }
    LUM_INLINE __m256 pair(int i, int j) const {
        if constexpr (std::is_same_v<T, float>) {
            return _mm256_add_ps(v(i), v(j));
        } else {
            return _mm256_cvtepi32_ps(
                _mm256_add_epi32(Sample<T>::wide8(c + (i - rad) * C), Sample<T>::wide8(c + (j - rad) * C)));
        }
    }
};

// Taps of an edge sample: pixel x, channel ch; pixels left of the row come
// from the left strip, pixels right of it from the right strip.
template <class T, int C>
struct EdgeTaps {
    const T* row;
    const float* left;   // pixels -r .. -1
    const float* right;  // pixels width .. width + r - 1
    int width, x, ch, rad;
    LUM_INLINE float s(int i) const {
        const int p = x - rad + i;
        if (p < 0) return left[(p + rad) * C + ch];
        if (p >= width) return right[(p - width) * C + ch];
        return static_cast<float>(row[p * C + ch]);
    }
};

// Outside pixel p of a source row (p < 0 or p >= width), channel ch, as float.
template <class T, int C>
inline float outsideSample(const T* row, int width, int p, int ch, int border, const T* value) {
    const bool lowMem = (border & border::kLeft) != 0;
    const bool highMem = (border & border::kRight) != 0;
    const bool inMemory = p < 0 ? lowMem : highMem;
    if (border::lowCode(border) == border::kConstant && !inMemory) return static_cast<float>(value[ch]);
    const int j = border::sourceIndex(p, width, border::lowCode(border), lowMem, highMem);
    return static_cast<float>(row[static_cast<ptrdiff_t>(j) * C + ch]);
}

struct RowContext {
    int width;
    int border;
    int rad;
    const float* w;
    float* strips;  // r pixels left, then r pixels right
};

// Horizontal pass of one source row into a ring row.
template <class T, int C, int R>
void rowPass(const T* srow, const void* valueIn, const RowContext& rc, float* out) {
    const T* value = static_cast<const T*>(valueIn);
    const int width = rc.width, r = rc.rad, n = width * C;
    const T* f = srow;
    float* left = rc.strips;
    float* right = rc.strips + r * C;
    for (int q = 0; q < r; ++q) {
        for (int ch = 0; ch < C; ++ch) {
            left[q * C + ch] = outsideSample<T, C>(srow, width, q - r, ch, rc.border, value);
            right[q * C + ch] = outsideSample<T, C>(srow, width, width + q, ch, rc.border, value);
        }
    }
    // Interior: every tap inside the row. The last vector overlaps the one
    // before it instead of reading past the interior.
    const int s0 = r * C, s1 = n - r * C;
    if (s1 - s0 >= 8) {
        // The first vector starts at s0; the rest start on 8-sample (32-byte)
        // boundaries of the ring row, overlapping the first.
        const Weights<R> wv(rc.w);
        _mm256_storeu_ps(out + s0, symmetricSum<R>(RowTaps<T, C>{f + s0, r}, wv, r));
        int s = (s0 + 8) & ~7;
        for (; s + 8 <= s1; s += 8) _mm256_store_ps(out + s, symmetricSum<R>(RowTaps<T, C>{f + s, r}, wv, r));
        if (s < s1) _mm256_storeu_ps(out + s1 - 8, symmetricSum<R>(RowTaps<T, C>{f + s1 - 8, r}, wv, r));
    } else {
        for (int s = s0; s < s1; ++s) {
            out[s] = symmetricSumScalar<R>(EdgeTaps<T, C>{f, left, right, width, s / C, s % C, r}, rc.w, r);
        }
    }
    // Edges: the first and last r pixels (all of them in a narrow row).
    const int leftEnd = r < width ? r : width;
    const int rightBegin = width - r > leftEnd ? width - r : leftEnd;
    auto edge = [&](int x) {
        for (int ch = 0; ch < C; ++ch)
            out[x * C + ch] = symmetricSumScalar<R>(EdgeTaps<T, C>{f, left, right, width, x, ch, r}, rc.w, r);
    };
    for (int x = 0; x < leftEnd; ++x) edge(x);
    for (int x = rightBegin; x < width; ++x) edge(x);
}

// ------------------------------------------------------------ column pass

struct ColumnTaps {
    const float* const* rows;
    ptrdiff_t x;
    LUM_INLINE __m256 v(int i) const { return _mm256_load_ps(rows[i] + x); }
    LUM_INLINE __m256 pair(int i, int j) const { return _mm256_add_ps(v(i), v(j)); }
};
struct ColumnTapsMasked {
    const float* const* rows;
    ptrdiff_t x;
    __m256i m;
    LUM_INLINE __m256 v(int i) const { return _mm256_maskload_ps(rows[i] + x, m); }
    LUM_INLINE __m256 pair(int i, int j) const { return _mm256_add_ps(v(i), v(j)); }
};

// n float results of the k ring rows into out; streaming stores when asked
// and out is 32-byte aligned (the spare row always is).
template <int R>
void columnPass(const float* const* rowTable, int x0, float* out, int n, const float* w, int r, bool bypass) {
    // With a known radius the row pointers (moved to sample x0) are copied
    // into locals, which the stores cannot touch.
    const float* local[2 * R + 1];
    const float* const* rows = rowTable;
    if constexpr (R > 0) {
        for (int i = 0; i <= 2 * R; ++i) local[i] = rowTable[i] + x0;
        rows = local;
        x0 = 0;
    }
    const Weights<R> wv(w);
    const bool nt = bypass && (reinterpret_cast<uintptr_t>(out) & 31) == 0;
    int x = 0;
    if (nt) {
        for (; x + 8 <= n; x += 8) _mm256_stream_ps(out + x, symmetricSum<R>(ColumnTaps{rows, x0 + x}, wv, r));
    } else {
        for (; x + 16 <= n; x += 16) {
            _mm256_storeu_ps(out + x, symmetricSum<R>(ColumnTaps{rows, x0 + x}, wv, r));
            _mm256_storeu_ps(out + x + 8, symmetricSum<R>(ColumnTaps{rows, x0 + x + 8}, wv, r));
        }
        for (; x + 8 <= n; x += 8) _mm256_storeu_ps(out + x, symmetricSum<R>(ColumnTaps{rows, x0 + x}, wv, r));
    }
    if (x < n) {
        const __m256i m = simd::firstLanes(n - x);
        _mm256_maskstore_ps(out + x, m, symmetricSum<R>(ColumnTapsMasked{rows, x0 + x, m}, wv, r));
    }
}

// ------------------------------------------------------------ the image

// Samples of the spare row filled and narrowed at a time: a multiple of 32,
// so that blocks after the first keep the destination's alignment.
constexpr int kBlock = 512;

template <class T, int C, int R, bool LowBits>
void filterImage(const T* src, int srcStep, T* dst, int dstStep, const T* value, const GaussianPlan& p) {
    const int k = p.kernelSize, r = k / 2;
    const int width = p.width, height = p.height, n = width * C;
    const int strideF = roundRow64(4 * n) / 4;  // floats a ring row
    float* ring = alignUp<float>(p.buffer, 64);
    float* spare = ring + static_cast<ptrdiff_t>(k) * strideF;
    float* strips = spare + strideF;
    const RowContext rc{width, p.border, r, p.half, strips};
    auto slot = [&](int i) { return ring + static_cast<ptrdiff_t>(i) * strideF; };

    const int code = border::lowCode(p.border);
    const bool all = border::allSidesInMemory(p.border);
    const bool topMem = (p.border & border::kTop) != 0;
    const bool bottomMem = (p.border & border::kBottom) != 0;

    // Ring row of image row j, which may lie outside the image.
    auto fill = [&](int j, float* out) {
        if (j >= 0 && j < height) {
            rowPass<T, C, R>(rowAt(src, srcStep, j), value, rc, out);
            return;
        }
        if (all) {
            rowPass<T, C, R>(rowAt(src, srcStep, j), value, rc, out);
            return;
        }
        const bool inMemory = j < 0 ? topMem : bottomMem;
        if (code == border::kConstant && !inMemory) {
            // The kernel sums to one: a constant row stays the constant.
            for (int x = 0; x < n; x += C)
                for (int ch = 0; ch < C; ++ch) out[x + ch] = static_cast<float>(value[ch]);
            return;
        }
        const int jj = border::sourceIndex(j, height, code, topMem, bottomMem);
        rowPass<T, C, R>(rowAt(src, srcStep, jj), value, rc, out);
    };

    for (int j = -r; j < r; ++j) fill(j, slot(j + r));
    // The pointer table of the column pass lives in the strip area, which
    // the row pass no longer needs by then.
    const float** rows = reinterpret_cast<const float**>(strips);
    for (int y = 0; y < height; ++y) {
        fill(y + r, slot((y + 2 * r) % k));
        int s = y % k;
        for (int i = 0; i < k; ++i) {
            rows[i] = slot(s);
            if (++s == k) s = 0;
        }
        T* drow = rowAt(dst, dstStep, y);
        if constexpr (std::is_same_v<T, float>) {
            columnPass<R>(rows, 0, drow, n, p.half, r, p.bypass);
        } else {
            // The spare row is filled and narrowed a block at a time, so
            // that the block is still in the first-level cache when read.
            const bool nt = p.bypass && (reinterpret_cast<uintptr_t>(drow) & 31) == 0;
            for (int x = 0; x < n; x += kBlock) {
                const int len = n - x < kBlock ? n - x : kBlock;
                columnPass<R>(rows, x, spare + x, len, p.half, r, false);
                narrowRow<T, LowBits>(spare + x, drow + x, len, nt);
            }
        }
    }
    if (p.bypass) _mm_sfence();
}

template <class T, int C, bool LowBits>
void bySize(const T* src, int srcStep, T* dst, int dstStep, const T* value, const GaussianPlan& p) {
    switch (p.kernelSize) {
        case 3: return filterImage<T, C, 1, LowBits>(src, srcStep, dst, dstStep, value, p);
        case 5: return filterImage<T, C, 2, LowBits>(src, srcStep, dst, dstStep, value, p);
        case 7: return filterImage<T, C, 3, LowBits>(src, srcStep, dst, dstStep, value, p);
        // 9 and 11 unrolled as well: the same sums, with weights and row
        // pointers held in registers.
        case 9: return filterImage<T, C, 4, LowBits>(src, srcStep, dst, dstStep, value, p);
        case 11: return filterImage<T, C, 5, LowBits>(src, srcStep, dst, dstStep, value, p);
        default: return filterImage<T, C, 0, LowBits>(src, srcStep, dst, dstStep, value, p);
    }
}

}  // namespace

void gaussian_8u_C1(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, const Lum8u* value, const GaussianPlan& p) {
    bySize<Lum8u, 1, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_8u_C3(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, const Lum8u* value, const GaussianPlan& p) {
    bySize<Lum8u, 3, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_16u_C1(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, const Lum16u* value,
                     const GaussianPlan& p) {
    bySize<Lum16u, 1, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_16u_C3(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, const Lum16u* value,
                     const GaussianPlan& p) {
    bySize<Lum16u, 3, false>(src, srcStep, dst, dstStep, value, p);
}
// kernelSize 5 keeps the low 16 bits of the rounded sums instead of
// saturating; with positive weights that sum to one the two agree.
void gaussian_16s_C1(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, const Lum16s* value,
                     const GaussianPlan& p) {
    if (p.kernelSize == 5) filterImage<Lum16s, 1, 2, true>(src, srcStep, dst, dstStep, value, p);
    else bySize<Lum16s, 1, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_16s_C3(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, const Lum16s* value,
                     const GaussianPlan& p) {
    if (p.kernelSize == 5) filterImage<Lum16s, 3, 2, true>(src, srcStep, dst, dstStep, value, p);
    else bySize<Lum16s, 3, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_32f_C1(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, const Lum32f* value,
                     const GaussianPlan& p) {
    bySize<Lum32f, 1, false>(src, srcStep, dst, dstStep, value, p);
}
void gaussian_32f_C3(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, const Lum32f* value,
                     const GaussianPlan& p) {
    bySize<Lum32f, 3, false>(src, srcStep, dst, dstStep, value, p);
}

}  // namespace lum::kernel

#undef LUM_INLINE
