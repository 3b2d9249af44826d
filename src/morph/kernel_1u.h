// Kernels of packed one-bit erosion and dilation, on validated arguments.
//
// Rows are packed bits, the most significant bit of a byte first: pixel x of
// a row lies at bit position bitOffset + x counted from the row's first byte
// (bit position p is bit 7 - p % 8 of byte p / 8). Inside, each source row
// that the mask reaches is widened by the mask's extents and held as 64-bit
// words, the first pixel in the most significant bit, so that shifting a row
// by j pixels is a funnel shift of neighbouring words.
#pragma once

#include <cstdint>

#include "frame/border.h"
#include "lumcv.h"

namespace lum::morph {

struct Bits1u {
    const uint8_t* src;
    int srcStep;
    int srcBitOffset;
    uint8_t* dst;
    int dstStep;
    int dstBitOffset;
};

// Copies the ROI's bits from src to dst, keeping the destination's other
// bits. `buffer` holds at least (width + 63) / 64 + 1 words and 7 bytes.
void copy_1u(const Bits1u& img, LumiSize roi, uint8_t* buffer);

// Erosion or dilation by the plan's mask. `word` is a resolved border word:
// flags 16..128 and low code 1 or 6, or 240; `fill` is the outside bit of
// code 6. `buffer` holds the plan's size for this ROI and mask.
void morph_1u(border::MorphOp op, const Bits1u& img, LumiSize roi, int word, bool fill, const uint8_t* plan,
              uint8_t* buffer);

}  // namespace lum::morph
