#pragma once

#include <cstdint>

namespace vireon {

/// A parameter's place in the host's array, the contract between registration and render. 0 is the
/// input layer.
enum ParameterIndex : std::int32_t {
    kParamInput = 0,
    kParamShape,
    kParamShapeLayer,
    kParamGlowRadius,
    kParamGlowIntensity,
    kParamGlowFalloff,
    kParamThreshold,
    kParamInputGroup,
    kParamGlowLayer,
    kParamBlurInput,
    kParamQuality,
    kParamInputChannels,
    kParamInputGroupEnd,
    kParamMaskGroup,
    kParamEnableMask,
    kParamMaskLayer,
    kParamMaskCenter,
    kParamMaskRadius,
    kParamMaskFalloff,
    kParamMaskWidthAspect,
    kParamMaskHeightAspect,
    kParamMaskGroupEnd,
    kParamOutputGroup,
    kParamView,
    kParamPreventOverbrights,
    kParamOverbrightClamp,
    kParamOutputChannels,
    kParamSourceOpacity,
    kParamGlowOpacity,
    kParamTransferMode,
    kParamOutputGroupEnd,
    kParamCount,
};

/// Stable identities of the layer parameters, as saved projects know them.
inline constexpr std::int32_t kShapeLayerId = 101;
inline constexpr std::int32_t kGlowLayerId = 60;
inline constexpr std::int32_t kMaskLayerId = 82;

}  // namespace vireon
