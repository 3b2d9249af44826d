// Masked norms: validation of the exports, one kernel call, then the value.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "arith/stats_check.h"
#include "arith/stats_kernels.h"
#include "frame/impl.h"

namespace lum {
namespace {

using kernel::NormKind;
using kernel::NormOf;

// The one-image norms of samples wider than a byte test the mask's step after
// the alignment of the source's; every other member tests it with the steps.
template <class T, NormOf O>
constexpr MaskStepTest kMaskStepTest = O == NormOf::Image && sizeof(T) > 1 ? MaskStepTest::AfterAlignment
                                                                           : MaskStepTest::WithSteps;

template <NormKind K>
double rootIfL2(double v) {
    return K == NormKind::L2 ? std::sqrt(v) : v;
}

// num / den, with the root of L2 taken once, after the division. A zero
// denominator forms no quotient: a NaN with the sign bit set when the
// numerator is zero as well, otherwise an infinity of the numerator's sign.
template <NormKind K>
LumStatus relativeValue(kernel::NormTotals t, Lum64f* value) {
    if (t.den == 0.0) {
        if (t.num == 0.0) {
            const uint64_t bits = 0xFFF8000000000000ull;
            std::memcpy(value, &bits, sizeof bits);
        } else {
            *value = t.num < 0.0 ? -HUGE_VAL : HUGE_VAL;
        }
        return lumStatusZeroDenominator;
    }
    *value = rootIfL2<K>(t.num / t.den);
    return lumStatusOk;
}

template <class T, int C, NormKind K>
LumStatus normMember(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roi, int coi, Lum64f* value) {
    if (anyNull(src, mask, value)) return lumStatusNullPointer;
    if (LumStatus st = checkStatsArgs<T, C>(roi, kMaskStepTest<T, NormOf::Image>, maskStep, C == 3, coi, srcStep))
        return st;
    const kernel::NormTotals t = kernel::normMasked<T, C, K, NormOf::Image>(src, srcStep, nullptr, 0, mask, maskStep,
                                                                            roi.width, roi.height, coi - 1);
    *value = rootIfL2<K>(t.num);
    return lumStatusOk;
}

template <class T, int C, NormKind K, NormOf O>
LumStatus normTwoMember(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask, int maskStep,
                        LumiSize roi, int coi, Lum64f* value) {
    if (anyNull(src1, src2, mask, value)) return lumStatusNullPointer;
    if (LumStatus st = checkStatsArgs<T, C>(roi, kMaskStepTest<T, O>, maskStep, C == 3, coi, src1Step, src2Step))
        return st;
    const kernel::NormTotals t =
        kernel::normMasked<T, C, K, O>(src1, src1Step, src2, src2Step, mask, maskStep, roi.width, roi.height, coi - 1);
    if constexpr (O == NormOf::Relative) {
        return relativeValue<K>(t, value);
    } else {
        *value = rootIfL2<K>(t.num);
        return lumStatusOk;
    }
}

}  // namespace

// The exports of one norm and sample type: N the norm's name part, T the
// sample, t its name part.
#define LUM_NORM_MEMBERS(N, T, t)                                                                                     \
    LumStatus norm_##N##_##t##_C1MR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,     \
                                    Lum64f* value) {                                                                  \
        return normMember<T, 1, NormKind::N>(src, srcStep, mask, maskStep, roiSize, 1, value);                        \
    }                                                                                                                 \
    LumStatus norm_##N##_##t##_C3CMR(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize,    \
                                     int coi, Lum64f* value) {                                                        \
        return normMember<T, 3, NormKind::N>(src, srcStep, mask, maskStep, roiSize, coi, value);                      \
    }                                                                                                                 \
    LumStatus normDiff_##N##_##t##_C1MR(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,  \
                                        int maskStep, LumiSize roiSize, Lum64f* value) {                              \
        return normTwoMember<T, 1, NormKind::N, NormOf::Difference>(src1, src1Step, src2, src2Step, mask, maskStep,   \
                                                                    roiSize, 1, value);                               \
    }                                                                                                                 \
    LumStatus normDiff_##N##_##t##_C3CMR(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask, \
                                         int maskStep, LumiSize roiSize, int coi, Lum64f* value) {                    \
        return normTwoMember<T, 3, NormKind::N, NormOf::Difference>(src1, src1Step, src2, src2Step, mask, maskStep,   \
                                                                    roiSize, coi, value);                             \
    }                                                                                                                 \
    LumStatus normRel_##N##_##t##_C1MR(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,   \
                                       int maskStep, LumiSize roiSize, Lum64f* value) {                               \
        return normTwoMember<T, 1, NormKind::N, NormOf::Relative>(src1, src1Step, src2, src2Step, mask, maskStep,     \
                                                                  roiSize, 1, value);                                 \
    }                                                                                                                 \
    LumStatus normRel_##N##_##t##_C3CMR(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,  \
                                        int maskStep, LumiSize roiSize, int coi, Lum64f* value) {                     \
        return normTwoMember<T, 3, NormKind::N, NormOf::Relative>(src1, src1Step, src2, src2Step, mask, maskStep,     \
                                                                  roiSize, coi, value);                               \
    }

#define LUM_NORM_TYPES(N)            \
    LUM_NORM_MEMBERS(N, Lum8u, 8u)   \
    LUM_NORM_MEMBERS(N, Lum16u, 16u) \
    LUM_NORM_MEMBERS(N, Lum32f, 32f)
LUM_NORM_TYPES(Inf)
LUM_NORM_TYPES(L1)
LUM_NORM_TYPES(L2)
#undef LUM_NORM_TYPES
#undef LUM_NORM_MEMBERS

}  // namespace lum
