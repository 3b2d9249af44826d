// Motion history against a scalar reference written from its rule.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "lumcv.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

#ifdef LUMCV_HAVE_OPENCV_CONTRIB
#include <opencv2/imgproc.hpp>
#include <opencv2/optflow/motempl.hpp>
#endif

namespace {

using lumtest::GuardedImage;
using lumtest::Layout;
using lumtest::Rng;

using lumtest::bitsOf;
const float kNan = std::numeric_limits<float>::quiet_NaN();

namespace ref {

// t is formed once in single precision; a history equal to t survives.
template <class S>
float update(S sil, float h, float timestamp, float duration) {
    const float t = timestamp - duration;
    const bool motion = static_cast<float>(sil) != 0.0f;  // NaN counts as motion, -0 does not
    if (motion) return timestamp;
    if (h < t) return 0.0f;
    return h;
}

}  // namespace ref

template <class S>
using UpdateFn = LumStatus (*)(const S*, int, Lum32f*, int, LumiSize, Lum32f, Lum32f);

template <class S>
LumStatus callUpdate(const S* s, int ss, Lum32f* h, int hs, LumiSize roi, Lum32f ts, Lum32f dur) {
    if constexpr (sizeof(S) == 1) return LUMTEST_NOALLOC(lumiUpdateMotionHistory_8u32f_C1IR, (s, ss, h, hs, roi, ts, dur));
    else if constexpr (sizeof(S) == 2)
        return LUMTEST_NOALLOC(lumiUpdateMotionHistory_16u32f_C1IR, (s, ss, h, hs, roi, ts, dur));
    else return LUMTEST_NOALLOC(lumiUpdateMotionHistory_32f_C1IR, (s, ss, h, hs, roi, ts, dur));
}

template <class S>
S randomSilhouette(Rng& rng) {
    if (rng.chance(0.6)) return S(0);
    if constexpr (sizeof(S) == 4) {
        switch (rng.uniform(0, 5)) {
            case 0: return -0.0f;
            case 1: return kNan;
            case 2: return lumtest::floatFromBits(rng.bits() & 0x807fffffu);  // denormal, or a zero
            case 3: return -std::numeric_limits<float>::infinity();
            default: return static_cast<float>(rng.uniformReal(-10.0, 10.0));
        }
    } else {
        return static_cast<S>(rng.uniform(1, static_cast<int>(std::numeric_limits<S>::max())));
    }
}

// History values around the limit: equal to it, one step either side, zero,
// older stamps, NaN.
float randomHistory(Rng& rng, float t, float timestamp) {
    switch (rng.uniform(0, 7)) {
        case 0: return t;
        case 1: return std::nextafter(t, -1e30f);
        case 2: return std::nextafter(t, 1e30f);
        case 3: return 0.0f;
        case 4: return rng.chance(0.5) ? kNan : -0.0f;
        case 5: return timestamp;
        default: return static_cast<float>(rng.uniformReal(t - 5.0, timestamp + 1.0));
    }
}

template <class S>
void sweep() {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int width = 1; width <= 72; ++width) {
        for (int height : {1, 2, 3, 5}) {
            Layout ls = lumtest::randomLayout<S>(width, height, 1, rng), lh = lumtest::randomLayout<float>(width, height, 1, rng);
            if (height == 5) ls.stepSlack = lh.stepSlack = 0;  // rows without gaps run as one
            GuardedImage<S> sil(ls, rng);
            GuardedImage<float> mhi(lh, rng);
            const float timestamp = static_cast<float>(rng.uniformReal(0.0, 1000.0));
            const float duration = rng.chance(0.2) ? 0.0f : static_cast<float>(rng.uniformReal(0.0, 50.0));
            const float t = timestamp - duration;
            sil.fill([&](int, int, int) { return randomSilhouette<S>(rng); });
            mhi.fill([&](int, int, int) { return randomHistory(rng, t, timestamp); });
            std::vector<float> want(static_cast<size_t>(width) * height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    want[static_cast<size_t>(y) * width + x] = ref::update(sil.at(x, y), mhi.at(x, y), timestamp, duration);
            ASSERT_EQ(callUpdate<S>(sil.data(), sil.step(), mhi.data(), mhi.step(), {width, height}, timestamp, duration),
                      lumStatusOk);
            ASSERT_TRUE(lumtest::sameBitsAsReference(mhi, want)) << "timestamp " << timestamp << " duration " << duration;
            ASSERT_TRUE(mhi.intactOutsideRoi());
            ASSERT_TRUE(sil.unchanged());
        }
    }
}

TEST(MotionHistorySweep, Silhouette8u) { sweep<Lum8u>(); }
TEST(MotionHistorySweep, Silhouette16u) { sweep<Lum16u>(); }
TEST(MotionHistorySweep, Silhouette32f) { sweep<Lum32f>(); }

// ------------------------------------------------------------ order of checks

template <class S>
void checkOrder() {
    constexpr int s = static_cast<int>(sizeof(S));
    alignas(32) static float store[256];
    for (float& v : store) v = 3.0f;
    const S* sil = reinterpret_cast<const S*>(store);
    float* mhi = store + 128;
    const int w = 4;
    const int sRow = s * w, hRow = 4 * w;
    struct Case {
        const S* sil;
        int ss;
        float* mhi;
        int hs;
        LumiSize roi;
        float duration;
        LumStatus want;
    };
    std::vector<Case> cases = {
        {nullptr, -1, mhi, -1, {0, 0}, -1.0f, lumStatusNullPointer},
        {sil, -1, nullptr, -1, {0, 0}, -1.0f, lumStatusNullPointer},
        {sil, -1, mhi, -1, {0, 3}, -1.0f, lumStatusBadSize},
        {sil, -1, mhi, -1, {2, 0}, -1.0f, lumStatusBadSize},
        {sil, sRow - 1, mhi, hRow + 1, {w, 2}, -1.0f, lumStatusBadStep},
        {sil, sRow, mhi, hRow - 1, {w, 2}, -1.0f, lumStatusBadStep},
        {sil, sRow + 1, mhi, hRow - 4, {w, 2}, -1.0f, lumStatusBadStep},  // every size before any alignment
        {sil, sRow, mhi, hRow + 2, {w, 2}, -1.0f, lumStatusStepNotAligned},
        {sil, sRow + 1, mhi, hRow, {w, 2}, -1.0f, s > 1 ? lumStatusStepNotAligned : lumStatusOutOfRange},
        {sil, sRow, mhi, hRow, {w, 2}, -1.0f, lumStatusOutOfRange},
        {sil, sRow, mhi, hRow, {w, 2}, -std::numeric_limits<float>::denorm_min(), lumStatusOutOfRange},
        {sil, sRow, mhi, hRow, {w, 2}, -0.0f, lumStatusOk},
        {sil, sRow, mhi, hRow, {w, 2}, kNan, lumStatusOk},
        {sil, sRow + s, mhi, hRow + 4, {w, 2}, 1.0f, lumStatusOk},
    };
    for (const Case& c : cases) {
        const std::vector<float> before(store + 128, store + 256);
        EXPECT_EQ(callUpdate<S>(c.sil, c.ss, c.mhi, c.hs, c.roi, 10.0f, c.duration), c.want)
            << "steps " << c.ss << " " << c.hs << " duration " << c.duration;
        if (c.want != lumStatusOk) {
            EXPECT_EQ(0, std::memcmp(before.data(), store + 128, 128 * 4)) << "wrote";
        }
    }
}

TEST(MotionHistoryChecks, Order8u) { checkOrder<Lum8u>(); }
TEST(MotionHistoryChecks, Order16u) { checkOrder<Lum16u>(); }
TEST(MotionHistoryChecks, Order32f) { checkOrder<Lum32f>(); }

// ------------------------------------------------------------ edge cases

TEST(MotionHistoryEdges, DurationZeroClearsEverythingBelowTheTimestamp) {
    const int w = 23;
    std::vector<Lum8u> sil(w, 0);
    std::vector<float> mhi(w);
    for (int i = 0; i < w; ++i) mhi[i] = static_cast<float>(i);
    mhi[5] = 10.0f;  // equal to the timestamp: stays
    mhi[6] = 11.0f;  // later: stays
    sil[7] = 1;
    ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil.data(), w, mhi.data(), 4 * w, {w, 1}, 10.0f, 0.0f), lumStatusOk);
    for (int i = 0; i < w; ++i) {
        const float want = i == 7 ? 10.0f : i == 5 ? 10.0f : i == 6 ? 11.0f : i < 10 ? 0.0f : static_cast<float>(i);
        EXPECT_EQ(mhi[i], want) << i;
    }
}

TEST(MotionHistoryEdges, EarlierTimestampKeepsLaterStampsAboveTheLimit) {
    const int w = 9;
    std::vector<Lum16u> sil(w, 0);
    std::vector<float> mhi = {50.0f, 40.0f, 30.0f, 29.5f, 20.0f, 0.0f, 45.0f, 30.0f, 100.0f};
    sil[4] = 9;
    // timestamp 35 below the stamps 40, 45, 50, 100 already there; t = 30.
    ASSERT_EQ(lumiUpdateMotionHistory_16u32f_C1IR(sil.data(), 2 * w, mhi.data(), 4 * w, {w, 1}, 35.0f, 5.0f),
              lumStatusOk);
    const std::vector<float> want = {50.0f, 40.0f, 30.0f, 0.0f, 35.0f, 0.0f, 45.0f, 30.0f, 100.0f};
    EXPECT_EQ(mhi, want);
}

TEST(MotionHistoryEdges, NegativeDurationIsRefusedAndNothingWritten) {
    Lum8u sil[4] = {1, 1, 1, 1};
    float mhi[4] = {1, 2, 3, 4};
    EXPECT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil, 4, mhi, 16, {4, 1}, 9.0f, -0.5f), lumStatusOutOfRange);
    EXPECT_EQ(mhi[0], 1.0f);
    EXPECT_EQ(mhi[3], 4.0f);
}

TEST(MotionHistoryEdges, NanDurationPassesAndClearsNothing) {
    Lum8u sil[3] = {0, 2, 0};
    float mhi[3] = {1.0f, 2.0f, -5.0f};
    ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil, 3, mhi, 12, {3, 1}, 9.0f, kNan), lumStatusOk);
    EXPECT_EQ(mhi[0], 1.0f);  // nothing is below a NaN limit
    EXPECT_EQ(mhi[1], 9.0f);
    EXPECT_EQ(mhi[2], -5.0f);
}

TEST(MotionHistoryEdges, FloatSilhouetteMinusZeroIsNoMotionNanIsMotion) {
    const int w = 19;
    std::vector<float> sil(w, -0.0f), mhi(w, 7.0f);
    sil[2] = kNan;
    sil[11] = -kNan;
    sil[17] = kNan;  // in the scalar tail
    sil[4] = std::numeric_limits<float>::denorm_min();
    ASSERT_EQ(lumiUpdateMotionHistory_32f_C1IR(sil.data(), 4 * w, mhi.data(), 4 * w, {w, 1}, 8.0f, 2.0f), lumStatusOk);
    for (int i = 0; i < w; ++i) EXPECT_EQ(mhi[i], (i == 2 || i == 11 || i == 17 || i == 4) ? 8.0f : 7.0f) << i;
}

// The limit timestamp - duration is rounded to float before any compare: with
// timestamp 1e8 and duration 5 it is 99999992, not 99999995, so a history of
// 99999992 survives.
TEST(MotionHistoryEdges, LimitIsFormedInSinglePrecision) {
    Lum8u sil[9] = {};
    std::vector<float> mhi(9, 99999992.0f);
    ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil, 9, mhi.data(), 36, {9, 1}, 1e8f, 5.0f), lumStatusOk);
    for (float v : mhi) EXPECT_EQ(v, 99999992.0f);
    mhi.assign(9, 99999984.0f);
    ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil, 9, mhi.data(), 36, {9, 1}, 1e8f, 5.0f), lumStatusOk);
    for (float v : mhi) EXPECT_EQ(v, 0.0f);
}

TEST(MotionHistoryEdges, NanHistoryWithoutMotionStays) {
    Lum8u sil[2] = {0, 1};
    float mhi[2] = {lumtest::floatFromBits(0x7fc01234u), kNan};
    ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil, 2, mhi, 8, {2, 1}, 3.0f, 1.0f), lumStatusOk);
    EXPECT_EQ(bitsOf(mhi[0]), 0x7fc01234u);
    EXPECT_EQ(mhi[1], 3.0f);
}

// ------------------------------------------------------------ OpenCV

#ifdef LUMCV_HAVE_OPENCV_CONTRIB

// A moving square over several frames: silhouettes from frame differences,
// timestamps and duration small integers, where the limit is exact in float
// and double alike, so the two histories must agree bit for bit.
TEST(MotionHistoryOpenCv, MovingObjectAgreesBitForBit) {
    const int w = 161, h = 90;
    cv::Mat ours(h, w, CV_32FC1, cv::Scalar(0)), theirs(h, w, CV_32FC1, cv::Scalar(0));
    cv::Mat prev(h, w, CV_8UC1, cv::Scalar(30));
    for (int frame = 1; frame <= 8; ++frame) {
        cv::Mat cur(h, w, CV_8UC1, cv::Scalar(30));
        cv::rectangle(cur, cv::Rect(10 + 12 * frame, 20 + 3 * frame, 25, 30), cv::Scalar(200), cv::FILLED);
        cv::Mat diff, sil;
        cv::absdiff(cur, prev, diff);
        cv::threshold(diff, sil, 40, 1, cv::THRESH_BINARY);
        const float ts = static_cast<float>(frame);
        ASSERT_EQ(lumiUpdateMotionHistory_8u32f_C1IR(sil.data, static_cast<int>(sil.step), ours.ptr<float>(),
                                                     static_cast<int>(ours.step), {w, h}, ts, 3.0f),
                  lumStatusOk);
        cv::motempl::updateMotionHistory(sil, theirs, frame, 3.0);
        prev = cur;
    }
    for (int y = 0; y < h; ++y) ASSERT_TRUE(lumtest::sameBits(ours.ptr<float>(y), theirs.ptr<float>(y), w)) << y;
    EXPECT_GT(cv::countNonZero(ours), 0);
}

#endif  // LUMCV_HAVE_OPENCV_CONTRIB

}  // namespace
