// Accumulators: validation of the exports, then one kernel call.
//
// Checks run pointers, ROI, then steps. The 8u and 32f members test every
// step against its row bytes in one group and then the steps of their float
// images for multiples of 4; 8u and mask steps have no alignment test. The
// 16u members test in two passes: the 16u source steps for size and for
// multiples of 2 first, then the mask and accumulator steps for size, then
// the accumulator step for multiples of 4; so a bad accumulator step of a
// 16u member is reported only after the sources' alignment has passed.
#include <initializer_list>

#include "arith/accumulate_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

constexpr int kNoMask = -1;  // maskStep of the members without a mask

template <class S>
LumStatus checkSteps(int width, std::initializer_list<int> sourceSteps, bool masked, int maskStep, int accStep) {
    constexpr int s = static_cast<int>(sizeof(S));
    const int sourceRow = rowBytes(width, 1, s);
    bool sourceShort = false, sourceMisaligned = false;
    for (int step : sourceSteps) {
        sourceShort = sourceShort || stepTooSmall(step, sourceRow);
        sourceMisaligned = sourceMisaligned || (s > 1 && stepsMisaligned(s, step));
    }
    const bool othersShort = (masked && stepTooSmall(maskStep, rowBytes(width, 1, 1))) ||
                             stepTooSmall(accStep, rowBytes(width, 1, 4));
    const bool accMisaligned = stepsMisaligned(4, accStep);
    if constexpr (s == 2) {
        if (sourceShort) return lumStatusBadStep;
        if (sourceMisaligned) return lumStatusStepNotAligned;
        if (othersShort) return lumStatusBadStep;
        if (accMisaligned) return lumStatusStepNotAligned;
    } else {
        if (sourceShort || othersShort) return lumStatusBadStep;
        if (sourceMisaligned || accMisaligned) return lumStatusStepNotAligned;
    }
    return lumStatusOk;
}

// One source, with or without a mask.
template <class S>
LumStatus checkOne(const S* src, int srcStep, const Lum8u* mask, int maskStep, bool masked, const Lum32f* acc,
                   int accStep, LumiSize roi) {
    if (anyNull(src, acc) || (masked && mask == nullptr)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    return checkSteps<S>(roi.width, {srcStep}, masked, maskStep, accStep);
}

// Two sources, with or without a mask.
template <class S>
LumStatus checkTwo(const S* a, int aStep, const S* b, int bStep, const Lum8u* mask, int maskStep, bool masked,
                   const Lum32f* acc, int accStep, LumiSize roi) {
    if (anyNull(a, b, acc) || (masked && mask == nullptr)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    return checkSteps<S>(roi.width, {aStep, bStep}, masked, maskStep, accStep);
}

template <class S>
LumStatus add(const S* src, int srcStep, Lum32f* acc, int accStep, LumiSize roi) {
    if (LumStatus st = checkOne(src, srcStep, nullptr, kNoMask, false, acc, accStep, roi)) return st;
    kernel::addRows(src, srcStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}
template <class S>
LumStatus addMasked(const S* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* acc, int accStep,
                    LumiSize roi) {
    if (LumStatus st = checkOne(src, srcStep, mask, maskStep, true, acc, accStep, roi)) return st;
    kernel::addRowsMasked(src, srcStep, mask, maskStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}

template <class S>
LumStatus addSquare(const S* src, int srcStep, Lum32f* acc, int accStep, LumiSize roi) {
    if (LumStatus st = checkOne(src, srcStep, nullptr, kNoMask, false, acc, accStep, roi)) return st;
    kernel::addSquareRows(src, srcStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}
template <class S>
LumStatus addSquareMasked(const S* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* acc, int accStep,
                          LumiSize roi) {
    if (LumStatus st = checkOne(src, srcStep, mask, maskStep, true, acc, accStep, roi)) return st;
    kernel::addSquareRowsMasked(src, srcStep, mask, maskStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}

template <class S>
LumStatus addProduct(const S* a, int aStep, const S* b, int bStep, Lum32f* acc, int accStep, LumiSize roi) {
    if (LumStatus st = checkTwo(a, aStep, b, bStep, nullptr, kNoMask, false, acc, accStep, roi)) return st;
    kernel::addProductRows(a, aStep, b, bStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}
template <class S>
LumStatus addProductMasked(const S* a, int aStep, const S* b, int bStep, const Lum8u* mask, int maskStep, Lum32f* acc,
                           int accStep, LumiSize roi) {
    if (LumStatus st = checkTwo(a, aStep, b, bStep, mask, maskStep, true, acc, accStep, roi)) return st;
    kernel::addProductRowsMasked(a, aStep, b, bStep, mask, maskStep, acc, accStep, roi.width, roi.height);
    return lumStatusOk;
}

template <class S>
LumStatus addWeighted(const S* src, int srcStep, Lum32f* acc, int accStep, LumiSize roi, Lum32f alpha) {
    if (LumStatus st = checkOne(src, srcStep, nullptr, kNoMask, false, acc, accStep, roi)) return st;
    kernel::addWeightedRows(src, srcStep, acc, accStep, roi.width, roi.height, alpha);
    return lumStatusOk;
}
template <class S>
LumStatus addWeightedMasked(const S* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* acc, int accStep,
                            LumiSize roi, Lum32f alpha) {
    if (LumStatus st = checkOne(src, srcStep, mask, maskStep, true, acc, accStep, roi)) return st;
    kernel::addWeightedRowsMasked(src, srcStep, mask, maskStep, acc, accStep, roi.width, roi.height, alpha);
    return lumStatusOk;
}

}  // namespace

// ------------------------------------------------------------ lumiAdd

LumStatus add_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                           int srcDstStep, LumiSize roiSize) {
    return addMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus add_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return add(src, srcStep, srcDst, srcDstStep, roiSize);
}
LumStatus add_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                        int srcDstStep, LumiSize roiSize) {
    return addMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus add_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                          int srcDstStep, LumiSize roiSize) {
    return addMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus add_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return add(src, srcStep, srcDst, srcDstStep, roiSize);
}

// ------------------------------------------------------------ lumiAddSquare

LumStatus addSquare_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                 int srcDstStep, LumiSize roiSize) {
    return addSquareMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addSquare_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addSquare(src, srcStep, srcDst, srcDstStep, roiSize);
}
LumStatus addSquare_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                              int srcDstStep, LumiSize roiSize) {
    return addSquareMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addSquare_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addSquare(src, srcStep, srcDst, srcDstStep, roiSize);
}
LumStatus addSquare_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                int srcDstStep, LumiSize roiSize) {
    return addSquareMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addSquare_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addSquare(src, srcStep, srcDst, srcDstStep, roiSize);
}

// ------------------------------------------------------------ lumiAddProduct

LumStatus addProduct_16u32f_C1IMR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                  const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addProductMasked(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addProduct_16u32f_C1IR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, Lum32f* srcDst,
                                 int srcDstStep, LumiSize roiSize) {
    return addProduct(src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize);
}
LumStatus addProduct_32f_C1IMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask,
                               int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addProductMasked(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addProduct_32f_C1IR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* srcDst,
                              int srcDstStep, LumiSize roiSize) {
    return addProduct(src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize);
}
LumStatus addProduct_8u32f_C1IMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask,
                                 int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize) {
    return addProductMasked(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
LumStatus addProduct_8u32f_C1IR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum32f* srcDst,
                                int srcDstStep, LumiSize roiSize) {
    return addProduct(src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize);
}

// ------------------------------------------------------------ lumiAddWeighted

LumStatus addWeighted_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                   int srcDstStep, LumiSize roiSize, Lum32f alpha) {
    return addWeightedMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
LumStatus addWeighted_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize,
                                  Lum32f alpha) {
    return addWeighted(src, srcStep, srcDst, srcDstStep, roiSize, alpha);
}
LumStatus addWeighted_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                int srcDstStep, LumiSize roiSize, Lum32f alpha) {
    return addWeightedMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
LumStatus addWeighted_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize,
                               Lum32f alpha) {
    return addWeighted(src, srcStep, srcDst, srcDstStep, roiSize, alpha);
}
LumStatus addWeighted_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                  int srcDstStep, LumiSize roiSize, Lum32f alpha) {
    return addWeightedMasked(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
LumStatus addWeighted_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize,
                                 Lum32f alpha) {
    return addWeighted(src, srcStep, srcDst, srcDstStep, roiSize, alpha);
}

// Out of place: dst = fma(alpha, src1 - src2, src2). src2Step is tested like
// every other step and then has no use: src2's rows advance by src1Step.
LumStatus addWeighted_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* dst,
                              int dstStep, LumiSize roiSize, Lum32f alpha) {
    if (anyNull(src1, src2, dst)) return lumStatusNullPointer;
    if (badRoi(roiSize)) return lumStatusBadSize;
    const int row = rowBytes(roiSize.width, 1, 4);
    if (stepTooSmall(src1Step, row) || stepTooSmall(src2Step, row) || stepTooSmall(dstStep, row))
        return lumStatusBadStep;
    if (stepsMisaligned(4, src1Step, src2Step, dstStep)) return lumStatusStepNotAligned;
    kernel::addWeightedRowsOutOfPlace(src1, src1Step, src2, dst, dstStep, roiSize.width, roiSize.height, alpha);
    return lumStatusOk;
}

}  // namespace lum
