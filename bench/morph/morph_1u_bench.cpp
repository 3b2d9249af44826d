// Packed one-bit erosion and dilation beside cv::dilate / cv::erode of the
// same pixels unpacked to one byte each (0 or 255). Bytes processed count the
// packed image read and written for both, so the rates compare pixels.
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

struct Shape {
    const char* name;
    int w, h;
    std::vector<uint8_t> m;
};

std::vector<Shape> shapes() {
    std::vector<Shape> s;
    for (int k : {3, 7, 15}) s.push_back({k == 3 ? "rect3" : k == 7 ? "rect7" : "rect15", k, k,
                                          std::vector<uint8_t>(static_cast<size_t>(k) * k, 1)});
    s.push_back({"diamond5", 5, 5, {0, 0, 1, 0, 0, 0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 0, 0, 0, 1, 0, 0}});
    std::mt19937 g(5);
    std::vector<uint8_t> r(25);
    for (uint8_t& v : r) v = (g() & 1) ? 1 : 0;
    r[12] = 1;
    s.push_back({"random5", 5, 5, r});
    return s;
}

size_t packedBytes(Size2 s) { return static_cast<size_t>((s.width + 7) / 8) * s.height; }

void runLumcv(benchmark::State& st, Size2 s, const Shape& k, bool erode) {
    const int rowBytes = (s.width + 7) / 8;
    Image<Lum8u> a(rowBytes, s.height), d(rowBytes, s.height);
    a.randomize(1, 0, 255);
    const LumiSize roi{s.width, s.height};
    int specSize = 0, bufferSize = 0;
    lumiMorphologyBorderGetSize_1u_C1R(roi, {k.w, k.h}, &specSize, &bufferSize);
    std::vector<Lum8u> spec(specSize), buffer(bufferSize);
    lumiMorphologyBorderInit_1u_C1R(roi, k.m.data(), {k.w, k.h}, spec.data(), buffer.data());
    for (auto _ : st) {
        if (erode)
            lumiErodeBorder_1u_C1R(a.data(), a.step(), 0, d.data(), d.step(), 0, roi, 1, 0, spec.data(), buffer.data());
        else
            lumiDilateBorder_1u_C1R(a.data(), a.step(), 0, d.data(), d.step(), 0, roi, 1, 0, spec.data(), buffer.data());
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * packedBytes(s));
}

#ifdef LUMCV_HAVE_OPENCV
void runOpenCv(benchmark::State& st, Size2 s, const Shape& k, bool erode) {
    lumbench::pinOpenCvToOneThread();
    Image<Lum8u> a(s.width, s.height), d(s.width, s.height);
    a.randomize(1, 0, 2);
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) a.row(y)[x] = a.row(y)[x] >= 1 ? 255 : 0;
    cv::Mat ma = a.mat(CV_8UC1), md = d.mat(CV_8UC1);
    cv::Mat kernel(k.h, k.w, CV_8UC1, const_cast<uint8_t*>(k.m.data()));
    for (auto _ : st) {
        if (erode)
            cv::erode(ma, md, kernel, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        else
            cv::dilate(ma, md, kernel, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * packedBytes(s));
}
#endif

const bool registered = [] {
    for (const Shape& k : shapes())
        for (bool erode : {false, true}) {
            const std::string family = std::string(erode ? "erode_1u_" : "dilate_1u_") + k.name;
            lumbench::registerSizes(family, "lumcv", [k, erode](benchmark::State& st, Size2 s) { runLumcv(st, s, k, erode); });
#ifdef LUMCV_HAVE_OPENCV
            lumbench::registerSizes(family, "opencv",
                                    [k, erode](benchmark::State& st, Size2 s) { runOpenCv(st, s, k, erode); });
#endif
        }
    return true;
}();

}  // namespace
