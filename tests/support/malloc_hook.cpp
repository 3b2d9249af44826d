// Counts heap allocations of the test process while a NoAllocScope is open,
// by interposing the C allocator (operator new goes through malloc). Calls go
// on to glibc's own allocator.
#include <cerrno>
#include <cstddef>

#include "support/noalloc.h"

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);
}

namespace {
inline void note() {
    if (lumtest::AllocationCount::counting.load(std::memory_order_relaxed))
        lumtest::AllocationCount::count.fetch_add(1, std::memory_order_relaxed);
}
}  // namespace

extern "C" {
void* malloc(size_t n) {
    note();
    return __libc_malloc(n);
}
void* calloc(size_t n, size_t s) {
    note();
    return __libc_calloc(n, s);
}
void* realloc(void* p, size_t n) {
    note();
    return __libc_realloc(p, n);
}
void free(void* p) { __libc_free(p); }
void* memalign(size_t a, size_t n) {
    note();
    return __libc_memalign(a, n);
}
void* aligned_alloc(size_t a, size_t n) {
    note();
    return __libc_memalign(a, n);
}
int posix_memalign(void** out, size_t a, size_t n) {
    note();
    void* p = __libc_memalign(a, n);
    if (p == nullptr) return ENOMEM;
    *out = p;
    return 0;
}
void* valloc(size_t n) {
    note();
    return __libc_memalign(4096, n);
}
}
