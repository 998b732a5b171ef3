#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// What the passes over a finished row of glow need to know.
struct GlowRowSettings {
    bool keepColour[3];     ///< red, green and blue that are output channels; others become 0
    bool opaque;            ///< alpha becomes 1.0
    bool keepAlpha;         ///< unless opaque: alpha stays; else it is the source's
    bool intensityToAlpha;  ///< moves intensity into coverage
    bool softClip;          ///< bends light above the knee
    float knee;             ///< where bending begins
    float excess;           ///< above 0
    float clamp;            ///< fraction of the bend; 1 bends in full
    bool fullClamp;         ///< the bend alone counts
};

/// Rows of whole frames. Pixels are four channels, alpha first; rows need no alignment and must not
/// overlap. `values` counts channels, four a pixel. Every kernel gives the bits of the plain
/// definition that it is named after.
struct FrameKernels {
    /// `ConvertPixelsToFloat` and `ConvertPixelsFromFloat` of alpha-first rows.
    void (*from8)(const std::uint8_t* from, float* to, std::ptrdiff_t values);
    void (*from16)(const std::uint16_t* from, float* to, std::ptrdiff_t values);
    void (*to8)(const float* from, std::uint8_t* to, std::ptrdiff_t values);
    void (*to16)(const float* from, std::uint16_t* to, std::ptrdiff_t values);

    /// Whether no pixel has an alpha below white.
    bool (*isOpaque8)(const std::uint8_t* row, std::ptrdiff_t values);
    bool (*isOpaque16)(const std::uint16_t* row, std::ptrdiff_t values);
    bool (*isOpaqueFloat)(const float* row, std::ptrdiff_t values);

    /// Whether every value is +0 or -0.
    bool (*isZero)(const float* row, std::ptrdiff_t values);

    /// Whether every value is finite.
    bool (*isFinite)(const float* row, std::ptrdiff_t values);

    /// to[x] = sum over t < taps of weights[x taps + t] x from[first[x] + t], pixel by pixel, the
    /// sums in double precision and in order of t.
    void (*expandRow)(const float* from, const std::int32_t* first, const double* weights,
                      std::int32_t taps, double* to, std::ptrdiff_t pixels);
    /// to[i] = (sum over t < taps of weights[t] x rows[t][i]) x factor, in order of t, rounded
    /// once.
    void (*combineRows)(const double* const* rows, const double* weights, std::int32_t taps,
                        double factor, float* to, std::ptrdiff_t values);

    /// The larger of `largest` and every colour of (sum over t < taps of weights[t] x rows[t][i]),
    /// in order of t; all sums must be finite.
    double (*largestCombined)(const double* const* rows, const double* weights, std::int32_t taps,
                              std::ptrdiff_t values, double largest);

    /// The larger of `largest` and every colour of the row; NaN is passed over.
    float (*largestColour)(const float* row, std::ptrdiff_t values, float largest);

    /// `ChannelMaskPass`, `OverbrightSoftClip` with a knee that is known, `ClampAlpha` and
    /// `IntensityToAlpha`.
    void (*finishGlow)(float* glow, const float* source, std::ptrdiff_t values,
                       const GlowRowSettings& settings);

    /// `finishGlow`, then the blend Add at full opacities where the source is opaque and the
    /// settings make the glow opaque.
    void (*finishAndAddOpaque)(float* glow, const float* source, std::ptrdiff_t values,
                               const GlowRowSettings& settings);
};

}  // namespace vireon::simd
