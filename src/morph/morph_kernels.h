// Kernels of erosion and dilation. Every kernel gets the window origin of its
// first output pixel: `src` points to the input sample of output (0, 0)
// shifted up by the y radius and left by the x radius, and the input holds
// (w + W - 1) x (h + H - 1) pixels from there, whether bordered copy or the
// image in place. Each computes w x h output pixels of C channels.
//
// Accumulation order is the same on every path: the running value starts at
// the operation's identity and takes the selected samples row by row, left
// to right, as acc = op(sample, acc). For integers the order is free; for
// 32f it fixes what happens to NaN: vector max and min return their second
// operand when either is NaN, so a NaN sample never replaces the running
// value and a window of NaN alone leaves the identity.
#pragma once

#include <immintrin.h>

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/carve.h"
#include "frame/rows.h"
#include "frame/simd.h"
#include "morph/mask_record.h"

namespace lum::morph {

using simd::Vec;

// ------------------------------------------------------------ reductions

template <class T, bool Max>
struct Reduce;

template <bool Max>
struct Reduce<uint8_t, Max> {
    static __m256i vec(__m256i x, __m256i acc) { return Max ? _mm256_max_epu8(x, acc) : _mm256_min_epu8(x, acc); }
    static uint8_t one(uint8_t x, uint8_t acc) { return Max ? (x > acc ? x : acc) : (x < acc ? x : acc); }
    static constexpr uint8_t identity() { return Max ? 0 : 255; }
};
template <bool Max>
struct Reduce<uint16_t, Max> {
    static __m256i vec(__m256i x, __m256i acc) { return Max ? _mm256_max_epu16(x, acc) : _mm256_min_epu16(x, acc); }
    static uint16_t one(uint16_t x, uint16_t acc) { return Max ? (x > acc ? x : acc) : (x < acc ? x : acc); }
    static constexpr uint16_t identity() { return Max ? 0 : 65535; }
};
template <bool Max>
struct Reduce<int16_t, Max> {
    static __m256i vec(__m256i x, __m256i acc) { return Max ? _mm256_max_epi16(x, acc) : _mm256_min_epi16(x, acc); }
    static int16_t one(int16_t x, int16_t acc) { return Max ? (x > acc ? x : acc) : (x < acc ? x : acc); }
    static constexpr int16_t identity() { return Max ? -32768 : 32767; }
};
// maxps / minps: (x > acc) ? x : acc, the second operand whenever either is
// NaN; the scalar form is the same comparison.
template <bool Max>
struct Reduce<float, Max> {
    static __m256 vec(__m256 x, __m256 acc) { return Max ? _mm256_max_ps(x, acc) : _mm256_min_ps(x, acc); }
    static float one(float x, float acc) { return Max ? (x > acc ? x : acc) : (x < acc ? x : acc); }
    static constexpr float identity() { return Max ? -FLT_MAX : FLT_MAX; }
};

// ------------------------------------------------------------ row walk

// Calls f(vector tag, x) for each vector of a row of n samples, then covers
// the remainder by one more vector that ends at the row's end (it overlaps
// samples already written with the same values), or, in rows shorter than a
// vector, by f(scalar tag, x) sample by sample. Only samples of the row are
// read and written: kernels are out of place.
template <class T, class F>
inline void walkRow(int n, F&& f) {
    constexpr int V = Vec<T>::lanes;
    if (n < V) {
        for (int x = 0; x < n; ++x) f(std::false_type{}, x);
        return;
    }
    int x = 0;
    for (; x + V <= n; x += V) f(std::true_type{}, x);
    if (x < n) f(std::true_type{}, n - V);
}

// acc = op(sample at p, acc) in vector or scalar form.
template <class T, bool Max, bool IsVec>
struct Acc;
template <class T, bool Max>
struct Acc<T, Max, true> {
    typename Vec<T>::type v = Vec<T>::set1(Reduce<T, Max>::identity());
    void take(const T* p) { v = Reduce<T, Max>::vec(Vec<T>::load(p), v); }
    void put(T* p) const { Vec<T>::store(p, v); }
};
template <class T, bool Max>
struct Acc<T, Max, false> {
    T v = Reduce<T, Max>::identity();
    void take(const T* p) { v = Reduce<T, Max>::one(*p, v); }
    void put(T* p) const { *p = v; }
};

struct Frame {
    const void* src;
    int srcStep;
    void* dst;
    int dstStep;
    int w, h;
};

// ------------------------------------------------------------ general list

// Any mask: for each mask row, the column indices of its selected elements.
template <class T, int C, bool Max>
void listKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int H = m.H();
    for (int y = 0; y < f.h; ++y) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, y);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        walkRow<T>(f.w * C, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            for (int i = 0; i < H; ++i) {
                const uint16_t* list = m.rowList(i);
                const T* r = rowAt(in, f.srcStep, i) + x;
                for (int k = 1; k <= list[0]; ++k) acc.take(r + list[k] * C);
            }
            acc.put(out + x);
        });
    }
}

// Every mask row one run: its count and first column from the run table.
template <class T, int C, bool Max>
void runKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int H = m.H();
    for (int y = 0; y < f.h; ++y) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, y);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        walkRow<T>(f.w * C, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            for (int i = 0; i < H; ++i) {
                const uint16_t* run = m.run(i);
                const T* r = rowAt(in, f.srcStep, i) + x + run[1] * C;
                for (int k = 0; k < run[0]; ++k) acc.take(r + k * C);
            }
            acc.put(out + x);
        });
    }
}

// A cross: the full row at the stored row index, then the full column at the
// stored column index (the centre taken twice, which changes nothing).
template <class T, int C, bool Max>
void crossKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int W = m.W(), H = m.H();
    const int row = m.run(0)[0], col = m.run(0)[1];
    for (int y = 0; y < f.h; ++y) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, y);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        walkRow<T>(f.w * C, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            const T* r = rowAt(in, f.srcStep, row) + x;
            for (int j = 0; j < W; ++j) acc.take(r + j * C);
            const T* c = in + x + col * C;
            for (int i = 0; i < H; ++i) acc.take(rowAt(c, f.srcStep, i));
            acc.put(out + x);
        });
    }
}

// ------------------------------------------------------------ fixed shapes

struct Run {
    int row, first, count;
};
struct Plus3 {
    static constexpr int rows = 3;
    static constexpr Run runs[3] = {{0, 1, 1}, {1, 0, 3}, {2, 1, 1}};
};
struct Diamond5 {
    static constexpr int rows = 5;
    static constexpr Run runs[5] = {{0, 2, 1}, {1, 1, 3}, {2, 0, 5}, {3, 1, 3}, {4, 2, 1}};
};
struct Round7 {
    static constexpr int rows = 7;
    static constexpr Run runs[7] = {{0, 3, 1}, {1, 1, 5}, {2, 1, 5}, {3, 0, 7}, {4, 1, 5}, {5, 1, 5}, {6, 3, 1}};
};
struct Rect3 {
    static constexpr int rows = 3;
    static constexpr Run runs[3] = {{0, 0, 3}, {1, 0, 3}, {2, 0, 3}};
};

// Straight code over a pattern known at compile time: the loops unroll into
// a fixed list of loads.
template <class Shape, class T, int C, bool Max>
void shapeKernel(const Frame& f, const MaskView&, uint8_t*) {
    for (int y = 0; y < f.h; ++y) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, y);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        walkRow<T>(f.w * C, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            for (int i = 0; i < Shape::rows; ++i) {
                const T* r = rowAt(in, f.srcStep, Shape::runs[i].row) + x + Shape::runs[i].first * C;
                for (int k = 0; k < Shape::runs[i].count; ++k) acc.take(r + k * C);
            }
            acc.put(out + x);
        });
    }
}

// ------------------------------------------------------------ rectangle

// A full W x H rectangle in two passes. The row pass reduces each input row
// over W samples a channel into a ring of H rows (stride a multiple of 32
// bytes); the ring is primed with H - 1 rows, then each output row adds one
// row to the ring and the column pass reduces the H ring rows in input order.
template <class T, int C, bool Max>
void rectKernel(const Frame& f, const MaskView& m, uint8_t* ring) {
    const int W = m.W(), H = m.H();
    const int n = f.w * C;
    const int stride = roundRow32(n * static_cast<int>(sizeof(T)));
    auto ringRow = [&](int r) { return reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>(r % H) * stride); };
    auto rowPass = [&](int r) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, r);
        T* out = ringRow(r);
        walkRow<T>(n, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            for (int j = 0; j < W; ++j) acc.take(in + x + j * C);
            acc.put(out + x);
        });
    };
    for (int r = 0; r < H - 1; ++r) rowPass(r);
    for (int y = 0; y < f.h; ++y) {
        rowPass(y + H - 1);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        walkRow<T>(n, [&](auto tag, int x) {
            Acc<T, Max, decltype(tag)::value> acc;
            for (int i = 0; i < H; ++i) acc.take(ringRow(y + i) + x);
            acc.put(out + x);
        });
    }
}

}  // namespace lum::morph
