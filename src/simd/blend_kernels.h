#pragma once

#include <cstddef>

#include "composite/blend_settings.h"

namespace vireon::simd {

/// Blends a row of glow over a row of source, four channels a pixel, alpha first; the result takes
/// the glow's place. `values` counts channels. Rows need no alignment and must not overlap.
using BlendRow = void (*)(float* glow, const float* source, std::ptrdiff_t values,
                          const BlendSettings& settings);

/// Every blend of `BlendRoutineOf`, with its bits.
struct BlendKernels {
    BlendRow behind;
    BlendRow normal;
    BlendRow add;
    BlendRow multiply;
    BlendRow screen;
    BlendRow overlay;
    BlendRow softLight;
    BlendRow hardLight;
    BlendRow darken;
    BlendRow lighten;
    BlendRow difference;
    BlendRow colorDodge;
    BlendRow colorBurn;
    BlendRow exclusion;
    BlendRow hue;
    BlendRow saturation;
    BlendRow color;
    BlendRow luminosity;
};

}  // namespace vireon::simd
