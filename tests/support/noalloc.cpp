#include "support/noalloc.h"

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "lumcv.h"

namespace lumtest {

std::atomic<bool> AllocationCount::counting{false};
std::atomic<long> AllocationCount::count{0};

namespace {

std::set<std::string>& exercised() {
    static std::set<std::string> names;
    return names;
}

const std::vector<std::string>& allExports() {
    static const std::vector<std::string> names = {
#define LUM_EXPORT(ret, name, impl, params, args) #name,
#include "lumcv_exports.h"
#undef LUM_EXPORT
    };
    return names;
}

// At the end of an unfiltered run, every export must have been called
// through LUMTEST_NOALLOC.
class NoAllocCoverage : public ::testing::Environment {
public:
    void TearDown() override {
        #ifdef GTEST_FLAG_GET
        const std::string filter = GTEST_FLAG_GET(filter);
#else
        const std::string filter = ::testing::GTEST_FLAG(filter);
#endif
        if (filter != "*" && !filter.empty()) return;
        if (::testing::UnitTest::GetInstance()->failed_test_count() > 0) return;
        std::string missing;
        for (const std::string& n : allExports())
            if (exercised().count(n) == 0) missing += " " + n;
        EXPECT_TRUE(missing.empty()) << "exports never called through LUMTEST_NOALLOC:" << missing;
    }
};

const bool registered = (::testing::AddGlobalTestEnvironment(new NoAllocCoverage), true);

}  // namespace

void recordNoAllocCall(const char* exportName) { exercised().insert(exportName); }

bool allocationsCounted() {
#ifdef LUMCV_COUNT_ALLOCATIONS
    return true;
#else
    return false;
#endif
}

}  // namespace lumtest
