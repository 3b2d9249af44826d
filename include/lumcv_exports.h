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
