// Buffer-size queries of the row and column pipeline stages.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "lumcv.h"
#include "support/noalloc.h"

namespace {

using Query = LumStatus (*)(LumiSize, int, int*);

struct Case {
    const char* name;
    Query fn;
    std::function<long long(long long k, long long w)> bytes;
};

long long r4(long long n) { return (n + 3) / 4 * 4; }
long long r8(long long n) { return (n + 7) / 8 * 8; }

const std::vector<Case>& cases() {
    static const std::vector<Case> c = {
        {"row 16s C1R", lumiFilterRowBorderPipelineGetBufferSize_16s_C1R, [](long long k, long long) { return 48 * k + 112; }},
        {"row 16s C3R", lumiFilterRowBorderPipelineGetBufferSize_16s_C3R, [](long long k, long long) { return 40 * k + 96; }},
        {"row 16u C1R", lumiFilterRowBorderPipelineGetBufferSize_16u_C1R, [](long long k, long long) { return 64 * k + 96; }},
        {"row 16u C3R", lumiFilterRowBorderPipelineGetBufferSize_16u_C3R, [](long long k, long long) { return 128 * k + 96; }},
        {"row 32f C1R", lumiFilterRowBorderPipelineGetBufferSize_32f_C1R, [](long long k, long long) { return 48 * k + 96; }},
        {"row 32f C3R", lumiFilterRowBorderPipelineGetBufferSize_32f_C3R, [](long long k, long long) { return 144 * k + 96; }},
        {"row 8u16s C1R", lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
         [](long long k, long long) { return 34 * k + 32 * (k / 4) + 66; }},
        {"row 8u16s C3R", lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, [](long long k, long long) { return 60 * k + 144; }},
        {"row Low_16s C1R", lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, [](long long k, long long) { return 24 * k + 96; }},
        {"row Low_16s C3R", lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, [](long long k, long long) { return 208 * k + 96; }},
        {"column 16s C1R", lumiFilterColumnPipelineGetBufferSize_16s_C1R, [](long long, long long w) { return 12 * r4(w) + 64; }},
        {"column 16s8s C1R", lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, [](long long, long long w) { return 12 * r4(w) + 64; }},
        {"column 16s8u C1R", lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, [](long long, long long w) { return 12 * r4(w) + 64; }},
        {"column 16s C3R", lumiFilterColumnPipelineGetBufferSize_16s_C3R, [](long long, long long w) { return 36 * r4(w) + 64; }},
        {"column 16s8s C3R", lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, [](long long, long long w) { return 36 * r4(w) + 64; }},
        {"column 16s8u C3R", lumiFilterColumnPipelineGetBufferSize_16s8u_C3R, [](long long, long long w) { return 36 * r4(w) + 64; }},
        {"column 16u C1R", lumiFilterColumnPipelineGetBufferSize_16u_C1R,
         [](long long k, long long w) { return 32 * k + 64 + 32 * ((w + 3) / 4); }},
        {"column 16u C3R", lumiFilterColumnPipelineGetBufferSize_16u_C3R,
         [](long long k, long long w) { return 32 * k + 64 + 32 * ((3 * w + 3) / 4); }},
        {"column 32f C1R", lumiFilterColumnPipelineGetBufferSize_32f_C1R, [](long long k, long long) { return 32 * k + 32; }},
        {"column 32f C3R", lumiFilterColumnPipelineGetBufferSize_32f_C3R, [](long long k, long long) { return 32 * k + 32; }},
        {"column Low_16s C1R", lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, [](long long, long long w) { return 12 * r8(w) + 64; }},
        {"column Low_16s C3R", lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, [](long long, long long w) { return 36 * r8(w) + 64; }},
    };
    return c;
}

TEST(PipelineBufferSize, FormulasOverKernelsAndWidths) {
    for (const Case& c : cases()) {
        for (int k : {1, 2, 3, 4, 5, 7, 8, 9, 31, 64, 101}) {
            for (int w : {1, 2, 3, 4, 5, 7, 8, 9, 255, 256, 257, 1000}) {
                for (int h : {1, 7}) {
                    int size = -1;
                    ASSERT_EQ(c.fn(LumiSize{w, h}, k, &size), lumStatusOk) << c.name;
                    EXPECT_EQ(size, c.bytes(k, w)) << c.name << " k " << k << " w " << w;
                }
            }
        }
    }
}

TEST(PipelineBufferSize, ChecksInOrder) {
    for (const Case& c : cases()) {
        int size = 12345;
        EXPECT_EQ(c.fn(LumiSize{0, 0}, 0, nullptr), lumStatusNullPointer) << c.name;
        EXPECT_EQ(c.fn(LumiSize{0, 5}, 3, &size), lumStatusBadSize) << c.name;
        EXPECT_EQ(c.fn(LumiSize{5, 0}, 3, &size), lumStatusBadSize) << c.name;
        EXPECT_EQ(c.fn(LumiSize{5, 5}, 0, &size), lumStatusBadSize) << c.name;
        EXPECT_EQ(c.fn(LumiSize{5, 5}, -3, &size), lumStatusBadSize) << c.name;
        EXPECT_EQ(size, 12345) << c.name << ": a failed query leaves the count untouched";
    }
}

TEST(PipelineBufferSize, DoNotAllocate) {
    int size = 0;
#define Q(name) LUMTEST_NOALLOC(name, (LumiSize{64, 8}, 5, &size))
    Q(lumiFilterColumnPipelineGetBufferSize_16s8s_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R);
    Q(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_16s8u_C3R);
    Q(lumiFilterColumnPipelineGetBufferSize_16s_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_16s_C3R);
    Q(lumiFilterColumnPipelineGetBufferSize_16u_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_16u_C3R);
    Q(lumiFilterColumnPipelineGetBufferSize_32f_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_32f_C3R);
    Q(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R);
    Q(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_16s_C1R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_16s_C3R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_16u_C1R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_16u_C3R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_32f_C3R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R);
    Q(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R);
#undef Q
}

}  // namespace
