// lumcv gaussian IMAGE OUT --ksize K --sigma S [--border replicate|mirror|constant[:V]]
// and the Gaussian demo step.
#include <cstdio>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {
namespace {

struct GaussianOptions {
    int ksize = 0;
    float sigma = 0.0f;
    int border = 1;       // replicate
    float value = 0.0f;   // constant border value, in sample units
};

template <class T>
using Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

template <class T>
bool runFilter(const Image& in, Image& out, const GaussianOptions& o, LumDataType type, Fn<T> c1, Fn<T> c3) {
    const int c = in.channels;
    int specSize = 0, initSize = 0, bufferSize = 0;
    if (!checkStatus(lumiFilterGaussianGetSpecSize_L(o.ksize, type, c, &specSize, &initSize), "Gaussian spec size"))
        return false;
    if (!checkStatus(lumiFilterGaussianGetBufferSize_L(in.width, in.height, o.ksize, type, o.border, c, &bufferSize),
                     "Gaussian buffer size"))
        return false;
    std::vector<Lum8u> spec(specSize), init(initSize), buffer(bufferSize);
    if (!checkStatus(lumiFilterGaussianInit_L({in.width, in.height}, o.ksize, o.sigma, o.border, type, c, spec.data(),
                                              init.data()),
                     "Gaussian kernel"))
        return false;
    out = Image::make(in.width, in.height, c, in.sample);
    T value[3];
    for (T& v : value) v = static_cast<T>(o.value);
    return checkStatus((c == 3 ? c3 : c1)(in.data<T>(), in.step(), out.data<T>(), out.step(), {in.width, in.height},
                                          o.border, value, spec.data(), buffer.data()),
                       "Gaussian filter");
}

bool gaussianImage(const Image& in, Image& out, const GaussianOptions& o) {
    switch (in.sample) {
        case Sample::U8:
            return runFilter<Lum8u>(in, out, o, lum8u, lumiFilterGaussian_8u_C1R_L, lumiFilterGaussian_8u_C3R_L);
        case Sample::U16:
            return runFilter<Lum16u>(in, out, o, lum16u, lumiFilterGaussian_16u_C1R_L, lumiFilterGaussian_16u_C3R_L);
        case Sample::F32:
            return runFilter<Lum32f>(in, out, o, lum32f, lumiFilterGaussian_32f_C1R_L, lumiFilterGaussian_32f_C3R_L);
    }
    return false;
}

bool parseBorder(const std::string& s, GaussianOptions& o) {
    if (s == "replicate") {
        o.border = lumBorderReplicate;
    } else if (s == "mirror") {
        o.border = lumBorderMirror;
    } else if (s.rfind("constant", 0) == 0) {
        o.border = lumBorderConstant;
        if (s.size() > 8) {
            if (s[8] != ':' || !parseFloat(s.substr(9), o.value)) {
                std::fprintf(stderr, "lumcv: bad constant border '%s' (constant or constant:V)\n", s.c_str());
                return false;
            }
        }
    } else {
        std::fprintf(stderr, "lumcv: unknown border '%s' (replicate, mirror or constant[:V])\n", s.c_str());
        return false;
    }
    return true;
}

constexpr const char* kUsage =
    "usage: lumcv gaussian IMAGE OUT --ksize K --sigma S [--border replicate|mirror|constant[:V]]";

int runGaussian(const Args& args) {
    std::vector<std::string> files;
    GaussianOptions o;
    bool haveK = false, haveSigma = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--ksize") {
            if (!hasValue || !parseInt(args[++i], o.ksize)) return usageError(kUsage);
            haveK = true;
        } else if (a == "--sigma") {
            if (!hasValue || !parseFloat(args[++i], o.sigma)) return usageError(kUsage);
            haveSigma = true;
        } else if (a == "--border") {
            if (!hasValue || !parseBorder(args[++i], o)) return usageError(kUsage);
        } else if (a.rfind("--", 0) == 0) {
            std::fprintf(stderr, "lumcv: unknown option '%s'\n", a.c_str());
            return usageError(kUsage);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2 || !haveK || !haveSigma) return usageError(kUsage);
    if (o.ksize < 3 || o.ksize % 2 == 0) {
        std::fprintf(stderr, "lumcv: --ksize must be odd and at least 3, not %d\n", o.ksize);
        return kExitUsage;
    }
    if (!(o.sigma > 0.0f)) {
        std::fprintf(stderr, "lumcv: --sigma must be above 0\n");
        return kExitUsage;
    }
    Image in;
    std::string err;
    if (!readImage(files[0], in, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", files[0].c_str(), err.c_str());
        return kExitIo;
    }
    if (in.channels == 4) {
        std::fprintf(stderr, "lumcv: '%s' has an alpha channel; only gray and colour images are filtered\n",
                     files[0].c_str());
        return kExitIo;
    }
    if (in.channels != 1 && in.channels != 3) {
        std::fprintf(stderr, "lumcv: '%s' has %d channels; only 1 or 3 are filtered\n", files[0].c_str(), in.channels);
        return kExitIo;
    }
    Image out;
    if (!gaussianImage(in, out, o)) return kExitLibrary;
    if (!writeImage(files[1], out, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", files[1].c_str(), err.c_str());
        return kExitIo;
    }
    return 0;
}

const bool registered = registerCommand(
    {"gaussian", "IMAGE OUT --ksize K --sigma S [--border replicate|mirror|constant[:V]]",
     "Gaussian smoothing of a gray or colour image (8 or 16 bits, or float PFM)", runGaussian});

// Demo: the colour frame smoothed at two kernel sizes, and the gray frame
// at the larger one with a mirrored border.
bool gaussianStep(DemoContext& ctx) {
    GaussianOptions small{5, 1.0f, lumBorderReplicate, 0.0f};
    GaussianOptions large{15, 3.0f, lumBorderMirror, 0.0f};
    Image a, b, g;
    if (!gaussianImage(ctx.color0, a, small) || !gaussianImage(ctx.color0, b, large) ||
        !gaussianImage(ctx.gray0, g, large))
        return false;
    return saveDemoImage(ctx, "gaussian_color_k5.png", a) && saveDemoImage(ctx, "gaussian_color_k15.png", b) &&
           saveDemoImage(ctx, "gaussian_gray_k15.png", g);
}

const bool stepRegistered = registerDemoStep({310, "Gaussian smoothing at kernel sizes 5 and 15", gaussianStep});

}  // namespace
}  // namespace tool
