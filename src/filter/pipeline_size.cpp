// Buffer sizes of the row and column pipeline stages. The Gaussian family
// calls these too, to size its legacy buffers. Sizes are plain wrapping 32-bit
// sums and products of the kernel length k and the ROI width w.
#include "frame/check.h"
#include "frame/impl.h"

namespace lum {
namespace {

// Null result, then width, height or kernel length below 1; the formula
// sees only valid arguments.
template <class Formula>
LumStatus query(LumiSize roi, int k, int* bufferSize, Formula formula) {
    if (anyNull(bufferSize)) return lumStatusNullPointer;
    if (badRoi(roi) || k < 1) return lumStatusBadSize;
    *bufferSize = formula(k, roi.width);
    return lumStatusOk;
}

// a * k + b, wrapping.
constexpr int linear(int a, int k, int b) { return addWrap(mulWrap(a, k), b); }
// n rounded up to a multiple of 4 and of 8.
constexpr int r4(int n) { return mulWrap(addWrap(n, 3) / 4, 4); }
constexpr int r8(int n) { return mulWrap(addWrap(n, 7) / 8, 8); }

}  // namespace

// ------------------------------------------------------------ row stage

LumStatus filterRowBorderPipelineGetBufferSize_16s_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(48, k, 112); });
}
LumStatus filterRowBorderPipelineGetBufferSize_16s_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(40, k, 96); });
}
LumStatus filterRowBorderPipelineGetBufferSize_16u_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(64, k, 96); });
}
LumStatus filterRowBorderPipelineGetBufferSize_16u_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(128, k, 96); });
}
LumStatus filterRowBorderPipelineGetBufferSize_32f_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(48, k, 96); });
}
LumStatus filterRowBorderPipelineGetBufferSize_32f_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(144, k, 96); });
}
// 34k, plus 32 bytes for each packed group of four taps, plus 66.
LumStatus filterRowBorderPipelineGetBufferSize_8u16s_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return addWrap(linear(34, k, 66), mulWrap(32, k / 4)); });
}
LumStatus filterRowBorderPipelineGetBufferSize_8u16s_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(60, k, 144); });
}
LumStatus filterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(24, k, 96); });
}
LumStatus filterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(208, k, 96); });
}

// ------------------------------------------------------------ column stage

// One query serves 16s8s, 16s8u and 16s: three rows of converted floats.
LumStatus filterColumnPipelineGetBufferSize_16sFamily_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int, int w) { return linear(12, r4(w), 64); });
}
LumStatus filterColumnPipelineGetBufferSize_16sFamily_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int, int w) { return linear(36, r4(w), 64); });
}
LumStatus filterColumnPipelineGetBufferSize_16u_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int w) { return addWrap(linear(32, k, 64), mulWrap(32, addWrap(w, 3) / 4)); });
}
LumStatus filterColumnPipelineGetBufferSize_16u_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size,
                 [](int k, int w) { return addWrap(linear(32, k, 64), mulWrap(32, addWrap(mulWrap(3, w), 3) / 4)); });
}
// One query serves both channel counts.
LumStatus filterColumnPipelineGetBufferSize_32f(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int k, int) { return linear(32, k, 32); });
}
LumStatus filterColumnPipelineGetBufferSize_Low_16s_C1R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int, int w) { return linear(12, r8(w), 64); });
}
LumStatus filterColumnPipelineGetBufferSize_Low_16s_C3R(LumiSize roi, int k, int* size) {
    return query(roi, k, size, [](int, int w) { return linear(36, r8(w), 64); });
}

}  // namespace lum
