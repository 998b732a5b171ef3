#pragma once

#include "platform/paths.h"
#include "shapes/glow_kernel.h"

namespace vireon {

/// Size that every brush file must have.
inline constexpr std::int32_t kBrushSize = 256;

/// Reads a brush file: a line with the width, one with the height, one with any text, then one
/// sample a line in rows.
///
/// Numbers are decimal prefixes of their lines in any locale: what follows them is ignored, a line
/// without one is 0. Lines longer than 1023 characters count as several. Samples that are missing
/// or not finite are 0, lines behind the last sample are not read.
/// \return the kernel; empty when the file cannot be read, its header is short or its size is not
///         256 x 256 (the size it claims is kept then)
GlowKernel ReadBrushFile(const platform::Path& path);

}  // namespace vireon
