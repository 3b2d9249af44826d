// Absolute difference beside memcpy of the same bytes and cv::absdiff.
#include <cstring>

#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

template <class T, class Call>
void runLumcv(benchmark::State& st, Size2 s, Call call) {
    Image<T> a(s.width, s.height), b(s.width, s.height), d(s.width, s.height);
    a.randomize(1, 0, 255);
    b.randomize(2, 0, 255);
    for (auto _ : st) {
        call(a, b, d);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 3 * a.roiBytes());
}

// The bandwidth ceiling: one copy of the destination's bytes, row by row.
template <class T>
void runMemcpy(benchmark::State& st, Size2 s) {
    Image<T> a(s.width, s.height), d(s.width, s.height);
    a.randomize(1, 0, 255);
    const size_t row = static_cast<size_t>(s.width) * sizeof(T);
    for (auto _ : st) {
        for (int y = 0; y < s.height; ++y) std::memcpy(d.row(y), a.row(y), row);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 2 * a.roiBytes());
}

#ifdef LUMCV_HAVE_OPENCV
template <class T>
void runOpenCv(benchmark::State& st, Size2 s, int cvType) {
    Image<T> a(s.width, s.height), b(s.width, s.height), d(s.width, s.height);
    a.randomize(1, 0, 255);
    b.randomize(2, 0, 255);
    cv::Mat ma = a.mat(cvType), mb = b.mat(cvType), md = d.mat(cvType);
    for (auto _ : st) {
        cv::absdiff(ma, mb, md);
        benchmark::DoNotOptimize(d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * 3 * a.roiBytes());
}
#endif

const bool registered = [] {
    using lumbench::registerSizes;
    registerSizes("absDiff_8u", "lumcv", [](benchmark::State& st, Size2 s) {
        runLumcv<Lum8u>(st, s, [](auto& a, auto& b, auto& d) {
            lumiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {a.width(), a.height()});
        });
    });
    registerSizes("absDiff_16u", "lumcv", [](benchmark::State& st, Size2 s) {
        runLumcv<Lum16u>(st, s, [](auto& a, auto& b, auto& d) {
            lumiAbsDiff_16u_C1R(a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {a.width(), a.height()});
        });
    });
    registerSizes("absDiff_32f", "lumcv", [](benchmark::State& st, Size2 s) {
        runLumcv<Lum32f>(st, s, [](auto& a, auto& b, auto& d) {
            lumiAbsDiff_32f_C1R(a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {a.width(), a.height()});
        });
    });
    registerSizes("absDiff_8u", "memcpy", runMemcpy<Lum8u>);
    registerSizes("absDiff_16u", "memcpy", runMemcpy<Lum16u>);
    registerSizes("absDiff_32f", "memcpy", runMemcpy<Lum32f>);
#ifdef LUMCV_HAVE_OPENCV
    registerSizes("absDiff_8u", "opencv", [](benchmark::State& st, Size2 s) { runOpenCv<Lum8u>(st, s, CV_8UC1); });
    registerSizes("absDiff_16u", "opencv", [](benchmark::State& st, Size2 s) { runOpenCv<Lum16u>(st, s, CV_16UC1); });
    registerSizes("absDiff_32f", "opencv", [](benchmark::State& st, Size2 s) { runOpenCv<Lum32f>(st, s, CV_32FC1); });
#endif
    return true;
}();

}  // namespace
