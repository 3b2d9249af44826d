#include <gtest/gtest.h>

#include <cstring>

#include "lumcore.h"
#include "lumcv.h"
#include "support/noalloc.h"

extern "C" int lumcvHeaderCompilesAsC(void);

namespace {

TEST(Version, RecordHoldsTheModulesNumbersAndTexts) {
    const LumLibraryVersion* v = lumcvGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->major, 2021);
    EXPECT_EQ(v->minor, 12);
    EXPECT_EQ(v->majorBuild, 0);
    EXPECT_EQ(static_cast<uint32_t>(v->build), 0x9b172c15u);
    EXPECT_EQ(std::memcmp(v->targetCpu, "k4\0\0", 4), 0);
    EXPECT_STREQ(v->name, "lumCV AVX2 (k4)");
    EXPECT_STREQ(v->version, "2021.12.0 (r0x9b172c15)");
    EXPECT_STREQ(v->buildDate, "Apr 25 2024");
}

TEST(Version, EveryCallReturnsTheSameConstantRecord) {
    EXPECT_EQ(LUMTEST_NOALLOC(lumcvGetLibVersion, ()), lumcvGetLibVersion());
}

TEST(Version, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(LumLibraryVersion, major), 0u);
    EXPECT_EQ(offsetof(LumLibraryVersion, minor), 4u);
    EXPECT_EQ(offsetof(LumLibraryVersion, majorBuild), 8u);
    EXPECT_EQ(offsetof(LumLibraryVersion, build), 12u);
    EXPECT_EQ(offsetof(LumLibraryVersion, targetCpu), 16u);
    EXPECT_LT(offsetof(LumLibraryVersion, targetCpu), offsetof(LumLibraryVersion, name));
    EXPECT_LT(offsetof(LumLibraryVersion, name), offsetof(LumLibraryVersion, version));
    EXPECT_LT(offsetof(LumLibraryVersion, version), offsetof(LumLibraryVersion, buildDate));
}

TEST(Header, CompilesAsC99) { EXPECT_EQ(lumcvHeaderCompilesAsC(), 2021); }

TEST(Header, SharedTypesHaveTheirWidths) {
    EXPECT_EQ(sizeof(LumStatus), 4u);
    EXPECT_EQ(sizeof(LumSizeL), 4u);
    EXPECT_EQ(sizeof(LumiSize), 8u);
    EXPECT_EQ(sizeof(LumiRect), 16u);
    EXPECT_EQ(sizeof(LumiPoint32f), 8u);
    EXPECT_EQ(sizeof(LumDataType), 4u);
    EXPECT_EQ(sizeof(Lum64s), 8u);
}

TEST(Header, StatusValues) {
    EXPECT_EQ(lumStatusOk, 0);
    EXPECT_EQ(lumStatusEmptyMask, 1);
    EXPECT_EQ(lumStatusZeroDenominator, 2);
    EXPECT_EQ(lumStatusSizeWarning, 12);
    EXPECT_EQ(lumStatusTooManyLines, 33);
    EXPECT_EQ(lumStatusKernelNotSymmetric, 38);
    EXPECT_EQ(lumStatusRoiOutside, 48);
    EXPECT_EQ(lumStatusCountOverflow, -2);
    EXPECT_EQ(lumStatusBadArgument, -5);
    EXPECT_EQ(lumStatusBadSize, -6);
    EXPECT_EQ(lumStatusBadRange, -7);
    EXPECT_EQ(lumStatusNullPointer, -8);
    EXPECT_EQ(lumStatusDivideByZero, -10);
    EXPECT_EQ(lumStatusOutOfRange, -11);
    EXPECT_EQ(lumStatusContextMismatch, -13);
    EXPECT_EQ(lumStatusBadMode, -14);
    EXPECT_EQ(lumStatusBadStep, -16);
    EXPECT_EQ(lumStatusBadThreshold, -19);
    EXPECT_EQ(lumStatusBadMaskSize, -33);
    EXPECT_EQ(lumStatusBadAnchor, -34);
    EXPECT_EQ(lumStatusBadChannelCount, -47);
    EXPECT_EQ(lumStatusZeroDivisor, -51);
    EXPECT_EQ(lumStatusBadChannelOfInterest, -52);
    EXPECT_EQ(lumStatusBadChannelNumber, -53);
    EXPECT_EQ(lumStatusBadMetric, -56);
    EXPECT_EQ(lumStatusBadDataType, -59);
    EXPECT_EQ(lumStatusStepNotAligned, -108);
    EXPECT_EQ(lumStatusBadBorderType, -225);
    EXPECT_EQ(lumStatusBadNormType, -229);
    EXPECT_EQ(lumStatusBadFilterType, -230);
    EXPECT_EQ(lumStatusSizeOverflow, -232);
    EXPECT_EQ(lumStatusInPlaceNotSupported, -9998);
}

TEST(Header, CodeValues) {
    EXPECT_EQ(lumBorderReplicate, 1);
    EXPECT_EQ(lumBorderWrap, 2);
    EXPECT_EQ(lumBorderMirror, 3);
    EXPECT_EQ(lumBorderNeutral, 5);
    EXPECT_EQ(lumBorderConstant, 6);
    EXPECT_EQ(lumBorderInMemTop | lumBorderInMemBottom | lumBorderInMemLeft | lumBorderInMemRight, lumBorderInMemory);
    EXPECT_EQ(lumBorderInMemory, 240);
    EXPECT_EQ(lum1u, 0);
    EXPECT_EQ(lum8u, 1);
    EXPECT_EQ(lum16u, 5);
    EXPECT_EQ(lum16s, 7);
    EXPECT_EQ(lum32s, 11);
    EXPECT_EQ(lum32f, 13);
    EXPECT_EQ(lum64f, 19);
    EXPECT_EQ(lumMask3x3, 33);
    EXPECT_EQ(lumMask5x5, 55);
}

TEST(Core, LargestCacheSizeIsPositive) {
    int size = 0;
    EXPECT_EQ(lumGetMaxCacheSizeB(&size), lumStatusOk);
    EXPECT_GT(size, 0);
    int again = 0;
    EXPECT_EQ(lumGetMaxCacheSizeB(&again), lumStatusOk);
    EXPECT_EQ(size, again);
}

TEST(Core, NullResultPointer) { EXPECT_EQ(lumGetMaxCacheSizeB(nullptr), lumStatusNullPointer); }

}  // namespace
