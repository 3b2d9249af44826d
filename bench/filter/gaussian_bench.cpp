// Gaussian filter beside cv::GaussianBlur (one thread), kernel sizes 3, 5, 7
// and 11 with sigma 1 and 2, every sample type, one and three channels,
// replicated borders. Names: gaussian_<type>_C<c>_k<k>_s<sigma>.
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

template <class T>
using Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

template <class T>
void runLumcv(benchmark::State& st, Size2 s, int c, int k, float sigma, LumDataType type, Fn<T> fn) {
    Image<T> a(s.width, s.height, c), d(s.width, s.height, c);
    a.randomize(1, 0, 255);
    int specSize = 0, initSize = 0, bufferSize = 0;
    lumiFilterGaussianGetSpecSize_L(k, type, c, &specSize, &initSize);
    lumiFilterGaussianGetBufferSize_L(s.width, s.height, k, type, 1, c, &bufferSize);
    std::vector<Lum8u> spec(specSize), init(initSize), buffer(bufferSize);
    lumiFilterGaussianInit_L({s.width, s.height}, k, sigma, 1, type, c, spec.data(), init.data());
    for (auto _ : st) {
        fn(a.data(), a.step(), d.data(), d.step(), {s.width, s.height}, 1, nullptr, spec.data(), buffer.data());
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * a.roiBytes());
}

#ifdef LUMCV_HAVE_OPENCV
template <class T>
void runOpenCv(benchmark::State& st, Size2 s, int c, int k, float sigma, int cvDepth) {
    Image<T> a(s.width, s.height, c), d(s.width, s.height, c);
    a.randomize(1, 0, 255);
    cv::Mat ma = a.mat(CV_MAKETYPE(cvDepth, c)), md = d.mat(CV_MAKETYPE(cvDepth, c));
    for (auto _ : st) {
        cv::GaussianBlur(ma, md, cv::Size(k, k), sigma, sigma, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * a.roiBytes());
}
#endif

template <class T>
void registerMember(const std::string& t, LumDataType type, int cvDepth, Fn<T> c1, Fn<T> c3) {
    for (int c : {1, 3})
        for (int k : {3, 5, 7, 11})
            for (float sigma : {1.0f, 2.0f}) {
                const std::string family =
                    "gaussian_" + t + "_C" + std::to_string(c) + "_k" + std::to_string(k) + "_s" + (sigma == 1.0f ? "1" : "2");
                const Fn<T> fn = c == 1 ? c1 : c3;
                lumbench::registerSizes(family, "lumcv", [=](benchmark::State& st, Size2 s) {
                    runLumcv<T>(st, s, c, k, sigma, type, fn);
                });
#ifdef LUMCV_HAVE_OPENCV
                lumbench::registerSizes(family, "opencv", [=](benchmark::State& st, Size2 s) {
                    runOpenCv<T>(st, s, c, k, sigma, cvDepth);
                });
#else
                (void)cvDepth;
#endif
            }
}

const bool registered = [] {
#ifdef LUMCV_HAVE_OPENCV
    const int d8u = CV_8U, d16u = CV_16U, d16s = CV_16S, d32f = CV_32F;
#else
    const int d8u = 0, d16u = 0, d16s = 0, d32f = 0;
#endif
    registerMember<Lum8u>("8u", lum8u, d8u, lumiFilterGaussian_8u_C1R_L, lumiFilterGaussian_8u_C3R_L);
    registerMember<Lum16u>("16u", lum16u, d16u, lumiFilterGaussian_16u_C1R_L, lumiFilterGaussian_16u_C3R_L);
    registerMember<Lum16s>("16s", lum16s, d16s, lumiFilterGaussian_16s_C1R_L, lumiFilterGaussian_16s_C3R_L);
    registerMember<Lum32f>("32f", lum32f, d32f, lumiFilterGaussian_32f_C1R_L, lumiFilterGaussian_32f_C3R_L);
    return true;
}();

}  // namespace
