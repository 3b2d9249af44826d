// Absolute-difference kernels, on validated arguments: ROI at least 1 x 1,
// steps at least one row, n samples a row (width x channels).
#pragma once

#include "lumcv.h"

namespace lum::kernel {

void absDiff_8u(const Lum8u* a, int aStep, const Lum8u* b, int bStep, Lum8u* d, int dStep, int n, int height);
void absDiff_16u(const Lum16u* a, int aStep, const Lum16u* b, int bStep, Lum16u* d, int dStep, int n, int height);
void absDiff_32f(const Lum32f* a, int aStep, const Lum32f* b, int bStep, Lum32f* d, int dStep, int n, int height);

void absDiffC_8u(const Lum8u* s, int sStep, Lum8u* d, int dStep, int n, int height, Lum8u value);
void absDiffC_16u(const Lum16u* s, int sStep, Lum16u* d, int dStep, int n, int height, Lum16u value);
// value - s, sign cleared.
void absDiffC_32f(const Lum32f* s, int sStep, Lum32f* d, int dStep, int n, int height, Lum32f value);

}  // namespace lum::kernel
