#pragma once

namespace vireon::simd {

struct KernelTable;

/// How the image stages are computed. All levels but the first give the same bits; the plain
/// definitions differ from them by float rounding where a stage adds in another order.
enum class Level {
    kPlain,   ///< the plain definitions of the stages, for reference
    kScalar,  ///< the fast forms without vector instructions
    kSse2,    ///< what every 64-bit processor has
    kAvx2,
    kAvx512,  ///< AVX-512 F, BW, DQ and VL
};

inline constexpr Level kLevels[] = {Level::kPlain, Level::kScalar, Level::kSse2, Level::kAvx2,
                                    Level::kAvx512};

/// Environment variable that forces a level by its name; names that are unknown or beyond what the
/// machine has are passed over.
inline constexpr char kLevelVariable[] = "VIREON_GLOW_SIMD";

/// "plain", "scalar", "sse2", "avx2" or "avx512".
const char* LevelName(Level level);

/// Whether this processor and system can run a level.
bool HasLevel(Level level);

/// The level of this process: the one that `kLevelVariable` names, else the highest that the
/// machine has. It is found out once and never changes.
Level ActiveLevel();

/// The kernels of a level that the machine has; null for the plain one.
const KernelTable* KernelsOf(Level level);

/// The kernels of the active level; null when the plain definitions are to run.
const KernelTable* ActiveKernels();

/// Calls `stage` with the kernels of the active level, or with nothing when the plain definitions
/// are to run: `Stage(kernels..., image)` in it is the overload that the level asks for.
template <typename Stage>
void AtActiveLevel(Stage&& stage) {
    if (const KernelTable* kernels = ActiveKernels()) {
        stage(*kernels);
    } else {
        stage();
    }
}

}  // namespace vireon::simd
