#pragma once

#include <cstdint>

#include "image/float_image.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// An ellipse that is 1 at its centre and falls to 0 at its rim.
struct EllipseMask {
    float centreX;  ///< pixels of the image, (0, 0) being its first pixel
    float centreY;
    float radius;    ///< pixels at full resolution
    float scaleX;    ///< factor of the squared horizontal distance
    float scaleY;    ///< factor of the squared vertical distance
    float softness;  ///< exponent of the falloff; 1 is a straight cone
};

/// Passes over the first width x height pixels of a brightness map, in place. With `alphaOnly` the
/// map is one value a pixel, in alpha's place; otherwise all four channels are treated alike. The
/// forms by kernels give the same bits.

/// map = map x alpha of the mask, which must have that many pixels. An alpha that is not a number
/// counts as 0 and an infinite one as 65504, so that it cannot spread.
void MultiplyByAlpha(const FloatImage& map, const FloatImage& mask, std::int32_t width,
                     std::int32_t height, bool alphaOnly);
void MultiplyByAlpha(const simd::KernelTable& kernels, const FloatImage& map,
                     const FloatImage& mask, std::int32_t width, std::int32_t height,
                     bool alphaOnly);

/// map = map x (1 - (d / radius)^softness), with d^2 = dx^2 scaleX + dy^2 scaleY; 0 where d^2
/// reaches the squared radius.
void MultiplyByEllipse(const FloatImage& map, const EllipseMask& ellipse, std::int32_t width,
                       std::int32_t height, bool alphaOnly);
void MultiplyByEllipse(const simd::KernelTable& kernels, const FloatImage& map,
                       const EllipseMask& ellipse, std::int32_t width, std::int32_t height,
                       bool alphaOnly);

/// Sets all four channels of every pixel to 1.
void FillWhite(const FloatImage& map);

}  // namespace vireon
