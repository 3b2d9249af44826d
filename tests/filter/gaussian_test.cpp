// Gaussian filter against a scalar reference written from its formulas: the
// half kernel, the symmetric sums in their fixed order, the border rules for
// rows and columns outside the ROI, and the narrowing of the results.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/cache_size.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace {

using lumtest::GuardedImage;
using lumtest::Layout;
using lumtest::Rng;

// ------------------------------------------------------------ reference

namespace ref {

// The half kernel: outermost tap first, the centre last.
std::vector<float> halfKernel(int k, float sigma) {
    const int r = k / 2;
    std::vector<float> w(r + 1);
    float sum = 0.0f;
    for (int i = 0; i < r; ++i) {
        const float d = static_cast<float>(r - i);
        const float e = -(d * d) / (sigma * (sigma + sigma));
        w[i] = std::exp(e);
        sum = std::fma(w[i], 2.0f, sum);
    }
    w[r] = 1.0f;
    sum = sum + 1.0f;
    const float inv = 1.0f / sum;
    for (float& v : w) v = v * inv;
    return w;
}

// t holds the 2r + 1 taps in order.
float symmetricSum(const float* t, const std::vector<float>& w) {
    const int r = static_cast<int>(w.size()) - 1;
    if (r == 1) return std::fma(t[0] + t[2], w[0], w[1] * t[1]);
    float acc = (t[0] + t[2 * r]) * w[0];
    for (int i = 1; i < r; ++i) acc = std::fma(t[i] + t[2 * r - i], w[i], acc);
    return std::fma(t[r], w[r], acc);
}

// Index of an outside position p of a line of n, for replicate (1) and
// mirror (3); a side marked as memory stops the rule and keeps p.
int mapIndex(int p, int n, int code, bool lowMem, bool highMem) {
    while (p < 0 || p >= n) {
        if (p < 0 && lowMem) return p;
        if (p >= n && highMem) return p;
        if (code == 1) return p < 0 ? 0 : n - 1;
        if (n == 1) return 0;
        p = p < 0 ? -p : 2 * (n - 1) - p;
    }
    return p;
}

template <class T>
T narrow(float v, int k) {
    if constexpr (std::is_same_v<T, float>) {
        return v;
    } else {
        const long i = std::lrint(v);  // nearest, ties to even
        if (std::is_same_v<T, Lum16s> && k == 5) return static_cast<T>(static_cast<uint16_t>(i & 0xFFFF));
        const long lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
        return static_cast<T>(i < lo ? lo : (i > hi ? hi : i));
    }
}

// The whole filter. `at(x, y, ch)` reads the source at any position that the
// border word lets the filter read.
template <class T, class At>
std::vector<T> gaussian(At at, int width, int height, int C, int border, const T* value, int k,
                        const std::vector<float>& w) {
    const int r = k / 2;
    const int code = border & 15;
    const bool all = (border & 240) == 240;
    const bool top = border & 16, bottom = border & 32, left = border & 64, right = border & 128;
    // Ring rows of image rows -r .. height + r - 1.
    std::vector<std::vector<float>> rows(height + 2 * r, std::vector<float>(static_cast<size_t>(width) * C));
    std::vector<float> taps(k);
    for (int j = -r; j < height + r; ++j) {
        std::vector<float>& out = rows[j + r];
        int sj = j;
        if (j < 0 || j >= height) {
            const bool mem = all || (j < 0 ? top : bottom);
            if (code == 6 && !mem) {
                for (int x = 0; x < width; ++x)
                    for (int ch = 0; ch < C; ++ch) out[x * C + ch] = static_cast<float>(value[ch]);
                continue;
            }
            sj = all ? j : mapIndex(j, height, code, top, bottom);
        }
        auto B = [&](int x, int ch) -> float {
            if (x >= 0 && x < width) return static_cast<float>(at(x, sj, ch));
            const bool mem = all || (x < 0 ? left : right);
            if (code == 6 && !mem) return static_cast<float>(value[ch]);
            const int sx = all ? x : mapIndex(x, width, code, left, right);
            return static_cast<float>(at(sx, sj, ch));
        };
        for (int x = 0; x < width; ++x)
            for (int ch = 0; ch < C; ++ch) {
                for (int i = 0; i < k; ++i) taps[i] = B(x - r + i, ch);
                out[x * C + ch] = symmetricSum(taps.data(), w);
            }
    }
    std::vector<T> result(static_cast<size_t>(width) * C * height);
    for (int y = 0; y < height; ++y)
        for (int s = 0; s < width * C; ++s) {
            for (int i = 0; i < k; ++i) taps[i] = rows[y + i][s];
            result[static_cast<size_t>(y) * width * C + s] = narrow<T>(symmetricSum(taps.data(), w), k);
        }
    return result;
}

}  // namespace ref

// ------------------------------------------------------------ members

template <class T>
constexpr LumDataType dataTypeOf() {
    if constexpr (std::is_same_v<T, Lum8u>) return lum8u;
    else if constexpr (std::is_same_v<T, Lum16u>) return lum16u;
    else if constexpr (std::is_same_v<T, Lum16s>) return lum16s;
    else return lum32f;
}

template <class T>
using FilterFn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);
template <class T>
using Border1Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, T, const Lum8u*, Lum8u*);
template <class T>
using Border3Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, const T*, const Lum8u*, Lum8u*);

template <class T, int C>
struct Members;

#define LUMTEST_GAUSSIAN_MEMBERS(t, T)                                                                           \
    template <>                                                                                                  \
    struct Members<T, 1> {                                                                                       \
        static constexpr FilterFn<T> layerL = lumiFilterGaussian_##t##_C1R_L;                                    \
        static constexpr FilterFn<T> header = lumiFilterGaussian_##t##_C1R;                                      \
        static constexpr Border1Fn<T> border = lumiFilterGaussianBorder_##t##_C1R;                               \
        static constexpr const char* nameL = "lumiFilterGaussian_" #t "_C1R_L";                                  \
        static constexpr const char* nameHeader = "lumiFilterGaussian_" #t "_C1R";                               \
        static constexpr const char* nameBorder = "lumiFilterGaussianBorder_" #t "_C1R";                         \
        static LumStatus callBorder(const T* s, int ss, T* d, int ds, LumiSize r, const T* v, const Lum8u* spec, \
                                    Lum8u* buf) {                                                                \
            return border(s, ss, d, ds, r, v ? v[0] : T(0), spec, buf);                                          \
        }                                                                                                        \
    };                                                                                                           \
    template <>                                                                                                  \
    struct Members<T, 3> {                                                                                       \
        static constexpr FilterFn<T> layerL = lumiFilterGaussian_##t##_C3R_L;                                    \
        static constexpr FilterFn<T> header = lumiFilterGaussian_##t##_C3R;                                      \
        static constexpr Border3Fn<T> border = lumiFilterGaussianBorder_##t##_C3R;                               \
        static constexpr const char* nameL = "lumiFilterGaussian_" #t "_C3R_L";                                  \
        static constexpr const char* nameHeader = "lumiFilterGaussian_" #t "_C3R";                               \
        static constexpr const char* nameBorder = "lumiFilterGaussianBorder_" #t "_C3R";                         \
        static LumStatus callBorder(const T* s, int ss, T* d, int ds, LumiSize r, const T* v, const Lum8u* spec, \
                                    Lum8u* buf) {                                                                \
            return border(s, ss, d, ds, r, v, spec, buf);                                                        \
        }                                                                                                        \
    };

LUMTEST_GAUSSIAN_MEMBERS(8u, Lum8u)
LUMTEST_GAUSSIAN_MEMBERS(16u, Lum16u)
LUMTEST_GAUSSIAN_MEMBERS(16s, Lum16s)
LUMTEST_GAUSSIAN_MEMBERS(32f, Lum32f)
#undef LUMTEST_GAUSSIAN_MEMBERS

enum class Layer { L, Header, Border };

const char* layerName(Layer l) { return l == Layer::L ? "_L" : (l == Layer::Header ? "header" : "Border"); }

// A malloc'd block of exactly `size` usable bytes starting `offset` bytes
// into the allocation, so that under AddressSanitizer any access past the
// size is caught.
class Block {
public:
    Block(int size, int offset) : raw_(static_cast<Lum8u*>(std::malloc(static_cast<size_t>(size) + offset))) {
        p_ = raw_ + offset;
        std::memset(p_, 0xA5, static_cast<size_t>(size));
    }
    ~Block() { std::free(raw_); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    Lum8u* get() { return p_; }

private:
    Lum8u* raw_;
    Lum8u* p_;
};

// Spec and buffer of one layer, sized by the layer's own queries.
struct Prepared {
    std::unique_ptr<Block> spec, buffer, initScratch;
};

template <class T>
bool prepare(Layer layer, LumiSize roi, int k, float sigma, int border, int C, Rng& rng, Prepared& p) {
    const LumDataType type = dataTypeOf<T>();
    int specSize = 0, initSize = 0, bufferSize = 0;
    if (layer == Layer::L) {
        EXPECT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetSpecSize_L, (k, type, C, &specSize, &initSize)), lumStatusOk);
        EXPECT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetBufferSize_L,
                                  (roi.width, roi.height, k, type, border, C, &bufferSize)),
                  lumStatusOk);
    } else {
        int s2 = 0, i2 = 0;
        EXPECT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetSpecSize, (k, type, C, &s2, &i2)), lumStatusOk);
        initSize = i2;
        EXPECT_EQ(LUMTEST_NOALLOC(lumiFilterGaussianGetBufferSize, (roi, k, type, C, &specSize, &bufferSize)),
                  lumStatusOk);
    }
    if (specSize <= 0 || bufferSize <= 0) return false;
    p.spec = std::make_unique<Block>(specSize, rng.uniform(0, 63));
    p.buffer = std::make_unique<Block>(bufferSize, rng.uniform(0, 63));
    p.initScratch = std::make_unique<Block>(initSize, rng.uniform(0, 63));
    const LumStatus st = layer == Layer::L
                             ? LUMTEST_NOALLOC(lumiFilterGaussianInit_L, (roi, k, sigma, border, type, C,
                                                                          p.spec->get(), p.initScratch->get()))
                             : LUMTEST_NOALLOC(lumiFilterGaussianInit, (roi, k, sigma, border, type, C,
                                                                        p.spec->get(), p.initScratch->get()));
    EXPECT_EQ(st, lumStatusOk);
    return st == lumStatusOk;
}

template <class T, int C>
LumStatus runLayer(Layer layer, const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int border,
                   const T* value, const Lum8u* spec, Lum8u* buffer) {
    using M = Members<T, C>;
    switch (layer) {
        case Layer::L: {
            lumtest::NoAllocScope scope(M::nameL);
            return M::layerL(src, srcStep, dst, dstStep, roi, border, value, spec, buffer);
        }
        case Layer::Header: {
            lumtest::NoAllocScope scope(M::nameHeader);
            return M::header(src, srcStep, dst, dstStep, roi, border, value, spec, buffer);
        }
        default: {
            lumtest::NoAllocScope scope(M::nameBorder);
            return M::callBorder(src, srcStep, dst, dstStep, roi, value, spec, buffer);
        }
    }
}

template <class T>
T randomSample(Rng& rng) {
    if constexpr (std::is_same_v<T, float>) {
        const int kind = rng.uniform(0, 15);
        if (kind == 0) return -0.0f;
        if (kind == 1) return static_cast<float>(rng.uniform(-3, 3));
        return static_cast<float>(rng.uniformReal(-1000.0, 1000.0));
    } else {
        return static_cast<T>(rng.uniform(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
}

// One run: a source (with `margin` pixels and rows of real memory around the
// ROI where the border word reads memory), a guarded destination, exactly
// sized spec and buffer; the result must equal the reference bit for bit.
template <class T, int C>
::testing::AssertionResult runCase(Layer layer, int width, int height, int k, float sigma, int border, Rng& rng,
                                   bool alignedDst = false) {
    // alignedDst: rows whose bytes are a multiple of 64 from a start offset
    // of zero, so that whether a row starts on a 32-byte boundary follows
    // the allocator's (16-byte) alignment of the block.
    const int r = k / 2;
    const bool anyMemory = (border & 240) != 0;
    const int margin = anyMemory ? r + rng.uniform(0, 2) : 0;
    Layout sl = lumtest::randomLayout<T>(width + 2 * margin, height + 2 * margin, C, rng);
    GuardedImage<T> parent(sl, rng);
    parent.fill([&](int, int, int) { return randomSample<T>(rng); });
    T* src = &parent.at(margin, margin);
    const int srcStep = parent.step();
    Layout dl = lumtest::randomLayout<T>(width, height, C, rng);
    if (alignedDst) {
        dl.offset = 0;
        dl.frontGuard = 64;
        dl.stepSlack = (64 - (width * C * static_cast<int>(sizeof(T))) % 64) % 64;
    }
    GuardedImage<T> dst(dl, rng);
    T value[3];
    for (T& v : value) v = randomSample<T>(rng);
    const T* valuePtr = (border & 15) == 6 || layer == Layer::Border ? value : (rng.chance(0.5) ? nullptr : value);

    Prepared prep;
    const LumiSize roi{width, height};
    if (!prepare<T>(layer, roi, k, sigma, border, C, rng, prep))
        return ::testing::AssertionFailure() << "preparation failed";
    const std::vector<float> w = ref::halfKernel(k, sigma);
    auto at = [&](int x, int y, int ch) { return src[(static_cast<ptrdiff_t>(y) * srcStep) / static_cast<int>(sizeof(T)) + x * C + ch]; };
    const std::vector<T> want = ref::gaussian<T>(at, width, height, C, border, value, k, w);
    const LumStatus st = runLayer<T, C>(layer, src, srcStep, dst.data(), dst.step(), roi, border, valuePtr,
                                        prep.spec->get(), prep.buffer->get());
    std::ostringstream what;
    what << layerName(layer) << " k " << k << " sigma " << sigma << " border " << border << " " << dst.describe();
    if (st != lumStatusOk) return ::testing::AssertionFailure() << "status " << st << " for " << what.str();
    if (auto res = lumtest::sameBitsAsReference(dst, want); !res) return res << " for " << what.str();
    if (auto res = dst.intactOutsideRoi(); !res) return res << " for " << what.str();
    if (auto res = parent.unchanged(); !res) return res << " for " << what.str();
    return ::testing::AssertionSuccess();
}

// ------------------------------------------------------------ sweeps

template <class P>
class GaussianSweep : public ::testing::Test {};

template <class T_, int C_>
struct Param {
    using T = T_;
    static constexpr int C = C_;
};
using Params = ::testing::Types<Param<Lum8u, 1>, Param<Lum8u, 3>, Param<Lum16u, 1>, Param<Lum16u, 3>,
                                Param<Lum16s, 1>, Param<Lum16s, 3>, Param<Lum32f, 1>, Param<Lum32f, 3>>;
TYPED_TEST_SUITE(GaussianSweep, Params);

// Widths 1..72 over every dedicated kernel size and two general ones, a few
// heights (below, at and above the radius), the three border rules, the
// three layers, random steps, start offsets and guards.
TYPED_TEST(GaussianSweep, MatchesReferenceOverShapes) {
    using T = typename TypeParam::T;
    constexpr int C = TypeParam::C;
    LUMTEST_REPLAYABLE();
    Rng rng;
    const int borders[] = {1, 3, 6};
    const int sizes[] = {3, 5, 7, 9, 11, 13};
    for (int width = 1; width <= 72; ++width) {
        for (int height : {1, 2, 3, 8}) {
            const int k = sizes[rng.uniform(0, 5)];
            const int border = borders[rng.uniform(0, 2)];
            const Layer layer = static_cast<Layer>(rng.uniform(0, 2));
            const float sigma = static_cast<float>(rng.uniformReal(0.3, 3.0));
            ASSERT_TRUE((runCase<T, C>(layer, width, height, k, sigma, border, rng)));
        }
    }
}

// Memory flags on each side alone and together, with each low code; all
// four flags with low codes that are not border types.
TYPED_TEST(GaussianSweep, MemoryFlagsReadTheNeighbours) {
    using T = typename TypeParam::T;
    constexpr int C = TypeParam::C;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int flags = 16; flags <= 240; flags += 16) {
        for (int code : {1, 3, 6}) {
            const int width = rng.uniform(1, 40), height = rng.uniform(1, 9);
            const int k = 3 + 2 * rng.uniform(0, 4);
            ASSERT_TRUE((runCase<T, C>(Layer::L, width, height, k, 1.3f, flags | code, rng)));
        }
    }
    for (int word : {240, 241, 242, 243, 244, 245, 246, 255}) {
        ASSERT_TRUE((runCase<T, C>(Layer::L, rng.uniform(1, 40), rng.uniform(1, 9), 5, 0.9f, word, rng)));
    }
}

// Large kernels over small and mid-sized images: mirror reflects more than
// once, the ring is longer than the image.
TYPED_TEST(GaussianSweep, LargeKernels) {
    using T = typename TypeParam::T;
    constexpr int C = TypeParam::C;
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {15, 21, 31}) {
        for (int border : {1, 3, 6, 3 | 64, 1 | 16 | 128}) {
            ASSERT_TRUE((runCase<T, C>(Layer::L, rng.uniform(1, 90), rng.uniform(1, 40), k, 4.5f, border, rng)));
        }
    }
}

}  // namespace
