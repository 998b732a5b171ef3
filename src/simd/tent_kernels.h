#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// One line pass of the tent filter over pixels of four floats. Source and destination must not
/// overlap; row bytes may be negative.
struct TentPass {
    const float* source;
    float* destination;
    std::ptrdiff_t sourceRowBytes;
    std::ptrdiff_t destinationRowBytes;
    std::int32_t width;
    std::int32_t height;
    std::int32_t radius;  ///< pixels, 1 or more, already clamped to the length of the lines
    bool channels[4];     ///< which floats of a pixel are written
};

struct TentKernels {
    void (*alongRows)(const TentPass& pass);
    void (*alongColumns)(const TentPass& pass);
};

}  // namespace vireon::simd
