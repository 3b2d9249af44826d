// Masked norms of one image, of a difference and relative to a second image,
// against a scalar reference, with the zero-denominator path and the order
// of checks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "arith/stats_fixture.h"
#include "arith/stats_reference.h"

namespace {

using namespace statstest;
using ref::Kind;

enum class Op { Image, Diff, Rel };

template <class T>
struct NormSet {
    using ImgC1 = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*);
    using ImgC3 = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, int, Lum64f*);
    using TwoC1 = LumStatus (*)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, Lum64f*);
    using TwoC3 = LumStatus (*)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, int, Lum64f*);
    Named<ImgC1> img1;
    Named<ImgC3> img3;
    Named<TwoC1> diff1;
    Named<TwoC3> diff3;
    Named<TwoC1> rel1;
    Named<TwoC3> rel3;
};

template <class T>
const NormSet<T>& normSet(Kind k);

#define NORM_SET(N, t)                                                                               \
    {                                                                                                \
        STATS_NAMED(lumiNorm_##N##_##t##_C1MR), STATS_NAMED(lumiNorm_##N##_##t##_C3CMR),             \
            STATS_NAMED(lumiNormDiff_##N##_##t##_C1MR), STATS_NAMED(lumiNormDiff_##N##_##t##_C3CMR), \
            STATS_NAMED(lumiNormRel_##N##_##t##_C1MR), STATS_NAMED(lumiNormRel_##N##_##t##_C3CMR)    \
    }
#define NORM_SETS(T, t)                                                                         \
    template <>                                                                                 \
    const NormSet<T>& normSet<T>(Kind k) {                                                      \
        static const NormSet<T> sets[3] = {NORM_SET(Inf, t), NORM_SET(L1, t), NORM_SET(L2, t)}; \
        return sets[static_cast<int>(k)];                                                       \
    }
NORM_SETS(Lum8u, 8u)
NORM_SETS(Lum16u, 16u)
NORM_SETS(Lum32f, 32f)
#undef NORM_SETS
#undef NORM_SET

template <class T>
LumStatus callNorm(Kind k, Op op, const GuardedImage<T>& a, const GuardedImage<T>& b, const GuardedImage<Lum8u>& m,
                   int coi, Lum64f* out) {
    const NormSet<T>& s = normSet<T>(k);
    const LumiSize roi{a.width(), a.height()};
    const bool c1 = a.channels() == 1;
    switch (op) {
        case Op::Image:
            return c1 ? noAlloc(s.img1, a.data(), a.step(), m.data(), m.step(), roi, out)
                      : noAlloc(s.img3, a.data(), a.step(), m.data(), m.step(), roi, coi, out);
        case Op::Diff:
            return c1 ? noAlloc(s.diff1, a.data(), a.step(), b.data(), b.step(), m.data(), m.step(), roi, out)
                      : noAlloc(s.diff3, a.data(), a.step(), b.data(), b.step(), m.data(), m.step(), roi, coi, out);
        default:
            return c1 ? noAlloc(s.rel1, a.data(), a.step(), b.data(), b.step(), m.data(), m.step(), roi, out)
                      : noAlloc(s.rel3, a.data(), a.step(), b.data(), b.step(), m.data(), m.step(), roi, coi, out);
    }
}

const char* kindName(Kind k) { return k == Kind::Inf ? "Inf" : k == Kind::L1 ? "L1" : "L2"; }
const char* opName(Op o) { return o == Op::Image ? "Norm" : o == Op::Diff ? "NormDiff" : "NormRel"; }

template <class T>
LumStatus expected(Kind k, Op op, const GuardedImage<T>& a, const GuardedImage<T>& b, const GuardedImage<Lum8u>& m,
                   int coi, double& value) {
    const ref::Plane<T> pa = ref::planeOf(a, coi - 1, &m);
    const ref::Plane<T> pb = ref::planeOf(b, coi - 1, &m);
    const ref::NormTotals t = ref::normTotals(pa, op == Op::Image ? nullptr : &pb, op == Op::Rel, k);
    return ref::normValue(t, op == Op::Rel, k, value);
}

template <class T>
class NormSweep : public ::testing::Test {};
using Types = ::testing::Types<Lum8u, Lum16u, Lum32f>;
TYPED_TEST_SUITE(NormSweep, Types);

TYPED_TEST(NormSweep, MatchesReferenceOverShapes) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (Kind k : {Kind::Inf, Kind::L1, Kind::L2})
        for (Op op : {Op::Image, Op::Diff, Op::Rel})
            for (int channels : {1, 3})
                for (int width = 1; width <= maxSweepWidth<T>(); width += (width < 40 ? 1 : 3))
                    for (int height : {1, 2, 5}) {
                        GuardedImage<T> a(lumtest::randomLayout<T>(width, height, channels, rng), rng);
                        GuardedImage<T> b(lumtest::randomLayout<T>(width, height, channels, rng), rng);
                        GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(width, height, 1, rng), rng);
                        fillData(a, static_cast<Data>(rng.uniform(0, static_cast<int>(Data::Count) - 1)), rng);
                        fillData(b, static_cast<Data>(rng.uniform(0, static_cast<int>(Data::Count) - 1)), rng);
                        fillMask(mask, static_cast<MaskKind>(rng.uniform(0, static_cast<int>(MaskKind::Count) - 1)),
                                 rng);
                        const int coi = channels == 3 ? rng.uniform(1, 3) : 1;
                        Lum64f got = -5.0;
                        const LumStatus st = callNorm(k, op, a, b, mask, coi, &got);
                        double want = 0;
                        const LumStatus wantSt = expected(k, op, a, b, mask, coi, want);
                        ASSERT_EQ(st, wantSt) << opName(op) << "_" << kindName(k) << " " << a.describe();
                        ASSERT_TRUE(sameDouble(got, want))
                            << opName(op) << "_" << kindName(k) << " " << a.describe() << " coi " << coi << ": got "
                            << std::hexfloat << got << " want " << want;
                        ASSERT_TRUE(a.unchanged());
                        ASSERT_TRUE(b.unchanged());
                        ASSERT_TRUE(mask.unchanged());
                    }
}

TYPED_TEST(NormSweep, LargeImagesMatchReference) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (Kind k : {Kind::Inf, Kind::L1, Kind::L2})
        for (Op op : {Op::Image, Op::Diff, Op::Rel})
            for (int channels : {1, 3}) {
                GuardedImage<T> a(lumtest::randomLayout<T>(1027, 11, channels, rng), rng);
                GuardedImage<T> b(lumtest::randomLayout<T>(1027, 11, channels, rng), rng);
                GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(1027, 11, 1, rng), rng);
                fillData(a, Data::Random, rng);
                fillData(b, Data::Random, rng);
                fillMask(mask, MaskKind::Half, rng);
                const int coi = channels == 3 ? 3 : 1;
                Lum64f got = 0;
                double want = 0;
                EXPECT_EQ(callNorm(k, op, a, b, mask, coi, &got), expected(k, op, a, b, mask, coi, want));
                EXPECT_SAME_DOUBLE(got, want);
            }
}

// ------------------------------------------------------------ edge cases

TEST(NormEdges, RelativeWithZeroDenominator) {
    std::vector<Lum8u> a(33 * 2, 3), zero(33 * 2, 0), mask(33 * 2, 1);
    Lum64f v = 0;
    EXPECT_EQ(lumiNormRel_L1_8u_C1MR(a.data(), 33, zero.data(), 33, mask.data(), 33, {33, 2}, &v),
              lumStatusZeroDenominator);
    EXPECT_EQ(v, std::numeric_limits<double>::infinity());
    EXPECT_EQ(lumiNormRel_L1_8u_C1MR(zero.data(), 33, zero.data(), 33, mask.data(), 33, {33, 2}, &v),
              lumStatusZeroDenominator);
    EXPECT_EQ(ref::doubleBits(v), 0xFFF8000000000000ull);
    // L2 takes no root on this path, Inf neither.
    EXPECT_EQ(lumiNormRel_L2_8u_C1MR(a.data(), 33, zero.data(), 33, mask.data(), 33, {33, 2}, &v),
              lumStatusZeroDenominator);
    EXPECT_EQ(v, std::numeric_limits<double>::infinity());
    EXPECT_EQ(lumiNormRel_Inf_8u_C1MR(zero.data(), 33, zero.data(), 33, mask.data(), 33, {33, 2}, &v),
              lumStatusZeroDenominator);
    EXPECT_EQ(ref::doubleBits(v), 0xFFF8000000000000ull);
}

TEST(NormEdges, EmptyMaskGivesZeroOrTheRelativeNan) {
    std::vector<Lum32f> a(20 * 3, 2.0f), b(20 * 3, 1.0f);
    std::vector<Lum8u> mask(20 * 3, 0);
    Lum64f v = -1;
    EXPECT_EQ(lumiNorm_L2_32f_C1MR(a.data(), 80, mask.data(), 20, {20, 3}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, 0.0);
    v = -1;
    EXPECT_EQ(lumiNormDiff_Inf_32f_C1MR(a.data(), 80, b.data(), 80, mask.data(), 20, {20, 3}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, 0.0);
    EXPECT_EQ(lumiNormRel_L2_32f_C1MR(a.data(), 80, b.data(), 80, mask.data(), 20, {20, 3}, &v),
              lumStatusZeroDenominator);
    EXPECT_EQ(ref::doubleBits(v), 0xFFF8000000000000ull);
}

// L2 relative: the root comes once, after the division.
TEST(NormEdges, RelativeL2RootAfterTheDivision) {
    std::vector<Lum16u> a = {3, 4, 0, 0}, b = {1, 1, 1, 0};
    std::vector<Lum8u> mask = {1, 1, 1, 1};
    Lum64f v = 0;
    ASSERT_EQ(lumiNormRel_L2_16u_C1MR(a.data(), 8, b.data(), 8, mask.data(), 4, {4, 1}, &v), lumStatusOk);
    // |a - b|^2 = 4 + 9 + 1 = 14, |b|^2 = 3.
    EXPECT_SAME_DOUBLE(v, std::sqrt(14.0 / 3.0));
}

// The 16u totals stay integers to the end: above 2^53 one conversion
// rounds differently from sums of converted rows.
TEST(NormEdges, IntegerTotalsBecomeADoubleOnce) {
    const int w = 2111, h = 1031;
    std::vector<Lum16u> img(static_cast<size_t>(w) * h);
    std::vector<Lum8u> mask(static_cast<size_t>(w) * h, 1);
    uint32_t s = 12345;
    for (Lum16u& v : img) {
        s = s * 1103515245u + 12345u;
        v = static_cast<Lum16u>(65535 - (s >> 16) % 7);
    }
    uint64_t total = 0;
    double perRow = 0;
    for (int y = 0; y < h; ++y) {
        uint64_t row = 0;
        for (int x = 0; x < w; ++x)
            row += uint64_t{img[static_cast<size_t>(y) * w + x]} * img[static_cast<size_t>(y) * w + x];
        total += row;
        perRow += static_cast<double>(row);
    }
    ASSERT_GT(total, uint64_t{1} << 53);
    Lum64f v = 0;
    ASSERT_EQ(lumiNorm_L2_16u_C1MR(img.data(), 2 * w, mask.data(), w, {w, h}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, std::sqrt(ref::u64ToDouble(total)));
    EXPECT_FALSE(sameDouble(std::sqrt(ref::u64ToDouble(total)), std::sqrt(perRow)));
}

// 8u squares gather in 32-bit lanes that move to 64 bits every 8192 groups
// of 32 pixels: far more groups than would overflow them, and one either
// side of a widening.
TEST(NormEdges, EightBitSquaresWidenBeforeTheyOverflow) {
    for (int groups : {8191, 8192, 8193, 20000}) {
        const int w = 32 * groups + 5;
        std::vector<Lum8u> img(static_cast<size_t>(w), 255), mask(static_cast<size_t>(w), 1);
        Lum64f v = 0;
        ASSERT_EQ(lumiNorm_L2_8u_C1MR(img.data(), w, mask.data(), w, {w, 1}, &v), lumStatusOk);
        EXPECT_SAME_DOUBLE(v, std::sqrt(65025.0 * w));
        Lum64f mean = 0, sd = -1;
        ASSERT_EQ(lumiMean_StdDev_8u_C1R(img.data(), w, {w, 1}, &mean, &sd), lumStatusOk);
        EXPECT_EQ(mean, 255.0);
        EXPECT_SAME_DOUBLE(sd, 0.0);
    }
}

// The float Inf norm is a float maximum: NaN samples are skipped, as the
// vector max keeps the running lanes, its second operand.
TEST(NormEdges, ChoiceFloatInfNormSkipsNan) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<Lum32f> a(40, 1.0f);
    a[3] = nan;
    a[17] = -6.5f;
    a[39] = nan;
    std::vector<Lum8u> mask(40, 1);
    Lum64f v = 0;
    ASSERT_EQ(lumiNorm_Inf_32f_C1MR(a.data(), 160, mask.data(), 40, {40, 1}, &v), lumStatusOk);
    EXPECT_EQ(v, 6.5);
    // L1 has no such rule: NaN propagates through the sum.
    ASSERT_EQ(lumiNorm_L1_32f_C1MR(a.data(), 160, mask.data(), 40, {40, 1}, &v), lumStatusOk);
    EXPECT_TRUE(std::isnan(v));
}

// A float difference is formed and rounded in float before its magnitude is
// summed: 1 - 2^-30 is 1.0f there, not the double just below 1.
TEST(NormEdges, ChoiceFloatDifferenceRoundsToFloat) {
    std::vector<Lum32f> a = {1.0f}, b = {0x1p-30f};
    std::vector<Lum8u> mask = {1};
    Lum64f v = 0;
    ASSERT_EQ(lumiNormDiff_L1_32f_C1MR(a.data(), 4, b.data(), 4, mask.data(), 1, {1, 1}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, 1.0);
    ASSERT_EQ(lumiNormDiff_Inf_32f_C1MR(a.data(), 4, b.data(), 4, mask.data(), 1, {1, 1}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, 1.0);
}

TEST(NormEdges, DifferencesAreFormedInTheWiderType) {
    std::vector<Lum8u> a = {0, 255, 10}, b = {255, 0, 10};
    std::vector<Lum8u> mask = {1, 1, 1};
    Lum64f v = 0;
    ASSERT_EQ(lumiNormDiff_L2_8u_C1MR(a.data(), 3, b.data(), 3, mask.data(), 3, {3, 1}, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, std::sqrt(2.0 * 255 * 255));
    ASSERT_EQ(lumiNormDiff_L1_8u_C3CMR(a.data(), 3, b.data(), 3, mask.data(), 1, {1, 1}, 2, &v), lumStatusOk);
    EXPECT_SAME_DOUBLE(v, 255.0);
}

// ------------------------------------------------------------ order of checks

template <class T, int C>
void checks(Kind k, Op op) {
    const bool afterAlign = op == Op::Image && sizeof(T) > 1;
    MemberShape shape{static_cast<int>(sizeof(T)), C, op != Op::Image, true, true, afterAlign};
    SCOPED_TRACE(std::string(opName(op)) + "_" + kindName(k) + "_" + typeName<T>() + (C == 1 ? "_C1MR" : "_C3CMR"));
    runCheckTable(shape, [&](const CheckArgs& a) {
        Lum64f out = -3.0;
        Lum64f* o = a.outNull ? nullptr : &out;
        const NormSet<T>& s = normSet<T>(k);
        const auto* p1 = static_cast<const T*>(a.src);
        const auto* p2 = static_cast<const T*>(a.src2);
        LumStatus st;
        if (op == Op::Image) {
            st = C == 1 ? noAlloc(s.img1, p1, a.srcStep, a.mask, a.maskStep, a.roi, o)
                        : noAlloc(s.img3, p1, a.srcStep, a.mask, a.maskStep, a.roi, a.coi, o);
        } else {
            const auto& f1 = op == Op::Diff ? s.diff1 : s.rel1;
            const auto& f3 = op == Op::Diff ? s.diff3 : s.rel3;
            st = C == 1 ? noAlloc(f1, p1, a.srcStep, p2, a.src2Step, a.mask, a.maskStep, a.roi, o)
                        : noAlloc(f3, p1, a.srcStep, p2, a.src2Step, a.mask, a.maskStep, a.roi, a.coi, o);
        }
        if (st < 0) {
            EXPECT_EQ(out, -3.0) << "a failed check wrote the value";
        }
        return st;
    });
}

TYPED_TEST(NormSweep, OrderOfChecks) {
    for (Kind k : {Kind::Inf, Kind::L1, Kind::L2})
        for (Op op : {Op::Image, Op::Diff, Op::Rel}) {
            checks<TypeParam, 1>(k, op);
            checks<TypeParam, 3>(k, op);
        }
}

// Only the one-image norms of samples wider than a byte test the mask's step
// after the alignment of the source's step; the difference and relative
// norms, and every 8u norm, test it with the other steps. A short mask step
// beside a misaligned source step tells the two apart.
TEST(NormChecks, ChoiceOnlyOneImageWideNormsTestTheMaskStepAfterAlignment) {
    alignas(32) Lum32f f[64] = {};
    alignas(32) Lum16u u[64] = {};
    alignas(32) Lum8u b[64] = {};
    const Lum8u mask[16] = {1, 1, 1, 1, 1, 1, 1, 1};
    Lum64f v = -3;
    EXPECT_EQ(lumiNorm_L1_32f_C1MR(f, 17, mask, 3, {4, 2}, &v), lumStatusStepNotAligned);
    EXPECT_EQ(lumiNorm_Inf_16u_C3CMR(u, 25, mask, 3, {4, 2}, 1, &v), lumStatusStepNotAligned);
    EXPECT_EQ(lumiNorm_L2_32f_C1MR(f, 16, mask, 3, {4, 2}, &v), lumStatusBadStep);
    EXPECT_EQ(lumiNormDiff_L1_32f_C1MR(f, 17, f, 16, mask, 3, {4, 2}, &v), lumStatusBadStep);
    EXPECT_EQ(lumiNormRel_L2_16u_C1MR(u, 9, u, 8, mask, 3, {4, 2}, &v), lumStatusBadStep);
    EXPECT_EQ(lumiNorm_L1_8u_C1MR(b, 5, mask, 3, {4, 2}, &v), lumStatusBadStep);
    // The statistics test the mask with the steps as well.
    EXPECT_EQ(lumiMean_32f_C1MR(f, 17, mask, 3, {4, 2}, &v), lumStatusBadStep);
    EXPECT_EQ(v, -3.0);
}

}  // namespace
