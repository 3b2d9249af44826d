// Test images with guard bytes.
//
// A GuardedImage owns one malloc'd block: a guard in front, the start offset
// (to misalign the first sample), the rows at their step, and an optional
// guard behind. Every byte of the block is random at first and remembered;
// after a call, intactOutsideRoi() proves that nothing but the ROI's samples
// changed (the gaps between rows and the guards included), and unchanged()
// that a source was not written at all. With no trailing guard the last
// sample of the ROI is the last byte of the block, so that under
// AddressSanitizer a read past the ROI's end is caught.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "support/rng.h"

namespace lumtest {

struct Layout {
    int width = 1;        // pixels
    int height = 1;
    int channels = 1;
    int stepSlack = 0;    // bytes added to the row bytes
    int offset = 0;       // bytes between the front guard and the first sample
    int frontGuard = 64;  // bytes
    int backGuard = 64;   // bytes; 0 puts the last sample at the block's end
};

template <class T>
class GuardedImage {
public:
    GuardedImage(const Layout& l, Rng& rng) : l_(l) {
        rowBytes_ = l.width * l.channels * static_cast<int>(sizeof(T));
        step_ = rowBytes_ + l.stepSlack;
        size_ = static_cast<size_t>(l.frontGuard + l.offset) + static_cast<size_t>(step_) * (l.height - 1) +
                rowBytes_ + l.backGuard;
        block_ = static_cast<uint8_t*>(std::malloc(size_));
        for (size_t i = 0; i < size_; ++i) block_[i] = static_cast<uint8_t>(rng.bits());
        snapshot();
    }
    GuardedImage(const GuardedImage&) = delete;
    GuardedImage& operator=(const GuardedImage&) = delete;
    ~GuardedImage() { std::free(block_); }

    T* data() { return reinterpret_cast<T*>(first()); }
    const T* data() const { return reinterpret_cast<const T*>(first()); }
    int step() const { return step_; }
    int width() const { return l_.width; }
    int height() const { return l_.height; }
    int channels() const { return l_.channels; }
    int samplesPerRow() const { return l_.width * l_.channels; }
    const Layout& layout() const { return l_; }

    T* row(int y) { return reinterpret_cast<T*>(first() + static_cast<ptrdiff_t>(step_) * y); }
    const T* row(int y) const { return reinterpret_cast<const T*>(first() + static_cast<ptrdiff_t>(step_) * y); }
    T& at(int x, int y, int c = 0) { return row(y)[x * l_.channels + c]; }
    const T& at(int x, int y, int c = 0) const { return row(y)[x * l_.channels + c]; }

    // Sets every ROI sample by f(x, y, c) and re-takes the snapshot.
    template <class F>
    void fill(F f) {
        for (int y = 0; y < l_.height; ++y)
            for (int x = 0; x < l_.width; ++x)
                for (int c = 0; c < l_.channels; ++c) at(x, y, c) = f(x, y, c);
        snapshot();
    }

    // Remembers the whole block as it is now.
    void snapshot() { saved_.assign(block_, block_ + size_); }

    // Nothing outside the ROI's samples differs from the snapshot.
    ::testing::AssertionResult intactOutsideRoi() const {
        const size_t start = static_cast<size_t>(l_.frontGuard + l_.offset);
        for (size_t i = 0; i < size_; ++i) {
            if (block_[i] == saved_[i]) continue;
            const bool inRoi = i >= start && (i - start) % step_ < static_cast<size_t>(rowBytes_) &&
                               (i - start) / step_ < static_cast<size_t>(l_.height);
            if (!inRoi) return ::testing::AssertionFailure() << "byte " << describe(i) << " outside the ROI changed";
        }
        return ::testing::AssertionSuccess();
    }

    // Nothing in the whole block differs from the snapshot.
    ::testing::AssertionResult unchanged() const {
        for (size_t i = 0; i < size_; ++i)
            if (block_[i] != saved_[i])
                return ::testing::AssertionFailure() << "byte " << describe(i) << " of a read-only image changed";
        return ::testing::AssertionSuccess();
    }

    std::string describe() const {
        std::ostringstream s;
        s << "width " << l_.width << " height " << l_.height << " channels " << l_.channels << " step " << step_
          << " offset " << l_.offset;
        return s.str();
    }

private:
    uint8_t* first() const { return block_ + l_.frontGuard + l_.offset; }
    std::string describe(size_t i) const {
        std::ostringstream s;
        const long rel = static_cast<long>(i) - (l_.frontGuard + l_.offset);
        s << rel << " (relative to the first sample; " << describe() << ")";
        return s.str();
    }

    Layout l_;
    int rowBytes_ = 0;
    int step_ = 0;
    size_t size_ = 0;
    uint8_t* block_ = nullptr;
    std::vector<uint8_t> saved_;
};

// A random layout for a sweep: the given size, a step slack that is a
// multiple of the sample size (any for 1-byte samples, so odd steps occur),
// a start offset of 0..31 bytes in steps of the sample size, and sometimes no
// trailing guard.
template <class T>
Layout randomLayout(int width, int height, int channels, Rng& rng) {
    Layout l;
    l.width = width;
    l.height = height;
    l.channels = channels;
    const int s = static_cast<int>(sizeof(T));
    l.stepSlack = rng.chance(0.25) ? 0 : s * rng.uniform(0, 40 / s + 1);
    l.offset = s * rng.uniform(0, 31 / s);
    l.backGuard = rng.chance(0.5) ? 0 : 64;
    return l;
}

// The bits of a float and the float of given bits, for tests that compare
// or build exact patterns (NaN payloads, signed zeros).
inline uint32_t bitsOf(float v) {
    uint32_t b;
    std::memcpy(&b, &v, 4);
    return b;
}
inline float floatFromBits(uint32_t b) {
    float v;
    std::memcpy(&v, &b, 4);
    return v;
}

// Bit-exact comparison of two sample arrays; floats compare by their bits, so
// NaN payloads and signs of zero count.
template <class T>
::testing::AssertionResult sameBits(const T* got, const T* want, int n) {
    if (std::memcmp(got, want, sizeof(T) * n) == 0) return ::testing::AssertionSuccess();
    for (int i = 0; i < n; ++i) {
        if (std::memcmp(got + i, want + i, sizeof(T)) != 0) {
            ::testing::AssertionResult r = ::testing::AssertionFailure();
            r << "sample " << i << " differs: got " << +got[i] << ", want " << +want[i];
            if constexpr (sizeof(T) == 4 || sizeof(T) == 8) {
                uint64_t g = 0, w = 0;
                std::memcpy(&g, got + i, sizeof(T));
                std::memcpy(&w, want + i, sizeof(T));
                r << " (bits " << std::hex << g << " vs " << w << ")";
            }
            return r;
        }
    }
    return ::testing::AssertionSuccess();
}

// Compares every ROI row of an image with a dense reference (width x
// channels samples a row).
template <class T>
::testing::AssertionResult sameBitsAsReference(const GuardedImage<T>& got, const std::vector<T>& want) {
    const int n = got.samplesPerRow();
    for (int y = 0; y < got.height(); ++y) {
        ::testing::AssertionResult r = sameBits(got.row(y), want.data() + static_cast<size_t>(y) * n, n);
        if (!r) return r << " in row " << y << " (" << got.describe() << ")";
    }
    return ::testing::AssertionSuccess();
}

// Reads an image's ROI into a dense vector.
template <class T>
std::vector<T> dense(const GuardedImage<T>& img) {
    std::vector<T> v(static_cast<size_t>(img.samplesPerRow()) * img.height());
    for (int y = 0; y < img.height(); ++y)
        std::memcpy(v.data() + static_cast<size_t>(y) * img.samplesPerRow(), img.row(y), sizeof(T) * img.samplesPerRow());
    return v;
}

}  // namespace lumtest
