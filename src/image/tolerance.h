#pragma once

#include <cmath>

namespace vireon {

/// Settings closer than this to 0 or 1 count as 0 or 1: what a slider shows as a whole number need
/// not be one exactly.
inline constexpr float kTolerance = 1e-5f;

inline bool NearZero(float value) {
    return std::fabs(value) <= kTolerance;
}
inline bool NearOne(float value) {
    return NearZero(value - 1.0f);
}
inline bool NearZero(double value) {
    return std::fabs(value) <= 1e-5;
}

}  // namespace vireon
