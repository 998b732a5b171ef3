#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// Floats side by side, of several rows, that a pass along rows takes through them at most.
inline constexpr std::int32_t kWideningRowFloats = 32;

/// Floats side by side in a row that a pass along columns takes down together: multiples of the
/// least. The more there are the better the processor fetches ahead.
inline constexpr std::int32_t kLeastWideningFloats = 64;
inline constexpr std::int32_t kMostWideningFloats = 256;

/// One pass of the running maximum over pixels of four floats, in place; row bytes may be negative.
struct WideningPass {
    float* pixels;
    std::ptrdiff_t rowBytes;
    std::int32_t width;
    std::int32_t height;
    std::int32_t full;  ///< half width of the window that counts in full, below the line's length
    float fraction;     ///< weight of the two pixels just outside that window
    bool channels[4];   ///< which floats of a pixel are widened
    /// Floats that go down the columns together.
    std::int32_t columnFloats;
    /// 2 (2 full + 1) kWideningRowFloats floats, or (2 (2 full + 1) + 1) columnFloats of them.
    float* scratch;
};

struct WideningKernels {
    void (*alongRows)(const WideningPass& pass);
    void (*alongColumns)(const WideningPass& pass);
};

}  // namespace vireon::simd
