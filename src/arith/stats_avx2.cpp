// Mean and standard deviation, AVX2. One body a statistic serves both
// layouts (one channel, or one channel of three) and both mask forms; what
// carries each sum is fixed, since it decides the low bits of a float result:
//   8u, 16u  exact integer sums a row, added into doubles at each row's end;
//   32f mean eight float lanes that carry from row to row and are flushed
//            into four doubles after every 480 groups and at the end;
//   32f deviation  float lanes a row (squares by fused multiply-add),
//            flushed into four doubles at each row's end.
#include <cmath>
#include <cstring>

#include "arith/stats_kernels.h"
#include "arith/stats_rows.h"

namespace lum::kernel {
namespace {

using namespace stats;

// Groups of eight float lanes between two flushes of the float mean: short
// enough that the lanes keep most of their precision.
constexpr int kMeanFlushGroups = 480;

template <class T>
constexpr bool kIsFloat = std::is_same_v<T, float>;

// Selected count: 32 bits, wrapping, for a mask; width x height without one.
template <bool kMasked>
double countOf(uint32_t selected, int width, int height) {
    if constexpr (kMasked)
        return static_cast<double>(selected);
    else
        return static_cast<double>(width) * static_cast<double>(height);
}

// Exact integer sums of the selected samples (and of their squares), formed
// a row at a time and added into doubles at each row's end.
template <bool kMasked, bool kSquares, class T, int C>
void integerSums(const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, int height, uint32_t& selected,
                 double& sum, double& squares) {
    for (int y = 0; y < height; ++y) {
        IntSums<T, kSquares> sums;
        scanRow<kMasked>(
            kMasked ? rowAt(mask, maskStep, y) : nullptr, width, T(0),
            [&](Selection<T> s, __m256i v) {
                sums.add(kMasked ? keepSelected<T>(v, s.unselected) : v);
                selected += static_cast<uint32_t>(s.selected);
            },
            src.row(y));
        sum += static_cast<double>(sums.sum());
        if constexpr (kSquares) squares += static_cast<double>(sums.sumSquares());
    }
}

template <bool kMasked, class T, int C>
double meanRun(const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, int height) {
    uint32_t selected = 0;
    double total = 0.0;
    if constexpr (kIsFloat<T>) {
        FloatLanes lanes;
        int left = kMeanFlushGroups;
        for (int y = 0; y < height; ++y) {
            scanRow<kMasked>(
                kMasked ? rowAt(mask, maskStep, y) : nullptr, width, 0.0f,
                [&](Selection<float> s, __m256 v) {
                    lanes.add(keepSelected<float>(v, s.unselected));
                    selected += static_cast<uint32_t>(s.selected);
                    if (--left == 0) {
                        lanes.flush();
                        left = kMeanFlushGroups;
                    }
                },
                src.row(y));
        }
        lanes.flush();
        total = lanes.total();
    } else {
        double unused = 0.0;
        integerSums<kMasked, false>(src, mask, maskStep, width, height, selected, total, unused);
    }
    const double n = countOf<kMasked>(selected, width, height);
    return n == 0.0 ? 0.0 : total / n;
}

// Sum of (x - mf)^2 over the selected samples, float lanes a row, for the
// second pass of the float deviation. Samples outside the selection and the
// missing lanes of a row's last group give a zero difference.
template <bool kMasked, int C>
double sumSquaredDeviations(const Source<float, C>& src, const Lum8u* mask, int maskStep, int width, int height,
                            float mf) {
    const __m256 mv = _mm256_set1_ps(mf);
    FloatLanes acc;
    for (int y = 0; y < height; ++y) {
        scanRow<kMasked>(
            kMasked ? rowAt(mask, maskStep, y) : nullptr, width, 0.0f,
            [&](Selection<float> s, __m256 v) {
                acc.addSquare(keepSelected<float>(_mm256_sub_ps(v, mv), s.unselected));
            },
            src.row(y));
        acc.flush();
    }
    return acc.total();
}

template <bool kMasked, class T, int C>
MeanStdDev meanStdDevRun(const Source<T, C>& src, const Lum8u* mask, int maskStep, int width, int height) {
    uint32_t selected = 0;
    double sum = 0.0, squares = 0.0;
    if constexpr (kIsFloat<T>) {
        FloatLanes s1, s2;
        for (int y = 0; y < height; ++y) {
            scanRow<kMasked>(
                kMasked ? rowAt(mask, maskStep, y) : nullptr, width, 0.0f,
                [&](Selection<float> s, __m256 v) {
                    const __m256 x = kMasked ? keepSelected<float>(v, s.unselected) : v;
                    s1.add(x);
                    s2.addSquare(x);
                    selected += static_cast<uint32_t>(s.selected);
                },
                src.row(y));
            s1.flush();
            s2.flush();
        }
        sum = s1.total();
        squares = s2.total();
    } else {
        integerSums<kMasked, true>(src, mask, maskStep, width, height, selected, sum, squares);
    }
    const double n = countOf<kMasked>(selected, width, height);
    if (n == 0.0) return {0.0, 0.0};
    const double m = sum / n;
    const double q = squares / n;
    // q - m^2 in one rounding; a slightly negative residue keeps its
    // magnitude instead of turning into a NaN.
    double v = std::fma(-m, m, q);
    uint64_t bits;
    std::memcpy(&bits, &v, 8);
    bits &= ~(uint64_t{1} << 63);
    std::memcpy(&v, &bits, 8);
    double t = std::sqrt(v);
    if constexpr (kIsFloat<T>) {
        // The one-pass form cancels badly when the spread is small against the
        // mean: then sum the squared deviations from the float mean.
        if ((m * 0.05) * m > t * t)
            t = std::sqrt(sumSquaredDeviations<kMasked>(src, mask, maskStep, width, height, static_cast<float>(m)) / n);
    }
    return {m, t};
}

}  // namespace

template <class T, int C>
double meanMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c) {
    return meanRun<true>(Source<T, C>(src, srcStep, c), mask, maskStep, width, height);
}

template <class T, int C>
MeanStdDev meanStdDev(const T* src, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c) {
    const Source<T, C> s(src, srcStep, c);
    return mask != nullptr ? meanStdDevRun<true>(s, mask, maskStep, width, height)
                           : meanStdDevRun<false>(s, mask, maskStep, width, height);
}

#define LUM_STATS_INSTANTIATE(T, C)                                                    \
    template double meanMasked<T, C>(const T*, int, const Lum8u*, int, int, int, int); \
    template MeanStdDev meanStdDev<T, C>(const T*, int, const Lum8u*, int, int, int, int);
LUM_STATS_INSTANTIATE(Lum8u, 1)
LUM_STATS_INSTANTIATE(Lum8u, 3)
LUM_STATS_INSTANTIATE(Lum16u, 1)
LUM_STATS_INSTANTIATE(Lum16u, 3)
LUM_STATS_INSTANTIATE(Lum32f, 1)
LUM_STATS_INSTANTIATE(Lum32f, 3)
#undef LUM_STATS_INSTANTIATE

}  // namespace lum::kernel
