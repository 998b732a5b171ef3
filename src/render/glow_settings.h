#pragma once

#include <cstdint>

#include "image/float_image.h"

namespace vireon {

struct GlowParams;

/// Places of a popup's choices that the image code tests for.
inline constexpr std::int32_t kCustomGlowShape = 13;
inline constexpr std::int32_t kInputRgba = 0;
inline constexpr std::int32_t kViewOutput = 0;
inline constexpr std::int32_t kViewBrightnessMap = 1;
inline constexpr std::int32_t kViewMask = 2;
inline constexpr std::int32_t kTransferNone = 0;

/// The settings of one render, in record order. A fresh record holds the defaults; the driver then
/// fills in what the user set. Fields marked "fixed" keep their default in every render that the
/// driver starts; they are switches and factors of the image code itself.
struct GlowSettings {
    std::int32_t inputChannels = 0;
    double glowRadius = 100.0;      ///< pixels at full resolution
    double radiusScale = 1.0;       ///< other factor of the stamp radius: 1 / the quality factor
    double glowIntensity = 10.0;    ///< percent
    double glowFalloff = 1.0;       ///< exponent
    std::int32_t pipelineMode = 1;  ///< fixed; 1 takes the widening out of a standard render
    bool outputRed = true;
    bool outputGreen = true;
    bool outputBlue = true;
    bool outputAlpha = true;
    std::int32_t shape = 2;
    double sourceOpacity = 100.0;  ///< percent
    double glowOpacity = 100.0;    ///< percent
    std::int32_t transferMode = 0;
    std::int32_t reservedCount = 8;  ///< fixed, unused
    std::int32_t reservedMode = 0;   ///< fixed, unused
    double lightGain = 1.0;          ///< fixed; gain of the shaped light, factor of the reach
    bool firstPrePass = false;       ///< fixed; a pre-pass without a body
    bool driverFlag = false;         ///< widening of the light; set by the driver, see RenderGlow
    bool singleChannel = false;      ///< the brightness map is one value a pixel (alpha's place)
    double reachScale = 1.25;        ///< fixed; reach of the widening in glow radii
    std::int32_t view = 0;
    std::int32_t countProgressTwice = 0;  ///< fixed; not 0 doubles the steps that are reported
    double blurInput = 0.0;  ///< fraction of the glow radius; RenderGlow makes pixels of it
    double threshold = 0.0;  ///< percent
    bool enableMask = false;
    double maskRadius = 100.0;  ///< pixels at full resolution
    double maskFalloff = 0.0;
    double widthAspect = 1.0;
    double maskCenterX = 0.5;  ///< fraction of the layer's width
    double maskCenterY = 0.5;  ///< fraction of the layer's height
    double heightAspect = 1.0;
    bool reservedFlags[4] = {false, false, false, false};  ///< fixed, unused
    bool fastSplat = false;  ///< fixed; one stamp for several channels at once
    bool preventOverbrights = true;
    double overbrightClamp = 100.0;  ///< percent
    std::int32_t quality = 2;
    std::int32_t progressCount = 0;    ///< steps reported so far in this render
    std::int32_t progressTotal = 100;  ///< steps of this render

    /// Sets the four output flags from the "Channels" choice: 0 RGB, 1 RGBA, 2 Red, 3 Green,
    /// 4 Blue, 5 Alpha; any other value clears all four.
    void setOutputChannels(std::int32_t choice);

    /// How many output flags are on.
    std::int32_t outputChannelCount() const;

    /// Fills in everything that the user can set, and the driver's flag.
    void fill(const GlowParams& params);
};

/// The output flags by the places of their channels in a working pixel.
ChannelFlags OutputChannels(const GlowSettings& settings);

}  // namespace vireon
