#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// Floats side by side, of one row or of several, that a widening pass takes through its lines
/// together at most.
inline constexpr std::int32_t kWideningFloats = 128;

/// One pass of the running maximum over pixels of four floats, in place; row bytes may be negative.
struct WideningPass {
    float* pixels;
    std::ptrdiff_t rowBytes;
    std::int32_t width;
    std::int32_t height;
    std::int32_t full;  ///< half width of the window that counts in full
    std::int32_t
        whole;         ///< pixels that the plain definition pads a line by; sets the blocks' places
    float fraction;    ///< weight of the two pixels just outside that window
    bool channels[4];  ///< which floats of a pixel are widened
    float* scratch;    ///< 2 (2 full + 1) kWideningFloats floats
};

struct WideningKernels {
    void (*alongRows)(const WideningPass& pass);
    void (*alongColumns)(const WideningPass& pass);
};

}  // namespace vireon::simd
