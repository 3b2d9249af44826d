// Extremes and their positions against a scalar reference, the optional
// outputs, the empty-mask status and the order of checks.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <vector>

#include "arith/stats_fixture.h"
#include "arith/stats_reference.h"

namespace {

using namespace statstest;

template <class T>
struct Members;

#define MINMAX_MEMBERS(T, t)                                                    \
    template <>                                                                 \
    struct Members<T> {                                                         \
        static inline const auto c1 = STATS_NAMED(lumiMinMaxIndx_##t##_C1R);    \
        static inline const auto c3 = STATS_NAMED(lumiMinMaxIndx_##t##_C3CR);   \
        static inline const auto c1m = STATS_NAMED(lumiMinMaxIndx_##t##_C1MR);  \
        static inline const auto c3m = STATS_NAMED(lumiMinMaxIndx_##t##_C3CMR); \
    };
MINMAX_MEMBERS(Lum8u, 8u)
MINMAX_MEMBERS(Lum16u, 16u)
MINMAX_MEMBERS(Lum32f, 32f)
#undef MINMAX_MEMBERS

struct Outputs {
    Lum32f minVal = -99.0f, maxVal = -99.0f;
    LumiPoint minIndex{-5, -5}, maxIndex{-5, -5};
};

// `present` bits: 1 minVal, 2 maxVal, 4 minIndex, 8 maxIndex.
template <class T>
LumStatus callMinMax(const GuardedImage<T>& img, const GuardedImage<Lum8u>* m, int coi, Outputs& o, int present) {
    using M = Members<T>;
    const LumiSize roi{img.width(), img.height()};
    Lum32f* mn = (present & 1) ? &o.minVal : nullptr;
    Lum32f* mx = (present & 2) ? &o.maxVal : nullptr;
    LumiPoint* mi = (present & 4) ? &o.minIndex : nullptr;
    LumiPoint* xi = (present & 8) ? &o.maxIndex : nullptr;
    if (m == nullptr) {
        if (img.channels() == 1) return noAlloc(M::c1, img.data(), img.step(), roi, mn, mx, mi, xi);
        return noAlloc(M::c3, img.data(), img.step(), roi, coi, mn, mx, mi, xi);
    }
    if (img.channels() == 1) return noAlloc(M::c1m, img.data(), img.step(), m->data(), m->step(), roi, mn, mx, mi, xi);
    return noAlloc(M::c3m, img.data(), img.step(), m->data(), m->step(), roi, coi, mn, mx, mi, xi);
}

bool samePoint(LumiPoint a, LumiPoint b) { return a.x == b.x && a.y == b.y; }

// What the caller should receive, and the status a masked member tells from
// it: an index at hand decides (off the origin: a selected pixel exists; at
// the origin: the first mask byte); with no output at all the answer is
// "empty"; then a value other than zero; then a scan of the mask.
struct Expected {
    Outputs out;
    LumStatus status = lumStatusOk;
};

template <class T>
Expected expect(const ref::Plane<T>& p, bool masked, int present, const Outputs& before) {
    const ref::Extremes e = ref::extremes(p);
    Expected x;
    x.out = before;
    if (present & 1) {
        x.out.minVal = e.minVal;
        if (present & 4) x.out.minIndex = e.minIndex;
    }
    if (present & 2) {
        x.out.maxVal = e.maxVal;
        if (present & 8) x.out.maxIndex = e.maxIndex;
    }
    if (!masked) return x;
    const bool firstSelected = p.mask[0] != 0;
    auto byIndex = [&](LumiPoint i) {
        return i.x == 0 && i.y == 0 && !firstSelected ? lumStatusEmptyMask : lumStatusOk;
    };
    if (present & 4)
        x.status = byIndex(x.out.minIndex);
    else if (present & 8)
        x.status = byIndex(x.out.maxIndex);
    else if ((present & 3) == 0)
        x.status = lumStatusEmptyMask;
    else if (((present & 1) && x.out.minVal != 0.0f) || ((present & 2) && x.out.maxVal != 0.0f))
        x.status = lumStatusOk;
    else
        x.status = e.anySelected ? lumStatusOk : lumStatusEmptyMask;
    return x;
}

::testing::AssertionResult sameOutputs(const Outputs& got, const Outputs& want) {
    if (!sameFloat(got.minVal, want.minVal) || !sameFloat(got.maxVal, want.maxVal) ||
        !samePoint(got.minIndex, want.minIndex) || !samePoint(got.maxIndex, want.maxIndex))
        return ::testing::AssertionFailure()
               << "got min " << got.minVal << " at (" << got.minIndex.x << ", " << got.minIndex.y << "), max "
               << got.maxVal << " at (" << got.maxIndex.x << ", " << got.maxIndex.y << "); want min " << want.minVal
               << " at (" << want.minIndex.x << ", " << want.minIndex.y << "), max " << want.maxVal << " at ("
               << want.maxIndex.x << ", " << want.maxIndex.y << ")";
    return ::testing::AssertionSuccess();
}

// Float samples that exercise the seeds, ties, zeros of both signs and NaN.
float specialFloat(Rng& rng) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float pick[] = {nan, -nan, inf, -inf, 0.0f, -0.0f, FLT_MAX, -FLT_MAX, 1.0f, -1.0f, 2.5f};
    if (rng.chance(0.3)) return wideFloat(rng);
    return pick[rng.uniform(0, 10)];
}

template <class T>
void fillForExtremes(GuardedImage<T>& img, Rng& rng) {
    const int kind = rng.uniform(0, 5);
    if constexpr (std::is_same_v<T, float>) {
        if (kind == 5) {
            img.fill([&](int, int, int) { return specialFloat(rng); });
            return;
        }
    }
    if (kind == 5) {
        // Samples at the seeds: the type's maximum and zero.
        img.fill([&](int, int, int) { return rng.chance(0.5) ? std::numeric_limits<T>::max() : T(0); });
        return;
    }
    fillData(img, static_cast<Data>(kind), rng);
}

template <class T>
class MinMaxSweep : public ::testing::Test {};
using Types = ::testing::Types<Lum8u, Lum16u, Lum32f>;
TYPED_TEST_SUITE(MinMaxSweep, Types);

TYPED_TEST(MinMaxSweep, MatchesReferenceOverShapesAndOutputs) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int channels : {1, 3})
        for (bool masked : {false, true})
            for (int width = 1; width <= maxSweepWidth<T>(); ++width)
                for (int height : {1, 2, 3, 6}) {
                    GuardedImage<T> img(lumtest::randomLayout<T>(width, height, channels, rng), rng);
                    GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(width, height, 1, rng), rng);
                    fillForExtremes(img, rng);
                    fillMask(mask, static_cast<MaskKind>(rng.uniform(0, static_cast<int>(MaskKind::Count) - 1)), rng);
                    const int coi = channels == 3 ? rng.uniform(1, 3) : 1;
                    const int present = rng.chance(0.5) ? 15 : rng.uniform(0, 15);
                    Outputs before;
                    if (rng.chance(0.3)) before.minIndex = before.maxIndex = LumiPoint{0, 0};
                    Outputs got = before;
                    const LumStatus st = callMinMax(img, masked ? &mask : nullptr, coi, got, present);
                    const Expected want =
                        expect(ref::planeOf(img, coi - 1, masked ? &mask : nullptr), masked, present, before);
                    ASSERT_EQ(st, want.status) << img.describe() << " outputs " << present;
                    ASSERT_TRUE(sameOutputs(got, want.out))
                        << img.describe() << " coi " << coi << " outputs " << present << (masked ? " masked" : "");
                    ASSERT_TRUE(img.unchanged());
                    ASSERT_TRUE(mask.unchanged());
                }
}

TYPED_TEST(MinMaxSweep, LargeImagesMatchReference) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int channels : {1, 3})
        for (bool masked : {false, true}) {
            GuardedImage<T> img(lumtest::randomLayout<T>(1023, 37, channels, rng), rng);
            GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(1023, 37, 1, rng), rng);
            fillData(img, Data::Random, rng);
            fillMask(mask, MaskKind::Half, rng);
            Outputs got;
            const LumStatus st = callMinMax(img, masked ? &mask : nullptr, 2, got, 15);
            const Expected want =
                expect(ref::planeOf(img, channels == 3 ? 1 : 0, masked ? &mask : nullptr), masked, 15, Outputs{});
            EXPECT_EQ(st, want.status);
            EXPECT_TRUE(sameOutputs(got, want.out));
        }
}

// ------------------------------------------------------------ edge cases

TEST(MinMaxEdges, EqualSamplesGiveTheOriginForBoth) {
    for (Lum8u v : {Lum8u{0}, Lum8u{77}, Lum8u{255}}) {
        std::vector<Lum8u> img(50 * 4, v);
        Lum32f mn = -1, mx = -1;
        LumiPoint mi{-1, -1}, xi{-1, -1};
        ASSERT_EQ(lumiMinMaxIndx_8u_C1R(img.data(), 50, {50, 4}, &mn, &mx, &mi, &xi), lumStatusOk);
        EXPECT_EQ(mn, v);
        EXPECT_EQ(mx, v);
        EXPECT_TRUE(samePoint(mi, {0, 0}));
        EXPECT_TRUE(samePoint(xi, {0, 0}));
    }
}

TEST(MinMaxEdges, EmptyMaskWithAllOutputsGivesZerosAndTheWarning) {
    std::vector<Lum32f> img(40 * 3, 5.0f);
    std::vector<Lum8u> mask(40 * 3, 0);
    Lum32f mn = -1, mx = -1;
    LumiPoint mi{-1, -1}, xi{-1, -1};
    EXPECT_EQ(lumiMinMaxIndx_32f_C1MR(img.data(), 160, mask.data(), 40, {40, 3}, &mn, &mx, &mi, &xi),
              lumStatusEmptyMask);
    EXPECT_TRUE(sameFloat(mn, 0.0f));
    EXPECT_TRUE(sameFloat(mx, 0.0f));
    EXPECT_TRUE(samePoint(mi, {0, 0}));
    EXPECT_TRUE(samePoint(xi, {0, 0}));
}

TEST(MinMaxEdges, OnlyTheFirstPixelSelectedWithZeroIsOk) {
    std::vector<Lum32f> img(40 * 3, 5.0f);
    std::vector<Lum8u> mask(40 * 3, 0);
    img[0] = 0.0f;
    mask[0] = 1;
    Lum32f mn = -1, mx = -1;
    LumiPoint mi{-1, -1}, xi{-1, -1};
    EXPECT_EQ(lumiMinMaxIndx_32f_C1MR(img.data(), 160, mask.data(), 40, {40, 3}, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, 0.0f);
    EXPECT_EQ(mx, 0.0f);
    EXPECT_TRUE(samePoint(mi, {0, 0}));
    EXPECT_TRUE(samePoint(xi, {0, 0}));
    // The same with values only: both zero, so the mask is scanned.
    EXPECT_EQ(lumiMinMaxIndx_32f_C1MR(img.data(), 160, mask.data(), 40, {40, 3}, &mn, &mx, nullptr, nullptr),
              lumStatusOk);
}

TEST(MinMaxEdges, NoOutputsAtAllIsAnEmptyMaskEvenWithAFullMask) {
    std::vector<Lum8u> img(32 * 2, 9), mask(32 * 2, 1);
    EXPECT_EQ(lumiMinMaxIndx_8u_C1MR(img.data(), 32, mask.data(), 32, {32, 2}, nullptr, nullptr, nullptr, nullptr),
              lumStatusEmptyMask);
    // Indices without their values: nothing is computed either.
    LumiPoint mi{0, 0}, xi{0, 0};
    EXPECT_EQ(lumiMinMaxIndx_8u_C1MR(img.data(), 32, mask.data(), 32, {32, 2}, nullptr, nullptr, &mi, &xi),
              lumStatusOk);
    // Unmasked members never warn.
    EXPECT_EQ(lumiMinMaxIndx_8u_C1R(img.data(), 32, {32, 2}, nullptr, nullptr, nullptr, nullptr), lumStatusOk);
}

TEST(MinMaxEdges, WithoutItsValueAnIndexIsNotWritten) {
    std::vector<Lum16u> img(20 * 3);
    for (size_t i = 0; i < img.size(); ++i) img[i] = static_cast<Lum16u>(1000 + (i * 37) % 61);
    Lum32f mn = -1;
    LumiPoint mi{-1, -1}, xi{-7, -7};
    ASSERT_EQ(lumiMinMaxIndx_16u_C1R(img.data(), 40, {20, 3}, &mn, nullptr, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, 1000.0f);
    EXPECT_TRUE(samePoint(mi, {0, 0}));
    EXPECT_TRUE(samePoint(xi, {-7, -7}));
}

// A tie in a later row never moves the saved row; within the row the first
// x wins.
TEST(MinMaxEdges, FirstOccurrenceInRowMajorOrder) {
    std::vector<Lum32f> img(70 * 5, 3.0f);
    img[2 * 70 + 50] = -4.0f;
    img[2 * 70 + 60] = -4.0f;
    img[4 * 70 + 1] = -4.0f;
    img[3 * 70 + 69] = 9.0f;
    img[4 * 70 + 0] = 9.0f;
    Lum32f mn, mx;
    LumiPoint mi, xi;
    ASSERT_EQ(lumiMinMaxIndx_32f_C1R(img.data(), 280, {70, 5}, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, -4.0f);
    EXPECT_TRUE(samePoint(mi, {50, 2}));
    EXPECT_EQ(mx, 9.0f);
    EXPECT_TRUE(samePoint(xi, {69, 3}));
}

TEST(MinMaxEdges, ThreeChannelPositionsArePixels) {
    std::vector<Lum8u> img(3 * 40 * 2, 100);
    img[3 * (1 * 40 + 33) + 2] = 3;   // channel 3 of pixel (33, 1)
    img[3 * (0 * 40 + 5) + 1] = 250;  // channel 2 of pixel (5, 0)
    Lum32f mn, mx;
    LumiPoint mi, xi;
    ASSERT_EQ(lumiMinMaxIndx_8u_C3CR(img.data(), 120, {40, 2}, 3, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, 3.0f);
    EXPECT_TRUE(samePoint(mi, {33, 1}));
    EXPECT_EQ(mx, 100.0f);
    EXPECT_TRUE(samePoint(xi, {0, 0}));
    ASSERT_EQ(lumiMinMaxIndx_8u_C3CR(img.data(), 120, {40, 2}, 2, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mx, 250.0f);
    EXPECT_TRUE(samePoint(xi, {5, 0}));
}

// No sample improves on a float seed (all at plus infinity, for the minimum):
// no row is saved; the value is the first sample and the index the origin.
TEST(MinMaxEdges, FloatAllPlusInfinityHasNoSavedRow) {
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<Lum32f> img(33 * 3, inf);
    Lum32f mn = 0, mx = 0;
    LumiPoint mi{-1, -1}, xi{-1, -1};
    ASSERT_EQ(lumiMinMaxIndx_32f_C1R(img.data(), 132, {33, 3}, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, inf);
    EXPECT_TRUE(samePoint(mi, {0, 0}));
    EXPECT_EQ(mx, inf);
    EXPECT_TRUE(samePoint(xi, {0, 0}));
}

// In a masked float search with no saved row, the value is that of pixel
// (0, 0), whether that pixel is selected or not.
TEST(MinMaxChoices, ChoiceFloatNoSavedRowTakesPixelZeroEvenWhenUnselected) {
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<Lum32f> img(16 * 2, inf);
    std::vector<Lum8u> mask(16 * 2, 1);
    img[0] = 7.0f;
    mask[0] = 0;
    Lum32f mn = 0;
    LumiPoint mi{-1, -1};
    EXPECT_EQ(lumiMinMaxIndx_32f_C1MR(img.data(), 64, mask.data(), 16, {16, 2}, &mn, nullptr, &mi, nullptr),
              lumStatusEmptyMask);  // index at the origin, first mask byte zero
    EXPECT_EQ(mn, 7.0f);
    EXPECT_TRUE(samePoint(mi, {0, 0}));
}

// An integer search with no saved row keeps the seed as its value, which
// every selected sample equals; the index is the origin.
TEST(MinMaxChoices, ChoiceIntegerNoSavedRowKeepsTheSeedValue) {
    std::vector<Lum8u> img(40 * 2, 255);
    std::vector<Lum8u> mask(40 * 2, 0);
    img[0] = 3;
    mask[41] = 1;
    Lum32f mn = 0;
    LumiPoint mi{-1, -1};
    EXPECT_EQ(lumiMinMaxIndx_8u_C1MR(img.data(), 40, mask.data(), 40, {40, 2}, &mn, nullptr, &mi, nullptr),
              lumStatusEmptyMask);
    EXPECT_EQ(mn, 255.0f);
    EXPECT_TRUE(samePoint(mi, {0, 0}));
    Lum32f mn16 = 0;
    std::vector<Lum16u> i16(40 * 2, 65535);
    EXPECT_EQ(lumiMinMaxIndx_16u_C1MR(i16.data(), 80, mask.data(), 40, {40, 2}, &mn16, nullptr, nullptr, nullptr),
              lumStatusOk);  // a value other than zero
    EXPECT_EQ(mn16, 65535.0f);
}

// A float extreme is delivered as the sample at its position, so a zero
// keeps the sign it has there.
TEST(MinMaxChoices, ChoiceFloatValueIsTheSampleAtTheIndex) {
    for (int first : {0, 1}) {
        std::vector<Lum32f> img(24, 1.0f);
        img[5] = first == 0 ? 0.0f : -0.0f;
        img[19] = first == 0 ? -0.0f : 0.0f;
        Lum32f mn = 5, mn2 = 5;
        LumiPoint mi;
        ASSERT_EQ(lumiMinMaxIndx_32f_C1R(img.data(), 96, {24, 1}, &mn, nullptr, &mi, nullptr), lumStatusOk);
        EXPECT_TRUE(samePoint(mi, {5, 0}));
        EXPECT_TRUE(sameFloat(mn, img[5]));
        // Without the index, the same value.
        ASSERT_EQ(lumiMinMaxIndx_32f_C1R(img.data(), 96, {24, 1}, &mn2, nullptr, nullptr, nullptr), lumStatusOk);
        EXPECT_TRUE(sameFloat(mn2, img[5]));
    }
}

// The status reads an index the caller passed even when its value is absent
// and the index was therefore not written.
TEST(MinMaxChoices, ChoiceUnwrittenIndexStillDecidesTheStatus) {
    std::vector<Lum8u> img(32, 5), mask(32, 0);
    Lum32f mx = -1;
    LumiPoint mi{3, 4};
    EXPECT_EQ(lumiMinMaxIndx_8u_C1MR(img.data(), 32, mask.data(), 32, {32, 1}, nullptr, &mx, &mi, nullptr),
              lumStatusOk);
    EXPECT_TRUE(samePoint(mi, {3, 4}));
    EXPECT_EQ(mx, 0.0f);
    mi = {0, 0};
    EXPECT_EQ(lumiMinMaxIndx_8u_C1MR(img.data(), 32, mask.data(), 32, {32, 1}, nullptr, &mx, &mi, nullptr),
              lumStatusEmptyMask);
}

// NaN samples never enter the running values: the vector min and max keep
// the running lanes, their second operand, when the sample is a NaN.
TEST(MinMaxChoices, ChoiceNanSamplesAreSkipped) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<Lum32f> img(3 * 20, nan);
    img[20 + 7] = 2.0f;
    img[40 + 3] = -1.0f;
    Lum32f mn, mx;
    LumiPoint mi, xi;
    ASSERT_EQ(lumiMinMaxIndx_32f_C1R(img.data(), 80, {20, 3}, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_EQ(mn, -1.0f);
    EXPECT_TRUE(samePoint(mi, {3, 2}));
    EXPECT_EQ(mx, 2.0f);
    EXPECT_TRUE(samePoint(xi, {7, 1}));
    // Only NaN: no saved row, the first sample.
    std::vector<Lum32f> all(9, nan);
    ASSERT_EQ(lumiMinMaxIndx_32f_C1R(all.data(), 36, {9, 1}, &mn, &mx, &mi, &xi), lumStatusOk);
    EXPECT_TRUE(std::isnan(mn));
    EXPECT_TRUE(samePoint(mi, {0, 0}));
}

// ------------------------------------------------------------ order of checks

template <class T, int C, bool kMasked>
void checks() {
    MemberShape shape{static_cast<int>(sizeof(T)), C, false, kMasked, false, false};
    runCheckTable(shape, [](const CheckArgs& a) {
        Outputs o;
        const auto* s = static_cast<const T*>(a.src);
        using M = Members<T>;
        LumStatus st;
        if (kMasked) {
            st = C == 1 ? noAlloc(M::c1m, s, a.srcStep, a.mask, a.maskStep, a.roi, &o.minVal, &o.maxVal, &o.minIndex,
                                  &o.maxIndex)
                        : noAlloc(M::c3m, s, a.srcStep, a.mask, a.maskStep, a.roi, a.coi, &o.minVal, &o.maxVal,
                                  &o.minIndex, &o.maxIndex);
        } else {
            st = C == 1 ? noAlloc(M::c1, s, a.srcStep, a.roi, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex)
                        : noAlloc(M::c3, s, a.srcStep, a.roi, a.coi, &o.minVal, &o.maxVal, &o.minIndex, &o.maxIndex);
        }
        if (st < 0) {
            EXPECT_TRUE(sameOutputs(o, Outputs{})) << "a failed check wrote an output";
        }
        return st;
    });
}

TYPED_TEST(MinMaxSweep, OrderOfChecks) {
    checks<TypeParam, 1, false>();
    checks<TypeParam, 3, false>();
    checks<TypeParam, 1, true>();
    checks<TypeParam, 3, true>();
}

TEST(MinMaxChecks, ChannelOfInterestOutsideOneToThree) {
    Lum16u buf[64] = {};
    Lum8u mask[16] = {1};
    for (int coi : {0, 4}) {
        EXPECT_EQ(lumiMinMaxIndx_16u_C3CR(buf, 24, {4, 2}, coi, nullptr, nullptr, nullptr, nullptr),
                  lumStatusBadChannelOfInterest);
        EXPECT_EQ(lumiMinMaxIndx_16u_C3CMR(buf, 24, mask, 4, {4, 2}, coi, nullptr, nullptr, nullptr, nullptr),
                  lumStatusBadChannelOfInterest);
    }
}

}  // namespace
