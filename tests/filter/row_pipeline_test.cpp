// Row stage of the separable pipeline against a scalar reference written
// from its arithmetic table, and its checks, borders and buffer.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "filter/pipeline_test_util.h"
#include "lumcv.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

#ifdef LUMCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using lumtest::GuardedImage;
using lumtest::Layout;
using lumtest::Rng;
using namespace pipetest;

enum class Kind { U8S16, S16, U16, F32, Low };

template <class S, class D, class K>
struct RowMember {
    using Src = S;
    using Dst = D;
    using Coef = K;
    const char* name;
    Kind kind;
    int channels;
    LumStatus (*size)(LumiSize, int, int*);
    // One signature for all: C1R members get *value (or 0 for a null value),
    // 32f members ignore the divisor.
    LumStatus (*call)(const S*, int, D* const*, LumiSize, const K*, int, int, int, const S*, int, Lum8u*);
};

#define LUM_ROW_C1(fn, S, D, K)                                                                              \
    [](const S* s, int ss, D* const* d, LumiSize r, const K* k, int ks, int a, int b, const S* v, int div,  \
       Lum8u* buf) { return LUMTEST_NOALLOC(fn, (s, ss, d, r, k, ks, a, b, v ? *v : S(0), div, buf)); }
#define LUM_ROW_C3(fn, S, D, K)                                                                              \
    [](const S* s, int ss, D* const* d, LumiSize r, const K* k, int ks, int a, int b, const S* v, int div,  \
       Lum8u* buf) { return LUMTEST_NOALLOC(fn, (s, ss, d, r, k, ks, a, b, v, div, buf)); }
#define LUM_ROW_F1(fn)                                                                                        \
    [](const Lum32f* s, int ss, Lum32f* const* d, LumiSize r, const Lum32f* k, int ks, int a, int b,          \
       const Lum32f* v, int, Lum8u* buf) { return LUMTEST_NOALLOC(fn, (s, ss, d, r, k, ks, a, b, v ? *v : 0.0f, buf)); }
#define LUM_ROW_F3(fn)                                                                                        \
    [](const Lum32f* s, int ss, Lum32f* const* d, LumiSize r, const Lum32f* k, int ks, int a, int b,          \
       const Lum32f* v, int, Lum8u* buf) { return LUMTEST_NOALLOC(fn, (s, ss, d, r, k, ks, a, b, v, buf)); }

using M8u16s = RowMember<Lum8u, Lum16s, Lum16s>;
using M16s = RowMember<Lum16s, Lum16s, Lum16s>;
using M16u = RowMember<Lum16u, Lum16u, Lum16u>;
using M32f = RowMember<Lum32f, Lum32f, Lum32f>;

const M8u16s k8u16sC1{"8u16s_C1R", Kind::U8S16, 1, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
                      LUM_ROW_C1(lumiFilterRowBorderPipeline_8u16s_C1R, Lum8u, Lum16s, Lum16s)};
const M8u16s k8u16sC3{"8u16s_C3R", Kind::U8S16, 3, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R,
                      LUM_ROW_C3(lumiFilterRowBorderPipeline_8u16s_C3R, Lum8u, Lum16s, Lum16s)};
const M16s k16sC1{"16s_C1R", Kind::S16, 1, lumiFilterRowBorderPipelineGetBufferSize_16s_C1R,
                  LUM_ROW_C1(lumiFilterRowBorderPipeline_16s_C1R, Lum16s, Lum16s, Lum16s)};
const M16s k16sC3{"16s_C3R", Kind::S16, 3, lumiFilterRowBorderPipelineGetBufferSize_16s_C3R,
                  LUM_ROW_C3(lumiFilterRowBorderPipeline_16s_C3R, Lum16s, Lum16s, Lum16s)};
const M16u k16uC1{"16u_C1R", Kind::U16, 1, lumiFilterRowBorderPipelineGetBufferSize_16u_C1R,
                  LUM_ROW_C1(lumiFilterRowBorderPipeline_16u_C1R, Lum16u, Lum16u, Lum16u)};
const M16u k16uC3{"16u_C3R", Kind::U16, 3, lumiFilterRowBorderPipelineGetBufferSize_16u_C3R,
                  LUM_ROW_C3(lumiFilterRowBorderPipeline_16u_C3R, Lum16u, Lum16u, Lum16u)};
const M32f k32fC1{"32f_C1R", Kind::F32, 1, lumiFilterRowBorderPipelineGetBufferSize_32f_C1R,
                  LUM_ROW_F1(lumiFilterRowBorderPipeline_32f_C1R)};
const M32f k32fC3{"32f_C3R", Kind::F32, 3, lumiFilterRowBorderPipelineGetBufferSize_32f_C3R,
                  LUM_ROW_F3(lumiFilterRowBorderPipeline_32f_C3R)};
const M16s kLowC1{"Low_16s_C1R", Kind::Low, 1, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R,
                  LUM_ROW_C1(lumiFilterRowBorderPipeline_Low_16s_C1R, Lum16s, Lum16s, Lum16s)};
const M16s kLowC3{"Low_16s_C3R", Kind::Low, 3, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R,
                  LUM_ROW_C3(lumiFilterRowBorderPipeline_Low_16s_C3R, Lum16s, Lum16s, Lum16s)};

// ------------------------------------------------------------ reference

namespace ref {

// B(p) of channel c: the row's sample inside; outside, a side whose flag is
// set is read from memory, code 6 gives the value, code 1 the nearest edge
// sample, code 3 the reflection about the edge sample (reflected again
// until it lands inside or on a side read from memory).
template <class S>
S borderSample(const S* row, int w, int C, int p, int c, int word, const S* value) {
    const int code = word & 15;
    const bool lowMem = (word & 64) != 0, highMem = (word & 128) != 0;
    for (;;) {
        if ((p >= 0 && p < w) || (p < 0 && lowMem) || (p >= w && highMem)) return row[p * C + c];
        if (code == 6) return value[c];
        if (code == 1) {
            p = p < 0 ? 0 : w - 1;
        } else if (w == 1) {
            p = 0;
        } else {
            p = p < 0 ? -p : 2 * (w - 1) - p;
        }
    }
}

struct Context {
    Kind kind;
    int k;
    int width;
    int divisor;
    bool interior;  // the column is read in place (not from a strip)
    bool special;   // the symmetric 5-tap low-precision kernel
};

// One output from the k window samples v[0..k-1].
template <class S, class D, class K>
D sample(const Context& ctx, const K* kern, const S* v) {
    const int k = ctx.k;
    const float r = 1.0f / static_cast<float>(ctx.divisor);
    switch (ctx.kind) {
        case Kind::U8S16: {
            int64_t s = 0;
            for (int i = 0; i < k; ++i) s += static_cast<int64_t>(kern[i]) * v[i];
            const float f = clampf(static_cast<float>(low32(s)) * r, -32768.0f, 32767.0f);
            const bool nearest = k == 3 || ctx.width >= 256;
            return static_cast<D>(nearest ? toIntNearest(f) : toIntTrunc(f));
        }
        case Kind::S16: {
            if (k == 3) {
                const float x0 = v[0], x1 = v[1], x2 = v[2];
                const float a = std::fma(static_cast<float>(kern[2]), x2, static_cast<float>(kern[1]) * x1);
                const float b = (r * x0) * static_cast<float>(kern[0]);
                return static_cast<D>(toIntNearest(clampf(std::fma(r, a, b), -32768.0f, 32767.0f)));
            }
            if (k == 5) {
                int absSum = 0;
                for (int i = 0; i < 5; ++i) absSum += std::abs(static_cast<int>(kern[i]));
                if (ctx.width >= 256 || absSum < 65535) {
                    int64_t s = 0;
                    for (int i = 0; i < 5; ++i) s += static_cast<int64_t>(kern[i]) * v[i];
                    return static_cast<D>(sat16(toIntNearest(static_cast<float>(low32(s)) * r)));
                }
                float acc = (static_cast<float>(kern[0]) * r) * static_cast<float>(v[0]);
                for (int i = 1; i < 5; ++i) acc = std::fma(static_cast<float>(kern[i]) * r, static_cast<float>(v[i]), acc);
                return static_cast<D>(toIntNearest(clampf(acc, -32768.0f, 32767.0f)));
            }
            float acc = 0.0f;
            if (ctx.interior) {
                // Groups of four taps summed exactly in 32 bits (wrapping),
                // the groups added in float.
                for (int g = 0; g < k; g += 4) {
                    int64_t s = 0;
                    for (int i = g; i < g + 4 && i < k; ++i) s += static_cast<int64_t>(kern[i]) * v[i];
                    const float f = static_cast<float>(low32(s));
                    acc = g == 0 ? f : acc + f;
                }
            } else {
                acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
                for (int i = 1; i < k; ++i) acc = acc + static_cast<float>(kern[i]) * static_cast<float>(v[i]);
            }
            return static_cast<D>(toIntNearest(clampf(acc * r, -32768.0f, 32767.0f)));
        }
        case Kind::U16: {
            float acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
            for (int i = 1; i < k; ++i) acc = std::fma(static_cast<float>(kern[i]), static_cast<float>(v[i]), acc);
            const float f = clampf(acc * r, 0.0f, 65535.0f);
            return static_cast<D>(k == 3 || k == 5 ? toIntNearest(f) : toIntTrunc(f));
        }
        case Kind::F32: {
            if (k == 3) {
                float acc = static_cast<float>(kern[1]) * static_cast<float>(v[1]);
                acc = std::fma(static_cast<float>(kern[0]), static_cast<float>(v[0]), acc);
                return static_cast<D>(std::fma(static_cast<float>(kern[2]), static_cast<float>(v[2]), acc));
            }
            float acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
            for (int i = 1; i < k; ++i) acc = std::fma(static_cast<float>(kern[i]), static_cast<float>(v[i]), acc);
            return static_cast<D>(acc);
        }
        case Kind::Low: {
            int64_t s = 0;
            for (int i = 0; i < k; ++i) s += static_cast<int64_t>(kern[i]) * v[i];
            if (ctx.special) return static_cast<D>(shiftDown(low16(s), 4));
            const int32_t fs = lowScale(ctx.divisor);
            if (ctx.interior) return static_cast<D>(sat16(shiftDown(static_cast<int64_t>(low16(s)) * fs, 14)));
            return static_cast<D>(low16(shiftDown(low32(static_cast<int64_t>(low32(s)) * fs), 14)));
        }
    }
    return D(0);
}

template <class S>
bool isSpecial(Kind kind, int C, int word, const S* kern, int k, int a, int w, int divisor) {
    return kind == Kind::Low && C == 1 && word == 1 && k == 5 && a == 2 && kern[0] == kern[4] &&
           kern[1] == kern[3] && w - 2 > 8 && divisor == 16;
}

// The whole ROI: rows of w x C samples at `step` bytes from `src`.
template <class S, class D, class K>
std::vector<D> image(Kind kind, int C, const S* src, int step, int w, int h, const K* kern, int k, int a, int word,
                     const S* value, int divisor) {
    std::vector<D> out(static_cast<size_t>(w) * C * h);
    std::vector<S> win(k);
    Context ctx{kind, k, w, divisor, false, isSpecial(kind, C, word, kern, k, a, w, divisor)};
    for (int y = 0; y < h; ++y) {
        const S* row = reinterpret_cast<const S*>(reinterpret_cast<const uint8_t*>(src) + static_cast<ptrdiff_t>(step) * y);
        for (int x = 0; x < w; ++x) {
            ctx.interior = w >= k && x >= a && x <= w - k + a;
            for (int c = 0; c < C; ++c) {
                for (int i = 0; i < k; ++i) win[i] = borderSample(row, w, C, x - a + i, c, word, value);
                out[(static_cast<size_t>(y) * w + x) * C + c] = sample<S, D, K>(ctx, kern, win.data());
            }
        }
    }
    return out;
}

}  // namespace ref

// ------------------------------------------------------------ harness

// One run: a source with `margin` real pixels on both sides of the ROI (for
// the memory flags), destination rows in a guarded image, a buffer of
// exactly the queried size.
template <class M>
struct RowRun {
    using S = typename M::Src;
    using D = typename M::Dst;
    using K = typename M::Coef;
    const M& m;
    int w, h, k, a, word, divisor;
    std::vector<K> kern;
    std::vector<S> value;
    bool smallData = true;
    bool smallKernel = true;
    int bufferOffset = 0;

    // Runs the export and compares it with the reference; fills `got` with the
    // output when asked.
    ::testing::AssertionResult run(Rng& rng, std::vector<D>* got = nullptr, const std::vector<S>* fixedRow = nullptr) {
        const int C = m.channels;
        const int margin = k + 2;
        Layout sl = lumtest::randomLayout<S>(w + 2 * margin, h, C, rng);
        GuardedImage<S> src(sl, rng);
        src.fill([&](int x, int, int c) {
            if (fixedRow != nullptr) return (*fixedRow)[(x % (w + 2 * margin)) * C + c];
            return randomSample<S>(rng, smallData);
        });
        GuardedImage<D> dst(lumtest::randomLayout<D>(w, h, C, rng), rng);
        std::vector<D*> rows(h);
        for (int y = 0; y < h; ++y) rows[y] = dst.row(y);
        const S* roi = src.data() + margin * C;
        int bytes = -1;
        EXPECT_EQ(m.size(LumiSize{w, h}, k, &bytes), lumStatusOk);
        ExactBuffer buf(bytes, bufferOffset);
        const LumStatus st = m.call(roi, src.step(), rows.data(), LumiSize{w, h}, kern.data(), k, a, word,
                                    value.data(), divisor, buf.data());
        if (st != lumStatusOk) return ::testing::AssertionFailure() << "status " << st;
        const std::vector<D> want =
            ref::image<S, D, K>(m.kind, C, roi, src.step(), w, h, kern.data(), k, a, word, value.data(), divisor);
        if (got) *got = lumtest::dense(dst);
        std::ostringstream what;
        what << m.name << " w " << w << " h " << h << " k " << k << " anchor " << a << " border " << word
             << " divisor " << divisor;
        ::testing::AssertionResult same = lumtest::sameBitsAsReference(dst, want);
        if (!same) return same << " (" << what.str() << ")";
        ::testing::AssertionResult intact = dst.intactOutsideRoi();
        if (!intact) return intact << " (" << what.str() << ")";
        ::testing::AssertionResult untouched = src.unchanged();
        if (!untouched) return untouched << " (" << what.str() << ")";
        return ::testing::AssertionSuccess();
    }
};

template <class M>
RowRun<M> randomRun(const M& m, Rng& rng, int w, int h, int k) {
    RowRun<M> r{m, w, h, k, rng.uniform(0, k - 1), 1, 1, {}, {}};
    static const int words[] = {1, 3, 6, 1 | 64, 3 | 128, 6 | 64, 6 | 128, 1 | 64 | 128, 240, 3 | 16 | 32, 6 | 240, 1 | 128};
    r.word = words[rng.uniform(0, 11)];
    r.smallData = rng.chance(0.5);
    r.smallKernel = rng.chance(0.5);
    r.kern.resize(k);
    for (auto& c : r.kern) c = randomCoefficient<typename M::Coef>(rng, r.smallKernel);
    r.value.resize(m.channels);
    for (auto& v : r.value) v = randomSample<typename M::Src>(rng, false);
    r.divisor = randomDivisor(rng, m.kind == Kind::U16);
    r.bufferOffset = rng.uniform(0, 31);
    return r;
}

template <class M>
void sweep(const M& m, int trials) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    static const int lengths[] = {1, 2, 3, 3, 4, 5, 5, 6, 7, 8, 9, 11, 13, 17};
    for (int t = 0; t < trials; ++t) {
        const int w = rng.chance(0.9) ? rng.uniform(1, 70) : rng.uniform(240, 300);
        const int h = rng.chance(0.8) ? rng.uniform(1, 3) : rng.uniform(4, 9);
        const int k = lengths[rng.uniform(0, 13)];
        RowRun<M> r = randomRun(m, rng, w, h, k);
        ASSERT_TRUE(r.run(rng));
    }
}

// ------------------------------------------------------------ sweeps

TEST(RowPipeline, Sweep8u16sC1) { sweep(k8u16sC1, 400); }
TEST(RowPipeline, Sweep8u16sC3) { sweep(k8u16sC3, 250); }
TEST(RowPipeline, Sweep16sC1) { sweep(k16sC1, 400); }
TEST(RowPipeline, Sweep16sC3) { sweep(k16sC3, 250); }
TEST(RowPipeline, Sweep16uC1) { sweep(k16uC1, 400); }
TEST(RowPipeline, Sweep16uC3) { sweep(k16uC3, 250); }
TEST(RowPipeline, Sweep32fC1) { sweep(k32fC1, 400); }
TEST(RowPipeline, Sweep32fC3) { sweep(k32fC3, 250); }
TEST(RowPipeline, SweepLow16sC1) { sweep(kLowC1, 400); }
TEST(RowPipeline, SweepLow16sC3) { sweep(kLowC3, 250); }

// Every width from 1 to 70 with the specialised lengths and a long one.
template <class M>
void everyWidth(const M& m) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {1, 3, 5, 8}) {
        for (int w = 1; w <= 70; ++w) {
            RowRun<M> r = randomRun(m, rng, w, rng.uniform(1, 2), k);
            ASSERT_TRUE(r.run(rng));
        }
    }
}

TEST(RowPipeline, EveryWidth8u16s) { everyWidth(k8u16sC1); everyWidth(k8u16sC3); }
TEST(RowPipeline, EveryWidth16s) { everyWidth(k16sC1); everyWidth(k16sC3); }
TEST(RowPipeline, EveryWidth16u) { everyWidth(k16uC1); everyWidth(k16uC3); }
TEST(RowPipeline, EveryWidth32f) { everyWidth(k32fC1); everyWidth(k32fC3); }
TEST(RowPipeline, EveryWidthLow16s) { everyWidth(kLowC1); everyWidth(kLowC3); }

// ------------------------------------------------------------ thresholds

// 8u16s with a length other than 3 truncates below width 256 and rounds from
// 256 on: 19 / 10 = 1.9 gives 1 at width 255 and 2 at width 256; k = 3
// rounds at every width.
TEST(RowPipeline, Rounding8u16sSwitchesAtWidth256) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {1, 5, 7}) {
        for (int w : {255, 256}) {
            RowRun<M8u16s> r{k8u16sC1, w, 1, k, k / 2, 1, 10, std::vector<Lum16s>(k, 0), {0}};
            r.kern[k / 2] = 19;
            std::vector<Lum8u> ones((w + 2 * (k + 2)), 1);
            std::vector<Lum16s> got;
            ASSERT_TRUE(r.run(rng, &got, &ones));
            EXPECT_EQ(got[0], w == 255 ? 1 : 2) << "k " << k << " width " << w;
        }
    }
    for (int w : {255, 256}) {
        RowRun<M8u16s> r{k8u16sC1, w, 1, 3, 1, 1, 10, {0, 19, 0}, {0}};
        std::vector<Lum8u> ones((w + 10), 1);
        std::vector<Lum16s> got;
        ASSERT_TRUE(r.run(rng, &got, &ones));
        EXPECT_EQ(got[0], 2) << "width " << w;
    }
    // Random data on both sides, both channel counts.
    for (const M8u16s* m : {&k8u16sC1, &k8u16sC3}) {
        for (int w : {254, 255, 256, 257}) {
            for (int k : {3, 4, 5, 9}) {
                RowRun<M8u16s> r = randomRun(*m, rng, w, 2, k);
                ASSERT_TRUE(r.run(rng));
            }
        }
    }
}

// 16s with k = 5: below width 256 a kernel whose absolute coefficients sum to
// 65535 or more runs in float and clamps; otherwise the 32-bit sum wraps.
// Three taps of 32767 on samples of 32767 overflow 32 bits.
TEST(RowPipeline, Row16sK5SwitchesOnWidthAndCoefficientSum) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {255, 256}) {
        RowRun<M16s> r{k16sC1, w, 1, 5, 2, 1, 1, {32767, 32767, 32767, 0, 0}, {0}};
        std::vector<Lum16s> row(w + 14, 32767), got;
        ASSERT_TRUE(r.run(rng, &got, &row));
        EXPECT_EQ(got[w / 2], w == 255 ? 32767 : -32768) << "width " << w;
    }
    // Sums of 65534 and 65535 on both sides of width 256, random data.
    for (int w : {200, 255, 256, 300})
        for (int sum : {65534, 65535, 90000}) {
            RowRun<M16s> r = randomRun(k16sC1, rng, w, 2, 5);
            r.kern = {static_cast<Lum16s>(-32767), 0, static_cast<Lum16s>(sum - 32767 - 100), 0, 100};
            if (sum - 32767 - 100 > 32767) r.kern = {-32768, 32767, static_cast<Lum16s>(sum - 65535), 0, 0};
            r.smallData = false;
            for (int d : {1, 3, 7, -5}) {
                r.divisor = d;
                ASSERT_TRUE(r.run(rng));
            }
            RowRun<M16s> r3{k16sC3, w, 2, 5, r.a, r.word, 3, r.kern, {1, 2, 3}};
            ASSERT_TRUE(r3.run(rng));
        }
}

// 16u rounds with k = 3 and 5, truncates otherwise: 19 / 10 gives 2 or 1.
TEST(RowPipeline, Rounding16uByKernelLength) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {1, 3, 4, 5, 6}) {
        RowRun<M16u> r{k16uC1, 20, 1, k, 0, 1, 10, std::vector<Lum16u>(k, 0), {0}};
        r.kern[0] = 19;
        std::vector<Lum16u> ones(20 + 2 * (k + 2), 1), got;
        ASSERT_TRUE(r.run(rng, &got, &ones));
        EXPECT_EQ(got[0], k == 3 || k == 5 ? 2 : 1) << "k " << k;
    }
}

// ------------------------------------------------------------ Low_16s

// A sum beyond 16 bits wraps in the interior but not in the strip columns:
// three taps of 1 over samples of 20000 with divisor 2 give 60000, which is
// -5536 in 16 bits: the interior gives -5536 * 8192 >> 14 = -2768, the strip
// columns (first and last, replicated border) the low 16 bits of
// 60000 * 8192 >> 14 = 30000.
TEST(RowPipeline, LowInteriorWrapsWhereStripColumnsDoNot) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (const M16s* m : {&kLowC1, &kLowC3}) {
        const int w = 40;
        RowRun<M16s> r{*m, w, 1, 3, 1, 1, 2, {1, 1, 1}, {0, 0, 0}};
        std::vector<Lum16s> row((w + 10) * 3, 20000), got;
        ASSERT_TRUE(r.run(rng, &got, &row));
        const int C = m->channels;
        EXPECT_EQ(got[0], 30000);
        EXPECT_EQ(got[5 * C], -2768);
        EXPECT_EQ(got[(w - 1) * C], 30000);
    }
}

// The symmetric 5-tap kernel with divisor 16 shifts the 16-bit sum by 4 in
// every column, the strips included: five taps of 1 over 10000 give 50000,
// -15536 in 16 bits, so -971 everywhere; the general kernel gives 3125 in
// the strip columns. Each condition is tested on both sides.
TEST(RowPipeline, LowSymmetricKernelConditions) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    struct Case {
        int w, word, a, divisor;
        std::vector<Lum16s> kern;
        bool special;
    };
    const std::vector<Lum16s> sym = {1, 1, 1, 1, 1};
    const Case cases[] = {
        {11, 1, 2, 16, sym, true},   {10, 1, 2, 16, sym, false},         {40, 1, 2, 16, sym, true},
        {40, 1 | 64, 2, 16, sym, false}, {40, 3, 2, 16, sym, false},     {40, 1, 2, 15, sym, false},
        {40, 1, 1, 16, sym, false},  {40, 1, 2, 16, {1, 1, 1, 1, 2}, false}, {40, 1, 2, 16, {1, 2, 1, 1, 1}, false},
    };
    for (const Case& c : cases) {
        RowRun<M16s> r{kLowC1, c.w, 1, 5, c.a, c.word, c.divisor, c.kern, {0}};
        std::vector<Lum16s> row(c.w + 14, 10000), got;
        ASSERT_TRUE(r.run(rng, &got, &row));
        if (c.kern == sym && c.divisor == 16 && c.a == 2 && (c.word & 15) == 1 && !(c.word & 64)) {
            EXPECT_EQ(got[0], c.special ? -971 : 3125) << "width " << c.w << " border " << c.word;
        }
        // Random data under the same conditions.
        for (int t = 0; t < 5; ++t) {
            RowRun<M16s> q = r;
            q.smallData = rng.chance(0.5);
            q.kern = c.kern;
            if (c.kern == sym) {
                const Lum16s k0 = randomCoefficient<Lum16s>(rng, false), k1 = randomCoefficient<Lum16s>(rng, false);
                q.kern = {k0, k1, randomCoefficient<Lum16s>(rng, false), k1, k0};
            }
            ASSERT_TRUE(q.run(rng));
        }
    }
}

// Images of 0x80001 samples or more are written with stores that bypass the
// cache; the bits are the same as below that size.
TEST(RowPipeline, LowSymmetricKernelStreamingStoresSameBits) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int h : {512, 513}) {
        RowRun<M16s> r{kLowC1, 1024, h, 5, 2, 1, 16, {3, -7, 12, -7, 3}, {0}};
        r.smallData = false;
        ASSERT_TRUE(r.run(rng));
    }
}

// ------------------------------------------------------------ choices

// The general-length float row kernels (16u and 32f) keep one accumulator per
// output: the first product, then fused multiply-adds in tap order. Values
// chosen so that a different order or an unfused step changes the result.
TEST(RowPipeline, ChoiceGeneralFloatRowAccumulatesInTapOrder) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    RowRun<M32f> r{k32fC1, 30, 1, 4, 0, 1, 1, {1.0f, 1e8f, -1e8f, 1.0f}, {0.0f}};
    std::vector<Lum32f> row(30 + 12, 1.0f), got;
    ASSERT_TRUE(r.run(rng, &got, &row));
    // 1, then + 1e8 (rounds to 1e8), - 1e8 gives 0, + 1 gives 1.
    EXPECT_EQ(got[5], 1.0f);
    for (int k : {2, 4, 6, 7, 9, 16}) {
        ASSERT_TRUE(randomRun(k32fC1, rng, 50, 2, k).run(rng));
        ASSERT_TRUE(randomRun(k16uC1, rng, 50, 2, k).run(rng));
    }
}

// 16s with k = 3: r * fma(k2, x2, k1 * x1), fused with (r * x0) * k0.
TEST(RowPipeline, ChoiceRow16sK3FusedOrder) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int t = 0; t < 20; ++t) {
        RowRun<M16s> r = randomRun(k16sC1, rng, rng.uniform(3, 60), 2, 3);
        r.smallData = false;
        r.divisor = 3 + 2 * t;
        ASSERT_TRUE(r.run(rng));
    }
}

// 16s with a general length: the strip columns add float products in tap
// order, the interior adds exact sums of four taps: with samples of 32767 and
// coefficients whose products are not exact in float, the strip column and
// the interior column of equal samples differ.
TEST(RowPipeline, ChoiceRow16sGeneralStripColumnsInFloat) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const std::vector<Lum16s> kern = {32767, -32767, 32765, -32763, 32761, -32759, 32757};
    RowRun<M16s> r{k16sC1, 30, 1, 7, 3, 1, 1 << 20, kern, {0}};
    std::vector<Lum16s> row(30 + 18, 32767), got;
    ASSERT_TRUE(r.run(rng, &got, &row));
    for (int k : {1, 2, 4, 6, 8, 12})
        for (int t = 0; t < 4; ++t) ASSERT_TRUE(randomRun(k16sC1, rng, rng.uniform(1, 60), 2, k).run(rng));
}

// Low_16s strip columns: the 32-bit product of sum and scale wraps before the
// shift (three taps of 32767 with divisor 1: 98301 * 16384 leaves int32).
TEST(RowPipeline, ChoiceLowStripProductWrapsIn32Bits) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    RowRun<M16s> r{kLowC1, 20, 1, 3, 1, 1, 1, {32767, 32767, 32767}, {0}};
    std::vector<Lum16s> row(20 + 10, 1), got;
    ASSERT_TRUE(r.run(rng, &got, &row));
    std::vector<Lum16s> big(20 + 10, 32767);
    ASSERT_TRUE(r.run(rng, &got, &big));
    // Column 0 sees 32767 three times (replicated): the sum 3 * 32767^2 wraps
    // to -1073938429, its product with 16384 wraps again to 1073790976, and
    // that shifted by 14 is 65539, whose low 16 bits are 3.
    EXPECT_EQ(low32(3LL * 32767 * 32767), -1073938429);
    EXPECT_EQ(got[0], 3);
}

// The 8u16s C3R member switches its rounding at a width of 256 pixels, not
// 256 samples.
TEST(RowPipeline, ChoiceRow8u16sC3WidthThresholdInPixels) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {86, 255, 256}) {
        RowRun<M8u16s> r{k8u16sC3, w, 1, 1, 0, 1, 10, {19}, {0, 0, 0}};
        std::vector<Lum8u> ones((w + 6) * 3, 1);
        std::vector<Lum16s> got;
        ASSERT_TRUE(r.run(rng, &got, &ones));
        EXPECT_EQ(got[0], w < 256 ? 1 : 2) << "width " << w;
    }
}

// ------------------------------------------------------------ borders

// Border 6 with flag 64 reads the left side from memory and fills the right
// side with the value; a one-pixel ROI with border 1 repeats that pixel.
TEST(RowPipeline, BorderFlagsAndNarrowRows) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int word : {6 | 64, 6 | 128, 240, 1, 3, 6, 1 | 64, 3 | 64 | 128}) {
        for (int w : {1, 2, 3, 4, 7}) {
            for (int k : {1, 3, 5, 9, 15}) {
                RowRun<M16s> r = randomRun(k16sC1, rng, w, 2, k);
                r.word = word;
                ASSERT_TRUE(r.run(rng));
                RowRun<M32f> f = randomRun(k32fC3, rng, w, 1, k);
                f.word = word;
                ASSERT_TRUE(f.run(rng));
            }
        }
    }
    // The one-pixel replicate case: every tap sees the one pixel.
    RowRun<M32f> one{k32fC1, 1, 1, 5, 2, 1, 1, {1.0f, 2.0f, 4.0f, 8.0f, 16.0f}, {0.0f}};
    std::vector<Lum32f> row(1 + 14, 0.5f), got;
    ASSERT_TRUE(one.run(rng, &got, &row));
    EXPECT_EQ(got[0], 15.5f);
}

// Mirror on a row narrower than half the kernel reflects again and again.
TEST(RowPipeline, MirrorRepeatsForWideKernels) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    RowRun<M32f> r{k32fC1, 2, 1, 9, 4, 3, 1, std::vector<Lum32f>(9, 0.0f), {0.0f}};
    std::vector<Lum32f> row(2 + 22, 0.0f), got;
    row[11] = 1.0f;  // ROI pixel 0 (margin 11)
    row[12] = 2.0f;  // ROI pixel 1
    for (int i = 0; i < 9; ++i) r.kern[i] = static_cast<Lum32f>(1 << i);
    ASSERT_TRUE(r.run(rng, &got, &row));
    // Positions -4..4 mirror onto 0 1 0 1 0 1 0 1 0: pixels 1 2 1 2 1 2 1 2 1.
    float want = 0.0f;
    for (int i = 0; i < 9; ++i) want += static_cast<float>(1 << i) * (i % 2 == 0 ? 1.0f : 2.0f);
    EXPECT_EQ(got[0], want);
}

// Length 1 with anchor 0 works in every member, with no strip.
TEST(RowPipeline, KernelLengthOne) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {1, 16, 33}) {
        ASSERT_TRUE(randomRun(k8u16sC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k8u16sC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16sC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16sC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16uC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16uC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k32fC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k32fC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(kLowC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(kLowC3, rng, w, 2, 1).run(rng));
    }
}

// ------------------------------------------------------------ buffers

// Exactly the queried bytes, at every start offset, for a grid of small
// sizes: under the address sanitizer any access past the buffer fails.
template <class M>
void bufferGrid(const M& m) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k = 1; k <= 12; ++k) {
        for (int w : {1, 2, 5, 12, 17, 40}) {
            RowRun<M> r = randomRun(m, rng, w, 1, k);
            r.bufferOffset = (k * 7 + w) % 32;
            ASSERT_TRUE(r.run(rng));
        }
    }
}

TEST(RowPipeline, ExactBuffers) {
    bufferGrid(k8u16sC1);
    bufferGrid(k8u16sC3);
    bufferGrid(k16sC1);
    bufferGrid(k16sC3);
    bufferGrid(k16uC1);
    bufferGrid(k16uC3);
    bufferGrid(k32fC1);
    bufferGrid(k32fC3);
    bufferGrid(kLowC1);
    bufferGrid(kLowC3);
}

// ------------------------------------------------------------ checks

// The argument set that passes every check, and the status of the call with
// one change. Each table row fails one check and passes all earlier ones.
template <class M>
struct CheckArgs {
    using S = typename M::Src;
    using D = typename M::Dst;
    using K = typename M::Coef;
    std::vector<S> src = std::vector<S>(64 * 3 * 3, S(1));
    std::vector<D> out = std::vector<D>(64 * 3 * 2);
    std::vector<D*> rows = {out.data(), out.data() + 64 * 3};
    std::vector<K> kern = std::vector<K>(5, K(1));
    std::vector<Lum8u> buffer = std::vector<Lum8u>(4096);
    S valueArr[3] = {S(0), S(0), S(0)};

    const S* s = src.data();
    int step = 64 * 3 * static_cast<int>(sizeof(S));
    D* const* dstRows = rows.data();
    LumiSize roi{8, 2};
    const K* kernel = kern.data();
    int k = 3;
    int anchor = 1;
    int word = 1;
    const S* value = valueArr;
    int divisor = 2;
    Lum8u* buf = buffer.data();

    LumStatus call(const M& m) const {
        return m.call(s, step, dstRows, roi, kernel, k, anchor, word, value, divisor, buf);
    }
};

template <class M>
using Change = void (*)(CheckArgs<M>&);

template <class M>
struct CheckRow {
    const char* what;
    Change<M> change;
    LumStatus want;
};

// The rows shared by every member, up to the steps.
template <class M>
std::vector<CheckRow<M>> commonRows() {
    using A = CheckArgs<M>;
    std::vector<CheckRow<M>> rows = {
        {"null src", [](A& a) { a.s = nullptr; a.roi = {0, 0}; }, lumStatusNullPointer},
        {"null dstRows", [](A& a) { a.dstRows = nullptr; }, lumStatusNullPointer},
        {"null kernel", [](A& a) { a.kernel = nullptr; a.k = 0; }, lumStatusNullPointer},
        {"null buffer", [](A& a) { a.buf = nullptr; a.roi = {0, 1}; }, lumStatusNullPointer},
        {"zero width", [](A& a) { a.roi = {0, 2}; a.rows[0] = nullptr; }, lumStatusBadSize},
        {"zero height", [](A& a) { a.roi = {8, 0}; a.k = 0; }, lumStatusBadSize},
        {"null row pointer", [](A& a) { a.rows[1] = nullptr; a.k = 0; a.value = nullptr; }, lumStatusNullPointer},
    };
    return rows;
}

template <class M>
void checkTable(const M& m, const std::vector<CheckRow<M>>& table) {
    for (const CheckRow<M>& row : table) {
        CheckArgs<M> a;
        ASSERT_EQ(a.call(m), lumStatusOk) << m.name << ": the base arguments must pass";
        CheckArgs<M> b;
        row.change(b);
        EXPECT_EQ(b.call(m), row.want) << m.name << ": " << row.what;
    }
}

// The rest of the table of one member: `divisorAt` is where its divisor
// test stands: 9 (before the border word), 12 (behind it) or 0 (none);
// `belowOne` for 16u.
template <class M>
std::vector<CheckRow<M>> memberTable(const M& m, int divisorAt, bool belowOne) {
    using A = CheckArgs<M>;
    std::vector<CheckRow<M>> t = commonRows<M>();
    if (m.channels == 3) {
        t.push_back({"null border value (C3R, any border word)",
                     [](A& a) { a.value = nullptr; a.k = 0; a.word = 1; }, lumStatusNullPointer});
    }
    t.push_back({"kernelSize 0", [](A& a) { a.k = 0; a.anchor = -1; a.step = 0; }, lumStatusBadSize});
    t.push_back({"kernelSize -3", [](A& a) { a.k = -3; a.step = 0; }, lumStatusBadSize});
    t.push_back({"anchor -1", [](A& a) { a.anchor = -1; a.step = 0; }, lumStatusBadAnchor});
    t.push_back({"anchor = kernelSize", [](A& a) { a.anchor = 3; a.step = 0; }, lumStatusBadAnchor});
    t.push_back({"step below a row", [](A& a) { a.step = 7; a.divisor = 0; a.word = 0; }, lumStatusBadStep});
    t.push_back({"negative step", [](A& a) { a.step = -64; }, lumStatusBadStep});
    if (sizeof(typename M::Src) > 1)
        t.push_back({"step not a multiple of the sample", [](A& a) { a.step = 64 * 3 * static_cast<int>(sizeof(typename M::Src)) + 1; a.divisor = 0; a.word = 0; },
                     lumStatusStepNotAligned});
    if (divisorAt == 9) {
        t.push_back({"divisor 0 before the border word", [](A& a) { a.divisor = 0; a.word = 0; }, lumStatusBadArgument});
        if (belowOne) t.push_back({"divisor -1", [](A& a) { a.divisor = -1; a.word = 2; }, lumStatusBadArgument});
    }
    t.push_back({"border 0", [](A& a) { a.word = 0; }, lumStatusBadBorderType});
    t.push_back({"border 2", [](A& a) { a.word = 2; }, lumStatusBadBorderType});
    t.push_back({"border 4", [](A& a) { a.word = 4; }, lumStatusBadBorderType});
    t.push_back({"border 5", [](A& a) { a.word = 5; }, lumStatusBadBorderType});
    t.push_back({"border 16 alone", [](A& a) { a.word = 16; }, lumStatusBadBorderType});
    t.push_back({"border 256 + 1", [](A& a) { a.word = 257; }, lumStatusBadBorderType});
    t.push_back({"border negative", [](A& a) { a.word = -1; }, lumStatusBadBorderType});
    if (divisorAt == 12) {
        t.push_back({"divisor 0 behind the border word", [](A& a) { a.divisor = 0; }, lumStatusBadArgument});
        t.push_back({"divisor 0 with a bad border word", [](A& a) { a.divisor = 0; a.word = 2; }, lumStatusBadBorderType});
    } else if (divisorAt == 0) {
        t.push_back({"no divisor test", [](A& a) { a.divisor = 0; }, lumStatusOk});
    }
    if (belowOne) {
        t.push_back({"divisor 1 passes", [](A& a) { a.divisor = 1; }, lumStatusOk});
    } else if (divisorAt != 0) {
        t.push_back({"negative divisor passes", [](A& a) { a.divisor = -3; }, lumStatusOk});
    }
    t.push_back({"border 240 passes", [](A& a) { a.word = 240; a.s = a.src.data() + 8; }, lumStatusOk});
    t.push_back({"border 6 + 64 + 128 passes", [](A& a) { a.word = 6 | 64 | 128; a.s = a.src.data() + 8; }, lumStatusOk});
    t.push_back({"border 3 + 16 + 32 passes", [](A& a) { a.word = 3 | 16 | 32; }, lumStatusOk});
    return t;
}

TEST(RowPipelineChecks, Order8u16sC1DivisorLast) { checkTable(k8u16sC1, memberTable(k8u16sC1, 12, false)); }
TEST(RowPipelineChecks, Order8u16sC3DivisorBeforeBorder) { checkTable(k8u16sC3, memberTable(k8u16sC3, 9, false)); }
TEST(RowPipelineChecks, Order16sC1DivisorBeforeBorder) { checkTable(k16sC1, memberTable(k16sC1, 9, false)); }
TEST(RowPipelineChecks, Order16sC3DivisorLast) { checkTable(k16sC3, memberTable(k16sC3, 12, false)); }
TEST(RowPipelineChecks, Order16uDivisorBelowOne) {
    checkTable(k16uC1, memberTable(k16uC1, 9, true));
    checkTable(k16uC3, memberTable(k16uC3, 9, true));
}
TEST(RowPipelineChecks, Order32fNoDivisor) {
    checkTable(k32fC1, memberTable(k32fC1, 0, false));
    checkTable(k32fC3, memberTable(k32fC3, 0, false));
}
TEST(RowPipelineChecks, OrderLow16sDivisorBeforeBorder) {
    checkTable(kLowC1, memberTable(kLowC1, 9, false));
    checkTable(kLowC3, memberTable(kLowC3, 9, false));
}

// A C3R border-value pointer may not be null even when the border word has
// no use for it; a C1R member takes the value by value.
TEST(RowPipelineChecks, C3BorderValueNullRefusedForEveryBorder) {
    for (int word : {1, 3, 6, 240}) {
        CheckArgs<M16s> a;
        a.value = nullptr;
        a.word = word;
        a.s = a.src.data() + 8;
        EXPECT_EQ(a.call(k16sC3), lumStatusNullPointer) << word;
        EXPECT_EQ(a.call(k16sC1), lumStatusOk) << word;
    }
}

// ------------------------------------------------------------ OpenCV

#ifdef LUMCV_HAVE_OPENCV
// A 1 x k float kernel through cv::filter2D on a realistic image, against the
// 32f row stage: OpenCV sums in its own order, so a small tolerance. The
// borders: replicate, mirror (OpenCV's REFLECT_101) and a constant.
TEST(RowPipelineOpenCv, Matches32fRows) {
    Rng rng;
    const int w = 160, h = 24;
    cv::Mat img(h, w, CV_32FC1);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.at<float>(y, x) = static_cast<float>(128 + 100 * std::sin(x * 0.1) * std::cos(y * 0.2) + rng.uniform(-5, 5));
    const std::vector<float> kern = {0.05f, 0.25f, 0.4f, 0.25f, 0.05f};
    for (auto [word, cvBorder] : {std::pair{1, cv::BORDER_REPLICATE}, {3, cv::BORDER_REFLECT_101}, {6, cv::BORDER_CONSTANT}}) {
        for (int a : {0, 2, 4}) {
            cv::Mat want;
            cv::filter2D(img, want, CV_32F, cv::Mat(1, 5, CV_32F, const_cast<float*>(kern.data())), cv::Point(a, 0), 0.0,
                         cvBorder);
            std::vector<float> out(static_cast<size_t>(w) * h);
            std::vector<float*> rows(h);
            for (int y = 0; y < h; ++y) rows[y] = out.data() + static_cast<size_t>(y) * w;
            int bytes = 0;
            ASSERT_EQ(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R({w, h}, 5, &bytes), lumStatusOk);
            std::vector<Lum8u> buf(bytes);
            ASSERT_EQ(lumiFilterRowBorderPipeline_32f_C1R(img.ptr<float>(), static_cast<int>(img.step), rows.data(), {w, h},
                                                          kern.data(), 5, a, word, 0.0f, buf.data()),
                      lumStatusOk);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    ASSERT_NEAR(out[static_cast<size_t>(y) * w + x], want.at<float>(y, x), 1e-3)
                        << "x " << x << " y " << y << " border " << word << " anchor " << a;
        }
    }
}

// 8u to 16s: OpenCV accumulates the float kernel kernel[i] / divisor and
// rounds; the stage sums exactly and scales once, so results agree within 1.
TEST(RowPipelineOpenCv, Matches8u16sRows) {
    Rng rng;
    const int w = 300, h = 8;
    cv::Mat img(h, w, CV_8UC3);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * 3; ++x) img.ptr<uint8_t>(y)[x] = static_cast<uint8_t>(rng.uniform(0, 255));
    const std::vector<Lum16s> kern = {-1, 0, 1};
    const std::vector<float> kf = {-0.5f, 0.0f, 0.5f};
    cv::Mat want;
    cv::filter2D(img, want, CV_16S, cv::Mat(1, 3, CV_32F, const_cast<float*>(kf.data())), cv::Point(1, 0), 0.0,
                 cv::BORDER_REPLICATE);
    std::vector<Lum16s> out(static_cast<size_t>(w) * 3 * h);
    std::vector<Lum16s*> rows(h);
    for (int y = 0; y < h; ++y) rows[y] = out.data() + static_cast<size_t>(y) * w * 3;
    int bytes = 0;
    ASSERT_EQ(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R({w, h}, 3, &bytes), lumStatusOk);
    std::vector<Lum8u> buf(bytes);
    const Lum8u value[3] = {0, 0, 0};
    ASSERT_EQ(lumiFilterRowBorderPipeline_8u16s_C3R(img.ptr<uint8_t>(), static_cast<int>(img.step), rows.data(), {w, h},
                                                    kern.data(), 3, 1, 1, value, 2, buf.data()),
              lumStatusOk);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * 3; ++x)
            ASSERT_NEAR(out[static_cast<size_t>(y) * w * 3 + x], want.ptr<int16_t>(y)[x], 1) << "x " << x << " y " << y;
}
#endif

}  // namespace
