#pragma once

#include <cstddef>
#include <cstdint>

#include "headless/remote/picture.h"

namespace vireon::tool {

/// A colour with white at 1, alpha last as picture files have it.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const Color&) const = default;
};

/// Colour of light (multiplied by alpha) from the colour of a surface, and back. Where nothing
/// covers the pixel, a division is impossible and the colour is left as it is.
Color Associated(const Color& straight);
Color Straight(const Color& associated);

/// One of the numbers 0 to `white`, rounded to nearest: clamped, NaN gives 0.
std::uint32_t Quantised(double value, std::uint32_t white);

/// Largest number of an integer channel of a host's picture: 255 or 32768.
inline constexpr std::uint32_t kWhite8 = 255;
inline constexpr std::uint32_t kWhite16 = 32768;

/// A pixel of a host's picture.
Color PixelAt(const headless::Picture& picture, std::int32_t x, std::int32_t y);
void SetPixel(headless::Picture& picture, std::int32_t x, std::int32_t y, const Color& color);

/// The picture at 1 / `factor` of the resolution, as a host shows it: each pixel is the mean of a
/// box of factor x factor pixels, weighted by alpha because colours are straight; the last boxes of
/// a row or column may be smaller. The size is rounded up.
headless::Picture Reduced(const headless::Picture& picture, std::int32_t factor);

}  // namespace vireon::tool
