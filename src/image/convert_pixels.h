#pragma once

#include <cstdint>

#include "image/float_image.h"
#include "image/raster_layout.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// Largest value of a channel of `bits` bits: 8 gives 255, 14 gives 16384, 15 gives 32768 (the
/// host's 16-bit worlds), 16 gives 65535, any other count 2^bits - 1. 32 bits are float and have
/// none.
constexpr std::int32_t ChannelMaximum(std::int32_t bits) {
    if (bits == 14 || bits == 15) return 1 << bits;
    return static_cast<std::int32_t>((std::int64_t{1} << bits) - 1);
}

/// The layout's pixels as a view, for layouts of float format whose rows are aligned as floats are;
/// see `IsFloatView`.
FloatImage FloatView(const RasterLayout& layout);

/// Whether the layout has pixels that can be worked on in place: float format, alpha first, and
/// every row aligned as floats are.
bool IsFloatView(const RasterLayout& layout);

/// destination = source / channel maximum, channel by channel, into alpha-first order; 8 bits are
/// multiplied by 0.003921569, float is copied as it stands, whatever its values.
/// Walks the width and height that both have; rows need no alignment. Source and destination must
/// not overlap. Formats without a depth are left alone.
void ConvertPixelsToFloat(const RasterLayout& source, const FloatImage& destination);
/// The same bits, faster.
void ConvertPixelsToFloat(const simd::KernelTable& kernels, const RasterLayout& source,
                          const FloatImage& destination);

/// destination = trunc(channel maximum x value + 0.5) in single precision, limited to 0 and the
/// channel maximum; NaN gives 0. Channels go to the places of the destination's format; float is
/// copied as it stands. Walks the width and height that both have. Source and destination must not
/// overlap.
void ConvertPixelsFromFloat(const FloatImage& source, const RasterLayout& destination);
/// The same bits, faster.
void ConvertPixelsFromFloat(const simd::KernelTable& kernels, const FloatImage& source,
                            const RasterLayout& destination);

}  // namespace vireon
