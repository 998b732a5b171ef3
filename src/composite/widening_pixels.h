#pragma once

#include <cstddef>
#include <cstdint>

#include "image/float_image.h"
#include "simd/level.h"

namespace vireon {

/// Reach of the widening, split into whole pixels and the rest.
struct WideningReach {
    std::int32_t whole;
    float fraction;
};

/// Bytes of scratch memory that a pass over lines of `length` pixels needs, be it the plain one or
/// one by kernels.
std::size_t WideningScratchBytes(std::int32_t length, WideningReach reach);

/// One pass of a grey-scale dilation (running maximum) along rows or columns, in place, channel by
/// channel on the enabled ones; the others keep what they hold.
///
/// With n = reach.whole, the result is the largest value within n - 2 pixels on both sides, or
/// `fraction` times the values n - 1 pixels away (1 pixel away for n = 1) where those are larger:
/// the full strength ends two pixels before the reach. Of zeros of both signs the nearest one
/// counts, of two as near the one before. Positions outside take the end pixel. n = 0 changes
/// nothing. This is the definition, which looks at every pixel within the reach. Values must not be
/// NaN.
/// \param alongRows  direction of the pass
/// \param scratch  `WideningScratchBytes` bytes, aligned for float
void WidenLight(const FloatImage& map, WideningReach reach, bool alongRows,
                const ChannelFlags& channels, void* scratch);

/// The same pass by the kernels of a level, bit by bit; the cost of a pixel does not depend on the
/// reach.
void WidenLight(const simd::KernelTable& kernels, const FloatImage& map, WideningReach reach,
                bool alongRows, const ChannelFlags& channels, void* scratch);

}  // namespace vireon
