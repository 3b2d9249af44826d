// Plain integral images, AVX2.
//
// 8u sources: the running row sum r is formed sixteen samples at a time as
// a prefix sum (bytes widened to 16 bits, three shift-add steps over each
// half's eight lanes, widened to 32 bits) plus the total carried from the
// blocks before, held broadcast in every lane. Each result row is then the
// row above plus r, one vector add per eight elements.
//
// With 8u samples r is an integer; as a float it is exact while it stays
// at or below 2^24, so the integer prefix converted to float gives the very
// bits of the left-to-right float sum. Past that (rows of more than 65793
// bright samples) the float sum rounds at each addition and the rest of the
// row runs one sample at a time, in the defining order.
//
// 32f sources: the float row sums depend on the order of their additions,
// so each row is summed left to right; eight rows run side by side, one in
// each lane, after a transpose of 8 x 8 tiles.
#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "arith/integral_kernels.h"
#include "arith/integral_simd.h"
#include "frame/rows.h"
#include "frame/simd.h"

namespace lum::kernel {
namespace {

using isimd::Lanes;

// Stand-in for the squared result of members that have none.
struct NoSqr {};

inline __m256i broadcastLast(__m256i v) { return _mm256_permutevar8x32_epi32(v, _mm256_set1_epi32(7)); }

// Prefix sums of each half's eight 16-bit lanes (at most 8 x 255).
inline __m256i prefix8x16(__m256i v) {
    v = _mm256_add_epi16(v, _mm256_slli_si256(v, 2));
    v = _mm256_add_epi16(v, _mm256_slli_si256(v, 4));
    return _mm256_add_epi16(v, _mm256_slli_si256(v, 8));
}

// Prefix sums of eight 32-bit lanes: two shift-add steps within each half,
// then the low half's total added to every lane of the high half.
inline __m256i prefix8x32(__m256i v) {
    v = _mm256_add_epi32(v, _mm256_slli_si256(v, 4));
    v = _mm256_add_epi32(v, _mm256_slli_si256(v, 8));
    const __m256i last = _mm256_shuffle_epi32(v, 0xFF);  // (l3 l3 l3 l3 | h3 h3 h3 h3)
    return _mm256_add_epi32(v, _mm256_permute2x128_si256(last, last, 0x08));  // + (0 0 0 0 | l3 l3 l3 l3)
}

// Local prefix of sixteen values: lo holds samples 0..7, hi 8..15, total
// the sum of all sixteen in every lane.
struct Prefix16 {
    __m256i lo, hi, total;
};

// w16: sixteen samples widened to 16 bits, samples 0..7 in the low half.
inline Prefix16 samplePrefix(__m256i w16) {
    const __m256i p = prefix8x16(w16);
    const __m256i lo = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(p));
    const __m256i hi = _mm256_add_epi32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(p, 1)), broadcastLast(lo));
    return {lo, hi, broadcastLast(hi)};
}

// The same for the squares: a square (at most 65025) fits 16 unsigned bits,
// its prefix does not, so the prefix runs in 32-bit lanes.
inline Prefix16 squarePrefix(__m256i w16) {
    const __m256i sq = _mm256_mullo_epi16(w16, w16);
    const __m256i lo = prefix8x32(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(sq)));
    const __m256i hi =
        _mm256_add_epi32(prefix8x32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(sq, 1))), broadcastLast(lo));
    return {lo, hi, broadcastLast(hi)};
}

// One result row of 32-bit elements whose running sum is an integer: Lum32s
// results wrap, Lum32f results take r converted (exact while r <= 2^24).
template <class T>
struct Int32Sums {
    __m256i carry = _mm256_setzero_si256();

    static __m256i plus(__m256i above, __m256i r) { return _mm256_add_epi32(above, r); }
    static __m256 plus(__m256 above, __m256i r) { return _mm256_add_ps(above, _mm256_cvtepi32_ps(r)); }

    // n elements of prev + r into cur; n == 16 is a whole block.
    template <bool masked>
    void block(const T* prev, T* cur, const Prefix16& p, int n) {
        const __m256i rlo = _mm256_add_epi32(p.lo, carry);
        const __m256i rhi = _mm256_add_epi32(p.hi, carry);
        carry = _mm256_add_epi32(carry, p.total);
        if constexpr (!masked) {
            Lanes<T>::store(cur, plus(Lanes<T>::load(prev), rlo));
            Lanes<T>::store(cur + 8, plus(Lanes<T>::load(prev + 8), rhi));
        } else {
            const __m256i mlo = simd::firstLanes(std::min(n, 8));
            const __m256i mhi = simd::firstLanes(std::max(n - 8, 0));
            Lanes<T>::store(cur, mlo, plus(Lanes<T>::load(prev, mlo), rlo));
            Lanes<T>::store(cur + 8, mhi, plus(Lanes<T>::load(prev + 8, mhi), rhi));
        }
    }
    int32_t carried() const { return _mm256_cvtsi256_si32(carry); }
};

// Squared sums in Lum64f: the running sum is a double, exact (a row's sum
// of squares stays far below 2^53), so any grouping gives the same bits.
struct Float64Sums {
    __m256d carry = _mm256_setzero_pd();

    template <bool masked>
    void block(const Lum64f* prev, Lum64f* cur, const Prefix16& p, int n) {
        const __m256d r[4] = {
            _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_castsi256_si128(p.lo))),
            _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_extracti128_si256(p.lo, 1))),
            _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_castsi256_si128(p.hi))),
            _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_extracti128_si256(p.hi, 1))),
        };
        carry = _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_castsi256_si128(p.total)));
        for (int k = 0; k < 4; ++k) {
            if constexpr (!masked) {
                Lanes<Lum64f>::store(cur + 4 * k, _mm256_add_pd(Lanes<Lum64f>::load(prev + 4 * k), r[k]));
            } else {
                const int left = std::clamp(n - 4 * k, 0, 4);
                const __m256i m = simd::firstLanes(2 * left);
                Lanes<Lum64f>::store(cur + 4 * k, m, _mm256_add_pd(Lanes<Lum64f>::load(prev + 4 * k, m), r[k]));
            }
        }
    }
    double carried() const { return _mm256_cvtsd_f64(carry); }
};

template <class Q>
struct SqrSumsOf {
    using type = Int32Sums<Lum32s>;
};
template <>
struct SqrSumsOf<Lum64f> {
    using type = Float64Sums;
};
template <>
struct SqrSumsOf<NoSqr> {
    using type = NoSqr;
};

// Columns below which a float row sum of 8u samples can't pass 2^24 within
// the next block of sixteen: 255 x (x + 16) <= 2^24 for every x up to here.
constexpr int kUncheckedColumns = (1 << 24) / 255 - 16;
constexpr int32_t kExactFloatLimit = 1 << 24;

// Integral (and squared integral) of an 8u source. D: Lum32s or Lum32f;
// Q: NoSqr, Lum32s or Lum64f.
template <class D, class Q>
void plainRows(const Lum8u* src, int sStep, D* dst, int dStep, Q* sqr, int qStep, int w, int h, D value,
               Q valueSqr) {
    constexpr bool hasSqr = !std::is_same_v<Q, NoSqr>;
    constexpr bool floatSum = std::is_same_v<D, Lum32f>;
    isimd::fillRow(dst, w + 1, value);
    if constexpr (hasSqr) isimd::fillRow(sqr, w + 1, valueSqr);
    for (int y = 0; y < h; ++y) {
        const Lum8u* s = rowAt(src, sStep, y);
        // Both result rows point at column 1, the column of source sample 0.
        const D* dp = rowAt(dst, dStep, y) + 1;
        D* dc = rowAt(dst, dStep, y + 1) + 1;
        dc[-1] = value;
        [[maybe_unused]] const Q* qp = nullptr;
        [[maybe_unused]] Q* qc = nullptr;
        if constexpr (hasSqr) {
            qp = rowAt(sqr, qStep, y) + 1;
            qc = rowAt(sqr, qStep, y + 1) + 1;
            qc[-1] = valueSqr;
        }
        Int32Sums<D> sums;
        [[maybe_unused]] typename SqrSumsOf<Q>::type sqrSums;
        // Room for one more block while the float row sum stays exact.
        auto exactAhead = [&](int x) {
            return !floatSum || x <= kUncheckedColumns || sums.carried() <= kExactFloatLimit - 16 * 255;
        };
        int x = 0;
        for (; x + 16 <= w && exactAhead(x); x += 16) {
            const __m256i w16 = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + x)));
            sums.template block<false>(dp + x, dc + x, samplePrefix(w16), 16);
            if constexpr (hasSqr) sqrSums.template block<false>(qp + x, qc + x, squarePrefix(w16), 16);
        }
        if (x < w && (x + 16 > w) && exactAhead(x)) {
            // The last samples from a zero-padded copy, stored through masks.
            alignas(16) uint8_t tail[16] = {};
            std::memcpy(tail, s + x, static_cast<size_t>(w - x));
            const __m256i w16 = _mm256_cvtepu8_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(tail)));
            sums.template block<true>(dp + x, dc + x, samplePrefix(w16), w - x);
            if constexpr (hasSqr) sqrSums.template block<true>(qp + x, qc + x, squarePrefix(w16), w - x);
            x = w;
        }
        if constexpr (floatSum) {
            // Past 2^24 the float row sum rounds: one sample at a time.
            if (x < w) {
                float r = static_cast<float>(sums.carried());
                [[maybe_unused]] auto rq = [&] {
                    if constexpr (hasSqr) return sqrSums.carried();
                    else return 0;
                }();
                for (; x < w; ++x) {
                    r = r + static_cast<float>(s[x]);
                    dc[x] = dp[x] + r;
                    if constexpr (std::is_same_v<Q, Lum64f>) {
                        rq = rq + static_cast<double>(s[x] * s[x]);
                        qc[x] = qp[x] + rq;
                    }
                }
            }
        }
    }
}

// ------------------------------------------------------------ 32f source

// Four 4 x 4 transposes, one in each half of four vectors: (m0..m3) with
// m_i = (a_i0 a_i1 a_i2 a_i3 | b_i0 .. b_i3) become (a_0j a_1j a_2j a_3j |
// b_0j .. b_3j) in m_j.
inline void transposeHalves(__m256& m0, __m256& m1, __m256& m2, __m256& m3) {
    const __m256 t0 = _mm256_unpacklo_ps(m0, m1);  // a00 a10 a01 a11 | ...
    const __m256 t1 = _mm256_unpackhi_ps(m0, m1);  // a02 a12 a03 a13 | ...
    const __m256 t2 = _mm256_unpacklo_ps(m2, m3);  // a20 a30 a21 a31 | ...
    const __m256 t3 = _mm256_unpackhi_ps(m2, m3);  // a22 a32 a23 a33 | ...
    m0 = _mm256_shuffle_ps(t0, t2, 0x44);          // a00 a10 a20 a30 | ...
    m1 = _mm256_shuffle_ps(t0, t2, 0xEE);          // a01 a11 a21 a31 | ...
    m2 = _mm256_shuffle_ps(t1, t3, 0x44);
    m3 = _mm256_shuffle_ps(t1, t3, 0xEE);
}

inline __m128 load4(const float* p) { return _mm_loadu_ps(p); }
inline __m128 load4(const float* p, __m128i m) { return _mm_maskload_ps(p, m); }

// One tile of eight rows (s[0..7], replicated past the last real row) and
// n <= 8 columns from x. r holds each row's running sum in its lane; the
// sums advance one column at a time, left to right, exactly as a single row
// would. Then the result rows d[1..k] are d[i] + that row's sums.
template <bool masked>
inline __m256 integralTile32f(const float* const* s, float* const* d, int k, int x, __m256 r, int n) {
    __m256 c[8];
    // c[i] = (row i, cols 0..3 | row i + 4, cols 0..3), c[i + 4] the same for cols 4..7.
    for (int i = 0; i < 4; ++i) {
        if constexpr (!masked) {
            c[i] = _mm256_insertf128_ps(_mm256_castps128_ps256(load4(s[i] + x)), load4(s[i + 4] + x), 1);
            c[i + 4] = _mm256_insertf128_ps(_mm256_castps128_ps256(load4(s[i] + x + 4)), load4(s[i + 4] + x + 4), 1);
        } else {
            const __m128i mlo = isimd::firstLanes4(std::min(n, 4));
            const __m128i mhi = isimd::firstLanes4(std::max(n - 4, 0));
            c[i] = _mm256_insertf128_ps(_mm256_castps128_ps256(load4(s[i] + x, mlo)), load4(s[i + 4] + x, mlo), 1);
            c[i + 4] = _mm256_insertf128_ps(_mm256_castps128_ps256(load4(s[i] + x + 4, mhi)),
                                            load4(s[i + 4] + x + 4, mhi), 1);
        }
    }
    // c[j] = column j of the tile, lane i = row i.
    transposeHalves(c[0], c[1], c[2], c[3]);
    transposeHalves(c[4], c[5], c[6], c[7]);
    for (int j = 0; j < 8; ++j) {
        r = _mm256_add_ps(r, c[j]);
        c[j] = r;
    }
    // Back to rows: c[i] = (row i, cols 0..3 | row i + 4, cols 0..3), c[i + 4]
    // the same for cols 4..7.
    transposeHalves(c[0], c[1], c[2], c[3]);
    transposeHalves(c[4], c[5], c[6], c[7]);
    __m256 rows[8];
    for (int i = 0; i < 4; ++i) {
        rows[i] = _mm256_permute2f128_ps(c[i], c[i + 4], 0x20);
        rows[i + 4] = _mm256_permute2f128_ps(c[i], c[i + 4], 0x31);
    }
    if constexpr (!masked) {
        __m256 above = _mm256_loadu_ps(d[0] + x);
        for (int i = 0; i < k; ++i) {
            above = _mm256_add_ps(above, rows[i]);
            _mm256_storeu_ps(d[i + 1] + x, above);
        }
    } else {
        const __m256i m = simd::firstLanes(n);
        __m256 above = _mm256_maskload_ps(d[0] + x, m);
        for (int i = 0; i < k; ++i) {
            above = _mm256_add_ps(above, rows[i]);
            _mm256_maskstore_ps(d[i + 1] + x, m, above);
        }
    }
    return r;
}

}  // namespace

void integral_32f(const Lum32f* src, int sStep, Lum32f* dst, int dStep, int w, int h) {
    isimd::fillRow(dst, w + 1, 0.0f);
    for (int y0 = 0; y0 < h; y0 += 8) {
        const int k = std::min(8, h - y0);
        const float* s[8];
        for (int i = 0; i < 8; ++i) s[i] = rowAt(src, sStep, y0 + std::min(i, k - 1));
        float* d[9];
        for (int i = 0; i <= k; ++i) d[i] = rowAt(dst, dStep, y0 + i) + 1;
        for (int i = 1; i <= k; ++i) d[i][-1] = 0.0f;
        __m256 r = _mm256_setzero_ps();
        int x = 0;
        for (; x + 8 <= w; x += 8) r = integralTile32f<false>(s, d, k, x, r, 8);
        if (x < w) integralTile32f<true>(s, d, k, x, r, w - x);
    }
}

void integral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, int w, int h, Lum32s value) {
    plainRows<Lum32s, NoSqr>(s, sStep, d, dStep, nullptr, 0, w, h, value, NoSqr{});
}

void integral_8u32f(const Lum8u* s, int sStep, Lum32f* d, int dStep, int w, int h, Lum32f value) {
    plainRows<Lum32f, NoSqr>(s, sStep, d, dStep, nullptr, 0, w, h, value, NoSqr{});
}

void sqrIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum32s* q, int qStep, int w, int h,
                       Lum32s value, Lum32s valueSqr) {
    plainRows<Lum32s, Lum32s>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

void sqrIntegral_8u32s64f(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum64f* q, int qStep, int w, int h,
                          Lum32s value, Lum64f valueSqr) {
    plainRows<Lum32s, Lum64f>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

void sqrIntegral_8u32f64f(const Lum8u* s, int sStep, Lum32f* d, int dStep, Lum64f* q, int qStep, int w, int h,
                          Lum32f value, Lum64f valueSqr) {
    plainRows<Lum32f, Lum64f>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

}  // namespace lum::kernel
