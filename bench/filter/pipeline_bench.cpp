// Row and column pipeline stages beside OpenCV's separable filter with a
// one-tap kernel in the other direction (cv::sepFilter2D), binomial kernels
// of 3, 5 and 7 taps, replicated borders.
//
// OpenCV refuses a result narrower than its source, so the column peer of
// 16s8u filters 16s to 16s. OpenCV's float kernels are kernel[i] / divisor;
// its fixed-point and rounding differ from the stages' in the last bit.
#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

std::vector<int> binomial(int k) {
    std::vector<int> c(k, 0);
    c[0] = 1;
    for (int n = 1; n < k; ++n)
        for (int i = n; i > 0; --i) c[i] += c[i - 1];
    return c;
}
int sumOf(const std::vector<int>& v) {
    int s = 0;
    for (int x : v) s += x;
    return s;
}

template <class S, class D, class Call>
void runRow(benchmark::State& st, Size2 s, int k, Call call) {
    Image<S> src(s.width, s.height);
    Image<D> dst(s.width, s.height);
    src.randomize(1, 0, 250);
    std::vector<D*> rows(s.height);
    for (int y = 0; y < s.height; ++y) rows[y] = dst.row(y);
    std::vector<Lum8u> buffer(64 * k + 4096);
    for (auto _ : st) {
        call(src, rows.data(), buffer.data());
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * s.width * s.height * (sizeof(S) + sizeof(D)));
}

template <class S, class D, class Call>
void runColumn(benchmark::State& st, Size2 s, int k, Call call) {
    Image<S> src(s.width, s.height);
    Image<D> dst(s.width, s.height);
    src.randomize(1, 0, 250);
    // The caller's vertical border: edge rows repeated.
    std::vector<const S*> rows(s.height + k - 1);
    for (int i = 0; i < s.height + k - 1; ++i) {
        const int y = std::min(std::max(i - k / 2, 0), s.height - 1);
        rows[i] = src.row(y);
    }
    std::vector<Lum8u> buffer(64 * k + 40 * 3 * s.width + 4096);
    for (auto _ : st) {
        call(rows.data(), dst, buffer.data());
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * s.width * s.height * (sizeof(S) + sizeof(D)));
}

#ifdef LUMCV_HAVE_OPENCV
template <class S>
void runOpenCv(benchmark::State& st, Size2 s, int cvType, int ddepth, int k, bool rowStage, int dstBytes) {
    Image<S> src(s.width, s.height);
    src.randomize(1, 0, 250);
    const std::vector<int> b = binomial(k);
    cv::Mat kern(1, k, CV_32F);
    for (int i = 0; i < k; ++i) kern.at<float>(0, i) = static_cast<float>(b[i]) / static_cast<float>(sumOf(b));
    const cv::Mat one = cv::Mat::ones(1, 1, CV_32F);
    cv::Mat m = src.mat(cvType), out;
    for (auto _ : st) {
        if (rowStage) cv::sepFilter2D(m, out, ddepth, kern, one, cv::Point(-1, -1), 0.0, cv::BORDER_REPLICATE);
        else cv::sepFilter2D(m, out, ddepth, one, kern, cv::Point(-1, -1), 0.0, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(out.data);
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * s.width * s.height * (sizeof(S) + dstBytes));
}
#endif

template <class T>
std::vector<T> kernelOf(int k) {
    const std::vector<int> b = binomial(k);
    std::vector<T> out(k);
    for (int i = 0; i < k; ++i)
        out[i] = std::is_same_v<T, float> ? static_cast<T>(static_cast<float>(b[i]) / sumOf(b)) : static_cast<T>(b[i]);
    return out;
}

const bool registered = [] {
    using lumbench::registerSizes;
    for (int k : {3, 5, 7}) {
        const std::string kk = "_k" + std::to_string(k);
        const int div = sumOf(binomial(k));
        // ---- row stage
        registerSizes("rowPipeline_8u16s" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runRow<Lum8u, Lum16s>(st, s, k, [&](auto& src, Lum16s* const* rows, Lum8u* buf) {
                lumiFilterRowBorderPipeline_8u16s_C1R(src.data(), src.step(), rows, {s.width, s.height}, kern.data(), k,
                                                      k / 2, 1, 0, div, buf);
            });
        });
        registerSizes("rowPipeline_16s" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runRow<Lum16s, Lum16s>(st, s, k, [&](auto& src, Lum16s* const* rows, Lum8u* buf) {
                lumiFilterRowBorderPipeline_16s_C1R(src.data(), src.step(), rows, {s.width, s.height}, kern.data(), k,
                                                    k / 2, 1, 0, div, buf);
            });
        });
        registerSizes("rowPipeline_Low_16s" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runRow<Lum16s, Lum16s>(st, s, k, [&](auto& src, Lum16s* const* rows, Lum8u* buf) {
                lumiFilterRowBorderPipeline_Low_16s_C1R(src.data(), src.step(), rows, {s.width, s.height}, kern.data(),
                                                        k, k / 2, 1, 0, div, buf);
            });
        });
        registerSizes("rowPipeline_16u" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16u>(k);
            runRow<Lum16u, Lum16u>(st, s, k, [&](auto& src, Lum16u* const* rows, Lum8u* buf) {
                lumiFilterRowBorderPipeline_16u_C1R(src.data(), src.step(), rows, {s.width, s.height}, kern.data(), k,
                                                    k / 2, 1, 0, div, buf);
            });
        });
        registerSizes("rowPipeline_32f" + kk, "lumcv", [k](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<float>(k);
            runRow<Lum32f, Lum32f>(st, s, k, [&](auto& src, Lum32f* const* rows, Lum8u* buf) {
                lumiFilterRowBorderPipeline_32f_C1R(src.data(), src.step(), rows, {s.width, s.height}, kern.data(), k,
                                                    k / 2, 1, 0.0f, buf);
            });
        });
        // ---- column stage
        registerSizes("columnPipeline_16s8u" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runColumn<Lum16s, Lum8u>(st, s, k, [&](const Lum16s* const* rows, auto& dst, Lum8u* buf) {
                lumiFilterColumnPipeline_16s8u_C1R(rows, dst.data(), dst.step(), {s.width, s.height}, kern.data(), k,
                                                   div, buf);
            });
        });
        registerSizes("columnPipeline_16s" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runColumn<Lum16s, Lum16s>(st, s, k, [&](const Lum16s* const* rows, auto& dst, Lum8u* buf) {
                lumiFilterColumnPipeline_16s_C1R(rows, dst.data(), dst.step(), {s.width, s.height}, kern.data(), k, div,
                                                 buf);
            });
        });
        registerSizes("columnPipeline_Low_16s" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16s>(k);
            runColumn<Lum16s, Lum16s>(st, s, k, [&](const Lum16s* const* rows, auto& dst, Lum8u* buf) {
                lumiFilterColumnPipeline_Low_16s_C1R(rows, dst.data(), dst.step(), {s.width, s.height}, kern.data(), k,
                                                     div, buf);
            });
        });
        registerSizes("columnPipeline_16u" + kk, "lumcv", [k, div](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<Lum16u>(k);
            runColumn<Lum16u, Lum16u>(st, s, k, [&](const Lum16u* const* rows, auto& dst, Lum8u* buf) {
                lumiFilterColumnPipeline_16u_C1R(rows, dst.data(), dst.step(), {s.width, s.height}, kern.data(), k, div,
                                                 buf);
            });
        });
        registerSizes("columnPipeline_32f" + kk, "lumcv", [k](benchmark::State& st, Size2 s) {
            const auto kern = kernelOf<float>(k);
            runColumn<Lum32f, Lum32f>(st, s, k, [&](const Lum32f* const* rows, auto& dst, Lum8u* buf) {
                lumiFilterColumnPipeline_32f_C1R(rows, dst.data(), dst.step(), {s.width, s.height}, kern.data(), k, buf);
            });
        });
#ifdef LUMCV_HAVE_OPENCV
        registerSizes("rowPipeline_8u16s" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum8u>(st, s, CV_8UC1, CV_16S, k, true, 2); });
        registerSizes("rowPipeline_16s" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16s>(st, s, CV_16SC1, CV_16S, k, true, 2); });
        registerSizes("rowPipeline_Low_16s" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16s>(st, s, CV_16SC1, CV_16S, k, true, 2); });
        registerSizes("rowPipeline_16u" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16u>(st, s, CV_16UC1, CV_16U, k, true, 2); });
        registerSizes("rowPipeline_32f" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum32f>(st, s, CV_32FC1, CV_32F, k, true, 4); });
        registerSizes("columnPipeline_16s8u" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16s>(st, s, CV_16SC1, CV_16S, k, false, 2); });
        registerSizes("columnPipeline_16s" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16s>(st, s, CV_16SC1, CV_16S, k, false, 2); });
        registerSizes("columnPipeline_Low_16s" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16s>(st, s, CV_16SC1, CV_16S, k, false, 2); });
        registerSizes("columnPipeline_16u" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum16u>(st, s, CV_16UC1, CV_16U, k, false, 2); });
        registerSizes("columnPipeline_32f" + kk, "opencv",
                      [k](benchmark::State& st, Size2 s) { runOpenCv<Lum32f>(st, s, CV_32FC1, CV_32F, k, false, 4); });
#endif
    }
    return true;
}();

}  // namespace
