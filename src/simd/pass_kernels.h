#pragma once

#include <cstddef>

namespace vireon::simd {

/// Small passes over rows of straight or premultiplied pixels, four channels each, alpha first, in
/// place, named after their plain definitions in composite/output_passes.h. `values` counts
/// channels; rows need no alignment.
struct PassKernels {
    void (*scaleColour)(float* row, std::ptrdiff_t values, float factor);
    void (*clampColour)(float* row, std::ptrdiff_t values);
    void (*premultiply)(float* row, std::ptrdiff_t values);
    void (*unpremultiply)(float* row, std::ptrdiff_t values);
};

}  // namespace vireon::simd
