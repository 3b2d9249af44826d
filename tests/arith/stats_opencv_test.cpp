// Statistics and norms beside OpenCV on realistic images. Where both are
// exact (integer means and norms, extremes of untied data) the results must
// agree; where the two libraries round differently, the comment says why and
// the test allows for it.
#ifdef LUMCV_HAVE_OPENCV
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <numeric>
#include <opencv2/core.hpp>
#include <random>
#include <vector>

#include "lumcv.h"

namespace {

// A scene: a lit gradient, soft texture, two discs and noise, in one or three
// channels, scaled to the sample type; and a mask that selects a wide ellipse
// with holes.
cv::Mat scene(int width, int height, int channels, int depth, uint32_t seed) {
    std::mt19937 g(seed);
    std::normal_distribution<double> noise(0.0, 3.0);
    cv::Mat m(height, width, CV_MAKETYPE(depth, channels));
    const double scale = depth == CV_8U ? 1.0 : depth == CV_16U ? 257.0 : 1.0 / 255.0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                double v = 60 + 120.0 * x / width + 40.0 * y / height + 8 * std::sin(x * 0.3 + c) * std::cos(y * 0.2);
                if (std::hypot(x - width * 0.3, y - height * 0.4) < height * 0.2) v = 220 - 30 * c;
                if (std::hypot(x - width * 0.7, y - height * 0.6) < height * 0.15) v = 25 + 10 * c;
                v = std::min(255.0, std::max(0.0, v + noise(g)));
                const double s = v * scale;
                if (depth == CV_8U)
                    m.ptr<uint8_t>(y)[x * channels + c] = static_cast<uint8_t>(std::lround(s));
                else if (depth == CV_16U)
                    m.ptr<uint16_t>(y)[x * channels + c] = static_cast<uint16_t>(std::lround(s));
                else
                    m.ptr<float>(y)[x * channels + c] = static_cast<float>(s);
            }
    return m;
}

cv::Mat ellipseMask(int width, int height) {
    cv::Mat m(height, width, CV_8UC1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double dx = (x - width / 2.0) / (width * 0.45), dy = (y - height / 2.0) / (height * 0.45);
            m.at<uint8_t>(y, x) = dx * dx + dy * dy < 1.0 && (x * 7 + y * 3) % 11 != 0 ? 255 : 0;
        }
    return m;
}

const int kW = 641, kH = 357;

// ------------------------------------------------------------ means

// Both sum the integer samples exactly; OpenCV then multiplies by the
// reciprocal of the count where lumcv divides, so the last bit may differ.
TEST(StatsOpenCv, IntegerMeansAgree) {
    const cv::Mat mask = ellipseMask(kW, kH);
    for (int depth : {CV_8U, CV_16U}) {
        const cv::Mat gray = scene(kW, kH, 1, depth, 1), color = scene(kW, kH, 3, depth, 2);
        Lum64f got = 0;
        const cv::Scalar want1 = cv::mean(gray, mask), want3 = cv::mean(color, mask);
        const LumiSize roi{kW, kH};
        const int ms = static_cast<int>(mask.step);
        if (depth == CV_8U) {
            ASSERT_EQ(lumiMean_8u_C1MR(gray.ptr<Lum8u>(), static_cast<int>(gray.step), mask.data, ms, roi, &got),
                      lumStatusOk);
            EXPECT_DOUBLE_EQ(got, want1[0]);
            for (int coi = 1; coi <= 3; ++coi) {
                ASSERT_EQ(
                    lumiMean_8u_C3CMR(color.ptr<Lum8u>(), static_cast<int>(color.step), mask.data, ms, roi, coi, &got),
                    lumStatusOk);
                EXPECT_DOUBLE_EQ(got, want3[coi - 1]);
            }
        } else {
            ASSERT_EQ(lumiMean_16u_C1MR(gray.ptr<Lum16u>(), static_cast<int>(gray.step), mask.data, ms, roi, &got),
                      lumStatusOk);
            EXPECT_DOUBLE_EQ(got, want1[0]);
            for (int coi = 1; coi <= 3; ++coi) {
                ASSERT_EQ(lumiMean_16u_C3CMR(color.ptr<Lum16u>(), static_cast<int>(color.step), mask.data, ms, roi, coi,
                                             &got),
                          lumStatusOk);
                EXPECT_DOUBLE_EQ(got, want3[coi - 1]);
            }
        }
    }
}

// OpenCV forms the variance as q - m^2 and clamps it at zero; lumcv uses one
// fused step and the magnitude. The float mean sums in other lanes.
TEST(StatsOpenCv, MeanStdDevAgreeClosely) {
    const cv::Mat mask = ellipseMask(kW, kH);
    const LumiSize roi{kW, kH};
    const int ms = static_cast<int>(mask.step);
    for (int depth : {CV_8U, CV_16U, CV_32F}) {
        const cv::Mat gray = scene(kW, kH, 1, depth, 3);
        cv::Scalar cm, cs, cmm, csm;
        cv::meanStdDev(gray, cm, cs);
        cv::meanStdDev(gray, cmm, csm, mask);
        Lum64f m = 0, s = 0, mm = 0, sm = 0;
        const int st = static_cast<int>(gray.step);
        if (depth == CV_8U) {
            ASSERT_EQ(lumiMean_StdDev_8u_C1R(gray.ptr<Lum8u>(), st, roi, &m, &s), lumStatusOk);
            ASSERT_EQ(lumiMean_StdDev_8u_C1MR(gray.ptr<Lum8u>(), st, mask.data, ms, roi, &mm, &sm), lumStatusOk);
        } else if (depth == CV_16U) {
            ASSERT_EQ(lumiMean_StdDev_16u_C1R(gray.ptr<Lum16u>(), st, roi, &m, &s), lumStatusOk);
            ASSERT_EQ(lumiMean_StdDev_16u_C1MR(gray.ptr<Lum16u>(), st, mask.data, ms, roi, &mm, &sm), lumStatusOk);
        } else {
            ASSERT_EQ(lumiMean_StdDev_32f_C1R(gray.ptr<Lum32f>(), st, roi, &m, &s), lumStatusOk);
            ASSERT_EQ(lumiMean_StdDev_32f_C1MR(gray.ptr<Lum32f>(), st, mask.data, ms, roi, &mm, &sm), lumStatusOk);
        }
        // Integer sums are exact on both sides; float rows are summed in float
        // lanes here and in doubles there.
        const double tol = depth == CV_32F ? 1e-7 : 1e-12;
        EXPECT_NEAR(m, cm[0], tol * std::fabs(cm[0]));
        EXPECT_NEAR(s, cs[0], 1e-6 * cs[0]);
        EXPECT_NEAR(mm, cmm[0], tol * std::fabs(cmm[0]));
        EXPECT_NEAR(sm, csm[0], 1e-6 * csm[0]);
    }
}

// ------------------------------------------------------------ extremes

// Both searches of one image, with and without the mask, beside cv::minMaxLoc.
template <class T>
void expectSameExtremes(const cv::Mat& img, const cv::Mat& mask,
                        LumStatus (*plain)(const T*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*),
                        LumStatus (*masked)(const T*, int, const Lum8u*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*,
                                            LumiPoint*)) {
    const LumiSize roi{img.cols, img.rows};
    for (bool useMask : {false, true}) {
        SCOPED_TRACE(useMask ? "masked" : "unmasked");
        Lum32f mn, mx;
        LumiPoint mi, xi;
        double cmn, cmx;
        cv::Point cmi, cxi;
        cv::minMaxLoc(img, &cmn, &cmx, &cmi, &cxi, useMask ? mask : cv::Mat());
        const int step = static_cast<int>(img.step);
        ASSERT_EQ(useMask ? masked(img.ptr<T>(), step, mask.data, static_cast<int>(mask.step), roi, &mn, &mx, &mi, &xi)
                          : plain(img.ptr<T>(), step, roi, &mn, &mx, &mi, &xi),
                  lumStatusOk);
        EXPECT_EQ(mn, cmn);
        EXPECT_EQ(mx, cmx);
        EXPECT_EQ(mi.x, cmi.x);
        EXPECT_EQ(mi.y, cmi.y);
        EXPECT_EQ(xi.x, cxi.x);
        EXPECT_EQ(xi.y, cxi.y);
    }
}

// Untied data: a permutation of distinct values (8u: one darkest and one
// brightest pixel), so the first occurrence is the only one and both
// libraries must name the same pixel.
TEST(StatsOpenCv, ExtremesOfUntiedDataAgree) {
    const int w = 300, h = 200;
    std::vector<int> perm(static_cast<size_t>(w) * h);
    std::iota(perm.begin(), perm.end(), 0);
    std::shuffle(perm.begin(), perm.end(), std::mt19937(5));
    cv::Mat f(h, w, CV_32FC1), u(h, w, CV_16UC1), b(h, w, CV_8UC1, cv::Scalar(100));
    for (int i = 0; i < w * h; ++i) {
        f.at<float>(i / w, i % w) = perm[i] * 0.37f - 9000.0f;
        u.at<uint16_t>(i / w, i % w) = static_cast<uint16_t>(perm[i]);
    }
    b.at<uint8_t>(123, 45) = 3;
    b.at<uint8_t>(107, 250) = 201;
    const cv::Mat mask = ellipseMask(w, h);
    expectSameExtremes<Lum32f>(f, mask, lumiMinMaxIndx_32f_C1R, lumiMinMaxIndx_32f_C1MR);
    expectSameExtremes<Lum16u>(u, mask, lumiMinMaxIndx_16u_C1R, lumiMinMaxIndx_16u_C1MR);
    expectSameExtremes<Lum8u>(b, mask, lumiMinMaxIndx_8u_C1R, lumiMinMaxIndx_8u_C1MR);
}

// ------------------------------------------------------------ norms

// 8u and 16u norms are exact in both libraries (integer totals, one root).
TEST(StatsOpenCv, IntegerNormsAgreeExactly) {
    const cv::Mat mask = ellipseMask(kW, kH);
    const LumiSize roi{kW, kH};
    const int ms = static_cast<int>(mask.step);
    for (int depth : {CV_8U, CV_16U}) {
        const cv::Mat a = scene(kW, kH, 1, depth, 4), b = scene(kW, kH, 1, depth, 5);
        const int sa = static_cast<int>(a.step), sb = static_cast<int>(b.step);
        struct K {
            int cv;
            LumStatus (*one8)(const Lum8u*, int, const Lum8u*, int, LumiSize, Lum64f*);
            LumStatus (*diff8)(const Lum8u*, int, const Lum8u*, int, const Lum8u*, int, LumiSize, Lum64f*);
            LumStatus (*one16)(const Lum16u*, int, const Lum8u*, int, LumiSize, Lum64f*);
            LumStatus (*diff16)(const Lum16u*, int, const Lum16u*, int, const Lum8u*, int, LumiSize, Lum64f*);
        } kinds[] = {
            {cv::NORM_INF, lumiNorm_Inf_8u_C1MR, lumiNormDiff_Inf_8u_C1MR, lumiNorm_Inf_16u_C1MR,
             lumiNormDiff_Inf_16u_C1MR},
            {cv::NORM_L1, lumiNorm_L1_8u_C1MR, lumiNormDiff_L1_8u_C1MR, lumiNorm_L1_16u_C1MR, lumiNormDiff_L1_16u_C1MR},
            {cv::NORM_L2, lumiNorm_L2_8u_C1MR, lumiNormDiff_L2_8u_C1MR, lumiNorm_L2_16u_C1MR, lumiNormDiff_L2_16u_C1MR},
        };
        for (const K& k : kinds) {
            Lum64f one = 0, diff = 0;
            if (depth == CV_8U) {
                ASSERT_EQ(k.one8(a.data, sa, mask.data, ms, roi, &one), lumStatusOk);
                ASSERT_EQ(k.diff8(a.data, sa, b.data, sb, mask.data, ms, roi, &diff), lumStatusOk);
            } else {
                ASSERT_EQ(k.one16(a.ptr<Lum16u>(), sa, mask.data, ms, roi, &one), lumStatusOk);
                ASSERT_EQ(k.diff16(a.ptr<Lum16u>(), sa, b.ptr<Lum16u>(), sb, mask.data, ms, roi, &diff), lumStatusOk);
            }
            EXPECT_EQ(one, cv::norm(a, k.cv, mask)) << "norm type " << k.cv;
            EXPECT_EQ(diff, cv::norm(a, b, k.cv, mask)) << "norm type " << k.cv;
        }
    }
}

// The relative norm: OpenCV divides the two norms (roots for L2) and adds
// DBL_EPSILON to the denominator; lumcv divides the totals and takes one
// root. They agree to rounding.
TEST(StatsOpenCv, RelativeNormsAgreeClosely) {
    const cv::Mat mask = ellipseMask(kW, kH);
    const cv::Mat a = scene(kW, kH, 3, CV_8U, 6), b = scene(kW, kH, 3, CV_8U, 7);
    std::vector<cv::Mat> ca, cb;
    cv::split(a, ca);
    cv::split(b, cb);
    const LumiSize roi{kW, kH};
    for (int coi = 1; coi <= 3; ++coi) {
        Lum64f l1 = 0, l2 = 0, inf = 0;
        const int sa = static_cast<int>(a.step), sb = static_cast<int>(b.step), ms = static_cast<int>(mask.step);
        ASSERT_EQ(lumiNormRel_L1_8u_C3CMR(a.data, sa, b.data, sb, mask.data, ms, roi, coi, &l1), lumStatusOk);
        ASSERT_EQ(lumiNormRel_L2_8u_C3CMR(a.data, sa, b.data, sb, mask.data, ms, roi, coi, &l2), lumStatusOk);
        ASSERT_EQ(lumiNormRel_Inf_8u_C3CMR(a.data, sa, b.data, sb, mask.data, ms, roi, coi, &inf), lumStatusOk);
        const cv::Mat& x = ca[coi - 1];
        const cv::Mat& y = cb[coi - 1];
        EXPECT_NEAR(l1, cv::norm(x, y, cv::NORM_RELATIVE | cv::NORM_L1, mask), 1e-12);
        EXPECT_NEAR(l2, cv::norm(x, y, cv::NORM_RELATIVE | cv::NORM_L2, mask), 1e-12);
        EXPECT_NEAR(inf, cv::norm(x, y, cv::NORM_RELATIVE | cv::NORM_INF, mask), 1e-12);
    }
}

// Float norms: the Inf norm is exact in both; OpenCV sums L1 and L2 in other
// blocks and widths, so those agree to rounding.
TEST(StatsOpenCv, FloatNormsAgree) {
    const cv::Mat mask = ellipseMask(kW, kH);
    const cv::Mat a = scene(kW, kH, 1, CV_32F, 8), b = scene(kW, kH, 1, CV_32F, 9);
    const LumiSize roi{kW, kH};
    const int sa = static_cast<int>(a.step), sb = static_cast<int>(b.step), ms = static_cast<int>(mask.step);
    Lum64f v = 0;
    ASSERT_EQ(lumiNorm_Inf_32f_C1MR(a.ptr<Lum32f>(), sa, mask.data, ms, roi, &v), lumStatusOk);
    EXPECT_EQ(v, cv::norm(a, cv::NORM_INF, mask));
    ASSERT_EQ(lumiNormDiff_Inf_32f_C1MR(a.ptr<Lum32f>(), sa, b.ptr<Lum32f>(), sb, mask.data, ms, roi, &v), lumStatusOk);
    EXPECT_EQ(v, cv::norm(a, b, cv::NORM_INF, mask));
    ASSERT_EQ(lumiNorm_L1_32f_C1MR(a.ptr<Lum32f>(), sa, mask.data, ms, roi, &v), lumStatusOk);
    EXPECT_NEAR(v, cv::norm(a, cv::NORM_L1, mask), 1e-6 * v);
    ASSERT_EQ(lumiNormDiff_L2_32f_C1MR(a.ptr<Lum32f>(), sa, b.ptr<Lum32f>(), sb, mask.data, ms, roi, &v), lumStatusOk);
    EXPECT_NEAR(v, cv::norm(a, b, cv::NORM_L2, mask), 1e-6 * v);
}

}  // namespace
#endif  // LUMCV_HAVE_OPENCV
