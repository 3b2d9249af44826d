// A realistic test scene for comparisons with the peer library: smooth
// shading, a disc and a box with hard edges, texture and noise, in
// [0, scale] (16s: centred on zero). Filters that blur want gentle texture;
// rank filters want texture that changes within a few pixels and a pattern
// of inverted bands.
#pragma once

#include <opencv2/core.hpp>

#include <cmath>
#include <cstdint>
#include <random>

namespace lumtest {

struct SceneStyle {
    float noise;      // standard deviation
    float texture;    // amplitude of the sine texture
    float fx, fy;     // its frequencies
    bool bands;       // inverted diagonal bands
};
constexpr SceneStyle kGentleScene{0.02f, 0.05f, 0.3f, 0.2f, false};
constexpr SceneStyle kBusyScene{0.04f, 0.1f, 0.7f, 0.45f, true};

inline cv::Mat peerScene(int w, int h, int channels, int cvDepth, double scale, uint32_t seed,
                         const SceneStyle& style) {
    cv::Mat f(h, w, CV_MAKETYPE(CV_32F, channels));
    std::mt19937 g(seed);
    std::normal_distribution<float> noise(0.0f, style.noise);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < channels; ++c) {
                float v = 0.2f + 0.5f * x / w + 0.2f * y / h + style.texture * std::sin(style.fx * x + c) * std::cos(style.fy * y);
                if ((x - w / 3) * (x - w / 3) + (y - h / 2) * (y - h / 2) < (h / 4) * (h / 4)) v = 0.9f - 0.1f * c;
                if (x > 2 * w / 3 && y < h / 3) v = 0.05f;
                if (style.bands && (x / 9 + y / 7) % 11 == 0) v = 1.0f - v;
                v += noise(g);
                v = v < 0 ? 0 : (v > 1 ? 1 : v);
                f.ptr<float>(y)[x * channels + c] = v;
            }
    cv::Mat out;
    f.convertTo(out, CV_MAKETYPE(cvDepth, channels), scale, cvDepth == CV_16S ? -scale / 2 : 0.0);
    return out;
}

}  // namespace lumtest
