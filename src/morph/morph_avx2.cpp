// Driver of erosion and dilation: the copy path, the choice of kernel from
// the classification made at Init, and the production of border pixels by
// running the same kernel over small bordered copies of the image's edges
// while the interior is read where it stands. Full rectangles make their
// borders themselves, row by row.
#include <algorithm>
#include <climits>
#include <cstring>

#include "frame/border.h"
#include "frame/carve.h"
#include "frame/check.h"
#include "frame/rows.h"
#include "morph/mask_record.h"
#include "morph/morph_driver.h"
#include "morph/morph_kernels.h"

namespace lum::morph {
namespace {

struct Copy {
    int borderBytes;  // bordered copies, rounded to 32
    int ringBytes;    // ring of the rectangle path
};

// W, H the stored size; halfW, halfH the caller's size halved (truncated),
// which is the even size rounded down, halved.
Copy bufferParts(int w, int h, int W, int H, int halfW, int halfH, int channels, int s) {
    int A;
    if (W < w && H < h) {
        A = 0;
        if (H - halfH - 1 >= 1) {
            const int top = mulWrap(addWrap(W, w - 1), 2 * H - halfH - 2);
            if (top > A) A = top;
        }
        if (W - halfW - 1 >= 1) {
            const int left = mulWrap(addWrap(H, h - 1), 2 * W - halfW - 2);
            if (left > A) A = left;
        }
    } else {
        A = mulWrap(addWrap(W, w - 1), addWrap(H, h - 1));
    }
    A = mulWrap(A, s);
    const int border = roundRow32(mulWrap(channels, A));
    const int ring = addWrap(addWrap(mulWrap(roundRow32(rowBytes(w, channels, s)), H), roundRow32(rowBytes(W, channels, s))),
                             16 * s);
    return {border, ring};
}

using Kernel = void (*)(const Frame&, const MaskView&, uint8_t*);

template <class T, int C, bool Max>
Kernel pickKernel(const MaskView& m) {
    const int cls = m.classification();
    if (cls & kFullRect) {
        return m.W() <= 7 ? rectSmallKernel<T, C, Max> : rectKernel<T, C, Max>;
    }
    if ((cls & kShapeRound7) == kShapeRound7) return shapeKernel<Round7, T, C, Max>;
    if ((cls & kShapeDiamond5) == kShapeDiamond5) return shapeKernel<Diamond5, T, C, Max>;
    if (cls & kShapePlus3) return shapeKernel<Plus3, T, C, Max>;
    if (cls & kCross) return crossKernel<T, C, Max>;
    if (cls & kSingleRuns) return runKernel<T, C, Max>;
    return listKernel<T, C, Max>;
}

// Lines of a bordered copy left unwritten: no kernel reads them.
struct Skip {
    int top = 0, bottom = 0, left = 0, right = 0;
};

// Writes the bw x bh pixels that start at ROI coordinates (x0, y0) to `out`,
// rows of bw pixels without a gap. Pixels outside the ROI follow the low
// code (1 replicate, 3 mirror, 6 value), except on sides whose flag is set,
// where they are read from memory. A pixel outside on a side without its flag
// takes the value under code 6; otherwise its row and column are mapped
// separately.
template <class T, int C>
void copyBordered(const T* src, int srcStep, int w, int h, int x0, int y0, int bw, int bh, int word, const T* value,
                  T* out, Skip skip) {
    using border::sourceIndex;
    const int code = border::lowCode(word);
    const bool topMem = word & border::kTop, bottomMem = word & border::kBottom;
    const bool leftMem = word & border::kLeft, rightMem = word & border::kRight;
    const int xa = skip.left, xb = bw - skip.right;  // columns written, copy-relative
    auto fill = [&](T* o, int count) {
        for (int k = 0; k < count; ++k)
            for (int c = 0; c < C; ++c) o[k * C + c] = value[c];
    };
    // Inside columns [in0, in1) in copy coordinates; the others are mapped
    // once for all rows: a source column, or kValue for the value.
    constexpr int kValue = INT_MIN;
    const int in0 = std::max(xa, std::min(xb, -x0)), in1 = std::max(in0, std::min(xb, w - x0));
    constexpr int kMapped = 256;
    int leftMap[kMapped], rightMap[kMapped];
    auto mapColumn = [&](int j) {
        const int x = x0 + j;
        const bool mem = x < 0 ? leftMem : rightMem;
        if (!mem && code == border::kConstant) return kValue;
        return mem ? x : sourceIndex(x, w, code, leftMem, rightMem);
    };
    const bool mapped = in0 - xa <= kMapped && xb - in1 <= kMapped;
    if (mapped) {
        for (int j = xa; j < in0; ++j) leftMap[j - xa] = mapColumn(j);
        for (int j = in1; j < xb; ++j) rightMap[j - in1] = mapColumn(j);
    }
    auto outside = [&](T* o, const T* s, int j, int column) {
        if (column == kValue) {
            fill(o + j * C, 1);
        } else {
            const T* p = s + static_cast<ptrdiff_t>(column) * C;
            for (int c = 0; c < C; ++c) o[j * C + c] = p[c];
        }
    };
    for (int i = skip.top; i < bh - skip.bottom; ++i) {
        T* o = out + static_cast<ptrdiff_t>(i) * bw * C;
        const int y = y0 + i;
        const bool rowOut = (y < 0 && !topMem) || (y >= h && !bottomMem);
        if (rowOut && code == border::kConstant) {
            fill(o + xa * C, xb - xa);
            continue;
        }
        const T* s = rowAt(src, srcStep, (y >= 0 && y < h) ? y : sourceIndex(y, h, code, topMem, bottomMem));
        for (int j = xa; j < in0; ++j) outside(o, s, j, mapped ? leftMap[j - xa] : mapColumn(j));
        if (in1 > in0)
            std::memcpy(o + in0 * C, s + static_cast<ptrdiff_t>(x0 + in0) * C,
                        static_cast<size_t>(in1 - in0) * C * sizeof(T));
        for (int j = in1; j < xb; ++j) outside(o, s, j, mapped ? rightMap[j - in1] : mapColumn(j));
    }
}

// The lines around the ROI for a mask ax pixels wide on either side
// (ax <= EdgeLines::kMaxSide).
template <class T, int C>
EdgeLines<T, C> edgeLines(const T* src, int srcStep, int w, int h, int ax, int code, int flags, const T* value) {
    using E = EdgeLines<T, C>;
    E e{src, srcStep, w, h, code, (flags & border::kTop) != 0, (flags & border::kBottom) != 0, value, ax, {}, {}};
    const bool leftMem = flags & border::kLeft, rightMem = flags & border::kRight;
    auto column = [&](int x) {
        const bool mem = x < 0 ? leftMem : rightMem;
        if (!mem && code == border::kConstant) return E::kValue;
        return mem ? x : border::sourceIndex(x, w, code, leftMem, rightMem);
    };
    for (int k = 0; k < ax; ++k) {
        e.left[k] = column(k - ax);
        e.right[k] = column(w + k);
    }
    return e;
}

// Rows y0 .. y0 + hc - 1, whose windows lie within the image or memory
// rows: the kernel reads the centre where it stands, and each side from
// widened copies of the rows' ends, a chunk of rows at a time on the stack.
// A side's part is at least a vector of samples, so that it costs the kernel
// no more than the centre's vectors do. Returns false, doing nothing, where
// the rows are too short or a chunk would hold too few rows.
template <class T, int C, class Kernel>
bool middleWithSides(const T* src, int srcStep, T* dst, int dstStep, int w, int h, int y0, int hc, const MaskView& m,
                     Kernel kernel, int code, int flags, const T* value, uint8_t* ring) {
    constexpr int V = Vec<T>::lanes;
    constexpr int kSideBytes = 16384, kMaxRows = 64;
    const int W = m.W(), H = m.H(), ax = (W - 1) / 2, ay = (H - 1) / 2;
    const int side = std::max((V + C - 1) / C, ax);
    if (ax > EdgeLines<T, C>::kMaxSide || w <= 2 * side) return false;
    const int stride = roundRow32((side + W - 1) * C * static_cast<int>(sizeof(T)));
    // One row more than a chunk reads: the slack of a vector behind the last.
    const int rowsMax = std::min(kMaxRows, kSideBytes / stride - H);
    if (rowsMax < 4) return false;
    const EdgeLines<T, C> e = edgeLines<T, C>(src, srcStep, w, h, ax, code, flags, value);
    alignas(32) uint8_t leftBytes[kSideBytes], rightBytes[kSideBytes];
    T* left = reinterpret_cast<T*>(leftBytes);
    T* right = reinterpret_cast<T*>(rightBytes);
    const int rowSamples = stride / static_cast<int>(sizeof(T));
    for (int ya = y0; ya < y0 + hc; ya += rowsMax) {
        const int rows = std::min(rowsMax, y0 + hc - ya);
        for (int i = 0; i < rows + H - 1; ++i) {
            const T* s = e.row(ya - ay + i);
            e.widen(s, -ax, side + W - 1 - ax, left + i * rowSamples);
            e.widen(s, w - side - ax, w + W - 1 - ax, right + i * rowSamples);
        }
        kernel({left, stride, rowAt(dst, dstStep, ya), dstStep, side, rows, true}, m, ring);
        kernel({right, stride, rowAt(dst, dstStep, ya) + static_cast<ptrdiff_t>(w - side) * C, dstStep, side, rows, true},
               m, ring);
    }
    kernel({rowAt(src, srcStep, y0 - ay) + static_cast<ptrdiff_t>(side - ax) * C, srcStep,
            rowAt(dst, dstStep, y0) + static_cast<ptrdiff_t>(side) * C, dstStep, w - 2 * side, hc, false},
           m, ring);
    return true;
}

// Full rectangles run over the whole ROI at once, making their borders row
// by row: no bordered copies. Up to 7 wide on rows of three vectors or more,
// the passes run fused; others take widened copies of their rows.
template <class T, int C, bool Max>
bool rectWithEdges(const T* src, int srcStep, T* dst, int dstStep, int w, int h, const MaskView& m, int code, int flags,
                   const T* value, uint8_t* ring) {
    constexpr int V = Vec<T>::lanes;
    const int W = m.W(), H = m.H();
    const int ax = (W - 1) / 2, ay = (H - 1) / 2;
    if (!(m.classification() & kFullRect) || ax > EdgeLines<T, C>::kMaxSide || H - 1 > TapList::kCapacity) return false;
    const bool fused = W >= 3 && W <= 7 && ax * C <= V && w * C >= 3 * V;
    if (!fused && RectWide<T, C, Max>::chunkPixels(W) < 2 * V) return false;
    const EdgeLines<T, C> e = edgeLines<T, C>(src, srcStep, w, h, ax, code, flags, value);
    if (!fused) {
        RectWide<T, C, Max>::run(e, W, H, ay, dst, dstStep, ring);
        return true;
    }
    switch (W) {
        case 3: rectEdges<T, C, Max, 3>(e, H, ay, dst, dstStep, ring); break;
        case 5: rectEdges<T, C, Max, 5>(e, H, ay, dst, dstStep, ring); break;
        default: rectEdges<T, C, Max, 7>(e, H, ay, dst, dstStep, ring); break;
    }
    return true;
}

template <class T, int C>
void copyRoi(const T* src, int srcStep, T* dst, int dstStep, int w, int h) {
    if (static_cast<const void*>(src) == static_cast<const void*>(dst)) return;
    for (int y = 0; y < h; ++y)
        std::memmove(rowAt(dst, dstStep, y), rowAt(src, srcStep, y), static_cast<size_t>(w) * C * sizeof(T));
}

}  // namespace

int sampleBufferSize(LumiSize roi, LumiSize maskSize, int channels, int sampleSize) {
    const Copy parts = bufferParts(roi.width, roi.height, storedDim(maskSize.width), storedDim(maskSize.height),
                                   maskSize.width / 2, maskSize.height / 2, channels, sampleSize);
    return addWrap(addWrap(parts.borderBytes, parts.ringBytes), 64);
}

template <class T, int C, bool Max>
void runMorph(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int word, const T* value,
              const uint8_t* record, uint8_t* buffer) {
    const MaskView m(record);
    const int W = m.W(), H = m.H();
    const int w = roi.width, h = roi.height;
    buffer = alignUp(buffer, 32);
    const int code = border::lowCode(word);
    int flags = border::memoryFlags(word);

    if ((W == 1 && H == 1) || (m.classification() & kEmpty)) {
        copyRoi<T, C>(src, srcStep, dst, dstStep, w, h);
        return;
    }

    const int ax = (W - 1) / 2, ay = (H - 1) / 2;
    const int rx = W - ax - 1, by = H - ay - 1;
    if (ax == 0) flags |= border::kLeft | (rx == 0 ? border::kRight : 0);
    if (ay == 0) flags |= border::kTop | (by == 0 ? border::kBottom : 0);

    const Kernel kernel = pickKernel<T, C, Max>(m);
    const Copy parts = bufferParts(w, h, W, H, m.field(3), m.field(4), C, sizeof(T));
    T* scratch = reinterpret_cast<T*>(buffer);
    uint8_t* ring = buffer + parts.borderBytes;
    const int wordIn = code | flags;

    auto at = [&](int x, int y) { return rowAt(src, srcStep, y) + static_cast<ptrdiff_t>(x) * C; };
    auto out = [&](int x, int y) { return rowAt(dst, dstStep, y) + static_cast<ptrdiff_t>(x) * C; };

    if (flags == border::kInMemory) {
        kernel({at(-ax, -ay), srcStep, dst, dstStep, w, h, false}, m, ring);
        return;
    }

    if (rectWithEdges<T, C, Max>(src, srcStep, dst, dstStep, w, h, m, code, flags, value, ring)) return;

    if (w <= W || h <= H) {
        const int bw = w + W - 1, bh = h + H - 1;
        Skip skip;
        if (code == border::kMirror && (m.classification() & kOuterLineZero)) {
            // The mask never reads a line under a wholly zero outer row or
            // column: the copy leaves it out.
            const uint8_t* mb = m.maskBytes();
            bool firstCol = true, lastCol = true;
            for (int i = 0; i < H; ++i) {
                firstCol = firstCol && mb[i * W] == 0;
                lastCol = lastCol && mb[i * W + W - 1] == 0;
            }
            skip.top = m.rowList(0)[0] == 0;
            skip.bottom = m.rowList(H - 1)[0] == 0;
            skip.left = firstCol;
            skip.right = lastCol;
        }
        copyBordered<T, C>(src, srcStep, w, h, -ax, -ay, bw, bh, wordIn, value, scratch, skip);
        kernel({scratch, static_cast<int>(bw * C * sizeof(T)), dst, dstStep, w, h, true}, m, ring);
        return;
    }

    // Bands of border width around a centre read in place.
    int x0 = 0, y0 = 0, wc = w, hc = h;
    auto band = [&](int ox, int oy, int ow, int oh) {
        const int bw = ow + W - 1, bh = oh + H - 1;
        copyBordered<T, C>(src, srcStep, w, h, ox - ax, oy - ay, bw, bh, wordIn, value, scratch, Skip{});
        kernel({scratch, static_cast<int>(bw * C * sizeof(T)), out(ox, oy), dstStep, ow, oh, true}, m, ring);
    };
    if (!(flags & border::kTop)) {
        band(0, 0, w, ay);
        y0 += ay;
        hc -= ay;
    }
    if (!(flags & border::kBottom)) {
        band(0, y0 + hc - by, w, by);
        hc -= by;
    }
    if (middleWithSides<T, C>(src, srcStep, dst, dstStep, w, h, y0, hc, m, kernel, code, flags, value, ring)) return;
    if (!(flags & border::kLeft)) {
        band(0, y0, ax, hc);
        x0 += ax;
        wc -= ax;
    }
    if (!(flags & border::kRight)) {
        band(x0 + wc - rx, y0, rx, hc);
        wc -= rx;
    }
    kernel({at(x0 - ax, y0 - ay), srcStep, out(x0, y0), dstStep, wc, hc, false}, m, ring);
}

#define LUM_MORPH_INSTANCE(T, C)                                                                               \
    template void runMorph<T, C, true>(const T*, int, T*, int, LumiSize, int, const T*, const uint8_t*, uint8_t*); \
    template void runMorph<T, C, false>(const T*, int, T*, int, LumiSize, int, const T*, const uint8_t*, uint8_t*);
LUM_MORPH_INSTANCE(uint8_t, 1)
LUM_MORPH_INSTANCE(uint8_t, 3)
LUM_MORPH_INSTANCE(uint8_t, 4)
LUM_MORPH_INSTANCE(float, 1)
LUM_MORPH_INSTANCE(float, 3)
LUM_MORPH_INSTANCE(float, 4)
LUM_MORPH_INSTANCE(uint16_t, 1)
LUM_MORPH_INSTANCE(int16_t, 1)
#undef LUM_MORPH_INSTANCE

}  // namespace lum::morph
