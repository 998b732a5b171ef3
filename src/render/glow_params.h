#pragma once

#include <cstdint>

namespace vireon {

class PluginHost_API;

/// The effect's parameters at the moment of one render, as the user set them. Choices of popups
/// count from 0, separator lines included; percentages are 100 when full.
struct GlowParams {
    std::int32_t shape = 0;          ///< 0 Gaussian ... 12 Zig, 13 Custom Glow Shape
    double glowRadius = 0.0;         ///< pixels at full resolution
    double glowIntensity = 0.0;      ///< percent
    double glowFalloff = 0.0;        ///< exponent
    double threshold = 0.0;          ///< percent
    double blurInput = 0.0;          ///< fraction of the glow radius
    std::int32_t quality = 0;        ///< 0 1:1 ... 4 16:1
    std::int32_t inputChannels = 0;  ///< 0 RGBA ... 6 Blue
    bool enableMask = false;
    double maskCenterX = 0.0;  ///< fraction of the layer's width
    double maskCenterY = 0.0;  ///< fraction of the layer's height
    double maskRadius = 0.0;   ///< pixels at full resolution
    double maskFalloff = 0.0;  ///< 0 to 1
    double widthAspect = 0.0;
    double heightAspect = 0.0;
    std::int32_t view = 0;  ///< 0 Output, 1 Brightness Map, 2 Mask
    bool preventOverbrights = false;
    double overbrightClamp = 0.0;     ///< percent
    std::int32_t outputChannels = 0;  ///< 0 RGB ... 5 Alpha
    double sourceOpacity = 0.0;       ///< percent
    double glowOpacity = 0.0;         ///< percent
    std::int32_t transferMode = 0;    ///< 0 None ... 22 Luminosity
};

/// Reads every parameter from the host.
/// \param layerWidth, layerHeight  pixels of the frame's input layer, in whose coordinates points
///        arrive; the mask's centre becomes a fraction of them (0 of an empty layer)
GlowParams ReadGlowParams(PluginHost_API& host, std::int32_t layerWidth, std::int32_t layerHeight);

}  // namespace vireon
