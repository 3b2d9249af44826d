// The export list against the header, the entry table and the built library.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv.h"

namespace {

struct Row {
    const char* name;
    const char* impl;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> r = {
#define LUM_EXPORT(ret, name, impl, params, args) {#name, #impl},
#include "lumcv_exports.h"
#undef LUM_EXPORT
    };
    return r;
}

// Every prototype in the header has the return type and parameters of its row.
#define LUM_EXPORT(ret, name, impl, params, args) \
    static_assert(std::is_same_v<decltype(&name), ret(*) params>, #name " differs from its row");
#include "lumcv_exports.h"
#undef LUM_EXPORT

std::set<std::string> run(const std::string& command) {
    std::set<std::string> out;
    FILE* p = popen(command.c_str(), "r");
    if (p == nullptr) return out;
    char line[4096];
    while (std::fgets(line, sizeof line, p)) {
        std::string s(line);
        while (!s.empty() && (s.back() == '\n' || s.back() == '\r')) s.pop_back();
        if (!s.empty()) out.insert(s);
    }
    pclose(p);
    return out;
}

TEST(Exports, ListIsInByteOrderWithoutDuplicates) {
    const auto& r = rows();
    ASSERT_FALSE(r.empty());
    EXPECT_STREQ(r.front().name, "lumcvGetLibVersion");
    for (size_t i = 1; i < r.size(); ++i)
        EXPECT_LT(std::strcmp(r[i - 1].name, r[i].name), 0) << r[i - 1].name << " must come after " << r[i].name;
}

TEST(Exports, CapitalsSortBeforeSmallLetters) {
    // The byte order puts lumiAbsDiffC_ ('C' = 0x43) before lumiAbsDiff_ ('_' = 0x5f).
    int c = -1, plain = -1;
    for (size_t i = 0; i < rows().size(); ++i) {
        if (std::strcmp(rows()[i].name, "lumiAbsDiffC_16u_C1R") == 0) c = static_cast<int>(i);
        if (std::strcmp(rows()[i].name, "lumiAbsDiff_16u_C1R") == 0) plain = static_cast<int>(i);
    }
    ASSERT_GE(c, 0);
    ASSERT_GE(plain, 0);
    EXPECT_LT(c, plain);
}

TEST(Exports, DynamicSymbolsAreExactlyTheList) {
    const std::set<std::string> have =
        run(std::string("nm -D --defined-only '") + LUMCV_LIBRARY_PATH +
            "' | awk '$2 ~ /^[TtWiDdBbRrVv]$/ {print $3}' | sed 's/@.*//'");
    std::set<std::string> want;
    for (const Row& r : rows()) want.insert(r.name);
    ASSERT_FALSE(have.empty()) << "nm found no symbols in " << LUMCV_LIBRARY_PATH;
    for (const std::string& n : want) EXPECT_TRUE(have.count(n)) << n << " is not exported";
    for (const std::string& n : have) EXPECT_TRUE(want.count(n)) << n << " is exported but not in the list";
}

TEST(Exports, EveryNameResolvesToTheLinkedFunction) {
    void* lib = dlopen(LUMCV_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (lib == nullptr) lib = dlopen(LUMCV_LIBRARY_PATH, RTLD_NOW);
    ASSERT_NE(lib, nullptr) << dlerror();
#define LUM_EXPORT(ret, name, impl, params, args) \
    EXPECT_EQ(dlsym(lib, #name), reinterpret_cast<void*>(&name)) << #name;
#include "lumcv_exports.h"
#undef LUM_EXPORT
    dlclose(lib);
}

TEST(Exports, SharedImplementationsAreFewerThanExports) {
    std::set<std::string> impls;
    for (const Row& r : rows()) impls.insert(r.impl);
    EXPECT_LE(impls.size(), rows().size());
    RecordProperty("exports", static_cast<int>(rows().size()));
    RecordProperty("implementations", static_cast<int>(impls.size()));
}

TEST(Exports, LibraryUsesNo512BitInstructions) {
    // Neither zmm registers, nor mask registers, nor the upper 16 vector
    // registers that only AVX-512 encodes.
    const std::set<std::string> hits = run(
        std::string("objdump -d --no-show-raw-insn '") + LUMCV_LIBRARY_PATH +
        "' | grep -E '%zmm|%k[0-7][,)]|%k[0-7]$|%[xy]mm(1[6-9]|2[0-9]|3[01])' | head -n 5");
    EXPECT_TRUE(hits.empty()) << "first offending instruction: " << (hits.empty() ? "" : *hits.begin());
}

TEST(Exports, LibraryNeedsNoCxxRuntime) {
    // No allocation, no exceptions: nothing of the C++ runtime is linked in.
    const std::set<std::string> needed =
        run(std::string("objdump -p '") + LUMCV_LIBRARY_PATH + "' | awk '$1 == \"NEEDED\" {print $2}'");
    for (const std::string& n : needed) EXPECT_EQ(n.find("libstdc++"), std::string::npos) << n;
}

}  // namespace
