// Integral images: validation of the exports, then one kernel call.
#include <type_traits>

#include "arith/integral_kernels.h"
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// The result has width + extra columns: 1 for plain integrals, 2 for tilted.
// Checks: pointers, ROI, every step against its row bytes, then every step
// of a 4- or 8-byte image against its element size. Q is void for members
// without a squared result.
template <int extra, class S, class D, class Q = void>
LumStatus checkIntegral(const S* src, int srcStep, const D* dst, int dstStep, LumiSize roi,
                        const Q* sqr = nullptr, int sqrStep = 0) {
    constexpr bool hasSqr = !std::is_void_v<Q>;
    if (anyNull(src, dst)) return lumStatusNullPointer;
    if constexpr (hasSqr) {
        if (sqr == nullptr) return lumStatusNullPointer;
    }
    if (badRoi(roi)) return lumStatusBadSize;
    const int columns = addWrap(roi.width, extra);
    bool tooSmall = stepTooSmall(srcStep, rowBytes(roi.width, 1, sizeof(S))) ||
                    stepTooSmall(dstStep, rowBytes(columns, 1, sizeof(D)));
    if constexpr (hasSqr) tooSmall = tooSmall || stepTooSmall(sqrStep, rowBytes(columns, 1, sizeof(Q)));
    if (tooSmall) return lumStatusBadStep;
    bool misaligned = stepsMisaligned(sizeof(D), dstStep);
    if constexpr (sizeof(S) > 1) misaligned = misaligned || stepsMisaligned(sizeof(S), srcStep);
    if constexpr (hasSqr) misaligned = misaligned || stepsMisaligned(sizeof(Q), sqrStep);
    if (misaligned) return lumStatusStepNotAligned;
    return lumStatusOk;
}

// Checks, then the kernel on (src, steps, width, height, offsets).
template <int extra, class S, class D, class Kernel, class... Offsets>
LumStatus runIntegral(Kernel kernel, const S* src, int srcStep, D* dst, int dstStep, LumiSize roi, Offsets... v) {
    if (LumStatus st = checkIntegral<extra>(src, srcStep, dst, dstStep, roi)) return st;
    kernel(src, srcStep, dst, dstStep, roi.width, roi.height, v...);
    return lumStatusOk;
}

template <int extra, class D, class Q, class Kernel>
LumStatus runSquared(Kernel kernel, const Lum8u* src, int srcStep, D* dst, int dstStep, Q* sqr, int sqrStep,
                     LumiSize roi, D value, Q valueSqr) {
    if (LumStatus st = checkIntegral<extra>(src, srcStep, dst, dstStep, roi, sqr, sqrStep)) return st;
    kernel(src, srcStep, dst, dstStep, sqr, sqrStep, roi.width, roi.height, value, valueSqr);
    return lumStatusOk;
}

}  // namespace

LumStatus integral_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize) {
    return runIntegral<1>(kernel::integral_32f, src, srcStep, dst, dstStep, roiSize);
}

LumStatus integral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize,
                             Lum32f value) {
    return runIntegral<1>(kernel::integral_8u32f, src, srcStep, dst, dstStep, roiSize, value);
}

LumStatus integral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumiSize roiSize,
                             Lum32s value) {
    return runIntegral<1>(kernel::integral_8u32s, src, srcStep, dst, dstStep, roiSize, value);
}

LumStatus sqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr,
                                   int sqrStep, LumiSize roiSize, Lum32f value, Lum64f valueSqr) {
    return runSquared<1>(kernel::sqrIntegral_8u32f64f, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value,
                         valueSqr);
}

LumStatus sqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr,
                                   int sqrStep, LumiSize roiSize, Lum32s value, Lum64f valueSqr) {
    return runSquared<1>(kernel::sqrIntegral_8u32s64f, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value,
                         valueSqr);
}

LumStatus sqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr, int sqrStep,
                                LumiSize roiSize, Lum32s value, Lum32s valueSqr) {
    return runSquared<1>(kernel::sqrIntegral_8u32s, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value,
                         valueSqr);
}

LumStatus tiltedIntegral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize,
                                   Lum32f value) {
    return runIntegral<2>(kernel::tiltedIntegral_8u32f, src, srcStep, dst, dstStep, roiSize, value);
}

LumStatus tiltedIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumiSize roiSize,
                                   Lum32s value) {
    return runIntegral<2>(kernel::tiltedIntegral_8u32s, src, srcStep, dst, dstStep, roiSize, value);
}

LumStatus tiltedSqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr,
                                         int sqrStep, LumiSize roiSize, Lum32f value, Lum64f valueSqr) {
    return runSquared<2>(kernel::tiltedSqrIntegral_8u32f64f, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize,
                         value, valueSqr);
}

LumStatus tiltedSqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr,
                                         int sqrStep, LumiSize roiSize, Lum32s value, Lum64f valueSqr) {
    return runSquared<2>(kernel::tiltedSqrIntegral_8u32s64f, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize,
                         value, valueSqr);
}

LumStatus tiltedSqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr,
                                      int sqrStep, LumiSize roiSize, Lum32s value, Lum32s valueSqr) {
    return runSquared<2>(kernel::tiltedSqrIntegral_8u32s, src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value,
                         valueSqr);
}

}  // namespace lum
