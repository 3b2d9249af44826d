// Accumulator kernels, on validated arguments: ROI at least 1 x 1, steps at
// least one row. n pixels a row. S is Lum8u, Lum16u or Lum32f; d is the 32f
// accumulator, read and written in place.
#pragma once

#include "lumcv.h"

namespace lum::kernel {

// d + s
template <class S>
void addRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height);
// fma(m, s, d)
template <class S>
void addRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height);

// fma(s, s, d)
template <class S>
void addSquareRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height);
// fma(m, round(s * s), d)
template <class S>
void addSquareRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height);

// fma(a, b, d)
template <class S>
void addProductRows(const S* a, int aStep, const S* b, int bStep, Lum32f* d, int dStep, int n, int height);
// fma(m, round(a * b), d)
template <class S>
void addProductRowsMasked(const S* a, int aStep, const S* b, int bStep, const Lum8u* m, int mStep, Lum32f* d,
                          int dStep, int n, int height);

// fma(alpha, s - d, d)
template <class S>
void addWeightedRows(const S* s, int sStep, Lum32f* d, int dStep, int n, int height, Lum32f alpha);
// fma(m AND alpha, s - d, d)
template <class S>
void addWeightedRowsMasked(const S* s, int sStep, const Lum8u* m, int mStep, Lum32f* d, int dStep, int n, int height,
                           Lum32f alpha);
// dst = fma(alpha, a - b, b); the rows of a and of b both advance by aStep.
void addWeightedRowsOutOfPlace(const Lum32f* a, int aStep, const Lum32f* b, Lum32f* dst, int dstStep, int n, int height,
                               Lum32f alpha);

}  // namespace lum::kernel
