// Plain scalar references of the statistics and norms, written from their
// formulas, one sample at a time. Where a float result depends on which lane
// a sample is summed in, the reference keeps the eight lanes explicitly:
// pixel x of a row is summed in lane x % 8, and a row's last, partial group
// adds +0.0 in its missing lanes, as do unselected pixels.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "lumcv.h"
#include "support/image.h"

namespace ref {

// One channel of an image, dense, with an optional mask (empty: every pixel).
template <class T>
struct Plane {
    int width = 0;
    int height = 0;
    std::vector<T> v;           // width x height samples
    std::vector<uint8_t> mask;  // width x height bytes, or empty
    T at(int x, int y) const { return v[static_cast<size_t>(y) * width + x]; }
    bool selected(int x, int y) const { return mask.empty() || mask[static_cast<size_t>(y) * width + x] != 0; }
};

template <class T>
Plane<T> planeOf(const lumtest::GuardedImage<T>& img, int c, const lumtest::GuardedImage<Lum8u>* mask) {
    Plane<T> p;
    p.width = img.width();
    p.height = img.height();
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) p.v.push_back(img.at(x, y, c));
    if (mask != nullptr)
        for (int y = 0; y < p.height; ++y)
            for (int x = 0; x < p.width; ++x) p.mask.push_back(mask->at(x, y));
    return p;
}

inline double u64ToDouble(uint64_t u) {
    // Signed conversion, then 2^64 back for a set top bit.
    const int64_t s = static_cast<int64_t>(u);
    double d = static_cast<double>(s);
    if (s < 0) d += 18446744073709551616.0;
    return d;
}

inline float bitsToFloat(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}
inline uint64_t doubleBits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}
inline uint32_t floatBits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

// Eight float lanes and their four double accumulators.
struct Lanes {
    float lane[8] = {};
    double acc[4] = {};
    void flush() {
        for (int k = 0; k < 4; ++k) acc[k] = acc[k] + static_cast<double>(lane[k]);
        for (int k = 0; k < 4; ++k) acc[k] = acc[k] + static_cast<double>(lane[k + 4]);
        for (float& l : lane) l = 0.0f;
    }
    double total() const { return (acc[2] + acc[0]) + (acc[3] + acc[1]); }
};

// The value a lane receives for pixel x of row y: the sample when present
// and selected, +0.0 otherwise.
template <class F>
float laneValue(const Plane<float>& p, int x, int y, F f) {
    if (x >= p.width || !p.selected(x, y)) return 0.0f;
    return f(p.at(x, y));
}

inline int groupsOf(int width) { return (width + 7) / 8; }

// ------------------------------------------------------------ mean

// How a float mean flushes its lanes: after `flushGroups` groups counted over
// the whole image (the library's way), or alternatives for the choice tests.
struct MeanModel {
    int flushGroups = 480;
    bool flushEachRow = false;      // alternative: flush at every row's end
    bool tailCountsAsGroup = true;  // the partial group advances the count
};

inline double meanFloat(const Plane<float>& p, MeanModel model = {}) {
    Lanes l;
    uint32_t count = 0;
    int groups = 0;
    for (int y = 0; y < p.height; ++y) {
        for (int g = 0; g < groupsOf(p.width); ++g) {
            for (int k = 0; k < 8; ++k) {
                const int x = g * 8 + k;
                l.lane[k] = l.lane[k] + laneValue(p, x, y, [](float s) { return s; });
                if (x < p.width && p.selected(x, y)) ++count;
            }
            const bool full = g * 8 + 8 <= p.width;
            if ((full || model.tailCountsAsGroup) && ++groups == model.flushGroups) {
                l.flush();
                groups = 0;
            }
        }
        if (model.flushEachRow) {
            l.flush();
            groups = 0;
        }
    }
    l.flush();
    return count == 0 ? 0.0 : l.total() / static_cast<double>(count);
}

template <class T>
double meanInt(const Plane<T>& p) {
    double total = 0.0;
    uint32_t count = 0;
    for (int y = 0; y < p.height; ++y) {
        uint64_t row = 0;
        for (int x = 0; x < p.width; ++x)
            if (p.selected(x, y)) {
                row += p.at(x, y);
                ++count;
            }
        total += static_cast<double>(row);
    }
    return count == 0 ? 0.0 : total / static_cast<double>(count);
}

inline double mean(const Plane<float>& p) { return meanFloat(p); }
inline double mean(const Plane<Lum8u>& p) { return meanInt(p); }
inline double mean(const Plane<Lum16u>& p) { return meanInt(p); }

// ------------------------------------------------------------ standard deviation

struct MeanStd {
    double mean = 0.0;
    double stdDev = 0.0;
    bool secondPass = false;
    double onePass = 0.0;  // the one-pass result, kept for the tests
};

template <class T>
double countOf(const Plane<T>& p) {
    if (p.mask.empty()) return static_cast<double>(p.width) * p.height;
    uint32_t n = 0;
    for (uint8_t m : p.mask) n += m != 0;
    return static_cast<double>(n);
}

inline double onePassDeviation(double m, double q) {
    double v = std::fma(-m, m, q);
    uint64_t b = doubleBits(v) & ~(uint64_t{1} << 63);
    std::memcpy(&v, &b, 8);
    return std::sqrt(v);
}

template <class T>
MeanStd meanStdDevInt(const Plane<T>& p) {
    double s = 0.0, q = 0.0;
    for (int y = 0; y < p.height; ++y) {
        uint64_t rs = 0, rq = 0;
        for (int x = 0; x < p.width; ++x)
            if (p.selected(x, y)) {
                const uint64_t v = p.at(x, y);
                rs += v;
                rq += v * v;
            }
        s += static_cast<double>(rs);
        q += static_cast<double>(rq);
    }
    const double n = countOf(p);
    if (n == 0.0) return {};
    MeanStd r;
    r.mean = s / n;
    r.stdDev = r.onePass = onePassDeviation(r.mean, q / n);
    return r;
}

inline MeanStd meanStdDevFloat(const Plane<float>& p) {
    Lanes ls, lq;
    for (int y = 0; y < p.height; ++y) {
        for (int g = 0; g < groupsOf(p.width); ++g)
            for (int k = 0; k < 8; ++k) {
                const float v = laneValue(p, g * 8 + k, y, [](float s) { return s; });
                ls.lane[k] = ls.lane[k] + v;
                lq.lane[k] = std::fma(v, v, lq.lane[k]);
            }
        ls.flush();
        lq.flush();
    }
    const double n = countOf(p);
    if (n == 0.0) return {};
    MeanStd r;
    r.mean = ls.total() / n;
    const double m = r.mean;
    r.stdDev = r.onePass = onePassDeviation(m, lq.total() / n);
    if ((m * 0.05) * m > r.stdDev * r.stdDev) {
        r.secondPass = true;
        const float mf = static_cast<float>(m);
        Lanes l2;
        for (int y = 0; y < p.height; ++y) {
            for (int g = 0; g < groupsOf(p.width); ++g)
                for (int k = 0; k < 8; ++k) {
                    const float d = laneValue(p, g * 8 + k, y, [mf](float s) { return s - mf; });
                    l2.lane[k] = std::fma(d, d, l2.lane[k]);
                }
            l2.flush();
        }
        r.stdDev = std::sqrt(l2.total() / n);
    }
    return r;
}

inline MeanStd meanStdDev(const Plane<float>& p) { return meanStdDevFloat(p); }
inline MeanStd meanStdDev(const Plane<Lum8u>& p) { return meanStdDevInt(p); }
inline MeanStd meanStdDev(const Plane<Lum16u>& p) { return meanStdDevInt(p); }

// ------------------------------------------------------------ extremes

struct Extremes {
    float minVal = 0, maxVal = 0;
    LumiPoint minIndex{0, 0}, maxIndex{0, 0};
    bool anySelected = false;
};

template <class T>
constexpr T minSeed() {
    if constexpr (std::is_same_v<T, float>)
        return std::numeric_limits<float>::max();
    else
        return std::numeric_limits<T>::max();
}
template <class T>
constexpr T maxSeed() {
    if constexpr (std::is_same_v<T, float>)
        return -std::numeric_limits<float>::max();
    else
        return 0;
}

// One search: better(a, b) says a strictly improves on b (false for NaN).
template <class T, class Better>
void search(const Plane<T>& p, T seed, Better better, float& val, LumiPoint& idx) {
    T run = seed;
    int row = -1;
    for (int y = 0; y < p.height; ++y) {
        T rowBest = run;
        for (int x = 0; x < p.width; ++x)
            if (p.selected(x, y) && better(p.at(x, y), rowBest)) rowBest = p.at(x, y);
        if (better(rowBest, run)) {
            run = rowBest;
            row = y;
        }
    }
    if (row < 0) {
        idx = {0, 0};
        val = std::is_same_v<T, float> ? static_cast<float>(p.at(0, 0)) : static_cast<float>(run);
        return;
    }
    for (int x = 0; x < p.width; ++x)
        if (p.selected(x, row) && p.at(x, row) == run) {
            idx = {x, row};
            val = static_cast<float>(p.at(x, row));
            return;
        }
    idx = {-1, -1};  // unreachable
}

template <class T>
Extremes extremes(const Plane<T>& p) {
    Extremes e;
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) e.anySelected |= p.selected(x, y);
    if (!e.anySelected) return e;
    search(
        p, minSeed<T>(), [](T a, T b) { return a < b; }, e.minVal, e.minIndex);
    search(
        p, maxSeed<T>(), [](T a, T b) { return a > b; }, e.maxVal, e.maxIndex);
    return e;
}

// ------------------------------------------------------------ norms

enum class Kind { Inf, L1, L2 };

struct NormTotals {
    double num = 0.0;
    double den = 0.0;
};

// Magnitudes of the selected pixels: f(x, y) gives the numerator's sample
// magnitude, g(x, y) the denominator's.
template <class T>
NormTotals normInt(const Plane<T>& a, const Plane<T>* b, bool relative, Kind k) {
    uint64_t num = 0, den = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            if (!a.selected(x, y)) continue;
            const int64_t va = a.at(x, y);
            const uint64_t n = b ? static_cast<uint64_t>(std::llabs(va - static_cast<int64_t>(b->at(x, y))))
                                 : static_cast<uint64_t>(va);
            const uint64_t d = b ? static_cast<uint64_t>(b->at(x, y)) : 0;
            switch (k) {
                case Kind::Inf:
                    num = n > num ? n : num;
                    den = d > den ? d : den;
                    break;
                case Kind::L1:
                    num += n;
                    den += d;
                    break;
                case Kind::L2:
                    num += n * n;
                    den += d * d;
                    break;
            }
        }
    NormTotals t;
    t.num = k == Kind::Inf ? static_cast<double>(num) : u64ToDouble(num);
    t.den = relative ? (k == Kind::Inf ? static_cast<double>(den) : u64ToDouble(den)) : 0.0;
    return t;
}

inline float magnitudeF(float v) { return bitsToFloat(floatBits(v) & 0x7fffffffu); }

inline NormTotals normFloat(const Plane<float>& a, const Plane<float>* b, bool relative, Kind k) {
    const auto num = [&](int x, int y) { return magnitudeF(b ? a.at(x, y) - b->at(x, y) : a.at(x, y)); };
    const auto den = [&](int x, int y) { return magnitudeF(b->at(x, y)); };
    NormTotals t;
    if (k == Kind::Inf) {
        float mn = 0.0f, md = 0.0f;
        for (int y = 0; y < a.height; ++y)
            for (int x = 0; x < a.width; ++x) {
                if (!a.selected(x, y)) continue;
                const float vn = num(x, y);
                mn = vn > mn ? vn : mn;  // a NaN sample keeps the running value
                if (relative) {
                    const float vd = den(x, y);
                    md = vd > md ? vd : md;
                }
            }
        t.num = mn;
        t.den = md;
        return t;
    }
    Lanes ln, ld;
    for (int y = 0; y < a.height; ++y) {
        for (int g = 0; g < groupsOf(a.width); ++g)
            for (int lane = 0; lane < 8; ++lane) {
                const int x = g * 8 + lane;
                const bool in = x < a.width && a.selected(x, y);
                const float vn = in ? num(x, y) : 0.0f;
                const float vd = in && relative ? den(x, y) : 0.0f;
                if (k == Kind::L1) {
                    ln.lane[lane] = ln.lane[lane] + vn;
                    ld.lane[lane] = ld.lane[lane] + vd;
                } else {
                    ln.lane[lane] = std::fma(vn, vn, ln.lane[lane]);
                    ld.lane[lane] = std::fma(vd, vd, ld.lane[lane]);
                }
            }
        ln.flush();
        ld.flush();
    }
    t.num = ln.total();
    t.den = relative ? ld.total() : 0.0;
    return t;
}

template <class T>
NormTotals normTotals(const Plane<T>& a, const Plane<T>* b, bool relative, Kind k) {
    if constexpr (std::is_same_v<T, float>)
        return normFloat(a, b, relative, k);
    else
        return normInt(a, b, relative, k);
}

// The value of a norm and its status, from the totals.
inline LumStatus normValue(NormTotals t, bool relative, Kind k, double& value) {
    if (!relative) {
        value = k == Kind::L2 ? std::sqrt(t.num) : t.num;
        return lumStatusOk;
    }
    if (t.den == 0.0) {
        if (t.num == 0.0) {
            const uint64_t nan = 0xFFF8000000000000ull;
            std::memcpy(&value, &nan, 8);
        } else {
            value = t.num < 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
        }
        return lumStatusZeroDenominator;
    }
    value = k == Kind::L2 ? std::sqrt(t.num / t.den) : t.num / t.den;
    return lumStatusOk;
}

}  // namespace ref
