#pragma once

#include <cstdint>

namespace vireon {

struct GlowKernel;
struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// Reduction factors of the Quality choices, 1:1 to 16:1.
inline constexpr float kQualityFactors[] = {1.0f, 2.0f, 4.0f, 8.0f, 16.0f};

/// The Quality choice that a frame really gets: 1:1 when the reduced frame would have no pixels,
/// or when the choice is none.
std::int32_t EffectiveQuality(const GlowSettings& settings, std::int32_t width,
                              std::int32_t height);

/// Spreads the brightness map into the glow, at the resolution that Quality chooses: reduces the
/// map, stamps the shape, enlarges the result and smooths the enlargement at final quality. In the
/// Brightness Map view the reduced map itself takes the glow's place, and at 1:1 nothing is done.
/// \param map, glow  float rasters of one size; `glow` is overwritten
/// \param shape  null when there is none
/// \return 0 or the first stage's result that is not 0
std::int32_t GlowPass(PluginHost_API& host, PluginRaster_API& map, PluginRaster_API& glow,
                      const GlowKernel* shape, GlowSettings& settings);

}  // namespace vireon
