// Masked norms, AVX2: of one image, of the difference of two, and of the
// difference relative to the second. A masked sample becomes zero by an AND,
// which leaves a maximum of magnitudes and every sum unchanged.
//   8u, 16u  magnitudes exact; Inf an integer maximum, L1 and L2 unsigned
//            64-bit totals over the whole image, made doubles once;
//   32f      Inf a float maximum (NaN samples skipped, as the vector max keeps
//            its second operand); L1 and L2 float lanes a row (squares by
//            fused multiply-add), flushed into four doubles at each row's end.
#include "arith/stats_kernels.h"
#include "arith/stats_rows.h"

namespace lum::kernel {
namespace {

using namespace stats;

// |a - b| of unsigned lanes: one of the two saturated differences is zero.
template <class T>
inline V<T> absDiff(V<T> a, V<T> b) {
    if constexpr (sizeof(T) == 1)
        return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
    else if constexpr (sizeof(T) == 2)
        return _mm256_or_si256(_mm256_subs_epu16(a, b), _mm256_subs_epu16(b, a));
    else
        return magnitude(_mm256_sub_ps(a, b));
}

template <class T>
inline V<T> magnitudeOf(V<T> v) {
    if constexpr (std::is_same_v<T, float>)
        return magnitude(v);
    else
        return v;
}

// The total of one norm over magnitude vectors.
template <class T, NormKind K, bool kFloat = std::is_same_v<T, float>>
class NormTotal;

template <class T>
class NormTotal<T, NormKind::Inf, false> {
public:
    void add(__m256i v) {
        if constexpr (sizeof(T) == 1)
            max_ = _mm256_max_epu8(v, max_);
        else
            max_ = _mm256_max_epu16(v, max_);
    }
    void endRow() {}
    double total() const {
        alignas(32) T lanes[kGroup<T>];
        _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), max_);
        T m = 0;
        for (T v : lanes) m = v > m ? v : m;
        return static_cast<double>(m);
    }

private:
    __m256i max_ = _mm256_setzero_si256();
};

template <class T, NormKind K>
class NormTotal<T, K, false> {
public:
    void add(__m256i v) { sums_.add(v); }
    void endRow() {}
    double total() {
        if constexpr (K == NormKind::L1)
            return totalToDouble(sums_.sum());
        else
            return totalToDouble(sums_.sumSquares());
    }

private:
    IntSums<T, K == NormKind::L2> sums_;
};

template <>
class NormTotal<float, NormKind::Inf, true> {
public:
    void add(__m256 v) { max_ = _mm256_max_ps(v, max_); }
    void endRow() {}
    // The lanes hold no NaN, so the order of the reduction is free.
    double total() const {
        __m128 r = _mm_max_ps(_mm256_castps256_ps128(max_), _mm256_extractf128_ps(max_, 1));
        r = _mm_max_ps(r, _mm_movehl_ps(r, r));
        r = _mm_max_ps(r, _mm_movehdup_ps(r));
        return static_cast<double>(_mm_cvtss_f32(r));
    }

private:
    __m256 max_ = _mm256_setzero_ps();
};

template <NormKind K>
class NormTotal<float, K, true> {
public:
    void add(__m256 v) {
        if constexpr (K == NormKind::L1)
            lanes_.add(v);
        else
            lanes_.addSquare(v);
    }
    void endRow() { lanes_.flush(); }
    double total() const { return lanes_.total(); }

private:
    FloatLanes lanes_;
};

}  // namespace

template <class T, int C, NormKind K, NormOf O>
NormTotals normMasked(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask, int maskStep,
                      int width, int height, int c) {
    const Source<T, C> a(src1, src1Step, c);
    NormTotal<T, K> num;
    if constexpr (O == NormOf::Image) {
        for (int y = 0; y < height; ++y) {
            scanRow<true>(
                rowAt(mask, maskStep, y), width, T(0),
                [&](Selection<T> s, V<T> v) { num.add(keepSelected<T>(magnitudeOf<T>(v), s.unselected)); }, a.row(y));
            num.endRow();
        }
        return {num.total(), 0.0};
    } else {
        const Source<T, C> b(src2, src2Step, c);
        NormTotal<T, K> den;
        for (int y = 0; y < height; ++y) {
            scanRow<true>(
                rowAt(mask, maskStep, y), width, T(0),
                [&](Selection<T> s, V<T> va, V<T> vb) {
                    num.add(keepSelected<T>(absDiff<T>(va, vb), s.unselected));
                    if constexpr (O == NormOf::Relative) den.add(keepSelected<T>(magnitudeOf<T>(vb), s.unselected));
                },
                a.row(y), b.row(y));
            num.endRow();
            if constexpr (O == NormOf::Relative) den.endRow();
        }
        return {num.total(), O == NormOf::Relative ? den.total() : 0.0};
    }
}

#define LUM_NORM_INSTANTIATE_ONE(T, C, K, O)                                                                           \
    template NormTotals normMasked<T, C, NormKind::K, NormOf::O>(const T*, int, const T*, int, const Lum8u*, int, int, \
                                                                 int, int);
#define LUM_NORM_INSTANTIATE_KINDS(T, C, O) \
    LUM_NORM_INSTANTIATE_ONE(T, C, Inf, O)  \
    LUM_NORM_INSTANTIATE_ONE(T, C, L1, O)   \
    LUM_NORM_INSTANTIATE_ONE(T, C, L2, O)
#define LUM_NORM_INSTANTIATE(T, C)               \
    LUM_NORM_INSTANTIATE_KINDS(T, C, Image)      \
    LUM_NORM_INSTANTIATE_KINDS(T, C, Difference) \
    LUM_NORM_INSTANTIATE_KINDS(T, C, Relative)
LUM_NORM_INSTANTIATE(Lum8u, 1)
LUM_NORM_INSTANTIATE(Lum8u, 3)
LUM_NORM_INSTANTIATE(Lum16u, 1)
LUM_NORM_INSTANTIATE(Lum16u, 3)
LUM_NORM_INSTANTIATE(Lum32f, 1)
LUM_NORM_INSTANTIATE(Lum32f, 3)
#undef LUM_NORM_INSTANTIATE
#undef LUM_NORM_INSTANTIATE_KINDS
#undef LUM_NORM_INSTANTIATE_ONE

}  // namespace lum::kernel
