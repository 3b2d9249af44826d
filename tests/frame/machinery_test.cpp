// Unit tests of the shared validation, border and carving pieces.
#include <gtest/gtest.h>

#include <cfloat>
#include <cstring>
#include <vector>

#include "frame/border.h"
#include "frame/carve.h"
#include "frame/check.h"
#include "frame/simd.h"

namespace {

using namespace lum;
namespace bd = lum::border;

// ------------------------------------------------------------ checks

TEST(Checks, NullGroup) {
    int a = 0;
    EXPECT_FALSE(anyNull(&a, &a));
    EXPECT_TRUE(anyNull(&a, static_cast<int*>(nullptr)));
    EXPECT_TRUE(anyNull(static_cast<const float*>(nullptr)));
}

TEST(Checks, RoiBelowOneIsBad) {
    EXPECT_FALSE(badRoi({1, 1}));
    EXPECT_TRUE(badRoi({0, 1}));
    EXPECT_TRUE(badRoi({1, 0}));
    EXPECT_TRUE(badRoi({-5, 7}));
}

TEST(Checks, StepAgainstRowBytesIsSigned) {
    EXPECT_FALSE(stepTooSmall(10, rowBytes(5, 1, 2)));
    EXPECT_TRUE(stepTooSmall(9, rowBytes(5, 1, 2)));
    EXPECT_TRUE(stepTooSmall(0, rowBytes(1, 1, 1)));
    EXPECT_TRUE(stepTooSmall(-4, rowBytes(1, 1, 1)));
}

TEST(Checks, RowBytesWrapsInsteadOfOverflowing) {
    // 0x40000000 x 4 wraps to 0: the product is not guarded.
    EXPECT_EQ(rowBytes(0x40000000, 1, 4), 0);
    EXPECT_EQ(rowBytes(0x7fffffff, 3, 1), static_cast<int>(0x7fffffffu * 3u));
    EXPECT_EQ(mulWrap(0x7fffffff, 2), -2);
    EXPECT_EQ(addWrap(0x7fffffff, 1), static_cast<int>(0x80000000u));
}

TEST(Checks, AlignmentIsOneMaskOverAllSteps) {
    EXPECT_FALSE(stepsMisaligned(2, 4, 8, 10));
    EXPECT_TRUE(stepsMisaligned(2, 4, 9, 10));
    EXPECT_TRUE(stepsMisaligned(4, 8, 6));
    EXPECT_FALSE(stepsMisaligned(8, 16, 64));
    EXPECT_TRUE(stepsMisaligned(8, 16, 68));
}

TEST(Checks, LargeSizeGuard) {
    EXPECT_TRUE(atLargeLimit(0x7fffffff));
    EXPECT_FALSE(atLargeLimit(0x7ffffffe));
    EXPECT_TRUE(anyAtLargeLimit(1, 2, 0x7fffffff));
    EXPECT_FALSE(anyAtLargeLimit(1, -1, 0x7ffffffe));
}

TEST(Checks, DataTypeSets) {
    for (int t = -1; t < 40; ++t) {
        EXPECT_EQ(gaussianDataTypeOk(t), t == 1 || t == 5 || t == 7 || t == 13) << t;
        EXPECT_EQ(morphologyDataTypeOk(t), t == 0 || t == 1 || t == 5 || t == 7 || t == 13) << t;
        EXPECT_EQ(reconstructDataTypeOk(t), t == 1 || t == 5 || t == 13 || t == 19) << t;
        EXPECT_EQ(separableKernelTypeOk(t), t == 7 || t == 13) << t;
        EXPECT_EQ(haarDataTypeOk(t), t == 11 || t == 13) << t;
        EXPECT_EQ(cornerDataTypeOk(t), t == 1 || t == 13) << t;
        EXPECT_EQ(fastDataTypeOk(t), t == 1) << t;
    }
}

TEST(Checks, SignedEightBitIsNoDataTypeAnywhere) {
    EXPECT_FALSE(gaussianDataTypeOk(3));
    EXPECT_FALSE(separableSampleTypeOk(3));
    EXPECT_FALSE(separableKernelTypeOk(3));
    EXPECT_FALSE(morphologyDataTypeOk(3));
    EXPECT_FALSE(specklesDataTypeOk(3));
    EXPECT_FALSE(reconstructDataTypeOk(3));
    EXPECT_FALSE(haarDataTypeOk(3));
    EXPECT_FALSE(cornerDataTypeOk(3));
    EXPECT_FALSE(fastDataTypeOk(3));
    EXPECT_EQ(dataTypeSize(3), 0);
}

TEST(Checks, DataTypeSizes) {
    EXPECT_EQ(dataTypeSize(kDataType1u), 0);
    EXPECT_EQ(dataTypeSize(kDataType8u), 1);
    EXPECT_EQ(dataTypeSize(kDataType16u), 2);
    EXPECT_EQ(dataTypeSize(kDataType16s), 2);
    EXPECT_EQ(dataTypeSize(kDataType32s), 4);
    EXPECT_EQ(dataTypeSize(kDataType32f), 4);
    EXPECT_EQ(dataTypeSize(kDataType64f), 8);
}

TEST(Checks, ChannelCounts) {
    EXPECT_TRUE(channels13Ok(1));
    EXPECT_TRUE(channels13Ok(3));
    EXPECT_FALSE(channels13Ok(4));
    EXPECT_TRUE(channels134Ok(4));
    EXPECT_FALSE(channels134Ok(2));
    EXPECT_FALSE(channels134Ok(0));
}

// ------------------------------------------------------------ borders

TEST(Borders, FilterRuleTakesReplicateMirrorConstantAndExactly240) {
    for (int w = 0; w < 300; ++w) {
        const int low = w & 15;
        const bool want = w <= 255 && (w == 240 || low == 1 || low == 3 || low == 6);
        EXPECT_EQ(bd::filterAccepts(w), want) << w;
    }
}

TEST(Borders, TypeZeroWithAllFourFlagsIsInMemoryWithFewerRefused) {
    EXPECT_TRUE(bd::filterAccepts(16 + 32 + 64 + 128));
    EXPECT_FALSE(bd::filterAccepts(16));
    EXPECT_FALSE(bd::filterAccepts(16 + 32 + 64));
    EXPECT_TRUE(bd::morphologyAccepts(240));
    EXPECT_FALSE(bd::morphologyAccepts(16));
}

TEST(Borders, NeutralTypeIsRefusedOutsideMorphology) {
    EXPECT_FALSE(bd::filterAccepts(5));
    EXPECT_FALSE(bd::filterAccepts(5 | 64));
    EXPECT_FALSE(bd::filterAcceptsAnyInMemory(5));
    EXPECT_TRUE(bd::morphologyAccepts(5));
}

TEST(Borders, WrapAndOtherCodesAreRefusedEverywhere) {
    for (int code : {0, 2, 4, 7, 8, 9, 10, 11, 12, 13, 14, 15}) {
        EXPECT_FALSE(bd::filterAccepts(code)) << code;
        EXPECT_FALSE(bd::filterAcceptsAnyInMemory(code)) << code;
        EXPECT_FALSE(bd::morphologyAccepts(code)) << code;
    }
}

TEST(Borders, GaussianRuleTakesAnyLowCodeWithAllFlags) {
    EXPECT_TRUE(bd::filterAcceptsAnyInMemory(243));
    EXPECT_TRUE(bd::filterAcceptsAnyInMemory(244));
    EXPECT_TRUE(bd::filterAcceptsAnyInMemory(255));
    EXPECT_FALSE(bd::filterAccepts(244));
    EXPECT_TRUE(bd::filterAccepts(241));  // low code 1 with flags
    EXPECT_FALSE(bd::filterAcceptsAnyInMemory(256 + 240));
}

TEST(Borders, MorphologyFoldsTheSecondStageFlags) {
    EXPECT_EQ(bd::foldMorphology(240 + 256), 240);
    EXPECT_EQ(bd::foldMorphology(0x100 | 1), 16 | 1);
    EXPECT_EQ(bd::foldMorphology(0xF00), 240);
    EXPECT_EQ(bd::foldMorphology(0x800 | 0x40 | 3), 128 | 64 | 3);
    EXPECT_TRUE(bd::morphologyAccepts(240 + 256));
    EXPECT_TRUE(bd::morphologyAccepts(0xF00));
    EXPECT_TRUE(bd::morphologyAccepts(4095 - 15 + 6));
    EXPECT_FALSE(bd::morphologyAccepts(4096 + 1));
    EXPECT_FALSE(bd::filterAccepts(240 + 256));
}

TEST(Borders, NegativeWordLiesAboveEveryMaximum) {
    // -15 has the low code 1; read as an unsigned word it is above 255 and 4095.
    EXPECT_FALSE(bd::filterAccepts(-15));
    EXPECT_FALSE(bd::filterAcceptsAnyInMemory(-16));
    EXPECT_FALSE(bd::morphologyAccepts(-15));
}

TEST(Borders, SecondStageGuardClearsSidesOfTheFirst) {
    EXPECT_EQ(bd::guardSecondStage(0x100 | 0x10 | 1), 0x10 | 1);
    EXPECT_EQ(bd::guardSecondStage(0xF00 | 0x50 | 3), 0xA00 | 0x50 | 3);
    EXPECT_EQ(bd::guardSecondStage(0x300 | 6), 0x300 | 6);
}

TEST(Borders, NeutralResolvesToConstantWithFlagsKept) {
    EXPECT_EQ(bd::resolveNeutral(5), 6);
    EXPECT_EQ(bd::resolveNeutral(5 | 64 | 16), 6 | 64 | 16);
    EXPECT_EQ(bd::resolveNeutral(1 | 64), 1 | 64);
    EXPECT_EQ(bd::resolveNeutral(240), 240);
}

TEST(Borders, NeutralValuesPerTypeAndOperation) {
    using bd::MorphOp;
    EXPECT_EQ(bd::neutralValue<uint8_t>(MorphOp::Dilate), 0);
    EXPECT_EQ(bd::neutralValue<uint8_t>(MorphOp::Erode), 255);
    EXPECT_EQ(bd::neutralValue<uint16_t>(MorphOp::Dilate), 0);
    EXPECT_EQ(bd::neutralValue<uint16_t>(MorphOp::Erode), 65535);
    EXPECT_EQ(bd::neutralValue<int16_t>(MorphOp::Dilate), -32768);
    EXPECT_EQ(bd::neutralValue<int16_t>(MorphOp::Erode), 32767);
    const float lo = bd::neutralValue<float>(MorphOp::Dilate);
    const float hi = bd::neutralValue<float>(MorphOp::Erode);
    uint32_t bl, bh;
    std::memcpy(&bl, &lo, 4);
    std::memcpy(&bh, &hi, 4);
    EXPECT_EQ(bl, 0xff7fffffu);
    EXPECT_EQ(bh, 0x7f7fffffu);
    EXPECT_EQ(bd::neutralByte1u(MorphOp::Dilate), 0x00);
    EXPECT_EQ(bd::neutralByte1u(MorphOp::Erode), 0xFF);
}

TEST(Borders, ReplicateIndex) {
    EXPECT_EQ(bd::sourceIndex(-3, 5, bd::kReplicate, false, false), 0);
    EXPECT_EQ(bd::sourceIndex(7, 5, bd::kReplicate, false, false), 4);
    EXPECT_EQ(bd::sourceIndex(2, 5, bd::kReplicate, false, false), 2);
}

TEST(Borders, MirrorDoesNotRepeatTheEdgeAndRepeatsUntilInside) {
    // Distance i outside is distance i inside.
    EXPECT_EQ(bd::sourceIndex(-1, 5, bd::kMirror, false, false), 1);
    EXPECT_EQ(bd::sourceIndex(-4, 5, bd::kMirror, false, false), 4);
    EXPECT_EQ(bd::sourceIndex(5, 5, bd::kMirror, false, false), 3);
    EXPECT_EQ(bd::sourceIndex(-6, 5, bd::kMirror, false, false), 2);  // 6 -> 2
    EXPECT_EQ(bd::sourceIndex(-5, 2, bd::kMirror, false, false), 1);  // 5 -> -3 -> 3 -> -1 -> 1
    for (int p = -20; p < 20; ++p) EXPECT_EQ(bd::sourceIndex(p, 1, bd::kMirror, false, false), 0) << p;
}

TEST(Borders, MirrorStopsAtASideInMemory) {
    // From the left, reflecting beyond the right edge of a 3-sample line
    // reaches the right side, which is in memory.
    EXPECT_EQ(bd::sourceIndex(-5, 3, bd::kMirror, false, true), 5);
    EXPECT_EQ(bd::sourceIndex(-1, 3, bd::kMirror, true, false), -1);
    EXPECT_EQ(bd::sourceIndex(3, 3, bd::kReplicate, false, true), 3);
}

TEST(Borders, WrapIndex) {
    EXPECT_EQ(bd::sourceIndex(-1, 5, bd::kWrap, false, false), 4);
    EXPECT_EQ(bd::sourceIndex(6, 5, bd::kWrap, false, false), 1);
}

TEST(Borders, ExtendLineByCode) {
    const uint8_t line[4] = {10, 20, 30, 40};
    uint8_t out[10];
    bd::extendLine(line, 4, 1, 3, 3, bd::kReplicate, static_cast<const uint8_t*>(nullptr), out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 10), (std::vector<uint8_t>{10, 10, 10, 10, 20, 30, 40, 40, 40, 40}));
    bd::extendLine(line, 4, 1, 3, 3, bd::kMirror, static_cast<const uint8_t*>(nullptr), out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 10), (std::vector<uint8_t>{40, 30, 20, 10, 20, 30, 40, 30, 20, 10}));
    const uint8_t v = 7;
    bd::extendLine(line, 4, 1, 2, 1, bd::kConstant, &v, out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 7), (std::vector<uint8_t>{7, 7, 10, 20, 30, 40, 7}));
}

TEST(Borders, ExtendLineReadsFlaggedSidesFromMemory) {
    const uint8_t memory[8] = {1, 2, 10, 20, 30, 40, 5, 6};
    const uint8_t* line = memory + 2;
    uint8_t out[8];
    const uint8_t v = 9;
    // Constant with the left side in memory: real pixels left, value right.
    bd::extendLine(line, 4, 1, 2, 2, bd::kConstant | bd::kLeft, &v, out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{1, 2, 10, 20, 30, 40, 9, 9}));
    bd::extendLine(line, 4, 1, 2, 2, bd::kInMemory, static_cast<const uint8_t*>(nullptr), out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{1, 2, 10, 20, 30, 40, 5, 6}));
}

TEST(Borders, ExtendLineCopiesWholePixels) {
    const uint16_t line[6] = {1, 2, 3, 4, 5, 6};  // two pixels of three channels
    uint16_t out[12];
    const uint16_t v[3] = {7, 8, 9};
    bd::extendLine(line, 2, 3, 1, 1, bd::kConstant, v, out);
    EXPECT_EQ(std::vector<uint16_t>(out, out + 12), (std::vector<uint16_t>{7, 8, 9, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    bd::extendLine(line, 2, 3, 1, 1, bd::kReplicate, static_cast<const uint16_t*>(nullptr), out);
    EXPECT_EQ(std::vector<uint16_t>(out, out + 12), (std::vector<uint16_t>{1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6}));
}

// ------------------------------------------------------------ carving

TEST(Carving, AlignUpAddsTheMissingBytes) {
    alignas(64) uint8_t block[256];
    for (int k = 0; k < 64; ++k) {
        uint8_t* p = block + k;
        uint8_t* a = alignUp(p, 64);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(a) % 64, 0u);
        EXPECT_EQ(a - p, (64 - k) % 64);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(alignUp(p, 32)) % 32, 0u);
        EXPECT_LT(alignUp(p, 16) - p, 16);
    }
}

TEST(Carving, RowRounding) {
    EXPECT_EQ(roundRow32(0), 0);
    EXPECT_EQ(roundRow32(1), 32);
    EXPECT_EQ(roundRow32(32), 32);
    EXPECT_EQ(roundRow32(33), 64);
    EXPECT_EQ(roundRow64(1), 64);
    EXPECT_EQ(roundRow64(64), 64);
    EXPECT_EQ(roundRow64(65), 128);
    EXPECT_EQ(roundUp(17, 16), 32);
}

TEST(Carving, PiecesFollowEachOtherFromTheAlignedStart) {
    alignas(64) uint8_t block[512];
    Carver c(block + 5, 32);
    uint8_t* first = c.take<uint8_t>(roundRow32(10));
    float* second = c.take<float>(roundRow32(4 * 3));
    EXPECT_EQ(first, block + 32);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(second), block + 64);
    EXPECT_EQ(c.position(), block + 96);
}

TEST(Carving, OffsetsSurviveAMove) {
    alignas(16) uint8_t a[64], b[64];
    int32_t* field = reinterpret_cast<int32_t*>(a);
    *field = offsetIn(a, a + 40);
    std::memcpy(b, a, sizeof a);
    EXPECT_EQ(atOffset<uint8_t>(b, *reinterpret_cast<int32_t*>(b)), b + 40);
}

// ------------------------------------------------------------ lane masks

TEST(Simd, FirstLanesMask) {
    for (int n = 0; n <= 8; ++n) {
        alignas(32) int32_t lanes[8];
        _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), simd::firstLanes(n));
        for (int i = 0; i < 8; ++i) EXPECT_EQ(lanes[i], i < n ? -1 : 0) << n << " " << i;
    }
}

TEST(Simd, StripMineVisitsEverySampleOnce) {
    for (int n = 0; n <= 140; ++n) {
        std::vector<int> seen(n, 0);
        struct Body {
            std::vector<int>& s;
            void vec(int x) {
                for (int i = 0; i < 32; ++i) ++s[x + i];
            }
            void masked(int x, __m256i, int lanes) {
                for (int i = 0; i < lanes * 4; ++i) ++s[x + i];
            }
            void one(int x) { ++s[x]; }
        } body{seen};
        simd::stripMine<uint8_t>(n, body);
        for (int i = 0; i < n; ++i) ASSERT_EQ(seen[i], 1) << "n " << n << " i " << i;
    }
}

}  // namespace
