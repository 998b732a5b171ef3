#pragma once

#include <cstdint>

#include "image/float_image.h"
#include "simd/level.h"

namespace vireon {

/// (204 green + 117 red + 64 blue) alpha / 385 of an alpha-first pixel, in single precision: the
/// light that "Luminance" extracts, and the texel that a custom glow shape gets.
float Luminance(const float* pixel);

/// Fills the map from the input by a choice of "Input Source Channels": 0 RGBA copies the pixels;
/// 1 Alpha, 2 Lightness, 3 Luminance, 4 Red, 5 Green, 6 Blue write one value a pixel, times alpha
/// but for Alpha itself, into alpha's place. Any other choice writes nothing. What is not finite
/// becomes finite on the way.
void MapBrightness(const FloatImage& input, const FloatImage& map, std::int32_t choice);

/// map = map - threshold where the map reaches it, else 0; all channels, or alpha's place only.
void SubtractThreshold(const FloatImage& map, float threshold, bool alphaOnly);

/// map = gain x map^exponent. With `alphaOnly` the value in alpha's place is written into all four
/// channels. An exponent of 1 takes no power; a power that is no number is 0, one that is too large
/// the largest light.
void ShapeLight(const FloatImage& map, float exponent, float gain, bool alphaOnly);

/// The same steps by the kernels of a level, bit by bit.
void SubtractThreshold(const simd::KernelTable& kernels, const FloatImage& map, float threshold,
                       bool alphaOnly);
void ShapeLight(const simd::KernelTable& kernels, const FloatImage& map, float exponent, float gain,
                bool alphaOnly);
/// `SubtractThreshold`, then `ShapeLight`, in one pass over the map where the kernels can.
void SubtractThresholdAndShapeLight(const simd::KernelTable& kernels, const FloatImage& map,
                                    float threshold, float exponent, float gain, bool alphaOnly);

}  // namespace vireon
