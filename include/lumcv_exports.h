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

/*
 * Masked statistics of 8u, 16u and 32f images. C1 reads every pixel; C3C reads
 * sample coi - 1 (coi 1..3) of each three-channel pixel, whose row bytes are
 * 3 x width x sample size. A mask is 8u of the ROI's size; a non-zero byte
 * selects its pixel. Positions count pixels from the ROI's top-left. Only the
 * ROI's samples and mask bytes are read. Checks: pointers, ROI, every step
 * against its row bytes (the mask's against width), sample steps against the
 * sample size, coi.
 *   Mean:        sum / count, 0.0 for an empty selection. 8u, 16u: exact row
 *                sums added into doubles. 32f: pixel x goes to float lane x % 8;
 *                the lanes carry across rows and are added into four doubles
 *                (lanes 0..3, then 4..7) after every 480 groups of 8 pixels (a
 *                row's last, partial group counting as one) and at the end;
 *                total (acc2 + acc0) + (acc3 + acc1).
 *   Mean_StdDev: m = sum / n, q = squares / n, stdDev = sqrt(|fma(-m, m, q)|),
 *                n = 0 gives 0.0 and 0.0. 32f sums run in float lanes a row
 *                (squares by fma), flushed as above at each row's end; when
 *                (m * 0.05) * m > stdDev^2 a second pass sums (x - (float)m)^2
 *                the same way and stdDev = sqrt(sum / n). Null outputs are
 *                skipped.
 *   MinMaxIndx:  value and first row-major position of each extreme. A row
 *                replaces the running value (seeded with the type's extremes,
 *                +-FLT_MAX for 32f) only when strictly better; the position is
 *                the first selected x in that row with an equal sample, and a
 *                32f value is that sample. With no improving row: (0, 0) and,
 *                for 32f, the first sample. NaN samples are skipped. Only present
 *                values are computed; an index is written only beside its value.
 *                An empty mask gives 0.0 and (0, 0). Masked members then tell
 *                lumStatusEmptyMask from what the caller receives: the min index
 *                (else the max index), if present, off (0, 0) means Ok and at
 *                (0, 0) the first mask byte decides; with no output at all,
 *                always lumStatusEmptyMask; a present value other than 0.0
 *                means Ok; else the mask is scanned for a selected pixel.
 */
LUM_EXPORT(LumStatus, lumiMean_16u_C1MR, mean_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, mean))
LUM_EXPORT(LumStatus, lumiMean_16u_C3CMR, mean_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, coi, mean))
LUM_EXPORT(LumStatus, lumiMean_32f_C1MR, mean_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, mean))
LUM_EXPORT(LumStatus, lumiMean_32f_C3CMR, mean_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, coi, mean))
LUM_EXPORT(LumStatus, lumiMean_8u_C1MR, mean_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, mean))
LUM_EXPORT(LumStatus, lumiMean_8u_C3CMR, mean_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean),
           (src, srcStep, mask, maskStep, roiSize, coi, mean))
LUM_EXPORT(LumStatus, lumiMean_StdDev_16u_C1MR, meanStdDev_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_16u_C1R, meanStdDev_16u_C1R,
           (const Lum16u* src, int srcStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_16u_C3CMR, meanStdDev_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_16u_C3CR, meanStdDev_16u_C3CR,
           (const Lum16u* src, int srcStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_32f_C1MR, meanStdDev_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_32f_C1R, meanStdDev_32f_C1R,
           (const Lum32f* src, int srcStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_32f_C3CMR, meanStdDev_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_32f_C3CR, meanStdDev_32f_C3CR,
           (const Lum32f* src, int srcStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_8u_C1MR, meanStdDev_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_8u_C1R, meanStdDev_8u_C1R,
           (const Lum8u* src, int srcStep, LumiSize roiSize, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_8u_C3CMR, meanStdDev_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, mask, maskStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMean_StdDev_8u_C3CR, meanStdDev_8u_C3CR,
           (const Lum8u* src, int srcStep, LumiSize roiSize, int coi, Lum64f* mean, Lum64f* stdDev),
           (src, srcStep, roiSize, coi, mean, stdDev))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_16u_C1MR, minMaxIndx_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_16u_C1R, minMaxIndx_16u_C1R,
           (const Lum16u* src, int srcStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_16u_C3CMR, minMaxIndx_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_16u_C3CR, minMaxIndx_16u_C3CR,
           (const Lum16u* src, int srcStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_32f_C1MR, minMaxIndx_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_32f_C1R, minMaxIndx_32f_C1R,
           (const Lum32f* src, int srcStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_32f_C3CMR, minMaxIndx_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_32f_C3CR, minMaxIndx_32f_C3CR,
           (const Lum32f* src, int srcStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_8u_C1MR, minMaxIndx_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_8u_C1R, minMaxIndx_8u_C1R,
           (const Lum8u* src, int srcStep, LumiSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_8u_C3CMR, minMaxIndx_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, mask, maskStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
LUM_EXPORT(LumStatus, lumiMinMaxIndx_8u_C3CR, minMaxIndx_8u_C3CR,
           (const Lum8u* src, int srcStep, LumiSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal, LumiPoint* minIndex, LumiPoint* maxIndex),
           (src, srcStep, roiSize, coi, minVal, maxVal, minIndex, maxIndex))
/*
 * Masked norms over the selected pixels S (layouts and checks as the
 * statistics above, but the 16u and 32f lumiNorm members test the mask's step
 * after the alignment of the source's): Inf the largest magnitude, L1 the sum
 * of magnitudes, L2 the root of the sum of squares; NormDiff of src1 - src2,
 * NormRel of src1 - src2 over the same total of src2 (L2: root after the
 * division). 8u, 16u: exact, L1 and L2 in one unsigned 64-bit total made a
 * double at the end. 32f: Inf a float maximum; L1, L2 float lanes a row
 * (squares by fma) flushed into doubles as the mean's. Empty S: 0.0. NormRel
 * with a zero denominator: NaN FFF8000000000000 if the numerator is zero too,
 * +infinity otherwise, and lumStatusZeroDenominator.
 */
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_16u_C1MR, normDiff_Inf_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_16u_C3CMR, normDiff_Inf_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_32f_C1MR, normDiff_Inf_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_32f_C3CMR, normDiff_Inf_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_8u_C1MR, normDiff_Inf_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_Inf_8u_C3CMR, normDiff_Inf_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_16u_C1MR, normDiff_L1_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_16u_C3CMR, normDiff_L1_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_32f_C1MR, normDiff_L1_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_32f_C3CMR, normDiff_L1_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_8u_C1MR, normDiff_L1_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L1_8u_C3CMR, normDiff_L1_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_16u_C1MR, normDiff_L2_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_16u_C3CMR, normDiff_L2_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_32f_C1MR, normDiff_L2_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_32f_C3CMR, normDiff_L2_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_8u_C1MR, normDiff_L2_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormDiff_L2_8u_C3CMR, normDiff_L2_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_16u_C1MR, normRel_Inf_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_16u_C3CMR, normRel_Inf_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_32f_C1MR, normRel_Inf_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_32f_C3CMR, normRel_Inf_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_8u_C1MR, normRel_Inf_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_Inf_8u_C3CMR, normRel_Inf_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_16u_C1MR, normRel_L1_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_16u_C3CMR, normRel_L1_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_32f_C1MR, normRel_L1_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_32f_C3CMR, normRel_L1_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_8u_C1MR, normRel_L1_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L1_8u_C3CMR, normRel_L1_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_16u_C1MR, normRel_L2_16u_C1MR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_16u_C3CMR, normRel_L2_16u_C3CMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_32f_C1MR, normRel_L2_32f_C1MR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_32f_C3CMR, normRel_L2_32f_C3CMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_8u_C1MR, normRel_L2_8u_C1MR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNormRel_L2_8u_C3CMR, normRel_L2_8u_C3CMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src1, src1Step, src2, src2Step, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_16u_C1MR, norm_Inf_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_16u_C3CMR, norm_Inf_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_32f_C1MR, norm_Inf_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_32f_C3CMR, norm_Inf_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_8u_C1MR, norm_Inf_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_Inf_8u_C3CMR, norm_Inf_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_16u_C1MR, norm_L1_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_16u_C3CMR, norm_L1_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_32f_C1MR, norm_L1_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_32f_C3CMR, norm_L1_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_8u_C1MR, norm_L1_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L1_8u_C3CMR, norm_L1_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_16u_C1MR, norm_L2_16u_C1MR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_16u_C3CMR, norm_L2_16u_C3CMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_32f_C1MR, norm_L2_32f_C1MR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_32f_C3CMR, norm_L2_32f_C3CMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_8u_C1MR, norm_L2_8u_C1MR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiNorm_L2_8u_C3CMR, norm_L2_8u_C3CMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, LumiSize roiSize, int coi, Lum64f* value),
           (src, srcStep, mask, maskStep, roiSize, coi, value))
