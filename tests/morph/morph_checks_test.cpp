// Erosion and dilation: the order of the checks of every filter member, the
// size queries and Init, and the choices made where the rules leave room.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

#include "morph/morph_reference.h"

namespace {

using namespace morphtest;

constexpr int kMax = INT_MAX;

// One filter member: how it reports the extreme sizes and whether it refuses
// in-place calls.
struct Member {
    const char* name;
    bool overflow;
    bool refusesInPlace;
};

// A member's calls with everything valid by default: a 4 x 3 ROI of a 16 x 8
// image, replicate border, a 3 x 3 spec and a buffer big enough.
template <class T, int C>
struct Fixture {
    std::vector<T> src = std::vector<T>(16 * 8 * C, T(1));
    std::vector<T> dst = std::vector<T>(16 * 8 * C, T(0));
    std::vector<uint8_t> specL, specB, buf = std::vector<uint8_t>(4096);
    T value[C] = {};
    int step = 16 * C * sizeof(T);
    Fixture() {
        const uint8_t mask[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
        int s = 0, b = 0;
        EXPECT_EQ(lumiDilateGetSpecSize_L({4, 3}, {3, 3}, &s), lumStatusOk);
        specL.resize(s);
        EXPECT_EQ(lumiDilateInit_L({4, 3}, mask, {3, 3}, specL.data()), lumStatusOk);
        EXPECT_EQ((Api<T, C>::borderGetSize({4, 3}, {3, 3}, &s, &b)), lumStatusOk);
        specB.resize(s);
        EXPECT_EQ((Api<T, C>::borderInit({4, 3}, mask, {3, 3}, specB.data(), buf.data())), lumStatusOk);
    }
};

template <class T, int C>
void checkOrder(bool dilate, const Member& m) {
    SCOPED_TRACE(m.name);
    using A = Api<T, C>;
    constexpr int s = sizeof(T);
    for (bool formL : {true, false}) {
        SCOPED_TRACE(formL ? "_L" : "Border");
        Fixture<T, C> f;
        const Lum8u* spec = formL ? f.specL.data() : f.specB.data();
        auto call = [&](const T* src, int ss, T* dst, int ds, LumiSize roi, int border, const T* v, const Lum8u* sp,
                        Lum8u* b) {
            return formL ? A::filterL(dilate, src, ss, dst, ds, roi, border, v, sp, b)
                         : A::filterBorder(dilate, src, ss, dst, ds, roi, border, v, sp, b);
        };
        // The ROI stands at (2, 2), so that sides read from memory lie inside
        // the image.
        const T* src = f.src.data() + 2 * 16 * C + 2 * C;
        T* dst = f.dst.data() + 2 * 16 * C + 2 * C;
        Lum8u* buf = f.buf.data();
        const int st = f.step;
        const LumiSize roi{4, 3};

        EXPECT_EQ(call(src, st, dst, st, roi, 1, f.value, spec, buf), lumStatusOk);
        // Pointers first, even with a zero-width ROI.
        EXPECT_EQ(call(nullptr, st, dst, st, {0, 3}, 1, f.value, spec, buf), lumStatusNullPointer);
        EXPECT_EQ(call(src, st, nullptr, st, roi, 1, f.value, spec, buf), lumStatusNullPointer);
        EXPECT_EQ(call(src, st, dst, st, roi, 1, f.value, nullptr, buf), lumStatusNullPointer);
        EXPECT_EQ(call(src, st, dst, st, roi, 1, f.value, spec, nullptr), lumStatusNullPointer);
        // Sizes.
        EXPECT_EQ(call(src, st, dst, st, {0, 3}, 1, f.value, spec, buf), lumStatusBadSize);
        EXPECT_EQ(call(src, st, dst, st, {4, -1}, 99, f.value, spec, buf), lumStatusBadSize);
        // Steps against row bytes, then alignment of 16-bit and wider steps.
        const int row = 4 * C * s;
        EXPECT_EQ(call(src, row - 1, dst, st, roi, 1, f.value, spec, buf), lumStatusBadStep);
        EXPECT_EQ(call(src, st, dst, -st, roi, 1, f.value, spec, buf), lumStatusBadStep);
        if (s > 1) {
            EXPECT_EQ(call(src, row + 1, dst, st, roi, 99, f.value, spec, buf), lumStatusStepNotAligned);
            EXPECT_EQ(call(src, st, dst, st + 1, roi, 99, f.value, spec, buf), lumStatusStepNotAligned);
        } else {
            EXPECT_EQ(call(src, row + 1, dst, st, roi, 1, f.value, spec, buf), lumStatusOk);
        }
        // Border words.
        for (int bad : {0, 2, 4, 7, 15, 16, 16 + 32 + 64, 4096, 4096 + 1, -1, 0x100})
            EXPECT_EQ(call(src, st, dst, st, roi, bad, f.value, spec, buf), lumStatusBadBorderType) << bad;
        for (int good : {1, 3, 5, 6, 240, 240 + 256, 0xF00, 0x100 | 1, 0xFF1, 17, 3 + 128 + 2048})
            EXPECT_EQ(call(src, st, dst, st, roi, good, f.value, spec, buf), lumStatusOk) << good;
        // The extreme value, after the border test: the 8u C1 and a few others
        // report it as a bad size or step, the rest as an overflow.
        const int wideStep = s == 1 ? kMax : 64;  // a step that passes the row-bytes test
        EXPECT_EQ(call(src, wideStep, dst, wideStep, {kMax, 3}, 0, f.value, spec, buf), lumStatusBadBorderType);
        EXPECT_EQ(call(src, wideStep, dst, wideStep, {kMax, 3}, 1, f.value, spec, buf),
                  m.overflow ? lumStatusSizeOverflow : lumStatusBadSize);
        EXPECT_EQ(call(src, st, dst, st, {4, kMax}, 1, f.value, spec, buf),
                  m.overflow ? lumStatusSizeOverflow : lumStatusBadSize);
        if (s == 1) {
            EXPECT_EQ(call(src, kMax, dst, st, roi, 1, f.value, spec, buf),
                      m.overflow ? lumStatusSizeOverflow : lumStatusBadStep);
            EXPECT_EQ(call(src, st, dst, kMax, roi, 1, f.value, spec, buf),
                      m.overflow ? lumStatusSizeOverflow : lumStatusBadStep);
        } else {
            EXPECT_EQ(call(src, kMax, dst, st, roi, 1, f.value, spec, buf), lumStatusStepNotAligned);
        }
        // A null border value matters only with low code 6 and pointer forms.
        if (formL || C > 1) {
            EXPECT_EQ(call(src, st, dst, st, roi, 6, nullptr, spec, buf), lumStatusNullPointer);
            EXPECT_EQ(call(src, st, dst, st, roi, 6 | 0x100, nullptr, spec, buf), lumStatusNullPointer);
            EXPECT_EQ(call(src, wideStep, dst, wideStep, {kMax, 3}, 6, nullptr, spec, buf),
                      m.overflow ? lumStatusSizeOverflow : lumStatusBadSize);
            for (int ok : {1, 3, 5, 240})
                EXPECT_EQ(call(src, st, dst, st, roi, ok, nullptr, spec, buf), lumStatusOk) << ok;
        }
        // In place: refused last, by the members that refuse it.
        T* same = f.src.data() + 2 * 16 * C + 2 * C;
        EXPECT_EQ(call(same, st, same, st, roi, 1, f.value, spec, buf),
                  m.refusesInPlace ? lumStatusInPlaceNotSupported : lumStatusOk);
        if (m.refusesInPlace && (formL || C > 1)) {
            EXPECT_EQ(call(same, st, same, st, roi, 6, nullptr, spec, buf), lumStatusNullPointer);
        }
    }
}

TEST(MorphChecks, Dilate8uC1) { checkOrder<Lum8u, 1>(true, {"dilate 8u C1", false, false}); }
TEST(MorphChecks, Dilate8uC3) { checkOrder<Lum8u, 3>(true, {"dilate 8u C3", true, false}); }
TEST(MorphChecks, Dilate8uC4) { checkOrder<Lum8u, 4>(true, {"dilate 8u C4", true, false}); }
TEST(MorphChecks, Dilate32fC1) { checkOrder<Lum32f, 1>(true, {"dilate 32f C1", false, false}); }
TEST(MorphChecks, Dilate32fC3) { checkOrder<Lum32f, 3>(true, {"dilate 32f C3", true, false}); }
TEST(MorphChecks, Dilate32fC4) { checkOrder<Lum32f, 4>(true, {"dilate 32f C4", true, false}); }
TEST(MorphChecks, Dilate16uC1) { checkOrder<Lum16u, 1>(true, {"dilate 16u C1", false, false}); }
TEST(MorphChecks, Dilate16sC1) { checkOrder<Lum16s, 1>(true, {"dilate 16s C1", false, true}); }
TEST(MorphChecks, Erode8uC1) { checkOrder<Lum8u, 1>(false, {"erode 8u C1", false, false}); }
TEST(MorphChecks, Erode8uC3) { checkOrder<Lum8u, 3>(false, {"erode 8u C3", false, false}); }
TEST(MorphChecks, Erode8uC4) { checkOrder<Lum8u, 4>(false, {"erode 8u C4", true, false}); }
TEST(MorphChecks, Erode32fC1) { checkOrder<Lum32f, 1>(false, {"erode 32f C1", true, false}); }
TEST(MorphChecks, Erode32fC3) { checkOrder<Lum32f, 3>(false, {"erode 32f C3", true, false}); }
TEST(MorphChecks, Erode32fC4) { checkOrder<Lum32f, 4>(false, {"erode 32f C4", true, false}); }
TEST(MorphChecks, Erode16uC1) { checkOrder<Lum16u, 1>(false, {"erode 16u C1", true, true}); }
TEST(MorphChecks, Erode16sC1) { checkOrder<Lum16s, 1>(false, {"erode 16s C1", true, true}); }

// The two lists of members that answer the extreme sizes with an overflow
// differ; the per-member list is followed: dilation of 32f C1, 16u and 16s
// and erosion of 8u C3 keep lumStatusBadSize / lumStatusBadStep.
TEST(MorphChecks, ChoiceExtremeSizesFollowTheMemberList) {
    std::vector<Lum8u> img(64);
    uint8_t mask[1] = {1};
    int s = 0, b = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C3R({1, 1}, {1, 1}, &s, &b), lumStatusOk);
    std::vector<uint8_t> spec(s), buf(b);
    ASSERT_EQ(lumiMorphologyBorderInit_8u_C3R({1, 1}, mask, {1, 1}, spec.data(), buf.data()), lumStatusOk);
    EXPECT_EQ(lumiErodeBorder_8u_C3R(img.data(), kMax, img.data() + 8, kMax, {1, kMax}, 1, nullptr, spec.data(),
                                     buf.data()),
              lumStatusBadSize);
    EXPECT_EQ(lumiDilateBorder_8u_C3R(img.data(), kMax, img.data() + 8, kMax, {1, kMax}, 1, nullptr, spec.data(),
                                      buf.data()),
              lumStatusSizeOverflow);
    std::vector<Lum16u> img16(64);
    EXPECT_EQ(lumiDilateBorder_16u_C1R(img16.data(), 64, img16.data() + 8, 64, {1, kMax}, 1, 0, spec.data(),
                                       buf.data()),
              lumStatusBadSize);
}

// ------------------------------------------------------------ size queries

int recordSize(int mw, int mh) {
    const int W = mw | 1, H = mh | 1;
    return (2 * W + 2) * H + H * (3 * W + 2) + 96;
}

int samplesSize(int w, int h, int mw, int mh, int c, int s) {
    const int W = mw | 1, H = mh | 1;
    int A;
    if (W < w && H < h) {
        A = 0;
        if (H - (mh / 2 * 2) / 2 - 1 >= 1) A = std::max(A, (W + w - 1) * (2 * H - (mh / 2 * 2) / 2 - 2));
        if (W - (mw / 2 * 2) / 2 - 1 >= 1) A = std::max(A, (H + h - 1) * (2 * W - (mw / 2 * 2) / 2 - 2));
    } else {
        A = (W + w - 1) * (H + h - 1);
    }
    A *= s;
    const int R = ((w * c * s + 31) / 32 * 32) * H + ((W * c * s + 31) / 32 * 32) + 16 * s;
    return (c * A + 31) / 32 * 32 + R + 64;
}

TEST(MorphSizes, BorderGetSizeFormulas) {
    for (int w : {1, 2, 5, 9, 40})
        for (int h : {1, 3, 8, 33})
            for (int mw = 1; mw <= 8; ++mw)
                for (int mh = 1; mh <= 8; ++mh) {
                    int s = -1, b = -1;
                    const LumiSize roi{w, h}, m{mw, mh};
                    ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C1R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(s, recordSize(mw, mh));
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 1, 1));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C3R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 3, 1));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C4R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 4, 1));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_32f_C1R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 1, 4));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_32f_C3R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 3, 4));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_32f_C4R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 4, 4));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_16u_C1R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 1, 2));
                    ASSERT_EQ(lumiMorphologyBorderGetSize_16s_C1R(roi, m, &s, &b), lumStatusOk);
                    EXPECT_EQ(s, recordSize(mw, mh));
                    EXPECT_EQ(b, samplesSize(w, h, mw, mh, 1, 2));
                }
}

// The Border forms' spec is the mask record alone and their buffer the
// driver's buffer for samples of the member's type and channels.
TEST(MorphSizes, ChoiceBorderGetSizeIsRecordAndSampleBuffer) {
    int s = 0, b = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_32f_C3R({20, 10}, {4, 3}, &s, &b), lumStatusOk);
    EXPECT_EQ(s, (2 * 5 + 2) * 3 + 3 * (3 * 5 + 2) + 96);
    EXPECT_EQ(b, samplesSize(20, 10, 4, 3, 3, 4));
}

TEST(MorphSizes, SpecAndBufferSizesOfTheLargeMembers) {
    for (int w : {1, 4, 17, 64})
        for (int h : {1, 2, 9})
            for (int mw : {1, 2, 3, 6, 7})
                for (int mh : {1, 2, 5, 8}) {
                    const LumiSize roi{w, h}, m{mw, mh};
                    int spec = -1, spec2 = -1, b1 = -1;
                    ASSERT_EQ(lumiDilateGetSpecSize_L(roi, m, &spec), lumStatusOk);
                    ASSERT_EQ(lumiErodeGetSpecSize_L(roi, m, &spec2), lumStatusOk);
                    EXPECT_EQ(spec, spec2);
                    // Record + P + 8, with P at least the 1u scratch term.
                    const int P = spec - recordSize(mw, mh) - 8;
                    EXPECT_GE(P, (((mw + w) * 8 + 30) / 32 * 32) * mh + 16);
                    for (int dt : {1, 5, 7, 13})
                        for (int c : {1, 3, 4}) {
                            const int sz = dt == 1 ? 1 : dt == 13 ? 4 : 2;
                            ASSERT_EQ(lumiDilateGetBufferSize_L(roi, m, static_cast<LumDataType>(dt), c, &b1),
                                      lumStatusOk);
                            EXPECT_EQ(b1, std::max(samplesSize(w, h, mw, mh, c, sz), P));
                        }
                }
}

// 1u counts its samples as single bytes in the buffer for samples.
TEST(MorphSizes, ChoiceBufferSizeOf1uCountsOneByteSamples) {
    for (int c : {1, 3, 4}) {
        int b0 = 0, b1 = 0, spec = 0;
        ASSERT_EQ(lumiErodeGetBufferSize_L({300, 200}, {7, 7}, static_cast<LumDataType>(0), c, &b0), lumStatusOk);
        ASSERT_EQ(lumiErodeGetBufferSize_L({300, 200}, {7, 7}, static_cast<LumDataType>(1), c, &b1), lumStatusOk);
        ASSERT_EQ(lumiErodeGetSpecSize_L({300, 200}, {7, 7}, &spec), lumStatusOk);
        const int P = spec - recordSize(7, 7) - 8;
        EXPECT_EQ(b0, std::max(samplesSize(300, 200, 7, 7, c, 1), P));
        EXPECT_EQ(b0, b1);
    }
}

TEST(MorphSizes, QueryChecks) {
    int out = 12345, out2 = 12345;
    EXPECT_EQ(lumiDilateGetSpecSize_L({1, 1}, {1, 1}, nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiDilateGetSpecSize_L({0, 1}, {1, 1}, &out), lumStatusBadSize);
    EXPECT_EQ(lumiDilateGetSpecSize_L({1, 1}, {1, 0}, &out), lumStatusBadSize);
    EXPECT_EQ(out, 12345);
    const auto dt = [](int v) { return static_cast<LumDataType>(v); };
    EXPECT_EQ(lumiDilateGetBufferSize_L({0, 1}, {1, 1}, dt(3), 2, nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiDilateGetBufferSize_L({0, 1}, {1, 1}, dt(3), 2, &out), lumStatusBadSize);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {-1, 1}, dt(3), 2, &out), lumStatusBadSize);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {1, 1}, dt(3), 2, &out), lumStatusBadDataType);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {1, 1}, dt(11), 1, &out), lumStatusBadDataType);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {1, 1}, dt(19), 1, &out), lumStatusBadDataType);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {1, 1}, dt(1), 2, &out), lumStatusBadChannelCount);
    EXPECT_EQ(lumiDilateGetBufferSize_L({1, 1}, {1, 1}, dt(13), 0, &out), lumStatusBadChannelCount);
    EXPECT_EQ(out, 12345);
    for (int t : {0, 1, 5, 7, 13}) EXPECT_EQ(lumiErodeGetBufferSize_L({1, 1}, {1, 1}, dt(t), 4, &out), lumStatusOk);
    out = 12345;

    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({1, 1}, {1, 1}, nullptr, &out), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({0, 0}, {1, 1}, &out, nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({0, 1}, {1, 1}, &out, &out2), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({1, 1}, {1, 0}, &out, &out2), lumStatusBadSize);
    EXPECT_EQ(out, 12345);
    EXPECT_EQ(out2, 12345);

    const uint8_t mask[4] = {1, 1, 1, 1};
    std::vector<uint8_t> spec(4096), buf(64);
    EXPECT_EQ(lumiDilateInit_L({1, 1}, nullptr, {2, 2}, spec.data()), lumStatusNullPointer);
    EXPECT_EQ(lumiDilateInit_L({0, 1}, mask, {2, 2}, nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiErodeInit_L({0, 1}, mask, {2, 2}, spec.data()), lumStatusBadSize);
    EXPECT_EQ(lumiErodeInit_L({1, 1}, mask, {2, 0}, spec.data()), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderInit_8u_C1R({1, 1}, nullptr, {2, 2}, spec.data(), buf.data()), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_16s_C1R({1, 1}, mask, {2, 2}, nullptr, buf.data()), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_32f_C4R({0, 1}, mask, {2, 2}, spec.data(), nullptr), lumStatusNullPointer);
    EXPECT_EQ(lumiMorphologyBorderInit_32f_C3R({0, 1}, mask, {2, 2}, spec.data(), buf.data()), lumStatusBadSize);
    EXPECT_EQ(lumiMorphologyBorderInit_16u_C1R({1, 1}, mask, {0, 2}, spec.data(), buf.data()), lumStatusBadSize);
}

// ------------------------------------------------------------ the mask record

int word(const std::vector<uint8_t>& block, int at, int index) {
    int32_t v;
    std::memcpy(&v, block.data() + at + 4 * index, 4);
    return v;
}

struct Built {
    std::vector<uint8_t> spec;
    int record;  // offset of the record in the block
};

Built buildL(const std::vector<uint8_t>& mask, int mw, int mh) {
    int size = 0;
    EXPECT_EQ(lumiDilateGetSpecSize_L({16, 16}, {mw, mh}, &size), lumStatusOk);
    Built b{std::vector<uint8_t>(size), 0};
    EXPECT_EQ(lumiDilateInit_L({16, 16}, mask.data(), {mw, mh}, b.spec.data()), lumStatusOk);
    b.record = word(b.spec, 0, 0);
    return b;
}

TEST(MorphRecord, HeadAndFieldsOfTheLargeSpec) {
    const std::vector<uint8_t> mask = {0, 9, 9, 9, 0, 9};  // 3 x 2
    Built b = buildL(mask, 3, 2);
    EXPECT_EQ(b.record, 8);
    EXPECT_EQ(word(b.spec, 0, 1), 8 + recordSize(3, 2));
    const int r = b.record;
    EXPECT_EQ(word(b.spec, r, 1), 3);  // W
    EXPECT_EQ(word(b.spec, r, 2), 3);  // H
    EXPECT_EQ(word(b.spec, r, 3), 1);  // width / 2
    EXPECT_EQ(word(b.spec, r, 4), 1);  // height / 2
    EXPECT_EQ(word(b.spec, r, 5), 3);
    EXPECT_EQ(word(b.spec, r, 6), 3);
    // Stored 3 x 3: a zero row on top, the caller's rows below, 255 for set.
    const uint8_t* m = b.spec.data() + r + word(b.spec, r, 0);
    const uint8_t expect[9] = {0, 0, 0, 0, 255, 255, 255, 0, 255};
    EXPECT_EQ(std::memcmp(m, expect, 9), 0);
    // Row lists: count then columns, W + 1 words a row.
    const uint16_t* lists = reinterpret_cast<const uint16_t*>(b.spec.data() + r + word(b.spec, r, 7));
    EXPECT_EQ(lists[0], 0);
    EXPECT_EQ(lists[4], 2);
    EXPECT_EQ(lists[5], 1);
    EXPECT_EQ(lists[6], 2);
    EXPECT_EQ(lists[8], 2);
    EXPECT_EQ(lists[9], 0);
    EXPECT_EQ(lists[10], 2);
    EXPECT_EQ(word(b.spec, r, 8), 0);  // row 2 has two runs
    const uint16_t* runs = reinterpret_cast<const uint16_t*>(b.spec.data() + r + word(b.spec, r, 9));
    EXPECT_EQ(runs[2], 2);
    EXPECT_EQ(runs[3], 1);
    EXPECT_EQ(word(b.spec, r, 10), 8);  // an outer row wholly zero
    EXPECT_EQ(word(b.spec, r, 11), 0);
    EXPECT_EQ(word(b.spec, r, 12), 0);
}

TEST(MorphRecord, TwoByTwoIsStoredThreeByThree) {
    Built b = buildL({1, 1, 1, 1}, 2, 2);
    const int r = b.record;
    EXPECT_EQ(word(b.spec, r, 1), 3);
    EXPECT_EQ(word(b.spec, r, 2), 3);
    const uint8_t* m = b.spec.data() + r + word(b.spec, r, 0);
    const uint8_t expect[9] = {0, 0, 0, 0, 255, 255, 0, 255, 255};
    EXPECT_EQ(std::memcmp(m, expect, 9), 0);
    EXPECT_EQ(word(b.spec, r, 10), 8 | 16);

    // One bright pixel spreads to the anchor's left and upward: the selected
    // pixels lie at the anchor and to its right and below.
    std::vector<Lum8u> src(10 * 10, 0), dst(10 * 10, 0);
    src[5 * 10 + 5] = 200;
    int bs = 0;
    ASSERT_EQ(lumiDilateGetBufferSize_L({10, 10}, {2, 2}, static_cast<LumDataType>(1), 1, &bs), lumStatusOk);
    std::vector<uint8_t> buf(bs);
    ASSERT_EQ(lumiDilate_8u_C1R_L(src.data(), 10, dst.data(), 10, {10, 10}, 1, nullptr, b.spec.data(), buf.data()),
              lumStatusOk);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(dst[y * 10 + x], ((x == 4 || x == 5) && (y == 4 || y == 5)) ? 200 : 0) << x << "," << y;
}

TEST(MorphRecord, Classification) {
    auto cls = [](const std::vector<uint8_t>& m, int mw, int mh) {
        Built b = buildL(m, mw, mh);
        return word(b.spec, b.record, 10);
    };
    auto flagsOf = [](const std::vector<uint8_t>& m, int mw, int mh) {
        Built b = buildL(m, mw, mh);
        return std::make_pair(word(b.spec, b.record, 11), word(b.spec, b.record, 12));
    };
    EXPECT_EQ(cls(std::vector<uint8_t>(9, 1), 3, 3), 2 | 16);
    EXPECT_EQ(cls(std::vector<uint8_t>(9, 0), 3, 3), 4 | 8 | 16);
    const std::vector<uint8_t> plus = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    EXPECT_EQ(cls(plus, 3, 3), 16 | 32 | 256);
    EXPECT_EQ(flagsOf(plus, 3, 3), std::make_pair(1, 1));
    const std::vector<uint8_t> diamond = {0, 0, 1, 0, 0, 0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 0, 0, 0, 1, 0, 0};
    EXPECT_EQ(cls(diamond, 5, 5), 16 | 768);
    EXPECT_EQ(flagsOf(diamond, 5, 5), std::make_pair(0, 1));
    std::vector<uint8_t> round(49, 1);
    for (int i : {0, 1, 2, 4, 5, 6, 7, 13, 14, 20, 28, 34, 35, 41, 42, 43, 44, 46, 47, 48}) round[i] = 0;
    EXPECT_EQ(cls(round, 7, 7), 16 | 1280);
    // A cross off centre: one full row, one full column.
    std::vector<uint8_t> cross(25, 0);
    for (int i = 0; i < 5; ++i) cross[1 * 5 + i] = cross[i * 5 + 3] = 1;
    EXPECT_EQ(cls(cross, 5, 5), 16 | 32);
    Built b = buildL(cross, 5, 5);
    const uint16_t* runs = reinterpret_cast<const uint16_t*>(b.spec.data() + b.record + word(b.spec, b.record, 9));
    EXPECT_EQ(runs[0], 1);
    EXPECT_EQ(runs[1], 3);
    // Two runs in a row: neither single runs nor cross.
    EXPECT_EQ(cls({1, 0, 1, 1, 1, 1, 1, 0, 1}, 3, 3), 0);
}

// The cross test asks for a column whose count equals the stored width; read
// as a full column (its count equal to the stored height), so that a
// non-square plus is a cross too.
TEST(MorphRecord, ChoiceCrossColumnIsAFullColumn) {
    std::vector<uint8_t> m(5 * 3, 0);  // 5 wide, 3 high
    for (int x = 0; x < 5; ++x) m[1 * 5 + x] = 1;
    for (int y = 0; y < 3; ++y) m[y * 5 + 2] = 1;
    Built b = buildL(m, 5, 3);
    EXPECT_EQ(word(b.spec, b.record, 10) & 32, 32);
    EXPECT_EQ(word(b.spec, b.record, 11), 1);
    std::vector<uint8_t> t(3 * 5, 0);  // 3 wide, 5 high, column of 5
    for (int x = 0; x < 3; ++x) t[2 * 3 + x] = 1;
    for (int y = 0; y < 5; ++y) t[y * 3 + 1] = 1;
    Built c = buildL(t, 3, 5);
    EXPECT_EQ(word(c.spec, c.record, 11), 1);
}

TEST(MorphRecord, BorderSpecIsTheRecord) {
    const std::vector<uint8_t> mask(9, 1);
    int s = 0, bsz = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C1R({8, 8}, {3, 3}, &s, &bsz), lumStatusOk);
    std::vector<uint8_t> spec(s), buf(bsz);
    ASSERT_EQ(lumiMorphologyBorderInit_8u_C1R({8, 8}, mask.data(), {3, 3}, spec.data(), buf.data()), lumStatusOk);
    EXPECT_EQ(word(spec, 0, 1), 3);
    EXPECT_EQ(word(spec, 0, 2), 3);
    EXPECT_EQ(word(spec, 0, 10), 2 | 16);
}

}  // namespace
