// Integral images beside cv::integral at the matching depths, and the window
// standard deviations (no peer: throughput only).
//
// The peer has no tilted integral on its own: its tilted form always computes
// the plain sum, the squared sum and the tilted sum together, so the tilted
// members are measured beside that call.
#include <string>

#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

// Bytes a call moves: the source read once, every result written once.
int64_t movedBytes(Size2 s, int srcBytes, int extra, int dstBytes, int sqrBytes) {
    const int64_t results = int64_t{s.width + extra} * (s.height + extra);
    return int64_t{s.width} * s.height * srcBytes + results * (dstBytes + sqrBytes);
}

template <class Fn>
void loop(benchmark::State& st, int64_t bytes, Fn fn) {
    for (auto _ : st) {
        fn();
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * bytes);
}

// One result: Integral and TiltedIntegral members.
template <class S, class D, class Call>
void runOne(benchmark::State& st, Size2 s, int extra, Call call) {
    Image<S> src(s.width, s.height);
    src.randomize(1, 0, 255);
    Image<D> dst(s.width + extra, s.height + extra);
    if (call(src, dst) != lumStatusOk) {
        st.SkipWithError("the integral call failed");
        return;
    }
    loop(st, movedBytes(s, sizeof(S), extra, sizeof(D), 0), [&] { call(src, dst); });
}

// Two results: the squared members.
template <class D, class Q, class Call>
void runTwo(benchmark::State& st, Size2 s, int extra, Call call) {
    Image<Lum8u> src(s.width, s.height);
    src.randomize(1, 0, 255);
    Image<D> dst(s.width + extra, s.height + extra);
    Image<Q> sqr(s.width + extra, s.height + extra);
    if (call(src, dst, sqr) != lumStatusOk) {
        st.SkipWithError("the integral call failed");
        return;
    }
    loop(st, movedBytes(s, 1, extra, sizeof(D), sizeof(Q)), [&] { call(src, dst, sqr); });
}

LumiSize roiOf(Size2 s) { return {s.width, s.height}; }

#ifdef LUMCV_HAVE_OPENCV
// cv::integral into preallocated results of our own images.
template <class S, class D>
void runOpenCvOne(benchmark::State& st, Size2 s, int srcType, int sumType) {
    Image<S> src(s.width, s.height);
    src.randomize(1, 0, 255);
    Image<D> dst(s.width + 1, s.height + 1);
    cv::Mat ms = src.mat(srcType), md = dst.mat(sumType);
    loop(st, movedBytes(s, sizeof(S), 1, sizeof(D), 0), [&] { cv::integral(ms, md, CV_MAT_DEPTH(sumType)); });
}

template <class D, class Q>
void runOpenCvTwo(benchmark::State& st, Size2 s, int sumType, int sqrType) {
    Image<Lum8u> src(s.width, s.height);
    src.randomize(1, 0, 255);
    Image<D> dst(s.width + 1, s.height + 1);
    Image<Q> sqr(s.width + 1, s.height + 1);
    cv::Mat ms = src.mat(CV_8UC1), md = dst.mat(sumType), mq = sqr.mat(sqrType);
    loop(st, movedBytes(s, 1, 1, sizeof(D), sizeof(Q)),
         [&] { cv::integral(ms, md, mq, CV_MAT_DEPTH(sumType), CV_MAT_DEPTH(sqrType)); });
}

// Sum, squared sum and tilted sum in one call: the peer's only tilted form.
template <class D, class Q>
void runOpenCvTilted(benchmark::State& st, Size2 s, int sumType, int sqrType) {
    Image<Lum8u> src(s.width, s.height);
    src.randomize(1, 0, 255);
    Image<D> dst(s.width + 1, s.height + 1), tilted(s.width + 1, s.height + 1);
    Image<Q> sqr(s.width + 1, s.height + 1);
    cv::Mat ms = src.mat(CV_8UC1), md = dst.mat(sumType), mq = sqr.mat(sqrType), mt = tilted.mat(sumType);
    loop(st, movedBytes(s, 1, 1, 2 * sizeof(D), sizeof(Q)),
         [&] { cv::integral(ms, md, mq, mt, CV_MAT_DEPTH(sumType), CV_MAT_DEPTH(sqrType)); });
}
#endif

// ------------------------------------------------------------ windows

// A 24 x 24 window, as a detector normalises its candidates; tilted windows
// of 12 x 12 (the same area) start 12 columns in, so no corner reads left of
// the integral.
constexpr LumiRect kUpright{1, 1, 22, 22};
constexpr LumiRect kTilted{12, 0, 12, 12};

template <class I, class Q, class O, class Call>
void runWindow(benchmark::State& st, Size2 s, bool tilted, Call call) {
    const LumiRect r = tilted ? kTilted : kUpright;
    // The columns the step test counts beyond the result's width, and the
    // rows below it that the windows reach.
    const int extraCols = tilted ? r.height + r.y + r.x + r.width - 1 : r.x + r.width;
    const int extraRows = tilted ? r.x + r.y + r.width + r.height : r.y + r.height;
    Image<I> src(s.width + extraCols, s.height + extraRows);
    Image<Q> sqr(s.width + extraCols, s.height + extraRows);
    Image<O> dst(s.width, s.height);
    src.randomize(1, 0, 1e6);
    sqr.randomize(2, 1e6, 1e9);
    const int64_t bytes = int64_t{s.width} * s.height * (sizeof(I) + sizeof(Q) + sizeof(O));
    if (call(src, sqr, dst, r) != lumStatusOk) {
        st.SkipWithError("the window call failed");
        return;
    }
    loop(st, bytes, [&] { call(src, sqr, dst, r); });
}

// Each member beside its peer, registered next to each other so that both
// run close in time.
template <class Ours, class Peer>
void registerPair(const std::string& family, Ours ours, Peer peer) {
    lumbench::registerSizes(family, "lumcv", ours);
#ifdef LUMCV_HAVE_OPENCV
    lumbench::registerSizes(family, "opencv", peer);
#else
    (void)peer;
#endif
}

#ifdef LUMCV_HAVE_OPENCV
#define LUMBENCH_PEER(body) [](benchmark::State& st, Size2 s) { body; }
#else
#define LUMBENCH_PEER(body) [](benchmark::State&, Size2) {}
#endif

const bool registered = [] {
    registerPair(
        "integral_8u32s",
        [](benchmark::State& st, Size2 s) {
            runOne<Lum8u, Lum32s>(st, s, 1, [s](auto& a, auto& d) {
                return lumiIntegral_8u32s_C1R(a.data(), a.step(), d.data(), d.step(), roiOf(s), 0);
            });
        },
        LUMBENCH_PEER((runOpenCvOne<Lum8u, Lum32s>(st, s, CV_8UC1, CV_32SC1))));
    registerPair(
        "integral_8u32f",
        [](benchmark::State& st, Size2 s) {
            runOne<Lum8u, Lum32f>(st, s, 1, [s](auto& a, auto& d) {
                return lumiIntegral_8u32f_C1R(a.data(), a.step(), d.data(), d.step(), roiOf(s), 0.f);
            });
        },
        LUMBENCH_PEER((runOpenCvOne<Lum8u, Lum32f>(st, s, CV_8UC1, CV_32FC1))));
    registerPair(
        "integral_32f",
        [](benchmark::State& st, Size2 s) {
            runOne<Lum32f, Lum32f>(st, s, 1, [s](auto& a, auto& d) {
                return lumiIntegral_32f_C1R(a.data(), a.step(), d.data(), d.step(), roiOf(s));
            });
        },
        LUMBENCH_PEER((runOpenCvOne<Lum32f, Lum32f>(st, s, CV_32FC1, CV_32FC1))));
    registerPair(
        "sqrIntegral_8u32s",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32s, Lum32s>(st, s, 1, [s](auto& a, auto& d, auto& q) {
                return lumiSqrIntegral_8u32s_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(), roiOf(s),
                                                 0, 0);
            });
        },
        LUMBENCH_PEER((runOpenCvTwo<Lum32s, Lum32s>(st, s, CV_32SC1, CV_32SC1))));
    registerPair(
        "sqrIntegral_8u32s64f",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32s, Lum64f>(st, s, 1, [s](auto& a, auto& d, auto& q) {
                return lumiSqrIntegral_8u32s64f_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(),
                                                    roiOf(s), 0, 0.0);
            });
        },
        LUMBENCH_PEER((runOpenCvTwo<Lum32s, Lum64f>(st, s, CV_32SC1, CV_64FC1))));
    registerPair(
        "sqrIntegral_8u32f64f",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32f, Lum64f>(st, s, 1, [s](auto& a, auto& d, auto& q) {
                return lumiSqrIntegral_8u32f64f_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(),
                                                    roiOf(s), 0.f, 0.0);
            });
        },
        LUMBENCH_PEER((runOpenCvTwo<Lum32f, Lum64f>(st, s, CV_32FC1, CV_64FC1))));
    registerPair(
        "tiltedIntegral_8u32s",
        [](benchmark::State& st, Size2 s) {
            runOne<Lum8u, Lum32s>(st, s, 2, [s](auto& a, auto& d) {
                return lumiTiltedIntegral_8u32s_C1R(a.data(), a.step(), d.data(), d.step(), roiOf(s), 0);
            });
        },
        LUMBENCH_PEER((runOpenCvTilted<Lum32s, Lum32s>(st, s, CV_32SC1, CV_32SC1))));
    registerPair(
        "tiltedIntegral_8u32f",
        [](benchmark::State& st, Size2 s) {
            runOne<Lum8u, Lum32f>(st, s, 2, [s](auto& a, auto& d) {
                return lumiTiltedIntegral_8u32f_C1R(a.data(), a.step(), d.data(), d.step(), roiOf(s), 0.f);
            });
        },
        LUMBENCH_PEER((runOpenCvTilted<Lum32f, Lum32f>(st, s, CV_32FC1, CV_32FC1))));
    registerPair(
        "tiltedSqrIntegral_8u32s",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32s, Lum32s>(st, s, 2, [s](auto& a, auto& d, auto& q) {
                return lumiTiltedSqrIntegral_8u32s_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(),
                                                       roiOf(s), 0, 0);
            });
        },
        LUMBENCH_PEER((runOpenCvTilted<Lum32s, Lum32s>(st, s, CV_32SC1, CV_32SC1))));
    registerPair(
        "tiltedSqrIntegral_8u32s64f",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32s, Lum64f>(st, s, 2, [s](auto& a, auto& d, auto& q) {
                return lumiTiltedSqrIntegral_8u32s64f_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(),
                                                          roiOf(s), 0, 0.0);
            });
        },
        LUMBENCH_PEER((runOpenCvTilted<Lum32s, Lum64f>(st, s, CV_32SC1, CV_64FC1))));
    registerPair(
        "tiltedSqrIntegral_8u32f64f",
        [](benchmark::State& st, Size2 s) {
            runTwo<Lum32f, Lum64f>(st, s, 2, [s](auto& a, auto& d, auto& q) {
                return lumiTiltedSqrIntegral_8u32f64f_C1R(a.data(), a.step(), d.data(), d.step(), q.data(), q.step(),
                                                          roiOf(s), 0.f, 0.0);
            });
        },
        LUMBENCH_PEER((runOpenCvTilted<Lum32f, Lum64f>(st, s, CV_32FC1, CV_64FC1))));

    using lumbench::registerSizes;
    registerSizes("rectStdDev_32f", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32f, Lum64f, Lum32f>(st, s, false, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiRectStdDev_32f_C1R(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(), roiOf(s), r);
        });
    });
    registerSizes("rectStdDev_32s32f", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32s, Lum64f, Lum32f>(st, s, false, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiRectStdDev_32s32f_C1R(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(), roiOf(s), r);
        });
    });
    registerSizes("rectStdDev_32s_Sfs", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32s, Lum32s, Lum32s>(st, s, false, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiRectStdDev_32s_C1RSfs(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(), roiOf(s), r,
                                             0);
        });
    });
    registerSizes("tiltedRectStdDev_32f", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32f, Lum64f, Lum32f>(st, s, true, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiTiltedRectStdDev_32f_C1R(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(), roiOf(s),
                                                r);
        });
    });
    registerSizes("tiltedRectStdDev_32s32f", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32s, Lum64f, Lum32f>(st, s, true, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiTiltedRectStdDev_32s32f_C1R(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(),
                                                   roiOf(s), r);
        });
    });
    registerSizes("tiltedRectStdDev_32s_Sfs", "lumcv", [](benchmark::State& st, Size2 s) {
        runWindow<Lum32s, Lum32s, Lum32s>(st, s, true, [s](auto& a, auto& q, auto& d, LumiRect r) {
            return lumiTiltedRectStdDev_32s_C1RSfs(a.data(), a.step(), q.data(), q.step(), d.data(), d.step(),
                                                   roiOf(s), r, 0);
        });
    });
    return true;
}();

}  // namespace
