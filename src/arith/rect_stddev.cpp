// Window standard deviations: validation of the exports, the window's
// corners and normaliser, then one kernel call.
#include <cstdint>
#include <type_traits>

#include "arith/rect_stddev_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// c is the number of integral columns a result row reaches, as the step
// test counts them. Checks: pointers, ROI, steps against row bytes, step
// alignment, then the window's offset and size.
template <class I, class Q, class O>
LumStatus checkWindow(const I* src, int srcStep, const Q* sqr, int sqrStep, const O* dst, int dstStep, LumiSize roi,
                      LumiRect rect, int c) {
    if (anyNull(src, sqr, dst)) return lumStatusNullPointer;
    if (badRoi(roi)) return lumStatusBadSize;
    if (stepTooSmall(srcStep, mulWrap(c, sizeof(I))) || stepTooSmall(sqrStep, mulWrap(c, sizeof(Q))) ||
        stepTooSmall(dstStep, rowBytes(roi.width, 1, sizeof(O))))
        return lumStatusBadStep;
    if (stepsMisaligned(sizeof(I), srcStep) || stepsMisaligned(sizeof(Q), sqrStep) ||
        stepsMisaligned(sizeof(O), dstStep))
        return lumStatusStepNotAligned;
    if (rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1) return lumStatusBadSize;
    return lumStatusOk;
}

// Integral columns reached: width + x + w upright, h + y + x + w + width - 1
// tilted, in wrapping 32-bit arithmetic.
int uprightColumns(LumiSize roi, LumiRect r) { return addWrap(addWrap(roi.width, r.x), r.width); }
int tiltedColumns(LumiSize roi, LumiRect r) {
    return addWrap(addWrap(addWrap(addWrap(r.height, r.y), addWrap(r.x, r.width)), roi.width), -1);
}

kernel::Window uprightWindow(LumiRect r) {
    const int64_t top = r.y, bottom = int64_t{r.y} + r.height;
    const int64_t left = r.x, right = int64_t{r.x} + r.width;
    return {{top, left}, {top, right}, {bottom, left}, {bottom, right}};
}

// A window turned by 45 degrees: from A, B lies h down and h left, C w down
// and w right, D both.
kernel::Window tiltedWindow(LumiRect r) {
    const int64_t row = int64_t{r.x} + r.y, col = int64_t{r.x} - r.y;
    const int64_t w = r.width, h = r.height;
    return {{row, col}, {row + h, col - h}, {row + w, col + w}, {row + h + w, col - h + w}};
}

// 1 / area with the area a wrapping 32-bit product.
double normaliser(int area) { return 1.0 / static_cast<double>(area); }
float normaliserFloat(int area) { return 1.0f / static_cast<float>(area); }

// 2^-scaleFactor from a shift of the 32-bit int 1 by the count modulo 32:
// 1 / (1 << f) for f >= 0, (1 << -f) for f < 0. A count of 31 gives the int
// -2^31, so a negative scale.
float scaleOf(int scaleFactor) {
    if (scaleFactor >= 0) {
        const int32_t d = static_cast<int32_t>(1u << (static_cast<unsigned>(scaleFactor) & 31u));
        return 1.0f / static_cast<float>(d);
    }
    const int32_t m = static_cast<int32_t>(1u << ((0u - static_cast<unsigned>(scaleFactor)) & 31u));
    return static_cast<float>(m);
}

// The window's corners, the columns its step test counts, and its area.
struct Shape {
    kernel::Window window;
    int columns;
    int area;
};

Shape upright(LumiSize roi, LumiRect r) { return {uprightWindow(r), uprightColumns(roi, r), mulWrap(r.width, r.height)}; }
Shape tilted(LumiSize roi, LumiRect r) {
    return {tiltedWindow(r), tiltedColumns(roi, r), mulWrap(mulWrap(2, r.width), r.height)};
}

// Members with a float result and a double normaliser.
template <class I>
LumStatus deviation(const I* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep,
                    LumiSize roi, LumiRect rect, Shape (*shapeOf)(LumiSize, LumiRect)) {
    const Shape shape = shapeOf(roi, rect);
    if (LumStatus st = checkWindow(src, srcStep, sqr, sqrStep, dst, dstStep, roi, rect, shape.columns)) return st;
    if constexpr (std::is_same_v<I, Lum32f>)
        kernel::windowStdDev_32f(src, srcStep, sqr, sqrStep, dst, dstStep, roi.width, roi.height, shape.window,
                                 normaliser(shape.area));
    else
        kernel::windowStdDev_32s32f(src, srcStep, sqr, sqrStep, dst, dstStep, roi.width, roi.height, shape.window,
                                    normaliser(shape.area));
    return lumStatusOk;
}

// The scaled 32s member, with a float normaliser.
LumStatus scaledDeviation(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst, int dstStep,
                          LumiSize roi, LumiRect rect, int scaleFactor, Shape (*shapeOf)(LumiSize, LumiRect)) {
    const Shape shape = shapeOf(roi, rect);
    if (LumStatus st = checkWindow(src, srcStep, sqr, sqrStep, dst, dstStep, roi, rect, shape.columns)) return st;
    kernel::windowStdDev_32s(src, srcStep, sqr, sqrStep, dst, dstStep, roi.width, roi.height, shape.window,
                             normaliserFloat(shape.area), scaleOf(scaleFactor));
    return lumStatusOk;
}

}  // namespace

LumStatus rectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst,
                             int dstStep, LumiSize roiSize, LumiRect rect) {
    return deviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, upright);
}

LumStatus rectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst,
                                int dstStep, LumiSize roiSize, LumiRect rect) {
    return deviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, upright);
}

LumStatus rectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst,
                                int dstStep, LumiSize roiSize, LumiRect rect, int scaleFactor) {
    return scaledDeviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, scaleFactor, upright);
}

LumStatus tiltedRectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst,
                                   int dstStep, LumiSize roiSize, LumiRect rect) {
    return deviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, tilted);
}

LumStatus tiltedRectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst,
                                      int dstStep, LumiSize roiSize, LumiRect rect) {
    return deviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, tilted);
}

LumStatus tiltedRectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst,
                                      int dstStep, LumiSize roiSize, LumiRect rect, int scaleFactor) {
    return scaledDeviation(src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, scaleFactor, tilted);
}

}  // namespace lum
