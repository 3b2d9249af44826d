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

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/border.h"
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

// ------------------------------------------------------------ taps

// A tap is one selected mask element: the byte offset, from the window's
// top-left sample, of the sample it reads. reduceTaps gives out[x] =
// op over the taps in their order of base + tap + x, for n samples, starting
// from the identity (or from out itself, to continue a reduction). Four
// vectors go side by side so that the chains of max or min overlap; the
// remainder takes single vectors and one last vector that ends at the row's
// end, overlapping samples already written with the same values. Rows
// shorter than a vector go sample by sample, unless the taps read the
// library's own scratch (`padded`), which always has a vector of bytes
// behind every row: then one vector is computed into the stack and its
// first n samples are copied out. Nothing but the row's samples is written,
// and in the caller's images nothing else is read.
template <class T>
inline const T* tapAt(const T* base, ptrdiff_t tap) {
    return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(base) + tap);
}

template <class T, bool Max, int K = 0>
inline void reduceTaps(const T* base, const ptrdiff_t* taps, int count, T* out, int n, bool fromOut = false,
                       bool padded = false) {
    using R = Reduce<T, Max>;
    using Vt = Vec<T>;
    constexpr int V = Vt::lanes;
    const int k1 = K > 0 ? K : count;
    if (n < V && padded) {
        alignas(32) T tmp[V] = {};
        auto a = Vt::set1(R::identity());
        if (fromOut) {
            for (int x = 0; x < n; ++x) tmp[x] = out[x];
            a = Vt::load(tmp);
        }
        for (int k = 0; k < k1; ++k) a = R::vec(Vt::load(tapAt(base, taps[k])), a);
        Vt::store(tmp, a);
        for (int x = 0; x < n; ++x) out[x] = tmp[x];
        return;
    }
    if (n < V) {
        for (int x = 0; x < n; ++x) {
            T acc = fromOut ? out[x] : R::identity();
            for (int k = 0; k < k1; ++k) acc = R::one(tapAt(base, taps[k])[x], acc);
            out[x] = acc;
        }
        return;
    }
    const auto id = Vt::set1(R::identity());
    int x = 0;
    for (; x + 4 * V <= n; x += 4 * V) {
        auto a0 = fromOut ? Vt::load(out + x) : id, a1 = fromOut ? Vt::load(out + x + V) : id;
        auto a2 = fromOut ? Vt::load(out + x + 2 * V) : id, a3 = fromOut ? Vt::load(out + x + 3 * V) : id;
        for (int k = 0; k < k1; ++k) {
            const T* p = tapAt(base, taps[k]) + x;
            a0 = R::vec(Vt::load(p), a0);
            a1 = R::vec(Vt::load(p + V), a1);
            a2 = R::vec(Vt::load(p + 2 * V), a2);
            a3 = R::vec(Vt::load(p + 3 * V), a3);
        }
        Vt::store(out + x, a0);
        Vt::store(out + x + V, a1);
        Vt::store(out + x + 2 * V, a2);
        Vt::store(out + x + 3 * V, a3);
    }
    auto one = [&](int at) {
        auto a = fromOut ? Vt::load(out + at) : id;
        for (int k = 0; k < k1; ++k) a = R::vec(Vt::load(tapAt(base, taps[k]) + at), a);
        Vt::store(out + at, a);
    };
    for (; x + V <= n; x += V) one(x);
    // The overlapping last vector may meet samples that already hold the
    // result; from out, taking the same taps again leaves them as they are.
    if (x < n) one(n - V);
}

// reduceTaps with the count as a constant for the short lists that the
// rectangle's passes and small masks produce, so that their loops unroll.
template <class T, bool Max>
inline void reduceTapsAny(const T* base, const ptrdiff_t* taps, int count, T* out, int n, bool fromOut,
                          bool padded = false) {
    switch (count) {
        case 1: return reduceTaps<T, Max, 1>(base, taps, 1, out, n, fromOut, padded);
        case 2: return reduceTaps<T, Max, 2>(base, taps, 2, out, n, fromOut, padded);
        case 3: return reduceTaps<T, Max, 3>(base, taps, 3, out, n, fromOut, padded);
        case 4: return reduceTaps<T, Max, 4>(base, taps, 4, out, n, fromOut, padded);
        case 5: return reduceTaps<T, Max, 5>(base, taps, 5, out, n, fromOut, padded);
        case 6: return reduceTaps<T, Max, 6>(base, taps, 6, out, n, fromOut, padded);
        case 7: return reduceTaps<T, Max, 7>(base, taps, 7, out, n, fromOut, padded);
        case 8: return reduceTaps<T, Max, 8>(base, taps, 8, out, n, fromOut, padded);
        case 9: return reduceTaps<T, Max, 9>(base, taps, 9, out, n, fromOut, padded);
        case 10: return reduceTaps<T, Max, 10>(base, taps, 10, out, n, fromOut, padded);
        case 11: return reduceTaps<T, Max, 11>(base, taps, 11, out, n, fromOut, padded);
        case 12: return reduceTaps<T, Max, 12>(base, taps, 12, out, n, fromOut, padded);
        case 13: return reduceTaps<T, Max, 13>(base, taps, 13, out, n, fromOut, padded);
        case 14: return reduceTaps<T, Max, 14>(base, taps, 14, out, n, fromOut, padded);
        case 15: return reduceTaps<T, Max, 15>(base, taps, 15, out, n, fromOut, padded);
        case 16: return reduceTaps<T, Max, 16>(base, taps, 16, out, n, fromOut, padded);
        default: return reduceTaps<T, Max>(base, taps, count, out, n, fromOut, padded);
    }
}

struct Frame {
    const void* src;
    int srcStep;
    void* dst;
    int dstStep;
    int w, h;
    bool padded;  // src is the library's scratch: a vector may be read past a row
};

// The taps of a mask, in row order, with a bound that keeps them on the
// stack; longer lists run in groups, each continuing the one before.
struct TapList {
    static constexpr int kCapacity = 1024;
    ptrdiff_t tap[kCapacity];
    int count = 0;
};

// Two output rows at once, for integer types, where max and min do not
// depend on order: row y + 1 reads what row y reads one input row lower, so
// the samples both read are loaded once and reduced into a shared value,
// which each row then finishes with the taps of its own. From `base`, row
// y's window: shared[] and first[] are row y's taps, second[] row y + 1's.
struct PairTaps {
    static constexpr int kCapacity = 64;
    ptrdiff_t shared[kCapacity], first[kCapacity], second[kCapacity];
    int sharedCount = 0, firstCount = 0, secondCount = 0;

    // From a mask's taps as (row, column): duplicates count once.
    void build(const int* row, const int* column, int count, ptrdiff_t rowBytes, ptrdiff_t sampleBytes) {
        auto has = [&](int r, int c, int upTo) {
            for (int k = 0; k < upTo; ++k)
                if (row[k] == r && column[k] == c) return true;
            return false;
        };
        for (int k = 0; k < count; ++k) {
            if (has(row[k], column[k], k)) continue;
            const ptrdiff_t at = row[k] * rowBytes + column[k] * sampleBytes;
            if (has(row[k] - 1, column[k], count)) shared[sharedCount++] = at;
            else first[firstCount++] = at;
            if (!has(row[k] + 1, column[k], count)) second[secondCount++] = at + rowBytes;
        }
    }
};

// Output rows out0 and out1 from the pair's taps, n >= one vector samples.
// The last vector ends at the row's end, computing again samples it meets.
template <class T, bool Max>
void reducePair(const T* base, const PairTaps& p, T* out0, T* out1, int n) {
    using R = Reduce<T, Max>;
    using Vt = Vec<T>;
    constexpr int V = Vt::lanes;
    const auto id = Vt::set1(R::identity());
    auto block = [&](int x, auto lanes) {
        constexpr int U = decltype(lanes)::value;
        typename Vt::type c[U], a0[U], a1[U];
        for (int u = 0; u < U; ++u) c[u] = id;
        for (int k = 0; k < p.sharedCount; ++k) {
            const T* q = tapAt(base, p.shared[k]) + x;
            for (int u = 0; u < U; ++u) c[u] = R::vec(Vt::load(q + u * V), c[u]);
        }
        for (int u = 0; u < U; ++u) a0[u] = a1[u] = c[u];
        for (int k = 0; k < p.firstCount; ++k) {
            const T* q = tapAt(base, p.first[k]) + x;
            for (int u = 0; u < U; ++u) a0[u] = R::vec(Vt::load(q + u * V), a0[u]);
        }
        for (int k = 0; k < p.secondCount; ++k) {
            const T* q = tapAt(base, p.second[k]) + x;
            for (int u = 0; u < U; ++u) a1[u] = R::vec(Vt::load(q + u * V), a1[u]);
        }
        for (int u = 0; u < U; ++u) {
            Vt::store(out0 + x + u * V, a0[u]);
            Vt::store(out1 + x + u * V, a1[u]);
        }
    };
    int x = 0;
    for (; x + 2 * V <= n; x += 2 * V) block(x, std::integral_constant<int, 2>{});
    for (; x + V <= n; x += V) block(x, std::integral_constant<int, 1>{});
    if (x < n) block(n - V, std::integral_constant<int, 1>{});
}

template <class T, bool Max, class Emit>
void runTaps(const Frame& f, int C, Emit&& emit) {
    TapList list;
    const int n = f.w * C;
    const ptrdiff_t sampleBytes = C * sizeof(T);
    int y0 = 0;
    if constexpr (std::is_integral_v<T>) {
        if (f.h >= 2 && n >= Vec<T>::lanes) {
            int row[PairTaps::kCapacity], column[PairTaps::kCapacity];
            int count = 0;
            emit([&](int r, int c) {
                if (count < PairTaps::kCapacity) row[count] = r, column[count] = c;
                ++count;
            });
            if (count <= PairTaps::kCapacity) {
                PairTaps pair;
                pair.build(row, column, count, f.srcStep, sampleBytes);
                for (; y0 + 2 <= f.h; y0 += 2)
                    reducePair<T, Max>(rowAt(static_cast<const T*>(f.src), f.srcStep, y0), pair,
                                       rowAt(static_cast<T*>(f.dst), f.dstStep, y0),
                                       rowAt(static_cast<T*>(f.dst), f.dstStep, y0 + 1), n);
                if (y0 == f.h) return;
            }
        }
    }
    // emit(add) calls add(row, column) for each tap in order.
    int total = 0;
    emit([&](int row, int column) {
        if (total < TapList::kCapacity) list.tap[total] = static_cast<ptrdiff_t>(row) * f.srcStep + column * sampleBytes;
        ++total;
    });
    for (int y = y0; y < f.h; ++y) {
        const T* base = rowAt(static_cast<const T*>(f.src), f.srcStep, y);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        if (total <= TapList::kCapacity) {
            reduceTapsAny<T, Max>(base, list.tap, total, out, n, false, f.padded);
            continue;
        }
        bool started = false;
        list.count = 0;
        emit([&](int row, int column) {
            if (list.count == TapList::kCapacity) {
                reduceTaps<T, Max>(base, list.tap, list.count, out, n, started, f.padded);
                started = true;
                list.count = 0;
            }
            list.tap[list.count++] = static_cast<ptrdiff_t>(row) * f.srcStep + column * sampleBytes;
        });
        reduceTaps<T, Max>(base, list.tap, list.count, out, n, started, f.padded);
    }
}

// ------------------------------------------------------------ general list

// Any mask: for each mask row, the column indices of its selected elements.
template <class T, int C, bool Max>
void listKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int H = m.H();
    runTaps<T, Max>(f, C, [&](auto&& add) {
        for (int i = 0; i < H; ++i) {
            const uint16_t* list = m.rowList(i);
            for (int k = 1; k <= list[0]; ++k) add(i, list[k]);
        }
    });
}

// Every mask row one run: its count and first column from the run table.
template <class T, int C, bool Max>
void runKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int H = m.H();
    runTaps<T, Max>(f, C, [&](auto&& add) {
        for (int i = 0; i < H; ++i)
            for (int k = 0; k < m.run(i)[0]; ++k) add(i, m.run(i)[1] + k);
    });
}

// A cross: the full row at the stored row index, then the full column at the
// stored column index (the centre taken twice, which changes nothing).
template <class T, int C, bool Max>
void crossKernel(const Frame& f, const MaskView& m, uint8_t*) {
    const int W = m.W(), H = m.H();
    const int row = m.run(0)[0], col = m.run(0)[1];
    runTaps<T, Max>(f, C, [&](auto&& add) {
        for (int j = 0; j < W; ++j) add(row, j);
        for (int i = 0; i < H; ++i) add(i, col);
    });
}

// ------------------------------------------------------------ fixed shapes

struct Run {
    int row, first, count;
};
struct Plus3 {
    static constexpr int rows = 3, taps = 5;
    static constexpr Run runs[3] = {{0, 1, 1}, {1, 0, 3}, {2, 1, 1}};
};
struct Diamond5 {
    static constexpr int rows = 5, taps = 13;
    static constexpr Run runs[5] = {{0, 2, 1}, {1, 1, 3}, {2, 0, 5}, {3, 1, 3}, {4, 2, 1}};
};
struct Round7 {
    static constexpr int rows = 7, taps = 29;
    static constexpr Run runs[7] = {{0, 3, 1}, {1, 1, 5}, {2, 1, 5}, {3, 0, 7}, {4, 1, 5}, {5, 1, 5}, {6, 3, 1}};
};

// A pattern known at compile time: its number of taps is a constant, so the
// loop over them unrolls into a fixed list of loads.
template <class Shape>
constexpr int tapCount() {
    int k = 0;
    for (const Run& r : Shape::runs) k += r.count;
    return k;
}

template <class Shape, class T, int C, bool Max>
void shapeKernel(const Frame& f, const MaskView&, uint8_t*) {
    static_assert(tapCount<Shape>() == Shape::taps, "taps of the pattern");
    ptrdiff_t taps[Shape::taps];
    int k = 0;
    for (const Run& r : Shape::runs)
        for (int j = 0; j < r.count; ++j)
            taps[k++] = static_cast<ptrdiff_t>(r.row) * f.srcStep + static_cast<ptrdiff_t>(r.first + j) * C * sizeof(T);
    for (int y = 0; y < f.h; ++y)
        reduceTaps<T, Max, Shape::taps>(rowAt(static_cast<const T*>(f.src), f.srcStep, y), taps, Shape::taps,
                                        rowAt(static_cast<T*>(f.dst), f.dstStep, y), f.w * C, false, f.padded);
}

// ------------------------------------------------------------ rectangle

// One row of the rectangle's row pass: out[x] = op over j < W of in[x + jC],
// for n samples. Narrow masks take the W taps directly. Wider ones double
// the window in a temporary on the stack, in chunks: pairs, then quadruples
// and so on up to the greatest power of two 2^k <= W, and finally two
// windows of 2^k that overlap to cover W; about log2(W) + 1 passes whatever
// the mask's width. Every merge keeps the earlier half's value on a tie, as
// the direct order does; integer max and min don't depend on order, and for
// 32f both forms skip NaN alike, so the result is the direct one.
template <class T, int C, bool Max>
struct RowReducer {
    static constexpr int V = Vec<T>::lanes;
    static constexpr int kTempBytes = 16384;
    static constexpr int kDirectUpTo = 7;
    static constexpr ptrdiff_t kTap = C * sizeof(T);

    // t[i] = op(t[i + d], t[i]) for i < count, forward and in place: each
    // vector loads both operands before its store, and later loads lie at or
    // past the stored ones. Whole vectors, reading up to V - 1 samples of
    // slack past the valid part, which only feed positions that are past it.
    static void foldInPlace(T* t, int count, int d) {
        using R = Reduce<T, Max>;
        for (int i = 0; i < count; i += V) Vec<T>::store(t + i, R::vec(Vec<T>::load(t + i + d), Vec<T>::load(t + i)));
    }

    static void run(const T* in, T* out, int n, int W, bool padded) {
        if (W <= kDirectUpTo) {
            ptrdiff_t taps[kDirectUpTo];
            for (int j = 0; j < W; ++j) taps[j] = j * kTap;
            reduceTapsAny<T, Max>(in, taps, W, out, n, false, padded);
        } else if (kTempBytes / static_cast<int>(sizeof(T)) - (W - 1) * C - 2 * V < 8 * V) {
            direct(in, out, n, W, padded);
        } else {
            doubling(in, out, n, W, padded);
        }
    }

    // W taps in groups of a tap list.
    [[gnu::noinline]] static void direct(const T* in, T* out, int n, int W, bool padded) {
        ptrdiff_t taps[TapList::kCapacity];
        for (int j0 = 0; j0 < W; j0 += TapList::kCapacity) {
            const int count = W - j0 < TapList::kCapacity ? W - j0 : TapList::kCapacity;
            for (int j = 0; j < count; ++j) taps[j] = (j0 + j) * kTap;
            reduceTapsAny<T, Max>(in, taps, count, out, n, j0 > 0, padded);
        }
    }

    [[gnu::noinline]] static void doubling(const T* in, T* out, int n, int W, bool padded) {
        using R = Reduce<T, Max>;
        const int reach = (W - 1) * C;
        constexpr int cap = kTempBytes / static_cast<int>(sizeof(T));
        const int chunk = cap - reach - 2 * V;
        alignas(32) T t[cap];
        for (int x0 = 0; x0 < n; x0 += chunk) {
            const int len = n - x0 < chunk ? n - x0 : chunk;
            // Pairs from the input: len + reach - C valid samples, then two
            // vectors of the identity as slack.
            int valid = len + reach - C;
            const ptrdiff_t pair[2] = {0, kTap};
            reduceTaps<T, Max, 2>(in + x0, pair, 2, t, valid, false, padded);
            for (int k = valid; k < valid + 2 * V; ++k) t[k] = R::identity();
            int span = 2;
            while (2 * span <= W) {
                valid -= span * C;
                foldInPlace(t, valid, span * C);
                span *= 2;
            }
            const ptrdiff_t halves[2] = {0, (W - span) * kTap};
            reduceTaps<T, Max, 2>(t, halves, 2, out + x0, len, false, true);
        }
    }
};

// out = op over `count` ring rows from input row `first` on, in input order.
template <class T, bool Max>
void reduceRing(const uint8_t* ring, int stride, int H, int first, int count, T* out, int n, bool fromOut) {
    constexpr int kShort = 16;
    ptrdiff_t shortTaps[kShort];
    int slot = first % H;
    if (count <= kShort) {
        for (int i = 0; i < count; ++i, slot = slot + 1 == H ? 0 : slot + 1)
            shortTaps[i] = static_cast<ptrdiff_t>(slot) * stride;
        reduceTapsAny<T, Max>(reinterpret_cast<const T*>(ring), shortTaps, count, out, n, fromOut, true);
        return;
    }
    ptrdiff_t taps[TapList::kCapacity];
    for (int i0 = 0; i0 < count; i0 += TapList::kCapacity) {
        const int group = count - i0 < TapList::kCapacity ? count - i0 : TapList::kCapacity;
        for (int i = 0; i < group; ++i, slot = slot + 1 == H ? 0 : slot + 1)
            taps[i] = static_cast<ptrdiff_t>(slot) * stride;
        reduceTapsAny<T, Max>(reinterpret_cast<const T*>(ring), taps, group, out, n, fromOut || i0 > 0, true);
    }
}

// A full W x H rectangle in two passes. The row pass reduces each input row
// over W samples a channel into a ring of H rows (stride a multiple of 32
// bytes); the ring is primed with H - 1 rows, then each output row adds one
// row to the ring and the column pass reduces the H ring rows in input order.
// From H = 5 on, in rows of four vectors or more, output rows go in pairs that share their H - 1 common ring
// rows: their reduction gives output row y + 1 a start, and row y its
// result with ring row y; row y + 1 then takes ring row y + H once that row
// has replaced row y in the ring.
template <class T, int C, bool Max>
void rectKernel(const Frame& f, const MaskView& m, uint8_t* ring) {
    const int W = m.W(), H = m.H();
    const int n = f.w * C;
    const int stride = roundRow32(n * static_cast<int>(sizeof(T)));
    // A strip of the library's scratch narrower than a vector: one vector of
    // all the taps a row costs less than two passes through the ring.
    if (f.padded && n < Vec<T>::lanes && W * H <= 49) return runKernel<T, C, Max>(f, m, ring);
    auto ringRow = [&](int r) { return reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>(r % H) * stride); };
    auto rowPass = [&](int r) {
        RowReducer<T, C, Max>::run(rowAt(static_cast<const T*>(f.src), f.srcStep, r), ringRow(r), n, W, f.padded);
    };
    auto outRow = [&](int y) { return rowAt(static_cast<T*>(f.dst), f.dstStep, y); };
    for (int r = 0; r < H - 1; ++r) rowPass(r);
    int y = 0;
    if (H >= 5 && n >= 4 * Vec<T>::lanes) {
        for (; y + 2 <= f.h; y += 2) {
            rowPass(y + H - 1);
            T* out0 = outRow(y);
            T* out1 = outRow(y + 1);
            reduceRing<T, Max>(ring, stride, H, y + 1, H - 1, out1, n, false);
            const ptrdiff_t pair[2] = {reinterpret_cast<const uint8_t*>(ringRow(y)) - reinterpret_cast<const uint8_t*>(out1), 0};
            reduceTaps<T, Max, 2>(out1, pair, 2, out0, n);
            rowPass(y + H);
            reduceRing<T, Max>(ring, stride, H, y + H, 1, out1, n, true);
        }
    }
    for (; y < f.h; ++y) {
        rowPass(y + H - 1);
        reduceRing<T, Max>(ring, stride, H, y, H, outRow(y), n, false);
    }
}

// Rectangles up to 7 wide on rows of four vectors or more: the row pass of
// the newest input row and the column pass of the output row run in one
// loop over the row, the newest row's values going from registers both
// into the ring and into the column reduction, where they come last, as in
// input order. Other rectangles take rectKernel.
template <class T, int C, bool Max, int W>
void rectFusedRows(const Frame& f, int H, uint8_t* ring, int stride) {
    using R = Reduce<T, Max>;
    using Vt = Vec<T>;
    constexpr int V = Vt::lanes;
    const int n = f.w * C;
    auto ringRow = [&](int r) { return reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>(r % H) * stride); };
    for (int r = 0; r < H - 1; ++r)
        RowReducer<T, C, Max>::run(rowAt(static_cast<const T*>(f.src), f.srcStep, r), ringRow(r), n, W, f.padded);
    ptrdiff_t col[TapList::kCapacity];
    const auto id = Vt::set1(R::identity());
    for (int y = 0; y < f.h; ++y) {
        const T* in = rowAt(static_cast<const T*>(f.src), f.srcStep, y + H - 1);
        T* fresh = ringRow(y + H - 1);
        T* out = rowAt(static_cast<T*>(f.dst), f.dstStep, y);
        for (int i = 0; i < H - 1; ++i)
            col[i] = reinterpret_cast<const uint8_t*>(ringRow(y + i)) - reinterpret_cast<const uint8_t*>(fresh);
        auto block = [&](int x, auto lanes) {
            constexpr int U = decltype(lanes)::value;
            typename Vt::type a[U], b[U];
            for (int u = 0; u < U; ++u) a[u] = id;
            for (int j = 0; j < W; ++j)
                for (int u = 0; u < U; ++u) a[u] = R::vec(Vt::load(in + x + u * V + j * C), a[u]);
            for (int u = 0; u < U; ++u) {
                Vt::store(fresh + x + u * V, a[u]);
                b[u] = id;
            }
            for (int i = 0; i < H - 1; ++i) {
                const T* p = tapAt(static_cast<const T*>(fresh), col[i]) + x;
                for (int u = 0; u < U; ++u) b[u] = R::vec(Vt::load(p + u * V), b[u]);
            }
            for (int u = 0; u < U; ++u) Vt::store(out + x + u * V, R::vec(a[u], b[u]));
        };
        int x = 0;
        for (; x + 4 * V <= n; x += 4 * V) block(x, std::integral_constant<int, 4>{});
        for (; x + V <= n; x += V) block(x, std::integral_constant<int, 1>{});
        // The last vector ends at the row's end; the ring and output samples
        // it meets again get the values they already hold.
        if (x < n) block(n - V, std::integral_constant<int, 1>{});
    }
}

template <class T, int C, bool Max>
void rectSmallKernel(const Frame& f, const MaskView& m, uint8_t* ring) {
    const int W = m.W(), H = m.H();
    const int n = f.w * C;
    const int stride = roundRow32(n * static_cast<int>(sizeof(T)));
    if (n < 4 * Vec<T>::lanes || H - 1 > TapList::kCapacity) return rectKernel<T, C, Max>(f, m, ring);
    (void)stride;
    switch (W) {
        case 1: return rectFusedRows<T, C, Max, 1>(f, H, ring, stride);
        case 3: return rectFusedRows<T, C, Max, 3>(f, H, ring, stride);
        case 5: return rectFusedRows<T, C, Max, 5>(f, H, ring, stride);
        case 7: return rectFusedRows<T, C, Max, 7>(f, H, ring, stride);
        default: return rectKernel<T, C, Max>(f, m, ring);
    }
}

// ------------------------------------------------------------ rectangle, borders made in the kernel

// The lines around the ROI as the rectangle below reads them: a row outside
// maps to a source row, or to the value where it takes the value whole; a
// pixel left or right of the ROI to a source column or to the value. Columns
// in memory keep their own index.
template <class T, int C>
struct EdgeLines {
    static constexpr int kValue = INT_MIN;
    static constexpr int kMaxSide = 256;
    const T* src;
    int srcStep;
    int w, h;
    int code;
    bool topMem, bottomMem;
    const T* value;
    int ax;
    int left[kMaxSide];   // pixels -ax .. -1
    int right[kMaxSide];  // pixels w .. w + ax - 1

    // The row that virtual input row r reads, or nullptr for a row of the value.
    const T* row(int r) const {
        if ((r >= 0 && r < h) || (r < 0 && topMem) || (r >= h && bottomMem)) return rowAt(src, srcStep, r);
        if (code == border::kConstant) return nullptr;
        return rowAt(src, srcStep, border::sourceIndex(r, h, code, topMem, bottomMem));
    }

    // Pixels [p0, p1) of row s, widened by the side columns, to out.
    void widen(const T* s, int p0, int p1, T* out) const {
        auto side = [&](int p, T* o) {
            const int column = p < 0 ? left[p + ax] : right[p - w];
            const T* from = column == kValue ? value : s + static_cast<ptrdiff_t>(column) * C;
            for (int c = 0; c < C; ++c) o[c] = from[c];
        };
        int p = p0;
        for (; p < p1 && p < 0; ++p) side(p, out + (p - p0) * C);
        const int in1 = p1 < w ? p1 : w;
        if (in1 > p) {
            std::memcpy(out + (p - p0) * C, s + static_cast<ptrdiff_t>(p) * C, static_cast<size_t>(in1 - p) * C * sizeof(T));
            p = in1;
        }
        for (; p < p1; ++p) side(p, out + (p - p0) * C);
    }
};

// A full W x H rectangle (W odd, up to 7) over the whole ROI, making its own
// borders instead of running on bordered copies of the edges: the ring holds
// the row pass of H virtual input rows, rows outside the ROI mapped as the
// edge lines say. A row pass reads the row where it stands except for one
// vector at each end, which reads a short widened copy of the row's ends on
// the stack. The row pass of the newest row and the column pass of the output
// row run fused, as in rectFusedRows; a row of the value fills its ring row
// and the column pass takes the ring alone. Needs rows of three vectors or
// more and at most one vector of samples in a side.
template <class T, int C, bool Max, int W>
void rectEdges(const EdgeLines<T, C>& e, int H, int ay, T* dst, int dstStep, uint8_t* ring) {
    using R = Reduce<T, Max>;
    using Vt = Vec<T>;
    constexpr int V = Vt::lanes;
    constexpr int ax = (W - 1) / 2;
    constexpr int kTiny = V + (W + 2) * C;
    const int w = e.w, n = w * C;
    const int stride = roundRow32(n * static_cast<int>(sizeof(T)));
    auto slot = [&](int r) { return reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>((r + ay) % H) * stride); };
    const auto id = Vt::set1(R::identity());
    // The right end's vector starts at sample n - V, inside pixel pr.
    const int pr = (n - V) / C;
    alignas(32) T leftEnd[kTiny], rightEnd[kTiny];
    ptrdiff_t col[TapList::kCapacity];

    // Row pass of U vectors from x on, base + x + jC the taps; with Fused,
    // also the column pass over the older ring rows (col, from fresh) into out.
    auto block = [&](const T* base, int x, T* fresh, T* out, auto lanes, auto fused) {
        constexpr int U = decltype(lanes)::value;
        typename Vt::type a[U];
        for (int u = 0; u < U; ++u) a[u] = id;
        for (int j = 0; j < W; ++j)
            for (int u = 0; u < U; ++u) a[u] = R::vec(Vt::load(base + x + u * V + j * C), a[u]);
        for (int u = 0; u < U; ++u) Vt::store(fresh + x + u * V, a[u]);
        if constexpr (decltype(fused)::value) {
            typename Vt::type b[U];
            for (int u = 0; u < U; ++u) b[u] = id;
            for (int i = 0; i < H - 1; ++i) {
                const T* p = tapAt(static_cast<const T*>(fresh), col[i]) + x;
                for (int u = 0; u < U; ++u) b[u] = R::vec(Vt::load(p + u * V), b[u]);
            }
            for (int u = 0; u < U; ++u) Vt::store(out + x + u * V, R::vec(a[u], b[u]));
        }
    };
    auto rowPass = [&](const T* s, T* fresh, T* out, auto fused) {
        using One = std::integral_constant<int, 1>;
        e.widen(s, -ax, (V - 1) / C + ax + 1, leftEnd);
        e.widen(s, pr - ax, w + ax, rightEnd);
        block(leftEnd, 0, fresh, out, One{}, fused);
        const T* in = s - ax * C;
        int x = V;
        for (; x + 4 * V <= n - V; x += 4 * V) block(in, x, fresh, out, std::integral_constant<int, 4>{}, fused);
        for (; x + V <= n - V; x += V) block(in, x, fresh, out, One{}, fused);
        if (x < n - V) block(in, n - 2 * V, fresh, out, One{}, fused);
        // rightEnd + (q - pr C) + jC is sample q's tap j.
        block(rightEnd - pr * C, n - V, fresh, out, One{}, fused);
    };
    // Two output rows at once: the row passes of two new rows, the older
    // ring rows they share reduced once. The second new row takes the ring
    // row of the first output row's oldest, so each block loads that row
    // before storing over it, and the blocks must not overlap: rows of whole
    // vectors only. Two vectors a block keep the four partial results in
    // registers; from H = 5 on, where it pays.
    alignas(32) T leftEnd2[kTiny], rightEnd2[kTiny];
    auto pairBlock = [&](const T* baseA, const T* baseB, int x, T* freshA, T* freshB, T* out0, T* out1, auto lanes) {
        constexpr int U = decltype(lanes)::value;
        typename Vt::type a[U], a2[U], c[U], first[U];
        for (int u = 0; u < U; ++u) a[u] = a2[u] = c[u] = id;
        for (int j = 0; j < W; ++j)
            for (int u = 0; u < U; ++u) {
                a[u] = R::vec(Vt::load(baseA + x + u * V + j * C), a[u]);
                a2[u] = R::vec(Vt::load(baseB + x + u * V + j * C), a2[u]);
            }
        for (int i = 1; i < H - 1; ++i) {
            const T* p = tapAt(static_cast<const T*>(freshA), col[i]) + x;
            for (int u = 0; u < U; ++u) c[u] = R::vec(Vt::load(p + u * V), c[u]);
        }
        const T* p0 = tapAt(static_cast<const T*>(freshA), col[0]) + x;
        for (int u = 0; u < U; ++u) first[u] = Vt::load(p0 + u * V);
        for (int u = 0; u < U; ++u) {
            Vt::store(freshA + x + u * V, a[u]);
            Vt::store(freshB + x + u * V, a2[u]);
            Vt::store(out0 + x + u * V, R::vec(a[u], R::vec(c[u], first[u])));
            Vt::store(out1 + x + u * V, R::vec(a2[u], R::vec(a[u], c[u])));
        }
    };
    auto pairPass = [&](const T* s, const T* s2, T* freshA, T* freshB, T* out0, T* out1) {
        using One = std::integral_constant<int, 1>;
        e.widen(s, -ax, (V - 1) / C + ax + 1, leftEnd);
        e.widen(s, pr - ax, w + ax, rightEnd);
        e.widen(s2, -ax, (V - 1) / C + ax + 1, leftEnd2);
        e.widen(s2, pr - ax, w + ax, rightEnd2);
        pairBlock(leftEnd, leftEnd2, 0, freshA, freshB, out0, out1, One{});
        int x = V;
        for (; x + 2 * V <= n - V; x += 2 * V)
            pairBlock(s - ax * C, s2 - ax * C, x, freshA, freshB, out0, out1, std::integral_constant<int, 2>{});
        for (; x + V <= n - V; x += V) pairBlock(s - ax * C, s2 - ax * C, x, freshA, freshB, out0, out1, One{});
        pairBlock(rightEnd - pr * C, rightEnd2 - pr * C, n - V, freshA, freshB, out0, out1, One{});
    };
    const bool pairs = H >= 5 && n % V == 0;
    auto fillValue = [&](T* fresh) {
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < C; ++c) fresh[x * C + c] = e.value[c];
    };
    const int by = H - 1 - ay;
    for (int r = -ay; r < by; ++r) {
        const T* s = e.row(r);
        if (s) rowPass(s, slot(r), nullptr, std::false_type{});
        else fillValue(slot(r));
    }
    for (int y = 0; y < e.h; ++y) {
        const int r = y + by;
        T* fresh = slot(r);
        T* out = rowAt(dst, dstStep, y);
        const T* s = e.row(r);
        const T* s2 = pairs && s && y + 1 < e.h ? e.row(r + 1) : nullptr;
        if (s2) {
            for (int i = 0; i < H - 1; ++i)
                col[i] = reinterpret_cast<const uint8_t*>(slot(y - ay + i)) - reinterpret_cast<const uint8_t*>(fresh);
            pairPass(s, s2, fresh, slot(r + 1), out, rowAt(dst, dstStep, y + 1));
            ++y;
            continue;
        }
        if (!s) {
            fillValue(fresh);
            reduceRing<T, Max>(ring, stride, H, y, H, out, n, false);
            continue;
        }
        for (int i = 0; i < H - 1; ++i)
            col[i] = reinterpret_cast<const uint8_t*>(slot(y - ay + i)) - reinterpret_cast<const uint8_t*>(fresh);
        rowPass(s, fresh, out, std::true_type{});
    }
}


// The column pass of a rectangle over a ring of H row passes, rows in pairs
// as in rectKernel; rowPass(v) writes virtual input row v (from 0, the first
// row output row 0 reads) into ring row v % H.
template <class T, bool Max, class RowPass>
void rectColumns(int H, int h, int n, T* dst, int dstStep, uint8_t* ring, int stride, RowPass&& rowPass) {
    auto ringRow = [&](int v) { return reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>(v % H) * stride); };
    for (int v = 0; v < H - 1; ++v) rowPass(v);
    int y = 0;
    if (H >= 5 && n >= 4 * Vec<T>::lanes) {
        for (; y + 2 <= h; y += 2) {
            rowPass(y + H - 1);
            T* out0 = rowAt(dst, dstStep, y);
            T* out1 = rowAt(dst, dstStep, y + 1);
            reduceRing<T, Max>(ring, stride, H, y + 1, H - 1, out1, n, false);
            const ptrdiff_t pair[2] = {reinterpret_cast<const uint8_t*>(ringRow(y)) - reinterpret_cast<const uint8_t*>(out1), 0};
            reduceTaps<T, Max, 2>(out1, pair, 2, out0, n);
            rowPass(y + H);
            reduceRing<T, Max>(ring, stride, H, y + H, 1, out1, n, true);
        }
    }
    for (; y < h; ++y) {
        rowPass(y + H - 1);
        reduceRing<T, Max>(ring, stride, H, y, H, rowAt(dst, dstStep, y), n, false);
    }
}

// Any full W x H rectangle over the whole ROI, making its own borders: each
// row pass reads a widened copy of its row, in chunks, from the stack.
template <class T, int C, bool Max>
struct RectWide {
    static constexpr int kWideBytes = 8192;
    static constexpr long long kRingBytes = 131072;
    static constexpr int kWide = kWideBytes / static_cast<int>(sizeof(T));
    // Pixels a chunk of the widened row holds for a mask W wide, a vector of
    // slack behind it.
    static int chunkPixels(int W) { return (kWide - (W - 1) * C - Vec<T>::lanes) / C; }

    static void run(const EdgeLines<T, C>& e, int W, int H, int ay, T* dst, int dstStep, uint8_t* ring) {
        const int w = e.w, ax = e.ax;
        // Where the ring of the whole row would pass kRingBytes, the ROI goes
        // in strips of equal width, each down the whole height, so that each
        // strip's ring is about half of kRingBytes and stays in the cache.
        const long long ringBytes = static_cast<long long>(w) * C * sizeof(T) * H;
        const int strips = ringBytes > kRingBytes ? static_cast<int>((2 * ringBytes + kRingBytes - 1) / kRingBytes) : 1;
        const int strip = std::min(chunkPixels(W), (w + strips - 1) / strips);
        alignas(32) T wide[kWide];
        for (int p0 = 0; p0 < w; p0 += strip) {
            const int p1 = w - p0 < strip ? w : p0 + strip;
            const int n = (p1 - p0) * C;
            const int stride = roundRow32(n * static_cast<int>(sizeof(T)));
            rectColumns<T, Max>(H, e.h, n, dst + p0 * C, dstStep, ring, stride, [&](int v) {
                T* fresh = reinterpret_cast<T*>(ring + static_cast<ptrdiff_t>(v % H) * stride);
                const T* s = e.row(v - ay);
                if (!s) {
                    for (int x = 0; x < n; ++x) fresh[x] = e.value[x % C];
                    return;
                }
                e.widen(s, p0 - ax, p1 + W - 1 - ax, wide);
                RowReducer<T, C, Max>::run(wide, fresh, n, W, true);
            });
        }
    }
};

}  // namespace lum::morph
