// Reduction kernels on validated arguments: ROI at least 1 x 1, steps at least
// one row; C is 1, or 3 with c (0..2) the sample read in each pixel. A null
// mask means every pixel is selected.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum::kernel {

// Mean of the selected samples; 0.0 when the mask selects none.
template <class T, int C>
double meanMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c);

struct MeanStdDev {
    double mean;
    double stdDev;
};

// Population mean and standard deviation; both 0.0 when nothing is selected.
template <class T, int C>
MeanStdDev meanStdDev(const T* src, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c);

// Extremes and their first positions. Only the present value pointers are
// computed and written; an index only beside its value. Returns false when a
// mask is given and selects no pixel (the present outputs then hold zeros).
template <class T, int C>
bool minMaxIndx(const T* src, int srcStep, const Lum8u* mask, int maskStep, int width, int height, int c,
                Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex);

enum class NormKind { Inf, L1, L2 };
enum class NormOf { Image, Difference, Relative };

// Totals of a masked norm, before any root: `num` the norm's total of src1
// (or of |src1 - src2|), `den` the total of src2 (Relative only).
struct NormTotals {
    double num;
    double den;
};

template <class T, int C, NormKind K, NormOf O>
NormTotals normMasked(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask, int maskStep,
                      int width, int height, int c);

}  // namespace lum::kernel
