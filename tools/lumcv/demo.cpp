// lumcv demo [FOLDER]: runs every registered step on a generated scene and
// writes the results into FOLDER (default lumcv-demo).
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "tool.h"

namespace tool {

namespace {

std::vector<DemoStep>& steps() {
    static std::vector<DemoStep> s;
    return s;
}

// A 640 x 480 scene: a lit background with a soft gradient, a few discs and
// boxes of different colours, fine texture and mild noise. The second frame
// moves the objects a few pixels, as a camera sees motion.
void drawScene(Image& color, int shift, uint32_t seed) {
    const int w = color.width, h = color.height;
    std::mt19937 g(seed);
    std::normal_distribution<double> noise(0.0, 2.0);
    struct Disc { double cx, cy, r; uint8_t c[3]; };
    struct Box { int x0, y0, x1, y1; uint8_t c[3]; };
    const Disc discs[] = {{160.0 + shift, 150.0, 60.0, {220, 60, 50}},
                          {430.0 - shift, 300.0, 90.0, {40, 170, 80}},
                          {520.0, 110.0 + shift, 35.0, {250, 220, 40}}};
    const Box boxes[] = {{60, 300 + shift, 260, 420 + shift, {50, 80, 200}},
                         {300 + shift, 60, 380 + shift, 200, {200, 200, 210}}};
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            double px[3];
            const double base = 70.0 + 90.0 * x / w + 40.0 * y / h;
            const double texture = 6.0 * std::sin(x * 0.35) * std::cos(y * 0.27);
            for (int c = 0; c < 3; ++c) px[c] = base + texture + (c - 1) * 12.0;
            for (const Box& b : boxes)
                if (x >= b.x0 && x < b.x1 && y >= b.y0 && y < b.y1)
                    for (int c = 0; c < 3; ++c) px[c] = b.c[c] + 0.5 * texture;
            for (const Disc& d : discs) {
                const double r = std::hypot(x - d.cx, y - d.cy);
                const double a = std::clamp(d.r - r + 0.5, 0.0, 1.0);  // one-pixel soft edge
                for (int c = 0; c < 3; ++c) px[c] = px[c] * (1.0 - a) + d.c[c] * a;
            }
            for (int c = 0; c < 3; ++c) {
                const double v = px[c] + noise(g);
                color.bytes[(static_cast<size_t>(y) * w + x) * 3 + c] =
                    static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
            }
        }
    }
}

bool makeFolder(const std::string& dir) {
    if (mkdir(dir.c_str(), 0755) == 0 || errno == EEXIST) return true;
    std::fprintf(stderr, "lumcv: cannot create folder '%s': %s\n", dir.c_str(), std::strerror(errno));
    return false;
}

int runDemo(const Args& args) {
    if (args.size() > 1) return usageError("usage: lumcv demo [FOLDER]");
    DemoContext ctx;
    ctx.outDir = args.empty() ? "lumcv-demo" : args[0];
    if (!makeFolder(ctx.outDir)) return kExitIo;
    ctx.color0 = Image::make(640, 480, 3, Sample::U8);
    ctx.color1 = Image::make(640, 480, 3, Sample::U8);
    drawScene(ctx.color0, 0, 7);
    drawScene(ctx.color1, 6, 8);
    ctx.gray0 = toGray(ctx.color0);
    ctx.gray1 = toGray(ctx.color1);
    std::printf("lumcv demo: %s, results in %s/\n", lumcvGetLibVersion()->version, ctx.outDir.c_str());
    if (!saveDemoImage(ctx, "frame0.png", ctx.color0) || !saveDemoImage(ctx, "frame1.png", ctx.color1)) return kExitIo;
    std::sort(steps().begin(), steps().end(), [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    int failed = 0;
    for (const DemoStep& s : steps()) {
        std::printf("- %s\n", s.name);
        if (!s.run(ctx)) {
            std::fprintf(stderr, "lumcv: demo step '%s' failed\n", s.name);
            ++failed;
        }
    }
    std::printf("lumcv demo: %zu steps, %d failed\n", steps().size(), failed);
    return failed ? kExitLibrary : 0;
}

const bool registered = registerCommand(
    {"demo", "[FOLDER]", "run every family on a generated scene; results go to FOLDER (lumcv-demo)", runDemo});

// ------------------------------------------------------------ steps

bool absDiffStep(DemoContext& ctx) {
    Image gray, color;
    if (!absDiffImages(ctx.gray0, ctx.gray1, Sample::U8, gray)) return false;
    if (!absDiffImages(ctx.color0, ctx.color1, Sample::U8, color)) return false;
    size_t moved = 0;
    for (uint8_t v : gray.bytes) moved += v > 24;
    std::printf("  %zu of %zu pixels changed by more than 24 between the frames\n", moved, gray.bytes.size());
    return saveDemoImage(ctx, "absdiff_gray.png", gray) && saveDemoImage(ctx, "absdiff_color.png", color);
}

const bool absDiffRegistered = registerDemoStep({100, "absolute difference of the two frames", absDiffStep});

}  // namespace

bool registerDemoStep(const DemoStep& s) {
    steps().push_back(s);
    return true;
}

bool saveDemoImage(const DemoContext& ctx, const std::string& file, const Image& img) {
    std::string err;
    if (!writeImage(ctx.path(file), img, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", ctx.path(file).c_str(), err.c_str());
        return false;
    }
    std::printf("  wrote %s\n", ctx.path(file).c_str());
    return true;
}

}  // namespace tool
