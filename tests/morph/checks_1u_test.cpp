// Packed one-bit erosion and dilation: orders of checks, the size query and
// Init, the plan's fields and modes, and the readings pinned where the rules
// leave room.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "lumcv.h"
#include "support/noalloc.h"

namespace {

// ------------------------------------------------------------ helpers

int32_t wordAt(const uint8_t* p, int index) {
    int32_t v;
    std::memcpy(&v, p + 4 * index, 4);
    return v;
}

enum class Form { DilateL, ErodeL, DilateBorder, ErodeBorder };
const Form kForms[] = {Form::DilateL, Form::ErodeL, Form::DilateBorder, Form::ErodeBorder};

bool isL(Form f) { return f == Form::DilateL || f == Form::ErodeL; }

// A valid call on a 20 x 4 ROI with a 3 x 3 mask; each test breaks one
// argument. The _L spec is an 8-byte head, an unused record word, the plan.
struct Args {
    std::vector<uint8_t> srcBlock = std::vector<uint8_t>(64, 0x3C);
    std::vector<uint8_t> dstBlock = std::vector<uint8_t>(64, 0xA5);
    std::vector<uint8_t> plan, specL, buf;
    const Lum8u* src = nullptr;
    int srcStep = 4;
    int srcBitOffset = 0;
    Lum8u* dst = nullptr;
    int dstStep = 4;
    int dstBitOffset = 0;
    LumiSize roi{20, 4};
    int borderType = 1;
    Lum8u valueByValue = 0;
    const Lum8u* value = nullptr;
    const Lum8u* spec = nullptr;
    Lum8u* buffer = nullptr;
    Lum8u valueStorage = 1;

    explicit Args(Form f, std::vector<uint8_t> mask = std::vector<uint8_t>(9, 1), LumiSize maskSize = {3, 3}) {
        int specSize = 0, bufferSize = 0;
        EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R(roi, maskSize, &specSize, &bufferSize), lumStatusOk);
        plan.resize(specSize);
        buf.resize(bufferSize);
        EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R(roi, mask.data(), maskSize, plan.data(), buf.data()), lumStatusOk);
        specL.assign(12, 0);
        const int32_t head[3] = {8, 12, 0};
        std::memcpy(specL.data(), head, 12);
        specL.insert(specL.end(), plan.begin(), plan.end());
        src = srcBlock.data() + 8;
        dst = dstBlock.data() + 8;
        spec = isL(f) ? specL.data() : plan.data();
        buffer = buf.data();
        value = &valueStorage;
    }
    uint8_t* planInUse(Form f) { return isL(f) ? specL.data() + 12 : plan.data(); }
};

LumStatus call(Form f, const Args& a) {
    switch (f) {
        case Form::DilateL:
            return LUMTEST_NOALLOC(lumiDilate_1u_C1R_L, (a.src, a.srcStep, a.srcBitOffset, a.dst, a.dstStep, a.dstBitOffset,
                                                       a.roi, a.borderType, a.value, a.spec, a.buffer));
        case Form::ErodeL:
            return LUMTEST_NOALLOC(lumiErode_1u_C1R_L, (a.src, a.srcStep, a.srcBitOffset, a.dst, a.dstStep, a.dstBitOffset,
                                                      a.roi, a.borderType, a.value, a.spec, a.buffer));
        case Form::DilateBorder:
            return LUMTEST_NOALLOC(lumiDilateBorder_1u_C1R, (a.src, a.srcStep, a.srcBitOffset, a.dst, a.dstStep,
                                                           a.dstBitOffset, a.roi, a.borderType, a.valueByValue, a.spec,
                                                           a.buffer));
        case Form::ErodeBorder:
            return LUMTEST_NOALLOC(lumiErodeBorder_1u_C1R, (a.src, a.srcStep, a.srcBitOffset, a.dst, a.dstStep,
                                                          a.dstBitOffset, a.roi, a.borderType, a.valueByValue, a.spec,
                                                          a.buffer));
    }
    return lumStatusOk;
}

// ------------------------------------------------------------ order of checks

TEST(Checks1u, ValidCallsPass) {
    for (Form f : kForms) {
        Args a(f);
        EXPECT_EQ(call(f, a), lumStatusOk);
    }
}

TEST(Checks1u, NullPointersComeFirst) {
    for (Form f : kForms) {
        for (int which = 0; which < 4; ++which) {
            Args a(f);
            a.roi = {0, 0};          // would be BadSize
            a.srcStep = -1;          // would be BadStep
            a.borderType = 3;        // would be BadBorderType
            if (which == 0) a.src = nullptr;
            if (which == 1) a.dst = nullptr;
            if (which == 2) a.spec = nullptr;
            if (which == 3) a.buffer = nullptr;
            EXPECT_EQ(call(f, a), lumStatusNullPointer) << static_cast<int>(f) << " pointer " << which;
        }
    }
}

// Pinned: the null group of every filter stands before its step test, as in
// every other family, though the one-bit order lists steps first.
TEST(Checks1u, ChoiceNullPointersBeforeStepTest) {
    for (Form f : kForms) {
        Args a(f);
        a.src = nullptr;
        a.srcStep = 1;  // below the 3 bytes of a 20-pixel row
        EXPECT_EQ(call(f, a), lumStatusNullPointer);
    }
}

TEST(Checks1u, StepBelowRowBytesIsBadStep) {
    for (Form f : kForms) {
        Args a(f);
        a.srcStep = 2;  // (20 + 7) / 8 = 3
        a.srcBitOffset = -1;
        a.borderType = 3;
        EXPECT_EQ(call(f, a), lumStatusBadStep);
        Args b(f);
        b.dstStep = 2;
        b.roi = {20, 0};
        EXPECT_EQ(call(f, b), lumStatusBadStep);
        Args c(f);
        c.srcStep = 3;
        c.dstStep = 3;
        EXPECT_EQ(call(f, c), lumStatusOk);
        Args d(f);
        d.dstStep = -4;
        EXPECT_EQ(call(f, d), lumStatusBadStep);
    }
}

// The step test comes before the size test: a zero-width ROI needs no byte,
// so a zero step passes it and the size test answers; a negative step fails
// first.
TEST(Checks1u, StepTestBeforeSizeTest) {
    for (Form f : kForms) {
        Args a(f);
        a.roi = {0, 4};
        a.srcStep = 0;
        a.dstStep = 0;
        EXPECT_EQ(call(f, a), lumStatusBadSize);
        a.srcStep = -1;
        EXPECT_EQ(call(f, a), lumStatusBadStep);
    }
}

// The step is compared with (width + 7) / 8 alone: a row that starts at a
// bit offset may span one byte more.
TEST(Checks1u, ChoiceStepTestIgnoresBitOffset) {
    for (Form f : kForms) {
        Args a(f);
        a.roi = {8, 1};
        a.srcStep = 1;
        a.dstStep = 1;
        a.srcBitOffset = 4;
        a.dstBitOffset = 7;
        EXPECT_EQ(call(f, a), lumStatusOk);
    }
}

TEST(Checks1u, NegativeBitOffsetsAndSmallSizesAreBadSize) {
    for (Form f : kForms) {
        for (int which = 0; which < 4; ++which) {
            Args a(f);
            a.borderType = 3;  // would be BadBorderType
            if (which == 0) a.srcBitOffset = -1;
            if (which == 1) a.dstBitOffset = -8;
            if (which == 2) a.roi.width = 0;
            if (which == 3) a.roi.height = -1;
            EXPECT_EQ(call(f, a), lumStatusBadSize) << which;
        }
    }
}

TEST(Checks1u, BorderWords) {
    struct Row {
        int word;
        LumStatus want;
    };
    const Row rows[] = {
        {1, lumStatusOk},           {5, lumStatusOk},           {6, lumStatusOk},
        {240, lumStatusOk},         {240 | 3840, lumStatusOk},  {0xF00, lumStatusOk},
        {16 | 32 | 64 | 1, lumStatusOk}, {0x100 | 1, lumStatusOk}, {0xF00 | 5, lumStatusOk},
        {3, lumStatusBadBorderType},  {3 | 16, lumStatusBadBorderType}, {243, lumStatusBadBorderType},
        {0, lumStatusBadBorderType},  {2, lumStatusBadBorderType},  {4, lumStatusBadBorderType},
        {7, lumStatusBadBorderType},  {15, lumStatusBadBorderType}, {16, lumStatusBadBorderType},
        {112, lumStatusBadBorderType}, {4096 | 1, lumStatusBadBorderType}, {-1, lumStatusBadBorderType},
    };
    for (Form f : kForms)
        for (const Row& r : rows) {
            Args a(f);
            a.borderType = r.word;
            if (r.want != lumStatusOk) a.src = a.dst;  // the border test stands before the in-place refusal
            EXPECT_EQ(call(f, a), r.want) << "form " << static_cast<int>(f) << " word " << r.word;
        }
}

TEST(Checks1u, MirrorIsRefusedThoughAcceptedElsewhere) {
    for (Form f : kForms) {
        Args a(f);
        a.borderType = lumBorderMirror;
        EXPECT_EQ(call(f, a), lumStatusBadBorderType);
    }
}

TEST(Checks1u, InPlaceRefusedForEveryAcceptedBorder) {
    const int words[] = {1, 5, 6, 240, 17, 0x301, 0xF06, 246};
    for (Form f : kForms)
        for (int w : words) {
            Args a(f);
            a.borderType = w;
            a.value = nullptr;  // the value test comes after the in-place refusal
            a.dst = const_cast<Lum8u*>(a.src);
            const std::vector<uint8_t> before = a.srcBlock;
            EXPECT_EQ(call(f, a), lumStatusInPlaceNotSupported) << w;
            EXPECT_EQ(a.srcBlock, before);
        }
}

TEST(Checks1u, NullBorderValueOnlyWithConstantBorder) {
    for (Form f : {Form::DilateL, Form::ErodeL}) {
        for (int w : {6, 6 | 16, 246, 0x106}) {
            Args a(f);
            a.borderType = w;
            a.value = nullptr;
            EXPECT_EQ(call(f, a), lumStatusNullPointer) << w;
        }
        for (int w : {1, 5, 240, 0xF05}) {
            Args a(f);
            a.borderType = w;
            a.value = nullptr;
            EXPECT_EQ(call(f, a), lumStatusOk) << w;
        }
    }
}

// ------------------------------------------------------------ plan modes

TEST(Checks1u, AllZeroAndOneByOneMasksCopyForEveryBorder) {
    struct M {
        std::vector<uint8_t> m;
        LumiSize s;
    };
    const M masks[] = {{std::vector<uint8_t>(15, 0), {5, 3}}, {{7}, {1, 1}}, {{0}, {1, 1}}};
    for (Form f : kForms)
        for (const M& m : masks)
            for (int w : {1, 5, 6, 240, 0x101}) {
                Args a(f, m.m, m.s);
                a.borderType = w;
                a.srcBitOffset = 3;
                a.dstBitOffset = 6;
                for (size_t i = 0; i < a.srcBlock.size(); ++i) a.srcBlock[i] = static_cast<uint8_t>(i * 37 + 11);
                std::vector<uint8_t> want = a.dstBlock;
                for (int y = 0; y < 4; ++y)
                    for (int x = 0; x < 20; ++x) {
                        const int sp = 8 * (8 + y * 4) + 3 + x, dp = 8 * (8 + y * 4) + 6 + x;
                        const bool bit = (a.srcBlock[sp >> 3] >> (7 - (sp & 7))) & 1;
                        const uint8_t mask = static_cast<uint8_t>(0x80 >> (dp & 7));
                        want[dp >> 3] = static_cast<uint8_t>(bit ? want[dp >> 3] | mask : want[dp >> 3] & ~mask);
                    }
                ASSERT_EQ(call(f, a), lumStatusOk);
                EXPECT_EQ(a.dstBlock, want) << "word " << w;
            }
}

TEST(Checks1u, PlanModes) {
    const LumiSize roi{20, 4};
    std::vector<uint8_t> buf(8);
    auto modeOf = [&](std::vector<uint8_t> mask, LumiSize ms) {
        int s = 0, b = 0;
        EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R(roi, ms, &s, &b), lumStatusOk);
        std::vector<uint8_t> plan(s);
        EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R(roi, mask.data(), ms, plan.data(), buf.data()), lumStatusOk);
        return wordAt(plan.data(), 17);
    };
    EXPECT_EQ(modeOf(std::vector<uint8_t>(6, 0), {3, 2}), 3);  // no element selected
    EXPECT_EQ(modeOf({9}, {1, 1}), 3);
    EXPECT_EQ(modeOf(std::vector<uint8_t>(6, 200), {3, 2}), 1);  // full rectangle
    EXPECT_EQ(modeOf({0, 1, 0, 1, 1, 1, 0, 1, 0}, {3, 3}), 0);
}

// Pinned: a plan whose mode lies above 3 makes the filters return success
// without writing anything.
TEST(Checks1u, ChoicePlanModeAboveThreeReturnsOkUnwritten) {
    for (Form f : kForms)
        for (int32_t mode : {4, 7, -1}) {
            Args a(f);
            std::memcpy(a.planInUse(f) + 4 * 17, &mode, 4);
            const std::vector<uint8_t> before = a.dstBlock;
            EXPECT_EQ(call(f, a), lumStatusOk);
            EXPECT_EQ(a.dstBlock, before) << mode;
        }
}

// ------------------------------------------------------------ size query and Init

int formulaP(LumiSize roi, LumiSize mask, int planBytes) {
    const int scratch = (((mask.width + roi.width) * 8 + 30) & ~31) * mask.height + 16;
    return planBytes > scratch ? planBytes : scratch;
}

TEST(SizeInit1u, GetSizeChecks) {
    int s = -7, b = -7;
    EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderGetSize_1u_C1R, (LumiSize{0, 0}, LumiSize{3, 3}, nullptr, &b)),
              lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({0, 0}, {3, 3}, &s, nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({0, 5}, {3, 3}, &s, &b), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({5, 0}, {3, 3}, &s, &b), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({5, 5}, {0, 3}, &s, &b), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({5, 5}, {3, -1}, &s, &b), lumStatusBadSize);
    EXPECT_EQ(s, -7);
    EXPECT_EQ(b, -7);
}

// Spec and buffer are both P; for ROIs wider than a few pixels the scratch
// term of P is the larger one and gives the value exactly.
TEST(SizeInit1u, SizesFollowTheFormula) {
    for (int w : {1, 2, 9, 64, 100, 1000})
        for (int mw = 1; mw <= 9; ++mw)
            for (int mh = 1; mh <= 9; ++mh) {
                int s = 0, b = 0;
                ASSERT_EQ(lumiMorphologyBorderGetSize_1u_C1R({w, 3}, {mw, mh}, &s, &b), lumStatusOk);
                EXPECT_EQ(s, b);
                EXPECT_GE(s, formulaP({w, 3}, {mw, mh}, 0));
                if (w >= 9) {
                    EXPECT_EQ(s, formulaP({w, 3}, {mw, mh}, 0)) << w << " " << mw << "x" << mh;
                }
            }
    int s = 0, b = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_1u_C1R({10, 1}, {3, 3}, &s, &b), lumStatusOk);
    EXPECT_EQ(s, 400);  // ((3 + 10) * 8 + 30) & ~31 = 128, times 3, plus 16
    // The height of the ROI does not count.
    int s2 = 0, b2 = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_1u_C1R({10, 1000}, {3, 3}, &s2, &b2), lumStatusOk);
    EXPECT_EQ(s2, s);
}

TEST(SizeInit1u, InitChecks) {
    std::vector<uint8_t> mask(9, 1), spec(512, 0xCD), buf(4);
    const std::vector<uint8_t> before = spec;
    EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderInit_1u_C1R, (LumiSize{0, 0}, nullptr, LumiSize{3, 3}, spec.data(), buf.data())),
              lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R({0, 0}, mask.data(), {3, 3}, nullptr, buf.data()), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R({0, 0}, mask.data(), {3, 3}, spec.data(), nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R({0, 4}, mask.data(), {3, 3}, spec.data(), buf.data()), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R({4, 4}, mask.data(), {3, 0}, spec.data(), buf.data()), lumStatusBadSize);
    EXPECT_EQ(spec, before);
}

// The plan's 32-bit fields in their order; pointers are offsets from the
// plan's start and lie inside it.
TEST(SizeInit1u, PlanFields) {
    const LumiSize roi{37, 5};
    const LumiSize ms{4, 6};
    std::vector<uint8_t> mask(24);
    for (size_t i = 0; i < mask.size(); ++i) mask[i] = static_cast<uint8_t>(i % 3 == 0 ? 0 : i);
    int s = 0, b = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_1u_C1R(roi, ms, &s, &b), lumStatusOk);
    std::vector<uint8_t> plan(s), buf(1);
    ASSERT_EQ(lumiMorphologyBorderInit_1u_C1R(roi, mask.data(), ms, plan.data(), buf.data()), lumStatusOk);
    const uint8_t* p = plan.data();
    for (int f : {0, 1, 2, 3}) {
        EXPECT_GE(wordAt(p, f), 72) << f;
        EXPECT_LT(wordAt(p, f), s) << f;
    }
    EXPECT_EQ(wordAt(p, 0), wordAt(p, 3));
    for (int i = 0; i < 24; ++i) EXPECT_EQ(p[wordAt(p, 0) + i], mask[i] ? 255 : 0) << i;
    EXPECT_EQ(wordAt(p, 4), 0);
    EXPECT_EQ(wordAt(p, 5), 4);   // stored width
    EXPECT_EQ(wordAt(p, 6), 6);   // stored height
    EXPECT_EQ(wordAt(p, 7), 1);   // x anchor (4 - 1) / 2
    EXPECT_EQ(wordAt(p, 8), 2);   // y anchor (6 - 1) / 2
    EXPECT_EQ(wordAt(p, 9), 2);   // right extent
    EXPECT_EQ(wordAt(p, 10), 3);  // bottom extent
    EXPECT_EQ(wordAt(p, 13), 0);
    EXPECT_EQ(wordAt(p, 14), 1);
    EXPECT_EQ(wordAt(p, 15), 37);  // image width
    EXPECT_EQ(wordAt(p, 16), -1);
    EXPECT_EQ(wordAt(p, 17), 0);
}

// The plan holds no reference outside itself: a copy of its bytes elsewhere
// works like the original.
TEST(SizeInit1u, PlanIsSelfContained) {
    Args a(Form::DilateBorder, {1, 0, 1, 0, 1, 0, 1, 1, 0}, {3, 3});
    for (size_t i = 0; i < a.srcBlock.size(); ++i) a.srcBlock[i] = static_cast<uint8_t>(i * 91 + 5);
    ASSERT_EQ(call(Form::DilateBorder, a), lumStatusOk);
    const std::vector<uint8_t> first = a.dstBlock;
    std::vector<uint8_t> moved(a.plan.size() + 3);
    std::memcpy(moved.data() + 3, a.plan.data(), a.plan.size());
    std::memset(a.plan.data(), 0, a.plan.size());
    a.spec = moved.data() + 3;
    std::fill(a.dstBlock.begin(), a.dstBlock.end(), 0xA5);
    ASSERT_EQ(call(Form::DilateBorder, a), lumStatusOk);
    EXPECT_EQ(a.dstBlock, first);
}

// ------------------------------------------------------------ pinned readings

// Pinned: pixel x lies at bit bitOffset + x, the most significant bit of a
// byte first; offsets of 8 and more reach into the following bytes.
TEST(Checks1u, ChoiceBitOrderMostSignificantFirst) {
    Args a(Form::DilateBorder, {1, 1, 1}, {3, 1});
    a.roi = {16, 1};
    std::fill(a.srcBlock.begin(), a.srcBlock.end(), 0);
    std::fill(a.dstBlock.begin(), a.dstBlock.end(), 0);
    a.srcBlock[8] = 0x10;  // pixel 3
    a.borderType = 6;
    ASSERT_EQ(call(Form::DilateBorder, a), lumStatusOk);
    EXPECT_EQ(a.dstBlock[8], 0x38);  // pixels 2, 3, 4
    EXPECT_EQ(a.dstBlock[9], 0x00);

    std::fill(a.srcBlock.begin(), a.srcBlock.end(), 0);
    std::fill(a.dstBlock.begin(), a.dstBlock.end(), 0);
    a.srcBitOffset = 13;   // pixel 0 at bit 5 of the second byte
    a.dstBitOffset = 10;   // pixel 0 at bit 2 of the second byte
    a.srcBlock[9] = 0x04;  // pixel 0
    a.srcBlock[11] = 0x01;  // bit 31: pixel 18, outside the 16-pixel ROI
    ASSERT_EQ(call(Form::DilateBorder, a), lumStatusOk);
    EXPECT_EQ(a.dstBlock[9], 0x30);  // pixels 0 and 1 at bits 10 and 11
    EXPECT_EQ(a.dstBlock[10], 0x00);
    EXPECT_EQ(a.dstBlock[11], 0x00);
}

// Pinned: the constant border's value is a pixel, set when the byte is not
// zero, for the by-value and the pointer forms alike.
TEST(Checks1u, ChoiceBorderValueNonzeroIsSet) {
    for (Form f : {Form::ErodeL, Form::ErodeBorder}) {
        for (Lum8u v : {0, 1, 2, 0x80, 0xFF}) {
            Args a(f);
            std::fill(a.srcBlock.begin(), a.srcBlock.end(), 0xFF);
            a.borderType = 6;
            a.valueByValue = v;
            a.valueStorage = v;
            ASSERT_EQ(call(f, a), lumStatusOk);
            // 20 pixels a row, 4 rows of 4 bytes: erosion keeps the ROI set
            // only when the outside is set too.
            const uint8_t want0 = v ? 0xFF : 0x00;  // row 0 sees the outside row above
            EXPECT_EQ(a.dstBlock[8], want0) << +v;
            EXPECT_EQ(a.dstBlock[8 + 4 + 1], 0xFF) << +v;  // row 1, pixels 8..15: inside
            EXPECT_EQ(a.dstBlock[8 + 4] & 0x80, v ? 0x80 : 0x00) << +v;  // row 1, pixel 0: the left side
        }
    }
}

// The neutral border fills 0 for dilation and ones for erosion.
TEST(Checks1u, NeutralBorderFill) {
    for (Form f : kForms) {
        Args a(f);
        const bool erode = f == Form::ErodeL || f == Form::ErodeBorder;
        std::fill(a.srcBlock.begin(), a.srcBlock.end(), erode ? 0xFF : 0x00);
        a.borderType = 5;
        a.value = nullptr;
        a.valueByValue = erode ? 0 : 1;  // not used by code 5
        ASSERT_EQ(call(f, a), lumStatusOk);
        for (int y = 0; y < 4; ++y)
            for (int i = 0; i < 2; ++i) EXPECT_EQ(a.dstBlock[8 + 4 * y + i], erode ? 0xFF : 0x00);
    }
}

}  // namespace
