// Column stage of the separable pipeline, AVX2.
//
// Output row y combines rows srcRows[y .. y + k - 1] sample by sample, so a
// row of C channels is one row of n = width x C samples. Loads are unaligned
// whatever the pointers' alignment: aligned and unaligned rows run the same
// instructions and give the same bits. A row ends in one vector that
// overlaps the previous one (recomputing equal values), or in single
// samples when it is shorter than a vector.
#include <cmath>
#include <type_traits>

#include "filter/pipeline_kernels.h"
#include "filter/pipeline_simd.h"
#include "frame/carve.h"
#include "frame/rows.h"

namespace lum::kernel {
namespace {

using namespace pipe;

template <class Op>
void columnRun(const Op& op, const typename Op::Src* const* rows, typename Op::Dst* d, int n) {
    constexpr int V = Op::lanes;
    int x = 0;
    for (; x + V <= n; x += V) op.vec(rows, x, d + x);
    if (x == n) return;
    if (n >= V) {
        op.vec(rows, n - V, d + n - V);
        return;
    }
    for (; x < n; ++x) d[x] = op.one(rows, x);
}

template <class Op>
void columnDriver(const typename Op::Src* const* srcRows, typename Op::Dst* dst, int dstStep,
                  const ColumnShape& sh, const Op& op) {
    for (int y = 0; y < sh.height; ++y) columnRun(op, srcRows + y, rowAt(dst, dstStep, y), sh.n);
}

// ------------------------------------------------------------ 16s family

// Float sums of c[i] = r * kernel[i] times the rows, for eight samples:
// general lengths add the products in tap order, unfused; the symmetric
// 3-tap form adds the outer rows first and multiplies them once.
enum class Sum16s { TapOrder, Symmetric3 };

template <Sum16s Form, int K>
struct Taps16s {
    const float* c;  // coefficients r * kernel[i], or null for long kernels
    const Lum16s* kernel;
    float r;
    int k;

    // A kernel longer than the stack array forms r * kernel[i] as it goes:
    // the same product, so the same bits.
    float coef(int i) const { return c != nullptr ? c[i] : r * static_cast<float>(kernel[i]); }

    __m256 vec(const Lum16s* const* rows, int x) const {
        if constexpr (Form == Sum16s::Symmetric3) {
            const __m256 t = _mm256_add_ps(load8f(rows[0] + x), load8f(rows[2] + x));
            return _mm256_add_ps(_mm256_mul_ps(_mm256_set1_ps(c[0]), t),
                                 _mm256_mul_ps(_mm256_set1_ps(c[1]), load8f(rows[1] + x)));
        } else {
            const int n = K ? K : k;
            __m256 acc = _mm256_mul_ps(_mm256_set1_ps(coef(0)), load8f(rows[0] + x));
            for (int i = 1; i < n; ++i)
                acc = _mm256_add_ps(acc, _mm256_mul_ps(_mm256_set1_ps(coef(i)), load8f(rows[i] + x)));
            return acc;
        }
    }
    float one(const Lum16s* const* rows, int x) const {
        if constexpr (Form == Sum16s::Symmetric3) {
            const float t = static_cast<float>(rows[0][x]) + static_cast<float>(rows[2][x]);
            return c[0] * t + c[1] * static_cast<float>(rows[1][x]);
        } else {
            const int n = K ? K : k;
            float acc = coef(0) * static_cast<float>(rows[0][x]);
            for (int i = 1; i < n; ++i) acc = acc + coef(i) * static_cast<float>(rows[i][x]);
            return acc;
        }
    }
};

// The result types of the family: the rounded int32 through a saturating
// pack to 16 bits, then to 8 bits where the result is a byte.
struct To16s {
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    static void store(Dst* q, __m256i v16) { store16(q, v16); }
    static Dst one(int32_t v) { return sat16(v); }
};
struct To8s {
    using Dst = Lum8s;
    static constexpr int lanes = 16;
    static void store(Dst* q, __m256i v16) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(q), packBytesSigned(v16));
    }
    static Dst one(int32_t v) { return sat8(sat16(v)); }
};
struct To8u {
    using Dst = Lum8u;
    static constexpr int lanes = 16;
    static void store(Dst* q, __m256i v16) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(q), packBytesUnsigned(v16));
    }
    static Dst one(int32_t v) { return satU8(sat16(v)); }
};

// Clamp to the 16-bit range in float before the conversion (so that a sum
// beyond int32 cannot wrap), or leave it to the packs where the coefficients
// cannot carry a sum that far.
template <class Out, class Taps, bool Clamp, bool Nearest = true>
struct Column16s {
    using Src = Lum16s;
    using Dst = typename Out::Dst;
    static constexpr int lanes = 16;
    Taps taps;

    __m256i half(const Src* const* rows, int x) const {
        __m256 f = taps.vec(rows, x);
        if (Clamp) f = _mm256_min_ps(_mm256_max_ps(f, _mm256_set1_ps(-32768.0f)), _mm256_set1_ps(32767.0f));
        return Nearest ? _mm256_cvtps_epi32(f) : _mm256_cvttps_epi32(f);
    }
    void vec(const Src* const* rows, int x, Dst* q) const {
        Out::store(q, packOrdered16s(half(rows, x), half(rows, x + 8)));
    }
    Dst one(const Src* const* rows, int x) const {
        float f = taps.one(rows, x);
        if (Clamp) f = clampTo(f, -32768.0f, 32767.0f);
        return Out::one(Nearest ? cvtNearest(f) : cvtTrunc(f));
    }
};

// One output row of the family. The 8s result truncates its last n mod 4
// samples; everything else rounds to nearest.
template <class Out, class Taps, bool Clamp>
struct Row16sFamily {
    using Src = Lum16s;
    using Dst = typename Out::Dst;
    Column16s<Out, Taps, Clamp, true> nearest;
    Column16s<Out, Taps, Clamp, false> trunc;

    void run(const Src* const* rows, Dst* d, int n) const {
        if constexpr (std::is_same_v<Out, To8s>) {
            const int rounded = n - n % 4;
            columnRun(nearest, rows, d, rounded);
            for (int x = rounded; x < n; ++x) d[x] = trunc.one(rows, x);
        } else {
            columnRun(nearest, rows, d, n);
        }
    }
};

template <class Out, class Taps, bool Clamp>
void run16sFamily(const Lum16s* const* srcRows, typename Out::Dst* dst, int dstStep, const ColumnShape& sh,
                  const Taps& taps) {
    const Row16sFamily<Out, Taps, Clamp> row{{taps}, {taps}};
    for (int y = 0; y < sh.height; ++y) row.run(srcRows + y, rowAt(dst, dstStep, y), sh.n);
}

// Scaled coefficients of kernels up to this length are formed once per call
// on the stack; longer ones form them tap by tap.
constexpr int kStackTaps = 64;

template <class Out>
void column16sFamily(const Lum16s* const* srcRows, typename Out::Dst* dst, int dstStep, const ColumnShape& sh,
                     const Lum16s* kernel, int divisor) {
    const float r = 1.0f / static_cast<float>(divisor);
    if (sh.k == 3) {
        const float c[3] = {r * static_cast<float>(kernel[0]), r * static_cast<float>(kernel[1]),
                            r * static_cast<float>(kernel[2])};
        const float absSum = std::fabs(c[0]) + std::fabs(c[1]) + std::fabs(c[2]);
        const bool clamp = !(absSum < 65535.0f);
        if (kernel[0] == kernel[2]) {
            const Taps16s<Sum16s::Symmetric3, 3> t{c, kernel, r, 3};
            if (clamp) run16sFamily<Out, decltype(t), true>(srcRows, dst, dstStep, sh, t);
            else run16sFamily<Out, decltype(t), false>(srcRows, dst, dstStep, sh, t);
        } else {
            const Taps16s<Sum16s::TapOrder, 3> t{c, kernel, r, 3};
            if (clamp) run16sFamily<Out, decltype(t), true>(srcRows, dst, dstStep, sh, t);
            else run16sFamily<Out, decltype(t), false>(srcRows, dst, dstStep, sh, t);
        }
        return;
    }
    float c[kStackTaps];
    const int k = sh.k;
    const bool stored = k <= kStackTaps;
    if (stored)
        for (int i = 0; i < k; ++i) c[i] = r * static_cast<float>(kernel[i]);
    if (k == 5) {
        run16sFamily<Out, Taps16s<Sum16s::TapOrder, 5>, true>(srcRows, dst, dstStep, sh, {c, kernel, r, 5});
    } else if (k == 7) {
        run16sFamily<Out, Taps16s<Sum16s::TapOrder, 7>, true>(srcRows, dst, dstStep, sh, {c, kernel, r, 7});
    } else {
        run16sFamily<Out, Taps16s<Sum16s::TapOrder, 0>, true>(srcRows, dst, dstStep, sh,
                                                              {stored ? c : nullptr, kernel, r, k});
    }
}

// ------------------------------------------------------------ 16u

template <int K>
struct Column16u {
    using Src = Lum16u;
    using Dst = Lum16u;
    static constexpr int lanes = 16;
    const Lum16u* kernel;
    int k;
    const __m256* c;
    float r;

    __m256i half(const Src* const* rows, int x) const {
        const int k = K ? K : this->k;
        __m256 acc = _mm256_mul_ps(_mm256_loadu_ps(reinterpret_cast<const float*>(c)), load8f(rows[0] + x));
        for (int i = 1; i < k; ++i) acc = _mm256_fmadd_ps(_mm256_loadu_ps(reinterpret_cast<const float*>(c + i)), load8f(rows[i] + x), acc);
        acc = _mm256_mul_ps(acc, _mm256_set1_ps(r));
        acc = _mm256_min_ps(_mm256_max_ps(acc, _mm256_setzero_ps()), _mm256_set1_ps(65535.0f));
        return _mm256_cvtps_epi32(acc);
    }
    void vec(const Src* const* rows, int x, Dst* q) const {
        store16(q, packOrdered16u(half(rows, x), half(rows, x + 8)));
    }
    Dst one(const Src* const* rows, int x) const {
        const int k = K ? K : this->k;
        float acc = static_cast<float>(kernel[0]) * static_cast<float>(rows[0][x]);
        for (int i = 1; i < k; ++i) acc = std::fma(static_cast<float>(kernel[i]), static_cast<float>(rows[i][x]), acc);
        return static_cast<Dst>(cvtNearest(clampTo(acc * r, 0.0f, 65535.0f)));
    }
};

// ------------------------------------------------------------ 32f

enum class Sum32f { Three, Fused, Plain };

template <Sum32f Form, int K = 0>
struct Column32f {
    using Src = Lum32f;
    using Dst = Lum32f;
    static constexpr int lanes = 8;
    const Lum32f* kernel;
    int k;
    const __m256* c;

    void vec(const Src* const* rows, int x, Dst* q) const {
        const int k = K ? K : this->k;
        __m256 acc;
        if constexpr (Form == Sum32f::Three) {
            acc = _mm256_mul_ps(c[1], _mm256_loadu_ps(rows[1] + x));
            acc = _mm256_fmadd_ps(c[0], _mm256_loadu_ps(rows[0] + x), acc);
            acc = _mm256_fmadd_ps(c[2], _mm256_loadu_ps(rows[2] + x), acc);
        } else {
            acc = _mm256_mul_ps(c[0], _mm256_loadu_ps(rows[0] + x));
            for (int i = 1; i < k; ++i) {
                const __m256 v = _mm256_loadu_ps(rows[i] + x);
                acc = Form == Sum32f::Fused ? _mm256_fmadd_ps(c[i], v, acc) : _mm256_add_ps(acc, _mm256_mul_ps(c[i], v));
            }
        }
        _mm256_storeu_ps(q, acc);
    }
    Dst one(const Src* const* rows, int x) const {
        const int k = K ? K : this->k;
        if constexpr (Form == Sum32f::Three) {
            float acc = kernel[1] * rows[1][x];
            acc = std::fma(kernel[0], rows[0][x], acc);
            return std::fma(kernel[2], rows[2][x], acc);
        } else {
            float acc = kernel[0] * rows[0][x];
            for (int i = 1; i < k; ++i)
                acc = Form == Sum32f::Fused ? std::fma(kernel[i], rows[i][x], acc) : acc + kernel[i] * rows[i][x];
            return acc;
        }
    }
};

// ------------------------------------------------------------ Low_16s

template <bool Scaled, int K = 0>
struct ColumnLow {
    using Src = Lum16s;
    using Dst = Lum16s;
    static constexpr int lanes = 16;
    const Lum16s* kernel;
    int k;
    int16_t scale;

    void vec(const Src* const* rows, int x, Dst* q) const {
        const int k = K ? K : this->k;
        __m256i s = _mm256_mullo_epi16(load16x16(rows[0] + x), _mm256_set1_epi16(kernel[0]));
        for (int i = 1; i < k; ++i)
            s = _mm256_add_epi16(s, _mm256_mullo_epi16(load16x16(rows[i] + x), _mm256_set1_epi16(kernel[i])));
        if (Scaled) {
            const __m256i fs = _mm256_set1_epi16(scale);
            const __m256i lo = _mm256_mullo_epi16(s, fs), hi = _mm256_mulhi_epi16(s, fs);
            s = _mm256_packs_epi32(_mm256_srai_epi32(_mm256_unpacklo_epi16(lo, hi), 14),
                                   _mm256_srai_epi32(_mm256_unpackhi_epi16(lo, hi), 14));
        }
        store16(q, s);
    }
    Dst one(const Src* const* rows, int x) const {
        const int k = K ? K : this->k;
        uint16_t s = 0;
        for (int i = 0; i < k; ++i) s = static_cast<uint16_t>(s + wrapMul(kernel[i], rows[i][x]));
        if (!Scaled) return static_cast<Dst>(s);
        return sat16((static_cast<int16_t>(s) * scale) >> 14);
    }
};

template <bool Scaled>
void runLow(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, const ColumnShape& sh, const Lum16s* kernel,
            int16_t scale) {
    if (sh.k == 3) columnDriver(srcRows, dst, dstStep, sh, ColumnLow<Scaled, 3>{kernel, 3, scale});
    else if (sh.k == 5) columnDriver(srcRows, dst, dstStep, sh, ColumnLow<Scaled, 5>{kernel, 5, scale});
    else if (sh.k == 7) columnDriver(srcRows, dst, dstStep, sh, ColumnLow<Scaled, 7>{kernel, 7, scale});
    else columnDriver(srcRows, dst, dstStep, sh, ColumnLow<Scaled, 0>{kernel, sh.k, scale});
}

}  // namespace

void columnPipeline_16s8s(const Lum16s* const* srcRows, Lum8s* dst, int dstStep, const ColumnShape& sh,
                          const Lum16s* kernel, int divisor, void*) {
    column16sFamily<To8s>(srcRows, dst, dstStep, sh, kernel, divisor);
}
void columnPipeline_16s8u(const Lum16s* const* srcRows, Lum8u* dst, int dstStep, const ColumnShape& sh,
                          const Lum16s* kernel, int divisor, void*) {
    column16sFamily<To8u>(srcRows, dst, dstStep, sh, kernel, divisor);
}
void columnPipeline_16s(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, const ColumnShape& sh,
                        const Lum16s* kernel, int divisor, void*) {
    column16sFamily<To16s>(srcRows, dst, dstStep, sh, kernel, divisor);
}

void columnPipeline_16u(const Lum16u* const* srcRows, Lum16u* dst, int dstStep, const ColumnShape& sh,
                        const Lum16u* kernel, int divisor, void* buffer) {
    Carver carve(buffer, 16);
    __m256* c = carve.take<__m256>(32 * sh.k);
    for (int i = 0; i < sh.k; ++i) _mm256_storeu_ps(reinterpret_cast<float*>(c + i), _mm256_set1_ps(kernel[i]));
    const float r = 1.0f / static_cast<float>(divisor);
    if (sh.k == 3) columnDriver(srcRows, dst, dstStep, sh, Column16u<3>{kernel, 3, c, r});
    else if (sh.k == 5) columnDriver(srcRows, dst, dstStep, sh, Column16u<5>{kernel, 5, c, r});
    else if (sh.k == 7) columnDriver(srcRows, dst, dstStep, sh, Column16u<7>{kernel, 7, c, r});
    else columnDriver(srcRows, dst, dstStep, sh, Column16u<0>{kernel, sh.k, c, r});
}

void columnPipeline_32f(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, const ColumnShape& sh,
                        const Lum32f* kernel, void* buffer) {
    Carver carve(buffer, 32);
    __m256* c = carve.take<__m256>(32 * sh.k);
    for (int i = 0; i < sh.k; ++i) c[i] = _mm256_set1_ps(kernel[i]);
    if (sh.k == 3) columnDriver(srcRows, dst, dstStep, sh, Column32f<Sum32f::Three>{kernel, 3, c});
    else if (sh.k == 5) columnDriver(srcRows, dst, dstStep, sh, Column32f<Sum32f::Fused, 5>{kernel, 5, c});
    else if (sh.k == 7) columnDriver(srcRows, dst, dstStep, sh, Column32f<Sum32f::Plain, 7>{kernel, 7, c});
    else columnDriver(srcRows, dst, dstStep, sh, Column32f<Sum32f::Plain>{kernel, sh.k, c});
}

void columnPipeline_Low_16s(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, const ColumnShape& sh,
                            const Lum16s* kernel, int divisor, void*) {
    const int16_t scale = static_cast<int16_t>(cvtTrunc(16384.0f / static_cast<float>(divisor)));
    if (divisor == 1) runLow<false>(srcRows, dst, dstStep, sh, kernel, scale);
    else runLow<true>(srcRows, dst, dstStep, sh, kernel, scale);
}

}  // namespace lum::kernel
