#pragma once

#include <cstdint>
#include <string_view>

namespace vireon {

/// Size in a header line of a brush file: the decimal integer that the line begins with, in any
/// locale; 0 when there is none or it does not fit.
std::int32_t ParseBrushSize(std::string_view line);

/// How a sample line reads.
enum class SampleReading {
    kNumber,     ///< as the number that it begins with; perhaps one too small to tell from 0
    kMore,       ///< so too, but something other than blanks stands behind the number
    kNoNumber,   ///< as 0, for want of a number
    kNotFinite,  ///< as 0: it says infinity or not-a-number
    kTooLarge,   ///< as 0: the number is beyond single precision
};

struct BrushSample {
    float value = 0.0f;  ///< finite
    SampleReading reading = SampleReading::kNumber;
};

/// Value of a sample line: the decimal number that it begins with, blanks passed over, in any
/// locale.
BrushSample ParseBrushSample(std::string_view line);

}  // namespace vireon
