// Accumulators beside cv::accumulate, accumulateSquare, accumulateProduct and
// accumulateWeighted (with and without masks), on the same buffers.
#include <cstring>
#include <functional>
#include <string>

#include "lumcv.h"
#include "support/bench_util.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumbench::Image;
using lumbench::Size2;

// The images of one call: two sources, a mask selecting about half the
// pixels in runs, and a 32f accumulator.
template <class S>
struct Frames {
    Image<S> a, b;
    Image<Lum8u> m;
    Image<Lum32f> d;
    explicit Frames(Size2 s) : a(s.width, s.height), b(s.width, s.height), m(s.width, s.height), d(s.width, s.height) {
        const double hi = sizeof(S) == 1 ? 255.0 : sizeof(S) == 2 ? 65535.0 : 100.0;
        a.randomize(1, 0, hi);
        b.randomize(2, 0, hi);
        d.randomize(3, 0, 100.0);
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) m.row(y)[x] = ((x / 7 + y / 5) % 2) ? 255 : 0;
    }
    LumiSize roi() { return {a.width(), a.height()}; }
};

// Bytes a call moves: each source, the mask, and the accumulator read and written.
template <class S>
int64_t bytesPerCall(const Frames<S>& f, int sources, bool masked) {
    const int64_t px = static_cast<int64_t>(f.d.width()) * f.d.height();
    return px * (sources * static_cast<int64_t>(sizeof(S)) + (masked ? 1 : 0) + 8);
}

template <class S>
using Call = std::function<void(Frames<S>&)>;

template <class S>
void run(benchmark::State& st, Size2 s, int sources, bool masked, const Call<S>& call) {
    Frames<S> f(s);
    for (auto _ : st) {
        call(f);
        benchmark::DoNotOptimize(f.d.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * bytesPerCall(f, sources, masked));
}

template <class S>
void registerBoth(const std::string& family, int sources, bool masked, Call<S> lum, Call<S> cv) {
    const std::string name = family + (sizeof(S) == 1 ? "_8u" : sizeof(S) == 2 ? "_16u" : "_32f");
    lumbench::registerSizes(name, "lumcv",
                            [=](benchmark::State& st, Size2 s) { run<S>(st, s, sources, masked, lum); });
    if (cv) {
        lumbench::registerSizes(name, "opencv",
                                [=](benchmark::State& st, Size2 s) { run<S>(st, s, sources, masked, cv); });
    }
}

#ifdef LUMCV_HAVE_OPENCV
template <class S>
int cvType() {
    return sizeof(S) == 1 ? CV_8UC1 : sizeof(S) == 2 ? CV_16UC1 : CV_32FC1;
}
template <class S>
cv::Mat mat(Image<S>& img) {
    return img.mat(cvType<S>());
}
#define LUM_CV(...) Call<S>([](Frames<S>& f) { __VA_ARGS__; })
#else
#define LUM_CV(...) Call<S>()
#endif

constexpr float kAlpha = 0.05f;

template <class S>
void registerType(const Call<S>& addPlain) {
    // lumiAdd: no unmasked 32f member exists.
    if (addPlain) registerBoth<S>("accumulate", 1, false, addPlain, LUM_CV(cv::accumulate(mat(f.a), mat(f.d))));
    registerBoth<S>("accumulateMasked", 1, true,
                    [](Frames<S>& f) {
                        if constexpr (sizeof(S) == 1)
                            lumiAdd_8u32f_C1IMR(f.a.data(), f.a.step(), f.m.data(), f.m.step(), f.d.data(), f.d.step(), f.roi());
                        else if constexpr (sizeof(S) == 2)
                            lumiAdd_16u32f_C1IMR(f.a.data(), f.a.step(), f.m.data(), f.m.step(), f.d.data(), f.d.step(), f.roi());
                        else
                            lumiAdd_32f_C1IMR(f.a.data(), f.a.step(), f.m.data(), f.m.step(), f.d.data(), f.d.step(), f.roi());
                    },
                    LUM_CV(cv::accumulate(mat(f.a), mat(f.d), mat(f.m))));
}

#define LUM_BY_TYPE(S, FN8, FN16, FN32, ...)          \
    if constexpr (sizeof(S) == 1) FN8(__VA_ARGS__);   \
    else if constexpr (sizeof(S) == 2) FN16(__VA_ARGS__); \
    else FN32(__VA_ARGS__)

template <class S>
void registerMoments() {
    registerBoth<S>("accumulateSquare", 1, false,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddSquare_8u32f_C1IR, lumiAddSquare_16u32f_C1IR, lumiAddSquare_32f_C1IR,
                                    f.a.data(), f.a.step(), f.d.data(), f.d.step(), f.roi());
                    },
                    LUM_CV(cv::accumulateSquare(mat(f.a), mat(f.d))));
    registerBoth<S>("accumulateSquareMasked", 1, true,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddSquare_8u32f_C1IMR, lumiAddSquare_16u32f_C1IMR, lumiAddSquare_32f_C1IMR,
                                    f.a.data(), f.a.step(), f.m.data(), f.m.step(), f.d.data(), f.d.step(), f.roi());
                    },
                    LUM_CV(cv::accumulateSquare(mat(f.a), mat(f.d), mat(f.m))));
    registerBoth<S>("accumulateProduct", 2, false,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddProduct_8u32f_C1IR, lumiAddProduct_16u32f_C1IR, lumiAddProduct_32f_C1IR,
                                    f.a.data(), f.a.step(), f.b.data(), f.b.step(), f.d.data(), f.d.step(), f.roi());
                    },
                    LUM_CV(cv::accumulateProduct(mat(f.a), mat(f.b), mat(f.d))));
    registerBoth<S>("accumulateProductMasked", 2, true,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddProduct_8u32f_C1IMR, lumiAddProduct_16u32f_C1IMR,
                                    lumiAddProduct_32f_C1IMR, f.a.data(), f.a.step(), f.b.data(), f.b.step(),
                                    f.m.data(), f.m.step(), f.d.data(), f.d.step(), f.roi());
                    },
                    LUM_CV(cv::accumulateProduct(mat(f.a), mat(f.b), mat(f.d), mat(f.m))));
    registerBoth<S>("accumulateWeighted", 1, false,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddWeighted_8u32f_C1IR, lumiAddWeighted_16u32f_C1IR,
                                    lumiAddWeighted_32f_C1IR, f.a.data(), f.a.step(), f.d.data(), f.d.step(), f.roi(),
                                    kAlpha);
                    },
                    LUM_CV(cv::accumulateWeighted(mat(f.a), mat(f.d), kAlpha)));
    registerBoth<S>("accumulateWeightedMasked", 1, true,
                    [](Frames<S>& f) {
                        LUM_BY_TYPE(S, lumiAddWeighted_8u32f_C1IMR, lumiAddWeighted_16u32f_C1IMR,
                                    lumiAddWeighted_32f_C1IMR, f.a.data(), f.a.step(), f.m.data(), f.m.step(),
                                    f.d.data(), f.d.step(), f.roi(), kAlpha);
                    },
                    LUM_CV(cv::accumulateWeighted(mat(f.a), mat(f.d), kAlpha, mat(f.m))));
}

const bool registered = [] {
    registerType<Lum8u>([](Frames<Lum8u>& f) {
        lumiAdd_8u32f_C1IR(f.a.data(), f.a.step(), f.d.data(), f.d.step(), f.roi());
    });
    registerType<Lum16u>([](Frames<Lum16u>& f) {
        lumiAdd_16u32f_C1IR(f.a.data(), f.a.step(), f.d.data(), f.d.step(), f.roi());
    });
    registerType<Lum32f>(Call<Lum32f>());
    registerMoments<Lum8u>();
    registerMoments<Lum16u>();
    registerMoments<Lum32f>();
    // The out-of-place blend of two float images; OpenCV's twin is
    // addWeighted with the weights alpha and 1 - alpha. It reads two images
    // and writes one: the bytes of one source and a read-write accumulator.
    using S = Lum32f;
    registerBoth<S>("addWeighted", 1, false,
                    [](Frames<S>& f) {
                        lumiAddWeighted_32f_C1R(f.a.data(), f.a.step(), f.b.data(), f.b.step(), f.d.data(),
                                                f.d.step(), f.roi(), kAlpha);
                    },
                    LUM_CV(cv::addWeighted(mat(f.a), kAlpha, mat(f.b), 1.0 - kAlpha, 0.0, mat(f.d))));
    return true;
}();

}  // namespace
