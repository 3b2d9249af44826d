// Gaussian filter: orders of checks, size formulas, block layouts, the
// documented edge cases, and the cache-bypass decision.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcore.h"
#include "lumcv.h"
#include "support/cache_size.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace {

using lumtest::Rng;

// ------------------------------------------------------------ helpers

std::vector<float> halfKernel(int k, float sigma) {
    const int r = k / 2;
    std::vector<float> w(r + 1);
    float sum = 0.0f;
    for (int i = 0; i < r; ++i) {
        const float d = static_cast<float>(r - i);
        w[i] = std::exp(-(d * d) / (sigma * (sigma + sigma)));
        sum = std::fma(w[i], 2.0f, sum);
    }
    w[r] = 1.0f;
    sum = sum + 1.0f;
    for (float& v : w) v = v * (1.0f / sum);
    return w;
}

uint32_t bitsOf(float v) {
    uint32_t b;
    std::memcpy(&b, &v, 4);
    return b;
}

int32_t wordAt(const Lum8u* p, int byteOffset) {
    int32_t v;
    std::memcpy(&v, p + byteOffset, 4);
    return v;
}

template <class T>
T* alignedTo(T* p, uintptr_t a) {
    const uintptr_t u = reinterpret_cast<uintptr_t>(p);
    return reinterpret_cast<T*>(u + ((0 - u) & (a - 1)));
}

// An aligned byte arena for blocks placed at chosen offsets.
struct Arena {
    explicit Arena(size_t n) : raw(static_cast<Lum8u*>(std::aligned_alloc(64, (n + 127) / 64 * 64))) {
        std::memset(raw, 0xA5, (n + 127) / 64 * 64);
    }
    ~Arena() { std::free(raw); }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    Lum8u* raw;
};

// A spec and buffer for the working layer.
struct WorkingSetup {
    std::vector<Lum8u> spec, buffer, scratch;
    WorkingSetup(LumiSize roi, int k, float sigma, int border, LumDataType type, int c) {
        int specSize = 0, initSize = 0, bufferSize = 0;
        EXPECT_EQ(lumiFilterGaussianGetSpecSize_L(k, type, c, &specSize, &initSize), lumStatusOk);
        EXPECT_EQ(lumiFilterGaussianGetBufferSize_L(roi.width, roi.height, k, type, border, c, &bufferSize),
                  lumStatusOk);
        spec.resize(specSize);
        buffer.resize(bufferSize);
        scratch.resize(initSize);
        EXPECT_EQ(lumiFilterGaussianInit_L(roi, k, sigma, border, type, c, spec.data(), scratch.data()), lumStatusOk);
    }
};

// A spec and buffer for the header layer.
struct HeaderSetup {
    std::vector<Lum8u> spec, buffer, scratch;
    HeaderSetup(LumiSize roi, int k, float sigma, int border, LumDataType type, int c) {
        int specSize = 0, bufferSize = 0, s2 = 0, initSize = 0;
        EXPECT_EQ(lumiFilterGaussianGetSpecSize(k, type, c, &s2, &initSize), lumStatusOk);
        EXPECT_EQ(lumiFilterGaussianGetBufferSize(roi, k, type, c, &specSize, &bufferSize), lumStatusOk);
        spec.resize(specSize);
        buffer.resize(bufferSize);
        scratch.resize(initSize);
        EXPECT_EQ(lumiFilterGaussianInit(roi, k, sigma, border, type, c, spec.data(), scratch.data()), lumStatusOk);
    }
};

// ------------------------------------------------------------ size formulas

long long specSizeL(long long k) { return 4 * ((k + 1) / 2) + 128; }
long long bufferSizeL(long long w, long long k, long long c) { return (k + 1) * ((w * c * 4 + 63) / 64 * 64) + k * 12 + 64; }

// Pipeline stage sizes as the row and column stages state them.
long long rowStage(int type, long long k, int c) {
    switch (type) {
        case 1: return c == 1 ? 34 * k + 32 * (k / 4) + 66 : 60 * k + 144;
        case 5: return c == 1 ? 64 * k + 96 : 128 * k + 96;
        case 7: return c == 1 ? 48 * k + 112 : 40 * k + 96;
        default: return c == 1 ? 48 * k + 96 : 144 * k + 96;
    }
}
long long r4(long long n) { return (n + 3) / 4 * 4; }
long long columnStage(int type, long long k, long long w, int c) {
    switch (type) {
        case 1:
        case 7: return (c == 1 ? 12 : 36) * r4(w) + 64;
        case 5: return 32 * k + 64 + 32 * ((c * w + 3) / 4);
        default: return 32 * k + 32;
    }
}
long long legacySize(int type, long long w, long long h, long long k, int c, long long columnWidth) {
    const long long m = h < k ? h : k;
    const long long L = ((k + w) * c + 7) / 8 * 8;
    const long long T = L * (k + m);
    if (type == 13) {
        const long long A = (4 * L * k) / 2;
        return 16 + A + 16 + A + 64 + 4 * T + 32 + rowStage(type, k, c) + 32 + columnStage(type, k, columnWidth, c) +
               32 + 4 * (k + m);
    }
    const long long B = 2 * L * (k / 2);
    return 16 + B + 16 + B + 64 + 2 * T + 32 + rowStage(type, k, c) + 32 + columnStage(type, k, columnWidth, c) +
           32 + 4 * (k + h);
}
long long legacyHeader(int type, long long k) { return type == 13 ? 32 + 32 * k : 36 + 16 * k; }

const LumDataType kTypes[] = {lum8u, lum16u, lum16s, lum32f};

TEST(GaussianSizes, SpecSizeOfBothForms) {
    for (LumDataType t : kTypes)
        for (int c : {1, 3})
            for (int k = 3; k <= 41; k += 2) {
                int s = -1, b = -1, sl = -1, bl = -1;
                ASSERT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetSpecSize, (k, t, c, &s, &b)), lumStatusOk);
                ASSERT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetSpecSize_L, (k, t, c, &sl, &bl)), lumStatusOk);
                EXPECT_EQ(s, specSizeL(k));
                EXPECT_EQ(b, 64);
                EXPECT_EQ(sl, s);
                EXPECT_EQ(bl, b);
            }
}

TEST(GaussianSizes, WorkingBufferSize) {
    for (LumDataType t : kTypes)
        for (int c : {1, 3})
            for (int k : {3, 5, 7, 9, 31})
                for (int w : {1, 2, 15, 16, 17, 33, 640, 1921})
                    for (int border : {240, 1, 3, 6, 6 | 64, 243}) {
                        int b = -1;
                        ASSERT_EQ(lumiFilterGaussianGetBufferSize_L(w, 7, k, t, border, c, &b), lumStatusOk);
                        EXPECT_EQ(b, bufferSizeL(w, k, c)) << w << " " << k << " " << c;
                    }
}

// The legacy sizes: the stage queries get the ROI width and m rows; the last
// piece counts the full height for 8u, 16u and 16s but m for 32f.
TEST(GaussianSizes, CombinedQueryTakesTheLargestAndAddsTheLegacyHeader) {
    for (LumDataType t : kTypes)
        for (int c : {1, 3})
            for (int k : {3, 5, 7, 11, 25})
                for (int w : {1, 5, 64, 333})
                    for (int h : {1, 2, 6, 40, 1000}) {
                        int s = -1, b = -1;
                        ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, h}, k, t, c, &s, &b), lumStatusOk);
                        EXPECT_EQ(s, legacyHeader(t, k) + specSizeL(k));
                        long long want = legacySize(t, w, h, k, c, w);
                        if (bufferSizeL(w, k, c) > want) want = bufferSizeL(w, k, c);
                        if (64 > want) want = 64;
                        EXPECT_EQ(b, want) << "type " << t << " c " << c << " k " << k << " w " << w << " h " << h;
                    }
}

TEST(GaussianSizes, ChoiceLegacyColumnQueryUsesRoiWidth) {
    // 16u and the 16s family size their column stage by width: the ROI's
    // width, not the legacy row length L.
    for (LumDataType t : {lum8u, lum16u, lum16s})
        for (int c : {1, 3}) {
            const int w = 301, h = 9, k = 7;
            int s = 0, b = 0;
            ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, h}, k, t, c, &s, &b), lumStatusOk);
            const long long L = ((k + w) * c + 7) / 8 * 8;
            EXPECT_EQ(b, legacySize(t, w, h, k, c, w));
            EXPECT_NE(b, legacySize(t, w, h, k, c, L));
        }
}

TEST(GaussianSizes, LegacySizeCountsHeightForIntegersAndMFor32f) {
    const int w = 20, k = 5;
    int s = 0, b1 = 0, b2 = 0;
    // Heights above k: only the integer types still grow with the height.
    for (LumDataType t : {lum8u, lum16u, lum16s}) {
        ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, 100}, k, t, 1, &s, &b1), lumStatusOk);
        ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, 200}, k, t, 1, &s, &b2), lumStatusOk);
        EXPECT_EQ(b2 - b1, 400);
    }
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, 100}, k, lum32f, 1, &s, &b1), lumStatusOk);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({w, 200}, k, lum32f, 1, &s, &b2), lumStatusOk);
    EXPECT_EQ(b2, b1);
}

TEST(GaussianSizes, QueriesFailWithoutTouchingTheirResults) {
    int s = 7, b = 9;
    EXPECT_EQ(lumiFilterGaussianGetBufferSize({0, 1}, 3, lum8u, 1, &s, &b), lumStatusBadSize);
    EXPECT_EQ(lumiFilterGaussianGetSpecSize(4, lum8u, 1, &s, &b), lumStatusBadArgument);
    EXPECT_EQ(lumiFilterGaussianGetBufferSize_L(1, 1, 3, lum8u, 0, 1, &b), lumStatusBadBorderType);
    EXPECT_EQ(s, 7);
    EXPECT_EQ(b, 9);
}

// ------------------------------------------------------------ orders of checks

const LumDataType kBadType = static_cast<LumDataType>(3);

TEST(GaussianChecks, OrderOfSpecSizeQueries) {
    int s = 0, b = 0;
    for (auto fn : {lumiFilterGaussianGetSpecSize, lumiFilterGaussianGetSpecSize_L}) {
        EXPECT_EQ(fn(0, kBadType, 0, nullptr, &b), lumStatusNullPointer);
        EXPECT_EQ(fn(0, kBadType, 0, &s, nullptr), lumStatusNullPointer);
        EXPECT_EQ(fn(1, kBadType, 0, &s, &b), lumStatusBadArgument);
        EXPECT_EQ(fn(4, kBadType, 0, &s, &b), lumStatusBadArgument);
        EXPECT_EQ(fn(3, kBadType, 0, &s, &b), lumStatusBadDataType);
        EXPECT_EQ(fn(3, static_cast<LumDataType>(11), 0, &s, &b), lumStatusBadDataType);
        EXPECT_EQ(fn(3, lum16s, 2, &s, &b), lumStatusBadChannelCount);
        EXPECT_EQ(fn(3, lum16s, 3, &s, &b), lumStatusOk);
    }
}

TEST(GaussianChecks, OrderOfWorkingBufferQuery) {
    int b = 0;
    auto q = lumiFilterGaussianGetBufferSize_L;
    EXPECT_EQ(q(0, 0, 0, kBadType, 0, 0, nullptr), lumStatusNullPointer);
    EXPECT_EQ(q(0, 1, 0, kBadType, 0, 0, &b), lumStatusBadSize);
    EXPECT_EQ(q(1, 0, 0, kBadType, 0, 0, &b), lumStatusBadSize);
    EXPECT_EQ(q(1, 1, 2, kBadType, 0, 0, &b), lumStatusBadArgument);
    EXPECT_EQ(q(1, 1, 3, kBadType, 0, 0, &b), lumStatusBadDataType);
    EXPECT_EQ(q(1, 1, 3, lum32f, 0, 0, &b), lumStatusBadChannelCount);
    EXPECT_EQ(q(1, 1, 3, lum32f, 0, 1, &b), lumStatusBadBorderType);
    EXPECT_EQ(q(1, 1, 3, lum32f, 256 | 1, 1, &b), lumStatusBadBorderType);
    EXPECT_EQ(q(1, 1, 3, lum32f, 5, 1, &b), lumStatusBadBorderType);
    EXPECT_EQ(q(1, 1, 3, lum32f, 244, 1, &b), lumStatusOk);
}

TEST(GaussianChecks, OrderOfCombinedBufferQuery) {
    int s = 0, b = 0;
    auto q = lumiFilterGaussianGetBufferSize;
    EXPECT_EQ(q({0, 0}, 0, kBadType, 0, nullptr, &b), lumStatusNullPointer);
    EXPECT_EQ(q({0, 0}, 0, kBadType, 0, &s, nullptr), lumStatusNullPointer);
    EXPECT_EQ(q({1, 0}, 0, kBadType, 0, &s, &b), lumStatusBadSize);
    EXPECT_EQ(q({1, 1}, -3, kBadType, 0, &s, &b), lumStatusBadArgument);
    EXPECT_EQ(q({1, 1}, 3, kBadType, 0, &s, &b), lumStatusBadDataType);
    EXPECT_EQ(q({1, 1}, 3, lum8u, 4, &s, &b), lumStatusBadChannelCount);
    EXPECT_EQ(q({1, 1}, 3, lum8u, 1, &s, &b), lumStatusOk);
}

// Init: pointers, sizes, kernel size, data type, channels, sigma, border; the
// working layer accepts any word with all four flags, the header Init only
// exactly 240 among the words without a border type.
TEST(GaussianChecks, OrderOfBothInits) {
    Lum8u spec[512], scratch[64];
    for (auto init : {lumiFilterGaussianInit, lumiFilterGaussianInit_L}) {
        EXPECT_EQ(init({0, 0}, 0, 0.0f, 0, kBadType, 0, nullptr, scratch), lumStatusNullPointer);
        EXPECT_EQ(init({0, 0}, 0, 0.0f, 0, kBadType, 0, spec, nullptr), lumStatusNullPointer);
        EXPECT_EQ(init({0, 5}, 0, 0.0f, 0, kBadType, 0, spec, scratch), lumStatusBadSize);
        EXPECT_EQ(init({5, 5}, 6, 0.0f, 0, kBadType, 0, spec, scratch), lumStatusBadArgument);
        EXPECT_EQ(init({5, 5}, 5, 0.0f, 0, kBadType, 0, spec, scratch), lumStatusBadDataType);
        EXPECT_EQ(init({5, 5}, 5, 0.0f, 0, lum16u, 0, spec, scratch), lumStatusBadChannelCount);
        EXPECT_EQ(init({5, 5}, 5, 0.0f, 0, lum16u, 1, spec, scratch), lumStatusBadArgument);
        EXPECT_EQ(init({5, 5}, 5, -1.0f, 0, lum16u, 1, spec, scratch), lumStatusBadArgument);
        EXPECT_EQ(init({5, 5}, 5, std::nanf(""), 0, lum16u, 1, spec, scratch), lumStatusBadArgument);
        EXPECT_EQ(init({5, 5}, 5, 1.0f, 0, lum16u, 1, spec, scratch), lumStatusBadBorderType);
        EXPECT_EQ(init({5, 5}, 5, 1.0f, 496, lum16u, 1, spec, scratch), lumStatusBadBorderType);
        EXPECT_EQ(init({5, 5}, 5, 1.0f, 6, lum16u, 1, spec, scratch), lumStatusOk);
    }
}

TEST(GaussianChecks, Border243PassesTheWorkingLayerAnd240PassesBoth) {
    Lum8u spec[512], scratch[64];
    for (int word : {240, 241, 243, 246})
        EXPECT_EQ(lumiFilterGaussianInit({4, 4}, 3, 1.0f, word, lum8u, 1, spec, scratch), lumStatusOk) << word;
    for (int word : {240, 241, 242, 243, 244, 245, 247, 255})
        EXPECT_EQ(lumiFilterGaussianInit_L({4, 4}, 3, 1.0f, word, lum8u, 1, spec, scratch), lumStatusOk) << word;
    for (int word : {242, 244, 245, 247, 255, 16 | 32 | 64})
        EXPECT_EQ(lumiFilterGaussianInit({4, 4}, 3, 1.0f, word, lum8u, 1, spec, scratch), lumStatusBadBorderType)
            << word;
    // Type 0 with fewer than four flags, type 2, type 5: refused everywhere.
    for (int word : {0, 16, 2, 5, 2 | 64, 5 | 16 | 32})
        EXPECT_EQ(lumiFilterGaussianInit_L({4, 4}, 3, 1.0f, word, lum8u, 1, spec, scratch), lumStatusBadBorderType)
            << word;
}

TEST(GaussianChecks, SigmaZeroIsRefused) {
    Lum8u spec[512], scratch[64];
    EXPECT_EQ(lumiFilterGaussianInit_L({4, 4}, 3, 0.0f, 1, lum8u, 1, spec, scratch), lumStatusBadArgument);
    EXPECT_EQ(lumiFilterGaussianInit({4, 4}, 3, 0.0f, 1, lum8u, 1, spec, scratch), lumStatusBadArgument);
    EXPECT_EQ(lumiFilterGaussianInit({4, 4}, 3, -0.0f, 1, lum8u, 1, spec, scratch), lumStatusBadArgument);
}

// The working filter: pointers, steps against the row bytes (before the
// sizes), sizes, step alignment, border word, border value for code 6, the
// spec's kernel size. One row per check.
TEST(GaussianChecks, OrderOfWorkingFilter16u) {
    WorkingSetup s({4, 3}, 5, 1.0f, 1, lum16u, 1);
    std::vector<Lum16u> img(64);
    const Lum16u* p = img.data();
    Lum16u* q = img.data();
    Lum8u* sp = s.spec.data();
    Lum8u* bf = s.buffer.data();
    std::vector<Lum8u> badSpec = s.spec;
    badSpec[0] = 4;  // kernel size 4
    const Lum16u v = 7;
    struct Case {
        const Lum16u* src;
        int ss;
        Lum16u* dst;
        int ds;
        LumiSize roi;
        int border;
        const Lum16u* value;
        const Lum8u* spec;
        Lum8u* buf;
        LumStatus want;
    } cases[] = {
        {nullptr, 8, q, 8, {4, 3}, 1, nullptr, sp, bf, lumStatusNullPointer},
        {p, 8, nullptr, 8, {4, 3}, 1, nullptr, sp, bf, lumStatusNullPointer},
        {p, 8, q, 8, {4, 3}, 1, nullptr, sp, nullptr, lumStatusNullPointer},
        {p, 8, q, 8, {4, 3}, 1, nullptr, nullptr, bf, lumStatusNullPointer},
        {p, 7, q, 8, {4, 0}, 1, nullptr, sp, bf, lumStatusBadStep},   // steps before sizes
        {p, 8, q, 6, {4, -1}, 1, nullptr, sp, bf, lumStatusBadStep},
        {p, -1, q, 8, {0, 3}, 1, nullptr, sp, bf, lumStatusBadStep},  // zero-width row: a negative step still fails
        {p, 0, q, 0, {0, 3}, 1, nullptr, sp, bf, lumStatusBadSize},
        {p, 8, q, 8, {4, 0}, 1, nullptr, sp, bf, lumStatusBadSize},
        {p, 9, q, 8, {4, 3}, 1, nullptr, sp, bf, lumStatusStepNotAligned},
        {p, 8, q, 11, {4, 3}, 1, nullptr, sp, bf, lumStatusStepNotAligned},
        {p, 8, q, 8, {4, 3}, 256 | 1, nullptr, sp, bf, lumStatusBadBorderType},
        {p, 8, q, 8, {4, 3}, 2, nullptr, sp, bf, lumStatusBadBorderType},
        {p, 8, q, 8, {4, 3}, 6, nullptr, sp, bf, lumStatusNullPointer},
        {p, 8, q, 8, {4, 3}, 6 | 240, nullptr, sp, bf, lumStatusNullPointer},
        {p, 8, q, 8, {4, 3}, 6, &v, badSpec.data(), bf, lumStatusBadArgument},
        {p, 8, q, 8, {4, 3}, 1, nullptr, badSpec.data(), bf, lumStatusBadArgument},
        {p, 8, q, 8, {4, 3}, 1, nullptr, sp, bf, lumStatusOk},
        {p, 8, q, 8, {4, 3}, 6, &v, sp, bf, lumStatusOk},
    };
    int row = 0;
    for (const Case& c : cases) {
        EXPECT_EQ(lumiFilterGaussian_16u_C1R_L(c.src, c.ss, c.dst, c.ds, c.roi, c.border, c.value, c.spec, c.buf),
                  c.want)
            << "row " << row;
        ++row;
    }
}

TEST(GaussianChecks, OrderOfWorkingFilter8uC3HasNoAlignmentTest) {
    WorkingSetup s({2, 2}, 3, 1.0f, 1, lum8u, 3);
    std::vector<Lum8u> img(64);
    EXPECT_EQ(lumiFilterGaussian_8u_C3R_L(img.data(), 5, img.data(), 7, {2, 2}, 1, nullptr, s.spec.data(),
                                          s.buffer.data()),
              lumStatusBadStep);
    EXPECT_EQ(lumiFilterGaussian_8u_C3R_L(img.data(), 7, img.data(), 9, {2, 2}, 1, nullptr, s.spec.data(),
                                          s.buffer.data()),
              lumStatusOk);
    EXPECT_EQ(lumiFilterGaussian_8u_C3R_L(img.data(), 7, img.data(), 9, {2, 2}, 6, nullptr, s.spec.data(),
                                          s.buffer.data()),
              lumStatusNullPointer);
}

// The header layer: pointers, its own step rule (src step below 1, dst step
// not above 0), then the legacy size computation (ROI, kernel size of the
// spec), then the working layer's checks.
TEST(GaussianChecks, OrderOfHeaderFilter32f) {
    HeaderSetup s({4, 3}, 5, 1.0f, 1, lum32f, 1);
    std::vector<Lum32f> img(64);
    const Lum32f* p = img.data();
    Lum32f* q = img.data();
    Lum8u* sp = s.spec.data();
    Lum8u* bf = s.buffer.data();
    std::vector<Lum8u> badSpec = s.spec;
    badSpec[0] = 1;
    const Lum32f v = 1.5f;
    auto f = lumiFilterGaussian_32f_C1R;
    EXPECT_EQ(f(nullptr, 0, q, 0, {0, 0}, 0, nullptr, sp, bf), lumStatusNullPointer);
    EXPECT_EQ(f(p, 0, nullptr, 0, {0, 0}, 0, nullptr, sp, bf), lumStatusNullPointer);
    EXPECT_EQ(f(p, 0, q, 0, {0, 0}, 0, nullptr, nullptr, bf), lumStatusNullPointer);
    EXPECT_EQ(f(p, 0, q, 0, {0, 0}, 0, nullptr, sp, nullptr), lumStatusNullPointer);
    EXPECT_EQ(f(p, 0, q, 16, {0, 0}, 0, nullptr, sp, bf), lumStatusBadStep);   // src step below 1
    EXPECT_EQ(f(p, 16, q, 0, {0, 0}, 0, nullptr, sp, bf), lumStatusBadStep);   // dst step not above 0
    EXPECT_EQ(f(p, 1, q, 1, {0, 3}, 0, nullptr, sp, bf), lumStatusBadSize);    // before the row bytes
    EXPECT_EQ(f(p, 1, q, 1, {4, 3}, 0, nullptr, badSpec.data(), bf), lumStatusBadArgument);
    EXPECT_EQ(f(p, 1, q, 16, {4, 3}, 0, nullptr, sp, bf), lumStatusBadStep);  // working layer from here
    EXPECT_EQ(f(p, 18, q, 16, {4, 3}, 0, nullptr, sp, bf), lumStatusStepNotAligned);
    EXPECT_EQ(f(p, 16, q, 16, {4, 3}, 0, nullptr, sp, bf), lumStatusBadBorderType);
    EXPECT_EQ(f(p, 16, q, 16, {4, 3}, 6, nullptr, sp, bf), lumStatusNullPointer);
    EXPECT_EQ(f(p, 16, q, 16, {4, 3}, 6, &v, sp, bf), lumStatusOk);
    // The working layer with the same zero steps reports the size instead.
    WorkingSetup w({4, 3}, 5, 1.0f, 1, lum32f, 1);
    EXPECT_EQ(lumiFilterGaussian_32f_C1R_L(p, 0, q, 0, {0, 3}, 1, nullptr, w.spec.data(), w.buffer.data()),
              lumStatusBadSize);
}

TEST(GaussianChecks, OrderOfBorderForms) {
    HeaderSetup s({4, 3}, 3, 1.0f, 6, lum16s, 3);
    std::vector<Lum16s> img(64);
    const Lum16s v[3] = {1, 2, 3};
    // A null spec comes first of all.
    EXPECT_EQ(lumiFilterGaussianBorder_16s_C3R(nullptr, 0, nullptr, 0, {0, 0}, nullptr, nullptr, nullptr),
              lumStatusNullPointer);
    EXPECT_EQ(lumiFilterGaussianBorder_16s_C3R(img.data(), 24, img.data(), 24, {4, 3}, v, s.spec.data(), nullptr),
              lumStatusNullPointer);
    // The header's word is 6: the value pointer is needed.
    EXPECT_EQ(lumiFilterGaussianBorder_16s_C3R(img.data(), 24, img.data(), 24, {4, 3}, nullptr, s.spec.data(),
                                               s.buffer.data()),
              lumStatusNullPointer);
    EXPECT_EQ(lumiFilterGaussianBorder_16s_C3R(img.data(), 24, img.data(), 24, {4, 3}, v, s.spec.data(),
                                               s.buffer.data()),
              lumStatusOk);
}

// Border word 240 + 256 in a header is above 255 and refused by the filter.
TEST(GaussianChecks, BorderWordAbove255FromTheHeaderIsRefused) {
    HeaderSetup s({4, 3}, 3, 1.0f, 240, lum8u, 1);
    const int32_t word = 240 + 256;
    std::memcpy(s.spec.data() + 12, &word, 4);
    std::vector<Lum8u> img(64);
    EXPECT_EQ(lumiFilterGaussianBorder_8u_C1R(img.data(), 4, img.data(), 4, {4, 3}, 0, s.spec.data(),
                                              s.buffer.data()),
              lumStatusBadBorderType);
}

TEST(GaussianChecks, NullBorderValueIsHarmlessWithoutTheConstantBorder) {
    WorkingSetup s({4, 3}, 3, 1.0f, 1, lum32f, 3);
    std::vector<Lum32f> img(64, 1.0f), out(64);
    EXPECT_EQ(lumiFilterGaussian_32f_C3R_L(img.data(), 48, out.data(), 48, {4, 3}, 1, nullptr, s.spec.data(),
                                           s.buffer.data()),
              lumStatusOk);
    EXPECT_EQ(lumiFilterGaussian_32f_C3R_L(img.data(), 48, out.data(), 48, {4, 3}, 6, nullptr, s.spec.data(),
                                           s.buffer.data()),
              lumStatusNullPointer);
}

TEST(GaussianChecks, FailedCheckWritesNothing) {
    WorkingSetup s({4, 3}, 3, 1.0f, 1, lum8u, 1);
    std::vector<Lum8u> img(64, 9), out(64, 77);
    const std::vector<Lum8u> buffer = s.buffer;
    EXPECT_EQ(lumiFilterGaussian_8u_C1R_L(img.data(), 4, out.data(), 4, {4, 3}, 4, nullptr, s.spec.data(),
                                          s.buffer.data()),
              lumStatusBadBorderType);
    for (Lum8u x : out) EXPECT_EQ(x, 77);
    EXPECT_EQ(s.buffer, buffer);
}

// ------------------------------------------------------------ layouts

// The working block: kernelSize, 64, dataType, an unwritten word, zero; the
// half kernel at the first 64-byte boundary in memory behind the 20 bytes.
TEST(GaussianLayout, ChoiceWorkingTableAlignedInMemoryNotFromBlockStart) {
    for (int k : {3, 5, 9, 31})
        for (int offset = 0; offset < 64; offset += 3) {
            Arena a(1024);
            Lum8u* spec = a.raw + offset;
            Lum8u scratch[64];
            ASSERT_EQ(lumiFilterGaussianInit_L({9, 9}, k, 1.7f, 3, lum16s, 3, spec, scratch), lumStatusOk);
            EXPECT_EQ(wordAt(spec, 0), k);
            EXPECT_EQ(wordAt(spec, 4), 64);
            EXPECT_EQ(wordAt(spec, 8), 7);
            EXPECT_EQ(static_cast<uint32_t>(wordAt(spec, 12)), 0xA5A5A5A5u);  // not written
            EXPECT_EQ(wordAt(spec, 16), 0);
            const Lum8u* table = alignedTo(spec + 20, 64);
            const std::vector<float> w = halfKernel(k, 1.7f);
            for (int i = 0; i <= k / 2; ++i) {
                float got;
                std::memcpy(&got, table + 4 * i, 4);
                EXPECT_EQ(bitsOf(got), bitsOf(w[i])) << "k " << k << " offset " << offset << " tap " << i;
            }
            // Nothing past the reported size.
            int specSize = 0, initSize = 0;
            lumiFilterGaussianGetSpecSize_L(k, lum16s, 3, &specSize, &initSize);
            for (int i = offset + specSize; i < 1024; ++i) ASSERT_EQ(a.raw[i], 0xA5) << i;
            for (int i = 0; i < offset; ++i) ASSERT_EQ(a.raw[i], 0xA5) << i;
        }
}

// The legacy full kernel, computed as the header Init states it.
std::vector<float> legacyKernel(int k, float sigma) {
    std::vector<float> w(k);
    float sum = 0.0f;
    for (int i = 0; i < k; ++i) {
        const float d = static_cast<float>(i - k / 2);
        w[i] = std::exp(-(d * d) / ((sigma + sigma) * sigma));
        sum = sum + w[i];
    }
    for (float& v : w) v = v / sum;
    return w;
}

int16_t legacyFixed(float q, double scale) {
    const double v = static_cast<double>(q) * scale + 0.5;
    if (std::isnan(v)) return 0;  // integer indefinite 0x80000000 has zero low bits
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(static_cast<int32_t>(v)) & 0xFFFF));
}

void checkHeaderBlock(LumDataType t, int k, float sigma, int border, int offset) {
    Arena a(4096);
    Lum8u* spec = a.raw + offset;
    Lum8u scratch[64];
    ASSERT_EQ(lumiFilterGaussianInit({7, 5}, k, sigma, border, t, 1, spec, scratch), lumStatusOk);
    const int shift = t == lum8u ? 12 : (t == lum32f ? 0 : 15);
    const int header = t == lum32f ? 32 + 32 * k : 36 + 16 * k;
    EXPECT_EQ(wordAt(spec, 0), k);
    EXPECT_EQ(wordAt(spec, 4), 20);
    EXPECT_EQ(wordAt(spec, 8), t);
    EXPECT_EQ(wordAt(spec, 12), border);
    EXPECT_EQ(wordAt(spec, 16), shift);
    const Lum8u* table = alignedTo(spec + 20, 16);
    const std::vector<float> w = legacyKernel(k, sigma);
    for (int i = 0; i < k; ++i) {
        if (t == lum32f) {
            for (int lane = 0; lane < 8; ++lane) {
                const Lum8u* at = table + 32 * i + 4 * lane;
                // Bytes at the working block belong to it.
                const int room = static_cast<int>(spec + header - at);
                if (room <= 0) continue;
                Lum8u want[4];
                std::memcpy(want, &w[i], 4);
                for (int b = 0; b < 4 && b < room; ++b) EXPECT_EQ(at[b], want[b]) << "tap " << i << " lane " << lane;
            }
        } else {
            int16_t got;
            std::memcpy(&got, table + 2 * i, 2);
            EXPECT_EQ(got, legacyFixed(w[i], t == lum8u ? 4096.0 : 32768.0)) << "tap " << i;
        }
    }
    // The working block right behind the header.
    const Lum8u* block = spec + header;
    EXPECT_EQ(wordAt(block, 0), k);
    EXPECT_EQ(wordAt(block, 4), 64);
    EXPECT_EQ(wordAt(block, 8), t);
    EXPECT_EQ(wordAt(block, 16), 0);
    const std::vector<float> half = halfKernel(k, sigma);
    const Lum8u* ht = alignedTo(block + 20, 64);
    for (int i = 0; i <= k / 2; ++i) {
        float got;
        std::memcpy(&got, ht + 4 * i, 4);
        EXPECT_EQ(bitsOf(got), bitsOf(half[i]));
    }
    int specSize = 0, bufferSize = 0;
    lumiFilterGaussianGetBufferSize({7, 5}, k, t, 1, &specSize, &bufferSize);
    for (int i = offset + specSize; i < 4096; ++i) ASSERT_EQ(a.raw[i], 0xA5) << i;
}

TEST(GaussianLayout, HeaderBlockLegacyTableAndWorkingBlockBehindIt) {
    for (LumDataType t : kTypes)
        for (int k : {3, 5, 7, 15})
            for (int offset : {0, 4, 9, 16, 27, 32, 48, 60})
                checkHeaderBlock(t, k, 0.3f + 0.25f * k, t == lum32f ? 240 : 3, offset);
}

// A 32f legacy table that starts 33 to 35 bytes into the block would reach
// up to 3 bytes into the working block; those bytes are the working block's.
TEST(GaussianLayout, ChoiceLegacy32fTableStopsAtTheWorkingBlock) {
    for (int offset : {13, 14, 15, 29, 45, 61}) checkHeaderBlock(lum32f, 5, 1.1f, 1, offset);
}

// With sigma so small that (sigma + sigma) sigma is zero, the centre of the
// legacy kernel is 0/0: every tap divides by a NaN sum.
TEST(GaussianLayout, ChoiceLegacyTableOfNanWeightsIsZero) {
    const float sigma = 1e-30f;
    ASSERT_EQ((sigma + sigma) * sigma, 0.0f);
    for (LumDataType t : kTypes) checkHeaderBlock(t, 5, sigma, 1, 0);
}

// ------------------------------------------------------------ edge cases

template <class T>
constexpr LumDataType dataTypeOfHelper() {
    if constexpr (std::is_same_v<T, Lum8u>) return lum8u;
    else if constexpr (std::is_same_v<T, Lum16u>) return lum16u;
    else if constexpr (std::is_same_v<T, Lum16s>) return lum16s;
    else return lum32f;
}

template <class T>
std::vector<T> randomImage(int n, Rng& rng) {
    std::vector<T> v(n);
    for (T& x : v) {
        if constexpr (std::is_same_v<T, float>) x = static_cast<float>(rng.uniformReal(-100.0, 100.0));
        else x = static_cast<T>(rng.uniform(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
    return v;
}

template <class T>
using LFn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

template <class T>
void expectCopyWithTinySigma(LFn<T> f, int c, Rng& rng) {
    const int w = 23, h = 7;
    for (float sigma : {1e-3f, 1e-20f}) {
        const std::vector<float> half = halfKernel(3, sigma);
        ASSERT_EQ(half[0], 0.0f);
        WorkingSetup s({w, h}, 3, sigma, 3, dataTypeOfHelper<T>(), c);
        const std::vector<T> src = randomImage<T>(w * h * c, rng);
        std::vector<T> dst(src.size());
        const int step = w * c * static_cast<int>(sizeof(T));
        ASSERT_EQ(f(src.data(), step, dst.data(), step, {w, h}, 3, nullptr, s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        EXPECT_EQ(std::memcmp(src.data(), dst.data(), src.size() * sizeof(T)), 0);
    }
}


TEST(GaussianEdges, KernelThreeWithTinySigmaCopiesTheImage) {
    Rng rng;
    expectCopyWithTinySigma<Lum8u>(lumiFilterGaussian_8u_C1R_L, 1, rng);
    expectCopyWithTinySigma<Lum8u>(lumiFilterGaussian_8u_C3R_L, 3, rng);
    expectCopyWithTinySigma<Lum16u>(lumiFilterGaussian_16u_C1R_L, 1, rng);
    expectCopyWithTinySigma<Lum16s>(lumiFilterGaussian_16s_C3R_L, 3, rng);
    expectCopyWithTinySigma<Lum32f>(lumiFilterGaussian_32f_C1R_L, 1, rng);
    expectCopyWithTinySigma<Lum32f>(lumiFilterGaussian_32f_C3R_L, 3, rng);
}

// One row and mirror: every ring row is row 0, as with replicate.
TEST(GaussianEdges, OneRowImageWithMirrorUsesRowZeroForEverySlot) {
    Rng rng;
    for (int k : {3, 5, 7, 9, 15}) {
        const int w = 37;
        const std::vector<Lum32f> src = randomImage<Lum32f>(w, rng);
        std::vector<Lum32f> mirrored(w), replicated(w);
        WorkingSetup s({w, 1}, k, 1.4f, 3, lum32f, 1);
        ASSERT_EQ(lumiFilterGaussian_32f_C1R_L(src.data(), 4 * w, mirrored.data(), 4 * w, {w, 1}, 3, nullptr,
                                               s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        // Horizontal borders must match too: replicate differs from mirror
        // at the ends, so compare the middle, where no border is read.
        ASSERT_EQ(lumiFilterGaussian_32f_C1R_L(src.data(), 4 * w, replicated.data(), 4 * w, {w, 1}, 1, nullptr,
                                               s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        for (int x = k / 2; x < w - k / 2; ++x) EXPECT_EQ(bitsOf(mirrored[x]), bitsOf(replicated[x])) << x;
    }
}

// An image with fewer rows than the radius: every output row takes the
// last-rows path, and still equals the rows of a taller image's filter
// whose extra rows are the mirror images.
TEST(GaussianEdges, ImageShorterThanTheRadius) {
    Rng rng;
    const int k = 11, w = 19;
    for (int h = 1; h <= 4; ++h) {
        const std::vector<Lum16u> src = randomImage<Lum16u>(w * h, rng);
        std::vector<Lum16u> a(w * h), b(w * h);
        WorkingSetup s({w, h}, k, 3.0f, 1, lum16u, 1);
        ASSERT_EQ(lumiFilterGaussian_16u_C1R_L(src.data(), 2 * w, a.data(), 2 * w, {w, h}, 1, nullptr,
                                               s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        // The same rows with replicated rows in memory above and below,
        // read through the flags 16 and 32.
        std::vector<Lum16u> tall(static_cast<size_t>(w) * (h + 2 * (k / 2)));
        for (int y = 0; y < h + 2 * (k / 2); ++y) {
            int sy = y - k / 2;
            sy = sy < 0 ? 0 : (sy >= h ? h - 1 : sy);
            std::memcpy(&tall[static_cast<size_t>(y) * w], &src[static_cast<size_t>(sy) * w], 2 * w);
        }
        ASSERT_EQ(lumiFilterGaussian_16u_C1R_L(&tall[static_cast<size_t>(k / 2) * w], 2 * w, b.data(), 2 * w,
                                               {w, h}, 1 | 16 | 32, nullptr, s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        EXPECT_EQ(a, b) << "height " << h;
    }
}

// Rows outside a constant border hold the float of the value itself, not
// a row pass of it: for 32f the two differ in the last bits.
TEST(GaussianEdges, ConstantBorderRowsHoldTheValue) {
    const int k = 5, w = 9, h = 1;
    const float sigma = 1.3f;
    const std::vector<float> half = halfKernel(k, sigma);
    // Find a value whose row pass is not exactly itself.
    float v = 0.1f;
    auto rowPassOfConstant = [&](float c) {
        float acc = (c + c) * half[0];
        acc = std::fma(c + c, half[1], acc);
        return std::fma(c, half[2], acc);
    };
    for (int i = 0; i < 1000 && rowPassOfConstant(v) == v; ++i) v = std::nextafter(v, 1.0f);
    ASSERT_NE(rowPassOfConstant(v), v);
    const float rv = rowPassOfConstant(v);
    // One row of v, constant border v: the centre ring row is the row pass,
    // the four others are v.
    std::vector<float> src(w, v), dst(w);
    WorkingSetup s({w, h}, k, sigma, 6, lum32f, 1);
    ASSERT_EQ(lumiFilterGaussian_32f_C1R_L(src.data(), 4 * w, dst.data(), 4 * w, {w, h}, 6, &v, s.spec.data(),
                                           s.buffer.data()),
              lumStatusOk);
    float acc = (v + v) * half[0];
    acc = std::fma(v + v, half[1], acc);
    const float want = std::fma(rv, half[2], acc);
    for (float x : dst) EXPECT_EQ(bitsOf(x), bitsOf(want));
    // Integer samples: the float of v is exact and narrows back to v.
    for (int value : {0, 1, 77, 200, 255}) {
        std::vector<Lum8u> s8(w * 3, static_cast<Lum8u>(value)), d8(w * 3);
        const Lum8u vv = static_cast<Lum8u>(value);
        HeaderSetup hs({w, 3}, 7, 2.0f, 6, lum8u, 1);
        ASSERT_EQ(lumiFilterGaussianBorder_8u_C1R(s8.data(), w, d8.data(), w, {w, 3}, vv, hs.spec.data(),
                                                  hs.buffer.data()),
                  lumStatusOk);
        for (Lum8u x : d8) EXPECT_EQ(x, vv);
    }
    for (int value : {-32768, -5, 0, 12345, 32767}) {
        std::vector<Lum16s> s16(w * 2, static_cast<Lum16s>(value)), d16(w * 2);
        const Lum16s vv[3] = {static_cast<Lum16s>(value), static_cast<Lum16s>(value), static_cast<Lum16s>(value)};
        WorkingSetup ws({3, 2}, 9, 2.5f, 6, lum16s, 3);
        ASSERT_EQ(lumiFilterGaussian_16s_C3R_L(s16.data(), 18, d16.data(), 18, {3, 2}, 6, vv, ws.spec.data(),
                                               ws.buffer.data()),
                  lumStatusOk);
        for (Lum16s x : d16) EXPECT_EQ(x, vv[0]);
    }
}

// With flags 64 and 128 the row pass reads the neighbours in memory: a ROI
// inside a wider image gives the same bits as the wider image's own filter
// in those columns, wherever the ROI sits.
TEST(GaussianEdges, LeftAndRightFlagsReadMemoryLikeAWiderImage) {
    Rng rng;
    for (int k : {3, 5, 7, 13}) {
        const int r = k / 2, W = 61, h = 6, c = 3;
        const std::vector<Lum8u> wide = randomImage<Lum8u>(W * h * c, rng);
        std::vector<Lum8u> whole(wide.size());
        WorkingSetup s({W, h}, k, 1.9f, 3, lum8u, c);
        ASSERT_EQ(lumiFilterGaussian_8u_C3R_L(wide.data(), W * c, whole.data(), W * c, {W, h}, 3, nullptr,
                                              s.spec.data(), s.buffer.data()),
                  lumStatusOk);
        for (int x0 = r; x0 + r < W; x0 += 5) {
            const int w = rng.uniform(1, W - r - x0);
            std::vector<Lum8u> part(static_cast<size_t>(w) * h * c);
            ASSERT_EQ(lumiFilterGaussian_8u_C3R_L(&wide[x0 * c], W * c, part.data(), w * c, {w, h}, 3 | 64 | 128,
                                                  nullptr, s.spec.data(), s.buffer.data()),
                      lumStatusOk);
            for (int y = 0; y < h; ++y)
                ASSERT_EQ(std::memcmp(&part[static_cast<size_t>(y) * w * c], &whole[(static_cast<size_t>(y) * W + x0) * c],
                                      static_cast<size_t>(w) * c),
                          0)
                    << "k " << k << " x0 " << x0 << " w " << w << " y " << y;
        }
    }
}

// Sums of five and more taps: the outermost pair times its weight first,
// then the pairs inward by fused multiply-add, the centre last. One row of
// 32f samples with mirror borders: every ring row is the same row.
TEST(GaussianEdges, ChoiceGeneralSumsPairsOutermostFirstThenCentre) {
    const int k = 5, w = 5;
    const float sigma = 0.8f;
    const std::vector<float> h = halfKernel(k, sigma);
    const float src[w] = {0.1f, 1e7f, 3.3f, -1e7f, 0.7f};
    auto pairsFirst = [&](const float* t) {
        float acc = (t[0] + t[4]) * h[0];
        acc = std::fma(t[1] + t[3], h[1], acc);
        return std::fma(t[2], h[2], acc);
    };
    auto centreFirst = [&](const float* t) {
        float acc = t[2] * h[2];
        acc = std::fma(t[1] + t[3], h[1], acc);
        return std::fma(t[0] + t[4], h[0], acc);
    };
    // Row pass at x = 2 (all taps inside), then the column of five equal rows.
    const float row = pairsFirst(src);
    const float col[5] = {row, row, row, row, row};
    const float want = pairsFirst(col);
    const float rowAlt = centreFirst(src);
    const float colAlt[5] = {rowAlt, rowAlt, rowAlt, rowAlt, rowAlt};
    ASSERT_NE(bitsOf(want), bitsOf(centreFirst(colAlt)));
    float dst[w];
    WorkingSetup s({w, 1}, k, sigma, 3, lum32f, 1);
    ASSERT_EQ(lumiFilterGaussian_32f_C1R_L(src, 4 * w, dst, 4 * w, {w, 1}, 3, nullptr, s.spec.data(), s.buffer.data()),
              lumStatusOk);
    EXPECT_EQ(bitsOf(dst[2]), bitsOf(want));
}

// ------------------------------------------------------------ cache bypass

template <class T, int C>
void bypassCase(LFn<T> f, int w, int h, int k, Rng& rng) {
    const int rowB = w * C * static_cast<int>(sizeof(T));
    const int step = (rowB + 63) / 64 * 64 + 64;
    const std::vector<T> src = randomImage<T>(step / static_cast<int>(sizeof(T)) * h, rng);
    WorkingSetup s({w, h}, k, 1.2f, 1, dataTypeOfHelper<T>(), C);
    std::vector<T> plain(step / sizeof(T) * h);
    {
        lumtest::CacheSizeOverride big(INT_MAX);
        ASSERT_EQ(f(src.data(), step, plain.data(), step, {w, h}, 1, nullptr, s.spec.data(), s.buffer.data()),
                  lumStatusOk);
    }
    Arena a(static_cast<size_t>(step) * h + 128);
    lumtest::CacheSizeOverride small(0x80000);
    for (int shift : {0, static_cast<int>(sizeof(T)), 32}) {
        T* dst = reinterpret_cast<T*>(a.raw + shift);
        const long before = lumtest::cacheSizeQueries();
        ASSERT_EQ(f(src.data(), step, dst, step, {w, h}, 1, nullptr, s.spec.data(), s.buffer.data()), lumStatusOk);
        EXPECT_EQ(lumtest::cacheSizeQueries(), before + 1);
        for (int y = 0; y < h; ++y)
            ASSERT_EQ(std::memcmp(reinterpret_cast<const Lum8u*>(dst) + static_cast<size_t>(y) * step,
                                  reinterpret_cast<const Lum8u*>(plain.data()) + static_cast<size_t>(y) * step, rowB),
                      0)
                << "row " << y << " shift " << shift;
    }
}

// Above the threshold with a small cache the output rows stream past the
// cache where they are aligned: the same bits as plain stores.
TEST(GaussianBypass, StreamingStoresGiveTheSameBits) {
    Rng rng;
    bypassCase<Lum8u, 1>(lumiFilterGaussian_8u_C1R_L, 1024, 512, 5, rng);
    bypassCase<Lum8u, 3>(lumiFilterGaussian_8u_C3R_L, 351, 500, 3, rng);
    bypassCase<Lum16u, 1>(lumiFilterGaussian_16u_C1R_L, 263, 500, 7, rng);
    bypassCase<Lum16u, 3>(lumiFilterGaussian_16u_C3R_L, 99, 450, 5, rng);
    bypassCase<Lum16s, 1>(lumiFilterGaussian_16s_C1R_L, 256, 512, 5, rng);
    bypassCase<Lum16s, 3>(lumiFilterGaussian_16s_C3R_L, 100, 440, 9, rng);
    bypassCase<Lum32f, 1>(lumiFilterGaussian_32f_C1R_L, 257, 256, 3, rng);
    bypassCase<Lum32f, 3>(lumiFilterGaussian_32f_C3R_L, 91, 241, 11, rng);
}

// The cache size is asked only when width x channels x height, times 1 (8u),
// 4 (16u, 16s) or 8 (32f), reaches 0x80000.
template <class T, int C>
void expectQueries(LFn<T> f, int w, int h, long want) {
    const int step = w * C * static_cast<int>(sizeof(T));
    std::vector<T> src(static_cast<size_t>(w) * C * h), dst(src.size());
    WorkingSetup s({w, h}, 3, 1.0f, 1, dataTypeOfHelper<T>(), C);
    const long before = lumtest::cacheSizeQueries();
    ASSERT_EQ(f(src.data(), step, dst.data(), step, {w, h}, 1, nullptr, s.spec.data(), s.buffer.data()), lumStatusOk);
    EXPECT_EQ(lumtest::cacheSizeQueries() - before, want) << w << " x " << h << " x " << C;
}

TEST(GaussianBypass, CacheSizeIsAskedFromTheThresholdOn) {
    expectQueries<Lum8u, 1>(lumiFilterGaussian_8u_C1R_L, 1024, 511, 0);
    expectQueries<Lum8u, 1>(lumiFilterGaussian_8u_C1R_L, 1024, 512, 1);
    expectQueries<Lum8u, 3>(lumiFilterGaussian_8u_C3R_L, 1023, 170, 0);  // 521730 samples
    expectQueries<Lum8u, 3>(lumiFilterGaussian_8u_C3R_L, 1024, 171, 1);  // 525312
    expectQueries<Lum16u, 1>(lumiFilterGaussian_16u_C1R_L, 256, 511, 0);
    expectQueries<Lum16u, 1>(lumiFilterGaussian_16u_C1R_L, 256, 512, 1);
    expectQueries<Lum16s, 3>(lumiFilterGaussian_16s_C3R_L, 128, 341, 0);  // 4 x 130944
    expectQueries<Lum16s, 3>(lumiFilterGaussian_16s_C3R_L, 128, 342, 1);
    expectQueries<Lum32f, 1>(lumiFilterGaussian_32f_C1R_L, 256, 255, 0);
    expectQueries<Lum32f, 1>(lumiFilterGaussian_32f_C1R_L, 256, 256, 1);
    expectQueries<Lum32f, 3>(lumiFilterGaussian_32f_C3R_L, 64, 341, 0);  // 8 x 65472
    expectQueries<Lum32f, 3>(lumiFilterGaussian_32f_C3R_L, 64, 342, 1);
}

}  // namespace
