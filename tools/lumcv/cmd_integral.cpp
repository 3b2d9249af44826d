// lumcv integral IMAGE OUT.pfm [--tilted] [--squared]
// lumcv integral IMAGE --window X,Y,W,H
// and the demo step: the integral of the frame and window deviation maps.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {
namespace {

constexpr const char* kUsage =
    "usage: lumcv integral IMAGE OUT.pfm [--tilted] [--squared]\n"
    "       lumcv integral IMAGE --window X,Y,W,H";

bool endsWith(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// The image as one 8-bit channel (colour by luma, 16 bits scaled down), or
// false after printing why.
bool grayBytes(const Image& in, const std::string& path, Image& out) {
    if (in.channels != 1 && in.channels != 3 && in.channels != 4) {
        std::fprintf(stderr, "lumcv: '%s' has %d channels; integral images take 1, 3 or 4\n", path.c_str(),
                     in.channels);
        return false;
    }
    out = toSample(toGray(in), Sample::U8);
    return true;
}

// Integral of a whole 8-bit image in 32f, with the squared integral (64f)
// when sqr is given; tilted images have two more rows and columns.
bool integralOf(const Image& gray, bool tilted, std::vector<float>& sum, std::vector<double>* sqr) {
    const int extra = tilted ? 2 : 1;
    const int cols = gray.width + extra, rows = gray.height + extra;
    sum.assign(static_cast<size_t>(cols) * rows, 0.0f);
    const LumiSize roi{gray.width, gray.height};
    LumStatus st;
    if (sqr != nullptr) {
        sqr->assign(sum.size(), 0.0);
        st = tilted ? lumiTiltedSqrIntegral_8u32f64f_C1R(gray.data<Lum8u>(), gray.step(), sum.data(), cols * 4,
                                                         sqr->data(), cols * 8, roi, 0.0f, 0.0)
                    : lumiSqrIntegral_8u32f64f_C1R(gray.data<Lum8u>(), gray.step(), sum.data(), cols * 4, sqr->data(),
                                                   cols * 8, roi, 0.0f, 0.0);
    } else {
        st = tilted ? lumiTiltedIntegral_8u32f_C1R(gray.data<Lum8u>(), gray.step(), sum.data(), cols * 4, roi, 0.0f)
                    : lumiIntegral_8u32f_C1R(gray.data<Lum8u>(), gray.step(), sum.data(), cols * 4, roi, 0.0f);
    }
    return checkStatus(st, tilted ? "tilted integral" : "integral");
}

Image floatImage(int width, int height, const float* values) {
    Image img = Image::make(width, height, 1, Sample::F32);
    std::copy(values, values + static_cast<size_t>(width) * height, img.data<float>());
    return img;
}

bool parseWindow(const std::string& s, int v[4]) {
    size_t start = 0;
    for (int i = 0; i < 4; ++i) {
        const size_t comma = s.find(',', start);
        if ((i < 3) != (comma != std::string::npos)) {
            std::fprintf(stderr, "lumcv: window '%s' is not X,Y,W,H\n", s.c_str());
            return false;
        }
        if (!parseInt(s.substr(start, comma == std::string::npos ? std::string::npos : comma - start), v[i]))
            return false;
        start = comma + 1;
    }
    return true;
}

// Sums, mean and standard deviation of one window of the image.
int runWindow(const Image& gray, const std::string& spec) {
    int v[4];
    if (!parseWindow(spec, v)) return kExitUsage;
    const int x = v[0], y = v[1], w = v[2], h = v[3];
    if (w < 1 || h < 1) {
        std::fprintf(stderr, "lumcv: window %d,%d,%d,%d: width and height must be at least 1\n", x, y, w, h);
        return kExitUsage;
    }
    if (x < 0 || y < 0 || x > gray.width - w || y > gray.height - h) {
        std::fprintf(stderr, "lumcv: window %d,%d,%d,%d does not lie inside the %dx%d image\n", x, y, w, h,
                     gray.width, gray.height);
        return kExitUsage;
    }
    const int cols = gray.width + 1;
    std::vector<Lum32s> sum(static_cast<size_t>(cols) * (gray.height + 1));
    std::vector<Lum64f> sqr(sum.size());
    if (!checkStatus(lumiSqrIntegral_8u32s64f_C1R(gray.data<Lum8u>(), gray.step(), sum.data(), cols * 4, sqr.data(),
                                                  cols * 8, {gray.width, gray.height}, 0, 0.0),
                     "squared integral"))
        return kExitLibrary;
    auto at = [&](auto& img, int c, int r) { return img[static_cast<size_t>(r) * cols + c]; };
    // 32-bit sums wrap; a window of up to 16843009 pixels can't exceed them.
    const uint32_t s = static_cast<uint32_t>(at(sum, x, y)) - static_cast<uint32_t>(at(sum, x + w, y)) -
                       static_cast<uint32_t>(at(sum, x, y + h)) + static_cast<uint32_t>(at(sum, x + w, y + h));
    const double q = (at(sqr, x, y) - at(sqr, x + w, y)) - (at(sqr, x, y + h) - at(sqr, x + w, y + h));
    Lum32f deviation = 0.0f;
    const size_t origin = static_cast<size_t>(y) * cols + x;
    if (!checkStatus(lumiRectStdDev_32s32f_C1R(sum.data() + origin, cols * 4, sqr.data() + origin, cols * 8,
                                               &deviation, 4, {1, 1}, {0, 0, w, h}),
                     "window standard deviation"))
        return kExitLibrary;
    const double pixels = static_cast<double>(w) * h;
    std::printf("window %d,%d,%d,%d (%.0f pixels)\n", x, y, w, h, pixels);
    if (pixels * 255.0 >= 4294967296.0) std::printf("sum: beyond 32 bits, not shown\n");
    else std::printf("sum: %u\n", s);
    std::printf("sum of squares: %.0f\n", q);
    std::printf("mean: %.6g\n", static_cast<double>(s) / pixels);
    // The deviation takes the window sum as a signed 32-bit integer.
    if (pixels * 255.0 >= 2147483648.0) std::printf("standard deviation: not shown (sums may pass 31 bits)\n");
    else std::printf("standard deviation: %.6g\n", static_cast<double>(deviation));
    return 0;
}

int runIntegral(const Args& args) {
    std::string input, output, window;
    bool tilted = false, squared = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--tilted") tilted = true;
        else if (a == "--squared") squared = true;
        else if (a == "--window") {
            if (i + 1 >= args.size()) return usageError(kUsage);
            window = args[++i];
        } else if (!a.empty() && a[0] == '-') {
            std::fprintf(stderr, "lumcv: unknown option '%s'\n", a.c_str());
            return usageError(kUsage);
        } else if (input.empty()) input = a;
        else if (output.empty()) output = a;
        else return usageError(kUsage);
    }
    if (input.empty() || (window.empty() == output.empty())) return usageError(kUsage);
    if (!window.empty() && (tilted || squared)) {
        std::fprintf(stderr, "lumcv: --window takes upright windows only, without --tilted or --squared\n");
        return kExitUsage;
    }
    if (!output.empty() && !endsWith(output, ".pfm")) {
        std::fprintf(stderr, "lumcv: '%s': the integral is written as floats, to a .pfm file\n", output.c_str());
        return kExitUsage;
    }
    Image img;
    std::string err;
    if (!readImage(input, img, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", input.c_str(), err.c_str());
        return kExitIo;
    }
    Image gray;
    if (!grayBytes(img, input, gray)) return kExitIo;
    if (!window.empty()) return runWindow(gray, window);
    std::vector<float> sum;
    std::vector<double> sqr;
    if (!integralOf(gray, tilted, sum, squared ? &sqr : nullptr)) return kExitLibrary;
    if (squared) {
        // The squared sums, rounded to float for the file.
        for (size_t i = 0; i < sum.size(); ++i) sum[i] = static_cast<float>(sqr[i]);
    }
    const int extra = tilted ? 2 : 1;
    const Image out = floatImage(img.width + extra, img.height + extra, sum.data());
    if (!writeImage(output, out, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", output.c_str(), err.c_str());
        return kExitIo;
    }
    std::printf("%s integral%s of %dx%d: %dx%d floats, last %.9g\n", tilted ? "tilted" : "plain",
                squared ? " of squares" : "", img.width, img.height, out.width, out.height,
                static_cast<double>(sum.back()));
    return 0;
}

const bool registered = registerCommand({"integral", "IMAGE OUT.pfm [--tilted] [--squared] | IMAGE --window X,Y,W,H",
                                         "integral image (as floats), or the sums and deviation of one window",
                                         runIntegral});

// ------------------------------------------------------------ demo

// Exact integrals for the window maps: 32-bit sums and 64f squared sums (a
// float integral of a whole frame passes 2^24, and its rounded corners would
// show as noise in the deviations).
struct ExactIntegral {
    int cols = 0;
    std::vector<Lum32s> sum;
    std::vector<Lum64f> sqr;
};

bool exactIntegralOf(const Image& gray, bool tilted, ExactIntegral& out) {
    const int extra = tilted ? 2 : 1;
    out.cols = gray.width + extra;
    out.sum.assign(static_cast<size_t>(out.cols) * (gray.height + extra), 0);
    out.sqr.assign(out.sum.size(), 0.0);
    const LumiSize roi{gray.width, gray.height};
    const LumStatus st =
        tilted ? lumiTiltedSqrIntegral_8u32s64f_C1R(gray.data<Lum8u>(), gray.step(), out.sum.data(), out.cols * 4,
                                                    out.sqr.data(), out.cols * 8, roi, 0, 0.0)
               : lumiSqrIntegral_8u32s64f_C1R(gray.data<Lum8u>(), gray.step(), out.sum.data(), out.cols * 4,
                                              out.sqr.data(), out.cols * 8, roi, 0, 0.0);
    return checkStatus(st, tilted ? "tilted squared integral" : "squared integral");
}

// Deviation map of every window of one shape over the frame, as 8 bits.
bool deviationMap(const DemoContext& ctx, const ExactIntegral& in, LumiSize roi, LumiRect rect, bool tilted,
                  const char* file) {
    std::vector<float> map(static_cast<size_t>(roi.width) * roi.height);
    const LumStatus st = tilted ? lumiTiltedRectStdDev_32s32f_C1R(in.sum.data(), in.cols * 4, in.sqr.data(),
                                                                  in.cols * 8, map.data(), roi.width * 4, roi, rect)
                                : lumiRectStdDev_32s32f_C1R(in.sum.data(), in.cols * 4, in.sqr.data(), in.cols * 8,
                                                            map.data(), roi.width * 4, roi, rect);
    if (!checkStatus(st, "window standard deviation")) return false;
    const float hi = *std::max_element(map.begin(), map.end());
    double mean = 0.0;
    for (float v : map) mean += v;
    mean /= static_cast<double>(map.size());
    std::printf("  %s %dx%d windows: mean deviation %.2f, largest %.2f\n", tilted ? "tilted" : "upright", rect.width,
                rect.height, mean, static_cast<double>(hi));
    return saveDemoImage(ctx, file, floatTo8u(floatImage(roi.width, roi.height, map.data()), 0.0f, hi));
}

bool integralStep(DemoContext& ctx) {
    const Image& gray = ctx.gray0;
    std::vector<float> sum;
    if (!integralOf(gray, false, sum, nullptr)) return false;
    std::printf("  sum of the frame %.0f (float integral)\n", static_cast<double>(sum.back()));
    if (!saveDemoImage(ctx, "integral.png",
                       floatTo8u(floatImage(gray.width + 1, gray.height + 1, sum.data()), 0.0f, sum.back())))
        return false;
    // 15 x 15 windows at every position that fits: (w - 14) x (h - 14) results.
    ExactIntegral plain;
    if (!exactIntegralOf(gray, false, plain)) return false;
    if (!deviationMap(ctx, plain, {gray.width - 14, gray.height - 14}, {0, 0, 15, 15}, false, "stddev_15x15.png"))
        return false;
    // Windows turned by 45 degrees with sides of 8: A lies 8 columns in, so
    // no corner falls left of the tilted integral. A row of results reaches
    // h + y + x + w + width - 1 integral columns and x + y + h + w more rows.
    ExactIntegral turnedSums;
    if (!exactIntegralOf(gray, true, turnedSums)) return false;
    const LumiRect turned{8, 0, 8, 8};
    const int reach = turned.height + turned.y + turned.x + turned.width;
    return deviationMap(ctx, turnedSums, {turnedSums.cols - reach + 1, gray.height + 2 - reach}, turned, true,
                        "stddev_tilted_8x8.png");
}

const bool demoRegistered = registerDemoStep({220, "integral image and window standard deviations", integralStep});

}  // namespace
}  // namespace tool
