// The mask record of erosion and dilation: a normalised copy of the caller's
// structuring element with its row lists, run table and classification,
// computed once at Init and read by every filter call.
//
// The record starts with thirteen 32-bit fields; the three "pointer" fields
// hold offsets from the record's own start, so the record may stand alone
// (the spec of the Border forms) or inside the _L spec block:
//
//    0 mask bytes offset   4 W    8 H    12 width / 2   16 height / 2
//   20 W   24 H   28 row lists offset   32 single-run flag
//   36 run table offset   40 classification   44 cross flag   48 known shape
//
// Behind the fields: the W * H mask bytes (0 or 255, 16-byte aligned in
// memory), the row lists (one entry of W + 1 16-bit words a mask row: the
// count, then the column indices of the selected elements), the run table
// (one pair of 16-bit words a row: count and first column; for a cross the
// first pair holds the row and column of the cross instead).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/carve.h"
#include "lumcv.h"

namespace lum::morph {

// Classification bits.
constexpr int kFullRect = 2;
constexpr int kEmpty = 4;
constexpr int kOuterLineZero = 8;
constexpr int kSingleRuns = 16;
constexpr int kCross = 32;
constexpr int kShapePlus3 = 256;
constexpr int kShapeDiamond5 = 768;
constexpr int kShapeRound7 = 1280;
constexpr int kShapeBits = 256 | 512 | 1024;

constexpr int kRecordHeaderBytes = 52;

// Stored (odd) size of a caller's mask dimension.
constexpr int storedDim(int n) { return n | 1; }

// Bytes of a mask record: (2W + 2) H + H (3W + 2) + 96.
int maskRecordSize(LumiSize maskSize);

// Builds the record for `mask` at `record` (maskRecordSize bytes). Sizes are
// at least 1 by 1.
void buildMaskRecord(uint8_t* record, const Lum8u* mask, LumiSize maskSize);

// Read access to a built record.
class MaskView {
public:
    explicit MaskView(const uint8_t* record) : r_(record) {}

    int field(int index) const {
        int32_t v;
        std::memcpy(&v, r_ + 4 * index, 4);
        return v;
    }
    int W() const { return field(1); }
    int H() const { return field(2); }
    int classification() const { return field(10); }
    bool singleRuns() const { return field(8) != 0; }
    bool cross() const { return field(11) != 0; }
    const uint8_t* maskBytes() const { return atOffset<uint8_t>(r_, field(0)); }
    // Entry of mask row i in the row lists: count, then column indices.
    const uint16_t* rowList(int i) const {
        return atOffset<uint16_t>(r_, field(7)) + static_cast<ptrdiff_t>(i) * (W() + 1);
    }
    // Pair of mask row i in the run table.
    const uint16_t* run(int i) const { return atOffset<uint16_t>(r_, field(9)) + 2 * i; }

private:
    const uint8_t* r_;
};

}  // namespace lum::morph
