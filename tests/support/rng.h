// Replayable randomness: every test draws from a generator seeded by
// --gtest_random_seed (and the test's name), and its failures say how to
// repeat them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

namespace lumtest {

inline uint32_t runSeed() { return static_cast<uint32_t>(::testing::UnitTest::GetInstance()->random_seed()); }

inline std::string replayHint() {
    return "To replicate this failure, re-run the test with --gtest_random_seed=" + std::to_string(runSeed());
}

class Rng {
public:
    Rng() : gen_(seedForCurrentTest()) {}
    explicit Rng(uint32_t seed) : gen_(seed) {}

    uint32_t bits() { return static_cast<uint32_t>(gen_()); }
    // Uniform integer in [lo, hi].
    int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(gen_); }
    double uniformReal(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(gen_); }
    bool chance(double p) { return uniformReal(0.0, 1.0) < p; }
    std::mt19937& engine() { return gen_; }

private:
    static uint32_t seedForCurrentTest() {
        uint32_t h = 2166136261u;
        const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
        if (info != nullptr) {
            for (const char* p : {info->test_suite_name(), info->name()})
                for (; *p; ++p) h = (h ^ static_cast<uint8_t>(*p)) * 16777619u;
        }
        return h ^ runSeed();
    }
    std::mt19937 gen_;
};

}  // namespace lumtest

// Puts the replay hint into every failure of the enclosing scope.
#define LUMTEST_REPLAYABLE() SCOPED_TRACE(::lumtest::replayHint())
