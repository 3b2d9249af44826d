// The plan of packed one-bit morphology: the mask in the form the 1u kernel
// reads, with its anchor and extents. It is its own block: the 1u Border
// forms use it alone, and the _L spec block carries one behind its mask
// record.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum::morph {

// Bytes of a plan, and of the 1u kernel's scratch, for a ROI and a mask size
// (both already checked to be at least 1 by 1).
int plan1uSize(LumiSize roiSize, LumiSize maskSize);

// Writes the plan for `mask` (maskSize.width by maskSize.height bytes,
// nonzero meaning selected) to `plan`, which holds plan1uSize bytes.
// Pointers are non-null and sizes at least 1: the caller has checked them.
void buildPlan1u(uint8_t* plan, LumiSize roiSize, const Lum8u* mask, LumiSize maskSize);

}  // namespace lum::morph
