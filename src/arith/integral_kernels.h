// Integral-image kernels, on validated arguments: ROI at least 1 x 1, steps
// at least one result row, source and results not overlapping.
//
// Plain integrals write (w + 1) x (h + 1) elements, tilted ones (w + 2) x
// (h + 2). The squared forms compute the integral of S and of S * S in one
// pass over the source.
#pragma once

#include "lumcv.h"

namespace lum::kernel {

void integral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, int w, int h, Lum32s value);
void integral_8u32f(const Lum8u* s, int sStep, Lum32f* d, int dStep, int w, int h, Lum32f value);
void integral_32f(const Lum32f* s, int sStep, Lum32f* d, int dStep, int w, int h);

void sqrIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum32s* q, int qStep, int w, int h,
                       Lum32s value, Lum32s valueSqr);
void sqrIntegral_8u32s64f(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum64f* q, int qStep, int w, int h,
                          Lum32s value, Lum64f valueSqr);
void sqrIntegral_8u32f64f(const Lum8u* s, int sStep, Lum32f* d, int dStep, Lum64f* q, int qStep, int w, int h,
                          Lum32f value, Lum64f valueSqr);

void tiltedIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, int w, int h, Lum32s value);
void tiltedIntegral_8u32f(const Lum8u* s, int sStep, Lum32f* d, int dStep, int w, int h, Lum32f value);

void tiltedSqrIntegral_8u32s(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum32s* q, int qStep, int w, int h,
                             Lum32s value, Lum32s valueSqr);
void tiltedSqrIntegral_8u32s64f(const Lum8u* s, int sStep, Lum32s* d, int dStep, Lum64f* q, int qStep, int w,
                                int h, Lum32s value, Lum64f valueSqr);
void tiltedSqrIntegral_8u32f64f(const Lum8u* s, int sStep, Lum32f* d, int dStep, Lum64f* q, int qStep, int w,
                                int h, Lum32f value, Lum64f valueSqr);

}  // namespace lum::kernel
