// See cache_size.h. The override is process-wide; tests that use it run one
// at a time, like the rest of the suite.
#include "support/cache_size.h"

#include <dlfcn.h>

#include <atomic>

#include "lumcore.h"

namespace {
std::atomic<long> queries{0};
std::atomic<bool> overridden{false};
std::atomic<int> overrideBytes{0};

using QueryFn = LumStatus (*)(int*);
QueryFn lumcoreQuery() {
    static const QueryFn fn = reinterpret_cast<QueryFn>(dlsym(RTLD_NEXT, "lumGetMaxCacheSizeB"));
    return fn;
}
}  // namespace

extern "C" LUM_API LumStatus lumGetMaxCacheSizeB(int* pSizeByte) {
    queries.fetch_add(1);
    if (overridden.load()) {
        if (pSizeByte == nullptr) return lumStatusNullPointer;
        *pSizeByte = overrideBytes.load();
        return lumStatusOk;
    }
    const QueryFn real = lumcoreQuery();
    if (real == nullptr) {
        if (pSizeByte == nullptr) return lumStatusNullPointer;
        *pSizeByte = 8 << 20;
        return lumStatusOk;
    }
    return real(pSizeByte);
}

namespace lumtest {

CacheSizeOverride::CacheSizeOverride(int bytes) {
    overrideBytes.store(bytes);
    overridden.store(true);
}
CacheSizeOverride::~CacheSizeOverride() { overridden.store(false); }

long cacheSizeQueries() { return queries.load(); }

}  // namespace lumtest
