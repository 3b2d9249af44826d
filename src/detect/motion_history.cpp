// Motion history: validation of the exports, then one kernel call.
#include "detect/motion_history_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// Pointers, ROI, steps against their row bytes, the steps of samples wider
// than a byte against their own sample size, then the duration: a negative
// one is refused, a NaN passes (it compares false).
template <class S>
LumStatus updateMotionHistory(const S* sil, int silStep, Lum32f* mhi, int mhiStep, LumiSize roi, Lum32f timestamp,
                              Lum32f duration) {
    constexpr int s = static_cast<int>(sizeof(S));
    if (anyNull(sil, mhi)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    if (stepTooSmall(silStep, rowBytes(roi.width, 1, s)) || stepTooSmall(mhiStep, rowBytes(roi.width, 1, 4)))
        return lumStatusBadStep;
    if ((s > 1 && stepsMisaligned(s, silStep)) || stepsMisaligned(4, mhiStep)) return lumStatusStepNotAligned;
    if (duration < 0.0f) return lumStatusOutOfRange;
    // The limit is formed once, in single precision.
    const Lum32f limit = timestamp - duration;
    kernel::updateMotionHistoryRows(sil, silStep, mhi, mhiStep, roi.width, roi.height, timestamp, limit);
    return lumStatusOk;
}

}  // namespace

LumStatus updateMotionHistory_16u32f_C1IR(const Lum16u* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep,
                                          LumiSize roiSize, Lum32f timestamp, Lum32f duration) {
    return updateMotionHistory(silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration);
}
LumStatus updateMotionHistory_32f_C1IR(const Lum32f* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep,
                                       LumiSize roiSize, Lum32f timestamp, Lum32f duration) {
    return updateMotionHistory(silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration);
}
LumStatus updateMotionHistory_8u32f_C1IR(const Lum8u* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep,
                                         LumiSize roiSize, Lum32f timestamp, Lum32f duration) {
    return updateMotionHistory(silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration);
}

}  // namespace lum
