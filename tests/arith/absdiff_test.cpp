// Absolute difference against a scalar reference written from its formula.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "lumcv.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace {

using lumtest::GuardedImage;
using lumtest::Layout;
using lumtest::Rng;

// ------------------------------------------------------------ reference

namespace ref {

template <class T>
T absDiffInt(T a, T b) {
    const T ab = a > b ? static_cast<T>(a - b) : T(0);  // a - b saturated at 0
    const T ba = b > a ? static_cast<T>(b - a) : T(0);  // b - a saturated at 0
    return static_cast<T>(ab + ba);
}

float clearSign(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    bits &= 0x7fffffffu;
    std::memcpy(&v, &bits, 4);
    return v;
}

inline Lum8u absDiff(Lum8u a, Lum8u b) { return absDiffInt(a, b); }
inline Lum16u absDiff(Lum16u a, Lum16u b) { return absDiffInt(a, b); }
inline Lum32f absDiff(Lum32f a, Lum32f b) { return clearSign(a - b); }

template <class T>
T clampValue(int v) {
    const int hi = std::numeric_limits<T>::max();
    return static_cast<T>(v < 0 ? 0 : v > hi ? hi : v);
}

}  // namespace ref

// ------------------------------------------------------------ members

template <class T>
using BinaryFn = LumStatus (*)(const T*, int, const T*, int, T*, int, LumiSize);

struct Member8u1 {
    using T = Lum8u;
    static constexpr int channels = 1;
    static LumStatus call(const T* a, int as, const T* b, int bs, T* d, int ds, LumiSize r) {
        return LUMTEST_NOALLOC(lumiAbsDiff_8u_C1R, (a, as, b, bs, d, ds, r));
    }
};
struct Member8u3 {
    using T = Lum8u;
    static constexpr int channels = 3;
    static LumStatus call(const T* a, int as, const T* b, int bs, T* d, int ds, LumiSize r) {
        return LUMTEST_NOALLOC(lumiAbsDiff_8u_C3R, (a, as, b, bs, d, ds, r));
    }
};
struct Member16u {
    using T = Lum16u;
    static constexpr int channels = 1;
    static LumStatus call(const T* a, int as, const T* b, int bs, T* d, int ds, LumiSize r) {
        return LUMTEST_NOALLOC(lumiAbsDiff_16u_C1R, (a, as, b, bs, d, ds, r));
    }
};
struct Member32f {
    using T = Lum32f;
    static constexpr int channels = 1;
    static LumStatus call(const T* a, int as, const T* b, int bs, T* d, int ds, LumiSize r) {
        return LUMTEST_NOALLOC(lumiAbsDiff_32f_C1R, (a, as, b, bs, d, ds, r));
    }
};

template <class M>
class AbsDiffSweep : public ::testing::Test {};
using Members = ::testing::Types<Member8u1, Member8u3, Member16u, Member32f>;
TYPED_TEST_SUITE(AbsDiffSweep, Members);

// Widths 1..130, heights 1..3 and one taller, random steps (odd for 8u),
// start offsets and guards; sometimes dst is src1 (the operation is per
// sample, so it works in place too).
TYPED_TEST(AbsDiffSweep, MatchesReferenceOverShapes) {
    using M = TypeParam;
    using T = typename M::T;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int width = 1; width <= 130; ++width) {
        for (int height : {1, 2, 3, 9}) {
            GuardedImage<T> a(lumtest::randomLayout<T>(width, height, M::channels, rng), rng);
            GuardedImage<T> b(lumtest::randomLayout<T>(width, height, M::channels, rng), rng);
            GuardedImage<T> d(lumtest::randomLayout<T>(width, height, M::channels, rng), rng);
            const bool inPlace = rng.chance(0.1);
            std::vector<T> want(static_cast<size_t>(a.samplesPerRow()) * height);
            for (int y = 0; y < height; ++y)
                for (int i = 0; i < a.samplesPerRow(); ++i)
                    want[static_cast<size_t>(y) * a.samplesPerRow() + i] = ref::absDiff(a.row(y)[i], b.row(y)[i]);
            GuardedImage<T>& out = inPlace ? a : d;
            ASSERT_EQ(M::call(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), {width, height}),
                      lumStatusOk)
                << out.describe();
            ASSERT_TRUE(lumtest::sameBitsAsReference(out, want));
            ASSERT_TRUE(out.intactOutsideRoi());
            ASSERT_TRUE(b.unchanged());
            if (!inPlace) {
                ASSERT_TRUE(a.unchanged());
            }
        }
    }
}

// ------------------------------------------------------------ constant members

template <class T, class V>
using ConstFn = LumStatus (*)(const T*, int, T*, int, LumiSize, V);

template <class T, class V, class Ref>
void sweepConstant(ConstFn<T, V> fn, const char* name, V value, Ref ref) {
    Rng rng;
    for (int width = 1; width <= 130; ++width) {
        for (int height : {1, 2, 5}) {
            GuardedImage<T> s(lumtest::randomLayout<T>(width, height, 1, rng), rng);
            GuardedImage<T> d(lumtest::randomLayout<T>(width, height, 1, rng), rng);
            std::vector<T> want(static_cast<size_t>(width) * height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) want[static_cast<size_t>(y) * width + x] = ref(s.row(y)[x]);
            const LumStatus st = [&] {
                lumtest::NoAllocScope scope(name);
                return fn(s.data(), s.step(), d.data(), d.step(), {width, height}, value);
            }();
            ASSERT_EQ(st, lumStatusOk) << d.describe();
            ASSERT_TRUE(lumtest::sameBitsAsReference(d, want));
            ASSERT_TRUE(d.intactOutsideRoi());
            ASSERT_TRUE(s.unchanged());
        }
    }
}

TEST(AbsDiffC, Sweep8uOverValuesInsideAndOutsideTheRange) {
    LUMTEST_REPLAYABLE();
    for (int value : {0, 1, 77, 128, 254, 255, 256, 300, -1, -1000, 1 << 30}) {
        SCOPED_TRACE(value);
        const Lum8u c = ref::clampValue<Lum8u>(value);
        sweepConstant<Lum8u, int>(lumiAbsDiffC_8u_C1R, "lumiAbsDiffC_8u_C1R", value,
                                  [c](Lum8u s) { return ref::absDiff(s, c); });
    }
}

TEST(AbsDiffC, Sweep16uOverValuesInsideAndOutsideTheRange) {
    LUMTEST_REPLAYABLE();
    for (int value : {0, 1, 255, 40000, 65534, 65535, 65536, 100000, -1, -70000}) {
        SCOPED_TRACE(value);
        const Lum16u c = ref::clampValue<Lum16u>(value);
        sweepConstant<Lum16u, int>(lumiAbsDiffC_16u_C1R, "lumiAbsDiffC_16u_C1R", value,
                                   [c](Lum16u s) { return ref::absDiff(s, c); });
    }
}

TEST(AbsDiffC, Sweep32fFormsValueMinusSource) {
    LUMTEST_REPLAYABLE();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    for (float value : {0.0f, -0.0f, 1.5f, -3.25e7f, inf, -inf, nan, -nan, 1e-40f}) {
        SCOPED_TRACE(value);
        sweepConstant<Lum32f, Lum32f>(lumiAbsDiffC_32f_C1R, "lumiAbsDiffC_32f_C1R", value,
                                      [value](Lum32f s) { return ref::clearSign(value - s); });
    }
}

// ------------------------------------------------------------ edge cases

TEST(AbsDiffEdges, OneByOneRoiRunsTheTailPath) {
    Lum8u a = 3, b = 250, d = 0;
    EXPECT_EQ(lumiAbsDiff_8u_C1R(&a, 1, &b, 1, &d, 1, {1, 1}), lumStatusOk);
    EXPECT_EQ(d, 247);
    Lum16u a16 = 65535, b16 = 1, d16 = 0;
    EXPECT_EQ(lumiAbsDiff_16u_C1R(&a16, 2, &b16, 2, &d16, 2, {1, 1}), lumStatusOk);
    EXPECT_EQ(d16, 65534);
    Lum32f af = -2.0f, bf = 3.0f, df = 0;
    EXPECT_EQ(lumiAbsDiff_32f_C1R(&af, 4, &bf, 4, &df, 4, {1, 1}), lumStatusOk);
    EXPECT_EQ(df, 5.0f);
}

TEST(AbsDiffEdges, ConstantIsClampedSilently) {
    const Lum8u src[4] = {0, 100, 200, 255};
    Lum8u dst[4];
    EXPECT_EQ(lumiAbsDiffC_8u_C1R(src, 4, dst, 4, {4, 1}, 300), lumStatusOk);
    EXPECT_EQ(std::vector<Lum8u>(dst, dst + 4), (std::vector<Lum8u>{255, 155, 55, 0}));
    EXPECT_EQ(lumiAbsDiffC_8u_C1R(src, 4, dst, 4, {4, 1}, -1), lumStatusOk);
    EXPECT_EQ(std::vector<Lum8u>(dst, dst + 4), (std::vector<Lum8u>{0, 100, 200, 255}));
    const Lum16u s16[2] = {0, 65535};
    Lum16u d16[2];
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(s16, 4, d16, 4, {2, 1}, 70000), lumStatusOk);
    EXPECT_EQ(d16[0], 65535);
    EXPECT_EQ(d16[1], 0);
}

TEST(AbsDiffEdges, SixteenBitStepSizeTestComesBeforeAlignment) {
    Lum16u buf[64] = {};
    const int w = 8;
    EXPECT_EQ(lumiAbsDiff_16u_C1R(buf, 2 * w + 1, buf, 2 * w, buf, 2 * w, {w, 1}), lumStatusStepNotAligned);
    EXPECT_EQ(lumiAbsDiff_16u_C1R(buf, 2 * w - 1, buf, 2 * w, buf, 2 * w, {w, 1}), lumStatusBadStep);
}

TEST(AbsDiffEdges, EightBitMembersAcceptOddSteps) {
    std::vector<Lum8u> a(3 * 7), b(3 * 9), d(3 * 11);
    EXPECT_EQ(lumiAbsDiff_8u_C1R(a.data(), 7, b.data(), 9, d.data(), 11, {5, 3}), lumStatusOk);
    EXPECT_EQ(lumiAbsDiff_8u_C3R(a.data(), 7, b.data(), 9, d.data(), 11, {2, 3}), lumStatusOk);
    EXPECT_EQ(lumiAbsDiffC_8u_C1R(a.data(), 7, d.data(), 11, {5, 3}, 9), lumStatusOk);
}

TEST(AbsDiffEdges, NullPointerWinsOverZeroWidth) {
    Lum8u x = 0;
    EXPECT_EQ(lumiAbsDiff_8u_C1R(nullptr, 1, &x, 1, &x, 1, {0, 1}), lumStatusNullPointer);
    EXPECT_EQ(lumiAbsDiff_32f_C1R(nullptr, 4, nullptr, 4, nullptr, 4, {0, 0}), lumStatusNullPointer);
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(nullptr, 2, nullptr, 2, {0, 0}, 0), lumStatusNullPointer);
}

TEST(AbsDiffEdges, NegativeStepIsBadStep) {
    Lum8u buf[16] = {};
    EXPECT_EQ(lumiAbsDiff_8u_C1R(buf + 8, -4, buf, 4, buf, 4, {4, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiffC_32f_C1R(reinterpret_cast<Lum32f*>(buf), -4, reinterpret_cast<Lum32f*>(buf), 4, {1, 1}, 0.f),
              lumStatusBadStep);
}

uint32_t bitsOf(float v) {
    uint32_t b;
    std::memcpy(&b, &v, 4);
    return b;
}

TEST(AbsDiffEdges, FloatNanAndInfinity) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float a[5] = {nan, -nan, inf, -0.0f, 1.0f};
    const float b[5] = {1.0f, 2.0f, -inf, 0.0f, nan};
    float d[5];
    ASSERT_EQ(lumiAbsDiff_32f_C1R(a, 20, b, 20, d, 20, {5, 1}), lumStatusOk);
    EXPECT_TRUE(std::isnan(d[0]));
    EXPECT_EQ(bitsOf(d[0]) >> 31, 0u);
    EXPECT_TRUE(std::isnan(d[1]));
    EXPECT_EQ(bitsOf(d[1]) >> 31, 0u);
    EXPECT_EQ(bitsOf(d[2]), bitsOf(inf));
    EXPECT_EQ(bitsOf(d[3]), 0u);  // -0 - 0 = -0, sign cleared
    EXPECT_TRUE(std::isnan(d[4]));
    EXPECT_EQ(bitsOf(d[4]) >> 31, 0u);
}

TEST(AbsDiffEdges, FloatConstantOrderDecidesWhichNanSurvives) {
    // value - src: with two NaNs the processor keeps the first operand's payload.
    uint32_t srcBits = 0x7fc00001u, valueBits = 0x7fc00002u;
    float src, value, d;
    std::memcpy(&src, &srcBits, 4);
    std::memcpy(&value, &valueBits, 4);
    ASSERT_EQ(lumiAbsDiffC_32f_C1R(&src, 4, &d, 4, {1, 1}, value), lumStatusOk);
    EXPECT_EQ(bitsOf(d), bitsOf(ref::clearSign(value - src)));
    // Over a long row the vector lanes give the same bits as the scalar tail.
    std::vector<float> s(37, src), out(37);
    ASSERT_EQ(lumiAbsDiffC_32f_C1R(s.data(), 37 * 4, out.data(), 37 * 4, {37, 1}, value), lumStatusOk);
    for (float v : out) EXPECT_EQ(bitsOf(v), bitsOf(d));
}

// ------------------------------------------------------------ order of checks

// One row per check: each fails that check and passes all earlier ones.
TEST(AbsDiffChecks, OrderOfTwoImageMembers16u) {
    Lum16u buf[256] = {};
    const Lum16u* p = buf;
    Lum16u* q = buf;
    struct Case {
        const Lum16u* a;
        int as;
        const Lum16u* b;
        int bs;
        Lum16u* d;
        int ds;
        LumiSize roi;
        LumStatus want;
    } cases[] = {
        {nullptr, -1, p, -1, q, -1, {0, 0}, lumStatusNullPointer},
        {p, -1, nullptr, -1, q, -1, {0, 0}, lumStatusNullPointer},
        {p, -1, p, -1, nullptr, -1, {0, 0}, lumStatusNullPointer},
        {p, -1, p, -1, q, -1, {0, 4}, lumStatusBadSize},
        {p, -1, p, -1, q, -1, {4, 0}, lumStatusBadSize},
        {p, 7, p, 9, q, 9, {4, 2}, lumStatusBadStep},
        {p, 8, p, 7, q, 9, {4, 2}, lumStatusBadStep},
        {p, 8, p, 8, q, 6, {4, 2}, lumStatusBadStep},
        {p, 9, p, 8, q, 8, {4, 2}, lumStatusStepNotAligned},
        {p, 8, p, 8, q, 11, {4, 2}, lumStatusStepNotAligned},
        {p, 8, p, 8, q, 8, {4, 2}, lumStatusOk},
    };
    for (const Case& c : cases)
        EXPECT_EQ(lumiAbsDiff_16u_C1R(c.a, c.as, c.b, c.bs, c.d, c.ds, c.roi), c.want)
            << "steps " << c.as << " " << c.bs << " " << c.ds;
}

TEST(AbsDiffChecks, OrderOfTwoImageMembers32f) {
    Lum32f buf[256] = {};
    EXPECT_EQ(lumiAbsDiff_32f_C1R(buf, 0, nullptr, 0, buf, 0, {0, 0}), lumStatusNullPointer);
    EXPECT_EQ(lumiAbsDiff_32f_C1R(buf, 0, buf, 0, buf, 0, {-1, 2}), lumStatusBadSize);
    EXPECT_EQ(lumiAbsDiff_32f_C1R(buf, 15, buf, 16, buf, 16, {4, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiff_32f_C1R(buf, 18, buf, 16, buf, 16, {4, 2}), lumStatusStepNotAligned);
    EXPECT_EQ(lumiAbsDiff_32f_C1R(buf, 16, buf, 20, buf, 24, {4, 2}), lumStatusOk);
}

TEST(AbsDiffChecks, EightBitMembersNeverReportAlignment) {
    Lum8u buf[256] = {};
    EXPECT_EQ(lumiAbsDiff_8u_C1R(buf, 5, buf, 7, buf, 9, {5, 2}), lumStatusOk);
    EXPECT_EQ(lumiAbsDiff_8u_C1R(buf, 4, buf, 7, buf, 9, {5, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiffC_8u_C1R(buf, 5, buf, 4, {5, 2}, 1), lumStatusBadStep);
}

TEST(AbsDiffChecks, ThreeChannelStepsAreTestedAgainstTripledWidth) {
    Lum8u buf[256] = {};
    EXPECT_EQ(lumiAbsDiff_8u_C3R(buf, 12, buf, 12, buf, 12, {4, 2}), lumStatusOk);
    EXPECT_EQ(lumiAbsDiff_8u_C3R(buf, 11, buf, 12, buf, 12, {4, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiff_8u_C3R(buf, 12, buf, 12, buf, 12, {0, 2}), lumStatusBadSize);
    EXPECT_EQ(lumiAbsDiff_8u_C3R(nullptr, 12, buf, 12, buf, 12, {0, 2}), lumStatusNullPointer);
}

TEST(AbsDiffChecks, OrderOfConstantMembers) {
    Lum16u buf[64] = {};
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(buf, 0, nullptr, 0, {0, 0}, 0), lumStatusNullPointer);
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(buf, 0, buf, 0, {3, 0}, 0), lumStatusBadSize);
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(buf, 6, buf, 5, {3, 2}, 0), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(buf, 7, buf, 6, {3, 2}, 0), lumStatusStepNotAligned);
    EXPECT_EQ(lumiAbsDiffC_16u_C1R(buf, 6, buf, 8, {3, 2}, 0), lumStatusOk);
    Lum32f f[64] = {};
    EXPECT_EQ(lumiAbsDiffC_32f_C1R(nullptr, 0, f, 0, {0, 0}, 0.f), lumStatusNullPointer);
    EXPECT_EQ(lumiAbsDiffC_32f_C1R(f, 12, f, 12, {3, -2}, 0.f), lumStatusBadSize);
    EXPECT_EQ(lumiAbsDiffC_32f_C1R(f, 12, f, 11, {3, 2}, 0.f), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiffC_32f_C1R(f, 14, f, 12, {3, 2}, 0.f), lumStatusStepNotAligned);
}

TEST(AbsDiffChecks, FailedCheckWritesNothing) {
    Lum8u a[8] = {1, 2, 3, 4, 5, 6, 7, 8}, d[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(lumiAbsDiff_8u_C1R(a, 4, a, 4, d, 3, {4, 2}), lumStatusBadStep);
    for (Lum8u v : d) EXPECT_EQ(v, 9);
}

TEST(AbsDiffChecks, RowBytesOfAHugeWidthAreComparedAsSigned) {
    // 0x10000001 floats make 0x40000004 row bytes: far above the step.
    Lum32f f[4] = {};
    EXPECT_EQ(lumiAbsDiff_32f_C1R(f, 4, f, 4, f, 4, {0x10000001, 1}), lumStatusBadStep);
    EXPECT_EQ(lumiAbsDiff_8u_C3R(reinterpret_cast<Lum8u*>(f), 4, reinterpret_cast<Lum8u*>(f), 4,
                                 reinterpret_cast<Lum8u*>(f), 4, {0x10000001, 1}),
              lumStatusBadStep);
}

}  // namespace
