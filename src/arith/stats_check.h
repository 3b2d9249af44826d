// Argument checks shared by the statistics and the norms, after the pointer
// test that each member makes on its own required pointers.
#pragma once

#include "frame/check.h"

namespace lum {

// Where a member tests its mask's step: with the sample steps, in one group
// (most members), or in a test of its own after the alignment test of the
// sample steps (the one-image norms of 16u and 32f).
enum class MaskStepTest { None, WithSteps, AfterAlignment };

// ROI; steps against the row bytes (channels x width x sample size; the mask
// width bytes); alignment of the sample steps for samples wider than a byte;
// the channel of interest, 1..3, when `hasCoi`.
template <class T, int C, class... Steps>
LumStatus checkStatsArgs(LumiSize roi, MaskStepTest maskTest, int maskStep, bool hasCoi, int coi, Steps... steps) {
    if (badRoi(roi)) return lumStatusBadSize;
    const int row = rowBytes(roi.width, C, sizeof(T));
    const bool maskTooSmall = maskTest != MaskStepTest::None && stepTooSmall(maskStep, roi.width);
    if ((stepTooSmall(steps, row) || ...) || (maskTest == MaskStepTest::WithSteps && maskTooSmall))
        return lumStatusBadStep;
    if (sizeof(T) > 1 && stepsMisaligned(sizeof(T), steps...)) return lumStatusStepNotAligned;
    if (maskTest == MaskStepTest::AfterAlignment && maskTooSmall) return lumStatusBadStep;
    if (hasCoi && (coi < 1 || coi > 3)) return lumStatusBadChannelOfInterest;
    return lumStatusOk;
}

}  // namespace lum
