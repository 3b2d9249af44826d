// Test support of the row and column pipeline stages: scalar conversions
// written from their definitions, buffers of exactly the queried size, and
// random kernels and samples.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "lumcv.h"
#include "support/rng.h"

namespace pipetest {

// Float to int32, round half to even; NaN and values outside int32 give the
// integer indefinite value 0x80000000, as the processor's conversion does.
inline int32_t toIntNearest(float f) {
    if (!(f >= -2147483648.0f && f < 2147483648.0f)) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(std::nearbyint(f));
}
inline int32_t toIntTrunc(float f) {
    if (!(f >= -2147483648.0f && f < 2147483648.0f)) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(f);
}
inline float clampf(float v, float lo, float hi) { return v < lo ? lo : (v > hi ? hi : v); }
inline int32_t clampi(int64_t v, int64_t lo, int64_t hi) { return static_cast<int32_t>(v < lo ? lo : (v > hi ? hi : v)); }
inline int16_t sat16(int64_t v) { return static_cast<int16_t>(clampi(v, -32768, 32767)); }
// Low 16 bits of an integer, as a signed value.
inline int16_t low16(int64_t v) {
    const uint16_t u = static_cast<uint16_t>(static_cast<uint64_t>(v) & 0xffffu);
    return static_cast<int16_t>(u >= 0x8000u ? static_cast<int32_t>(u) - 65536 : static_cast<int32_t>(u));
}
// Low 32 bits, as a signed value.
inline int32_t low32(int64_t v) {
    const uint32_t u = static_cast<uint32_t>(static_cast<uint64_t>(v));
    return u >= 0x80000000u ? static_cast<int32_t>(static_cast<int64_t>(u) - 4294967296LL) : static_cast<int32_t>(u);
}
// Floor division by 2^s of a signed value (an arithmetic shift).
inline int64_t shiftDown(int64_t v, int s) { return v >= 0 ? v / (1LL << s) : -((-v + (1LL << s) - 1) / (1LL << s)); }

// The fixed-point scale of the low-precision member.
inline int32_t lowScale(int divisor) {
    const float q = 16384.0f / static_cast<float>(divisor);
    return low16(static_cast<int64_t>(std::trunc(q)));
}

// A buffer of exactly `bytes` bytes, starting `offset` bytes into its block,
// whose last byte is the block's last: a read or write past it is caught by
// the address sanitizer.
class ExactBuffer {
public:
    ExactBuffer(int bytes, int offset) : block_(static_cast<uint8_t*>(std::malloc(static_cast<size_t>(bytes) + offset))) {
        std::memset(block_, 0xA5, static_cast<size_t>(bytes) + offset);
        data_ = block_ + offset;
    }
    ExactBuffer(const ExactBuffer&) = delete;
    ExactBuffer& operator=(const ExactBuffer&) = delete;
    ~ExactBuffer() { std::free(block_); }
    Lum8u* data() { return data_; }

private:
    uint8_t* block_;
    uint8_t* data_;
};

// Random samples of a type; `small` keeps integers in a range where sums
// rarely saturate.
template <class T>
T randomSample(lumtest::Rng& rng, bool small) {
    if constexpr (std::is_same_v<T, float>) {
        return static_cast<float>(rng.uniformReal(-100.0, 100.0));
    } else if constexpr (std::is_same_v<T, Lum8u>) {
        return static_cast<T>(rng.uniform(0, 255));
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return static_cast<T>(small ? rng.uniform(0, 2000) : rng.uniform(0, 65535));
    } else {
        return static_cast<T>(small ? rng.uniform(-2000, 2000) : rng.uniform(-32768, 32767));
    }
}

template <class T>
T randomCoefficient(lumtest::Rng& rng, bool small) {
    if constexpr (std::is_same_v<T, float>) {
        return static_cast<float>(rng.uniformReal(-2.0, 2.0));
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return static_cast<T>(small ? rng.uniform(0, 40) : rng.uniform(0, 65535));
    } else {
        return static_cast<T>(small ? rng.uniform(-40, 40) : rng.uniform(-32768, 32767));
    }
}

inline int randomDivisor(lumtest::Rng& rng, bool positive) {
    static const int choices[] = {1, 2, 3, 7, 10, 16, 100, 255, 1000, 40000, 1 << 20};
    const int d = choices[rng.uniform(0, 10)];
    return positive || rng.chance(0.6) ? d : -d;
}

}  // namespace pipetest
