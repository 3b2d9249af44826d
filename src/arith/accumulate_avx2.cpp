// Accumulators, AVX2. Every member runs the one row body of
// frame/pixel_rows.h with its op; each op has a vector and a scalar form of
// the same float operations, fused multiply-adds written out, so that the
// main run, the masked pass and the last pixels give the same bits.
//
// A masked op gets the coefficient c = (mask != 0 ? 1.0 or alpha : +0.0) and
// multiplies by it instead of selecting: every pixel is rewritten, and an
// infinite or NaN source under a zero mask byte still turns d into NaN.
#include <cmath>

#include "arith/accumulate_kernels.h"
#include "frame/pixel_rows.h"

namespace lum::kernel {
namespace {

using simd::PixelImages;
using simd::pixelRows;

// d + s: a plain addition, no coefficient.
struct AddOp {
    __m256 vec(__m256 s, __m256, __m256 d, __m256) const { return _mm256_add_ps(d, s); }
    float one(float s, float, float d, float) const { return d + s; }
};

// fma(c, s, d)
struct AddScaledOp {
    __m256 vec(__m256 s, __m256, __m256 d, __m256 c) const { return _mm256_fmadd_ps(c, s, d); }
    float one(float s, float, float d, float c) const { return std::fma(c, s, d); }
};

// fma(a, b, d): the product is not rounded on its own. With one source this
// is the square.
struct ProductFusedOp {
    __m256 vec(__m256 a, __m256 b, __m256 d, __m256) const { return _mm256_fmadd_ps(a, b, d); }
    float one(float a, float b, float d, float) const { return std::fma(a, b, d); }
};

// fma(c, round(a * b), d): the masked product rounds first, since a product
// of two 16-bit values can need 32 bits and is taken to float before it is
// scaled by the mask.
struct ProductRoundedOp {
    __m256 vec(__m256 a, __m256 b, __m256 d, __m256 c) const {
        return _mm256_fmadd_ps(c, _mm256_mul_ps(a, b), d);
    }
    float one(float a, float b, float d, float c) const { return std::fma(c, a * b, d); }
};

// fma(c, s - d, d) with c = alpha: one rounded subtraction, then one fused
// multiply-add, never (1 - alpha) d + alpha s.
struct WeightedOp {
    __m256 vec(__m256 s, __m256, __m256 d, __m256 c) const { return _mm256_fmadd_ps(c, _mm256_sub_ps(s, d), d); }
    float one(float s, float, float d, float c) const { return std::fma(c, s - d, d); }
};

template <class S>
PixelImages<S> inPlace(const S* a, int aStep, const S* b, int bStep, const Lum8u* m, int mStep, Lum32f* d, int dStep) {
    return {a, aStep, b, bStep, m, mStep, d, dStep, d, dStep};
}

}  // namespace

template <class S>
void addRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height) {
    pixelRows<S, AddOp, false, false>(inPlace<S>(s, sStep, nullptr, 0, nullptr, 0, d, dStep), n, height, AddOp{}, 1.0f);
}
template <class S>
void addRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height) {
    pixelRows<S, AddScaledOp, false, true>(inPlace<S>(s, sStep, nullptr, 0, m, mStep, d, dStep), n, height,
                                           AddScaledOp{}, 1.0f);
}

template <class S>
void addSquareRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height) {
    pixelRows<S, ProductFusedOp, false, false>(inPlace<S>(s, sStep, nullptr, 0, nullptr, 0, d, dStep), n, height,
                                               ProductFusedOp{}, 1.0f);
}
template <class S>
void addSquareRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height) {
    pixelRows<S, ProductRoundedOp, false, true>(inPlace<S>(s, sStep, nullptr, 0, m, mStep, d, dStep), n, height,
                                                ProductRoundedOp{}, 1.0f);
}

template <class S>
void addProductRows(const S* a, int aStep, const S* b, int bStep, Lum32f* d, int dStep, int n, int height) {
    pixelRows<S, ProductFusedOp, true, false>(inPlace<S>(a, aStep, b, bStep, nullptr, 0, d, dStep), n, height,
                                              ProductFusedOp{}, 1.0f);
}
template <class S>
void addProductRowsMasked(const S* a, int aStep, const S* b, int bStep, const Lum8u* m, int mStep, Lum32f* d,
                          int dStep, int n, int height) {
    pixelRows<S, ProductRoundedOp, true, true>(inPlace<S>(a, aStep, b, bStep, m, mStep, d, dStep), n, height,
                                               ProductRoundedOp{}, 1.0f);
}

template <class S>
void addWeightedRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height, Lum32f alpha) {
    pixelRows<S, WeightedOp, false, false>(inPlace<S>(s, sStep, nullptr, 0, nullptr, 0, d, dStep), n, height,
                                           WeightedOp{}, alpha);
}
template <class S>
void addWeightedRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height,
                           Lum32f alpha) {
    pixelRows<S, WeightedOp, false, true>(inPlace<S>(s, sStep, nullptr, 0, m, mStep, d, dStep), n, height,
                                          WeightedOp{}, alpha);
}

void addWeightedRowsOutOfPlace(const Lum32f* a, int aStep, const Lum32f* b, Lum32f* dst, int dstStep, int n, int height,
                               Lum32f alpha) {
    // b plays the accumulator's part and is read at a's pitch.
    const PixelImages<Lum32f> im{a, aStep, nullptr, 0, nullptr, 0, b, aStep, dst, dstStep};
    pixelRows<Lum32f, WeightedOp, false, false>(im, n, height, WeightedOp{}, alpha);
}

template void addRows<Lum8u>(const Lum8u*, int, Lum32f*, int, int, int);
template void addRows<Lum16u>(const Lum16u*, int, Lum32f*, int, int, int);
#define LUM_ACCUMULATE_INSTANTIATE(S)                                                                              \
    template void addRowsMasked<S>(const S*, int, const Lum8u*, int, Lum32f*, int, int, int);                      \
    template void addSquareRows<S>(const S*, int, Lum32f*, int, int, int);                                         \
    template void addSquareRowsMasked<S>(const S*, int, const Lum8u*, int, Lum32f*, int, int, int);                \
    template void addProductRows<S>(const S*, int, const S*, int, Lum32f*, int, int, int);                         \
    template void addProductRowsMasked<S>(const S*, int, const S*, int, const Lum8u*, int, Lum32f*, int, int, int); \
    template void addWeightedRows<S>(const S*, int, Lum32f*, int, int, int, Lum32f);                               \
    template void addWeightedRowsMasked<S>(const S*, int, const Lum8u*, int, Lum32f*, int, int, int, Lum32f);
LUM_ACCUMULATE_INSTANTIATE(Lum8u)
LUM_ACCUMULATE_INSTANTIATE(Lum16u)
LUM_ACCUMULATE_INSTANTIATE(Lum32f)
#undef LUM_ACCUMULATE_INSTANTIATE

}  // namespace lum::kernel
