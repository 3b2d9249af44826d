// Packed one-bit erosion and dilation against a plain reference: unpack the
// bits, take the OR or AND over the selected window of a bordered image, pack.
// Every call runs with a spec and a buffer of exactly the queried sizes,
// which under AddressSanitizer proves the size query; source blocks must stay
// unchanged and every destination bit outside the ROI must keep its value.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "lumcv.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace {

using lumtest::Rng;

// ------------------------------------------------------------ bit images

// A block of random bytes holding a bit image: rows `step` bytes apart, the
// ROI's pixel (x, y) at bit position bitOffset + x from first + y * step,
// the most significant bit of a byte first. `margin` rows and pixels of real
// data lie around the ROI for the sides read from memory.
struct BitBlock {
    std::vector<uint8_t> bytes;
    size_t first = 0;  // byte index of the ROI's row 0 pointer
    int step = 0;
    int bitOffset = 0;
    int width = 0, height = 0, margin = 0;

    // With no margin, lead, slack or guard, the ROI's last byte is the
    // block's last, so AddressSanitizer sees any read past it.
    BitBlock(int w, int h, int margin_, int bitOffset_, int byteLead, int slack, Rng& rng, size_t guard = 16)
        : bitOffset(bitOffset_), width(w), height(h), margin(margin_) {
        // A row reaches from bit bitOffset - margin to bitOffset + w + margin.
        step = byteLead + (bitOffset + w + margin + 7) / 8 + slack;
        first = guard + static_cast<size_t>(margin) * step + byteLead;
        bytes.resize(first + static_cast<size_t>(h + margin) * step + guard);
        for (uint8_t& b : bytes) b = static_cast<uint8_t>(rng.bits());
    }
    uint8_t* ptr() { return bytes.data() + first; }

    ptrdiff_t bitPos(int x, int y) const {
        return static_cast<ptrdiff_t>(first) * 8 + static_cast<ptrdiff_t>(y) * step * 8 + bitOffset + x;
    }
    bool get(int x, int y) const {
        const ptrdiff_t p = bitPos(x, y);
        return (bytes[p >> 3] >> (7 - (p & 7))) & 1;
    }
    void set(int x, int y, bool v) {
        const ptrdiff_t p = bitPos(x, y);
        const uint8_t m = static_cast<uint8_t>(0x80 >> (p & 7));
        bytes[p >> 3] = static_cast<uint8_t>(v ? bytes[p >> 3] | m : bytes[p >> 3] & ~m);
    }
};

// ------------------------------------------------------------ reference

struct Mask {
    int w = 1, h = 1;
    std::vector<uint8_t> m;
    bool selected(int i, int j) const { return m[static_cast<size_t>(i) * w + j] != 0; }
    bool copies() const {
        if (w == 1 && h == 1) return true;
        for (uint8_t v : m)
            if (v) return false;
        return true;
    }
};

// The pixel at (x, y) of the bordered source: code 1 repeats the nearest ROI
// pixel, 5 and 6 take `fill`, a side with its flag reads memory. Rows first,
// then columns (the two orders agree for these codes).
bool borderedPixel(const BitBlock& s, int x, int y, int folded, bool fill) {
    const int code = folded & 15;
    const bool constant = code == 5 || code == 6;
    if ((y < 0 && !(folded & 16)) || (y >= s.height && !(folded & 32))) {
        if (constant) return fill;
        y = y < 0 ? 0 : s.height - 1;
    }
    if ((x < 0 && !(folded & 64)) || (x >= s.width && !(folded & 128))) {
        if (constant) return fill;
        x = x < 0 ? 0 : s.width - 1;
    }
    return s.get(x, y);
}

// dst(x, y) = OR / AND over the selected (i, j) of src(x - ax + j, y - ay + i).
std::vector<uint8_t> reference(const BitBlock& s, const Mask& mask, bool erode, int borderType, bool fill) {
    const int folded = ((borderType & 3840) >> 4) | (borderType & 255);
    std::vector<uint8_t> out(static_cast<size_t>(s.width) * s.height);
    const int ax = (mask.w - 1) / 2, ay = (mask.h - 1) / 2;
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) {
            bool v;
            if (mask.copies()) {
                v = s.get(x, y);
            } else {
                v = erode;
                for (int i = 0; i < mask.h; ++i)
                    for (int j = 0; j < mask.w; ++j) {
                        if (!mask.selected(i, j)) continue;
                        const bool p = borderedPixel(s, x - ax + j, y - ay + i, folded, fill);
                        v = erode ? (v && p) : (v || p);
                    }
            }
            out[static_cast<size_t>(y) * s.width + x] = v;
        }
    return out;
}

// ------------------------------------------------------------ calling

// A spec and a buffer of exactly the queried sizes. The _L spec is either
// the one lumiErodeInit_L builds (buffer: lumiErodeGetBufferSize_L for 1u),
// or built by hand as an 8-byte head (offset of a mask record, offset of the
// plan) with the plan at an odd offset behind a dummy record.
struct SpecAndBuffer {
    int specSize = 0, bufferSize = 0;
    uint8_t* specBlock = nullptr;  // the Border forms' spec: the plan alone
    uint8_t* lBlock = nullptr;     // the _L spec
    uint8_t* bufferBlock = nullptr;
    uint8_t* buffer = nullptr;
    static constexpr int kPlanInL = 8 + 13;

    SpecAndBuffer(LumiSize roi, const Mask& mask, int bufferLead, bool viaInitL = false) {
        const LumiSize ms{mask.w, mask.h};
        EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderGetSize_1u_C1R, (roi, ms, &specSize, &bufferSize)), lumStatusOk);
        specBlock = static_cast<uint8_t*>(std::malloc(specSize));
        std::vector<uint8_t> initBuffer(1);
        EXPECT_EQ(LUMTEST_NOALLOC(lumiMorphologyBorderInit_1u_C1R, (roi, mask.m.data(), ms, specBlock, initBuffer.data())),
                  lumStatusOk);
        if (viaInitL) {
            int specSizeL = 0;
            EXPECT_EQ(lumiErodeGetSpecSize_L(roi, ms, &specSizeL), lumStatusOk);
            EXPECT_EQ(lumiErodeGetBufferSize_L(roi, ms, static_cast<LumDataType>(0), 1, &bufferSize), lumStatusOk);
            lBlock = static_cast<uint8_t*>(std::malloc(specSizeL));
            EXPECT_EQ(lumiErodeInit_L(roi, mask.m.data(), ms, lBlock), lumStatusOk);
        } else {
            lBlock = static_cast<uint8_t*>(std::malloc(kPlanInL + specSize));
            const int32_t head[2] = {8, kPlanInL};
            std::memcpy(lBlock, head, 8);
            std::memset(lBlock + 8, 0xEE, kPlanInL - 8);
            EXPECT_EQ(lumiMorphologyBorderInit_1u_C1R(roi, mask.m.data(), ms, lBlock + kPlanInL, initBuffer.data()),
                      lumStatusOk);
        }
        bufferBlock = static_cast<uint8_t*>(std::malloc(bufferLead + bufferSize));
        std::memset(bufferBlock, 0x5A, bufferLead + bufferSize);
        buffer = bufferBlock + bufferLead;
    }
    ~SpecAndBuffer() {
        std::free(specBlock);
        std::free(lBlock);
        std::free(bufferBlock);
    }
    SpecAndBuffer(const SpecAndBuffer&) = delete;
    SpecAndBuffer& operator=(const SpecAndBuffer&) = delete;
};

struct Call {
    bool erode = false;
    bool formL = false;
    int borderType = 1;
    Lum8u value = 0;
};

LumStatus run(const Call& c, BitBlock& s, BitBlock& d, LumiSize roi, SpecAndBuffer& setup) {
    const Lum8u* src = s.ptr();
    if (c.formL) {
        return c.erode ? LUMTEST_NOALLOC(lumiErode_1u_C1R_L, (src, s.step, s.bitOffset, d.ptr(), d.step, d.bitOffset, roi,
                                                             c.borderType, &c.value, setup.lBlock, setup.buffer))
                       : LUMTEST_NOALLOC(lumiDilate_1u_C1R_L, (src, s.step, s.bitOffset, d.ptr(), d.step, d.bitOffset,
                                                              roi, c.borderType, &c.value, setup.lBlock, setup.buffer));
    }
    return c.erode ? LUMTEST_NOALLOC(lumiErodeBorder_1u_C1R, (src, s.step, s.bitOffset, d.ptr(), d.step, d.bitOffset, roi,
                                                             c.borderType, c.value, setup.specBlock, setup.buffer))
                   : LUMTEST_NOALLOC(lumiDilateBorder_1u_C1R, (src, s.step, s.bitOffset, d.ptr(), d.step, d.bitOffset,
                                                              roi, c.borderType, c.value, setup.specBlock, setup.buffer));
}

// Kinds: empty (a copy), full rectangle, scattered elements, every row the
// same run away from column 0, every row one run of its own (diamonds and
// disks are of this kind).
Mask randomMask(int w, int h, Rng& rng) {
    Mask m;
    m.w = w;
    m.h = h;
    m.m.assign(static_cast<size_t>(w) * h, 0);
    const int kind = rng.uniform(0, 11);
    auto on = [&] { return static_cast<uint8_t>(rng.uniform(1, 255)); };
    if (kind == 0) return m;
    if (kind <= 3) {
        for (uint8_t& v : m.m) v = on();
    } else if (kind <= 7) {
        for (uint8_t& v : m.m) v = rng.chance(kind <= 5 ? 0.6 : 0.3) ? on() : 0;
    } else if (kind <= 9) {
        const int a = rng.uniform(0, w - 1), b = rng.uniform(a, w - 1);
        for (int i = 0; i < h; ++i)
            for (int j = a; j <= b; ++j) m.m[static_cast<size_t>(i) * w + j] = on();
    } else {
        for (int i = 0; i < h; ++i) {
            const int a = rng.uniform(0, w - 1), b = rng.uniform(a, w - 1);
            for (int j = a; j <= b; ++j) m.m[static_cast<size_t>(i) * w + j] = on();
        }
    }
    return m;
}

int randomBorder(Rng& rng) {
    static const int kLow[] = {1, 5, 6};
    if (rng.chance(0.15)) return rng.chance(0.5) ? 240 : 240 | 3840;  // all sides in memory
    int word = kLow[rng.uniform(0, 2)];
    for (int side = 0; side < 4; ++side) {
        if (rng.chance(0.25)) word |= 16 << side;
        if (rng.chance(0.15)) word |= 256 << side;  // folded into the same sides
    }
    return word;
}

// One random case; returns false after reporting a mismatch. A tight case
// has source and destination blocks that end with the ROI's last byte and
// start with its first, and no memory around the source.
bool oneCase(Rng& rng, int w, int h, const Mask& mask, const Call& call, bool tight = false) {
    const int margin = tight ? 0 : 4;
    // Bit offsets mostly 0..15, sometimes far into the row.
    auto offset = [&] { return rng.chance(0.9) ? rng.uniform(0, 15) : rng.uniform(16, 300); };
    BitBlock s(w, h, margin, offset(), tight ? 0 : rng.uniform(1, 3), tight ? 0 : rng.uniform(0, 3), rng,
               tight ? 0 : 16);
    BitBlock d(w, h, 0, offset(), tight ? 0 : rng.uniform(0, 2), tight ? 0 : rng.uniform(0, 3), rng, tight ? 0 : 16);
    const std::vector<uint8_t> srcBefore = s.bytes;
    const LumiSize roi{w, h};
    SpecAndBuffer setup(roi, mask, rng.uniform(0, 31), call.formL && rng.chance(0.5));
    const int folded = ((call.borderType & 3840) >> 4) | (call.borderType & 255);
    const bool fill = (folded & 15) == 5 ? call.erode : call.value != 0;
    const std::vector<uint8_t> want = reference(s, mask, call.erode, call.borderType, fill);
    BitBlock expected = d;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) expected.set(x, y, want[static_cast<size_t>(y) * w + x]);

    const LumStatus st = run(call, s, d, roi, setup);
    std::string where = "roi " + std::to_string(w) + "x" + std::to_string(h) + " mask " + std::to_string(mask.w) + "x" +
                        std::to_string(mask.h) + " border " + std::to_string(call.borderType) + " value " +
                        std::to_string(call.value) + (call.erode ? " erode" : " dilate") + (call.formL ? " _L" : " Border") +
                        " srcOff " + std::to_string(s.bitOffset) + " dstOff " + std::to_string(d.bitOffset) +
                        " srcStep " + std::to_string(s.step) + " dstStep " + std::to_string(d.step);
    EXPECT_EQ(st, lumStatusOk) << where;
    EXPECT_TRUE(s.bytes == srcBefore) << "source changed: " << where;
    if (d.bytes != expected.bytes) {
        for (size_t i = 0; i < d.bytes.size(); ++i)
            if (d.bytes[i] != expected.bytes[i]) {
                ADD_FAILURE() << "byte " << static_cast<long>(i) - static_cast<long>(d.first) << " got " << +d.bytes[i]
                              << " want " << +expected.bytes[i] << ": " << where;
                break;
            }
        return false;
    }
    return st == lumStatusOk;
}

// ------------------------------------------------------------ sweeps

TEST(ErodeDilate1u, RandomMasksWidthsOffsetsBorders) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int n = 0; n < 1500; ++n) {
        const Mask mask = randomMask(rng.uniform(1, 7), rng.uniform(1, 7), rng);
        const int w = rng.chance(0.5) ? rng.uniform(1, 130) : rng.uniform(1, 12);
        const int h = rng.uniform(1, 10);
        Call c;
        c.erode = rng.chance(0.5);
        c.formL = rng.chance(0.5);
        c.borderType = randomBorder(rng);
        c.value = rng.chance(0.5) ? 0 : static_cast<Lum8u>(rng.uniform(1, 255));
        if (!oneCase(rng, w, h, mask, c)) return;
    }
}

TEST(ErodeDilate1u, EveryWidthUpTo130) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w = 1; w <= 130; ++w) {
        const Mask mask = randomMask(rng.uniform(1, 7), rng.uniform(1, 7), rng);
        Call c;
        c.erode = (w & 1) != 0;
        c.formL = (w & 2) != 0;
        c.borderType = randomBorder(rng);
        c.value = static_cast<Lum8u>(rng.uniform(0, 1) * 255);
        if (!oneCase(rng, w, rng.uniform(1, 8), mask, c)) return;
    }
}

TEST(ErodeDilate1u, RoiSmallerEqualAndLargerThanMask) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int mw = 1; mw <= 7; ++mw)
        for (int mh = 1; mh <= 7; ++mh)
            for (int d = -1; d <= 1; ++d) {
                const int w = mw + d, h = mh + d;
                if (w < 1 || h < 1) continue;
                const Mask mask = randomMask(mw, mh, rng);
                Call c;
                c.erode = rng.chance(0.5);
                c.formL = rng.chance(0.5);
                c.borderType = randomBorder(rng);
                c.value = static_cast<Lum8u>(rng.uniform(0, 1));
                if (!oneCase(rng, w, h, mask, c)) return;
            }
}

// Masks wider than 64 pixels shift rows by more than one word; a wide full
// rectangle reduces rows by doubling past a word.
TEST(ErodeDilate1u, WideMasksAndRows) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int n = 0; n < 40; ++n) {
        const Mask mask = randomMask(rng.uniform(60, 140), rng.uniform(1, 3), rng);
        const int w = rng.uniform(1, 300);
        Call c;
        c.erode = rng.chance(0.5);
        c.formL = rng.chance(0.5);
        c.borderType = rng.chance(0.5) ? 1 : 6;
        c.value = static_cast<Lum8u>(rng.uniform(0, 1));
        if (!oneCase(rng, w, rng.uniform(1, 5), mask, c)) return;
    }
    for (int n = 0; n < 20; ++n) {
        const Mask mask = randomMask(rng.uniform(1, 7), rng.uniform(1, 7), rng);
        Call c;
        c.erode = rng.chance(0.5);
        c.borderType = randomBorder(rng);
        if (!oneCase(rng, rng.uniform(500, 1100), rng.uniform(8, 20), mask, c)) return;
    }
}

// Blocks that hold exactly the ROI's bytes: nothing outside is read or
// written, whatever the offsets and sizes.
TEST(ErodeDilate1u, TightBlocksWithoutMemoryBorders) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    static const int kWords[] = {1, 5, 6};
    for (int n = 0; n < 400; ++n) {
        const Mask mask = randomMask(rng.uniform(1, 7), rng.uniform(1, 7), rng);
        Call c;
        c.erode = rng.chance(0.5);
        c.formL = rng.chance(0.5);
        c.borderType = kWords[rng.uniform(0, 2)];
        c.value = static_cast<Lum8u>(rng.uniform(0, 2));
        if (!oneCase(rng, rng.uniform(1, 140), rng.uniform(1, 9), mask, c, true)) return;
    }
}

// A mask one pixel wide needs nothing left or right of the ROI, and one a
// pixel high nothing above or below: with those sides flagged as memory, a
// tight block is still never read outside.
TEST(ErodeDilate1u, ThinMasksNeedNoBorderAcross) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int n = 0; n < 100; ++n) {
        const bool column = rng.chance(0.5);
        const Mask mask = column ? randomMask(1, rng.uniform(2, 7), rng) : randomMask(rng.uniform(2, 7), 1, rng);
        Call c;
        c.erode = rng.chance(0.5);
        c.formL = rng.chance(0.5);
        c.borderType = (column ? 64 | 128 : 16 | 32) | (rng.chance(0.5) ? 1 : 6);
        c.value = 1;
        if (!oneCase(rng, rng.uniform(1, 100), rng.uniform(1, 9), mask, c, true)) return;
    }
}

// A 2 x 2 mask selects the pixel and those right of and below it.
TEST(ErodeDilate1u, TwoByTwoMaskReachesRightAndDown) {
    Rng rng(7);
    BitBlock s(12, 8, 0, 0, 0, 0, rng);
    BitBlock d(12, 8, 0, 0, 0, 0, rng);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 12; ++x) s.set(x, y, x == 5 && y == 5);
    Mask mask;
    mask.w = mask.h = 2;
    mask.m.assign(4, 1);
    SpecAndBuffer setup({12, 8}, mask, 0);
    ASSERT_EQ(lumiDilateBorder_1u_C1R(s.ptr(), s.step, 0, d.ptr(), d.step, 0, {12, 8}, 6, 0, setup.specBlock,
                                      setup.buffer),
              lumStatusOk);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 12; ++x)
            EXPECT_EQ(d.get(x, y), (x == 4 || x == 5) && (y == 4 || y == 5)) << x << "," << y;
}

// Border word 0x101 is replicate with the top read from memory, as 17 is.
TEST(ErodeDilate1u, SecondStageFlagsFoldIntoTheseSides) {
    Rng rng(11);
    Mask mask;
    mask.w = 3;
    mask.h = 5;
    mask.m.assign(15, 1);
    for (bool erode : {false, true}) {
        BitBlock s(40, 6, 4, 3, 1, 0, rng);
        BitBlock d1(40, 6, 0, 0, 0, 0, rng);
        BitBlock d2(40, 6, 0, 0, 0, 0, rng);
        BitBlock d3(40, 6, 0, 0, 0, 0, rng);
        for (int x = -1; x <= 40; ++x) {
            s.set(x, -2, !erode);
            s.set(x, -1, !erode);
            for (int y = 0; y < 6; ++y) s.set(x, y, erode);
        }
        SpecAndBuffer setup({40, 6}, mask, 0);
        auto go = [&](BitBlock& d, int word) {
            return erode ? lumiErodeBorder_1u_C1R(s.ptr(), s.step, 3, d.ptr(), d.step, 0, {40, 6}, word, 0,
                                                  setup.specBlock, setup.buffer)
                         : lumiDilateBorder_1u_C1R(s.ptr(), s.step, 3, d.ptr(), d.step, 0, {40, 6}, word, 0,
                                                   setup.specBlock, setup.buffer);
        };
        ASSERT_EQ(go(d1, 0x101), lumStatusOk);
        ASSERT_EQ(go(d2, 17), lumStatusOk);
        ASSERT_EQ(go(d3, 1), lumStatusOk);
        for (int x = 0; x < 40; ++x) EXPECT_EQ(d1.get(x, 0), d2.get(x, 0));
        bool differs = false;
        for (int x = 0; x < 40; ++x) differs |= d1.get(x, 0) != d3.get(x, 0);
        EXPECT_TRUE(differs);
    }
}

}  // namespace
