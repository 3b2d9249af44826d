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
 * Accumulators: one call a frame, in place on a 32f accumulator d, with s the
 * source sample converted to float (exact for 8u and 16u), m = 1.0 where the
 * 8u mask byte is not zero and 0.0 where it is, fma one rounding.
 *   Add:          d + s;                   masked: fma(m, s, d)
 *   AddSquare:    fma(s, s, d);            masked: fma(m, round(s * s), d)
 *   AddProduct:   fma(s1, s2, d);          masked: fma(m, round(s1 * s2), d)
 *   AddWeighted:  fma(alpha, s - d, d);    masked: fma(m AND alpha, s - d, d),
 *                 the coefficient being alpha or +0.0; never (1 - a) d + a s.
 *   AddWeighted_32f_C1R: dst = fma(alpha, s1 - s2, s2); the rows of src1 AND
 *                 src2 both advance by src1Step: src2Step is only checked.
 * The mask multiplies rather than selects: every pixel of d is rewritten, and
 * an infinite or NaN source under a zero mask byte still makes d NaN.
 * Checks: pointers, ROI, then 8u and 32f members test every step against its
 * row bytes in one group, then the float steps for multiples of 4 (8u and
 * mask steps never); 16u members test the source steps for size and
 * multiples of 2 first, then the mask and accumulator steps for size, then
 * the accumulator step for multiples of 4. alpha is not range-checked.
 * Reads and writes exactly the ROI's samples.
 */
LUM_EXPORT(LumStatus, lumiAddProduct_16u32f_C1IMR, addProduct_16u32f_C1IMR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddProduct_16u32f_C1IR, addProduct_16u32f_C1IR,
           (const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddProduct_32f_C1IMR, addProduct_32f_C1IMR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddProduct_32f_C1IR, addProduct_32f_C1IR,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddProduct_8u32f_C1IMR, addProduct_8u32f_C1IMR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddProduct_8u32f_C1IR, addProduct_8u32f_C1IR,
           (const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src1, src1Step, src2, src2Step, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_16u32f_C1IMR, addSquare_16u32f_C1IMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_16u32f_C1IR, addSquare_16u32f_C1IR,
           (const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_32f_C1IMR, addSquare_32f_C1IMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_32f_C1IR, addSquare_32f_C1IR,
           (const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_8u32f_C1IMR, addSquare_8u32f_C1IMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddSquare_8u32f_C1IR, addSquare_8u32f_C1IR,
           (const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAddWeighted_16u32f_C1IMR, addWeighted_16u32f_C1IMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_16u32f_C1IR, addWeighted_16u32f_C1IR,
           (const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_32f_C1IMR, addWeighted_32f_C1IMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_32f_C1IR, addWeighted_32f_C1IR,
           (const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_32f_C1R, addWeighted_32f_C1R,
           (const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step, Lum32f* dst, int dstStep, LumiSize roiSize, Lum32f alpha),
           (src1, src1Step, src2, src2Step, dst, dstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_8u32f_C1IMR, addWeighted_8u32f_C1IMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAddWeighted_8u32f_C1IR, addWeighted_8u32f_C1IR,
           (const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize, Lum32f alpha),
           (src, srcStep, srcDst, srcDstStep, roiSize, alpha))
LUM_EXPORT(LumStatus, lumiAdd_16u32f_C1IMR, add_16u32f_C1IMR,
           (const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAdd_16u32f_C1IR, add_16u32f_C1IR,
           (const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAdd_32f_C1IMR, add_32f_C1IMR,
           (const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAdd_8u32f_C1IMR, add_8u32f_C1IMR,
           (const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize))
LUM_EXPORT(LumStatus, lumiAdd_8u32f_C1IR, add_8u32f_C1IR,
           (const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumiSize roiSize),
           (src, srcStep, srcDst, srcDstStep, roiSize))

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
 * Motion history, in place on a 32f history image mhi. t = timestamp -
 * duration, formed once in single precision. Per pixel: silhouette not zero
 * (a float compare for 32f: -0 is no motion, NaN is motion) gives timestamp;
 * otherwise mhi < t gives 0.0; otherwise mhi stays (a value equal to t
 * survives). Checks: pointers, ROI, steps against row bytes, steps of 16u and
 * 32f images for multiples of their sample size, then duration < 0:
 * lumStatusOutOfRange (a NaN duration passes).
 */
LUM_EXPORT(LumStatus, lumiUpdateMotionHistory_16u32f_C1IR, updateMotionHistory_16u32f_C1IR,
           (const Lum16u* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f duration),
           (silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration))
LUM_EXPORT(LumStatus, lumiUpdateMotionHistory_32f_C1IR, updateMotionHistory_32f_C1IR,
           (const Lum32f* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f duration),
           (silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration))
LUM_EXPORT(LumStatus, lumiUpdateMotionHistory_8u32f_C1IR, updateMotionHistory_8u32f_C1IR,
           (const Lum8u* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f duration),
           (silhouette, silhouetteStep, mhi, mhiStep, roiSize, timestamp, duration))

