#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace TestKit {

/// The random numbers of one test. The seed is the number in OXCLASS_SEED, otherwise a new one for each run; each
/// failure names it, so that a failing run can be repeated.
class Random : public std::mt19937 {
public:
    Random() : Random(Seed()) {}

    /// Returns a number from 0 to `limit` - 1.
    template <class Integer>
    Integer Below(Integer limit) {
        return std::uniform_int_distribution<Integer>(0, limit - 1)(*this);
    }

    /// True once in `n` times on average.
    bool OneIn(unsigned n) { return Below(n) == 0; }

private:
    explicit Random(result_type seed)
        : std::mt19937(seed), trace_(__FILE__, __LINE__, "OXCLASS_SEED=" + std::to_string(seed)) {}

    static result_type Seed() {
        const char* const given = std::getenv("OXCLASS_SEED");
        return given ? static_cast<result_type>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    }

    ::testing::ScopedTrace trace_;
};

}  // namespace TestKit
