// Window standard deviations over integral images, AVX2.
//
// Per result pixel, from the four corners of the window in the integral
// (s) and in the squared integral (q):
//   s = (A - B) - (C - D), q likewise,
//   v = fma(-(n s), n s, n q), negative v -> 0, t = sqrtf(v).
// With a double n (32f results) v is formed in double and rounded to float
// before the clamp; with a float n (the scaled 32s result) everything runs
// in float and the result is trunc(fma(scale, t, 0.5f)).
//
// Rows are eight pixels a vector; the last one to seven pixels go through
// masked loads and stores, so nothing outside the ROI's row is touched.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "arith/integral_simd.h"
#include "arith/rect_stddev_kernels.h"
#include "frame/simd.h"

namespace lum::kernel {
namespace {

using isimd::Lanes;

template <class T>
const T* cornerRow(const T* base, int step, int64_t v, const Corner& c) {
    const ptrdiff_t bytes = static_cast<ptrdiff_t>(step) * static_cast<ptrdiff_t>(v + c.row) +
                            static_cast<ptrdiff_t>(c.col) * static_cast<ptrdiff_t>(sizeof(T));
    return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(base) + bytes);
}

// The four corner pointers of one result row in one integral.
template <class T>
struct Corners {
    const T* a;
    const T* b;
    const T* c;
    const T* d;
    Corners(const T* base, int step, int64_t v, const Window& w)
        : a(cornerRow(base, step, v, w.a)), b(cornerRow(base, step, v, w.b)), c(cornerRow(base, step, v, w.c)),
          d(cornerRow(base, step, v, w.d)) {}
};

inline __m256i sub(__m256i a, __m256i b) { return _mm256_sub_epi32(a, b); }
inline __m256 sub(__m256 a, __m256 b) { return _mm256_sub_ps(a, b); }
inline __m256d sub(__m256d a, __m256d b) { return _mm256_sub_pd(a, b); }

// (A - B) - (C - D) over one vector from u: eight 32-bit or four 64-bit
// elements; masked lanes read nothing and give 0.
template <bool masked, class T>
inline auto windowSum(const Corners<T>& k, int u, __m256i m) {
    using L = Lanes<T>;
    if constexpr (masked)
        return sub(sub(L::load(k.a + u, m), L::load(k.b + u, m)), sub(L::load(k.c + u, m), L::load(k.d + u, m)));
    else
        return sub(sub(L::load(k.a + u), L::load(k.b + u)), sub(L::load(k.c + u), L::load(k.d + u)));
}

inline __m256d toDouble(__m128 v) { return _mm256_cvtps_pd(v); }
inline __m256d toDouble(__m128i v) { return _mm256_cvtepi32_pd(v); }
inline __m128 lowHalf(__m256 v) { return _mm256_castps256_ps128(v); }
inline __m128 highHalf(__m256 v) { return _mm256_extractf128_ps(v, 1); }
inline __m128i lowHalf(__m256i v) { return _mm256_castsi256_si128(v); }
inline __m128i highHalf(__m256i v) { return _mm256_extracti128_si256(v, 1); }

// v = fma(-(n s), n s, n q) in double, four pixels.
inline __m256d varianceDouble(__m256d n, __m256d s, __m256d q) {
    const __m256d ns = _mm256_mul_pd(n, s);
    const __m256d negNs = _mm256_xor_pd(ns, _mm256_set1_pd(-0.0));
    return _mm256_fmadd_pd(negNs, ns, _mm256_mul_pd(n, q));
}

// Negative v becomes 0 (a NaN passes: max returns its second operand then).
inline __m256 clampedSqrt(__m256 v) { return _mm256_sqrt_ps(_mm256_max_ps(_mm256_setzero_ps(), v)); }

// 32f results with a double normaliser; I is the integral's element.
template <class I>
void windowRowsDouble(const I* src, int sStep, const Lum64f* sqr, int qStep, Lum32f* dst, int dStep, int w, int h,
                      const Window& win, double n) {
    const __m256d vn = _mm256_set1_pd(n);
    for (int v = 0; v < h; ++v) {
        const Corners<I> k(src, sStep, v, win);
        const Corners<Lum64f> kq(sqr, qStep, v, win);
        Lum32f* out = reinterpret_cast<Lum32f*>(reinterpret_cast<uint8_t*>(dst) + static_cast<ptrdiff_t>(dStep) * v);
        auto block = [&](int u, auto maskedTag, int lanes) {
            constexpr bool masked = decltype(maskedTag)::value;
            const __m256i m = simd::firstLanes(lanes);
            const auto s = windowSum<masked>(k, u, m);
            const __m256d qlo = windowSum<masked>(kq, u, isimd::firstDoublesLow(lanes));
            const __m256d qhi = windowSum<masked>(kq, u + 4, isimd::firstDoublesHigh(lanes));
            const __m256d vlo = varianceDouble(vn, toDouble(lowHalf(s)), qlo);
            const __m256d vhi = varianceDouble(vn, toDouble(highHalf(s)), qhi);
            const __m256 var = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(vlo)), _mm256_cvtpd_ps(vhi), 1);
            const __m256 t = clampedSqrt(var);
            if constexpr (masked) Lanes<Lum32f>::store(out + u, m, t);
            else Lanes<Lum32f>::store(out + u, t);
        };
        int u = 0;
        for (; u + 8 <= w; u += 8) block(u, std::false_type{}, 8);
        if (u < w) block(u, std::true_type{}, w - u);
    }
}

}  // namespace

void windowStdDev_32f(const Lum32f* s, int sStep, const Lum64f* q, int qStep, Lum32f* d, int dStep, int w, int h,
                      const Window& win, Lum64f n) {
    windowRowsDouble(s, sStep, q, qStep, d, dStep, w, h, win, n);
}

void windowStdDev_32s32f(const Lum32s* s, int sStep, const Lum64f* q, int qStep, Lum32f* d, int dStep, int w,
                         int h, const Window& win, Lum64f n) {
    windowRowsDouble(s, sStep, q, qStep, d, dStep, w, h, win, n);
}

void windowStdDev_32s(const Lum32s* src, int sStep, const Lum32s* sqr, int qStep, Lum32s* dst, int dStep, int w,
                      int h, const Window& win, Lum32f n, Lum32f scale) {
    const __m256 vn = _mm256_set1_ps(n);
    const __m256 vscale = _mm256_set1_ps(scale);
    const __m256 half = _mm256_set1_ps(0.5f);
    const __m256 signBit = _mm256_set1_ps(-0.0f);
    for (int v = 0; v < h; ++v) {
        const Corners<Lum32s> k(src, sStep, v, win);
        const Corners<Lum32s> kq(sqr, qStep, v, win);
        Lum32s* out = reinterpret_cast<Lum32s*>(reinterpret_cast<uint8_t*>(dst) + static_cast<ptrdiff_t>(dStep) * v);
        auto block = [&](int u, auto maskedTag, int lanes) {
            constexpr bool masked = decltype(maskedTag)::value;
            const __m256i m = simd::firstLanes(lanes);
            const __m256 s = _mm256_cvtepi32_ps(windowSum<masked>(k, u, m));
            const __m256 q = _mm256_cvtepi32_ps(windowSum<masked>(kq, u, m));
            const __m256 ns = _mm256_mul_ps(vn, s);
            const __m256 var = _mm256_fmadd_ps(_mm256_xor_ps(ns, signBit), ns, _mm256_mul_ps(vn, q));
            const __m256 t = clampedSqrt(var);
            // Truncation; out of range and NaN give 0x80000000.
            const __m256i r = _mm256_cvttps_epi32(_mm256_fmadd_ps(vscale, t, half));
            if constexpr (masked) Lanes<Lum32s>::store(out + u, m, r);
            else Lanes<Lum32s>::store(out + u, r);
        };
        int u = 0;
        for (; u + 8 <= w; u += 8) block(u, std::false_type{}, 8);
        if (u < w) block(u, std::true_type{}, w - u);
    }
}

}  // namespace lum::kernel
