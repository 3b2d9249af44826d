#include <cstdio>

#include "tool.h"

namespace tool {

const char* statusName(LumStatus st) {
    switch (st) {
        case lumStatusOk: return "lumStatusOk";
        case lumStatusEmptyMask: return "lumStatusEmptyMask";
        case lumStatusZeroDenominator: return "lumStatusZeroDenominator";
        case lumStatusSizeWarning: return "lumStatusSizeWarning";
        case lumStatusTooManyLines: return "lumStatusTooManyLines";
        case lumStatusKernelNotSymmetric: return "lumStatusKernelNotSymmetric";
        case lumStatusRoiOutside: return "lumStatusRoiOutside";
        case lumStatusCountOverflow: return "lumStatusCountOverflow";
        case lumStatusBadArgument: return "lumStatusBadArgument";
        case lumStatusBadSize: return "lumStatusBadSize";
        case lumStatusBadRange: return "lumStatusBadRange";
        case lumStatusNullPointer: return "lumStatusNullPointer";
        case lumStatusDivideByZero: return "lumStatusDivideByZero";
        case lumStatusOutOfRange: return "lumStatusOutOfRange";
        case lumStatusContextMismatch: return "lumStatusContextMismatch";
        case lumStatusBadMode: return "lumStatusBadMode";
        case lumStatusBadStep: return "lumStatusBadStep";
        case lumStatusBadThreshold: return "lumStatusBadThreshold";
        case lumStatusBadMaskSize: return "lumStatusBadMaskSize";
        case lumStatusBadAnchor: return "lumStatusBadAnchor";
        case lumStatusBadChannelCount: return "lumStatusBadChannelCount";
        case lumStatusZeroDivisor: return "lumStatusZeroDivisor";
        case lumStatusBadChannelOfInterest: return "lumStatusBadChannelOfInterest";
        case lumStatusBadChannelNumber: return "lumStatusBadChannelNumber";
        case lumStatusBadMetric: return "lumStatusBadMetric";
        case lumStatusBadDataType: return "lumStatusBadDataType";
        case lumStatusStepNotAligned: return "lumStatusStepNotAligned";
        case lumStatusBadBorderType: return "lumStatusBadBorderType";
        case lumStatusBadNormType: return "lumStatusBadNormType";
        case lumStatusBadFilterType: return "lumStatusBadFilterType";
        case lumStatusSizeOverflow: return "lumStatusSizeOverflow";
        case lumStatusInPlaceNotSupported: return "lumStatusInPlaceNotSupported";
        default: return "unknown status";
    }
}

bool checkStatus(LumStatus st, const std::string& what) {
    if (st == lumStatusOk) return true;
    std::fprintf(stderr, "lumcv: %s: %s %s (%d)\n", what.c_str(), st < 0 ? "error" : "warning", statusName(st), st);
    return st > 0;
}

}  // namespace tool
