#pragma once

#include "samples/stage.h"

namespace vireon::scenes {

/// The line of the sea's far edge, in units of the design.
inline constexpr double kSeaHorizon = 430.0;

/// Where the sun stands, from the middle of the picture; it is above the picture's upper edge.
inline constexpr double kSunOffset = -520.0;

/// The parts of the sunlit coast: sky, islands and sea over the whole canvas, then the village.
void PaintSeaAndSky(const Stage& stage);
void PaintVillage(const Stage& stage);

}  // namespace vireon::scenes
