// Plain integral images, AVX2.
//
// 8u sources: the running row sum r is formed 32 samples at a time as a
// prefix sum (pair sums of the bytes in 16-bit lanes, three shift-add steps
// over each half's eight lanes, extended to 32 bits) plus the total carried
// from the blocks before, held broadcast in every lane. Each result row is
// then the row above plus r, one vector add per eight elements; rows go two
// at a time, so that the row above is loaded once for both, unless the
// results are too large for the last-level cache.
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
using isimd::NoSqr;

inline __m256i broadcastLast(__m256i v) { return _mm256_permutevar8x32_epi32(v, _mm256_set1_epi32(7)); }

// Prefix sums of each half's eight 16-bit lanes (three shift-add steps).
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

constexpr int kBlockOf32 = 32;

// Local prefix of 32 values: v[0] .. v[3] hold the running sums at samples
// 0..31 from the block's start; half the sum of samples 0..15 and total the
// sum of all 32, each in every lane. The total is known before the running
// sum carried into the block, so the carry chain across blocks is one add.
struct Prefix32 {
    __m256i v[4];
    __m256i half;
    __m256i total;
};

// Running sums of 32 samples. The pair sums (s0 + s1, s2 + s3, ...) in
// 16-bit lanes are prefixed over each half's eight lanes, which gives the
// running sums at the odd samples, sixteen samples a half; the even ones are
// those minus the odd sample. Interleaved and extended to 32 bits.
inline Prefix32 samplePrefix(__m256i bytes) {
    const __m256i odd = prefix8x16(_mm256_maddubs_epi16(bytes, _mm256_set1_epi8(1)));  // P1 P3 .. P15 | P17 .. P31
    const __m256i even = _mm256_sub_epi16(odd, _mm256_srli_epi16(bytes, 8));         // P0 P2 .. P14 | P16 .. P30
    const __m256i lo = _mm256_unpacklo_epi16(even, odd);                               // P0 .. P7  | P16 .. P23
    const __m256i hi = _mm256_unpackhi_epi16(even, odd);                               // P8 .. P15 | P24 .. P31
    Prefix32 p;
    p.v[0] = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(lo));
    p.v[1] = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(hi));
    p.half = broadcastLast(p.v[1]);
    p.v[2] = _mm256_add_epi32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(lo, 1)), p.half);
    p.v[3] = _mm256_add_epi32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(hi, 1)), p.half);
    p.total = broadcastLast(p.v[3]);
    return p;
}

// The same for the squares: a square (at most 65025) fits 16 unsigned bits,
// its running sum does not, so the prefix runs in 32-bit lanes, sixteen
// samples at a time.
inline Prefix32 squarePrefix(__m256i bytes) {
    Prefix32 p;
    for (int k = 0; k < 2; ++k) {
        const __m256i w16 = _mm256_cvtepu8_epi16(k == 0 ? _mm256_castsi256_si128(bytes) : _mm256_extracti128_si256(bytes, 1));
        const __m256i sq = _mm256_mullo_epi16(w16, w16);
        const __m256i lo = prefix8x32(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(sq)));
        p.v[2 * k] = lo;
        p.v[2 * k + 1] = _mm256_add_epi32(prefix8x32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(sq, 1))),
                                          broadcastLast(lo));
    }
    p.half = broadcastLast(p.v[1]);
    p.v[2] = _mm256_add_epi32(p.v[2], p.half);
    p.v[3] = _mm256_add_epi32(p.v[3], p.half);
    p.total = broadcastLast(p.v[3]);
    return p;
}

// Running sums of one row, block by block: next() turns a block's local
// prefix into the running sums of the row and carries the last one on,
// broadcast. Integer sums wrap.
struct Int32Run {
    using Vec = __m256i;
    __m256i carry = _mm256_setzero_si256();
    void next(const Prefix32& p, __m256i r[4]) {
        for (int k = 0; k < 4; ++k) r[k] = _mm256_add_epi32(p.v[k], carry);
        carry = _mm256_add_epi32(carry, p.total);
    }
    int32_t carried() const { return _mm256_cvtsi256_si32(carry); }
};

// Squared sums in Lum64f: the running sum is a double, exact (a row's sum
// of squares stays far below 2^53), so any grouping gives the same bits.
struct Float64Run {
    using Vec = __m256d;
    __m256d carry = _mm256_setzero_pd();
    void next(const Prefix32& p, __m256d r[8]) {
        for (int k = 0; k < 8; ++k) {
            const __m128i part = (k & 1) ? _mm256_extracti128_si256(p.v[k / 2], 1) : _mm256_castsi256_si128(p.v[k / 2]);
            r[k] = _mm256_add_pd(carry, _mm256_cvtepi32_pd(part));
        }
        carry = _mm256_add_pd(carry, _mm256_cvtepi32_pd(_mm256_castsi256_si128(p.total)));
    }
    double carried() const { return _mm256_cvtsd_f64(carry); }
};

// Per result type: how a row's running sums are kept and added to the row
// above. Lum32f results take the integer sums converted, exact while they
// stay at or below 2^24.
template <class T>
struct ResultOf;
template <>
struct ResultOf<Lum32s> {
    using Run = Int32Run;
    static __m256i plus(__m256i above, __m256i r) { return _mm256_add_epi32(above, r); }
};
template <>
struct ResultOf<Lum32f> {
    using Run = Int32Run;
    static __m256 plus(__m256 above, __m256i r) { return _mm256_add_ps(above, _mm256_cvtepi32_ps(r)); }
};
template <>
struct ResultOf<Lum64f> {
    using Run = Float64Run;
    static __m256d plus(__m256d above, __m256d r) { return _mm256_add_pd(above, r); }
};
template <>
struct ResultOf<NoSqr> {
    using Run = NoSqr;
};

// One block of 32 columns (the first n when masked) of R result rows that
// follow one another: the row above the first is loaded once, and each
// row's results, the row above plus its running sums, stay in registers for
// the next row.
template <int R, bool masked, class T, class PrefixOf>
inline void resultBlock(const T* above, T* const* rows, typename ResultOf<T>::Run* runs, const __m256i* bytes,
                        int x, int n, PrefixOf prefixOf) {
    constexpr int lanes = 32 / static_cast<int>(sizeof(T));
    constexpr int vecs = kBlockOf32 / lanes;
    using L = Lanes<T>;
    auto mask = [n](int k) {
        const int left = n - lanes * k;
        return simd::firstLanes((left < 0 ? 0 : left > lanes ? lanes : left) * static_cast<int>(sizeof(T)) / 4);
    };
    decltype(L::load(above)) acc[vecs];
    for (int k = 0; k < vecs; ++k) acc[k] = masked ? L::load(above + x + lanes * k, mask(k)) : L::load(above + x + lanes * k);
    for (int i = 0; i < R; ++i) {
        typename ResultOf<T>::Run::Vec r[vecs];
        runs[i].next(prefixOf(bytes[i]), r);
        for (int k = 0; k < vecs; ++k) {
            acc[k] = ResultOf<T>::plus(acc[k], r[k]);
            if constexpr (masked) L::store(rows[i] + x + lanes * k, mask(k), acc[k]);
            else L::store(rows[i] + x + lanes * k, acc[k]);
        }
    }
}

// Results of this many bytes and more go one row at a time.
constexpr int64_t kPairedResultBytes = int64_t{16} << 20;

// Columns below which a float row sum of 8u samples can't pass 2^24 within
// the next block: 255 x (x + 32) <= 2^24 for every x up to here.
constexpr int kUncheckedColumns = (1 << 24) / 255 - kBlockOf32;
constexpr int32_t kExactFloatLimit = 1 << 24;

// Integral (and squared integral) of an 8u source. D: Lum32s or Lum32f;
// Q: NoSqr, Lum32s or Lum64f.
template <class D, class Q>
struct PlainIntegral {
    static constexpr bool hasSqr = !std::is_same_v<Q, NoSqr>;
    static constexpr bool floatSum = std::is_same_v<D, Lum32f>;

    const Lum8u* src;
    int sStep;
    D* dst;
    int dStep;
    Q* sqr;
    int qStep;
    int w;
    D value;
    Q valueSqr;

    // Source rows y .. y + R - 1 into result rows y + 1 .. y + R. With
    // R == 1 a float sum may leave the vector path where it passes 2^24.
    template <int R>
    void rows(int y) const {
        const Lum8u* s[R];
        D* dc[R];
        [[maybe_unused]] Q* qc[R];
        const D* dp = rowAt(dst, dStep, y) + 1;  // column 1: that of source sample 0
        [[maybe_unused]] const Q* qp = nullptr;
        if constexpr (hasSqr) qp = rowAt(sqr, qStep, y) + 1;
        for (int i = 0; i < R; ++i) {
            s[i] = rowAt(src, sStep, y + i);
            dc[i] = rowAt(dst, dStep, y + 1 + i) + 1;
            dc[i][-1] = value;
            if constexpr (hasSqr) {
                qc[i] = rowAt(sqr, qStep, y + 1 + i) + 1;
                qc[i][-1] = valueSqr;
            }
        }
        Int32Run runs[R];
        [[maybe_unused]] typename ResultOf<Q>::Run sqrRuns[R];
        // Room for one more block while the float row sum stays exact.
        auto exactAhead = [&](int x) {
            return !floatSum || R > 1 || x <= kUncheckedColumns || runs[0].carried() <= kExactFloatLimit - kBlockOf32 * 255;
        };
        __m256i bytes[R];
        int x = 0;
        for (; x + kBlockOf32 <= w && exactAhead(x); x += kBlockOf32) {
            for (int i = 0; i < R; ++i) bytes[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s[i] + x));
            resultBlock<R, false>(dp, dc, runs, bytes, x, kBlockOf32, samplePrefix);
            if constexpr (hasSqr) resultBlock<R, false>(qp, qc, sqrRuns, bytes, x, kBlockOf32, squarePrefix);
        }
        if (x < w && x + kBlockOf32 > w && exactAhead(x)) {
            // The last samples from zero-padded copies, stored through masks.
            for (int i = 0; i < R; ++i) {
                alignas(32) uint8_t tail[kBlockOf32] = {};
                std::memcpy(tail, s[i] + x, static_cast<size_t>(w - x));
                bytes[i] = _mm256_load_si256(reinterpret_cast<const __m256i*>(tail));
            }
            resultBlock<R, true>(dp, dc, runs, bytes, x, w - x, samplePrefix);
            if constexpr (hasSqr) resultBlock<R, true>(qp, qc, sqrRuns, bytes, x, w - x, squarePrefix);
            x = w;
        }
        if constexpr (floatSum && R == 1) {
            // Past 2^24 the float row sum rounds: one sample at a time.
            if (x < w) {
                float r = static_cast<float>(runs[0].carried());
                [[maybe_unused]] double rq = 0.0;
                if constexpr (hasSqr) rq = sqrRuns[0].carried();
                for (; x < w; ++x) {
                    r = r + static_cast<float>(s[0][x]);
                    dc[0][x] = dp[x] + r;
                    if constexpr (hasSqr) {
                        rq = rq + static_cast<double>(s[0][x] * s[0][x]);
                        qc[0][x] = qp[x] + rq;
                    }
                }
            }
        }
    }

    void run(int h) const {
        isimd::fillRow(dst, w + 1, value);
        if constexpr (hasSqr) isimd::fillRow(sqr, w + 1, valueSqr);
        // Pairs of rows share the loads of the row above; a float sum that
        // may pass 2^24 goes one row at a time. So do results too large to
        // stay in the last-level cache: there the two extra memory streams
        // of a pair cost more than the loads it saves.
        int64_t resultBytes = int64_t{w + 1} * (int64_t{h} + 1) * static_cast<int64_t>(sizeof(D));
        if constexpr (hasSqr) resultBytes += int64_t{w + 1} * (int64_t{h} + 1) * static_cast<int64_t>(sizeof(Q));
        const bool pairs = (!floatSum || w <= kUncheckedColumns + 1) && resultBytes < kPairedResultBytes;
        int y = 0;
        if (pairs)
            for (; y + 2 <= h; y += 2) rows<2>(y);
        for (; y < h; ++y) rows<1>(y);
    }
};

template <class D, class Q>
void plainRows(const Lum8u* src, int sStep, D* dst, int dStep, Q* sqr, int qStep, int w, int h, D value,
               Q valueSqr) {
    PlainIntegral<D, Q>{src, sStep, dst, dStep, sqr, qStep, w, value, valueSqr}.run(h);
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
