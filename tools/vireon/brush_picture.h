#pragma once

#include <string>
#include <vector>

#include "shapes/glow_kernel.h"
#include "tools/vireon/picture_file.h"

namespace vireon::tool {

/// A brush to be drawn and the name to write above it.
struct NamedBrush {
    std::string name;
    GlowKernel kernel;
};

/// Largest number of brushes that one picture shows.
inline constexpr std::size_t kMostBrushesShown = 100;

/// A sheet with a strip for each brush, 8 bits grey or colour, opaque. From the left:
///  - the brush, each texel as the fourth root of its share of the peak, so that a tail of a
///    hundred thousandth of the peak still shows at a twentieth of white; values below 0 are blue;
///  - the brush as the eye meets it: the share of the peak itself;
///  - profiles over the distance from the centre on a logarithmic scale of six decades: to the
///    right (orange) and down (green), dimmer to the left and up, and the mean of the ring (white).
/// The same bytes on every machine. Kernels have 256 x 256 texels.
headless::Picture DrawBrushes(const std::vector<NamedBrush>& brushes);

}  // namespace vireon::tool
