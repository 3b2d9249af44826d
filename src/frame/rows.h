// Row addressing: steps are in bytes, whatever the sample type.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lum {

template <class T>
inline const T* rowAt(const T* base, int step, int y) {
    return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(base) + static_cast<ptrdiff_t>(step) * y);
}
template <class T>
inline T* rowAt(T* base, int step, int y) {
    return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(base) + static_cast<ptrdiff_t>(step) * y);
}

}  // namespace lum

namespace lum {

// Rows that follow one another without a gap in every image of a call form
// one long row: a per-sample kernel may then run them as one, with one tail
// instead of one a row. n is the samples of a row; on success n and height
// become the one long row.
template <class... S>
inline bool joinRows(int& n, int& height, int rowBytes, S... steps) {
    if (!((steps == rowBytes) && ...)) return false;
    const int64_t total = static_cast<int64_t>(n) * height;
    if (total > INT32_MAX) return false;
    n = static_cast<int>(total);
    height = 1;
    return true;
}

}  // namespace lum
