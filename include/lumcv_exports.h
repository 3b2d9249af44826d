/*
 * lumcv_exports.h - the one list of the library's exports.
 *
 * One row an export, in byte order of the name (capitals before small
 * letters): LUM_EXPORT(return type, name, implementation, (parameters),
 * (arguments)). Rows that share an implementation name the same one; their
 * parameters are then identical. The list drives the public prototypes, the
 * entry table and its stubs, the exported-symbol list of the linker and the
 * tests that compare them with the built library. Add an export by adding
 * its row here and defining its implementation in namespace lum.
 *
 * No include guard: the file is included once per meaning of LUM_EXPORT.
 */

/* Version of the module. Never fails; the record is constant. */
LUM_EXPORT(const LumLibraryVersion*, lumcvGetLibVersion, getLibVersion, (void), ())

/*
 * Absolute difference.
 *   8u, 16u:  dst = (a - b saturated at 0) + (b - a saturated at 0), exact.
 *   32f:      dst = |a - b|: the difference with its sign bit cleared, so a NaN
 *             keeps its payload with a clear sign and -0 becomes +0.
 *   AbsDiffC: 8u and 16u clamp value into the sample's range first, silently;
 *             32f forms value - src, in that order.
 *   8u C3:    the 8u C1 operation on rows three times as wide.
 * Reads and writes exactly the ROI's samples.
 */
LUM_EXPORT(LumStatus, lumiAbsDiffC_16u_C1R, absDiffC_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, int value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiAbsDiffC_32f_C1R, absDiffC_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, Lum32f value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiAbsDiffC_8u_C1R, absDiffC_8u_C1R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, int value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiAbsDiff_16u_C1R, absDiff_16u_C1R,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, Lum16u* dst, int dstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, dst, dstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAbsDiff_32f_C1R, absDiff_32f_C1R,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* dst, int dstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, dst, dstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAbsDiff_8u_C1R, absDiff_8u_C1R,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, dst, dstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAbsDiff_8u_C3R, absDiff_8u_C3R,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, dst, dstStep, roiSize))

/*
 * Buffer sizes of the row and column pipeline stages, in bytes, for a ROI and
 * a kernel length k (w the ROI width; the height does not matter, the row
 * queries do not depend on the width either). Null bufferSize:
 * lumStatusNullPointer; width, height or kernelSize below 1: lumStatusBadSize.
 */
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, filterColumnPipelineGetBufferSize_16sFamily_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, filterColumnPipelineGetBufferSize_16sFamily_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, filterColumnPipelineGetBufferSize_16sFamily_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s8u_C3R, filterColumnPipelineGetBufferSize_16sFamily_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s_C1R, filterColumnPipelineGetBufferSize_16sFamily_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16s_C3R, filterColumnPipelineGetBufferSize_16sFamily_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16u_C1R, filterColumnPipelineGetBufferSize_16u_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_16u_C3R, filterColumnPipelineGetBufferSize_16u_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_32f_C1R, filterColumnPipelineGetBufferSize_32f,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_32f_C3R, filterColumnPipelineGetBufferSize_32f,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, filterColumnPipelineGetBufferSize_Low_16s_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, filterColumnPipelineGetBufferSize_Low_16s_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))

/*
 * Gaussian smoothing with a separable, symmetric kernel of odd size k >= 3,
 * radius r = k / 2, for 8u, 16u, 16s and 32f samples in one or three
 * interleaved channels (channels filtered independently).
 *   Kernel (Init_L, single precision): for i < r, d = r - i,
 *     w[i] = expf(-(d * d) / (sigma * (sigma + sigma))), sum = fma(w[i], 2, sum);
 *     w[r] = 1, sum += 1; every w[i] *= 1.0f / sum.
 *   Row pass, per sample: 3 taps: fma(B(x-1) + B(x+1), w[0], w[1] * B(x));
 *     otherwise (B(x-r) + B(x+r)) * w[0], then fma(pair i, w[i], acc) for
 *     i = 1 .. r-1 (the pair added before the multiply), then
 *     fma(B(x), w[r], acc). The column pass does the same over r + 1 pairs of
 *     float rows. 8u, 16u, 16s round to nearest with ties to even and
 *     saturate; 16s with k = 5 keeps the low 16 bits of the rounded value.
 *   Outside the ROI: low code 1 replicates, 3 mirrors (repeatedly, about the
 *     edge sample), 6 takes borderValue (rows outside become the float of
 *     borderValue without a row pass); flags 16, 32, 64, 128 read the top,
 *     bottom, left, right neighbours from memory; any word with all four
 *     flags reads all of them from memory, up to r pixels and r rows away.
 *   _L layer: the spec block of Init_L, a buffer of GetBufferSize_L bytes.
 *   Without _L: the spec block of Init (a header and a legacy kernel table in
 *     front of the _L block); Border forms take the border word from it.
 */
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_16s_C1R, filterGaussianBorder_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, Lum16s borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_16s_C3R, filterGaussianBorder_16s_C3R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_16u_C1R, filterGaussianBorder_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, Lum16u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_16u_C3R, filterGaussianBorder_16u_C3R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_32f_C1R, filterGaussianBorder_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, Lum32f borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_32f_C3R, filterGaussianBorder_32f_C3R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_8u_C1R, filterGaussianBorder_8u_C1R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, Lum8u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianBorder_8u_C3R, filterGaussianBorder_8u_C3R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianGetBufferSize, filterGaussianGetBufferSize,
           (LumiSize roiSize, int kernelSize, LumDataType dataType, int numChannels, int* specSize, int* bufferSize),
           (roiSize, kernelSize, dataType, numChannels, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterGaussianGetBufferSize_L, filterGaussianGetBufferSize_L,
           (LumSizeL roiWidth, LumSizeL roiHeight, LumSizeL kernelSize, LumDataType dataType, LumiBorderType borderType, int numChannels, LumSizeL* bufferSize),
           (roiWidth, roiHeight, kernelSize, dataType, borderType, numChannels, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterGaussianGetSpecSize, filterGaussianGetSpecSize,
           (int kernelSize, LumDataType dataType, int numChannels, int* specSize, int* bufferSize),
           (kernelSize, dataType, numChannels, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterGaussianGetSpecSize_L, filterGaussianGetSpecSize_L,
           (LumSizeL kernelSize, LumDataType dataType, int numChannels, LumSizeL* specSize, LumSizeL* bufferSize),
           (kernelSize, dataType, numChannels, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterGaussianInit, filterGaussianInit,
           (LumiSize roiSize, int kernelSize, Lum32f sigma, LumiBorderType borderType, LumDataType dataType, int numChannels, Lum8u* spec, Lum8u* buffer),
           (roiSize, kernelSize, sigma, borderType, dataType, numChannels, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussianInit_L, filterGaussianInit_L,
           (LumiSize roiSize, LumSizeL kernelSize, Lum32f sigma, LumiBorderType borderType, LumDataType dataType, int numChannels, Lum8u* spec, Lum8u* buffer),
           (roiSize, kernelSize, sigma, borderType, dataType, numChannels, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16s_C1R, filterGaussian_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16s_C1R_L, filterGaussian_16s_C1R_L,
           (const Lum16s* src, LumSizeL srcStep, Lum16s* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16s_C3R, filterGaussian_16s_C3R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16s_C3R_L, filterGaussian_16s_C3R_L,
           (const Lum16s* src, LumSizeL srcStep, Lum16s* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16u_C1R, filterGaussian_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16u_C1R_L, filterGaussian_16u_C1R_L,
           (const Lum16u* src, LumSizeL srcStep, Lum16u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16u_C3R, filterGaussian_16u_C3R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_16u_C3R_L, filterGaussian_16u_C3R_L,
           (const Lum16u* src, LumSizeL srcStep, Lum16u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_32f_C1R, filterGaussian_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_32f_C1R_L, filterGaussian_32f_C1R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_32f_C3R, filterGaussian_32f_C3R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_32f_C3R_L, filterGaussian_32f_C3R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_8u_C1R, filterGaussian_8u_C1R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_8u_C1R_L, filterGaussian_8u_C1R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_8u_C3R, filterGaussian_8u_C3R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiFilterGaussian_8u_C3R_L, filterGaussian_8u_C3R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))

LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_16s_C1R, filterRowBorderPipelineGetBufferSize_16s_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_16s_C3R, filterRowBorderPipelineGetBufferSize_16s_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_16u_C1R, filterRowBorderPipelineGetBufferSize_16u_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_16u_C3R, filterRowBorderPipelineGetBufferSize_16u_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_32f_C1R, filterRowBorderPipelineGetBufferSize_32f_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_32f_C3R, filterRowBorderPipelineGetBufferSize_32f_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, filterRowBorderPipelineGetBufferSize_8u16s_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, filterRowBorderPipelineGetBufferSize_8u16s_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, filterRowBorderPipelineGetBufferSize_Low_16s_C1R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, filterRowBorderPipelineGetBufferSize_Low_16s_C3R,
           (LumiSize roiSize, int kernelSize, int* bufferSize), (roiSize, kernelSize, bufferSize))
