#include "simd/level.h"

#include <cstdlib>
#include <cstring>

#include "simd/kernel_table.h"

namespace vireon::simd {
namespace {

Level HighestLevel() {
    Level highest = Level::kPlain;
    for (const Level level : kLevels) {
        if (HasLevel(level)) highest = level;
    }
    return highest;
}

Level ChooseLevel() {
    if (const char* wanted = std::getenv(kLevelVariable)) {
        for (const Level level : kLevels) {
            if (std::strcmp(wanted, LevelName(level)) == 0 && HasLevel(level)) return level;
        }
    }
    return HighestLevel();
}

}  // namespace

const char* LevelName(Level level) {
    switch (level) {
        case Level::kPlain: return "plain";
        case Level::kScalar: return "scalar";
        case Level::kSse2: return "sse2";
        case Level::kAvx2: return "avx2";
        case Level::kAvx512: return "avx512";
    }
    return "";
}

bool HasLevel(Level level) {
    switch (level) {
        case Level::kPlain:
        case Level::kScalar:
        case Level::kSse2: return true;
        case Level::kAvx2: return __builtin_cpu_supports("avx2") != 0;
        case Level::kAvx512:
            return __builtin_cpu_supports("avx512f") != 0 &&
                   __builtin_cpu_supports("avx512bw") != 0 &&
                   __builtin_cpu_supports("avx512dq") != 0 &&
                   __builtin_cpu_supports("avx512vl") != 0;
    }
    return false;
}

Level ActiveLevel() {
    static const Level level = ChooseLevel();
    return level;
}

const KernelTable* KernelsOf(Level level) {
    switch (level) {
        case Level::kPlain: return nullptr;
        case Level::kScalar: return &scalar::kKernels;
        case Level::kSse2: return &sse2::kKernels;
        case Level::kAvx2: return &avx2::kKernels;
        case Level::kAvx512: return &avx512::kKernels;
    }
    return nullptr;
}

const KernelTable* ActiveKernels() {
    return KernelsOf(ActiveLevel());
}

}  // namespace vireon::simd
