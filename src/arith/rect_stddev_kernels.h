// Window standard-deviation kernels, on validated arguments: ROI at least
// 1 x 1, window at least 1 x 1.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum::kernel {

// Where one corner of the window lies from a result pixel: rows and columns
// of the integrals, in elements. Columns may be negative (tilted windows).
struct Corner {
    int64_t row;
    int64_t col;
};

// The four corners A, B, C, D; s = (A - B) - (C - D).
struct Window {
    Corner a, b, c, d;
};

void windowStdDev_32f(const Lum32f* s, int sStep, const Lum64f* q, int qStep, Lum32f* d, int dStep, int w, int h,
                      const Window& win, Lum64f n);
void windowStdDev_32s32f(const Lum32s* s, int sStep, const Lum64f* q, int qStep, Lum32f* d, int dStep, int w,
                         int h, const Window& win, Lum64f n);
// trunc(fma(scale, t, 0.5f)) with the float normaliser n.
void windowStdDev_32s(const Lum32s* s, int sStep, const Lum32s* q, int qStep, Lum32s* d, int dStep, int w, int h,
                      const Window& win, Lum32f n, Lum32f scale);

}  // namespace lum::kernel
