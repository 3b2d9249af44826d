// Column stage of the separable pipeline: validation of the exports, then
// one kernel call.
#include "filter/pipeline_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// The checks of a column export, in order. dstRowBytes is what the member
// compares dstStep with; hasDivisor is false for 32f.
template <class Src, class Dst, class Coef>
LumStatus checkColumn(const Src* const* srcRows, const Dst* dst, int dstStep, LumiSize roi, const Coef* kernel,
                      int k, int dstRowBytes, const Lum8u* buffer, bool hasDivisor, int divisor) {
    if (anyNull(srcRows, dst, kernel)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    // The row pointers are tested before the kernel length is: a length
    // below 1 merely shortens this loop.
    const int rows = addWrap(k, roi.height - 1);
    for (int i = 0; i < rows; ++i)
        if (srcRows[i] == nullptr) return lumStatusNullPointer;
    if (k < 1) return lumStatusBadSize;
    if (stepTooSmall(dstStep, dstRowBytes)) return lumStatusBadStep;
    if (sizeof(Dst) > 1 && stepsMisaligned(sizeof(Dst), dstStep)) return lumStatusStepNotAligned;
    if (buffer == nullptr) return lumStatusNullPointer;
    if (hasDivisor && divisor == 0) return lumStatusBadArgument;
    return lumStatusOk;
}

kernel::ColumnShape shapeOf(LumiSize roi, int channels, int k) {
    return {roi.width * channels, roi.height, k};
}

// The usual destination row: width x channels samples.
template <class Dst>
int dstRow(LumiSize roi, int channels) {
    return rowBytes(roi.width, channels, sizeof(Dst));
}

}  // namespace

#define LUM_COLUMN_MEMBER(member, Src, Dst, C, kernelFn)                                                         \
    LumStatus filterColumnPipeline_##member##_C##C##R(const Src* const* srcRows, Dst* dst, int dstStep,          \
                                                      LumiSize roiSize, const Src* kernel, int kernelSize,       \
                                                      int divisor, Lum8u* buffer) {                              \
        if (LumStatus st = checkColumn(srcRows, dst, dstStep, roiSize, kernel, kernelSize, dstRow<Dst>(roiSize, C), \
                                       buffer, true, divisor))                                                   \
            return st;                                                                                           \
        kernel::kernelFn(srcRows, dst, dstStep, shapeOf(roiSize, C, kernelSize), kernel, divisor, buffer);       \
        return lumStatusOk;                                                                                      \
    }

LUM_COLUMN_MEMBER(16s8s, Lum16s, Lum8s, 1, columnPipeline_16s8s)
LUM_COLUMN_MEMBER(16s8s, Lum16s, Lum8s, 3, columnPipeline_16s8s)
LUM_COLUMN_MEMBER(16s8u, Lum16s, Lum8u, 1, columnPipeline_16s8u)
LUM_COLUMN_MEMBER(16s8u, Lum16s, Lum8u, 3, columnPipeline_16s8u)
LUM_COLUMN_MEMBER(16s, Lum16s, Lum16s, 1, columnPipeline_16s)
LUM_COLUMN_MEMBER(16s, Lum16s, Lum16s, 3, columnPipeline_16s)
LUM_COLUMN_MEMBER(16u, Lum16u, Lum16u, 1, columnPipeline_16u)
LUM_COLUMN_MEMBER(16u, Lum16u, Lum16u, 3, columnPipeline_16u)
LUM_COLUMN_MEMBER(Low_16s, Lum16s, Lum16s, 1, columnPipeline_Low_16s)

#undef LUM_COLUMN_MEMBER

// Three channels of Low_16s compare dstStep with 2 x width bytes, one
// channel's row, though the kernel writes 3 x width samples a row.
LumStatus filterColumnPipeline_Low_16s_C3R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumiSize roiSize,
                                           const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer) {
    if (LumStatus st = checkColumn(srcRows, dst, dstStep, roiSize, kernel, kernelSize, mulWrap(2, roiSize.width),
                                   buffer, true, divisor))
        return st;
    kernel::columnPipeline_Low_16s(srcRows, dst, dstStep, shapeOf(roiSize, 3, kernelSize), kernel, divisor, buffer);
    return lumStatusOk;
}

LumStatus filterColumnPipeline_32f_C1R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumiSize roiSize,
                                       const Lum32f* kernel, int kernelSize, Lum8u* buffer) {
    if (LumStatus st = checkColumn(srcRows, dst, dstStep, roiSize, kernel, kernelSize, dstRow<Lum32f>(roiSize, 1),
                                   buffer, false, 0))
        return st;
    kernel::columnPipeline_32f(srcRows, dst, dstStep, shapeOf(roiSize, 1, kernelSize), kernel, buffer);
    return lumStatusOk;
}

LumStatus filterColumnPipeline_32f_C3R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumiSize roiSize,
                                       const Lum32f* kernel, int kernelSize, Lum8u* buffer) {
    if (LumStatus st = checkColumn(srcRows, dst, dstStep, roiSize, kernel, kernelSize, dstRow<Lum32f>(roiSize, 3),
                                   buffer, false, 0))
        return st;
    kernel::columnPipeline_32f(srcRows, dst, dstStep, shapeOf(roiSize, 3, kernelSize), kernel, buffer);
    return lumStatusOk;
}

}  // namespace lum
