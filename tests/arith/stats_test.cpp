// Mean and standard deviation against scalar references written from their
// formulas, bit for bit, and the order of their checks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "arith/stats_fixture.h"
#include "arith/stats_reference.h"

namespace {

using namespace statstest;

// ------------------------------------------------------------ members

template <class T>
struct Members;

#define STATS_MEMBERS(T, t)                                                         \
    template <>                                                                     \
    struct Members<T> {                                                             \
        static inline const auto meanC1 = STATS_NAMED(lumiMean_##t##_C1MR);         \
        static inline const auto meanC3 = STATS_NAMED(lumiMean_##t##_C3CMR);        \
        static inline const auto stdC1 = STATS_NAMED(lumiMean_StdDev_##t##_C1R);    \
        static inline const auto stdC3 = STATS_NAMED(lumiMean_StdDev_##t##_C3CR);   \
        static inline const auto stdC1M = STATS_NAMED(lumiMean_StdDev_##t##_C1MR);  \
        static inline const auto stdC3M = STATS_NAMED(lumiMean_StdDev_##t##_C3CMR); \
    };
STATS_MEMBERS(Lum8u, 8u)
STATS_MEMBERS(Lum16u, 16u)
STATS_MEMBERS(Lum32f, 32f)
#undef STATS_MEMBERS

template <class T>
LumStatus callMean(const GuardedImage<T>& img, const GuardedImage<Lum8u>& m, int coi, Lum64f* out) {
    using M = Members<T>;
    const LumiSize roi{img.width(), img.height()};
    if (img.channels() == 1) return noAlloc(M::meanC1, img.data(), img.step(), m.data(), m.step(), roi, out);
    return noAlloc(M::meanC3, img.data(), img.step(), m.data(), m.step(), roi, coi, out);
}

// mask null: the unmasked member.
template <class T>
LumStatus callMeanStdDev(const GuardedImage<T>& img, const GuardedImage<Lum8u>* m, int coi, Lum64f* mean, Lum64f* sd) {
    using M = Members<T>;
    const LumiSize roi{img.width(), img.height()};
    if (m == nullptr) {
        if (img.channels() == 1) return noAlloc(M::stdC1, img.data(), img.step(), roi, mean, sd);
        return noAlloc(M::stdC3, img.data(), img.step(), roi, coi, mean, sd);
    }
    if (img.channels() == 1) return noAlloc(M::stdC1M, img.data(), img.step(), m->data(), m->step(), roi, mean, sd);
    return noAlloc(M::stdC3M, img.data(), img.step(), m->data(), m->step(), roi, coi, mean, sd);
}

template <class T>
class StatsSweep : public ::testing::Test {};
using Types = ::testing::Types<Lum8u, Lum16u, Lum32f>;
TYPED_TEST_SUITE(StatsSweep, Types);

// ------------------------------------------------------------ sweeps

TYPED_TEST(StatsSweep, MeanMatchesReferenceOverShapes) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int channels : {1, 3})
        for (int width = 1; width <= maxSweepWidth<T>(); ++width)
            for (int height : {1, 2, 3, 6}) {
                GuardedImage<T> img(lumtest::randomLayout<T>(width, height, channels, rng), rng);
                GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(width, height, 1, rng), rng);
                fillData(img, static_cast<Data>(rng.uniform(0, static_cast<int>(Data::Count) - 1)), rng);
                fillMask(mask, static_cast<MaskKind>(rng.uniform(0, static_cast<int>(MaskKind::Count) - 1)), rng);
                const int coi = channels == 3 ? rng.uniform(1, 3) : 1;
                Lum64f got = -7.0;
                ASSERT_EQ(callMean(img, mask, coi, &got), lumStatusOk) << img.describe();
                const double want = ref::mean(ref::planeOf(img, coi - 1, &mask));
                ASSERT_TRUE(sameDouble(got, want))
                    << img.describe() << " coi " << coi << ": got " << std::hexfloat << got << " want " << want;
                ASSERT_TRUE(img.unchanged());
                ASSERT_TRUE(mask.unchanged());
            }
}

TYPED_TEST(StatsSweep, MeanStdDevMatchesReferenceOverShapes) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int channels : {1, 3})
        for (bool masked : {false, true})
            for (int width = 1; width <= maxSweepWidth<T>(); ++width)
                for (int height : {1, 2, 5}) {
                    GuardedImage<T> img(lumtest::randomLayout<T>(width, height, channels, rng), rng);
                    GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(width, height, 1, rng), rng);
                    fillData(img, static_cast<Data>(rng.uniform(0, static_cast<int>(Data::Count) - 1)), rng);
                    fillMask(mask, static_cast<MaskKind>(rng.uniform(0, static_cast<int>(MaskKind::Count) - 1)), rng);
                    const int coi = channels == 3 ? rng.uniform(1, 3) : 1;
                    // Outputs may be null in any combination.
                    const int outs = rng.uniform(0, 3);
                    Lum64f mean = -7.0, sd = -7.0;
                    ASSERT_EQ(callMeanStdDev(img, masked ? &mask : nullptr, coi, (outs & 1) ? nullptr : &mean,
                                             (outs & 2) ? nullptr : &sd),
                              lumStatusOk)
                        << img.describe();
                    const ref::MeanStd want = ref::meanStdDev(ref::planeOf(img, coi - 1, masked ? &mask : nullptr));
                    SCOPED_TRACE(img.describe() + " coi " + std::to_string(coi) + (masked ? " masked" : ""));
                    if (outs & 1) {
                        EXPECT_EQ(mean, -7.0);
                    } else {
                        EXPECT_SAME_DOUBLE(mean, want.mean);
                    }
                    if (outs & 2) {
                        EXPECT_EQ(sd, -7.0);
                    } else {
                        EXPECT_SAME_DOUBLE(sd, want.stdDev);
                    }
                    ASSERT_TRUE(img.unchanged());
                    ASSERT_TRUE(mask.unchanged());
                    if (::testing::Test::HasFailure()) return;
                }
}

// Larger images: the 32f mean crosses several flushes of 480 groups, and the
// integer squares cross the widening of their 32-bit lanes.
TYPED_TEST(StatsSweep, LargeImagesMatchReference) {
    using T = TypeParam;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int channels : {1, 3})
        for (LumiSize s : {LumiSize{1021, 9}, LumiSize{3840, 3}, LumiSize{17, 260}}) {
            GuardedImage<T> img(lumtest::randomLayout<T>(s.width, s.height, channels, rng), rng);
            GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(s.width, s.height, 1, rng), rng);
            fillData(img, Data::Random, rng);
            fillMask(mask, rng.chance(0.5) ? MaskKind::Full : MaskKind::Half, rng);
            const int coi = channels == 3 ? rng.uniform(1, 3) : 1;
            const ref::Plane<T> pm = ref::planeOf(img, coi - 1, &mask), pu = ref::planeOf(img, coi - 1, nullptr);
            Lum64f mean = 0, sd = 0;
            ASSERT_EQ(callMean(img, mask, coi, &mean), lumStatusOk);
            EXPECT_SAME_DOUBLE(mean, ref::mean(pm));
            ASSERT_EQ(callMeanStdDev(img, &mask, coi, &mean, &sd), lumStatusOk);
            EXPECT_SAME_DOUBLE(mean, ref::meanStdDev(pm).mean);
            EXPECT_SAME_DOUBLE(sd, ref::meanStdDev(pm).stdDev);
            ASSERT_EQ(callMeanStdDev(img, nullptr, coi, &mean, &sd), lumStatusOk);
            EXPECT_SAME_DOUBLE(mean, ref::meanStdDev(pu).mean);
            EXPECT_SAME_DOUBLE(sd, ref::meanStdDev(pu).stdDev);
        }
}

// 16u squares near the top of the range: the sum of squares is exact.
TEST(StatsEdges, SixteenBitSquaresAreExact) {
    std::vector<Lum16u> img(300 * 4, 65535);
    img[7] = 0;
    img[400] = 1;
    Lum64f mean = 0, sd = 0;
    ASSERT_EQ(lumiMean_StdDev_16u_C1R(img.data(), 600, {300, 4}, &mean, &sd), lumStatusOk);
    uint64_t s = 0, q = 0;
    for (Lum16u v : img) {
        s += v;
        q += uint64_t{v} * v;
    }
    const double m = static_cast<double>(s) / 1200.0;
    EXPECT_SAME_DOUBLE(mean, m);
    EXPECT_SAME_DOUBLE(sd, ref::onePassDeviation(m, static_cast<double>(q) / 1200.0));
}

// 16u sums gather in signed 32-bit lanes (the samples taken less 32768) that
// move to 64 bits every 16384 groups of 16 pixels. Rows of the two extreme
// samples, one group either side of a widening and long enough that lanes
// never widened would overflow; the norms carry their sums across rows.
TEST(StatsEdges, SixteenBitSumsWidenBeforeTheyOverflow) {
    for (Lum16u v : {Lum16u{0}, Lum16u{65535}})
        for (int groups : {16383, 16384, 16385, 40000}) {
            SCOPED_TRACE(std::to_string(v) + " x " + std::to_string(groups) + " groups");
            const int w = 16 * groups + 5;
            std::vector<Lum16u> img(static_cast<size_t>(w), v);
            std::vector<Lum8u> mask(static_cast<size_t>(w), 1);
            Lum64f mean = -1, sd = -1;
            ASSERT_EQ(lumiMean_StdDev_16u_C1R(img.data(), 2 * w, {w, 1}, &mean, &sd), lumStatusOk);
            EXPECT_EQ(mean, static_cast<double>(v));
            EXPECT_SAME_DOUBLE(sd, 0.0);
            ASSERT_EQ(lumiMean_16u_C1MR(img.data(), 2 * w, mask.data(), w, {w, 1}, &mean), lumStatusOk);
            EXPECT_EQ(mean, static_cast<double>(v));
            Lum64f l1 = -1, l2 = -1;
            ASSERT_EQ(lumiNorm_L1_16u_C1MR(img.data(), 2 * w, mask.data(), w, {w, 1}, &l1), lumStatusOk);
            EXPECT_SAME_DOUBLE(l1, static_cast<double>(v) * w);
            ASSERT_EQ(lumiNorm_L2_16u_C1MR(img.data(), 2 * w, mask.data(), w, {w, 1}, &l2), lumStatusOk);
            EXPECT_SAME_DOUBLE(l2, std::sqrt(static_cast<double>(v) * v * w));
        }
    // A norm's sums go on over the rows: 40 rows of 1000 groups.
    const int w = 16 * 1000, h = 40;
    std::vector<Lum16u> img(static_cast<size_t>(w) * h, 65535);
    std::vector<Lum8u> mask(static_cast<size_t>(w) * h, 0);
    for (size_t i = 0; i < mask.size(); i += 2) mask[i] = 1;  // the unselected half reads as zeros
    Lum64f l1 = -1;
    ASSERT_EQ(lumiNorm_L1_16u_C1MR(img.data(), 2 * w, mask.data(), w, {w, h}, &l1), lumStatusOk);
    EXPECT_SAME_DOUBLE(l1, 65535.0 * (w / 2) * h);
}

// ------------------------------------------------------------ the float lanes

// A float image whose lane sums round differently under the alternatives.
GuardedImage<Lum32f>* wideImage(int width, int height, Rng& rng) {
    Layout l;
    l.width = width;
    l.height = height;
    auto* img = new GuardedImage<Lum32f>(l, rng);
    fillData(*img, Data::Random, rng);
    return img;
}

GuardedImage<Lum8u>* fullMask(int width, int height, Rng& rng) {
    Layout l;
    l.width = width;
    l.height = height;
    auto* m = new GuardedImage<Lum8u>(l, rng);
    fillMask(*m, MaskKind::Full, rng);
    return m;
}

// The float mean's lanes go on from row to row; a flush comes after every
// 480 groups counted over the image, not at each row's end.
TEST(StatsFloatLanes, ChoiceMeanLanesCarryAcrossRows) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    int discriminating = 0;
    for (int trial = 0; trial < 8; ++trial) {
        std::unique_ptr<GuardedImage<Lum32f>> img(wideImage(203, 40, rng));
        std::unique_ptr<GuardedImage<Lum8u>> mask(fullMask(203, 40, rng));
        const ref::Plane<float> p = ref::planeOf(*img, 0, mask.get());
        Lum64f got = 0;
        ASSERT_EQ(lumiMean_32f_C1MR(img->data(), img->step(), mask->data(), mask->step(), {203, 40}, &got),
                  lumStatusOk);
        EXPECT_SAME_DOUBLE(got, ref::meanFloat(p));
        ref::MeanModel perRow;
        perRow.flushEachRow = true;
        discriminating += !sameDouble(ref::meanFloat(p), ref::meanFloat(p, perRow));
    }
    EXPECT_GT(discriminating, 0) << "the data never told the two readings apart";
}

// A row's last, partial group advances the count of groups towards the next
// flush like a full one.
TEST(StatsFloatLanes, ChoiceMeanRowTailCountsAsOneGroup) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    int discriminating = 0;
    for (int trial = 0; trial < 8; ++trial) {
        // 26 groups a row, one partial: 480 groups end within the 19th row.
        std::unique_ptr<GuardedImage<Lum32f>> img(wideImage(205, 60, rng));
        std::unique_ptr<GuardedImage<Lum8u>> mask(fullMask(205, 60, rng));
        const ref::Plane<float> p = ref::planeOf(*img, 0, mask.get());
        Lum64f got = 0;
        ASSERT_EQ(lumiMean_32f_C1MR(img->data(), img->step(), mask->data(), mask->step(), {205, 60}, &got),
                  lumStatusOk);
        EXPECT_SAME_DOUBLE(got, ref::meanFloat(p));
        ref::MeanModel fullOnly;
        fullOnly.tailCountsAsGroup = false;
        discriminating += !sameDouble(ref::meanFloat(p), ref::meanFloat(p, fullOnly));
    }
    EXPECT_GT(discriminating, 0) << "the data never told the two readings apart";
}

// Flushing adds lanes 0..3 into the four doubles first, then lanes 4..7 into
// the same four; not each lane pair summed first. With 2^60 in the first
// double, 100 from lane 0 and 100 from lane 4 vanish one by one but not as a
// pair of 200, which rounds up to the next double (2^60 + 256).
TEST(StatsFloatLanes, ChoiceLowLanesFlushBeforeHighLanes) {
    const int width = 8 * 490;
    std::vector<Lum32f> img(width, 0.0f);
    std::vector<Lum8u> mask(width, 1);
    img[0] = 0x1p60f;           // lane 0, first flush
    img[8 * 480] = 100.0f;      // lane 0, second flush
    img[8 * 480 + 4] = 100.0f;  // lane 4, second flush
    Lum64f got = 0;
    ASSERT_EQ(lumiMean_32f_C1MR(img.data(), 4 * width, mask.data(), width, {width, 1}, &got), lumStatusOk);
    EXPECT_SAME_DOUBLE(got, 0x1p60 / width);
    EXPECT_FALSE(sameDouble(got, (0x1p60 + 256.0) / width));
}

// Pixel x of a row is summed in float lane x % 8 of one accumulator, a row's
// partial last group in its first lanes, and every row starts again at lane
// 0. With 2^24 in lane 0, further ones in lane 0 vanish; in other lanes they
// would count.
TEST(StatsFloatLanes, ChoicePixelXSumsInLaneXMod8) {
    std::vector<Lum32f> img(17 * 2, 0.0f);
    std::vector<Lum8u> mask(17 * 2, 1);
    img[0] = 0x1p24f;  // row 0, lane 0
    img[8] = 1.0f;     // row 0, lane 0 of the second group
    img[16] = 1.0f;    // row 0, lane 0 of the partial group
    img[17] = 1.0f;    // row 1, x 0: lane 0 again
    Lum64f got = 0;
    ASSERT_EQ(lumiMean_32f_C1MR(img.data(), 4 * 17, mask.data(), 17, {17, 2}, &got), lumStatusOk);
    EXPECT_SAME_DOUBLE(got, 0x1p24 / 34);
    // The norms sum a row the same way; they flush at each row's end, so
    // row 1's one survives there.
    Lum64f l1 = 0;
    ASSERT_EQ(lumiNorm_L1_32f_C1MR(img.data(), 4 * 17, mask.data(), 17, {17, 2}, &l1), lumStatusOk);
    EXPECT_SAME_DOUBLE(l1, 0x1p24 + 1.0);
    // One channel of three lands in the same lanes.
    std::vector<Lum32f> rgb(3 * 17, 5.0f);
    for (int x = 0; x < 17; ++x) rgb[3 * x + 1] = img[x];
    ASSERT_EQ(lumiMean_32f_C3CMR(rgb.data(), 12 * 17, mask.data(), 17, {17, 1}, 2, &got), lumStatusOk);
    EXPECT_SAME_DOUBLE(got, 0x1p24 / 17);
}

// The deviation's float lanes go into the four doubles at each row's end, the
// same way as the mean's, rather than summed across in float first.
TEST(StatsFloatLanes, ChoiceDeviationRowLanesFlushLikeTheMean) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    int discriminating = 0;
    for (int trial = 0; trial < 8; ++trial) {
        std::unique_ptr<GuardedImage<Lum32f>> img(wideImage(77, 30, rng));
        const ref::Plane<float> p = ref::planeOf(*img, 0, nullptr);
        Lum64f mean = 0, sd = 0;
        ASSERT_EQ(lumiMean_StdDev_32f_C1R(img->data(), img->step(), {77, 30}, &mean, &sd), lumStatusOk);
        EXPECT_SAME_DOUBLE(mean, ref::meanStdDevFloat(p).mean);
        EXPECT_SAME_DOUBLE(sd, ref::meanStdDevFloat(p).stdDev);
        double other = 0;
        for (int y = 0; y < 30; ++y) {
            float lane[8] = {};
            for (int x = 0; x < 77; ++x) lane[x % 8] += p.at(x, y);
            float across = 0;
            for (float l : lane) across += l;
            other += across;
        }
        discriminating += !sameDouble(other / (77 * 30), ref::meanStdDevFloat(p).mean);
    }
    EXPECT_GT(discriminating, 0) << "the data never told the two readings apart";
}

// ------------------------------------------------------------ edge cases

TEST(StatsEdges, MeanOfAnAllZeroMaskIsZeroAndOk) {
    Rng rng;
    for (int channels : {1, 3}) {
        GuardedImage<Lum8u> img(lumtest::randomLayout<Lum8u>(37, 5, channels, rng), rng);
        GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(37, 5, 1, rng), rng);
        fillMask(mask, MaskKind::Empty, rng);
        Lum64f mean = -1;
        ASSERT_EQ(callMean(img, mask, 2, &mean), lumStatusOk);
        EXPECT_SAME_DOUBLE(mean, 0.0);
        GuardedImage<Lum16u> i16(lumtest::randomLayout<Lum16u>(37, 5, channels, rng), rng);
        ASSERT_EQ(callMean(i16, mask, 3, &mean), lumStatusOk);
        EXPECT_SAME_DOUBLE(mean, 0.0);
        GuardedImage<Lum32f> i32(lumtest::randomLayout<Lum32f>(37, 5, channels, rng), rng);
        ASSERT_EQ(callMean(i32, mask, 1, &mean), lumStatusOk);
        EXPECT_SAME_DOUBLE(mean, 0.0);
    }
}

TEST(StatsEdges, DeviationOfAnEmptySelectionIsZeroAndOk) {
    std::vector<Lum32f> img(64, 5.0f);
    std::vector<Lum8u> mask(64, 0);
    Lum64f mean = -1, sd = -1;
    EXPECT_EQ(lumiMean_StdDev_32f_C1MR(img.data(), 32, mask.data(), 8, {8, 8}, &mean, &sd), lumStatusOk);
    EXPECT_SAME_DOUBLE(mean, 0.0);
    EXPECT_SAME_DOUBLE(sd, 0.0);
    std::vector<Lum8u> i8(3 * 64, 9);
    mean = sd = -1;
    EXPECT_EQ(lumiMean_StdDev_8u_C3CMR(i8.data(), 24, mask.data(), 8, {8, 8}, 2, &mean, &sd), lumStatusOk);
    EXPECT_SAME_DOUBLE(mean, 0.0);
    EXPECT_SAME_DOUBLE(sd, 0.0);
}

TEST(StatsEdges, DeviationOfAConstantEightBitImageIsNeverNan) {
    for (int v = 0; v < 256; v += 5) {
        for (LumiSize s : {LumiSize{1, 1}, LumiSize{33, 7}, LumiSize{640, 3}}) {
            std::vector<Lum8u> img(static_cast<size_t>(s.width) * s.height, static_cast<Lum8u>(v));
            Lum64f mean = 0, sd = -1;
            ASSERT_EQ(lumiMean_StdDev_8u_C1R(img.data(), s.width, s, &mean, &sd), lumStatusOk);
            EXPECT_EQ(mean, v);
            EXPECT_FALSE(std::isnan(sd));
            EXPECT_GE(sd, 0.0);
            EXPECT_LT(sd, 1e-6);
        }
    }
}

// 1000 plus small noise: the one-pass form cancels, the ratio test fires and
// the result comes from the second pass around the float mean.
TEST(StatsEdges, FloatDeviationNearALargeMeanTakesTheSecondPass) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (bool masked : {false, true}) {
        GuardedImage<Lum32f> img(lumtest::randomLayout<Lum32f>(131, 17, 1, rng), rng);
        GuardedImage<Lum8u> mask(lumtest::randomLayout<Lum8u>(131, 17, 1, rng), rng);
        fillData(img, Data::NearConstantLarge, rng);
        fillMask(mask, MaskKind::Half, rng);
        const ref::MeanStd want = ref::meanStdDevFloat(ref::planeOf(img, 0, masked ? &mask : nullptr));
        ASSERT_TRUE(want.secondPass);
        EXPECT_FALSE(sameDouble(want.stdDev, want.onePass));
        Lum64f mean = 0, sd = 0;
        ASSERT_EQ(callMeanStdDev(img, masked ? &mask : nullptr, 1, &mean, &sd), lumStatusOk);
        EXPECT_SAME_DOUBLE(mean, want.mean);
        EXPECT_SAME_DOUBLE(sd, want.stdDev);
        EXPECT_NEAR(sd, 1e-3 / std::sqrt(3.0), 2e-4);
        // Without the output for stdDev, the mean is the same.
        Lum64f meanOnly = 0;
        ASSERT_EQ(callMeanStdDev(img, masked ? &mask : nullptr, 1, &meanOnly, nullptr), lumStatusOk);
        EXPECT_SAME_DOUBLE(meanOnly, want.mean);
    }
}

// A one-pass residue slightly below zero gives the root of its magnitude,
// not a NaN: 16u samples at the top of the range with one off by one, where
// the rounded q falls below the rounded m^2.
TEST(StatsEdges, NegativeResidueKeepsItsMagnitude) {
    const int w = 1920, h = 1080;
    ref::Plane<Lum16u> p;
    p.width = w;
    p.height = h;
    p.v.assign(static_cast<size_t>(w) * h, 65535);
    p.v[12345] = 65534;
    const double n = static_cast<double>(w) * h;
    const double m = (65535.0 * n - 1.0) / n;
    const double q = (65535.0 * 65535.0 * (n - 1.0) + 65534.0 * 65534.0) / n;
    ASSERT_LT(std::fma(-m, m, q), 0.0);
    Lum64f mean = 0, sd = -1;
    ASSERT_EQ(lumiMean_StdDev_16u_C1R(p.v.data(), 2 * w, {w, h}, &mean, &sd), lumStatusOk);
    EXPECT_SAME_DOUBLE(mean, m);
    EXPECT_SAME_DOUBLE(sd, std::sqrt(-std::fma(-m, m, q)));
    EXPECT_SAME_DOUBLE(sd, ref::meanStdDevInt(p).stdDev);
}

// ------------------------------------------------------------ order of checks

template <class T, int C>
void meanChecks() {
    MemberShape shape{static_cast<int>(sizeof(T)), C, false, true, true, false};
    runCheckTable(shape, [](const CheckArgs& a) {
        Lum64f out = -3.0;
        Lum64f* o = a.outNull ? nullptr : &out;
        const auto* s = static_cast<const T*>(a.src);
        const LumStatus st = C == 1 ? noAlloc(Members<T>::meanC1, s, a.srcStep, a.mask, a.maskStep, a.roi, o)
                                    : noAlloc(Members<T>::meanC3, s, a.srcStep, a.mask, a.maskStep, a.roi, a.coi, o);
        if (st < 0) {
            EXPECT_EQ(out, -3.0) << "a failed check wrote the mean";
        }
        return st;
    });
}

template <class T, int C, bool kMasked>
void stdDevChecks() {
    MemberShape shape{static_cast<int>(sizeof(T)), C, false, kMasked, false, false};
    runCheckTable(shape, [](const CheckArgs& a) {
        Lum64f mean = -3.0, sd = -3.0;
        const auto* s = static_cast<const T*>(a.src);
        using M = Members<T>;
        LumStatus st;
        if (kMasked) {
            st = C == 1 ? noAlloc(M::stdC1M, s, a.srcStep, a.mask, a.maskStep, a.roi, &mean, &sd)
                        : noAlloc(M::stdC3M, s, a.srcStep, a.mask, a.maskStep, a.roi, a.coi, &mean, &sd);
        } else {
            st = C == 1 ? noAlloc(M::stdC1, s, a.srcStep, a.roi, &mean, &sd)
                        : noAlloc(M::stdC3, s, a.srcStep, a.roi, a.coi, &mean, &sd);
        }
        if (st < 0) {
            EXPECT_EQ(mean, -3.0);
            EXPECT_EQ(sd, -3.0);
        }
        return st;
    });
}

TYPED_TEST(StatsSweep, OrderOfChecksMean) {
    meanChecks<TypeParam, 1>();
    meanChecks<TypeParam, 3>();
}

TYPED_TEST(StatsSweep, OrderOfChecksMeanStdDev) {
    stdDevChecks<TypeParam, 1, false>();
    stdDevChecks<TypeParam, 3, false>();
    stdDevChecks<TypeParam, 1, true>();
    stdDevChecks<TypeParam, 3, true>();
}

TEST(StatsChecks, ChannelOfInterestOutsideOneToThree) {
    Lum8u buf[64] = {1};
    Lum8u mask[16] = {1};
    Lum64f mean = 0, sd = 0;
    for (int coi : {0, 4}) {
        EXPECT_EQ(lumiMean_8u_C3CMR(buf, 12, mask, 4, {4, 2}, coi, &mean), lumStatusBadChannelOfInterest);
        EXPECT_EQ(lumiMean_StdDev_8u_C3CR(buf, 12, {4, 2}, coi, &mean, &sd), lumStatusBadChannelOfInterest);
        EXPECT_EQ(lumiMean_StdDev_8u_C3CMR(buf, 12, mask, 4, {4, 2}, coi, &mean, &sd), lumStatusBadChannelOfInterest);
    }
}

TEST(StatsChecks, ThreeChannelRowBytesAreThreeTimesTheWidth) {
    Lum32f buf[64] = {};
    Lum64f mean = 0, sd = 0;
    EXPECT_EQ(lumiMean_StdDev_32f_C3CR(buf, 3 * 4 * 4, {4, 2}, 1, &mean, &sd), lumStatusOk);
    EXPECT_EQ(lumiMean_StdDev_32f_C3CR(buf, 3 * 4 * 4 - 4, {4, 2}, 1, &mean, &sd), lumStatusBadStep);
    // A width with huge row bytes fails the step test.
    EXPECT_EQ(lumiMean_StdDev_32f_C3CR(buf, 48, {0x01000001, 1}, 1, &mean, &sd), lumStatusBadStep);
}

// ------------------------------------------------------------ OpenCV

}  // namespace
