#pragma once

#include <string>

namespace vireon::pictures {

/// By how much a picture may differ from the one that it is compared with.
struct Tolerance {
    double steps = 0.0;   ///< at 8 and 16 bits: steps of the channel's whole numbers
    double ofPeak = 0.0;  ///< float: part of the largest magnitude in the reference
};

/// All fast levels of instructions and both systems: the same bits.
inline constexpr Tolerance kSameBits{.steps = 0.0, .ofPeak = 0.0};

/// The plain definitions add in another order and differ by rounding.
inline constexpr Tolerance kRounding{.steps = 1.0, .ofPeak = 1e-5};

/// What holds for a worker by the level that it names.
inline const Tolerance& ToleranceOf(const std::string& level) {
    return level == "plain" ? kRounding : kSameBits;
}

}  // namespace vireon::pictures
