// Gaussian filter kernels, on validated arguments: ROI at least 1 x 1, steps
// at least one row, an accepted border word, kernelSize odd and at least 3,
// and a buffer of the size the _L query reports for this ROI.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum::kernel {

struct GaussianPlan {
    int width;          // pixels
    int height;
    int border;         // the border word as the caller gave it
    int kernelSize;     // odd, >= 3
    const float* half;  // kernelSize / 2 + 1 weights, outermost tap first
    uint8_t* buffer;    // the caller's buffer, aligned up to 64 bytes here
    bool bypass;        // store output rows past the cache where aligned
};

// value: one sample a channel; read only where the low code is 6.
void gaussian_8u_C1(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, const Lum8u* value, const GaussianPlan& p);
void gaussian_8u_C3(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, const Lum8u* value, const GaussianPlan& p);
void gaussian_16u_C1(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, const Lum16u* value,
                     const GaussianPlan& p);
void gaussian_16u_C3(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, const Lum16u* value,
                     const GaussianPlan& p);
void gaussian_16s_C1(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, const Lum16s* value,
                     const GaussianPlan& p);
void gaussian_16s_C3(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, const Lum16s* value,
                     const GaussianPlan& p);
void gaussian_32f_C1(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, const Lum32f* value,
                     const GaussianPlan& p);
void gaussian_32f_C3(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, const Lum32f* value,
                     const GaussianPlan& p);

}  // namespace lum::kernel
