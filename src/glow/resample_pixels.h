#pragma once

#include "image/float_image.h"

namespace vireon {

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
