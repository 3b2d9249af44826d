// Row and column pipeline kernels, on validated arguments: ROI at least
// 1 x 1, kernel length at least 1, anchor inside the kernel, steps at least
// one row, a border word the row stage accepts, a nonzero divisor, and a
// buffer of at least the queried size.
#pragma once

#include "lumcv.h"

namespace lum::kernel {

// What a row kernel needs besides its typed pointers.
struct RowShape {
    int width;
    int height;
    int channels;  // 1 or 3
    int k;         // kernel length
    int anchor;
    int border;    // accepted border word
};

void rowPipeline_8u16s(const Lum8u* src, int srcStep, Lum16s* const* dstRows, const RowShape& shape,
                       const Lum16s* kernel, const Lum8u* borderValue, int divisor, void* buffer);
void rowPipeline_16s(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& shape,
                     const Lum16s* kernel, const Lum16s* borderValue, int divisor, void* buffer);
void rowPipeline_16u(const Lum16u* src, int srcStep, Lum16u* const* dstRows, const RowShape& shape,
                     const Lum16u* kernel, const Lum16u* borderValue, int divisor, void* buffer);
void rowPipeline_32f(const Lum32f* src, int srcStep, Lum32f* const* dstRows, const RowShape& shape,
                     const Lum32f* kernel, const Lum32f* borderValue, void* buffer);
void rowPipeline_Low_16s(const Lum16s* src, int srcStep, Lum16s* const* dstRows, const RowShape& shape,
                         const Lum16s* kernel, const Lum16s* borderValue, int divisor, void* buffer);

// Column kernels: n samples a row (width x channels), `height` output rows,
// srcRows holds k + height - 1 pointers.
struct ColumnShape {
    int n;
    int height;
    int k;
};

void columnPipeline_16s8s(const Lum16s* const* srcRows, Lum8s* dst, int dstStep, const ColumnShape& shape,
                          const Lum16s* kernel, int divisor, void* buffer);
void columnPipeline_16s8u(const Lum16s* const* srcRows, Lum8u* dst, int dstStep, const ColumnShape& shape,
                          const Lum16s* kernel, int divisor, void* buffer);
void columnPipeline_16s(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, const ColumnShape& shape,
                        const Lum16s* kernel, int divisor, void* buffer);
void columnPipeline_16u(const Lum16u* const* srcRows, Lum16u* dst, int dstStep, const ColumnShape& shape,
                        const Lum16u* kernel, int divisor, void* buffer);
void columnPipeline_32f(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, const ColumnShape& shape,
                        const Lum32f* kernel, void* buffer);
void columnPipeline_Low_16s(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, const ColumnShape& shape,
                            const Lum16s* kernel, int divisor, void* buffer);

}  // namespace lum::kernel
