// The core module: what the image library asks of the machine.
#include "lumcore.h"

#include <cpuid.h>
#include <unistd.h>

#include <climits>

namespace {

long largestFromSysconf() {
    long best = 0;
#if defined(_SC_LEVEL1_DCACHE_SIZE)
    const int names[] = {_SC_LEVEL1_DCACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL3_CACHE_SIZE, _SC_LEVEL4_CACHE_SIZE};
    for (int name : names) {
        const long v = sysconf(name);
        if (v > best) best = v;
    }
#endif
    return best;
}

// Deterministic cache parameters: leaf 4, or the extended leaf 0x8000001d, one
// sub-leaf a cache until the type field reads 0.
long largestFromCpuid() {
    unsigned a, b, c, d;
    const unsigned maxLeaf = __get_cpuid_max(0, nullptr);
    const unsigned maxExt = __get_cpuid_max(0x80000000u, nullptr);
    unsigned leaf = 0;
    if (maxLeaf >= 4) leaf = 4;
    else if (maxExt >= 0x8000001du) leaf = 0x8000001du;
    else return 0;
    long best = 0;
    for (unsigned i = 0; i < 16; ++i) {
        __cpuid_count(leaf, i, a, b, c, d);
        const unsigned type = a & 31;
        if (type == 0) break;
        if (type == 2) continue;  // instruction cache
        const long ways = ((b >> 22) & 1023) + 1;
        const long parts = ((b >> 12) & 1023) + 1;
        const long line = (b & 4095) + 1;
        const long sets = static_cast<long>(c) + 1;
        const long size = ways * parts * line * sets;
        if (size > best) best = size;
    }
    return best;
}

}  // namespace

extern "C" LUM_API LumStatus lumGetMaxCacheSizeB(int* pSizeByte) {
    if (pSizeByte == nullptr) return lumStatusNullPointer;
    long size = largestFromSysconf();
    if (size <= 0) size = largestFromCpuid();
    if (size <= 0) size = 8L << 20;
    if (size > INT_MAX) size = INT_MAX;
    *pSizeByte = static_cast<int>(size);
    return lumStatusOk;
}
