// lumcv sepfilter IMAGE OUT --kernel a,b,c[,...] [--column-kernel a,b,c[,...]]
//                 [--divisor D] [--border replicate|mirror|constant[:V]] [--signed]
//
// A separable filter driven the way a caller drives the row and column
// pipeline stages: source rows are filtered horizontally into a ring of
// intermediate rows, a rotating array of row pointers hands the column stage
// its rows in vertical order, and the vertical border is made by repeating
// (or mirroring) row pointers. 8-bit images (gray or colour) run 8u16s rows
// and 16s8u columns; 16-bit images run 16u rows and columns.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "tool.h"

namespace tool {

namespace {

enum class VBorder { Replicate, Mirror, Constant };

struct SepOptions {
    std::vector<int> rowKernel;
    std::vector<int> columnKernel;
    int divisor = 0;  // 0: the default
    VBorder border = VBorder::Replicate;
    int borderValue = 0;
    bool signedOut = false;  // 8-bit: 128 + the signed result
};

int borderWord(const SepOptions& o) {
    return o.border == VBorder::Replicate ? lumBorderReplicate : o.border == VBorder::Mirror ? lumBorderMirror
                                                                                              : lumBorderConstant;
}

// Source row of the vertical position v for a border; -1 for the constant
// row.
int verticalSource(int v, int h, VBorder b) {
    if (v >= 0 && v < h) return v;
    if (b == VBorder::Constant) return -1;
    if (b == VBorder::Replicate || h == 1) return v < 0 ? 0 : h - 1;
    for (;;) {
        if (v < 0) v = -v;
        else if (v >= h) v = 2 * (h - 1) - v;
        else return v;
    }
}

// The ring: intermediate rows of `rowSamples` samples, row j of the image in
// slot j % slots. Output rows go in blocks of `block`; each block filters the
// source rows it newly needs and hands the column stage one pointer a
// vertical position.
template <class Src, class Mid, class Dst, class RowFn, class ColFn>
bool runPipeline(const Src* src, int srcStep, Dst* dst, int dstStep, int w, int h, int channels, int kCol,
                 const Src* borderRow, RowFn rowStage, ColFn colStage, VBorder vb) {
    constexpr int block = 32;
    const int a = kCol / 2;
    const int slots = kCol + block;
    const size_t rowSamples = static_cast<size_t>(w) * channels;
    std::vector<Mid> ring(rowSamples * slots), constantRow(rowSamples);
    std::vector<Mid*> dstRows;
    std::vector<const Mid*> columnRows(block + kCol - 1);
    // The constant border's rows: the row stage over a row of the value.
    if (vb == VBorder::Constant) {
        Mid* one = constantRow.data();
        if (!rowStage(borderRow, static_cast<int>(rowSamples * sizeof(Src)), &one, 1)) return false;
    }
    int done = 0;  // image rows filtered so far
    for (int y0 = 0; y0 < h; y0 += block) {
        const int rows = std::min(block, h - y0);
        const int hi = std::min(h - 1, y0 + rows - 1 + kCol - 1 - a);
        if (done <= hi) {
            dstRows.clear();
            for (int j = done; j <= hi; ++j) dstRows.push_back(ring.data() + rowSamples * (j % slots));
            const Src* first = reinterpret_cast<const Src*>(reinterpret_cast<const uint8_t*>(src) +
                                                            static_cast<size_t>(srcStep) * done);
            if (!rowStage(first, srcStep, dstRows.data(), hi - done + 1)) return false;
            done = hi + 1;
        }
        for (int i = 0; i < rows + kCol - 1; ++i) {
            const int j = verticalSource(y0 - a + i, h, vb);
            columnRows[i] = j < 0 ? constantRow.data() : ring.data() + rowSamples * (j % slots);
        }
        Dst* out = reinterpret_cast<Dst*>(reinterpret_cast<uint8_t*>(dst) + static_cast<size_t>(dstStep) * y0);
        if (!colStage(columnRows.data(), out, dstStep, rows)) return false;
    }
    return true;
}

int sumOf(const std::vector<int>& v) {
    int s = 0;
    for (int x : v) s += x;
    return s;
}
int absSumOf(const std::vector<int>& v) {
    int s = 0;
    for (int x : v) s += std::abs(x);
    return s;
}

// Filters an 8-bit (1 or 3 channels) or 16-bit image; false after printing
// why.
bool sepFilterImage(const Image& in, const SepOptions& o, Image& out) {
    const int w = in.width, h = in.height, C = in.channels;
    const int kr = static_cast<int>(o.rowKernel.size()), kc = static_cast<int>(o.columnKernel.size());
    const int word = borderWord(o);
    if (in.sample == Sample::U8) {
        // Rows keep exact sums (divisor 1) as long as they fit 16 bits.
        if (absSumOf(o.rowKernel) * 255 > 32767) {
            std::fprintf(stderr, "lumcv: the row kernel's absolute coefficients sum to more than 128; the 16-bit "
                                 "intermediate rows of an 8-bit image cannot hold it\n");
            return false;
        }
        int divisor = o.divisor;
        if (divisor == 0) divisor = std::max(1, sumOf(o.rowKernel) * sumOf(o.columnKernel));
        if (o.signedOut) divisor = o.divisor == 0 ? std::max(1, absSumOf(o.rowKernel) * absSumOf(o.columnKernel) / 127) : o.divisor;
        std::vector<Lum16s> rk(o.rowKernel.begin(), o.rowKernel.end()), ck(o.columnKernel.begin(), o.columnKernel.end());
        std::vector<Lum8u> valueRow(static_cast<size_t>(w) * C, static_cast<Lum8u>(std::clamp(o.borderValue, 0, 255)));
        const Lum8u value3[3] = {valueRow[0], valueRow[0], valueRow[0]};
        int rowBytes = 0, colBytes = 0;
        LumStatus st = C == 3 ? lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R({w, h}, kr, &rowBytes)
                              : lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R({w, h}, kr, &rowBytes);
        if (!checkStatus(st, "row buffer size")) return false;
        st = C == 3 ? lumiFilterColumnPipelineGetBufferSize_16s8u_C3R({w, h}, kc, &colBytes)
                    : lumiFilterColumnPipelineGetBufferSize_16s8u_C1R({w, h}, kc, &colBytes);
        if (!checkStatus(st, "column buffer size")) return false;
        std::vector<Lum8u> rowBuf(rowBytes), colBuf(colBytes);
        std::vector<Lum16s> signedOut;
        out = Image::make(w, h, C, Sample::U8);
        auto rowStage = [&](const Lum8u* s, int step, Lum16s* const* rows, int n) {
            const LumStatus r = C == 3 ? lumiFilterRowBorderPipeline_8u16s_C3R(s, step, rows, {w, n}, rk.data(), kr, kr / 2,
                                                                               word, value3, 1, rowBuf.data())
                                       : lumiFilterRowBorderPipeline_8u16s_C1R(s, step, rows, {w, n}, rk.data(), kr, kr / 2,
                                                                               word, value3[0], 1, rowBuf.data());
            return checkStatus(r, "row stage");
        };
        if (o.signedOut) {
            // Signed results: the 16s column stage, then 128 + value.
            signedOut.resize(static_cast<size_t>(w) * C * h);
            auto colStage = [&](const Lum16s* const* rows, Lum16s* d, int step, int n) {
                const LumStatus r = C == 3 ? lumiFilterColumnPipeline_16s_C3R(rows, d, step, {w, n}, ck.data(), kc, divisor, colBuf.data())
                                           : lumiFilterColumnPipeline_16s_C1R(rows, d, step, {w, n}, ck.data(), kc, divisor, colBuf.data());
                return checkStatus(r, "column stage");
            };
            if (!runPipeline<Lum8u, Lum16s, Lum16s>(in.data<Lum8u>(), in.step(), signedOut.data(), w * C * 2, w, h, C, kc,
                                                     valueRow.data(), rowStage, colStage, o.border))
                return false;
            for (size_t i = 0; i < signedOut.size(); ++i)
                out.bytes[i] = static_cast<uint8_t>(std::clamp(128 + signedOut[i], 0, 255));
            return true;
        }
        auto colStage = [&](const Lum16s* const* rows, Lum8u* d, int step, int n) {
            const LumStatus r = C == 3 ? lumiFilterColumnPipeline_16s8u_C3R(rows, d, step, {w, n}, ck.data(), kc, divisor, colBuf.data())
                                       : lumiFilterColumnPipeline_16s8u_C1R(rows, d, step, {w, n}, ck.data(), kc, divisor, colBuf.data());
            return checkStatus(r, "column stage");
        };
        return runPipeline<Lum8u, Lum16s, Lum8u>(in.data<Lum8u>(), in.step(), out.data<Lum8u>(), out.step(), w, h, C,
                                                 kc, valueRow.data(), rowStage, colStage, o.border);
    }
    if (in.sample == Sample::U16) {
        for (int c : o.rowKernel)
            if (c < 0 || c > 65535) {
                std::fprintf(stderr, "lumcv: 16-bit images take coefficients from 0 to 65535\n");
                return false;
            }
        for (int c : o.columnKernel)
            if (c < 0 || c > 65535) {
                std::fprintf(stderr, "lumcv: 16-bit images take coefficients from 0 to 65535\n");
                return false;
            }
        if (o.signedOut) {
            std::fprintf(stderr, "lumcv: --signed is for 8-bit images\n");
            return false;
        }
        // Rows divide by their own sum, so that they stay in range; the
        // columns by what is left of the divisor.
        const int rowDiv = std::max(1, sumOf(o.rowKernel));
        const int total = o.divisor != 0 ? o.divisor : rowDiv * std::max(1, sumOf(o.columnKernel));
        if (total % rowDiv != 0 || total / rowDiv < 1) {
            std::fprintf(stderr, "lumcv: for 16-bit images the divisor must be a positive multiple of the row kernel's sum (%d)\n",
                         rowDiv);
            return false;
        }
        const int colDiv = total / rowDiv;
        std::vector<Lum16u> rk(o.rowKernel.begin(), o.rowKernel.end()), ck(o.columnKernel.begin(), o.columnKernel.end());
        std::vector<Lum16u> valueRow(static_cast<size_t>(w) * C, static_cast<Lum16u>(std::clamp(o.borderValue, 0, 65535)));
        const Lum16u value3[3] = {valueRow[0], valueRow[0], valueRow[0]};
        int rowBytes = 0, colBytes = 0;
        LumStatus st = C == 3 ? lumiFilterRowBorderPipelineGetBufferSize_16u_C3R({w, h}, kr, &rowBytes)
                              : lumiFilterRowBorderPipelineGetBufferSize_16u_C1R({w, h}, kr, &rowBytes);
        if (!checkStatus(st, "row buffer size")) return false;
        st = C == 3 ? lumiFilterColumnPipelineGetBufferSize_16u_C3R({w, h}, kc, &colBytes)
                    : lumiFilterColumnPipelineGetBufferSize_16u_C1R({w, h}, kc, &colBytes);
        if (!checkStatus(st, "column buffer size")) return false;
        std::vector<Lum8u> rowBuf(rowBytes), colBuf(colBytes);
        out = Image::make(w, h, C, Sample::U16);
        auto rowStage = [&](const Lum16u* s, int step, Lum16u* const* rows, int n) {
            const LumStatus r = C == 3 ? lumiFilterRowBorderPipeline_16u_C3R(s, step, rows, {w, n}, rk.data(), kr, kr / 2,
                                                                             word, value3, rowDiv, rowBuf.data())
                                       : lumiFilterRowBorderPipeline_16u_C1R(s, step, rows, {w, n}, rk.data(), kr, kr / 2,
                                                                             word, value3[0], rowDiv, rowBuf.data());
            return checkStatus(r, "row stage");
        };
        auto colStage = [&](const Lum16u* const* rows, Lum16u* d, int step, int n) {
            const LumStatus r = C == 3 ? lumiFilterColumnPipeline_16u_C3R(rows, d, step, {w, n}, ck.data(), kc, colDiv, colBuf.data())
                                       : lumiFilterColumnPipeline_16u_C1R(rows, d, step, {w, n}, ck.data(), kc, colDiv, colBuf.data());
            return checkStatus(r, "column stage");
        };
        return runPipeline<Lum16u, Lum16u, Lum16u>(in.data<Lum16u>(), in.step(), out.data<Lum16u>(), out.step(), w, h, C,
                                                   kc, valueRow.data(), rowStage, colStage, o.border);
    }
    std::fprintf(stderr, "lumcv: sepfilter takes 8-bit and 16-bit images\n");
    return false;
}

bool parseKernel(const std::string& s, std::vector<int>& out) {
    out.clear();
    std::stringstream ss(s);
    std::string item;
    while (std::getline(ss, item, ',')) {
        int v = 0;
        if (!parseInt(item, v)) return false;
        if (v < -32768 || v > 65535) {
            std::fprintf(stderr, "lumcv: coefficient %d is out of range\n", v);
            return false;
        }
        out.push_back(v);
    }
    if (out.empty()) {
        std::fprintf(stderr, "lumcv: empty kernel\n");
        return false;
    }
    return true;
}

constexpr const char* kUsage =
    "usage: lumcv sepfilter IMAGE OUT --kernel a,b,c[,...] [--column-kernel a,b,c[,...]] [--divisor D] "
    "[--border replicate|mirror|constant[:V]] [--signed]";

int runSepFilter(const Args& args) {
    std::vector<std::string> pos;
    SepOptions o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == "--kernel" && hasValue) {
            if (!parseKernel(args[++i], o.rowKernel)) return kExitUsage;
        } else if (a == "--column-kernel" && hasValue) {
            if (!parseKernel(args[++i], o.columnKernel)) return kExitUsage;
        } else if (a == "--divisor" && hasValue) {
            if (!parseInt(args[++i], o.divisor)) return kExitUsage;
            if (o.divisor == 0) return usageError("lumcv: the divisor must not be 0");
        } else if (a == "--border" && hasValue) {
            const std::string b = args[++i];
            if (b == "replicate") o.border = VBorder::Replicate;
            else if (b == "mirror") o.border = VBorder::Mirror;
            else if (b.rfind("constant", 0) == 0) {
                o.border = VBorder::Constant;
                if (b.size() > 8) {
                    if (b[8] != ':' || !parseInt(b.substr(9), o.borderValue)) return usageError(kUsage);
                }
            } else {
                return usageError("lumcv: unknown border '" + b + "' (replicate, mirror or constant[:V])");
            }
        } else if (a == "--signed") {
            o.signedOut = true;
        } else if (a.rfind("--", 0) == 0) {
            return usageError(std::string("lumcv: unknown or incomplete option '") + a + "'\n" + kUsage);
        } else {
            pos.push_back(a);
        }
    }
    if (pos.size() != 2 || o.rowKernel.empty()) return usageError(kUsage);
    if (o.columnKernel.empty()) o.columnKernel = o.rowKernel;
    Image in;
    std::string err;
    if (!readImage(pos[0], in, err)) {
        std::fprintf(stderr, "lumcv: cannot read '%s': %s\n", pos[0].c_str(), err.c_str());
        return kExitIo;
    }
    if (in.channels == 4) {
        // Alpha is dropped: the stages have one and three channels.
        Image rgb = Image::make(in.width, in.height, 3, in.sample);
        const int s = sampleBytes(in.sample);
        for (size_t p = 0; p < static_cast<size_t>(in.width) * in.height; ++p)
            std::copy_n(in.bytes.begin() + p * 4 * s, 3 * s, rgb.bytes.begin() + p * 3 * s);
        in = rgb;
    }
    if (in.channels == 2) in = toGray(in);
    Image out;
    if (!sepFilterImage(in, o, out)) return kExitLibrary;
    if (!writeImage(pos[1], out, err)) {
        std::fprintf(stderr, "lumcv: cannot write '%s': %s\n", pos[1].c_str(), err.c_str());
        return kExitIo;
    }
    return 0;
}

const bool registered = registerCommand(
    {"sepfilter",
     "IMAGE OUT --kernel a,b,c[,...] [--column-kernel ...] [--divisor D] [--border replicate|mirror|constant[:V]] "
     "[--signed]",
     "separable filter through the row and column pipeline stages (8-bit and 16-bit images)", runSepFilter});

// The demo: a 5-tap binomial blur of the gray and colour frames, and a
// horizontal derivative (-1 0 1 across, 1 2 1 down) shown around mid-gray.
bool sepFilterStep(DemoContext& ctx) {
    SepOptions blur;
    blur.rowKernel = blur.columnKernel = {1, 4, 6, 4, 1};
    Image grayBlur, colorBlur, deriv;
    if (!sepFilterImage(ctx.gray0, blur, grayBlur) || !sepFilterImage(ctx.color0, blur, colorBlur)) return false;
    SepOptions d;
    d.rowKernel = {-1, 0, 1};
    d.columnKernel = {1, 2, 1};
    d.border = VBorder::Mirror;
    d.signedOut = true;
    d.divisor = 4;
    if (!sepFilterImage(ctx.gray0, d, deriv)) return false;
    return saveDemoImage(ctx, "sepfilter_blur_gray.png", grayBlur) &&
           saveDemoImage(ctx, "sepfilter_blur_color.png", colorBlur) &&
           saveDemoImage(ctx, "sepfilter_derivative_x.png", deriv);
}

const bool demoRegistered = registerDemoStep({300, "separable blur and derivative (row and column stages)", sepFilterStep});

}  // namespace
}  // namespace tool
