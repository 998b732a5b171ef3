#pragma once

#include <functional>
#include <string>
#include <vector>

#include "benchmarks/speed_clock.h"
#include "benchmarks/speed_table.h"
#include "simd/level.h"

namespace vireon {
struct ConvolutionReport;
}

namespace vireon::bench {

struct StageOptions {
    simd::Level level;  ///< the fast side; must not be the plain one
    Repeats repeats;
    std::function<void(const SpeedRow&)> onRow;  ///< called with every row that is done
};

/// Measures the convolution, the tent blur and the widening by themselves, in this process and on
/// pictures in memory. Throws std::exception when a stage fails.
/// \param remarks  gets what is to be said about several rows
std::vector<SpeedRow> MeasureStages(const StageOptions& options, std::vector<std::string>& remarks);

/// The forms that a convolution's channels took, red first, once where neighbours are the same;
/// channels without light are left out.
std::string FormsOf(const ConvolutionReport& report);

}  // namespace vireon::bench
