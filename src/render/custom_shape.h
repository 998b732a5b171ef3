#pragma once

#include "image/float_image.h"
#include "shapes/glow_kernel.h"

namespace vireon {

/// The glow shape that a layer draws: a kernel of the layer's size, each texel the pixel's
/// luminance times its alpha, (204 green + 117 red + 64 blue) alpha / 385. Texels that are not
/// finite are 0. An empty layer gives an empty kernel.
GlowKernel MakeCustomShape(const FloatImage& layer);

}  // namespace vireon
