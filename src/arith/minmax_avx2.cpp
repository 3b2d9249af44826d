// Extremes with their first positions, AVX2, in two phases:
//   1. each row's vector minimum (maximum) starts from the running value and
//      replaces it, with the row's index, only when strictly better, so a tie
//      in a later row never moves the saved row;
//   2. in the saved row, the first (selected) x whose sample equals it.
// The vector min and max keep their second operand, the running lanes, when
// the sample is a NaN: NaN samples never enter the running values.
#include <cfloat>

#include "arith/stats_kernels.h"
#include "arith/stats_rows.h"

namespace lum::kernel {
namespace {

using namespace stats;

template <class T>
struct Extreme;

// Integer members: unselected lanes become the seed of their search by a
// bit operation (all ones is the type's maximum, zero its minimum).
template <class T, __m256i (*Min)(__m256i, __m256i), __m256i (*Max)(__m256i, __m256i)>
struct ExtremeInt {
    static constexpr T kMinSeed = static_cast<T>(~T(0));
    static constexpr T kMaxSeed = 0;
    static __m256i broadcast(T v) {
        if constexpr (sizeof(T) == 1)
            return _mm256_set1_epi8(static_cast<char>(v));
        else
            return _mm256_set1_epi16(static_cast<short>(v));
    }
    static __m256i min(__m256i x, __m256i acc) { return Min(x, acc); }
    static __m256i max(__m256i x, __m256i acc) { return Max(x, acc); }
    static __m256i forMin(__m256i x, __m256i unselected) { return _mm256_or_si256(x, unselected); }
    static __m256i forMax(__m256i x, __m256i unselected) { return _mm256_andnot_si256(unselected, x); }
    template <__m128i (*F)(__m128i, __m128i)>
    static T reduce(__m256i v) {
        __m128i r = F(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
        r = F(r, _mm_srli_si128(r, 8));
        r = F(r, _mm_srli_si128(r, 4));
        r = F(r, _mm_srli_si128(r, 2));
        if constexpr (sizeof(T) == 1) r = F(r, _mm_srli_si128(r, 1));
        return static_cast<T>(_mm_cvtsi128_si32(r));
    }
};

inline __m256i min8(__m256i a, __m256i b) { return _mm256_min_epu8(a, b); }
inline __m256i max8(__m256i a, __m256i b) { return _mm256_max_epu8(a, b); }
inline __m256i min16(__m256i a, __m256i b) { return _mm256_min_epu16(a, b); }
inline __m256i max16(__m256i a, __m256i b) { return _mm256_max_epu16(a, b); }
inline __m128i min8x(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
inline __m128i max8x(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
inline __m128i min16x(__m128i a, __m128i b) { return _mm_min_epu16(a, b); }
inline __m128i max16x(__m128i a, __m128i b) { return _mm_max_epu16(a, b); }

template <>
struct Extreme<Lum8u> : ExtremeInt<Lum8u, min8, max8> {
    static Lum8u hmin(__m256i v) { return reduce<min8x>(v); }
    static Lum8u hmax(__m256i v) { return reduce<max8x>(v); }
};
template <>
struct Extreme<Lum16u> : ExtremeInt<Lum16u, min16, max16> {
    static Lum16u hmin(__m256i v) { return reduce<min16x>(v); }
    static Lum16u hmax(__m256i v) { return reduce<max16x>(v); }
};

// Float members: seeds are the largest and the lowest finite floats, and the
// unselected lanes take them by a blend.
template <>
struct Extreme<Lum32f> {
    static constexpr float kMinSeed = FLT_MAX;
    static constexpr float kMaxSeed = -FLT_MAX;
    static __m256 broadcast(float v) { return _mm256_set1_ps(v); }
    static __m256 min(__m256 x, __m256 acc) { return _mm256_min_ps(x, acc); }
    static __m256 max(__m256 x, __m256 acc) { return _mm256_max_ps(x, acc); }
    static __m256 forMin(__m256 x, __m256 unselected) { return _mm256_blendv_ps(x, broadcast(kMinSeed), unselected); }
    static __m256 forMax(__m256 x, __m256 unselected) { return _mm256_blendv_ps(x, broadcast(kMaxSeed), unselected); }
    // The running lanes hold no NaN, so the order of the reduction is free.
    template <__m128 (*F)(__m128, __m128)>
    static float reduce(__m256 v) {
        __m128 r = F(_mm256_castps256_ps128(v), _mm256_extractf128_ps(v, 1));
        r = F(r, _mm_movehl_ps(r, r));
        r = F(r, _mm_movehdup_ps(r));
        return _mm_cvtss_f32(r);
    }
    static float hmin(__m256 v) { return reduce<minx>(v); }
    static float hmax(__m256 v) { return reduce<maxx>(v); }
    static __m128 minx(__m128 a, __m128 b) { return _mm_min_ps(a, b); }
    static __m128 maxx(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
};

template <class T>
inline V<T> allOnes() {
    const __m256i ones = _mm256_set1_epi32(-1);
    return fromBits<T>(ones);
}

template <class T>
inline V<T> bitAnd(V<T> a, V<T> b) {
    if constexpr (std::is_same_v<T, float>)
        return _mm256_and_ps(a, b);
    else
        return _mm256_and_si256(a, b);
}

template <class T>
inline bool isAllOnes(V<T> v) {
    if constexpr (std::is_same_v<T, float>)
        return _mm256_movemask_ps(v) == 0xff;
    else
        return _mm256_movemask_epi8(v) == -1;
}

// Running extreme of one search and the row where it was last improved.
template <class T>
struct Running {
    T value;
    int row = -1;
};

// Phase 1 over every row, for the searches asked for. Returns false when a
// mask is given and nothing is selected.
template <bool kMasked, bool kMin, bool kMax, class T, int C>
bool scanExtremes(const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, int height, Running<T>& lo,
                  Running<T>& hi) {
    using E = Extreme<T>;
    V<T> unselectedEverywhere = allOnes<T>();
    for (int y = 0; y < height; ++y) {
        const SourceRow<T, C> row = src.row(y);
        V<T> vmin = E::broadcast(lo.value), vmax = E::broadcast(hi.value);
        // The missing lanes of an unmasked row's last group repeat a sample
        // of the row, which changes neither extreme.
        scanRow<kMasked>(
            kMasked ? rowAt(mask, maskStep, y) : nullptr, width, row.at(0),
            [&](Selection<T> s, V<T> v) {
                if constexpr (kMasked) {
                    if constexpr (kMin) vmin = E::min(E::forMin(v, s.unselected), vmin);
                    if constexpr (kMax) vmax = E::max(E::forMax(v, s.unselected), vmax);
                    unselectedEverywhere = bitAnd<T>(unselectedEverywhere, s.unselected);
                } else {
                    if constexpr (kMin) vmin = E::min(v, vmin);
                    if constexpr (kMax) vmax = E::max(v, vmax);
                }
            },
            row);
        if constexpr (kMin) {
            const T m = E::hmin(vmin);
            if (m < lo.value) lo = {m, y};
        }
        if constexpr (kMax) {
            const T m = E::hmax(vmax);
            if (m > hi.value) hi = {m, y};
        }
    }
    return !kMasked || !isAllOnes<T>(unselectedEverywhere);
}

template <bool kMasked, class T, int C>
bool scanFor(bool doMin, bool doMax, const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, int height,
             Running<T>& lo, Running<T>& hi) {
    if (doMin && doMax) return scanExtremes<kMasked, true, true>(src, mask, maskStep, width, height, lo, hi);
    if (doMin) return scanExtremes<kMasked, true, false>(src, mask, maskStep, width, height, lo, hi);
    return scanExtremes<kMasked, false, true>(src, mask, maskStep, width, height, lo, hi);
}

// Phase 2 and the outputs of one search. A float value is the sample at the
// position found (so a zero keeps the sign it has in the image); with no
// saved row, the position is (0, 0) and a float value is the first sample,
// an integer one the seed, which every selected sample then equals.
template <class T, int C>
void deliver(const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, bool anySelected, const Running<T>& r,
             Lum32f* val, LumiPoint* index) {
    if (!anySelected) {
        *val = 0.0f;
        if (index != nullptr) *index = LumiPoint{0, 0};
        return;
    }
    constexpr bool kFloat = std::is_same_v<T, float>;
    if (r.row < 0) {
        *val = kFloat ? static_cast<Lum32f>(src.row(0).at(0)) : static_cast<Lum32f>(r.value);
        if (index != nullptr) *index = LumiPoint{0, 0};
        return;
    }
    if (index == nullptr && !kFloat) {
        *val = static_cast<Lum32f>(r.value);
        return;
    }
    const SourceRow<T, C> row = src.row(r.row);
    const Lum8u* m = mask != nullptr ? rowAt(mask, maskStep, r.row) : nullptr;
    int x = 0;
    while (x < width && !((m == nullptr || m[x] != 0) && row.at(x) == r.value)) ++x;
    *val = static_cast<Lum32f>(row.at(x));
    if (index != nullptr) *index = LumiPoint{x, r.row};
}

}  // namespace

template <class T, int C>
bool minMaxIndx(const T* srcBase, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c,
                Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex) {
    const bool doMin = minVal != nullptr, doMax = maxVal != nullptr;
    if (!doMin && !doMax) return true;
    const Source<T, C> src(srcBase, srcStep, c);
    Running<T> lo{Extreme<T>::kMinSeed}, hi{Extreme<T>::kMaxSeed};
    const bool any = mask != nullptr ? scanFor<true>(doMin, doMax, src, mask, maskStep, width, height, lo, hi)
                                     : scanFor<false>(doMin, doMax, src, mask, maskStep, width, height, lo, hi);
    if (doMin) deliver(src, mask, maskStep, width, any, lo, minVal, minIndex);
    if (doMax) deliver(src, mask, maskStep, width, any, hi, maxVal, maxIndex);
    return any;
}

#define LUM_MINMAX_INSTANTIATE(T, C)                                                                              \
    template bool minMaxIndx<T, C>(const T*, int, const Lum8u*, int, int, int, int, Lum32f*, Lum32f*, LumiPoint*, \
                                   LumiPoint*);
LUM_MINMAX_INSTANTIATE(Lum8u, 1)
LUM_MINMAX_INSTANTIATE(Lum8u, 3)
LUM_MINMAX_INSTANTIATE(Lum16u, 1)
LUM_MINMAX_INSTANTIATE(Lum16u, 3)
LUM_MINMAX_INSTANTIATE(Lum32f, 1)
LUM_MINMAX_INSTANTIATE(Lum32f, 3)
#undef LUM_MINMAX_INSTANTIATE

}  // namespace lum::kernel
