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
 * Erosion and dilation: each pixel becomes the minimum (erosion) or maximum
 * (dilation) of the source pixels that a structuring element selects, per
 * channel. Init stores the mask with odd dimensions W, H (an even dimension
 * gains a zero column at the left or a zero row at the top) and its anchor at
 * the centre; a 1x1 or all-zero mask copies the ROI.
 *   Outside the ROI: the border word (<= 4095) folds bits 8..11 into 4..7;
 *     accepted are 240 and low codes 1 replicate, 3 mirror, 5 neutral (the
 *     operation's identity: lowest value for dilation, highest for erosion,
 *     the finite extremes for 32f), 6 borderValue; flags 16, 32, 64, 128 read
 *     the top, bottom, left, right neighbours from memory.
 *   32f: NaN samples never win a comparison; a window of NaN alone gives the
 *     identity.
 *   _L: spec of Init_L (head of two offsets, mask record, 1u plan), buffer of
 *     GetBufferSize_L. Border forms: spec of MorphologyBorderInit (the mask
 *     record), buffer of MorphologyBorderGetSize.
 * Neither form works in place for 16s; erosion neither for 16u.
 */
LUM_EXPORT(LumStatus, lumiDilateBorder_16s_C1R, dilateBorder_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_16u_C1R, dilateBorder_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))

/*
 * Packed one-bit erosion and dilation. Pixel x of a row lies at bit
 * bitOffset + x from the row's first byte, the most significant bit of a
 * byte first (bit offset 0 is the 0x80 bit). With ax = (mw - 1) / 2 and
 * ay = (mh - 1) / 2:
 *   dst(x, y) = OR (dilate) / AND (erode) of src(x - ax + j, y - ay + i)
 *               over the selected mask elements (i, j).
 * A 1 by 1 or an all-zero mask copies the ROI. Outside pixels: 1 repeats the
 * nearest pixel, 6 takes borderValue (nonzero is a set bit), 5 is 0 for
 * dilation and 1 for erosion, flags 16..128 (and 256..2048, folded) read real
 * pixels around the ROI; 3 is refused. Bits outside the ROI in the first and
 * last byte of a destination row are kept. Checks: null src, dst, spec,
 * buffer; row bytes (width + 7) / 8 against the steps; negative bit offsets
 * or sizes below 1; border word; src == dst; code 6 with a null borderValue
 * (_L only). Spec: the plan of lumiMorphologyBorderInit_1u_C1R (Border
 * forms), the spec of lumiErodeInit_L (_L forms). Buffer: the plan size.
 */
LUM_EXPORT(LumStatus, lumiDilateBorder_1u_C1R, dilateBorder_1u_C1R,
           (const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep, int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_32f_C1R, dilateBorder_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_32f_C3R, dilateBorder_32f_C3R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_32f_C4R, dilateBorder_32f_C4R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_8u_C1R, dilateBorder_8u_C1R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_8u_C3R, dilateBorder_8u_C3R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateBorder_8u_C4R, dilateBorder_8u_C4R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilateGetBufferSize_L, morphGetBufferSize_L,
           (LumiSize roiSize, LumiSize maskSize, LumDataType dataType, int numChannels, LumSizeL* bufferSize),
           (roiSize, maskSize, dataType, numChannels, bufferSize))
LUM_EXPORT(LumStatus, lumiDilateGetSpecSize_L, morphGetSpecSize_L,
           (LumiSize roiSize, LumiSize maskSize, LumSizeL* specSize),
           (roiSize, maskSize, specSize))
LUM_EXPORT(LumStatus, lumiDilateInit_L, morphInit_L,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec),
           (roiSize, mask, maskSize, spec))
LUM_EXPORT(LumStatus, lumiDilate_16s_C1R_L, dilate_16s_C1R_L,
           (const Lum16s* src, LumSizeL srcStep, Lum16s* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_16u_C1R_L, dilate_16u_C1R_L,
           (const Lum16u* src, LumSizeL srcStep, Lum16u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_1u_C1R_L, dilate_1u_C1R_L,
           (const Lum8u* src, LumSizeL srcStep, int srcBitOffset, Lum8u* dst, LumSizeL dstStep, int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_32f_C1R_L, dilate_32f_C1R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_32f_C3R_L, dilate_32f_C3R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_32f_C4R_L, dilate_32f_C4R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_8u_C1R_L, dilate_8u_C1R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_8u_C3R_L, dilate_8u_C3R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiDilate_8u_C4R_L, dilate_8u_C4R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_16s_C1R, erodeBorder_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_16u_C1R, erodeBorder_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_1u_C1R, erodeBorder_1u_C1R,
           (const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep, int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_32f_C1R, erodeBorder_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_32f_C3R, erodeBorder_32f_C3R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_32f_C4R, erodeBorder_32f_C4R,
           (const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_8u_C1R, erodeBorder_8u_C1R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_8u_C3R, erodeBorder_8u_C3R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeBorder_8u_C4R, erodeBorder_8u_C4R,
           (const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErodeGetBufferSize_L, morphGetBufferSize_L,
           (LumiSize roiSize, LumiSize maskSize, LumDataType dataType, int numChannels, LumSizeL* bufferSize),
           (roiSize, maskSize, dataType, numChannels, bufferSize))
LUM_EXPORT(LumStatus, lumiErodeGetSpecSize_L, morphGetSpecSize_L,
           (LumiSize roiSize, LumiSize maskSize, LumSizeL* specSize),
           (roiSize, maskSize, specSize))
LUM_EXPORT(LumStatus, lumiErodeInit_L, morphInit_L,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec),
           (roiSize, mask, maskSize, spec))
LUM_EXPORT(LumStatus, lumiErode_16s_C1R_L, erode_16s_C1R_L,
           (const Lum16s* src, LumSizeL srcStep, Lum16s* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16s* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_16u_C1R_L, erode_16u_C1R_L,
           (const Lum16u* src, LumSizeL srcStep, Lum16u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum16u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_1u_C1R_L, erode_1u_C1R_L,
           (const Lum8u* src, LumSizeL srcStep, int srcBitOffset, Lum8u* dst, LumSizeL dstStep, int dstBitOffset, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_32f_C1R_L, erode_32f_C1R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_32f_C3R_L, erode_32f_C3R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_32f_C4R_L, erode_32f_C4R_L,
           (const Lum32f* src, LumSizeL srcStep, Lum32f* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum32f* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_8u_C1R_L, erode_8u_C1R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_8u_C3R_L, erode_8u_C3R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))
LUM_EXPORT(LumStatus, lumiErode_8u_C4R_L, erode_8u_C4R_L,
           (const Lum8u* src, LumSizeL srcStep, Lum8u* dst, LumSizeL dstStep, LumiSize roiSize, LumiBorderType borderType, const Lum8u* borderValue, const Lum8u* spec, Lum8u* buffer),
           (src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer))

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
 * Column stage of the separable-filter pipeline. Output row y combines the
 * rows srcRows[y .. y + kernelSize - 1] (kernelSize + height - 1 pointers, in
 * vertical order; the caller repeats pointers for the vertical border):
 *   dst[y][x] = F(sum over i of kernel[i] * srcRows[y + i][x]), a correlation.
 * F, with r = 1.0f / (float)divisor:
 *   16s, 16s8s, 16s8u: float, c[i] = r * kernel[i], products added in tap
 *     order unfused (3 taps with kernel[0] == kernel[2]: c[0] * (row0 + row2)
 *     first); clamp to 16 bits, round to nearest even, then saturate to the
 *     result type. 16s8s truncates the last (width x channels) mod 4 samples.
 *   16u: fused multiply-add in tap order, times r, clamp 0..65535, nearest.
 *   32f: k = 3: k1*r1, then fma k0*r0, then fma k2*r2; k = 5: fma in tap order
 *     after the first product; other k: first product, then unfused
 *     multiply and add in tap order.
 *   Low_16s: 16-bit products and sum wrapping modulo 65536; divisor 1 stores
 *     the sum, otherwise saturate((sum * trunc(16384.0f / divisor)) >> 14).
 * Checks: null srcRows/dst/kernel, ROI, the row pointers (before kernelSize
 * is validated), kernelSize, dstStep (Low_16s C3R against 2 * width bytes
 * only), dstStep alignment, null buffer, divisor 0 (lumStatusBadArgument).
 * Reads exactly width x channels samples of each row pointer.
 */
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s8s_C1R, filterColumnPipeline_16s8s_C1R,
           (const Lum16s* const* srcRows, Lum8s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s8s_C3R, filterColumnPipeline_16s8s_C3R,
           (const Lum16s* const* srcRows, Lum8s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s8u_C1R, filterColumnPipeline_16s8u_C1R,
           (const Lum16s* const* srcRows, Lum8u* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s8u_C3R, filterColumnPipeline_16s8u_C3R,
           (const Lum16s* const* srcRows, Lum8u* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s_C1R, filterColumnPipeline_16s_C1R,
           (const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16s_C3R, filterColumnPipeline_16s_C3R,
           (const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16u_C1R, filterColumnPipeline_16u_C1R,
           (const Lum16u* const* srcRows, Lum16u* dst, int dstStep, LumiSize roiSize, const Lum16u* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_16u_C3R, filterColumnPipeline_16u_C3R,
           (const Lum16u* const* srcRows, Lum16u* dst, int dstStep, LumiSize roiSize, const Lum16u* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_32f_C1R, filterColumnPipeline_32f_C1R,
           (const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumiSize roiSize, const Lum32f* kernel, int kernelSize, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_32f_C3R, filterColumnPipeline_32f_C3R,
           (const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumiSize roiSize, const Lum32f* kernel, int kernelSize, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_Low_16s_C1R, filterColumnPipeline_Low_16s_C1R,
           (const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterColumnPipeline_Low_16s_C3R, filterColumnPipeline_Low_16s_C3R,
           (const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer),
           (srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer))

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

/*
 * Row stage of the separable-filter pipeline, with its own left and right
 * borders. For each source row y:
 *   dstRows[y][x] = F(sum over i of kernel[i] * B(x - xAnchor + i)), a
 *   correlation, per channel; B is the row's sample inside the ROI and the
 *   border rule outside: low code 1 replicate, 3 mirror (edge not repeated,
 *   reflected again as often as a wide kernel needs), 6 borderValue; flag 64
 *   reads the left side, 128 the right side from memory next to the ROI,
 *   240 both. The vertical border is the caller's.
 * F, with r = 1.0f / (float)divisor, nearest = round half to even:
 *   8u16s: exact integer sum, times r, clamp to 16 bits; nearest for k = 3 or
 *     width >= 256, truncation otherwise.
 *   16s: k = 3: fma(r, fma(k2, x2, k1*x1), (r*x0)*k0), clamp, nearest;
 *     k = 5: 32-bit sum times r, nearest, saturate (width < 256 with sum of
 *     |kernel| >= 65535: coefficients r*k[i], fma in tap order, clamp);
 *     other k: 32-bit sums of four taps added in float (strip columns: float
 *     products added in tap order), times r, clamp, nearest.
 *   16u: fma in tap order, times r, clamp 0..65535; nearest for k = 3 and 5,
 *     truncation otherwise.
 *   32f: k = 3: k1*x1, fma k0*x0, fma k2*x2; other k: fma in tap order after
 *     the first product.
 *   Low_16s: interior columns: 16-bit wrapping sum, then
 *     saturate((sum * trunc(16384.0f / divisor)) >> 14); strip columns: the
 *     same with a 32-bit sum and product, low 16 bits, no saturation. C1R
 *     with border 1, k = 5, anchor 2, symmetric taps, width > 10, divisor 16:
 *     the 16-bit sum shifted right by 4 in every column.
 * Checks: null src/dstRows/kernel/buffer, ROI, each dstRows[y], (C3R) null
 * borderValue, kernelSize, xAnchor, srcStep, step alignment, divisor (16u:
 * below 1; C1R 8u16s and C3R 16s test it after the border word), border word.
 * Reads the ROI, plus the memory sides that the flags name.
 */
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_16s_C1R, filterRowBorderPipeline_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, Lum16s borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_16s_C3R, filterRowBorderPipeline_16s_C3R,
           (const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, const Lum16s* borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_16u_C1R, filterRowBorderPipeline_16u_C1R,
           (const Lum16u* src, int srcStep, Lum16u* const* dstRows, LumiSize roiSize, const Lum16u* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, Lum16u borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_16u_C3R, filterRowBorderPipeline_16u_C3R,
           (const Lum16u* src, int srcStep, Lum16u* const* dstRows, LumiSize roiSize, const Lum16u* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, const Lum16u* borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_32f_C1R, filterRowBorderPipeline_32f_C1R,
           (const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumiSize roiSize, const Lum32f* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, Lum32f borderValue, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_32f_C3R, filterRowBorderPipeline_32f_C3R,
           (const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumiSize roiSize, const Lum32f* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, const Lum32f* borderValue, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_8u16s_C1R, filterRowBorderPipeline_8u16s_C1R,
           (const Lum8u* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, Lum8u borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_8u16s_C3R, filterRowBorderPipeline_8u16s_C3R,
           (const Lum8u* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, const Lum8u* borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_Low_16s_C1R, filterRowBorderPipeline_Low_16s_C1R,
           (const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, Lum16s borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))
LUM_EXPORT(LumStatus, lumiFilterRowBorderPipeline_Low_16s_C3R, filterRowBorderPipeline_Low_16s_C3R,
           (const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumiSize roiSize, const Lum16s* kernel, int kernelSize, int xAnchor, LumiBorderType borderType, const Lum16s* borderValue, int divisor, Lum8u* buffer),
           (src, srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer))

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
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_16s_C1R, morphologyBorderGetSize_16s_C1R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_16u_C1R, morphologyBorderGetSize_16u_C1R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))

/*
 * Packed one-bit morphology state: specSize and bufferSize are both
 * P = max(plan bytes, (((mw + w) * 8 + 30) & ~31) * mh + 16). Init writes
 * the plan for the ROI and mask (nonzero bytes selected) to spec; buffer is
 * checked and not used. Null pointers, then sizes below 1.
 */
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_1u_C1R, morphologyBorderGetSize_1u_C1R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_32f_C1R, morphologyBorderGetSize_32f_C1R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_32f_C3R, morphologyBorderGetSize_32f_C3R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_32f_C4R, morphologyBorderGetSize_32f_C4R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_8u_C1R, morphologyBorderGetSize_8u_C1R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_8u_C3R, morphologyBorderGetSize_8u_C3R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderGetSize_8u_C4R, morphologyBorderGetSize_8u_C4R,
           (LumiSize roiSize, LumiSize maskSize, int* specSize, int* bufferSize),
           (roiSize, maskSize, specSize, bufferSize))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_16s_C1R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_16u_C1R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_1u_C1R, morphologyBorderInit_1u_C1R,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_32f_C1R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_32f_C3R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_32f_C4R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_8u_C1R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_8u_C3R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))
LUM_EXPORT(LumStatus, lumiMorphologyBorderInit_8u_C4R, morphologyBorderInit,
           (LumiSize roiSize, const Lum8u* mask, LumiSize maskSize, Lum8u* spec, Lum8u* buffer),
           (roiSize, mask, maskSize, spec, buffer))

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
