#pragma once

#include <vector>

#include "tools/brushes/shapes.h"

namespace vireon::brushes {

/// Side of a brush in texels.
inline constexpr int kBrushSize = 256;

/// The texel that a stamp lays on the bright pixel. Texel i lies at coordinate i, so one more texel
/// lies before the centre than behind it.
inline constexpr int kBrushCentre = 128;

/// Everything at this distance from the centre or beyond, in texels, is exactly zero. It is the
/// distance from the centre to the last row, so a stamp has no cut edge on any side.
inline constexpr int kBrushRadius = 127;

/// Sum of the samples of every brush: the amount of light that one bright pixel throws, the same
/// for every shape, so that a change of shape keeps the brightness of the glow.
///
/// It settles how strong the glow is at the effect's default settings (radius 100, intensity 10 %,
/// threshold 50 %, falloff 1.5). Each pixel of level L lays a stamp of radius 100 (L - 0.5)^1.5, so
/// the inside of an even area gets
///     0.1 x sum x (100 (L - 0.5)^1.5 / 128)^2 = 0.061 x sum x (L - 0.5)^3
/// at every quality: with 120 about 0.9 at full white, 0.5 at 0.9, 0.2 at 0.8 and 0.02 at 0.65. So
/// no even area of a display's picture gets more glow than white has light. A smaller sum
/// leaves lamps of a few pixels without a visible halo; a larger one gives lit skin yellow patches
/// and makes sunlit walls white, as the channels of a colour clip one after the other.
/// docs/brightness.md has what was measured.
inline constexpr double kBrushEnergy = 120.0;

/// Draws a shape as kBrushSize x kBrushSize samples in rows, top row first. Every sample is the
/// mean of the shape over one texel, zero from kBrushRadius on; the sum is kBrushEnergy and the
/// centroid kBrushCentre, both to rounding. A shape that is heavier on one side is leaned evenly to
/// the other, its centre staying as it is. Samples are finite, never negative, and equal bit for
/// bit from one machine to the next.
std::vector<double> RasteriseShape(const Shape& shape);

}  // namespace vireon::brushes
