// Border words: acceptance rules of the families, the morphology fold, the
// resolution of the neutral border, and the index rule that every border
// copy uses.
//
// A border word: bits 0..3 the type, bits 4..7 the sides of this stage whose
// pixels are read from memory (16 top, 32 bottom, 64 left, 128 right), bits
// 8..11 the same sides for the second stage of a compound operation. Words
// are compared as unsigned 32-bit values, so a negative word lies above every
// maximum and is refused.
#pragma once

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "frame/check.h"

namespace lum::border {

constexpr int kReplicate = 1;
constexpr int kWrap = 2;
constexpr int kMirror = 3;
constexpr int kNeutral = 5;
constexpr int kConstant = 6;

constexpr int kTop = 16;
constexpr int kBottom = 32;
constexpr int kLeft = 64;
constexpr int kRight = 128;
constexpr int kInMemory = 240;

constexpr int lowCode(int word) { return word & 15; }
constexpr int memoryFlags(int word) { return word & 240; }
constexpr bool allSidesInMemory(int word) { return (word & 240) == 240; }
constexpr bool above(int word, unsigned maximum) { return static_cast<unsigned>(word) > maximum; }

// Filters with the strict rule (row pipeline, morphological gradient): word
// <= 255, and either exactly 240 or a low code of 1, 3 or 6, with any flags.
constexpr bool filterAccepts(int word) {
    return !above(word, 255) && (word == kInMemory || isOneOf(lowCode(word), kReplicate, kMirror, kConstant));
}

// Filters with the lenient rule (Gaussian _L layer and others that say so):
// word <= 255, and either all four flags set, whatever the low code, or a
// low code of 1, 3 or 6.
constexpr bool filterAcceptsAnyInMemory(int word) {
    return !above(word, 255) && (allSidesInMemory(word) || isOneOf(lowCode(word), kReplicate, kMirror, kConstant));
}

// Single-stage morphology folds the second stage's flags (bits 8..11) into
// this stage's (bits 4..7): (word & 3840) >> 4, ORed with the low byte.
constexpr int foldMorphology(int word) { return ((word & 3840) >> 4) | (word & 255); }

// Morphology: word <= 4095; the folded word is exactly 240 or has a low code
// of 1, 3, 5 or 6.
constexpr bool morphologyAccepts(int word) {
    if (above(word, 4095)) return false;
    const int folded = foldMorphology(word);
    return folded == kInMemory || isOneOf(lowCode(folded), kReplicate, kMirror, kNeutral, kConstant);
}

// Compound morphology: a side that this stage (bits 4..7) already reads from
// memory is cleared from the second stage's flags (bits 8..11).
constexpr int guardSecondStage(int word) { return word & ~((word & 240) << 4); }

// The neutral border (type 5) becomes the constant border (type 6) with the
// flags kept; the constant comes from neutralValue.
constexpr int resolveNeutral(int word) {
    return lowCode(word) == kNeutral ? (word & ~15) | kConstant : word;
}

enum class MorphOp { Dilate, Erode };

// The value that cannot change a dilation (the type's lowest value) or an
// erosion (its highest). For 32f these are the finite extremes.
template <class T>
constexpr T neutralValue(MorphOp op) {
    if constexpr (std::numeric_limits<T>::is_integer) {
        return op == MorphOp::Dilate ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    } else {
        return op == MorphOp::Dilate ? -FLT_MAX : FLT_MAX;
    }
}

// Packed 1u: a byte of all zeros for dilation, all ones for erosion.
constexpr uint8_t neutralByte1u(MorphOp op) { return op == MorphOp::Dilate ? 0x00 : 0xFF; }

// Where position p of a line of n samples (n >= 1) is read from, for the
// index rules of types 1, 2 and 3. The result lies in [0, n) unless the side
// that p falls on reads memory (lowInMemory for p < 0, highInMemory for
// p >= n): then p is returned as it is, to be read in place. Mirroring is
// repeated until the index is inside, and stops at a side that is in memory.
// A line of one sample mirrors onto itself.
constexpr int sourceIndex(int p, int n, int code, bool lowInMemory, bool highInMemory) {
    for (;;) {
        if (p < 0) {
            if (lowInMemory) return p;
        } else if (p >= n) {
            if (highInMemory) return p;
        } else {
            return p;
        }
        switch (code) {
            case kReplicate: return p < 0 ? 0 : n - 1;
            case kWrap: {
                const int r = p % n;
                return r < 0 ? r + n : r;
            }
            default:  // kMirror
                if (n == 1) return 0;
                p = p < 0 ? -p : 2 * (n - 1) - p;
        }
    }
}

// Writes the line of n pixels at `src`, widened by `left` and `right` pixels
// of border, to `out` (left + n + right pixels of `channels` samples). The
// outside pixels follow the word's low code (1, 2, 3, or 6 with `value`, one
// sample a channel); a side with its flag (64 left, 128 right) is read from
// memory next to the line. `value` may be null unless the code is 6.
template <class T>
void extendLine(const T* src, int n, int channels, int left, int right, int word, const T* value, T* out) {
    const int code = lowCode(word);
    const bool lowMem = (word & kLeft) != 0;
    const bool highMem = (word & kRight) != 0;
    for (int i = -left; i < n + right; ++i) {
        T* o = out + static_cast<ptrdiff_t>(i + left) * channels;
        const bool inside = i >= 0 && i < n;
        if (!inside && code == kConstant && !(i < 0 ? lowMem : highMem)) {
            for (int c = 0; c < channels; ++c) o[c] = value[c];
            continue;
        }
        const int j = inside ? i : sourceIndex(i, n, code, lowMem, highMem);
        const T* s = src + static_cast<ptrdiff_t>(j) * channels;
        for (int c = 0; c < channels; ++c) o[c] = s[c];
    }
}

}  // namespace lum::border
