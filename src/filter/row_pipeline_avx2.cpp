// Row stage of the separable pipeline, AVX2.
//
// A row is cut in three: the output columns left of the anchor, computed
// from a left strip (the outside samples in front of a copy of the row's
// first samples); the interior, read in place from the source row; and the
// columns right of the interior, from a right strip. A row narrower than the
// kernel comes wholly from one strip. Output sample j of the interior reads
// p[j + i * C] for tap i, C being the channel count, so three interleaved
// channels are one channel with a tap stride of 3.
//
// Each member is an op with a vector form (16 or 8 outputs), a scalar form
// that gives the same bits, and a scalar form for the strip columns, which
// differs from the interior only where the arithmetic says so (16s general
// length, Low_16s).
#include <cmath>
#include <cstring>
#include <type_traits>

#include "filter/pipeline_kernels.h"
#include "filter/pipeline_simd.h"
#include "frame/border.h"
#include "frame/carve.h"
#include "frame/rows.h"

namespace lum::kernel {
namespace {

using namespace pipe;

// ------------------------------------------------------------ strips

// out[(p - p0) * C + c] = B(p) for p in [p0, p1): the row's own sample inside,
// the border rule of `word` outside.
template <class T>
void fillStrip(const T* s, int n, int C, int p0, int p1, int word, const T* value, T* out) {
    const int code = border::lowCode(word);
    const bool lowMem = (word & border::kLeft) != 0;
    const bool highMem = (word & border::kRight) != 0;
    for (int p = p0; p < p1; ++p, out += C) {
        const bool inside = p >= 0 && p < n;
        if (!inside && code == border::kConstant && !(p < 0 ? lowMem : highMem)) {
            for (int c = 0; c < C; ++c) out[c] = value[c];
            continue;
        }
        const int j = inside ? p : border::sourceIndex(p, n, code, lowMem, highMem);
        const T* src = s + static_cast<ptrdiff_t>(j) * C;
        for (int c = 0; c < C; ++c) out[c] = src[c];
    }
}

// Outputs [0, n) of the interior: whole vectors, then one vector that ends at
// n and overlaps the previous one (recomputing the same values), or single
// samples when the interior is shorter than a vector.
template <class Op>
void interiorRun(const Op& op, const typename Op::Src* s, typename Op::Dst* d, int n) {
    constexpr int V = Op::lanes;
    int x = 0;
    for (; x + V <= n; x += V) op.vec(s + x, d + x);
    if (x == n) return;
    if (n >= V) {
        op.vec(s + n - V, d + n - V);
        return;
    }
    for (; x < n; ++x) d[x] = op.one(s + x);
}

template <class Op>
void stripRun(const Op& op, const typename Op::Src* e, typename Op::Dst* d, int n) {
    for (int j = 0; j < n; ++j) d[j] = op.edge(e + j);
}

template <class Op>
void rowDriver(const typename Op::Src* src, int srcStep, typename Op::Dst* const* dstRows, const RowShape& sh,
               const typename Op::Src* value, typename Op::Src* strip, const Op& op) {
    const int C = sh.channels, k = sh.k, a = sh.anchor, w = sh.width;
    const int inner = w - k + 1;  // columns read in place
    const int right = k - 1 - a;
    for (int y = 0; y < sh.height; ++y) {
        const typename Op::Src* s = rowAt(src, srcStep, y);
        typename Op::Dst* d = dstRows[y];
        if (inner <= 0) {
            fillStrip(s, w, C, -a, w + right, sh.border, value, strip);
            stripRun(op, strip, d, w * C);
            continue;
        }
        if (a > 0) {
            fillStrip(s, w, C, -a, k - 1, sh.border, value, strip);
            stripRun(op, strip, d, a * C);
        }
        interiorRun(op, s, d + a * C, inner * C);
        if (right > 0) {
            fillStrip(s, w, C, inner, w + right, sh.border, value, strip);
            stripRun(op, strip, d + (inner + a) * C, right * C);
        }
    }
}

// Coefficient pairs (k[2m], k[2m + 1]) as 32-bit lanes for _mm256_madd_epi16,
// splatted to whole vectors; an odd last tap pairs with zero.
inline int splatPairs(const Lum16s* kernel, int k, __m256i* out) {
    const int pairs = (k + 1) / 2;
    for (int m = 0; m < pairs; ++m) {
        const uint32_t lo = static_cast<uint16_t>(kernel[2 * m]);
        const uint32_t hi = 2 * m + 1 < k ? static_cast<uint16_t>(kernel[2 * m + 1]) : 0u;
        _mm256_storeu_si256(out + m, _mm256_set1_epi32(static_cast<int>(lo | (hi << 16))));
    }
    return pairs;
}

// Sum over taps of kernel[i] * p[i * C] in 32-bit lanes by pairs of taps:
// lo holds outputs 0-3 and 8-11, hi 4-7 and 12-15 (the unpack's order); a
// saturating pack of (lo, hi) restores the order. Products and pair sums are
// exact; the sum over pairs wraps modulo 2^32. `groupEnd(lo, hi)` runs after
// every second pair (every four taps) and after the last.
template <int C, class Src, class GroupEnd>
inline void pairSums(const Src* p, int k, const __m256i* pairs, __m256i& lo, __m256i& hi, GroupEnd groupEnd) {
    const int full = k / 2;
    for (int m = 0; m < full; ++m) {
        const __m256i a = load16x16(p + 2 * m * C);
        const __m256i b = load16x16(p + (2 * m + 1) * C);
        const __m256i c = _mm256_loadu_si256(pairs + m);
        lo = _mm256_add_epi32(lo, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), c));
        hi = _mm256_add_epi32(hi, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), c));
        if (m & 1) groupEnd(lo, hi);
    }
    if (k & 1) {
        const __m256i a = load16x16(p + (k - 1) * C);
        const __m256i z = _mm256_setzero_si256();
        const __m256i c = _mm256_loadu_si256(pairs + full);
        lo = _mm256_add_epi32(lo, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, z), c));
        hi = _mm256_add_epi32(hi, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, z), c));
    }
    if ((k & 1) || (full & 1)) groupEnd(lo, hi);
}

template <int C, class Src>
inline uint32_t intSum(const Src* p, const Lum16s* kernel, int k) {
    uint32_t s = 0;
    for (int i = 0; i < k; ++i) s += wrapMul(kernel[i], p[i * C]);
    return s;
}

// ------------------------------------------------------------ 8u16s

// Exact integer sum, times r in float, clamp to 16 bits, then nearest or
// truncation.
template <int C, int K, bool Nearest>
struct Row8u16s {
    using Src = Lum8u;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    const Lum16s* kernel;
    int kRun;
    const __m256i* pairs;
    float r;

    int taps() const { return K ? K : kRun; }

    __m256i finish(__m256i s) const {
        __m256 f = _mm256_mul_ps(_mm256_cvtepi32_ps(s), _mm256_set1_ps(r));
        f = _mm256_min_ps(_mm256_max_ps(f, _mm256_set1_ps(-32768.0f)), _mm256_set1_ps(32767.0f));
        return Nearest ? _mm256_cvtps_epi32(f) : _mm256_cvttps_epi32(f);
    }
    void vec(const Src* p, Dst* q) const {
        __m256i lo = _mm256_setzero_si256(), hi = lo;
        pairSums<C>(p, taps(), pairs, lo, hi, [](__m256i&, __m256i&) {});
        store16(q, _mm256_packs_epi32(finish(lo), finish(hi)));
    }
    Dst one(const Src* p) const {
        const int32_t s = static_cast<int32_t>(intSum<C>(p, kernel, taps()));
        const float f = clampTo(static_cast<float>(s) * r, -32768.0f, 32767.0f);
        return static_cast<Dst>(Nearest ? cvtNearest(f) : cvtTrunc(f));
    }
    Dst edge(const Src* p) const { return one(p); }
};

// ------------------------------------------------------------ 16s

// k = 3 in float: r * fma(k2, x2, k1 * x1) fused with (r * x0) * k0.
template <int C>
struct Row16sK3 {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    float k0, k1, k2, r;

    __m256i half(const Src* p) const {
        const __m256 x0 = load8f(p), x1 = load8f(p + C), x2 = load8f(p + 2 * C);
        const __m256 vr = _mm256_set1_ps(r);
        const __m256 a = _mm256_fmadd_ps(_mm256_set1_ps(k2), x2, _mm256_mul_ps(_mm256_set1_ps(k1), x1));
        const __m256 b = _mm256_mul_ps(_mm256_mul_ps(vr, x0), _mm256_set1_ps(k0));
        __m256 f = _mm256_fmadd_ps(vr, a, b);
        f = _mm256_min_ps(_mm256_max_ps(f, _mm256_set1_ps(-32768.0f)), _mm256_set1_ps(32767.0f));
        return _mm256_cvtps_epi32(f);
    }
    void vec(const Src* p, Dst* q) const { store16(q, packOrdered16s(half(p), half(p + 8))); }
    Dst one(const Src* p) const {
        const float x0 = p[0], x1 = p[C], x2 = p[2 * C];
        const float a = std::fma(k2, x2, k1 * x1);
        const float b = (r * x0) * k0;
        return static_cast<Dst>(cvtNearest(clampTo(std::fma(r, a, b), -32768.0f, 32767.0f)));
    }
    Dst edge(const Src* p) const { return one(p); }
};

// k = 5 with 32-bit sums: times r, nearest, and the saturating pack as the
// only clamp (a sum that leaves int32 has wrapped; a product outside int32
// converts to the indefinite value and packs to -32768).
template <int C>
struct Row16sK5Int {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    const Lum16s* kernel;
    const __m256i* pairs;
    float r;

    __m256i finish(__m256i s) const {
        return _mm256_cvtps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(s), _mm256_set1_ps(r)));
    }
    void vec(const Src* p, Dst* q) const {
        __m256i lo = _mm256_setzero_si256(), hi = lo;
        pairSums<C>(p, 5, pairs, lo, hi, [](__m256i&, __m256i&) {});
        store16(q, _mm256_packs_epi32(finish(lo), finish(hi)));
    }
    Dst one(const Src* p) const {
        const int32_t s = static_cast<int32_t>(intSum<C>(p, kernel, 5));
        return sat16(cvtNearest(static_cast<float>(s) * r));
    }
    Dst edge(const Src* p) const { return one(p); }
};

// k = 5, narrow rows with large coefficients: coefficients r * k[i], the
// first product, then fused multiply-adds in tap order; clamp, nearest.
template <int C>
struct Row16sK5Float {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    float c[5];

    __m256i half(const Src* p) const {
        __m256 acc = _mm256_mul_ps(_mm256_set1_ps(c[0]), load8f(p));
        for (int i = 1; i < 5; ++i) acc = _mm256_fmadd_ps(_mm256_set1_ps(c[i]), load8f(p + i * C), acc);
        acc = _mm256_min_ps(_mm256_max_ps(acc, _mm256_set1_ps(-32768.0f)), _mm256_set1_ps(32767.0f));
        return _mm256_cvtps_epi32(acc);
    }
    void vec(const Src* p, Dst* q) const { store16(q, packOrdered16s(half(p), half(p + 8))); }
    Dst one(const Src* p) const {
        float acc = c[0] * static_cast<float>(p[0]);
        for (int i = 1; i < 5; ++i) acc = std::fma(c[i], static_cast<float>(p[i * C]), acc);
        return static_cast<Dst>(cvtNearest(clampTo(acc, -32768.0f, 32767.0f)));
    }
    Dst edge(const Src* p) const { return one(p); }
};

// Other lengths: 32-bit sums of four taps each (wrapping), converted to
// float and added group after group; times r, clamp, nearest. The strip
// columns form float products and add them in tap order.
template <int C, int K>
struct Row16sGeneral {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    const Lum16s* kernel;
    int k;
    const __m256i* pairs;
    float r;

    __m256i finish(__m256 f) const {
        f = _mm256_mul_ps(f, _mm256_set1_ps(r));
        f = _mm256_min_ps(_mm256_max_ps(f, _mm256_set1_ps(-32768.0f)), _mm256_set1_ps(32767.0f));
        return _mm256_cvtps_epi32(f);
    }
    void vec(const Src* p, Dst* q) const {
        __m256i lo = _mm256_setzero_si256(), hi = lo;
        __m256 flo = _mm256_setzero_ps(), fhi = flo;
        bool first = true;
        pairSums<C>(p, K ? K : k, pairs, lo, hi, [&](__m256i& l, __m256i& h) {
            const __m256 gl = _mm256_cvtepi32_ps(l), gh = _mm256_cvtepi32_ps(h);
            flo = first ? gl : _mm256_add_ps(flo, gl);
            fhi = first ? gh : _mm256_add_ps(fhi, gh);
            first = false;
            l = h = _mm256_setzero_si256();
        });
        store16(q, _mm256_packs_epi32(finish(flo), finish(fhi)));
    }
    Dst fin(float acc) const { return static_cast<Dst>(cvtNearest(clampTo(acc * r, -32768.0f, 32767.0f))); }
    Dst one(const Src* p) const {
        const int k = K ? K : this->k;
        float acc = 0.0f;
        for (int g = 0; g < k; g += 4) {
            uint32_t s = 0;
            for (int i = g; i < g + 4 && i < k; ++i) s += wrapMul(kernel[i], p[i * C]);
            const float f = static_cast<float>(static_cast<int32_t>(s));
            acc = g == 0 ? f : acc + f;
        }
        return fin(acc);
    }
    Dst edge(const Src* p) const {
        const int k = K ? K : this->k;
        float acc = static_cast<float>(kernel[0]) * static_cast<float>(p[0]);
        for (int i = 1; i < k; ++i) acc = acc + static_cast<float>(kernel[i]) * static_cast<float>(p[i * C]);
        return fin(acc);
    }
};

// ------------------------------------------------------------ 16u and 32f

// Float lanes: the first product, then fused multiply-adds in tap order
// (k = 3 for 32f: the middle tap first, then taps 0 and 2).
// Splatted coefficients sit 16-byte aligned in the 16u buffer: loaded unaligned.
inline __m256 coefAt(const __m256* c, int i) { return _mm256_loadu_ps(reinterpret_cast<const float*>(c + i)); }

template <int C, int K, class T>
inline __m256 floatTaps(const T* p, int k, const __m256* c) {
    if constexpr (K == 3 && std::is_same_v<T, Lum32f>) {
        __m256 acc = _mm256_mul_ps(coefAt(c, 1), load8f(p + C));
        acc = _mm256_fmadd_ps(coefAt(c, 0), load8f(p), acc);
        return _mm256_fmadd_ps(coefAt(c, 2), load8f(p + 2 * C), acc);
    } else {
        const int n = K ? K : k;
        __m256 acc = _mm256_mul_ps(coefAt(c, 0), load8f(p));
        for (int i = 1; i < n; ++i) acc = _mm256_fmadd_ps(coefAt(c, i), load8f(p + i * C), acc);
        return acc;
    }
}
template <int C, int K, class T, class Coef>
inline float floatTapsOne(const T* p, int k, const Coef* kernel) {
    if constexpr (K == 3 && std::is_same_v<T, Lum32f>) {
        float acc = kernel[1] * p[C];
        acc = std::fma(kernel[0], p[0], acc);
        return std::fma(kernel[2], p[2 * C], acc);
    } else {
        const int n = K ? K : k;
        float acc = static_cast<float>(kernel[0]) * static_cast<float>(p[0]);
        for (int i = 1; i < n; ++i) acc = std::fma(static_cast<float>(kernel[i]), static_cast<float>(p[i * C]), acc);
        return acc;
    }
}

// 16u: times r, clamp 0..65535, nearest (k = 3, 5) or truncation.
template <int C, int K, bool Nearest>
struct Row16u {
    using Src = Lum16u;
    using Dst = Lum16u;
    static constexpr int lanes = 16;
    const Lum16u* kernel;
    int k;
    const __m256* c;
    float r;

    __m256i half(const Src* p) const {
        __m256 f = _mm256_mul_ps(floatTaps<C, K>(p, k, c), _mm256_set1_ps(r));
        f = _mm256_min_ps(_mm256_max_ps(f, _mm256_setzero_ps()), _mm256_set1_ps(65535.0f));
        return Nearest ? _mm256_cvtps_epi32(f) : _mm256_cvttps_epi32(f);
    }
    void vec(const Src* p, Dst* q) const { store16(q, packOrdered16u(half(p), half(p + 8))); }
    Dst one(const Src* p) const {
        const float f = clampTo(floatTapsOne<C, K>(p, k, kernel) * r, 0.0f, 65535.0f);
        return static_cast<Dst>(Nearest ? cvtNearest(f) : cvtTrunc(f));
    }
    Dst edge(const Src* p) const { return one(p); }
};

template <int C, int K>
struct Row32f {
    using Src = Lum32f;
    using Dst = Lum32f;
    static constexpr int lanes = 8;
    const Lum32f* kernel;
    int k;
    const __m256* c;

    void vec(const Src* p, Dst* q) const { _mm256_storeu_ps(q, floatTaps<C, K>(p, k, c)); }
    Dst one(const Src* p) const { return floatTapsOne<C, K>(p, k, kernel); }
    Dst edge(const Src* p) const { return one(p); }
};

// ------------------------------------------------------------ Low_16s

// Interior: low 16 bits of each product, summed modulo 65536, then
// saturate((sum * fixedScale) >> 14). Strip columns: the sum and the product
// with the scale in wrapping 32-bit arithmetic, keeping the low 16 bits of
// the shifted product, unsaturated.
template <int C, int K>
struct RowLow {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    const Lum16s* kernel;
    int k;
    const __m128i* coef;  // each tap in eight 16-bit lanes
    int16_t scale;

    void vec(const Src* p, Dst* q) const {
        const int n = K ? K : k;
        __m256i s = _mm256_mullo_epi16(load16x16(p), _mm256_broadcastsi128_si256(_mm_loadu_si128(coef)));
        for (int i = 1; i < n; ++i)
            s = _mm256_add_epi16(s, _mm256_mullo_epi16(load16x16(p + i * C),
                                                       _mm256_broadcastsi128_si256(_mm_loadu_si128(coef + i))));
        const __m256i fs = _mm256_set1_epi16(scale);
        const __m256i lo = _mm256_mullo_epi16(s, fs), hi = _mm256_mulhi_epi16(s, fs);
        const __m256i p0 = _mm256_srai_epi32(_mm256_unpacklo_epi16(lo, hi), 14);
        const __m256i p1 = _mm256_srai_epi32(_mm256_unpackhi_epi16(lo, hi), 14);
        store16(q, _mm256_packs_epi32(p0, p1));
    }
    Dst one(const Src* p) const {
        const int n = K ? K : k;
        uint16_t s = 0;
        for (int i = 0; i < n; ++i) s = static_cast<uint16_t>(s + wrapMul(kernel[i], p[i * C]));
        return sat16((static_cast<int16_t>(s) * scale) >> 14);
    }
    Dst edge(const Src* p) const {
        const int n = K ? K : k;
        const uint32_t s = intSum<C>(p, kernel, n);
        return static_cast<Dst>(static_cast<int32_t>(s * static_cast<uint32_t>(static_cast<int32_t>(scale))) >> 14);
    }
};

// The symmetric 5-tap kernel of divisor 16: k0 * (x0 + x4) + k1 * (x1 + x3)
// + k2 * x2 modulo 65536, shifted right by 4 as a signed 16-bit value, in
// every column. Large images are written around the cache.
struct RowLowSym5 {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    int16_t k0, k1, k2;
    bool stream;

    void vec(const Src* p, Dst* q) const {
        const __m256i o = _mm256_add_epi16(load16x16(p), load16x16(p + 4));
        const __m256i m = _mm256_add_epi16(load16x16(p + 1), load16x16(p + 3));
        __m256i s = _mm256_mullo_epi16(o, _mm256_set1_epi16(k0));
        s = _mm256_add_epi16(s, _mm256_mullo_epi16(m, _mm256_set1_epi16(k1)));
        s = _mm256_add_epi16(s, _mm256_mullo_epi16(load16x16(p + 2), _mm256_set1_epi16(k2)));
        s = _mm256_srai_epi16(s, 4);
        if (stream && (reinterpret_cast<uintptr_t>(q) & 31) == 0)
            _mm256_stream_si256(reinterpret_cast<__m256i*>(q), s);
        else
            store16(q, s);
    }
    Dst one(const Src* p) const {
        uint16_t s = static_cast<uint16_t>(wrapMul(k0, static_cast<uint16_t>(p[0] + p[4])));
        s = static_cast<uint16_t>(s + wrapMul(k1, static_cast<uint16_t>(p[1] + p[3])));
        s = static_cast<uint16_t>(s + wrapMul(k2, p[2]));
        return static_cast<Dst>(static_cast<int16_t>(s) >> 4);
    }
    Dst edge(const Src* p) const { return one(p); }
};

// ------------------------------------------------------------ dispatch

template <int C>
void row8u16s(const Lum8u* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh, const Lum16s* kernel,
              const Lum8u* value, int divisor, void* buffer) {
    Carver carve(buffer, 16);
    __m256i* pairs = carve.take<__m256i>(32 * ((sh.k + 1) / 2));
    Lum8u* strip = carve.take<Lum8u>(2 * sh.k * C);
    splatPairs(kernel, sh.k, pairs);
    const float r = 1.0f / static_cast<float>(divisor);
    const bool wide = sh.width >= 256;
    if (sh.k == 3)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 3, true>{kernel, 3, pairs, r});
    else if (sh.k == 5 && wide)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 5, true>{kernel, 5, pairs, r});
    else if (sh.k == 5)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 5, false>{kernel, 5, pairs, r});
    else if (sh.k == 7 && wide)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 7, true>{kernel, 7, pairs, r});
    else if (sh.k == 7)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 7, false>{kernel, 7, pairs, r});
    else if (wide)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 0, true>{kernel, sh.k, pairs, r});
    else
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row8u16s<C, 0, false>{kernel, sh.k, pairs, r});
}

template <int C>
void row16s(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh, const Lum16s* kernel,
            const Lum16s* value, int divisor, void* buffer) {
    Carver carve(buffer, 16);
    __m256i* pairs = carve.take<__m256i>(32 * ((sh.k + 1) / 2));
    Lum16s* strip = carve.take<Lum16s>(2 * 2 * sh.k * C);
    const float r = 1.0f / static_cast<float>(divisor);
    if (sh.k == 3) {
        rowDriver(src, srcStep, dstRows, sh, value, strip,
                  Row16sK3<C>{static_cast<float>(kernel[0]), static_cast<float>(kernel[1]),
                              static_cast<float>(kernel[2]), r});
        return;
    }
    splatPairs(kernel, sh.k, pairs);
    if (sh.k == 5) {
        int absSum = 0;
        for (int i = 0; i < 5; ++i) absSum += kernel[i] < 0 ? -kernel[i] : kernel[i];
        if (sh.width >= 256 || absSum < 65535) {
            rowDriver(src, srcStep, dstRows, sh, value, strip, Row16sK5Int<C>{kernel, pairs, r});
        } else {
            Row16sK5Float<C> op;
            for (int i = 0; i < 5; ++i) op.c[i] = static_cast<float>(kernel[i]) * r;
            rowDriver(src, srcStep, dstRows, sh, value, strip, op);
        }
        return;
    }
    if (sh.k == 7)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16sGeneral<C, 7>{kernel, 7, pairs, r});
    else
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16sGeneral<C, 0>{kernel, sh.k, pairs, r});
}

template <int C>
void row16u(const Lum16u* src, int srcStep, Lum16u* const* dstRows, const RowShape& sh, const Lum16u* kernel,
            const Lum16u* value, int divisor, void* buffer) {
    Carver carve(buffer, 16);
    __m256* c = carve.take<__m256>(32 * sh.k);
    Lum16u* strip = carve.take<Lum16u>(2 * 2 * sh.k * C);
    for (int i = 0; i < sh.k; ++i) _mm256_storeu_ps(reinterpret_cast<float*>(c + i), _mm256_set1_ps(kernel[i]));
    const float r = 1.0f / static_cast<float>(divisor);
    if (sh.k == 3)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16u<C, 3, true>{kernel, 3, c, r});
    else if (sh.k == 5)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16u<C, 5, true>{kernel, 5, c, r});
    else if (sh.k == 7)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16u<C, 7, false>{kernel, 7, c, r});
    else
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row16u<C, 0, false>{kernel, sh.k, c, r});
}

template <int C>
void row32f(const Lum32f* src, int srcStep, Lum32f* const* dstRows, const RowShape& sh, const Lum32f* kernel,
            const Lum32f* value, void* buffer) {
    Carver carve(buffer, 32);
    __m256* c = carve.take<__m256>(32 * sh.k);
    Lum32f* strip = carve.take<Lum32f>(4 * 2 * sh.k * C);
    for (int i = 0; i < sh.k; ++i) c[i] = _mm256_set1_ps(kernel[i]);
    if (sh.k == 3)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row32f<C, 3>{kernel, 3, c});
    else if (sh.k == 5)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row32f<C, 5>{kernel, 5, c});
    else if (sh.k == 7)
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row32f<C, 7>{kernel, 7, c});
    else
        rowDriver(src, srcStep, dstRows, sh, value, strip, Row32f<C, 0>{kernel, sh.k, c});
}

// The fixed-point scale of Low_16s: 16384 / divisor in float, truncated,
// kept in 16 bits.
inline int16_t lowScale(int divisor) {
    return static_cast<int16_t>(cvtTrunc(16384.0f / static_cast<float>(divisor)));
}

// Images of at least this many samples bypass the cache in the symmetric
// kernel.
constexpr int64_t kStreamSamples = 0x80001;

template <int C>
void rowLow(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh, const Lum16s* kernel,
            const Lum16s* value, int divisor, void* buffer) {
    Carver carve(buffer, 16);
    __m128i* coef = carve.take<__m128i>(16 * sh.k);
    Lum16s* strip = carve.take<Lum16s>(2 * 2 * sh.k * C);
    if (C == 1 && sh.border == border::kReplicate && sh.k == 5 && sh.anchor == 2 && kernel[0] == kernel[4] &&
        kernel[1] == kernel[3] && sh.width - 2 > 8 && divisor == 16) {
        const bool stream = static_cast<int64_t>(sh.width) * sh.height >= kStreamSamples;
        rowDriver(src, srcStep, dstRows, sh, value, strip, RowLowSym5{kernel[0], kernel[1], kernel[2], stream});
        if (stream) _mm_sfence();
        return;
    }
    for (int i = 0; i < sh.k; ++i) _mm_storeu_si128(coef + i, _mm_set1_epi16(kernel[i]));
    const int16_t scale = lowScale(divisor);
    if (sh.k == 3)
        rowDriver(src, srcStep, dstRows, sh, value, strip, RowLow<C, 3>{kernel, 3, coef, scale});
    else if (sh.k == 5)
        rowDriver(src, srcStep, dstRows, sh, value, strip, RowLow<C, 5>{kernel, 5, coef, scale});
    else if (sh.k == 7)
        rowDriver(src, srcStep, dstRows, sh, value, strip, RowLow<C, 7>{kernel, 7, coef, scale});
    else
        rowDriver(src, srcStep, dstRows, sh, value, strip, RowLow<C, 0>{kernel, sh.k, coef, scale});
}

}  // namespace

void rowPipeline_8u16s(const Lum8u* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh,
                       const Lum16s* kernel, const Lum8u* borderValue, int divisor, void* buffer) {
    if (sh.channels == 1) row8u16s<1>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
    else row8u16s<3>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
}
void rowPipeline_16s(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh,
                     const Lum16s* kernel, const Lum16s* borderValue, int divisor, void* buffer) {
    if (sh.channels == 1) row16s<1>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
    else row16s<3>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
}
void rowPipeline_16u(const Lum16u* src, int srcStep, Lum16u* const* dstRows, const RowShape& sh,
                     const Lum16u* kernel, const Lum16u* borderValue, int divisor, void* buffer) {
    if (sh.channels == 1) row16u<1>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
    else row16u<3>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
}
void rowPipeline_32f(const Lum32f* src, int srcStep, Lum32f* const* dstRows, const RowShape& sh,
                     const Lum32f* kernel, const Lum32f* borderValue, void* buffer) {
    if (sh.channels == 1) row32f<1>(src, srcStep, dstRows, sh, kernel, borderValue, buffer);
    else row32f<3>(src, srcStep, dstRows, sh, kernel, borderValue, buffer);
}
void rowPipeline_Low_16s(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& sh,
                         const Lum16s* kernel, const Lum16s* borderValue, int divisor, void* buffer) {
    if (sh.channels == 1) rowLow<1>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
    else rowLow<3>(src, srcStep, dstRows, sh, kernel, borderValue, divisor, buffer);
}

}  // namespace lum::kernel
