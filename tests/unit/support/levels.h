#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "simd/kernel_table.h"
#include "simd/level.h"

namespace vireon::test {

/// Every level with kernels that this machine has.
inline std::vector<simd::Level> KernelLevels() {
    std::vector<simd::Level> levels;
    for (const simd::Level level : simd::kLevels) {
        if (simd::HasLevel(level) && simd::KernelsOf(level) != nullptr) levels.push_back(level);
    }
    return levels;
}

/// Name of a test that takes a level.
inline std::string LevelOfTest(const testing::TestParamInfo<simd::Level>& test) {
    return simd::LevelName(test.param);
}

}  // namespace vireon::test
