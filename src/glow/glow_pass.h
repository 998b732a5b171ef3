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

/// Radius in pixels of the tent that smooths the enlargement of a Quality choice.
std::int32_t SmoothingRadius(std::int32_t quality, bool hasShape);

/// Whether reduction samples red, green and blue only.
bool SamplesColourOnly(const GlowSettings& settings);

/// Sets the other factor of the stamp radius for the length of a scope.
class ScopedRadiusScale {
  public:
    ScopedRadiusScale(GlowSettings& settings, float qualityFactor);
    ScopedRadiusScale(const ScopedRadiusScale&) = delete;
    ScopedRadiusScale& operator=(const ScopedRadiusScale&) = delete;
    ~ScopedRadiusScale();

  private:
    GlowSettings& settings_;
    float former_;
};

/// Spreads the brightness map into the glow, at the resolution that Quality chooses: reduces the
/// map, stamps the shape, enlarges the result and smooths the enlargement at final quality. In the
/// Brightness Map view the reduced map itself takes the glow's place, and at 1:1 nothing is done.
/// \param map, glow  float rasters of one size; `glow` is overwritten
/// \param shape  null when there is none
/// \return 0 or the first stage's result that is not 0
std::int32_t GlowPass(PluginHost_API& host, PluginRaster_API& map, PluginRaster_API& glow,
                      const GlowKernel* shape, GlowSettings& settings);

}  // namespace vireon
