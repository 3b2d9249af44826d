// Motion history kernel, on validated arguments: ROI at least 1 x 1, steps at
// least one row, n pixels a row. S is Lum8u, Lum16u or Lum32f.
#pragma once

#include "lumcv.h"

namespace lum::kernel {

// silhouette != 0: mhi = timestamp; else mhi < limit: mhi = 0; else unchanged.
template <class S>
void updateMotionHistoryRows(const S* sil, int silStep, Lum32f* mhi, int mhiStep, int n, int height, Lum32f timestamp,
                             Lum32f limit);

}  // namespace lum::kernel
