// Dilation beside cv::dilate (one thread) with replicated borders: full
// rectangles 3, 5, 7 and 15, the 5x5 diamond, a 5x5 cross and a fixed random
// 5x5 mask, on 8u C1, 8u C3 and 32f C1. Names: dilate_<type>_C<c>_<mask>.
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

struct Mask {
    std::string name;
    int w, h;
    std::vector<uint8_t> bytes;
};

std::vector<Mask> masks() {
    std::vector<Mask> m;
    for (int k : {3, 5, 7, 15}) m.push_back({"rect" + std::to_string(k), k, k, std::vector<uint8_t>(k * k, 1)});
    std::vector<uint8_t> diamond(25), cross(25), random(25);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) {
            diamond[y * 5 + x] = std::abs(x - 2) + std::abs(y - 2) <= 2;
            cross[y * 5 + x] = x == 2 || y == 2;
        }
    std::mt19937 g(7);
    for (auto& v : random) v = g() & 1;
    random[12] = 1;
    random[1] = random[3] = 1;
    random[0] = 0;
    m.push_back({"diamond5", 5, 5, diamond});
    m.push_back({"cross5", 5, 5, cross});
    m.push_back({"random5", 5, 5, random});
    return m;
}

template <class T>
using Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

template <class T>
void runLumcv(benchmark::State& st, Size2 s, int c, const Mask& m, int type, Fn<T> fn) {
    Image<T> a(s.width, s.height, c), d(s.width, s.height, c);
    a.randomize(1, 0, 255);
    const LumiSize roi{s.width, s.height}, msz{m.w, m.h};
    int specSize = 0, bufferSize = 0;
    lumiDilateGetSpecSize_L(roi, msz, &specSize);
    lumiDilateGetBufferSize_L(roi, msz, static_cast<LumDataType>(type), c, &bufferSize);
    std::vector<Lum8u> spec(specSize), buffer(bufferSize);
    lumiDilateInit_L(roi, m.bytes.data(), msz, spec.data());
    if (fn(a.data(), a.step(), d.data(), d.step(), roi, 1, nullptr, spec.data(), buffer.data()) != lumStatusOk) {
        st.SkipWithError("status");
        return;
    }
    for (auto _ : st) {
        fn(a.data(), a.step(), d.data(), d.step(), roi, 1, nullptr, spec.data(), buffer.data());
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * a.roiBytes());
}

#ifdef LUMCV_HAVE_OPENCV
template <class T>
void runOpenCv(benchmark::State& st, Size2 s, int c, const Mask& m, int cvDepth) {
    Image<T> a(s.width, s.height, c), d(s.width, s.height, c);
    a.randomize(1, 0, 255);
    cv::Mat ma = a.mat(CV_MAKETYPE(cvDepth, c)), md = d.mat(CV_MAKETYPE(cvDepth, c));
    cv::Mat kernel(m.h, m.w, CV_8U, const_cast<uint8_t*>(m.bytes.data()));
    for (auto _ : st) {
        cv::dilate(ma, md, kernel, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * a.roiBytes());
}
#endif

template <class T>
void registerMember(const std::string& t, int c, int type, int cvDepth, Fn<T> fn) {
    for (const Mask& m : masks()) {
        const std::string family = "dilate_" + t + "_C" + std::to_string(c) + "_" + m.name;
        lumbench::registerSizes(family, "lumcv",
                                [=](benchmark::State& st, Size2 s) { runLumcv<T>(st, s, c, m, type, fn); });
#ifdef LUMCV_HAVE_OPENCV
        lumbench::registerSizes(family, "opencv",
                                [=](benchmark::State& st, Size2 s) { runOpenCv<T>(st, s, c, m, cvDepth); });
#else
        (void)cvDepth;
#endif
    }
}

const bool registered = [] {
#ifdef LUMCV_HAVE_OPENCV
    const int d8u = CV_8U, d32f = CV_32F;
#else
    const int d8u = 0, d32f = 0;
#endif
    registerMember<Lum8u>("8u", 1, 1, d8u, lumiDilate_8u_C1R_L);
    registerMember<Lum8u>("8u", 3, 1, d8u, lumiDilate_8u_C3R_L);
    registerMember<Lum32f>("32f", 1, 13, d32f, lumiDilate_32f_C1R_L);
    return true;
}();

}  // namespace
