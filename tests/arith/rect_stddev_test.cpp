// Window standard deviations against a scalar reference written from their
// formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumtest::GuardedImage;
using lumtest::Rng;

// ------------------------------------------------------------ reference

namespace ref {

struct Offset {
    int64_t row, col;
};
struct Corners {
    Offset a, b, c, d;
};

Corners upright(LumiRect r) {
    return {{r.y, r.x}, {r.y, int64_t{r.x} + r.width}, {int64_t{r.y} + r.height, r.x},
            {int64_t{r.y} + r.height, int64_t{r.x} + r.width}};
}

// A at (u + x - y, v + x + y), B h left and h down, C w right and w down,
// D both (columns, rows).
Corners tilted(LumiRect r) {
    const int64_t x = r.x, y = r.y, w = r.width, h = r.height;
    return {{x + y, x - y}, {x + y + h, x - y - h}, {x + y + w, x - y + w}, {x + y + h + w, x - y - h + w}};
}

int32_t wrapSub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
int32_t wrapMul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }

// Members with a float result and a double normaliser.
template <class I>
float stdDevDouble(I A, I B, I C, I D, double A2, double B2, double C2, double D2, int32_t area) {
    double s;
    if constexpr (std::is_same_v<I, float>) {
        const float sf = (A - B) - (C - D);
        s = static_cast<double>(sf);
    } else {
        s = static_cast<double>(wrapSub(wrapSub(A, B), wrapSub(C, D)));
    }
    const double q = (A2 - B2) - (C2 - D2);
    const double n = 1.0 / static_cast<double>(area);
    const double ns = n * s;
    const double v = std::fma(-ns, ns, n * q);
    float vf = static_cast<float>(v);
    if (vf < 0.0f) vf = 0.0f;
    return std::sqrt(vf);
}

// 2^-f from the 32-bit int 1 shifted by the count modulo 32.
float scaleOf(int f) {
    if (f >= 0) return 1.0f / static_cast<float>(static_cast<int32_t>(1u << (f % 32)));
    const int64_t count = -int64_t{f} % 32;
    return static_cast<float>(static_cast<int32_t>(1u << count));
}

// Truncation toward zero; what lies outside the 32-bit range (and NaN)
// gives the lowest value.
int32_t truncate(float r) {
    if (std::isnan(r) || r >= 2147483648.0f || r < -2147483648.0f) return INT32_MIN;
    return static_cast<int32_t>(r);
}

int32_t stdDevScaled(int32_t A, int32_t B, int32_t C, int32_t D, int32_t A2, int32_t B2, int32_t C2, int32_t D2,
                     int32_t area, int scaleFactor) {
    const int32_t s = wrapSub(wrapSub(A, B), wrapSub(C, D));
    const int32_t q = wrapSub(wrapSub(A2, B2), wrapSub(C2, D2));
    const float n = 1.0f / static_cast<float>(area);
    const float ns = n * static_cast<float>(s);
    float v = std::fmaf(-ns, ns, n * static_cast<float>(q));
    if (v < 0.0f) v = 0.0f;
    const float t = std::sqrt(v);
    return truncate(std::fmaf(scaleOf(scaleFactor), t, 0.5f));
}

}  // namespace ref

// ------------------------------------------------------------ integral blocks

// An integral-like image read by the windows: rows 0..rows-1 and columns
// -left..right-1 from its origin, in one malloc'd block that ends at the last
// element (so that AddressSanitizer sees any read past it).
template <class T>
class Block {
public:
    Block(int rows, int left, int right, int minStep, Rng& rng) : rows_(rows), left_(left), right_(right) {
        const int s = static_cast<int>(sizeof(T));
        step_ = std::max(minStep, (left + right) * s) + s * rng.uniform(0, 3);
        size_ = static_cast<size_t>(step_) * (rows - 1) + static_cast<size_t>(left + right) * s;
        block_ = static_cast<uint8_t*>(std::malloc(size_));
        std::memset(block_, 0, size_);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { std::free(block_); }

    T* origin() { return reinterpret_cast<T*>(block_) + left_; }
    int step() const { return step_; }
    T& at(int64_t row, int64_t col) {
        return *reinterpret_cast<T*>(block_ + static_cast<size_t>(step_) * row + (col + left_) * sizeof(T));
    }
    template <class F>
    void fill(F f) {
        for (int r = 0; r < rows_; ++r)
            for (int c = -left_; c < right_; ++c) at(r, c) = f(r, c);
        saved_.assign(block_, block_ + size_);
    }
    bool unchanged() const { return std::memcmp(block_, saved_.data(), size_) == 0; }

private:
    int rows_, left_, right_, step_ = 0;
    size_t size_ = 0;
    uint8_t* block_ = nullptr;
    std::vector<uint8_t> saved_;
};

// ------------------------------------------------------------ members

struct Rect32f {
    using I = Lum32f;
    using Q = Lum64f;
    using O = Lum32f;
    static constexpr bool tilted = false;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int) {
        return LUMTEST_NOALLOC(lumiRectStdDev_32f_C1R, (s, ss, q, qs, d, ds, r, w));
    }
};
struct Rect32s32f {
    using I = Lum32s;
    using Q = Lum64f;
    using O = Lum32f;
    static constexpr bool tilted = false;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int) {
        return LUMTEST_NOALLOC(lumiRectStdDev_32s32f_C1R, (s, ss, q, qs, d, ds, r, w));
    }
};
struct Rect32sSfs {
    using I = Lum32s;
    using Q = Lum32s;
    using O = Lum32s;
    static constexpr bool tilted = false;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int f) {
        return LUMTEST_NOALLOC(lumiRectStdDev_32s_C1RSfs, (s, ss, q, qs, d, ds, r, w, f));
    }
};
struct Tilted32f {
    using I = Lum32f;
    using Q = Lum64f;
    using O = Lum32f;
    static constexpr bool tilted = true;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int) {
        return LUMTEST_NOALLOC(lumiTiltedRectStdDev_32f_C1R, (s, ss, q, qs, d, ds, r, w));
    }
};
struct Tilted32s32f {
    using I = Lum32s;
    using Q = Lum64f;
    using O = Lum32f;
    static constexpr bool tilted = true;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int) {
        return LUMTEST_NOALLOC(lumiTiltedRectStdDev_32s32f_C1R, (s, ss, q, qs, d, ds, r, w));
    }
};
struct Tilted32sSfs {
    using I = Lum32s;
    using Q = Lum32s;
    using O = Lum32s;
    static constexpr bool tilted = true;
    static LumStatus call(const I* s, int ss, const Q* q, int qs, O* d, int ds, LumiSize r, LumiRect w, int f) {
        return LUMTEST_NOALLOC(lumiTiltedRectStdDev_32s_C1RSfs, (s, ss, q, qs, d, ds, r, w, f));
    }
};

// Integral columns a result row reaches, as the step test counts them.
int stepColumns(bool tilted, LumiSize roi, LumiRect r) {
    return tilted ? r.height + r.y + r.x + r.width + roi.width - 1 : roi.width + r.x + r.width;
}

// The window's area, a wrapping 32-bit product.
int32_t areaOf(bool tilted, LumiRect r) {
    return tilted ? ref::wrapMul(ref::wrapMul(2, r.width), r.height) : ref::wrapMul(r.width, r.height);
}

// How integral content is made: true sums of a random image, sums of a
// nearly constant image (v close to 0 and sometimes below), or unrelated
// random numbers (negative v and the clamp, large magnitudes).
enum class Content { TrueSums, NearlyFlat, Noise };

template <class M>
void runWindow(int w, int h, LumiRect rect, int scaleFactor, Content content, Rng& rng) {
    using I = typename M::I;
    using Q = typename M::Q;
    using O = typename M::O;
    const ref::Corners k = M::tilted ? ref::tilted(rect) : ref::upright(rect);
    const int64_t maxRow = std::max({k.a.row, k.b.row, k.c.row, k.d.row});
    const int64_t minCol = std::min({k.a.col, k.b.col, k.c.col, k.d.col});
    const int64_t maxCol = std::max({k.a.col, k.b.col, k.c.col, k.d.col});
    const int rows = static_cast<int>(h + maxRow);
    const int left = static_cast<int>(std::max<int64_t>(0, -minCol));
    const int right = static_cast<int>(w + maxCol);
    const int c = stepColumns(M::tilted, {w, h}, rect);
    Block<I> src(rows, left, right, 4 * c, rng);
    Block<Q> sqr(rows, left, right, c * static_cast<int>(sizeof(Q)), rng);
    // A per-element "image" value; the integrals are running sums of it in
    // both directions, which keeps windows' sums and squares consistent.
    const int base = rng.uniform(0, 200);
    auto sample = [&](int64_t r, int64_t col) -> int64_t {
        const uint32_t hsh = static_cast<uint32_t>((r * 73856093) ^ (col * 19349663) ^ base);
        return content == Content::NearlyFlat ? base : static_cast<int64_t>(hsh % 256);
    };
    if (content == Content::Noise) {
        src.fill([&](int, int) -> I {
            if constexpr (std::is_same_v<I, Lum32f>) return static_cast<float>(rng.uniformReal(-1e6, 1e6));
            else return static_cast<Lum32s>(rng.bits());
        });
        sqr.fill([&](int, int) -> Q {
            if constexpr (std::is_same_v<Q, Lum64f>) return rng.uniformReal(-1e12, 1e12);
            else return static_cast<Lum32s>(rng.bits());
        });
    } else {
        // Sums over the rectangle of rows < r and columns < col from the
        // block's top-left corner, so differences of corners are window sums.
        const int cols = left + right;
        std::vector<int64_t> sums(static_cast<size_t>(rows + 1) * (cols + 1)), squares(sums.size());
        auto at = [&](std::vector<int64_t>& p, int r, int j) -> int64_t& { return p[static_cast<size_t>(r) * (cols + 1) + j]; };
        for (int r = 0; r < rows; ++r)
            for (int j = 0; j < cols; ++j) {
                const int64_t v = sample(r, j - left);
                at(sums, r + 1, j + 1) = at(sums, r, j + 1) + at(sums, r + 1, j) - at(sums, r, j) + v;
                at(squares, r + 1, j + 1) = at(squares, r, j + 1) + at(squares, r + 1, j) - at(squares, r, j) + v * v;
            }
        src.fill([&](int r, int col) -> I {
            const int64_t t = at(sums, r, col + left);
            if constexpr (std::is_same_v<I, Lum32f>) return static_cast<float>(t);
            else return static_cast<Lum32s>(static_cast<uint32_t>(t));
        });
        sqr.fill([&](int r, int col) -> Q {
            const int64_t t = at(squares, r, col + left);
            if constexpr (std::is_same_v<Q, Lum64f>) return static_cast<double>(t);
            else return static_cast<Lum32s>(static_cast<uint32_t>(t));
        });
    }
    GuardedImage<O> dst(lumtest::randomLayout<O>(w, h, 1, rng), rng);
    std::vector<O> want(static_cast<size_t>(w) * h);
    const int32_t area = areaOf(M::tilted, rect);
    for (int v = 0; v < h; ++v)
        for (int u = 0; u < w; ++u) {
            auto I_ = [&](const ref::Offset& o) { return src.at(v + o.row, u + o.col); };
            auto Q_ = [&](const ref::Offset& o) { return sqr.at(v + o.row, u + o.col); };
            O r;
            if constexpr (std::is_same_v<O, Lum32f>)
                r = ref::stdDevDouble<I>(I_(k.a), I_(k.b), I_(k.c), I_(k.d), Q_(k.a), Q_(k.b), Q_(k.c), Q_(k.d), area);
            else
                r = ref::stdDevScaled(I_(k.a), I_(k.b), I_(k.c), I_(k.d), Q_(k.a), Q_(k.b), Q_(k.c), Q_(k.d), area,
                                      scaleFactor);
            want[static_cast<size_t>(v) * w + u] = r;
        }
    ASSERT_EQ(M::call(src.origin(), src.step(), sqr.origin(), sqr.step(), dst.data(), dst.step(), {w, h}, rect,
                      scaleFactor),
              lumStatusOk);
    ASSERT_TRUE(lumtest::sameBitsAsReference(dst, want))
        << "rect " << rect.x << "," << rect.y << "," << rect.width << "," << rect.height << " scale " << scaleFactor;
    ASSERT_TRUE(dst.intactOutsideRoi());
    ASSERT_TRUE(src.unchanged());
    ASSERT_TRUE(sqr.unchanged());
}

template <class M>
class WindowSweep : public ::testing::Test {};
using Members = ::testing::Types<Rect32f, Rect32s32f, Rect32sSfs, Tilted32f, Tilted32s32f, Tilted32sSfs>;
TYPED_TEST_SUITE(WindowSweep, Members);

// Widths 1..70 and a few more, heights 1, 2 and 5, random windows and scale
// factors, integrals of true sums, of a flat image and of noise.
TYPED_TEST(WindowSweep, MatchesReferenceOverShapes) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<int> widths;
    for (int w = 1; w <= 70; ++w) widths.push_back(w);
    for (int w : {100, 129}) widths.push_back(w);
    for (int w : widths) {
        for (int h : {1, 2, 5}) {
            const LumiRect rect{rng.uniform(0, 3), rng.uniform(0, 3), rng.uniform(1, 5), rng.uniform(1, 5)};
            const int scale = rng.uniform(-4, 3);
            const Content content = static_cast<Content>(rng.uniform(0, 2));
            runWindow<TypeParam>(w, h, rect, scale, content, rng);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

// ------------------------------------------------------------ edge cases

// A 2 x 2 window (n = 1/4) over integrals set by hand: s = A - B - C + D
// from the integral, q likewise from the squares.
struct Tiny {
    Lum32s s[3 * 3] = {};
    Lum32s q[3 * 3] = {};
    Lum32s out = -1;
    LumStatus run(int scaleFactor) {
        return lumiRectStdDev_32s_C1RSfs(s, 12, q, 12, &out, 4, {1, 1}, {0, 0, 2, 2}, scaleFactor);
    }
};

TEST(WindowEdges, NegativeScaleFactorDoublesBeforeRounding) {
    Tiny t;
    t.q[8] = 25;  // q = 25, s = 0: v = 6.25, t = 2.5
    ASSERT_EQ(t.run(0), lumStatusOk);
    EXPECT_EQ(t.out, 3);  // 2.5 + 0.5
    ASSERT_EQ(t.run(-1), lumStatusOk);
    EXPECT_EQ(t.out, 5);  // 5 + 0.5, truncated
    ASSERT_EQ(t.run(1), lumStatusOk);
    EXPECT_EQ(t.out, 1);  // 1.25 + 0.5
    ASSERT_EQ(t.run(-3), lumStatusOk);
    EXPECT_EQ(t.out, 20);
}

TEST(WindowEdges, ShiftCountsAreTakenModulo32) {
    Tiny t;
    t.q[8] = 1;  // v = 0.25, t = 0.5
    ASSERT_EQ(t.run(32), lumStatusOk);
    EXPECT_EQ(t.out, 1);  // scale 1
    ASSERT_EQ(t.run(-32), lumStatusOk);
    EXPECT_EQ(t.out, 1);
    ASSERT_EQ(t.run(33), lumStatusOk);
    EXPECT_EQ(t.out, 0);  // scale 1/2: 0.75
    ASSERT_EQ(t.run(-33), lumStatusOk);
    EXPECT_EQ(t.out, 1);  // scale 2: 1.5
    ASSERT_EQ(t.run(INT_MIN), lumStatusOk);
    EXPECT_EQ(t.out, 1);  // count 0
}

// The scale comes from the 32-bit int 1 << count: a count of 31 makes the
// int -2^31, so the scale is negative.
TEST(WindowEdges, ChoiceShiftCount31GivesANegativeScale) {
    Tiny t;
    t.q[8] = 1;  // t = 0.5
    ASSERT_EQ(t.run(-31), lumStatusOk);
    EXPECT_EQ(t.out, -1073741824);  // -2^31 x 0.5 + 0.5 rounds to -2^30 in float
    ASSERT_EQ(t.run(-63), lumStatusOk);
    EXPECT_EQ(t.out, -1073741824);
}

// Truncation of a result outside the 32-bit range gives the lowest value.
TEST(WindowEdges, ChoiceOutOfRangeResultIsTheLowestValue) {
    Tiny t;
    t.q[8] = 2000000000;  // t = sqrt(5e8) = 22360.7
    ASSERT_EQ(t.run(-20), lumStatusOk);
    EXPECT_EQ(t.out, INT32_MIN);
    ASSERT_EQ(t.run(-10), lumStatusOk);
    EXPECT_EQ(t.out, static_cast<int32_t>(std::fmaf(1024.0f, std::sqrt(5e8f), 0.5f)));
}

// A constant image has v of 0 or a little below it; the clamp makes t 0.
TEST(WindowEdges, ConstantImageGivesZero) {
    const int w = 37, h = 4, iw = w + 8, ih = h + 8;
    std::vector<Lum32f> s(static_cast<size_t>(iw) * ih);
    std::vector<Lum32s> si(s.size()), qi(s.size());
    std::vector<Lum64f> q(s.size());
    const int value = 173;
    for (int y = 0; y < ih; ++y)
        for (int x = 0; x < iw; ++x) {
            const size_t i = static_cast<size_t>(y) * iw + x;
            si[i] = value * x * y;
            qi[i] = value * value * x * y;
            s[i] = static_cast<float>(si[i]);
            q[i] = static_cast<double>(qi[i]);
        }
    std::vector<Lum32f> out(static_cast<size_t>(w) * h, -1.f);
    std::vector<Lum32s> outi(out.size(), -1);
    for (LumiRect r : {LumiRect{0, 0, 3, 3}, LumiRect{1, 2, 7, 5}, LumiRect{0, 0, 1, 1}}) {
        ASSERT_EQ(lumiRectStdDev_32f_C1R(s.data(), iw * 4, q.data(), iw * 8, out.data(), w * 4, {w, h}, r), lumStatusOk);
        for (float t : out) ASSERT_EQ(t, 0.0f);
        ASSERT_EQ(lumiRectStdDev_32s32f_C1R(si.data(), iw * 4, q.data(), iw * 8, out.data(), w * 4, {w, h}, r),
                  lumStatusOk);
        for (float t : out) ASSERT_EQ(t, 0.0f);
        ASSERT_EQ(lumiRectStdDev_32s_C1RSfs(si.data(), iw * 4, qi.data(), iw * 4, outi.data(), w * 4, {w, h}, r, 0),
                  lumStatusOk);
        for (Lum32s t : outi) ASSERT_EQ(t, 0);
    }
}

// With a float integral whose window sums round, v comes out a little
// below 0 and is clamped, where an exact computation would give a small
// positive deviation or none.
TEST(WindowEdges, NegativeVarianceIsClampedToZero) {
    // s = 3, q = 3 over a 1 x 3 window: v = q/3 - (s/3)^2 = 1 - 1 = 0, and
    // with q = 2.9999999 a little below.
    Lum32f s[2 * 4] = {0, 0, 0, 0, 0, 0, 0, 3};
    Lum64f q[2 * 4] = {0, 0, 0, 0, 0, 0, 0, 2.9999999};
    Lum32f out = -1.f;
    ASSERT_EQ(lumiRectStdDev_32f_C1R(s, 16, q, 32, &out, 4, {1, 1}, {0, 0, 3, 1}), lumStatusOk);
    EXPECT_EQ(out, 0.0f);
}

// The clamp replaces v < 0 only: a v that rounds to -0 in float stays -0
// (and its root too), and a NaN stays NaN.
TEST(WindowEdges, ChoiceClampKeepsNegativeZeroAndNan) {
    uint32_t bits = 0;
    // 1 x 1 window, n = 1: s = 2^-50, q = 2^-100 (1 - 2^-52), v = -2^-152,
    // which rounds to -0 in float.
    Lum32f s[2 * 2] = {std::ldexp(1.0f, -50), 0, 0, 0};
    Lum64f q[2 * 2] = {std::ldexp(1.0 - std::ldexp(1.0, -52), -100), 0, 0, 0};
    Lum32f out = 1.0f;
    ASSERT_EQ(lumiRectStdDev_32f_C1R(s, 8, q, 16, &out, 4, {1, 1}, {0, 0, 1, 1}), lumStatusOk);
    std::memcpy(&bits, &out, 4);
    EXPECT_EQ(bits, 0x80000000u);
    // Two infinite corners on one row make s = inf - inf, NaN.
    s[0] = std::numeric_limits<float>::infinity();
    s[1] = std::numeric_limits<float>::infinity();
    ASSERT_EQ(lumiRectStdDev_32f_C1R(s, 8, q, 16, &out, 4, {1, 1}, {0, 0, 1, 1}), lumStatusOk);
    EXPECT_TRUE(std::isnan(out));
}

// ------------------------------------------------------------ order of checks

// One row per check: each fails that check and passes all earlier ones. The
// step test counts c integral columns, which depend on rect.x and
// rect.width (and on rect.y and rect.height when tilted).
template <class M>
void checkWindowOrder() {
    using I = typename M::I;
    using Q = typename M::Q;
    using O = typename M::O;
    alignas(64) static I s[4096];
    alignas(64) static Q q[4096];
    alignas(64) static O d[4096];
    const LumiSize roi{5, 2};
    const LumiRect r{2, 1, 3, 2};
    const int c = stepColumns(M::tilted, roi, r);
    const int ss = 4 * c, qs = c * static_cast<int>(sizeof(Q)), ds = 4 * roi.width;
    const int qa = static_cast<int>(sizeof(Q)) / 2;  // keeps qs + qa above the size but misaligned
    // Tilted corners reach left of the origin: start the images further in.
    I* si = s + 64;
    Q* sq = q + 64;
    struct Case {
        bool nullS, nullQ, nullD;
        LumiSize roi;
        int ss, qs, ds;
        LumiRect rect;
        LumStatus want;
    } cases[] = {
        {true, false, false, {0, 0}, 0, 0, 0, r, lumStatusNullPointer},
        {false, true, false, {0, 0}, 0, 0, 0, r, lumStatusNullPointer},
        {false, false, true, {0, 0}, 0, 0, 0, r, lumStatusNullPointer},
        {false, false, false, {0, 2}, 0, 0, 0, r, lumStatusBadSize},
        {false, false, false, {5, 0}, 0, 0, 0, r, lumStatusBadSize},
        {false, false, false, roi, ss - 4, qs, ds, r, lumStatusBadStep},
        {false, false, false, roi, ss, qs - static_cast<int>(sizeof(Q)), ds, r, lumStatusBadStep},
        {false, false, false, roi, ss, qs, ds - 4, r, lumStatusBadStep},
        {false, false, false, roi, ss + 4, qs, ds, {r.x + 1, r.y, r.width, r.height}, lumStatusBadStep},
        {false, false, false, roi, ss + 4, qs + 8, ds, {r.x, r.y, r.width + 2, r.height}, lumStatusBadStep},
        // rect.width 0 is a size error only once the steps pass.
        {false, false, false, roi, ss - 4 * r.width - 4, qs, ds, {r.x, r.y, 0, r.height}, lumStatusBadStep},
        {false, false, false, roi, ss + 2, qs, ds, r, lumStatusStepNotAligned},
        {false, false, false, roi, ss, qs + qa, ds, r, lumStatusStepNotAligned},
        {false, false, false, roi, ss, qs, ds + 1, r, lumStatusStepNotAligned},
        {false, false, false, roi, ss, qs, ds, {-1, r.y, r.width, r.height}, lumStatusBadSize},
        {false, false, false, roi, ss, qs, ds, {r.x, -1, r.width, r.height}, lumStatusBadSize},
        {false, false, false, roi, ss, qs, ds, {r.x, r.y, 0, r.height}, lumStatusBadSize},
        {false, false, false, roi, ss, qs, ds, {r.x, r.y, r.width, 0}, lumStatusBadSize},
        {false, false, false, roi, ss, qs, ds, r, lumStatusOk},
    };
    for (const Case& k : cases) {
        EXPECT_EQ(M::call(k.nullS ? nullptr : si, k.ss, k.nullQ ? nullptr : sq, k.qs, k.nullD ? nullptr : d, k.ds,
                          k.roi, k.rect, 0),
                  k.want)
            << "steps " << k.ss << " " << k.qs << " " << k.ds << " rect " << k.rect.x << "," << k.rect.y << ","
            << k.rect.width << "," << k.rect.height;
    }
    if (M::tilted) {
        // The tilted step count includes rect.y and rect.height too.
        const LumiRect taller{r.x, r.y, r.width, r.height + 1};
        EXPECT_EQ(M::call(si, ss, sq, qs, d, ds, roi, taller, 0), lumStatusBadStep);
        EXPECT_EQ(M::call(si, ss + 4, sq, qs + static_cast<int>(sizeof(Q)), d, ds, roi, taller, 0), lumStatusOk);
    }
}

TEST(WindowChecks, OrderOfUprightMembers) {
    checkWindowOrder<Rect32f>();
    checkWindowOrder<Rect32s32f>();
    checkWindowOrder<Rect32sSfs>();
}

TEST(WindowChecks, OrderOfTiltedMembers) {
    checkWindowOrder<Tilted32f>();
    checkWindowOrder<Tilted32s32f>();
    checkWindowOrder<Tilted32sSfs>();
}

// A zero-width window is a size error, but only once the steps have passed:
// the step test counts the window's width too.
TEST(WindowChecks, ZeroWidthIsASizeErrorAfterTheStepTests) {
    Lum32s s[64] = {}, q[64] = {}, out[4] = {};
    // c = 4 + 0 + 0: steps of 16 bytes suffice.
    EXPECT_EQ(lumiRectStdDev_32s_C1RSfs(s, 16, q, 16, out, 16, {4, 1}, {0, 0, 0, 1}, 0), lumStatusBadSize);
    EXPECT_EQ(lumiRectStdDev_32s_C1RSfs(s, 12, q, 16, out, 16, {4, 1}, {0, 0, 0, 1}, 0), lumStatusBadStep);
    EXPECT_EQ(lumiTiltedRectStdDev_32s_C1RSfs(s, 12, q, 16, out, 16, {4, 1}, {0, 0, 0, 1}, 0), lumStatusBadStep);
    EXPECT_EQ(lumiTiltedRectStdDev_32s_C1RSfs(s, 16, q, 16, out, 16, {4, 1}, {0, 0, 0, 1}, 0), lumStatusBadSize);
}

TEST(WindowChecks, FailedCheckWritesNothing) {
    Lum32f s[64] = {}, out[4] = {9, 9, 9, 9};
    Lum64f q[64] = {};
    EXPECT_EQ(lumiRectStdDev_32f_C1R(s, 16, q, 64, out, 16, {4, 1}, {0, 0, 0, 1}), lumStatusBadSize);
    EXPECT_EQ(lumiRectStdDev_32f_C1R(s, 16, q, 64, out, 16, {4, 1}, {0, 0, 1, 1}), lumStatusBadStep);
    for (float v : out) EXPECT_EQ(v, 9.0f);
}

// ------------------------------------------------------------ peer

#ifdef LUMCV_HAVE_OPENCV

// Over the peer's own integrals of a textured scene, every window's
// deviation agrees with the peer's population deviation of the same pixels,
// to float precision (ours rounds v to float before the root).
TEST(WindowPeer, DeviationsMatchThePeersOnItsIntegrals) {
    const int w = 320, h = 240;
    cv::Mat noise(h, w, CV_8U), img;
    cv::RNG peerRng(7);
    peerRng.fill(noise, cv::RNG::UNIFORM, 0, 256);
    cv::GaussianBlur(noise, img, cv::Size(7, 7), 1.5);
    cv::circle(img, cv::Point(100, 120), 50, cv::Scalar(240), -1);
    cv::rectangle(img, cv::Rect(200, 40, 80, 60), cv::Scalar(20), -1);
    cv::Mat sum, sqsum;
    cv::integral(img, sum, sqsum, CV_32S, CV_64F);
    for (LumiRect r : {LumiRect{0, 0, 24, 24}, LumiRect{3, 5, 17, 9}, LumiRect{0, 0, 1, 1}}) {
        const LumiSize roi{w + 1 - r.x - r.width, h + 1 - r.y - r.height};
        std::vector<Lum32f> out(static_cast<size_t>(roi.width) * roi.height);
        ASSERT_EQ(lumiRectStdDev_32s32f_C1R(sum.ptr<Lum32s>(), static_cast<int>(sum.step), sqsum.ptr<Lum64f>(),
                                            static_cast<int>(sqsum.step), out.data(), roi.width * 4, roi, r),
                  lumStatusOk);
        for (int v = 0; v < roi.height; v += 7)
            for (int u = 0; u < roi.width; u += 5) {
                cv::Scalar mean, dev;
                cv::meanStdDev(img(cv::Rect(u + r.x, v + r.y, r.width, r.height)), mean, dev);
                const double got = out[static_cast<size_t>(v) * roi.width + u];
                ASSERT_NEAR(got, dev[0], 1e-4 + 1e-6 * dev[0]) << "window " << r.width << "x" << r.height << " at "
                                                              << u << "," << v;
            }
    }
}

#endif  // LUMCV_HAVE_OPENCV

}  // namespace
