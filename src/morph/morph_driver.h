// The common driver of erosion and dilation, and the size of its buffer.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum::morph {

// Bytes of the driver's buffer for samples of `sampleSize` bytes in
// `channels` channels: the border scratch of the bordered copies, rounded to
// 32 bytes, the ring of the rectangle path and 64 bytes of alignment slack.
int sampleBufferSize(LumiSize roi, LumiSize maskSize, int channels, int sampleSize);

// Runs the operation (Max: dilation) over the ROI with the mask record at
// `record`. `word` is the folded border word with the neutral code already
// resolved: exactly 240, or a low code of 1, 3 or 6 with any flags. `value`
// holds C samples where the low code is 6.
template <class T, int C, bool Max>
void runMorph(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int word, const T* value,
              const uint8_t* record, uint8_t* buffer);

}  // namespace lum::morph
