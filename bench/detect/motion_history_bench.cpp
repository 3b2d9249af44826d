// Motion history beside cv::motempl::updateMotionHistory (8u silhouettes
// only there), on the same buffers.
#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV_CONTRIB
#include <opencv2/optflow/motempl.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

// A silhouette with motion in blocks over about a third of the pixels.
template <class S>
void fillSilhouette(Image<S>& sil) {
    for (int y = 0; y < sil.height(); ++y)
        for (int x = 0; x < sil.width(); ++x) sil.row(y)[x] = static_cast<S>(((x / 16 + y / 8) % 3) == 0 ? 1 : 0);
}

template <class S, class Call>
void run(benchmark::State& st, Size2 s, Call call) {
    Image<S> sil(s.width, s.height);
    Image<Lum32f> mhi(s.width, s.height);
    fillSilhouette(sil);
    mhi.randomize(3, 0.0, 10.0);
    float timestamp = 10.0f;
    for (auto _ : st) {
        call(sil, mhi, timestamp);
        timestamp += 1.0f;
        benchmark::DoNotOptimize(mhi.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * s.width * s.height * (sizeof(S) + 8));
}

const bool registered = [] {
    using lumbench::registerSizes;
    registerSizes("motionHistory_8u", "lumcv", [](benchmark::State& st, Size2 s) {
        run<Lum8u>(st, s, [](Image<Lum8u>& sil, Image<Lum32f>& mhi, float ts) {
            lumiUpdateMotionHistory_8u32f_C1IR(sil.data(), sil.step(), mhi.data(), mhi.step(),
                                               {sil.width(), sil.height()}, ts, 5.0f);
        });
    });
    registerSizes("motionHistory_16u", "lumcv", [](benchmark::State& st, Size2 s) {
        run<Lum16u>(st, s, [](Image<Lum16u>& sil, Image<Lum32f>& mhi, float ts) {
            lumiUpdateMotionHistory_16u32f_C1IR(sil.data(), sil.step(), mhi.data(), mhi.step(),
                                                {sil.width(), sil.height()}, ts, 5.0f);
        });
    });
    registerSizes("motionHistory_32f", "lumcv", [](benchmark::State& st, Size2 s) {
        run<Lum32f>(st, s, [](Image<Lum32f>& sil, Image<Lum32f>& mhi, float ts) {
            lumiUpdateMotionHistory_32f_C1IR(sil.data(), sil.step(), mhi.data(), mhi.step(),
                                             {sil.width(), sil.height()}, ts, 5.0f);
        });
    });
#ifdef LUMCV_HAVE_OPENCV_CONTRIB
    registerSizes("motionHistory_8u", "opencv", [](benchmark::State& st, Size2 s) {
        run<Lum8u>(st, s, [](Image<Lum8u>& sil, Image<Lum32f>& mhi, float ts) {
            cv::motempl::updateMotionHistory(sil.mat(CV_8UC1), mhi.mat(CV_32FC1), ts, 5.0);
        });
    });
#endif
    return true;
}();

}  // namespace
