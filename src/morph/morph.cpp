// Erosion and dilation: size queries, Init, and the validation of the filter
// exports, then one call of the common driver.
//
// _L spec block: two 32-bit offsets from the block's start, to the mask
// record (right behind them, at 8) and to the 1u plan (behind the record);
// then the record, then the plan. The spec of the Border forms is the mask
// record alone.
#include <cstdint>
#include <cstring>

#include "frame/border.h"
#include "frame/check.h"
#include "frame/impl.h"
#include "morph/mask_record.h"
#include "morph/morph_driver.h"
#include "morph/plan_1u.h"

namespace lum {
namespace {

using morph::maskRecordSize;

constexpr int kHeadBytes = 8;

bool badSizes(LumiSize roi, LumiSize mask) { return badRoi(roi) || badRoi(mask); }

// How a member reports the extreme value 0x7fffffff in a size or a step.
enum class Extreme { SizeOrStep, Overflow };

// The record inside an _L spec block.
const uint8_t* recordOfL(const Lum8u* spec) {
    int32_t offset;
    std::memcpy(&offset, spec, 4);
    return spec + offset;
}

template <class T, int C, bool Max, Extreme E, bool RefuseInPlace>
LumStatus filter(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int borderType, const T* borderValue,
                 const Lum8u* spec, Lum8u* buffer, const uint8_t* (*record)(const Lum8u*)) {
    constexpr int s = sizeof(T);
    if (anyNull(src, dst, spec, buffer)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    const int bytes = rowBytes(roi.width, C, s);
    if (stepTooSmall(srcStep, bytes) || stepTooSmall(dstStep, bytes)) return lumStatusBadStep;
    if constexpr (s > 1)
        if (stepsMisaligned(s, srcStep, dstStep)) return lumStatusStepNotAligned;
    if (!border::morphologyAccepts(borderType)) return lumStatusBadBorderType;
    if constexpr (E == Extreme::Overflow) {
        if (anyAtLargeLimit(roi.width, roi.height, srcStep, dstStep)) return lumStatusSizeOverflow;
    } else {
        if (anyAtLargeLimit(roi.width, roi.height)) return lumStatusBadSize;
        if (anyAtLargeLimit(srcStep, dstStep)) return lumStatusBadStep;
    }
    int word = border::foldMorphology(borderType);
    if (border::lowCode(word) == border::kConstant && borderValue == nullptr) return lumStatusNullPointer;
    if constexpr (RefuseInPlace)
        if (static_cast<const void*>(src) == static_cast<const void*>(dst)) return lumStatusInPlaceNotSupported;

    T neutral[C];
    if (border::lowCode(word) == border::kNeutral) {
        for (int c = 0; c < C; ++c) neutral[c] = border::neutralValue<T>(Max ? border::MorphOp::Dilate : border::MorphOp::Erode);
        borderValue = neutral;
        word = border::resolveNeutral(word);
    }
    morph::runMorph<T, C, Max>(src, srcStep, dst, dstStep, roi, word, borderValue, record(spec), buffer);
    return lumStatusOk;
}

const uint8_t* recordOfBorder(const Lum8u* spec) { return spec; }

template <int C, int S>
LumStatus borderGetSize(LumiSize roi, LumiSize mask, int* specSize, int* bufferSize) {
    if (anyNull(specSize, bufferSize)) return lumStatusNullPointer;
    if (badSizes(roi, mask)) return lumStatusBadSize;
    *specSize = maskRecordSize(mask);
    *bufferSize = morph::sampleBufferSize(roi, mask, C, S);
    return lumStatusOk;
}

}  // namespace

// ------------------------------------------------------------ _L queries and Init

LumStatus morphGetSpecSize_L(LumiSize roiSize, LumiSize maskSize, LumSizeL* specSize) {
    if (anyNull(specSize)) return lumStatusNullPointer;
    if (badSizes(roiSize, maskSize)) return lumStatusBadSize;
    *specSize = addWrap(addWrap(maskRecordSize(maskSize), morph::plan1uSize(roiSize, maskSize)), kHeadBytes);
    return lumStatusOk;
}

LumStatus morphGetBufferSize_L(LumiSize roiSize, LumiSize maskSize, LumDataType dataType, int numChannels,
                               LumSizeL* bufferSize) {
    if (anyNull(bufferSize)) return lumStatusNullPointer;
    if (badSizes(roiSize, maskSize)) return lumStatusBadSize;
    if (!morphologyDataTypeOk(dataType)) return lumStatusBadDataType;
    if (!channels134Ok(numChannels)) return lumStatusBadChannelCount;
    // 1u counts its samples as bytes here.
    const int s = dataType == kDataType1u ? 1 : dataTypeSize(dataType);
    const int samples = morph::sampleBufferSize(roiSize, maskSize, numChannels, s);
    const int plan = morph::plan1uSize(roiSize, maskSize);
    *bufferSize = samples > plan ? samples : plan;
    return lumStatusOk;
}

LumStatus morphInit_L(LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec) {
    if (anyNull(mask, spec)) return lumStatusNullPointer;
    if (badSizes(roiSize, maskSize)) return lumStatusBadSize;
    const int32_t recordAt = kHeadBytes, planAt = kHeadBytes + maskRecordSize(maskSize);
    std::memcpy(spec, &recordAt, 4);
    std::memcpy(spec + 4, &planAt, 4);
    morph::buildMaskRecord(spec + recordAt, mask, maskSize);
    morph::buildPlan1u(spec + planAt, roiSize, mask, maskSize);
    return lumStatusOk;
}

// ------------------------------------------------------------ Border queries and Init

LumStatus morphologyBorderInit(LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer) {
    if (anyNull(mask, spec, buffer)) return lumStatusNullPointer;
    if (badSizes(roiSize, maskSize)) return lumStatusBadSize;
    morph::buildMaskRecord(spec, mask, maskSize);
    return lumStatusOk;
}

#define LUM_BORDER_GET_SIZE(t, C, S)                                                                      \
    LumStatus morphologyBorderGetSize_##t##_C##C##R(LumiSize roiSize, LumiSize maskSize, int* specSize, \
                                                      int* bufferSize) {                                  \
        return borderGetSize<C, S>(roiSize, maskSize, specSize, bufferSize);                              \
    }
LUM_BORDER_GET_SIZE(8u, 1, 1)
LUM_BORDER_GET_SIZE(8u, 3, 1)
LUM_BORDER_GET_SIZE(8u, 4, 1)
LUM_BORDER_GET_SIZE(32f, 1, 4)
LUM_BORDER_GET_SIZE(32f, 3, 4)
LUM_BORDER_GET_SIZE(32f, 4, 4)
LUM_BORDER_GET_SIZE(16u, 1, 2)
LUM_BORDER_GET_SIZE(16s, 1, 2)
#undef LUM_BORDER_GET_SIZE

// ------------------------------------------------------------ filters

// name, sample type, channels, max (dilation), extreme-size status, in-place refusal
#define LUM_MORPH_FILTERS(op, t, T, C, Max, E, RefuseInPlace)                                                        \
    LumStatus op##_##t##_C##C##R_L(const T* src, LumSizeL srcStep, T* dst, LumSizeL dstStep, LumiSize roiSize,       \
                                   LumiBorderType borderType, const T* borderValue, const Lum8u* spec,             \
                                   Lum8u* buffer) {                                                                  \
        return filter<T, C, Max, Extreme::E, RefuseInPlace>(src, srcStep, dst, dstStep, roiSize, borderType,         \
                                                             borderValue, spec, buffer, recordOfL);                  \
    }                                                                                                                \
    LumStatus op##Border_##t##_C##C##R(const T* src, int srcStep, T* dst, int dstStep, LumiSize roiSize,             \
                                       LumiBorderType borderType, LUM_BORDER_VALUE_##C(T), const Lum8u* spec,       \
                                       Lum8u* buffer) {                                                              \
        return filter<T, C, Max, Extreme::E, RefuseInPlace>(src, srcStep, dst, dstStep, roiSize, borderType,         \
                                                             LUM_BORDER_VALUE_ARG_##C, spec, buffer, recordOfBorder); \
    }
#define LUM_BORDER_VALUE_1(T) T borderValue
#define LUM_BORDER_VALUE_3(T) const T* borderValue
#define LUM_BORDER_VALUE_4(T) const T* borderValue
#define LUM_BORDER_VALUE_ARG_1 &borderValue
#define LUM_BORDER_VALUE_ARG_3 borderValue
#define LUM_BORDER_VALUE_ARG_4 borderValue

LUM_MORPH_FILTERS(dilate, 8u, Lum8u, 1, true, SizeOrStep, false)
LUM_MORPH_FILTERS(dilate, 8u, Lum8u, 3, true, Overflow, false)
LUM_MORPH_FILTERS(dilate, 8u, Lum8u, 4, true, Overflow, false)
LUM_MORPH_FILTERS(dilate, 32f, Lum32f, 1, true, SizeOrStep, false)
LUM_MORPH_FILTERS(dilate, 32f, Lum32f, 3, true, Overflow, false)
LUM_MORPH_FILTERS(dilate, 32f, Lum32f, 4, true, Overflow, false)
LUM_MORPH_FILTERS(dilate, 16u, Lum16u, 1, true, SizeOrStep, false)
LUM_MORPH_FILTERS(dilate, 16s, Lum16s, 1, true, SizeOrStep, true)
LUM_MORPH_FILTERS(erode, 8u, Lum8u, 1, false, SizeOrStep, false)
LUM_MORPH_FILTERS(erode, 8u, Lum8u, 3, false, SizeOrStep, false)
LUM_MORPH_FILTERS(erode, 8u, Lum8u, 4, false, Overflow, false)
LUM_MORPH_FILTERS(erode, 32f, Lum32f, 1, false, Overflow, false)
LUM_MORPH_FILTERS(erode, 32f, Lum32f, 3, false, Overflow, false)
LUM_MORPH_FILTERS(erode, 32f, Lum32f, 4, false, Overflow, false)
LUM_MORPH_FILTERS(erode, 16u, Lum16u, 1, false, Overflow, true)
LUM_MORPH_FILTERS(erode, 16s, Lum16s, 1, false, Overflow, true)

#undef LUM_MORPH_FILTERS
#undef LUM_BORDER_VALUE_1
#undef LUM_BORDER_VALUE_3
#undef LUM_BORDER_VALUE_4
#undef LUM_BORDER_VALUE_ARG_1
#undef LUM_BORDER_VALUE_ARG_3
#undef LUM_BORDER_VALUE_ARG_4

}  // namespace lum
