#include "composite/glow_mask_pixels.h"

#include <algorithm>
#include <cmath>

#include "composite/finite_light.h"
#include "image/exact_math.h"
#include "image/tolerance.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

void Multiply(float* pixel, float factor, bool alphaOnly) {
    const std::int32_t last = alphaOnly ? kAlpha : kBlue;
    for (std::int32_t c = kAlpha; c <= last; ++c) pixel[c] *= factor;
}

void Zero(float* pixel, bool alphaOnly) {
    std::fill(pixel, pixel + (alphaOnly ? 1 : kChannels), 0.0f);
}

// Pixels from `first` on of one row.
void MultiplyRowByEllipse(float* light, std::int32_t first, std::int32_t width,
                          const simd::EllipseRow& row) {
    for (std::int32_t x = first; x < width; ++x) {
        const float dx = static_cast<float>(x) - row.centreX;
        const float squared = dx * dx * row.scaleX + row.rowTerm;
        float* pixel = light + static_cast<std::ptrdiff_t>(x) * kChannels;
        if (squared >= row.radiusSquared) {
            Zero(pixel, row.alphaOnly);
            continue;
        }
        const float distance = std::sqrt(squared) / row.radius;
        Multiply(pixel, 1.0f - (row.straight ? distance : Pow(distance, row.softness)),
                 row.alphaOnly);
    }
}

// Calls `multiply` with every row of light and what the ellipse is there.
template <typename MultiplyRow>
void ForEachEllipseRow(const FloatImage& map, const EllipseMask& ellipse, std::int32_t height,
                       bool alphaOnly, MultiplyRow&& multiply) {
    simd::EllipseRow row{};
    row.centreX = ellipse.centreX;
    row.scaleX = ellipse.scaleX;
    row.radius = ellipse.radius;
    row.radiusSquared = ellipse.radius * ellipse.radius;
    row.straight = NearOne(ellipse.softness);
    row.softness = ellipse.softness;
    row.alphaOnly = alphaOnly;
    for (std::int32_t y = 0; y < height; ++y) {
        const float dy = static_cast<float>(y) - ellipse.centreY;
        row.rowTerm = dy * dy * ellipse.scaleY;
        multiply(map.row(y), row);
    }
}

// Kernels know no numbers but those that sliders give.
bool TakesKernelEllipse(const EllipseMask& ellipse) {
    const auto isPositive = [](float value) { return value > 0.0f && std::isfinite(value); };
    return std::isfinite(ellipse.centreX) && std::isfinite(ellipse.centreY) &&
           isPositive(ellipse.radius) && isPositive(ellipse.scaleX) && isPositive(ellipse.scaleY) &&
           isPositive(ellipse.softness);
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

void MultiplyByAlpha(const simd::KernelTable& kernels, const FloatImage& map,
                     const FloatImage& mask, std::int32_t width, std::int32_t height,
                     bool alphaOnly) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(width) * kChannels;
    for (std::int32_t y = 0; y < height; ++y) {
        kernels.mask.multiplyByAlpha(map.row(y), mask.row(y), values, alphaOnly);
    }
}

void MultiplyByEllipse(const FloatImage& map, const EllipseMask& ellipse, std::int32_t width,
                       std::int32_t height, bool alphaOnly) {
    ForEachEllipseRow(map, ellipse, height, alphaOnly,
                      [&](float* light, const simd::EllipseRow& row) {
                          MultiplyRowByEllipse(light, 0, width, row);
                      });
}

void MultiplyByEllipse(const simd::KernelTable& kernels, const FloatImage& map,
                       const EllipseMask& ellipse, std::int32_t width, std::int32_t height,
                       bool alphaOnly) {
    if (!TakesKernelEllipse(ellipse)) {
        MultiplyByEllipse(map, ellipse, width, height, alphaOnly);
        return;
    }
    ForEachEllipseRow(
        map, ellipse, height, alphaOnly, [&](float* light, const simd::EllipseRow& row) {
            const std::int32_t done = kernels.mask.multiplyByEllipse(light, width, row);
            MultiplyRowByEllipse(light, done, width, row);
        });
}

void FillWhite(const FloatImage& map) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        std::fill_n(map.row(y), static_cast<std::ptrdiff_t>(map.width) * kChannels, 1.0f);
    }
}

}  // namespace vireon
