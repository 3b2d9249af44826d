// Shared pieces of the benchmarks: image sizes, aligned random images, and
// the registration of one family member beside its peers.
//
// Names read <family>_<type>/<impl>/<width>x<height>, impl being lumcv,
// opencv or memcpy, so that tools/bench_ratios.py can pair them. Every
// benchmark sets bytes processed (all bytes read and written), so figures
// compare with memory bandwidth.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace lumbench {

struct Size2 {
    int width;
    int height;
};

inline const std::vector<Size2>& standardSizes() {
    static const std::vector<Size2> s = {{640, 480}, {1920, 1080}, {3840, 2160}};
    return s;
}

inline std::string sizeName(Size2 s) { return std::to_string(s.width) + "x" + std::to_string(s.height); }

// A 64-byte aligned image whose step is its row bytes rounded up to 64.
template <class T>
class Image {
public:
    Image(int width, int height, int channels = 1) : w_(width), h_(height), c_(channels) {
        step_ = (width * channels * static_cast<int>(sizeof(T)) + 63) & ~63;
        data_ = static_cast<uint8_t*>(std::aligned_alloc(64, static_cast<size_t>(step_) * height + 64));
        std::memset(data_, 0, static_cast<size_t>(step_) * height);
    }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() { std::free(data_); }

    T* data() { return reinterpret_cast<T*>(data_); }
    const T* data() const { return reinterpret_cast<const T*>(data_); }
    T* row(int y) { return reinterpret_cast<T*>(data_ + static_cast<size_t>(step_) * y); }
    int step() const { return step_; }
    int width() const { return w_; }
    int height() const { return h_; }
    int channels() const { return c_; }
    size_t roiBytes() const { return static_cast<size_t>(w_) * h_ * c_ * sizeof(T); }

    // Uniform random samples in [lo, hi].
    void randomize(uint32_t seed, double lo, double hi) {
        std::mt19937 g(seed);
        std::uniform_real_distribution<double> d(lo, hi);
        for (int y = 0; y < h_; ++y)
            for (int i = 0; i < w_ * c_; ++i) row(y)[i] = static_cast<T>(d(g));
    }

#ifdef LUMCV_HAVE_OPENCV
    cv::Mat mat(int cvType) { return cv::Mat(h_, w_, cvType, data_, static_cast<size_t>(step_)); }
#endif

private:
    int w_, h_, c_, step_;
    uint8_t* data_;
};

// Registers fn once per standard size as <family>/<impl>/<size>.
template <class Fn>
void registerSizes(const std::string& family, const std::string& impl, Fn fn) {
    for (Size2 s : standardSizes()) {
        benchmark::RegisterBenchmark((family + "/" + impl + "/" + sizeName(s)).c_str(),
                                     [fn, s](benchmark::State& st) { fn(st, s); })
            ->Unit(benchmark::kMicrosecond)
            ->UseRealTime();
    }
}

// OpenCV runs single-threaded, like the library.
void pinOpenCvToOneThread();

}  // namespace lumbench
