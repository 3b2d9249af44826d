// Pieces of the validation layer that every family shares. A family's
// implementation runs them in its documented order, one `if` a check, and
// returns the status of the first that fails:
//
//   if (anyNull(src, dst))                          return lumStatusNullPointer;
//   if (badRoi(roi))                                return lumStatusBadSize;
//   if (stepTooSmall(srcStep, rowBytes(roi.width, 1, 2)) ||
//       stepTooSmall(dstStep, rowBytes(roi.width, 1, 2))) return lumStatusBadStep;
//   if (stepsMisaligned(2, srcStep, dstStep))       return lumStatusStepNotAligned;
//
// All arithmetic on caller-given sizes wraps in two's complement instead of
// overflowing: the products behind row bytes are not guarded, and a huge
// width simply yields a negative count that fails the step test.
#pragma once

#include <climits>
#include <cstdint>

#include "lumcv.h"

namespace lum {

// ------------------------------------------------------------ pointers

template <class... P>
constexpr bool anyNull(const P*... p) {
    return ((p == nullptr) || ...);
}

// ------------------------------------------------------------ sizes

constexpr bool badRoi(LumiSize roi) { return roi.width < 1 || roi.height < 1; }

// Wrapping 32-bit product and sum (no signed-overflow UB).
constexpr int mulWrap(int a, int b) {
    return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr int addWrap(int a, int b) {
    return static_cast<int>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// Bytes of one ROI row: width x channels x sample size, wrapping.
constexpr int rowBytes(int width, int channels, int sampleSize) {
    return mulWrap(mulWrap(width, channels), sampleSize);
}

// ------------------------------------------------------------ steps

// lumStatusBadStep: a step smaller than the row bytes, compared as signed
// values, so a zero or negative step always fails.
constexpr bool stepTooSmall(int step, int rowBytesNeeded) { return step < rowBytesNeeded; }

// lumStatusStepNotAligned: any step of the group that is no multiple of the
// sample size, tested by one mask of sampleSize - 1. Only for sampleSize >= 2.
template <class... S>
constexpr bool stepsMisaligned(int sampleSize, S... steps) {
    return ((static_cast<unsigned>(steps) | ... | 0u) & static_cast<unsigned>(sampleSize - 1)) != 0;
}

// ------------------------------------------------------------ _L guards

// The extreme value that the _L members refuse in any size or step.
constexpr int kLargeSizeLimit = INT_MAX;  // 0x7fffffff

constexpr bool atLargeLimit(int v) { return v >= kLargeSizeLimit; }

template <class... V>
constexpr bool anyAtLargeLimit(V... v) {
    return (atLargeLimit(v) || ...);
}

// ------------------------------------------------------------ data types

constexpr int kDataType1u = 0;
constexpr int kDataType8u = 1;
constexpr int kDataType16u = 5;
constexpr int kDataType16s = 7;
constexpr int kDataType32s = 11;
constexpr int kDataType32f = 13;
constexpr int kDataType64f = 19;

// True if `value` is one of the accepted codes.
template <class... C>
constexpr bool isOneOf(int value, C... accepted) {
    return ((value == accepted) || ...);
}

// Sample size in bytes of a LumDataType code, 0 for 1u and unknown codes.
constexpr int dataTypeSize(int dataType) {
    switch (dataType) {
        case kDataType8u: return 1;
        case kDataType16u:
        case kDataType16s: return 2;
        case kDataType32s:
        case kDataType32f: return 4;
        case kDataType64f: return 8;
        default: return 0;
    }
}

// The accepted sets of the type-free size queries and Init functions.
constexpr bool gaussianDataTypeOk(int t) { return isOneOf(t, 1, 5, 7, 13); }
constexpr bool separableSampleTypeOk(int t) { return isOneOf(t, 1, 5, 7, 13); }
constexpr bool separableKernelTypeOk(int t) { return isOneOf(t, 7, 13); }
constexpr bool morphologyDataTypeOk(int t) { return isOneOf(t, 0, 1, 5, 7, 13); }
constexpr bool specklesDataTypeOk(int t) { return isOneOf(t, 1, 5, 7, 13); }
constexpr bool reconstructDataTypeOk(int t) { return isOneOf(t, 1, 5, 13, 19); }
constexpr bool haarDataTypeOk(int t) { return isOneOf(t, 11, 13); }
constexpr bool cornerDataTypeOk(int t) { return isOneOf(t, 1, 13); }
constexpr bool fastDataTypeOk(int t) { return t == 1; }

// Channel counts beside the data type.
constexpr bool channels13Ok(int c) { return c == 1 || c == 3; }
constexpr bool channels134Ok(int c) { return c == 1 || c == 3 || c == 4; }

}  // namespace lum
