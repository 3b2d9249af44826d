// Column stage of the separable pipeline against a scalar reference written
// from its arithmetic table, and its checks and buffer.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
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

enum class Kind { S16to8s, S16to8u, S16, U16, F32, Low };

template <class S, class D>
struct ColumnMember {
    using Src = S;
    using Dst = D;
    const char* name;
    Kind kind;
    int channels;
    LumStatus (*size)(LumiSize, int, int*);
    // 32f members ignore the divisor.
    LumStatus (*call)(const S* const*, D*, int, LumiSize, const S*, int, int, Lum8u*);
};

#define LUM_COLUMN(fn, S, D)                                                                           \
    [](const S* const* r, D* d, int ds, LumiSize roi, const S* k, int ks, int div, Lum8u* buf) {       \
        return LUMTEST_NOALLOC(fn, (r, d, ds, roi, k, ks, div, buf));                                  \
    }
#define LUM_COLUMN_F(fn)                                                                                   \
    [](const Lum32f* const* r, Lum32f* d, int ds, LumiSize roi, const Lum32f* k, int ks, int, Lum8u* buf) { \
        return LUMTEST_NOALLOC(fn, (r, d, ds, roi, k, ks, buf));                                           \
    }

using M8s = ColumnMember<Lum16s, Lum8s>;
using M8u = ColumnMember<Lum16s, Lum8u>;
using M16s = ColumnMember<Lum16s, Lum16s>;
using M16u = ColumnMember<Lum16u, Lum16u>;
using M32f = ColumnMember<Lum32f, Lum32f>;

const M8s k8sC1{"16s8s_C1R", Kind::S16to8s, 1, lumiFilterColumnPipelineGetBufferSize_16s8s_C1R,
                LUM_COLUMN(lumiFilterColumnPipeline_16s8s_C1R, Lum16s, Lum8s)};
const M8s k8sC3{"16s8s_C3R", Kind::S16to8s, 3, lumiFilterColumnPipelineGetBufferSize_16s8s_C3R,
                LUM_COLUMN(lumiFilterColumnPipeline_16s8s_C3R, Lum16s, Lum8s)};
const M8u k8uC1{"16s8u_C1R", Kind::S16to8u, 1, lumiFilterColumnPipelineGetBufferSize_16s8u_C1R,
                LUM_COLUMN(lumiFilterColumnPipeline_16s8u_C1R, Lum16s, Lum8u)};
const M8u k8uC3{"16s8u_C3R", Kind::S16to8u, 3, lumiFilterColumnPipelineGetBufferSize_16s8u_C3R,
                LUM_COLUMN(lumiFilterColumnPipeline_16s8u_C3R, Lum16s, Lum8u)};
const M16s k16sC1{"16s_C1R", Kind::S16, 1, lumiFilterColumnPipelineGetBufferSize_16s_C1R,
                  LUM_COLUMN(lumiFilterColumnPipeline_16s_C1R, Lum16s, Lum16s)};
const M16s k16sC3{"16s_C3R", Kind::S16, 3, lumiFilterColumnPipelineGetBufferSize_16s_C3R,
                  LUM_COLUMN(lumiFilterColumnPipeline_16s_C3R, Lum16s, Lum16s)};
const M16u k16uC1{"16u_C1R", Kind::U16, 1, lumiFilterColumnPipelineGetBufferSize_16u_C1R,
                  LUM_COLUMN(lumiFilterColumnPipeline_16u_C1R, Lum16u, Lum16u)};
const M16u k16uC3{"16u_C3R", Kind::U16, 3, lumiFilterColumnPipelineGetBufferSize_16u_C3R,
                  LUM_COLUMN(lumiFilterColumnPipeline_16u_C3R, Lum16u, Lum16u)};
const M32f k32fC1{"32f_C1R", Kind::F32, 1, lumiFilterColumnPipelineGetBufferSize_32f_C1R,
                  LUM_COLUMN_F(lumiFilterColumnPipeline_32f_C1R)};
const M32f k32fC3{"32f_C3R", Kind::F32, 3, lumiFilterColumnPipelineGetBufferSize_32f_C3R,
                  LUM_COLUMN_F(lumiFilterColumnPipeline_32f_C3R)};
const M16s kLowC1{"Low_16s_C1R", Kind::Low, 1, lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
                  LUM_COLUMN(lumiFilterColumnPipeline_Low_16s_C1R, Lum16s, Lum16s)};
const M16s kLowC3{"Low_16s_C3R", Kind::Low, 3, lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R,
                  LUM_COLUMN(lumiFilterColumnPipeline_Low_16s_C3R, Lum16s, Lum16s)};

// ------------------------------------------------------------ reference

namespace ref {

// Output sample x of a row of n samples from the k values v[i] =
// srcRows[y + i][x].
template <class S, class D>
D sample(Kind kind, const S* kern, int k, int divisor, const S* v, int x, int n) {
    const float r = 1.0f / static_cast<float>(divisor);
    switch (kind) {
        case Kind::S16to8s:
        case Kind::S16to8u:
        case Kind::S16: {
            std::vector<float> c(k);
            for (int i = 0; i < k; ++i) c[i] = r * static_cast<float>(kern[i]);
            float f;
            bool clamp = true;
            if (k == 3) {
                // Sum of |c| below 65535: no float clamp, the packs limit.
                clamp = !(std::fabs(c[0]) + std::fabs(c[1]) + std::fabs(c[2]) < 65535.0f);
            }
            if (k == 3 && kern[0] == kern[2]) {
                f = c[0] * (static_cast<float>(v[0]) + static_cast<float>(v[2])) + c[1] * static_cast<float>(v[1]);
            } else {
                f = c[0] * static_cast<float>(v[0]);
                for (int i = 1; i < k; ++i) f = f + c[i] * static_cast<float>(v[i]);
            }
            if (clamp) f = clampf(f, -32768.0f, 32767.0f);
            const bool truncate = kind == Kind::S16to8s && x >= n - n % 4;
            const int32_t i32 = truncate ? toIntTrunc(f) : toIntNearest(f);
            const int32_t s16 = clampi(i32, -32768, 32767);
            if (kind == Kind::S16to8s) return static_cast<D>(clampi(s16, -128, 127));
            if (kind == Kind::S16to8u) return static_cast<D>(clampi(s16, 0, 255));
            return static_cast<D>(s16);
        }
        case Kind::U16: {
            float acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
            for (int i = 1; i < k; ++i) acc = std::fma(static_cast<float>(kern[i]), static_cast<float>(v[i]), acc);
            return static_cast<D>(toIntNearest(clampf(acc * r, 0.0f, 65535.0f)));
        }
        case Kind::F32: {
            float acc;
            if (k == 3) {
                acc = static_cast<float>(kern[1]) * static_cast<float>(v[1]);
                acc = std::fma(static_cast<float>(kern[0]), static_cast<float>(v[0]), acc);
                acc = std::fma(static_cast<float>(kern[2]), static_cast<float>(v[2]), acc);
            } else if (k == 5) {
                acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
                for (int i = 1; i < 5; ++i) acc = std::fma(static_cast<float>(kern[i]), static_cast<float>(v[i]), acc);
            } else {
                acc = static_cast<float>(kern[0]) * static_cast<float>(v[0]);
                for (int i = 1; i < k; ++i) acc = acc + static_cast<float>(kern[i]) * static_cast<float>(v[i]);
            }
            return static_cast<D>(acc);
        }
        case Kind::Low: {
            int64_t s = 0;
            for (int i = 0; i < k; ++i) s += static_cast<int64_t>(kern[i]) * v[i];
            if (divisor == 1) return static_cast<D>(low16(s));
            return static_cast<D>(sat16(shiftDown(static_cast<int64_t>(low16(s)) * lowScale(divisor), 14)));
        }
    }
    return D(0);
}

}  // namespace ref

// ------------------------------------------------------------ harness

template <class M>
struct ColumnRun {
    using S = typename M::Src;
    using D = typename M::Dst;
    const M& m;
    int w, h, k, divisor;
    std::vector<S> kern;
    bool smallData = true;
    bool alignedRows = false;  // every row pointer aligned to 32 bytes
    int bufferOffset = 0;
    int dstStep = 0;  // 0: a random layout

    ::testing::AssertionResult run(Rng& rng, std::vector<D>* got = nullptr, const std::vector<S>* fixed = nullptr) {
        const int C = m.channels, n = w * C;
        // A pool of distinct source rows; the pointer array picks among them
        // in order with repeats, as a caller's vertical border does.
        const int pool = k + h + 1;
        std::vector<const S*> poolRows(pool);
        std::unique_ptr<GuardedImage<S>> guarded;
        std::unique_ptr<S, void (*)(void*)> aligned(nullptr, std::free);
        std::vector<S> before;
        const int rowBytes = n * static_cast<int>(sizeof(S));
        if (alignedRows) {
            // Rows at 32-byte boundaries, the last one ending its block.
            const int step = (rowBytes + 31) & ~31;
            const size_t total = (static_cast<size_t>(step) * pool + 31) & ~size_t(31);
            aligned.reset(static_cast<S*>(std::aligned_alloc(32, total)));
            for (int i = 0; i < pool; ++i) {
                S* row = reinterpret_cast<S*>(reinterpret_cast<uint8_t*>(aligned.get()) + static_cast<size_t>(step) * i);
                for (int x = 0; x < n; ++x) row[x] = fixed ? (*fixed)[x] : randomSample<S>(rng, smallData);
                poolRows[i] = row;
                before.insert(before.end(), row, row + n);
            }
        } else {
            guarded = std::make_unique<GuardedImage<S>>(lumtest::randomLayout<S>(w, pool, C, rng), rng);
            guarded->fill([&](int x, int, int c) { return fixed ? (*fixed)[x * C + c] : randomSample<S>(rng, smallData); });
            for (int i = 0; i < pool; ++i) poolRows[i] = guarded->row(i);
        }
        std::vector<const S*> rows(k + h - 1);
        int at = 0;
        for (auto& p : rows) {
            p = poolRows[at];
            if (rng.chance(0.7) && at + 1 < pool) ++at;
        }
        GuardedImage<D> dst(lumtest::randomLayout<D>(w, h, C, rng), rng);
        int bytes = -1;
        EXPECT_EQ(m.size(LumiSize{w, h}, k, &bytes), lumStatusOk);
        ExactBuffer buf(bytes, bufferOffset);
        const LumStatus st = m.call(rows.data(), dst.data(), dst.step(), LumiSize{w, h}, kern.data(), k, divisor, buf.data());
        if (st != lumStatusOk) return ::testing::AssertionFailure() << "status " << st;
        std::vector<D> want(static_cast<size_t>(n) * h);
        std::vector<S> v(k);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < n; ++x) {
                for (int i = 0; i < k; ++i) v[i] = rows[y + i][x];
                want[static_cast<size_t>(y) * n + x] = ref::sample<S, D>(m.kind, kern.data(), k, divisor, v.data(), x, n);
            }
        if (got) *got = lumtest::dense(dst);
        std::ostringstream what;
        what << m.name << " w " << w << " h " << h << " k " << k << " divisor " << divisor;
        ::testing::AssertionResult same = lumtest::sameBitsAsReference(dst, want);
        if (!same) return same << " (" << what.str() << ")";
        ::testing::AssertionResult intact = dst.intactOutsideRoi();
        if (!intact) return intact << " (" << what.str() << ")";
        if (guarded) {
            ::testing::AssertionResult untouched = guarded->unchanged();
            if (!untouched) return untouched << " (" << what.str() << ")";
        } else {
            for (int i = 0; i < pool; ++i)
                if (std::memcmp(poolRows[i], before.data() + static_cast<size_t>(i) * n, rowBytes) != 0)
                    return ::testing::AssertionFailure() << "a source row changed (" << what.str() << ")";
        }
        return ::testing::AssertionSuccess();
    }
};

template <class M>
ColumnRun<M> randomRun(const M& m, Rng& rng, int w, int h, int k) {
    ColumnRun<M> r{m, w, h, k, randomDivisor(rng, false), {}};
    const bool small = rng.chance(0.5);
    r.kern.resize(k);
    for (auto& c : r.kern) c = randomCoefficient<typename M::Src>(rng, small);
    if (k == 3 && rng.chance(0.4)) r.kern[2] = r.kern[0];  // the symmetric form
    r.smallData = rng.chance(0.5);
    r.alignedRows = rng.chance(0.3);
    r.bufferOffset = rng.uniform(0, 31);
    return r;
}

template <class M>
void sweep(const M& m, int trials) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    static const int lengths[] = {1, 2, 3, 3, 3, 4, 5, 5, 6, 7, 9, 12};
    for (int t = 0; t < trials; ++t) {
        const int w = rng.chance(0.9) ? rng.uniform(1, 70) : rng.uniform(80, 300);
        const int h = rng.chance(0.8) ? rng.uniform(1, 3) : rng.uniform(4, 9);
        ColumnRun<M> r = randomRun(m, rng, w, h, lengths[rng.uniform(0, 11)]);
        ASSERT_TRUE(r.run(rng));
    }
}

TEST(ColumnPipeline, Sweep16s8sC1) { sweep(k8sC1, 300); }
TEST(ColumnPipeline, Sweep16s8sC3) { sweep(k8sC3, 200); }
TEST(ColumnPipeline, Sweep16s8uC1) { sweep(k8uC1, 300); }
TEST(ColumnPipeline, Sweep16s8uC3) { sweep(k8uC3, 200); }
TEST(ColumnPipeline, Sweep16sC1) { sweep(k16sC1, 300); }
TEST(ColumnPipeline, Sweep16sC3) { sweep(k16sC3, 200); }
TEST(ColumnPipeline, Sweep16uC1) { sweep(k16uC1, 300); }
TEST(ColumnPipeline, Sweep16uC3) { sweep(k16uC3, 200); }
TEST(ColumnPipeline, Sweep32fC1) { sweep(k32fC1, 300); }
TEST(ColumnPipeline, Sweep32fC3) { sweep(k32fC3, 200); }
TEST(ColumnPipeline, SweepLow16sC1) { sweep(kLowC1, 300); }
TEST(ColumnPipeline, SweepLow16sC3) { sweep(kLowC3, 200); }

template <class M>
void everyWidth(const M& m) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {1, 3, 5, 6})
        for (int w = 1; w <= 70; ++w) ASSERT_TRUE(randomRun(m, rng, w, rng.uniform(1, 2), k).run(rng));
}

TEST(ColumnPipeline, EveryWidth16sFamily) {
    everyWidth(k8sC1);
    everyWidth(k8sC3);
    everyWidth(k8uC1);
    everyWidth(k8uC3);
    everyWidth(k16sC1);
    everyWidth(k16sC3);
}
TEST(ColumnPipeline, EveryWidthOthers) {
    everyWidth(k16uC1);
    everyWidth(k16uC3);
    everyWidth(k32fC1);
    everyWidth(k32fC3);
    everyWidth(kLowC1);
    everyWidth(kLowC3);
}

// ------------------------------------------------------------ paths

// The 16s8s result truncates the last n mod 4 samples of a row and rounds the
// others: 3 x 0.5 = 1.5 gives 2 (nearest even) in front, 1 at the end.
TEST(ColumnPipeline, Narrow16s8sTruncatesLastSamples) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {4, 5, 6, 7, 8, 21}) {
        ColumnRun<M8s> r{k8sC1, w, 1, 3, 2, {1, 1, 1}};
        std::vector<Lum16s> ones(w, 1);
        std::vector<Lum8s> got;
        ASSERT_TRUE(r.run(rng, &got, &ones));
        for (int x = 0; x < w; ++x) EXPECT_EQ(got[x], x >= w - w % 4 ? 1 : 2) << "width " << w << " x " << x;
    }
}

// Three channels count samples: a row of 3 x width samples truncates its
// last (3 x width) mod 4.
TEST(ColumnPipeline, Choice16s8sC3TruncatedTailCountsSamples) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {1, 2, 3, 5}) {
        ColumnRun<M8s> r{k8sC3, w, 1, 3, 2, {1, 1, 1}};
        std::vector<Lum16s> ones(3 * w, 1);
        std::vector<Lum8s> got;
        ASSERT_TRUE(r.run(rng, &got, &ones));
        const int n = 3 * w;
        for (int x = 0; x < n; ++x) EXPECT_EQ(got[x], x >= n - n % 4 ? 1 : 2) << "width " << w << " x " << x;
    }
}

// The 3-tap 16s8u kernel switches at rows of 256 and 257 samples (three
// times width for three channels); the bits don't change.
TEST(ColumnPipeline, ThreeTap16s8uRowLengths) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {255, 256, 257, 258}) {
        for (int t = 0; t < 3; ++t) {
            ASSERT_TRUE(randomRun(k8uC1, rng, w, 2, 3).run(rng));
            ASSERT_TRUE(randomRun(k8uC3, rng, (w + 2) / 3, 2, 3).run(rng));
        }
    }
}

// The symmetric 3-tap form adds the outer rows first and multiplies once:
// with c = 1/3 the two forms round differently for some samples.
TEST(ColumnPipeline, SymmetricThreeTapAddsOuterRowsFirst) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (const M16s* m : {&k16sC1, &k16sC3}) {
        for (int d : {3, 7, 9, -11}) {
            ColumnRun<M16s> sym{*m, 64, 3, 3, d, {5, 3, 5}};
            sym.smallData = false;
            ASSERT_TRUE(sym.run(rng));
            ColumnRun<M16s> asym{*m, 64, 3, 3, d, {5, 3, 6}};
            asym.smallData = false;
            ASSERT_TRUE(asym.run(rng));
        }
    }
}

// The 3-tap kernels leave the float clamp out while the absolute scaled
// coefficients sum below 65535 and clamp from 65535 on; a sum that leaves
// int32 saturates instead of wrapping: 32767 x 32767 x 3 gives 32767, 127
// and 255.
TEST(ColumnPipeline, ThreeTapClampThreshold) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const std::vector<std::vector<Lum16s>> kernels = {
        {32767, 0, 32767}, {32767, 1, 32767}, {32767, 32767, 32767}, {-32768, 0, 32766}, {-32768, 1, 32766}};
    for (const auto& kern : kernels) {
        for (int d : {1, -1}) {
            ColumnRun<M16s> r{k16sC1, 40, 2, 3, d, kern};
            r.smallData = false;
            ASSERT_TRUE(r.run(rng));
            ColumnRun<M8u> r8{k8uC1, 40, 2, 3, d, kern};
            r8.smallData = false;
            ASSERT_TRUE(r8.run(rng));
            ColumnRun<M8s> s8{k8sC3, 13, 2, 3, d, kern};
            s8.smallData = false;
            ASSERT_TRUE(s8.run(rng));
        }
    }
    std::vector<Lum16s> big(40 * 3, 32767);
    std::vector<Lum16s> g16;
    std::vector<Lum8u> g8u;
    std::vector<Lum8s> g8s;
    ColumnRun<M16s> a{k16sC1, 40, 1, 3, 1, {32767, 32767, 32767}};
    ASSERT_TRUE(a.run(rng, &g16, &big));
    EXPECT_EQ(g16[0], 32767);
    ColumnRun<M8u> b{k8uC1, 40, 1, 3, 1, {32767, 32767, 32767}};
    ASSERT_TRUE(b.run(rng, &g8u, &big));
    EXPECT_EQ(g8u[0], 255);
    ColumnRun<M8s> c{k8sC1, 40, 1, 3, 1, {32767, 32767, 32767}};
    ASSERT_TRUE(c.run(rng, &g8s, &big));
    EXPECT_EQ(g8s[0], 127);
}

// General lengths clamp to 16 bits in float before the conversion, so a sum
// beyond int32 saturates (255 for 16s8u) instead of turning into the
// indefinite integer (which would pack to 0).
TEST(ColumnPipeline, ChoiceColumn16sFamilyOutOfRangeSaturates) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<Lum16s> big(40, 32767);
    std::vector<Lum8u> got;
    ColumnRun<M8u> r{k8uC1, 40, 1, 4, 1, {32767, 32767, 32767, 32767}};
    ASSERT_TRUE(r.run(rng, &got, &big));
    EXPECT_EQ(got[0], 255);
    std::vector<Lum16s> gs;
    ColumnRun<M16s> s{k16sC1, 40, 1, 5, -1, {32767, 32767, 32767, 32767, 32767}};
    ASSERT_TRUE(s.run(rng, &gs, &big));
    EXPECT_EQ(gs[0], -32768);
}

// 16s family: c[i] = r * kernel[i], products added in tap order, unfused.
TEST(ColumnPipeline, ChoiceColumn16sUnfusedTapOrder) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {2, 4, 5, 7, 9, 70}) {
        ColumnRun<M16s> r = randomRun(k16sC1, rng, 37, 2, k);
        r.smallData = false;
        r.divisor = 3;
        ASSERT_TRUE(r.run(rng));
    }
}

// 32f with k = 5: the first product, then fused multiply-adds in tap order;
// other lengths but 3 add unfused products.
TEST(ColumnPipeline, ChoiceColumn32fK5FusedTapOrder) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<Lum32f> ones(20, 1.0f);
    std::vector<Lum32f> got;
    ColumnRun<M32f> r{k32fC1, 20, 1, 5, 1, {1.0f, 1e8f, -1e8f, 1.0f, 0.0f}};
    ASSERT_TRUE(r.run(rng, &got, &ones));
    EXPECT_EQ(got[0], 1.0f);
    // 1/3 products: fused and unfused forms differ in the last bit.
    for (int k : {4, 5, 6}) {
        ColumnRun<M32f> q = randomRun(k32fC1, rng, 40, 3, k);
        ASSERT_TRUE(q.run(rng));
    }
}

// Aligned and unaligned row pointers run the same arithmetic.
TEST(ColumnPipeline, AlignedAndUnalignedRowsSameBits) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k : {3, 5, 7}) {
        for (bool aligned : {true, false}) {
            ColumnRun<M32f> f = randomRun(k32fC1, rng, 64, 3, k);
            f.alignedRows = aligned;
            ASSERT_TRUE(f.run(rng));
            ColumnRun<M16s> s = randomRun(k16sC1, rng, 64, 3, k);
            s.alignedRows = aligned;
            ASSERT_TRUE(s.run(rng));
            ColumnRun<M16s> l = randomRun(kLowC3, rng, 64, 3, k);
            l.alignedRows = aligned;
            ASSERT_TRUE(l.run(rng));
        }
    }
}

// Low_16s with divisor 1 stores the wrapped 16-bit sum unscaled; with any
// other divisor the fixed-point scale applies and saturates.
TEST(ColumnPipeline, LowDivisorOneStoresWrappedSum) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<Lum16s> v(32, 20000), got;
    ColumnRun<M16s> r{kLowC1, 32, 1, 3, 1, {1, 1, 1}};
    ASSERT_TRUE(r.run(rng, &got, &v));
    EXPECT_EQ(got[0], -5536);
    ColumnRun<M16s> q{kLowC1, 32, 1, 3, 2, {1, 1, 1}};
    ASSERT_TRUE(q.run(rng, &got, &v));
    EXPECT_EQ(got[0], -2768);
}

TEST(ColumnPipeline, KernelLengthOne) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int w : {1, 17, 40}) {
        ASSERT_TRUE(randomRun(k8sC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k8uC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16sC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k16uC3, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(k32fC1, rng, w, 2, 1).run(rng));
        ASSERT_TRUE(randomRun(kLowC1, rng, w, 2, 1).run(rng));
    }
}

// Exactly the queried bytes at every start offset over a grid of sizes.
template <class M>
void bufferGrid(const M& m) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int k = 1; k <= 9; ++k)
        for (int w : {1, 2, 3, 5, 9, 17, 33}) {
            ColumnRun<M> r = randomRun(m, rng, w, 2, k);
            r.bufferOffset = (k * 5 + w) % 32;
            ASSERT_TRUE(r.run(rng));
        }
}

TEST(ColumnPipeline, ExactBuffers) {
    bufferGrid(k8sC1);
    bufferGrid(k8sC3);
    bufferGrid(k8uC1);
    bufferGrid(k8uC3);
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

template <class M>
struct CheckArgs {
    using S = typename M::Src;
    using D = typename M::Dst;
    std::vector<S> src = std::vector<S>(64 * 3, S(1));
    std::vector<const S*> rowVec = std::vector<const S*>(8, src.data());
    std::vector<D> out = std::vector<D>(64 * 3 * 2 + 64);
    std::vector<S> kern = std::vector<S>(3, S(1));
    std::vector<Lum8u> buffer = std::vector<Lum8u>(8192);

    const S* const* rows = rowVec.data();
    D* dst = out.data();
    int step = 64 * 3 * static_cast<int>(sizeof(D));
    LumiSize roi{8, 2};
    const S* kernel = kern.data();
    int k = 3;
    int divisor = 2;
    Lum8u* buf = buffer.data();

    LumStatus call(const M& m) const { return m.call(rows, dst, step, roi, kernel, k, divisor, buf); }
};

template <class M>
struct CheckRow {
    const char* what;
    void (*change)(CheckArgs<M>&);
    LumStatus want;
};

// rowBytes: what the member compares dstStep with (8 pixels wide).
template <class M>
std::vector<CheckRow<M>> columnTable(int rowBytes, bool hasDivisor) {
    using A = CheckArgs<M>;
    std::vector<CheckRow<M>> t = {
        {"null srcRows", [](A& a) { a.rows = nullptr; a.roi = {0, 0}; a.buf = nullptr; }, lumStatusNullPointer},
        {"null dst", [](A& a) { a.dst = nullptr; a.k = 0; }, lumStatusNullPointer},
        {"null kernel", [](A& a) { a.kernel = nullptr; a.step = 0; }, lumStatusNullPointer},
        {"zero width", [](A& a) { a.roi = {0, 2}; a.rowVec[0] = nullptr; }, lumStatusBadSize},
        {"zero height", [](A& a) { a.roi = {8, 0}; a.k = 0; }, lumStatusBadSize},
        // Pointer k + h - 2 = 3 is the last one tested.
        {"null last row pointer", [](A& a) { a.rowVec[3] = nullptr; a.k = 3; a.step = 0; a.buf = nullptr; }, lumStatusNullPointer},
        {"null pointer behind the rows is not read", [](A& a) { a.rowVec[4] = nullptr; }, lumStatusOk},
        // kernelSize 0 shortens the loop to k + h - 1 = 1 pointer.
        {"kernelSize 0 with row 1 null", [](A& a) { a.k = 0; a.rowVec[1] = nullptr; }, lumStatusBadSize},
        {"kernelSize 0 with row 0 null", [](A& a) { a.k = 0; a.rowVec[0] = nullptr; }, lumStatusNullPointer},
        {"kernelSize -5 tests no row", [](A& a) { a.k = -5; a.rowVec[0] = nullptr; }, lumStatusBadSize},
        {"kernelSize 0", [](A& a) { a.k = 0; a.step = 0; a.buf = nullptr; }, lumStatusBadSize},
        {"step negative", [](A& a) { a.step = -2; a.buf = nullptr; }, lumStatusBadStep},
        {"null buffer", [](A& a) { a.buf = nullptr; a.divisor = 0; }, lumStatusNullPointer},
    };
    // Steps around the member's row bytes (all even, so aligned where needed).
    static int bytes;
    bytes = rowBytes;
    t.push_back({"step one row less 2", [](A& a) { a.step = bytes - 2; a.buf = nullptr; }, lumStatusBadStep});
    t.push_back({"step of one row", [](A& a) { a.step = bytes; }, lumStatusOk});
    if (sizeof(typename M::Dst) > 1) {
        t.push_back({"odd step", [](A& a) { a.step = 64 * 3 * static_cast<int>(sizeof(typename M::Dst)) + 1; a.buf = nullptr; },
                     lumStatusStepNotAligned});
    } else {
        t.push_back({"odd step passes", [](A& a) { a.step = bytes + 1; }, lumStatusOk});
    }
    if (hasDivisor) {
        t.push_back({"divisor 0", [](A& a) { a.divisor = 0; }, lumStatusBadArgument});
    } else {
        t.push_back({"no divisor test", [](A& a) { a.divisor = 0; }, lumStatusOk});
    }
    t.push_back({"negative divisor passes", [](A& a) { a.divisor = -1; }, lumStatusOk});
    return t;
}

template <class M>
void checkTable(const M& m, const std::vector<CheckRow<M>>& table) {
    for (const CheckRow<M>& row : table) {
        CheckArgs<M> a;
        ASSERT_EQ(a.call(m), lumStatusOk) << m.name;
        CheckArgs<M> b;
        row.change(b);
        EXPECT_EQ(b.call(m), row.want) << m.name << ": " << row.what;
    }
}

TEST(ColumnPipelineChecks, Order16sFamily) {
    checkTable(k8sC1, columnTable<M8s>(8, true));
    checkTable(k8sC3, columnTable<M8s>(24, true));
    checkTable(k8uC1, columnTable<M8u>(8, true));
    checkTable(k8uC3, columnTable<M8u>(24, true));
    checkTable(k16sC1, columnTable<M16s>(16, true));
    checkTable(k16sC3, columnTable<M16s>(48, true));
}
TEST(ColumnPipelineChecks, Order16u) {
    checkTable(k16uC1, columnTable<M16u>(16, true));
    checkTable(k16uC3, columnTable<M16u>(48, true));
}
TEST(ColumnPipelineChecks, Order32fNoDivisor) {
    checkTable(k32fC1, columnTable<M32f>(32, false));
    checkTable(k32fC3, columnTable<M32f>(96, false));
}
// Low_16s C3R compares dstStep with 2 x width bytes, one channel's row.
TEST(ColumnPipelineChecks, OrderLow16sC3StepAgainstTwiceWidth) {
    checkTable(kLowC1, columnTable<M16s>(16, true));
    checkTable(kLowC3, columnTable<M16s>(16, true));
}

// With dstStep = 2 x width the rows of 3 x width samples overlap; each row is
// written after the one above, so the last row stands whole.
TEST(ColumnPipeline, Low16sC3AcceptsStepOfTwiceWidth) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const int w = 20, h = 3, k = 3;
    std::vector<Lum16s> src(static_cast<size_t>(w) * 3 * (k + h - 1));
    for (auto& v : src) v = randomSample<Lum16s>(rng, true);
    std::vector<const Lum16s*> rows(k + h - 1);
    for (int i = 0; i < k + h - 1; ++i) rows[i] = src.data() + static_cast<size_t>(i) * w * 3;
    const int step = 2 * w;
    std::vector<Lum16s> out(static_cast<size_t>(step / 2) * (h - 1) + 3 * w);
    const Lum16s kern[3] = {1, 2, 1};
    int bytes = 0;
    ASSERT_EQ(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R({w, h}, k, &bytes), lumStatusOk);
    ExactBuffer buf(bytes, 0);
    ASSERT_EQ(LUMTEST_NOALLOC(lumiFilterColumnPipeline_Low_16s_C3R, (rows.data(), out.data(), step, LumiSize{w, h}, kern, k, 4, buf.data())),
              lumStatusOk);
    const Lum16s* last = out.data() + static_cast<size_t>(step / 2) * (h - 1);
    for (int x = 0; x < 3 * w; ++x) {
        const Lum16s v[3] = {rows[h - 1][x], rows[h][x], rows[h + 1][x]};
        EXPECT_EQ(last[x], (ref::sample<Lum16s, Lum16s>(Kind::Low, kern, 3, 4, v, x, 3 * w))) << x;
    }
    EXPECT_EQ(lumiFilterColumnPipeline_Low_16s_C3R(rows.data(), out.data(), step - 2, LumiSize{w, h}, kern, k, 4, buf.data()),
              lumStatusBadStep);
    EXPECT_EQ(lumiFilterColumnPipeline_16s_C3R(rows.data(), out.data(), step, LumiSize{w, h}, kern, k, 4, buf.data()),
              lumStatusBadStep);
}

#ifdef LUMCV_HAVE_OPENCV
// A k x 1 kernel through cv::filter2D on 16s rows to 8u: OpenCV sums its float
// kernel kernel[i] / divisor in its own order and rounds; results agree
// within 1.
TEST(ColumnPipelineOpenCv, Matches16s8uColumns) {
    Rng rng;
    const int w = 200, h = 30, k = 5;
    cv::Mat img(h + k - 1, w, CV_16SC1);
    for (int y = 0; y < img.rows; ++y)
        for (int x = 0; x < w; ++x)
            img.at<int16_t>(y, x) = static_cast<int16_t>(4 * (128 + 100 * std::sin(x * 0.05 + y * 0.1)) + rng.uniform(-8, 8));
    const Lum16s kern[k] = {1, 4, 6, 4, 1};
    const float kf[k] = {1 / 64.0f, 4 / 64.0f, 6 / 64.0f, 4 / 64.0f, 1 / 64.0f};
    // OpenCV refuses a narrower result depth: filter to float, then round and
    // saturate to 8 bits as it would.
    cv::Mat wide, want;
    cv::filter2D(img, wide, CV_32F, cv::Mat(k, 1, CV_32F, const_cast<float*>(kf)), cv::Point(0, 0), 0.0, cv::BORDER_REPLICATE);
    wide.convertTo(want, CV_8U);
    std::vector<const Lum16s*> rows(k + h - 1);
    for (int i = 0; i < k + h - 1; ++i) rows[i] = img.ptr<int16_t>(i);
    std::vector<Lum8u> out(static_cast<size_t>(w) * h);
    int bytes = 0;
    ASSERT_EQ(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R({w, h}, k, &bytes), lumStatusOk);
    std::vector<Lum8u> buf(bytes);
    ASSERT_EQ(lumiFilterColumnPipeline_16s8u_C1R(rows.data(), out.data(), w, {w, h}, kern, k, 64, buf.data()), lumStatusOk);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) ASSERT_NEAR(out[static_cast<size_t>(y) * w + x], want.at<uint8_t>(y, x), 1) << x << "," << y;
}
#endif

}  // namespace
