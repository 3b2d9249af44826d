// Gaussian filter: size queries, the two Init functions, and the validation
// of the filter exports, then one kernel call.
//
// Working spec block (Init_L), 32-bit fields from the block's start:
//   0 kernelSize | 4 table offset, 64 | 8 dataType | 12 not written | 16 zero
//   then r + 1 floats of the half kernel at the first 64-byte boundary in
//   memory behind the 20-byte header (outermost tap first, centre last).
// Header block (Init), in front of a working block:
//   0 kernelSize | 4 legacy table offset, 20 | 8 dataType | 12 borderType |
//   16 fixed-point shift; the full legacy kernel at the first 16-byte boundary
//   in memory behind these 20 bytes, and the working block right behind the
//   header's size (36 + 16 k, or 32 + 32 k for 32f).
// The tables are found again from the block's address, so a block serves
// only where it was initialised.
#include <immintrin.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <type_traits>

#include "filter/gaussian_kernels.h"
#include "frame/border.h"
#include "frame/carve.h"
#include "frame/check.h"
#include "frame/impl.h"
#include "lumcore.h"

namespace lum {
namespace {

constexpr int kHeaderBytes = 20;
constexpr int kTableOffset = 64;
constexpr int kLegacyTableOffset = 20;
constexpr int kInitScratch = 64;
constexpr int kBypassThreshold = 0x80000;

bool badKernelSize(int k) { return k < 3 || (k & 1) == 0; }

int readWord(const Lum8u* block, int index) {
    int32_t v;
    std::memcpy(&v, block + 4 * index, 4);
    return v;
}
void writeWord(Lum8u* block, int index, int32_t v) { std::memcpy(block + 4 * index, &v, 4); }

// Working spec: 4 ((k + 1) / 2) + 128 bytes.
int specSizeL(int k) { return addWrap(mulWrap(4, addWrap(k, 1) / 2), 128); }

// Working buffer: k + 1 rows of S = (4 n + 63) & ~63 bytes, 12 k bytes of
// strips, 64 bytes of alignment slack.
int bufferSizeL(int width, int k, int channels) {
    const int stride = roundRow64(mulWrap(mulWrap(width, channels), 4));
    return addWrap(addWrap(mulWrap(addWrap(k, 1), stride), mulWrap(k, 12)), 64);
}

int legacyHeaderSize(int k, int dataType) {
    return dataType == kDataType32f ? addWrap(32, mulWrap(32, k)) : addWrap(36, mulWrap(16, k));
}

const float* halfKernel(const Lum8u* specL) { return alignUp<float>(specL + kHeaderBytes, 64); }

// Buffer sizes of the row and column pipeline stages of the legacy scheme.
// Both are asked with the ROI width and m rows.
LumStatus pipelineSizes(int dataType, int channels, LumiSize q, int k, int* row, int* column) {
    const bool c1 = channels == 1;
    LumStatus st = lumStatusOk;
    switch (dataType) {
        case kDataType8u:
            st = c1 ? filterRowBorderPipelineGetBufferSize_8u16s_C1R(q, k, row)
                    : filterRowBorderPipelineGetBufferSize_8u16s_C3R(q, k, row);
            if (st == lumStatusOk)
                st = c1 ? filterColumnPipelineGetBufferSize_16sFamily_C1R(q, k, column)
                        : filterColumnPipelineGetBufferSize_16sFamily_C3R(q, k, column);
            return st;
        case kDataType16u:
            st = c1 ? filterRowBorderPipelineGetBufferSize_16u_C1R(q, k, row)
                    : filterRowBorderPipelineGetBufferSize_16u_C3R(q, k, row);
            if (st == lumStatusOk)
                st = c1 ? filterColumnPipelineGetBufferSize_16u_C1R(q, k, column)
                        : filterColumnPipelineGetBufferSize_16u_C3R(q, k, column);
            return st;
        case kDataType16s:
            st = c1 ? filterRowBorderPipelineGetBufferSize_16s_C1R(q, k, row)
                    : filterRowBorderPipelineGetBufferSize_16s_C3R(q, k, row);
            if (st == lumStatusOk)
                st = c1 ? filterColumnPipelineGetBufferSize_16sFamily_C1R(q, k, column)
                        : filterColumnPipelineGetBufferSize_16sFamily_C3R(q, k, column);
            return st;
        default:
            st = c1 ? filterRowBorderPipelineGetBufferSize_32f_C1R(q, k, row)
                    : filterRowBorderPipelineGetBufferSize_32f_C3R(q, k, row);
            if (st == lumStatusOk) st = filterColumnPipelineGetBufferSize_32f(q, k, column);
            return st;
    }
}

// The legacy scheme's buffer: with m = min(height, k),
// L = ((k + width) c + 7) & ~7 and T = L (k + m), the sum of its pieces.
LumStatus legacyBufferSize(LumiSize roi, int k, int dataType, int c, int* out) {
    const int m = roi.height < k ? roi.height : k;
    const int L = static_cast<int>(static_cast<uint32_t>(addWrap(mulWrap(addWrap(k, roi.width), c), 7)) & ~7u);
    const int T = mulWrap(L, addWrap(k, m));
    int row = 0, column = 0;
    if (LumStatus st = pipelineSizes(dataType, c, LumiSize{roi.width, m}, k, &row, &column)) return st;
    int total;
    if (dataType == kDataType32f) {
        const int A = mulWrap(mulWrap(4, L), k) / 2;
        total = addWrap(16, A);
        total = addWrap(total, addWrap(16, A));
        total = addWrap(total, addWrap(64, mulWrap(4, T)));
        total = addWrap(total, addWrap(32, row));
        total = addWrap(total, addWrap(32, column));
        total = addWrap(total, addWrap(32, mulWrap(4, addWrap(k, m))));
    } else {
        // The last piece counts the full height here, where 32f counts m.
        const int B = mulWrap(mulWrap(2, L), k / 2);
        total = addWrap(16, B);
        total = addWrap(total, addWrap(16, B));
        total = addWrap(total, addWrap(64, mulWrap(2, T)));
        total = addWrap(total, addWrap(32, row));
        total = addWrap(total, addWrap(32, column));
        total = addWrap(total, addWrap(32, mulWrap(4, addWrap(k, roi.height))));
    }
    *out = total;
    return lumStatusOk;
}

// Checks shared by the type-free queries and Init, after their pointers.
LumStatus checkKernelTypeChannels(int k, int dataType, int channels) {
    if (badKernelSize(k)) return lumStatusBadArgument;
    if (!gaussianDataTypeOk(dataType)) return lumStatusBadDataType;
    if (!channels13Ok(channels)) return lumStatusBadChannelCount;
    return lumStatusOk;
}

// exp(-(d d) / (sigma (sigma + sigma))) for d = r - i, outermost first.
float halfWeight(int i, int r, float sigma) {
    const float d = static_cast<float>(r - i);
    return std::exp(-(d * d) / (sigma * (sigma + sigma)));
}

// The legacy full kernel, k taps: d = i - k / 2, denominator
// (sigma + sigma) sigma, a plain sum from the first tap, then w / sum.
// Fixed-point taps: w / sum times 4096 (8u) or 32768 (16u, 16s), plus 0.5 in
// double precision, truncated (a NaN weight truncates to the integer
// indefinite value, whose low 16 bits are zero); 32f taps are the quotient,
// eight copies a tap. Nothing is written at or past `end`.
void writeLegacyTable(Lum8u* spec, const Lum8u* end, int k, float sigma, int dataType) {
    const int half = k / 2;
    const float denom = (sigma + sigma) * sigma;
    auto weight = [&](int i) {
        const float d = static_cast<float>(i - half);
        return std::exp(-(d * d) / denom);
    };
    float sum = 0.0f;
    for (int i = 0; i < k; ++i) sum = sum + weight(i);
    Lum8u* table = alignUp(spec + kHeaderBytes, 16);
    auto put = [&](Lum8u* at, const void* bytes, int count) {
        const ptrdiff_t room = end - at;
        if (room <= 0) return;
        std::memcpy(at, bytes, static_cast<size_t>(count < room ? count : room));
    };
    for (int i = 0; i < k; ++i) {
        const float q = weight(i) / sum;
        if (dataType == kDataType32f) {
            float lanes[8];
            for (float& v : lanes) v = q;
            put(table + 32 * static_cast<ptrdiff_t>(i), lanes, 32);
        } else {
            const double scale = dataType == kDataType8u ? 4096.0 : 32768.0;
            const int fixed = _mm_cvttsd_si32(_mm_set_sd(static_cast<double>(q) * scale + 0.5));
            const uint16_t v = static_cast<uint16_t>(static_cast<uint32_t>(fixed) & 0xFFFFu);
            put(table + 2 * static_cast<ptrdiff_t>(i), &v, 2);
        }
    }
}

int legacyShift(int dataType) {
    switch (dataType) {
        case kDataType8u: return 12;
        case kDataType16u:
        case kDataType16s: return 15;
        default: return 0;
    }
}

// ------------------------------------------------------------ filters

template <class T>
constexpr int dataTypeOf() {
    if constexpr (sizeof(T) == 1) return kDataType8u;
    else if constexpr (std::is_same_v<T, Lum16u>) return kDataType16u;
    else if constexpr (std::is_same_v<T, Lum16s>) return kDataType16s;
    else return kDataType32f;
}

template <class T>
using Kernel = void (*)(const T*, int, T*, int, const T*, const kernel::GaussianPlan&);

template <class T, int C>
LumStatus filterL(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int borderType, const T* value,
                  const Lum8u* spec, Lum8u* buffer, Kernel<T> run) {
    if (anyNull(src, dst, buffer, spec)) return lumStatusNullPointer;
    const int row = rowBytes(roi.width, C, sizeof(T));
    if (stepTooSmall(srcStep, row) || stepTooSmall(dstStep, row)) return lumStatusBadStep;
    if (badRoi(roi)) return lumStatusBadSize;
    if (sizeof(T) > 1 && stepsMisaligned(sizeof(T), srcStep, dstStep)) return lumStatusStepNotAligned;
    if (!border::filterAcceptsAnyInMemory(borderType)) return lumStatusBadBorderType;
    if (border::lowCode(borderType) == border::kConstant && value == nullptr) return lumStatusNullPointer;
    const int k = readWord(spec, 0);
    if (badKernelSize(k)) return lumStatusBadArgument;

    // Output larger than the cache streams past it: total counts samples of
    // a row times rows, times 1 (8u), 4 (16u, 16s) or 8 (32f).
    constexpr int64_t factor = sizeof(T) == 1 ? 1 : (sizeof(T) == 2 ? 4 : 8);
    const int64_t total = factor * roi.width * C * static_cast<int64_t>(roi.height);
    bool bypass = false;
    if (total >= kBypassThreshold) {
        int cache = 0;
        (void)lumGetMaxCacheSizeB(&cache);
        bypass = total >= cache;
    }
    const kernel::GaussianPlan plan{roi.width, roi.height, borderType, k, halfKernel(spec), buffer, bypass};
    run(src, srcStep, dst, dstStep, value, plan);
    return lumStatusOk;
}

template <class T, int C>
LumStatus filterHeader(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, int borderType, const T* value,
                       const Lum8u* spec, Lum8u* buffer, Kernel<T> run) {
    if (anyNull(src, dst, spec, buffer)) return lumStatusNullPointer;
    if (srcStep < 1 || dstStep <= 0) return lumStatusBadStep;
    const int k = readWord(spec, 0);
    int specSize = 0, bufferSize = 0;
    if (LumStatus st = filterGaussianGetBufferSize(roi, k, static_cast<LumDataType>(dataTypeOf<T>()), C, &specSize,
                                                   &bufferSize))
        return st;
    return filterL<T, C>(src, srcStep, dst, dstStep, roi, borderType, value,
                         spec + legacyHeaderSize(k, dataTypeOf<T>()), buffer, run);
}

template <class T, int C>
LumStatus filterBorder(const T* src, int srcStep, T* dst, int dstStep, LumiSize roi, const T* value,
                       const Lum8u* spec, Lum8u* buffer, Kernel<T> run) {
    if (anyNull(spec)) return lumStatusNullPointer;
    return filterHeader<T, C>(src, srcStep, dst, dstStep, roi, readWord(spec, 3), value, spec, buffer, run);
}

}  // namespace

// ------------------------------------------------------------ size queries

LumStatus filterGaussianGetSpecSize_L(LumSizeL kernelSize, LumDataType dataType, int numChannels,
                                      LumSizeL* specSize, LumSizeL* bufferSize) {
    if (anyNull(specSize, bufferSize)) return lumStatusNullPointer;
    if (LumStatus st = checkKernelTypeChannels(kernelSize, dataType, numChannels)) return st;
    *specSize = specSizeL(kernelSize);
    *bufferSize = kInitScratch;
    return lumStatusOk;
}

LumStatus filterGaussianGetSpecSize(int kernelSize, LumDataType dataType, int numChannels, int* specSize,
                                    int* bufferSize) {
    if (anyNull(specSize, bufferSize)) return lumStatusNullPointer;
    LumSizeL spec = 0, buffer = 0;
    if (LumStatus st = filterGaussianGetSpecSize_L(kernelSize, dataType, numChannels, &spec, &buffer)) return st;
    *specSize = spec;
    *bufferSize = buffer;
    return lumStatusOk;
}

LumStatus filterGaussianGetBufferSize_L(LumSizeL roiWidth, LumSizeL roiHeight, LumSizeL kernelSize,
                                        LumDataType dataType, LumiBorderType borderType, int numChannels,
                                        LumSizeL* bufferSize) {
    if (anyNull(bufferSize)) return lumStatusNullPointer;
    if (roiWidth < 1 || roiHeight < 1) return lumStatusBadSize;
    if (LumStatus st = checkKernelTypeChannels(kernelSize, dataType, numChannels)) return st;
    if (!border::filterAcceptsAnyInMemory(borderType)) return lumStatusBadBorderType;
    *bufferSize = bufferSizeL(roiWidth, kernelSize, numChannels);
    return lumStatusOk;
}

LumStatus filterGaussianGetBufferSize(LumiSize roiSize, int kernelSize, LumDataType dataType, int numChannels,
                                      int* specSize, int* bufferSize) {
    if (anyNull(specSize, bufferSize)) return lumStatusNullPointer;
    if (badRoi(roiSize)) return lumStatusBadSize;
    if (LumStatus st = checkKernelTypeChannels(kernelSize, dataType, numChannels)) return st;
    int legacy = 0;
    if (LumStatus st = legacyBufferSize(roiSize, kernelSize, dataType, numChannels, &legacy)) return st;
    int best = legacy;
    for (int word : {border::kInMemory, border::kConstant, border::kReplicate, border::kMirror}) {
        LumSizeL size = 0;
        if (LumStatus st = filterGaussianGetBufferSize_L(roiSize.width, roiSize.height, kernelSize, dataType, word,
                                                         numChannels, &size))
            return st;
        if (size > best) best = size;
    }
    if (kInitScratch > best) best = kInitScratch;
    *specSize = addWrap(legacyHeaderSize(kernelSize, dataType), specSizeL(kernelSize));
    *bufferSize = best;
    return lumStatusOk;
}

// ------------------------------------------------------------ Init

LumStatus filterGaussianInit_L(LumiSize roiSize, LumSizeL kernelSize, Lum32f sigma, LumiBorderType borderType,
                               LumDataType dataType, int numChannels, Lum8u* spec, Lum8u* buffer) {
    if (anyNull(spec, buffer)) return lumStatusNullPointer;
    if (badRoi(roiSize)) return lumStatusBadSize;
    if (LumStatus st = checkKernelTypeChannels(kernelSize, dataType, numChannels)) return st;
    if (!(sigma > 0.0f)) return lumStatusBadArgument;
    if (!border::filterAcceptsAnyInMemory(borderType)) return lumStatusBadBorderType;

    const int r = kernelSize / 2;
    float sum = 0.0f;
    for (int i = 0; i < r; ++i) sum = std::fma(halfWeight(i, r, sigma), 2.0f, sum);
    sum = sum + 1.0f;
    if (sum == 0.0f) return lumStatusDivideByZero;
    const float inv = 1.0f / sum;

    writeWord(spec, 0, kernelSize);
    writeWord(spec, 1, kTableOffset);
    writeWord(spec, 2, dataType);
    writeWord(spec, 4, 0);
    float* half = alignUp<float>(spec + kHeaderBytes, 64);
    for (int i = 0; i < r; ++i) half[i] = halfWeight(i, r, sigma) * inv;
    half[r] = 1.0f * inv;
    return lumStatusOk;
}

LumStatus filterGaussianInit(LumiSize roiSize, int kernelSize, Lum32f sigma, LumiBorderType borderType,
                             LumDataType dataType, int numChannels, Lum8u* spec, Lum8u* buffer) {
    if (anyNull(spec, buffer)) return lumStatusNullPointer;
    if (badRoi(roiSize)) return lumStatusBadSize;
    if (LumStatus st = checkKernelTypeChannels(kernelSize, dataType, numChannels)) return st;
    if (!(sigma > 0.0f)) return lumStatusBadArgument;
    if (!border::filterAccepts(borderType)) return lumStatusBadBorderType;

    const int header = legacyHeaderSize(kernelSize, dataType);
    writeWord(spec, 0, kernelSize);
    writeWord(spec, 1, kLegacyTableOffset);
    writeWord(spec, 2, dataType);
    writeWord(spec, 3, borderType);
    writeWord(spec, 4, legacyShift(dataType));
    writeLegacyTable(spec, spec + header, kernelSize, sigma, dataType);
    return filterGaussianInit_L(roiSize, kernelSize, sigma, borderType, dataType, numChannels, spec + header, buffer);
}

// ------------------------------------------------------------ filters

#define LUM_GAUSSIAN_MEMBERS(t, T, C)                                                                              \
    LumStatus filterGaussian_##t##_C##C##R_L(const T* src, LumSizeL srcStep, T* dst, LumSizeL dstStep,              \
                                             LumiSize roiSize, LumiBorderType borderType, const T* borderValue,    \
                                             const Lum8u* spec, Lum8u* buffer) {                                   \
        return filterL<T, C>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer,           \
                             kernel::gaussian_##t##_C##C);                                                         \
    }                                                                                                              \
    LumStatus filterGaussian_##t##_C##C##R(const T* src, int srcStep, T* dst, int dstStep, LumiSize roiSize,       \
                                           LumiBorderType borderType, const T* borderValue, const Lum8u* spec,     \
                                           Lum8u* buffer) {                                                        \
        return filterHeader<T, C>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer,      \
                                  kernel::gaussian_##t##_C##C);                                                    \
    }

LUM_GAUSSIAN_MEMBERS(8u, Lum8u, 1)
LUM_GAUSSIAN_MEMBERS(8u, Lum8u, 3)
LUM_GAUSSIAN_MEMBERS(16u, Lum16u, 1)
LUM_GAUSSIAN_MEMBERS(16u, Lum16u, 3)
LUM_GAUSSIAN_MEMBERS(16s, Lum16s, 1)
LUM_GAUSSIAN_MEMBERS(16s, Lum16s, 3)
LUM_GAUSSIAN_MEMBERS(32f, Lum32f, 1)
LUM_GAUSSIAN_MEMBERS(32f, Lum32f, 3)
#undef LUM_GAUSSIAN_MEMBERS

// Border forms: the border word is the one stored in the header block; one channel
// passes its value by value, three by pointer.
#define LUM_GAUSSIAN_BORDER(t, T)                                                                                  \
    LumStatus filterGaussianBorder_##t##_C1R(const T* src, int srcStep, T* dst, int dstStep, LumiSize roiSize,     \
                                             T borderValue, const Lum8u* spec, Lum8u* buffer) {                    \
        return filterBorder<T, 1>(src, srcStep, dst, dstStep, roiSize, &borderValue, spec, buffer,                 \
                                  kernel::gaussian_##t##_C1);                                                      \
    }                                                                                                              \
    LumStatus filterGaussianBorder_##t##_C3R(const T* src, int srcStep, T* dst, int dstStep, LumiSize roiSize,     \
                                             const T* borderValue, const Lum8u* spec, Lum8u* buffer) {             \
        return filterBorder<T, 3>(src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer,                  \
                                  kernel::gaussian_##t##_C3);                                                      \
    }

LUM_GAUSSIAN_BORDER(8u, Lum8u)
LUM_GAUSSIAN_BORDER(16u, Lum16u)
LUM_GAUSSIAN_BORDER(16s, Lum16s)
LUM_GAUSSIAN_BORDER(32f, Lum32f)
#undef LUM_GAUSSIAN_BORDER

}  // namespace lum
