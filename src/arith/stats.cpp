// Mean, standard deviation and extremes: validation of the exports, one
// kernel call, then the outputs and (for masked extremes) the status.
#include "arith/stats_check.h"
#include "arith/stats_kernels.h"
#include "frame/impl.h"
#include "frame/rows.h"

namespace lum {
namespace {

// C = 3 stands for one channel of interest of three.
template <class T, int C>
constexpr bool kHasCoi = C == 3;

template <class T, int C>
LumStatus meanMember(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi, Lum64f* mean) {
    if (anyNull(src, mask, mean)) return lumStatusNullPointer;
    if (LumStatus st = checkStatsArgs<T, C>(roi, MaskStepTest::WithSteps, maskStep, kHasCoi<T, C>, coi, srcStep))
        return st;
    *mean = kernel::meanMasked<T, C>(src, srcStep, mask, maskStep, roi.width, roi.height, coi - 1);
    return lumStatusOk;
}

// mean and stdDev are optional; the kernel runs in full either way.
template <class T, int C>
LumStatus meanStdDevMember(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi,
                           Lum64f* mean, Lum64f* stdDev) {
    const bool masked = mask != nullptr;
    if (LumStatus st = checkStatsArgs<T, C>(roi, masked ? MaskStepTest::WithSteps : MaskStepTest::None, maskStep,
                                            kHasCoi<T, C>, coi, srcStep))
        return st;
    const kernel::MeanStdDev r = kernel::meanStdDev<T, C>(src, srcStep, mask, maskStep, roi.width, roi.height, coi - 1);
    if (mean != nullptr) *mean = r.mean;
    if (stdDev != nullptr) *stdDev = r.stdDev;
    return lumStatusOk;
}

template <class T, int C>
LumStatus meanStdDevUnmasked(const T* src, int srcStep, LumiSize roi, int coi, Lum64f* mean, Lum64f* stdDev) {
    if (anyNull(src)) return lumStatusNullPointer;
    return meanStdDevMember<T, C>(src, srcStep, nullptr, 0, roi, coi, mean, stdDev);
}

template <class T, int C>
LumStatus meanStdDevMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi,
                           Lum64f* mean, Lum64f* stdDev) {
    if (anyNull(src, mask)) return lumStatusNullPointer;
    return meanStdDevMember<T, C>(src, srcStep, mask, maskStep, roi, coi, mean, stdDev);
}

bool isOrigin(const LumiPoint* p) { return p->x == 0 && p->y == 0; }

// The status of a masked search, read from what the caller receives: an
// index off the origin proves a selected pixel; at the origin the first mask
// byte tells. Without indices, values other than zero prove one; with no
// output at all nothing can be proven.
LumStatus emptyMaskStatus(const Lum8u* mask, int maskStep, LumiSize roi, const Lum32f* minVal, const Lum32f* maxVal,
                          const LumiPoint* minIndex, const LumiPoint* maxIndex) {
    const LumiPoint* index = minIndex != nullptr ? minIndex : maxIndex;
    if (index != nullptr) return isOrigin(index) && mask[0] == 0 ? lumStatusEmptyMask : lumStatusOk;
    if (minVal == nullptr && maxVal == nullptr) return lumStatusEmptyMask;
    if ((minVal != nullptr && *minVal != 0.0f) || (maxVal != nullptr && *maxVal != 0.0f)) return lumStatusOk;
    for (int y = 0; y < roi.height; ++y) {
        const Lum8u* m = rowAt(mask, maskStep, y);
        for (int x = 0; x < roi.width; ++x)
            if (m[x] != 0) return lumStatusOk;
    }
    return lumStatusEmptyMask;
}

template <class T, int C>
LumStatus minMaxMember(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi,
                       Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex) {
    const bool masked = mask != nullptr;
    if (LumStatus st = checkStatsArgs<T, C>(roi, masked ? MaskStepTest::WithSteps : MaskStepTest::None, maskStep,
                                            kHasCoi<T, C>, coi, srcStep))
        return st;
    // Without its value, an index is neither computed nor written.
    kernel::minMaxIndx<T, C>(src, srcStep, mask, maskStep, roi.width, roi.height, coi - 1, minVal, maxVal,
                             minVal != nullptr ? minIndex : nullptr, maxVal != nullptr ? maxIndex : nullptr);
    if (!masked) return lumStatusOk;
    return emptyMaskStatus(mask, maskStep, roi, minVal, maxVal, minIndex, maxIndex);
}

template <class T, int C>
LumStatus minMaxUnmasked(const T* src, int srcStep, LumiSize roi, int coi, Lum32f* minVal, Lum32f* maxVal,
                         LumiPoint* minIndex, LumiPoint* maxIndex) {
    if (anyNull(src)) return lumStatusNullPointer;
    return minMaxMember<T, C>(src, srcStep, nullptr, 0, roi, coi, minVal, maxVal, minIndex, maxIndex);
}

template <class T, int C>
LumStatus minMaxMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi,
                       Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex) {
    if (anyNull(src, mask)) return lumStatusNullPointer;
    return minMaxMember<T, C>(src, srcStep, mask, maskStep, roi, coi, minVal, maxVal, minIndex, maxIndex);
}

}  // namespace

// The exports of one sample type: T the sample, t its name part.
#define LUM_STATS_MEMBERS(T, t)                                                                                       \
    LumStatus mean_##t##_C1MR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,           \
                              Lum64f* mean) {                                                                         \
        return meanMember<T, 1>(src, srcStep, mask, maskStep, roiSize, 1, mean);                                      \
    }                                                                                                                 \
    LumStatus mean_##t##_C3CMR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, \
                               Lum64f* mean) {                                                                        \
        return meanMember<T, 3>(src, srcStep, mask, maskStep, roiSize, coi, mean);                                    \
    }                                                                                                                 \
    LumStatus meanStdDev_##t##_C1R(const T* src, int srcStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev) {       \
        return meanStdDevUnmasked<T, 1>(src, srcStep, roiSize, 1, mean, stdDev);                                      \
    }                                                                                                                 \
    LumStatus meanStdDev_##t##_C3CR(const T* src, int srcStep, LumiSize roiSize, int coi, Lum64f* mean,               \
                                    Lum64f* stdDev) {                                                                 \
        return meanStdDevUnmasked<T, 3>(src, srcStep, roiSize, coi, mean, stdDev);                                    \
    }                                                                                                                 \
    LumStatus meanStdDev_##t##_C1MR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,     \
                                    Lum64f* mean, Lum64f* stdDev) {                                                   \
        return meanStdDevMasked<T, 1>(src, srcStep, mask, maskStep, roiSize, 1, mean, stdDev);                        \
    }                                                                                                                 \
    LumStatus meanStdDev_##t##_C3CMR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,    \
                                     int coi, Lum64f* mean, Lum64f* stdDev) {                                         \
        return meanStdDevMasked<T, 3>(src, srcStep, mask, maskStep, roiSize, coi, mean, stdDev);                      \
    }                                                                                                                 \
    LumStatus minMaxIndx_##t##_C1R(const T* src, int srcStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal,       \
                                   LumiPoint* minIndex, LumiPoint* maxIndex) {                                        \
        return minMaxUnmasked<T, 1>(src, srcStep, roiSize, 1, minVal, maxVal, minIndex, maxIndex);                    \
    }                                                                                                                 \
    LumStatus minMaxIndx_##t##_C3CR(const T* src, int srcStep, LumiSize roiSize, int coi, Lum32f* minVal,             \
                                    Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex) {                       \
        return minMaxUnmasked<T, 3>(src, srcStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex);                  \
    }                                                                                                                 \
    LumStatus minMaxIndx_##t##_C1MR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,     \
                                    Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex) {       \
        return minMaxMasked<T, 1>(src, srcStep, mask, maskStep, roiSize, 1, minVal, maxVal, minIndex, maxIndex);      \
    }                                                                                                                 \
    LumStatus minMaxIndx_##t##_C3CMR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,    \
                                     int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex,                    \
                                     LumiPoint* maxIndex) {                                                           \
        return minMaxMasked<T, 3>(src, srcStep, mask, maskStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex);    \
    }

LUM_STATS_MEMBERS(Lum8u, 8u)
LUM_STATS_MEMBERS(Lum16u, 16u)
LUM_STATS_MEMBERS(Lum32f, 32f)
#undef LUM_STATS_MEMBERS

}  // namespace lum
