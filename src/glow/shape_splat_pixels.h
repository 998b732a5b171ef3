#pragma once

#include <cstdint>

#include "image/float_image.h"
#include "shapes/glow_kernel.h"

namespace vireon {

/// What every stamp of one convolution shares.
struct Splat {
    const GlowKernel* kernel;  ///< has texels; its centre is at (width / 2, height / 2)
    float weight;              ///< factor of every texel that is added
    float radius;              ///< pixels of the stamp of a source value of 1
    std::int32_t maxRadius;    ///< pixels; larger stamps are cut down to this size
};

/// Which channels a source pixel stamps, and by which value.
enum class SplatMember {
    kGeneral,        ///< each enabled channel by its own value, into that channel
    kFourChannel,    ///< one stamp by the pixel's first float, into all four
    kThreeChannel,   ///< one stamp by the largest of the three colours, into the three
    kSingleChannel,  ///< one stamp by the one enabled channel, into it
};

/// Adds the stamps of one source row to the destination, in order of x.
///
/// A pixel of value v makes a stamp of s = v x radius pixels, r = trunc(s) + 1; below one pixel
/// there is none, and where r would exceed the largest radius both become that. The pixel at
/// (dx, dy) from the centre, |dx| and |dy| <= r, gets weight x k, where k is the kernel
/// interpolated at (dx w / 2s + w / 2, dy h / 2s + h / 2), limited to the kernel's texels: first
/// between its two texel rows, then between their columns. Rows of the kernel that are flagged
/// empty count as 0 and are not read. The value sizes the stamp and is no factor of it. Stamps are
/// cut at the image's border.
///
/// Source and destination are float images of the same size and must not overlap. Values may be
/// anything: NaN makes no stamp, infinity one of the largest size. All arithmetic is in 32-bit
/// float, one rounding an operation.
/// \throws std::bad_alloc when the stamp's column table cannot be had
void SplatRow(const FloatImage& source, std::int32_t y, const FloatImage& destination,
              const Splat& splat, SplatMember member, const ChannelFlags& channels);

}  // namespace vireon
