// Integral images against a scalar reference written from their recurrences.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

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

// Stand-in for the missing squared result.
struct None {};

// ------------------------------------------------------------ reference

namespace ref {

// One addition in the result's arithmetic: 32-bit integers wrap.
inline Lum32s add(Lum32s a, Lum32s b) { return static_cast<Lum32s>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
inline Lum32s sub(Lum32s a, Lum32s b) { return static_cast<Lum32s>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
inline Lum32f add(Lum32f a, Lum32f b) { return a + b; }
inline Lum64f add(Lum64f a, Lum64f b) { return a + b; }

// Plain integral of f(sample) (the sample or its square), dense
// (w + 1) x (h + 1): row 0 and column 0 hold value; r is the running row
// sum from 0, D[y + 1][x + 1] = D[y][x + 1] + r.
template <class D, class S, class F>
std::vector<D> plain(const std::vector<S>& src, int w, int h, D value, F f) {
    const int cols = w + 1;
    std::vector<D> d(static_cast<size_t>(cols) * (h + 1));
    for (int x = 0; x < cols; ++x) d[x] = value;
    for (int y = 0; y < h; ++y) {
        D* cur = &d[static_cast<size_t>(y + 1) * cols];
        const D* above = &d[static_cast<size_t>(y) * cols];
        cur[0] = value;
        D r = D(0);
        for (int x = 0; x < w; ++x) {
            r = add(r, f(src[static_cast<size_t>(y) * w + x]));
            cur[x + 1] = add(above[x + 1], r);
        }
    }
    return d;
}

// One tilted element from T1[x], T0[x + 1], T1[x + 2] and the integer sum of
// samples: wrapping for 32s, double then float for 32f, double for 64f.
inline Lum32s tiltedElement(Lum32s a, Lum32s b, Lum32s c, int64_t sum) {
    return add(add(sub(a, b), c), static_cast<Lum32s>(static_cast<uint32_t>(sum)));
}
inline Lum32f tiltedElement(Lum32f a, Lum32f b, Lum32f c, int64_t sum) {
    const double v = ((static_cast<double>(a) - static_cast<double>(b)) + static_cast<double>(c)) + static_cast<double>(sum);
    return static_cast<float>(v);
}
inline Lum64f tiltedElement(Lum64f a, Lum64f b, Lum64f c, int64_t sum) {
    return ((a - b) + c) + static_cast<double>(sum);
}

// Tilted integral, dense (w + 2) x (h + 2).
template <class D, class F>
std::vector<D> tilted(const std::vector<Lum8u>& src, int w, int h, D value, F f) {
    const int cols = w + 2;
    std::vector<D> t(static_cast<size_t>(cols) * (h + 2));
    for (int x = 0; x < 2 * cols; ++x) t[x] = value;
    for (int i = 0; i < h; ++i) {
        const D* t0 = &t[static_cast<size_t>(i) * cols];
        const D* t1 = &t[static_cast<size_t>(i + 1) * cols];
        D* t2 = &t[static_cast<size_t>(i + 2) * cols];
        const Lum8u* s = &src[static_cast<size_t>(i) * w];
        t2[0] = t1[1];
        for (int x = 0; x <= w - 2; ++x) t2[x + 1] = tiltedElement(t1[x], t0[x + 1], t1[x + 2], int64_t{f(s[x])} + f(s[x + 1]));
        const int x = w - 1;  // the last column adds one sample
        t2[w] = tiltedElement(t1[x], t0[w], t1[x + 2], f(s[x]));
        t2[w + 1] = t1[w];
    }
    return t;
}

inline int64_t identity(Lum8u s) { return s; }
inline int64_t squareOf(Lum8u s) { return int64_t{s} * s; }

template <class D>
std::vector<D> plainOfSamples(const std::vector<Lum8u>& s, int w, int h, D value) {
    return plain<D>(s, w, h, value, [](Lum8u v) { return static_cast<D>(v); });
}
template <class D>
std::vector<D> plainOfSquares(const std::vector<Lum8u>& s, int w, int h, D value) {
    return plain<D>(s, w, h, value, [](Lum8u v) { return static_cast<D>(v * v); });
}

}  // namespace ref

// ------------------------------------------------------------ members

// S source sample, D result, Q squared result (None without one); extra is
// 1 for plain, 2 for tilted results.
#define LUMTEST_MEMBER(Struct, Fn, S_, D_, Q_, extra_)                                                  \
    struct Struct {                                                                                    \
        using S = S_;                                                                                  \
        using D = D_;                                                                                  \
        using Q = Q_;                                                                                  \
        static constexpr int extra = extra_;                                                           \
        static constexpr const char* name = #Fn;                                                       \
        static LumStatus call(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) { \
            return invoke(s, ss, d, ds, q, qs, r, v, vq);                                              \
        }                                                                                              \
        static LumStatus invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq);\
    };

LUMTEST_MEMBER(Integral8u32s, lumiIntegral_8u32s_C1R, Lum8u, Lum32s, None, 1)
LUMTEST_MEMBER(Integral8u32f, lumiIntegral_8u32f_C1R, Lum8u, Lum32f, None, 1)
LUMTEST_MEMBER(SqrIntegral8u32s, lumiSqrIntegral_8u32s_C1R, Lum8u, Lum32s, Lum32s, 1)
LUMTEST_MEMBER(SqrIntegral8u32s64f, lumiSqrIntegral_8u32s64f_C1R, Lum8u, Lum32s, Lum64f, 1)
LUMTEST_MEMBER(SqrIntegral8u32f64f, lumiSqrIntegral_8u32f64f_C1R, Lum8u, Lum32f, Lum64f, 1)
LUMTEST_MEMBER(Tilted8u32s, lumiTiltedIntegral_8u32s_C1R, Lum8u, Lum32s, None, 2)
LUMTEST_MEMBER(Tilted8u32f, lumiTiltedIntegral_8u32f_C1R, Lum8u, Lum32f, None, 2)
LUMTEST_MEMBER(TiltedSqr8u32s, lumiTiltedSqrIntegral_8u32s_C1R, Lum8u, Lum32s, Lum32s, 2)
LUMTEST_MEMBER(TiltedSqr8u32s64f, lumiTiltedSqrIntegral_8u32s64f_C1R, Lum8u, Lum32s, Lum64f, 2)
LUMTEST_MEMBER(TiltedSqr8u32f64f, lumiTiltedSqrIntegral_8u32f64f_C1R, Lum8u, Lum32f, Lum64f, 2)
#undef LUMTEST_MEMBER

LumStatus Integral8u32s::invoke(const S* s, int ss, D* d, int ds, Q*, int, LumiSize r, D v, Q) {
    return LUMTEST_NOALLOC(lumiIntegral_8u32s_C1R, (s, ss, d, ds, r, v));
}
LumStatus Integral8u32f::invoke(const S* s, int ss, D* d, int ds, Q*, int, LumiSize r, D v, Q) {
    return LUMTEST_NOALLOC(lumiIntegral_8u32f_C1R, (s, ss, d, ds, r, v));
}
LumStatus SqrIntegral8u32s::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiSqrIntegral_8u32s_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}
LumStatus SqrIntegral8u32s64f::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiSqrIntegral_8u32s64f_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}
LumStatus SqrIntegral8u32f64f::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiSqrIntegral_8u32f64f_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}
LumStatus Tilted8u32s::invoke(const S* s, int ss, D* d, int ds, Q*, int, LumiSize r, D v, Q) {
    return LUMTEST_NOALLOC(lumiTiltedIntegral_8u32s_C1R, (s, ss, d, ds, r, v));
}
LumStatus Tilted8u32f::invoke(const S* s, int ss, D* d, int ds, Q*, int, LumiSize r, D v, Q) {
    return LUMTEST_NOALLOC(lumiTiltedIntegral_8u32f_C1R, (s, ss, d, ds, r, v));
}
LumStatus TiltedSqr8u32s::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiTiltedSqrIntegral_8u32s_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}
LumStatus TiltedSqr8u32s64f::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiTiltedSqrIntegral_8u32s64f_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}
LumStatus TiltedSqr8u32f64f::invoke(const S* s, int ss, D* d, int ds, Q* q, int qs, LumiSize r, D v, Q vq) {
    return LUMTEST_NOALLOC(lumiTiltedSqrIntegral_8u32f64f_C1R, (s, ss, d, ds, q, qs, r, v, vq));
}

template <class T>
T randomValue(Rng& rng) {
    if constexpr (std::is_same_v<T, Lum32s>) {
        return rng.chance(0.3) ? 0 : static_cast<Lum32s>(rng.bits());
    } else if constexpr (std::is_same_v<T, Lum32f>) {
        // Small fractional offsets make every later sum round in float.
        if (rng.chance(0.3)) return 0.0f;
        return static_cast<float>(rng.chance(0.5) ? rng.uniformReal(-1.0, 1.0) : rng.uniformReal(-1e6, 1e6));
    } else if constexpr (std::is_same_v<T, Lum64f>) {
        if (rng.chance(0.3)) return 0.0;
        return rng.chance(0.5) ? rng.uniformReal(-1.0, 1.0) : rng.uniformReal(-1e12, 1e12);
    } else {
        return T{};
    }
}

// The reference of a member for a dense source.
template <class M>
std::vector<typename M::D> referenceSums(const std::vector<Lum8u>& s, int w, int h, typename M::D value) {
    using D = typename M::D;
    if constexpr (M::extra == 1) return ref::plainOfSamples<D>(s, w, h, value);
    else return ref::tilted<D>(s, w, h, value, ref::identity);
}
template <class M>
std::vector<typename M::Q> referenceSquares(const std::vector<Lum8u>& s, int w, int h, typename M::Q value) {
    using Q = typename M::Q;
    if constexpr (M::extra == 1) return ref::plainOfSquares<Q>(s, w, h, value);
    else return ref::tilted<Q>(s, w, h, value, ref::squareOf);
}

// Runs one member on a w x h source (filled by fill(x, y)) in random
// layouts and compares both results with the reference, guards included.
template <class M, class Fill>
void checkMember(int w, int h, Rng& rng, Fill fill) {
    using D = typename M::D;
    using Q = typename M::Q;
    constexpr bool hasSqr = !std::is_same_v<Q, None>;
    GuardedImage<Lum8u> src(lumtest::randomLayout<Lum8u>(w, h, 1, rng), rng);
    src.fill([&](int x, int y, int) { return fill(x, y); });
    const std::vector<Lum8u> dense = lumtest::dense(src);
    GuardedImage<D> dst(lumtest::randomLayout<D>(w + M::extra, h + M::extra, 1, rng), rng);
    const D value = randomValue<D>(rng);
    const std::vector<D> want = referenceSums<M>(dense, w, h, value);
    if constexpr (hasSqr) {
        GuardedImage<Q> sqr(lumtest::randomLayout<Q>(w + M::extra, h + M::extra, 1, rng), rng);
        const Q valueSqr = randomValue<Q>(rng);
        const std::vector<Q> wantSqr = referenceSquares<M>(dense, w, h, valueSqr);
        ASSERT_EQ(M::call(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), {w, h}, value,
                          valueSqr),
                  lumStatusOk);
        ASSERT_TRUE(lumtest::sameBitsAsReference(sqr, wantSqr)) << M::name << " squares, " << src.describe();
        ASSERT_TRUE(sqr.intactOutsideRoi()) << M::name;
    } else {
        Q none{};
        ASSERT_EQ(M::call(src.data(), src.step(), dst.data(), dst.step(), &none, 0, {w, h}, value, Q{}), lumStatusOk);
    }
    ASSERT_TRUE(lumtest::sameBitsAsReference(dst, want)) << M::name << ", " << src.describe();
    ASSERT_TRUE(dst.intactOutsideRoi()) << M::name;
    ASSERT_TRUE(src.unchanged()) << M::name;
}

template <class M>
class IntegralSweep : public ::testing::Test {};
using Members = ::testing::Types<Integral8u32s, Integral8u32f, SqrIntegral8u32s, SqrIntegral8u32s64f,
                                 SqrIntegral8u32f64f, Tilted8u32s, Tilted8u32f, TiltedSqr8u32s, TiltedSqr8u32s64f,
                                 TiltedSqr8u32f64f>;
TYPED_TEST_SUITE(IntegralSweep, Members);

// Widths 1..70 and past a few block edges, heights 1..3 and 9, random data
// (sometimes all 255), odd source steps, unaligned starts, tight ends.
TYPED_TEST(IntegralSweep, MatchesReferenceOverShapes) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<int> widths;
    for (int w = 1; w <= 70; ++w) widths.push_back(w);
    for (int w : {95, 127, 128, 129, 200, 257}) widths.push_back(w);
    for (int w : widths) {
        for (int h : {1, 2, 3, 9}) {
            const bool bright = rng.chance(0.15);
            std::vector<Lum8u> noise(static_cast<size_t>(w) * h);
            for (Lum8u& v : noise) v = static_cast<Lum8u>(rng.bits());
            checkMember<TypeParam>(w, h, rng, [&](int x, int y) -> Lum8u {
                return bright ? 255 : noise[static_cast<size_t>(y) * w + x];
            });
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

// Results of some megabytes, in layouts of every alignment, with odd and
// even heights.
TYPED_TEST(IntegralSweep, LargeResults) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    for (int round = 0; round < 3; ++round) {
        const int w = round == 0 ? 1030 : 1100 + rng.uniform(0, 40);
        const int h = round == 0 ? 1000 : 1020 + round;
        std::vector<Lum8u> noise(static_cast<size_t>(w) * h);
        for (Lum8u& v : noise) v = static_cast<Lum8u>(rng.bits());
        checkMember<TypeParam>(w, h, rng, [&](int x, int y) { return noise[static_cast<size_t>(y) * w + x]; });
        if (::testing::Test::HasFatalFailure()) return;
    }
}

// Results of 16 MiB and more go one row at a time, smaller ones in pairs of
// rows: both sides of that edge, with and without a squared result.
TEST(IntegralLarge, BothSidesOfTheOneRowThreshold) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    auto noiseFill = [&rng](int w, int h) {
        auto noise = std::make_shared<std::vector<Lum8u>>(static_cast<size_t>(w) * h);
        for (Lum8u& v : *noise) v = static_cast<Lum8u>(rng.bits());
        return [noise, w](int x, int y) { return (*noise)[static_cast<size_t>(y) * w + x]; };
    };
    // (2047 + 1) x (h + 1) x 4 bytes: 16 MiB at h = 2047.
    for (int h : {2046, 2047}) {
        checkMember<Integral8u32s>(2047, h, rng, noiseFill(2047, h));
        if (HasFatalFailure()) return;
    }
    // (1023 + 1) x (h + 1) x (4 + 8) bytes: past 16 MiB from h = 1365.
    for (int h : {1364, 1365}) {
        checkMember<SqrIntegral8u32s64f>(1023, h, rng, noiseFill(1023, h));
        if (HasFatalFailure()) return;
    }
}

// ------------------------------------------------------------ 32f source

std::vector<float> plain32fReference(const GuardedImage<Lum32f>& src) {
    const std::vector<float> dense = lumtest::dense(src);
    return ref::plain<Lum32f>(dense, src.width(), src.height(), 0.0f, [](float v) { return v; });
}

// Floats of mixed magnitudes, so that the order of additions shows in the
// last bits; sometimes infinities and NaN. The NaN is the processor's
// default one, the same that inf - inf makes, so that no addition meets two
// different NaNs (which one survives would depend on the operand order the
// compiler picks for the reference).
float mixedFloat(Rng& rng, bool specials) {
    if (specials && rng.chance(0.02)) {
        const float picks[] = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::quiet_NaN(), -0.0f, 1e-40f};
        return picks[rng.uniform(0, 4)];
    }
    const double mag = std::pow(10.0, rng.uniformReal(-6.0, 7.0));
    return static_cast<float>(rng.chance(0.5) ? mag : -mag);
}

TEST(Integral32f, MatchesReferenceOverShapes) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    std::vector<int> widths;
    for (int w = 1; w <= 70; ++w) widths.push_back(w);
    for (int w : {100, 129}) widths.push_back(w);
    for (int w : widths) {
        for (int h : {1, 2, 3, 7, 8, 9, 16, 17}) {
            GuardedImage<Lum32f> src(lumtest::randomLayout<Lum32f>(w, h, 1, rng), rng);
            const bool specials = rng.chance(0.2);
            src.fill([&](int, int, int) { return mixedFloat(rng, specials); });
            GuardedImage<Lum32f> dst(lumtest::randomLayout<Lum32f>(w + 1, h + 1, 1, rng), rng);
            const std::vector<float> want = plain32fReference(src);
            ASSERT_EQ(LUMTEST_NOALLOC(lumiIntegral_32f_C1R, (src.data(), src.step(), dst.data(), dst.step(), {w, h})),
                      lumStatusOk);
            ASSERT_TRUE(lumtest::sameBitsAsReference(dst, want)) << src.describe();
            ASSERT_TRUE(dst.intactOutsideRoi());
            ASSERT_TRUE(src.unchanged());
        }
    }
}

// A row sum whose float value depends on the order: 1 + 2^-24 ... added left
// to right rounds every small term away, any tree order keeps some.
TEST(Integral32f, RowSumIsLeftToRight) {
    std::vector<float> row(64, std::ldexp(1.0f, -24));
    row[0] = 1.0f;
    std::vector<float> dst(2 * 65, -1.0f);
    ASSERT_EQ(lumiIntegral_32f_C1R(row.data(), 64 * 4, dst.data(), 65 * 4, {64, 1}), lumStatusOk);
    for (int x = 1; x <= 64; ++x) EXPECT_EQ(dst[65 + x], 1.0f) << x;
    EXPECT_EQ(dst[65], 0.0f);
}

// ------------------------------------------------------------ float sums past 2^24

// Runs one 8u member with 32f results on a dense source and compares with
// the reference.
template <class M>
void checkDense(const std::vector<Lum8u>& src, int w, int h, typename M::D value) {
    using D = typename M::D;
    using Q = typename M::Q;
    std::vector<D> dst(static_cast<size_t>(w + M::extra) * (h + M::extra));
    const std::vector<D> want = referenceSums<M>(src, w, h, value);
    if constexpr (std::is_same_v<Q, None>) {
        Q none{};
        ASSERT_EQ(M::call(src.data(), w, dst.data(), (w + M::extra) * 4, &none, 0, {w, h}, value, none), lumStatusOk);
    } else {
        std::vector<Q> sqr(dst.size());
        const std::vector<Q> wantSqr = referenceSquares<M>(src, w, h, Q(3));
        ASSERT_EQ(M::call(src.data(), w, dst.data(), (w + M::extra) * 4, sqr.data(),
                          (w + M::extra) * static_cast<int>(sizeof(Q)), {w, h}, value, Q(3)),
                  lumStatusOk);
        ASSERT_TRUE(lumtest::sameBits(sqr.data(), wantSqr.data(), static_cast<int>(sqr.size())));
    }
    ASSERT_TRUE(lumtest::sameBits(dst.data(), want.data(), static_cast<int>(dst.size())));
}

// Rows of more than 65793 bright samples take the float row sum past 2^24,
// where it rounds at each addition: all 255, random, dark then bright (the
// switch comes late), and dark throughout (never switches).
TEST(IntegralFloatSums, RowSumsPastTwoToTheTwentyFour) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    // 65762 columns still run two rows at a time, 65763 one at a time.
    for (int w : {65762, 65763, 65793, 65794, 70001, 140003}) {
        const int h = 3;
        for (int pattern = 0; pattern < 4; ++pattern) {
            SCOPED_TRACE(testing::Message() << "width " << w << " pattern " << pattern);
            std::vector<Lum8u> s(static_cast<size_t>(w) * h);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    Lum8u v = 0;
                    switch (pattern) {
                        case 0: v = 255; break;
                        case 1: v = static_cast<Lum8u>(rng.bits()); break;
                        case 2: v = x < 40000 ? 3 : static_cast<Lum8u>(200 + rng.uniform(0, 55)); break;
                        default: v = static_cast<Lum8u>(rng.uniform(0, 60)); break;
                    }
                    s[static_cast<size_t>(y) * w + x] = v;
                }
            checkDense<Integral8u32f>(s, w, h, 0.5f);
            checkDense<SqrIntegral8u32f64f>(s, w, h, -7.0f);
            checkDense<Tilted8u32f>(s, w, h, 1.0f);
            checkDense<TiltedSqr8u32f64f>(s, w, h, 0.0f);
        }
    }
}

// Column totals past 2^24 in a narrow, tall, bright image.
TEST(IntegralFloatSums, ColumnTotalsPastTwoToTheTwentyFour) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const int w = 67, h = 1100;
    std::vector<Lum8u> s(static_cast<size_t>(w) * h);
    for (Lum8u& v : s) v = static_cast<Lum8u>(rng.chance(0.8) ? 255 : rng.bits());
    checkDense<Integral8u32f>(s, w, h, 0.0f);
    checkDense<SqrIntegral8u32f64f>(s, w, h, 0.25f);
    checkDense<Tilted8u32f>(s, w, h, 0.0f);
    checkDense<TiltedSqr8u32f64f>(s, w, h, 3.0f);
}

// The vector and the one-at-a-time paths of a row meet where the row sum
// passes 2^24: that edge falls at every position of a block of 32.
TEST(IntegralFloatSums, SwitchPointAtEveryBlockPosition) {
    for (int shift = 0; shift <= 32; ++shift) {
        const int w = 65840 + shift;
        std::vector<Lum8u> s(static_cast<size_t>(w), 255);
        for (int x = 0; x < shift; ++x) s[x] = 0;
        checkDense<Integral8u32f>(s, w, 1, 0.0f);
        checkDense<SqrIntegral8u32f64f>(s, w, 1, 0.0f);
    }
}

// ------------------------------------------------------------ edge cases

TEST(IntegralEdges, OneByOneGivesTwoByTwo) {
    const Lum8u s = 200;
    Lum32s d[4];
    ASSERT_EQ(lumiIntegral_8u32s_C1R(&s, 1, d, 8, {1, 1}, 5), lumStatusOk);
    EXPECT_EQ(d[0], 5);
    EXPECT_EQ(d[1], 5);
    EXPECT_EQ(d[2], 5);
    EXPECT_EQ(d[3], 205);
    Lum32f f[4];
    ASSERT_EQ(lumiIntegral_8u32f_C1R(&s, 1, f, 8, {1, 1}, 0.5f), lumStatusOk);
    EXPECT_EQ(f[0], 0.5f);
    EXPECT_EQ(f[1], 0.5f);
    EXPECT_EQ(f[2], 0.5f);
    EXPECT_EQ(f[3], 200.5f);
    const Lum32f s32 = -2.5f;
    ASSERT_EQ(lumiIntegral_32f_C1R(&s32, 4, f, 8, {1, 1}), lumStatusOk);
    EXPECT_EQ(f[0], 0.0f);
    EXPECT_EQ(f[1], 0.0f);
    EXPECT_EQ(f[2], 0.0f);
    EXPECT_EQ(f[3], -2.5f);
    Lum64f q[4];
    ASSERT_EQ(lumiSqrIntegral_8u32s64f_C1R(&s, 1, d, 8, q, 16, {1, 1}, 1, 2.0), lumStatusOk);
    EXPECT_EQ(d[3], 201);
    EXPECT_EQ(q[0], 2.0);
    EXPECT_EQ(q[1], 2.0);
    EXPECT_EQ(q[2], 2.0);
    EXPECT_EQ(q[3], 40002.0);
}

// 9000 x 9000 samples of 255 sum to more than 2^32: the result wraps, and
// differences of corners whose window sum fits stay right.
TEST(IntegralEdges, WrapsOnAHugeBrightImage) {
    const int n = 9000;
    std::vector<Lum8u> s(static_cast<size_t>(n) * n, 255);
    std::vector<Lum32s> d(static_cast<size_t>(n + 1) * (n + 1));
    ASSERT_EQ(lumiIntegral_8u32s_C1R(s.data(), n, d.data(), (n + 1) * 4, {n, n}, 0), lumStatusOk);
    auto at = [&](int x, int y) { return static_cast<uint32_t>(d[static_cast<size_t>(y) * (n + 1) + x]); };
    EXPECT_EQ(at(n, n), static_cast<uint32_t>(uint64_t{255} * n * n));
    EXPECT_NE(uint64_t{at(n, n)}, uint64_t{255} * n * n);
    // A 300 x 200 window at the bottom right: 15,300,000 fits.
    const uint32_t window = at(n, n) - at(n - 300, n) - at(n, n - 200) + at(n - 300, n - 200);
    EXPECT_EQ(window, 255u * 300 * 200);
    // A band of 1000 full rows: 2,295,000,000 still fits 32 unsigned bits.
    const uint32_t big = at(n, 8000) - at(0, 8000) - at(n, 7000) + at(0, 7000);
    EXPECT_EQ(big, 255u * 9000 * 1000);
}

TEST(IntegralEdges, TiltedOneByOneTakesTheLastColumnRule) {
    const Lum8u s = 9;
    Lum32s t[9];
    ASSERT_EQ(lumiTiltedIntegral_8u32s_C1R(&s, 1, t, 12, {1, 1}, 4), lumStatusOk);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(t[i], 4) << i;
    EXPECT_EQ(t[7], 4 - 4 + 4 + 9);  // T[1][0] - T[0][1] + T[1][2] + S[0][0]
    EXPECT_EQ(t[6], t[4]);           // T[2][0] = T[1][1]
    EXPECT_EQ(t[8], t[4]);           // T[2][2] = T[1][1]
    Lum32f f[9];
    Lum64f q[9];
    ASSERT_EQ(lumiTiltedSqrIntegral_8u32f64f_C1R(&s, 1, f, 12, q, 24, {1, 1}, 0.5f, 1.0), lumStatusOk);
    EXPECT_EQ(f[7], 9.5f);
    EXPECT_EQ(q[7], 82.0);
    EXPECT_EQ(q[6], 1.0);
    EXPECT_EQ(q[8], 1.0);
}

// The tilted recurrence of 32f results runs in double and rounds once: with a
// fractional offset the same steps in float round differently.
TEST(IntegralEdges, TiltedFloatRecurrenceRunsInDouble) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const int w = 40, h = 30;
    std::vector<Lum8u> s(static_cast<size_t>(w) * h);
    for (Lum8u& v : s) v = static_cast<Lum8u>(rng.bits());
    const float value = 0.1f;
    const std::vector<float> want = ref::tilted<Lum32f>(s, w, h, value, ref::identity);
    // The same recurrence with every step rounded to float.
    std::vector<float> single(want.size());
    const int cols = w + 2;
    for (int x = 0; x < 2 * cols; ++x) single[x] = value;
    for (int i = 0; i < h; ++i) {
        const float* t0 = &single[static_cast<size_t>(i) * cols];
        const float* t1 = t0 + cols;
        float* t2 = &single[static_cast<size_t>(i + 2) * cols];
        t2[0] = t1[1];
        for (int x = 0; x < w; ++x) {
            const int sum = s[static_cast<size_t>(i) * w + x] + (x + 1 < w ? s[static_cast<size_t>(i) * w + x + 1] : 0);
            t2[x + 1] = ((t1[x] - t0[x + 1]) + t1[x + 2]) + static_cast<float>(sum);
        }
        t2[w + 1] = t1[w];
    }
    ASSERT_FALSE(lumtest::sameBits(single.data(), want.data(), static_cast<int>(want.size())));
    std::vector<float> got(want.size());
    ASSERT_EQ(lumiTiltedIntegral_8u32f_C1R(s.data(), w, got.data(), cols * 4, {w, h}, value), lumStatusOk);
    EXPECT_TRUE(lumtest::sameBits(got.data(), want.data(), static_cast<int>(want.size())));
}

// The tilted squared sums in Lum64f take the grouping of the 32f results,
// ((T1 - T0) + T1') + (S^2 + S'^2): with valueSqr at 2^53, where doubles
// step by 2, adding two odd squares one by one rounds twice, their sum once.
TEST(IntegralEdges, ChoiceTiltedDoubleSquaresAddTheSquaresFirst) {
    const int w = 64, h = 64, cols = w + 2;
    std::vector<Lum8u> s(static_cast<size_t>(w) * h);
    for (size_t i = 0; i < s.size(); ++i) s[i] = static_cast<Lum8u>((i * 2654435761u) >> 13);
    const double valueSqr = std::ldexp(1.0, 53);
    const std::vector<double> want = ref::tilted<Lum64f>(s, w, h, valueSqr, ref::squareOf);
    std::vector<double> leftToRight(want.size());
    for (int x = 0; x < 2 * cols; ++x) leftToRight[x] = valueSqr;
    for (int i = 0; i < h; ++i) {
        const double* t0 = &leftToRight[static_cast<size_t>(i) * cols];
        const double* t1 = t0 + cols;
        double* t2 = &leftToRight[static_cast<size_t>(i + 2) * cols];
        const Lum8u* row = &s[static_cast<size_t>(i) * w];
        t2[0] = t1[1];
        for (int x = 0; x < w; ++x) {
            const double a = row[x] * row[x], b = x + 1 < w ? row[x + 1] * row[x + 1] : 0.0;
            t2[x + 1] = (((t1[x] - t0[x + 1]) + t1[x + 2]) + a) + b;
        }
        t2[w + 1] = t1[w];
    }
    ASSERT_FALSE(lumtest::sameBits(leftToRight.data(), want.data(), static_cast<int>(want.size())));
    std::vector<Lum32s> d(want.size());
    std::vector<double> got(want.size());
    ASSERT_EQ(lumiTiltedSqrIntegral_8u32s64f_C1R(s.data(), w, d.data(), cols * 4, got.data(), cols * 8, {w, h}, 0,
                                                 valueSqr),
              lumStatusOk);
    EXPECT_TRUE(lumtest::sameBits(got.data(), want.data(), static_cast<int>(want.size())));
    std::vector<Lum32f> f(want.size());
    ASSERT_EQ(lumiTiltedSqrIntegral_8u32f64f_C1R(s.data(), w, f.data(), cols * 4, got.data(), cols * 8, {w, h}, 0.f,
                                                 valueSqr),
              lumStatusOk);
    EXPECT_TRUE(lumtest::sameBits(got.data(), want.data(), static_cast<int>(want.size())));
}

// The first and last columns of a tilted result copy the row above's second
// and second-to-last elements.
TEST(IntegralEdges, TiltedBorderColumnsCopyTheRowAbove) {
    LUMTEST_REPLAYABLE();
    Rng rng;
    const int w = 13, h = 6;
    std::vector<Lum8u> s(static_cast<size_t>(w) * h);
    for (Lum8u& v : s) v = static_cast<Lum8u>(rng.bits());
    std::vector<Lum32s> t(static_cast<size_t>(w + 2) * (h + 2));
    ASSERT_EQ(lumiTiltedIntegral_8u32s_C1R(s.data(), w, t.data(), (w + 2) * 4, {w, h}, 0), lumStatusOk);
    for (int r = 2; r < h + 2; ++r) {
        EXPECT_EQ(t[static_cast<size_t>(r) * (w + 2)], t[static_cast<size_t>(r - 1) * (w + 2) + 1]);
        EXPECT_EQ(t[static_cast<size_t>(r) * (w + 2) + w + 1], t[static_cast<size_t>(r - 1) * (w + 2) + w]);
    }
}

TEST(IntegralEdges, DestinationStepOfExactlyOneResultRow) {
    Lum8u s[16] = {};
    Lum32s d[64];
    const int w = 5;
    EXPECT_EQ(lumiIntegral_8u32s_C1R(s, w, d, (w + 1) * 4, {w, 2}, 0), lumStatusOk);
    EXPECT_EQ(lumiIntegral_8u32s_C1R(s, w, d, w * 4, {w, 2}, 0), lumStatusBadStep);
    EXPECT_EQ(lumiTiltedIntegral_8u32s_C1R(s, w, d, (w + 2) * 4, {w, 2}, 0), lumStatusOk);
    EXPECT_EQ(lumiTiltedIntegral_8u32s_C1R(s, w, d, (w + 1) * 4, {w, 2}, 0), lumStatusBadStep);
}

// ------------------------------------------------------------ order of checks

// One row per check: each fails that check and passes all earlier ones.
TEST(IntegralChecks, OrderOfOneResultMembers) {
    alignas(16) static Lum8u s[256];
    alignas(16) static Lum32s d[256];
    Lum32f* f = reinterpret_cast<Lum32f*>(d);
    const int w = 4;
    struct Case {
        const Lum8u* s;
        int ss;
        Lum32s* d;
        int ds;
        LumiSize roi;
        LumStatus want;
    } cases[] = {
        {nullptr, 4, d, 20, {0, 0}, lumStatusNullPointer},
        {s, 4, nullptr, 20, {0, 0}, lumStatusNullPointer},
        {s, -1, d, -1, {0, 2}, lumStatusBadSize},
        {s, -1, d, -1, {4, -1}, lumStatusBadSize},
        {s, 3, d, 20, {w, 2}, lumStatusBadStep},
        {s, 4, d, 16, {w, 2}, lumStatusBadStep},
        {s, 4, d, -20, {w, 2}, lumStatusBadStep},
        {s, 4, d, 22, {w, 2}, lumStatusStepNotAligned},
        {s, 5, d, 24, {w, 2}, lumStatusOk},  // odd source steps pass: 8u has no alignment test
    };
    for (const Case& c : cases) {
        EXPECT_EQ(lumiIntegral_8u32s_C1R(c.s, c.ss, c.d, c.ds, c.roi, 0), c.want) << c.ss << " " << c.ds;
        EXPECT_EQ(lumiIntegral_8u32f_C1R(c.s, c.ss, c.d ? f : nullptr, c.ds, c.roi, 0.f), c.want) << c.ss << " " << c.ds;
        // Tilted rows take one more element.
        const int tds = c.ds > 0 ? c.ds + 4 : c.ds;
        EXPECT_EQ(lumiTiltedIntegral_8u32s_C1R(c.s, c.ss, c.d, tds, c.roi, 0), c.want) << c.ss << " " << tds;
        EXPECT_EQ(lumiTiltedIntegral_8u32f_C1R(c.s, c.ss, c.d ? f : nullptr, tds, c.roi, 0.f), c.want);
    }
}

TEST(IntegralChecks, OrderOf32fSource) {
    alignas(16) static Lum32f s[256], d[256];
    EXPECT_EQ(lumiIntegral_32f_C1R(nullptr, 0, d, 0, {0, 0}), lumStatusNullPointer);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 0, nullptr, 0, {0, 0}), lumStatusNullPointer);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 0, d, 0, {3, 0}), lumStatusBadSize);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 11, d, 16, {3, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 12, d, 15, {3, 2}), lumStatusBadStep);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 13, d, 16, {3, 2}), lumStatusStepNotAligned);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 12, d, 18, {3, 2}), lumStatusStepNotAligned);
    EXPECT_EQ(lumiIntegral_32f_C1R(s, 12, d, 16, {3, 2}), lumStatusOk);
}

// Squared members: sqr joins the pointer group, its step the two step
// groups, tested against its own element size.
template <class Q, class D, class Fn>
void checkSquaredOrder(Fn fn, int extra) {
    alignas(16) static Lum8u s[512];
    alignas(16) static D d[512];
    alignas(16) static Q q[512];
    const int w = 4;
    const int ds = (w + extra) * 4, qs = (w + extra) * static_cast<int>(sizeof(Q));
    EXPECT_EQ(fn(nullptr, w, d, ds, q, qs, LumiSize{0, 0}), lumStatusNullPointer);
    EXPECT_EQ(fn(s, w, nullptr, ds, q, qs, LumiSize{0, 0}), lumStatusNullPointer);
    EXPECT_EQ(fn(s, w, d, ds, nullptr, qs, LumiSize{0, 0}), lumStatusNullPointer);
    EXPECT_EQ(fn(s, w, d, ds, q, qs, LumiSize{0, 1}), lumStatusBadSize);
    EXPECT_EQ(fn(s, w, d, ds, q, qs, LumiSize{1, 0}), lumStatusBadSize);
    EXPECT_EQ(fn(s, w - 1, d, ds, q, qs, LumiSize{w, 2}), lumStatusBadStep);
    EXPECT_EQ(fn(s, w, d, ds - 4, q, qs, LumiSize{w, 2}), lumStatusBadStep);
    EXPECT_EQ(fn(s, w, d, ds, q, qs - static_cast<int>(sizeof(Q)), LumiSize{w, 2}), lumStatusBadStep);
    // Misaligned steps pass the size test only when they're larger.
    EXPECT_EQ(fn(s, w, d, ds + 1, q, qs, LumiSize{w, 2}), lumStatusStepNotAligned);
    EXPECT_EQ(fn(s, w, d, ds, q, qs + 4 * static_cast<int>(sizeof(Q) == 8) + 2, LumiSize{w, 2}),
              lumStatusStepNotAligned);
    if (sizeof(Q) == 8) {
        EXPECT_EQ(fn(s, w, d, ds, q, qs + 4, LumiSize{w, 2}), lumStatusStepNotAligned);
    }
    // A misaligned step never hides a step that is too small.
    EXPECT_EQ(fn(s, w, d, ds + 1, q, qs - 8, LumiSize{w, 2}), lumStatusBadStep);
    EXPECT_EQ(fn(s, w + 3, d, ds + 4, q, qs + static_cast<int>(sizeof(Q)), LumiSize{w, 2}), lumStatusOk);
}

TEST(IntegralChecks, OrderOfSquaredMembers) {
    checkSquaredOrder<Lum32s, Lum32s>(
        [](const Lum8u* s, int ss, Lum32s* d, int ds, Lum32s* q, int qs, LumiSize r) {
            return lumiSqrIntegral_8u32s_C1R(s, ss, d, ds, q, qs, r, 0, 0);
        },
        1);
    checkSquaredOrder<Lum64f, Lum32s>(
        [](const Lum8u* s, int ss, Lum32s* d, int ds, Lum64f* q, int qs, LumiSize r) {
            return lumiSqrIntegral_8u32s64f_C1R(s, ss, d, ds, q, qs, r, 0, 0.0);
        },
        1);
    checkSquaredOrder<Lum64f, Lum32f>(
        [](const Lum8u* s, int ss, Lum32f* d, int ds, Lum64f* q, int qs, LumiSize r) {
            return lumiSqrIntegral_8u32f64f_C1R(s, ss, d, ds, q, qs, r, 0.f, 0.0);
        },
        1);
    checkSquaredOrder<Lum32s, Lum32s>(
        [](const Lum8u* s, int ss, Lum32s* d, int ds, Lum32s* q, int qs, LumiSize r) {
            return lumiTiltedSqrIntegral_8u32s_C1R(s, ss, d, ds, q, qs, r, 0, 0);
        },
        2);
    checkSquaredOrder<Lum64f, Lum32s>(
        [](const Lum8u* s, int ss, Lum32s* d, int ds, Lum64f* q, int qs, LumiSize r) {
            return lumiTiltedSqrIntegral_8u32s64f_C1R(s, ss, d, ds, q, qs, r, 0, 0.0);
        },
        2);
    checkSquaredOrder<Lum64f, Lum32f>(
        [](const Lum8u* s, int ss, Lum32f* d, int ds, Lum64f* q, int qs, LumiSize r) {
            return lumiTiltedSqrIntegral_8u32f64f_C1R(s, ss, d, ds, q, qs, r, 0.f, 0.0);
        },
        2);
}

TEST(IntegralChecks, FailedCheckWritesNothing) {
    Lum8u s[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    Lum32s d[16];
    for (Lum32s& v : d) v = 77;
    EXPECT_EQ(lumiIntegral_8u32s_C1R(s, 4, d, 19, {4, 2}, 0), lumStatusBadStep);
    EXPECT_EQ(lumiTiltedIntegral_8u32s_C1R(s, 4, d, 26, {4, 2}, 0), lumStatusStepNotAligned);
    for (Lum32s v : d) EXPECT_EQ(v, 77);
}

// ------------------------------------------------------------ peer

#ifdef LUMCV_HAVE_OPENCV

// A scene as a camera sees it: gradient, discs, boxes, texture and noise.
cv::Mat realisticImage(int w, int h, uint32_t seed) {
    cv::Mat img(h, w, CV_8U);
    Rng rng(seed);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double v = 60.0 + 120.0 * x / w + 50.0 * y / h + 8.0 * std::sin(x * 0.3) * std::cos(y * 0.21);
            if (std::hypot(x - 0.3 * w, y - 0.4 * h) < 0.2 * h) v = 230.0;
            if (x > 0.6 * w && x < 0.8 * w && y > 0.5 * h) v = 25.0;
            v += rng.uniformReal(-6.0, 6.0);
            img.at<Lum8u>(y, x) = static_cast<Lum8u>(std::lround(std::fmin(255.0, std::fmax(0.0, v))));
        }
    return img;
}

template <class T>
::testing::AssertionResult sameAsMat(const std::vector<T>& got, const cv::Mat& want) {
    for (int y = 0; y < want.rows; ++y)
        for (int x = 0; x < want.cols; ++x) {
            const T a = got[static_cast<size_t>(y) * want.cols + x];
            const T b = want.at<T>(y, x);
            if (std::memcmp(&a, &b, sizeof(T)) != 0)
                return ::testing::AssertionFailure() << "at (" << x << ", " << y << "): " << a << " vs " << b;
        }
    return ::testing::AssertionSuccess();
}

// Plain sums and squared sums agree with the peer's, bit for bit, in every
// pair of depths both have (offsets 0; the peer's float row sums of 8u
// samples are exact at this width, as ours are).
TEST(IntegralPeer, PlainSumsAgree) {
    const int w = 640, h = 480;
    const cv::Mat img = realisticImage(w, h, 11);
    const int cols = w + 1;
    std::vector<Lum32s> d32s(static_cast<size_t>(cols) * (h + 1)), q32s(d32s.size());
    std::vector<Lum32f> d32f(d32s.size());
    std::vector<Lum64f> q64f(d32s.size());
    cv::Mat sum, sqsum;

    ASSERT_EQ(lumiIntegral_8u32s_C1R(img.data, w, d32s.data(), cols * 4, {w, h}, 0), lumStatusOk);
    cv::integral(img, sum, CV_32S);
    EXPECT_TRUE(sameAsMat(d32s, sum));

    ASSERT_EQ(lumiIntegral_8u32f_C1R(img.data, w, d32f.data(), cols * 4, {w, h}, 0.f), lumStatusOk);
    cv::integral(img, sum, CV_32F);
    EXPECT_TRUE(sameAsMat(d32f, sum));

    ASSERT_EQ(lumiSqrIntegral_8u32s_C1R(img.data, w, d32s.data(), cols * 4, q32s.data(), cols * 4, {w, h}, 0, 0),
              lumStatusOk);
    cv::integral(img, sum, sqsum, CV_32S, CV_32S);
    EXPECT_TRUE(sameAsMat(d32s, sum));
    EXPECT_TRUE(sameAsMat(q32s, sqsum));

    ASSERT_EQ(lumiSqrIntegral_8u32s64f_C1R(img.data, w, d32s.data(), cols * 4, q64f.data(), cols * 8, {w, h}, 0, 0.0),
              lumStatusOk);
    cv::integral(img, sum, sqsum, CV_32S, CV_64F);
    EXPECT_TRUE(sameAsMat(d32s, sum));
    EXPECT_TRUE(sameAsMat(q64f, sqsum));

    ASSERT_EQ(lumiSqrIntegral_8u32f64f_C1R(img.data, w, d32f.data(), cols * 4, q64f.data(), cols * 8, {w, h}, 0.f, 0.0),
              lumStatusOk);
    cv::integral(img, sum, sqsum, CV_32F, CV_64F);
    EXPECT_TRUE(sameAsMat(d32f, sum));
    EXPECT_TRUE(sameAsMat(q64f, sqsum));

    cv::Mat f;
    img.convertTo(f, CV_32F, 1.0 / 7.0, -3.0);
    ASSERT_EQ(lumiIntegral_32f_C1R(f.ptr<float>(), w * 4, d32f.data(), cols * 4, {w, h}), lumStatusOk);
    cv::integral(f, sum, CV_32F);
    EXPECT_TRUE(sameAsMat(d32f, sum));
}

// The peer's tilted sum covers, for result (X, Y), the samples of rows
// y < Y with |x - X + 1| <= Y - 1 - y: diamonds of odd width around a
// sample column, in W + 1 x H + 1 results. Ours covers diamonds of even
// width around the line between two columns, in W + 2 x H + 2 results, and
// its first and last columns copy the row above instead of summing a zero
// border. Where the samples near the left and right edges are zero the two
// meet: T[r][c] + T[r - 1][c] = P[r - 1][c] + P[r - 1][c + 1].
TEST(IntegralPeer, TiltedSumsMeetThePeersOnAZeroBorder) {
    const int inner = 200, h = 120, margin = h + 2, w = inner + 2 * margin;
    const cv::Mat scene = realisticImage(inner, h, 12);
    cv::Mat img(h, w, CV_8U, cv::Scalar(0));
    scene.copyTo(img(cv::Rect(margin, 0, inner, h)));
    cv::Mat sum, sqsum, tilted;
    cv::integral(img, sum, sqsum, tilted, CV_32S, CV_64F);
    std::vector<Lum32s> t(static_cast<size_t>(w + 2) * (h + 2));
    ASSERT_EQ(lumiTiltedIntegral_8u32s_C1R(img.data, w, t.data(), (w + 2) * 4, {w, h}, 0), lumStatusOk);
    for (int r = 2; r < h + 2; ++r)
        for (int c = 0; c + 1 <= w; ++c) {
            const int64_t ours = int64_t{t[static_cast<size_t>(r) * (w + 2) + c]} + t[static_cast<size_t>(r - 1) * (w + 2) + c];
            const int64_t peer = int64_t{tilted.at<int>(r - 1, c)} + tilted.at<int>(r - 1, c + 1);
            ASSERT_EQ(ours, peer) << "r " << r << " c " << c;
        }
}

#endif  // LUMCV_HAVE_OPENCV

}  // namespace
