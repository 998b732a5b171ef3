#include "composite/glow_mask_pixels.h"

#include <algorithm>
#include <cmath>

#include "composite/finite_light.h"
#include "image/exact_math.h"
#include "image/tolerance.h"

namespace vireon {
namespace {

void Multiply(float* pixel, float factor, bool alphaOnly) {
    const std::int32_t last = alphaOnly ? kAlpha : kBlue;
    for (std::int32_t c = kAlpha; c <= last; ++c) pixel[c] *= factor;
}

void Zero(float* pixel, bool alphaOnly) {
    std::fill(pixel, pixel + (alphaOnly ? 1 : kChannels), 0.0f);
}

}  // namespace

void MultiplyByAlpha(const FloatImage& map, const FloatImage& mask, std::int32_t width,
                     std::int32_t height, bool alphaOnly) {
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            Multiply(map.pixel(x, y), FiniteLight(mask.pixel(x, y)[kAlpha]), alphaOnly);
        }
    }
}

void MultiplyByEllipse(const FloatImage& map, const EllipseMask& ellipse, std::int32_t width,
                       std::int32_t height, bool alphaOnly) {
    const float radiusSquared = ellipse.radius * ellipse.radius;
    const bool straight = NearOne(ellipse.softness);
    for (std::int32_t y = 0; y < height; ++y) {
        const float dy = static_cast<float>(y) - ellipse.centreY;
        const float rowTerm = dy * dy * ellipse.scaleY;
        for (std::int32_t x = 0; x < width; ++x) {
            const float dx = static_cast<float>(x) - ellipse.centreX;
            const float squared = dx * dx * ellipse.scaleX + rowTerm;
            float* pixel = map.pixel(x, y);
            if (squared >= radiusSquared) {
                Zero(pixel, alphaOnly);
                continue;
            }
            const float distance = std::sqrt(squared) / ellipse.radius;
            Multiply(pixel, 1.0f - (straight ? distance : Pow(distance, ellipse.softness)),
                     alphaOnly);
        }
    }
}

void FillWhite(const FloatImage& map) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        std::fill_n(map.row(y), static_cast<std::ptrdiff_t>(map.width) * kChannels, 1.0f);
    }
}

}  // namespace vireon
