#pragma once

#include <cstdint>
#include <optional>

namespace vireon {

struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// Softens a float raster in place with a separable tent filter.
///
/// Without an explicit radius it is `settings.blurInput` pixels, limited to the raster's smaller
/// dimension, then times the smaller of the render's two downsample factors, truncated. Red, green
/// and blue are blurred, alpha too when it is an output channel, or alpha alone when `alphaOnly` is
/// set. A direction in which the radius is clamped to nothing stays as it is.
/// \param raster  float; straight or premultiplied colours, unlimited
/// \param explicitRadius  pixels, taken as it stands
/// \return 0, or 1 when the scratch raster could not be made or a host call threw; the raster is
///         then unchanged or half done
std::int32_t BlurRaster(PluginHost_API& host, PluginRaster_API& raster,
                        std::optional<std::int32_t> explicitRadius, const GlowSettings& settings,
                        bool alphaOnly);

}  // namespace vireon
