#pragma once

#include <array>

#include "shapes/glow_kernel.h"

namespace vireon::tool {

/// The texel that a stamp lays on the bright pixel, in both directions.
inline constexpr int kBrushCentre = 128;

/// Where a brush has to be zero: the distance from the centre to its last row and column.
inline constexpr int kBrushRim = 127;

/// What a brush amounts to. Places are texels, the first at 0; distances are from the centre
/// (128, 128), in texels.
struct BrushFigures {
    double sum = 0;   ///< the amount of light that a bright pixel throws
    double peak = 0;  ///< largest value, at the first such texel in rows
    int peakX = 0;
    int peakY = 0;
    double smallest = 0;  ///< smallest value; below 0 it takes light away
    /// Offset of the centre of mass from the centre; 0 where there is no light to weigh.
    double offsetX = 0;
    double offsetY = 0;
    int zeroRows = 0;               ///< rows that are zero throughout: they cost no time
    double rim = 0;                 ///< largest magnitude at distance 127 or beyond
    std::array<double, 3> share{};  ///< of the sum within `kShareRadii`
};

/// Distances within which the share of the light is told.
inline constexpr std::array<int, 3> kShareRadii{16, 32, 64};

/// Figures of a kernel of 256 x 256 texels.
BrushFigures FiguresOf(const GlowKernel& kernel);

/// Mean of the values in each ring one texel wide: entry r is the mean of the texels whose distance
/// from the centre rounds to r, up to 127.
std::array<double, kBrushRim + 1> RadialMean(const GlowKernel& kernel);

}  // namespace vireon::tool
