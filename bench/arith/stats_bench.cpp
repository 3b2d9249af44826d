// Masked statistics and norms beside their OpenCV counterparts: cv::mean,
// cv::meanStdDev, cv::minMaxLoc and cv::norm, on the same buffers.
#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

// The images of one run: two sources of the sample type (one or three
// channels) and a mask that selects about three pixels in four.
template <class T>
struct Inputs {
    Image<T> a, b;
    Image<Lum8u> mask;
    Inputs(Size2 s, int channels)
        : a(s.width, s.height, channels), b(s.width, s.height, channels), mask(s.width, s.height) {
        const double hi = sizeof(T) == 1 ? 255 : sizeof(T) == 2 ? 65535 : 1000;
        a.randomize(1, 0, hi);
        b.randomize(2, 0, hi);
        mask.randomize(3, 0, 3.99);  // 0 one time in four
    }
    LumiSize roi() const { return {a.width(), a.height()}; }
    int64_t bytes(int images) const { return static_cast<int64_t>(images * a.roiBytes() + mask.roiBytes()); }
#ifdef LUMCV_HAVE_OPENCV
    static int cvDepth() { return sizeof(T) == 1 ? CV_8U : sizeof(T) == 2 ? CV_16U : CV_32F; }
    cv::Mat ma() { return a.mat(CV_MAKETYPE(cvDepth(), a.channels())); }
    cv::Mat mb() { return b.mat(CV_MAKETYPE(cvDepth(), b.channels())); }
    cv::Mat mm() { return mask.mat(CV_8UC1); }
#endif
};

// Runs call(inputs) in the timing loop; bytes counts the images read (and the
// mask when masked).
template <class T, class Call>
void run(benchmark::State& st, Size2 s, int channels, int images, bool masked, Call call) {
    Inputs<T> in(s, channels);
    for (auto _ : st) {
        call(in);
        benchmark::ClobberMemory();
    }
    const int64_t bytes = masked ? in.bytes(images) : static_cast<int64_t>(images * in.a.roiBytes());
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * bytes);
}

template <class T, class Call>
void reg(const std::string& family, const char* impl, int channels, int images, bool masked, Call call) {
    lumbench::registerSizes(family + "_" +
                                (sizeof(T) == 1   ? "8u"
                                 : sizeof(T) == 2 ? "16u"
                                                  : "32f"),
                            impl,
                            [=](benchmark::State& st, Size2 s) { run<T>(st, s, channels, images, masked, call); });
}

template <class T>
void registerType(LumStatus (*mean)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*),
                  LumStatus (*meanStd)(const T*, int, LumiSize, Lum64f*, Lum64f*),
                  LumStatus (*meanStdM)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*, Lum64f*),
                  LumStatus (*minMax)(const T*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*),
                  LumStatus (*minMaxM)(const T*, int, const Lum8u*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*,
                                       LumiPoint*),
                  LumStatus (*normInf)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*),
                  LumStatus (*normL1)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*),
                  LumStatus (*normL2)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*),
                  LumStatus (*diffL1)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, Lum64f*),
                  LumStatus (*relL2)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, Lum64f*)) {
    reg<T>("mean", "lumcv", 1, 1, true, [mean](Inputs<T>& in) {
        Lum64f v = 0;
        mean(in.a.data(), in.a.step(), in.mask.data(), in.mask.step(), in.roi(), &v);
        benchmark::DoNotOptimize(v);
    });
    reg<T>("meanStdDev", "lumcv", 1, 1, false, [meanStd](Inputs<T>& in) {
        Lum64f m = 0, s = 0;
        meanStd(in.a.data(), in.a.step(), in.roi(), &m, &s);
        benchmark::DoNotOptimize(s);
    });
    reg<T>("meanStdDevMasked", "lumcv", 1, 1, true, [meanStdM](Inputs<T>& in) {
        Lum64f m = 0, s = 0;
        meanStdM(in.a.data(), in.a.step(), in.mask.data(), in.mask.step(), in.roi(), &m, &s);
        benchmark::DoNotOptimize(s);
    });
    reg<T>("minMaxIndx", "lumcv", 1, 1, false, [minMax](Inputs<T>& in) {
        Lum32f mn = 0, mx = 0;
        LumiPoint a{}, b{};
        minMax(in.a.data(), in.a.step(), in.roi(), &mn, &mx, &a, &b);
        benchmark::DoNotOptimize(a);
    });
    reg<T>("minMaxIndxMasked", "lumcv", 1, 1, true, [minMaxM](Inputs<T>& in) {
        Lum32f mn = 0, mx = 0;
        LumiPoint a{}, b{};
        minMaxM(in.a.data(), in.a.step(), in.mask.data(), in.mask.step(), in.roi(), &mn, &mx, &a, &b);
        benchmark::DoNotOptimize(a);
    });
    using NormFn = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*);
    const std::pair<const char*, NormFn> norms[] = {{"normInf", normInf}, {"normL1", normL1}, {"normL2", normL2}};
    for (const auto& [name, fn] : norms)
        reg<T>(name, "lumcv", 1, 1, true, [fn = fn](Inputs<T>& in) {
            Lum64f v = 0;
            fn(in.a.data(), in.a.step(), in.mask.data(), in.mask.step(), in.roi(), &v);
            benchmark::DoNotOptimize(v);
        });
    reg<T>("normDiffL1", "lumcv", 1, 2, true, [diffL1](Inputs<T>& in) {
        Lum64f v = 0;
        diffL1(in.a.data(), in.a.step(), in.b.data(), in.b.step(), in.mask.data(), in.mask.step(), in.roi(), &v);
        benchmark::DoNotOptimize(v);
    });
    reg<T>("normRelL2", "lumcv", 1, 2, true, [relL2](Inputs<T>& in) {
        Lum64f v = 0;
        relL2(in.a.data(), in.a.step(), in.b.data(), in.b.step(), in.mask.data(), in.mask.step(), in.roi(), &v);
        benchmark::DoNotOptimize(v);
    });
#ifdef LUMCV_HAVE_OPENCV
    reg<T>("mean", "opencv", 1, 1, true, [](Inputs<T>& in) { benchmark::DoNotOptimize(cv::mean(in.ma(), in.mm())); });
    reg<T>("meanStdDev", "opencv", 1, 1, false, [](Inputs<T>& in) {
        cv::Scalar m, s;
        cv::meanStdDev(in.ma(), m, s);
        benchmark::DoNotOptimize(s);
    });
    reg<T>("meanStdDevMasked", "opencv", 1, 1, true, [](Inputs<T>& in) {
        cv::Scalar m, s;
        cv::meanStdDev(in.ma(), m, s, in.mm());
        benchmark::DoNotOptimize(s);
    });
    reg<T>("minMaxIndx", "opencv", 1, 1, false, [](Inputs<T>& in) {
        double mn, mx;
        cv::Point a, b;
        cv::minMaxLoc(in.ma(), &mn, &mx, &a, &b);
        benchmark::DoNotOptimize(a);
    });
    reg<T>("minMaxIndxMasked", "opencv", 1, 1, true, [](Inputs<T>& in) {
        double mn, mx;
        cv::Point a, b;
        cv::minMaxLoc(in.ma(), &mn, &mx, &a, &b, in.mm());
        benchmark::DoNotOptimize(a);
    });
    const std::pair<const char*, int> cvNorms[] = {
        {"normInf", cv::NORM_INF}, {"normL1", cv::NORM_L1}, {"normL2", cv::NORM_L2}};
    for (const auto& [name, type] : cvNorms)
        reg<T>(name, "opencv", 1, 1, true,
               [type = type](Inputs<T>& in) { benchmark::DoNotOptimize(cv::norm(in.ma(), type, in.mm())); });
    reg<T>("normDiffL1", "opencv", 1, 2, true,
           [](Inputs<T>& in) { benchmark::DoNotOptimize(cv::norm(in.ma(), in.mb(), cv::NORM_L1, in.mm())); });
    reg<T>("normRelL2", "opencv", 1, 2, true, [](Inputs<T>& in) {
        benchmark::DoNotOptimize(cv::norm(in.ma(), in.mb(), cv::NORM_RELATIVE | cv::NORM_L2, in.mm()));
    });
#endif
}

const bool registered = [] {
    registerType<Lum8u>(lumiMean_8u_C1MR, lumiMean_StdDev_8u_C1R, lumiMean_StdDev_8u_C1MR, lumiMinMaxIndx_8u_C1R,
                        lumiMinMaxIndx_8u_C1MR, lumiNorm_Inf_8u_C1MR, lumiNorm_L1_8u_C1MR, lumiNorm_L2_8u_C1MR,
                        lumiNormDiff_L1_8u_C1MR, lumiNormRel_L2_8u_C1MR);
    registerType<Lum16u>(lumiMean_16u_C1MR, lumiMean_StdDev_16u_C1R, lumiMean_StdDev_16u_C1MR, lumiMinMaxIndx_16u_C1R,
                         lumiMinMaxIndx_16u_C1MR, lumiNorm_Inf_16u_C1MR, lumiNorm_L1_16u_C1MR, lumiNorm_L2_16u_C1MR,
                         lumiNormDiff_L1_16u_C1MR, lumiNormRel_L2_16u_C1MR);
    registerType<Lum32f>(lumiMean_32f_C1MR, lumiMean_StdDev_32f_C1R, lumiMean_StdDev_32f_C1MR, lumiMinMaxIndx_32f_C1R,
                         lumiMinMaxIndx_32f_C1MR, lumiNorm_Inf_32f_C1MR, lumiNorm_L1_32f_C1MR, lumiNorm_L2_32f_C1MR,
                         lumiNormDiff_L1_32f_C1MR, lumiNormRel_L2_32f_C1MR);
    // One channel of three: the mean of channel 2 beside OpenCV's mean of
    // all three (it has no single-channel form).
    reg<Lum8u>("meanC3C", "lumcv", 3, 1, true, [](Inputs<Lum8u>& in) {
        Lum64f v = 0;
        lumiMean_8u_C3CMR(in.a.data(), in.a.step(), in.mask.data(), in.mask.step(), in.roi(), 2, &v);
        benchmark::DoNotOptimize(v);
    });
#ifdef LUMCV_HAVE_OPENCV
    reg<Lum8u>("meanC3C", "opencv", 3, 1, true,
               [](Inputs<Lum8u>& in) { benchmark::DoNotOptimize(cv::mean(in.ma(), in.mm())); });
#endif
    return true;
}();

}  // namespace
