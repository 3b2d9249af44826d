// Motion history, AVX2: the row body of frame/pixel_rows.h with an op that
// builds both results by lane compares and blends, no branch a pixel.
#include "detect/motion_history_kernels.h"
#include "frame/pixel_rows.h"

namespace lum::kernel {
namespace {

// The silhouette is compared as a float with 0.0, unordered counting as not
// equal: -0 is no motion, NaN is motion (8 and 16 bit samples convert
// exactly, so for them this is the plain integer test). A history value
// below the limit fades to +0.0; one equal to it survives, and a NaN history
// compares false and stays.
struct MotionHistoryOp {
    __m256 stampV, limitV;
    float stamp, limit;

    __m256 vec(__m256 s, __m256, __m256 h, __m256) const {
        const __m256 motion = _mm256_cmp_ps(s, _mm256_setzero_ps(), _CMP_NEQ_UQ);
        const __m256 stale = _mm256_cmp_ps(h, limitV, _CMP_LT_OQ);
        return _mm256_blendv_ps(_mm256_andnot_ps(stale, h), stampV, motion);
    }
    float one(float s, float, float h, float) const {
        const bool motion = !(s == 0.0f);
        const float kept = h < limit ? 0.0f : h;
        return motion ? stamp : kept;
    }
};

}  // namespace

template <class S>
void updateMotionHistoryRows(const S* sil, int silStep, Lum32f* mhi, int mhiStep, int n, int height, Lum32f timestamp,
                             Lum32f limit) {
    const MotionHistoryOp op{_mm256_set1_ps(timestamp), _mm256_set1_ps(limit), timestamp, limit};
    const simd::PixelImages<S> im{sil, silStep, nullptr, 0, nullptr, 0, mhi, mhiStep, mhi, mhiStep};
    simd::pixelRows<S, MotionHistoryOp, false, false>(im, n, height, op, 0.0f);
}

template void updateMotionHistoryRows<Lum8u>(const Lum8u*, int, Lum32f*, int, int, int, Lum32f, Lum32f);
template void updateMotionHistoryRows<Lum16u>(const Lum16u*, int, Lum32f*, int, int, int, Lum32f, Lum32f);
template void updateMotionHistoryRows<Lum32f>(const Lum32f*, int, Lum32f*, int, int, int, Lum32f, Lum32f);

}  // namespace lum::kernel
