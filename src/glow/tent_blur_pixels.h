#pragma once

#include <cstdint>

#include "image/float_image.h"
#include "simd/level.h"

namespace vireon {

/// Direction of a line pass.
inline constexpr std::int32_t kAlongRows = 0;
inline constexpr std::int32_t kAlongColumns = 1;

/// The radius that a line of `length` pixels really gets: one that reaches half the line or more
/// (2 radius + 2 >= length) becomes length / 2 - 2. A result of 0 or less means that the line is
/// left as it is.
std::int32_t ClampTentRadius(std::int32_t radius, std::int32_t length);

/// One pass of a separable tent filter along rows or columns:
/// destination[i] = sum over |k| <= r of (m - |k|) source[i + k] / m^2, with m = r + 1.
///
/// Positions outside the line take the nearest end pixel. The sums are kept in 64-bit floats, so
/// that the cost of a pixel does not grow with the radius and long lines do not drift. Values are
/// not limited; a value that is not finite spreads to the end of its line. Source and destination
/// have the same size and must not overlap. Where `ClampTentRadius` gives 0 or less nothing is
/// written.
/// \param radius  pixels
/// \param direction  `kAlongRows` or `kAlongColumns`
/// \return 0
///
/// Red, green and blue; the alpha of the destination keeps what it held.
std::int32_t TentBlurRGB(const FloatImage& source, const FloatImage& destination,
                         std::int32_t radius, std::int32_t direction);
/// All four channels.
std::int32_t TentBlurRGBA(const FloatImage& source, const FloatImage& destination,
                          std::int32_t radius, std::int32_t direction);
/// The one float at place `channel` (0 to 3) of every pixel.
std::int32_t TentBlurChannel(const FloatImage& source, const FloatImage& destination,
                             std::int32_t radius, std::int32_t channel, std::int32_t direction);

/// The same passes by the kernels of a level, bit by bit; they read and write back, but never
/// change, the other channels of the pixels that they write.
std::int32_t TentBlurRGB(const simd::KernelTable& kernels, const FloatImage& source,
                         const FloatImage& destination, std::int32_t radius,
                         std::int32_t direction);
std::int32_t TentBlurRGBA(const simd::KernelTable& kernels, const FloatImage& source,
                          const FloatImage& destination, std::int32_t radius,
                          std::int32_t direction);
std::int32_t TentBlurChannel(const simd::KernelTable& kernels, const FloatImage& source,
                             const FloatImage& destination, std::int32_t radius,
                             std::int32_t channel, std::int32_t direction);

/// Both passes of the image by the kernels of a level, along rows and then along columns, on the
/// enabled channels and in place; bit by bit what they give one after the other.
/// \param scratch  as large as the image; holds nothing of use afterwards
/// \return whether both directions have a pass to make; otherwise nothing was written
bool TentBlur(const simd::KernelTable& kernels, const FloatImage& image, const FloatImage& scratch,
              std::int32_t radius, const ChannelFlags& channels);

}  // namespace vireon
