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
 * Integral images. For a source ROI of width x height, a plain integral D has
 * (width + 1) x (height + 1) elements, a tilted one T (width + 2) x
 * (height + 2); the caller sizes both.
 *   Plain:   row 0 is value; each row y + 1 starts with value, then a running
 *            row sum r = r + S[y][x] (from 0) gives D[y + 1][x + 1] =
 *            D[y][x + 1] + r. The squared integral runs the same with S * S
 *            (exact) from valueSqr.
 *   Tilted:  rows 0 and 1 are value; for source row i, T[i + 2][x + 1] =
 *            T[i + 1][x] - T[i][x + 1] + T[i + 1][x + 2] + S[i][x] + S[i][x + 1]
 *            (the last column adds S[i][width - 1] only), T[i + 2][0] =
 *            T[i + 1][1], T[i + 2][width + 1] = T[i + 1][width].
 *   32s results wrap modulo 2^32. 32f plain results round at every addition
 *   of r and of D, in that order, left to right. 32f tilted results are
 *   formed in double as ((T1[x] - T0[x + 1]) + T1[x + 2]) + (S + S'), the
 *   sample sum an integer, and rounded to float once. 64f squared sums are
 *   exact up to 2^53.
 * Checks: pointers; width or height below 1; the source step against its row,
 * dst and sqr steps against their result rows (lumStatusBadStep); then 4-byte
 * results and a 32f source to multiples of 4, 64f results to multiples of 8
 * (lumStatusStepNotAligned). Reads the source ROI only; source and results
 * must not overlap.
 */
LUM_EXPORT(LumStatus, lumiIntegral_32f_C1R, integral_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize),
           (src, srcStep, dst, dstStep, roiSize))
LUM_EXPORT(LumStatus, lumiIntegral_8u32f_C1R, integral_8u32f_C1R,
           (const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, Lum32f value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiIntegral_8u32s_C1R, integral_8u32s_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumiSize roiSize, Lum32s value),
           (src, srcStep, dst, dstStep, roiSize, value))

/*
 * Window standard deviation over an integral (src) and a squared integral
 * (sqr). For result pixel (u, v), with A, B, C, D the integral at the window's
 * top-left, top-right, bottom-left and bottom-right corners (primed: sqr):
 *   s = (A - B) - (C - D) in the integral's type (32s wrapping),
 *   q = (A' - B') - (C' - D') in double (wrapping 32 bits in _32s_C1RSfs),
 *   n = 1 / (area) with the area a 32-bit product, n in double (float in
 *   _32s_C1RSfs), v = fma(-(n s), n s, n q) in n's precision, rounded to
 *   float, negative v -> 0, t = sqrtf(v).
 *   _32s_C1RSfs stores trunc(fma(2^-scaleFactor, t, 0.5f)), the scale formed
 *   from the 32-bit int 1 << (count mod 32) (so a count of 31 is -2^31).
 * Upright: corners at rows v + rect.y (+ rect.height), columns u + rect.x
 * (+ rect.width), area = width * height. Tilted: with (x, y, w, h) = rect,
 * A at column u + x - y, row v + x + y; B at column - h, row + h; C at column
 * + w, row + w; D at column - h + w, row + h + w; area = 2 w h. Tilted
 * columns may lie left of src, which the caller's pointers must allow.
 * Checks: pointers; ROI below 1; steps with c = width + rect.x + rect.width
 * (tilted: h + y + x + w + width - 1): srcStep >= 4 c, sqrStep >= c x its
 * element size, dstStep >= 4 width (lumStatusBadStep); alignment of every
 * step to its element size (lumStatusStepNotAligned); then rect.x or rect.y
 * negative or rect.width or rect.height below 1 (lumStatusBadSize).
 */
LUM_EXPORT(LumStatus, lumiRectStdDev_32f_C1R, rectStdDev_32f_C1R,
           (const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiRect rect),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect))
LUM_EXPORT(LumStatus, lumiRectStdDev_32s32f_C1R, rectStdDev_32s32f_C1R,
           (const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiRect rect),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect))
LUM_EXPORT(LumStatus, lumiRectStdDev_32s_C1RSfs, rectStdDev_32s_C1RSfs,
           (const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst, int dstStep, LumiSize roiSize, LumiRect rect, int scaleFactor),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, scaleFactor))

/* Squared integrals: the plain integral into dst and the integral of S * S into sqr, one pass. */
LUM_EXPORT(LumStatus, lumiSqrIntegral_8u32f64f_C1R, sqrIntegral_8u32f64f_C1R,
           (const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr, int sqrStep, LumiSize roiSize, Lum32f value, Lum64f valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))
LUM_EXPORT(LumStatus, lumiSqrIntegral_8u32s64f_C1R, sqrIntegral_8u32s64f_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr, int sqrStep, LumiSize roiSize, Lum32s value, Lum64f valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))
LUM_EXPORT(LumStatus, lumiSqrIntegral_8u32s_C1R, sqrIntegral_8u32s_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr, int sqrStep, LumiSize roiSize, Lum32s value, Lum32s valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))

/* Tilted integrals and tilted windows: see the integral images and the window standard deviation above. */
LUM_EXPORT(LumStatus, lumiTiltedIntegral_8u32f_C1R, tiltedIntegral_8u32f_C1R,
           (const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, Lum32f value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiTiltedIntegral_8u32s_C1R, tiltedIntegral_8u32s_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumiSize roiSize, Lum32s value),
           (src, srcStep, dst, dstStep, roiSize, value))
LUM_EXPORT(LumStatus, lumiTiltedRectStdDev_32f_C1R, tiltedRectStdDev_32f_C1R,
           (const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiRect rect),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect))
LUM_EXPORT(LumStatus, lumiTiltedRectStdDev_32s32f_C1R, tiltedRectStdDev_32s32f_C1R,
           (const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiRect rect),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect))
LUM_EXPORT(LumStatus, lumiTiltedRectStdDev_32s_C1RSfs, tiltedRectStdDev_32s_C1RSfs,
           (const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst, int dstStep, LumiSize roiSize, LumiRect rect, int scaleFactor),
           (src, srcStep, sqr, sqrStep, dst, dstStep, roiSize, rect, scaleFactor))
LUM_EXPORT(LumStatus, lumiTiltedSqrIntegral_8u32f64f_C1R, tiltedSqrIntegral_8u32f64f_C1R,
           (const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr, int sqrStep, LumiSize roiSize, Lum32f value, Lum64f valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))
LUM_EXPORT(LumStatus, lumiTiltedSqrIntegral_8u32s64f_C1R, tiltedSqrIntegral_8u32s64f_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr, int sqrStep, LumiSize roiSize, Lum32s value, Lum64f valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))
LUM_EXPORT(LumStatus, lumiTiltedSqrIntegral_8u32s_C1R, tiltedSqrIntegral_8u32s_C1R,
           (const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr, int sqrStep, LumiSize roiSize, Lum32s value, Lum32s valueSqr),
           (src, srcStep, dst, dstStep, sqr, sqrStep, roiSize, value, valueSqr))
