#pragma once

#include <cmath>

namespace vireon {

/// Largest light that an infinity stands for, the largest half float.
inline constexpr float kLargestLight = 65504.0f;

/// Light that cannot spread what is not finite: NaN counts as 0, an infinity as plus or minus the
/// largest light; every finite value is itself.
inline float FiniteLight(float value) {
    if (std::isnan(value)) return 0.0f;
    if (std::isinf(value)) return std::copysign(kLargestLight, value);
    return value;
}

}  // namespace vireon
