#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// How a row of pixels of four floats is shaped.
struct LightShaping {
    bool subtracts;  ///< take the threshold off first
    float threshold;
    float exponent;  ///< finite and above 0
    bool wholeExponent;
    bool oddExponent;  ///< a whole one that is odd
    float gain;
    bool alphaOnly;  ///< alpha's light into all four channels
};

struct PowerKernels {
    /// Pixels that `shape` takes at once.
    std::int32_t blockPixels;
    /// Light less the threshold where it reaches it, else 0.
    void (*subtractThreshold)(float* pixels, std::int32_t width, float threshold, bool alphaOnly);
    /// Light times the gain.
    void (*scale)(float* pixels, std::int32_t width, float gain, bool alphaOnly);
    /// Gain times the light raised to the exponent, block by block. It ends before a block whose
    /// light is not all finite and before one that is not whole, and leaves those alone.
    /// \return pixels done
    std::int32_t (*shape)(float* pixels, std::int32_t width, const LightShaping& shaping);
};

}  // namespace vireon::simd
