// Row reading shared by the reduction kernels (mean, deviation, extrema,
// norms): groups of one vector of samples, the mask's selection at the same
// lane width, and the exact accumulators of integer and float sums.
//
// A group is one 256-bit vector of samples: 32 pixels of 8u, 16 of 16u, 8 of
// 32f. Pixel x of a row always lands in lane x % group, also in a row's last,
// partial group, whose missing lanes hold a pad value chosen by the caller
// (zero for sums). The partial group is copied out of the row first, so that
// no byte past the row's last sample is read. Three-channel rows (one channel
// of interest) are read 96 bytes a group and the channel is pulled out by byte
// shuffles, so a group holds the same pixels in both layouts.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/rows.h"
#include "lumcv.h"

namespace lum::kernel::stats {

template <class T>
inline constexpr int kGroup = 32 / static_cast<int>(sizeof(T));

template <class T>
struct Lanes {
    using type = __m256i;
};
template <>
struct Lanes<float> {
    using type = __m256;
};
template <class T>
using V = typename Lanes<T>::type;

template <class T>
inline V<T> fromBits(__m256i v) {
    if constexpr (std::is_same_v<T, float>)
        return _mm256_castsi256_ps(v);
    else
        return v;
}

template <class T>
inline V<T> loadGroup(const T* p) {
    return fromBits<T>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
}

// ------------------------------------------------------------ channel of interest

// Three byte shuffles that gather sample c of 16 / sizeof(T) interleaved
// three-channel pixels from three 16-byte chunks; each output byte has exactly
// one chunk that supplies it (3 is prime to the samples in a chunk), the
// others give zero.
class ChannelPicker {
public:
    ChannelPicker(int sampleSize, int c) {
        alignas(32) uint8_t m[3][32];
        for (int k = 0; k < 3; ++k) {
            for (int i = 0; i < 16; ++i) {
                const int sample = 3 * (i / sampleSize) + c;
                const int srcByte = sample * sampleSize + i % sampleSize;
                const uint8_t sel = srcByte / 16 == k ? static_cast<uint8_t>(srcByte % 16) : uint8_t{0x80};
                m[k][i] = sel;
                m[k][i + 16] = sel;
            }
            mask_[k] = _mm256_load_si256(reinterpret_cast<const __m256i*>(m[k]));
        }
    }

    // One group from the 96 bytes at p: chunks 0..2 give the low half of the
    // group, chunks 3..5 the high half.
    __m256i pick(const uint8_t* p) const {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));       // ch0 ch1
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32));  // ch2 ch3
        const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64));  // ch4 ch5
        const __m256i x = _mm256_permute2x128_si256(a, b, 0x30);                         // ch0 ch3
        const __m256i y = _mm256_permute2x128_si256(a, d, 0x21);                         // ch1 ch4
        const __m256i z = _mm256_permute2x128_si256(b, d, 0x30);                         // ch2 ch5
        return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(x, mask_[0]), _mm256_shuffle_epi8(y, mask_[1])),
                               _mm256_shuffle_epi8(z, mask_[2]));
    }

private:
    __m256i mask_[3];
};

// ------------------------------------------------------------ source rows

// Samples of one row: C = 1 reads every sample, C = 3 sample c of each pixel.
template <class T, int C>
struct SourceRow;

template <class T>
struct SourceRow<T, 1> {
    const T* row;
    V<T> group(int x) const { return loadGroup(row + x); }
    // Pixels x .. x + n - 1 (n < group), `pad` in the other lanes.
    V<T> tail(int x, int n, T pad) const {
        alignas(32) T buf[kGroup<T>];
        for (T& v : buf) v = pad;
        std::memcpy(buf, row + x, sizeof(T) * static_cast<size_t>(n));
        return loadGroup(buf);
    }
    T at(int x) const { return row[x]; }
};

template <class T>
struct SourceRow<T, 3> {
    const T* row;
    const ChannelPicker* picker;
    int c;
    V<T> group(int x) const { return fromBits<T>(picker->pick(reinterpret_cast<const uint8_t*>(row + 3 * x))); }
    V<T> tail(int x, int n, T pad) const {
        alignas(32) T buf[3 * kGroup<T>];
        for (T& v : buf) v = pad;
        std::memcpy(buf, row + 3 * x, 3 * sizeof(T) * static_cast<size_t>(n));
        return fromBits<T>(picker->pick(reinterpret_cast<const uint8_t*>(buf)));
    }
    T at(int x) const { return row[3 * x + c]; }
};

// An image of one of the two layouts: rows by index.
template <class T, int C>
class Source {
public:
    Source(const T* base, int step, int c) : base_(base), step_(step), c_(c), picker_(sizeof(T), c) {}
    SourceRow<T, C> row(int y) const {
        if constexpr (C == 1)
            return SourceRow<T, 1>{rowAt(base_, step_, y)};
        else
            return SourceRow<T, 3>{rowAt(base_, step_, y), &picker_, c_};
    }

private:
    const T* base_;
    int step_;
    int c_;
    ChannelPicker picker_;
};

// ------------------------------------------------------------ mask

// The unselected lanes of a group (mask byte zero) as all-ones at the lane
// width of T, and the number of selected pixels, both from one compare.
template <class T>
struct Selection {
    V<T> unselected;
    int selected;
};

template <class T>
inline Selection<T> selectionOf(const Lum8u* m) {
    const __m128i zero = _mm_setzero_si128();
    if constexpr (sizeof(T) == 1) {
        const __m256i eq =
            _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(m)), _mm256_setzero_si256());
        return {eq, 32 - _mm_popcnt_u32(static_cast<unsigned>(_mm256_movemask_epi8(eq)))};
    } else if constexpr (sizeof(T) == 2) {
        const __m128i eq = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m)), zero);
        return {_mm256_cvtepi8_epi16(eq), 16 - _mm_popcnt_u32(static_cast<unsigned>(_mm_movemask_epi8(eq)))};
    } else {
        const __m128i eq = _mm_cmpeq_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(m)), zero);
        return {_mm256_castsi256_ps(_mm256_cvtepi8_epi32(eq)),
                8 - _mm_popcnt_u32(static_cast<unsigned>(_mm_movemask_epi8(eq)) & 0xffu)};
    }
}

template <class T>
inline Selection<T> selectionTail(const Lum8u* m, int n) {
    alignas(32) Lum8u buf[kGroup<T>] = {};
    std::memcpy(buf, m, static_cast<size_t>(n));
    return selectionOf<T>(buf);
}

// Zero in the unselected lanes, the sample elsewhere.
template <class T>
inline V<T> keepSelected(V<T> v, V<T> unselected) {
    if constexpr (std::is_same_v<T, float>)
        return _mm256_andnot_ps(unselected, v);
    else
        return _mm256_andnot_si256(unselected, v);
}

// ------------------------------------------------------------ row scan

// A mask that selects everything: the last, partial group of an unmasked row
// takes its selection (present lanes only) from it.
alignas(32) inline constexpr Lum8u kAllSelected[32] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                                       1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

// Calls body(selection, v...) for each group of a row, one v from each of
// the rows given (images of one layout), in order of x: two groups a step,
// then one, then the partial group, whose missing lanes hold `pad` and are
// never selected. Without a mask, full groups come with an empty selection
// (nothing unselected) and the partial group with its present lanes selected.
template <bool kMasked, class T, class Body, class... Rows>
inline void scanRow(const Lum8u* mask, int width, T pad, Body&& body, const Rows&... rows) {
    constexpr int G = kGroup<T>;
    const auto selection = [mask](int x) {
        if constexpr (kMasked)
            return selectionOf<T>(mask + x);
        else
            return Selection<T>{};
    };
    int x = 0;
    for (; x + 2 * G <= width; x += 2 * G) {
        body(selection(x), rows.group(x)...);
        body(selection(x + G), rows.group(x + G)...);
    }
    if (x + G <= width) {
        body(selection(x), rows.group(x)...);
        x += G;
    }
    if (x < width)
        body(selectionTail<T>(kMasked ? mask + x : kAllSelected, width - x), rows.tail(x, width - x, pad)...);
}

// ------------------------------------------------------------ exact integer sums

inline uint64_t sumLanes64(__m256i v) {
    const __m128i s = _mm_add_epi64(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    return static_cast<uint64_t>(_mm_cvtsi128_si64(s)) + static_cast<uint64_t>(_mm_extract_epi64(s, 1));
}

// Both halves of each 32-bit lane, taken as unsigned, added to 64-bit lanes.
inline __m256i addU32To64(__m256i acc, __m256i v) {
    const __m256i lo = _mm256_and_si256(v, _mm256_set1_epi64x(0xffffffff));
    return _mm256_add_epi64(acc, _mm256_add_epi64(lo, _mm256_srli_epi64(v, 32)));
}

// Sum (and, with kSquares, sum of squares) of 8u lanes, exact in 64 bits.
// The squares gather in 32-bit lanes (at most 4 x 255^2 a group) and move to
// 64-bit lanes every 8192 groups.
template <bool kSquares>
class SumsU8 {
public:
    void add(__m256i v) {
        const __m256i zero = _mm256_setzero_si256();
        sum_ = _mm256_add_epi64(sum_, _mm256_sad_epu8(v, zero));
        if constexpr (kSquares) {
            const __m256i lo = _mm256_unpacklo_epi8(v, zero);
            const __m256i hi = _mm256_unpackhi_epi8(v, zero);
            sq32_ = _mm256_add_epi32(sq32_, _mm256_add_epi32(_mm256_madd_epi16(lo, lo), _mm256_madd_epi16(hi, hi)));
            if (++pending_ == 8192) widen();
        }
    }
    uint64_t sum() const { return sumLanes64(sum_); }
    uint64_t sumSquares() {
        widen();
        return sumLanes64(sq64_);
    }

private:
    void widen() {
        sq64_ = addU32To64(sq64_, sq32_);
        sq32_ = _mm256_setzero_si256();
        pending_ = 0;
    }
    __m256i sum_ = _mm256_setzero_si256();
    __m256i sq32_ = _mm256_setzero_si256();
    __m256i sq64_ = _mm256_setzero_si256();
    int pending_ = 0;
};

// The same for 16u lanes, through s = u - 32768 (the sample with its top bit
// flipped), a signed 16-bit value: pairwise sums of s gather in 32-bit lanes
// (moved to 64 bits every 16384 groups), pairwise squares of s fit 32
// unsigned bits. Over every lane read, zeros included:
//   sum u = sum s + 32768 n,   sum u^2 = sum s^2 + 65536 sum u - 2^30 n.
template <bool kSquares>
class SumsU16 {
public:
    void add(__m256i v) {
        const __m256i s = _mm256_xor_si256(v, _mm256_set1_epi16(static_cast<short>(0x8000)));
        sum32_ = _mm256_add_epi32(sum32_, _mm256_madd_epi16(s, _mm256_set1_epi16(1)));
        if constexpr (kSquares) sq64_ = addU32To64(sq64_, _mm256_madd_epi16(s, s));
        lanes_ += 16;
        if (++pending_ == 16384) widen();
    }
    uint64_t sum() {
        widen();
        return sumLanes64(sum64_) + (lanes_ << 15);
    }
    uint64_t sumSquares() { return sumLanes64(sq64_) + 65536u * sum() - (lanes_ << 30); }

private:
    // The signed 32-bit sums, sign-extended, into the 64-bit lanes.
    void widen() {
        sum64_ = _mm256_add_epi64(sum64_, _mm256_cvtepi32_epi64(_mm256_castsi256_si128(sum32_)));
        sum64_ = _mm256_add_epi64(sum64_, _mm256_cvtepi32_epi64(_mm256_extracti128_si256(sum32_, 1)));
        sum32_ = _mm256_setzero_si256();
        pending_ = 0;
    }
    __m256i sum32_ = _mm256_setzero_si256();
    __m256i sum64_ = _mm256_setzero_si256();
    __m256i sq64_ = _mm256_setzero_si256();
    uint64_t lanes_ = 0;
    int pending_ = 0;
};

template <class T, bool kSquares>
using IntSums = std::conditional_t<sizeof(T) == 1, SumsU8<kSquares>, SumsU16<kSquares>>;

// An unsigned 64-bit total as a double: converted as a signed value, and
// 2^64 added back when its top bit was set.
inline double totalToDouble(uint64_t u) {
    const int64_t s = static_cast<int64_t>(u);
    double d = static_cast<double>(s);
    if (s < 0) d += 18446744073709551616.0;
    return d;
}

// ------------------------------------------------------------ float lanes

// Eight float lanes that are added, when flushed, into four double
// accumulators: lanes 0..3 first, then lanes 4..7 into the same four. The
// total adds the accumulators as (2 + 0) + (3 + 1).
class FloatLanes {
public:
    void add(__m256 v) { lanes_ = _mm256_add_ps(lanes_, v); }
    void addSquare(__m256 v) { lanes_ = _mm256_fmadd_ps(v, v, lanes_); }
    void flush() {
        acc_ = _mm256_add_pd(acc_, _mm256_cvtps_pd(_mm256_castps256_ps128(lanes_)));
        acc_ = _mm256_add_pd(acc_, _mm256_cvtps_pd(_mm256_extractf128_ps(lanes_, 1)));
        lanes_ = _mm256_setzero_ps();
    }
    double total() const {
        const __m128d s = _mm_add_pd(_mm256_extractf128_pd(acc_, 1), _mm256_castpd256_pd128(acc_));
        return _mm_cvtsd_f64(_mm_add_sd(s, _mm_unpackhi_pd(s, s)));
    }

private:
    __m256 lanes_ = _mm256_setzero_ps();
    __m256d acc_ = _mm256_setzero_pd();
};

inline __m256 magnitude(__m256 v) { return _mm256_and_ps(v, _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff))); }

}  // namespace lum::kernel::stats
