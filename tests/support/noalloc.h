// Proof that exports do not allocate.
//
// LUMTEST_NOALLOC(name, (args...)) calls the export with the arguments,
// counts the heap allocations made during the call (malloc, calloc, realloc,
// the aligned forms, and operator new through them), expects none, records
// that the export was exercised, and yields the export's result. In the
// sanitizer build the sanitizer owns malloc and nothing is counted; the
// record is still kept.
//
// When the whole suite runs unfiltered, its end checks that every export of
// the list went through LUMTEST_NOALLOC at least once: a new export needs a
// call through it in its family's tests.
#pragma once

#include <gtest/gtest.h>

#include <atomic>

namespace lumtest {

struct AllocationCount {
    static std::atomic<bool> counting;
    static std::atomic<long> count;
};

void recordNoAllocCall(const char* exportName);

class NoAllocScope {
public:
    explicit NoAllocScope(const char* exportName) : name_(exportName) {
        AllocationCount::count.store(0);
        AllocationCount::counting.store(true);
    }
    ~NoAllocScope() { finish(); }
    void finish() {
        if (done_) return;
        done_ = true;
        AllocationCount::counting.store(false);
        EXPECT_EQ(AllocationCount::count.load(), 0) << name_ << " allocated memory on the heap";
        recordNoAllocCall(name_);
    }

private:
    const char* name_;
    bool done_ = false;
};

// True when the test binary really counts (not a sanitizer build).
bool allocationsCounted();

}  // namespace lumtest

#define LUMTEST_NOALLOC(name, args)                  \
    ([&]() {                                         \
        ::lumtest::NoAllocScope lumtestScope_(#name); \
        auto lumtestResult_ = name args;             \
        lumtestScope_.finish();                      \
        return lumtestResult_;                       \
    }())
