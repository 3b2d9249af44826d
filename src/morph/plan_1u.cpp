// The plan of packed one-bit morphology. Layout in plan_layout_1u.h.

#include "morph/plan_1u.h"

#include <cstring>

#include "frame/carve.h"
#include "frame/check.h"
#include "morph/plan_layout_1u.h"

namespace lum::morph {

namespace {

void store32(uint8_t* plan, int field, int32_t value) { std::memcpy(plan + 4 * field, &value, 4); }

}  // namespace

int plan1uSize(LumiSize roiSize, LumiSize maskSize) {
    const int planBytes = plan1u::planBytes(maskSize.width, maskSize.height);
    // Scratch: rows of the widened ROI, one a mask row.
    const int row = static_cast<int>(static_cast<uint32_t>(addWrap(mulWrap(addWrap(maskSize.width, roiSize.width), 8), 30)) &
                                     ~31u);
    const int scratch = addWrap(mulWrap(row, maskSize.height), 16);
    return planBytes > scratch ? planBytes : scratch;
}

void buildPlan1u(uint8_t* plan, LumiSize roiSize, const Lum8u* mask, LumiSize maskSize) {
    using namespace plan1u;
    const int mw = maskSize.width;
    const int mh = maskSize.height;
    const int ax = (mw - 1) / 2;
    const int ay = (mh - 1) / 2;

    // Mask bytes, 0 or 255, row by row.
    const int maskOffset = kHeaderBytes;
    int selected = 0;
    for (int i = 0; i < mw * mh; ++i) {
        plan[maskOffset + i] = mask[i] != 0 ? 255 : 0;
        selected += mask[i] != 0;
    }

    // Row table: per mask row, its number of runs and the index of its first
    // run; then the runs as (first column, length) pairs.
    const int rowsOffset = rowTableOffset(mw, mh);
    const int runsOffset = runTableOffset(mw, mh);
    int runCount = 0;
    for (int i = 0; i < mh; ++i) {
        const uint8_t* m = plan + maskOffset + i * mw;
        const int first = runCount;
        for (int j = 0; j < mw;) {
            if (m[j] == 0) {
                ++j;
                continue;
            }
            int end = j;
            while (end < mw && m[end] != 0) ++end;
            std::memcpy(plan + runsOffset + 8 * runCount, &j, 4);
            const int length = end - j;
            std::memcpy(plan + runsOffset + 8 * runCount + 4, &length, 4);
            ++runCount;
            j = end;
        }
        const int runs = runCount - first;
        std::memcpy(plan + rowsOffset + 8 * i, &runs, 4);
        std::memcpy(plan + rowsOffset + 8 * i + 4, &first, 4);
    }

    int mode = kModeGeneral;
    if (selected == 0 || (mw == 1 && mh == 1))
        mode = kModeCopy;
    else if (selected == mw * mh)
        mode = kModeRectangle;

    const int width = roiSize.width;
    const int padded = width + mw - 1;
    const int rowWords = (padded + 63) / 64 + 1;

    store32(plan, kMaskData, maskOffset);
    store32(plan, kMaskRows, rowsOffset);
    store32(plan, kMaskRuns, runsOffset);
    store32(plan, kMaskDataAgain, maskOffset);
    store32(plan, kReserved, 0);
    store32(plan, kStoredWidth, mw);
    store32(plan, kStoredHeight, mh);
    store32(plan, kAnchorX, ax);
    store32(plan, kAnchorY, ay);
    store32(plan, kExtentRight, mw - ax - 1);
    store32(plan, kExtentBottom, mh - ay - 1);
    store32(plan, kAlignedWidth, rowWords * 8);
    store32(plan, kScratchOffset, mh * rowWords * 8);
    store32(plan, kZero, 0);
    store32(plan, kOne, 1);
    store32(plan, kImageWidth, width);
    store32(plan, kMinusOne, -1);
    store32(plan, kMode, mode);
}

}  // namespace lum::morph
