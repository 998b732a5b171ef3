#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "headless/remote/picture.h"
#include "tests/pictures/tolerances.h"

namespace vireon::pictures {

/// How a picture compares with its reference.
struct Comparison {
    /// Why the picture is not accepted, in one line; empty when it is.
    std::string problem;
    /// Samples whose bits differ, also by no more than the tolerance. 0 for pictures that cannot be
    /// laid over each other.
    std::size_t differing = 0;
    /// Largest difference: steps at 8 and 16 bits, in float a part of the reference's peak (of 1
    /// where the reference is black). Infinite where a sample is not finite.
    double largest = 0.0;
    /// Where the largest difference is; x is -1 when there is none.
    std::int32_t x = -1;
    std::int32_t y = -1;
    std::string channel;     ///< "alpha", "red", "green" or "blue"
    double now = 0.0;        ///< the sample there, as stored
    double reference = 0.0;  ///< what it should be

    bool agrees() const { return problem.empty(); }
};

/// Holds a picture to a reference. Different size, place or depth never agree, nor does any sample
/// that is not finite in either picture. Without a tolerance the bits must be the same, the sign of
/// a zero included.
Comparison Compare(const headless::Picture& now, const headless::Picture& reference,
                   const Tolerance& tolerance);

/// The value of a channel as it is stored: 0 to 255, 0 to 32768, or a float.
/// \param channel  0 to 3 for alpha, red, green, blue
double SampleAt(const headless::Picture& picture, std::int32_t x, std::int32_t y, int channel);

/// White of a channel as it is stored: 255, 32768 or 1.
double WhiteOf(std::int32_t bits);

}  // namespace vireon::pictures
