// Absolute difference: validation of the exports, then one kernel call.
#include "arith/absdiff_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// Checks shared by the two-image members: pointers, ROI, steps against the
// row bytes, then (for samples of 2 bytes and more) step alignment.
template <class T>
LumStatus checkTwoImages(const T* a, int aStep, const T* b, int bStep, const T* d, int dStep, LumiSize roi) {
    if (anyNull(a, b, d)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    const int row = rowBytes(roi.width, 1, sizeof(T));
    if (stepTooSmall(aStep, row) || stepTooSmall(bStep, row) || stepTooSmall(dStep, row)) return lumStatusBadStep;
    if (sizeof(T) > 1 && stepsMisaligned(sizeof(T), aStep, bStep, dStep)) return lumStatusStepNotAligned;
    return lumStatusOk;
}

template <class T>
LumStatus checkOneImage(const T* s, int sStep, const T* d, int dStep, LumiSize roi) {
    if (anyNull(s, d)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    const int row = rowBytes(roi.width, 1, sizeof(T));
    if (stepTooSmall(sStep, row) || stepTooSmall(dStep, row)) return lumStatusBadStep;
    if (sizeof(T) > 1 && stepsMisaligned(sizeof(T), sStep, dStep)) return lumStatusStepNotAligned;
    return lumStatusOk;
}

// The constant is clamped into the sample's range without a status.
template <class T>
T clampValue(int value) {
    constexpr int hi = static_cast<int>(static_cast<T>(~T(0)));
    return static_cast<T>(value < 0 ? 0 : (value > hi ? hi : value));
}

}  // namespace

LumStatus absDiff_8u_C1R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep,
                         LumiSize roiSize) {
    if (LumStatus st = checkTwoImages(src1, src1Step, src2, src2Step, dst, dstStep, roiSize)) return st;
    kernel::absDiff_8u(src1, src1Step, src2, src2Step, dst, dstStep, roiSize.width, roiSize.height);
    return lumStatusOk;
}

// Three interleaved channels are a per-sample operation: the one-channel
// member on rows three times as wide, with the steps tested against them.
LumStatus absDiff_8u_C3R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep,
                         LumiSize roiSize) {
    return absDiff_8u_C1R(src1, src1Step, src2, src2Step, dst, dstStep,
                          LumiSize{mulWrap(roiSize.width, 3), roiSize.height});
}

LumStatus absDiff_16u_C1R(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, Lum16u* dst,
                          int dstStep, LumiSize roiSize) {
    if (LumStatus st = checkTwoImages(src1, src1Step, src2, src2Step, dst, dstStep, roiSize)) return st;
    kernel::absDiff_16u(src1, src1Step, src2, src2Step, dst, dstStep, roiSize.width, roiSize.height);
    return lumStatusOk;
}

LumStatus absDiff_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* dst,
                          int dstStep, LumiSize roiSize) {
    if (LumStatus st = checkTwoImages(src1, src1Step, src2, src2Step, dst, dstStep, roiSize)) return st;
    kernel::absDiff_32f(src1, src1Step, src2, src2Step, dst, dstStep, roiSize.width, roiSize.height);
    return lumStatusOk;
}

LumStatus absDiffC_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, int value) {
    if (LumStatus st = checkOneImage(src, srcStep, dst, dstStep, roiSize)) return st;
    kernel::absDiffC_8u(src, srcStep, dst, dstStep, roiSize.width, roiSize.height, clampValue<Lum8u>(value));
    return lumStatusOk;
}

LumStatus absDiffC_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, int value) {
    if (LumStatus st = checkOneImage(src, srcStep, dst, dstStep, roiSize)) return st;
    kernel::absDiffC_16u(src, srcStep, dst, dstStep, roiSize.width, roiSize.height, clampValue<Lum16u>(value));
    return lumStatusOk;
}

LumStatus absDiffC_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize,
                           Lum32f value) {
    if (LumStatus st = checkOneImage(src, srcStep, dst, dstStep, roiSize)) return st;
    kernel::absDiffC_32f(src, srcStep, dst, dstStep, roiSize.width, roiSize.height, value);
    return lumStatusOk;
}

}  // namespace lum
