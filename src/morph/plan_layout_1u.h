// Layout of the packed one-bit morphology plan. All fields are 32-bit words
// at the plan's start, in this order; "pointers" are byte offsets from the
// plan's start, so the plan is self-contained and may sit anywhere (also
// unaligned) behind a mask record. Fields are read and written by memcpy.
//
//   0  mask data        offset of mw * mh bytes, 0 or 255, row by row
//   1  mask rows        offset of mh pairs (runs in the row, index of its first run)
//   2  mask runs        offset of the runs: (first column, length) pairs
//   3  mask data        the same offset as field 0
//   4  reserved         0
//   5  stored width     mw, the caller's mask width
//   6  stored height    mh
//   7  x anchor         (mw - 1) / 2
//   8  y anchor         (mh - 1) / 2
//   9  right extent     mw - x anchor - 1
//  10  bottom extent    mh - y anchor - 1
//  11  aligned width    bytes of one widened row of the Init ROI, in 64-bit words
//  12  scratch offset   bytes of the row ring before the accumulator row
//  13  0
//  14  1
//  15  image width      the Init ROI's width
//  16  -1
//  17  mode             0 any mask, 1 full rectangle, 3 a copy (no element
//                       selected, or a 1 by 1 mask); above 3 nothing is done
//
// The fields 11, 12 and 15 describe the Init ROI; a call works out its own
// rows from the ROI it is given.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/check.h"

namespace lum::morph::plan1u {

enum Field {
    kMaskData = 0,
    kMaskRows,
    kMaskRuns,
    kMaskDataAgain,
    kReserved,
    kStoredWidth,
    kStoredHeight,
    kAnchorX,
    kAnchorY,
    kExtentRight,
    kExtentBottom,
    kAlignedWidth,
    kScratchOffset,
    kZero,
    kOne,
    kImageWidth,
    kMinusOne,
    kMode,
    kFieldCount
};

constexpr int kModeGeneral = 0;
constexpr int kModeRectangle = 1;
constexpr int kModeCopy = 3;

constexpr int kHeaderBytes = 4 * kFieldCount;

// Pieces behind the header: mask bytes (rounded up to 4), the row table
// (8 bytes a mask row), the runs (at most (mw + 1) / 2 a row, 8 bytes each).
constexpr int rowTableOffset(int mw, int mh) { return addWrap(kHeaderBytes, addWrap(mulWrap(mw, mh), 3) & ~3); }
constexpr int runTableOffset(int mw, int mh) { return rowTableOffset(mw, mh) + 8 * mh; }
constexpr int planBytes(int mw, int mh) {
    return addWrap(runTableOffset(mw, mh), mulWrap(mulWrap(mh, (mw + 1) / 2), 8));
}

inline int32_t load32(const uint8_t* plan, int byteOffset) {
    int32_t v;
    std::memcpy(&v, plan + byteOffset, 4);
    return v;
}
inline int32_t field(const uint8_t* plan, Field f) { return load32(plan, 4 * f); }

}  // namespace lum::morph::plan1u
