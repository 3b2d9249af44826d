// lumcv mhi [--threshold T] [--duration D] FRAME1 FRAME2 [FRAME...] OUT
// lumcv average [--alpha A] FRAME... OUT
// and the demo step of the accumulators and the motion history.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {
namespace {

bool endsWith(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// Reads every frame; all must have the size (and, where asked, the channels)
// of the first.
bool readFrames(const Args& paths, bool sameChannels, std::vector<Image>& frames) {
    for (const std::string& p : paths) {
        Image img;
        std::string err;
        if (!readImage(p, img, err)) {
            std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", p.c_str(), err.c_str());
            return false;
        }
        if (!frames.empty()) {
            const Image& f = frames.front();
            if (img.width != f.width || img.height != f.height || (sameChannels && img.channels != f.channels)) {
                std::fprintf(stderr, "lumcv: '%s' is %dx%d with %d channels but '%s' is %dx%d with %d channels\n",
                             p.c_str(), img.width, img.height, img.channels, paths.front().c_str(), f.width, f.height,
                             f.channels);
                return false;
            }
        }
        frames.push_back(std::move(img));
    }
    return true;
}

Image gray8(const Image& img) {
    const Image g = img.channels >= 3 ? toGray(img) : img;
    return toSample(g, Sample::U8);
}

bool save(const std::string& path, const Image& img) {
    std::string err;
    if (!writeImage(path, img, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", path.c_str(), err.c_str());
        return false;
    }
    return true;
}

// An option that no command knows, left at the front of the arguments.
bool unknownOption(const Args& args) {
    if (args.empty() || args[0].size() < 2 || args[0].compare(0, 2, "--") != 0) return false;
    std::fprintf(stderr, "lumcv: unknown option '%s'\n", args[0].c_str());
    return true;
}

// Takes "--name value" options off the front of the arguments.
bool takeFloatOption(Args& args, const char* name, float& value, bool& given) {
    while (args.size() >= 2 && args[0] == name) {
        if (!parseFloat(args[1], value)) return false;
        given = true;
        args.erase(args.begin(), args.begin() + 2);
    }
    return true;
}

// ------------------------------------------------------------ motion history

// One step of the motion history: the silhouette is where the two gray frames
// differ by more than `threshold`; it is stamped with `timestamp` and older
// stamps fade out after `duration`.
bool motionHistoryStep(const Image& prev, const Image& cur, int threshold, float timestamp, float duration, Image& mhi) {
    Image diff = Image::make(cur.width, cur.height, 1, Sample::U8);
    if (!checkStatus(lumiAbsDiff_8u_C1R(prev.data<Lum8u>(), prev.step(), cur.data<Lum8u>(), cur.step(),
                                        diff.data<Lum8u>(), diff.step(), {cur.width, cur.height}),
                     "frame difference"))
        return false;
    for (uint8_t& v : diff.bytes) v = v > threshold ? 1 : 0;
    return checkStatus(lumiUpdateMotionHistory_8u32f_C1IR(diff.data<Lum8u>(), diff.step(), mhi.data<Lum32f>(),
                                                          mhi.step(), {cur.width, cur.height}, timestamp, duration),
                       "motion history");
}

// The history as 8 bits: 0 where no motion is remembered, the stamps of the
// last `duration` mapped onto 1..255, the newest brightest.
Image motionHistoryTo8u(const Image& mhi, float timestamp, float duration) {
    Image out = Image::make(mhi.width, mhi.height, 1, Sample::U8);
    const float lo = timestamp - duration;
    for (size_t i = 0; i < out.bytes.size(); ++i) {
        const float v = mhi.data<float>()[i];
        if (!(v > 0.0f) || v < lo) {
            out.bytes[i] = 0;
            continue;
        }
        const float scaled = duration > 0.0f ? 1.0f + 254.0f * (v - lo) / duration : 255.0f;
        out.bytes[i] = static_cast<uint8_t>(std::lround(std::clamp(scaled, 1.0f, 255.0f)));
    }
    return out;
}

int runMotionHistory(const Args& argsIn) {
    const char* usage = "usage: lumcv mhi [--threshold T] [--duration D] FRAME1 FRAME2 [FRAME...] OUT";
    Args args = argsIn;
    int threshold = 30;
    float duration = 0.0f;
    bool durationGiven = false;
    for (bool more = true; more;) {
        more = false;
        if (args.size() >= 2 && args[0] == "--threshold") {
            if (!parseInt(args[1], threshold)) return kExitUsage;
            if (threshold < 0 || threshold > 255) return usageError("--threshold must lie in 0..255");
            args.erase(args.begin(), args.begin() + 2);
            more = true;
        }
        const size_t before = args.size();
        if (!takeFloatOption(args, "--duration", duration, durationGiven)) return kExitUsage;
        more = more || args.size() != before;
    }
    if (unknownOption(args)) return kExitUsage;
    if (args.size() < 3) return usageError(usage);
    const std::string outPath = args.back();
    args.pop_back();
    const int steps = static_cast<int>(args.size()) - 1;
    if (!durationGiven) duration = static_cast<float>(steps);
    if (!(duration >= 0.0f)) return usageError("--duration must be 0 or more");
    std::vector<Image> frames;
    if (!readFrames(args, false, frames)) return kExitIo;
    Image prev = gray8(frames[0]);
    Image mhi = Image::make(prev.width, prev.height, 1, Sample::F32);
    for (int i = 1; i <= steps; ++i) {
        Image cur = gray8(frames[static_cast<size_t>(i)]);
        if (!motionHistoryStep(prev, cur, threshold, static_cast<float>(i), duration, mhi)) return kExitLibrary;
        prev = std::move(cur);
    }
    const Image out = endsWith(outPath, ".pfm") ? mhi : motionHistoryTo8u(mhi, static_cast<float>(steps), duration);
    return save(outPath, out) ? 0 : kExitIo;
}

// ------------------------------------------------------------ running average

// acc = fma(alpha, frame - acc, acc) over every sample of the frame; the
// three or four channels are a per-sample operation, run as one channel on
// rows that many times as wide.
bool runningAverageStep(const Image& frame, float alpha, Image& acc) {
    const LumiSize rowOfSamples{frame.width * frame.channels, frame.height};
    if (frame.sample == Sample::U8)
        return checkStatus(lumiAddWeighted_8u32f_C1IR(frame.data<Lum8u>(), frame.step(), acc.data<Lum32f>(), acc.step(),
                                                      rowOfSamples, alpha),
                           "running average");
    if (frame.sample == Sample::U16)
        return checkStatus(lumiAddWeighted_16u32f_C1IR(frame.data<Lum16u>(), frame.step(), acc.data<Lum32f>(),
                                                       acc.step(), rowOfSamples, alpha),
                           "running average");
    return checkStatus(lumiAddWeighted_32f_C1IR(frame.data<Lum32f>(), frame.step(), acc.data<Lum32f>(), acc.step(),
                                                rowOfSamples, alpha),
                       "running average");
}

int runAverage(const Args& argsIn) {
    const char* usage = "usage: lumcv average [--alpha A] FRAME... OUT";
    Args args = argsIn;
    float alpha = 0.0f;
    bool alphaGiven = false;
    if (!takeFloatOption(args, "--alpha", alpha, alphaGiven)) return kExitUsage;
    if (alphaGiven && !std::isfinite(alpha)) return usageError("--alpha must be a finite number");
    if (unknownOption(args)) return kExitUsage;
    if (args.size() < 2) return usageError(usage);
    const std::string outPath = args.back();
    args.pop_back();
    std::vector<Image> frames;
    if (!readFrames(args, true, frames)) return kExitIo;
    // The accumulator starts as the first frame; without --alpha the k-th
    // frame gets 1 / (k + 1), which makes the plain mean of all frames.
    Image acc = toSample(frames[0], Sample::F32);
    for (size_t k = 1; k < frames.size(); ++k) {
        const Image f = frames[k].sample == frames[0].sample ? frames[k] : toSample(frames[k], frames[0].sample);
        const float a = alphaGiven ? alpha : 1.0f / static_cast<float>(k + 1);
        if (!runningAverageStep(f, a, acc)) return kExitLibrary;
    }
    if (endsWith(outPath, ".pfm")) return save(outPath, acc) ? 0 : kExitIo;
    const float hi = frames[0].sample == Sample::U16 ? 65535.0f : 255.0f;
    return save(outPath, floatTo8u(acc, 0.0f, hi)) ? 0 : kExitIo;
}

const bool registered =
    registerCommand({"mhi", "[--threshold T] [--duration D] FRAME1 FRAME2 [FRAME...] OUT",
                     "motion history of frame differences above T (30), kept for D steps (all); 8-bit or .pfm out",
                     runMotionHistory}) &&
    registerCommand({"average", "[--alpha A] FRAME... OUT",
                     "running average of frames with weight A (by default the plain mean); 8-bit or .pfm out",
                     runAverage});

// ------------------------------------------------------------ demo

// A gray frame moved `dx` pixels to the right, the left edge repeated.
Image shiftRight(const Image& g, int dx) {
    Image out = Image::make(g.width, g.height, 1, Sample::U8);
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x)
            out.bytes[static_cast<size_t>(y) * g.width + x] = g.bytes[static_cast<size_t>(y) * g.width + std::max(x - dx, 0)];
    return out;
}

// The two demo frames and the second one moved on by 8 pixels make a short
// sequence: the history holds stamps 1 and 2. And the running average of the
// two colour frames.
bool accumulateDemoStep(DemoContext& ctx) {
    const float duration = 2.0f;
    Image mhi = Image::make(ctx.gray0.width, ctx.gray0.height, 1, Sample::F32);
    if (!motionHistoryStep(ctx.gray0, ctx.gray1, 24, 1.0f, duration, mhi)) return false;
    if (!motionHistoryStep(ctx.gray1, shiftRight(ctx.gray1, 8), 24, 2.0f, duration, mhi)) return false;
    size_t recent = 0, older = 0;
    for (size_t i = 0; i < mhi.bytes.size() / 4; ++i) {
        const float v = mhi.data<float>()[i];
        recent += v == 2.0f;
        older += v == 1.0f;
    }
    std::printf("  motion history: %zu pixels stamped 2, %zu still stamped 1\n", recent, older);
    Image acc = toSample(ctx.color0, Sample::F32);
    if (!runningAverageStep(ctx.color1, 0.5f, acc)) return false;
    return saveDemoImage(ctx, "motion_history.png", motionHistoryTo8u(mhi, 2.0f, duration)) &&
           saveDemoImage(ctx, "running_average.png", floatTo8u(acc, 0.0f, 255.0f));
}

const bool demoRegistered =
    registerDemoStep({200, "motion history and running average of the two frames", accumulateDemoStep});

}  // namespace
}  // namespace tool
