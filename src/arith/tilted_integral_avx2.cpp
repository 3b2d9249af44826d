// Tilted integral images, AVX2.
//
// Each result element depends only on the two result rows above it and on
// two neighbouring samples, never on its left neighbour, so a row runs in
// plain vectors of eight:
//   T2[x + 1] = T1[x] - T0[x + 1] + T1[x + 2] + S[x] + S[x + 1]
// with S[width] taken as 0 (the last column adds one sample only), and the
// two border columns copied from the row above.
//
// Lum32s results wrap, so the order of the integer additions does not
// matter. Lum32f results are formed in double as ((T1 - T0) + T1') + (S +
// S'), the sample sum an integer, and rounded to float once at the store.
// Lum64f squared results follow the same grouping in double.
#include <immintrin.h>

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

// t2 = t1a - t0 + t1c + add over the given lanes; add holds eight 32-bit
// integer sums of samples (or squares). Masked forms take n <= 8 lanes.
template <class T>
struct TiltStep;

template <>
struct TiltStep<Lum32s> {
    template <bool masked>
    static void run(const Lum32s* t1a, const Lum32s* t0, const Lum32s* t1c, Lum32s* t2, __m256i add, int n) {
        using L = Lanes<Lum32s>;
        if constexpr (!masked) {
            const __m256i v = _mm256_add_epi32(_mm256_add_epi32(_mm256_sub_epi32(L::load(t1a), L::load(t0)), L::load(t1c)), add);
            L::store(t2, v);
        } else {
            const __m256i m = simd::firstLanes(n);
            const __m256i v =
                _mm256_add_epi32(_mm256_add_epi32(_mm256_sub_epi32(L::load(t1a, m), L::load(t0, m)), L::load(t1c, m)), add);
            L::store(t2, m, v);
        }
    }
};

// ((a - b) + c) + add for four doubles.
inline __m256d tiltDouble(__m256d a, __m256d b, __m256d c, __m128i add) {
    return _mm256_add_pd(_mm256_add_pd(_mm256_sub_pd(a, b), c), _mm256_cvtepi32_pd(add));
}

template <>
struct TiltStep<Lum32f> {
    template <bool masked>
    static void run(const Lum32f* t1a, const Lum32f* t0, const Lum32f* t1c, Lum32f* t2, __m256i add, int n) {
        using L = Lanes<Lum32f>;
        __m256 a, b, c;
        const __m256i m = simd::firstLanes(n);
        if constexpr (!masked) {
            a = L::load(t1a), b = L::load(t0), c = L::load(t1c);
        } else {
            a = L::load(t1a, m), b = L::load(t0, m), c = L::load(t1c, m);
        }
        const __m256d lo = tiltDouble(_mm256_cvtps_pd(_mm256_castps256_ps128(a)), _mm256_cvtps_pd(_mm256_castps256_ps128(b)),
                                      _mm256_cvtps_pd(_mm256_castps256_ps128(c)), _mm256_castsi256_si128(add));
        const __m256d hi = tiltDouble(_mm256_cvtps_pd(_mm256_extractf128_ps(a, 1)), _mm256_cvtps_pd(_mm256_extractf128_ps(b, 1)),
                                      _mm256_cvtps_pd(_mm256_extractf128_ps(c, 1)), _mm256_extracti128_si256(add, 1));
        const __m256 v = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(lo)), _mm256_cvtpd_ps(hi), 1);
        if constexpr (!masked) L::store(t2, v);
        else L::store(t2, m, v);
    }
};

template <>
struct TiltStep<Lum64f> {
    template <bool masked>
    static void run(const Lum64f* t1a, const Lum64f* t0, const Lum64f* t1c, Lum64f* t2, __m256i add, int n) {
        using L = Lanes<Lum64f>;
        const __m128i addHalf[2] = {_mm256_castsi256_si128(add), _mm256_extracti128_si256(add, 1)};
        for (int k = 0; k < 2; ++k) {
            if constexpr (!masked) {
                L::store(t2 + 4 * k, tiltDouble(L::load(t1a + 4 * k), L::load(t0 + 4 * k), L::load(t1c + 4 * k), addHalf[k]));
            } else {
                const __m256i m = k == 0 ? isimd::firstDoublesLow(n) : isimd::firstDoublesHigh(n);
                L::store(t2 + 4 * k, m,
                         tiltDouble(L::load(t1a + 4 * k, m), L::load(t0 + 4 * k, m), L::load(t1c + 4 * k, m), addHalf[k]));
            }
        }
    }
};

inline __m256i widen8(const uint8_t* p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

// Squares of eight samples held in 32-bit lanes (the high halves are zero).
inline __m256i square(__m256i v) { return _mm256_madd_epi16(v, v); }

template <class D, class Q>
void tiltedRows(const Lum8u* src, int sStep, D* dst, int dStep, Q* sqr, int qStep, int w, int h, D value,
                Q valueSqr) {
    constexpr bool hasSqr = !std::is_same_v<Q, NoSqr>;
    isimd::fillRow(dst, w + 2, value);
    isimd::fillRow(rowAt(dst, dStep, 1), w + 2, value);
    if constexpr (hasSqr) {
        isimd::fillRow(sqr, w + 2, valueSqr);
        isimd::fillRow(rowAt(sqr, qStep, 1), w + 2, valueSqr);
    }
    for (int i = 0; i < h; ++i) {
        const Lum8u* s = rowAt(src, sStep, i);
        const D* t0 = rowAt(dst, dStep, i);
        const D* t1 = rowAt(dst, dStep, i + 1);
        D* t2 = rowAt(dst, dStep, i + 2);
        [[maybe_unused]] const Q* q0 = nullptr;
        [[maybe_unused]] const Q* q1 = nullptr;
        [[maybe_unused]] Q* q2 = nullptr;
        if constexpr (hasSqr) {
            q0 = rowAt(sqr, qStep, i);
            q1 = rowAt(sqr, qStep, i + 1);
            q2 = rowAt(sqr, qStep, i + 2);
        }
        t2[0] = t1[1];
        if constexpr (hasSqr) q2[0] = q1[1];
        int x = 0;
        // Whole vectors while S[x + 1 .. x + 8] stays inside the row.
        for (; x + 8 <= w - 1; x += 8) {
            const __m256i s0 = widen8(s + x), s1 = widen8(s + x + 1);
            TiltStep<D>::template run<false>(t1 + x, t0 + x + 1, t1 + x + 2, t2 + x + 1, _mm256_add_epi32(s0, s1), 8);
            if constexpr (hasSqr)
                TiltStep<Q>::template run<false>(q1 + x, q0 + x + 1, q1 + x + 2, q2 + x + 1,
                                                 _mm256_add_epi32(square(s0), square(s1)), 8);
        }
        // The last 1..8 columns from zero-padded copies: the sample right of
        // the last one counts as 0, which is the last-column rule.
        const int n = w - x;
        alignas(8) uint8_t b0[8] = {}, b1[8] = {};
        std::memcpy(b0, s + x, static_cast<size_t>(n));
        std::memcpy(b1, s + x + 1, static_cast<size_t>(n - 1));
        const __m256i s0 = widen8(b0), s1 = widen8(b1);
        TiltStep<D>::template run<true>(t1 + x, t0 + x + 1, t1 + x + 2, t2 + x + 1, _mm256_add_epi32(s0, s1), n);
        if constexpr (hasSqr)
            TiltStep<Q>::template run<true>(q1 + x, q0 + x + 1, q1 + x + 2, q2 + x + 1,
                                            _mm256_add_epi32(square(s0), square(s1)), n);
        t2[w + 1] = t1[w];
        if constexpr (hasSqr) q2[w + 1] = q1[w];
    }
}

}  // namespace

void tiltedIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, int w, int h, Lum32s value) {
    tiltedRows<Lum32s, NoSqr>(s, sStep, d, dStep, nullptr, 0, w, h, value, NoSqr{});
}

void tiltedIntegral_8u32f(const Lum8u* s, int sStep, Lum32f* d, int dStep, int w, int h, Lum32f value) {
    tiltedRows<Lum32f, NoSqr>(s, sStep, d, dStep, nullptr, 0, w, h, value, NoSqr{});
}

void tiltedSqrIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum32s* q, int qStep, int w, int h,
                             Lum32s value, Lum32s valueSqr) {
    tiltedRows<Lum32s, Lum32s>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

void tiltedSqrIntegral_8u32s64f(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum64f* q, int qStep, int w,
                                int h, Lum32s value, Lum64f valueSqr) {
    tiltedRows<Lum32s, Lum64f>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

void tiltedSqrIntegral_8u32f64f(const Lum8u* s, int sStep, Lum32f* d, int dStep, Lum64f* q, int qStep, int w,
                                int h, Lum32f value, Lum64f valueSqr) {
    tiltedRows<Lum32f, Lum64f>(s, sStep, d, dStep, q, qStep, w, h, value, valueSqr);
}

}  // namespace lum::kernel
