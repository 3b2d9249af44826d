// Erosion and dilation against the plain reference: random masks up to 7 x 7
// (even sizes, full rectangles, crosses, the three fixed shapes, single runs,
// empty), ROIs narrower and wider than the mask, every border code with
// random memory flags in either nibble, odd steps, unaligned first samples,
// guard bytes, and buffers and specs of exactly the queried size.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <vector>

#include "morph/morph_reference.h"
#include "support/rng.h"

namespace {

using namespace morphtest;

constexpr int kMargin = 12;  // at least the widest radius of the masks swept
constexpr uint8_t kGuard = 0xA5;

std::vector<uint8_t> randomMask(lumtest::Rng& rng, int& mw, int& mh) {
    const int kind = rng.uniform(0, 9);
    mw = rng.uniform(1, 7);
    mh = rng.uniform(1, 7);
    if (kind == 7) mw = mh = 3;
    if (kind == 8) mw = mh = 5;
    if (kind == 9) mw = mh = 7;
    std::vector<uint8_t> m(static_cast<size_t>(mw) * mh, 0);
    auto fixedShape = [&](int n) {
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x) {
                const int dx = x > n / 2 ? x - n / 2 : n / 2 - x, dy = y > n / 2 ? y - n / 2 : n / 2 - y;
                const bool on = n == 7 ? (dx + dy <= 3 || (dx <= 2 && dy <= 2)) && !(dx == 3 && dy != 0) &&
                                             !(dy == 3 && dx != 0)
                                       : dx + dy <= n / 2;
                m[y * n + x] = on ? static_cast<uint8_t>(rng.uniform(1, 255)) : 0;
            }
    };
    switch (kind) {
        case 0:  // full rectangle
        case 1:
            for (auto& v : m) v = static_cast<uint8_t>(rng.uniform(1, 255));
            break;
        case 2: {  // cross
            const int r = rng.uniform(0, mh - 1), c = rng.uniform(0, mw - 1);
            for (int y = 0; y < mh; ++y)
                for (int x = 0; x < mw; ++x) m[y * mw + x] = (y == r || x == c) ? 1 : 0;
            break;
        }
        case 3: {  // one run a row
            for (int y = 0; y < mh; ++y) {
                const int a = rng.uniform(0, mw - 1), b = rng.uniform(a, mw - 1);
                if (rng.chance(0.8))
                    for (int x = a; x <= b; ++x) m[y * mw + x] = 7;
            }
            break;
        }
        case 4:
            if (rng.chance(0.3)) break;  // empty
            [[fallthrough]];
        case 5:
        case 6:
            for (auto& v : m) v = rng.chance(0.5) ? static_cast<uint8_t>(rng.uniform(1, 255)) : 0;
            break;
        default:
            fixedShape(mw);
            break;
    }
    return m;
}

int randomBorder(lumtest::Rng& rng) {
    if (rng.chance(0.1)) return 240;
    static const int codes[] = {1, 3, 5, 6};
    int word = codes[rng.uniform(0, 3)];
    for (int f = 16; f <= 128; f <<= 1)
        if (rng.chance(0.2)) word |= rng.chance(0.5) ? f : f << 4;
    return word;
}

template <class T>
T randomSample(lumtest::Rng& rng) {
    if constexpr (std::is_same_v<T, float>) return static_cast<float>(rng.uniform(-60, 60)) * 0.5f;
    else return static_cast<T>(rng.uniform(std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()));
}

template <class T>
Canvas<T> makeCanvas(lumtest::Rng& rng, int w, int h, int C, bool randomFill) {
    Canvas<T> c{w, h, C, kMargin, 0, 0, {}};
    const int s = sizeof(T);
    c.step = (w + 2 * kMargin) * C * s + s * rng.uniform(0, 3) + (s == 1 ? rng.uniform(0, 1) : 0);
    c.offset = s * rng.uniform(0, 31 / s);
    c.bytes.assign(static_cast<size_t>(c.offset) + static_cast<size_t>(c.step) * (h + 2 * kMargin), kGuard);
    if (randomFill)
        for (int y = -kMargin; y < h + kMargin; ++y)
            for (int x = 0; x < (w + 2 * kMargin) * C; ++x) c.at(-kMargin, y)[x] = randomSample<T>(rng);
    return c;
}

// Full rectangles wider than 7, whose row pass doubles its window.
std::vector<uint8_t> wideRect(lumtest::Rng& rng, int& mw, int& mh) {
    mw = rng.uniform(8, 23);
    mh = rng.uniform(1, 9);
    return std::vector<uint8_t>(static_cast<size_t>(mw) * mh, 1);
}

enum class Masks { Random, WideRects, Rect3x3, SmallRects, EdgeRects, SideMasks };

template <class T, int C>
void sweep(bool dilate, int cases, Masks kind = Masks::Random) {
    const bool wide = kind != Masks::Random && kind != Masks::SideMasks;
    using A = Api<T, C>;
    LUMTEST_REPLAYABLE();
    lumtest::Rng rng;
    for (int n = 0; n < cases; ++n) {
        int mw, mh;
        std::vector<uint8_t> mask = wide ? wideRect(rng, mw, mh) : randomMask(rng, mw, mh);
        if (kind == Masks::Rect3x3) {
            mw = mh = 3;
            mask.assign(9, 1);
        } else if (kind == Masks::SmallRects || kind == Masks::EdgeRects) {
            mw = rng.uniform(1, kind == Masks::EdgeRects ? 9 : 7);
            mh = rng.uniform(1, 9);
            mask.assign(static_cast<size_t>(mw) * mh, 1);
        }
        int w = rng.chance(0.5) ? rng.uniform(1, 12) : rng.uniform(1, kind == Masks::SmallRects ? 300 : wide ? 150 : 75);
        int h = rng.uniform(1, 12);
        if (kind == Masks::SideMasks) {
            // Rows either side of twice a vector of pixels, the least that
            // puts each side's part beside a centre read in place.
            const int twoVectors = 2 * ((32 / static_cast<int>(sizeof(T)) + C - 1) / C);
            w = rng.uniform(twoVectors - 2, twoVectors + 60);
            h = rng.uniform(1, 90);
        }
        if (kind == Masks::EdgeRects) {
            // Rows from just under three vectors to a few more, and images
            // shorter and taller than the mask.
            const int threeVectors = (3 * 32 / static_cast<int>(sizeof(T)) + C - 1) / C;
            w = rng.uniform(threeVectors - 2, threeVectors + 70);
            // Rows of whole vectors, where output rows go in pairs.
            if (rng.chance(0.4)) w = 32 / static_cast<int>(sizeof(T)) * rng.uniform(3, 6);
            h = rng.uniform(1, 20);
        }
        const int word = randomBorder(rng);
        const bool formL = rng.chance(0.5);
        T value[C];
        for (int c = 0; c < C; ++c) value[c] = randomSample<T>(rng);
        const LumiSize roi{w, h}, msz{mw, mh};

        std::ostringstream what;
        what << "case " << n << (formL ? " _L" : " Border") << (dilate ? " dilate" : " erode") << " roi " << w << "x"
             << h << " mask " << mw << "x" << mh << " border " << word;
        SCOPED_TRACE(what.str());

        Canvas<T> src = makeCanvas<T>(rng, w, h, C, true);
        Canvas<T> dst = makeCanvas<T>(rng, w, h, C, false);
        const std::vector<uint8_t> srcBefore = src.bytes;

        int specSize = 0, bufSize = 0;
        if (formL) {
            ASSERT_EQ(lumiDilateGetSpecSize_L(roi, msz, &specSize), lumStatusOk);
            ASSERT_EQ(lumiErodeGetBufferSize_L(roi, msz, static_cast<LumDataType>(A::dataType), C, &bufSize),
                      lumStatusOk);
        } else {
            ASSERT_EQ(A::borderGetSize(roi, msz, &specSize, &bufSize), lumStatusOk);
        }
        // Exactly the queried bytes, at a random offset from malloc's alignment.
        const int so = rng.uniform(0, 31), bo = rng.uniform(0, 31);
        std::vector<uint8_t> specBlock(static_cast<size_t>(specSize) + so), bufBlock(static_cast<size_t>(bufSize) + bo);
        Lum8u* spec = specBlock.data() + so;
        Lum8u* buf = bufBlock.data() + bo;
        if (formL) {
            ASSERT_EQ(lumiErodeInit_L(roi, mask.data(), msz, spec), lumStatusOk);
        } else {
            ASSERT_EQ(A::borderInit(roi, mask.data(), msz, spec, buf), lumStatusOk);
        }
        const LumStatus st = formL ? A::filterL(dilate, src.at(0, 0), src.step, dst.at(0, 0), dst.step, roi,
                                                        word, value, spec, buf)
                                   : A::filterBorder(dilate, src.at(0, 0), src.step, dst.at(0, 0), dst.step,
                                                             roi, word, value, spec, buf);
        ASSERT_EQ(st, lumStatusOk);
        ASSERT_EQ(src.bytes, srcBefore) << "source written";

        const std::vector<T> ref = reference<T>(src, w, h, mask, mw, mh, word, value, dilate);
        for (int y = 0; y < h; ++y)
            ASSERT_EQ(std::memcmp(dst.at(0, y), &ref[static_cast<size_t>(y) * w * C], sizeof(T) * w * C), 0)
                << "row " << y;
        // Everything but the ROI's samples keeps the guard pattern.
        for (int y = 0; y < h; ++y) std::memset(dst.at(0, y), kGuard, sizeof(T) * w * C);
        for (size_t i = 0; i < dst.bytes.size(); ++i) ASSERT_EQ(dst.bytes[i], kGuard) << "byte " << i << " outside ROI";
    }
}

TEST(MorphSweep, Dilate8uC1) { sweep<Lum8u, 1>(true, 400); }
TEST(MorphSweep, Erode8uC1) { sweep<Lum8u, 1>(false, 400); }
TEST(MorphSweep, Dilate8uC3) { sweep<Lum8u, 3>(true, 150); }
TEST(MorphSweep, Erode8uC3) { sweep<Lum8u, 3>(false, 150); }
TEST(MorphSweep, Dilate8uC4) { sweep<Lum8u, 4>(true, 150); }
TEST(MorphSweep, Erode8uC4) { sweep<Lum8u, 4>(false, 150); }
TEST(MorphSweep, Dilate32fC1) { sweep<Lum32f, 1>(true, 250); }
TEST(MorphSweep, Erode32fC1) { sweep<Lum32f, 1>(false, 250); }
TEST(MorphSweep, Dilate32fC3) { sweep<Lum32f, 3>(true, 120); }
TEST(MorphSweep, Erode32fC3) { sweep<Lum32f, 3>(false, 120); }
TEST(MorphSweep, Dilate32fC4) { sweep<Lum32f, 4>(true, 120); }
TEST(MorphSweep, Erode32fC4) { sweep<Lum32f, 4>(false, 120); }
TEST(MorphSweep, Dilate16uC1) { sweep<Lum16u, 1>(true, 250); }
TEST(MorphSweep, Erode16uC1) { sweep<Lum16u, 1>(false, 250); }
TEST(MorphSweep, Dilate16sC1) { sweep<Lum16s, 1>(true, 250); }
TEST(MorphSweep, Erode16sC1) { sweep<Lum16s, 1>(false, 250); }

TEST(MorphSweep, WideRectangles8u) {
    sweep<Lum8u, 1>(true, 150, Masks::WideRects);
    sweep<Lum8u, 3>(false, 60, Masks::WideRects);
}
TEST(MorphSweep, WideRectangles32f) {
    sweep<Lum32f, 1>(false, 100, Masks::WideRects);
    sweep<Lum32f, 4>(true, 40, Masks::WideRects);
}
TEST(MorphSweep, WideRectangles16bit) {
    sweep<Lum16u, 1>(true, 80, Masks::WideRects);
    sweep<Lum16s, 1>(false, 80, Masks::WideRects);
}

// Rectangles up to 7 wide, whose passes run fused on rows of four vectors.
TEST(MorphSweep, SmallRectangles) {
    sweep<Lum8u, 1>(true, 120, Masks::SmallRects);
    sweep<Lum8u, 3>(false, 60, Masks::SmallRects);
    sweep<Lum32f, 1>(true, 60, Masks::SmallRects);
    sweep<Lum16s, 1>(false, 60, Masks::SmallRects);
}

// Rectangles up to 7 wide that make their own borders on rows of three
// vectors or more, beside masks 8 and 9 wide and rows just too short.
TEST(MorphSweep, RectanglesMakingTheirBorders) {
    sweep<Lum8u, 1>(true, 120, Masks::EdgeRects);
    sweep<Lum8u, 1>(false, 60, Masks::EdgeRects);
    sweep<Lum8u, 3>(true, 60, Masks::EdgeRects);
    sweep<Lum8u, 4>(false, 40, Masks::EdgeRects);
    sweep<Lum32f, 1>(false, 80, Masks::EdgeRects);
    sweep<Lum32f, 3>(true, 40, Masks::EdgeRects);
    sweep<Lum32f, 4>(true, 40, Masks::EdgeRects);
    sweep<Lum16u, 1>(true, 60, Masks::EdgeRects);
    sweep<Lum16s, 1>(false, 60, Masks::EdgeRects);
}

// Any mask on rows long enough for sides read from widened copies of the
// rows' ends, on images taller than a chunk of those copies.
TEST(MorphSweep, MasksWithSidesBesideTheCentre) {
    sweep<Lum8u, 1>(true, 80, Masks::SideMasks);
    sweep<Lum8u, 3>(false, 40, Masks::SideMasks);
    sweep<Lum8u, 4>(true, 30, Masks::SideMasks);
    sweep<Lum32f, 1>(false, 50, Masks::SideMasks);
    sweep<Lum32f, 3>(true, 30, Masks::SideMasks);
    sweep<Lum32f, 4>(false, 30, Masks::SideMasks);
    sweep<Lum16u, 1>(true, 40, Masks::SideMasks);
    sweep<Lum16s, 1>(false, 40, Masks::SideMasks);
}

// The 8u 3x3 rectangle on short rows, whose row passes read widened copies.
TEST(MorphSweep, Rectangle3x3Of8u) {
    sweep<Lum8u, 1>(true, 150, Masks::Rect3x3);
    sweep<Lum8u, 1>(false, 150, Masks::Rect3x3);
}

// Rows longer than the row pass's temporary: the window doubles chunk by
// chunk.
template <class T, int C>
void longRows(int w, int mw, int mh, int h = 4, double density = 1.0, int selected = 0) {
    using A = Api<T, C>;
    lumtest::Rng rng;
    Canvas<T> src = makeCanvas<T>(rng, w, h, C, true);
    Canvas<T> dst = makeCanvas<T>(rng, w, h, C, false);
    std::vector<uint8_t> mask(static_cast<size_t>(mw) * mh, 1);
    if (density < 1.0)
        for (auto& v : mask) v = rng.chance(density);
    if (selected > 0) {
        // Exactly `selected` elements, scattered.
        std::fill(mask.begin(), mask.end(), 0);
        for (int k = 0; k < selected;) {
            uint8_t& v = mask[static_cast<size_t>(rng.uniform(0, mw * mh - 1))];
            if (!v) v = 1, ++k;
        }
    }
    int spec = 0, buf = 0;
    ASSERT_EQ(lumiErodeGetSpecSize_L({w, h}, {mw, mh}, &spec), lumStatusOk);
    ASSERT_EQ(lumiErodeGetBufferSize_L({w, h}, {mw, mh}, static_cast<LumDataType>(A::dataType), C, &buf),
              lumStatusOk);
    std::vector<uint8_t> specBlock(spec), bufBlock(buf);
    ASSERT_EQ(lumiErodeInit_L({w, h}, mask.data(), {mw, mh}, specBlock.data()), lumStatusOk);
    for (bool dilate : {true, false}) {
        ASSERT_EQ(A::filterL(dilate, src.at(0, 0), src.step, dst.at(0, 0), dst.step, {w, h}, 3, nullptr,
                                     specBlock.data(), bufBlock.data()),
                  lumStatusOk);
        const std::vector<T> ref = reference<T>(src, w, h, mask, mw, mh, 3, nullptr, dilate);
        for (int y = 0; y < h; ++y)
            ASSERT_EQ(std::memcmp(dst.at(0, y), &ref[static_cast<size_t>(y) * w * C], sizeof(T) * w * C), 0) << y;
    }
}

TEST(MorphSweep, RowsLongerThanOneChunk) {
    longRows<Lum8u, 1>(17000, 9, 3);
    longRows<Lum8u, 4>(4500, 11, 2);
    longRows<Lum32f, 1>(4300, 13, 1);
    longRows<Lum16s, 1>(8500, 9, 5);
}

// Rectangles whose ring of row passes would pass 128 KiB go in strips of
// the ROI down the whole height: just at the limit, just past it, and strips
// of several channels.
TEST(MorphSweep, WideRectanglesInStrips) {
    longRows<Lum32f, 1>(4096, 9, 8, 3);
    longRows<Lum32f, 1>(4097, 9, 8, 3);
    longRows<Lum32f, 3>(1500, 15, 9, 11);
    longRows<Lum8u, 3>(1500, 11, 31, 5);
    longRows<Lum16s, 1>(4400, 8, 15, 2);
}

// Masks with more selected elements, or longer rows and columns of a
// rectangle, than one group of taps holds.
TEST(MorphSweep, LargeMasks) {
    longRows<Lum8u, 1>(60, 51, 41, 50, 0.7);
    longRows<Lum32f, 4>(1103, 1101, 1, 2);
    longRows<Lum16u, 1>(3, 1, 1101, 1103);
}

// Integer masks take output rows in pairs, the taps both rows read loaded
// once, up to 64 selected elements and on rows of a vector or more: odd and
// even heights, rows just shorter and longer than a vector, masks of 64 and
// 65 elements.
TEST(MorphSweep, PairedOutputRowsOfMasks) {
    for (int h : {1, 2, 3, 4, 7}) {
        for (int w : {15, 16, 17, 31, 32, 33, 70}) {
            longRows<Lum8u, 1>(w, 9, 9, h, 1.0, 64);
            longRows<Lum8u, 1>(w, 9, 9, h, 1.0, 65);
            longRows<Lum16s, 1>(w, 5, 5, h, 0.5);
        }
        for (int w : {10, 11, 12, 40})
            longRows<Lum8u, 3>(w, 9, 8, h, 1.0, 64);
        longRows<Lum8u, 3>(11, 9, 8, h, 1.0, 65);
        longRows<Lum16u, 1>(16, 8, 9, h, 1.0, 64);
        longRows<Lum16u, 1>(17, 8, 9, h, 1.0, 65);
    }
}

}  // namespace
