// Control of lumGetMaxCacheSizeB as the library sees it.
//
// The test binary defines lumGetMaxCacheSizeB itself, so the library's calls
// bind to it ahead of lumcore's. It counts every call and, while a
// CacheSizeOverride lives, reports the given size; otherwise it forwards to
// lumcore. Families that choose cache-bypassing stores by the cache size can
// so test both of their paths at small image sizes, and whether they asked.
#pragma once

namespace lumtest {

class CacheSizeOverride {
public:
    explicit CacheSizeOverride(int bytes);
    ~CacheSizeOverride();
    CacheSizeOverride(const CacheSizeOverride&) = delete;
    CacheSizeOverride& operator=(const CacheSizeOverride&) = delete;
};

// Calls of lumGetMaxCacheSizeB so far, by anyone in the process.
long cacheSizeQueries();

}  // namespace lumtest
