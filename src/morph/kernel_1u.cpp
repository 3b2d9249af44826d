// Packed one-bit erosion and dilation.
//
// Each source row that the mask reaches is widened once into a ring of mh
// rows: ax pixels in front of the ROI's first and re behind its last, taken
// from memory on a side whose flag is set, else by the border code. A widened
// row is an array of 64-bit words, padded index p (pixel x = p - ax) at bit
// 63 - p % 64 of word p / 64, plus one spare word, so that "the row read j
// pixels further on" is (w[k + q] << r) | (w[k + q + 1] >> (64 - r)) with
// j = 64 q + r. An output row is the OR (dilation) or AND (erosion) of these
// shifted rows over the selected elements (each element a "tap"). Where it
// pays, each ring row is instead reduced once over every run length of the
// mask, and a run of a mask row becomes one tap on the reduction of its
// length: a full rectangle then needs one unshifted tap a mask row.

#include "morph/kernel_1u.h"

#include <immintrin.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "frame/carve.h"
#include "frame/simd.h"
#include "morph/plan_1u.h"
#include "morph/plan_layout_1u.h"

namespace lum::morph {

namespace {

using u64 = uint64_t;
using border::MorphOp;

constexpr u64 kOnes = ~u64{0};

inline u64 loadBigEndian64(const uint8_t* p) {
    u64 v;
    std::memcpy(&v, p, 8);
    return __builtin_bswap64(v);
}

inline void storeBigEndian64(uint8_t* p, u64 v) {
    v = __builtin_bswap64(v);
    std::memcpy(p, &v, 8);
}

// Bits lo..hi-1 of a word, counted from the most significant (0 <= lo < hi <= 64).
inline u64 rangeMask(int lo, int hi) {
    const u64 head = kOnes >> lo;
    const u64 tail = hi == 64 ? kOnes : ~(kOnes >> hi);
    return head & tail;
}

// Sets padded positions [from, to) of a word row to `bit`.
void fillBits(u64* words, int from, int to, bool bit) {
    if (from >= to) return;
    const int k0 = from >> 6;
    const int k1 = (to - 1) >> 6;
    const u64 value = bit ? kOnes : 0;
    for (int k = k0; k <= k1; ++k) {
        const int lo = k == k0 ? from & 63 : 0;
        const int hi = k == k1 ? to - 64 * k : 64;
        const u64 m = rangeMask(lo, hi);
        words[k] = (words[k] & ~m) | (value & m);
    }
}

// The bit at signed bit position `pos` from `row`.
inline bool bitAt(const uint8_t* row, ptrdiff_t pos) {
    const uint8_t byte = row[pos >> 3];
    return (byte >> (7 - (pos & 7))) & 1;
}

// n >= 1 bits of a byte stream (from `bytes`, nbytes long, stream position t
// at bit 7 - t % 8 of byte t / 8), read 64 at a time from stream position t0
// (possibly negative); stream positions outside [0, 8 nbytes) read as 0.
class BitStream {
public:
    BitStream(const uint8_t* bytes, ptrdiff_t nbytes) : p_(bytes), n_(nbytes) {}

    u64 at(ptrdiff_t t0) const {
        const ptrdiff_t b0 = t0 >> 3;  // floor
        const int sh = static_cast<int>(t0 & 7);
        if (b0 >= 0 && b0 + 9 <= n_) {
            const u64 v = loadBigEndian64(p_ + b0);
            return sh == 0 ? v : (v << sh) | (p_[b0 + 8] >> (8 - sh));
        }
        // Near the stream's ends: the nine bytes from b0, those outside as 0.
        uint8_t bytes[9] = {};
        const ptrdiff_t lo = b0 < 0 ? 0 : b0;
        const ptrdiff_t hi = b0 + 9 < n_ ? b0 + 9 : n_;
        if (lo < hi) std::memcpy(bytes + (lo - b0), p_ + lo, static_cast<size_t>(hi - lo));
        const u64 v = loadBigEndian64(bytes);
        return sh == 0 ? v : (v << sh) | (bytes[8] >> (8 - sh));
    }

private:
    const uint8_t* p_;
    ptrdiff_t n_;
};

// Byte order of each 64-bit lane reversed: eight bytes of a packed row,
// loaded as they stand, become a word with the first pixel on top.
inline __m256i swapLaneBytes(__m256i v) {
    const __m256i order = _mm256_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8,  //
                                           7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8);
    return _mm256_shuffle_epi8(v, order);
}

// Copies n >= 1 bits, from signed bit position srcPos of `row` (read exactly
// the bytes that hold them), to padded positions [dstPos, dstPos + n).
void copyBits(u64* words, int dstPos, const uint8_t* row, ptrdiff_t srcPos, int n) {
    const ptrdiff_t byteStart = srcPos >> 3;
    const int lead = static_cast<int>(srcPos & 7);
    const uint8_t* p = row + byteStart;
    const ptrdiff_t nbytes = (lead + static_cast<ptrdiff_t>(n) + 7) >> 3;
    const BitStream stream(p, nbytes);
    const int end = dstPos + n;
    const int k0 = dstPos >> 6;
    const int k1 = (end - 1) >> 6;
    auto streamAt = [&](int k) { return stream.at(static_cast<ptrdiff_t>(64) * k - dstPos + lead); };
    auto masked = [&](int k) {
        const u64 m = rangeMask(k == k0 ? dstPos & 63 : 0, k == k1 ? end - 64 * k : 64);
        words[k] = (words[k] & ~m) | (streamAt(k) & m);
    };
    masked(k0);
    if (k1 == k0) return;
    // Whole words between: word k takes stream bits from t = 64 k - dstPos
    // + lead on, that is the eight bytes from t / 8 moved up by t % 8 and the
    // top t % 8 bits of the ninth.
    int k = k0 + 1;
    const ptrdiff_t t = static_cast<ptrdiff_t>(64) * k - dstPos + lead;  // > 0
    const int sh = static_cast<int>(t & 7);
    ptrdiff_t b = t >> 3;
    const __m128i up = _mm_cvtsi32_si128(sh);
    const __m128i down = _mm_cvtsi32_si128(64 - sh);  // a shift by 64 gives 0
    for (; k + 4 <= k1 && b + 40 <= nbytes; k += 4, b += 32) {
        const __m256i a = swapLaneBytes(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + b)));
        const __m256i c = swapLaneBytes(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + b + 8)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(words + k),
                            _mm256_or_si256(_mm256_sll_epi64(a, up), _mm256_srl_epi64(c, down)));
    }
    for (; k < k1; ++k) words[k] = streamAt(k);
    masked(k1);
}

// Writes pixels 0..w-1 of a word row (w / 64 + 1 words readable) to bit
// position bitOffset + x of `row`; other bits of the first and last byte stay.
void writeBits(uint8_t* row, int bitOffset, const u64* words, int w) {
    uint8_t* base = row + (bitOffset >> 3);
    const int o = bitOffset & 7;
    const int nbytes = (o + w + 7) >> 3;
    // Output chunk c holds stream positions 64c..64c+63, pixel x = t - o.
    auto chunk = [&](int c) {
        const u64 cur = words[c] >> o;
        return (c > 0 && o != 0) ? cur | (words[c - 1] << (64 - o)) : cur;
    };
    // Bytes wholly inside the ROI: fullFrom .. fullTo - 1; whole chunks of
    // them are stored at once, the rest one byte at a time with the bits
    // outside the ROI kept.
    const int fullFrom = o == 0 ? 0 : 1;
    const int fullTo = ((o + w) & 7) == 0 ? nbytes : nbytes - 1;
    const int cFrom = (fullFrom + 7) >> 3;
    const int cTo = fullTo >> 3;
    int c = cFrom;
    if (c == 0 && c < cTo) storeBigEndian64(base, chunk(c++));
    const __m128i down = _mm_cvtsi32_si128(o);
    const __m128i up = _mm_cvtsi32_si128(64 - o);  // a shift by 64 gives 0
    for (; c + 4 <= cTo; c += 4) {
        const __m256i cur = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words + c));
        const __m256i prev = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words + c - 1));
        const __m256i v = _mm256_or_si256(_mm256_srl_epi64(cur, down), _mm256_sll_epi64(prev, up));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(base + 8 * c), swapLaneBytes(v));
    }
    for (; c < cTo; ++c) storeBigEndian64(base + 8 * c, chunk(c));
    const int coveredFrom = 8 * cFrom;
    const int coveredTo = cFrom < cTo ? 8 * cTo : coveredFrom;
    auto oneByte = [&](int i) {
        uint8_t keep = 0;
        if (i == 0) keep |= static_cast<uint8_t>(0xFF00 >> o);  // bits in front of the ROI
        if (i == nbytes - 1 && ((o + w) & 7) != 0) keep |= static_cast<uint8_t>(0xFF >> ((o + w) & 7));
        const uint8_t v = static_cast<uint8_t>(chunk(i >> 3) >> (56 - 8 * (i & 7)));
        base[i] = static_cast<uint8_t>((base[i] & keep) | (v & ~keep));
    };
    for (int i = 0; i < coveredFrom && i < nbytes; ++i) oneByte(i);
    for (int i = coveredTo > coveredFrom ? coveredTo : coveredFrom; i < nbytes; ++i) oneByte(i);
}

// A selected element as the kernel reads it: a widened row advanced by the
// whole words of the element's column, and the remaining shift in bits.
struct Tap {
    const u64* row;
    int shift;
    __m128i up, down;  // shift and 64 - shift as vector shift counts
};
constexpr int kTapGroup = 16;

// acc = (first ? identity : acc) OP the rows of n taps, over `words` words.
// Unshifted: every tap's shift is 0 (the rows of a rectangle, reduced
// across already).
template <MorphOp Op, bool Unshifted>
void combineTaps(u64* acc, const Tap* taps, int n, int words, bool first) {
    const u64 identity = Op == MorphOp::Dilate ? 0 : kOnes;
    // One block of four words, or of the last one to three through a lane
    // mask (loads and stores of the lanes that are off touch nothing). A
    // shifted tap reads one word further, which the widened row holds.
    auto block = [&](int k, auto masked, __m256i lanes) {
        auto load = [&](const u64* p) {
            if constexpr (decltype(masked)::value)
                return _mm256_maskload_epi64(reinterpret_cast<const long long*>(p), lanes);
            else
                return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        };
        __m256i v = first ? _mm256_set1_epi64x(static_cast<long long>(identity)) : load(acc + k);
        for (int t = 0; t < n; ++t) {
            const u64* a = taps[t].row + k;
            __m256i w = load(a);
            if constexpr (!Unshifted)
                w = _mm256_or_si256(_mm256_sll_epi64(w, taps[t].up), _mm256_srl_epi64(load(a + 1), taps[t].down));
            v = Op == MorphOp::Dilate ? _mm256_or_si256(v, w) : _mm256_and_si256(v, w);
        }
        if constexpr (decltype(masked)::value)
            _mm256_maskstore_epi64(reinterpret_cast<long long*>(acc + k), lanes, v);
        else
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(acc + k), v);
    };
    int k = 0;
    for (; k + 4 <= words; k += 4) block(k, std::false_type{}, __m256i{});
    if (k < words) block(k, std::true_type{}, simd::firstLanes(2 * (words - k)));
}

// Combines the row read j pixels further on into n words of acc, which may
// be the row itself when j >= 1: every block reads ahead of what it writes.
template <MorphOp Op>
void combineShifted(u64* acc, const u64* row, int j, int n) {
    const Tap tap{row + (j >> 6), j & 63, _mm_cvtsi32_si128(j & 63), _mm_cvtsi32_si128(64 - (j & 63))};
    combineTaps<Op, false>(acc, &tap, 1, n, false);
}

// Geometry of one call.
struct Geometry {
    int w, h;
    int mw, mh, ax, ay, re, be;
    int rowWords;  // words of one widened row, the spare word included
    int outWords;  // words covering the ROI's width
};

// Widens source row r (any of -ay .. h + be - 1) into `out`.
void widenRow(u64* out, const Geometry& g, const Bits1u& img, int r, int word, bool fill) {
    const int code = border::lowCode(word);
    const bool inside = r >= 0 && r < g.h;
    const bool inMemory = inside || (r < 0 ? (word & border::kTop) : (word & border::kBottom));
    int y = r;
    if (!inMemory) {
        if (code == border::kConstant) {
            const u64 v = fill ? kOnes : 0;
            for (int k = 0; k < g.rowWords; ++k) out[k] = v;
            return;
        }
        y = r < 0 ? 0 : g.h - 1;  // replicate
    }
    const uint8_t* row = img.src + static_cast<ptrdiff_t>(y) * img.srcStep;
    const ptrdiff_t off = img.srcBitOffset;
    const bool leftMem = (word & border::kLeft) != 0;
    const bool rightMem = (word & border::kRight) != 0;
    const int xlo = leftMem ? -g.ax : 0;
    const int xhi = rightMem ? g.w + g.re : g.w;
    const bool leftBit = code == border::kReplicate ? bitAt(row, off) : fill;
    const bool rightBit = code == border::kReplicate ? bitAt(row, off + g.w - 1) : fill;
    // Words wholly in front of the copied bits and behind them take the
    // outside bits; the copy then merges into the two words at its ends.
    const int from = xlo + g.ax, to = xhi + g.ax;
    const int k0 = from >> 6, k1 = (to - 1) >> 6;
    for (int k = 0; k <= k0; ++k) out[k] = leftBit ? kOnes : 0;
    for (int k = k1 + 1; k < g.rowWords; ++k) out[k] = rightBit ? kOnes : 0;
    fillBits(out, to, 64 * (k1 + 1), rightBit);
    copyBits(out, from, row, off + xlo, xhi - xlo);
}

// The mask's runs as the kernel walks them: per mask row, its runs as
// (first column, length) from the plan.
class MaskRuns {
public:
    explicit MaskRuns(const uint8_t* plan)
        : plan_(plan), rows_(plan1u::field(plan, plan1u::kMaskRows)), runs_(plan1u::field(plan, plan1u::kMaskRuns)) {}

    // Calls f(first column, length) for every run of mask row i.
    template <class F>
    void forRow(int i, F&& f) const {
        const int count = plan1u::load32(plan_, rows_ + 8 * i);
        const int first = plan1u::load32(plan_, rows_ + 8 * i + 4);
        for (int r = 0; r < count; ++r)
            f(plan1u::load32(plan_, runs_ + 8 * (first + r)), plan1u::load32(plan_, runs_ + 8 * (first + r) + 4));
    }

private:
    const uint8_t* plan_;
    int rows_, runs_;
};

// Gathers taps in groups, so that the accumulator is loaded and stored once
// a group and not once a tap.
template <MorphOp Op, bool Unshifted>
class TapGroups {
public:
    TapGroups(u64* acc, int words) : acc_(acc), words_(words) {}
    void add(const u64* row, int j) {
        taps_[n_++] = Tap{row + (j >> 6), j & 63, _mm_cvtsi32_si128(j & 63), _mm_cvtsi32_si128(64 - (j & 63))};
        if (n_ == kTapGroup) flush();
    }
    void finish() {
        if (n_ > 0 || first_) flush();
        first_ = true;
    }

private:
    void flush() {
        combineTaps<Op, Unshifted>(acc_, taps_, n_, words_, first_);
        first_ = false;
        n_ = 0;
    }
    u64* acc_;
    int words_;
    Tap taps_[kTapGroup];
    int n_ = 0;
    bool first_ = true;
};

// Every selected element a tap on the widened rows: a ring of mh rows.
template <MorphOp Op>
void morphByElements(const Bits1u& img, const Geometry& g, int word, bool fill, const MaskRuns& runs,
                     uint8_t* buffer) {
    u64* ring = alignUp<u64>(buffer, 8);
    u64* acc = ring + static_cast<ptrdiff_t>(g.mh) * g.rowWords;
    acc[g.outWords] = 0;
    auto slot = [&](int r) { return ring + static_cast<ptrdiff_t>((r + g.ay) % g.mh) * g.rowWords; };
    for (int r = -g.ay; r < -g.ay + g.mh - 1; ++r) widenRow(slot(r), g, img, r, word, fill);
    TapGroups<Op, false> taps(acc, g.outWords);
    for (int y = 0; y < g.h; ++y) {
        widenRow(slot(y + g.be), g, img, y + g.be, word, fill);
        for (int i = 0; i < g.mh; ++i) {
            const u64* src = slot(y - g.ay + i);
            runs.forRow(i, [&](int j0, int len) {
                for (int j = j0; j < j0 + len; ++j) taps.add(src, j);
            });
        }
        taps.finish();
        writeBits(img.dst + static_cast<ptrdiff_t>(y) * img.dstStep, img.dstBitOffset, acc, g.w);
    }
}

// Runs up to this length are reduced straight from the widened row, one tap
// a pixel; longer ones by doubling.
constexpr int kDirectRun = 4;

// Run lengths of the mask, distinct and ascending, when few enough.
struct RunLengths {
    static constexpr int kMax = 16;
    int length[kMax];
    int count = 0;
    bool fits = true;
    bool allStartAtZero = true;
    int runs = 0;      // runs of the mask
    int selected = 0;  // selected elements

    RunLengths(const MaskRuns& mask, int mh) {
        for (int i = 0; i < mh; ++i)
            mask.forRow(i, [&](int j0, int len) {
                allStartAtZero = allStartAtZero && j0 == 0;
                ++runs;
                selected += len;
                int at = 0;
                while (at < count && length[at] < len) ++at;
                if (at < count && length[at] == len) return;
                if (count == kMax) {
                    fits = false;
                    return;
                }
                for (int k = count; k > at; --k) length[k] = length[k - 1];
                length[at] = len;
                ++count;
            });
    }
    // Passes over a widened row that the run form makes: one a length, and
    // the doubling steps up to the longest length above kDirectRun.
    int passes() const {
        int steps = 0;
        while (count > 0 && length[count - 1] > kDirectRun && (2 << steps) <= length[count - 1]) ++steps;
        return steps + count;
    }
    int indexOf(int len) const {
        int at = 0;
        while (length[at] != len) ++at;
        return at;
    }
};

// Every run a tap: each widened row is reduced once over each run length of
// the mask (by doubling in a spare row), and a run then reads the reduction
// of its length at its first column. `lengths` holds the mask's lengths.
template <MorphOp Op, bool Unshifted>
void morphByRuns(const Bits1u& img, const Geometry& g, int word, bool fill, const MaskRuns& runs,
                 const RunLengths& lengths, uint8_t* buffer) {
    const int D = lengths.count;
    const ptrdiff_t rowStride = g.rowWords;
    u64* ring = alignUp<u64>(buffer, 8);                       // mh slots of D reduced rows
    u64* spare = ring + static_cast<ptrdiff_t>(g.mh) * D * rowStride;  // the widened row, doubled in place
    u64* acc = spare + rowStride;
    acc[g.outWords] = 0;
    auto reduced = [&](int r, int index) {
        return ring + (static_cast<ptrdiff_t>((r + g.ay) % g.mh) * D + index) * rowStride;
    };
    auto widen = [&](int r) {
        widenRow(spare, g, img, r, word, fill);
        int span = 1;
        for (int d = 0; d < D; ++d) {
            const int len = lengths.length[d];
            u64* out = reduced(r, d);
            if (len <= kDirectRun) {  // lengths ascend: the spare row is still as widened
                Tap taps[kDirectRun];
                for (int j = 0; j < len; ++j) taps[j] = Tap{spare, j, _mm_cvtsi32_si128(j), _mm_cvtsi32_si128(64 - j)};
                combineTaps<Op, false>(out, taps, len, g.rowWords - 1, true);
                continue;
            }
            // After a step that shifts by s, position p holds the OP over
            // [p, p + 2s); such a step reads up to word k + s / 64 + 1 and so
            // updates words - 1 - s / 64 words, all that later steps read.
            while (2 * span <= len) {
                combineShifted<Op>(spare, spare, span, g.rowWords - 1 - (span >> 6));
                span *= 2;
            }
            const int rest = len - span;
            const Tap taps[2] = {{spare, 0, _mm_cvtsi32_si128(0), _mm_cvtsi32_si128(64)},
                                 {spare + (rest >> 6), rest & 63, _mm_cvtsi32_si128(rest & 63),
                                  _mm_cvtsi32_si128(64 - (rest & 63))}};
            combineTaps<Op, false>(out, taps, rest > 0 ? 2 : 1, g.rowWords - 1 - (rest >> 6), true);
        }
    };
    for (int r = -g.ay; r < -g.ay + g.mh - 1; ++r) widen(r);
    TapGroups<Op, Unshifted> taps(acc, g.outWords);
    for (int y = 0; y < g.h; ++y) {
        widen(y + g.be);
        for (int i = 0; i < g.mh; ++i) {
            const int r = y - g.ay + i;
            runs.forRow(i, [&](int j0, int len) { taps.add(reduced(r, lengths.indexOf(len)), j0); });
        }
        taps.finish();
        writeBits(img.dst + static_cast<ptrdiff_t>(y) * img.dstStep, img.dstBitOffset, acc, g.w);
    }
}

template <MorphOp Op>
void morphRows(const Bits1u& img, const Geometry& g, int word, bool fill, const uint8_t* plan, LumiSize roi,
               uint8_t* buffer) {
    const MaskRuns runs(plan);
    const RunLengths lengths(runs, g.mh);
    // The run form needs mh * D + 1 rows and the accumulator within the
    // buffer that the size query reports, and pays only where its passes over
    // each widened row (each worth about two and a half taps, as measured)
    // save more taps than they cost; else every element is a tap.
    const int64_t need = 7 + 8 * ((static_cast<int64_t>(g.mh) * lengths.count + 1) * g.rowWords + g.outWords + 1);
    const bool byRuns = lengths.fits && need <= plan1uSize(roi, LumiSize{g.mw, g.mh}) &&
                        2 * lengths.runs + 5 * lengths.passes() < 2 * lengths.selected;
    if (!byRuns)
        morphByElements<Op>(img, g, word, fill, runs, buffer);
    else if (lengths.allStartAtZero)
        morphByRuns<Op, true>(img, g, word, fill, runs, lengths, buffer);
    else
        morphByRuns<Op, false>(img, g, word, fill, runs, lengths, buffer);
}

}  // namespace

void copy_1u(const Bits1u& img, LumiSize roi, uint8_t* buffer) {
    u64* row = alignUp<u64>(buffer, 8);
    const int words = (roi.width + 63) / 64;
    row[words] = 0;
    for (int y = 0; y < roi.height; ++y) {
        copyBits(row, 0, img.src + static_cast<ptrdiff_t>(y) * img.srcStep, img.srcBitOffset, roi.width);
        writeBits(img.dst + static_cast<ptrdiff_t>(y) * img.dstStep, img.dstBitOffset, row, roi.width);
    }
}

void morph_1u(MorphOp op, const Bits1u& img, LumiSize roi, int word, bool fill, const uint8_t* plan,
              uint8_t* buffer) {
    Geometry g;
    g.w = roi.width;
    g.h = roi.height;
    g.mw = plan1u::field(plan, plan1u::kStoredWidth);
    g.mh = plan1u::field(plan, plan1u::kStoredHeight);
    g.ax = plan1u::field(plan, plan1u::kAnchorX);
    g.ay = plan1u::field(plan, plan1u::kAnchorY);
    g.re = plan1u::field(plan, plan1u::kExtentRight);
    g.be = plan1u::field(plan, plan1u::kExtentBottom);
    g.rowWords = (g.w + g.mw - 1 + 63) / 64 + 1;
    g.outWords = (g.w + 63) / 64;
    if (op == MorphOp::Dilate)
        morphRows<MorphOp::Dilate>(img, g, word, fill, plan, roi, buffer);
    else
        morphRows<MorphOp::Erode>(img, g, word, fill, plan, roi, buffer);
}

}  // namespace lum::morph
