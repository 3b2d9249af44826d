// Plain reference of erosion and dilation for the tests, and the per-type
// access to the exports. It shares no code with the library.
#pragma once

#include <cfloat>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcv.h"

namespace morphtest {

// An image with a margin of real pixels around its ROI, so that the sides
// read from memory have something to read. Steps in bytes.
template <class T>
struct Canvas {
    int width, height, channels, margin, step, offset;
    std::vector<uint8_t> bytes;
    T* at(int x, int y) {
        return reinterpret_cast<T*>(bytes.data() + offset + static_cast<ptrdiff_t>(y + margin) * step) +
               static_cast<ptrdiff_t>(x + margin) * channels;
    }
    const T* at(int x, int y) const { return const_cast<Canvas*>(this)->at(x, y); }
};

inline int mapIndex(int p, int n, int code, bool lowMem, bool highMem) {
    for (;;) {
        if (p < 0) {
            if (lowMem) return p;
        } else if (p >= n) {
            if (highMem) return p;
        } else {
            return p;
        }
        if (code == 1) return p < 0 ? 0 : n - 1;
        if (n == 1) return 0;
        p = p < 0 ? -p : 2 * (n - 1) - p;
    }
}

template <class T>
T identity(bool dilate) {
    if constexpr (std::is_same_v<T, float>) return dilate ? -FLT_MAX : FLT_MAX;
    else return dilate ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
}

// dst(x, y) = max (dilate) or min over the stored mask's selected elements of
// the bordered source, taken row by row from the identity as
// acc = (v > acc) ? v : acc (dilate) or (v < acc) ? v : acc.
// `word` is an accepted border word as the caller passes it.
template <class T>
std::vector<T> reference(const Canvas<T>& src, int w, int h, const std::vector<uint8_t>& mask, int mw, int mh,
                         int word, const T* value, bool dilate) {
    const int C = src.channels;
    std::vector<T> out(static_cast<size_t>(w) * h * C);
    const int W = mw | 1, H = mh | 1, px = W - mw, py = H - mh;
    std::vector<uint8_t> m(static_cast<size_t>(W) * H, 0);
    int selected = 0;
    for (int y = 0; y < mh; ++y)
        for (int x = 0; x < mw; ++x) {
            m[(y + py) * W + x + px] = mask[y * mw + x] != 0;
            selected += mask[y * mw + x] != 0;
        }
    if (selected == 0 || (W == 1 && H == 1)) {
        for (int y = 0; y < h; ++y) std::memcpy(&out[static_cast<size_t>(y) * w * C], src.at(0, y), sizeof(T) * w * C);
        return out;
    }
    const int folded = ((word & 3840) >> 4) | (word & 255);
    int code = folded & 15;
    const bool top = folded & 16, bottom = folded & 32, left = folded & 64, right = folded & 128;
    std::vector<T> fillValue(C);
    for (int c = 0; c < C; ++c) fillValue[c] = code == 5 ? identity<T>(dilate) : (code == 6 ? value[c] : T(0));
    if (code == 5) code = 6;
    const int ax = (W - 1) / 2, ay = (H - 1) / 2;
    auto pixel = [&](int x, int y, int c) -> T {
        if (x >= 0 && x < w && y >= 0 && y < h) return src.at(x, y)[c];
        const bool rowOut = (y < 0 && !top) || (y >= h && !bottom);
        const bool colOut = (x < 0 && !left) || (x >= w && !right);
        if (code == 6 && (rowOut || colOut)) return fillValue[c];
        const int sy = mapIndex(y, h, code, top, bottom), sx = mapIndex(x, w, code, left, right);
        return src.at(sx, sy)[c];
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < C; ++c) {
                T acc = identity<T>(dilate);
                for (int i = 0; i < H; ++i)
                    for (int j = 0; j < W; ++j) {
                        if (!m[i * W + j]) continue;
                        const T v = pixel(x + j - ax, y + i - ay, c);
                        acc = dilate ? (v > acc ? v : acc) : (v < acc ? v : acc);
                    }
                out[(static_cast<size_t>(y) * w + x) * C + c] = acc;
            }
    return out;
}

// Uniform access to the exports of one sample type and channel count.
template <class T, int C>
struct Api;

#define MORPHTEST_API(T, t, C, DT, BV)                                                                              \
    template <>                                                                                                     \
    struct Api<T, C> {                                                                                              \
        static constexpr int dataType = DT;                                                                         \
        static LumStatus filterL(bool dilate, const T* s, int ss, T* d, int ds, LumiSize r, int b, const T* v,      \
                                 const Lum8u* spec, Lum8u* buf) {                                                   \
            return dilate ? lumiDilate_##t##_C##C##R_L(s, ss, d, ds, r, b, v, spec, buf)                            \
                          : lumiErode_##t##_C##C##R_L(s, ss, d, ds, r, b, v, spec, buf);                            \
        }                                                                                                           \
        static LumStatus filterBorder(bool dilate, const T* s, int ss, T* d, int ds, LumiSize r, int b, const T* v, \
                                      const Lum8u* spec, Lum8u* buf) {                                              \
            return dilate ? lumiDilateBorder_##t##_C##C##R(s, ss, d, ds, r, b, BV, spec, buf)                       \
                          : lumiErodeBorder_##t##_C##C##R(s, ss, d, ds, r, b, BV, spec, buf);                       \
        }                                                                                                           \
        static LumStatus borderGetSize(LumiSize r, LumiSize m, int* spec, int* buf) {                               \
            return lumiMorphologyBorderGetSize_##t##_C##C##R(r, m, spec, buf);                                      \
        }                                                                                                           \
        static LumStatus borderInit(LumiSize r, const Lum8u* mask, LumiSize m, Lum8u* spec, Lum8u* buf) {           \
            return lumiMorphologyBorderInit_##t##_C##C##R(r, mask, m, spec, buf);                                   \
        }                                                                                                           \
    };
MORPHTEST_API(Lum8u, 8u, 1, 1, (v ? *v : Lum8u(0)))
MORPHTEST_API(Lum8u, 8u, 3, 1, v)
MORPHTEST_API(Lum8u, 8u, 4, 1, v)
MORPHTEST_API(Lum32f, 32f, 1, 13, (v ? *v : 0.0f))
MORPHTEST_API(Lum32f, 32f, 3, 13, v)
MORPHTEST_API(Lum32f, 32f, 4, 13, v)
MORPHTEST_API(Lum16u, 16u, 1, 5, (v ? *v : Lum16u(0)))
MORPHTEST_API(Lum16s, 16s, 1, 7, (v ? *v : Lum16s(0)))
#undef MORPHTEST_API

}  // namespace morphtest
