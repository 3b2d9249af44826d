// lumcv erode|dilate IMAGE OUT [--shape rect|cross|diamond|ellipse] [--size WxH]
//                    [--mask MASK] [--border replicate|mirror|neutral|constant[:V]]
//                    [--iterations N] [--binary T]
// and the morphology demo step.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {
namespace {

struct Mask {
    int width = 3;
    int height = 3;
    std::vector<Lum8u> bytes;
};

// Structuring elements by shape; every one of them selects its centre.
bool makeMask(const std::string& shape, int w, int h, Mask& m) {
    m.width = w;
    m.height = h;
    m.bytes.assign(static_cast<size_t>(w) * h, 0);
    const double cx = (w - 1) / 2.0, cy = (h - 1) / 2.0;
    const double rx = w / 2.0, ry = h / 2.0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const double dx = (x - cx) / rx, dy = (y - cy) / ry;
            bool on;
            if (shape == "rect") {
                on = true;
            } else if (shape == "cross") {
                on = x == (w - 1) / 2 || y == (h - 1) / 2;
            } else if (shape == "diamond") {
                on = std::fabs(dx) + std::fabs(dy) <= 1.0 + 1e-9;
            } else if (shape == "ellipse") {
                on = dx * dx + dy * dy <= 1.0 + 1e-9;
            } else {
                std::fprintf(stderr, "lumcv: unknown shape '%s' (rect, cross, diamond or ellipse)\n", shape.c_str());
                return false;
            }
            m.bytes[static_cast<size_t>(y) * w + x] = on ? 1 : 0;
        }
    }
    return true;
}

// A mask image: any nonzero gray value selects.
bool readMask(const std::string& path, Mask& m) {
    Image img;
    std::string err;
    if (!readImage(path, img, err)) {
        std::fprintf(stderr, "lumcv: cannot read mask '%s': %s\n", path.c_str(), err.c_str());
        return false;
    }
    const Image g = toSample(img.channels >= 3 ? toGray(img) : img, Sample::U8);
    if (g.channels != 1) {
        std::fprintf(stderr, "lumcv: mask '%s' must be a gray or colour image\n", path.c_str());
        return false;
    }
    m.width = g.width;
    m.height = g.height;
    m.bytes.assign(g.bytes.begin(), g.bytes.end());
    return true;
}

struct MorphOptions {
    bool erode = true;
    Mask mask;
    int border = lumBorderReplicate;
    float value = 0.0f;  // constant border value, in sample units
    int iterations = 1;
};

template <class T>
using GetSizeFn = LumStatus (*)(LumiSize, LumiSize, int*, int*);
template <class T>
using InitFn = LumStatus (*)(LumiSize, const Lum8u*, LumiSize, Lum8u*, Lum8u*);
template <class T>
using C1Fn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, T, const Lum8u*, Lum8u*);
template <class T>
using CnFn = LumStatus (*)(const T*, int, T*, int, LumiSize, LumiBorderType, const T*, const Lum8u*, Lum8u*);

// One member of the family for a sample type and channel count: its size
// query, Init and the filters of both operations.
template <class T>
struct Member {
    GetSizeFn<T> getSize;
    InitFn<T> init;
    C1Fn<T> erode1, dilate1;
    CnFn<T> erodeN, dilateN;
};

template <class T>
bool runMember(const Image& in, Image& out, const MorphOptions& o, const Member<T>& f) {
    const LumiSize roi{in.width, in.height};
    const LumiSize maskSize{o.mask.width, o.mask.height};
    int specSize = 0, bufferSize = 0;
    if (!checkStatus(f.getSize(roi, maskSize, &specSize, &bufferSize), "morphology sizes")) return false;
    std::vector<Lum8u> spec(specSize), buffer(bufferSize);
    if (!checkStatus(f.init(roi, o.mask.bytes.data(), maskSize, spec.data(), buffer.data()), "morphology mask"))
        return false;
    T value[4];
    for (T& v : value) v = static_cast<T>(o.value);
    Image src = in;
    out = Image::make(in.width, in.height, in.channels, in.sample);
    for (int i = 0; i < o.iterations; ++i) {
        if (i > 0) std::swap(src, out);
        LumStatus st;
        if (in.channels == 1) {
            st = (o.erode ? f.erode1 : f.dilate1)(src.data<T>(), src.step(), out.data<T>(), out.step(), roi, o.border,
                                                  value[0], spec.data(), buffer.data());
        } else {
            st = (o.erode ? f.erodeN : f.dilateN)(src.data<T>(), src.step(), out.data<T>(), out.step(), roi, o.border,
                                                  value, spec.data(), buffer.data());
        }
        if (!checkStatus(st, o.erode ? "erosion" : "dilation")) return false;
    }
    return true;
}

bool morphImage(const Image& in, Image& out, const MorphOptions& o) {
    const int c = in.channels;
    switch (in.sample) {
        case Sample::U8:
            if (c == 1)
                return runMember<Lum8u>(in, out, o,
                                        {lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R,
                                         lumiErodeBorder_8u_C1R, lumiDilateBorder_8u_C1R, nullptr, nullptr});
            if (c == 3)
                return runMember<Lum8u>(in, out, o,
                                        {lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R, nullptr,
                                         nullptr, lumiErodeBorder_8u_C3R, lumiDilateBorder_8u_C3R});
            return runMember<Lum8u>(in, out, o,
                                    {lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R, nullptr,
                                     nullptr, lumiErodeBorder_8u_C4R, lumiDilateBorder_8u_C4R});
        case Sample::U16:
            return runMember<Lum16u>(in, out, o,
                                     {lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R,
                                      lumiErodeBorder_16u_C1R, lumiDilateBorder_16u_C1R, nullptr, nullptr});
        case Sample::F32:
            if (c == 1)
                return runMember<Lum32f>(in, out, o,
                                         {lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R,
                                          lumiErodeBorder_32f_C1R, lumiDilateBorder_32f_C1R, nullptr, nullptr});
            return runMember<Lum32f>(in, out, o,
                                     {lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R, nullptr,
                                      nullptr, lumiErodeBorder_32f_C3R, lumiDilateBorder_32f_C3R});
    }
    return false;
}

// Binary images: the gray image thresholded (above `threshold` is set) into
// packed rows whose first pixel sits at bit 3 of the first byte, the most
// significant bit first, filtered there and unpacked to 0 and 255.
bool morphBinary(const Image& in, int threshold, Image& out, const MorphOptions& o) {
    const Image g = toSample(in.channels >= 3 ? toGray(in) : in, Sample::U8);
    const int w = g.width, h = g.height;
    constexpr int kBitOffset = 3;
    const int step = (kBitOffset + w + 7) / 8;
    std::vector<Lum8u> src(static_cast<size_t>(step) * h, 0), dst(src.size(), 0);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (g.bytes[static_cast<size_t>(y) * w + x] > threshold) {
                const int b = kBitOffset + x;
                src[static_cast<size_t>(y) * step + b / 8] |= static_cast<Lum8u>(0x80 >> (b % 8));
            }
    const LumiSize roi{w, h};
    const LumiSize maskSize{o.mask.width, o.mask.height};
    int specSize = 0, bufferSize = 0;
    if (!checkStatus(lumiMorphologyBorderGetSize_1u_C1R(roi, maskSize, &specSize, &bufferSize), "morphology sizes"))
        return false;
    std::vector<Lum8u> spec(specSize), buffer(bufferSize);
    if (!checkStatus(lumiMorphologyBorderInit_1u_C1R(roi, o.mask.bytes.data(), maskSize, spec.data(), buffer.data()),
                     "morphology mask"))
        return false;
    const Lum8u value = o.value != 0.0f ? 1 : 0;
    for (int i = 0; i < o.iterations; ++i) {
        if (i > 0) std::swap(src, dst);
        const auto fn = o.erode ? lumiErodeBorder_1u_C1R : lumiDilateBorder_1u_C1R;
        if (!checkStatus(fn(src.data(), step, kBitOffset, dst.data(), step, kBitOffset, roi, o.border, value,
                            spec.data(), buffer.data()),
                         o.erode ? "binary erosion" : "binary dilation"))
            return false;
    }
    out = Image::make(w, h, 1, Sample::U8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int b = kBitOffset + x;
            const bool set = (dst[static_cast<size_t>(y) * step + b / 8] >> (7 - b % 8)) & 1;
            out.bytes[static_cast<size_t>(y) * w + x] = set ? 255 : 0;
        }
    return true;
}

bool parseBorder(const std::string& s, MorphOptions& o) {
    if (s == "replicate") {
        o.border = lumBorderReplicate;
    } else if (s == "mirror") {
        o.border = lumBorderMirror;
    } else if (s == "neutral") {
        o.border = lumBorderNeutral;
    } else if (s.rfind("constant", 0) == 0) {
        o.border = lumBorderConstant;
        if (s.size() > 8 && (s[8] != ':' || !parseFloat(s.substr(9), o.value))) {
            std::fprintf(stderr, "lumcv: bad constant border '%s' (constant or constant:V)\n", s.c_str());
            return false;
        }
    } else {
        std::fprintf(stderr, "lumcv: unknown border '%s' (replicate, mirror, neutral or constant[:V])\n", s.c_str());
        return false;
    }
    return true;
}

bool parseSize(const std::string& s, int& w, int& h) {
    const size_t x = s.find('x');
    if (x == std::string::npos) {
        if (!parseInt(s, w)) return false;
        h = w;
    } else if (!parseInt(s.substr(0, x), w) || !parseInt(s.substr(x + 1), h)) {
        return false;
    }
    if (w < 1 || h < 1 || w > 255 || h > 255) {
        std::fprintf(stderr, "lumcv: mask size '%s' must lie between 1 and 255 on each side\n", s.c_str());
        return false;
    }
    return true;
}

constexpr const char* kArgs =
    "IMAGE OUT [--shape rect|cross|diamond|ellipse] [--size WxH] [--mask MASK] "
    "[--border replicate|mirror|neutral|constant[:V]] [--iterations N] [--binary T]";

int runMorph(const Args& args, bool erode) {
    const std::string usage = std::string("usage: lumcv ") + (erode ? "erode " : "dilate ") + kArgs;
    std::vector<std::string> files;
    MorphOptions o;
    o.erode = erode;
    std::string shape = "rect", maskPath;
    int w = 3, h = 3;
    int threshold = -1;  // below 0: not binary
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--shape") {
            if (!hasValue) return usageError(usage);
            shape = args[++i];
        } else if (a == "--size") {
            if (!hasValue || !parseSize(args[++i], w, h)) return usageError(usage);
        } else if (a == "--mask") {
            if (!hasValue) return usageError(usage);
            maskPath = args[++i];
        } else if (a == "--border") {
            if (!hasValue || !parseBorder(args[++i], o)) return usageError(usage);
        } else if (a == "--iterations") {
            if (!hasValue || !parseInt(args[++i], o.iterations) || o.iterations < 1) return usageError(usage);
        } else if (a == "--binary") {
            if (!hasValue || !parseInt(args[++i], threshold) || threshold < 0 || threshold > 254)
                return usageError(usage + "\n(--binary takes a threshold from 0 to 254)");
        } else if (a.rfind("--", 0) == 0) {
            std::fprintf(stderr, "lumcv: unknown option '%s'\n", a.c_str());
            return usageError(usage);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2) return usageError(usage);
    if (maskPath.empty() ? !makeMask(shape, w, h, o.mask) : !readMask(maskPath, o.mask)) return kExitUsage;
    Image in;
    std::string err;
    if (!readImage(files[0], in, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", files[0].c_str(), err.c_str());
        return kExitIo;
    }
    Image out;
    if (threshold >= 0) {
        if (!morphBinary(in, threshold, out, o)) return kExitLibrary;
        if (!writeImage(files[1], out, err)) {
            std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", files[1].c_str(), err.c_str());
            return kExitIo;
        }
        return 0;
    }
    if (in.sample == Sample::U16 && in.channels != 1) in = toGray(in);
    if (in.sample == Sample::F32 && in.channels == 4) {
        std::fprintf(stderr, "lumcv: '%s': float images with four channels are not supported\n", files[0].c_str());
        return kExitIo;
    }
    if (in.channels == 2) {
        std::fprintf(stderr, "lumcv: '%s' has two channels; only 1, 3 or 4 are filtered\n", files[0].c_str());
        return kExitIo;
    }
    if (!morphImage(in, out, o)) return kExitLibrary;
    if (!writeImage(files[1], out, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", files[1].c_str(), err.c_str());
        return kExitIo;
    }
    return 0;
}

int runErode(const Args& args) { return runMorph(args, true); }
int runDilate(const Args& args) { return runMorph(args, false); }

const bool erodeRegistered =
    registerCommand({"erode", kArgs, "erosion (minimum over a structuring element) of an image", runErode});
const bool dilateRegistered =
    registerCommand({"dilate", kArgs, "dilation (maximum over a structuring element) of an image", runDilate});

// Demo: the gray frame eroded and dilated by a 5x5 diamond, their difference
// (the morphological gradient, which outlines the objects), and the colour
// frame opened (eroded, then dilated) by a 7x7 ellipse, which removes the
// fine texture and keeps the shapes.
bool morphStep(DemoContext& ctx) {
    MorphOptions diamond;
    if (!makeMask("diamond", 5, 5, diamond.mask)) return false;
    MorphOptions ellipse;
    if (!makeMask("ellipse", 7, 7, ellipse.mask)) return false;
    Image eroded, dilated, opened, colorEroded;
    if (!morphImage(ctx.gray0, eroded, diamond)) return false;
    diamond.erode = false;
    if (!morphImage(ctx.gray0, dilated, diamond)) return false;
    Image gradient = Image::make(eroded.width, eroded.height, 1, Sample::U8);
    for (size_t i = 0; i < gradient.bytes.size(); ++i) gradient.bytes[i] = dilated.bytes[i] - eroded.bytes[i];
    if (!morphImage(ctx.color0, colorEroded, ellipse)) return false;
    ellipse.erode = false;
    if (!morphImage(colorEroded, opened, ellipse)) return false;
    // The moving pixels as a packed binary image, opened by a 3x3 plus to
    // drop isolated noise.
    Image diff, motion, cleaned;
    if (!absDiffImages(ctx.gray0, ctx.gray1, Sample::U8, diff)) return false;
    MorphOptions plus;
    if (!makeMask("cross", 3, 3, plus.mask)) return false;
    plus.border = lumBorderNeutral;
    if (!morphBinary(diff, 24, motion, plus)) return false;
    plus.erode = false;
    if (!morphBinary(motion, 127, cleaned, plus)) return false;
    return saveDemoImage(ctx, "erode_gray_diamond5.png", eroded) &&
           saveDemoImage(ctx, "motion_opened_binary.png", cleaned) &&
           saveDemoImage(ctx, "dilate_gray_diamond5.png", dilated) &&
           saveDemoImage(ctx, "morph_gradient_gray.png", gradient) &&
           saveDemoImage(ctx, "open_color_ellipse7.png", opened);
}

const bool stepRegistered = registerDemoStep({400, "erosion and dilation by a diamond and an ellipse; a packed binary motion mask opened", morphStep});

}  // namespace
}  // namespace tool
