#pragma once

#include <cstdint>

#include "image/float_image.h"

namespace vireon {

/// Between which two source positions a sample of a linear interpolation lies, and how far from the
/// first.
struct SampleTap {
    std::int32_t first;
    std::int32_t second;
    float fraction;
};

/// The sample of `position` when `sourceSize` positions are spread over `size`, without a
/// half-pixel offset.
SampleTap SampleTapAt(std::int32_t position, std::int32_t sourceSize, std::int32_t size);

/// The nearest source position of `position`, halves going up.
std::int32_t NearestSample(std::int32_t position, std::int32_t sourceSize, std::int32_t size);

/// first + fraction (second - first) as (1 - fraction) first + fraction second. A fraction of
/// exactly 0 or 1 reads one value only, so that what lies beside it, however large or undefined,
/// cannot reach the result.
inline float BlendSamples(float first, float second, float fraction) {
    if (fraction == 0.0f) return first;
    if (fraction == 1.0f) return second;
    return (1.0f - fraction) * first + fraction * second;
}

/// Reduction and enlargement between the frame and its reduced-resolution copy. Images are float,
/// unlimited, and must not overlap; neither side may be empty. All positions and fractions are
/// 32-bit floats.

/// destination(x, y) = the source pixel nearest to (x W/w, y H/h), halves going up.
void ReduceNearest(const FloatImage& source, const FloatImage& destination);

/// destination(x, y) = bilinear sample of the source at (x W/w, y H/h). There is no half-pixel
/// offset: the first pixel of both images coincides, and exact multiples read single pixels.
/// \param colourOnly  samples red, green and blue only and sets alpha to 0
void ReduceBilinear(const FloatImage& source, const FloatImage& destination, bool colourOnly);

/// destination(x, y) = the source pixel nearest to (x w/W, y h/H), halves going up.
void ExpandNearest(const FloatImage& source, const FloatImage& destination);

}  // namespace vireon
