// lumcv absdiff [--type 8u|16u|32f] A B OUT
#include <cstdio>

#include "tool.h"

namespace tool {

// |a - b| per sample of two images of equal size and channels, in the sample
// type given (by default the wider of the two inputs').
bool absDiffImages(const Image& a0, const Image& b0, Sample type, Image& out) {
    const Image a = toSample(a0, type), b = toSample(b0, type);
    out = Image::make(a.width, a.height, a.channels, type);
    const LumiSize rowOfSamples{a.width * a.channels, a.height};
    LumStatus st = lumStatusOk;
    switch (type) {
        case Sample::U8:
            st = a.channels == 3 ? lumiAbsDiff_8u_C3R(a.data<Lum8u>(), a.step(), b.data<Lum8u>(), b.step(),
                                                      out.data<Lum8u>(), out.step(), {a.width, a.height})
                                 : lumiAbsDiff_8u_C1R(a.data<Lum8u>(), a.step(), b.data<Lum8u>(), b.step(),
                                                      out.data<Lum8u>(), out.step(), rowOfSamples);
            break;
        case Sample::U16:
            st = lumiAbsDiff_16u_C1R(a.data<Lum16u>(), a.step(), b.data<Lum16u>(), b.step(), out.data<Lum16u>(),
                                     out.step(), rowOfSamples);
            break;
        case Sample::F32:
            st = lumiAbsDiff_32f_C1R(a.data<Lum32f>(), a.step(), b.data<Lum32f>(), b.step(), out.data<Lum32f>(),
                                     out.step(), rowOfSamples);
            break;
    }
    return checkStatus(st, "absolute difference");
}

namespace {

bool parseSample(const std::string& s, Sample& out) {
    if (s == "8u") out = Sample::U8;
    else if (s == "16u") out = Sample::U16;
    else if (s == "32f") out = Sample::F32;
    else {
        std::fprintf(stderr, "lumcv: unknown sample type '%s' (8u, 16u or 32f)\n", s.c_str());
        return false;
    }
    return true;
}

int runAbsDiff(const Args& argsIn) {
    Args args = argsIn;
    bool typeGiven = false;
    Sample type = Sample::U8;
    if (args.size() >= 2 && args[0] == "--type") {
        if (!parseSample(args[1], type)) return kExitUsage;
        typeGiven = true;
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.size() != 3) return usageError("usage: lumcv absdiff [--type 8u|16u|32f] A B OUT");
    Image a, b;
    std::string err;
    if (!readImage(args[0], a, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", args[0].c_str(), err.c_str());
        return kExitIo;
    }
    if (!readImage(args[1], b, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", args[1].c_str(), err.c_str());
        return kExitIo;
    }
    if (a.width != b.width || a.height != b.height || a.channels != b.channels) {
        std::fprintf(stderr, "lumcv: '%s' is %dx%d with %d channels but '%s' is %dx%d with %d channels\n",
                     args[0].c_str(), a.width, a.height, a.channels, args[1].c_str(), b.width, b.height, b.channels);
        return kExitIo;
    }
    if (!typeGiven) type = (a.sample == Sample::U16 || b.sample == Sample::U16) ? Sample::U16 : Sample::U8;
    Image out;
    if (!absDiffImages(a, b, type, out)) return kExitLibrary;
    if (!writeImage(args[2], out, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", args[2].c_str(), err.c_str());
        return kExitIo;
    }
    return 0;
}

const bool registered = registerCommand(
    {"absdiff", "[--type 8u|16u|32f] A B OUT", "absolute difference of two images of equal size", runAbsDiff});

}  // namespace
}  // namespace tool
