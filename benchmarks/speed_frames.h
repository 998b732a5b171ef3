#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "benchmarks/speed_clock.h"
#include "benchmarks/speed_table.h"
#include "simd/level.h"

namespace vireon::bench {

struct FrameOptions {
    std::filesystem::path plugin;  ///< the built library, its brushes beside it
    std::filesystem::path work;    ///< folder for copies of the library, made when it is missing
    simd::Level level;             ///< the fast side
    Repeats repeats;
    std::function<void(const SpeedRow&)> onRow;  ///< called with every row that is done
};

/// Measures whole frames through the library's entry point at the effect's default settings, as a
/// host renders them. A library finds its level once a process, so each level runs a copy of the
/// file, which the system loads as a library of its own. Throws std::exception when a library
/// cannot be loaded or a frame fails. \param remarks  gets what is to be said about several rows
std::vector<SpeedRow> MeasureFrames(const FrameOptions& options, std::vector<std::string>& remarks);

}  // namespace vireon::bench
