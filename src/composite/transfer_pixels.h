#pragma once

#include <cstdint>

#include "composite/blend_settings.h"
#include "image/float_image.h"
#include "simd/blend_kernels.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// Blends the glow (T) over the source (K), pixel by pixel; the result takes the glow's place. Both
/// are float images of one size, straight colour in any range, and must not overlap.
///
/// With a_t = glow opacity x T.A and a_k = source opacity x K.A, the result's alpha is
/// a_k + a_t - a_k a_t. Where a_t is 0 the source's colour stays as it is; elsewhere colours below
/// 0 count as 0, nothing is limited above. Values that are not finite stay at their own place.
using BlendRoutine = void (*)(const FloatImage& glow, const FloatImage& source,
                              const BlendSettings& settings);

/// Routine of a transfer-mode code in the host's numbering, or null for codes that do nothing.
BlendRoutine BlendRoutineOf(std::int32_t mode);

/// The kernel that does the same to a row, with the same bits, or null where that is null.
simd::BlendRow BlendRowOf(const simd::KernelTable& kernels, std::int32_t mode);

/// Blends whole images by a transfer-mode code; codes that do nothing change nothing.
void BlendImages(std::int32_t mode, const FloatImage& glow, const FloatImage& source,
                 const BlendSettings& settings);
/// The same by kernels, with the same bits.
void BlendImages(const simd::KernelTable& kernels, std::int32_t mode, const FloatImage& glow,
                 const FloatImage& source, const BlendSettings& settings);

}  // namespace vireon
