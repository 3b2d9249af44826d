// Absolute difference, AVX2. One templated row body runs every member; the
// operation has a vector and a scalar form that compute the same bits.
#include <cstring>

#include "arith/absdiff_kernels.h"
#include "frame/rows.h"
#include "frame/simd.h"

namespace lum::kernel {
namespace {

using simd::Vec;

// |a - b| of unsigned integers without widening: one of the two saturated
// differences is always zero, so their OR is their sum.
struct AbsDiffU8 {
    static __m256i vec(__m256i a, __m256i b) {
        return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
    }
    static Lum8u one(Lum8u a, Lum8u b) { return static_cast<Lum8u>((a > b ? a - b : 0) + (b > a ? b - a : 0)); }
};

struct AbsDiffU16 {
    static __m256i vec(__m256i a, __m256i b) {
        return _mm256_or_si256(_mm256_subs_epu16(a, b), _mm256_subs_epu16(b, a));
    }
    static Lum16u one(Lum16u a, Lum16u b) { return static_cast<Lum16u>((a > b ? a - b : 0) + (b > a ? b - a : 0)); }
};

// The float difference with its sign bit cleared: NaN payloads survive with a
// clear sign, -0 becomes +0, infinities stay positive.
struct AbsDiffF32 {
    static __m256 vec(__m256 a, __m256 b) {
        return _mm256_and_ps(_mm256_sub_ps(a, b), _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff)));
    }
    static Lum32f one(Lum32f a, Lum32f b) {
        const Lum32f diff = a - b;
        uint32_t bits;
        std::memcpy(&bits, &diff, 4);
        bits &= 0x7fffffffu;
        Lum32f r;
        std::memcpy(&r, &bits, 4);
        return r;
    }
};

// d = Op(a, b) over n samples of one row.
template <class T, class Op>
struct BinaryRow {
    const T* a;
    const T* b;
    T* d;
    using V = Vec<T>;
    void vec(int x) const { V::store(d + x, Op::vec(V::load(a + x), V::load(b + x))); }
    void masked(int x, __m256i m, int) const {
        V::storeMasked(d + x, m, Op::vec(V::loadMasked(a + x, m), V::loadMasked(b + x, m)));
    }
    void one(int x) const { d[x] = Op::one(a[x], b[x]); }
};

// d = Op(v, s) or Op(s, v) with a constant v: `valueFirst` says which.
template <class T, class Op, bool valueFirst>
struct ConstRow {
    const T* s;
    T* d;
    typename Vec<T>::type vv;
    T v;
    using V = Vec<T>;
    static auto apply(typename V::type x, typename V::type c) { return valueFirst ? Op::vec(c, x) : Op::vec(x, c); }
    static T apply(T x, T c) { return valueFirst ? Op::one(c, x) : Op::one(x, c); }
    void vec(int x) const { V::store(d + x, apply(V::load(s + x), vv)); }
    void masked(int x, __m256i m, int) const { V::storeMasked(d + x, m, apply(V::loadMasked(s + x, m), vv)); }
    void one(int x) const { d[x] = apply(s[x], v); }
};

template <class T, class Op>
void binaryRows(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int n, int height) {
    joinRows(n, height, n * static_cast<int>(sizeof(T)), aStep, bStep, dStep);
    for (int y = 0; y < height; ++y) {
        simd::stripMine<T>(n, BinaryRow<T, Op>{rowAt(a, aStep, y), rowAt(b, bStep, y), rowAt(d, dStep, y)});
    }
}

template <class T, class Op, bool valueFirst>
void constRows(const T* s, int sStep, T* d, int dStep, int n, int height, T value) {
    const auto vv = Vec<T>::set1(value);
    joinRows(n, height, n * static_cast<int>(sizeof(T)), sStep, dStep);
    for (int y = 0; y < height; ++y) {
        simd::stripMine<T>(n, ConstRow<T, Op, valueFirst>{rowAt(s, sStep, y), rowAt(d, dStep, y), vv, value});
    }
}

}  // namespace

void absDiff_8u(const Lum8u* a, int aStep, const Lum8u* b, int bStep, Lum8u* d, int dStep, int n, int height) {
    binaryRows<Lum8u, AbsDiffU8>(a, aStep, b, bStep, d, dStep, n, height);
}
void absDiff_16u(const Lum16u* a, int aStep, const Lum16u* b, int bStep, Lum16u* d, int dStep, int n, int height) {
    binaryRows<Lum16u, AbsDiffU16>(a, aStep, b, bStep, d, dStep, n, height);
}
void absDiff_32f(const Lum32f* a, int aStep, const Lum32f* b, int bStep, Lum32f* d, int dStep, int n, int height) {
    binaryRows<Lum32f, AbsDiffF32>(a, aStep, b, bStep, d, dStep, n, height);
}

void absDiffC_8u(const Lum8u* s, int sStep, Lum8u* d, int dStep, int n, int height, Lum8u value) {
    constRows<Lum8u, AbsDiffU8, false>(s, sStep, d, dStep, n, height, value);
}
void absDiffC_16u(const Lum16u* s, int sStep, Lum16u* d, int dStep, int n, int height, Lum16u value) {
    constRows<Lum16u, AbsDiffU16, false>(s, sStep, d, dStep, n, height, value);
}
void absDiffC_32f(const Lum32f* s, int sStep, Lum32f* d, int dStep, int n, int height, Lum32f value) {
    constRows<Lum32f, AbsDiffF32, true>(s, sStep, d, dStep, n, height, value);
}

}  // namespace lum::kernel
