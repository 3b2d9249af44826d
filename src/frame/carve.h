// Carving working memory out of a caller's buffer or spec block.
//
// The first piece starts at the block's start aligned up by adding
// (0 - p) & (A - 1); every piece's size is rounded up on its own before the
// next one starts, so the total a size query sums does not depend on the
// order of the pieces. Rows in buffers take (n + 31) & ~31 bytes, or
// (n + 63) & ~63 where the family says so.
//
// Blocks that outlive a call (spec blocks) keep 32-bit offsets from their own
// start instead of pointers: a field costs one 4-byte word, as the block's size
// formula counts it, and the block survives being moved.
#pragma once

#include <cstdint>

namespace lum {

// p aligned up to a multiple of A (a power of two).
template <class T = uint8_t>
inline T* alignUp(void* p, uintptr_t A) {
    const uintptr_t u = reinterpret_cast<uintptr_t>(p);
    return reinterpret_cast<T*>(u + ((0 - u) & (A - 1)));
}
template <class T = uint8_t>
inline const T* alignUp(const void* p, uintptr_t A) {
    return alignUp<T>(const_cast<void*>(p), A);
}

// n rounded up to a multiple of A (a power of two), in wrapping 32-bit
// arithmetic like the size formulas.
constexpr int roundUp(int n, int A) {
    return static_cast<int>((static_cast<uint32_t>(n) + static_cast<uint32_t>(A - 1)) & ~static_cast<uint32_t>(A - 1));
}
constexpr int roundRow32(int n) { return roundUp(n, 32); }
constexpr int roundRow64(int n) { return roundUp(n, 64); }

// Hands out consecutive pieces of a block. Sizes passed to take() are the
// rounded sizes that the query summed.
class Carver {
public:
    Carver(void* block, uintptr_t alignment) : next_(alignUp(block, alignment)) {}

    template <class T>
    T* take(int bytes) {
        T* piece = reinterpret_cast<T*>(next_);
        next_ += bytes;
        return piece;
    }
    uint8_t* position() const { return next_; }

private:
    uint8_t* next_;
};

// Offsets stored in spec blocks.
inline int32_t offsetIn(const void* base, const void* p) {
    return static_cast<int32_t>(static_cast<const uint8_t*>(p) - static_cast<const uint8_t*>(base));
}
template <class T>
inline T* atOffset(void* base, int32_t offset) {
    return reinterpret_cast<T*>(static_cast<uint8_t*>(base) + offset);
}
template <class T>
inline const T* atOffset(const void* base, int32_t offset) {
    return reinterpret_cast<const T*>(static_cast<const uint8_t*>(base) + offset);
}

}  // namespace lum
