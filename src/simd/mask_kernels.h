#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// One row of an elliptic mask. Everything is finite and not negative but the centre, which is
/// finite; radius, scale and softness are above 0.
struct EllipseRow {
    float centreX;
    float scaleX;   ///< factor of the squared horizontal distance
    float rowTerm;  ///< what the row adds to it; may be infinite
    float radius;
    float radiusSquared;  ///< may be infinite
    bool straight;        ///< a cone: the softness is not looked at
    float softness;
    bool alphaOnly;  ///< only alpha is masked
};

/// Rows of the light that a mask limits, four channels a pixel, alpha first, in place.
struct MaskKernels {
    /// `MultiplyByAlpha` of one row.
    void (*multiplyByAlpha)(float* light, const float* mask, std::ptrdiff_t values, bool alphaOnly);
    /// `MultiplyByEllipse` of one row, from its first pixel on in whole blocks.
    /// \return the pixels that are done; those after them are for the caller
    std::int32_t (*multiplyByEllipse)(float* light, std::int32_t width, const EllipseRow& row);
};

}  // namespace vireon::simd
