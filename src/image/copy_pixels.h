#pragma once

#include "image/raster_layout.h"

namespace vireon {

/// Zeroes every pixel, never the padding of its rows.
void ClearPixels(const RasterLayout& layout);

/// Copies the part that both have, cropping; pixels beyond it and row padding keep what they held.
/// Layouts of one format are copied byte by byte, others channel by channel, rounded and limited to
/// the destination's range. Source and destination must not overlap.
/// \throws std::bad_alloc
void CopyPixels(const RasterLayout& source, const RasterLayout& destination);

}  // namespace vireon
