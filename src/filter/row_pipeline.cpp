// Row stage of the separable pipeline: validation of the exports, then one
// kernel call. The members share the order of their checks but for where
// (and whether) the divisor is tested.
#include "filter/pipeline_kernels.h"
#include "frame/border.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// Where a member tests its divisor.
enum class DivisorTest {
    None,           // 32f
    ZeroBeforeBorder,  // 16s C1R, Low_16s, 8u16s C3R: zero, after the step tests
    BelowOneBeforeBorder,  // 16u: below 1, after the step tests
    ZeroLast,       // 8u16s C1R, 16s C3R: zero, behind the border word
};

// The checks of a row export, in order. `value` is the C3R border-value
// pointer (tested for null whatever the border word), null for C1R.
template <class Src, class Dst, class Coef>
LumStatus checkRow(const Src* src, int srcStep, Dst* const* dstRows, LumiSize roi, const Coef* kernel, int k,
                   int anchor, int word, int channels, const Src* value, int divisor, DivisorTest divisorTest,
                   const Lum8u* buffer) {
    if (anyNull(src, dstRows, kernel, buffer)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    for (int y = 0; y < roi.height; ++y)
        if (dstRows[y] == nullptr) return lumStatusNullPointer;
    if (channels == 3 && value == nullptr) return lumStatusNullPointer;
    if (k < 1) return lumStatusBadSize;
    if (anchor < 0 || anchor >= k) return lumStatusBadAnchor;
    if (stepTooSmall(srcStep, rowBytes(roi.width, channels, sizeof(Src)))) return lumStatusBadStep;
    if (sizeof(Src) > 1 && stepsMisaligned(sizeof(Src), srcStep)) return lumStatusStepNotAligned;
    if (divisorTest == DivisorTest::ZeroBeforeBorder && divisor == 0) return lumStatusBadArgument;
    if (divisorTest == DivisorTest::BelowOneBeforeBorder && divisor < 1) return lumStatusBadArgument;
    if (!border::filterAccepts(word)) return lumStatusBadBorderType;
    // (The 16s and 16u C3R members test the border-value pointer again here
    // for code 6; the first test has already refused a null one.)
    if (divisorTest == DivisorTest::ZeroLast && divisor == 0) return lumStatusBadArgument;
    return lumStatusOk;
}

kernel::RowShape shapeOf(LumiSize roi, int channels, int k, int anchor, int word) {
    return {roi.width, roi.height, channels, k, anchor, word};
}

}  // namespace

// ------------------------------------------------------------ 16s

LumStatus filterRowBorderPipeline_16s_C1R(const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize,
                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, Lum16s borderValue, int divisor,
                                          Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 1,
                                static_cast<const Lum16s*>(nullptr), divisor, DivisorTest::ZeroBeforeBorder, buffer))
        return st;
    kernel::rowPipeline_16s(src, srcStep, dstRows, shapeOf(roiSize, 1, kernelSize, xAnchor, borderType), kernel,
                            &borderValue, divisor, buffer);
    return lumStatusOk;
}

LumStatus filterRowBorderPipeline_16s_C3R(const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize,
                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, const Lum16s* borderValue, int divisor,
                                          Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 3,
                                borderValue, divisor, DivisorTest::ZeroLast, buffer))
        return st;
    kernel::rowPipeline_16s(src, srcStep, dstRows, shapeOf(roiSize, 3, kernelSize, xAnchor, borderType), kernel,
                            borderValue, divisor, buffer);
    return lumStatusOk;
}

// ------------------------------------------------------------ 16u

LumStatus filterRowBorderPipeline_16u_C1R(const Lum16u* src, int srcStep, Lum16u* const* dstRows, LumiSize roiSize,
                                          const Lum16u* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, Lum16u borderValue, int divisor,
                                          Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 1,
                                static_cast<const Lum16u*>(nullptr), divisor, DivisorTest::BelowOneBeforeBorder,
                                buffer))
        return st;
    kernel::rowPipeline_16u(src, srcStep, dstRows, shapeOf(roiSize, 1, kernelSize, xAnchor, borderType), kernel,
                            &borderValue, divisor, buffer);
    return lumStatusOk;
}

LumStatus filterRowBorderPipeline_16u_C3R(const Lum16u* src, int srcStep, Lum16u* const* dstRows, LumiSize roiSize,
                                          const Lum16u* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, const Lum16u* borderValue, int divisor,
                                          Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 3,
                                borderValue, divisor, DivisorTest::BelowOneBeforeBorder, buffer))
        return st;
    kernel::rowPipeline_16u(src, srcStep, dstRows, shapeOf(roiSize, 3, kernelSize, xAnchor, borderType), kernel,
                            borderValue, divisor, buffer);
    return lumStatusOk;
}

// ------------------------------------------------------------ 32f

LumStatus filterRowBorderPipeline_32f_C1R(const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumiSize roiSize,
                                          const Lum32f* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, Lum32f borderValue, Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 1,
                                static_cast<const Lum32f*>(nullptr), 0, DivisorTest::None, buffer))
        return st;
    kernel::rowPipeline_32f(src, srcStep, dstRows, shapeOf(roiSize, 1, kernelSize, xAnchor, borderType), kernel,
                            &borderValue, buffer);
    return lumStatusOk;
}

LumStatus filterRowBorderPipeline_32f_C3R(const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumiSize roiSize,
                                          const Lum32f* kernel, int kernelSize, int xAnchor,
                                          LumiBorderType borderType, const Lum32f* borderValue, Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 3,
                                borderValue, 0, DivisorTest::None, buffer))
        return st;
    kernel::rowPipeline_32f(src, srcStep, dstRows, shapeOf(roiSize, 3, kernelSize, xAnchor, borderType), kernel,
                            borderValue, buffer);
    return lumStatusOk;
}

// ------------------------------------------------------------ 8u16s

LumStatus filterRowBorderPipeline_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize,
                                            const Lum16s* kernel, int kernelSize, int xAnchor,
                                            LumiBorderType borderType, Lum8u borderValue, int divisor,
                                            Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 1,
                                static_cast<const Lum8u*>(nullptr), divisor, DivisorTest::ZeroLast, buffer))
        return st;
    kernel::rowPipeline_8u16s(src, srcStep, dstRows, shapeOf(roiSize, 1, kernelSize, xAnchor, borderType), kernel,
                              &borderValue, divisor, buffer);
    return lumStatusOk;
}

LumStatus filterRowBorderPipeline_8u16s_C3R(const Lum8u* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize,
                                            const Lum16s* kernel, int kernelSize, int xAnchor,
                                            LumiBorderType borderType, const Lum8u* borderValue, int divisor,
                                            Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 3,
                                borderValue, divisor, DivisorTest::ZeroBeforeBorder, buffer))
        return st;
    kernel::rowPipeline_8u16s(src, srcStep, dstRows, shapeOf(roiSize, 3, kernelSize, xAnchor, borderType), kernel,
                              borderValue, divisor, buffer);
    return lumStatusOk;
}

// ------------------------------------------------------------ Low_16s

LumStatus filterRowBorderPipeline_Low_16s_C1R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                              LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor,
                                              LumiBorderType borderType, Lum16s borderValue, int divisor,
                                              Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 1,
                                static_cast<const Lum16s*>(nullptr), divisor, DivisorTest::ZeroBeforeBorder, buffer))
        return st;
    kernel::rowPipeline_Low_16s(src, srcStep, dstRows, shapeOf(roiSize, 1, kernelSize, xAnchor, borderType), kernel,
                                &borderValue, divisor, buffer);
    return lumStatusOk;
}

LumStatus filterRowBorderPipeline_Low_16s_C3R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                              LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor,
                                              LumiBorderType borderType, const Lum16s* borderValue, int divisor,
                                              Lum8u* buffer) {
    if (LumStatus st = checkRow(src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, 3,
                                borderValue, divisor, DivisorTest::ZeroBeforeBorder, buffer))
        return st;
    kernel::rowPipeline_Low_16s(src, srcStep, dstRows, shapeOf(roiSize, 3, kernelSize, xAnchor, borderType), kernel,
                                borderValue, divisor, buffer);
    return lumStatusOk;
}

}  // namespace lum
