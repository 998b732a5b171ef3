#include "render/custom_shape.h"

#include <cmath>

#include "composite/brightness_pixels.h"

namespace vireon {

GlowKernel MakeCustomShape(const FloatImage& layer) {
    GlowKernel kernel;
    if (layer.width <= 0 || layer.height <= 0) return kernel;
    kernel.allocate(layer.width, layer.height);
    float* texel = kernel.values.data();
    for (std::int32_t y = 0; y < layer.height; ++y) {
        const float* pixel = layer.row(y);
        for (std::int32_t x = 0; x < layer.width; ++x, pixel += kChannels, ++texel) {
            const float value = Luminance(pixel);
            *texel = std::isfinite(value) ? value : 0.0f;
        }
    }
    kernel.flagEmptyRows();
    return kernel;
}

}  // namespace vireon
