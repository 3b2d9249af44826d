// Erosion and dilation beside cv::erode and cv::dilate on realistic scenes.
// With the anchor at ((w - 1) / 2, (h - 1) / 2), replicate, reflect-101
// (our mirror) and constant borders, the two agree bit for bit on 8u, 16u,
// 16s and 32f, whatever the mask.
#ifdef LUMCV_HAVE_OPENCV
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "lumcv.h"
#include "support/peer_scene.h"

namespace {

struct Mask {
    std::string name;
    int w, h;
    std::vector<Lum8u> bytes;
};

std::vector<Mask> masks() {
    std::vector<Mask> m;
    auto add = [&](const std::string& name, int w, int h, auto selected) {
        Mask k{name, w, h, std::vector<Lum8u>(static_cast<size_t>(w) * h)};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) k.bytes[static_cast<size_t>(y) * w + x] = selected(x, y) ? 1 : 0;
        m.push_back(k);
    };
    auto all = [](int, int) { return true; };
    add("rect3", 3, 3, all);
    add("rect5", 5, 5, all);
    add("rect15", 15, 15, all);
    add("rect2x2", 2, 2, all);
    add("rect1x7", 1, 7, all);
    add("rect6x3", 6, 3, all);
    add("plus3", 3, 3, [](int x, int y) { return x == 1 || y == 1; });
    add("diamond5", 5, 5, [](int x, int y) { return std::abs(x - 2) + std::abs(y - 2) <= 2; });
    add("rounded7", 7, 7, [](int x, int y) {
        const int dx = std::abs(x - 3), dy = std::abs(y - 3);
        return (dx <= 2 && dy <= 2) || dx == 0 || dy == 0;
    });
    add("cross9x5", 9, 5, [](int x, int y) { return x == 4 || y == 2; });
    add("ellipse7x5", 7, 5, [](int x, int y) {
        const double dx = (x - 3) / 3.5, dy = (y - 2) / 2.5;
        return dx * dx + dy * dy <= 1.0;
    });
    std::mt19937 g(5);
    for (int i = 0; i < 3; ++i) {
        const int w = 2 + i * 2, h = 3 + i;
        std::vector<int> bits(static_cast<size_t>(w) * h);
        for (int& b : bits) b = static_cast<int>(g() % 3 == 0);
        add("random" + std::to_string(w) + "x" + std::to_string(h), w, h, [&](int x, int y) {
            // The anchor stays selected, so that no window is empty of image pixels.
            return (x == (w - 1) / 2 && y == (h - 1) / 2) || bits[static_cast<size_t>(y) * w + x] != 0;
        });
    }
    return m;
}

template <class T>
struct Member {
    LumStatus (*getSize)(LumiSize, LumiSize, int*, int*);
    LumStatus (*init)(LumiSize, const Lum8u*, LumiSize, Lum8u*, Lum8u*);
    LumStatus (*erode1)(const T*, int, T*, int, LumiSize, LumiBorderType, T, const Lum8u*, Lum8u*);
    LumStatus (*dilate1)(const T*, int, T*, int, LumiSize, LumiBorderType, T, const Lum8u*, Lum8u*);
    LumStatus (*erodeN)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);
    LumStatus (*dilateN)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);
};

template <class T>
void compare(const Member<T>& f, int channels, int cvDepth, double scale, T constant) {
    const int w = 211, h = 97;
    const cv::Mat src = lumtest::peerScene(w, h, channels, cvDepth, scale, 17, lumtest::kBusyScene);
    const struct {
        int lum;
        int cv;
    } borders[] = {{1, cv::BORDER_REPLICATE}, {3, cv::BORDER_REFLECT_101}, {6, cv::BORDER_CONSTANT}};
    for (const Mask& m : masks()) {
        int specSize = 0, bufferSize = 0;
        ASSERT_EQ(f.getSize({w, h}, {m.w, m.h}, &specSize, &bufferSize), lumStatusOk);
        std::vector<Lum8u> spec(specSize), buffer(bufferSize);
        ASSERT_EQ(f.init({w, h}, m.bytes.data(), {m.w, m.h}, spec.data(), buffer.data()), lumStatusOk);
        cv::Mat kernel(m.h, m.w, CV_8U, const_cast<Lum8u*>(m.bytes.data()));
        const cv::Point anchor((m.w - 1) / 2, (m.h - 1) / 2);
        for (const auto& b : borders) {
            for (int erode = 0; erode < 2; ++erode) {
                const T values[4] = {constant, constant, constant, constant};
                cv::Mat mine(h, w, src.type());
                LumStatus st;
                if (channels == 1) {
                    st = (erode ? f.erode1 : f.dilate1)(src.ptr<T>(), static_cast<int>(src.step), mine.ptr<T>(),
                                                        static_cast<int>(mine.step), {w, h}, b.lum, constant,
                                                        spec.data(), buffer.data());
                } else {
                    st = (erode ? f.erodeN : f.dilateN)(src.ptr<T>(), static_cast<int>(src.step), mine.ptr<T>(),
                                                        static_cast<int>(mine.step), {w, h}, b.lum, values,
                                                        spec.data(), buffer.data());
                }
                ASSERT_EQ(st, lumStatusOk);
                cv::Mat theirs;
                const cv::Scalar value = cv::Scalar::all(static_cast<double>(constant));
                if (erode)
                    cv::erode(src, theirs, kernel, anchor, 1, b.cv, value);
                else
                    cv::dilate(src, theirs, kernel, anchor, 1, b.cv, value);
                EXPECT_EQ(cv::norm(mine, theirs, cv::NORM_INF), 0.0)
                    << m.name << (erode ? " erode" : " dilate") << " border " << b.lum << " channels " << channels;
            }
        }
    }
}

TEST(MorphPeer, EightBitAgreesWithThePeer) {
    compare<Lum8u>({lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R, lumiErodeBorder_8u_C1R,
                    lumiDilateBorder_8u_C1R, nullptr, nullptr},
                   1, CV_8U, 255.0, Lum8u{77});
    compare<Lum8u>({lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R, nullptr, nullptr,
                    lumiErodeBorder_8u_C3R, lumiDilateBorder_8u_C3R},
                   3, CV_8U, 255.0, Lum8u{200});
    compare<Lum8u>({lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R, nullptr, nullptr,
                    lumiErodeBorder_8u_C4R, lumiDilateBorder_8u_C4R},
                   4, CV_8U, 255.0, Lum8u{3});
}

TEST(MorphPeer, SixteenBitAgreesWithThePeer) {
    compare<Lum16u>({lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R, lumiErodeBorder_16u_C1R,
                     lumiDilateBorder_16u_C1R, nullptr, nullptr},
                    1, CV_16U, 65535.0, Lum16u{30000});
    compare<Lum16s>({lumiMorphologyBorderGetSize_16s_C1R, lumiMorphologyBorderInit_16s_C1R, lumiErodeBorder_16s_C1R,
                     lumiDilateBorder_16s_C1R, nullptr, nullptr},
                    1, CV_16S, 60000.0, Lum16s{-1234});
}

TEST(MorphPeer, FloatAgreesWithThePeer) {
    compare<Lum32f>({lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R, lumiErodeBorder_32f_C1R,
                     lumiDilateBorder_32f_C1R, nullptr, nullptr},
                    1, CV_32F, 100.0, 0.25f);
    compare<Lum32f>({lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R, nullptr, nullptr,
                     lumiErodeBorder_32f_C3R, lumiDilateBorder_32f_C3R},
                    3, CV_32F, 100.0, 50.0f);
    compare<Lum32f>({lumiMorphologyBorderGetSize_32f_C4R, lumiMorphologyBorderInit_32f_C4R, nullptr, nullptr,
                     lumiErodeBorder_32f_C4R, lumiDilateBorder_32f_C4R},
                    4, CV_32F, 100.0, -1.0f);
}

// The neutral border is the peer's default border value: the type's extreme
// that cannot win. Integer types only: the peer's float default is infinite,
// ours is the greatest finite value, which differ where a window holds no
// image pixel (never with these masks, which select their anchor).
TEST(MorphPeer, NeutralBorderIsThePeersDefaultBorder) {
    const int w = 97, h = 61;
    const cv::Mat src = lumtest::peerScene(w, h, 1, CV_8U, 255.0, 23, lumtest::kBusyScene);
    for (const Mask& m : masks()) {
        int specSize = 0, bufferSize = 0;
        ASSERT_EQ(lumiMorphologyBorderGetSize_8u_C1R({w, h}, {m.w, m.h}, &specSize, &bufferSize), lumStatusOk);
        std::vector<Lum8u> spec(specSize), buffer(bufferSize);
        ASSERT_EQ(lumiMorphologyBorderInit_8u_C1R({w, h}, m.bytes.data(), {m.w, m.h}, spec.data(), buffer.data()),
                  lumStatusOk);
        cv::Mat kernel(m.h, m.w, CV_8U, const_cast<Lum8u*>(m.bytes.data()));
        const cv::Point anchor((m.w - 1) / 2, (m.h - 1) / 2);
        cv::Mat mine(h, w, CV_8U), theirs;
        ASSERT_EQ(lumiErodeBorder_8u_C1R(src.ptr<Lum8u>(), static_cast<int>(src.step), mine.ptr<Lum8u>(),
                                         static_cast<int>(mine.step), {w, h}, lumBorderNeutral, 0, spec.data(),
                                         buffer.data()),
                  lumStatusOk);
        cv::erode(src, theirs, kernel, anchor, 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        EXPECT_EQ(cv::norm(mine, theirs, cv::NORM_INF), 0.0) << m.name << " erode";
        ASSERT_EQ(lumiDilateBorder_8u_C1R(src.ptr<Lum8u>(), static_cast<int>(src.step), mine.ptr<Lum8u>(),
                                          static_cast<int>(mine.step), {w, h}, lumBorderNeutral, 0, spec.data(),
                                          buffer.data()),
                  lumStatusOk);
        cv::dilate(src, theirs, kernel, anchor, 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        EXPECT_EQ(cv::norm(mine, theirs, cv::NORM_INF), 0.0) << m.name << " dilate";
    }
}

}  // namespace
#endif
