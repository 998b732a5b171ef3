#pragma once

#include <vector>

#include "simd/kernel_table.h"
#include "simd/level.h"

namespace vireon::test {

/// The levels with kernels that this machine can run.
inline std::vector<simd::Level> FastLevels() {
    std::vector<simd::Level> levels;
    for (const simd::Level level : simd::kLevels) {
        if (simd::HasLevel(level) && simd::KernelsOf(level) != nullptr) levels.push_back(level);
    }
    return levels;
}

}  // namespace vireon::test
