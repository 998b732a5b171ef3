#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "glow/shape_splat_pixels.h"
#include "shapes/glow_kernel.h"

namespace vireon {

/// A stamp's size: pixels from its centre to its rim, and to the last pixel that it covers.
struct StampSize {
    float scale;
    std::int32_t reach;  ///< 0 is no stamp

    std::int32_t side() const { return 2 * reach + 1; }
    /// Pixels that it covers, with those beyond the image.
    double texels() const { return static_cast<double>(side()) * static_cast<double>(side()); }
};

/// Tells the sizes of stamps apart, without a branch: the bits of the scale, 0 for no stamp.
inline std::uint32_t StampKeyOf(float value, const Splat& splat) {
    const float scale = value * splat.radius;
    const auto limit = static_cast<float>(splat.maxRadius);
    const auto bits = std::bit_cast<std::uint32_t>(scale < limit ? scale : limit);
    return scale >= 1.0f ? bits : 0;  // NaN makes none
}

/// The size that has a key.
inline StampSize StampSizeOfKey(std::uint32_t key, const Splat& splat) {
    const auto scale = std::bit_cast<float>(key);
    const std::int32_t reach = std::min(static_cast<std::int32_t>(scale) + 1, splat.maxRadius);
    return {scale, key != 0 ? reach : 0};
}

/// The stamp of a source value; see `SplatRow`.
inline StampSize StampSizeOf(float value, const Splat& splat) {
    return StampSizeOfKey(StampKeyOf(value, splat), splat);
}

/// Between which two texels of a kernel's row or column a pixel lies, and how far from the first.
struct StampTap {
    std::int32_t first;
    std::int32_t second;
    float fraction;
};

/// Taps along one side of a kernel for stamps of one scale.
class StampAxis {
  public:
    /// \param texels  width or height of the kernel
    StampAxis(std::int32_t texels, float scale)
        : centre_(static_cast<float>(texels) * 0.5f),
          step_(centre_ / scale),
          last_(static_cast<float>(texels - 1)),
          lastTexel_(texels - 1) {}

    /// Of the pixel at a distance from the stamp's centre.
    StampTap tap(std::int32_t distance) const {
        const float place = std::clamp(static_cast<float>(distance) * step_ + centre_, 0.0f, last_);
        const float whole = std::floor(place);
        const auto first = static_cast<std::int32_t>(whole);
        return {first, std::min(first + 1, lastTexel_), place - whole};
    }

  private:
    float centre_;
    float step_;
    float last_;
    std::int32_t lastTexel_;
};

}  // namespace vireon
