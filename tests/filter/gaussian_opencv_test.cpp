// Gaussian filter beside cv::GaussianBlur on realistic images. The two build
// their kernels differently (cv normalises in double; its 8-bit path uses
// fixed-point taps), so integer results may differ by one and float results
// agree to about 1e-5 relative.
#ifdef LUMCV_HAVE_OPENCV
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <random>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/peer_scene.h"

namespace {

template <class T>
using Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

template <class T>
LumDataType typeOf() {
    if (std::is_same_v<T, Lum8u>) return lum8u;
    if (std::is_same_v<T, Lum16u>) return lum16u;
    if (std::is_same_v<T, Lum16s>) return lum16s;
    return lum32f;
}

template <class T>
void compare(Fn<T> fn, int channels, int cvDepth, double scale, double tolerance, bool relative) {
    const int w = 317, h = 203;
    const cv::Mat src = lumtest::peerScene(w, h, channels, cvDepth, scale, 11, lumtest::kGentleScene);
    const struct {
        int lum;
        int cv;
    } borders[] = {{1, cv::BORDER_REPLICATE}, {3, cv::BORDER_REFLECT_101}, {6, cv::BORDER_CONSTANT}};
    for (int k : {3, 5, 7, 11}) {
        for (float sigma : {1.0f, 2.0f}) {
            for (const auto& b : borders) {
                int specSize = 0, initSize = 0, bufferSize = 0;
                ASSERT_EQ(lumiFilterGaussianGetSpecSize_L(k, typeOf<T>(), channels, &specSize, &initSize), lumStatusOk);
                ASSERT_EQ(lumiFilterGaussianGetBufferSize_L(w, h, k, typeOf<T>(), b.lum, channels, &bufferSize),
                          lumStatusOk);
                std::vector<Lum8u> spec(specSize), init(initSize), buffer(bufferSize);
                ASSERT_EQ(lumiFilterGaussianInit_L({w, h}, k, sigma, b.lum, typeOf<T>(), channels, spec.data(),
                                                   init.data()),
                          lumStatusOk);
                cv::Mat mine(h, w, src.type());
                const T zero[3] = {};
                ASSERT_EQ(fn(src.ptr<T>(), static_cast<int>(src.step), mine.ptr<T>(), static_cast<int>(mine.step),
                             {w, h}, b.lum, zero, spec.data(), buffer.data()),
                          lumStatusOk);
                cv::Mat theirs;
                cv::GaussianBlur(src, theirs, cv::Size(k, k), sigma, sigma, b.cv);
                double worst = 0;
                for (int y = 0; y < h; ++y)
                    for (int i = 0; i < w * channels; ++i) {
                        const double a = mine.ptr<T>(y)[i], c = theirs.ptr<T>(y)[i];
                        double d = std::fabs(a - c);
                        if (relative) d /= std::fmax(1.0, std::fabs(c));
                        if (d > worst) worst = d;
                    }
                EXPECT_LE(worst, tolerance) << "k " << k << " sigma " << sigma << " border " << b.lum << " channels "
                                            << channels;
            }
        }
    }
}

TEST(GaussianOpenCv, EightBitWithinOne) {
    compare<Lum8u>(lumiFilterGaussian_8u_C1R_L, 1, CV_8U, 255.0, 1.0, false);
    compare<Lum8u>(lumiFilterGaussian_8u_C3R_L, 3, CV_8U, 255.0, 1.0, false);
}

TEST(GaussianOpenCv, SixteenBitWithinOne) {
    compare<Lum16u>(lumiFilterGaussian_16u_C1R_L, 1, CV_16U, 65535.0, 1.0, false);
    compare<Lum16u>(lumiFilterGaussian_16u_C3R_L, 3, CV_16U, 65535.0, 1.0, false);
    compare<Lum16s>(lumiFilterGaussian_16s_C1R_L, 1, CV_16S, 60000.0, 1.0, false);
    compare<Lum16s>(lumiFilterGaussian_16s_C3R_L, 3, CV_16S, 60000.0, 1.0, false);
}

TEST(GaussianOpenCv, FloatWithinRelativeTolerance) {
    compare<Lum32f>(lumiFilterGaussian_32f_C1R_L, 1, CV_32F, 100.0, 1e-5, true);
    compare<Lum32f>(lumiFilterGaussian_32f_C3R_L, 3, CV_32F, 100.0, 1e-5, true);
}

}  // namespace
#endif
