// Shared pieces of the statistics and norm tests: exports with their names
// (so that every call is counted by the allocation guard), test data and
// masks of several kinds, and shape sweeps.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "lumcv.h"
#include "support/image.h"
#include "support/noalloc.h"
#include "support/rng.h"

namespace statstest {

using lumtest::GuardedImage;
using lumtest::Layout;
using lumtest::Rng;

// An export and its name.
template <class F>
struct Named {
    F fn;
    const char* name;
};
#define STATS_NAMED(f) \
    ::statstest::Named<decltype(&f)> { &f, #f }

// Calls an export under the allocation guard.
template <class F, class... A>
LumStatus noAlloc(const Named<F>& f, A... args) {
    lumtest::NoAllocScope scope(f.name);
    const LumStatus st = f.fn(args...);
    scope.finish();
    return st;
}

template <class T>
const char* typeName() {
    if constexpr (sizeof(T) == 1)
        return "8u";
    else if constexpr (sizeof(T) == 2)
        return "16u";
    else
        return "32f";
}

// ------------------------------------------------------------ data

enum class Data { Random, Constant, NarrowRange, NearConstantLarge, Integers, Count };

inline float wideFloat(Rng& rng) {
    // Mixed magnitudes and signs, full mantissas: sums round in every lane.
    const double m = rng.uniformReal(-1.0, 1.0);
    return static_cast<float>(std::ldexp(m, rng.uniform(-8, 16)));
}

template <class T>
T sampleOf(Data d, Rng& rng, T constant) {
    if constexpr (std::is_same_v<T, float>) {
        switch (d) {
            case Data::Random:
                return wideFloat(rng);
            case Data::Constant:
                return constant;
            case Data::NarrowRange:
                return static_cast<float>(rng.uniformReal(-1.0, 1.0));
            case Data::NearConstantLarge:
                return 1000.0f + static_cast<float>(rng.uniformReal(-1e-3, 1e-3));
            default:
                return static_cast<float>(rng.uniform(-300, 300));
        }
    } else {
        const int hi = std::numeric_limits<T>::max();
        switch (d) {
            case Data::Random:
                return static_cast<T>(rng.uniform(0, hi));
            case Data::Constant:
                return constant;
            case Data::NarrowRange:
                return static_cast<T>(rng.uniform(hi - 3, hi));
            case Data::NearConstantLarge:
                return static_cast<T>(rng.uniform(hi / 2, hi / 2 + 2));
            default:
                return static_cast<T>(rng.uniform(0, 9));
        }
    }
}

template <class T>
void fillData(GuardedImage<T>& img, Data d, Rng& rng) {
    const T constant = sampleOf<T>(Data::Random, rng, T(0));
    img.fill([&](int, int, int) { return sampleOf<T>(d, rng, constant); });
}

enum class MaskKind { Empty, Full, Half, Sparse, FirstOnly, Count };

inline void fillMask(GuardedImage<Lum8u>& m, MaskKind k, Rng& rng) {
    m.fill([&](int x, int y, int) -> Lum8u {
        const Lum8u on = static_cast<Lum8u>(rng.uniform(1, 255));
        switch (k) {
            case MaskKind::Empty:
                return 0;
            case MaskKind::Full:
                return on;
            case MaskKind::Half:
                return rng.chance(0.5) ? on : 0;
            case MaskKind::Sparse:
                return rng.chance(0.05) ? on : 0;
            default:
                return x == 0 && y == 0 ? on : 0;
        }
    });
}

// Widths to sweep for a sample type: past two full groups and a partial one.
template <class T>
int maxSweepWidth() {
    return sizeof(T) == 1 ? 100 : 70;
}

inline bool sameDouble(double a, double b) {
    uint64_t x, y;
    std::memcpy(&x, &a, 8);
    std::memcpy(&y, &b, 8);
    return x == y;
}
inline bool sameFloat(float a, float b) {
    uint32_t x, y;
    std::memcpy(&x, &a, 4);
    std::memcpy(&y, &b, 4);
    return x == y;
}

#define EXPECT_SAME_DOUBLE(got, want)               \
    EXPECT_TRUE(::statstest::sameDouble(got, want)) \
        << "got " << std::hexfloat << (got) << " want " << (want) << std::defaultfloat

// ------------------------------------------------------------ order of checks

// Arguments of one row of a check table; pointers are null or valid buffers
// of non-zero samples, and `outNull` asks for a null required output.
struct CheckArgs {
    const void* src;
    int srcStep;
    const void* src2;
    int src2Step;
    const Lum8u* mask;
    int maskStep;
    LumiSize roi;
    int coi;
    bool outNull;
};

struct MemberShape {
    int sampleSize;
    int channels;  // 1, or 3 for a channel of interest
    bool twoImages;
    bool masked;
    bool requiredOut;
    bool maskAfterAlign;  // the mask's step tested after the sample steps' alignment
};

using Caller = std::function<LumStatus(const CheckArgs&)>;

// Arguments built from valid ones by named changes.
class ArgsFrom {
public:
    explicit ArgsFrom(const CheckArgs& good) : a_(good) {}
    ArgsFrom& src(const void* p) { return set(a_.src, p); }
    ArgsFrom& src2(const void* p) { return set(a_.src2, p); }
    ArgsFrom& mask(const Lum8u* p) { return set(a_.mask, p); }
    ArgsFrom& nullOut() { return set(a_.outNull, true); }
    ArgsFrom& roi(int w, int h) { return set(a_.roi, LumiSize{w, h}); }
    ArgsFrom& srcStep(int v) { return set(a_.srcStep, v); }
    ArgsFrom& src2Step(int v) { return set(a_.src2Step, v); }
    ArgsFrom& maskStep(int v) { return set(a_.maskStep, v); }
    ArgsFrom& coi(int v) { return set(a_.coi, v); }
    operator CheckArgs() const { return a_; }

private:
    template <class F, class V>
    ArgsFrom& set(F& field, V v) {
        field = v;
        return *this;
    }
    CheckArgs a_;
};

// One row per check, each failing that check and passing all earlier ones
// (while checks after it fail as well), and rows that pass all.
inline void runCheckTable(const MemberShape& m, const Caller& call, LumStatus okStatus = lumStatusOk) {
    alignas(64) static uint8_t buf[4096];
    alignas(64) static uint8_t ones[4096];
    for (size_t i = 0; i < sizeof buf; ++i) buf[i] = 0x3f;  // non-zero samples of every type
    for (size_t i = 0; i < sizeof ones; ++i) ones[i] = 1;
    const int w = 4, h = 2;
    const int row = w * m.channels * m.sampleSize;
    const bool wide = m.sampleSize > 1;
    const int badCoi = m.channels == 3 ? 0 : 1;
    CheckArgs good{};
    good.src = buf;
    good.srcStep = row;
    good.src2 = m.twoImages ? buf + 1024 : nullptr;
    good.src2Step = row;
    good.mask = m.masked ? ones : nullptr;
    good.maskStep = w;
    good.roi = {w, h};
    good.coi = 2;
    // Everything behind the pointers wrong as well; everything behind the ROI.
    const auto pointersOnly = [&] {
        return ArgsFrom(good).roi(0, -1).srcStep(-1).src2Step(-1).maskStep(-1).coi(badCoi);
    };
    const auto roiOnly = [&] { return ArgsFrom(good).srcStep(row - 1).coi(badCoi); };
    struct Row {
        const char* what;
        CheckArgs a;
        LumStatus want;
    };
    std::vector<Row> rows = {
        {"null src", pointersOnly().src(nullptr), lumStatusNullPointer},
        {"width 0", roiOnly().roi(0, h), lumStatusBadSize},
        {"height 0", roiOnly().roi(w, 0), lumStatusBadSize},
        {"width -1", roiOnly().roi(-1, h), lumStatusBadSize},
        {"src step short", ArgsFrom(good).srcStep(row - 1).coi(badCoi), lumStatusBadStep},
        {"src step negative", ArgsFrom(good).srcStep(-row), lumStatusBadStep},
        {"all valid", good, okStatus},
    };
    if (m.twoImages) {
        rows.push_back({"null src2", pointersOnly().src2(nullptr), lumStatusNullPointer});
        rows.push_back({"src2 step short", ArgsFrom(good).src2Step(row - 1).coi(badCoi), lumStatusBadStep});
    }
    if (m.masked) {
        rows.push_back({"null mask", pointersOnly().mask(nullptr), lumStatusNullPointer});
        rows.push_back({"mask step short", ArgsFrom(good).maskStep(w - 1).coi(badCoi), lumStatusBadStep});
        rows.push_back({"mask step odd is fine", ArgsFrom(good).maskStep(w + 1), okStatus});
        if (wide)
            rows.push_back({"mask step short and src step misaligned", ArgsFrom(good).maskStep(w - 1).srcStep(row + 1),
                            m.maskAfterAlign ? lumStatusStepNotAligned : lumStatusBadStep});
    }
    if (m.requiredOut) rows.push_back({"null output", pointersOnly().nullOut(), lumStatusNullPointer});
    if (wide) {
        rows.push_back({"src step misaligned", ArgsFrom(good).srcStep(row + 1).coi(badCoi), lumStatusStepNotAligned});
        if (m.twoImages)
            rows.push_back(
                {"src2 step misaligned", ArgsFrom(good).src2Step(row + 1).coi(badCoi), lumStatusStepNotAligned});
    } else {
        rows.push_back({"odd 8u step is fine", ArgsFrom(good).srcStep(row + 1), okStatus});
    }
    if (m.channels == 3) {
        rows.push_back({"coi 0", ArgsFrom(good).coi(0), lumStatusBadChannelOfInterest});
        rows.push_back({"coi 4", ArgsFrom(good).coi(4), lumStatusBadChannelOfInterest});
        rows.push_back({"coi -1", ArgsFrom(good).coi(-1), lumStatusBadChannelOfInterest});
        rows.push_back({"coi 1", ArgsFrom(good).coi(1), okStatus});
        rows.push_back({"coi 3", ArgsFrom(good).coi(3), okStatus});
    }
    for (const Row& r : rows) EXPECT_EQ(call(r.a), r.want) << r.what;
}

}  // namespace statstest
