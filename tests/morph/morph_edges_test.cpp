// Erosion and dilation: the edge cases one by one, the NaN rule of 32f, and
// every export through the allocation counter.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "morph/morph_reference.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace {

using namespace morphtest;

// A spec and buffer of the _L form for a ROI and mask.
struct LargeSetup {
    std::vector<uint8_t> spec, buf;
    LargeSetup(LumiSize roi, const std::vector<uint8_t>& mask, LumiSize m, int dataType, int channels) {
        int s = 0, b = 0;
        EXPECT_EQ(lumiDilateGetSpecSize_L(roi, m, &s), lumStatusOk);
        EXPECT_EQ(lumiDilateGetBufferSize_L(roi, m, static_cast<LumDataType>(dataType), channels, &b), lumStatusOk);
        spec.resize(s);
        buf.resize(b);
        EXPECT_EQ(lumiDilateInit_L(roi, mask.data(), m, spec.data()), lumStatusOk);
    }
};

TEST(MorphEdges, OneByOneAndEmptyMasksCopyForEveryBorder) {
    lumtest::Rng rng;
    std::vector<Lum8u> src(20 * 10), dst(20 * 10);
    for (auto& v : src) v = static_cast<Lum8u>(rng.bits());
    for (const auto& [mask, mw, mh] : {std::make_tuple(std::vector<uint8_t>{1}, 1, 1),
                                      std::make_tuple(std::vector<uint8_t>(12, 0), 4, 3)}) {
        LargeSetup s({8, 4}, mask, {mw, mh}, 1, 1);
        for (int border : {1, 3, 5, 6, 240, 1 | 16, 6 | 0x200}) {
            std::fill(dst.begin(), dst.end(), 0);
            const Lum8u value = 77;
            const Lum8u* in = src.data() + 2 * 20 + 3;
            ASSERT_EQ(lumiErode_8u_C1R_L(in, 20, dst.data() + 20 + 1, 20, {8, 4}, border, &value, s.spec.data(),
                                         s.buf.data()),
                      lumStatusOk);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 8; ++x) ASSERT_EQ(dst[(y + 1) * 20 + 1 + x], in[y * 20 + x]) << border;
        }
    }
}

// The border scratch of a mask as wide as the ROI is one bordered copy of
// the whole image; a mask one pixel wide reads nothing left or right of it.
// The images here are exactly the ROI, so any read outside it fails under
// the address sanitizer.
TEST(MorphEdges, MaskAsWideAsTheRoiAndOnePixelWide) {
    lumtest::Rng rng;
    for (const auto& [mw, mh, w, h] : {std::make_tuple(7, 3, 7, 20), std::make_tuple(1, 5, 30, 20),
                                       std::make_tuple(1, 1, 5, 5), std::make_tuple(5, 1, 40, 3)}) {
        Canvas<Lum8u> src{w, h, 1, 0, w, 0, std::vector<uint8_t>(w * h)};
        for (auto& v : src.bytes) v = static_cast<uint8_t>(rng.bits());
        std::vector<uint8_t> mask(mw * mh);
        for (auto& v : mask) v = rng.chance(0.7);
        mask[0] = 1;
        std::vector<Lum8u> dst(w * h);
        for (int border : {1, 3, 6}) {
            LargeSetup s({w, h}, mask, {mw, mh}, 1, 1);
            const Lum8u value = 9;
            ASSERT_EQ(lumiDilate_8u_C1R_L(src.bytes.data(), w, dst.data(), w, {w, h}, border, &value, s.spec.data(),
                                          s.buf.data()),
                      lumStatusOk);
            const std::vector<Lum8u> ref = reference<Lum8u>(src, w, h, mask, mw, mh, border, &value, true);
            EXPECT_EQ(dst, ref) << mw << "x" << mh << " border " << border;
        }
    }
}

TEST(MorphEdges, NeutralBorderFillsTheIdentity) {
    // Erosion of 16s: the fill is 32767, as code 6 with that value.
    std::vector<Lum16s> src(12 * 6), a(12 * 6), b(12 * 6);
    lumtest::Rng rng;
    for (auto& v : src) v = static_cast<Lum16s>(rng.uniform(100, 30000));
    const std::vector<uint8_t> mask(9, 1);
    int s = 0, bs = 0;
    ASSERT_EQ(lumiMorphologyBorderGetSize_16s_C1R({12, 6}, {3, 3}, &s, &bs), lumStatusOk);
    std::vector<uint8_t> spec(s), buf(bs);
    ASSERT_EQ(lumiMorphologyBorderInit_16s_C1R({12, 6}, mask.data(), {3, 3}, spec.data(), buf.data()), lumStatusOk);
    ASSERT_EQ(lumiErodeBorder_16s_C1R(src.data(), 24, a.data(), 24, {12, 6}, 5, 0, spec.data(), buf.data()),
              lumStatusOk);
    ASSERT_EQ(lumiErodeBorder_16s_C1R(src.data(), 24, b.data(), 24, {12, 6}, 6, 32767, spec.data(), buf.data()),
              lumStatusOk);
    EXPECT_EQ(a, b);
    ASSERT_EQ(lumiErodeBorder_16s_C1R(src.data(), 24, b.data(), 24, {12, 6}, 6, 50, spec.data(), buf.data()),
              lumStatusOk);
    EXPECT_NE(a, b);

    // Dilation of 32f: the fill is the most negative finite value.
    std::vector<Lum32f> f(10 * 4, -FLT_MAX), g(10 * 4);
    f[0] = -1e30f;
    LargeSetup l({10, 4}, mask, {3, 3}, 13, 1);
    ASSERT_EQ(lumiDilate_32f_C1R_L(f.data(), 40, g.data(), 40, {10, 4}, 5, nullptr, l.spec.data(), l.buf.data()),
              lumStatusOk);
    uint32_t bits;
    std::memcpy(&bits, &g[9 * 1 + 30], 4);
    EXPECT_EQ(bits, 0xff7fffffu);
    EXPECT_EQ(g[0], -1e30f);
    EXPECT_EQ(g[11], -1e30f);
}

TEST(MorphEdges, SecondNibbleFlagIsATopFlag) {
    lumtest::Rng rng;
    std::vector<Lum8u> img(20 * 12), a(20 * 12), b(20 * 12);
    for (auto& v : img) v = static_cast<Lum8u>(rng.bits());
    std::vector<uint8_t> mask(15);
    for (auto& v : mask) v = rng.chance(0.6);
    LargeSetup s({10, 6}, mask, {5, 3}, 1, 1);
    const Lum8u* in = img.data() + 4 * 20 + 5;
    ASSERT_EQ(lumiDilate_8u_C1R_L(in, 20, a.data(), 20, {10, 6}, 0x100 | 1, nullptr, s.spec.data(), s.buf.data()),
              lumStatusOk);
    ASSERT_EQ(lumiDilate_8u_C1R_L(in, 20, b.data(), 20, {10, 6}, 16 | 1, nullptr, s.spec.data(), s.buf.data()),
              lumStatusOk);
    EXPECT_EQ(a, b);
    Canvas<Lum8u> c{10, 6, 1, 4, 20, 0, img};
    c.offset = 0 * 20 + 1;  // (0, 0) of the canvas at (5, 4) of the image
    const std::vector<Lum8u> ref = reference<Lum8u>(c, 10, 6, mask, 5, 3, 16 | 1, nullptr, true);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 10; ++x) EXPECT_EQ(a[y * 20 + x], ref[y * 10 + x]) << x << "," << y;
}

TEST(MorphEdges, InPlace8uPassesTheChecks) {
    std::vector<Lum8u> img(16 * 8, 3);
    LargeSetup s({16, 8}, std::vector<uint8_t>(9, 1), {3, 3}, 1, 3);
    EXPECT_EQ(lumiDilate_8u_C1R_L(img.data(), 16, img.data(), 16, {16, 8}, 1, nullptr, s.spec.data(), s.buf.data()),
              lumStatusOk);
    std::vector<Lum8u> rgb(16 * 8 * 3, 3);
    EXPECT_EQ(lumiErode_8u_C3R_L(rgb.data(), 48, rgb.data(), 48, {16, 8}, 1, nullptr, s.spec.data(), s.buf.data()),
              lumStatusOk);
    std::vector<Lum32f> flt(16 * 8, 1.0f);
    LargeSetup t({16, 8}, std::vector<uint8_t>(9, 1), {3, 3}, 13, 1);
    EXPECT_EQ(lumiErode_32f_C1R_L(flt.data(), 64, flt.data(), 64, {16, 8}, 1, nullptr, t.spec.data(), t.buf.data()),
              lumStatusOk);
}

// NaN samples never win: every path skips them alike, and a window of NaN
// alone gives the identity of the operation. A 1x1 mask copies them.
TEST(MorphEdges, ChoiceNaNSamplesAreSkipped) {
    const float nan = std::nanf("");
    for (const auto& [mask, mw, mh] :
         {std::make_tuple(std::vector<uint8_t>(9, 1), 3, 3), std::make_tuple(std::vector<uint8_t>(25, 1), 5, 5),
          std::make_tuple(std::vector<uint8_t>{0, 1, 0, 1, 1, 1, 0, 1, 0}, 3, 3),
          std::make_tuple(std::vector<uint8_t>{1, 0, 1, 0, 1, 0, 1, 0, 1}, 3, 3)}) {
        const int w = 40, h = 9;
        std::vector<Lum32f> src(w * h), dst(w * h);
        for (int i = 0; i < w * h; ++i) src[i] = static_cast<float>(i % 13);
        for (int y = 0; y < h; ++y)
            for (int x = 20; x < 40; ++x) src[y * w + x] = nan;
        src[3 * w + 5] = nan;
        for (bool dilate : {true, false}) {
            LargeSetup s({w, h}, mask, {mw, mh}, 13, 1);
            auto fn = dilate ? lumiDilate_32f_C1R_L : lumiErode_32f_C1R_L;
            ASSERT_EQ(fn(src.data(), w * 4, dst.data(), w * 4, {w, h}, 1, nullptr, s.spec.data(), s.buf.data()),
                      lumStatusOk);
            Canvas<Lum32f> c{w, h, 1, 0, w * 4, 0, std::vector<uint8_t>(w * h * 4)};
            std::memcpy(c.bytes.data(), src.data(), w * h * 4);
            const std::vector<Lum32f> ref = reference<Lum32f>(c, w, h, mask, mw, mh, 1, nullptr, dilate);
            EXPECT_EQ(std::memcmp(dst.data(), ref.data(), w * h * 4), 0);
            for (float v : dst) EXPECT_FALSE(std::isnan(v));
            EXPECT_EQ(dst[5 * w + 30], dilate ? -FLT_MAX : FLT_MAX);
        }
    }
    std::vector<Lum32f> one = {nan, 1.0f}, out(2);
    LargeSetup s({2, 1}, {1}, {1, 1}, 13, 1);
    ASSERT_EQ(lumiDilate_32f_C1R_L(one.data(), 8, out.data(), 8, {2, 1}, 1, nullptr, s.spec.data(), s.buf.data()),
              lumStatusOk);
    EXPECT_TRUE(std::isnan(out[0]));
}

// With code 6 and some sides in memory, a pixel outside on a side that is
// not in memory takes the value, also at a corner whose other side is in
// memory; the memory sides give the rest.
TEST(MorphEdges, ChoiceCornerBesideAConstantSideTakesTheValue) {
    std::vector<Lum8u> img(10 * 10, 100), dst(10 * 10, 0);
    for (int x = 0; x < 10; ++x) img[1 * 10 + x] = 200;  // the row above the ROI
    const std::vector<uint8_t> mask = {1, 0, 0, 0, 0, 0, 0, 0, 0};  // the top-left neighbour only
    LargeSetup s({4, 4}, mask, {3, 3}, 1, 1);
    const Lum8u value = 7;
    ASSERT_EQ(lumiDilate_8u_C1R_L(img.data() + 22, 10, dst.data(), 10, {4, 4}, 6 | 16, &value, s.spec.data(),
                                  s.buf.data()),
              lumStatusOk);
    EXPECT_EQ(dst[0], 7);    // (-1, -1): left is not in memory
    EXPECT_EQ(dst[1], 200);  // (0, -1): the row above, from memory
    EXPECT_EQ(dst[10], 7);   // (-1, 0)
    EXPECT_EQ(dst[11], 100);
}

// ------------------------------------------------------------ no allocation

template <class T>
struct Images {
    std::vector<T> src = std::vector<T>(32 * 16 * 4, T(1)), dst = std::vector<T>(32 * 16 * 4);
};

TEST(MorphNoAlloc, EveryExport) {
    const std::vector<uint8_t> mask = {1, 0, 1, 1, 1, 0};
    const LumiSize roi{32, 16}, m{3, 2};
    int spec = 0, spec2 = 0, buf = 0, b2 = 0;
    EXPECT_EQ(LUMTEST_NOALLOC(lumiDilateGetSpecSize_L, (roi, m, &spec)), lumStatusOk);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiErodeGetSpecSize_L, (roi, m, &spec)), lumStatusOk);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiDilateGetBufferSize_L, (roi, m, static_cast<LumDataType>(13), 4, &buf)), lumStatusOk);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiErodeGetBufferSize_L, (roi, m, static_cast<LumDataType>(13), 4, &buf)), lumStatusOk);
    std::vector<uint8_t> specL(spec), bufL(buf);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiDilateInit_L, (roi, mask.data(), m, specL.data())), lumStatusOk);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiErodeInit_L, (roi, mask.data(), m, specL.data())), lumStatusOk);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderGetSize_32f_C4R, (roi, m, &spec2, &b2)), lumStatusOk);
    std::vector<uint8_t> specB(spec2), bufB(b2);
    EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderInit_32f_C4R, (roi, mask.data(), m, specB.data(), bufB.data())),
              lumStatusOk);

#define MORPHTEST_ONE(T, t, C, V)                                                                                    \
    {                                                                                                                \
        Images<T> im;                                                                                                \
        const int st = 32 * C * sizeof(T);                                                                           \
        const T value[4] = {};                                                                                       \
        int s0 = 0, b0 = 0;                                                                                          \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderGetSize_##t##_C##C##R, (roi, m, &s0, &b0)), lumStatusOk);     \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderInit_##t##_C##C##R, (roi, mask.data(), m, specB.data(),        \
                                                                            bufB.data())),                           \
                  lumStatusOk);                                                                                      \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiDilate_##t##_C##C##R_L, (im.src.data(), st, im.dst.data(), st, roi, 6, value,  \
                                                               specL.data(), bufL.data())),                          \
                  lumStatusOk);                                                                                      \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiErode_##t##_C##C##R_L, (im.src.data(), st, im.dst.data(), st, roi, 3, value,   \
                                                              specL.data(), bufL.data())),                           \
                  lumStatusOk);                                                                                      \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiDilateBorder_##t##_C##C##R, (im.src.data(), st, im.dst.data(), st, roi, 1, V,  \
                                                                   specB.data(), bufB.data())),                      \
                  lumStatusOk);                                                                                      \
        EXPECT_EQ(LUMTEST_NOALLOC(lumiErodeBorder_##t##_C##C##R, (im.src.data(), st, im.dst.data(), st, roi, 5, V,   \
                                                                  specB.data(), bufB.data())),                       \
                  lumStatusOk);                                                                                      \
    }
    MORPHTEST_ONE(Lum8u, 8u, 1, value[0])
    MORPHTEST_ONE(Lum8u, 8u, 3, value)
    MORPHTEST_ONE(Lum8u, 8u, 4, value)
    MORPHTEST_ONE(Lum32f, 32f, 1, value[0])
    MORPHTEST_ONE(Lum32f, 32f, 3, value)
    MORPHTEST_ONE(Lum32f, 32f, 4, value)
    MORPHTEST_ONE(Lum16u, 16u, 1, value[0])
    MORPHTEST_ONE(Lum16s, 16s, 1, value[0])
#undef MORPHTEST_ONE
}

}  // namespace
