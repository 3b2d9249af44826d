// lumcv stats IMAGE [--mask MASK] [--coi N] [--diff OTHER]
// Mean, standard deviation, extremes with positions and the Inf, L1 and L2
// norms of an image (each channel of a colour image, or the one --coi
// names), over the pixels a mask selects; with --diff also the norms of the
// difference to a second image and relative to it. The demo step writes the
// statistics of the two demo frames and of their difference.
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {
namespace {

// ------------------------------------------------------------ the exports by sample type

template <class T>
struct StatsFns;

template <class T>
struct StatsFnTypes {
    using MeanC1 = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*);
    using MeanC3 = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, int, Lum64f*);
    using StdC1 = LumStatus (*)(const T*, int, LumiSize, Lum64f*, Lum64f*);
    using StdC3 = LumStatus (*)(const T*, int, LumiSize, int, Lum64f*, Lum64f*);
    using StdC1M = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, Lum64f*, Lum64f*);
    using StdC3M = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, int, Lum64f*, Lum64f*);
    using MinMaxC1 = LumStatus (*)(const T*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*);
    using MinMaxC3 = LumStatus (*)(const T*, int, LumiSize, int, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*);
    using MinMaxC1M = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, Lum32f*, Lum32f*, LumiPoint*,
                                    LumiPoint*);
    using MinMaxC3M = LumStatus (*)(const T*, int, const Lum8u*, int, LumiSize, int, Lum32f*, Lum32f*, LumiPoint*,
                                    LumiPoint*);
    using TwoC1 = LumStatus (*)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, Lum64f*);
    using TwoC3 = LumStatus (*)(const T*, int, const T*, int, const Lum8u*, int, LumiSize, int, Lum64f*);
};

#define TOOL_STATS_FNS(T, t)                                                                                           \
    template <>                                                                                                        \
    struct StatsFns<T> : StatsFnTypes<T> {                                                                             \
        static constexpr MeanC1 meanC1 = lumiMean_##t##_C1MR;                                                          \
        static constexpr MeanC3 meanC3 = lumiMean_##t##_C3CMR;                                                         \
        static constexpr StdC1 stdC1 = lumiMean_StdDev_##t##_C1R;                                                      \
        static constexpr StdC3 stdC3 = lumiMean_StdDev_##t##_C3CR;                                                     \
        static constexpr StdC1M stdC1M = lumiMean_StdDev_##t##_C1MR;                                                   \
        static constexpr StdC3M stdC3M = lumiMean_StdDev_##t##_C3CMR;                                                  \
        static constexpr MinMaxC1 minMaxC1 = lumiMinMaxIndx_##t##_C1R;                                                 \
        static constexpr MinMaxC3 minMaxC3 = lumiMinMaxIndx_##t##_C3CR;                                                \
        static constexpr MinMaxC1M minMaxC1M = lumiMinMaxIndx_##t##_C1MR;                                              \
        static constexpr MinMaxC3M minMaxC3M = lumiMinMaxIndx_##t##_C3CMR;                                             \
        static constexpr MeanC1 normC1[3] = {lumiNorm_Inf_##t##_C1MR, lumiNorm_L1_##t##_C1MR, lumiNorm_L2_##t##_C1MR}; \
        static constexpr MeanC3 normC3[3] = {lumiNorm_Inf_##t##_C3CMR, lumiNorm_L1_##t##_C3CMR,                        \
                                             lumiNorm_L2_##t##_C3CMR};                                                 \
        static constexpr TwoC1 diffC1[3] = {lumiNormDiff_Inf_##t##_C1MR, lumiNormDiff_L1_##t##_C1MR,                   \
                                            lumiNormDiff_L2_##t##_C1MR};                                               \
        static constexpr TwoC3 diffC3[3] = {lumiNormDiff_Inf_##t##_C3CMR, lumiNormDiff_L1_##t##_C3CMR,                 \
                                            lumiNormDiff_L2_##t##_C3CMR};                                              \
        static constexpr TwoC1 relC1[3] = {lumiNormRel_Inf_##t##_C1MR, lumiNormRel_L1_##t##_C1MR,                      \
                                           lumiNormRel_L2_##t##_C1MR};                                                 \
        static constexpr TwoC3 relC3[3] = {lumiNormRel_Inf_##t##_C3CMR, lumiNormRel_L1_##t##_C3CMR,                    \
                                           lumiNormRel_L2_##t##_C3CMR};                                                \
    };
TOOL_STATS_FNS(Lum8u, 8u)
TOOL_STATS_FNS(Lum16u, 16u)
TOOL_STATS_FNS(Lum32f, 32f)
#undef TOOL_STATS_FNS

// ------------------------------------------------------------ one channel

struct ChannelStats {
    double mean = 0, stdDev = 0;
    Lum32f minVal = 0, maxVal = 0;
    LumiPoint minIndex{0, 0}, maxIndex{0, 0};
    double norm[3] = {};
    bool hasDiff = false;
    double diff[3] = {}, rel[3] = {};
    LumStatus minMaxStatus = lumStatusOk, relStatus[3] = {};
};

const char* const kNormNames[3] = {"Inf", "L1", "L2"};

// The statistics of channel coi (1..3) of a three-channel image, or of a
// one-channel image (coi ignored). `mask` and `other` may be null; the norms
// run over an all-selecting mask when none is given.
template <class T>
bool channelStats(const Image& img, const Image* mask, const Image* other, int coi, ChannelStats& s) {
    using F = StatsFns<T>;
    const T* src = img.data<T>();
    const int step = img.step();
    const LumiSize roi{img.width, img.height};
    const bool c1 = img.channels == 1;
    std::vector<Lum8u> allOnes;
    const Lum8u* m = nullptr;
    int ms = 0;
    if (mask != nullptr) {
        m = mask->data<Lum8u>();
        ms = mask->step();
    } else {
        allOnes.assign(static_cast<size_t>(img.width) * img.height, 1);
        m = allOnes.data();
        ms = img.width;
    }
    const std::string where = c1 ? "" : " of channel " + std::to_string(coi);
    if (mask != nullptr) {
        if (!checkStatus(
                c1 ? F::meanC1(src, step, m, ms, roi, &s.mean) : F::meanC3(src, step, m, ms, roi, coi, &s.mean),
                "mean" + where))
            return false;
        Lum64f meanAgain = 0;
        if (!checkStatus(c1 ? F::stdC1M(src, step, m, ms, roi, &meanAgain, &s.stdDev)
                            : F::stdC3M(src, step, m, ms, roi, coi, &meanAgain, &s.stdDev),
                         "standard deviation" + where))
            return false;
        s.minMaxStatus = c1 ? F::minMaxC1M(src, step, m, ms, roi, &s.minVal, &s.maxVal, &s.minIndex, &s.maxIndex)
                            : F::minMaxC3M(src, step, m, ms, roi, coi, &s.minVal, &s.maxVal, &s.minIndex, &s.maxIndex);
    } else {
        if (!checkStatus(
                c1 ? F::stdC1(src, step, roi, &s.mean, &s.stdDev) : F::stdC3(src, step, roi, coi, &s.mean, &s.stdDev),
                "mean and standard deviation" + where))
            return false;
        s.minMaxStatus = c1 ? F::minMaxC1(src, step, roi, &s.minVal, &s.maxVal, &s.minIndex, &s.maxIndex)
                            : F::minMaxC3(src, step, roi, coi, &s.minVal, &s.maxVal, &s.minIndex, &s.maxIndex);
    }
    if (s.minMaxStatus < 0 && !checkStatus(s.minMaxStatus, "extremes" + where)) return false;
    for (int k = 0; k < 3; ++k) {
        const std::string what = std::string("norm ") + kNormNames[k] + where;
        if (!checkStatus(c1 ? F::normC1[k](src, step, m, ms, roi, &s.norm[k])
                            : F::normC3[k](src, step, m, ms, roi, coi, &s.norm[k]),
                         what))
            return false;
    }
    if (other == nullptr) return true;
    s.hasDiff = true;
    const T* src2 = other->data<T>();
    const int step2 = other->step();
    for (int k = 0; k < 3; ++k) {
        if (!checkStatus(c1 ? F::diffC1[k](src, step, src2, step2, m, ms, roi, &s.diff[k])
                            : F::diffC3[k](src, step, src2, step2, m, ms, roi, coi, &s.diff[k]),
                         std::string("difference norm ") + kNormNames[k] + where))
            return false;
        // A zero denominator is reported in the table, not as a warning.
        s.relStatus[k] = c1 ? F::relC1[k](src, step, src2, step2, m, ms, roi, &s.rel[k])
                            : F::relC3[k](src, step, src2, step2, m, ms, roi, coi, &s.rel[k]);
        if (s.relStatus[k] < 0 && !checkStatus(s.relStatus[k], std::string("relative norm ") + kNormNames[k] + where))
            return false;
    }
    return true;
}

bool channelStatsOf(const Image& img, const Image* mask, const Image* other, int coi, ChannelStats& s) {
    switch (img.sample) {
        case Sample::U8:
            return channelStats<Lum8u>(img, mask, other, coi, s);
        case Sample::U16:
            return channelStats<Lum16u>(img, mask, other, coi, s);
        default:
            return channelStats<Lum32f>(img, mask, other, coi, s);
    }
}

std::string formatChannel(const ChannelStats& s) {
    std::ostringstream o;
    o.precision(10);
    o << "  mean      " << s.mean << "\n";
    o << "  std dev   " << s.stdDev << "\n";
    o << "  min       " << s.minVal << " at (" << s.minIndex.x << ", " << s.minIndex.y << ")\n";
    o << "  max       " << s.maxVal << " at (" << s.maxIndex.x << ", " << s.maxIndex.y << ")\n";
    if (s.minMaxStatus == lumStatusEmptyMask) o << "  (the mask selects no pixel)\n";
    o << "  norm      Inf " << s.norm[0] << "  L1 " << s.norm[1] << "  L2 " << s.norm[2] << "\n";
    if (s.hasDiff) {
        o << "  diff norm Inf " << s.diff[0] << "  L1 " << s.diff[1] << "  L2 " << s.diff[2] << "\n";
        o << "  rel norm ";
        for (int k = 0; k < 3; ++k) {
            o << " " << kNormNames[k] << " " << s.rel[k];
            if (s.relStatus[k] == lumStatusZeroDenominator) o << " (zero denominator)";
        }
        o << "\n";
    }
    return o.str();
}

// Statistics of every channel asked for (coi 0: all), as text.
bool statisticsText(const Image& img, const Image* mask, const Image* other, int coi, std::string& out) {
    std::ostringstream o;
    const int first = img.channels == 1 ? 1 : (coi == 0 ? 1 : coi);
    const int last = img.channels == 1 ? 1 : (coi == 0 ? 3 : coi);
    for (int c = first; c <= last; ++c) {
        ChannelStats s;
        if (!channelStatsOf(img, mask, other, c, s)) return false;
        if (img.channels == 3) o << "channel " << c << ":\n";
        o << formatChannel(s);
    }
    out = o.str();
    return true;
}

// Drops an alpha channel: 2 channels become 1, 4 become 3.
Image withoutAlpha(const Image& img) {
    if (img.channels != 2 && img.channels != 4) return img;
    Image out = Image::make(img.width, img.height, img.channels - 1, img.sample);
    const size_t s = static_cast<size_t>(sampleBytes(img.sample));
    const size_t pixels = static_cast<size_t>(img.width) * img.height;
    for (size_t p = 0; p < pixels; ++p)
        for (int c = 0; c < out.channels; ++c)
            for (size_t b = 0; b < s; ++b)
                out.bytes[(p * out.channels + c) * s + b] = img.bytes[(p * img.channels + c) * s + b];
    return out;
}

bool readOrSay(const std::string& path, Image& img) {
    std::string err;
    if (readImage(path, img, err)) return true;
    std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", path.c_str(), err.c_str());
    return false;
}

const char* sampleName(Sample s) { return s == Sample::U8 ? "8u" : s == Sample::U16 ? "16u" : "32f"; }

int runStats(const Args& args) {
    const char* usage = "usage: lumcv stats IMAGE [--mask MASK] [--coi N] [--diff OTHER] [--type 8u|16u|32f]";
    std::string imagePath, maskPath, diffPath, typeName;
    int coi = 0;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--mask" && hasValue)
            maskPath = args[++i];
        else if (a == "--diff" && hasValue)
            diffPath = args[++i];
        else if (a == "--type" && hasValue)
            typeName = args[++i];
        else if (a == "--coi" && hasValue) {
            if (!parseInt(args[++i], coi)) return kExitUsage;
            if (coi < 1 || coi > 3) return usageError("--coi takes 1, 2 or 3");
        } else if (!a.empty() && a[0] == '-') {
            return usageError(std::string("unknown or incomplete option '") + a + "'\n" + usage);
        } else if (imagePath.empty()) {
            imagePath = a;
        } else {
            return usageError(usage);
        }
    }
    if (imagePath.empty()) return usageError(usage);
    Image img, mask, other;
    if (!readOrSay(imagePath, img)) return kExitIo;
    img = withoutAlpha(img);
    if (!typeName.empty()) {
        if (typeName == "8u")
            img = toSample(img, Sample::U8);
        else if (typeName == "16u")
            img = toSample(img, Sample::U16);
        else if (typeName == "32f")
            img = toSample(img, Sample::F32);
        else
            return usageError("unknown sample type '" + typeName + "' (8u, 16u or 32f)");
    }
    if (img.channels == 1 && coi > 1) return usageError("--coi " + std::to_string(coi) + " needs a colour image");
    if (!maskPath.empty()) {
        if (!readOrSay(maskPath, mask)) return kExitIo;
        if (mask.sample != Sample::U8 || mask.channels != 1) {
            std::fprintf(stderr, "lumcv: the mask '%s' must be 8-bit with one channel; it has %d channel(s) of %s\n",
                         maskPath.c_str(), mask.channels, sampleName(mask.sample));
            return kExitIo;
        }
        if (mask.width != img.width || mask.height != img.height) {
            std::fprintf(stderr, "lumcv: the mask '%s' is %dx%d but '%s' is %dx%d\n", maskPath.c_str(), mask.width,
                         mask.height, imagePath.c_str(), img.width, img.height);
            return kExitIo;
        }
    }
    if (!diffPath.empty()) {
        if (!readOrSay(diffPath, other)) return kExitIo;
        other = toSample(withoutAlpha(other), img.sample);
        if (other.width != img.width || other.height != img.height || other.channels != img.channels) {
            std::fprintf(stderr, "lumcv: '%s' is %dx%d with %d channels but '%s' is %dx%d with %d channels\n",
                         diffPath.c_str(), other.width, other.height, other.channels, imagePath.c_str(), img.width,
                         img.height, img.channels);
            return kExitIo;
        }
    }
    std::printf("%s: %dx%d, %d channel(s) of %s%s%s\n", imagePath.c_str(), img.width, img.height, img.channels,
                sampleName(img.sample), maskPath.empty() ? "" : ", mask ", maskPath.c_str());
    std::string text;
    if (!statisticsText(img, maskPath.empty() ? nullptr : &mask, diffPath.empty() ? nullptr : &other, coi, text))
        return kExitLibrary;
    std::fputs(text.c_str(), stdout);
    return 0;
}

const bool registered =
    registerCommand({"stats", "IMAGE [--mask MASK] [--coi N] [--diff OTHER] [--type 8u|16u|32f]",
                     "mean, deviation, extremes and norms of an image, optionally masked", runStats});

// ------------------------------------------------------------ demo

// Statistics of both frames, of the first over the pixels that moved, and of
// the difference between them; printed in short and written to stats.txt.
bool statsStep(DemoContext& ctx) {
    Image moved;
    if (!absDiffImages(ctx.gray0, ctx.gray1, Sample::U8, moved)) return false;
    for (uint8_t& v : moved.bytes) v = v > 24 ? 255 : 0;
    std::string gray0, color0, movedText;
    if (!statisticsText(ctx.gray0, nullptr, &ctx.gray1, 0, gray0)) return false;
    if (!statisticsText(ctx.color0, nullptr, &ctx.color1, 0, color0)) return false;
    if (!statisticsText(ctx.gray0, &moved, &ctx.gray1, 0, movedText)) return false;
    const Image g16 = toSample(ctx.gray0, Sample::U16), f32 = toSample(ctx.gray0, Sample::F32);
    std::string s16, s32;
    if (!statisticsText(g16, nullptr, nullptr, 0, s16) || !statisticsText(f32, &moved, nullptr, 0, s32)) return false;
    const std::string text = "frame 0, gray 8u, against frame 1:\n" + gray0 +
                             "\nframe 0, colour 8u, against frame 1:\n" + color0 +
                             "\nframe 0, gray 8u, where the frames differ by more than 24:\n" + movedText +
                             "\nframe 0, gray 16u:\n" + s16 + "\nframe 0, gray 32f, where the frames differ:\n" + s32;
    ChannelStats g;
    if (!channelStatsOf(ctx.gray0, &moved, &ctx.gray1, 1, g)) return false;
    std::printf("  moving pixels of frame 0: mean %.3f, std dev %.3f, min %g at (%d, %d), max %g at (%d, %d)\n", g.mean,
                g.stdDev, g.minVal, g.minIndex.x, g.minIndex.y, g.maxVal, g.maxIndex.x, g.maxIndex.y);
    std::printf("  difference there: L1 %.0f, L2 %.1f, relative L2 %.4f\n", g.diff[1], g.diff[2], g.rel[2]);
    const std::string path = ctx.path("stats.txt");
    FILE* f = std::fopen(path.c_str(), "w");
    bool ok = f != nullptr;
    if (ok) {
        ok = std::fputs(text.c_str(), f) >= 0;
        ok = std::fclose(f) == 0 && ok;
    }
    if (!ok) {
        std::fprintf(stderr, "lumcv: cannot write '%s'\n", path.c_str());
        return false;
    }
    std::printf("  wrote %s\n", path.c_str());
    return true;
}

const bool demoRegistered = registerDemoStep({210, "statistics of the frames and their difference", statsStep});

}  // namespace
}  // namespace tool
