#pragma once

#include "sdk/types.h"

namespace vireon {

/// A ratio of the host as a factor. Some hosts leave ratios unset, and one that scales everything
/// to nothing is no ratio either: both count as 1.
inline double RatioOr1(const sdk::PF_RationalScale& scale) {
    return scale.den == 0 || scale.num <= 0 ? 1.0 : static_cast<double>(scale.num) / scale.den;
}

}  // namespace vireon
