// Packed one-bit erosion and dilation: the validating layer, the size query
// and Init of the plan.
//
// Order of checks of the filters (the _L and the Border forms alike):
//   1. src, dst, spec, buffer null               lumStatusNullPointer
//   2. (width + 7) / 8 above srcStep or dstStep   lumStatusBadStep
//   3. a negative bit offset, a size below 1      lumStatusBadSize
//   4. border word above 4095, or its folded form
//      neither 240 nor of low code 1, 5 or 6      lumStatusBadBorderType
//   5. src == dst                                 lumStatusInPlaceNotSupported
//   6. low code 6 with a null borderValue (_L)    lumStatusNullPointer
// Then the plan's mode: 3 copies the ROI, above 3 nothing is written.

#include <cstring>

#include "frame/border.h"
#include "frame/check.h"
#include "frame/impl.h"
#include "morph/kernel_1u.h"
#include "morph/plan_1u.h"
#include "morph/plan_layout_1u.h"

namespace lum {

namespace {

using border::MorphOp;

// The _L spec starts with two 32-bit offsets from its start: to the mask
// record, then to the plan.
const uint8_t* planOfSpecL(const uint8_t* spec) {
    int32_t offset;
    std::memcpy(&offset, spec + 4, 4);
    return spec + offset;
}

LumStatus run_1u(MorphOp op, const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                 int dstBitOffset, LumiSize roi, int borderType, const Lum8u* borderValue, bool valueNeeded,
                 const Lum8u* spec, bool specL, Lum8u* buffer) {
    if (anyNull(src, dst, spec, buffer)) return lumStatusNullPointer;
    const int rowLength = addWrap(roi.width, 7) / 8;
    if (rowLength > srcStep || rowLength > dstStep) return lumStatusBadStep;
    if (srcBitOffset < 0 || dstBitOffset < 0 || badRoi(roi)) return lumStatusBadSize;
    if (border::above(borderType, 4095)) return lumStatusBadBorderType;
    const int word = border::foldMorphology(borderType);
    const int code = border::lowCode(word);
    if (word != border::kInMemory && !isOneOf(code, border::kReplicate, border::kNeutral, border::kConstant))
        return lumStatusBadBorderType;
    if (src == dst) return lumStatusInPlaceNotSupported;
    if (valueNeeded && code == border::kConstant && borderValue == nullptr) return lumStatusNullPointer;

    const uint8_t* plan = specL ? planOfSpecL(spec) : spec;
    const uint32_t mode = static_cast<uint32_t>(morph::plan1u::field(plan, morph::plan1u::kMode));
    const morph::Bits1u img{src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset};
    if (mode == morph::plan1u::kModeCopy) {
        morph::copy_1u(img, roi, buffer);
        return lumStatusOk;
    }
    if (mode > 3) return lumStatusOk;
    const bool fill = code == border::kNeutral ? op == MorphOp::Erode
                      : code == border::kConstant ? *borderValue != 0
                                                  : false;
    morph::morph_1u(op, img, roi, border::resolveNeutral(word), fill, plan, buffer);
    return lumStatusOk;
}

}  // namespace

LumStatus dilate_1u_C1R_L(const Lum8u* src, LumSizeL srcStep, int srcBitOffset, Lum8u* dst, LumSizeL dstStep,
                          int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue,
                          const Lum8u* spec, Lum8u* buffer) {
    return run_1u(MorphOp::Dilate, src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType,
                  borderValue, true, spec, true, buffer);
}

LumStatus erode_1u_C1R_L(const Lum8u* src, LumSizeL srcStep, int srcBitOffset, Lum8u* dst, LumSizeL dstStep,
                         int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue,
                         const Lum8u* spec, Lum8u* buffer) {
    return run_1u(MorphOp::Erode, src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType,
                  borderValue, true, spec, true, buffer);
}

LumStatus dilateBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                              int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                              const Lum8u* spec, Lum8u* buffer) {
    return run_1u(MorphOp::Dilate, src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType,
                  &borderValue, false, spec, false, buffer);
}

LumStatus erodeBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                             int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                             const Lum8u* spec, Lum8u* buffer) {
    return run_1u(MorphOp::Erode, src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType,
                  &borderValue, false, spec, false, buffer);
}

LumStatus morphologyBorderGetSize_1u_C1R(LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize) {
    if (anyNull(specSize, bufferSize)) return lumStatusNullPointer;
    if (badRoi(roiSize) || badRoi(maskSize)) return lumStatusBadSize;
    const int p = morph::plan1uSize(roiSize, maskSize);
    *specSize = p;
    *bufferSize = p;
    return lumStatusOk;
}

LumStatus morphologyBorderInit_1u_C1R(LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec,
                                      Lum8u* buffer) {
    if (anyNull(mask, spec, buffer)) return lumStatusNullPointer;
    if (badRoi(roiSize) || badRoi(maskSize)) return lumStatusBadSize;
    morph::buildPlan1u(spec, roiSize, mask, maskSize);
    return lumStatusOk;
}

}  // namespace lum
