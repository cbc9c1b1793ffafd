// Every instruction set that this machine runs.
#pragma once

#include "kernels/level.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace kzb::kernels {

inline std::vector<Level> running_levels() {
    std::vector<Level> levels;
    for (Level level : every_level)
        if (runs(level)) levels.push_back(level);
    return levels;
}

template <class Check> void for_each_level(Check check) {
    for (Level level : running_levels()) {
        SCOPED_TRACE(name_of(level));
        check(level);
        if (testing::Test::HasFatalFailure()) return;
    }
}

inline std::vector<uint8_t> random_bytes(size_t count, uint32_t seed) {
    std::mt19937 engine(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(engine() >> 24);
    return bytes;
}

} // namespace kzb::kernels
